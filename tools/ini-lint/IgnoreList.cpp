#include "IgnoreList.h"

#include "IniRules.h"

#include <QtCore/QFile>

#include <algorithm>

namespace {

const QString everyRule = QStringLiteral("*");

// Whether a pattern matches a path, or the part after one of its slashes.
bool matches(const QRegularExpression& pattern, const QString& path)
{
    for (int begin = 0; begin >= 0;) {
        if (pattern.match(path.mid(begin)).hasMatch()) {
            return true;
        }
        const int slash = path.indexOf(QLatin1Char('/'), begin);
        begin = slash < 0 ? -1 : slash + 1;
    }
    return false;
}

} // namespace

QString IgnoreList::read(const QString& listPath)
{
    QFile file(listPath);
    if (!file.open(QIODevice::ReadOnly)) {
        return listPath + QStringLiteral(": ") + file.errorString();
    }
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString error = addLine(lines.at(i).trimmed());
        if (!error.isEmpty()) {
            return QStringLiteral("%1:%2: %3").arg(listPath, QString::number(i + 1), error);
        }
    }
    return QString();
}

QString IgnoreList::addLine(const QString& line)
{
    if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) {
        return QString();
    }
    static const QRegularExpression parts(QStringLiteral("^(\\S+)\\s+(.+)$"));
    const QRegularExpressionMatch match = parts.match(line);
    if (!match.hasMatch()) {
        return QStringLiteral("this must be RULE PATTERN: '%1'").arg(line);
    }
    const QString rule = match.captured(1);
    if (rule != everyRule && !IniRules::contains(rule)) {
        return QStringLiteral("unknown rule '%1'").arg(rule);
    }
    const QRegularExpression pattern(
        QRegularExpression::wildcardToRegularExpression(match.captured(2)));
    if (!pattern.isValid()) {
        return QStringLiteral("invalid pattern: '%1'").arg(match.captured(2));
    }
    m_entries.append({rule, pattern});
    return QString();
}

bool IgnoreList::isIgnored(const QString& filePath, const QString& rule) const
{
    return std::any_of(m_entries.cbegin(), m_entries.cend(), [&](const Entry& entry) {
        return (entry.rule == everyRule || entry.rule == rule) && matches(entry.pattern, filePath);
    });
}
