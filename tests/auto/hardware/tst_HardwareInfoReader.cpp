#include "ChildProcess.h"
#include "EepromImage.h"
#include "HardwareInfo.h"
#include "HardwareInfoReader.h"
#include "ReadLog.h"
#include "ReaderSamples.h"
#include "TestCase.h"

#include <QtCore/QPointer>
#include <QtCore/QRandomGenerator>
#include <QtCore/QThread>
#include <QtCore/QtEndian>

#include <cstring>
#include <memory>
#include <type_traits>
#include <unistd.h>
#include <vector>

using namespace ReaderSamples;

namespace {

// Short enough to fit before the header.
const QByteArray shortText = "Type=4711\n";

constexpr char readFunction[] = "bool HardwareInfoReader::readHardwareInfoFromSysFs(const "
                                "QString&, const QString&, HardwareInfo&)";

// If these keys are missing, the warnings show the order of the reads. (A missing comment logs
// nothing.)
const QStringList keysInReadOrder = {"Version", "LP-ID", "Type", "TypeName", "CompatibilityIndex"};

QByteArray randomBytes(int count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    for (char& byte : bytes) {
        byte = char(QRandomGenerator::global()->bounded(256));
    }
    return bytes;
}

quint16 libraryCrc(const QByteArray& data)
{
    return HardwareInfoReader(nullptr).checksumXModemCRC(data.constData(), uint(data.size()));
}

} // namespace

Q_DECLARE_METATYPE(QVector<Read>)

class tst_HardwareInfoReader : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void validImagesAreRead_data();
    void validImagesAreRead();
    void blockMayPrecedeOrOverlapTheHeader_data();
    void blockMayPrecedeOrOverlapTheHeader();
    void blockMayBeAnywhereInAHugeImage_data();
    void blockMayBeAnywhereInAHugeImage();
    void truncatedImageIsRejected_data();
    void truncatedImageIsRejected();
    void blockBeyondTheImageIsRejected_data();
    void blockBeyondTheImageIsRejected();
    void blockLengthLimit_data();
    void blockLengthLimit();
    void emptyBlockYieldsAnEmptyRecord_data();
    void emptyBlockYieldsAnEmptyRecord();
    void invalidChecksumIsRejected_data();
    void invalidChecksumIsRejected();
    void everyFlippedBitOfTheBlockIsDetected();
    void missingFileIsReported_data();
    void missingFileIsReported();
    void imageThatCannotBeOpenedIsReported_data();
    void imageThatCannotBeOpenedIsReported();
    void imageWithoutReadPermissionIsReported();
    void failedSeekInAPipeIsReported_data();
    void failedSeekInAPipeIsReported();
    void onlyTheFirstFailureIsReported_data();
    void onlyTheFirstFailureIsReported();
    void onlyHeaderAndBlockAreRead_data();
    void onlyHeaderAndBlockAreRead();
    void keysAreReadInOrder();
    void temporaryFileExistsOnlyWhileParsing();
    void unusableTemporaryFileYieldsAnEmptyRecord();
    void readerMayBeUsedAgain();
    void readersInSeveralThreadsAreIndependent();
    void data2HwInfoFillsTheRecord();
    void bytes2Uint32_data();
    void bytes2Uint32();
    void crcTableMatchesThePolynomial();
    void crcVectors_data();
    void crcVectors();
    void crcOfRandomBlocks();
    void crcOfZeroBytesReadsNoData();
    void classAddsNothingToTheMetaObject();
    void fieldsAreInDeclaredOrder();

private:
    QString fileTemplate() const { return path("tmp/hwinfo.XXXXXX"); }
    QStringList temporaryFiles() const { return QDir(path("tmp")).entryList(QDir::Files); }
    QString writeImage(const QByteArray& image) const { return writeFile("eeprom", image); }
    void verifyRead(const QString& image, const QStringList& record);
    void verifyNotRead(const QString& image);
    void expectWarning(const QString& text);
    void expectNoTextInTemporaryFile(const char* reason);
    void expectMissingKeys(const QStringList& keys);
};

