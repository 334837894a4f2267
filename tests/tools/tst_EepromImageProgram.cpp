#include "EepromImage.h"
#include "ProgramRun.h"
#include "Terminal.h"
#include "TestCase.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {

const QByteArray boardText = "Type=4711\n"
                             "TypeName=Sample board\n"
                             "Version=2.1\n"
                             "CompatibilityIndex=3\n"
                             "LP-ID=LP-000815\n"
                             "Comment=Made up\n";
const QString boardRecord = QStringLiteral("eeprom: the image is valid\n"
                                           "  Type                 4711\n"
                                           "  Type name            Sample board\n"
                                           "  Version              2.1\n"
                                           "  Compatibility index  3\n"
                                           "  LP-ID                LP-000815\n"
                                           "  Comment              Made up\n");

const QString hint = QStringLiteral("eeprom-image: try --help\n");

} // namespace

// The program eeprom-image: what it reports about images, and the images that it writes.
class tst_EepromImageProgram : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void sampleBoardIsWrittenAndShown();
    void invalidUsageIsRefused_data();
    void invalidUsageIsRefused();
    void helpAndVersion();
    void helpListsEveryExitCode();
    void showsValidImages_data();
    void showsValidImages();
    void reportsEachKindOfDamage_data();
    void reportsEachKindOfDamage();
    void reportsAnUnreachableStartAddress();
    void reportsAnUnreachableStartAddressOfAnEeprom_data();
    void reportsAnUnreachableStartAddressOfAnEeprom();
    void reportsAnUnusableTemporaryDirectory_data();
    void reportsAnUnusableTemporaryDirectory();
    void detectsEveryFlippedBit();
    void verboseShowsLogMessages();
    void showLeavesNoTemporaryFile();
    void createsTheRequestedLayout_data();
    void createsTheRequestedLayout();
    void invalidLayoutIsRefused_data();
    void invalidLayoutIsRefused();
    void failedCreateKeepsTheOldImage_data();
    void failedCreateKeepsTheOldImage();
    void keepsOwnerAndMode();
    void reportsALostOwner();
    void specialFilesAreNotReplaced_data();
    void specialFilesAreNotReplaced();
    void writesTheImageToStandardOutput_data();
    void writesTheImageToStandardOutput();
    void readsTheTextFromStandardInput();
    void readErrorOfTheTextIsReported();
    void eepromIsWrittenPageByPage_data();
    void eepromIsWrittenPageByPage();
    void failedWriteReportsWhatWasWritten_data();
    void failedWriteReportsWhatWasWritten();
    void deviceIsWrittenInPlace();
    void imageLargerThanTheEepromIsRefused();
    void progressIsDrawnTenTimesASecondAtMost();
    void showsJson();
    void extractsTheText();
    void extractRefusesADamagedImage();

private:
    // Run the program with the simulated EEPROM; the second one writes the text of "board.ini" to
    // it.
    ProgramResult runOnEeprom(const QStringList& environment, const QStringList& arguments) const;
    ProgramResult createInEeprom(const QStringList& environment) const;
    QByteArray shell(const QString& script) const;
    // In the row's directory, so file names need no path.
    ProgramResult run(const QStringList& arguments) const { return run(arguments, directory()); }
    ProgramResult run(const QStringList& arguments, const QString& temporaryDirectory) const
    {
        return ProgramRun(QStringLiteral(EEPROM_IMAGE_PROGRAM), arguments, directory(),
                          temporaryDirectory)
            .finish();
    }
    void verifyShown(const QByteArray& image, int exitCode, const QString& output,
                     const QString& errors);
};

void tst_EepromImageProgram::verifyShown(const QByteArray& image, int exitCode,
                                         const QString& output, const QString& errors)
{
    writeFile(QStringLiteral("eeprom"), image);
    verifyResult(run({QStringLiteral("show"), QStringLiteral("eeprom")}), exitCode, output, errors);
}

void tst_EepromImageProgram::sampleBoardIsWrittenAndShown()
{
    const QByteArray text = readFile(QStringLiteral(SAMPLE_BOARD));
    QVERIFY(!text.isEmpty());
    const QByteArray image = EepromImage(text).bytes();
    verifyResult(
        run({QStringLiteral("create"), QStringLiteral(SAMPLE_BOARD), QStringLiteral("eeprom")}), 0,
        QStringLiteral("eeprom: %1 bytes written\n"
                       "  block     %2 bytes from address 36 (0x24)\n"
                       "  checksum  0x%3\n")
            .arg(image.size())
            .arg(text.size())
            .arg(EepromImage::crc(text), 4, 16, QLatin1Char('0')),
        QString());
    QCOMPARE(readFile(path(QStringLiteral("eeprom"))), image);

    QString record = boardRecord;
    record.replace(QStringLiteral("Made up"), QStringLiteral("Made up, for this example"));
    verifyShown(image, 0, record, QString());
}

