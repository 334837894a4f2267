#include "IgnoreComments.h"

#include "IniReading.h"
#include "IniRules.h"
#include "NameRules.h"

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace {

const int entireFile = 0;

// Returns the end of the line that begins at a position.
int endOfLine(const QByteArray& text, int begin)
{
    int end = begin;
    while (end < text.size() && !IniLines::isLineEnd(text.at(end))) {
        ++end;
    }
    return end;
}

bool isComment(const QByteArray& line)
{
    return line.startsWith(';') || line.startsWith('#');
}

} // namespace

IgnoreComments::IgnoreComments(const QByteArray& text, FindingCollector& findings)
{
    const LineNumbers numbers(text);
    int end = 0;
    for (int begin = 0; begin < text.size(); begin = end + 1) {
        end = endOfLine(text, begin);
        const QByteArray line = text.mid(begin, end - begin).trimmed();
        const int number = numbers.at(begin);
        if (isComment(line)) {
            addComment(line.mid(1).trimmed(), {begin, number, number, false}, findings);
        } else if (!line.isEmpty()) {
            m_rules.append({number, m_pendingRules});
            m_pendingRules.clear();
        }
    }
}

void IgnoreComments::addComment(const QByteArray& comment, const Extent& extent,
                                FindingCollector& findings)
{
    static const QRegularExpression separators(QStringLiteral("[\\s,]+"));

    const QByteArray mark = "ini-lint:";
    if (!comment.startsWith(mark)) {
        return;
    }
    QStringList words =
        QString::fromLatin1(comment.mid(mark.size())).split(separators, Qt::SkipEmptyParts);
    const QString command = words.isEmpty() ? QString() : words.takeFirst();
    const bool isForFile = command == QStringLiteral("ignore-file");
    if ((!isForFile && command != QStringLiteral("ignore")) || words.isEmpty()) {
        findings.add(extent, Severity::Warning, "ignore-comment",
                     QStringLiteral("this must be 'ini-lint: ignore RULE...' or 'ini-lint: "
                                    "ignore-file RULE...'"));
    }
    for (const QString& rule : qAsConst(words)) {
        if (!IniRules::contains(rule)) {
            findings.add(extent, Severity::Warning, "ignore-comment",
                         QStringLiteral("unknown rule %1").arg(NameRules::quoted(rule)));
        }
    }
    if (isForFile) {
        m_rules.append({entireFile, words});
    } else {
        m_pendingRules += words;
    }
}

Findings IgnoreComments::apply(const Findings& findings) const
{
    Findings result;
    std::copy_if(findings.cbegin(), findings.cend(), std::back_inserter(result),
                 [this](const Finding& finding) { return !isIgnored(finding); });
    return result;
}

bool IgnoreComments::isIgnored(const Finding& finding) const
{
    return std::any_of(m_rules.cbegin(), m_rules.cend(), [&finding](const Rules& rules) {
        return (rules.line == entireFile || rules.line == finding.firstLine) &&
               rules.names.contains(finding.rule);
    });
}
