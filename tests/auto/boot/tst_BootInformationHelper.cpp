#include "BootInformationHelper.h"
#include "DeviceRoot.h"
#include "PlatformFunctions.h"
#include "TestCase.h"

#include <type_traits>

namespace {

QString productCode;
int productCodeQueries = 0;

const QString rebootMarker = "/orvalis-reboot";
const QString firmwareMarker = "/orvalis/etc/orvalis-first-boot";

// The kind of entry at the path of a marker.
enum class Marker
{
    None,
    File,
    Directory,
    DanglingLink, // counts as missing
    LinkToFile,
};

struct NamedMarker
{
    const char* name;
    Marker marker;
};

const NamedMarker markers[] = {
    {"none", Marker::None},
    {"file", Marker::File},
    {"directory", Marker::Directory},
    {"dangling link", Marker::DanglingLink},
    {"link to file", Marker::LinkToFile},
};

bool exists(Marker marker)
{
    return marker != Marker::None && marker != Marker::DanglingLink;
}

void put(const QString& path, Marker marker)
{
    switch (marker) {
    case Marker::None:
        break;
    case Marker::File:
        DeviceRoot::writeFile(path, QByteArray());
        break;
    case Marker::Directory:
        QVERIFY(QDir().mkpath(path));
        break;
    case Marker::DanglingLink:
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QVERIFY(QFile::link("/orvalis/nothing", path));
        break;
    case Marker::LinkToFile:
        DeviceRoot::writeFile("/orvalis/target", QByteArray());
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QVERIFY(QFile::link("/orvalis/target", path));
        break;
    }
}

// Whether anything exists at the path, even a dangling link.
bool existsOrIsLink(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

} // namespace

// Replaces the function of the bundled platform library.
QString DeviceManifestManager::getProductCode()
{
    ++productCodeQueries;
    return productCode;
}

Q_DECLARE_METATYPE(Marker)

static_assert(sizeof(BootInformationHelper) == sizeof(void*), "no fields");
static_assert(std::has_virtual_destructor<BootInformationHelper>::value, "virtual destructor");
static_assert(std::is_same<std::underlying_type<BootInformationHelper::BootMode>::type, int>::value,
              "the underlying type is int");
static_assert(BootInformationHelper::BootModeNormal == 0, "a documented value");
static_assert(BootInformationHelper::BootModeFirmwareUpdate == 1, "a documented value");
static_assert(BootInformationHelper::BootModeFactoryReset == 2, "a documented value");
static_assert(BootInformationHelper::BootModeHardReset == 3, "a documented value");

class tst_BootInformationHelper : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void bootMode_data();
    void bootMode();
    void commandLineIsReadByEveryCall();
    void commandLineIsReadOnlyWhenNeeded_data();
    void commandLineIsReadOnlyWhenNeeded();
    void queriesDoNotDeleteMarkers();
    void deleteFirmwareUpdateMarker_data();
    void deleteFirmwareUpdateMarker();
    void deleteOrvalisRebootMarker_data();
    void deleteOrvalisRebootMarker();
    void markersInUseAreNotDeleted();
    void deletionKeepsOtherFiles();
};

void tst_BootInformationHelper::bootMode_data()
{
    QTest::addColumn<Marker>("reboot");
    QTest::addColumn<QString>("product");
    QTest::addColumn<Marker>("firmware");
    QTest::addColumn<QByteArray>("commandLine");
    QTest::addColumn<bool>("hardReset");
    QTest::addColumn<bool>("factoryReset");
    QTest::addColumn<int>("mode");

    struct Product
    {
        const char* name;
        QString code;
        bool isHardResetProduct;
    };
    const Product products[] = {
        {"640917", "640917", true},        {"different product", "640918", false},
        {"longer code", "6409170", false}, {"code and trailing space", "640917 ", false},
        {"no product", QString(), false},
    };
    struct Argument
    {
        const char* name;
        const char* commandLine;
        bool isFactoryReset;
    };
    const Argument arguments[] = {
        {"no argument", "console=ttyS0 quiet\n", false},
        {"factory reset", "console=ttyS0 orvalismode=factoryreset quiet\n", true},
        {"factory reset, trailing space", "orvalismode=factoryreset \n", true},
        {"factory reset without line feed", "orvalismode=factoryreset", true},
        {"factory reset as last argument", "console=ttyS0 orvalismode=factoryreset\n", false},
        {"factory reset after another mode", "orvalismode=x orvalismode=factoryreset quiet\n",
         false},
        {"factory reset without equals sign", "orvalismodefactoryreset quiet\n", true},
        {"different mode", "orvalismode=factory quiet\n", false},
        {"different case", "orvalismode=FactoryReset quiet\n", false},
        {"longer value", "orvalismode=factoryresets quiet\n", false},
        {"longer key", "orvalismodes=factoryreset quiet\n", false},
        {"no value", "orvalismode quiet\n", false},
        {"empty line", "", false},
    };

    for (const NamedMarker& reboot : markers) {
        for (const Product& product : products) {
            for (const NamedMarker& firmware : markers) {
                for (const Argument& argument : arguments) {
                    const bool hardReset = !exists(reboot.marker) && product.isHardResetProduct;
                    const int mode = hardReset                 ? 3
                                     : exists(firmware.marker) ? 1
                                     : argument.isFactoryReset ? 2
                                                               : 0;
                    QTest::addRow("reboot: %s, %s, firmware: %s, %s", reboot.name, product.name,
                                  firmware.name, argument.name)
                        << reboot.marker << product.code << firmware.marker
                        << QByteArray(argument.commandLine) << hardReset << argument.isFactoryReset
                        << mode;
                }
            }
        }
    }
}

