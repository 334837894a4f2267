#ifndef TOOLS_INILINT_INIREADING_H
#define TOOLS_INILINT_INIREADING_H

#include "IniValue.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

class QTextCodec;
class IniLines;
class LineNumbers;

// The lines of the text that an item covers.
struct Extent
{
    int begin; // the first byte
    int first;
    int last;
    bool isQuoteOpen; // at the end of the last line, which is the end of the text
};

// Returns the bytes at the beginning of an extent; at the beginning of the file without the UTF-8
// byte order mark and the spaces after it.
QByteArray withoutByteOrderMark(const Extent& extent, const QByteArray& bytes);

// A line that begins a section.
struct IniSection
{
    Extent extent;
    QByteArray name; // as spelled in the file
    // The beginning of its keys' paths: "Net/"; empty for the top level of the file.
    QString prefix;
    bool isClosed;       // whether there is a ']'
    QByteArray trailing; // what follows the ']' in the line
};

// A line with a key and a value.
struct IniEntry
{
    Extent extent;
    QString prefix;   // of the section
    QByteArray name;  // of the key, as spelled in the file
    int valueBegin;   // the byte after the equals sign
    QString key;      // as QSettings reads it
    QByteArray bytes; // of the value, as in the file
    IniValue value;
    bool isCutBySemicolon;

    QString path() const { return prefix + key; }
    // The end of the value: the semicolon, if there is one.
    int valueEnd() const { return valueBegin + bytes.size(); }
    // Whether the line looks like a comment because of its '#'.
    bool isCommentedOut() const { return withoutByteOrderMark(extent, name).startsWith('#'); }
};

// A line that is neither a section nor a key.
struct IniStray
{
    Extent extent;
    QByteArray text;

    bool isHashComment() const { return withoutByteOrderMark(extent, text).startsWith('#'); }
};

/*
 * Parses an INI text as QSettings 5.15 does on Unix, and records the lines of each item. After an
 * error it continues as QSettings does, so that the result is the same for any text.
 */
class IniReading
{
public:
    // Without a codec, values are Latin-1, as for IniFileManager.
    IniReading(const QByteArray& text, const QTextCodec* codec);

    const QVector<IniSection>& sections() const { return m_sections; }
    // In the order of the text. If a path occurs several times with one prefix, the last one
    // counts.
    const QVector<IniEntry>& entries() const { return m_entries; }
    const QVector<IniStray>& strays() const { return m_strays; }
    // The codec of the values: UTF-8 if none was given and the text has a byte order mark.
    const QTextCodec* codec() const { return m_codec; }

    // Returns the name of a key or section as QSettings reads it: in Latin-1 with any codec, with
    // '/' for '\', and with '%' escapes replaced.
    static QString readName(const QByteArray& name);
    // Returns the name as QSettings writes it.
    static QByteArray writtenName(const QString& name);

private:
    void readSection(const QByteArray& text, const IniLines& line, const LineNumbers& numbers);
    void readEntries(const QByteArray& text, int begin, int end, const LineNumbers& numbers);

    const QTextCodec* m_codec;
    QVector<IniSection> m_sections;
    QVector<IniEntry> m_entries;
    QVector<IniStray> m_strays;
};

#endif
