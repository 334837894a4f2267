#include "CommandLine.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace {

// The first error of standard output; later ones are its consequences.
int outputError = 0;

void recordOutputError()
{
    if (outputError == 0 && std::ferror(stdout) != 0) {
        outputError = errno;
    }
}

} // namespace

QString CommandLine::programName()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).fileName();
}

const QCommandLineOption& CommandLine::verboseOption()
{
    static const QCommandLineOption option(QStringLiteral("verbose"),
                                           QStringLiteral("Show the library's log lines too."));
    return option;
}

const QCommandLineOption& CommandLine::helpOption()
{
    static const QCommandLineOption option({QStringLiteral("h"), QStringLiteral("help")},
                                           QStringLiteral("Show this help."));
    return option;
}

const QCommandLineOption& CommandLine::versionOption()
{
    static const QCommandLineOption option({QStringLiteral("v"), QStringLiteral("version")},
                                           QStringLiteral("Show the version."));
    return option;
}

void CommandLine::printVersion()
{
    print(programName() + QStringLiteral(" " PROGRAM_VERSION));
}

QString CommandLine::printable(const QString& text)
{
    QString result;
    for (const QChar& character : text) {
        if (character.category() == QChar::Other_Control) {
            result += QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
        } else {
            result += character;
        }
    }
    return result;
}

void CommandLine::print(const QString& line)
{
    write((line + QLatin1Char('\n')).toUtf8());
}

void CommandLine::write(const QByteArray& bytes)
{
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    recordOutputError();
}

void CommandLine::flush()
{
    std::fflush(stdout);
    recordOutputError();
}

bool CommandLine::isColored()
{
    return isatty(STDOUT_FILENO) != 0 && qEnvironmentVariableIsEmpty("NO_COLOR") &&
           qgetenv("TERM") != "dumb";
}

void CommandLine::flushBeforeWaiting()
{
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     &CommandLine::flush);
}

int CommandLine::end(int exitCode, int lostOutput)
{
    flush();
    if (outputError == 0 || outputError == EPIPE) {
        return exitCode;
    }
    printError(
        QStringLiteral("cannot write standard output: %1").arg(qt_error_string(outputError)));
    return lostOutput;
}

void CommandLine::printError(const QString& error)
{
    flush(); // keeps the order if both streams have the same target
    std::fputs((programName() + QStringLiteral(": %1\n").arg(error)).toUtf8().constData(), stderr);
}

void CommandLine::printUsageError(const QString& error)
{
    printError(error);
    printError(QStringLiteral("try --help"));
}

bool CommandLine::readPositive(const QString& text, int& number)
{
    bool isNumber = false;
    number = text.toInt(&isNumber);
    return isNumber && number > 0;
}