void tst_EepromImageProgram::invalidUsageIsRefused_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const char* arguments, const char* error) {
        QTest::newRow(name) << QString::fromLatin1(arguments)
                            << QStringLiteral("eeprom-image: %1\n").arg(QLatin1String(error)) +
                                   hint;
    };
    row("no arguments", "", "a command is required: create, show, verify, dump or extract");
    row("unknown command", "erase", "unknown command 'erase'");
    row("show without a file", "show", "this command requires 1 file name(s), not 0");
    row("show with two files", "show a b", "this command requires 1 file name(s), not 2");
    row("create without an image", "create a", "this command requires 2 file name(s), not 1");
    row("option of the other command", "show --start 36 a", "Unknown option 'start'.");
    row("unknown option", "create --big a b", "Unknown option 'big'.");
    row("option without its value", "create a b --start", "Missing value after '--start'.");
    row("not a number", "create --start here a b",
        "--start must be a number from 0 to 4294967295, not 'here'");
    row("negative number", "create --start=-1 a b",
        "--start must be a number from 0 to 4294967295, not '-1'");
    row("number too large", "create --start 0x100000000 a b",
        "--start must be a number from 0 to 4294967295, not '0x100000000'");
    row("hexadecimal without 0x", "create --size 1F a b",
        "--size must be a number from 0 to 4294967295, not '1F'");
    row("not a byte", "create --fill 256 a b", "--fill must be a number from 0 to 255, not '256'");
}

void tst_EepromImageProgram::invalidUsageIsRefused()
{
    QFETCH(QString, arguments);
    QFETCH(QString, error);
    verifyResult(run(arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts)), 1, QString(), error);
}

void tst_EepromImageProgram::helpAndVersion()
{
    const ProgramResult help = run({QStringLiteral("--help")});
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.output.startsWith(QStringLiteral("Writes, reads and checks EEPROM images")));
    QCOMPARE(help.errors, QString());
    verifyResult(run({QStringLiteral("show"), QStringLiteral("--help")}), 0, help.output,
                 QString());
    verifyResult(run({QStringLiteral("create"), QStringLiteral("-h")}), 0, help.output, QString());

    const QString version = QStringLiteral("eeprom-image 1.0.0\n");
    verifyResult(run({QStringLiteral("--version")}), 0, version, QString());
    verifyResult(run({QStringLiteral("show"), QStringLiteral("--version")}), 0, version, QString());
}

void tst_EepromImageProgram::helpListsEveryExitCode()
{
    const QStringList lines = run({QStringLiteral("--help")}).output.split(QLatin1Char('\n'));
    for (const int exitCode : {0, 1, 2, 3, 4, 5, 6, 7, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19}) {
        const QString start = QStringLiteral("  %1  ").arg(exitCode, 2);
        QVERIFY2(
            lines.indexOf(QRegularExpression(QLatin1Char('^') + start + QStringLiteral(".+"))) > 0,
            qPrintable(start));
    }
}

void tst_EepromImageProgram::showsValidImages_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("record");

    QTest::newRow("all fields") << EepromImage(boardText).bytes() << boardRecord;
    QTest::newRow("block far after the header")
        << EepromImage(boardText).startAddress(0x4000).size(0x8000).bytes() << boardRecord;
    QTest::newRow("keys missing, values empty")
        << EepromImage("Type=\nTypeName=a,b\nVersion=2\n").bytes()
        << QStringLiteral("eeprom: the image is valid\n"
                          "  Type                 (empty: no value, or a comma outside quotes)\n"
                          "  Type name            (empty: no value, or a comma outside quotes)\n"
                          "  Version              2\n"
                          "  Compatibility index  (missing)\n"
                          "  LP-ID                (missing)\n"
                          "  Comment              (none)\n");
    QTest::newRow("keys in a section")
        << EepromImage("Comment=here\n[Board]\n" + boardText).bytes()
        << QStringLiteral("eeprom: the image is valid\n"
                          "  Type                 (missing)\n"
                          "  Type name            (missing)\n"
                          "  Version              (missing)\n"
                          "  Compatibility index  (missing)\n"
                          "  LP-ID                (missing)\n"
                          "  Comment              here\n"
                          "None of the keys was found: they must be before any [section], and "
                          "the temporary directory must not be full.\n");
    QByteArray strangeText = boardText;
    strangeText.replace("Made up", "\\x1b[2J \xE9");
    QString strangeRecord = boardRecord;
    strangeRecord.replace(QStringLiteral("Made up"), QStringLiteral("\\x1b[2J \u00E9"));
    QTest::newRow("control characters") << EepromImage(strangeText).bytes() << strangeRecord;
}

