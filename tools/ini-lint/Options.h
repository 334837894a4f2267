#ifndef TOOLS_INILINT_OPTIONS_H
#define TOOLS_INILINT_OPTIONS_H

#include "FindingFilter.h"
#include "LintReport.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QStringList>

class QTextCodec;

// What the command line asks for.
struct Options
{
    bool mustClean = false;
    bool isDryRun = false;
    ReportFormat format = ReportFormat::Text;
    const QTextCodec* codec = nullptr;
    FindingFilter filter;
    QStringList patterns; // of the files in directories
    QStringList paths;

    static QList<QCommandLineOption> all();

    // Takes what a parser found; returns what is wrong with it, an empty text if nothing is.
    QString read(const QCommandLineParser& parser);

private:
    QString readFormat(const QCommandLineParser& parser);
    QString readFilter(const QCommandLineParser& parser);
};

#endif
