#include "NameRules.h"

#include "IniReading.h"

#include "common/CommandLine.h"

#include <QtCore/QTextCodec>

#include <algorithm>

QString NameRules::quoted(const QString& text)
{
    constexpr int mostCharacters = 60;

    const QString beginning =
        text.size() > mostCharacters ? text.left(mostCharacters) + QStringLiteral("...") : text;
    return QLatin1Char('\'') + CommandLine::printable(beginning) + QLatin1Char('\'');
}

QString NameRules::quoted(const QByteArray& bytes)
{
    return quoted(isUtf8BeyondAscii(bytes) ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes));
}

bool NameRules::isAscii(const QByteArray& bytes)
{
    return std::all_of(bytes.cbegin(), bytes.cend(), [](char byte) { return quint8(byte) < 0x80; });
}

bool NameRules::isUtf8BeyondAscii(const QByteArray& bytes)
{
    if (isAscii(bytes)) {
        return false;
    }
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

bool NameRules::isUnreachable(const QString& path)
{
    const QLatin1Char separator('/');
    return path.isEmpty() || path.startsWith(separator) || path.endsWith(separator) ||
           path.contains(QStringLiteral("//"));
}

void NameRules::checkSpelling(const Extent& extent, const QByteArray& name,
                              FindingCollector& findings)
{
    const QString read = IniReading::readName(name);
    if (isUtf8BeyondAscii(name)) {
        findings.add(extent, Severity::Error, "encoding",
                     QStringLiteral("%1 is read as %2: names are Latin-1 with any codec")
                         .arg(quoted(name), quoted(read)));
    }
    const QString unescaped =
        QString::fromLatin1(name).replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (read != unescaped) {
        const bool isWrittenByQt = IniReading::writtenName(read) == name;
        findings.add(extent, isWrittenByQt ? Severity::Warning : Severity::Error, "name-escape",
                     QStringLiteral("%1 is read as %2: '%' begins a character code")
                         .arg(quoted(name), quoted(read)));
    }
}

void NameRules::checkExtent(const Extent& extent, FindingCollector& findings)
{
    if (extent.isQuoteOpen) {
        findings.add(extent, Severity::Error, "multi-line",
                     QStringLiteral("the quote is not closed: everything up to the end of the "
                                    "file belongs to this line"));
    } else if (extent.last > extent.first) {
        findings.add(extent, Severity::Error, "multi-line",
                     QStringLiteral("everything up to line %1 belongs to this line: a quote or a "
                                    "backslash includes the line ending")
                         .arg(extent.last));
    }
}

void NameRules::checkCommentExtent(const Extent& extent, const QByteArray& bytes,
                                   FindingCollector& findings)
{
    QByteArray text = bytes;
    const QList<QByteArray> lines = text.replace('\r', '\n').split('\n');
    const bool isHarmless = std::all_of(lines.cbegin(), lines.cend(), [](const QByteArray& line) {
        const QByteArray trimmed = line.trimmed();
        return trimmed.isEmpty() || trimmed.startsWith('#') || trimmed.startsWith(';');
    });
    if (!isHarmless) {
        checkExtent(extent, findings);
    }
}
