#include "DestructionProbe.h"
#include "DeviceRoot.h"
#include "ExportFileNameCreator.h"
#include "IniWarnings.h"
#include "TestCase.h"
#include "TimeZone.h"

#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>

#include <chrono>
#include <ctime>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

const QString filePath = "/etc/rauc/system.conf";

// The local time in the format of a name, from the C library. (The coarse clock of time() may lag
// behind when a second begins.)
QString localTime()
{
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm parts = {};
    localtime_r(&now, &parts);
    char text[32];
    strftime(text, sizeof text, "%Y_%m_%dT%H_%M_%S", &parts);
    return QString::fromLatin1(text);
}

// The time between the expected start and end of a name; null if the name does not match them.
QString timeIn(const QString& name, const QString& before, const QString& after)
{
    if (!name.startsWith(before) || !name.endsWith(after)) {
        return QString();
    }
    return name.mid(before.size(), name.size() - before.size() - after.size());
}

} // namespace

static_assert(sizeof(ExportFileNameCreator) == sizeof(void*), "no fields");
static_assert(std::has_virtual_destructor<ExportFileNameCreator>::value, "virtual destructor");
static_assert(std::is_default_constructible<ExportFileNameCreator>::value, "constructible");

class tst_ExportFileNameCreator : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void destructorIsVirtual();
    void nameHasTheDocumentedFormat();
    void extensionIsAppendedUnchanged_data();
    void extensionIsAppendedUnchanged();
    void nameBeginsWithTheDeviceIndex_data();
    void nameBeginsWithTheDeviceIndex();
    void missingDeviceIndexIsZero();
    void deviceIndexIsReadByEveryCall();
    void localTimeIsUsed_data();
    void localTimeIsUsed();
    void languageHasNoEffect();
    void callsWithinOneSecondReturnTheSameName();
    void namesAreCorrectInManyThreads();
};

void tst_ExportFileNameCreator::destructorIsVirtual()
{
    QVERIFY(isDestroyedThroughBase<ExportFileNameCreator>());
}

void tst_ExportFileNameCreator::nameHasTheDocumentedFormat()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    DeviceRoot::writeFile(filePath, "[system]\ncompatible=3\n");
    const QString name = ExportFileNameCreator::create("csv");
    const QRegularExpression form(
        "\\AV3_[0-9]{4}_[0-9]{2}_[0-9]{2}T[0-9]{2}_[0-9]{2}_[0-9]{2}\\.csv\\z");
    QVERIFY2(form.match(name).hasMatch(), qPrintable(name));
}

void tst_ExportFileNameCreator::extensionIsAppendedUnchanged_data()
{
    QTest::addColumn<QString>("extension");

    QTest::newRow("plain") << "csv";
    QTest::newRow("empty") << "";
    QTest::newRow("null") << QString();
    QTest::newRow("first placeholder") << "%1";
    QTest::newRow("second placeholder") << "%2";
    QTest::newRow("third placeholder") << "%3";
    QTest::newRow("all placeholders") << "%1%2%3%4";
    QTest::newRow("percent signs") << "%%";
    QTest::newRow("locale-aware placeholders") << "%L1";
    QTest::newRow("leading dot") << ".csv";
    QTest::newRow("characters that the time format replaces") << "tar.gz:a-b";
    QTest::newRow("directory") << "../x";
    QTest::newRow("non-Latin script") << QString(QChar(0x4e2d));
}

void tst_ExportFileNameCreator::extensionIsAppendedUnchanged()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QString, extension);

    DeviceRoot::writeFile(filePath, "[system]\ncompatible=3\n");
    const QString earliest = localTime();
    const QString name = ExportFileNameCreator::create(extension);
    const QString latest = localTime();
    const QString time = timeIn(name, "V3_", QLatin1Char('.') + extension);
    QVERIFY2(earliest <= time && time <= latest, qPrintable(name));
}

void tst_ExportFileNameCreator::nameBeginsWithTheDeviceIndex_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("begin");

    QTest::newRow("zero") << QByteArray("0") << "V0_";
    QTest::newRow("large") << QByteArray("2147483647") << "V2147483647_";
    QTest::newRow("negative, with its minus sign") << QByteArray("-1") << "V-1_";
}

