#include "DragIndicator.h"
#include "QtVersion.h"
#include "Records.h"
#include "TestCase.h"
#include "TimeZone.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonValue>
#include <QtCore/QLocale>
#include <QtCore/QProcess>

#include <limits>

// Tests the JSON format of saved records, and the errors that import reports.
class tst_DragIndicatorJson : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void exportOfEmptyRecords();
    void exportOfValues();
    void exportOfNoRecords();
    void invalidCountIsReported_data();
    void invalidCountIsReported();
    void nonObjectElementIsReported_data();
    void nonObjectElementIsReported();
    void errorsAreReportedInOrder();
    void onlyValidElementBecomesFirstRecord();
    void missingKeyIsLoggedWithItsObject();
    void otherMembersAreIgnored();
    void everyStateOfEveryMember_data();
    void everyStateOfEveryMember();
    void dateFormatsAreParsed_data();
    void dateFormatsAreParsed();
    void datesUnderLocales_data();
    void datesUnderLocales();
    void timeInDstGapLosesItsDate_data();
    void timeInDstGapLosesItsDate();
    void timesInDstOverlapExportTheSameDate();
    void textDateIsReportedOnce_data();
    void textDateIsReportedOnce();
    void failedImportKeepsImportedMembers();
    void failedImportKeepsTextDate_data();
    void failedImportKeepsTextDate();
    void exportOfEmptyRecordsCannotBeImported();
    void exportOfImportIsIdentical_data();
    void exportOfImportIsIdentical();
    void fileRoundTrip();
    void nonFiniteValuesAreLostInJson_data();
    void nonFiniteValuesAreLostInJson();

private:
    void expectFromImport(const QString& text);
    void expectMissingKey(const QString& key, const QJsonObject& object);
    void expectResetMessage();
};

namespace {

const QString isoDate = "2024-03-01T12:30:05";
const QString textDate = "Fri Mar 1 12:30:05 2024";

QJsonObject validObject()
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

// Sets the default locale during the object's lifetime.
class DefaultLocale
{
public:
    explicit DefaultLocale(const QLocale& locale) { QLocale::setDefault(locale); }
    ~DefaultLocale() { QLocale::setDefault(m_previous); }

private:
    Q_DISABLE_COPY(DefaultLocale)

    const QLocale m_previous;
};

const QByteArray centralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

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

void tst_DragIndicatorJson::expectResetMessage()
{
    expectFromImport("Resetting drag indicator due to errors on importing json data!");
}

void tst_DragIndicatorJson::exportOfEmptyRecords()
{
    const QJsonArray array = DragIndicator().asJsonArray();
    QCOMPARE(array, (QJsonArray{Records::emptyObject(), Records::emptyObject()}));
    QCOMPARE(array.at(0).toObject().keys(),
             (QStringList{"Initialized", "MaxValue", "MaxValueDate", "MinValue", "MinValueDate"}));
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
        // Local time without fraction or offset.
        QCOMPARE(date.size(), isoDate.size());
        const QDateTime parsed = QDateTime::fromString(date, Qt::ISODate);
        QVERIFY(parsed.isValid());
        QVERIFY(qAbs(parsed.secsTo(QDateTime::currentDateTime())) <= 5);
    }
}

void tst_DragIndicatorJson::exportOfNoRecords()
{
    DragIndicator indicator;
    expectFromImport("Received invalid count for drag indicator instances: 0 , 2 !");
    expectResetMessage();
    QVERIFY(!indicator.fromJsonArray(QJsonArray()));
    QCOMPARE(indicator.asJsonArray(), QJsonArray());
}

void tst_DragIndicatorJson::invalidCountIsReported_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("no record") << 0;
    QTest::newRow("one record") << 1;
    QTest::newRow("three records") << 3;
    QTest::newRow("100 records") << 100;
}

