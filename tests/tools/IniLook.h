#ifndef TESTS_INILOOK_H
#define TESTS_INILOOK_H

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QVector>

/*
 * An INI text as it looks in an editor: each line is a comment, a section, a key with a value, or
 * none of these; a pair of quotes around a value is not part of it. Independent of QSettings.
 */
class IniLook
{
public:
    enum Kind
    {
        Nothing, // an empty line or a comment
        Section,
        Entry,
        Other
    };

    struct Line
    {
        Kind kind;
        QString section; // that contains the line or begins with it
        QString name;    // the key of an entry; the entire line if it is of the kind Other
        QString value;

        // The path for a look-up, for which [General] is the top level.
        QString path() const;
    };

    explicit IniLook(const QByteArray& text);

    // The first line is number 1.
    int count() const { return m_lines.size(); }
    const Line& line(int number) const { return m_lines.at(number - 1); }

    // The text with a line added after a line.
    QByteArray withLineAfter(int number, const QByteArray& added) const;
    // The text with a line replaced by an empty one; a byte order mark stays.
    QByteArray withoutLine(int number) const;

private:
    // bytes has one character for each byte.
    void addLine(const QString& bytes);

    QList<QByteArray> m_bytes; // of each line in the file
    QVector<Line> m_lines;
    QString m_section;
};

#endif