void tst_EepromImageProgram::showsValidImages()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, record);
    verifyShown(image, 0, record, QString());
}

void tst_EepromImageProgram::reportsEachKindOfDamage_data()
{
    QTest::addColumn<QByteArray>("image"); // null: no file, or a directory
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("meaning");

    const auto row = [](const char* name, const QByteArray& image, int exitCode,
                        const char* meaning) {
        QTest::newRow(name) << image << QStringLiteral("eeprom") << exitCode
                            << QString::fromLatin1(meaning);
    };
    QTest::newRow("no file") << QByteArray() << QStringLiteral("eeprom") << 10
                             << QStringLiteral("there is no such file");
    QTest::newRow("directory")
        << QByteArray() << QStringLiteral(".") << 11
        << QStringLiteral("the file cannot be opened: permission is denied, or it is a directory");
    using Image = EepromImage;
    const QByteArray valid = Image(boardText).bytes();
    row("empty file", "", 12, "the header is truncated: the image ends before byte 36");
    row("truncated header", valid.left(35), 12,
        "the header is truncated: the image ends before byte 36");
    row("length over the limit", Image(boardText).bytesToRead(65536).bytes(), 14,
        "the length in the header exceeds the limit of 65535 bytes: the header is damaged");
    row("erased", QByteArray(256, '\xFF'), 14,
        "the header has no length, all its bits are set: the EEPROM seems to be erased and was "
        "never written");
    row("truncated block", valid.left(valid.size() - 1), 15,
        "the block is truncated: the image ends before it, or the header is damaged");
    row("wrong checksum", Image(boardText).checksum(1).bytes(), 16,
        "the checksum is wrong: the block or the header was changed or damaged");
    row("zeros", QByteArray(256, '\0'), 17,
        "the block is empty, its length is 0: the image contains no record (an EEPROM full of "
        "zeros "
        "looks like this)");
}

void tst_EepromImageProgram::reportsEachKindOfDamage()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, name);
    QFETCH(int, exitCode);
    QFETCH(QString, meaning);
    if (!image.isNull()) {
        writeFile(name, image);
    }
    verifyResult(run({QStringLiteral("show"), name}), exitCode, QString(),
                 QStringLiteral("eeprom-image: %1: %2\n").arg(name, meaning));
}

void tst_EepromImageProgram::reportsAnUnreachableStartAddress()
{
    // A pipe that the program inherits, as in "... | eeprom-image show /dev/stdin".
    writeFile(QStringLiteral("header"), EepromImage(boardText).bytes().mid(20, 16));
    QProcess shell;
    shell.setWorkingDirectory(directory());
    shell.start(QStringLiteral("/bin/sh"),
                {QStringLiteral("-c"), QStringLiteral("cat header | \"$0\" show /dev/stdin"),
                 QStringLiteral(EEPROM_IMAGE_PROGRAM)});
    QVERIFY(shell.waitForFinished());
    QCOMPARE(shell.readAllStandardError(),
             QByteArray("eeprom-image: /dev/stdin: the start address of the block cannot be "
                        "reached: it is beyond the end of the EEPROM, or the file is a pipe or a "
                        "device that is not seekable\n"));
    QCOMPARE(shell.readAllStandardOutput(), QByteArray());
    QCOMPARE(shell.exitCode(), 13);
}

void tst_EepromImageProgram::reportsAnUnusableTemporaryDirectory_data()
{
    QTest::addColumn<QString>("temporaryDirectory");
    QTest::newRow("missing") << QStringLiteral("/none");
    QTest::newRow("no file can be created, not even by root") << QStringLiteral("/proc");
}

void tst_EepromImageProgram::reportsAnUnusableTemporaryDirectory()
{
    QFETCH(QString, temporaryDirectory);
    writeFile(QStringLiteral("eeprom"), EepromImage(boardText).bytes());
    verifyResult(
        run({QStringLiteral("show"), QStringLiteral("eeprom")}, temporaryDirectory), 18, QString(),
        QStringLiteral("eeprom-image: eeprom: the block is valid, but no temporary file could "
                       "be created to parse it\n"));
}

void tst_EepromImageProgram::detectsEveryFlippedBit()
{
    const QByteArray block = "Type=B\n";
    const int step = isEmulated() ? 9 : 1;
    for (int bit = 0; bit < 8 * block.size(); bit += step) {
        verifyShown(
            EepromImage(block).flipBit(EepromImage::headerEnd + bit / 8, bit % 8).bytes(), 16,
            QString(),
            QStringLiteral("eeprom-image: eeprom: the checksum is wrong: the block or the header "
                           "was changed or damaged\n"));
    }
}

