#include "HostileText.h"
#include "TestCase.h"
#include "common/FileReading.h"

#include <QtCore/QBuffer>
#include <QtCore/QRandomGenerator>

// Compares the library's reading and decoding of files with Qt's.
class tst_FileReading : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void randomBytesAreDecodedAsByQt();
    void largeFilesAreReadAsByQtInTextMode_data();
    void largeFilesAreReadAsByQtInTextMode();
};

namespace {

QByteArray readInQtTextMode(QByteArray content)
{
    QBuffer file(&content);
    file.open(QIODevice::ReadOnly | QIODevice::Text);
    return file.readAll();
}

QByteArray read(QByteArray content)
{
    QBuffer file(&content);
    file.open(QIODevice::ReadOnly);
    return readAllInTextMode(file);
}

} // namespace

void tst_FileReading::randomBytesAreDecodedAsByQt()
{
    QRandomGenerator random(1);
    const int count = rounds(50000);
    for (int i = 0; i < count; ++i) {
        const QByteArray content = hostileText(random);
        const QByteArray expected = readInQtTextMode(content);
        const QByteArray result = read(content);
        const QByteArray shown =
            "round " + QByteArray::number(i) + ": " + content.toPercentEncoding();
        QVERIFY2(result == expected, shown.constData());
        QVERIFY2(result.isNull() == expected.isNull(), shown.constData());
        const QString text = decodeToFirstZeroByte(result);
        QVERIFY2(text == QString::fromUtf8(expected), shown.constData());
        QVERIFY2(text.isNull() == QString::fromUtf8(expected).isNull(), shown.constData());
    }
}

void tst_FileReading::largeFilesAreReadAsByQtInTextMode_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no carriage return") << QByteArray("a=1\n");
    QTest::newRow("CR LF") << QByteArray("a=1\r\n");
    QTest::newRow("several carriage returns") << QByteArray("a=1\r\r\r\n");
    QTest::newRow("only carriage returns") << QByteArray("\r");
    QTest::newRow("more carriage returns than a buffer holds")
        << "a=1\n" + QByteArray(64 * 1024, '\r') + "b=2\n";
    QTest::newRow("zero bytes") << QByteArray("a\0\r\0b\n", 6);
}

void tst_FileReading::largeFilesAreReadAsByQtInTextMode()
{
    QFETCH(QByteArray, line);
    const QByteArray content = line.repeated(200000 / qMax(1, line.size()));
    const QByteArray result = read(content);
    QCOMPARE(result, readInQtTextMode(content));
    QCOMPARE(result.isNull(), readInQtTextMode(content).isNull());
}

QTEST_GUILESS_MAIN(tst_FileReading)
#include "tst_FileReading.moc"
