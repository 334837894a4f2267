#include "Counts.h"
#include "Documents.h"
#include "Plot.h"

#include <QtCore/QCoreApplication>

#include <cstdio>

/*
 * bench-report record RESULTS COUNTS       makes the record of counts
 * bench-report compare RESULTS COUNTS      holds them against the record
 * bench-report compare-part RESULTS COUNTS likewise, when not all programs were run
 * bench-report plot RESULTS FOLDER         draws
 * bench-report document RESULTS PAGE       puts the tables into a page
 */
int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: bench-report record|compare|compare-part|plot|document RESULTS TARGET\n",
                   stderr);
        return 2;
    }
    const QString command = arguments.at(1);
    const Rows results = readRows(arguments.at(2));
    const QString target = arguments.at(3);
    if (command == QStringLiteral("record")) {
        Counts::record(results.counts, target);
    } else if (command == QStringLiteral("compare")) {
        return Counts::compare(results.counts, target, true) ? 0 : 1;
    } else if (command == QStringLiteral("compare-part")) {
        return Counts::compare(results.counts, target, false) ? 0 : 1;
    } else if (command == QStringLiteral("plot")) {
        Plot::write(results.times, target);
    } else if (command == QStringLiteral("document")) {
        Documents::update(results, target);
    } else {
        std::fprintf(stderr, "bench-report: there is no command '%s'\n", qPrintable(command));
        return 2;
    }
    return 0;
}
