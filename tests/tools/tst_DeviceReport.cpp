#include "DeviceRoot.h"
#include "EepromImage.h"
#include "TestCase.h"

#include <QtCore/QDirIterator>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>

namespace {

const QString versionFile = QStringLiteral("/orvalis/VersionFile.ini");
const QString versionInfo = QStringLiteral("/orvalis/etc/OrvalisVersionInfo.ini");
const QString firmwareMarker = QStringLiteral("/orvalis/etc/orvalis-first-boot");
const QString rebootMarker = QStringLiteral("/orvalis-reboot");
const QString systemConfig = QStringLiteral("/etc/rauc/system.conf");

struct Result
{
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
};

// Redirects standard output to outputPath if that is not empty.
Result runReport(const QStringList& arguments, const QString& outputPath = QString())
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC0"));
    environment.insert(QStringLiteral("MISCTOOLS_PRODUCT_CODE"), QStringLiteral("640917"));
    process.setProcessEnvironment(environment);
    if (!outputPath.isEmpty()) {
        process.setStandardOutputFile(outputPath);
    }
    process.start(QStringLiteral(DEVICE_REPORT_PROGRAM), arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
        qFatal("device-report did not exit normally");
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

// Where a value violates the schema. Knows the keywords that our schema uses; an unknown keyword is
// a violation, too.
QStringList violations(const QJsonValue& value, const QJsonObject& schema, const QJsonObject& root,
                       const QString& place)
{
    static const QHash<QJsonValue::Type, QString> names = {
        {QJsonValue::Null, "null"},     {QJsonValue::Bool, "boolean"},
        {QJsonValue::Double, "number"}, {QJsonValue::String, "string"},
        {QJsonValue::Array, "array"},   {QJsonValue::Object, "object"}};
    QStringList result;
    for (const QString& keyword : schema.keys()) {
        const QJsonValue rule = schema.value(keyword);
        bool isMet = true;
        if (keyword == QStringLiteral("type")) {
            const QJsonArray types = rule.isArray() ? rule.toArray() : QJsonArray{rule};
            isMet = types.contains(names.value(value.type()));
        } else if (keyword == QStringLiteral("enum")) {
            isMet = rule.toArray().contains(value);
        } else if (keyword == QStringLiteral("required")) {
            for (const QJsonValue& member : rule.toArray()) {
                isMet =
                    isMet && (!value.isObject() || value.toObject().contains(member.toString()));
            }
        } else if (keyword == QStringLiteral("additionalProperties")) {
            const QJsonObject properties = schema.value(QStringLiteral("properties")).toObject();
            for (const QString& member : value.toObject().keys()) {
                isMet = isMet && properties.contains(member);
            }
        } else if (keyword == QStringLiteral("properties")) {
            for (const QString& member : value.toObject().keys()) {
                result += violations(value.toObject().value(member),
                                     rule.toObject().value(member).toObject(), root,
                                     place + QLatin1Char('.') + member);
            }
        } else if (keyword == QStringLiteral("items")) {
            for (const QJsonValue& item : value.toArray()) {
                result += violations(item, rule.toObject(), root, place + QStringLiteral("[]"));
            }
        } else if (keyword == QStringLiteral("$ref")) {
            const QString name = rule.toString().section(QLatin1Char('/'), -1);
            result += violations(
                value, root.value(QStringLiteral("$defs")).toObject().value(name).toObject(), root,
                place);
        } else {
            isMet =
                QStringList{"$schema", "$id", "$defs", "title", "description"}.contains(keyword);
        }
        if (!isMet) {
            result.append(place + QStringLiteral(": ") + keyword);
        }
    }
    return result;
}

QJsonObject toObject(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).object();
}

// Every file of the device with its modification time and content.
QStringList device()
{
    QStringList files;
    const auto append = [&files](const QFileInfo& info) {
        QFile file(info.filePath());
        const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        files.append(info.filePath() + QLatin1Char(' ') +
                     info.lastModified().toString(Qt::ISODateWithMs) + QLatin1Char(' ') +
                     QString::fromLatin1(content));
    };
    for (const QString& directory : {QStringLiteral("/orvalis"), QStringLiteral("/etc/rauc")}) {
        QDirIterator iterator(directory, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                              QDirIterator::Subdirectories);
        while (iterator.hasNext()) {
            iterator.next();
            append(iterator.fileInfo());
        }
    }
    append(QFileInfo(rebootMarker));
    return files;
}

} // namespace

