// Runs a command, keeps its output in a file and matches regular expressions over it:
// QProcessHandler and TextFileParser at work.
#include "common/BusyDisplay.h"
#include "common/CommandLine.h"
#include "common/LibraryMessages.h"
#include "common/TemporaryPath.h"
#include "common/WholeFile.h"

#include <QProcessHandler.h>
#include <TextFileParser.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtCore/QVector>

namespace {

enum ExitCode
{
    Match = 0,
    NoMatch = 1,
    WrongUsage = 2,
    NotRun = 3,
    Crashed = 4,
    FileTrouble = 5
};

struct Job
{
    QVector<QRegularExpression> expressions;
    bool isFirstOnly = false;
    int timeoutInMs = 30000;
    QStringList command; // empty: match over file
    QString file;        // with a command: where its output is kept; empty: nowhere for long
};

const QCommandLineOption& expressionOption()
{
    static const QCommandLineOption option(
        {QStringLiteral("e"), QStringLiteral("expression")},
        QStringLiteral("Print what the regular EXPRESSION matches, or its first group if it has "
                       "one; may be given several times. ^ and $ stand for the ends of a line."),
        QStringLiteral("EXPRESSION"));
    return option;
}

const QCommandLineOption& firstOption()
{
    static const QCommandLineOption option(
        QStringLiteral("first"), QStringLiteral("Only the first match of each expression."));
    return option;
}

const QCommandLineOption& timeoutOption()
{
    static const QCommandLineOption option(
        QStringLiteral("timeout"),
        QStringLiteral("Stop PROGRAM when it has not ended after MS milliseconds (30000)."),
        QStringLiteral("MS"), QStringLiteral("30000"));
    return option;
}

const QCommandLineOption& outputOption()
{
    static const QCommandLineOption option(
        QStringLiteral("output"),
        QStringLiteral("Keep the output of PROGRAM in FILE, which is replaced as a whole."),
        QStringLiteral("FILE"));
    return option;
}

QString helpText(const QCommandLineParser& parser)
{
    return QStringLiteral("Usage: run-and-grep [options] -e EXPRESSION... -- PROGRAM [ARGUMENTS]\n"
                          "       run-and-grep [options] -e EXPRESSION... FILE\n"
                          "\n"
                          "Runs PROGRAM and prints what the expressions match in its output, or "
                          "in FILE: one match\n"
                          "per line, after the expression if there are several. The output is "
                          "what PROGRAM wrote\n"
                          "on standard output, followed by what it wrote on standard error. "
                          "Matches go to\n"
                          "standard output, everything else to standard error.\n"
                          "\n") +
           parser.helpText().section(QLatin1Char('\n'), 2) +
           QStringLiteral("\n"
                          "Exit codes:\n"
                          "  0  something matched\n"
                          "  1  nothing matched\n"
                          "  2  wrong usage or an invalid expression\n"
                          "  3  PROGRAM could not be started, or did not end in time\n"
                          "  4  PROGRAM crashed (what it wrote is matched nevertheless)\n"
                          "  5  a file could not be read or written, or the output not be written\n"
                          "\n"
                          "Examples:\n"
                          "  run-and-grep -e 'inet ([0-9.]+)' -- ip address\n"
                          "  run-and-grep --first -e '^ID=(.*)' -e '^VERSION_ID=(.*)' "
                          "/etc/os-release");
}

bool readExpressions(const QCommandLineParser& parser, Job& job)
{
    const QStringList patterns = parser.values(expressionOption());
    for (const QString& pattern : patterns) {
        const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
        if (!expression.isValid()) {
            CommandLine::complain(QStringLiteral("invalid expression '%1': %2 at character %3")
                                      .arg(pattern, expression.errorString())
                                      .arg(expression.patternErrorOffset()));
            return false;
        }
        job.expressions.append(expression);
    }
    if (job.expressions.isEmpty()) {
        CommandLine::complainOfUsage(QStringLiteral("an expression is needed: -e EXPRESSION"));
    }
    return !job.expressions.isEmpty();
}

bool readTimeout(const QCommandLineParser& parser, Job& job)
{
    const QString text = parser.value(timeoutOption());
    const bool isNumber = CommandLine::readPositive(text, job.timeoutInMs);
    if (!isNumber) {
        CommandLine::complainOfUsage(
            QStringLiteral("--timeout needs a number from 1 upwards, not '%1'").arg(text));
    }
    return isNumber;
}

// Without a command the one argument that remains is the file.
bool readFile(const QCommandLineParser& parser, Job& job)
{
    const QStringList arguments = parser.positionalArguments();
    const bool hasCommand = !job.command.isEmpty();
    if (arguments.size() != (hasCommand ? 0 : 1)) {
        CommandLine::complainOfUsage(
            QStringLiteral("needs either '-- PROGRAM [ARGUMENTS]' or exactly one FILE"));
        return false;
    }
    if (!hasCommand && (parser.isSet(outputOption()) || parser.isSet(timeoutOption()))) {
        CommandLine::complainOfUsage(QStringLiteral("--output and --timeout need a PROGRAM"));
        return false;
    }
    job.file = hasCommand ? parser.value(outputOption()) : arguments.constFirst();
    return true;
}

// One line each, whatever they hold.
void printMatches(BusyDisplay& display, const QString& label, const QStringList& matches)
{
    for (QString match : matches) {
        display.print(label + match.replace(QLatin1Char('\n'), QStringLiteral("\\n")));
    }
}

// Prints the matches in the file at path; tells what that means for the exit code.
ExitCode grep(const Job& job, const QString& path)
{
    BusyDisplay display(QStringLiteral("reading %1").arg(CommandLine::printable(path)));
    TextFileParser parser(path);
    if (parser.hasError()) {
        const QString reason =
            QFileInfo::exists(path)
                ? parser.getLastError().section(QStringLiteral(" IO Error: "), -1)
                : QStringLiteral("no such file");
        display.complain(QStringLiteral("cannot read %1: %2").arg(path, reason));
        return FileTrouble;
    }
    bool hasMatch = false;
    for (const QRegularExpression& expression : job.expressions) {
        display.setActivity(
            QStringLiteral("searching %1 for %2")
                .arg(CommandLine::printable(path), CommandLine::printable(expression.pattern())));
        QStringList matches = parser.multiMatch(expression);
        if (job.isFirstOnly) {
            matches = matches.mid(0, 1);
        }
        const bool isOneOfSeveral = job.expressions.size() > 1;
        printMatches(display,
                     isOneOfSeveral ? expression.pattern() + QStringLiteral(": ") : QString(),
                     matches);
        hasMatch |= !matches.isEmpty();
    }
    return hasMatch ? Match : NoMatch;
}

// Writes the file as a whole or not at all.
bool writeFile(const QString& path, const QString& content)
{
    const QString trouble = WholeFile::replace(path, content.toUtf8());
    if (!trouble.isEmpty()) {
        CommandLine::complain(QStringLiteral("cannot write %1: %2").arg(path, trouble));
    }
    return trouble.isEmpty();
}

QString joinedOutput(const QProcessHandler& handler)
{
    QString output = handler.getStandardOutput();
    const QString errors = handler.getStandardError();
    if (!output.isEmpty() && !errors.isEmpty() && !output.endsWith(QLatin1Char('\n'))) {
        output += QLatin1Char('\n');
    }
    return output + errors;
}

// Runs the command; gives its exit code.
int runCommand(const Job& job, QProcessHandler& handler)
{
    const QString program = job.command.constFirst();
    const BusyDisplay display(QStringLiteral("running %1, for %2 s at most")
                                  .arg(CommandLine::printable(program))
                                  .arg(double(job.timeoutInMs) / 1000));
    return handler.startProcess(program, job.command.mid(1));
}

ExitCode complainOfNotRun(const Job& job)
{
    // The same -1 comes for both; the library's warning tells them apart.
    const QString program = job.command.constFirst();
    if (LibraryMessages::anyStartsWith(QStringLiteral("Timeout from command"))) {
        CommandLine::complain(QStringLiteral("%1 did not end within %2 ms and was stopped")
                                  .arg(program)
                                  .arg(job.timeoutInMs));
    } else if (QFileInfo::exists(program) || !QStandardPaths::findExecutable(program).isEmpty()) {
        CommandLine::complain(
            QStringLiteral("cannot start %1: not an executable program").arg(program));
    } else {
        CommandLine::complain(QStringLiteral("cannot start %1: no such program").arg(program));
    }
    return NotRun;
}

ExitCode runAndGrep(const Job& job)
{
    const QString program = job.command.constFirst();
    QProcessHandler handler;
    handler.setWaitForFinishedTimeout(job.timeoutInMs);
    // Nobody types; a program that reads should not wait for it.
    handler.setStandardInputFile(QProcess::nullDevice());
    const int programExitCode = runCommand(job, handler);
    if (programExitCode == -1) {
        return complainOfNotRun(job);
    }

    const QTemporaryDir temporaryFolder(TemporaryPath::pattern());
    if (job.file.isEmpty() && !temporaryFolder.isValid()) {
        CommandLine::complain(QStringLiteral("cannot make a temporary folder: %1")
                                  .arg(temporaryFolder.errorString()));
        return FileTrouble;
    }
    const QString file =
        job.file.isEmpty() ? temporaryFolder.filePath(QStringLiteral("output")) : job.file;
    if (!writeFile(file, joinedOutput(handler))) {
        return FileTrouble;
    }
    const ExitCode exitCode = grep(job, file);
    if (handler.getLastExitStatus() == QProcess::CrashExit) {
        CommandLine::complain(
            QStringLiteral("%1 crashed with signal %2").arg(program).arg(programExitCode));
        return Crashed;
    }
    CommandLine::complain(
        QStringLiteral("%1 ended with exit code %2").arg(program).arg(programExitCode));
    return exitCode;
}

int run()
{
    QCommandLineParser parser;
    parser.addOptions({expressionOption(), firstOption(), timeoutOption(), outputOption(),
                       CommandLine::verboseOption(), CommandLine::helpOption(),
                       CommandLine::versionOption()});
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("A text file."));
    parser.addPositionalArgument(
        QStringLiteral("PROGRAM"),
        QStringLiteral("A program, looked for in PATH. It reads nothing on "
                       "its standard input."));

    // What follows the first "--" is the command, whatever it looks like.
    QStringList arguments = QCoreApplication::arguments();
    const int separator = arguments.indexOf(QStringLiteral("--"));
    Job job;
    if (separator >= 0) {
        job.command = arguments.mid(separator + 1);
        arguments = arguments.mid(0, separator);
    }
    if (!parser.parse(arguments)) {
        CommandLine::complainOfUsage(parser.errorText());
        return WrongUsage;
    }
    if (parser.isSet(CommandLine::helpOption())) {
        CommandLine::print(helpText(parser));
        return Match;
    }
    if (parser.isSet(CommandLine::versionOption())) {
        CommandLine::printVersion();
        return Match;
    }
    if (!readExpressions(parser, job) || !readTimeout(parser, job) || !readFile(parser, job)) {
        return WrongUsage;
    }
    job.isFirstOnly = parser.isSet(firstOption());
    LibraryMessages::take(parser.isSet(CommandLine::verboseOption()));
    return job.command.isEmpty() ? grep(job, job.file) : runAndGrep(job);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return CommandLine::end(run(), FileTrouble);
}
