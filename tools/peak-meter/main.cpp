// Shows the range of the values on standard input and keeps it between runs, with DragIndicator.
#include "ExitCode.h"
#include "PeakMeter.h"

#include "common/CommandLine.h"
#include "common/LibraryMessages.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QCommandLineOption& fileOption()
{
    static const QCommandLineOption option(
        {QStringLiteral("f"), QStringLiteral("file")},
        QStringLiteral("Continue from the records in FILE (JSON) and save every change to it. A "
                       "missing FILE is created."),
        QStringLiteral("FILE"));
    return option;
}

const QCommandLineOption& resetOption()
{
    static const QCommandLineOption option(
        QStringLiteral("reset"),
        QStringLiteral("First clear the record in FILE that starts at the last reset; the "
                       "permanent record is kept."));
    return option;
}

const QCommandLineOption& jsonOption()
{
    static const QCommandLineOption option(
        QStringLiteral("json"),
        QStringLiteral("Print one JSON object per line: each new extreme, and a summary."));
    return option;
}

QString helpText(const QCommandLineParser& parser)
{
    return parser.helpText() +
           QStringLiteral(
               "\n"
               "Numbers may have a decimal point and an exponent: 12, -3.5, 1e-6. Empty lines "
               "are\n"
               "skipped. Any other line is reported with its number and skipped, including nan, "
               "inf and\n"
               "lines of more than 4096 bytes.\n"
               "\n"
               "A value is shown after it has been saved. FILE is complete at any time; a run "
               "that is\n"
               "killed while it saves may leave a temporary file FILE.??????. While the program "
               "runs,\n"
               "FILE.lock keeps a second one from using FILE. A damaged FILE is never "
               "overwritten.\n"
               "\n"
               "Exit codes:\n"
               "  0  all lines were accepted until the end of the input, Ctrl-C, SIGTERM or "
               "SIGHUP\n"
               "  1  some lines were not numbers\n"
               "  2  wrong usage\n"
               "  3  FILE cannot be read, is damaged, or another peak-meter is using it\n"
               "  4  FILE cannot be written\n"
               "  5  standard input cannot be read\n"
               "  6  the output could not be written\n"
               "\n"
               "Examples:\n"
               "  tail -f temperatures.log | peak-meter --file peaks.json\n"
               "  while sleep 1; do cut -d' ' -f1 /proc/loadavg; done | peak-meter\n"
               "  peak-meter --file peaks.json --reset </dev/null");
}

// Prints an error and returns false if the options are inconsistent.
bool checkOptions(const QCommandLineParser& parser)
{
    QString error;
    if (!parser.positionalArguments().isEmpty()) {
        error = QStringLiteral("values come from standard input, not from an argument: '%1'")
                    .arg(CommandLine::printable(parser.positionalArguments().constFirst()));
    } else if (parser.isSet(fileOption()) && parser.value(fileOption()).isEmpty()) {
        error = QStringLiteral("--file requires a name");
    } else if (parser.isSet(resetOption()) && !parser.isSet(fileOption())) {
        error = QStringLiteral("--reset requires --file");
    }
    if (!error.isEmpty()) {
        CommandLine::printUsageError(error);
    }
    return error.isEmpty();
}

int measure(const QCommandLineParser& parser)
{
    PeakMeter meter(parser.value(fileOption()), parser.isSet(jsonOption()));
    const ExitCode exitCode = meter.restore(parser.isSet(resetOption()));
    if (exitCode != AllTaken) {
        return exitCode;
    }
    QObject::connect(&meter, &PeakMeter::finished, &QCoreApplication::exit);
    meter.start();
    return QCoreApplication::exec();
}

int run(bool hasInput)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "\nReads numbers from standard input, one per line, and shows the minimum and the "
        "maximum, on a\nterminal as a bar in which the last value is marked."));
    parser.addOptions({fileOption(), resetOption(), jsonOption(), CommandLine::verboseOption(),
                       CommandLine::helpOption(), CommandLine::versionOption()});

    if (!parser.parse(QCoreApplication::arguments())) {
        CommandLine::printUsageError(parser.errorText());
        return WrongUsage;
    }
    if (parser.isSet(CommandLine::helpOption())) {
        CommandLine::print(helpText(parser));
        return AllTaken;
    }
    if (parser.isSet(CommandLine::versionOption())) {
        CommandLine::printVersion();
        return AllTaken;
    }
    if (!checkOptions(parser)) {
        return WrongUsage;
    }
    if (!hasInput) {
        CommandLine::printError(QStringLiteral("cannot read standard input: it is closed"));
        return InputError;
    }
    LibraryMessages::capture(parser.isSet(CommandLine::verboseOption()));
    return measure(parser);
}

} // namespace

int main(int argc, char* argv[])
{
    // QCoreApplication would reuse a closed descriptor.
    const bool hasInput = fcntl(STDIN_FILENO, F_GETFD) != -1;
    const QCoreApplication application(argc, argv);
    CommandLine::flushBeforeWaiting();
    // Without TZ, the C library checks the file of the time zone 16 times for each value with a
    // date.
    if (!qEnvironmentVariableIsSet("TZ")) {
        qputenv("TZ", ":/etc/localtime");
    }
    return CommandLine::end(run(hasInput), OutputLost);
}
