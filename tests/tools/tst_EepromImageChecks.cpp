#include "EepromImage.h"
#include "ProgramRun.h"
#include "TestCase.h"

#include <QtCore/QRandomGenerator>

namespace {

const QByteArray boardText = "Type=4711\nTypeName=Sample board\n";

} // namespace

// The commands of eeprom-image that examine the bytes of an image: verify and dump.
class tst_EepromImageChecks : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void verifyPrintsPositions_data();
    void verifyPrintsPositions();
    void damageIsReportedWithItsPosition_data();
    void damageIsReportedWithItsPosition();
    void readErrorsAreReported();
    void pipesAreRefused();
    void verifyAgreesWithTheLibrary();
    void dumpPrintsHeaderAndBlock();
    void dumpPrintsInvalidImages_data();
    void dumpPrintsInvalidImages();
    void invalidUsageIsRefused_data();
    void invalidUsageIsRefused();

private:
    ProgramResult run(const QStringList& arguments) const
    {
        return ProgramRun(QStringLiteral(EEPROM_IMAGE_PROGRAM), arguments, directory()).finish();
    }
    ProgramResult run(const QString& command, const QString& file) const
    {
        return run(QStringList{command, file});
    }
};

void tst_EepromImageChecks::verifyPrintsPositions_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("block");

    QTest::newRow("directly after the header")
        << EepromImage(boardText).bytes() << QStringLiteral("32 bytes, 36 to 67 (0x24 to 0x43)");
    QTest::newRow("far after the header, larger image")
        << EepromImage(boardText).startAddress(0x1000).size(0x2000).bytes()
        << QStringLiteral("32 bytes, 4096 to 4127 (0x1000 to 0x101f)");
    QTest::newRow("one byte") << EepromImage(";").bytes()
                              << QStringLiteral("1 byte, 36 to 36 (0x24 to 0x24)");
    QTest::newRow("before the header") << EepromImage("Type=4711\n").startAddress(0).bytes()
                                       << QStringLiteral("10 bytes, 0 to 9 (0x0 to 0x9)");
    QTest::newRow("fields that are not evaluated")
        << EepromImage(boardText).reserved(1).upperChecksumBits(0xABCD).bytes()
        << QStringLiteral("32 bytes, 36 to 67 (0x24 to 0x43)");
    QTest::newRow("largest block") << EepromImage(QByteArray(65535, ';')).bytes()
                                   << QStringLiteral("65535 bytes, 36 to 65570 (0x24 to 0x10022)");
}

void tst_EepromImageChecks::verifyPrintsPositions()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, block);

    writeFile(QStringLiteral("eeprom"), image);
    const ProgramResult result = run(QStringLiteral("verify"), QStringLiteral("eeprom"));
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output, QStringLiteral("eeprom: the image is valid\n"
                                           "  header    16 bytes, 20 to 35 (0x14 to 0x23)\n"
                                           "  block     %1\n"
                                           "  checksum  0x%2\n")
                                .arg(block, QString::fromLatin1(image.mid(33, 1).toHex() +
                                                                image.mid(32, 1).toHex())));
    QCOMPARE(result.exitCode, 0);
}

void tst_EepromImageChecks::damageIsReportedWithItsPosition_data()
{
    QTest::addColumn<QByteArray>("image"); // null: no file, or a directory
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");

    using Image = EepromImage;
    const QString eeprom = QStringLiteral("eeprom");
    QTest::newRow("no file") << QByteArray() << eeprom << 10
                             << QStringLiteral("there is no such file");
    QTest::newRow("directory") << QByteArray() << QStringLiteral(".") << 11
                               << QStringLiteral(
                                      "the file cannot be opened (file to open is a directory)");
    QTest::newRow("empty file") << QByteArray("") << eeprom << 12
                                << QStringLiteral("the header is truncated: 0 of its 16 bytes, 20 "
                                                  "to 35 (0x14 to 0x23), are present");
    QTest::newRow("truncated header")
        << Image(boardText).bytes().left(35) << eeprom << 12
        << QStringLiteral("the header is truncated: 15 of its 16 bytes, "
                          "20 to 35 (0x14 to 0x23), are present");
    QTest::newRow("length over the limit")
        << Image(boardText).bytesToRead(65536).bytes() << eeprom << 14
        << QStringLiteral("the length at 28 is 65536, more than the limit of 65535 bytes: the "
                          "header is damaged");
    QTest::newRow("erased") << QByteArray(256, '\xFF') << eeprom << 14
                            << QStringLiteral(
                                   "the header has no length, all bits at 28 are set: "
                                   "the EEPROM seems to be erased and was never written");
    QTest::newRow("truncated block")
        << Image(boardText).bytes().left(40) << eeprom << 15
        << QStringLiteral("the block is truncated: 4 of its 32 bytes, 36 "
                          "to 67 (0x24 to 0x43), are present");
    QTest::newRow("block beyond the end")
        << Image(boardText).writtenStartAddress(0xFFFFFFFF).bytes() << eeprom << 15
        << QStringLiteral("the block is truncated: 0 of its 32 bytes, 4294967295 to 4294967326 "
                          "(0xffffffff to 0x10000001e), are present");
    QTest::newRow("wrong checksum")
        << Image(boardText).checksum(1).bytes() << eeprom << 16
        << QStringLiteral("the checksum is wrong: 0x0001 is stored at 32, but 0x%1 is calculated "
                          "from the block's 32 bytes, 36 to 67 (0x24 to 0x43)")
               .arg(Image::crc(boardText), 4, 16, QLatin1Char('0'));
    QTest::newRow("empty block with a checksum")
        << Image(QByteArray()).checksum(1).bytes() << eeprom << 16
        << QStringLiteral(
               "the checksum is wrong: 0x0001 is stored at 32, but 0x0000 is calculated from the "
               "block's 0 bytes");
    QTest::newRow("zeros") << QByteArray(256, '\0') << eeprom << 17
                           << QStringLiteral(
                                  "the block is empty, the length at 28 is 0: the image "
                                  "contains no record (an EEPROM full of zeros looks like "
                                  "this)");
}

