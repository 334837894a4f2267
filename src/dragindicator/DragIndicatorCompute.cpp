#include "DragIndicator.h"

namespace {

// Apart from compute(), which so needs no place on the stack where nothing changes.
Q_NEVER_INLINE bool take(double value, QList<DragIndicator::DragIndicatorInstance>& instances,
                         DragIndicator& indicator)
{
    bool isChanged = false;
    for (DragIndicator::DragIndicatorInstance& instance : instances) {
        if (indicator.checkInstance(instance, value)) {
            isChanged = true;
        }
    }
    return isChanged;
}

// Whether value is the first one of a record, or widens the range of one.
bool changesAny(const QList<DragIndicator::DragIndicatorInstance>& instances, double value)
{
    for (const DragIndicator::DragIndicatorInstance& instance : instances) {
        if (!instance.initialized || instance.maxValue < value || instance.minValue > value) {
            return true;
        }
    }
    return false;
}

} // namespace

bool DragIndicator::compute(double value)
{
    // Mostly nothing changes, and then a list that is shared with a copy of this object stays
    // shared.
    if (!m_textDateImported && !changesAny(m_instances, value)) {
        return false;
    }
    return take(value, m_instances, *this);
}