// The program device-report.
class tst_DeviceReport : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void completeDeviceAsText();
    void completeDeviceAsJson();
    void jsonMatchesTheSchema_data();
    void jsonMatchesTheSchema();
    void emptyDeviceAsText();
    void emptyDeviceAsJson();
    void missingFileIsReported_data();
    void missingFileIsReported();
    void missingValueIsReported_data();
    void missingValueIsReported();
    void missingCommandLineIsReported();
    void versionParts_data();
    void versionParts();
    void bootModes_data();
    void bootModes();
    void invalidEepromIsReported_data();
    void invalidEepromIsReported();
    void missingBoardFieldIsReported();
    void invalidHardwareIdIsReported();
    void controlCharactersAreEscaped();
    void verboseShowsLogMessages();
    void deviceIsNotChanged();
    void fullDiskIsReported();
    void invalidUsageIsRefused_data();
    void invalidUsageIsRefused();
    void helpListsOptionsAndExitCodes();

private:
    // Copies the files of the sample device to the device's paths.
    void copySampleDevice();
    QString writeBoard();
    // The report with a fixed name for the export file, whose name changes every second.
    QByteArray withoutFileName(const QByteArray& text);
};

void tst_DeviceReport::copySampleDevice()
{
    const QString sample = QStringLiteral(SAMPLE_DEVICE);
    for (const QString& file :
         {versionFile, versionInfo, firmwareMarker, rebootMarker, systemConfig}) {
        QVERIFY2(QFile::exists(sample + file), qPrintable(file));
        DeviceRoot::writeFile(file, readFile(sample + file));
    }
    DeviceRoot::setCommandLine(readFile(sample + QStringLiteral("/proc/cmdline")));
}

QString tst_DeviceReport::writeBoard()
{
    return writeFile(QStringLiteral("eeprom"),
                     EepromImage("Type=4711\nTypeName=Sample board\nVersion=2\n"
                                 "CompatibilityIndex=1\nLP-ID=0815\nComment=made up\n")
                         .bytes());
}

QByteArray tst_DeviceReport::withoutFileName(const QByteArray& text)
{
    QString result = QString::fromUtf8(text);
    result.replace(QRegularExpression(QStringLiteral(
                       "V([0-9]+)_[0-9]{4}_[0-9]{2}_[0-9]{2}T[0-9]{2}_[0-9]{2}_[0-9]{2}\\.csv")),
                   QStringLiteral("V\\1_TIME.csv"));
    return result.toUtf8();
}

void tst_DeviceReport::completeDeviceAsText()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    copySampleDevice();
    const QString board = writeBoard();
    const Result result =
        runReport({QStringLiteral("--eeprom"), board, QStringLiteral("--hardware-id"),
                   QStringLiteral("1234567891234567")});
    const QByteArray expected =
        "board record:                    read from " + board.toUtf8() +
        "\n"
        "board type:                      4711\n"
        "board type name:                 Sample board\n"
        "board version:                   2\n"
        "board compatibility index:       1\n"
        "board LP-ID:                     0815\n"
        "board comment:                   made up\n"
        "\n"
        "hardware ID:                     1234567891234567\n"
        "product group number:            123456\n"
        "basic type supplement:           78\n"
        "document type counting number:   912\n"
        "customer version:                345\n"
        "parts list sales:                67\n"
        "\n"
        "software version:                8.100.2.7.1234-g1a2b3c\n"
        "software version parts:          base number 8, major index 100, minor index 2, "
        "patch version 7, build number 1234, git hash g1a2b3c\n"
        "software version hash:           5d41402abc4b2a76b9719d911017c592\n"
        "\n"
        "application version:             V8.12.3-45\n"
        "application version parts:       base number 8, major index 12, minor index 3, "
        "test index 45\n"
        "product code:                    640917\n"
        "creation date:                   2026-11-15\n"
        "\n"
        "boot mode:                       first boot after a firmware update\n"
        "reboot marker:                   present\n"
        "firmware update marker:          present\n"
        "orvalismode on the command line: normal\n"
        "\n"
        "device index:                    3\n"
        "next export file:                V3_TIME.csv\n";
    QCOMPARE(withoutFileName(result.output), expected);
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.exitCode, 0);
}

