#include "Benchmark.h"
#include "HardwareIdentification.h"

#include <algorithm>

using namespace Benchmark;

class tst_bench_HardwareIdentification : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void containsHardwareIDOnlyNumbers_data();
    void containsHardwareIDOnlyNumbers() { runRow(); }
    void construction_data();
    void construction() { runRow(); }
};

namespace {

const QString& id()
{
    static const QString text = QStringLiteral("1234567891234567");
    return text;
}

} // namespace

void tst_bench_HardwareIdentification::containsHardwareIDOnlyNumbers_data()
{
    const auto misctools = [](int) {
        HardwareIdentification subject(id());
        measure([&] { return subject.containsHardwareIDOnlyNumbers(id()); }, true);
    };
    const auto expression = [](int) {
        const QRegularExpression digits(QStringLiteral("[0-9]{16,16}"));
        measure([&] { return digits.match(id()).hasMatch(); }, true);
    };
    const auto loop = [](int) {
        const auto isDigit = [](QChar each) { return each >= u'0' && each <= u'9'; };
        measure([&] { return std::all_of(id().begin(), id().end(), isDigit); }, true);
    };
    addRows({{"MiscTools", misctools},
             {"QRegularExpression, compiled before", expression},
             {"loop over sixteen characters", loop}});
}

void tst_bench_HardwareIdentification::construction_data()
{
    const auto misctools = [](int) {
        const auto check = [](const HardwareIdentification& result) {
            QVERIFY(result.isHardwareIDValid());
            QCOMPARE(result.getProductGroupNumber(), QStringLiteral("123456"));
            QCOMPARE(result.getPartsListSales(), QStringLiteral("67"));
        };
        measureChecked([] { return HardwareIdentification(id()); }, check);
    };
    addRows({{"MiscTools", misctools}});
}

QTEST_GUILESS_MAIN(tst_bench_HardwareIdentification)
#include "tst_bench_HardwareIdentification.moc"
