#include "DragIndicator.h"
#include "Records.h"
#include "TestCase.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonValue>

#include <limits>

// The form in which records are saved: what is written, and how exactly damage is reported.
class tst_DragIndicatorJson : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void exportOfEmptyRecords();
    void exportOfValues();
    void exportOfNoRecords();
    void wrongCount_data();
    void wrongCount();
    void elementIsNoObject_data();
    void elementIsNoObject();
    void onlyObjectLandsFirst();
    void missingKeyAsLogged();
    void everyStateOfEveryMember_data();
    void everyStateOfEveryMember();
    void dateForms_data();
    void dateForms();
    void textDateIsReportedOnce_data();
    void textDateIsReportedOnce();
    void failedImportKeepsWhatItTook();
    void freshExportCannotBeImported();
    void exportOfImportIsTheSame();
    void fileRoundTrip();
    void valuesThatJsonDoesNotKnow_data();
    void valuesThatJsonDoesNotKnow();

private:
    void expectFromImport(const QString& text);
    void expectMissingKey(const QString& key, const QJsonObject& object);
    void expectEnd();
};

namespace {

const QString isoDate = QStringLiteral("2024-03-01T12:30:05");
const QString textDate = QStringLiteral("Fri Mar 1 12:30:05 2024");

QJsonObject goodObject()
{
    return Records::object(1.5, 2.5, isoDate);
}

QJsonObject objectAt(const DragIndicator& indicator, int index)
{
    return indicator.asJsonArray().at(index).toObject();
}

int recordCount(const DragIndicator& indicator)
{
    return indicator.asJsonArray().size();
}

} // namespace

void tst_DragIndicatorJson::expectFromImport(const QString& text)
{
    messages()
        .expectWarning("DragIndicator", text)
        .function("bool DragIndicator::fromJsonArray(const QJsonArray&)");
}

void tst_DragIndicatorJson::expectMissingKey(const QString& key, const QJsonObject& object)
{
    QString shown;
    QDebug(&shown) << object;
    expectFromImport(
        QStringLiteral("Cannot find key \"%1\" in json object: %2 !").arg(key, shown.trimmed()));
}

void tst_DragIndicatorJson::expectEnd()
{
    expectFromImport(
        QStringLiteral("Resetting drag indicator due to errors on importing json data!"));
}

void tst_DragIndicatorJson::exportOfEmptyRecords()
{
    const QJsonArray array = DragIndicator().asJsonArray();
    QCOMPARE(array, (QJsonArray{Records::emptyObject(), Records::emptyObject()}));
    QCOMPARE(array.at(0).toObject().keys(),
             (QStringList{QStringLiteral("Initialized"), QStringLiteral("MaxValue"),
                          QStringLiteral("MaxValueDate"), QStringLiteral("MinValue"),
                          QStringLiteral("MinValueDate")}));
}

void tst_DragIndicatorJson::exportOfValues()
{
    DragIndicator indicator;
    indicator.compute(3.0);
    indicator.compute(-1.25);
    const QJsonObject object = objectAt(indicator, 1);
    QCOMPARE(object.value(QStringLiteral("MinValue")), QJsonValue(-1.25));
    QCOMPARE(object.value(QStringLiteral("MaxValue")), QJsonValue(3.0));
    QCOMPARE(object.value(QStringLiteral("Initialized")), QJsonValue(true));
    for (const char* key : {"MinValueDate", "MaxValueDate"}) {
        const QString date = object.value(QLatin1String(key)).toString();
        // Local time, without fraction and offset.
        QCOMPARE(date.size(), isoDate.size());
        const QDateTime parsed = QDateTime::fromString(date, Qt::ISODate);
        QVERIFY(parsed.isValid());
        QVERIFY(qAbs(parsed.secsTo(QDateTime::currentDateTime())) <= 5);
    }
}

void tst_DragIndicatorJson::exportOfNoRecords()
{
    DragIndicator indicator;
    expectFromImport(
        QStringLiteral("Received invalid count for drag indicator instances: 0 , 2 !"));
    expectEnd();
    QVERIFY(!indicator.fromJsonArray(QJsonArray()));
    QCOMPARE(indicator.asJsonArray(), QJsonArray());
}

void tst_DragIndicatorJson::wrongCount_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("none") << 0;
    QTest::newRow("one") << 1;
    QTest::newRow("three") << 3;
    QTest::newRow("many") << 100;
}

