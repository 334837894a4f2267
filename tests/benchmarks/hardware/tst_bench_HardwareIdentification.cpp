#include "Benchmark.h"
#include "HardwareIdentification.h"

#include <algorithm>

using namespace Benchmark;

namespace {

const QString id = QStringLiteral("1234567891234567");

} // namespace

class tst_bench_HardwareIdentification : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void containsHardwareIDOnlyNumbers() { runRow(); }
    void containsHardwareIDOnlyNumbers_data()
    {
        const Rows rows;
        rows.add("MiscTools", [](int) {
            HardwareIdentification subject(id);
            measure([&] { return subject.containsHardwareIDOnlyNumbers(id); }, true);
        });
        rows.add("QRegularExpression, compiled before", [](int) {
            const QRegularExpression digits(QStringLiteral("[0-9]{16,16}"));
            measure([&] { return digits.match(id).hasMatch(); }, true);
        });
        rows.add("loop over sixteen characters", [](int) {
            const auto isDigit = [](QChar each) { return each >= u'0' && each <= u'9'; };
            measure([&] { return std::all_of(id.begin(), id.end(), isDigit); }, true);
        });
    }

    void construction() { runRow(); }
    void construction_data()
    {
        const Rows rows;
        rows.add("MiscTools", [](int) {
            const auto check = [](const HardwareIdentification& result) {
                QVERIFY(result.isHardwareIDValid());
                QCOMPARE(result.getProductGroupNumber(), QStringLiteral("123456"));
                QCOMPARE(result.getPartsListSales(), QStringLiteral("67"));
            };
            measureChecked([] { return HardwareIdentification(id); }, check);
        });
    }
};

QTEST_GUILESS_MAIN(tst_bench_HardwareIdentification)
#include "tst_bench_HardwareIdentification.moc"
