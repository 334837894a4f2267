#include "ChildProcess.h"
#include "DestructionProbe.h"
#include "DragIndicator.h"
#include "Records.h"
#include "TestCase.h"
#include "TestClock.h"

#include <cmath>
#include <csignal>
#include <functional>
#include <limits>
#include <type_traits>

using Record = DragIndicator::DragIndicatorInstance;
using Operation = std::function<void(DragIndicator&)>;

Q_DECLARE_METATYPE(Operation)

// Applications may derive from the class and delete objects through a base pointer.
static_assert(std::is_polymorphic<DragIndicator>::value, "has virtual functions");
static_assert(std::has_virtual_destructor<DragIndicator>::value,
              "may be deleted through a base pointer");
static_assert(std::is_copy_constructible<DragIndicator>::value &&
                  std::is_copy_assignable<DragIndicator>::value,
              "is a value");
// An unsigned underlying type would turn negative indexes into large ones, which are reported.
static_assert(
    std::is_same<std::underlying_type<DragIndicator::DragIndicatorInstances>::type, int>::value,
    "numbers keep their sign");
static_assert(DragIndicator::ResettableInstance == 0 && DragIndicator::PermanentInstance == 1,
              "indexes of the list");

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

// GCC 10 qualifies a nested type with its class; GCC 12 and clang do not.
#if defined(__clang__) || __GNUC__ > 10
#define INSTANCES "DragIndicatorInstances"
#else
#define INSTANCES "DragIndicator::DragIndicatorInstances"
#endif
constexpr char minSignature[] = "double DragIndicator::getMinValue(" INSTANCES ") const";
constexpr char maxSignature[] = "double DragIndicator::getMaxValue(" INSTANCES ") const";
constexpr char initializedSignature[] = "bool DragIndicator::isInitialized(" INSTANCES ") const";

const QString textDate = "Fri Mar 1 12:30:05 2024";
const QString isoDate = "2024-03-01T12:30:05";

const QDateTime noon(QDate(2024, 3, 1), QTime(12, 0));

// Exact, unlike a comparison of numbers: distinguishes -0 from 0, and a NaN equals itself.
QByteArray numberText(double value)
{
    return (std::signbit(value) && !std::isnan(value) ? "-" : "") +
           QByteArray::number(std::fabs(value), 'g', 17);
}

QByteArray rangeText(double minimum, double maximum)
{
    return numberText(minimum) + " to " + numberText(maximum);
}

QByteArray rangeOf(const Record& record)
{
    return rangeText(record.minValue, record.maxValue);
}

QByteArray rangeOf(const DragIndicator& indicator, int index)
{
    const double minimum = indicator.getMinValue(Records::at(index));
    const double maximum = indicator.getMaxValue(Records::at(index));
    return rangeText(minimum, maximum);
}

QString dateOf(const DragIndicator& indicator, int index, const QString& key)
{
    return indicator.asJsonArray().at(index).toObject().value(key).toString();
}

QString minDateOf(const DragIndicator& indicator, int index)
{
    return dateOf(indicator, index, "MinValueDate");
}

QString maxDateOf(const DragIndicator& indicator, int index)
{
    return dateOf(indicator, index, "MaxValueDate");
}

Record filledRecord(double minimum, double maximum)
{
    Record record;
    record.minValue = minimum;
    record.maxValue = maximum;
    record.minValueDate = noon;
    record.maxValueDate = noon;
    record.initialized = true;
    return record;
}

QJsonArray records(const QString& date, bool isFirstInitialized = true,
                   bool isSecondInitialized = true)
{
    return {Records::object(4, 6, date, isFirstInitialized),
            Records::object(4, 6, date, isSecondInitialized)};
}

} // namespace

