// The input is a JSON document with an array of records.
#include "DragIndicator.h"
#include "Fuzz.h"

#include <QtCore/QDateTime>
#include <QtCore/QDebug>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

// The interface of the leak sanitizer; null in programs without it.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

namespace {

const QString minValue = "MinValue";
const QString maxValue = "MaxValue";
const QString minValueDate = "MinValueDate";
const QString maxValueDate = "MaxValueDate";
const QString initialized = "Initialized";

// A simple implementation of the import's rules that uses only JSON types.
class LiteralImport
{
public:
    explicit LiteralImport(const QJsonArray& array)
    {
        if (array.size() != 2) {
            qWarning() << "Received invalid count for drag indicator instances:" << array.size()
                       << "," << 2 << "!";
            m_isComplete = false;
        } else {
            for (const QJsonValue& value : array) {
                take(value);
            }
        }
        if (!m_isComplete) {
            qWarning() << "Resetting drag indicator due to errors on importing json data!";
        }
    }

    bool isComplete() const { return m_isComplete; }
    bool hasTextDate() const { return m_hasTextDate; }
    // The remaining records, as exported.
    QJsonArray records() const { return m_records; }

private:
    void take(const QJsonValue& value)
    {
        if (!value.isObject()) {
            qWarning() << "Cannot convert json value for instance to object:" << value << "!";
            m_isComplete = false;
            return;
        }
        const QJsonObject object = value.toObject();
        QJsonObject record;
        record.insert(minValue, member(object, minValue, QJsonValue::Double).toDouble());
        record.insert(maxValue, member(object, maxValue, QJsonValue::Double).toDouble());
        record.insert(minValueDate,
                      date(object, minValueDate, "Received an empty min date string!"));
        record.insert(maxValueDate,
                      date(object, maxValueDate, "Received an empty max date string!"));
        record.insert(initialized, member(object, initialized, QJsonValue::Bool).toBool());
        m_records.append(record);
    }

    QJsonValue member(const QJsonObject& object, const QString& key, QJsonValue::Type type)
    {
        const QJsonValue value = object.value(key);
        if (value.type() == type) {
            return value;
        }
        qWarning() << "Cannot find key" << key << "in json object:" << object << "!";
        m_isComplete = false;
        return QJsonValue();
    }

    QString date(const QJsonObject& object, const QString& key, const char* emptyText)
    {
        const QJsonValue value = member(object, key, QJsonValue::String);
        const QString text = value.toString();
        if (value.isString() && text.isEmpty()) {
            qWarning() << emptyText;
            m_isComplete = false;
        }
        const bool isText = !text.isEmpty() && !text.at(0).isDigit();
        m_hasTextDate = m_hasTextDate || isText;
        return QDateTime::fromString(text, isText ? Qt::TextDate : Qt::ISODate)
            .toString(Qt::ISODate);
    }

    QJsonArray m_records;
    bool m_isComplete = true;
    bool m_hasTextDate = false;
};

// Qt 5.15's parser leaks an array or object whose key occurs again later. The corpus contains no
// such input: libFuzzer would look for leaks after most of its mutations and be ten times slower.
QJsonArray parse(const QByteArray& bytes)
{
    if (__lsan_disable != nullptr) {
        __lsan_disable();
    }
    const QJsonArray array = QJsonDocument::fromJson(bytes).array();
    if (__lsan_enable != nullptr) {
        __lsan_enable();
    }
    return array;
}

QString shown(const QJsonArray& array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

// Returns whether imported text dates are still to be reported as a change, and clears that state.
bool takeTextDateImported(DragIndicator& indicator)
{
    DragIndicator::DragIndicatorInstance record;
    record.initialized = true;
    return indicator.checkInstance(record, 0.0);
}

// The getters return what the export contains, also for a missing record.
void verifyGetters(const DragIndicator& indicator)
{
    const QJsonArray records = indicator.asJsonArray();
    for (int i = 0; i < 3; ++i) {
        const auto instance = static_cast<DragIndicator::DragIndicatorInstances>(i);
        const QJsonObject record = records.at(i).toObject();
        const bool isSame = indicator.getMinValue(instance) == record.value(minValue).toDouble() &&
                            indicator.getMaxValue(instance) == record.value(maxValue).toDouble() &&
                            indicator.isInitialized(instance) == record.value(initialized).toBool();
        Fuzz::verify(isSame, "a getter differs from the export");
        Fuzz::verify(Fuzz::takeMessages().size() == (i < records.size() ? 0 : 3),
                     "messages of the getters");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QJsonArray array = parse(Fuzz::toBytes(data, size));

    const LiteralImport literal(array);
    const QStringList expected = Fuzz::takeMessages();
    DragIndicator indicator;
    const bool isComplete = indicator.fromJsonArray(array);
    Fuzz::verifySame("messages", Fuzz::takeMessages(), expected);
    Fuzz::verify(isComplete == literal.isComplete(), "the result of the import");
    Fuzz::verifySame("records", shown(indicator.asJsonArray()), shown(literal.records()));
    verifyGetters(indicator);
    Fuzz::verify(takeTextDateImported(indicator) == literal.hasTextDate(),
                 "whether dates were in text form");

    // Importing an export restores the same records, without a message if the export is valid.
    DragIndicator copy;
    const bool isCopied = copy.fromJsonArray(indicator.asJsonArray());
    Fuzz::verify(isCopied == Fuzz::takeMessages().isEmpty(), "messages of the second import");
    Fuzz::verifySame("the copy", shown(copy.asJsonArray()),
                     indicator.asJsonArray().size() == 2 ? shown(indicator.asJsonArray())
                                                         : QStringLiteral("[]"));

    // Values are added to every remaining record.
    indicator.compute(1e9);
    indicator.compute(-1e9);
    const QJsonArray records = indicator.asJsonArray();
    for (const QJsonValue& record : records) {
        Fuzz::verify(record[minValue].toDouble() <= -1e9 && record[maxValue].toDouble() >= 1e9,
                     "the range after values");
    }
    return 0;
}
