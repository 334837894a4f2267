#ifndef BENCH_COUNTING_H
#define BENCH_COUNTING_H

#include "Operation.h"

#include <QtCore/QMap>

/*
 * Counts what an operation takes. The program starts itself anew for that: under callgrind
 * (instructions, allocations), under strace (system calls, bytes asked of files), and once more for
 * each peak of memory, as memory that was used before would hide it.
 */
namespace Counting {

using Counts = QMap<Measure, double>;

// In the program that is started by hand: by operation, all counts per call.
QMap<QString, Counts> count(const Operations& operations);

// Of a whole run of another program.
qint64 instructionsOf(const QString& program);

// In the program that is started for it: runs the operations between the tools' marks.
void runMarked(const Operations& operations);

// Likewise: prints the peak in KiB.
void printPeak(const Operation& operation);

} // namespace Counting

#endif