void tst_BootInformationHelper::bootMode()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(Marker, reboot);
    QFETCH(QString, product);
    QFETCH(Marker, firmware);
    QFETCH(QByteArray, commandLine);
    QFETCH(bool, hardReset);
    QFETCH(bool, factoryReset);
    QFETCH(int, mode);

    put(rebootMarker, reboot);
    put(firmwareMarker, firmware);
    DeviceRoot::setCommandLine(commandLine);
    productCode = product;
    // The product code is queried only if there is no reboot marker.
    const int queries = exists(reboot) ? 0 : 1;

    const BootInformationHelper helper;
    productCodeQueries = 0;
    QCOMPARE(helper.isHardReset(), hardReset);
    QCOMPARE(productCodeQueries, queries);

    productCodeQueries = 0;
    QCOMPARE(helper.isFactoryReset(), factoryReset);
    QCOMPARE(productCodeQueries, 0);

    productCodeQueries = 0;
    QCOMPARE(int(helper.getCurrentBootMode()), mode);
    QCOMPARE(productCodeQueries, queries);
}

void tst_BootInformationHelper::commandLineIsReadByEveryCall()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    productCode.clear();
    const BootInformationHelper helper;
    QVERIFY(!helper.isFactoryReset());
    DeviceRoot::setCommandLine("orvalismode=factoryreset quiet\n");
    QVERIFY(helper.isFactoryReset());
    QCOMPARE(helper.getCurrentBootMode(), BootInformationHelper::BootModeFactoryReset);
    DeviceRoot::setCommandLine("quiet\n");
    QVERIFY(!helper.isFactoryReset());
    QCOMPARE(helper.getCurrentBootMode(), BootInformationHelper::BootModeNormal);
}

void tst_BootInformationHelper::commandLineIsReadOnlyWhenNeeded_data()
{
    QTest::addColumn<QString>("product");
    QTest::addColumn<Marker>("firmware");
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("isRead");

    QTest::newRow("hard reset") << "640917" << Marker::None << 3 << false;
    QTest::newRow("firmware update") << QString() << Marker::File << 1 << false;
    QTest::newRow("neither of them") << QString() << Marker::None << 0 << true;
}

void tst_BootInformationHelper::commandLineIsReadOnlyWhenNeeded()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QString, product);
    QFETCH(Marker, firmware);
    QFETCH(int, mode);
    QFETCH(bool, isRead);

    productCode = product;
    put(firmwareMarker, firmware);
    const DeviceRoot::Covered covered("/proc");
    if (isRead) {
        messages().expectWarning("KernelCommandLineParser", "No kernelCommandLine file");
    }
    const BootInformationHelper helper;
    QCOMPARE(int(helper.getCurrentBootMode()), mode);

    QCOMPARE(messages().takeProblems(), QStringList());
    messages().expectWarning("KernelCommandLineParser", "No kernelCommandLine file");
    QVERIFY(!helper.isFactoryReset());
}

void tst_BootInformationHelper::queriesDoNotDeleteMarkers()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    put(rebootMarker, Marker::File);
    put(firmwareMarker, Marker::File);
    const BootInformationHelper helper;
    helper.isHardReset();
    helper.isFactoryReset();
    helper.getCurrentBootMode();
    QVERIFY(QFile::exists(rebootMarker));
    QVERIFY(QFile::exists(firmwareMarker));
}

