#ifndef TOOLS_INILINT_INIVALUE_H
#define TOOLS_INILINT_INIVALUE_H

#include <QtCore/QByteArray>
#include <QtCore/QStringList>
#include <QtCore/QVector>

class QTextCodec;

// A value as QSettings reads it out of the bytes after an equals sign, and what happened on the
// way.
class IniValue
{
public:
    // Without a codec each byte is a character of Latin-1.
    IniValue(const QByteArray& bytes, const QTextCodec* codec);

    bool isList() const { return m_isList; }
    // One text when it is no list. A mark for another type, such as "@Size(1 2)", is still there.
    QStringList texts() const { return m_texts; }

    // Whether some of it stood in quotes, and whether some other part of the same text did not.
    bool hasQuotes() const { return m_hasQuotes; }
    bool hasTextBesideQuotes() const { return m_hasTextBesideQuotes; }
    // The first comma that separates texts; -1 without one.
    int firstComma() const { return m_firstComma; }

    // An escape, and where it begins in the bytes.
    struct Escape
    {
        int position;
        QByteArray bytes;
    };
    // The escapes that stand for something else than the character after their backslash, and
    // those that stand for just that.
    const QVector<Escape>& strangeEscapes() const { return m_strangeEscapes; }
    const QVector<Escape>& literalEscapes() const { return m_literalEscapes; }
    // The backslash at the very end, which is dropped; -1 without one.
    int lastBackslash() const { return m_lastBackslash; }

private:
    void read();
    void readPlain();
    void readQuote();
    bool readEscape();
    void readNumber(int base);
    void endText();
    void skipBlanks();
    void chopBlanks();

    QByteArray m_bytes;
    const QTextCodec* m_codec;
    int m_position = 0;
    QStringList m_texts;
    QString m_text; // the one that is being read
    int m_kept = 0; // so many of its characters stay, even if they are blanks
    bool m_isQuoted = false;
    bool m_isInQuotes = false;
    bool m_hasPlain = false; // whether the text that is being read has a part outside of quotes
    bool m_isList = false;
    bool m_hasQuotes = false;
    bool m_hasTextBesideQuotes = false;
    int m_firstComma = -1;
    int m_lastBackslash = -1;
    QVector<Escape> m_strangeEscapes;
    QVector<Escape> m_literalEscapes;
};

#endif