void tst_DragIndicatorJson::wrongCount()
{
    QFETCH(int, count);
    QJsonArray array;
    for (int i = 0; i < count; ++i) {
        array.append(goodObject());
    }
    DragIndicator indicator;
    indicator.compute(1.0);
    expectFromImport(
        QStringLiteral("Received invalid count for drag indicator instances: %1 , 2 !").arg(count));
    expectEnd();
    QVERIFY(!indicator.fromJsonArray(array));
    QCOMPARE(recordCount(indicator), 0);
    QVERIFY(!indicator.compute(1.0));
    messages().expectWarning("DragIndicator",
                             QStringLiteral("Error on reading min value for instance 0 !"));
    QCOMPARE(indicator.getMinValue(Records::at(0)), 0.0);
}

void tst_DragIndicatorJson::elementIsNoObject_data()
{
    QTest::addColumn<QJsonValue>("element");
    QTest::addColumn<QString>("shown");
    QTest::newRow("null") << QJsonValue() << QStringLiteral("QJsonValue(null)");
    QTest::newRow("bool") << QJsonValue(true) << QStringLiteral("QJsonValue(bool, true)");
    QTest::newRow("number") << QJsonValue(5) << QStringLiteral("QJsonValue(double, 5)");
    QTest::newRow("text") << QJsonValue(QStringLiteral("x"))
                          << QStringLiteral("QJsonValue(string, \"x\")");
    QTest::newRow("array") << QJsonValue(QJsonArray{1})
                           << QStringLiteral("QJsonValue(array, QJsonArray([1]))");
    QTest::newRow("undefined") << QJsonValue(QJsonValue::Undefined)
                               << QStringLiteral("QJsonValue(null)");
}

void tst_DragIndicatorJson::elementIsNoObject()
{
    QFETCH(QJsonValue, element);
    QFETCH(QString, shown);
    const QString text =
        QStringLiteral("Cannot convert json value for instance to object: %1 !").arg(shown);

    DragIndicator second;
    expectFromImport(text);
    expectEnd();
    QVERIFY(!second.fromJsonArray({goodObject(), element}));
    QCOMPARE(second.asJsonArray(), QJsonArray{goodObject()});

    DragIndicator both;
    expectFromImport(text);
    expectFromImport(text);
    expectEnd();
    QVERIFY(!both.fromJsonArray({element, element}));
    QCOMPARE(recordCount(both), 0);
}

void tst_DragIndicatorJson::onlyObjectLandsFirst()
{
    DragIndicator indicator;
    expectFromImport(QStringLiteral(
        "Cannot convert json value for instance to object: QJsonValue(double, 5) !"));
    expectEnd();
    QVERIFY(!indicator.fromJsonArray({5, goodObject()}));
    QCOMPARE(recordCount(indicator), 1);
    QCOMPARE(indicator.getMaxValue(Records::at(0)), 2.5);
}

void tst_DragIndicatorJson::missingKeyAsLogged()
{
    QJsonObject object = goodObject();
    object.remove(QStringLiteral("Initialized"));
    DragIndicator indicator;
    expectFromImport(
        QStringLiteral("Cannot find key \"Initialized\" in json object: "
                       "QJsonObject({\"MaxValue\":2.5,\"MaxValueDate\":\"2024-03-01T12:30:05\","
                       "\"MinValue\":1.5,\"MinValueDate\":\"2024-03-01T12:30:05\"}) !"));
    expectEnd();
    QVERIFY(!indicator.fromJsonArray({object, goodObject()}));
    QCOMPARE(recordCount(indicator), 2);
    QVERIFY(!indicator.isInitialized(Records::at(0)));
    QVERIFY(indicator.isInitialized(Records::at(1)));
}

void tst_DragIndicatorJson::everyStateOfEveryMember_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("first record") << 0;
    QTest::newRow("second record") << 1;
}