void tst_ExportFileNameCreator::nameBeginsWithTheDeviceIndex()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QByteArray, value);
    QFETCH(QString, begin);

    DeviceRoot::writeFile(filePath, "[system]\ncompatible=" + value + "\n");
    const QString earliest = localTime();
    const QString name = ExportFileNameCreator::create("csv");
    const QString latest = localTime();
    const QString time = timeIn(name, begin, ".csv");
    QVERIFY2(earliest <= time && time <= latest, qPrintable(name));
}

void tst_ExportFileNameCreator::missingDeviceIndexIsZero()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    IniWarnings::expectMissingFile(messages(), filePath);
    IniWarnings::expectMissingKey(messages(), filePath, "compatible", "system");
    const QString name = ExportFileNameCreator::create("csv");
    QVERIFY2(name.startsWith(QLatin1String("V0_")), qPrintable(name));
}

void tst_ExportFileNameCreator::deviceIndexIsReadByEveryCall()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    for (const char index : {'3', '4'}) {
        DeviceRoot::writeFile(filePath, QByteArray("[system]\ncompatible=") + index + '\n');
        const QString name = ExportFileNameCreator::create(QString());
        QCOMPARE(name.at(1), QChar::fromLatin1(index));
    }
}

void tst_ExportFileNameCreator::localTimeIsUsed_data()
{
    QTest::addColumn<QByteArray>("zone");

    QTest::newRow("UTC") << QByteArray("UTC0");
    QTest::newRow("east") << QByteArray("<+0545>-05:45");
    QTest::newRow("west") << QByteArray("<-0930>+09:30");
    // DST is in effect in one of the two zones at any time of the year.
    QTest::newRow("DST in July") << QByteArray("CET-1CEST,M3.5.0,M10.5.0/3");
    QTest::newRow("DST in January") << QByteArray("NZST-12NZDT,M9.5.0,M4.1.0/3");
}

void tst_ExportFileNameCreator::localTimeIsUsed()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QByteArray, zone);

    DeviceRoot::writeFile(filePath, "[system]\ncompatible=3\n");
    const TimeZone timeZone(zone);
    const QString earliest = localTime();
    const QString name = ExportFileNameCreator::create("csv");
    const QString latest = localTime();
    const QString time = timeIn(name, "V3_", ".csv");
    QVERIFY2(earliest <= time && time <= latest,
             qPrintable(QStringLiteral("%1 <= %2 <= %3").arg(earliest, time, latest)));
}

void tst_ExportFileNameCreator::languageHasNoEffect()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    DeviceRoot::writeFile(filePath, "[system]\ncompatible=12345\n");
    const QLocale previous;
    // A locale with its own digits and thousands separator.
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    const QString earliest = localTime();
    const QString name = ExportFileNameCreator::create("csv");
    const QString latest = localTime();
    QLocale::setDefault(previous);
    const QString time = timeIn(name, "V12345_", ".csv");
    QVERIFY2(earliest <= time && time <= latest, qPrintable(name));
}

void tst_ExportFileNameCreator::callsWithinOneSecondReturnTheSameName()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    DeviceRoot::writeFile(filePath, "[system]\ncompatible=3\n");
    QString before;
    QString after;
    QString first;
    QString second;
    do {
        before = localTime();
        first = ExportFileNameCreator::create("csv");
        second = ExportFileNameCreator::create("csv");
        after = localTime();
    } while (before != after);
    QCOMPARE(first, second);
    QCOMPARE(first, QStringLiteral("V3_") + before + QStringLiteral(".csv"));
}

void tst_ExportFileNameCreator::namesAreCorrectInManyThreads()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    constexpr int threadCount = 8;
    constexpr int callsPerThread = 50;
    DeviceRoot::writeFile(filePath, "[system]\ncompatible=3\n");

    const QString earliest = localTime();
    std::vector<QStringList> names(threadCount);
    std::vector<std::thread> threads;
    for (QStringList& ownNames : names) {
        threads.emplace_back([&ownNames] {
            for (int i = 0; i < callsPerThread; ++i) {
                ownNames.append(ExportFileNameCreator::create("csv"));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const QString latest = localTime();

    for (const QStringList& ownNames : names) {
        QCOMPARE(ownNames.size(), callsPerThread);
        for (const QString& name : ownNames) {
            const QString time = timeIn(name, "V3_", ".csv");
            QVERIFY2(earliest <= time && time <= latest, qPrintable(name));
        }
    }
}

QTEST_GUILESS_MAIN(tst_ExportFileNameCreator)
#include "tst_ExportFileNameCreator.moc"