void tst_DragIndicatorJson::invalidCountIsReported()
{
    QFETCH(int, count);
    QJsonArray array;
    for (int i = 0; i < count; ++i) {
        array.append(validObject());
    }
    DragIndicator indicator;
    indicator.compute(1.0);
    expectFromImport(
        QStringLiteral("Received invalid count for drag indicator instances: %1 , 2 !").arg(count));
    expectResetMessage();
    QVERIFY(!indicator.fromJsonArray(array));
    QCOMPARE(recordCount(indicator), 0);
    QVERIFY(!indicator.compute(1.0));
    messages().expectWarning("DragIndicator", "Error on reading min value for instance 0 !");
    QCOMPARE(indicator.getMinValue(Records::at(0)), 0.0);
}

void tst_DragIndicatorJson::nonObjectElementIsReported_data()
{
    QTest::addColumn<QJsonValue>("element");
    QTest::addColumn<QString>("shown");
    QTest::newRow("null") << QJsonValue() << "QJsonValue(null)";
    QTest::newRow("bool") << QJsonValue(true) << "QJsonValue(bool, true)";
    QTest::newRow("number") << QJsonValue(5) << "QJsonValue(double, 5)";
    QTest::newRow("text") << QJsonValue("x") << "QJsonValue(string, \"x\")";
    QTest::newRow("array") << QJsonValue(QJsonArray{1}) << "QJsonValue(array, QJsonArray([1]))";
    QTest::newRow("undefined") << QJsonValue(QJsonValue::Undefined) << "QJsonValue(null)";
}

void tst_DragIndicatorJson::nonObjectElementIsReported()
{
    QFETCH(QJsonValue, element);
    QFETCH(QString, shown);
    const QString text =
        QStringLiteral("Cannot convert json value for instance to object: %1 !").arg(shown);

    DragIndicator second;
    expectFromImport(text);
    expectResetMessage();
    QVERIFY(!second.fromJsonArray({validObject(), element}));
    QCOMPARE(second.asJsonArray(), QJsonArray{validObject()});

    DragIndicator both;
    expectFromImport(text);
    expectFromImport(text);
    expectResetMessage();
    QVERIFY(!both.fromJsonArray({element, element}));
    QCOMPARE(recordCount(both), 0);
}

void tst_DragIndicatorJson::errorsAreReportedInOrder()
{
    QJsonObject object = Records::object(1.5, 2.5, QString());
    object.remove("MaxValue");
    object.insert("Initialized", "true");
    DragIndicator indicator;
    const auto expectFromObject = [this, &object] {
        expectMissingKey("MaxValue", object);
        expectFromImport("Received an empty min date string!");
        expectFromImport("Received an empty max date string!");
        expectMissingKey("Initialized", object);
    };
    expectFromObject();
    expectFromObject();
    expectResetMessage();
    QVERIFY(!indicator.fromJsonArray({object, object}));
    const QJsonObject taken = Records::object(1.5, 0.0, QString(), false);
    QCOMPARE(indicator.asJsonArray(), (QJsonArray{taken, taken}));

    expectFromImport("Cannot convert json value for instance to object: QJsonValue(null) !");
    expectFromObject();
    expectResetMessage();
    QVERIFY(!indicator.fromJsonArray({QJsonValue(), object}));
    QCOMPARE(indicator.asJsonArray(), QJsonArray{taken});
}

void tst_DragIndicatorJson::onlyValidElementBecomesFirstRecord()
{
    DragIndicator indicator;
    expectFromImport(QStringLiteral(
        "Cannot convert json value for instance to object: QJsonValue(double, 5) !"));
    expectResetMessage();
    QVERIFY(!indicator.fromJsonArray({5, validObject()}));
    QCOMPARE(recordCount(indicator), 1);
    QCOMPARE(indicator.getMaxValue(Records::at(0)), 2.5);
}

void tst_DragIndicatorJson::missingKeyIsLoggedWithItsObject()
{
    QJsonObject object = validObject();
    object.remove("Initialized");
    DragIndicator indicator;
    expectFromImport(
        QStringLiteral("Cannot find key \"Initialized\" in json object: "
                       "QJsonObject({\"MaxValue\":2.5,\"MaxValueDate\":\"2024-03-01T12:30:05\","
                       "\"MinValue\":1.5,\"MinValueDate\":\"2024-03-01T12:30:05\"}) !"));
    expectResetMessage();
    QVERIFY(!indicator.fromJsonArray({object, validObject()}));
    QCOMPARE(recordCount(indicator), 2);
    QVERIFY(!indicator.isInitialized(Records::at(0)));
    QVERIFY(indicator.isInitialized(Records::at(1)));
}

