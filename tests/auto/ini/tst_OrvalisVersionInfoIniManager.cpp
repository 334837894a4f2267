#include "DeviceRoot.h"
#include "IniWarnings.h"
#include "OrvalisVersionInfoIniManager.h"
#include "TestCase.h"

#include <thread>
#include <type_traits>

namespace {

const QString filePath = "/orvalis/etc/OrvalisVersionInfo.ini";
const QString groupApplication = "ApplicationVersion";
const QString groupGeneral = "General";

using Name = const QString& (*)();
using Getter = QString (OrvalisVersionInfoIniManager::*)() const;

} // namespace

// Only the vtable pointer and the IniFileManager.
static_assert(sizeof(OrvalisVersionInfoIniManager) == sizeof(void*) + sizeof(IniFileManager),
              "layout");
static_assert(std::has_virtual_destructor<OrvalisVersionInfoIniManager>::value,
              "virtual destructor");
static_assert(!std::is_copy_constructible<OrvalisVersionInfoIniManager>::value, "not copyable");
static_assert(!std::is_copy_assignable<OrvalisVersionInfoIniManager>::value, "not copyable");

Q_DECLARE_METATYPE(Name)
Q_DECLARE_METATYPE(Getter)

class tst_OrvalisVersionInfoIniManager : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void publishedNamesAreConstant_data();
    void publishedNamesAreConstant();
    void valuesAreReturned_data();
    void valuesAreReturned();
    void missingFileIsReported();
    void fileIsNotChanged();
};

void tst_OrvalisVersionInfoIniManager::publishedNamesAreConstant_data()
{
    QTest::addColumn<Name>("name");
    QTest::addColumn<QString>("text");

    using Manager = OrvalisVersionInfoIniManager;
    QTest::newRow("file name") << Name(&Manager::getFileNameOrvalisVersionInfoIni)
                               << "OrvalisVersionInfo.ini";
    QTest::newRow("general") << Name(&Manager::getGroupNameGeneral) << "General";
    QTest::newRow("application") << Name(&Manager::getGroupNameApplicationVersion)
                                 << "ApplicationVersion";
    QTest::newRow("version") << Name(&Manager::getKeyVersion) << "Version";
    QTest::newRow("product code") << Name(&Manager::getKeyProductCode) << "ProductCode";
    QTest::newRow("creation date") << Name(&Manager::getKeyCreationDate) << "CreationDate";
}

void tst_OrvalisVersionInfoIniManager::publishedNamesAreConstant()
{
    QFETCH(Name, name);
    QFETCH(QString, text);

    const QString& first = name();
    QCOMPARE(first, text);
    QCOMPARE(&name(), &first);

    // All threads share one string.
    const QString* elsewhere = nullptr;
    std::thread([&] { elsewhere = &name(); }).join();
    QCOMPARE(elsewhere, &first);
}

void tst_OrvalisVersionInfoIniManager::valuesAreReturned_data()
{
    QTest::addColumn<Getter>("getter");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("value"); // null: default, with a warning

    struct Source
    {
        const char* name;
        Getter getter;
        const char* key;
        QString group;
    };
    const Source sources[] = {
        {"application version", &OrvalisVersionInfoIniManager::getApplicationVersion, "Version",
         groupApplication},
        {"product code", &OrvalisVersionInfoIniManager::getProductCode, "ProductCode",
         groupApplication},
        {"creation date", &OrvalisVersionInfoIniManager::getCreationDate, "CreationDate",
         groupGeneral},
    };
    for (const Source& source : sources) {
        const QByteArray key(source.key);
        // The spelling of a group named General in Qt's INI format.
        const QByteArray section =
            source.group == groupGeneral ? QByteArray("[%General]\n") : "[ApplicationVersion]\n";
        const auto newRow = [&](const char* situation, const QByteArray& content,
                                const QString& value) {
            QTest::addRow("%s, %s", source.name, situation)
                << source.getter << QString::fromLatin1(key) << source.group << content << value;
        };
        newRow("present", section + key + "=640917\n", "640917");
        newRow("neither validated nor converted", section + key + "=\" 2026-11-15 / x \"\n",
               " 2026-11-15 / x ");
        newRow("empty", section + key + "=\n", "");
        newRow("Latin-1", section + key + "=\xe4\xc3\xbc\n", QString::fromLatin1("\xe4\xc3\xbc"));
        newRow("missing key", section + "Other=1\n", QString());
        newRow("different case", section + key.toLower() + "=1\n", QString());
        newRow("different section", "[Other]\n" + key + "=1\n", QString());
        newRow("empty file", QByteArray(), QString());
        // [General] contains the keys outside all groups.
        newRow("only in [General]", "[General]\n" + key + "=1\n", QString());
        newRow("in [General] and in its section",
               "[General]\n" + key + "=1\n" + section + key + "=2\n", "2");
    }
    QTest::newRow("creation date, only in the application's section")
        << Getter(&OrvalisVersionInfoIniManager::getCreationDate) << "CreationDate" << groupGeneral
        << QByteArray("[ApplicationVersion]\nCreationDate=1\n") << QString();
}

void tst_OrvalisVersionInfoIniManager::valuesAreReturned()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(Getter, getter);
    QFETCH(QString, key);
    QFETCH(QString, group);
    QFETCH(QByteArray, content);
    QFETCH(QString, value);

    DeviceRoot::writeFile(filePath, content);
    const OrvalisVersionInfoIniManager manager;
    if (value.isNull()) {
        IniWarnings::expectMissingKey(messages(), filePath, key, group);
    }
    QCOMPARE((manager.*getter)(), value);
}

void tst_OrvalisVersionInfoIniManager::missingFileIsReported()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    {
        IniWarnings::expectMissingFile(messages(), filePath);
        const OrvalisVersionInfoIniManager manager;
        QCOMPARE(messages().takeProblems(), QStringList());

        IniWarnings::expectMissingKey(messages(), filePath, "Version", groupApplication);
        QCOMPARE(manager.getApplicationVersion(), QString());
        IniWarnings::expectMissingKey(messages(), filePath, "ProductCode", groupApplication);
        QCOMPARE(manager.getProductCode(), QString());
        IniWarnings::expectMissingKey(messages(), filePath, "CreationDate", groupGeneral);
        QCOMPARE(manager.getCreationDate(), QString());
        QCoreApplication::processEvents();
    }
    QVERIFY(!QFileInfo::exists("/orvalis"));
}

void tst_OrvalisVersionInfoIniManager::fileIsNotChanged()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    const QByteArray content("; a comment\n[ApplicationVersion]\nVersion = 1\nProductCode = 2\n"
                             "[%General]\nCreationDate = 3\n");
    DeviceRoot::writeFile(filePath, content);
    const QDateTime modified = QFileInfo(filePath).lastModified();
    {
        const OrvalisVersionInfoIniManager manager;
        QCOMPARE(manager.getApplicationVersion(), QStringLiteral("1"));
        QCOMPARE(manager.getProductCode(), QStringLiteral("2"));
        QCOMPARE(manager.getCreationDate(), QStringLiteral("3"));
        QCoreApplication::processEvents();
    }
    QCOMPARE(readFile(filePath), content);
    QCOMPARE(QFileInfo(filePath).lastModified(), modified);
}

QTEST_GUILESS_MAIN(tst_OrvalisVersionInfoIniManager)
#include "tst_OrvalisVersionInfoIniManager.moc"
