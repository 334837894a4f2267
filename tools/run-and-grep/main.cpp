// Runs a program, keeps its output in a file and matches regular expressions against it.
#include "ProgramRunner.h"

#include "common/BusyDisplay.h"
#include "common/CommandLine.h"
#include "common/LibraryMessages.h"
#include "common/WholeFile.h"

#include <TextFileParser.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtCore/QVector>

#include <sys/mman.h>

#include <cerrno>

namespace {

enum ExitCode
{
    Match = 0,
    NoMatch = 1,
    WrongUsage = 2,
    NotRun = 3,
    Crashed = 4,
    FileError = 5
};

// Shells add the number of the signal to this exit code.
constexpr int firstSignalCode = 128;

struct Job
{
    QVector<QRegularExpression> expressions;
    bool isFirstOnly = false;
    bool mustPassExitCode = false;
    int timeoutInMs = 30000;
    QStringList command; // empty: search the file
    QString file;        // with a command: the file for its output, or empty
};

const QCommandLineOption& expressionOption()
{
    static const QCommandLineOption option(
        {QStringLiteral("e"), QStringLiteral("expression")},
        QStringLiteral("Print what the regular EXPRESSION matches, or its first group if it has "
                       "one; may be given several times. ^ and $ match at line boundaries."),
        QStringLiteral("EXPRESSION"));
    return option;
}

const QCommandLineOption& firstOption()
{
    static const QCommandLineOption option(
        QStringLiteral("first"), QStringLiteral("Print only the first match of each expression."));
    return option;
}

const QCommandLineOption& timeoutOption()
{
    static const QCommandLineOption option(
        QStringLiteral("timeout"),
        QStringLiteral("Stop PROGRAM if it has not exited after MS milliseconds (default: 30000)."),
        QStringLiteral("MS"), QStringLiteral("30000"));
    return option;
}

const QCommandLineOption& outputOption()
{
    static const QCommandLineOption option(
        QStringLiteral("output"),
        QStringLiteral("Keep the output of PROGRAM in FILE, which is replaced atomically; - is "
                       "standard output."),
        QStringLiteral("FILE"));
    return option;
}

const QCommandLineOption& exitCodeOption()
{
    static const QCommandLineOption option(
        QStringLiteral("exit-code"),
        QStringLiteral("Exit with the exit code of PROGRAM, whether anything matches or not."));
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
                          "to standard output, followed by what it wrote to standard error. "
                          "Matches go to\n"
                          "standard output, everything else to standard error. Text "
                          "after a zero byte is not\n"
                          "searched.\n"
                          "\n"
                          "Ctrl-C, SIGTERM, SIGHUP and the time-out stop PROGRAM and the programs "
                          "that it has started in\n"
                          "its process group.\n"
                          "\n") +
           parser.helpText().section(QLatin1Char('\n'), 2) +
           QStringLiteral(
               "\n"
               "Exit codes:\n"
               "  0  something matched\n"
               "  1  nothing matched\n"
               "  2  wrong usage or an invalid expression\n"
               "  3  PROGRAM could not be started, or did not exit in time\n"
               "  4  PROGRAM crashed (its output is searched nevertheless)\n"
               "  5  a file could not be read or written, or the output could not be written\n"
               "After a signal: 128 plus its number.\n"
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
            CommandLine::printError(QStringLiteral("invalid expression '%1': %2 at character %3")
                                        .arg(pattern, expression.errorString())
                                        .arg(expression.patternErrorOffset()));
            return false;
        }
        job.expressions.append(expression);
    }
    if (job.expressions.isEmpty()) {
        CommandLine::printUsageError(QStringLiteral("an expression is required: -e EXPRESSION"));
    }
    return !job.expressions.isEmpty();
}

bool readTimeout(const QCommandLineParser& parser, Job& job)
{
    const QString text = parser.value(timeoutOption());
    const bool isNumber = CommandLine::readPositive(text, job.timeoutInMs);
    if (!isNumber) {
        CommandLine::printUsageError(
            QStringLiteral("--timeout requires a number from 1 up, not '%1'").arg(text));
    }
    return isNumber;
}

// Without a command, the only remaining argument is the file.
bool readFile(const QCommandLineParser& parser, Job& job)
{
    const QStringList arguments = parser.positionalArguments();
    const bool hasCommand = !job.command.isEmpty();
    if (arguments.size() != (hasCommand ? 0 : 1)) {
        CommandLine::printUsageError(
            QStringLiteral("requires either '-- PROGRAM [ARGUMENTS]' or exactly one FILE"));
        return false;
    }
    if (!hasCommand && (parser.isSet(outputOption()) || parser.isSet(timeoutOption()) ||
                        parser.isSet(exitCodeOption()))) {
        CommandLine::printUsageError(
            QStringLiteral("--output, --timeout and --exit-code require a PROGRAM"));
        return false;
    }
    job.file = hasCommand ? parser.value(outputOption()) : arguments.constFirst();
    return true;
}

// Prints each match as one line.
void printMatches(BusyDisplay& display, const QString& label, const QStringList& matches)
{
    for (QString match : matches) {
        display.print(label + match.replace(QLatin1Char('\n'), QStringLiteral("\\n")));
    }
}

