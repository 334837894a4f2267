#include "DestructionProbe.h"
#include "RecorderUrlHashHandling.h"
#include "TestCase.h"

#include <type_traits>

static_assert(sizeof(RecorderUrlHashHandling) == sizeof(void*), "no fields");
static_assert(std::has_virtual_destructor<RecorderUrlHashHandling>::value, "virtual destructor");
static_assert(std::is_default_constructible<RecorderUrlHashHandling>::value,
              "objects can be created");

class tst_RecorderUrlHashHandling : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void destructorIsVirtual();
    void urlHashIsMd5_data();
    void urlHashIsMd5();
    void partsAreConcatenated_data();
    void partsAreConcatenated();
    void uuidIsFormattedFromSixteenBytes_data();
    void uuidIsFormattedFromSixteenBytes();
    void urlHashFormsAUuid();
};

void tst_RecorderUrlHashHandling::destructorIsVirtual()
{
    QVERIFY(isDestroyedThroughBase<RecorderUrlHashHandling>());
}

void tst_RecorderUrlHashHandling::urlHashIsMd5_data()
{
    QTest::addColumn<QByteArray>("url");
    QTest::addColumn<QByteArray>("hash"); // in hexadecimal

    // The test suite of RFC 1321.
    QTest::newRow("null") << QByteArray() << QByteArray("d41d8cd98f00b204e9800998ecf8427e");
    QTest::newRow("empty") << QByteArray("") << QByteArray("d41d8cd98f00b204e9800998ecf8427e");
    QTest::newRow("a") << QByteArray("a") << QByteArray("0cc175b9c0f1b6a831c399e269772661");
    QTest::newRow("abc") << QByteArray("abc") << QByteArray("900150983cd24fb0d6963f7d28e17f72");
    QTest::newRow("message digest")
        << QByteArray("message digest") << QByteArray("f96b697d7cb7938d525a2f31aaf161d0");
    QTest::newRow("lowercase letters") << QByteArray("abcdefghijklmnopqrstuvwxyz")
                                       << QByteArray("c3fcd3d76192e4007dfb496cca67e13b");
    QTest::newRow("letters and digits")
        << QByteArray("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789")
        << QByteArray("d174ab98d277d9f5a5611c2c9f419d9f");
    QTest::newRow("more than a block")
        << QByteArray("1234567890").repeated(8) << QByteArray("57edf4a22be3c955ac49da2e2107b67a");
    // From md5sum.
    QTest::newRow("URL") << QByteArray("rtsp://192.168.0.1/stream1")
                         << QByteArray("5277a9b7e95bb840ea9b290e8881d240");
    QTest::newRow("zero, high byte, line end")
        << QByteArray("a\0\xFF\r\n", 5) << QByteArray("de679145b757973fad9c497c32321f4c");
}

void tst_RecorderUrlHashHandling::urlHashIsMd5()
{
    QFETCH(QByteArray, url);
    QFETCH(QByteArray, hash);

    const QByteArray raw = RecorderUrlHashHandling::createUrlHash(url);
    QCOMPARE(raw.size(), 16);
    QCOMPARE(raw.toHex(), hash);
    // The hash does not depend on how the bytes are split into parts.
    for (int first = 0; first <= url.size(); ++first) {
        for (int second = first; second <= url.size(); ++second) {
            QCOMPARE(RecorderUrlHashHandling::createUrlHash(
                         url.left(first), url.mid(first, second - first), url.mid(second)),
                     raw);
        }
    }
}

void tst_RecorderUrlHashHandling::partsAreConcatenated_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QByteArray>("third");
    QTest::addColumn<QByteArray>("joined");

    QTest::newRow("ab, c, empty") << QByteArray("ab") << QByteArray("c") << QByteArray("")
                                  << QByteArray("abc");
    QTest::newRow("ab, c, null") << QByteArray("ab") << QByteArray("c") << QByteArray()
                                 << QByteArray("abc");
    QTest::newRow("all") << QByteArray("host") << QByteArray("/path") << QByteArray("?query")
                         << QByteArray("host/path?query");
    QTest::newRow("order matters")
        << QByteArray("c") << QByteArray("b") << QByteArray("a") << QByteArray("cba");
    QTest::newRow("first empty") << QByteArray() << QByteArray("b") << QByteArray("c")
                                 << QByteArray("bc");
    QTest::newRow("second empty") << QByteArray("a") << QByteArray() << QByteArray("c")
                                  << QByteArray("ac");
    QTest::newRow("only third") << QByteArray() << QByteArray() << QByteArray("c")
                                << QByteArray("c");
    QTest::newRow("all empty") << QByteArray() << QByteArray() << QByteArray() << QByteArray();
    QTest::newRow("third is one zero byte")
        << QByteArray("a") << QByteArray("b") << QByteArray("\0", 1) << QByteArray("ab\0", 3);
}

void tst_RecorderUrlHashHandling::partsAreConcatenated()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(QByteArray, third);
    QFETCH(QByteArray, joined);

    QCOMPARE(RecorderUrlHashHandling::createUrlHash(first, second, third),
             RecorderUrlHashHandling::createUrlHash(joined));
}

void tst_RecorderUrlHashHandling::uuidIsFormattedFromSixteenBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text"); // null: no UUID

    QTest::newRow("counting") << QByteArray::fromHex("000102030405060708090a0b0c0d0e0f")
                              << "00010203-0405-0607-0809-0a0b0c0d0e0f";
    QTest::newRow("high nibble first") << QByteArray::fromHex("f00e1dc22bb33aa49558677694851c0d")
                                       << "f00e1dc2-2bb3-3aa4-9558-677694851c0d";
    QTest::newRow("zeros") << QByteArray(16, '\0') << "00000000-0000-0000-0000-000000000000";
    QTest::newRow("all bits") << QByteArray(16, '\xFF') << "ffffffff-ffff-ffff-ffff-ffffffffffff";
    QTest::newRow("null") << QByteArray() << QString();
    QTest::newRow("empty") << QByteArray("") << QString();
    QTest::newRow("1 byte") << QByteArray(1, 'a') << QString();
    QTest::newRow("15 bytes") << QByteArray(15, 'a') << QString();
    QTest::newRow("17 bytes") << QByteArray(17, 'a') << QString();
    QTest::newRow("32 bytes") << QByteArray(32, 'a') << QString();
}

void tst_RecorderUrlHashHandling::uuidIsFormattedFromSixteenBytes()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);

    const QString result = RecorderUrlHashHandling::buildUUIDFromByteArray(bytes);
    QCOMPARE(result, text);
    QCOMPARE(result.isNull(), text.isNull());
}

void tst_RecorderUrlHashHandling::urlHashFormsAUuid()
{
    QCOMPARE(RecorderUrlHashHandling::buildUUIDFromByteArray(
                 RecorderUrlHashHandling::createUrlHash(QByteArray())),
             "d41d8cd9-8f00-b204-e980-0998ecf8427e");
}

QTEST_GUILESS_MAIN(tst_RecorderUrlHashHandling)
#include "tst_RecorderUrlHashHandling.moc"
