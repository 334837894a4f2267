#ifndef TESTS_RECORDS_H
#define TESTS_RECORDS_H

#include "DragIndicator.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

// Saved records of drag indicators.
namespace Records {

// A record as a JSON object, with the same date for both extremes.
QJsonObject object(double minValue, double maxValue, const QString& date, bool initialized = true);

// A record without a value.
QJsonObject emptyObject();

// Converts an index to the enumeration, even if no enumerator is declared for it.
DragIndicator::DragIndicatorInstances at(int index);

// Returns whether imported text dates are still to be reported as a change, and clears that state.
bool takeTextDateImported(DragIndicator& indicator);

} // namespace Records

#endif