void tst_DragIndicatorJson::otherMembersAreIgnored()
{
    QJsonObject object = validObject();
    object.insert("Unit", "bar");
    object.insert("minvalue", "keys are compared exactly");
    DragIndicator indicator;
    QVERIFY(indicator.fromJsonArray({object, validObject()}));
    QCOMPARE(indicator.asJsonArray(), (QJsonArray{validObject(), validObject()}));
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
        QJsonValue unread; // the member of the record if it cannot be imported
        QString emptyText;
    };
    const Member members[] = {
        {"MinValue", "1.5", 0.0, QString()},
        {"MaxValue", true, 0.0, QString()},
        {"MinValueDate", 20240301, QString(QLatin1String("")),
         "Received an empty min date string!"},
        {"MaxValueDate", QJsonValue(), QString(QLatin1String("")),
         "Received an empty max date string!"},
        {"Initialized", 1, false, QString()},
    };
    enum State
    {
        Valid,
        Missing,
        WrongType,
        Empty
    };
    constexpr int states = 4;

    int cases = 0;
    for (int code = 0; code < states * states * states * states * states; ++code) {
        QJsonObject object = validObject();
        QJsonObject expected = object;
        QVector<State> state;
        bool isPossible = true;
        for (int i = 0, rest = code; i < 5; ++i, rest /= states) {
            const Member& member = members[i];
            state.append(State(rest % states));
            switch (state.last()) {
            case Valid:
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
            } else if (state.at(i) != Valid) {
                expectMissingKey(members[i].key, object);
            }
        }
        const bool isComplete = code == 0;
        if (!isComplete) {
            expectResetMessage();
        }
        QJsonArray array{validObject(), validObject()};
        array.replace(index, object);
        QJsonArray expectedArray{validObject(), validObject()};
        expectedArray.replace(index, expected);

        DragIndicator indicator;
        QCOMPARE(indicator.fromJsonArray(array), isComplete);
        QCOMPARE(indicator.asJsonArray(), expectedArray);
        QVERIFY(!Records::takeTextDateImported(indicator)); // an empty date is not a text date
        const QStringList problems = messages().takeProblems();
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
    }
    QCOMPARE(cases, 3 * 3 * 4 * 4 * 3);
}

void tst_DragIndicatorJson::dateFormatsAreParsed_data()
{
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("exported");
    QTest::addColumn<bool>("isText");

    const QString none;
    QTest::newRow("ISO") << isoDate << isoDate << false;
    QTest::newRow("ISO, UTC") << "2024-03-01T12:30:05Z"
                              << "2024-03-01T12:30:05Z" << false;
    QTest::newRow("ISO, offset") << "2024-03-01T12:30:05+02:00"
                                 << "2024-03-01T12:30:05+02:00" << false;
    QTest::newRow("ISO, fraction") << "2024-03-01T12:30:05.678" << isoDate << false;
    QTest::newRow("ISO, date only") << "2024-03-01"
                                    << "2024-03-01T00:00:00" << false;
    QTest::newRow("ISO, invalid day") << "2024-02-31T12:30:05" << none << false;
    QTest::newRow("only digits") << "1" << none << false;
    QTest::newRow("non-Latin digit")
        << QStringLiteral("\u0662\u0660\u0662\u0664-03-01T12:30:05") << none << false;
    QTest::newRow("text") << textDate << isoDate << true;
    QTest::newRow("not a date") << "x" << none << true;
    QTest::newRow("leading space") << " 2024-03-01T12:30:05" << none << true;
}

