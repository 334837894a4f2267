#include "DeviceRoot.h"
#include "IniWarnings.h"
#include "TestCase.h"
#include "VersionFileIniManager.h"

#include <thread>
#include <type_traits>

namespace {

const QString filePath = "/orvalis/VersionFile.ini";
const QString group = "MainVersion";

using Name = const QString& (*)();

} // namespace

// Only the vtable pointer and the IniFileManager.
static_assert(sizeof(VersionFileIniManager) == sizeof(void*) + sizeof(IniFileManager), "layout");
static_assert(std::has_virtual_destructor<VersionFileIniManager>::value, "virtual destructor");
static_assert(!std::is_copy_constructible<VersionFileIniManager>::value, "not copyable");
static_assert(!std::is_copy_assignable<VersionFileIniManager>::value, "not copyable");

Q_DECLARE_METATYPE(Name)

class tst_VersionFileIniManager : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void publishedNamesAreConstant_data();
    void publishedNamesAreConstant();
    void valuesAreReturned_data();
    void valuesAreReturned();
    void missingFileIsReported();
    void fileIsNotChanged();
    void changedFileIsReadByTheNextObject();
};

void tst_VersionFileIniManager::publishedNamesAreConstant_data()
{
    QTest::addColumn<Name>("name");
    QTest::addColumn<QString>("text");

    QTest::newRow("file name") << Name(&VersionFileIniManager::getFileNameVersionFile)
                               << "VersionFile.ini";
    QTest::newRow("section") << Name(&VersionFileIniManager::getSectionNameMainVersion)
                             << "MainVersion";
}

void tst_VersionFileIniManager::publishedNamesAreConstant()
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

void tst_VersionFileIniManager::valuesAreReturned_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("version"); // null: default, with a warning
    QTest::addColumn<QString>("hash");

    const QString missing;
    const QString empty = "";
    QTest::newRow("both")
        << QByteArray("[MainVersion]\nVersionString=V8.12.3-45\nVersionStringHash=ab12\n")
        << "V8.12.3-45"
        << "ab12";
    QTest::newRow("missing hash") << QByteArray("[MainVersion]\nVersionString=1.2.3\n") << "1.2.3"
                                  << missing;
    QTest::newRow("missing version")
        << QByteArray("[MainVersion]\nVersionStringHash=ab12\n") << missing << "ab12";
    QTest::newRow("empty values") << QByteArray(
                                         "[MainVersion]\nVersionString=\nVersionStringHash=\n")
                                  << empty << empty;
    QTest::newRow("empty file") << QByteArray() << missing << missing;
    QTest::newRow("different section")
        << QByteArray("[Version]\nVersionString=1.2.3\nVersionStringHash=ab12\n") << missing
        << missing;
    QTest::newRow("different case")
        << QByteArray("[MainVersion]\nversionstring=1.2.3\nVERSIONSTRINGHASH=ab12\n") << missing
        << missing;
    QTest::newRow("no section") << QByteArray("VersionString=1.2.3\nVersionStringHash=ab12\n")
                                << missing << missing;
    QTest::newRow("subgroup of the same name")
        << QByteArray("[MainVersion]\nVersionString\\x=1\nVersionStringHash=ab12\n") << missing
        << "ab12";
    QTest::newRow("neither parsed nor validated")
        << QByteArray("[MainVersion]\nVersionString=\" no.version \"\nVersionStringHash=#?!\n")
        << " no.version "
        << "#?!";
    QTest::newRow("non-ASCII bytes are Latin-1")
        << QByteArray("[MainVersion]\nVersionString=\xe4\nVersionStringHash=\xc3\xbc\n")
        << QString(QChar(0xe4)) << QString(QChar(0xc3)) + QChar(0xbc);
    QTest::newRow("a comma makes a list, which does not convert to text")
        << QByteArray("[MainVersion]\nVersionString=1,2\nVersionStringHash=\"1,2\"\n") << empty
        << "1,2";
}

void tst_VersionFileIniManager::valuesAreReturned()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(QByteArray, content);
    QFETCH(QString, version);
    QFETCH(QString, hash);

    DeviceRoot::writeFile(filePath, content);
    const VersionFileIniManager manager;
    if (version.isNull()) {
        IniWarnings::expectMissingKey(messages(), filePath, "VersionString", group);
    }
    QCOMPARE(manager.getMainVersionVersionString(), version);
    if (hash.isNull()) {
        IniWarnings::expectMissingKey(messages(), filePath, "VersionStringHash", group);
    }
    QCOMPARE(manager.getVersionStringHash(), hash);
}

void tst_VersionFileIniManager::missingFileIsReported()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    {
        IniWarnings::expectMissingFile(messages(), filePath);
        const VersionFileIniManager manager;
        QCOMPARE(messages().takeProblems(), QStringList());

        IniWarnings::expectMissingKey(messages(), filePath, "VersionString", group);
        QCOMPARE(manager.getMainVersionVersionString(), QString());
        IniWarnings::expectMissingKey(messages(), filePath, "VersionStringHash", group);
        QCOMPARE(manager.getVersionStringHash(), QString());
        QCoreApplication::processEvents();
    }
    QVERIFY(!QFileInfo::exists("/orvalis"));
}

void tst_VersionFileIniManager::fileIsNotChanged()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    const QByteArray content("; a comment\n[MainVersion]\nVersionString = 1.2.3\n");
    DeviceRoot::writeFile(filePath, content);
    const QDateTime modified = QFileInfo(filePath).lastModified();
    {
        const VersionFileIniManager manager;
        QCOMPARE(manager.getMainVersionVersionString(), QStringLiteral("1.2.3"));
        QCoreApplication::processEvents();
    }
    QCOMPARE(readFile(filePath), content);
    QCOMPARE(QFileInfo(filePath).lastModified(), modified);
}

void tst_VersionFileIniManager::changedFileIsReadByTheNextObject()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    DeviceRoot::writeFile(filePath, "[MainVersion]\nVersionString=1.2.3\n");
    QCOMPARE(VersionFileIniManager().getMainVersionVersionString(), "1.2.3");
    DeviceRoot::writeFile(filePath, "[MainVersion]\nVersionString=1.2.4\n");
    QCOMPARE(VersionFileIniManager().getMainVersionVersionString(), "1.2.4");
}

QTEST_GUILESS_MAIN(tst_VersionFileIniManager)
#include "tst_VersionFileIniManager.moc"