class tst_DragIndicator : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void destructorIsVirtual();
    void newRecordIsEmpty();
    void newIndicatorHasTwoEmptyRecords();
    void valuesUpdateExtremes_data();
    void valuesUpdateExtremes();
    void firstValueReadsClockOnce();
    void firstDatesAreTheCurrentTime();
    void maximumIsUpdatedBeforeMinimum();
    void everyNewExtremeReadsClockAgain_data();
    void everyNewExtremeReadsClockAgain();
    void dateMayStraddleMidnight();
    void clockSetBackYieldsEarlierDate();
    void datesKeepTheirTimeSpec_data();
    void datesKeepTheirTimeSpec();
    void computeUpdatesEveryRecord();
    void resetClearsOnlyFirstRecord();
    void resetDiscardsNaN();
    void initObjectAppendsRecords();
    void emptyListIgnoresValues();
    void missingRecordWarns_data();
    void missingRecordWarns();
    void negativeIndexAbortsProcess_data();
    void negativeIndexAbortsProcess();
    void importedTextDatesReportOneChange_data();
    void importedTextDatesReportOneChange();
    void otherCallsKeepTextDatesPending_data();
    void otherCallsKeepTextDatesPending();
    void copiesAreIndependent();
    void recordsAreSharedUntilOneChanges();
    void isoDatesAreRecognized_data();
    void isoDatesAreRecognized();

private:
    void expectMissingRecord(const char* what, int index, const char* signature);
};

void tst_DragIndicator::destructorIsVirtual()
{
    QVERIFY(isDestroyedThroughBase<DragIndicator>());
}

void tst_DragIndicator::expectMissingRecord(const char* what, int index, const char* signature)
{
    messages()
        .expectWarning("DragIndicator",
                       QStringLiteral("Error on reading %1 value for instance %2 !")
                           .arg(QLatin1String(what))
                           .arg(index))
        .function(signature);
}

void tst_DragIndicator::newRecordIsEmpty()
{
    const Record record;
    QVERIFY(record.minValueDate.isNull());
    QVERIFY(record.maxValueDate.isNull());
    QCOMPARE(rangeOf(record), QByteArray("0 to 0"));
    QVERIFY(!record.initialized);
}

void tst_DragIndicator::newIndicatorHasTwoEmptyRecords()
{
    DragIndicator indicator;
    for (const int index : {0, 1}) {
        QVERIFY(!indicator.isInitialized(Records::at(index)));
        QCOMPARE(rangeOf(indicator, index), QByteArray("0 to 0"));
    }
    QCOMPARE(indicator.asJsonArray(), QJsonArray({Records::emptyObject(), Records::emptyObject()}));
    QVERIFY(!Records::takeTextDateImported(indicator));
}