void tst_DragIndicatorJson::dateFormatsAreParsed()
{
    QFETCH(QString, date);
    QFETCH(QString, exported);
    QFETCH(bool, isText);
    DragIndicator indicator;
    // Dates are not validated: an invalid one is not an error.
    QVERIFY(indicator.fromJsonArray(
        {Records::object(1.5, 2.5, date), Records::object(1.5, 2.5, isoDate)}));
    const QJsonObject object = objectAt(indicator, 0);
    QCOMPARE(object.value(QStringLiteral("MinValueDate")).toString(), exported);
    QCOMPARE(object.value(QStringLiteral("MaxValueDate")).toString(), exported);
    QCOMPARE(indicator.compute(2.0), isText);
}

void tst_DragIndicatorJson::datesUnderLocales_data()
{
    QTest::addColumn<QByteArray>("systemLocale"); // the value of LC_ALL
    QTest::addColumn<QLocale>("defaultLocale");
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("exported");
    QTest::addColumn<bool>("isText");

    const QByteArray none = "C";
    const QByteArray german = "de_DE.UTF-8";
    const QByteArray arabic = "ar_EG.UTF-8";
    const QByteArray vietnamese = "vi_VN.UTF-8";
    const QLocale c = QLocale::c();
    const QLocale germanDefault(QLocale::German, QLocale::Germany);
    const QLocale arabicDefault(QLocale::Arabic, QLocale::Egypt);
    const QString germanDate = QStringLiteral(u"Fr. M\u00E4rz 1 12:30:05 2024");
    const QString arabicDate = QStringLiteral(u"\u0627\u0644\u062C\u0645\u0639\u0629 "
                                              u"\u0645\u0627\u0631\u0633 1 12:30:05 2024");
    const QString vietnameseDate = "Th 6 thg 3 1 12:30:05 2024";

    QTest::newRow("English names, German system") << german << c << textDate << isoDate << true;
    QTest::newRow("English names, Arabic system") << arabic << c << textDate << isoDate << true;
    QTest::newRow("English names, German default")
        << none << germanDefault << textDate << isoDate << true;
    QTest::newRow("English names, Arabic default")
        << none << arabicDefault << textDate << isoDate << true;
    QTest::newRow("English names, Arabic system and default")
        << arabic << arabicDefault << textDate << isoDate << true;
    QTest::newRow("ISO, German system") << german << c << isoDate << isoDate << false;
    QTest::newRow("ISO, Arabic system and default")
        << arabic << arabicDefault << isoDate << isoDate << false;

    // The name of the month may also be in the system's language; that of the weekday is ignored.
    QTest::newRow("German names, German system") << german << c << germanDate << isoDate << true;
    QTest::newRow("Arabic names, Arabic system") << arabic << c << arabicDate << isoDate << true;
    // Qt 5.15.2 accepts only five or six words as a date.
    QTest::newRow("Vietnamese names of two words, Vietnamese system")
        << vietnamese << c << vietnameseDate << (isQtOfDebian11() ? QString() : isoDate) << true;
    QTest::newRow("day before month, German system") << german << c << "Sa. 1. Dez. 12:30:05 2018"
                                                     << "2018-12-01T12:30:05" << true;
    // Versions of Qt after 5.15.2 parse a name that ends in a period as the day of the month.
    QTest::newRow("abbreviated month, German system")
        << german << c << "Sa. Dez. 1 12:30:05 2018"
        << (isQtOfDebian11() ? QStringLiteral("2018-12-01T12:30:05") : QString()) << true;

    QTest::newRow("German names, C system") << none << c << germanDate << QString() << true;
    QTest::newRow("German names, Arabic system") << arabic << c << germanDate << QString() << true;
    // The default locale has no effect.
    QTest::newRow("German names, German default")
        << none << germanDefault << germanDate << QString() << true;
    QTest::newRow("Arabic names, Arabic default")
        << none << arabicDefault << arabicDate << QString() << true;

    QTest::newRow("Arabic digits in a text, Arabic system and default")
        << arabic << arabicDefault
        << QStringLiteral(u"Fri Mar \u0661 \u0661\u0662:\u0663\u0660:\u0660\u0665 "
                          u"\u0662\u0660\u0662\u0664")
        << QString() << true;
    QTest::newRow("ISO in Arabic digits, Arabic system and default")
        << arabic << arabicDefault
        << QStringLiteral(u"\u0662\u0660\u0662\u0664-\u0660\u0663-\u0660\u0661") << QString()
        << false;
}