void tst_HardwareInfoReader::verifyRead(const QString& image, const QStringList& record)
{
    QDir(directory()).mkdir("tmp");
    HardwareInfo info = usedRecord();
    HardwareInfoReader reader(nullptr);
    QVERIFY(reader.readHardwareInfoFromSysFs(fileTemplate(), image, info));
    QCOMPARE(values(info), record);
    QCOMPARE(temporaryFiles(), QStringList());
}

void tst_HardwareInfoReader::verifyNotRead(const QString& image)
{
    HardwareInfo info = usedRecord();
    HardwareInfoReader reader(nullptr);
    QVERIFY(!reader.readHardwareInfoFromSysFs(fileTemplate(), image, info));
    QCOMPARE(values(info), untouched);
}

void tst_HardwareInfoReader::expectWarning(const QString& text)
{
    messages().expectWarning("HardwareInfoReader", text).function(readFunction);
}

// The warnings of a read whose text could not be written to a file.
void tst_HardwareInfoReader::expectNoTextInTemporaryFile(const char* reason)
{
    const char file[] = "HardwareVersionIniManager";
    messages().expectWarning(file, QString::fromLatin1(reason));
    for (const QString& key : keysInReadOrder) {
        messages().expectWarning(file, QStringLiteral("No valid 'IniFileManager' object for "
                                                      "accessing section \"\" with key \"%1\" !")
                                           .arg(key));
    }
    messages().expectWarning(file,
                             QStringLiteral("No valid IniFileManager object for accessing section "
                                            "\"\" with key \"Comment\" !"));
}

// Call this while the temporary file exists, because the messages contain its name.
void tst_HardwareInfoReader::expectMissingKeys(const QStringList& keys)
{
    QCOMPARE(temporaryFiles().size(), 1);
    for (const QString& key : keys) {
        messages().expectWarning(
            "IniFileManager",
            QStringLiteral("\"Ini-File (%1/tmp/%2):\" Key \"%3\" not found in Group \"\" !")
                .arg(directory(), temporaryFiles().first(), key));
    }
}

void tst_HardwareInfoReader::validImagesAreRead_data()
{
    QTest::addColumn<QByteArray>("image");

    using Image = EepromImage;
    const auto row = [](const char* name, const Image& image) {
        QTest::newRow(name) << image.bytes();
    };
    row("block right after the header", Image(boardText));
    row("bytes after the block", Image(boardText).size(1024));
    row("block at the image's end",
        Image(boardText).startAddress(1024 - quint32(boardText.size())));
    row("block beyond 64 KiB", Image(boardText).startAddress(0x12345));
    row("start address with four different bytes", Image(boardText).startAddress(0x01020304));
    row("filled with zeros", Image(boardText).startAddress(64).size(256).fill('\0'));
    row("no line feed at the end", Image(boardText.left(boardText.size() - 1)));
    row("reserved word", Image(boardText).reserved(0xDEADBEEF));
    row("upper checksum bits set", Image(boardText).upperChecksumBits(0xFFFF));
    row("upper checksum bits mixed", Image(boardText).upperChecksumBits(0xA5C3));
}

void tst_HardwareInfoReader::validImagesAreRead()
{
    QFETCH(QByteArray, image);
    verifyRead(writeImage(image), boardRecord);
}

void tst_HardwareInfoReader::blockMayPrecedeOrOverlapTheHeader_data()
{
    QTest::addColumn<QByteArray>("image");

    using Image = EepromImage;
    const auto row = [](const char* name, const Image& image) {
        QTest::newRow(name) << image.bytes();
    };
    const auto word = [](const char* text) { return qFromLittleEndian<quint32>(text); };
    row("at the image's first byte", Image(shortText).startAddress(0));
    row("ending where the header starts", Image(shortText).startAddress(10));
    row("ending with the reserved word",
        Image(shortText).startAddress(14).reserved(word(shortText.constData() + 6)));
    row("starting with the upper checksum bits",
        Image(shortText).startAddress(34).upperChecksumBits(quint16(word("Ty\0"))));
    row("starting with the header's last byte",
        Image(shortText).startAddress(35).upperChecksumBits(quint16(word("\0T\0"))));
    row("starting with the start address",
        Image(QByteArray(12, '?') + '\n' + shortText).startAddress(24));
    row("around the header", Image(';' + QByteArray(35, '?') + '\n' + shortText).startAddress(0));
}

