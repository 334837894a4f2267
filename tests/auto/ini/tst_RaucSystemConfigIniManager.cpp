#include "DeviceRoot.h"
#include "IniWarnings.h"
#include "RaucSystemConfigIniManager.h"
#include "TestCase.h"

#include <type_traits>

namespace {

const QString filePath = "/etc/rauc/system.conf";

} // namespace

// Only the vtable pointer and the IniFileManager.
static_assert(sizeof(RaucSystemConfigIniManager) == sizeof(void*) + sizeof(IniFileManager),
              "layout");
static_assert(std::has_virtual_destructor<RaucSystemConfigIniManager>::value, "virtual destructor");
static_assert(!std::is_copy_constructible<RaucSystemConfigIniManager>::value, "not copyable");
static_assert(!std::is_copy_assignable<RaucSystemConfigIniManager>::value, "not copyable");

class tst_RaucSystemConfigIniManager : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void integerIsReturned_data();
    void integerIsReturned();
    void otherTextReturnsZero_data();
    void otherTextReturnsZero();
    void missingKeyReturnsZero_data();
    void missingKeyReturnsZero();
    void missingFileReturnsZero();
    void fileIsNotChanged();

private:
    void expectMissingIndex();
};

void tst_RaucSystemConfigIniManager::expectMissingIndex()
{
    IniWarnings::expectMissingKey(messages(), filePath, "compatible", "system");
}

void tst_RaucSystemConfigIniManager::integerIsReturned_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("index");

    QTest::newRow("one digit") << QByteArray("7") << "7";
    QTest::newRow("zero") << QByteArray("0") << "0";
    QTest::newRow("negative") << QByteArray("-1") << "-1";
    QTest::newRow("plus sign") << QByteArray("+7") << "7";
    QTest::newRow("leading zeros") << QByteArray("007") << "7";
    QTest::newRow("surrounding spaces") << QByteArray("  7  ") << "7";
    QTest::newRow("quoted") << QByteArray("\"7\"") << "7";
    QTest::newRow("largest") << QByteArray("2147483647") << "2147483647";
    QTest::newRow("smallest") << QByteArray("-2147483648") << "-2147483648";
    // A text is converted to 64 bits and truncated to 32 bits.
    QTest::newRow("largest plus one") << QByteArray("2147483648") << "-2147483648";
    QTest::newRow("64 bits") << QByteArray("4294967303") << "7";
}

void tst_RaucSystemConfigIniManager::integerIsReturned()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QByteArray, value);
    QFETCH(QString, index);

    DeviceRoot::writeFile(filePath, "[system]\ncompatible=" + value + "\n");
    QCOMPARE(RaucSystemConfigIniManager().getDeviceIndex(), index);
}

void tst_RaucSystemConfigIniManager::otherTextReturnsZero_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("shown");

    const auto newRow =
        [](const char* situation, const char* value) {
            QTest::newRow(situation)
                << QByteArray(value)
                << QStringLiteral("QVariant(QString, \"%1\")").arg(QString::fromLatin1(value));
        };
    newRow("number and letter", "7a");
    newRow("empty", "");
    newRow("name", "Orvalis board");
    newRow("hexadecimal", "0x7");
    newRow("fraction", "7.0");
    newRow("more than 64 bits", "99999999999999999999");
    newRow("two numbers", "7 7");
    newRow("Latin-1", "\xe4\xc3\xbc");
    QTest::newRow("list") << QByteArray("7,8") << "QVariant(QStringList, (\"7\", \"8\"))";
}

void tst_RaucSystemConfigIniManager::otherTextReturnsZero()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QByteArray, value);
    QFETCH(QString, shown);

    DeviceRoot::writeFile(filePath, "[system]\ncompatible=" + value + "\n");
    IniWarnings::expectNoInteger(messages(), filePath, shown);
    QCOMPARE(RaucSystemConfigIniManager().getDeviceIndex(), QStringLiteral("0"));
}

void tst_RaucSystemConfigIniManager::missingKeyReturnsZero_data()
{
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("no key") << QByteArray("[system]\nbootloader=custom\n");
    QTest::newRow("no section") << QByteArray("[slot.rootfs.0]\ncompatible=7\n");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("section in different case") << QByteArray("[System]\ncompatible=7\n");
    QTest::newRow("key in different case") << QByteArray("[system]\nCompatible=7\n");
    QTest::newRow("key without a section") << QByteArray("compatible=7\n");
}

void tst_RaucSystemConfigIniManager::missingKeyReturnsZero()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QByteArray, content);

    DeviceRoot::writeFile(filePath, content);
    expectMissingIndex();
    QCOMPARE(RaucSystemConfigIniManager().getDeviceIndex(), QStringLiteral("0"));
}

void tst_RaucSystemConfigIniManager::missingFileReturnsZero()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    {
        IniWarnings::expectMissingFile(messages(), filePath);
        const RaucSystemConfigIniManager manager;
        QCOMPARE(messages().takeProblems(), QStringList());

        expectMissingIndex();
        QCOMPARE(manager.getDeviceIndex(), QStringLiteral("0"));
        QCoreApplication::processEvents();
    }
    QVERIFY(!QFileInfo::exists("/etc/rauc"));
}

void tst_RaucSystemConfigIniManager::fileIsNotChanged()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    const QByteArray content("; a comment\n[system]\ncompatible = 7\n");
    DeviceRoot::writeFile(filePath, content);
    const QDateTime modified = QFileInfo(filePath).lastModified();
    {
        const RaucSystemConfigIniManager manager;
        QCOMPARE(manager.getDeviceIndex(), QStringLiteral("7"));
        QCoreApplication::processEvents();
    }
    QCOMPARE(readFile(filePath), content);
    QCOMPARE(QFileInfo(filePath).lastModified(), modified);
}

QTEST_GUILESS_MAIN(tst_RaucSystemConfigIniManager)
#include "tst_RaucSystemConfigIniManager.moc"