void tst_DeviceReport::completeDeviceAsJson()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    copySampleDevice();
    const QString board = writeBoard();
    const Result result =
        runReport({QStringLiteral("--json"), QStringLiteral("--eeprom"), board,
                   QStringLiteral("--hardware-id"), QStringLiteral("1234567891234567")});
    const QJsonObject expected = toObject(R"({
        "hardware": {
            "eeprom": ")" + board.toUtf8() +
                                          R"(",
            "type": "4711", "typeName": "Sample board", "version": "2",
            "compatibilityIndex": "1", "lpId": "0815", "comment": "made up"
        },
        "hardwareId": {
            "id": "1234567891234567", "productGroupNumber": "123456",
            "basicTypeSupplement": "78", "documentTypeCountingNumber": "912",
            "customerVersion": "345", "partsListSales": "67"
        },
        "software": {
            "version": "8.100.2.7.1234-g1a2b3c",
            "hash": "5d41402abc4b2a76b9719d911017c592",
            "parts": {
                "format": "new", "baseNumber": "8", "majorIndex": "100", "minorIndex": "2",
                "testIndex": null, "patchVersion": "7", "buildNumber": "1234",
                "gitHash": "g1a2b3c"
            }
        },
        "application": {
            "version": "V8.12.3-45", "productCode": "640917", "creationDate": "2026-11-15",
            "parts": {
                "format": "old", "baseNumber": "8", "majorIndex": "12", "minorIndex": "3",
                "testIndex": "45", "patchVersion": null, "buildNumber": null, "gitHash": null
            }
        },
        "boot": {
            "mode": "firmwareUpdate", "rebootMarker": true, "firmwareUpdateMarker": true,
            "commandLineMode": "normal"
        },
        "export": { "deviceIndex": "3", "nextFileName": "V3_TIME.csv" },
        "missing": []
    })");
    QVERIFY(!expected.isEmpty());
    QCOMPARE(toObject(withoutFileName(result.output)), expected);
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.exitCode, 0);
}

void tst_DeviceReport::jsonMatchesTheSchema_data()
{
    QTest::addColumn<bool>("isComplete");
    QTest::newRow("complete device") << true;
    QTest::newRow("empty device") << false;
}

void tst_DeviceReport::jsonMatchesTheSchema()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(bool, isComplete);
    QStringList arguments{"--json"};
    if (isComplete) {
        copySampleDevice();
        arguments += {"--eeprom", writeBoard(), "--hardware-id", "1234567891234567"};
    }
    const QJsonObject schema = toObject(readFile(QStringLiteral(REPORT_SCHEMA)));
    QVERIFY(!schema.isEmpty());
    QJsonObject report = toObject(runReport(arguments).output);
    QCOMPARE(violations(report, schema, schema, QStringLiteral("report")), QStringList());

    // The schema rejects missing and additional members and other types.
    QJsonObject boot = report.value(QStringLiteral("boot")).toObject();
    boot.insert(QStringLiteral("rebootMarker"), 1);
    boot.insert(QStringLiteral("new"), 1);
    report.insert(QStringLiteral("boot"), boot);
    report.remove(QStringLiteral("export"));
    QCOMPARE(violations(report, schema, schema, QStringLiteral("report")),
             QStringList({"report.boot: additionalProperties", "report.boot.rebootMarker: type",
                          "report: required"}));
}