// Prints the matches in the file at path and returns the exit code.
ExitCode grep(const Job& job, const QString& path, const QString& shownPath)
{
    const QString name = CommandLine::printable(shownPath);
    BusyDisplay display(QStringLiteral("reading %1").arg(name));
    TextFileParser parser(path);
    if (parser.hasError()) {
        const QString reason =
            QFileInfo::exists(path)
                ? parser.getLastError().section(QStringLiteral(" IO Error: "), -1)
                : QStringLiteral("no such file");
        display.printError(QStringLiteral("cannot read %1: %2").arg(name, reason));
        return FileError;
    }
    bool hasMatch = false;
    for (const QRegularExpression& expression : job.expressions) {
        display.setActivity(QStringLiteral("searching %1 for %2")
                                .arg(name, CommandLine::printable(expression.pattern())));
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

ExitCode grepFile(const Job& job)
{
    const bool isInput = job.file == QLatin1String("-");
    return grep(job, isInput ? QStringLiteral("/dev/stdin") : job.file,
                isInput ? QStringLiteral("standard input") : job.file);
}

// Searches a text in an in-memory file, which disappears with the process.
ExitCode grepText(const Job& job, const QByteArray& text)
{
    QFile file;
    const int descriptor = memfd_create("output", MFD_CLOEXEC);
    if (descriptor < 0 ||
        !file.open(descriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle) ||
        file.write(text) != text.size() || !file.flush()) {
        CommandLine::printError(
            QStringLiteral("cannot store the output: %1").arg(qt_error_string(errno)));
        return FileError;
    }
    return grep(job, QStringLiteral("/proc/self/fd/%1").arg(descriptor),
                QStringLiteral("the output"));
}

// Writes the output to the file of --output, if any. Returns false on an error.
bool keepOutput(const Job& job, const QByteArray& output)
{
    if (job.file.isEmpty()) {
        return true;
    }
    if (WholeFile::isStandardOutput(job.file)) {
        CommandLine::write(output);
        return true;
    }
    const QString error = WholeFile::replace(job.file, output);
    if (!error.isEmpty()) {
        CommandLine::printError(QStringLiteral("cannot write %1: %2").arg(job.file, error));
    }
    return error.isEmpty();
}

ProgramRunner::End runCommand(const Job& job, ProgramRunner& runner)
{
    const QString program = job.command.constFirst();
    const BusyDisplay display(QStringLiteral("running %1, for %2 s at most")
                                  .arg(CommandLine::printable(program))
                                  .arg(double(job.timeoutInMs) / 1000));
    return runner.run(program, job.command.mid(1), job.timeoutInMs);
}

void printStartError(const QString& program)
{
    const bool exists =
        QFileInfo::exists(program) || !QStandardPaths::findExecutable(program).isEmpty();
    CommandLine::printError(QStringLiteral("cannot start %1: %2")
                                .arg(program, exists ? QStringLiteral("not an executable program")
                                                     : QStringLiteral("no such program")));
}

int runAndGrep(const Job& job)
{
    const QString program = job.command.constFirst();
    ProgramRunner runner;
    switch (runCommand(job, runner)) {
    case ProgramRunner::NotStarted:
        printStartError(program);
        return NotRun;
    case ProgramRunner::TimedOut:
        CommandLine::printError(QStringLiteral("%1 did not exit within %2 ms and was stopped")
                                    .arg(program)
                                    .arg(job.timeoutInMs));
        return NotRun;
    case ProgramRunner::Interrupted:
        CommandLine::printError(QStringLiteral("interrupted; %1 was stopped").arg(program));
        return firstSignalCode + runner.signalNumber();
    case ProgramRunner::ByItself:
        break;
    }

    const QByteArray output = runner.takeOutput();
    if (!keepOutput(job, output)) {
        return FileError;
    }
    const ExitCode exitCode = grepText(job, output);
    if (runner.hasCrashed()) {
        CommandLine::printError(
            QStringLiteral("%1 crashed with signal %2").arg(program).arg(runner.exitCode()));
        return Crashed;
    }
    CommandLine::printError(
        QStringLiteral("%1 exited with code %2").arg(program).arg(runner.exitCode()));
    return job.mustPassExitCode ? runner.exitCode() : exitCode;
}

int run()
{
    QCommandLineParser parser;
    parser.addOptions({expressionOption(), firstOption(), timeoutOption(), outputOption(),
                       exitCodeOption(), CommandLine::verboseOption(), CommandLine::helpOption(),
                       CommandLine::versionOption()});
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("A text file; - is standard input."));
    parser.addPositionalArgument(
        QStringLiteral("PROGRAM"),
        QStringLiteral("A program, searched for in PATH. Its standard input is empty."));

    // Everything after the first "--" is the command.
    QStringList arguments = QCoreApplication::arguments();
    const int separator = arguments.indexOf(QStringLiteral("--"));
    Job job;
    if (separator >= 0) {
        job.command = arguments.mid(separator + 1);
        arguments = arguments.mid(0, separator);
    }
    if (!parser.parse(arguments)) {
        CommandLine::printUsageError(parser.errorText());
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
    job.mustPassExitCode = parser.isSet(exitCodeOption());
    LibraryMessages::capture(parser.isSet(CommandLine::verboseOption()));
    return job.command.isEmpty() ? grepFile(job) : runAndGrep(job);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return CommandLine::end(run(), FileError);
}