void tst_EepromImageProgram::verboseShowsLogMessages()
{
    writeFile(QStringLiteral("eeprom"), EepromImage(boardText).checksum(1).bytes());
    verifyResult(
        run({QStringLiteral("show"), QStringLiteral("--verbose"), QStringLiteral("eeprom")}), 16,
        QString(),
        QStringLiteral("eeprom-image: log: HardwareInfoReader: Invalid checksum for INI block in "
                       "eeprom binary "
                       "file \"eeprom\" .\n"
                       "eeprom-image: eeprom: the checksum is wrong: the block or the header was "
                       "changed or damaged\n"));
}

void tst_EepromImageProgram::showLeavesNoTemporaryFile()
{
    QVERIFY(QDir(directory()).mkdir(QStringLiteral("tmp")));
    writeFile(QStringLiteral("eeprom"), EepromImage(boardText).bytes());
    verifyResult(
        run({QStringLiteral("show"), QStringLiteral("eeprom")}, path(QStringLiteral("tmp"))), 0,
        boardRecord, QString());
    QVERIFY(QDir(path(QStringLiteral("tmp"))).isEmpty());
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList({QStringLiteral("eeprom"), QStringLiteral("tmp")}));
}

void tst_EepromImageProgram::createsTheRequestedLayout_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("address");

    using Image = EepromImage;
    const auto row = [](const char* options, const QByteArray& text, const Image& image,
                        const char* address) {
        QTest::newRow(*options == '\0' ? "no options" : options)
            << QString::fromLatin1(options) << text << image.bytes()
            << QString::fromLatin1(address);
    };
    row("", boardText, Image(boardText), "36 (0x24)");
    row("--start 100", boardText, Image(boardText).startAddress(100), "100 (0x64)");
    row("--start 0X1000", boardText, Image(boardText).startAddress(0x1000), "4096 (0x1000)");
    row("--start 0", "Type=4711\n", Image("Type=4711\n").startAddress(0), "0 (0x0)");
    row("--size 256", boardText, Image(boardText).size(256), "36 (0x24)");
    row("--size 0x100 --fill 0", boardText, Image(boardText).size(256).fill('\0'), "36 (0x24)");
    row("--fill 0x5A --start 64", boardText, Image(boardText).startAddress(64).fill('\x5A'),
        "64 (0x40)");
    row("--start 10", "Type=4711\n", Image("Type=4711\n").startAddress(10), "10 (0xa)");
    row("--start 11 --allow-overlap", "Type=4711\n", Image("Type=4711\n").startAddress(11),
        "11 (0xb)");
    row("--start 34 --allow-overlap", "Type=4711\n", Image("Type=4711\n").startAddress(34),
        "34 (0x22)");
    row("--start 20", "", Image(QByteArray()).startAddress(20), "20 (0x14)");
    const QByteArray longest = boardText + QByteArray(65535 - boardText.size(), ';');
    row("--size 70000", longest, Image(longest).size(70000), "36 (0x24)");
}

void tst_EepromImageProgram::createsTheRequestedLayout()
{
    QFETCH(QString, options);
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, image);
    QFETCH(QString, address);
    writeFile(QStringLiteral("board.ini"), text);
    const ProgramResult created =
        run(QStringList(QStringLiteral("create")) +
            options.split(QLatin1Char(' '), Qt::SkipEmptyParts) +
            QStringList({QStringLiteral("board.ini"), QStringLiteral("eeprom")}));
    verifyResult(created, 0,
                 QStringLiteral("eeprom: %1 bytes written\n"
                                "  block     %2 bytes from address %3\n"
                                "  checksum  0x%4\n")
                     .arg(QString::number(image.size()), QString::number(text.size()), address,
                          QString::fromLatin1(image.mid(33, 1).toHex() + image.mid(32, 1).toHex())),
                 QString());
    QCOMPARE(readFile(path(QStringLiteral("eeprom"))), image);
}

void tst_EepromImageProgram::invalidLayoutIsRefused_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<int>("textSize");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const char* options, int textSize, const char* reason) {
        QTest::newRow(name) << QString::fromLatin1(options) << textSize
                            << QString::fromLatin1(reason);
    };
    const char overlap[] = "the block would overlap the header (bytes 20 to 35); to write it "
                           "nevertheless, use --allow-overlap";
    const char ownChecksum[] = "the block would overlap its own checksum (bytes 32 and 33)";
    row("text too long", "", 65536,
        "the text is longer than the 65535 bytes that a block may have");
    row("over the header's first byte", "--start 10", 11, overlap);
    row("over the byte before the checksum", "--start 10", 22, overlap);
    row("over the byte after the checksum", "--start 34", 10, overlap);
    row("over the header's last byte", "--start 35", 10, overlap);
    row("over the checksum's first byte", "--start 10 --allow-overlap", 23, ownChecksum);
    row("over the checksum's last byte", "--start 33 --allow-overlap", 10, ownChecksum);
    row("image too small for the block", "--size 45", 10,
        "an image of 45 bytes is too small; this one needs 46");
    row("image too small for the header", "--size 35 --start 0", 10,
        "an image of 35 bytes is too small; this one needs 36");
    row("image too large", "--size 16777217", 10,
        "an image of 16777217 bytes is too large; the limit is 16777216");
    row("start address too large", "--start 0xFFFFFFFF", 10,
        "an image of 4294967305 bytes is too large; the limit is 16777216");
}

