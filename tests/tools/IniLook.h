#ifndef TESTS_INILOOK_H
#define TESTS_INILOOK_H

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QVector>

/*
 * An INI text as people see it in an editor: each line is a comment, a section, a key with a value,
 * or none of these; a pair of quotes around a value is no part of it. Knows nothing of QSettings.
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
        QString section; // that the line is in, or begins
        QString name;    // of an entry's key; of another line all of it
        QString value;

        // The name for a look-up. [General] is known to be the top level.
        QString path() const;
    };

    explicit IniLook(const QByteArray& text);

    // The first line is number 1.
    int count() const { return m_lines.size(); }
    const Line& line(int number) const { return m_lines.at(number - 1); }

    // The text with one more line after a line.
    QByteArray withLineAfter(int number, const QByteArray& added) const;
    // The text with an empty line in a line's place; a byte order mark stays.
    QByteArray withoutLine(int number) const;

private:
    // Of each byte a character.
    void addLine(const QString& bytes);

    QList<QByteArray> m_bytes; // of the lines, as they are in the file
    QVector<Line> m_lines;
    QString m_section;
};

#endif