void tst_DeviceReport::emptyDeviceAsText()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    const Result result = runReport({});
    QCOMPARE(
        withoutFileName(result.output),
        QByteArray(
            "board record:                    not read (see --eeprom)\n"
            "\n"
            "hardware ID:                     not given (see --hardware-id)\n"
            "\n"
            "software version:                not known (/orvalis/VersionFile.ini is missing)\n"
            "software version hash:           not known (see software version)\n"
            "\n"
            "application version:             not known (/orvalis/etc/OrvalisVersionInfo.ini is "
            "missing)\n"
            "product code:                    not known (see application version)\n"
            "creation date:                   not known (see application version)\n"
            "\n"
            "boot mode:                       hard reset\n"
            "reboot marker:                   absent\n"
            "firmware update marker:          absent\n"
            "orvalismode on the command line: none\n"
            "\n"
            "device index:                    not known (/etc/rauc/system.conf is missing)\n"
            "next export file:                V0_TIME.csv\n"));
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.exitCode, 1);
}

void tst_DeviceReport::emptyDeviceAsJson()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    const Result result = runReport({QStringLiteral("--json")});
    QJsonObject report = toObject(withoutFileName(result.output));
    QCOMPARE(report.take(QStringLiteral("missing")).toArray().size(), 6);
    QCOMPARE(report, toObject(R"({
        "hardware": {
            "eeprom": null, "type": null, "typeName": null, "version": null,
            "compatibilityIndex": null, "lpId": null, "comment": null
        },
        "hardwareId": {
            "id": null, "productGroupNumber": null, "basicTypeSupplement": null,
            "documentTypeCountingNumber": null, "customerVersion": null, "partsListSales": null
        },
        "software": { "version": null, "hash": null, "parts": null },
        "application": {
            "version": null, "parts": null, "productCode": null, "creationDate": null
        },
        "boot": {
            "mode": "hardReset", "rebootMarker": false, "firmwareUpdateMarker": false,
            "commandLineMode": null
        },
        "export": { "deviceIndex": null, "nextFileName": "V0_TIME.csv" }
    })"));
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.exitCode, 1);
}

void tst_DeviceReport::missingFileIsReported_data()
{
    QTest::addColumn<QString>("filePath");
    QTest::addColumn<QStringList>("members");

    QTest::newRow("version file") << versionFile
                                  << QStringList{QStringLiteral("software.version"),
                                                 QStringLiteral("software.hash")};
    QTest::newRow("version information") << versionInfo
                                         << QStringList{QStringLiteral("application.version"),
                                                        QStringLiteral("application.productCode"),
                                                        QStringLiteral("application.creationDate")};
    QTest::newRow("system configuration")
        << systemConfig << QStringList{QStringLiteral("export.deviceIndex")};
    // A missing marker is normal.
    QTest::newRow("firmware update marker") << firmwareMarker << QStringList();
    QTest::newRow("reboot marker") << rebootMarker << QStringList();
}

void tst_DeviceReport::missingFileIsReported()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QString, filePath);
    QFETCH(QStringList, members);

    copySampleDevice();
    QVERIFY(QFile::remove(filePath));
    const Result result = runReport({QStringLiteral("--json")});
    QJsonArray expected;
    for (const QString& member : members) {
        expected.append(
            QJsonObject{{QStringLiteral("member"), member},
                        {QStringLiteral("reason"), filePath + QStringLiteral(" is missing")}});
    }
    QCOMPARE(toObject(result.output).value(QStringLiteral("missing")).toArray(), expected);
    QCOMPARE(result.exitCode, members.isEmpty() ? 0 : 1);
}