void tst_DragIndicator::valuesUpdateExtremes_data()
{
    QTest::addColumn<QVector<double>>("values");
    // One letter per value: "y" if it caused a change, otherwise "n".
    QTest::addColumn<QByteArray>("changes");
    QTest::addColumn<QByteArray>("range");
    // The indexes of the values that the dates belong to.
    QTest::addColumn<int>("minSetter");
    QTest::addColumn<int>("maxSetter");

    using Values = QVector<double>;
    const double least = std::numeric_limits<double>::denorm_min();
    const double most = std::numeric_limits<double>::max();
    const double afterOne = std::nextafter(1.0, 2.0);
    QTest::newRow("one value") << Values{1.5} << QByteArray("y") << rangeText(1.5, 1.5) << 0 << 0;
    QTest::newRow("zero") << Values{0} << QByteArray("y") << rangeText(0, 0) << 0 << 0;
    QTest::newRow("first above zero")
        << Values{5, 0} << QByteArray("yy") << rangeText(0, 5) << 1 << 0;
    QTest::newRow("first below zero")
        << Values{-5, 0} << QByteArray("yy") << rangeText(-5, 0) << 0 << 1;
    QTest::newRow("same value again")
        << Values{5, 5} << QByteArray("yn") << rangeText(5, 5) << 0 << 0;
    QTest::newRow("higher") << Values{5, 7} << QByteArray("yy") << rangeText(5, 7) << 0 << 1;
    QTest::newRow("lower") << Values{5, 3} << QByteArray("yy") << rangeText(3, 5) << 1 << 0;
    QTest::newRow("extremes again")
        << Values{5, 7, 3, 7, 3} << QByteArray("yyynn") << rangeText(3, 7) << 2 << 1;
    QTest::newRow("within the range")
        << Values{3, 7, 5} << QByteArray("yyn") << rangeText(3, 7) << 0 << 1;
    QTest::newRow("each value widens the range")
        << Values{1, 2, 3, 0, -1} << QByteArray("yyyyy") << rangeText(-1, 3) << 4 << 2;
    QTest::newRow("next double") << Values{1, afterOne, 1, afterOne} << QByteArray("yynn")
                                 << rangeText(1, afterOne) << 0 << 1;
    QTest::newRow("smallest doubles")
        << Values{0, least, -least} << QByteArray("yyy") << rangeText(-least, least) << 2 << 1;
    QTest::newRow("largest doubles")
        << Values{0, most, -most, most} << QByteArray("yyyn") << rangeText(-most, most) << 2 << 1;
    QTest::newRow("NaN first") << Values{notANumber, 1, infinity, -infinity, notANumber}
                               << QByteArray("ynnnn") << rangeText(notANumber, notANumber) << 0
                               << 0;
    QTest::newRow("NaN later") << Values{1, notANumber, 2} << QByteArray("yny") << rangeText(1, 2)
                               << 0 << 2;
    QTest::newRow("infinities") << Values{0, infinity, -infinity, infinity, -infinity}
                                << QByteArray("yyynn") << rangeText(-infinity, infinity) << 2 << 1;
    QTest::newRow("infinity first")
        << Values{infinity, 5, infinity} << QByteArray("yyn") << rangeText(5, infinity) << 1 << 0;
    QTest::newRow("negative infinity first") << Values{-infinity, 5, -infinity} << QByteArray("yyn")
                                             << rangeText(-infinity, 5) << 0 << 1;
    QTest::newRow("-0 first") << Values{-0.0, 0.0} << QByteArray("yn") << rangeText(-0.0, -0.0) << 0
                              << 0;
    QTest::newRow("-0 later") << Values{0.0, -0.0} << QByteArray("yn") << rangeText(0.0, 0.0) << 0
                              << 0;
}

void tst_DragIndicator::valuesUpdateExtremes()
{
    QFETCH(QVector<double>, values);
    QFETCH(QByteArray, changes);
    QFETCH(QByteArray, range);
    QFETCH(int, minSetter);
    QFETCH(int, maxSetter);

    const auto timeOf = [](int place) { return noon.addSecs(60 * place); };
    DragIndicator indicator;
    Record record;
    QByteArray computeResults;
    QByteArray checkResults;
    TestClock clock(noon);
    for (int i = 0; i < values.size(); ++i) {
        clock.set(timeOf(i));
        computeResults += indicator.compute(values.at(i)) ? 'y' : 'n';
        checkResults += indicator.checkInstance(record, values.at(i)) ? 'y' : 'n';
    }

    QCOMPARE(computeResults, changes);
    for (const int index : {0, 1}) {
        QVERIFY(indicator.isInitialized(Records::at(index)));
        QCOMPARE(rangeOf(indicator, index), range);
        QCOMPARE(minDateOf(indicator, index), timeOf(minSetter).toString(Qt::ISODate));
        QCOMPARE(maxDateOf(indicator, index), timeOf(maxSetter).toString(Qt::ISODate));
    }
    QCOMPARE(checkResults, changes);
    QVERIFY(record.initialized);
    QCOMPARE(rangeOf(record), range);
    QCOMPARE(record.minValueDate, timeOf(minSetter));
    QCOMPARE(record.maxValueDate, timeOf(maxSetter));
}

void tst_DragIndicator::firstValueReadsClockOnce()
{
    DragIndicator indicator;
    Record record;
    // Dates of an empty record are ignored.
    record.minValueDate = QDateTime(QDate(1999, 1, 1), QTime(1, 0), Qt::UTC);
    TestClock clock(noon, 1000);
    QVERIFY(indicator.checkInstance(record, 1));
    QCOMPARE(clock.takeReadings(), QStringList({QStringLiteral("date"), "time"}));
    QCOMPARE(record.minValueDate, noon.addSecs(1));
    QCOMPARE(record.minValueDate.timeSpec(), Qt::LocalTime);
    QCOMPARE(record.maxValueDate, record.minValueDate);
}

