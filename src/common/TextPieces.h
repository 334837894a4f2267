#ifndef MISCTOOLS_TEXTPIECES_H
#define MISCTOOLS_TEXTPIECES_H

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>
#include <QtCore/QString>

/*!
 * \internal
 * The text of a file, bit by bit: without carriage returns, and up to the first zero byte.
 *
 * The pieces can be decoded, or have a few characters replaced, each for itself, and the results
 * are those of the whole: a piece other than the first begins with an ASCII character that is no
 * digit, so neither a UTF-8 sequence nor an escape such as %23 is ever split, and nothing but the
 * beginning of the file is taken for a byte order mark. A text without such characters is one
 * piece.
 */
class TextPieces
{
public:
    /*! \brief Reads \a file, which is open for reading, \a readSize bytes at a time. */
    explicit TextPieces(QIODevice& file, int readSize = defaultReadSize);

    /*! \brief Goes to the next piece; false at the end. */
    bool next();

    /*! \brief Appends the piece, decoded as UTF-8, to \a text. */
    void appendTo(QString& text) const;

    /*! \brief The piece in UTF-8, sound in any case: what cannot be decoded is replaced. */
    QByteArray toUtf8() const;

    /*! \brief Whether a zero byte has ended the text. */
    bool isCut() const { return m_isCut; }

private:
    // Little memory, and few calls of the system for a large file.
    static constexpr int defaultReadSize = 64 * 1024;

    bool readOn();
    bool isAscii() const;

    QIODevice& m_file;
    const int m_readSize;
    QByteArray m_piece;
    QByteArray m_rest; // read, and not yet part of a piece
    bool m_isAtEnd = false;
    bool m_isCut = false;
};

#endif