void tst_DeviceReport::missingValueIsReported_data()
{
    QTest::addColumn<QString>("filePath");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("software version")
        << versionFile << QByteArray("[MainVersion]\nVersionStringHash=x\n")
        << QByteArray("software version:                not known (/orvalis/VersionFile.ini has "
                      "no VersionString in [MainVersion])\n");
    QTest::newRow("creation date in the wrong section")
        << versionInfo
        << QByteArray("[General]\nCreationDate=x\n[ApplicationVersion]\nVersion=1.2.3\n"
                      "ProductCode=1\n")
        << QByteArray("creation date:                   not known "
                      "(/orvalis/etc/OrvalisVersionInfo.ini has no CreationDate in "
                      "[%General])\n");
    QTest::newRow("device index is not a number")
        << systemConfig << QByteArray("[system]\ncompatible=7a\n")
        << QByteArray("device index:                    not known (/etc/rauc/system.conf has no "
                      "number under compatible in [system])\n");
}

void tst_DeviceReport::missingValueIsReported()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QString, filePath);
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, line);

    copySampleDevice();
    DeviceRoot::writeFile(filePath, content);
    const Result result = runReport({});
    QVERIFY2(result.output.contains(line), result.output.constData());
    QCOMPARE(result.output.count("not known"), 1);
    QCOMPARE(result.exitCode, 1);
}

void tst_DeviceReport::missingCommandLineIsReported()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    copySampleDevice();
    QVERIFY(QFile::remove(firmwareMarker));
    const DeviceRoot::Covered covered("/proc");
    const Result result = runReport({});
    QVERIFY2(result.output.contains(
                 "boot mode:                       not known (/proc/cmdline is missing)\n"),
             result.output.constData());
    QVERIFY2(result.output.contains("orvalismode on the command line: not known (see boot mode)\n"),
             result.output.constData());
    QCOMPARE(result.exitCode, 1);
}

void tst_DeviceReport::versionParts_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<QByteArray>("parts"); // empty: not known

    QTest::newRow("old, without test index")
        << QByteArray("1.2.3") << QByteArray("base number 1, major index 2, minor index 3");
    QTest::newRow("new, without hash") << QByteArray("1.2.3.4.5")
                                       << QByteArray("base number 1, major index 2, minor index 3, "
                                                     "patch version 4, build number 5");
    QTest::newRow("too few dots") << QByteArray("1.2") << QByteArray();
    QTest::newRow("letters") << QByteArray("a.b.c") << QByteArray();
    QTest::newRow("dots only") << QByteArray("....") << QByteArray();
}

void tst_DeviceReport::versionParts()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QByteArray, version);
    QFETCH(QByteArray, parts);

    copySampleDevice();
    DeviceRoot::writeFile(versionFile,
                          "[MainVersion]\nVersionStringHash=x\nVersionString=" + version + "\n");
    const Result result = runReport({});
    const QByteArray text =
        parts.isEmpty() ? "not known (" + version + " is in neither version format)" : parts;
    QVERIFY2(result.output.contains("software version parts:          " + text + "\n"),
             result.output.constData());
    QCOMPARE(result.exitCode, parts.isEmpty() ? 1 : 0);
}

void tst_DeviceReport::bootModes_data()
{
    QTest::addColumn<QStringList>("removed");
    QTest::addColumn<QByteArray>("commandLine");
    QTest::addColumn<QByteArray>("mode");
    QTest::addColumn<QByteArray>("commandLineMode");

    QTest::newRow("normal") << QStringList{firmwareMarker} << QByteArray("quiet\n")
                            << QByteArray("normal") << QByteArray("none");
    QTest::newRow("firmware update")
        << QStringList() << QByteArray("orvalismode=factoryreset quiet\n")
        << QByteArray("first boot after a firmware update") << QByteArray("factoryreset");
    QTest::newRow("factory reset")
        << QStringList{firmwareMarker} << QByteArray("orvalismode=factoryreset quiet\n")
        << QByteArray("factory reset") << QByteArray("factoryreset");
    QTest::newRow("factory reset as the last parameter")
        << QStringList{firmwareMarker} << QByteArray("orvalismode=factoryreset\n")
        << QByteArray("normal") << QByteArray("factoryreset\\x0a");
    QTest::newRow("parameter without a value")
        << QStringList{firmwareMarker} << QByteArray("orvalismode quiet") << QByteArray("normal")
        << QByteArray("empty");
    QTest::newRow("hard reset") << QStringList{rebootMarker} << QByteArray("quiet\n")
                                << QByteArray("hard reset") << QByteArray("none");
}