void tst_DragIndicator::firstDatesAreTheCurrentTime()
{
    DragIndicator indicator;
    Record record;
    const QDateTime before = QDateTime::currentDateTime();
    QVERIFY(indicator.checkInstance(record, 1));
    const QDateTime after = QDateTime::currentDateTime();
    QCOMPARE(record.minValueDate, record.maxValueDate);
    QCOMPARE(record.minValueDate.timeSpec(), Qt::LocalTime);
    QVERIFY(before <= record.minValueDate);
    QVERIFY(record.minValueDate <= after);
}

void tst_DragIndicator::maximumIsUpdatedBeforeMinimum()
{
    // One value changes both extremes only if the minimum of the record exceeds its maximum.
    Record record = filledRecord(9, 1);
    DragIndicator indicator;
    TestClock clock(noon.addDays(1), 1000);
    QVERIFY(indicator.checkInstance(record, 5));
    QCOMPARE(rangeOf(record), QByteArray("5 to 5"));
    QCOMPARE(record.maxValueDate, noon.addDays(1).addSecs(1));
    QCOMPARE(record.minValueDate, noon.addDays(1).addSecs(3));
    QCOMPARE(clock.takeReadings(), QStringList({QStringLiteral("date"), "time", "date", "time"}));
}

void tst_DragIndicator::everyNewExtremeReadsClockAgain_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QStringList>("readings");
    QTest::addColumn<int>("minSeconds");
    QTest::addColumn<int>("maxSeconds");

    const QStringList once{"date", "time"};
    QTest::newRow("within the range") << 5.0 << QStringList() << 0 << 0;
    QTest::newRow("minimum again") << 4.0 << QStringList() << 0 << 0;
    QTest::newRow("maximum again") << 6.0 << QStringList() << 0 << 0;
    QTest::newRow("new minimum") << 3.0 << once << 61 << 0;
    QTest::newRow("new maximum") << 7.0 << once << 0 << 61;
}

void tst_DragIndicator::everyNewExtremeReadsClockAgain()
{
    QFETCH(double, value);
    QFETCH(QStringList, readings);
    QFETCH(int, minSeconds);
    QFETCH(int, maxSeconds);

    Record record = filledRecord(4, 6);
    DragIndicator indicator;
    TestClock clock(noon.addSecs(60), 1000);
    QCOMPARE(indicator.checkInstance(record, value), !readings.isEmpty());
    QCOMPARE(clock.takeReadings(), readings);
    QCOMPARE(record.minValueDate, noon.addSecs(minSeconds));
    QCOMPARE(record.maxValueDate, noon.addSecs(maxSeconds));
}

void tst_DragIndicator::dateMayStraddleMidnight()
{
    const QDateTime beforeMidnight(QDate(2024, 2, 29), QTime(23, 59, 59, 999));
    // The date is read before the time: at midnight, the new time is combined with the old date.
    const QDateTime straddling(QDate(2024, 2, 29), QTime(0, 0));
    DragIndicator indicator;
    Record record;
    TestClock clock(beforeMidnight, 1);
    QVERIFY(indicator.checkInstance(record, 1));
    QCOMPARE(record.minValueDate, straddling);
    clock.set(beforeMidnight);
    QVERIFY(indicator.checkInstance(record, 2));
    QCOMPARE(record.maxValueDate, straddling);
    clock.set(beforeMidnight);
    record.minValueDate = noon;
    QVERIFY(indicator.checkInstance(record, 0));
    QCOMPARE(record.minValueDate, straddling);
}

