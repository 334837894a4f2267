#ifndef TESTS_MESSAGETABLE_H
#define TESTS_MESSAGETABLE_H

#include "LogSource.h"

/*
 * The messages that a Markdown document lists: sections that are named as a class, in each a table
 * with the columns level, text, function, cause, what to do.
 */
class MessageTable
{
public:
    MessageTable(const QString& path, const QString& markdown);

    QVector<LogMessage> rows() const { return m_rows; }

    // What differs between the table and the messages, and what is wrong in the table itself: in
    // words that say what to do.
    QStringList differences(const QVector<LogMessage>& messages) const;

private:
    void readRow(const QString& className, const QString& line, const QString& place);

    const QString m_path;
    QVector<LogMessage> m_rows;
    QStringList m_problems;
};

#endif
