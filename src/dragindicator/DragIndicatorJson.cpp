#include "DragIndicator.h"

#include "PlatformFunctions.h"
#include "common/Log.h"

#include <QtCore/QJsonObject>

const QString DragIndicator::sm_KeyMinValue = QStringLiteral("MinValue");
const QString DragIndicator::sm_KeyMaxValue = QStringLiteral("MaxValue");
const QString DragIndicator::sm_KeyMinValueDate = QStringLiteral("MinValueDate");
const QString DragIndicator::sm_KeyMaxValueDate = QStringLiteral("MaxValueDate");
const QString DragIndicator::sm_KeyInitialized = QStringLiteral("Initialized");

namespace {

constexpr int expectedInstances = 2;

// Reads the members of one object, and records whether all of them exist.
class MemberReader
{
public:
    MemberReader(const QMessageLogger& log, const QJsonObject& object)
        : m_log(log), m_object(object), m_isComplete(true)
    {
    }

    void readNumber(const QString& key, double& value)
    {
        check(key, readDoubleValueFromJson(key, m_object, value));
    }

    // Returns an empty string if the member is missing; logs emptyText if it exists but is empty.
    QString readDate(const QString& key, const char* emptyText)
    {
        QString date;
        if (!check(key, readStringValueFromJson(key, m_object, date))) {
            return QString(); // the platform function may have changed date
        }
        if (date.isEmpty()) {
            m_log.warning() << emptyText;
            m_isComplete = false;
        }
        return date;
    }

    bool readFlag(const QString& key)
    {
        bool flag = false;
        return check(key, readBoolValueFromJson(key, m_object, flag)) && flag;
    }

    bool isComplete() const { return m_isComplete; }

private:
    bool check(const QString& key, bool isFound)
    {
        if (!isFound) {
            m_log.warning() << "Cannot find key" << key << "in json object:" << m_object << "!";
            m_isComplete = false;
        }
        return isFound;
    }

    const QMessageLogger& m_log;
    const QJsonObject m_object;
    bool m_isComplete;
};

} // namespace

bool DragIndicator::isIsoFormat(const QString& dateString) const
{
    return !dateString.isEmpty() && dateString.at(0).isDigit();
}

QJsonArray DragIndicator::asJsonArray() const
{
    QJsonArray array;
    for (const DragIndicatorInstance& instance : m_instances) {
        QJsonObject object;
        object.insert(sm_KeyMinValue, instance.minValue);
        object.insert(sm_KeyMaxValue, instance.maxValue);
        object.insert(sm_KeyMinValueDate, instance.minValueDate.toString(Qt::ISODate));
        object.insert(sm_KeyMaxValueDate, instance.maxValueDate.toString(Qt::ISODate));
        object.insert(sm_KeyInitialized, instance.initialized);
        array.append(object);
    }
    return array;
}

bool DragIndicator::fromJsonArray(const QJsonArray& jsonArray)
{
    // The reader logs with the context of this function.
    const QMessageLogger log = MISCTOOLS_LOG(DragIndicator);
    const auto toDate = [this](const QString& text) {
        if (text.isEmpty()) {
            return QDateTime();
        }
        if (isIsoFormat(text)) {
            return QDateTime::fromString(text, Qt::ISODate);
        }
        m_textDateImported = true;
        return QDateTime::fromString(text, Qt::TextDate);
    };

    m_instances.clear();
    bool isComplete = jsonArray.size() == expectedInstances;
    if (!isComplete) {
        log.warning() << "Received invalid count for drag indicator instances:" << jsonArray.size()
                      << "," << expectedInstances << "!";
    } else {
        for (const QJsonValue& value : jsonArray) {
            if (!value.isObject()) {
                log.warning() << "Cannot convert json value for instance to object:" << value
                              << "!";
                isComplete = false;
                continue;
            }
            MemberReader reader(log, value.toObject());
            DragIndicatorInstance instance;
            reader.readNumber(sm_KeyMinValue, instance.minValue);
            reader.readNumber(sm_KeyMaxValue, instance.maxValue);
            instance.minValueDate =
                toDate(reader.readDate(sm_KeyMinValueDate, "Received an empty min date string!"));
            instance.maxValueDate =
                toDate(reader.readDate(sm_KeyMaxValueDate, "Received an empty max date string!"));
            instance.initialized = reader.readFlag(sm_KeyInitialized);
            m_instances.append(instance);
            isComplete = isComplete && reader.isComplete();
        }
    }
    if (!isComplete) {
        log.warning() << "Resetting drag indicator due to errors on importing json data!";
    }
    return isComplete;
}
