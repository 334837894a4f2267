#include "Benchmark.h"
#include "HashGenerator.h"

using namespace Benchmark;

class tst_bench_HashGenerator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createHashFromFile_data();
    void createHashFromFile() { runRow(); }
    void hashFromString_data();
    void hashFromString() { runRow(); }
};

namespace {

// Without carriage returns, which the library omits from the digest.
QString textFile(int bytes)
{
    return file(QStringLiteral("text-%1").arg(bytes), [bytes](QIODevice& file) {
        const QByteArray line(kibi - 1, '=');
        while (file.pos() < bytes) {
            file.write(line + '\n');
        }
    });
}

QByteArray md5sum(const QString& filePath)
{
    QProcess process;
    process.start(QStringLiteral("md5sum"), {filePath}, QIODevice::ReadOnly);
    process.waitForFinished(-1);
    return QByteArray::fromHex(process.readAllStandardOutput().left(32));
}

} // namespace

void tst_bench_HashGenerator::createHashFromFile_data()
{
    static constexpr auto md5 = QCryptographicHash::Md5;
    const auto misctools = [](int bytes) {
        const QString filePath = textFile(bytes);
        measure([&] { return HashGenerator::createHashFromFile(filePath, md5); },
                digest(filePath, md5));
    };
    const auto program = [](int bytes) {
        const QString filePath = textFile(bytes);
        measure([&] { return md5sum(filePath); }, digest(filePath, md5));
    };
    addRows({{"MiscTools", misctools}, {"md5sum, a child process", program}}, "bytes",
            {kibi, 32 * kibi, mebi, 100 * mebi});
}

void tst_bench_HashGenerator::hashFromString_data()
{
    static const QByteArray text = QByteArray("http://recorder.example/channels/1").repeated(2);
    static const uint expected = 0xDA526545; // FNV-1a, calculated elsewhere
    const auto misctools = [](int calls) {
        measureCalls(
            calls, [] { return ::hashFromString(text.constData()); }, expected);
    };
    const auto loop = [](int calls) {
        const auto hash = [] {
            uint result = 0x811C9DC5;
            for (const char byte : text) {
                result = (result ^ quint8(byte)) * 0x01000193;
            }
            return result;
        };
        measureCalls(calls, hash, expected);
    };
    addRows({{"MiscTools", misctools}, {"loop over a known length", loop}}, "calls", {1000});
}

QTEST_GUILESS_MAIN(tst_bench_HashGenerator)
#include "tst_bench_HashGenerator.moc"
