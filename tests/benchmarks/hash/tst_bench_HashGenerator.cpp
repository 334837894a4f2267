#include "Benchmark.h"
#include "HashGenerator.h"

using namespace Benchmark;

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

class tst_bench_HashGenerator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createHashFromFile() { runRow(); }
    void createHashFromFile_data()
    {
        static constexpr auto md5 = QCryptographicHash::Md5;
        const Rows rows("bytes", {kibi, 32 * kibi, mebi, 100 * mebi});
        rows.add("MiscTools", [](int bytes) {
            const QString filePath = textFile(bytes);
            measure([&] { return HashGenerator::createHashFromFile(filePath, md5); },
                    digest(filePath, md5));
        });
        rows.add("md5sum, a child process", [](int bytes) {
            const QString filePath = textFile(bytes);
            measure([&] { return md5sum(filePath); }, digest(filePath, md5));
        });
    }

    void hashFromString() { runRow(); }
    void hashFromString_data()
    {
        static const QByteArray text = QByteArray("http://recorder.example/channels/1").repeated(2);
        static const uint expected = 0xDA526545; // FNV-1a, computed independently
        const Rows rows("calls", {1000});
        rows.add("MiscTools", [](int calls) {
            measureCalls(
                calls, [] { return ::hashFromString(text.constData()); }, expected);
        });
        rows.add("loop over a known length", [](int calls) {
            const auto hash = [] {
                uint result = 0x811C9DC5;
                for (const char byte : text) {
                    result = (result ^ quint8(byte)) * 0x01000193;
                }
                return result;
            };
            measureCalls(calls, hash, expected);
        });
    }
};

QTEST_GUILESS_MAIN(tst_bench_HashGenerator)
#include "tst_bench_HashGenerator.moc"
