// Device software outside the project: it supplies the platform functions that the library calls.

#include <BootInformationHelper.h>
#include <DragIndicator.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <cstdio>

int main()
{
    DragIndicator range;
    const QJsonArray empty = {QJsonObject(), QJsonObject()};
    const bool read = range.fromJsonArray(empty);
    const double maximum = range.getMaxValue(DragIndicator::DragIndicatorInstances(0));
    // Without the marker of a soft reset, the product code decides.
    const bool hardReset = BootInformationHelper().isHardReset();
    printf("read %d, maximum %g, hard reset %d\n", read, maximum, hardReset);
    return read && maximum == 47.5 && hardReset ? 0 : 1;
}