void tst_DragIndicatorJson::datesUnderLocales()
{
    QFETCH(QByteArray, systemLocale);
    QFETCH(QLocale, defaultLocale);
    QFETCH(QString, date);
    QFETCH(QString, exported);
    QFETCH(bool, isText);

    if (qgetenv("LC_ALL") != systemLocale) {
        // Qt reads the system locale once, so the row needs a process that starts with it.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LC_ALL", QString::fromLatin1(systemLocale));
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QCoreApplication::applicationFilePath(),
                      {"datesUnderLocales:" + QString::fromLatin1(QTest::currentDataTag())});
        QVERIFY(process.waitForFinished());
        const QByteArray output = process.readAll();
        QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
                 output.constData());
        QVERIFY2(output.contains("PASS   : tst_DragIndicatorJson::datesUnderLocales("),
                 output.constData());
        return;
    }

    const DefaultLocale locale(defaultLocale);
    DragIndicator indicator;
    QVERIFY(indicator.fromJsonArray(
        {Records::object(1.5, 2.5, date), Records::object(1.5, 2.5, isoDate)}));
    QCOMPARE(indicator.asJsonArray(),
             (QJsonArray{Records::object(1.5, 2.5, exported), Records::object(1.5, 2.5, isoDate)}));
    QCOMPARE(indicator.compute(2.0), isText);

    // The export is independent of the language.
    indicator.reset();
    QVERIFY(indicator.compute(1.25));
    const QJsonArray array = indicator.asJsonArray();
    for (const QJsonValue& element : array) {
        const QString written = element.toObject().value("MinValueDate").toString();
        const QRegularExpression form("\\A[0-9-]{10}T[0-9:]{8}\\z");
        QVERIFY2(form.match(written).hasMatch(), qPrintable(written));
    }
    DragIndicator restored;
    QVERIFY(restored.fromJsonArray(
        QJsonDocument::fromJson(QJsonDocument(array).toJson(QJsonDocument::Compact)).array()));
    QCOMPARE(restored.asJsonArray(), array);
    QVERIFY(!restored.compute(1.25));
}

void tst_DragIndicatorJson::timeInDstGapLosesItsDate_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("date");
    QTest::addColumn<bool>("exists");

    const auto row = [](const char* name, const QByteArray& zone, const char* date, bool exists) {
        QTest::newRow(name) << zone << QString::fromLatin1(date) << exists;
    };
    row("before the gap", centralEurope, "2027-03-28T01:59:59", true);
    row("start of the gap", centralEurope, "2027-03-28T02:00:00", false);
    row("in the gap", centralEurope, "2027-03-28T02:30:00", false);
    row("after the gap", centralEurope, "2027-03-28T03:00:00", true);
    row("zone without DST", "UTC0", "2027-03-28T02:30:00", true);
    row("in a gap at midnight", "EET-2EEST,M4.5.5/0,M10.5.4/24", "2027-04-30T00:30:00", false);
    row("in a gap of half an hour", "LHST-10:30LHDT-11,M10.1.0,M4.1.0", "2027-10-03T02:15:00",
        false);
    row("after a gap of half an hour", "LHST-10:30LHDT-11,M10.1.0,M4.1.0", "2027-10-03T02:30:00",
        true);
}

// A record saved in another time zone, or with an incorrect clock, may have a local time that does
// not exist here. It is imported without an error, but loses its date, so the next import fails.
void tst_DragIndicatorJson::timeInDstGapLosesItsDate()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, date);
    QFETCH(bool, exists);

    const TimeZone place(zone);
    DragIndicator indicator;
    QVERIFY(indicator.fromJsonArray(
        {Records::object(1.5, 2.5, date), Records::object(1.5, 2.5, isoDate)}));
    const QJsonArray saved = indicator.asJsonArray();
    QCOMPARE(saved.at(0), QJsonValue(Records::object(1.5, 2.5, exists ? date : QString())));
    QCOMPARE(saved.at(1), QJsonValue(Records::object(1.5, 2.5, isoDate)));

    if (!exists) {
        expectFromImport("Received an empty min date string!");
        expectFromImport("Received an empty max date string!");
        expectResetMessage();
    }
    QCOMPARE(indicator.fromJsonArray(saved), exists);
}

