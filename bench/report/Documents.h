#ifndef BENCH_DOCUMENTS_H
#define BENCH_DOCUMENTS_H

#include "Rows.h"

namespace Documents {

// Puts machine, times and counts between their marks in the page at filePath.
void update(const Rows& results, const QString& filePath);

} // namespace Documents

#endif
