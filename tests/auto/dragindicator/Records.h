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

// The enumerator of the record at an index, even where no enumerator is declared.
DragIndicator::DragIndicatorInstances at(int index);

// Whether imported text dates still have to be reported as a change; resets that.
bool takeTextDateImported(DragIndicator& indicator);

} // namespace Records

#endif