void tst_EepromImageProgram::invalidLayoutIsRefused()
{
    QFETCH(QString, options);
    QFETCH(int, textSize);
    QFETCH(QString, reason);
    writeFile(QStringLiteral("board.ini"), QByteArray(textSize, ';'));
    verifyResult(run(QStringList(QStringLiteral("create")) +
                     options.split(QLatin1Char(' '), Qt::SkipEmptyParts) +
                     QStringList({QStringLiteral("board.ini"), QStringLiteral("eeprom")})),
                 3, QString(), QStringLiteral("eeprom-image: eeprom: %1\n").arg(reason));
    QVERIFY(!QFile::exists(path(QStringLiteral("eeprom"))));
}

void tst_EepromImageProgram::failedCreateKeepsTheOldImage_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");
    QTest::newRow("no text") << QStringList({QStringLiteral("none.ini"), QStringLiteral("eeprom")})
                             << 2 << QStringLiteral("none.ini: No such file or directory");
    QTest::newRow("text is a directory")
        << QStringList({QStringLiteral("."), QStringLiteral("eeprom")}) << 2
        << QStringLiteral(".: file to open is a directory");
    QTest::newRow("image in a missing directory")
        << QStringList({QStringLiteral("board.ini"), QStringLiteral("none/eeprom")}) << 4
        << QStringLiteral("none/eeprom: No such file or directory");
    QTest::newRow("image is a directory")
        << QStringList({QStringLiteral("board.ini"), QStringLiteral(".")}) << 4
        << QStringLiteral(".: Filename refers to a directory");
}

void tst_EepromImageProgram::failedCreateKeepsTheOldImage()
{
    QFETCH(QStringList, files);
    QFETCH(int, exitCode);
    QFETCH(QString, error);
    writeFile(QStringLiteral("board.ini"), boardText);
    const QString old = writeFile(QStringLiteral("eeprom"), "the old image");
    verifyResult(run(QStringList(QStringLiteral("create")) + files), exitCode, QString(),
                 QStringLiteral("eeprom-image: %1\n").arg(error));
    QCOMPARE(readFile(old), QByteArray("the old image"));
}

// Returns standard output, standard error and the exit code.
QByteArray tst_EepromImageProgram::shell(const QString& script) const
{
    const ProgramResult result =
        ProgramRun(QStringLiteral("sh"),
                   {QStringLiteral("-c"), script, QStringLiteral(EEPROM_IMAGE_PROGRAM)},
                   directory())
            .finish();
    return (result.output + result.errors + QString::number(result.exitCode)).toUtf8();
}

void tst_EepromImageProgram::keepsOwnerAndMode()
{
    writeFile(QStringLiteral("board.ini"), boardText);
    const QByteArray image = writeFile(QStringLiteral("eeprom"), "old").toLocal8Bit();
    // Only root can change the owner.
    const uid_t owner = geteuid() == 0 ? 4711 : geteuid();
    const gid_t group = geteuid() == 0 ? 815 : getegid();
    QCOMPARE(chown(image.constData(), owner, group), 0);
    QCOMPARE(chmod(image.constData(), 0642), 0);
    const ProgramResult result = run({"create", "board.ini", "eeprom"});
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
    struct stat status = {};
    QCOMPARE(stat(image.constData(), &status), 0);
    QCOMPARE(status.st_mode & 07777, mode_t(0642));
    QCOMPARE(status.st_uid, owner);
    QCOMPARE(status.st_gid, group);
    QVERIFY(readFile(QString::fromLocal8Bit(image)) != "old");
}