void tst_HardwareInfoReader::blockMayPrecedeOrOverlapTheHeader()
{
    QFETCH(QByteArray, image);
    QStringList missing = keysInReadOrder;
    missing.removeOne("Type");
    messages().setObserver([this, missing](const Message&) {
        messages().setObserver(nullptr);
        expectMissingKeys(missing);
    });
    QStringList record = sixEmptyTexts;
    record[0] = "4711";
    verifyRead(writeImage(image), record);
}

void tst_HardwareInfoReader::blockMayBeAnywhereInAHugeImage_data()
{
    QTest::addColumn<quint32>("address");
    QTest::newRow("across 2^31") << quint32(0x7FFFFFF0U);
    QTest::newRow("at 2^31") << quint32(0x80000000U);
    QTest::newRow("beyond 2^31") << quint32(0x90000001U);
    QTest::newRow("at the last address, across 2^32") << quint32(0xFFFFFFFFU);
}

// A sparse file: the gigabytes before the block use no disk space.
void tst_HardwareInfoReader::blockMayBeAnywhereInAHugeImage()
{
    QFETCH(quint32, address);
    const QString image =
        writeImage(EepromImage(boardText).writtenStartAddress(address).bytes().left(36));
    QFile file(image);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(address));
    QCOMPARE(file.write(boardText), qint64(boardText.size()));
    file.close();
    verifyRead(image, boardRecord);
}

void tst_HardwareInfoReader::truncatedImageIsRejected_data()
{
    QTest::addColumn<int>("size");
    const int full = EepromImage(boardText).bytes().size();
    for (int size = 0; size <= full; ++size) {
        QTest::addRow("%d of %d bytes", size, full) << size;
    }
}

void tst_HardwareInfoReader::truncatedImageIsRejected()
{
    QFETCH(int, size);
    const QByteArray complete = EepromImage(boardText).bytes();
    const QString image = writeImage(complete.left(size));
    if (size == complete.size()) {
        verifyRead(image, boardRecord);
        return;
    }
    if (size < EepromImage::headerEnd) {
        expectWarning(shortHeader(qMax(0, size - EepromImage::headerAddress), image));
    } else {
        expectWarning(shortBlock(image));
    }
    verifyNotRead(image);
}

void tst_HardwareInfoReader::blockBeyondTheImageIsRejected_data()
{
    QTest::addColumn<quint32>("address");
    const quint32 end = quint32(EepromImage(boardText).bytes().size());
    QTest::newRow("one byte too far") << quint32(EepromImage::headerEnd + 1);
    QTest::newRow("at the end") << end;
    QTest::newRow("beyond the end") << end + 1;
    QTest::newRow("2^31 - 1") << quint32(0x7FFFFFFFU);
    QTest::newRow("2^31") << quint32(0x80000000U);
    QTest::newRow("2^32 - 1") << quint32(0xFFFFFFFFU);
}

void tst_HardwareInfoReader::blockBeyondTheImageIsRejected()
{
    QFETCH(quint32, address);
    const QString image = writeImage(EepromImage(boardText).writtenStartAddress(address).bytes());
    expectWarning(shortBlock(image));
    verifyNotRead(image);
}

void tst_HardwareInfoReader::blockLengthLimit_data()
{
    QTest::addColumn<quint32>("length");
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("at the limit") << 65535U << true;
    QTest::newRow("one above the limit") << 65536U << false;
    QTest::newRow("limit in the lower half") << 0x1FFFFU << false;
    QTest::newRow("2^31 - 1") << 0x7FFFFFFFU << false;
    QTest::newRow("2^31") << 0x80000000U << false;
    QTest::newRow("2^32 - 1") << 0xFFFFFFFFU << false;
}

void tst_HardwareInfoReader::blockLengthLimit()
{
    QFETCH(quint32, length);
    QFETCH(bool, isAccepted);
    const int blockSize = int(qMin(length, 70000U));
    const QByteArray block = boardText + QByteArray(blockSize - boardText.size(), ';');
    const QString image = writeImage(EepromImage(block).bytesToRead(length).size(80000).bytes());
    if (isAccepted) {
        verifyRead(image, boardRecord);
        return;
    }
    expectWarning(tooLong(length, image));
    verifyNotRead(image);
}