void tst_EepromImageChecks::damageIsReportedWithItsPosition()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, name);
    QFETCH(int, exitCode);
    QFETCH(QString, error);

    if (!image.isNull()) {
        writeFile(name, image);
    }
    const QString errors = QStringLiteral("eeprom-image: %1: %2\n").arg(name, error);
    const ProgramResult verified = run(QStringLiteral("verify"), name);
    QCOMPARE(verified.errors, errors);
    QCOMPARE(verified.output, QString());
    QCOMPARE(verified.exitCode, exitCode);
    const ProgramResult dumped = run(QStringLiteral("dump"), name);
    QCOMPARE(dumped.errors, errors);
    QCOMPARE(dumped.output.isEmpty(), image.isNull());
    QCOMPARE(dumped.exitCode, exitCode);
}

// The start of a process's memory cannot be read: it is not mapped.
void tst_EepromImageChecks::readErrorsAreReported()
{
    const ProgramResult result = run(QStringLiteral("verify"), QStringLiteral("/proc/self/mem"));
    QCOMPARE(result.errors,
             QStringLiteral("eeprom-image: /proc/self/mem: the header is truncated: 0 of its 16 "
                            "bytes, 20 to 35 (0x14 to 0x23), are present (Input/output error)\n"));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 12);
}

void tst_EepromImageChecks::pipesAreRefused()
{
    for (const char* command : {"verify", "dump"}) {
        ProgramRun program(QStringLiteral(EEPROM_IMAGE_PROGRAM),
                           {QString::fromLatin1(command), QStringLiteral("/dev/stdin")},
                           directory());
        program.write(EepromImage(boardText).bytes());
        const ProgramResult result = program.finish();
        QCOMPARE(result.errors,
                 QStringLiteral("eeprom-image: /dev/stdin: no address can be reached: the file is "
                                "a pipe or a device that is not seekable\n"));
        QCOMPARE(result.output, QString());
        QCOMPARE(result.exitCode, 13);
    }
}

// The exit code is that of show, for which the library reads the image.
void tst_EepromImageChecks::verifyAgreesWithTheLibrary()
{
    QRandomGenerator random(4711);
    QSet<int> exitCodes;
    for (int round = 0; round < rounds(150); ++round) {
        QByteArray image = EepromImage(boardText).startAddress(36 + random.bounded(8U)).bytes();
        // Changes a byte of the header, changes any byte, or truncates the image.
        if (random.bounded(2) == 0) {
            const char values[] = {'\0', '\1', '\x24', '\xFF'};
            image[20 + random.bounded(16)] = values[random.bounded(4)];
        }
        if (random.bounded(3) == 0) {
            image[random.bounded(image.size())] = char(random.bounded(256));
        }
        if (random.bounded(3) == 0) {
            image.truncate(random.bounded(image.size() + 1));
        }
        writeFile(QStringLiteral("eeprom"), image);
        const int shown = run(QStringLiteral("show"), QStringLiteral("eeprom")).exitCode;
        const int verified = run(QStringLiteral("verify"), QStringLiteral("eeprom")).exitCode;
        QVERIFY2(verified == shown, image.toHex(' ').constData());
        exitCodes.insert(verified);
    }
    QVERIFY(exitCodes.size() > 2);
}