void tst_EepromImageProgram::reportsALostOwner()
{
    writeFile(QStringLiteral("board.ini"), boardText);
    const QByteArray image = writeFile(QStringLiteral("eeprom"), "old").toLocal8Bit();
    QCOMPARE(chmod(image.constData(), 0666), 0);
    const bool isRoot = geteuid() == 0;
    QVERIFY(!isRoot || chown(image.constData(), 4711, 815) == 0);
    // Without this capability, root cannot change the owner of a file. In a user namespace without
    // a mapping, not even the owner can.
    const QStringList unprivileged =
        isRoot ? QStringList{"setpriv", "--inh-caps=-all", "--bounding-set=-chown"}
               : QStringList{"unshare", "--user"};
    if (ProgramRun(unprivileged.constFirst(), unprivileged.mid(1) << "true", directory())
            .finish()
            .exitCode != 0) {
        MISCTOOLS_SKIP("this user cannot have a user namespace");
    }
    const ProgramResult result = ProgramRun(unprivileged.constFirst(),
                                            unprivileged.mid(1) << EEPROM_IMAGE_PROGRAM << "create"
                                                                << "board.ini"
                                                                << "eeprom",
                                            directory())
                                     .finish();
    QCOMPARE(result.errors,
             QStringLiteral("eeprom-image: eeprom: owner, group and mode could not all be kept\n"));
    QCOMPARE(result.exitCode, 0);
    struct stat status = {};
    QCOMPARE(stat(image.constData(), &status), 0);
    // The old group's permissions are not granted to the new group.
    QCOMPARE(status.st_mode & 07777, mode_t(0606));
}

void tst_EepromImageProgram::specialFilesAreNotReplaced_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("pipe") << int(S_IFIFO);
    QTest::newRow("device") << int(S_IFCHR);
}

void tst_EepromImageProgram::specialFilesAreNotReplaced()
{
    QFETCH(int, type);
    writeFile(QStringLiteral("board.ini"), boardText);
    const QByteArray target = path(QStringLiteral("target")).toLocal8Bit();
    // The device is /dev/full; only root can create another node for it.
    const bool isNode = mknod(target.constData(), mode_t(type) | 0600, makedev(1, 7)) == 0;
    QVERIFY(isNode || QFile::link(QStringLiteral("/dev/full"), path(QStringLiteral("target"))));
    verifyResult(
        run({"create", "board.ini", "target"}), 4, QString(),
        QStringLiteral("eeprom-image: target: it is not a regular file and is not replaced\n"
                       "eeprom-image: to write into a device, use --in-place\n"));
    struct stat status = {};
    QCOMPARE(stat(target.constData(), &status), 0);
    QCOMPARE(int(status.st_mode & S_IFMT), type);
}

void tst_EepromImageProgram::writesTheImageToStandardOutput_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("dash") << QStringLiteral("-");
    QTest::newRow("path") << QStringLiteral("/dev/stdout");
}

void tst_EepromImageProgram::writesTheImageToStandardOutput()
{
    QFETCH(QString, name);
    writeFile(QStringLiteral("board.ini"), boardText);
    QCOMPARE(shell(QStringLiteral("\"$0\" create board.ini %1 >image").arg(name)), QByteArray("0"));
    QCOMPARE(readFile(path(QStringLiteral("image"))), EepromImage(boardText).bytes());
    QCOMPARE(shell(QStringLiteral("\"$0\" create board.ini %1 >/dev/full").arg(name)),
             QByteArray("eeprom-image: cannot write standard output: No space left on device\n5"));
}

void tst_EepromImageProgram::readsTheTextFromStandardInput()
{
    writeFile(QStringLiteral("board.ini"), boardText);
    const QByteArray result = shell(QStringLiteral("\"$0\" create - image <board.ini"));
    QVERIFY2(result.startsWith("image: ") && result.endsWith("\n0"), result.constData());
    QCOMPARE(readFile(path(QStringLiteral("image"))), EepromImage(boardText).bytes());
}

void tst_EepromImageProgram::readErrorOfTheTextIsReported()
{
    verifyResult(run({"create", "/proc/self/mem", "image"}), 2, QString(),
                 QStringLiteral("eeprom-image: /proc/self/mem: Input/output error\n"));
    QVERIFY(!QFile::exists(path(QStringLiteral("image"))));
}

ProgramResult tst_EepromImageProgram::runOnEeprom(const QStringList& environment,
                                                  const QStringList& arguments) const
{
    return ProgramRun(QStringLiteral("env"),
                      preloadOf(QStringLiteral(SIMULATED_EEPROM)) +
                          QStringList{QStringLiteral("EEPROM_LOG=") + path(QStringLiteral("log"))} +
                          environment + QStringList{QStringLiteral(EEPROM_IMAGE_PROGRAM)} +
                          arguments,
                      directory())
        .finish();
}

ProgramResult tst_EepromImageProgram::createInEeprom(const QStringList& environment) const
{
    return runOnEeprom(environment, {"create", "board.ini", "eeprom"});
}