void tst_HardwareInfoReader::emptyBlockYieldsAnEmptyRecord_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::newRow("header only") << EepromImage(QByteArray()).bytes();
    QTest::newRow("upper checksum bits")
        << EepromImage(QByteArray()).upperChecksumBits(0x8001).bytes();
    QTest::newRow("start address beyond the end")
        << EepromImage(QByteArray()).writtenStartAddress(0xFFFFFFFFU).bytes();
    QTest::newRow("only zeros") << QByteArray(256, '\0');
}

void tst_HardwareInfoReader::emptyBlockYieldsAnEmptyRecord()
{
    QFETCH(QByteArray, image);
    expectNoTextInTemporaryFile("Error on writing to temporary file for version data!");
    verifyRead(writeImage(image), sixEmptyTexts);
}

void tst_HardwareInfoReader::invalidChecksumIsRejected_data()
{
    QTest::addColumn<QByteArray>("image");

    using Image = EepromImage;
    const quint16 right = Image::crc(boardText);
    const auto row = [](const char* name, const Image& image) {
        QTest::newRow(name) << image.bytes();
    };
    row("lowest bit", Image(boardText).checksum(right ^ 0x0001));
    row("bit 7", Image(boardText).checksum(right ^ 0x0080));
    row("bit 8", Image(boardText).checksum(right ^ 0x0100));
    row("highest bit", Image(boardText).checksum(right ^ 0x8000));
    row("inverted", Image(boardText).checksum(quint16(~right)));
    row("swapped bytes", Image(boardText).checksum(qbswap(right)));
    row("checksum in the upper bits", Image(boardText).checksum(0).upperChecksumBits(right));
    row("empty block", Image(QByteArray()).checksum(1));
    row("empty block, highest bit", Image(QByteArray()).checksum(0x8000));
    row("start address off by one", Image(boardText).writtenStartAddress(35));
    row("length off by one", Image(boardText).bytesToRead(quint32(boardText.size()) - 1));
}

void tst_HardwareInfoReader::invalidChecksumIsRejected()
{
    QFETCH(QByteArray, image);
    const QString file = writeImage(image);
    expectWarning(invalidChecksum(file));
    verifyNotRead(file);
}

void tst_HardwareInfoReader::everyFlippedBitOfTheBlockIsDetected()
{
    for (int bit = 0; bit < 8 * shortText.size(); ++bit) {
        const QString image = writeImage(
            EepromImage(shortText).flipBit(EepromImage::headerEnd + bit / 8, bit % 8).bytes());
        expectWarning(invalidChecksum(image));
        verifyNotRead(image);
    }
}

void tst_HardwareInfoReader::missingFileIsReported_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no such file") << "none";
    QTest::newRow("no such directory") << "none/eeprom";
    QTest::newRow("file as directory") << "file/eeprom";
}

void tst_HardwareInfoReader::missingFileIsReported()
{
    QFETCH(QString, name);
    writeFile("file", "content");
    messages()
        .expect(QtDebugMsg,
                QStringLiteral("Can't find eeprom binary file \"%1\" .").arg(path(name)))
        .file("HardwareInfoReader")
        .category("default")
        .function(readFunction);
    verifyNotRead(path(name));
}

void tst_HardwareInfoReader::imageThatCannotBeOpenedIsReported_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("directory") << QString();
    // QFile counts the link itself as an existing file.
    QTest::newRow("dangling link") << "link";
}

void tst_HardwareInfoReader::imageThatCannotBeOpenedIsReported()
{
    QFETCH(QString, name);
    QVERIFY(QFile::link(path("none"), path("link")));
    messages()
        .expect(QtDebugMsg,
                QStringLiteral("Can't open eeprom binary file \"%1\" .").arg(path(name)))
        .file("HardwareInfoReader")
        .category("default")
        .function(readFunction);
    verifyNotRead(path(name));
}