void tst_DragIndicatorJson::everyStateOfEveryMember()
{
    QFETCH(int, index);

    struct Member
    {
        QString key;
        QJsonValue wrongType;
        QJsonValue unread; // what the record has when the member was not read
        QString emptyText;
    };
    const Member members[] = {
        {QStringLiteral("MinValue"), QStringLiteral("1.5"), 0.0, QString()},
        {QStringLiteral("MaxValue"), true, 0.0, QString()},
        {QStringLiteral("MinValueDate"), 20240301, QString(QLatin1String("")),
         QStringLiteral("Received an empty min date string!")},
        {QStringLiteral("MaxValueDate"), QJsonValue(), QString(QLatin1String("")),
         QStringLiteral("Received an empty max date string!")},
        {QStringLiteral("Initialized"), 1, false, QString()},
    };
    enum State
    {
        Good,
        Missing,
        WrongType,
        Empty
    };
    constexpr int states = 4;

    int cases = 0;
    for (int code = 0; code < states * states * states * states * states; ++code) {
        QJsonObject object = goodObject();
        QJsonObject expected = object;
        QVector<State> state;
        bool isPossible = true;
        for (int i = 0, rest = code; i < 5; ++i, rest /= states) {
            const Member& member = members[i];
            state.append(State(rest % states));
            switch (state.last()) {
            case Good:
                continue;
            case Missing:
                object.remove(member.key);
                break;
            case WrongType:
                object.insert(member.key, member.wrongType);
                break;
            case Empty:
                isPossible = isPossible && !member.emptyText.isEmpty();
                object.insert(member.key, QString(QLatin1String("")));
                break;
            }
            expected.insert(member.key, member.unread);
        }
        if (!isPossible) {
            continue;
        }
        ++cases;
        for (int i = 0; i < 5; ++i) {
            if (state.at(i) == Empty) {
                expectFromImport(members[i].emptyText);
            } else if (state.at(i) != Good) {
                expectMissingKey(members[i].key, object);
            }
        }
        const bool isComplete = code == 0;
        if (!isComplete) {
            expectEnd();
        }
        QJsonArray array{goodObject(), goodObject()};
        array.replace(index, object);
        QJsonArray expectedArray{goodObject(), goodObject()};
        expectedArray.replace(index, expected);

        DragIndicator indicator;
        QCOMPARE(indicator.fromJsonArray(array), isComplete);
        QCOMPARE(indicator.asJsonArray(), expectedArray);
        const QStringList problems = messages().takeProblems();
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
    }
    QCOMPARE(cases, 3 * 3 * 4 * 4 * 3);
}

void tst_DragIndicatorJson::dateForms_data()
{
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("exported");
    QTest::addColumn<bool>("isText");

    const QString none;
    QTest::newRow("ISO") << isoDate << isoDate << false;
    QTest::newRow("ISO, UTC") << QStringLiteral("2024-03-01T12:30:05Z")
                              << QStringLiteral("2024-03-01T12:30:05Z") << false;
    QTest::newRow("ISO, offset") << QStringLiteral("2024-03-01T12:30:05+02:00")
                                 << QStringLiteral("2024-03-01T12:30:05+02:00") << false;
    QTest::newRow("ISO, fraction") << QStringLiteral("2024-03-01T12:30:05.678") << isoDate << false;
    QTest::newRow("ISO, date only")
        << QStringLiteral("2024-03-01") << QStringLiteral("2024-03-01T00:00:00") << false;
    QTest::newRow("ISO, no such day") << QStringLiteral("2024-02-31T12:30:05") << none << false;
    QTest::newRow("digits alone") << QStringLiteral("1") << none << false;
    QTest::newRow("digit of another script")
        << QStringLiteral("\u0662\u0660\u0662\u0664-03-01T12:30:05") << none << false;
    QTest::newRow("text") << textDate << isoDate << true;
    QTest::newRow("no date") << QStringLiteral("x") << none << true;
    QTest::newRow("blank first") << QStringLiteral(" 2024-03-01T12:30:05") << none << true;
}

void tst_DragIndicatorJson::dateForms()
{
    QFETCH(QString, date);
    QFETCH(QString, exported);
    QFETCH(bool, isText);
    DragIndicator indicator;
    // No date is checked: an invalid one is no error.
    QVERIFY(indicator.fromJsonArray(
        {Records::object(1.5, 2.5, date), Records::object(1.5, 2.5, isoDate)}));
    const QJsonObject object = objectAt(indicator, 0);
    QCOMPARE(object.value(QStringLiteral("MinValueDate")).toString(), exported);
    QCOMPARE(object.value(QStringLiteral("MaxValueDate")).toString(), exported);
    QCOMPARE(indicator.compute(2.0), isText);
}

void tst_DragIndicatorJson::textDateIsReportedOnce_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("key");
    for (int index : {0, 1}) {
        for (const char* key : {"MinValueDate", "MaxValueDate"}) {
            QTest::addRow("record %d, %s", index, key) << index << QString::fromLatin1(key);
        }
    }
}

