#ifndef TESTS_RECORDS_H
#define TESTS_RECORDS_H

#include "DragIndicator.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

// Records of drag indicators as they are saved.
namespace Records {

// One record as an object, with the same date for both extremes.
QJsonObject object(double minValue, double maxValue, const QString& date, bool initialized = true);

// A record without a value.
QJsonObject emptyObject();

// The name of a record, also of one that has none: it is its place in the list.
DragIndicator::DragIndicatorInstances at(int index);

// Whether a change is still owed for dates in text form; asking for it pays it.
bool takeTextDateImported(DragIndicator& indicator);

} // namespace Records

#endif
