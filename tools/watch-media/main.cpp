// Lists the files on a medium and follows what is copied there: MediaWatcher, DirectoryWatcher and
// RecursiveFileSearchWorkerThread at work in one event loop.
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
        QStringLiteral("Only files whose name fits the wildcard PATTERN, in any case; may be given "
                       "several times. Without it every file counts."),
        QStringLiteral("PATTERN"));
    return option;
}

const QCommandLineOption& recursiveOption()
{
    static const QCommandLineOption option(
        {QStringLiteral("r"), QStringLiteral("recursive")},
        QStringLiteral("The sub-folders too, also those that come later."));
    return option;
}

const QCommandLineOption& delayOption()
{
    static const QCommandLineOption option(
        QStringLiteral("delay"),
        QStringLiteral("A burst of changes is over after MS milliseconds without one (500)."),
        QStringLiteral("MS"), QStringLiteral("500"));
    return option;
}

const QCommandLineOption& idleOption()
{
    static const QCommandLineOption option(
        QStringLiteral("idle"),
        QStringLiteral("End after MS milliseconds without a burst (3000; with --bursts: never)."),
        QStringLiteral("MS"), QStringLiteral("3000"));
    return option;
}

const QCommandLineOption& burstsOption()
{
    static const QCommandLineOption option(QStringLiteral("bursts"),
                                           QStringLiteral("End after N bursts of changes."),
                                           QStringLiteral("N"), QStringLiteral("0"));
    return option;
}

const QCommandLineOption& jsonOption()
{
    static const QCommandLineOption option(
        QStringLiteral("json"), QStringLiteral("Print one JSON object per line, for scripts."));
    return option;
}

QString helpText(const QCommandLineParser& parser)
{
    return parser.helpText() +
           QStringLiteral("\n"
                          "Exit codes:\n"
                          "  0  ended by itself, or by Ctrl-C, SIGTERM or SIGHUP\n"
                          "  2  wrong usage\n"
                          "  3  FOLDER is missing, is no folder, or cannot be watched\n"
                          "  4  FOLDER was taken away\n"
                          "  5  the output could not be written\n"
                          "\n"
                          "Example: a tree is copied in while the program watches.\n"
                          "  mkdir /tmp/medium\n"
                          "  watch-media --recursive --pattern '*.h' /tmp/medium &\n"
                          "  cp -r /usr/include/linux /tmp/medium; wait");
}

// Reads the number of an option; complains and gives false when it is none.
bool readNumber(const QCommandLineParser& parser, const QCommandLineOption& option, int& number)
{
    if (!parser.isSet(option) || CommandLine::readPositive(parser.value(option), number)) {
        return true;
    }
    CommandLine::complainOfUsage(QStringLiteral("--%1 needs a number from 1 upwards, not '%2'")
                                     .arg(option.names().constLast(), parser.value(option)));
    return false;
}

// Reads everything but the folder.
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

// Complains and gives false when there is no such folder.
bool checkFolder(const QString& folder)
{
    const QFileInfo info(folder);
    if (info.isDir()) {
        return true;
    }
    CommandLine::complain((info.exists() ? QStringLiteral("%1 is not a folder")
                                         : QStringLiteral("no such folder: %1"))
                              .arg(CommandLine::printable(folder)));
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
        "\nLists the files in FOLDER as on a medium that was just mounted, then shows "
        "what comes\nand goes. Changes are reported in bursts; hidden files are left "
        "out. A\nmedium may be unmounted, and another one mounted, at any time."));
    parser.addOptions({patternOption(), recursiveOption(), delayOption(), idleOption(),
                       burstsOption(), jsonOption(), CommandLine::helpOption(),
                       CommandLine::versionOption()});
    parser.addPositionalArgument(QStringLiteral("FOLDER"), QStringLiteral("The folder to watch."));

    if (!parser.parse(QCoreApplication::arguments())) {
        CommandLine::complainOfUsage(parser.errorText());
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
        CommandLine::complainOfUsage(QStringLiteral("exactly one FOLDER is needed"));
        return WrongUsage;
    }
    options.name = parser.positionalArguments().constFirst();
    options.folder = QDir::cleanPath(QDir().absoluteFilePath(options.name));
    return checkFolder(options.name) ? watch(options) : NoMedium;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    CommandLine::flushBeforeWaiting();
    return CommandLine::end(run(), OutputLost);
}