void tst_HardwareInfoReader::imageWithoutReadPermissionIsReported()
{
    const QString image = writeImage(EepromImage(boardText).bytes());
    QVERIFY(QFile::setPermissions(image, QFileDevice::Permissions()));
    // The user may enter the directory, so the image is known to exist.
    QVERIFY(QFile::setPermissions(directory(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                   QFileDevice::ExeOwner | QFileDevice::ExeOther));
    const ChildResult result = ChildProcess::runAsOrdinaryUser([this, &image] {
        HardwareInfo info = usedRecord();
        const bool isRead =
            HardwareInfoReader(nullptr).readHardwareInfoFromSysFs(fileTemplate(), image, info);
        return !isRead && values(info) == untouched ? 0 : 1;
    });
    QVERIFY2(result.exited && result.exitCode == 0, result.output.constData());
    QCOMPARE(QString::fromLocal8Bit(result.output),
             QStringLiteral("Can't open eeprom binary file \"%1\" .\n").arg(image));
}

void tst_HardwareInfoReader::failedSeekInAPipeIsReported_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("headerBytes");

    const auto header = [](const EepromImage& image) {
        return image.bytes().mid(EepromImage::headerAddress, EepromImage::headerSize);
    };
    // A pipe is not seekable: its first bytes are read as the header, and only the failed seek to
    // the block is detected.
    QTest::newRow("complete header")
        << header(EepromImage(boardText).writtenStartAddress(0x80000001U)) << 16;
    QTest::newRow("length over the limit")
        << header(EepromImage(boardText).writtenStartAddress(0x80000001U).bytesToRead(65536)) << 16;
    QTest::newRow("truncated header") << QByteArray("seven b") << 7;
}

void tst_HardwareInfoReader::failedSeekInAPipeIsReported()
{
    QFETCH(QByteArray, content);
    QFETCH(int, headerBytes);
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    QCOMPARE(write(ends[1], content.constData(), size_t(content.size())), ssize_t(content.size()));
    close(ends[1]);
    const QString image = QStringLiteral("/proc/self/fd/%1").arg(ends[0]);
    // QFile warns about each failed seek; the first failure has no other effect.
    const auto expectSeekOfQFile = [this](quint32 address) {
        messages().expect(QtWarningMsg,
                          QStringLiteral("QFile::at: Cannot set file position %1").arg(address));
    };
    expectSeekOfQFile(EepromImage::headerAddress);
    if (headerBytes == EepromImage::headerSize) {
        expectSeekOfQFile(0x80000001U);
        expectWarning(failedSeek(0x80000001U, image));
    } else {
        expectWarning(shortHeader(headerBytes, image));
    }
    verifyNotRead(image);
    close(ends[0]);
}

void tst_HardwareInfoReader::onlyTheFirstFailureIsReported_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("message"); // %1 is the path of the image

    using Image = EepromImage;
    const QString file = "%1";
    const QByteArray invalid = Image(boardText).checksum(0).bytes();
    QTest::newRow("short header before any other failure")
        << Image(boardText).bytesToRead(0xFFFFFFFFU).checksum(0).bytes().left(35)
        << shortHeader(15, file);
    QTest::newRow("length over the limit before short block")
        << Image(boardText).bytesToRead(65536).writtenStartAddress(0xFFFFFFFFU).bytes()
        << tooLong(65536, file);
    QTest::newRow("length over the limit before invalid checksum")
        << Image(QByteArray(65536, ';')).checksum(0).bytes() << tooLong(65536, file);
    QTest::newRow("short block before invalid checksum")
        << invalid.left(invalid.size() - 1) << shortBlock(file);
}

void tst_HardwareInfoReader::onlyTheFirstFailureIsReported()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, message);
    const QString file = writeImage(image);
    expectWarning(message.arg(file));
    verifyNotRead(file);
}

void tst_HardwareInfoReader::onlyHeaderAndBlockAreRead_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QVector<Read>>("expected");

    using Image = EepromImage;
    const auto row = [](const char* name, const QByteArray& image, const QVector<Read>& expected) {
        QTest::newRow(name) << image << expected;
    };
    const Read header = {20, 16};
    const int textSize = boardText.size();
    row("valid", Image(boardText).startAddress(4096).size(65536).bytes(),
        {header, {4096, textSize}});
    row("block of the maximum length",
        Image(QByteArray(65535, ';')).checksum(1).size(80000).bytes(), {header, {36, 65535}});
    row("empty block", Image(QByteArray()).checksum(1).size(65536).bytes(), {header});
    row("length over the limit", Image(boardText).bytesToRead(65536).size(80000).bytes(), {header});
    // The missing bytes are requested again until the file reports its end.
    row("truncated header", Image(boardText).bytes().left(30), {header, {30, 6}});
    row("truncated block", Image(boardText).bytes().left(40),
        {header, {36, textSize}, {40, textSize - 4}});
}

