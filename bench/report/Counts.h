#ifndef BENCH_COUNTS_H
#define BENCH_COUNTS_H

#include "Rows.h"

// The record of what was counted, and the comparison with it.
namespace Counts {

void record(const QVector<CountRow>& counts, const QString& filePath);

// Prints both side by side. Whether nothing grew by more than two in a hundred, and the record
// holds what was counted and nothing else; with isWhole false it may hold other programs' counts.
bool compare(const QVector<CountRow>& counts, const QString& recordedPath, bool isWhole);

} // namespace Counts

#endif
