// Finds where QSettings reads INI files differently from what they seem to say, and cleans files up
// with IniFileManager::cleanUp().
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
               "Comments in a file omit findings, too: '; ini-lint: ignore RULE...' those "
               "of the\n"
               "next line, '; ini-lint: ignore-file RULE...' those of the file.\n"
               "\n"
               "Severities are colored on a terminal, unless NO_COLOR is set.\n"
               "\n"
               "Exit codes:\n"
               "  0  no findings; with --clean: every FILE is clean now\n"
               "  1  there are findings; with --clean --dry-run: some lines would "
               "change\n"
               "  2  wrong usage, or a FILE or the output cannot be read or written\n"
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
        report.addError(filePath, QStringLiteral("cannot create a copy in the directory for "
                                                 "temporary files"));
        return;
    }
    const bool mustWrite = *cleaned != text && !options.isDryRun;
    // A pipe has been read to its end, and must not be replaced by a file.
    if (mustWrite && (InputFiles::isStandardInput(filePath) || !QFileInfo(filePath).isFile())) {
        report.addError(InputFiles::shownName(filePath),
                        QStringLiteral("only a regular file can be cleaned up"));
        return;
    }
    // Not by a clean-up of the file itself, which would lose its owner and mode.
    const QString error = mustWrite ? WholeFile::replace(filePath, *cleaned) : QString();
    if (!error.isEmpty()) {
        report.addError(filePath, QStringLiteral("the file cannot be cleaned up: ") + error);
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
        report.addError(shownName, file.errorString());
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
        if (files.at(i).error.isEmpty()) {
            lint(files.at(i).path, options, report);
        } else {
            report.addError(files.at(i).path, files.at(i).error);
        }
    }
    report.finish();
    if (report.hasError()) {
        return Failed;
    }
    const bool isCleaned = options.mustClean && !options.isDryRun;
    return report.isEmpty() || isCleaned ? NothingFound : SomethingFound;
}

ExitCode run()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("\nReports where QSettings reads INI files differently from what they seem\n"
                       "to say, as FILE:LINE:COLUMN: SEVERITY: MESSAGE [RULE].\n"
                       "An error means that QSettings reads a different value, or none; a\n"
                       "warning, that the result may be unexpected; a note, that the value is as\n"
                       "expected, but there is more to know."));
    parser.addOptions(Options::all());
    parser.addOptions({CommandLine::helpOption(), CommandLine::versionOption()});
    parser.addPositionalArgument(
        QStringLiteral("FILE"),
        QStringLiteral("The INI files; '-' is standard input. In a directory, all files in it and "
                       "below it that match the pattern are read."),
        QStringLiteral("FILE..."));

    if (!parser.parse(QCoreApplication::arguments())) {
        CommandLine::printUsageError(parser.errorText());
        return Failed;
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
    const QString error = options.read(parser);
    if (!error.isEmpty()) {
        CommandLine::printUsageError(error);
        return Failed;
    }
    LibraryMessages::capture(false);
    return lintAll(options);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return CommandLine::end(run(), Failed);
}
