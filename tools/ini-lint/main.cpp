// Finds what QSettings reads otherwise than people think, and cleans files up: IniFileManager's
// clean-up at work.
#include "CleanUp.h"
#include "ExitCode.h"
#include "IniRules.h"
#include "LintReport.h"

#include "common/CommandLine.h"
#include "common/LibraryMessages.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextCodec>

namespace {

struct Options
{
    bool mustClean = false;
    bool isDryRun = false;
    bool isJson = false;
    const QTextCodec* codec = nullptr;
    QStringList ignoredRules;
};

const QCommandLineOption& codecOption()
{
    static const QCommandLineOption option(
        QStringLiteral("codec"),
        QStringLiteral("The codec that the program gives to IniFileManager, such as UTF-8; without "
                       "one values are read as Latin-1."),
        QStringLiteral("NAME"));
    return option;
}

const QCommandLineOption& ignoreOption()
{
    static const QCommandLineOption option(
        QStringLiteral("ignore"),
        QStringLiteral("Leave the findings of RULE out; may be given several times."),
        QStringLiteral("RULE"));
    return option;
}

const QCommandLineOption& cleanOption()
{
    static const QCommandLineOption option(
        QStringLiteral("clean"),
        QStringLiteral("Instead of looking for findings clean each FILE up, as "
                       "IniFileManager::cleanUp() does: commas become blanks, %23 becomes #."));
    return option;
}

const QCommandLineOption& dryRunOption()
{
    static const QCommandLineOption option(
        QStringLiteral("dry-run"),
        QStringLiteral("With --clean: touch no FILE, only show the lines that would change."));
    return option;
}

const QCommandLineOption& formatOption()
{
    static const QCommandLineOption option(
        QStringLiteral("format"),
        QStringLiteral("How the results are printed: text (the default) or json."),
        QStringLiteral("FORMAT"), QStringLiteral("text"));
    return option;
}

QString helpText(const QCommandLineParser& parser)
{
    QString rules;
    for (const IniRules::Rule& rule : IniRules::all()) {
        rules += QStringLiteral("  %1  %2\n")
                     .arg(QLatin1String(rule.name), -15)
                     .arg(QLatin1String(rule.summary));
    }
    return parser.helpText() + QStringLiteral("\nRules:\n") + rules +
           QStringLiteral(
               "\n"
               "Exit codes:\n"
               "  0  nothing was found; with --clean: every FILE is clean now\n"
               "  1  something was found; with --clean --dry-run: some lines would "
               "change\n"
               "  2  wrong usage, or a FILE cannot be read or written, or the output not "
               "written\n"
               "\n"
               "Examples:\n"
               "  ini-lint --ignore semicolon /orvalis/*.ini\n"
               "  ini-lint --clean --dry-run settings.ini");
}

// Complains and gives false when the options are wrong, or do not fit each other.
bool readOptions(const QCommandLineParser& parser, Options& options)
{
    const QString format = parser.value(formatOption());
    const QString codec = parser.value(codecOption());
    options.mustClean = parser.isSet(cleanOption());
    options.isDryRun = parser.isSet(dryRunOption());
    options.isJson = format == QStringLiteral("json");
    options.codec = QTextCodec::codecForName(codec.toLatin1());
    options.ignoredRules = parser.values(ignoreOption());

    QString trouble;
    if (parser.positionalArguments().isEmpty()) {
        trouble = QStringLiteral("at least one FILE is needed");
    } else if (!options.isJson && format != QStringLiteral("text")) {
        trouble = QStringLiteral("--format must be text or json, not '%1'").arg(format);
    } else if (parser.isSet(codecOption()) && options.codec == nullptr) {
        trouble = QStringLiteral("there is no codec '%1'").arg(codec);
    } else if (options.isDryRun && !options.mustClean) {
        trouble = QStringLiteral("--dry-run needs --clean");
    } else if (options.mustClean && (parser.isSet(codecOption()) || parser.isSet(ignoreOption()))) {
        trouble = QStringLiteral("--codec and --ignore mean nothing with --clean");
    }
    for (const QString& rule : qAsConst(options.ignoredRules)) {
        if (!IniRules::contains(rule)) {
            trouble = QStringLiteral("there is no rule '%1'").arg(rule);
        }
    }
    if (!trouble.isEmpty()) {
        CommandLine::complainOfUsage(trouble);
    }
    return trouble.isEmpty();
}

void clean(const QString& filePath, const QByteArray& text, const Options& options,
           LintReport& report)
{
    const std::optional<QByteArray> cleaned = CleanUp::preview(text);
    if (!cleaned) {
        report.addTrouble(filePath, QStringLiteral("there can be no copy in the folder for "
                                                   "temporary files"));
        return;
    }
    const bool mustWrite = *cleaned != text && !options.isDryRun;
    // Of a pipe nothing is left to read, and nothing can take its place.
    if (mustWrite && !QFileInfo(filePath).isFile()) {
        report.addTrouble(filePath, QStringLiteral("only a file can be cleaned up"));
        return;
    }
    if (mustWrite && !CleanUp::perform(filePath, *cleaned)) {
        report.addTrouble(filePath, QStringLiteral("the file cannot be cleaned up: it, or its "
                                                   "folder, cannot be written"));
        return;
    }
    report.addChanges(filePath, CleanUp::changes(text, *cleaned), mustWrite);
}

void lint(const QString& filePath, const Options& options, LintReport& report)
{
    QFile file(filePath);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const QByteArray text = isOpen ? file.readAll() : QByteArray();
    if (!isOpen || file.error() != QFileDevice::NoError) {
        report.addTrouble(filePath, file.errorString());
    } else if (options.mustClean) {
        file.close();
        clean(filePath, text, options, report);
    } else {
        report.addFindings(filePath, IniRules::check(text, options.codec, options.ignoredRules));
    }
}

ExitCode lintAll(const QStringList& files, const Options& options)
{
    LintReport report(options.isJson);
    for (int i = 0; i < files.size(); ++i) {
        report.begin(files.at(i), i + 1, files.size());
        lint(files.at(i), options, report);
    }
    report.finish();
    if (report.hasTrouble()) {
        return Trouble;
    }
    const bool isCleaned = options.mustClean && !options.isDryRun;
    return report.isEmpty() || isCleaned ? NothingFound : SomethingFound;
}

ExitCode run()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("\nSays what QSettings reads in INI files otherwise than it looks, as\n"
                       "FILE:LINE: MESSAGE [RULE]."));
    parser.addOptions({codecOption(), ignoreOption(), cleanOption(), dryRunOption(), formatOption(),
                       CommandLine::helpOption(), CommandLine::versionOption()});
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The INI files."),
                                 QStringLiteral("FILE..."));

    if (!parser.parse(QCoreApplication::arguments())) {
        CommandLine::complainOfUsage(parser.errorText());
        return Trouble;
    }
    if (parser.isSet(CommandLine::helpOption())) {
        CommandLine::print(helpText(parser));
        return NothingFound;
    }
    if (parser.isSet(CommandLine::versionOption())) {
        CommandLine::printVersion();
        return NothingFound;
    }
    Options options;
    if (!readOptions(parser, options)) {
        return Trouble;
    }
    LibraryMessages::take(false);
    return lintAll(parser.positionalArguments(), options);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return CommandLine::end(run(), Trouble);
}
