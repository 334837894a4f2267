#include "DragIndicator.h"

#include "common/Log.h"

namespace {

// isInitialized() logs the same text; programs that evaluate field logs rely on it.
constexpr char errorOnReadingMaxValue[] = "Error on reading max value for instance";

void setToNow(QDateTime& date)
{
    date.setDate(QDate::currentDate());
    date.setTime(QTime::currentTime());
}

// Returns true if value is the first one of a record or widens the range of a record.
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

DragIndicator::DragIndicator() : m_textDateImported(false)
{
    initObject();
}

DragIndicator::~DragIndicator() = default;

void DragIndicator::initObject()
{
    m_instances.append(DragIndicatorInstance());
    m_instances.append(DragIndicatorInstance());
}

void DragIndicator::reset()
{
    if (!m_instances.isEmpty()) {
        m_instances.first() = DragIndicatorInstance();
    }
}

bool DragIndicator::compute(double value)
{
    // Usually nothing changes; then a list that is shared with a copy of this object must not
    // detach.
    if (!m_textDateImported && !changesAny(m_instances, value)) {
        return false;
    }
    bool isChanged = false;
    for (DragIndicatorInstance& instance : m_instances) {
        if (checkInstance(instance, value)) {
            isChanged = true;
        }
    }
    return isChanged;
}

bool DragIndicator::checkInstance(DragIndicator::DragIndicatorInstance& instance, double value)
{
    if (!instance.initialized) {
        instance.minValue = value;
        instance.maxValue = value;
        QDateTime now;
        setToNow(now);
        instance.minValueDate = now;
        instance.maxValueDate = now;
        instance.initialized = true;
        return true;
    }

    bool isChanged = false;
    if (instance.maxValue < value) {
        instance.maxValue = value;
        setToNow(instance.maxValueDate);
        isChanged = true;
    }
    if (instance.minValue > value) {
        instance.minValue = value;
        setToNow(instance.minValueDate);
        isChanged = true;
    }
    if (m_textDateImported) {
        // Saving the records again converts their dates to the current format.
        m_textDateImported = false;
        isChanged = true;
    }
    return isChanged;
}

double DragIndicator::getMinValue(DragIndicator::DragIndicatorInstances instance) const
{
    if (instance >= m_instances.size()) {
        MISCTOOLS_LOG(DragIndicator).warning()
            << "Error on reading min value for instance" << int(instance) << "!";
        return 0.0;
    }
    return m_instances.at(instance).minValue;
}

double DragIndicator::getMaxValue(DragIndicator::DragIndicatorInstances instance) const
{
    if (instance >= m_instances.size()) {
        MISCTOOLS_LOG(DragIndicator).warning() << errorOnReadingMaxValue << int(instance) << "!";
        return 0.0;
    }
    return m_instances.at(instance).maxValue;
}

bool DragIndicator::isInitialized(DragIndicator::DragIndicatorInstances instance) const
{
    if (instance >= m_instances.size()) {
        MISCTOOLS_LOG(DragIndicator).warning() << errorOnReadingMaxValue << int(instance) << "!";
        return false;
    }
    return m_instances.at(instance).initialized;
}
