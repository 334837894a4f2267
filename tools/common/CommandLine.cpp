#include "CommandLine.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

#include <cstdio>

namespace {

void writeLine(FILE* stream, const QString& line)
{
    std::fputs((line + QLatin1Char('\n')).toUtf8().constData(), stream);
    std::fflush(stream);
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
    writeLine(stdout, line);
}

void CommandLine::complain(const QString& trouble)
{
    writeLine(stderr, programName() + QStringLiteral(": ") + trouble);
}

void CommandLine::complainOfUsage(const QString& trouble)
{
    complain(trouble);
    complain(QStringLiteral("try --help"));
}

bool CommandLine::readPositive(const QString& text, int& number)
{
    bool isNumber = false;
    number = text.toInt(&isNumber);
    return isNumber && number > 0;
}
