#include "DragIndicator.h"
#include "FaultyProcess.h"
#include "TestCase.h"

#include <ctime>

// The system calls for reading the local time.
class tst_ClockCalls : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void zoneFileIsCheckedUnlessNamed_data();
    void zoneFileIsCheckedUnlessNamed();
};

void tst_ClockCalls::zoneFileIsCheckedUnlessNamed_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<bool>("isChecked");
    QTest::newRow("not set") << QByteArray() << true;
    QTest::newRow("path of the default file") << QByteArray(":/etc/localtime") << false;
    QTest::newRow("name of a zone") << QByteArray("Europe/Berlin") << false;
    QTest::newRow("rule of a zone") << QByteArray("CET-1CEST,M3.5.0,M10.5.0/3") << false;
}

// Each falling value is a new extreme, for which the clock is read.
void tst_ClockCalls::zoneFileIsCheckedUnlessNamed()
{
    MISCTOOLS_NEED_FAULTS();
    QFETCH(QByteArray, zone);
    QFETCH(bool, isChecked);

    const auto callsFor = [&zone](int values) {
        const FaultyRun run = FaultyProcess::run(Fault(), [&zone, values] {
            if (zone.isNull()) {
                qunsetenv("TZ");
            } else {
                qputenv("TZ", zone);
            }
            DragIndicator indicator;
            for (int i = 0; i < values; ++i) {
                indicator.compute(-i);
            }
            return QByteArray("done");
        });
        return run.exited && run.result == "done" ? run.calls.size() : -1;
    };
    // The first values load the zone.
    const int few = callsFor(10);
    const int many = callsFor(110);
    QVERIFY(few >= 0);
    QVERIFY(many >= few);
    if (isChecked) {
        QVERIFY2(many - few >= 100, qPrintable(QString::number(many - few)));
    } else {
        QCOMPARE(many - few, 0);
    }
}

QTEST_GUILESS_MAIN(tst_ClockCalls)

#include "tst_ClockCalls.moc"
