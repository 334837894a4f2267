#include "ChildProcess.h"
#include "DestructionProbe.h"
#include "HashGenerator.h"
#include "TestCase.h"
#include "Threads.h"
#include "VariantSamples.h"

#include <QtCore/QMetaEnum>
#include <QtCore/QTextCodec>

#include <type_traits>

#include <dlfcn.h>
#include <unistd.h>

static_assert(sizeof(HashGenerator) == sizeof(void*), "no fields");
static_assert(std::has_virtual_destructor<HashGenerator>::value, "virtual destructor");
static_assert(std::is_default_constructible<HashGenerator>::value, "objects can be created");
static_assert(std::is_same<decltype(hashFromString("")), uint>::value, "32 bits");

namespace {

// The size to which a file is truncated before its first byte is read; -1: unchanged.
qint64 sizeAtFirstRead = -1;

} // namespace

// Interposes read() to simulate another process that truncates the file during the read.
extern "C" Q_DECL_EXPORT ssize_t read(int descriptor, void* buffer, size_t size)
{
    using Function = ssize_t (*)(int, void*, size_t);
    static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "read"));
    if (sizeAtFirstRead >= 0) {
        const QByteArray filePath = "/proc/self/fd/" + QByteArray::number(descriptor);
        if (truncate(filePath.constData(), off_t(sizeAtFirstRead)) != 0) {
            qFatal("cannot truncate the file that is read");
        }
        sizeAtFirstRead = -1;
    }
    return next(descriptor, buffer, size);
}

namespace {

const char signature[] = "static QByteArray HashGenerator::createHashFromFile(const "
                         "QString&, const QCryptographicHash::Algorithm&)";

// A file's content with and without carriage returns.
struct Content
{
    const char* name;
    QByteArray bytes;
    QByteArray hashed;
};

QVector<Content> contents()
{
    // Qt reads chunks of 16 KiB, so there are carriage returns on both sides of a chunk boundary.
    const QByteArray piece(16383, 'x');
    return {
        {"empty", "", ""},
        {"no carriage return", "a\nb\n", "a\nb\n"},
        {"line end", "a\r\n", "a\n"},
        {"lines", "a\r\nb\r\n", "a\nb\n"},
        {"single carriage return", "\r", ""},
        {"only carriage returns", "\r\r\r", ""},
        {"in the middle", "a\rb", "ab"},
        {"at the start and at the end", "\rab\r", "ab"},
        {"after the line feed", "a\n\rb", "a\nb"},
        {"two before a line feed", "a\r\r\nb", "a\nb"},
        {"zeros", QByteArray("\0a\0\r\n\0", 6), QByteArray("\0a\0\n\0", 5)},
        {"end-of-file character",
         "a\x1A"
         "b\r\n",
         "a\x1A"
         "b\n"},
        {"byte order mark", "\xEF\xBB\xBFtext\r\n", "\xEF\xBB\xBFtext\n"},
        {"invalid UTF-8", "\xFF\x80\xFE\r\n", "\xFF\x80\xFE\n"},
        {"at a chunk boundary", piece + "\r\r\n" + piece, piece + "\n" + piece},
        {"many chunks", QByteArray("0123456789\r\n").repeated(20000),
         QByteArray("0123456789\n").repeated(20000)},
    };
}

} // namespace

class tst_HashGenerator : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void destructorIsVirtual();
    void fileHashOmitsCarriageReturns_data();
    void fileHashOmitsCarriageReturns();
    void largeFileIsHashedCompletely();
    void truncationDuringReadOmitsBytes();
    void fileHashVectors_data();
    void fileHashVectors();
    void fileOfUnknownSizeIsHashed();
    void hashingDoesNotChangeTheFile();
    void missingFileIsReported_data();
    void missingFileIsReported();
    void danglingLinkIsReported();
    void linkedFileIsHashed();
    void directoryHasNoHash();
    void unreadableBytesAreOmitted();
    void missingPermissionIsReported_data();
    void missingPermissionIsReported();
    void textHashIsFnv1a_data();
    void textHashIsFnv1a();
    void textHashOfEveryByte();
    void textHashEndsAtTheZeroByte();
    void variantHashIsThatOfItsText_data();
    void variantHashIsThatOfItsText();
    void variantHashVectors_data();
    void variantHashVectors();
    void variantIsHashedAsUtf8InEveryLocale();
    void threadsDoNotInterfere();
};