void tst_EepromImageChecks::dumpPrintsHeaderAndBlock()
{
    writeFile(QStringLiteral("eeprom"), EepromImage("Type=1\nComment=a\x01\xE4\n")
                                            .startAddress(0x40)
                                            .reserved(0x01020304)
                                            .upperChecksumBits(0xABCD)
                                            .checksum(0x1234)
                                            .bytes());
    const ProgramResult result = run(QStringLiteral("dump"), QStringLiteral("eeprom"));
    const QString crc = QStringLiteral("0x%1").arg(EepromImage::crc("Type=1\nComment=a\x01\xE4\n"),
                                                   4, 16, QLatin1Char('0'));
    QCOMPARE(result.output,
             QStringLiteral("Header, 16 bytes, 20 to 35 (0x14 to 0x23)\n"
                            "  0014  20  04 03 02 01  reserved       not evaluated\n"
                            "  0018  24  40 00 00 00  start address  64 (0x40)\n"
                            "  001c  28  13 00 00 00  length         19 (0x13)\n"
                            "  0020  32  34 12        checksum       0x1234 stored, %1 calculated: "
                            "wrong\n"
                            "  0022  34  cd ab        unused         not evaluated\n"
                            "Block, 19 bytes, 64 to 82 (0x40 to 0x52)\n"
                            "  0040  54 79 70 65 3d 31 0a 43 6f 6d 6d 65 6e 74 3d 61  "
                            "|Type=1.Comment=a|\n"
                            "  0050  01 e4 0a                                         |...|\n")
                 .arg(crc));
    QCOMPARE(result.exitCode, 16);

    writeFile(QStringLiteral("eeprom"), EepromImage(boardText).bytes());
    const ProgramResult valid = run(QStringLiteral("dump"), QStringLiteral("eeprom"));
    QVERIFY2(valid.output.contains(QStringLiteral("0x%1 stored, 0x%1 calculated: correct\n")
                                       .arg(EepromImage::crc(boardText), 4, 16, QLatin1Char('0'))),
             qPrintable(valid.output));
    QCOMPARE(valid.errors, QString());
    QCOMPARE(valid.exitCode, 0);
}

void tst_EepromImageChecks::dumpPrintsInvalidImages_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("lines"); // of the output

    QTest::newRow("truncated header")
        << EepromImage(boardText).bytes().left(31)
        << QStringLiteral("  0018  24  24 00 00 00  start address  36 (0x24)\n"
                          "  001c  28  20 00 00     length         missing\n"
                          "  0020  32               checksum       missing\n"
                          "  0022  34               unused         missing\n");
    QTest::newRow("truncated block")
        << EepromImage(boardText).checksum(1).bytes().left(40)
        << QStringLiteral("  0020  32  01 00        checksum       0x0001 stored, not calculated: "
                          "the block is incomplete\n"
                          "  0022  34  00 00        unused         not evaluated\n"
                          "Block, 4 bytes, 36 to 39 (0x24 to 0x27)\n"
                          "  0024  54 79 70 65                                      |Type|\n");
    QTest::newRow("length over the limit")
        << EepromImage("Type").bytesToRead(65536).bytes()
        << QStringLiteral("Block, 4 bytes, 36 to 39 (0x24 to 0x27)\n"
                          "  0024  54 79 70 65                                      |Type|\n");
    QTest::newRow("block beyond the end")
        << EepromImage(boardText).writtenStartAddress(0xFFFFFF00).bytes()
        << QStringLiteral("Block, 0 bytes\n");
    QTest::newRow("zeros") << QByteArray(64, '\0')
                           << QStringLiteral("0x0000 stored, 0x0000 calculated: correct\n");
}

void tst_EepromImageChecks::dumpPrintsInvalidImages()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, lines);

    writeFile(QStringLiteral("eeprom"), image);
    const ProgramResult result = run(QStringLiteral("dump"), QStringLiteral("eeprom"));
    QVERIFY2(result.output.contains(lines), qPrintable(result.output));
}

void tst_EepromImageChecks::invalidUsageIsRefused_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("verify") << QStringLiteral("verify");
    QTest::newRow("dump") << QStringLiteral("dump");
}

void tst_EepromImageChecks::invalidUsageIsRefused()
{
    QFETCH(QString, command);
    const ProgramResult without = run({command});
    QCOMPARE(without.errors,
             QStringLiteral("eeprom-image: this command requires 1 file name(s), not 0\n"
                            "eeprom-image: try --help\n"));
    QCOMPARE(without.exitCode, 1);
    const ProgramResult option = run({command, QStringLiteral("--verbose"), QStringLiteral("a")});
    QCOMPARE(option.errors, QStringLiteral("eeprom-image: Unknown option 'verbose'.\n"
                                           "eeprom-image: try --help\n"));
    QCOMPARE(option.exitCode, 1);
}

QTEST_GUILESS_MAIN(tst_EepromImageChecks)
#include "tst_EepromImageChecks.moc"
