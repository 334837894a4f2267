#ifndef BENCH_PLOT_H
#define BENCH_PLOT_H

#include "Rows.h"

// Cost against size, one picture per plot: performance-<plot>.svg in the folder.
namespace Plot {

void write(const QVector<TimeRow>& rows, const QString& folder);

} // namespace Plot

#endif