void tst_BootInformationHelper::deleteFirmwareUpdateMarker_data()
{
    QTest::addColumn<Marker>("marker");
    QTest::addColumn<QString>("warning"); // null: none
    QTest::addColumn<bool>("isGone");

    const QString missing = "Unable to delete firmware update marker, file does not exist!";
    QTest::newRow("none") << Marker::None << missing << true;
    QTest::newRow("file") << Marker::File << QString() << true;
    QTest::newRow("directory") << Marker::Directory << "Error on removing firmware update marker!"
                               << false;
    QTest::newRow("dangling link") << Marker::DanglingLink << missing << false;
    QTest::newRow("link to file") << Marker::LinkToFile << QString() << true;
}

void tst_BootInformationHelper::deleteFirmwareUpdateMarker()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(Marker, marker);
    QFETCH(QString, warning);
    QFETCH(bool, isGone);

    put(firmwareMarker, marker);
    put(rebootMarker, Marker::File);
    if (!warning.isNull()) {
        messages()
            .expectWarning("BootInformationHelper", warning)
            .function("void BootInformationHelper::deleteFirmwareUpdateMarker() const");
    }
    BootInformationHelper().deleteFirmwareUpdateMarker();
    QCOMPARE(existsOrIsLink(firmwareMarker), !isGone);
    QVERIFY(QFile::exists(rebootMarker));
}

void tst_BootInformationHelper::deleteOrvalisRebootMarker_data()
{
    QTest::addColumn<Marker>("marker");
    QTest::addColumn<QString>("warning"); // null: none
    QTest::addColumn<bool>("isGone");

    QTest::newRow("none") << Marker::None << QString() << true;
    QTest::newRow("file") << Marker::File << QString() << true;
    QTest::newRow("directory") << Marker::Directory << "Unable to remove file: \"/orvalis-reboot\""
                               << false;
    QTest::newRow("dangling link") << Marker::DanglingLink << QString() << false;
    QTest::newRow("link to file") << Marker::LinkToFile << QString() << true;
}

void tst_BootInformationHelper::deleteOrvalisRebootMarker()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(Marker, marker);
    QFETCH(QString, warning);
    QFETCH(bool, isGone);

    put(rebootMarker, marker);
    put(firmwareMarker, Marker::File);
    if (!warning.isNull()) {
        messages()
            .expectWarning("BootInformationHelper", warning)
            .function("void BootInformationHelper::deleteOrvalisRebootMarker() const");
    }
    BootInformationHelper().deleteOrvalisRebootMarker();
    QCOMPARE(existsOrIsLink(rebootMarker), !isGone);
    QVERIFY(QFile::exists(firmwareMarker));
}

void tst_BootInformationHelper::markersInUseAreNotDeleted()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    put(rebootMarker, Marker::File);
    put(firmwareMarker, Marker::File);
    const QString other = writeFile("other", "x");
    {
        // A mount point cannot be removed, even if it is a file.
        const DeviceRoot::Covered coveredReboot("/orvalis-reboot", other);
        const DeviceRoot::Covered coveredFirmware("/orvalis/etc/orvalis-first-boot", other);
        messages().expectWarning("BootInformationHelper",
                                 "Unable to remove file: \"/orvalis-reboot\"");
        BootInformationHelper().deleteOrvalisRebootMarker();
        messages().expectWarning("BootInformationHelper",
                                 "Error on removing firmware update marker!");
        BootInformationHelper().deleteFirmwareUpdateMarker();
    }
    QVERIFY(QFile::exists(rebootMarker));
    QVERIFY(QFile::exists(firmwareMarker));
}

void tst_BootInformationHelper::deletionKeepsOtherFiles()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    const QString neighbor = "/orvalis/etc/OrvalisVersionInfo.ini";
    DeviceRoot::writeFile(neighbor, "x");

    put(rebootMarker, Marker::File);
    put(firmwareMarker, Marker::LinkToFile);
    BootInformationHelper().deleteFirmwareUpdateMarker();
    QVERIFY(QFile::exists("/orvalis/target"));
    QVERIFY(QFile::exists(rebootMarker));

    put(firmwareMarker, Marker::File);
    BootInformationHelper().deleteOrvalisRebootMarker();
    QVERIFY(QFile::exists(firmwareMarker));
    QVERIFY(QFile::exists(neighbor));
}

QTEST_GUILESS_MAIN(tst_BootInformationHelper)
#include "tst_BootInformationHelper.moc"