void tst_HashGenerator::destructorIsVirtual()
{
    QVERIFY(isDestroyedThroughBase<HashGenerator>());
}

void tst_HashGenerator::fileHashOmitsCarriageReturns_data()
{
    QTest::addColumn<int>("algorithm");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("hashed");

    const QMetaEnum algorithms = QMetaEnum::fromType<QCryptographicHash::Algorithm>();
    QVERIFY(algorithms.keyCount() >= 15);
    for (int i = 0; i < algorithms.keyCount(); ++i) {
        for (const Content& content : contents()) {
            QTest::addRow("%s, %s", algorithms.key(i), content.name)
                << algorithms.value(i) << content.bytes << content.hashed;
        }
    }
}

void tst_HashGenerator::fileHashOmitsCarriageReturns()
{
    QFETCH(int, algorithm);
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, hashed);

    const auto method = static_cast<QCryptographicHash::Algorithm>(algorithm);
    const QByteArray hash = HashGenerator::createHashFromFile(writeFile("file", bytes), method);
    QCOMPARE(hash.size(), QCryptographicHash::hashLength(method));
    QCOMPARE(hash.toHex(), QCryptographicHash::hash(hashed, method).toHex());
}

void tst_HashGenerator::largeFileIsHashedCompletely()
{
    // Too large for a single read and not a multiple of the page size.
    constexpr int lines = 800001;
    const QByteArray bytes = QByteArray("0123456789\r\n").repeated(lines);
    QVERIFY(bytes.size() > 8 * 1024 * 1024);
    const auto method = QCryptographicHash::Md5;
    QCOMPARE(HashGenerator::createHashFromFile(writeFile(QStringLiteral("file"), bytes), method),
             QCryptographicHash::hash(QByteArray("0123456789\n").repeated(lines), method));
}

// Bytes that are removed before they are read are omitted, regardless of the size at opening.
void tst_HashGenerator::truncationDuringReadOmitsBytes()
{
    const QByteArray start = QByteArray("0123456789\r\n").repeated(100);
    for (const qint64 mebibytes : {1, 65, 200}) {
        const QString filePath = writeFile("file", start);
        QVERIFY(QFile::resize(filePath, mebibytes * 1024 * 1024)); // sparse
        sizeAtFirstRead = start.size();
        const QByteArray hash =
            HashGenerator::createHashFromFile(filePath, QCryptographicHash::Md5);
        QCOMPARE(sizeAtFirstRead, Q_INT64_C(-1));
        QCOMPARE(hash.toHex(), QCryptographicHash::hash(QByteArray(start).replace('\r', ""),
                                                        QCryptographicHash::Md5)
                                   .toHex());
    }
}