void tst_DragIndicator::clockSetBackYieldsEarlierDate()
{
    DragIndicator indicator;
    TestClock clock(noon);
    QVERIFY(indicator.compute(1));
    clock.set(noon.addYears(-1));
    QVERIFY(indicator.compute(2));
    QCOMPARE(minDateOf(indicator, 0), QStringLiteral("2024-03-01T12:00:00"));
    QCOMPARE(maxDateOf(indicator, 0), QStringLiteral("2023-03-01T12:00:00"));
}

void tst_DragIndicator::datesKeepTheirTimeSpec_data()
{
    QTest::addColumn<QDateTime>("before");
    QTest::addColumn<QDateTime>("after");

    const QDate newDay(2024, 3, 2);
    const QTime newTime(13, 14, 15, 16);
    QTest::newRow("no previous date") << QDateTime() << QDateTime(newDay, newTime);
    QTest::newRow("local") << noon << QDateTime(newDay, newTime);
    QTest::newRow("UTC") << QDateTime(noon.date(), noon.time(), Qt::UTC)
                         << QDateTime(newDay, newTime, Qt::UTC);
    QTest::newRow("offset") << QDateTime(noon.date(), noon.time(), Qt::OffsetFromUTC, 7200)
                            << QDateTime(newDay, newTime, Qt::OffsetFromUTC, 7200);
}

// An update replaces the date and time, but not the time spec.
void tst_DragIndicator::datesKeepTheirTimeSpec()
{
    QFETCH(QDateTime, before);
    QFETCH(QDateTime, after);

    Record record = filledRecord(9, 1);
    record.minValueDate = before;
    record.maxValueDate = before;
    DragIndicator indicator;
    const TestClock clock(QDateTime(after.date(), after.time()));
    QVERIFY(indicator.checkInstance(record, 5));
    for (const QDateTime& date : {record.minValueDate, record.maxValueDate}) {
        QCOMPARE(date, after);
        QCOMPARE(date.timeSpec(), after.timeSpec());
        QCOMPARE(date.offsetFromUtc(), after.offsetFromUtc());
    }
}

void tst_DragIndicator::computeUpdatesEveryRecord()
{
    DragIndicator indicator;
    QVERIFY(
        indicator.fromJsonArray({Records::object(0, 10, isoDate), Records::object(4, 6, isoDate)}));
    QVERIFY(!indicator.compute(5));
    // A change in the second record only, in the first only, and in both.
    QVERIFY(indicator.compute(8));
    QCOMPARE(rangeOf(indicator, 0), QByteArray("0 to 10"));
    QCOMPARE(rangeOf(indicator, 1), QByteArray("4 to 8"));
    QVERIFY(
        indicator.fromJsonArray({Records::object(4, 6, isoDate), Records::object(0, 10, isoDate)}));
    QVERIFY(indicator.compute(8));
    QCOMPARE(rangeOf(indicator, 0), QByteArray("4 to 8"));
    QCOMPARE(rangeOf(indicator, 1), QByteArray("0 to 10"));

    TestClock clock(noon, 1000);
    QVERIFY(indicator.compute(12));
    QCOMPARE(rangeOf(indicator, 0), QByteArray("4 to 12"));
    QCOMPARE(rangeOf(indicator, 1), QByteArray("0 to 12"));
    // Records are updated in list order.
    QCOMPARE(maxDateOf(indicator, 0), QStringLiteral("2024-03-01T12:00:01"));
    QCOMPARE(maxDateOf(indicator, 1), QStringLiteral("2024-03-01T12:00:03"));
}

void tst_DragIndicator::resetClearsOnlyFirstRecord()
{
    DragIndicator indicator;
    QVERIFY(indicator.compute(5));
    QVERIFY(indicator.compute(7));
    const QJsonValue second = indicator.asJsonArray().at(1);
    indicator.reset();
    QVERIFY(!indicator.isInitialized(DragIndicator::ResettableInstance));
    QVERIFY(indicator.isInitialized(DragIndicator::PermanentInstance));
    QCOMPARE(indicator.asJsonArray(), QJsonArray({Records::emptyObject(), second}));

    // The first record starts with the next value; the second continues.
    QVERIFY(indicator.compute(6));
    QCOMPARE(rangeOf(indicator, 0), QByteArray("6 to 6"));
    QCOMPARE(indicator.asJsonArray().at(1), second);
    QVERIFY(indicator.compute(8));
    QCOMPARE(rangeOf(indicator, 0), QByteArray("6 to 8"));
    QCOMPARE(rangeOf(indicator, 1), QByteArray("5 to 8"));
}