// Local dates are saved without a UTC offset: two dates an hour apart are saved as the same text.
void tst_DragIndicatorJson::timesInDstOverlapExportTheSameDate()
{
    const TimeZone place(centralEurope);
    const QDateTime first(QDate(2026, 10, 25), QTime(0, 30), Qt::UTC);
    const QString text = "2026-10-25T02:30:00";
    QCOMPARE(first.toLocalTime().toString(Qt::ISODate), text);
    QCOMPARE(first.addSecs(3600).toLocalTime().toString(Qt::ISODate), text);

    DragIndicator indicator;
    const QJsonArray saved{Records::object(1.5, 2.5, text), Records::object(1.5, 2.5, text)};
    QVERIFY(indicator.fromJsonArray(saved));
    QCOMPARE(indicator.asJsonArray(), saved);
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
    QJsonObject object = validObject();
    object.insert(key, textDate);
    QJsonArray array{validObject(), validObject()};
    array.replace(index, object);
    DragIndicator indicator;
    QVERIFY(indicator.fromJsonArray(array));
    QVERIFY(indicator.compute(2.0));
    QVERIFY(!indicator.compute(2.0));
    QCOMPARE(indicator.asJsonArray(), (QJsonArray{validObject(), validObject()}));
}

void tst_DragIndicatorJson::failedImportKeepsImportedMembers()
{
    QJsonObject object = Records::object(1.5, 2.5, textDate);
    object.remove("MinValue");
    DragIndicator indicator;
    expectMissingKey("MinValue", object);
    expectResetMessage();
    QVERIFY(!indicator.fromJsonArray({object, validObject()}));
    QCOMPARE(indicator.getMinValue(Records::at(0)), 0.0);
    QCOMPARE(indicator.getMaxValue(Records::at(0)), 2.5);
    QVERIFY(indicator.compute(2.0)); // reports the text date
    QVERIFY(!indicator.compute(2.0));

    // The next import starts with an empty list.
    QVERIFY(indicator.fromJsonArray({validObject(), validObject()}));
    QCOMPARE(recordCount(indicator), 2);
}

void tst_DragIndicatorJson::failedImportKeepsTextDate_data()
{
    QTest::addColumn<QJsonArray>("damaged");

    QTest::newRow("invalid count") << QJsonArray();
    QTest::newRow("elements that are not objects") << QJsonArray{5, 5};
}

void tst_DragIndicatorJson::failedImportKeepsTextDate()
{
    QFETCH(QJsonArray, damaged);

    DragIndicator indicator;
    const QJsonObject object = Records::object(1.5, 2.5, textDate);
    QVERIFY(indicator.fromJsonArray({object, object}));
    if (damaged.isEmpty()) {
        expectFromImport("Received invalid count for drag indicator instances: 0 , 2 !");
    }
    for (int i = 0; i < damaged.size(); ++i) {
        expectFromImport(QStringLiteral(
            "Cannot convert json value for instance to object: QJsonValue(double, 5) !"));
    }
    expectResetMessage();
    QVERIFY(!indicator.fromJsonArray(damaged));
    QVERIFY(!indicator.compute(2.0)); // there is no record
    QVERIFY(Records::takeTextDateImported(indicator));
}

void tst_DragIndicatorJson::exportOfEmptyRecordsCannotBeImported()
{
    DragIndicator indicator;
    for (int i = 0; i < 2; ++i) {
        expectFromImport("Received an empty min date string!");
        expectFromImport("Received an empty max date string!");
    }
    expectResetMessage();
    QVERIFY(!indicator.fromJsonArray(DragIndicator().asJsonArray()));
    QCOMPARE(indicator.asJsonArray(), DragIndicator().asJsonArray());
    QVERIFY(!Records::takeTextDateImported(indicator));
    QVERIFY(indicator.compute(1.0));
    QVERIFY(!indicator.compute(1.0));
}