void tst_DeviceReport::bootModes()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QStringList, removed);
    QFETCH(QByteArray, commandLine);
    QFETCH(QByteArray, mode);
    QFETCH(QByteArray, commandLineMode);

    copySampleDevice();
    for (const QString& file : removed) {
        QVERIFY(QFile::remove(file));
    }
    DeviceRoot::setCommandLine(commandLine);
    const Result result = runReport({});
    QVERIFY2(result.output.contains("boot mode:                       " + mode + "\n"),
             result.output.constData());
    QVERIFY2(result.output.contains("orvalismode on the command line: " + commandLineMode + "\n"),
             result.output.constData());
    QCOMPARE(result.exitCode, 0);
}

void tst_DeviceReport::invalidEepromIsReported_data()
{
    QTest::addColumn<QByteArray>("image"); // null: no file
    QTest::addColumn<QByteArray>("reason");

    const QByteArray damaged =
        EepromImage("Type=4711\n").flipBit(EepromImage::headerEnd, 0).bytes();
    QTest::newRow("missing") << QByteArray() << QByteArray("is missing");
    QTest::newRow("empty") << QByteArray("") << QByteArray("contains no valid hardware record");
    QTest::newRow("erased") << QByteArray(256, '\xFF')
                            << QByteArray("seems to be erased and was never written");
    QTest::newRow("damaged") << damaged << QByteArray("contains no valid hardware record");
}

void tst_DeviceReport::invalidEepromIsReported()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QByteArray, image);
    QFETCH(QByteArray, reason);

    copySampleDevice();
    const QString filePath = path(QStringLiteral("eeprom"));
    if (!image.isNull()) {
        writeFile(QStringLiteral("eeprom"), image);
    }
    const Result result = runReport({QStringLiteral("--eeprom"), filePath});
    QVERIFY2(result.output.startsWith("board record:                    not known (" +
                                      filePath.toUtf8() + ' ' + reason + ")\n\n"),
             result.output.constData());
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.exitCode, 1);
}

void tst_DeviceReport::missingBoardFieldIsReported()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    copySampleDevice();
    const QString board =
        writeFile(QStringLiteral("eeprom"), EepromImage("Type=1\nTypeName=b\nVersion=2\n"
                                                        "CompatibilityIndex=3\n")
                                                .bytes());
    const Result result = runReport({QStringLiteral("--eeprom"), board});
    QVERIFY2(result.output.contains(
                 "board LP-ID:                     not known (missing from the board record)\n"),
             result.output.constData());
    // Not every board has a comment.
    QVERIFY2(result.output.contains("board comment:                   none\n"),
             result.output.constData());
    QCOMPARE(result.output.count("not known"), 1);
    QCOMPARE(result.exitCode, 1);
}

void tst_DeviceReport::invalidHardwareIdIsReported()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    copySampleDevice();
    const Result result =
        runReport({QStringLiteral("--hardware-id"), QStringLiteral("1234567800034567")});
    QVERIFY2(result.output.contains("hardware ID:                     not known "
                                    "(1234567800034567 is not a hardware ID)\n\n"),
             result.output.constData());
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.exitCode, 1);
}