void tst_DragIndicator::resetDiscardsNaN()
{
    DragIndicator indicator;
    QVERIFY(indicator.compute(notANumber));
    QVERIFY(!indicator.compute(1));
    indicator.reset();
    QVERIFY(indicator.compute(1));
    QCOMPARE(rangeOf(indicator, 0), QByteArray("1 to 1"));
    QCOMPARE(rangeOf(indicator, 1), QByteArray("nan to nan"));
}

void tst_DragIndicator::initObjectAppendsRecords()
{
    DragIndicator indicator;
    QVERIFY(indicator.compute(5));
    const QJsonArray before = indicator.asJsonArray();
    indicator.initObject();
    QCOMPARE(indicator.asJsonArray(), QJsonArray({before.at(0), before.at(1),
                                                  Records::emptyObject(), Records::emptyObject()}));
    for (const int index : {2, 3}) {
        QVERIFY(!indicator.isInitialized(Records::at(index)));
    }
    QVERIFY(indicator.compute(9));
    for (const int index : {0, 1}) {
        QCOMPARE(rangeOf(indicator, index), QByteArray("5 to 9"));
    }
    for (const int index : {2, 3}) {
        QVERIFY(indicator.isInitialized(Records::at(index)));
        QCOMPARE(rangeOf(indicator, index), QByteArray("9 to 9"));
    }
    expectMissingRecord("max", 4, initializedSignature);
    QVERIFY(!indicator.isInitialized(Records::at(4)));

    const QJsonArray computed = indicator.asJsonArray();
    indicator.reset();
    QCOMPARE(indicator.asJsonArray(),
             QJsonArray({Records::emptyObject(), computed.at(1), computed.at(2), computed.at(3)}));
}

void tst_DragIndicator::emptyListIgnoresValues()
{
    DragIndicator indicator;
    messages().expectWarning("DragIndicator",
                             "Received invalid count for drag indicator instances: 0 , 2 !");
    messages().expectWarning("DragIndicator",
                             "Resetting drag indicator due to errors on importing json data!");
    QVERIFY(!indicator.fromJsonArray(QJsonArray()));
    indicator.reset();
    QVERIFY(!indicator.compute(1));
    QCOMPARE(indicator.asJsonArray(), QJsonArray());
    for (const int index : {0, 1}) {
        expectMissingRecord("min", index, minSignature);
        expectMissingRecord("max", index, maxSignature);
        QCOMPARE(rangeOf(indicator, index), QByteArray("0 to 0"));
        expectMissingRecord("max", index, initializedSignature);
        QVERIFY(!indicator.isInitialized(Records::at(index)));
    }
    indicator.initObject();
    QCOMPARE(indicator.asJsonArray(), QJsonArray({Records::emptyObject(), Records::emptyObject()}));
}

void tst_DragIndicator::missingRecordWarns_data()
{
    QTest::addColumn<int>("index");

    QTest::newRow("first index after the end") << 2;
    QTest::newRow("second index after the end") << 3;
    QTest::newRow("large") << 1000000;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
}

void tst_DragIndicator::missingRecordWarns()
{
    QFETCH(int, index);

    DragIndicator indicator;
    QVERIFY(indicator.compute(5));
    expectMissingRecord("min", index, minSignature);
    QCOMPARE(numberText(indicator.getMinValue(Records::at(index))), QByteArray("0"));
    expectMissingRecord("max", index, maxSignature);
    QCOMPARE(numberText(indicator.getMaxValue(Records::at(index))), QByteArray("0"));
    expectMissingRecord("max", index, initializedSignature);
    QVERIFY(!indicator.isInitialized(Records::at(index)));
}

