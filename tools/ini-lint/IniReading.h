#ifndef TOOLS_INILINT_INIREADING_H
#define TOOLS_INILINT_INIREADING_H

#include "IniValue.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

class QTextCodec;
class IniLines;
class LineNumbers;

// The lines of the text that something takes in.
struct Extent
{
    int begin; // its first byte
    int first;
    int last;
    bool isQuoteOpen; // at the end of the last, which is that of the text
};

// The bytes that begin an extent; at the beginning of the file without the byte order mark of
// UTF-8, and the spaces after it.
QByteArray withoutByteOrderMark(const Extent& extent, const QByteArray& bytes);

// A line that begins a section.
struct IniSection
{
    Extent extent;
    QByteArray name; // as it is written
    // As the names of its keys begin: "Net/"; empty for the top level of the file.
    QString prefix;
    bool isClosed;     // whether there is a ']'
    QByteArray behind; // what follows that in the line
};

// A line with a key and a value.
struct IniEntry
{
    Extent extent;
    QString prefix;   // the section's
    QByteArray name;  // of the key, as it is written
    int valueBegin;   // the byte after the equals sign
    QString key;      // as it is read
    QByteArray bytes; // of the value, as they are written
    IniValue value;
    bool isCutBySemicolon;

    QString path() const { return prefix + key; }
    // Where the value ends: at the semicolon, if that ended it.
    int valueEnd() const { return valueBegin + bytes.size(); }
    // Whether '#' turns the line into a comment in people's eyes.
    bool isCommentedOut() const { return withoutByteOrderMark(extent, name).startsWith('#'); }
};

// A line that is neither.
struct IniStray
{
    Extent extent;
    QByteArray text;

    bool isHashComment() const { return withoutByteOrderMark(extent, text).startsWith('#'); }
};

/*
 * An INI text as QSettings 5.15 reads it on Unix, with the lines that everything comes from. It
 * goes on where QSettings does, so that what is read is the same for texts of any kind.
 */
class IniReading
{
public:
    // Without a codec values are Latin-1, as IniFileManager reads them when it is given none.
    IniReading(const QByteArray& text, const QTextCodec* codec);

    const QVector<IniSection>& sections() const { return m_sections; }
    // In the order of the text; where a path comes again within one section's prefix, the last
    // counts.
    const QVector<IniEntry>& entries() const { return m_entries; }
    const QVector<IniStray>& strays() const { return m_strays; }
    // The codec of the values: where none is given, a byte order mark makes it UTF-8.
    const QTextCodec* codec() const { return m_codec; }

    // The name of a key or section as it is read: always Latin-1, '\' for '/', and escapes with
    // '%'.
    static QString readName(const QByteArray& name);
    // The name as QSettings writes it.
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
