// Finds what QSettings reads otherwise than people think, and cleans files up: IniFileManager's
// clean-up at work.
#include "CleanUp.h"
#include "ExitCode.h"
#include "IniRules.h"
#include "InputFiles.h"
#include "LintReport.h"
#include "Options.h"

#include "common/CommandLine.h"
#include "common/LibraryMessages.h"
#include "common/WholeFile.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstdio>

namespace {

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
               "A comment in a file omits findings, too: '; ini-lint: ignore RULE...' "
               "those of\n"
               "the next line, '; ini-lint: ignore-file RULE...' those of the file.\n"
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
               "  ini-lint --pattern '*.conf' --pattern '*.ini' /etc\n"
               "  ini-lint --clean --dry-run settings.ini");
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
    if (mustWrite && (InputFiles::isStandardInput(filePath) || !QFileInfo(filePath).isFile())) {
        report.addTrouble(InputFiles::shownName(filePath),
                          QStringLiteral("only a file can be cleaned up"));
        return;
    }
    // Not by a clean-up of the file itself, which would lose its owner and mode.
    const QString trouble = mustWrite ? WholeFile::replace(filePath, *cleaned) : QString();
    if (!trouble.isEmpty()) {
        report.addTrouble(filePath, QStringLiteral("the file cannot be cleaned up: ") + trouble);
        return;
    }
    report.addChanges(InputFiles::shownName(filePath), text, *cleaned, mustWrite);
}

void lint(const QString& filePath, const Options& options, LintReport& report)
{
    const QString shownName = InputFiles::shownName(filePath);
    QFile file(filePath);
    const bool isOpen = InputFiles::isStandardInput(filePath)
                            ? file.open(stdin, QIODevice::ReadOnly)
                            : file.open(QIODevice::ReadOnly);
    const QByteArray text = isOpen ? file.readAll() : QByteArray();
    if (!isOpen || file.error() != QFileDevice::NoError) {
        report.addTrouble(shownName, file.errorString());
    } else if (options.mustClean) {
        file.close();
        clean(filePath, text, options, report);
    } else {
        report.addFindings(shownName,
                           options.filter.apply(shownName, IniRules::check(text, options.codec)));
    }
}

ExitCode lintAll(const Options& options)
{
    LintReport report(options.format);
    const QVector<InputFiles::Input> files = InputFiles::find(options.paths, options.patterns);
    for (int i = 0; i < files.size(); ++i) {
        report.begin(InputFiles::shownName(files.at(i).path), i + 1, files.size());
        if (files.at(i).trouble.isEmpty()) {
            lint(files.at(i).path, options, report);
        } else {
            report.addTrouble(files.at(i).path, files.at(i).trouble);
        }
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
                       "FILE:LINE:COLUMN: SEVERITY: MESSAGE [RULE].\n"
                       "An error is a value that is read as another one than is written, or not\n"
                       "at all; a warning may surprise; a note is about what reads as it looks."));
    parser.addOptions(Options::all());
    parser.addOptions({CommandLine::helpOption(), CommandLine::versionOption()});
    parser.addPositionalArgument(
        QStringLiteral("FILE"),
        QStringLiteral("The INI files; '-' is standard input, and of a directory all files of the "
                       "pattern in it and below are read."),
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
    const QString trouble = options.read(parser);
    if (!trouble.isEmpty()) {
        CommandLine::complainOfUsage(trouble);
        return Trouble;
    }
    LibraryMessages::take(false);
    return lintAll(options);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return CommandLine::end(run(), Trouble);
}
