#include "Benchmark.h"

namespace {

int theMessageCount = 0;

} // namespace

void Benchmark::addRows(std::initializer_list<Contender> contenders, const char* unit,
                        std::initializer_list<int> sizes)
{
    QTest::addColumn<Run>("run");
    QTest::addColumn<int>("size");
    for (const int size : sizes) {
        for (const Contender& contender : contenders) {
            const QByteArray suffix = unit ? ", " + QByteArray::number(size) + ' ' + unit : "";
            QTest::newRow(contender.name + suffix) << contender.run << size;
        }
    }
}

void Benchmark::runRow()
{
    QFETCH(Run, run);
    QFETCH(int, size);
    run(size);
}

QString Benchmark::path(const QString& name)
{
    static const QTemporaryDir directory(QDir::tempPath() + QStringLiteral("/bench-XXXXXX"));
    return directory.filePath(name);
}

QString Benchmark::file(const QString& name, const std::function<void(QIODevice&)>& write)
{
    QFile file(path(name));
    if (!file.exists()) {
        if (!file.open(QIODevice::WriteOnly)) {
            qFatal("cannot write %s", qPrintable(file.fileName()));
        }
        write(file);
    }
    return file.fileName();
}

QByteArray Benchmark::content(const QString& filePath)
{
    QFile file(filePath);
    return file.open(QIODevice::ReadOnly | QIODevice::Text) ? file.readAll() : QByteArray();
}

QByteArray Benchmark::digest(const QString& filePath, QCryptographicHash::Algorithm algorithm)
{
    QFile file(filePath);
    QCryptographicHash hash(algorithm);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

Benchmark::MessageCounter::MessageCounter()
    : m_previousHandler(qInstallMessageHandler(
          [](QtMsgType, const QMessageLogContext&, const QString&) { ++theMessageCount; }))
{
    theMessageCount = 0;
}

Benchmark::MessageCounter::~MessageCounter()
{
    qInstallMessageHandler(m_previousHandler);
}

int Benchmark::MessageCounter::count() const
{
    return theMessageCount;
}
