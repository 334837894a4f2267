#include <QProcessHandler.h>
#include <TextFileParser.h>

#include <cstdio>

int main()
{
    QProcessHandler handler;
    handler.setWaitForFinishedTimeout(5000);
    const QString program = QStringLiteral("sort");
    handler.setStandardInputFile(QStringLiteral("os-release"));
    const int exitCode = handler.startProcess(program, QStringList{QStringLiteral("-r")});
    std::printf("exit code %d\n%s", exitCode, qPrintable(handler.getStandardOutput()));

    // Not there: -1, and a message.
    std::printf("exit code %d\n", handler.startProcess(QStringLiteral("no-such-program"), {}));

    TextFileParser osRelease(QStringLiteral("os-release"));
    const QString id = osRelease.match(QRegularExpression(QStringLiteral("\\bID=(\\w+)")));
    const QStringList keys =
        osRelease.multiMatch(QRegularExpression(QStringLiteral("(?m)^(\\w+)=")));
    std::printf("ID %s; keys %s\n", qPrintable(id), qPrintable(keys.join(QLatin1Char(' '))));
    return osRelease.hasError() ? 1 : 0;
}
