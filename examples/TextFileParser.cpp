// Finds values in a text file with regular expressions.

#include <TextFileParser.h>

#include <cstdio>

int main()
{
    //! [match]
    TextFileParser osRelease(QStringLiteral("os-release"));
    // The result is the text of the group in parentheses, not the entire match.
    const QString id = osRelease.match(QRegularExpression(QStringLiteral("\\bID=(\\w+)")));
    const QStringList keys =
        osRelease.multiMatch(QRegularExpression(QStringLiteral("(?m)^(\\w+)=")));
    std::printf("ID %s; keys %s\n", qPrintable(id), qPrintable(keys.join(QLatin1Char(' '))));
    //! [match]

    // No match is not an error; an invalid expression is.
    osRelease.match(QRegularExpression(QStringLiteral("HOME=(.*)")));
    std::printf("error: %s\n", osRelease.hasError() ? "yes" : "no");
    osRelease.match(QRegularExpression(QStringLiteral("ID=(")));
    std::printf("error: %s\n", qPrintable(osRelease.getLastError()));
    // The error remains until it is cleared.
    osRelease.clearLastError();
    return osRelease.hasError() ? 1 : 0;
}
