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

void NameRules::checkSpelling(int line, const QByteArray& name, Findings& findings)
{
    const QString read = IniReading::readName(name);
    if (isUtf8BeyondAscii(name)) {
        findings.append({line, QStringLiteral("encoding"),
                         QStringLiteral("%1 is read as %2: names are Latin-1 whatever the codec")
                             .arg(quoted(name), quoted(read))});
    }
    const QString unescaped =
        QString::fromLatin1(name).replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (read != unescaped && IniReading::writtenName(read) != name) {
        findings.append({line, QStringLiteral("name-escape"),
                         QStringLiteral("%1 is read as %2: '%' begins the number of a character")
                             .arg(quoted(name), quoted(read))});
    }
}

void NameRules::checkExtent(const Extent& extent, Findings& findings)
{
    const QString rule = QStringLiteral("multi-line");
    if (extent.isQuoteOpen) {
        findings.append({extent.first, rule,
                         QStringLiteral("the quote is not closed: everything up to the end of the "
                                        "file belongs to this line")});
    } else if (extent.last > extent.first) {
        findings.append({extent.first, rule,
                         QStringLiteral("everything up to line %1 belongs to this line: a quote or "
                                        "a backslash takes the line's end in")
                             .arg(extent.last)});
    }
}