void tst_EepromImageProgram::reportsAnUnreachableStartAddressOfAnEeprom_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("meaning");

    const QByteArray erased(256, '\xFF');
    QTest::newRow("erased, show") << erased << "show" << 14
                                  << "the header has no length, all its bits are set: the EEPROM "
                                     "seems to be erased and was never written";
    for (const char* command : {"verify", "dump", "extract"}) {
        QTest::addRow("erased, %s", command)
            << erased << command << 14
            << "the header has no length, all bits at 28 are set: the EEPROM seems to be erased "
               "and was never written";
    }
    const QByteArray damaged = EepromImage(boardText).startAddress(0x4000).bytes().left(256);
    QTest::newRow("damaged, show")
        << damaged << "show" << 13
        << "the start address of the block cannot be reached: it is beyond the end of the EEPROM, "
           "or the file is a pipe or a device that is not seekable";
    QTest::newRow("damaged, verify")
        << damaged << "verify" << 13
        << "the start address at 24 is 16384, which cannot be reached: "
           "the header is damaged";
}

// A file of sysfs rejects addresses beyond its end, unlike other files.
void tst_EepromImageProgram::reportsAnUnreachableStartAddressOfAnEeprom()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, command);
    QFETCH(int, exitCode);
    QFETCH(QString, meaning);
    writeFile(QStringLiteral("eeprom"), image);
    const ProgramResult result = runOnEeprom({}, {command, "eeprom"});
    QCOMPARE(result.errors, QStringLiteral("eeprom-image: eeprom: %1\n").arg(meaning));
    QCOMPARE(result.exitCode, exitCode);
}

void tst_EepromImageProgram::eepromIsWrittenPageByPage_data()
{
    QTest::addColumn<QByteArray>("property"); // of the driver
    QTest::addColumn<int>("pageSize");
    QTest::newRow("driver without a page size") << QByteArray() << 8;
    QTest::newRow("page size of the driver") << QByteArray("\0\0\0\x20", 4) << 32;
    QTest::newRow("invalid page size of the driver") << QByteArray("\x20\0\0\0", 4) << 8;
}

void tst_EepromImageProgram::eepromIsWrittenPageByPage()
{
    QFETCH(QByteArray, property);
    QFETCH(int, pageSize);
    writeFile(QStringLiteral("board.ini"), boardText);
    QVERIFY(QDir(directory()).mkdir(QStringLiteral("of_node")));
    if (!property.isNull()) {
        writeFile(QStringLiteral("of_node/pagesize"), property);
    }
    const QString eeprom = writeFile(QStringLiteral("eeprom"), QByteArray(256, 'x'));
    struct stat before = {};
    QCOMPARE(stat(eeprom.toLocal8Bit().constData(), &before), 0);

    const ProgramResult result = createInEeprom({});
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.output.startsWith(QStringLiteral("eeprom: ")), qPrintable(result.output));
    const QByteArray image = EepromImage(boardText).bytes();
    QCOMPARE(readFile(eeprom), image + QByteArray(256 - image.size(), 'x'));
    struct stat after = {};
    QCOMPARE(stat(eeprom.toLocal8Bit().constData(), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);

    QByteArray writes;
    for (int position = 0; position < image.size(); position += pageSize) {
        const int size = qMin(pageSize, image.size() - position);
        writes += QByteArray::number(position) + ' ' + QByteArray::number(size) + '\n';
    }
    QCOMPARE(readFile(path(QStringLiteral("log"))), writes);
}

void tst_EepromImageProgram::failedWriteReportsWhatWasWritten_data()
{
    QTest::addColumn<QString>("environment");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("written");
    const int size = EepromImage(boardText).bytes().size();
    const QString state =
        QStringLiteral("bytes 0 to 47 are new, bytes 48 to %1 are old: write the image "
                       "again")
            .arg(size - 1);
    QTest::newRow("signal") << "EEPROM_SIGNALS=40" << 7 << "interrupted; " + state << 48;
    QTest::newRow("write error") << "EEPROM_FAILS=48" << 4 << "Remote I/O error; " + state << 48;
    QTest::newRow("first write error")
        << "EEPROM_FAILS=0" << 4 << "Remote I/O error; nothing was written" << 0;
    QTest::newRow("protected")
        << "EEPROM_PROTECTS=48" << 6
        << "the image was written, but byte 48 differs when read back: is the device "
           "write-protected?"
        << 48;
}

void tst_EepromImageProgram::failedWriteReportsWhatWasWritten()
{
    QFETCH(QString, environment);
    QFETCH(int, exitCode);
    QFETCH(QString, error);
    QFETCH(int, written);
    writeFile(QStringLiteral("board.ini"), boardText);
    const QString eeprom = writeFile(QStringLiteral("eeprom"), QByteArray(256, '\1'));
    verifyResult(createInEeprom({environment}), exitCode, QString(),
                 QStringLiteral("eeprom-image: eeprom: %1\n").arg(error));
    const QByteArray content = readFile(eeprom);
    QCOMPARE(content.left(written), EepromImage(boardText).bytes().left(written));
    QCOMPARE(content.mid(written, 8), QByteArray(8, '\1'));
    QCOMPARE(content.size(), 256);
}

