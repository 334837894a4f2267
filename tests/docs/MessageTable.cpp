#include "MessageTable.h"

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace {

bool isSameText(const LogMessage& a, const LogMessage& b)
{
    return a.className == b.className && a.text == b.text;
}

bool isSame(const LogMessage& a, const LogMessage& b)
{
    return isSameText(a, b) && a.level == b.level;
}

QString description(const LogMessage& message)
{
    return QStringLiteral("%1, %2: %3").arg(message.className, message.level, message.text);
}

QString sorted(const QSet<QString>& functions)
{
    QStringList names = functions.values();
    names.sort();
    return names.join(QStringLiteral(", "));
}

// Each message once, with all functions that make it.
QVector<LogMessage> merged(const QVector<LogMessage>& messages)
{
    QVector<LogMessage> result;
    for (const LogMessage& message : messages) {
        const auto found =
            std::find_if(result.begin(), result.end(),
                         [&message](const LogMessage& other) { return isSame(message, other); });
        if (found == result.end()) {
            result.append(message);
        } else {
            found->functions += message.functions;
        }
    }
    return result;
}

} // namespace

MessageTable::MessageTable(const QString& path, const QString& markdown) : m_path(path)
{
    static const QRegularExpression heading(QStringLiteral("^## (.*)$"));
    static const QRegularExpression name(QStringLiteral("^\\w+$"));
    static const QRegularExpression tableHead(
        QStringLiteral("^\\| Level \\| Text \\| Function \\| Cause \\| What to do \\|$"));
    static const QRegularExpression rule(QStringLiteral("^\\|(?:-+\\|)+$"));
    QString className;
    int lineNumber = 0;
    for (const QString& line : markdown.split(QLatin1Char('\n'))) {
        ++lineNumber;
        const QRegularExpressionMatch section = heading.match(line);
        if (section.hasMatch()) {
            className =
                name.match(section.captured(1)).hasMatch() ? section.captured(1) : QString();
        }
        const bool isRow = !className.isEmpty() && line.startsWith(QLatin1Char('|')) &&
                           !tableHead.match(line).hasMatch() && !rule.match(line).hasMatch();
        if (isRow) {
            readRow(className, line, QStringLiteral("%1:%2").arg(m_path).arg(lineNumber));
        }
    }
}

void MessageTable::readRow(const QString& className, const QString& line, const QString& place)
{
    static const QRegularExpression row(
        QStringLiteral("^\\| (\\w+) \\| `([^`|]+)` \\| ((?:`\\w+`(?:, )?)+) \\| ([^|]*[^| ]) \\| "
                       "([^|]*[^| ]) \\|$"));
    static const QRegularExpression placeholder(QStringLiteral("\"<[^<>]+>\"|<[^<>]+>"));
    const QRegularExpressionMatch match = row.match(line);
    if (!match.hasMatch()) {
        m_problems.append(QStringLiteral("%1: a row has the form | level | `text` | `function`, "
                                         "`function` | cause | what to do |")
                              .arg(place));
        return;
    }
    LogMessage message;
    message.className = className;
    message.level = match.captured(1);
    message.text = match.captured(2).replace(placeholder, QStringLiteral("<>"));
    for (const QString& function : match.captured(3).split(QStringLiteral(", "))) {
        message.functions.insert(QString(function).remove(QLatin1Char('`')));
    }
    message.place = place;
    m_rows.append(message);
}

QStringList MessageTable::differences(const QVector<LogMessage>& messages) const
{
    QStringList differences = m_problems;
    const QVector<LogMessage> expected = merged(messages);
    for (const LogMessage& message : expected) {
        QVector<LogMessage> found;
        std::copy_if(m_rows.begin(), m_rows.end(), std::back_inserter(found),
                     [&message](const LogMessage& row) { return isSame(row, message); });
        if (found.isEmpty()) {
            differences.append(
                QStringLiteral("%1: no row of %2 lists this message, made in %3: add one under "
                               "\"## %4\", or correct the one it had. %5")
                    .arg(message.place, m_path, sorted(message.functions), message.className,
                         description(message)));
        } else if (found.size() > 1) {
            differences.append(
                QStringLiteral("%1: a second row for a message that %2 lists: drop one. %3")
                    .arg(found.at(1).place, found.at(0).place, description(message)));
        } else if (found.first().functions != message.functions) {
            differences.append(
                QStringLiteral("%1: the functions that make this message are %2, not %3. %4")
                    .arg(found.first().place, sorted(message.functions),
                         sorted(found.first().functions), description(message)));
        }
    }
    for (const LogMessage& row : m_rows) {
        const auto same = [&row](const LogMessage& message) { return isSame(row, message); };
        const auto sameText = [&row](const LogMessage& message) {
            return isSameText(row, message);
        };
        if (std::any_of(expected.begin(), expected.end(), same)) {
            continue;
        }
        const auto other = std::find_if(expected.begin(), expected.end(), sameText);
        differences.append(
            other == expected.end()
                ? QStringLiteral("%1: no source makes this message: correct the row as the source "
                                 "has it, or drop it. %2")
                      .arg(row.place, description(row))
                : QStringLiteral("%1: the level of this message is %2: correct the row. %3")
                      .arg(row.place, other->level, description(row)));
    }
    return differences;
}