void tst_DragIndicatorJson::textDateIsReportedOnce()
{
    QFETCH(int, index);
    QFETCH(QString, key);
    QJsonObject object = goodObject();
    object.insert(key, textDate);
    QJsonArray array{goodObject(), goodObject()};
    array.replace(index, object);
    DragIndicator indicator;
    QVERIFY(indicator.fromJsonArray(array));
    QVERIFY(indicator.compute(2.0));
    QVERIFY(!indicator.compute(2.0));
    QCOMPARE(indicator.asJsonArray(), (QJsonArray{goodObject(), goodObject()}));
}

void tst_DragIndicatorJson::failedImportKeepsWhatItTook()
{
    QJsonObject object = Records::object(1.5, 2.5, textDate);
    object.remove(QStringLiteral("MinValue"));
    DragIndicator indicator;
    expectMissingKey(QStringLiteral("MinValue"), object);
    expectEnd();
    QVERIFY(!indicator.fromJsonArray({object, goodObject()}));
    QCOMPARE(indicator.getMinValue(Records::at(0)), 0.0);
    QCOMPARE(indicator.getMaxValue(Records::at(0)), 2.5);
    QVERIFY(indicator.compute(2.0)); // the text date
    QVERIFY(!indicator.compute(2.0));

    // The next import begins with nothing.
    QVERIFY(indicator.fromJsonArray({goodObject(), goodObject()}));
    QCOMPARE(recordCount(indicator), 2);
}

void tst_DragIndicatorJson::freshExportCannotBeImported()
{
    DragIndicator indicator;
    for (int i = 0; i < 2; ++i) {
        expectFromImport(QStringLiteral("Received an empty min date string!"));
        expectFromImport(QStringLiteral("Received an empty max date string!"));
    }
    expectEnd();
    QVERIFY(!indicator.fromJsonArray(DragIndicator().asJsonArray()));
    QCOMPARE(indicator.asJsonArray(), DragIndicator().asJsonArray());
}

void tst_DragIndicatorJson::exportOfImportIsTheSame()
{
    DragIndicator indicator;
    indicator.compute(0.1);
    indicator.compute(-1e300);
    indicator.reset();
    indicator.compute(7.0);
    const QJsonArray array = indicator.asJsonArray();
    DragIndicator copy;
    QVERIFY(copy.fromJsonArray(array));
    QCOMPARE(copy.asJsonArray(), array);
    QVERIFY(!copy.compute(7.0)); // no text date was among them
}

void tst_DragIndicatorJson::fileRoundTrip()
{
    DragIndicator indicator;
    indicator.compute(0.1);
    indicator.compute(12345.678901234567);
    const QString file =
        writeFile(QStringLiteral("records.json"), QJsonDocument(indicator.asJsonArray()).toJson());
    DragIndicator restored;
    QVERIFY(restored.fromJsonArray(QJsonDocument::fromJson(readFile(file)).array()));
    QCOMPARE(restored.asJsonArray(), indicator.asJsonArray());
    QCOMPARE(restored.getMaxValue(Records::at(1)), 12345.678901234567);
}

void tst_DragIndicatorJson::valuesThatJsonDoesNotKnow_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("negative infinity") << -std::numeric_limits<double>::infinity();
}

// Written to a file such a value is null, which is no number any more.
void tst_DragIndicatorJson::valuesThatJsonDoesNotKnow()
{
    QFETCH(double, value);
    DragIndicator indicator;
    indicator.compute(value);
    const QJsonArray array =
        QJsonDocument::fromJson(QJsonDocument(indicator.asJsonArray()).toJson()).array();
    for (const QJsonValue& element : array) {
        QVERIFY(element.toObject().value(QStringLiteral("MinValue")).isNull());
        expectMissingKey(QStringLiteral("MinValue"), element.toObject());
        expectMissingKey(QStringLiteral("MaxValue"), element.toObject());
    }
    expectEnd();
    DragIndicator restored;
    QVERIFY(!restored.fromJsonArray(array));
    QVERIFY(restored.isInitialized(Records::at(0)));
    QCOMPARE(restored.getMinValue(Records::at(0)), 0.0);
}

QTEST_GUILESS_MAIN(tst_DragIndicatorJson)
#include "tst_DragIndicatorJson.moc"