void tst_HashGenerator::fileHashVectors_data()
{
    QTest::addColumn<int>("algorithm");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("hash"); // in hexadecimal

    QTest::newRow("MD5 of no bytes") << int(QCryptographicHash::Md5) << QByteArray()
                                     << QByteArray("d41d8cd98f00b204e9800998ecf8427e");
    QTest::newRow("MD5 of abc") << int(QCryptographicHash::Md5) << QByteArray("\ra\rb\rc\r")
                                << QByteArray("900150983cd24fb0d6963f7d28e17f72");
    // From md5sum, without the carriage return.
    QTest::newRow("MD5 of a line") << int(QCryptographicHash::Md5) << QByteArray("a\r\n")
                                   << QByteArray("60b725f10c9c85c70d97880dfe8191b3");
    QTest::newRow("SHA-1 of abc") << int(QCryptographicHash::Sha1) << QByteArray("abc\r")
                                  << QByteArray("a9993e364706816aba3e25717850c26c9cd0d89d");
    QTest::newRow("SHA-256 of abc")
        << int(QCryptographicHash::Sha256) << QByteArray("abc\r")
        << QByteArray("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

void tst_HashGenerator::fileHashVectors()
{
    QFETCH(int, algorithm);
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, hash);

    QCOMPARE(HashGenerator::createHashFromFile(
                 writeFile("file", bytes), static_cast<QCryptographicHash::Algorithm>(algorithm))
                 .toHex(),
             hash);
}

void tst_HashGenerator::fileOfUnknownSizeIsHashed()
{
    // The file reports size 0 but has content.
    const QString filePath = "/proc/self/cmdline";
    QCOMPARE(QFileInfo(filePath).size(), 0);
    const QByteArray content = readFile(filePath);
    QVERIFY(content.contains('\0') && !content.contains('\r'));
    QCOMPARE(HashGenerator::createHashFromFile(filePath, QCryptographicHash::Sha1),
             QCryptographicHash::hash(content, QCryptographicHash::Sha1));
}

void tst_HashGenerator::hashingDoesNotChangeTheFile()
{
    const QByteArray content = "a\r\n";
    const QString filePath = writeFile("file", content);
    QVERIFY(QFile::setPermissions(filePath, QFileDevice::ReadOwner));
    const QByteArray first = HashGenerator::createHashFromFile(filePath, QCryptographicHash::Md5);
    QVERIFY(!first.isNull());
    QCOMPARE(readFile(filePath), content);
    QCOMPARE(HashGenerator::createHashFromFile(filePath, QCryptographicHash::Md5), first);
}

void tst_HashGenerator::missingFileIsReported_data()
{
    QTest::addColumn<QString>("filePath");
    QTest::addColumn<QString>("shown");

    const QString missing = "/nowhere/file";
    QTest::newRow("missing") << missing << missing;
    QTest::newRow("empty path") << QString() << QString();
    QTest::newRow("spaces and quotation marks") << "/nowhere/a \"b\""
                                                << "/nowhere/a \\\"b\\\"";
    QTest::newRow("below a file") << "/proc/version/file"
                                  << "/proc/version/file";
}

void tst_HashGenerator::missingFileIsReported()
{
    QFETCH(QString, filePath);
    QFETCH(QString, shown);

    messages()
        .expectWarning("HashGenerator", QStringLiteral("Can't find file: \"%1\" !").arg(shown))
        .function(signature);
    QVERIFY(HashGenerator::createHashFromFile(filePath, QCryptographicHash::Md5).isNull());
}

void tst_HashGenerator::danglingLinkIsReported()
{
    // The link itself exists; only opening it fails.
    const QString link = path("link");
    QVERIFY(QFile::link("/nowhere/file", link));
    messages().expectWarning(
        "HashGenerator",
        QStringLiteral("Can't open file: \"%1\" ( \"No such file or directory\" )!").arg(link));
    QVERIFY(HashGenerator::createHashFromFile(link, QCryptographicHash::Md5).isNull());
}

void tst_HashGenerator::linkedFileIsHashed()
{
    const QString link = path("link");
    QVERIFY(QFile::link(writeFile("file", "a\r\n"), link));
    QCOMPARE(HashGenerator::createHashFromFile(link, QCryptographicHash::Md5),
             QCryptographicHash::hash("a\n", QCryptographicHash::Md5));
}

void tst_HashGenerator::directoryHasNoHash()
{
    messages()
        .expectWarning(
            "HashGenerator",
            QStringLiteral("Can't open file: \"%1\" ( \"file to open is a directory\" )!")
                .arg(directory()))
        .function(signature);
    QVERIFY(HashGenerator::createHashFromFile(directory(), QCryptographicHash::Md5).isNull());
}

void tst_HashGenerator::unreadableBytesAreOmitted()
{
    // The file can be opened, but its start is unmapped memory; unreadable bytes are omitted.
    QFile file("/proc/self/mem");
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    char byte = 0;
    QCOMPARE(file.read(&byte, 1), Q_INT64_C(-1));
    QCOMPARE(HashGenerator::createHashFromFile(file.fileName(), QCryptographicHash::Md5).toHex(),
             QByteArray("d41d8cd98f00b204e9800998ecf8427e"));
}

void tst_HashGenerator::missingPermissionIsReported_data()
{
    QTest::addColumn<bool>("isDirectoryOpen");
    QTest::addColumn<QString>("warning");

    QTest::newRow("unreadable file")
        << true << "Can't open file: \"%1\" ( \"Permission denied\" )!";
    QTest::newRow("inaccessible directory") << false << "Can't find file: \"%1\" !";
}

void tst_HashGenerator::missingPermissionIsReported()
{
    QFETCH(bool, isDirectoryOpen);
    QFETCH(QString, warning);

    const QString filePath = writeFile("file", "content");
    QVERIFY(QFile::setPermissions(filePath, QFileDevice::Permissions()));
    // If an ordinary user runs this test, that user owns the directory, which must deny access even
    // to its owner.
    QVERIFY(
        QFile::setPermissions(directory(), QFileDevice::Permissions(isDirectoryOpen ? 0x7755 : 0)));
    const ChildResult result = ChildProcess::runAsOrdinaryUser([&filePath] {
        return HashGenerator::createHashFromFile(filePath, QCryptographicHash::Md5).isNull() ? 0
                                                                                             : 1;
    });
    QVERIFY(QFile::setPermissions(directory(), QFileDevice::Permissions(0x7700)));
    QVERIFY(result.exited);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(QString::fromLocal8Bit(result.output), warning.arg(filePath) + QLatin1Char('\n'));
}

void tst_HashGenerator::textHashIsFnv1a_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<uint>("hash");

    // The test vectors that were published with the algorithm.
    QTest::newRow("empty") << QByteArray("") << 0x811C9DC5u;
    QTest::newRow("a") << QByteArray("a") << 0xE40C292Cu;
    QTest::newRow("b") << QByteArray("b") << 0xE70C2DE5u;
    QTest::newRow("c") << QByteArray("c") << 0xE60C2C52u;
    QTest::newRow("d") << QByteArray("d") << 0xE10C2473u;
    QTest::newRow("e") << QByteArray("e") << 0xE00C22E0u;
    QTest::newRow("f") << QByteArray("f") << 0xE30C2799u;
    QTest::newRow("fo") << QByteArray("fo") << 0x6222E842u;
    QTest::newRow("foo") << QByteArray("foo") << 0xA9F37ED7u;
    QTest::newRow("foob") << QByteArray("foob") << 0x3F5076EFu;
    QTest::newRow("fooba") << QByteArray("fooba") << 0x39AAA18Au;
    QTest::newRow("foobar") << QByteArray("foobar") << 0xBF9CF968u;
    // Computed independently; signed bytes would result in a different hash.
    QTest::newRow("highest byte") << QByteArray("\xFF") << 0x7A0B824Eu;
    QTest::newRow("only the sign bit") << QByteArray("\x80") << 0x850B939Fu;
    QTest::newRow("UTF-8") << QByteArray("\xC3\xA4") << 0x199DE0E2u;
}