void tst_DragIndicator::negativeIndexAbortsProcess_data()
{
    QTest::addColumn<Operation>("read");

    for (const int index : {-1, std::numeric_limits<int>::min()}) {
        QTest::addRow("getMinValue(%d)", index)
            << Operation([index](DragIndicator& it) { it.getMinValue(Records::at(index)); });
        QTest::addRow("getMaxValue(%d)", index)
            << Operation([index](DragIndicator& it) { it.getMaxValue(Records::at(index)); });
        QTest::addRow("isInitialized(%d)", index)
            << Operation([index](DragIndicator& it) { it.isInitialized(Records::at(index)); });
    }
    QTest::newRow("getMinValue(-1), no records") << Operation([](DragIndicator& it) {
        it.fromJsonArray(QJsonArray());
        it.getMinValue(Records::at(-1));
    });
}

void tst_DragIndicator::negativeIndexAbortsProcess()
{
    QFETCH(Operation, read);

    const ChildResult result = ChildProcess::run([&read] {
        DragIndicator indicator;
        read(indicator);
        return 0;
    });
    QVERIFY(!result.exited);
    QCOMPARE(result.signal, SIGABRT);
    QVERIFY2(result.output.contains("ASSERT failure in QList<T>::at: \"index out of range\""),
             result.output.constData());
    QVERIFY2(!result.output.contains("Error on reading"), result.output.constData());
}

void tst_DragIndicator::importedTextDatesReportOneChange_data()
{
    QTest::addColumn<QJsonArray>("imported");
    QTest::addColumn<QVector<double>>("values");
    QTest::addColumn<QByteArray>("changes");

    using Values = QVector<double>;
    QTest::newRow("ISO dates") << records(isoDate) << Values{5, 5} << QByteArray("nn");
    QTest::newRow("within the range") << records(textDate) << Values{5, 5, 5} << QByteArray("ynn");
    QTest::newRow("at the extremes") << records(textDate) << Values{4, 6} << QByteArray("yn");
    QTest::newRow("NaN") << records(textDate) << Values{notANumber, 5} << QByteArray("yn");
    QTest::newRow("value that changes an extreme")
        << records(textDate) << Values{7, 5} << QByteArray("yn");
    QTest::newRow("no record initialized")
        << records(textDate, false, false) << Values{5, 5, 5} << QByteArray("yyn");
    QTest::newRow("only first record initialized")
        << records(textDate, true, false) << Values{5, 5} << QByteArray("yn");
    QTest::newRow("only second record initialized")
        << records(textDate, false, true) << Values{5, 5} << QByteArray("yn");
}

void tst_DragIndicator::importedTextDatesReportOneChange()
{
    QFETCH(QJsonArray, imported);
    QFETCH(QVector<double>, values);
    QFETCH(QByteArray, changes);

    DragIndicator indicator;
    QVERIFY(indicator.fromJsonArray(imported));
    QByteArray results;
    for (const double value : values) {
        results += indicator.compute(value) ? 'y' : 'n';
    }
    QCOMPARE(results, changes);
}

void tst_DragIndicator::otherCallsKeepTextDatesPending_data()
{
    QTest::addColumn<Operation>("operation");

    QTest::newRow("no call") << Operation([](DragIndicator&) {});
    QTest::newRow("first value of a record") << Operation([](DragIndicator& it) {
        Record record;
        QVERIFY(it.checkInstance(record, 5));
    });
    QTest::newRow("reset") << Operation([](DragIndicator& it) { it.reset(); });
    QTest::newRow("initObject") << Operation([](DragIndicator& it) { it.initObject(); });
    QTest::newRow("getters") << Operation([](DragIndicator& it) {
        it.getMinValue(DragIndicator::ResettableInstance);
        it.getMaxValue(DragIndicator::ResettableInstance);
        it.isInitialized(DragIndicator::ResettableInstance);
        it.isIsoFormat(isoDate);
    });
    QTest::newRow("export") << Operation([](DragIndicator& it) { it.asJsonArray(); });
    QTest::newRow("import of ISO dates")
        << Operation([](DragIndicator& it) { QVERIFY(it.fromJsonArray(records(isoDate))); });
    QTest::newRow("copy") << Operation([](DragIndicator& it) {
        const DragIndicator copy(it);
        it = DragIndicator();
        it = copy;
    });
}