// The bus of an EEPROM is slow: each byte of read-ahead costs 0.1 ms.
void tst_HardwareInfoReader::onlyHeaderAndBlockAreRead()
{
    QFETCH(QByteArray, image);
    QFETCH(QVector<Read>, expected);
    const QString file = writeImage(image);
    HardwareInfo info;
    const ReadLog log(file);
    HardwareInfoReader(nullptr).readHardwareInfoFromSysFs(path("hwinfo.XXXXXX"), file, info);
    // Other tests check the messages.
    messages().take();
    QCOMPARE(log.reads().size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(log.reads().at(i).offset, expected.at(i).offset);
        QCOMPARE(log.reads().at(i).size, expected.at(i).size);
    }
}

void tst_HardwareInfoReader::keysAreReadInOrder()
{
    messages().setObserver([this](const Message&) {
        messages().setObserver(nullptr);
        expectMissingKeys(keysInReadOrder);
    });
    verifyRead(writeImage(EepromImage("[Board]\n" + boardText).bytes()), sixEmptyTexts);
}

void tst_HardwareInfoReader::temporaryFileExistsOnlyWhileParsing()
{
    const QByteArray text = "Comment=no more\r\n; and \xFF not \xC3\xA9 changed";
    QStringList contents;
    messages().setObserver([this, &contents](const Message&) {
        for (const QString& file : temporaryFiles()) {
            contents.append(QString::fromLatin1(readFile(path("tmp/" + file))));
        }
        if (contents.size() == 1) {
            const QRegularExpression name("^hwinfo\\.[A-Za-z]{6}$");
            QVERIFY(name.match(temporaryFiles().first()).hasMatch());
            expectMissingKeys(keysInReadOrder);
        }
    });
    QStringList record = sixEmptyTexts;
    record[5] = "no more";
    verifyRead(writeImage(EepromImage(text).bytes()), record);
    // There is exactly one file at each message.
    QStringList expected;
    for (int i = 0; i < keysInReadOrder.size(); ++i) {
        expected.append(QString::fromLatin1(text));
    }
    QCOMPARE(contents, expected);
}

// The block is valid, so the read succeeds although no value could be read.
void tst_HardwareInfoReader::unusableTemporaryFileYieldsAnEmptyRecord()
{
    expectNoTextInTemporaryFile("Can't open temporary file for version data!");
    HardwareInfo info = usedRecord();
    QVERIFY(HardwareInfoReader(nullptr).readHardwareInfoFromSysFs(
        path("none/hwinfo.XXXXXX"), writeImage(EepromImage(boardText).bytes()), info));
    QCOMPARE(values(info), sixEmptyTexts);
}

void tst_HardwareInfoReader::readerMayBeUsedAgain()
{
    HardwareInfoReader reader(nullptr);
    HardwareInfo info;
    for (int i = 0; i < 20; ++i) {
        const QByteArray number = QByteArray::number(i);
        QByteArray text = boardText;
        text.replace("4711", number);
        const QString image = writeImage(EepromImage(text).bytes());
        QVERIFY(reader.readHardwareInfoFromSysFs(path("hwinfo"), image, info));
        QCOMPARE(info.type(), QString::fromLatin1(number));

        const QString damaged = writeImage(EepromImage(text).flipBit(40, 0).bytes());
        expectWarning(invalidChecksum(damaged));
        QVERIFY(!reader.readHardwareInfoFromSysFs(path("hwinfo"), damaged, info));
        QCOMPARE(info.type(), QString::fromLatin1(number));
    }
}

