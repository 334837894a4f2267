#include "Records.h"

QJsonObject Records::object(double minValue, double maxValue, const QString& date, bool initialized)
{
    return {{"MinValue", minValue},
            {"MaxValue", maxValue},
            {"MinValueDate", date},
            {"MaxValueDate", date},
            {"Initialized", initialized}};
}

QJsonObject Records::emptyObject()
{
    return object(0.0, 0.0, "", false);
}

DragIndicator::DragIndicatorInstances Records::at(int index)
{
    return static_cast<DragIndicator::DragIndicatorInstances>(index);
}

bool Records::takeTextDateImported(DragIndicator& indicator)
{
    DragIndicator::DragIndicatorInstance record;
    record.initialized = true;
    return indicator.checkInstance(record, 0.0); // does not change the record
}