void tst_EepromImageProgram::deviceIsWrittenInPlace()
{
    writeFile(QStringLiteral("board.ini"), boardText);
    // A disk image that is open or linked elsewhere stays the same file.
    const QString device = writeFile(QStringLiteral("device"), QByteArray(4096, 'x'));
    QVERIFY(link(device.toLocal8Bit().constData(),
                 path(QStringLiteral("other")).toLocal8Bit().constData()) == 0);
    const ProgramResult result = run({"create", "--in-place", "board.ini", "device"});
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(readFile(path(QStringLiteral("other"))),
             EepromImage(boardText).bytes().leftJustified(4096, 'x'));
    verifyResult(run({"create", "--in-place", "board.ini", "none"}), 4, QString(),
                 QStringLiteral("eeprom-image: none: No such file or directory\n"));
    verifyResult(run({"create", "--in-place", "board.ini", "/dev/full"}), 4, QString(),
                 QStringLiteral("eeprom-image: /dev/full: No space left on device; nothing was "
                                "written\n"));
}

void tst_EepromImageProgram::imageLargerThanTheEepromIsRefused()
{
    writeFile(QStringLiteral("board.ini"), boardText);
    const int size = EepromImage(boardText).bytes().size();
    const QString eeprom = writeFile(QStringLiteral("eeprom"), QByteArray(size - 1, 'x'));
    verifyResult(createInEeprom({}), 4, QString(),
                 QStringLiteral("eeprom-image: eeprom: it has room for %1 bytes, and the image has "
                                "%2; nothing was written\n")
                     .arg(size - 1)
                     .arg(size));
    QCOMPARE(readFile(eeprom), QByteArray(size - 1, 'x'));
}

void tst_EepromImageProgram::progressIsDrawnTenTimesASecondAtMost()
{
    const QString board = writeFile("board.ini", boardText);
    const QString eeprom = writeFile("eeprom", QByteArray(65536, 'x'));
    QElapsedTimer clock;
    clock.start();
    Terminal terminal(80, Terminal::StandardError);
    const QByteArray written =
        terminal.run(QStringLiteral(EEPROM_IMAGE_PROGRAM),
                     {"create", "--in-place", "--size", "65536", board, eeprom});
    QVERIFY2(written.contains("\rwriting /"), written.constData());
    // There are 8,192 pages.
    QVERIFY(written.count("\rwriting /") <= 1 + clock.elapsed() / 100);
    QCOMPARE(Terminal::screenAfter(written), QList<QByteArray>{QByteArray()});
}

void tst_EepromImageProgram::showsJson()
{
    writeFile(QStringLiteral("eeprom"), EepromImage("Type=4711\nTypeName=\n").bytes());
    const ProgramResult result = run({"show", "--json", "eeprom"});
    QCOMPARE(result.errors, QString());
    const QJsonObject expected{{"image", "eeprom"},
                               {"type", "4711"},
                               {"typeName", QJsonValue()},
                               {"version", QJsonValue()},
                               {"compatibilityIndex", QJsonValue()},
                               {"lpId", QJsonValue()},
                               {"comment", QJsonValue()}};
    QCOMPARE(QJsonDocument::fromJson(result.output.toUtf8()).object(), expected);
    QCOMPARE(result.exitCode, 0);
}

void tst_EepromImageProgram::extractsTheText()
{
    constexpr char lastLine[] = "; \0\xff and no line feed at the end";
    const QByteArray text = boardText + QByteArray(lastLine, sizeof lastLine - 1);
    writeFile(QStringLiteral("eeprom"), EepromImage(text).startAddress(100).size(4096).bytes());
    QCOMPARE(shell(QStringLiteral("\"$0\" extract eeprom >text")), QByteArray("0"));
    QCOMPARE(readFile(path(QStringLiteral("text"))), text);
}

void tst_EepromImageProgram::extractRefusesADamagedImage()
{
    writeFile(QStringLiteral("eeprom"), EepromImage(boardText).checksum(1).bytes());
    const ProgramResult result = run({"extract", "eeprom"});
    QCOMPARE(result.output, QString());
    QVERIFY2(result.errors.contains(QStringLiteral("the checksum is wrong")),
             qPrintable(result.errors));
    QCOMPARE(result.exitCode, 16);
}

QTEST_GUILESS_MAIN(tst_EepromImageProgram)
#include "tst_EepromImageProgram.moc"