void tst_HardwareInfoReader::readersInSeveralThreadsAreIndependent()
{
    constexpr int threadCount = 4;
    constexpr int readsPerThread = 25;
    QDir(directory()).mkdir("tmp");
    QAtomicInt correctReads;
    std::vector<std::unique_ptr<QThread>> threads;
    for (int i = 0; i < threadCount; ++i) {
        QByteArray text = boardText;
        text.replace("4711", QByteArray::number(i));
        const QString image = writeFile(QString::number(i), EepromImage(text).bytes());
        threads.emplace_back(QThread::create([this, image, i, &correctReads] {
            HardwareInfoReader reader(nullptr);
            for (int read = 0; read < readsPerThread; ++read) {
                HardwareInfo info;
                if (reader.readHardwareInfoFromSysFs(fileTemplate(), image, info) &&
                    info.type() == QString::number(i) &&
                    info.Comment() == boardRecord.constLast()) {
                    correctReads.ref();
                }
            }
        }));
        threads.back()->start();
    }
    for (const auto& thread : threads) {
        QVERIFY(thread->wait());
    }
    QCOMPARE(correctReads.loadAcquire(), threadCount * readsPerThread);
    QCOMPARE(temporaryFiles(), QStringList());
}

void tst_HardwareInfoReader::data2HwInfoFillsTheRecord()
{
    HardwareInfo info = usedRecord();
    HardwareInfoReader(nullptr).data2HwInfo(boardText, path("hwinfo"), info);
    QCOMPARE(values(info), boardRecord);

    expectNoTextInTemporaryFile("Error on writing to temporary file for version data!");
    HardwareInfoReader(nullptr).data2HwInfo(QByteArray(), path("hwinfo"), info);
    QCOMPARE(values(info), sixEmptyTexts);
}

void tst_HardwareInfoReader::bytes2Uint32_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<quint32>("number");

    const auto row = [](const char* hex, quint32 number) {
        QTest::newRow(*hex == '\0' ? "empty" : hex) << QByteArray::fromHex(hex) << number;
    };
    row("", 0);
    row("12", 0);
    row("1234", 0x3412);
    row("123456", 0x3412);
    row("12345678", 0x78563412);
    row("123456789a", 0x78563412);
    row("ff", 0);
    row("ffff", 0xFFFF);
    row("ffffff", 0xFFFF);
    row("ffffffff", 0xFFFFFFFFU);
    row("00800000", 0x8000);
    row("ff7f0000", 0x7FFF);
    row("ffff0000", 0xFFFF);
    row("00000080", 0x80000000U);
    row("0000ff7f", 0x7FFF0000);
    row("00800080", 0x80008000U);
    row("01000000", 1);
    row("00010000", 0x100);
    row("00000100", 0x10000);
    row("00000001", 0x1000000);
}

void tst_HardwareInfoReader::bytes2Uint32()
{
    QFETCH(QByteArray, bytes);
    QFETCH(quint32, number);
    QCOMPARE(HardwareInfoReader(nullptr).bytes2Uint32(bytes), number);
}

void tst_HardwareInfoReader::crcTableMatchesThePolynomial()
{
    for (int i = 0; i < 256; ++i) {
        QCOMPARE(HardwareInfoReader::sm_CrcLookupTable[i],
                 EepromImage::crc(QByteArray(1, char(i))));
    }
    QCOMPARE(HardwareInfoReader::sm_CrcLookupTable[1], quint16(0x1021));
    QCOMPARE(HardwareInfoReader::sm_CrcLookupTable[2], quint16(0x2042));
    QCOMPARE(HardwareInfoReader::sm_CrcLookupTable[255], quint16(0x1EF0));
}

void tst_HardwareInfoReader::crcVectors_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<quint16>("crc");

    QByteArray allBytes;
    for (int i = 0; i < 256; ++i) {
        allBytes.append(char(i));
    }
    const auto row = [](const char* name, const QByteArray& data, int crc) {
        QTest::newRow(name) << data << quint16(crc);
    };
    // Computed with crc_hqx() of Python's binascii module.
    row("empty", QByteArray(), 0x0000);
    row("check value", "123456789", 0x31C3);
    row("one letter", "A", 0x58E5);
    row("256 letters", QByteArray(256, 'A'), 0xABE3);
    row("one zero", QByteArray(1, '\0'), 0x0000);
    row("16 zeros", QByteArray(16, '\0'), 0x0000);
    row("one 0xFF", "\xFF", 0x1EF0);
    row("two 0xFF", "\xFF\xFF", 0x1D0F);
    row("every byte", allBytes, 0x7E55);
    row("sentence", "The quick brown fox jumps over the lazy dog", 0xF0C8);
    row("followed by its checksum", "123456789\x31\xC3", 0x0000);
}

