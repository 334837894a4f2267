#ifndef TOOLS_INILINT_OPTIONS_H
#define TOOLS_INILINT_OPTIONS_H

#include "FindingFilter.h"
#include "LintReport.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QStringList>

class QTextCodec;

// The options of the command line.
struct Options
{
    bool mustClean = false;
    bool isDryRun = false;
    ReportFormat format = ReportFormat::Text;
    const QTextCodec* codec = nullptr;
    FindingFilter filter;
    QStringList patterns; // for files in directories
    QStringList paths;

    static QList<QCommandLineOption> all();

    // Reads the options from a parser. Returns an error message, or an empty string on success.
    QString read(const QCommandLineParser& parser);

private:
    QString readFormat(const QCommandLineParser& parser);
    QString readFilter(const QCommandLineParser& parser);
};

#endif