void tst_DeviceReport::controlCharactersAreEscaped()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    copySampleDevice();
    DeviceRoot::writeFile(versionFile, "[MainVersion]\nVersionString=1.2.3\n"
                                       "VersionStringHash=\"\\x1b[31m\\n\xe4\"\n");
    const Result result = runReport({});
    QVERIFY2(result.output.contains("software version hash:           \\x1b[31m\\x0a\xc3\xa4\n"),
             result.output.constData());
    QVERIFY(!result.output.contains('\x1b'));
}

void tst_DeviceReport::verboseShowsLogMessages()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    copySampleDevice();
    QVERIFY(QFile::remove(versionFile));
    const Result quiet = runReport({});
    const Result verbose = runReport({QStringLiteral("--verbose")});
    QCOMPARE(quiet.errors, QByteArray());
    QCOMPARE(verbose.errors,
             QByteArray(
                 "device-report: log: IniFileManager: Can't find specified ini-file: "
                 "\"/orvalis/VersionFile.ini\"\n"
                 "device-report: log: IniFileManager: \"Ini-File (/orvalis/VersionFile.ini):\" Key "
                 "\"VersionString\" not found in Group \"MainVersion\" !\n"
                 "device-report: log: IniFileManager: \"Ini-File (/orvalis/VersionFile.ini):\" Key "
                 "\"VersionStringHash\" not found in Group \"MainVersion\" !\n"));
    QCOMPARE(withoutFileName(verbose.output), withoutFileName(quiet.output));
}

void tst_DeviceReport::deviceIsNotChanged()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    const QString board = writeBoard();
    const QStringList arguments{QStringLiteral("--eeprom"), board};
    const QByteArray image = readFile(board);

    const QStringList emptyDevice = device();
    runReport(arguments);
    QCOMPARE(device(), emptyDevice);
    QVERIFY(!QFile::exists(QStringLiteral("/orvalis")));

    copySampleDevice();
    const QStringList fullDevice = device();
    QVERIFY(fullDevice.size() >= 5);
    runReport(arguments);
    QCOMPARE(device(), fullDevice);
    QCOMPARE(readFile(board), image);
}

void tst_DeviceReport::fullDiskIsReported()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    copySampleDevice();
    const Result result = runReport({}, QStringLiteral("/dev/full"));
    QCOMPARE(result.errors,
             QByteArray("device-report: cannot write standard output: No space left on device\n"));
    QCOMPARE(result.exitCode, 3);
}

void tst_DeviceReport::invalidUsageIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("error");

    QTest::newRow("unknown option")
        << QStringList{QStringLiteral("--none")} << QByteArray("Unknown option 'none'.");
    QTest::newRow("argument") << QStringList{QStringLiteral("x")}
                              << QByteArray("unexpected argument x");
    QTest::newRow("no path") << QStringList{QStringLiteral("--eeprom")}
                             << QByteArray("Missing value after '--eeprom'.");
    QTest::newRow("empty path") << QStringList{QStringLiteral("--eeprom"), QString()}
                                << QByteArray("--eeprom must not be empty");
    QTest::newRow("empty hardware ID") << QStringList{QStringLiteral("--hardware-id=")}
                                       << QByteArray("--hardware-id must not be empty");
}

void tst_DeviceReport::invalidUsageIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, error);

    const Result result = runReport(arguments);
    QCOMPARE(result.errors, "device-report: " + error + "\ndevice-report: try --help\n");
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.exitCode, 2);
}

void tst_DeviceReport::helpListsOptionsAndExitCodes()
{
    const Result result = runReport({QStringLiteral("--help")});
    for (const char* text : {"--eeprom <PATH>", "--hardware-id <ID>", "--json", "--verbose",
                             "\nExit codes:\n"
                             "  0  everything is known\n"
                             "  1  something is missing; the report says what and why\n"
                             "  2  wrong usage\n"
                             "  3  the report could not be written\n"}) {
        QVERIFY2(result.output.contains(text), text);
    }
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_DeviceReport)
#include "tst_DeviceReport.moc"