void tst_HardwareInfoReader::crcVectors()
{
    QFETCH(QByteArray, data);
    QFETCH(quint16, crc);
    QCOMPARE(libraryCrc(data), crc);
    QCOMPARE(EepromImage::crc(data), crc);
}

void tst_HardwareInfoReader::crcOfRandomBlocks()
{
    for (int size = 0; size < 300; ++size) {
        const QByteArray data = randomBytes(size);
        QVERIFY2(libraryCrc(data) == EepromImage::crc(data), data.toHex().constData());
    }
    const QByteArray longest = randomBytes(65535);
    QCOMPARE(libraryCrc(longest), EepromImage::crc(longest));
}

void tst_HardwareInfoReader::crcOfZeroBytesReadsNoData()
{
    HardwareInfoReader reader(nullptr);
    QCOMPARE(reader.checksumXModemCRC(nullptr, 0), quint16(0));
    QCOMPARE(reader.checksumXModemCRC("A", 0), quint16(0));
    // Only the given length is read.
    QCOMPARE(reader.checksumXModemCRC("AB", 1), quint16(0x58E5));
}

void tst_HardwareInfoReader::classAddsNothingToTheMetaObject()
{
    std::unique_ptr<QObject> parent(new QObject);
    const QPointer<HardwareInfoReader> reader(new HardwareInfoReader(parent.get()));
    QCOMPARE(reader->parent(), parent.get());
    QCOMPARE(HardwareInfoReader(nullptr).parent(), nullptr);

    const QMetaObject* metaObject = reader->metaObject();
    QCOMPARE(metaObject, &HardwareInfoReader::staticMetaObject);
    QCOMPARE(metaObject->superClass(), &QObject::staticMetaObject);
    QCOMPARE(metaObject->className(), "HardwareInfoReader");
    QCOMPARE(metaObject->methodCount(), QObject::staticMetaObject.methodCount());
    QCOMPARE(metaObject->propertyCount(), QObject::staticMetaObject.propertyCount());
    QCOMPARE(metaObject->enumeratorCount(), QObject::staticMetaObject.enumeratorCount());
    QCOMPARE(metaObject->classInfoCount(), 0);
    QCOMPARE(metaObject->constructorCount(), 0);
    QCOMPARE(reader->qt_metacast("HardwareInfoReader"), static_cast<void*>(reader.data()));
    QCOMPARE(reader->qt_metacast("QObject"), static_cast<void*>(reader.data()));
    QCOMPARE(reader->qt_metacast("HardwareInfo"), nullptr);
    QVERIFY(reader->inherits("HardwareInfoReader"));
    QVERIFY(reader->inherits("QObject"));
    // The class adds no meta-calls.
    const int firstOwn = QObject::staticMetaObject.methodCount();
    QCOMPARE(reader->qt_metacall(QMetaObject::InvokeMetaMethod, firstOwn + 3, nullptr), 3);

    parent.reset();
    QVERIFY(reader.isNull());
}

void tst_HardwareInfoReader::fieldsAreInDeclaredOrder()
{
    static_assert(std::has_virtual_destructor<HardwareInfoReader>::value, "a QObject");
    static_assert(sizeof(HardwareInfoReader) == sizeof(QObject) + 10 * sizeof(int),
                  "a fixed layout");
    const HardwareInfoReader reader(nullptr);
    int numbers[10];
    memcpy(numbers, reinterpret_cast<const char*>(&reader) + sizeof(QObject), sizeof numbers);
    const QVector<int> expected = {20, 16, 0, 4, 4, 4, 8, 4, 12, 4};
    QCOMPARE(QVector<int>(std::begin(numbers), std::end(numbers)), expected);
}

QTEST_GUILESS_MAIN(tst_HardwareInfoReader)
#include "tst_HardwareInfoReader.moc"
