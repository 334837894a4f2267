#include "Benchmark.h"
#include "EepromImage.h"
#include "HardwareInfo.h"
#include "HardwareInfoReader.h"

using namespace Benchmark;

class tst_bench_HardwareInfoReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readHardwareInfoFromSysFs() { runRow(); }
    void readHardwareInfoFromSysFs_data()
    {
        static const QByteArray text = "Type=17\nTypeName=Sample board\nVersion=2.1\nLP-ID=123456\n"
                                       "CompatibilityIndex=3\nComment=For measurements\n";
        static const QString comment = QStringLiteral("For measurements");
        const Rows rows;
        rows.add("MiscTools", [](int) {
            const QString image = file(QStringLiteral("eeprom.bin"), [](QIODevice& file) {
                file.write(EepromImage(text).size(32 * kibi).bytes());
            });
            const auto read = [&image] {
                HardwareInfo info;
                HardwareInfoReader reader(nullptr);
                reader.readHardwareInfoFromSysFs(path(QStringLiteral("info.XXXXXX")), image, info);
                return info;
            };
            measureChecked(read,
                           [](const HardwareInfo& info) { QCOMPARE(info.Comment(), comment); });
        });
        // The text is already in memory; the peer only writes it to a file and reads the values.
        rows.add("QTemporaryFile and QSettings", [](int) {
            const auto read = [] {
                QTemporaryFile file(path(QStringLiteral("text.XXXXXX")));
                file.open();
                file.write(text);
                file.flush();
                const QSettings values(file.fileName(), QSettings::IniFormat);
                QString value;
                for (const char* const key :
                     {"Type", "TypeName", "Version", "LP-ID", "CompatibilityIndex", "Comment"}) {
                    value = values.value(QLatin1String(key)).toString();
                }
                return value;
            };
            measure(read, comment);
        });
    }
};

QTEST_GUILESS_MAIN(tst_bench_HardwareInfoReader)
#include "tst_bench_HardwareInfoReader.moc"