void tst_HashGenerator::textHashIsFnv1a()
{
    QFETCH(QByteArray, text);
    QFETCH(uint, hash);

    QCOMPARE(hashFromString(text.constData()), hash);
}

void tst_HashGenerator::textHashOfEveryByte()
{
    for (uint byte = 1; byte <= 0xFF; ++byte) {
        const quint64 product = quint64(2166136261u ^ byte) * 16777619u;
        const char text[] = {char(byte), '\0'};
        QCOMPARE(hashFromString(text), uint(product % Q_UINT64_C(4294967296)));
    }
}

void tst_HashGenerator::textHashEndsAtTheZeroByte()
{
    QCOMPARE(hashFromString("foo\0bar"), 0xA9F37ED7u);
    QCOMPARE(hashFromString("\0foo"), 0x811C9DC5u);
}

void tst_HashGenerator::variantHashIsThatOfItsText_data()
{
    QTest::addColumn<VariantSample>("sample");
    for (const VariantSample& sample : variantSamples()) {
        QTest::newRow(sample.name.constData()) << sample;
    }
}

void tst_HashGenerator::variantHashIsThatOfItsText()
{
    QFETCH(VariantSample, sample);

    QCOMPARE(hashFromString(sample.value),
             sample.isText ? hashFromString(sample.asText.toUtf8().constData()) : 0u);
}

