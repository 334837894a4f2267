#ifndef EXAMPLES_INILINT_INIVALUE_H
#define EXAMPLES_INILINT_INIVALUE_H

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

class QTextCodec;

// A value as QSettings reads it out of the bytes behind an equals sign, and what happened on the
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
    // The escapes that stand for something else than the character behind their backslash.
    QList<QByteArray> strangeEscapes() const { return m_strangeEscapes; }

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
    QList<QByteArray> m_strangeEscapes;
};

#endif