void tst_DragIndicator::otherCallsKeepTextDatesPending()
{
    QFETCH(Operation, operation);

    DragIndicator indicator;
    QVERIFY(indicator.fromJsonArray(records(textDate)));
    operation(indicator);
    QVERIFY(Records::takeTextDateImported(indicator));
    QVERIFY(!Records::takeTextDateImported(indicator));
}

void tst_DragIndicator::copiesAreIndependent()
{
    DragIndicator original;
    QVERIFY(original.fromJsonArray(records(textDate)));
    const QJsonArray before = original.asJsonArray();
    DragIndicator copy(original);
    DragIndicator assigned;
    assigned = original;
    QCOMPARE(copy.asJsonArray(), before);
    QCOMPARE(assigned.asJsonArray(), before);

    QVERIFY(copy.compute(100));
    assigned.reset();
    QCOMPARE(original.asJsonArray(), before);
    QCOMPARE(rangeOf(copy, 0), QByteArray("4 to 100"));
    QVERIFY(!assigned.isInitialized(DragIndicator::ResettableInstance));
    QVERIFY(original.compute(5));
    QVERIFY(!original.compute(5));
    QVERIFY(!copy.compute(5));
    QVERIFY(Records::takeTextDateImported(assigned));
}

void tst_DragIndicator::recordsAreSharedUntilOneChanges()
{
    // The address of the list's heap block, which is stored after the vtable pointer.
    const auto records = [](const DragIndicator& indicator) {
        return reinterpret_cast<const void* const*>(&indicator)[1];
    };
    DragIndicator indicator;
    indicator.compute(1.0);
    indicator.compute(3.0);
    const DragIndicator copy = indicator;
    for (const double value : {2.0, 1.0, 3.0}) {
        QVERIFY(!indicator.compute(value));
        QCOMPARE(records(indicator), records(copy));
    }
    QVERIFY(indicator.compute(4.0));
    QVERIFY(records(indicator) != records(copy));
}

void tst_DragIndicator::isoDatesAreRecognized_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isIso");

    const char32_t mathematicalDigit = 0x1D7CE;
    QTest::newRow("null") << QString() << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("ISO") << isoDate << true;
    QTest::newRow("text") << textDate << false;
    QTest::newRow("0") << "0" << true;
    QTest::newRow("9") << "9x" << true;
    QTest::newRow("character before 0") << "/1" << false;
    QTest::newRow("character after 9") << ":1" << false;
    QTest::newRow("minus") << "-2024-03-01" << false;
    QTest::newRow("space") << " 2024-03-01" << false;
    QTest::newRow("digit as second character") << "x1" << false;
    QTest::newRow("NUL") << QString(1, QChar(0)) << false;
    QTest::newRow("Arabic-Indic") << QStringLiteral(u"\u0660") << true;
    QTest::newRow("Devanagari") << QStringLiteral(u"\u096F") << true;
    QTest::newRow("full width") << QStringLiteral(u"\uFF12") << true;
    QTest::newRow("superscript") << QStringLiteral(u"\u00B2") << false;
    QTest::newRow("Roman") << QStringLiteral(u"\u2160") << false;
    QTest::newRow("fraction") << QStringLiteral(u"\u00BD") << false;
    QTest::newRow("two code units") << QString::fromUcs4(&mathematicalDigit, 1) << false;
}

void tst_DragIndicator::isoDatesAreRecognized()
{
    QFETCH(QString, text);
    QFETCH(bool, isIso);

    QCOMPARE(DragIndicator().isIsoFormat(text), isIso);
}

QTEST_GUILESS_MAIN(tst_DragIndicator)
#include "tst_DragIndicator.moc"
