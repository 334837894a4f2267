#include "Benchmark.h"
#include "VersionManager.h"

#include <QtCore/QVersionNumber>

using namespace Benchmark;

class tst_bench_VersionManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oldFormat() { runRow(); }
    void oldFormat_data()
    {
        const Rows rows;
        rows.add("MiscTools", [](int) {
            const QString text = QStringLiteral("V8.12.3-45");
            const auto check = [](const VersionManager& version) {
                QVERIFY(version.isOldVersion());
                QCOMPARE(version.getMainVersion(), QStringLiteral("8.12.3"));
                QCOMPARE(version.getTestIndex(), QStringLiteral("45"));
            };
            measureChecked([&] { return VersionManager(text); }, check);
        });
        rows.add("QVersionNumber::fromString", [](int) {
            const QString text = QStringLiteral("8.12.3-45");
            measure([&] { return QVersionNumber::fromString(text); }, QVersionNumber(8, 12, 3));
        });
    }

    void newFormat() { runRow(); }
    void newFormat_data()
    {
        static const QString text = QStringLiteral("8.100.2.7.1234-g1a2b3c");
        const Rows rows;
        rows.add("MiscTools", [](int) {
            const auto check = [](const VersionManager& version) {
                QVERIFY(!version.isOldVersion());
                QCOMPARE(version.getMainVersion(), QStringLiteral("8.100.2.7.1234"));
                QCOMPARE(version.getGitHash(), QStringLiteral("g1a2b3c"));
            };
            measureChecked([] { return VersionManager(text); }, check);
        });
        rows.add("QVersionNumber::fromString", [](int) {
            measure([] { return QVersionNumber::fromString(text); },
                    QVersionNumber({8, 100, 2, 7, 1234}));
        });
    }
};

QTEST_GUILESS_MAIN(tst_bench_VersionManager)
#include "tst_bench_VersionManager.moc"