void tst_HashGenerator::variantHashVectors_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<uint>("hash");

    QTest::newRow("invalid") << QVariant() << 0u;
    QTest::newRow("not convertible to text") << QVariant(QPoint(1, 2)) << 0u;
    QTest::newRow("42") << QVariant(42) << 0x87E38583u;
    QTest::newRow("the text 42") << QVariant(QStringLiteral("42")) << 0x87E38583u;
    QTest::newRow("empty text") << QVariant(QStringLiteral("")) << 0x811C9DC5u;
    QTest::newRow("null text") << QVariant(QString()) << 0x811C9DC5u;
    QTest::newRow("null of type text") << QVariant(QVariant::String) << 0x811C9DC5u;
    QTest::newRow("foobar") << QVariant(QStringLiteral("foobar")) << 0xBF9CF968u;
    QTest::newRow("raw foobar") << QVariant(QByteArray("foobar")) << 0xBF9CF968u;
    QTest::newRow("hashed as UTF-8") << QVariant(QStringLiteral(u"\u00E4")) << 0x199DE0E2u;
    QTest::newRow("text with a zero character")
        << QVariant(QString::fromUtf16(u"foo\0bar", 7)) << 0xA9F37ED7u;
    QTest::newRow("text with a leading zero character")
        << QVariant(QString::fromUtf16(u"\0foo", 4)) << 0x811C9DC5u;
}

void tst_HashGenerator::variantHashVectors()
{
    QFETCH(QVariant, value);
    QFETCH(uint, hash);

    QCOMPARE(hashFromString(value), hash);
}

void tst_HashGenerator::variantIsHashedAsUtf8InEveryLocale()
{
    QTextCodec* const before = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    const uint hash = hashFromString(QVariant(QStringLiteral(u"\u00E4")));
    QTextCodec::setCodecForLocale(before);
    QCOMPARE(hash, 0x199DE0E2u);
}

// Each thread has its own file and text, so that state shared between calls causes an incorrect
// result.
void tst_HashGenerator::threadsDoNotInterfere()
{
    constexpr int callsPerThread = 500;
    QStringList filePaths;
    QVector<QByteArray> fileHashes;
    QVector<QByteArray> texts;
    QVector<uint> textHashes;
    for (int number = 0; number < threadCount; ++number) {
        const QByteArray content(1000 * (number + 1), char('a' + number));
        filePaths.append(writeFile(QString::number(number), "\r" + content));
        fileHashes.append(QCryptographicHash::hash(content, QCryptographicHash::Md5));
        texts.append(content.left(10 + number));
        textHashes.append(hashFromString(texts.constLast().constData()));
    }
    const auto isRight = [&filePaths, &fileHashes, &texts, &textHashes](int number) {
        return HashGenerator::createHashFromFile(filePaths.at(number), QCryptographicHash::Md5) ==
                   fileHashes.at(number) &&
               hashFromString(texts.at(number).constData()) == textHashes.at(number) &&
               hashFromString(QVariant(texts.at(number))) == textHashes.at(number);
    };
    QCOMPARE(correctCallsInManyThreads(callsPerThread, isRight), threadCount * callsPerThread);
}

QTEST_GUILESS_MAIN(tst_HashGenerator)
#include "tst_HashGenerator.moc"
