#include "Benchmark.h"
#include "RecorderUrlHashHandling.h"

#include <QtCore/QUuid>

using namespace Benchmark;

class tst_bench_RecorderUrlHashHandling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buildUUIDFromByteArray() { runRow(); }
    void buildUUIDFromByteArray_data()
    {
        static const QByteArray bytes = QByteArray::fromHex("00112233445566778899aabbccddeeff");
        static const QString text = QStringLiteral("00112233-4455-6677-8899-aabbccddeeff");
        const Rows rows;
        rows.add("MiscTools", [](int) {
            measure([] { return RecorderUrlHashHandling::buildUUIDFromByteArray(bytes); }, text);
        });
        rows.add("QUuid::toString", [](int) {
            measure([] { return QUuid::fromRfc4122(bytes).toString(QUuid::WithoutBraces); }, text);
        });
    }
};

QTEST_GUILESS_MAIN(tst_bench_RecorderUrlHashHandling)
#include "tst_bench_RecorderUrlHashHandling.moc"