void tst_DragIndicatorJson::exportOfImportIsIdentical_data()
{
    QTest::addColumn<QVector<double>>("values");

    using Values = QVector<double>;
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("several values") << Values{0.1, 7, -3.25};
    QTest::newRow("one") << Values{5};
    QTest::newRow("large") << Values{-1e300, std::numeric_limits<double>::max()};
    QTest::newRow("small") << Values{0, std::numeric_limits<double>::denorm_min()};
    QTest::newRow("larger than the exact integers of a double")
        << Values{-9007199254740993.0, 1e19};
    QTest::newRow("-0") << Values{-0.0};
    QTest::newRow("infinities") << Values{-infinity, infinity};
    QTest::newRow("NaN") << Values{std::numeric_limits<double>::quiet_NaN()};
}

void tst_DragIndicatorJson::exportOfImportIsIdentical()
{
    QFETCH(QVector<double>, values);

    DragIndicator indicator;
    for (const double value : values) {
        indicator.compute(value);
    }
    indicator.reset();
    indicator.compute(values.last());
    const QJsonArray array = indicator.asJsonArray();
    DragIndicator copy;
    QVERIFY(copy.fromJsonArray(array));
    for (const int index : {0, 1}) {
        QVERIFY(copy.isInitialized(Records::at(index)));
        // Compares numbers; QCOMPARE treats NaNs as equal.
        QCOMPARE(copy.getMinValue(Records::at(index)), indicator.getMinValue(Records::at(index)));
        QCOMPARE(copy.getMaxValue(Records::at(index)), indicator.getMaxValue(Records::at(index)));
    }
    QVERIFY(!copy.compute(values.last())); // there was no text date

    DragIndicator copyOfCopy;
    QVERIFY(copyOfCopy.fromJsonArray(copy.asJsonArray()));
    for (const int index : {0, 1}) {
        const QJsonObject object = objectAt(copyOfCopy, index);
        for (const char* key : {"MinValueDate", "MaxValueDate"}) {
            QCOMPARE(object.value(QLatin1String(key)),
                     array.at(index).toObject().value(QLatin1String(key)));
        }
    }
}

void tst_DragIndicatorJson::fileRoundTrip()
{
    DragIndicator indicator;
    indicator.compute(0.1);
    indicator.compute(12345.678901234567);
    const QString file = writeFile("records.json", QJsonDocument(indicator.asJsonArray()).toJson());
    DragIndicator restored;
    QVERIFY(restored.fromJsonArray(QJsonDocument::fromJson(readFile(file)).array()));
    QCOMPARE(restored.asJsonArray(), indicator.asJsonArray());
    QCOMPARE(restored.getMaxValue(Records::at(1)), 12345.678901234567);
}

void tst_DragIndicatorJson::nonFiniteValuesAreLostInJson_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("negative infinity") << -std::numeric_limits<double>::infinity();
}

// JSON cannot represent such a value and stores null, which import rejects.
void tst_DragIndicatorJson::nonFiniteValuesAreLostInJson()
{
    QFETCH(double, value);
    DragIndicator indicator;
    indicator.compute(value);
    const QJsonArray array =
        QJsonDocument::fromJson(QJsonDocument(indicator.asJsonArray()).toJson()).array();
    for (const QJsonValue& element : array) {
        QVERIFY(element.toObject().value("MinValue").isNull());
        expectMissingKey("MinValue", element.toObject());
        expectMissingKey("MaxValue", element.toObject());
    }
    expectResetMessage();
    DragIndicator restored;
    QVERIFY(!restored.fromJsonArray(array));
    QVERIFY(restored.isInitialized(Records::at(0)));
    QCOMPARE(restored.getMinValue(Records::at(0)), 0.0);
}

QTEST_GUILESS_MAIN(tst_DragIndicatorJson)
#include "tst_DragIndicatorJson.moc"
