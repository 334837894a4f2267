// Lists the files on a medium and follows changes, with MediaWatcher, DirectoryWatcher and
// RecursiveFileSearchWorkerThread in one event loop.
#include "MediumWatch.h"

#include "common/CommandLine.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace {

const QCommandLineOption& patternOption()
{
    static const QCommandLineOption option(
        {QStringLiteral("p"), QStringLiteral("pattern")},
        QStringLiteral("Only files whose name matches the wildcard PATTERN, ignoring case; may be "
                       "given several times. The default is every file."),
        QStringLiteral("PATTERN"));
    return option;
}

const QCommandLineOption& recursiveOption()
{
    static const QCommandLineOption option(
        {QStringLiteral("r"), QStringLiteral("recursive")},
        QStringLiteral("Include subdirectories, also those that are created later."));
    return option;
}

const QCommandLineOption& delayOption()
{
    static const QCommandLineOption option(
        QStringLiteral("delay"),
        QStringLiteral(
            "A burst of changes ends after MS milliseconds without a change (default: 500)."),
        QStringLiteral("MS"), QStringLiteral("500"));
    return option;
}

const QCommandLineOption& idleOption()
{
    static const QCommandLineOption option(
        QStringLiteral("idle"),
        QStringLiteral(
            "Exit after MS milliseconds without a burst (default: 3000; with --bursts: never)."),
        QStringLiteral("MS"), QStringLiteral("3000"));
    return option;
}

const QCommandLineOption& burstsOption()
{
    static const QCommandLineOption option(QStringLiteral("bursts"),
                                           QStringLiteral("Exit after N bursts of changes."),
                                           QStringLiteral("N"), QStringLiteral("0"));
    return option;
}

const QCommandLineOption& jsonOption()
{
    static const QCommandLineOption option(QStringLiteral("json"),
                                           QStringLiteral("Print one JSON object per line."));
    return option;
}

QString helpText(const QCommandLineParser& parser)
{
    return parser.helpText() +
           QStringLiteral("\n"
                          "Exit codes:\n"
                          "  0  normal exit, also after Ctrl-C, SIGTERM or SIGHUP\n"
                          "  2  wrong usage\n"
                          "  3  DIRECTORY is missing, is not a directory, or cannot be watched\n"
                          "  4  DIRECTORY was removed\n"
                          "  5  the output could not be written\n"
                          "\n"
                          "Example: copy a directory tree while the program watches.\n"
                          "  mkdir /tmp/medium\n"
                          "  watch-media --recursive --pattern '*.h' /tmp/medium &\n"
                          "  cp -r /usr/include/linux /tmp/medium; wait");
}

// Reads the number of an option. Prints an error and returns false if it is not a number.
bool readNumber(const QCommandLineParser& parser, const QCommandLineOption& option, int& number)
{
    if (!parser.isSet(option) || CommandLine::readPositive(parser.value(option), number)) {
        return true;
    }
    CommandLine::printUsageError(QStringLiteral("--%1 requires a number from 1 up, not '%2'")
                                     .arg(option.names().constLast(), parser.value(option)));
    return false;
}

// Reads all options, but not the directory.
bool readOptions(const QCommandLineParser& parser, WatchOptions& options)
{
    options.isJson = parser.isSet(jsonOption());
    options.isRecursive = parser.isSet(recursiveOption());
    options.patterns = parser.values(patternOption());
    if (options.patterns.isEmpty()) {
        options.patterns.append(QStringLiteral("*"));
    }
    if (parser.isSet(burstsOption())) {
        options.idleInMs = 0;
    }
    return readNumber(parser, delayOption(), options.delayInMs) &&
           readNumber(parser, idleOption(), options.idleInMs) &&
           readNumber(parser, burstsOption(), options.bursts);
}

// Prints an error and returns false if there is no such directory.
bool checkDirectory(const QString& directory)
{
    const QFileInfo info(directory);
    if (info.isDir()) {
        return true;
    }
    CommandLine::printError((info.exists() ? QStringLiteral("%1 is not a directory")
                                           : QStringLiteral("no such directory: %1"))
                                .arg(CommandLine::printable(directory)));
    return false;
}

int watch(const WatchOptions& options)
{
    MediumWatch mediumWatch(options);
    QObject::connect(&mediumWatch, &MediumWatch::finished, &QCoreApplication::exit);
    return mediumWatch.start() ? QCoreApplication::exec() : NoMedium;
}

int run()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "\nLists the files in DIRECTORY as on a medium that was just mounted, then shows which "
        "files\nappear and disappear. Changes are reported in bursts; hidden files are omitted. "
        "The medium\nmay be unmounted, and another one mounted, at any time."));
    parser.addOptions({patternOption(), recursiveOption(), delayOption(), idleOption(),
                       burstsOption(), jsonOption(), CommandLine::helpOption(),
                       CommandLine::versionOption()});
    parser.addPositionalArgument(QStringLiteral("DIRECTORY"),
                                 QStringLiteral("The directory to watch."));

    if (!parser.parse(QCoreApplication::arguments())) {
        CommandLine::printUsageError(parser.errorText());
        return WrongUsage;
    }
    if (parser.isSet(CommandLine::helpOption())) {
        CommandLine::print(helpText(parser));
        return Ended;
    }
    if (parser.isSet(CommandLine::versionOption())) {
        CommandLine::printVersion();
        return Ended;
    }
    WatchOptions options;
    if (!readOptions(parser, options)) {
        return WrongUsage;
    }
    if (parser.positionalArguments().size() != 1) {
        CommandLine::printUsageError(QStringLiteral("exactly one DIRECTORY is required"));
        return WrongUsage;
    }
    options.name = parser.positionalArguments().constFirst();
    options.directory = QDir::cleanPath(QDir().absoluteFilePath(options.name));
    return checkDirectory(options.name) ? watch(options) : NoMedium;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    CommandLine::flushBeforeWaiting();
    return CommandLine::end(run(), OutputLost);
}
