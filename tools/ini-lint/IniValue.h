#ifndef TOOLS_INILINT_INIVALUE_H
#define TOOLS_INILINT_INIVALUE_H

#include <QtCore/QByteArray>
#include <QtCore/QStringList>
#include <QtCore/QVector>

class QTextCodec;

// A value as QSettings parses it from the bytes after an equals sign, with what the rules need to
// know about those bytes.
class IniValue
{
public:
    // Without a codec, values are Latin-1.
    IniValue(const QByteArray& bytes, const QTextCodec* codec);

    bool isList() const { return m_isList; }
    // One string unless it is a list. A marker of another type, such as "@Size(1 2)", is kept.
    QStringList texts() const { return m_texts; }

    // Whether a part of the value is in quotes, and whether another part of that string is not.
    bool hasQuotes() const { return m_hasQuotes; }
    bool hasTextBesideQuotes() const { return m_hasTextBesideQuotes; }
    // The position of the first comma that separates strings; -1 if there is none.
    int firstComma() const { return m_firstComma; }

    // An escape sequence and its position in the bytes.
    struct Escape
    {
        int position;
        QByteArray bytes;
    };
    // The escapes that mean something other than the character after their backslash, and those
    // that mean that character.
    const QVector<Escape>& strangeEscapes() const { return m_strangeEscapes; }
    const QVector<Escape>& literalEscapes() const { return m_literalEscapes; }
    // The position of a trailing backslash, which is dropped; -1 if there is none.
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
    QString m_text; // the string that is being parsed
    int m_kept = 0; // this many of its characters are kept, even if they are spaces
    bool m_isQuoted = false;
    bool m_isInQuotes = false;
    bool m_hasPlain = false; // whether that string has a part outside quotes
    bool m_isList = false;
    bool m_hasQuotes = false;
    bool m_hasTextBesideQuotes = false;
    int m_firstComma = -1;
    int m_lastBackslash = -1;
    QVector<Escape> m_strangeEscapes;
    QVector<Escape> m_literalEscapes;
};

#endif
