#include "IniFileManager.h"
#include "IniTestCase.h"

#include <algorithm>
#include <functional>

// Tests lists of records in a file: one group per record, numbered by the key "Position".
class tst_IniFileManagerIndexed : public IniTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void searchFindsPosition_data();
    void searchFindsPosition();
    void searchRejectsTooHighIndex_data();
    void searchRejectsTooHighIndex();
    void searchWarnsAboutGroupsWithoutPosition_data();
    void searchWarnsAboutGroupsWithoutPosition();

    void gettersReturnTheValue();
    void gettersBehaveAsThoseByGroup_data();
    void gettersBehaveAsThoseByGroup();
    void gettersRejectTooHighIndex_data();
    void gettersRejectTooHighIndex();
    void missingPositionReturnsDefault_data();
    void missingPositionReturnsDefault();
    void gettersWarnAboutGroupsWithoutPosition();

    void namelessGroupReadsTheTopLevel();
    void changesOfAnotherManagerAreSeen();
    void searchSeesTheFileThatAHandlerRereads();

private:
    void expectNoPosition(const char* group);
    void expectBadPosition(const char* value);
};

namespace {

// The value of groupIndex before a search, to see whether the search changes it.
constexpr int untouched = -4711;

const QString key = "k";
const QString defaultText = "default";

constexpr char searchIndexSignature[] = "bool IniFileManager::searchIndex(int, int&) const";
constexpr char integerSignature[] =
    "int IniFileManager::getValueInteger(int, const QString&, int) const";
constexpr char stringSignature[] =
    "QString IniFileManager::getValueString(int, const QString&, const QString&) const";
constexpr char boolSignature[] =
    "bool IniFileManager::getValueBool(int, const QString&, bool) const";
constexpr char groupValueSignature[] =
    "QVariant IniFileManager::getValue(const QString&, const QString&, const QVariant&) const";
constexpr char groupIntegerSignature[] =
    "int IniFileManager::getValueInteger(const QString&, const QString&, int) const";

} // namespace

void tst_IniFileManagerIndexed::expectNoPosition(const char* group)
{
    expectIniWarning(QStringLiteral("Key \"Position\" not found in Group \"%1\" !")
                         .arg(QString::fromUtf8(group)))
        .function(groupValueSignature);
}

void tst_IniFileManagerIndexed::expectBadPosition(const char* value)
{
    expectIniWarning("Conversion failed: " + QString::fromUtf8(value))
        .function(groupIntegerSignature);
}

void tst_IniFileManagerIndexed::searchFindsPosition_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("externalIndex");
    QTest::addColumn<QString>("group"); // null: not found

    const auto row = [](const char* situation, const char* content, int externalIndex,
                        const char* group) {
        QTest::newRow(situation) << QByteArray(content) << externalIndex
                                 << QString::fromUtf8(group);
    };
    const char twisted[] = "[b]\nPosition=0\n[a]\nPosition=1\n";
    row("list order is by name, 0", twisted, 0, "b");
    row("list order is by name, 1", twisted, 1, "a");
    const char mixedCase[] = "[b]\nPosition=0\n[a]\nPosition=0\n[Z]\nPosition=0\n";
    row("uppercase sorts first", mixedCase, 0, "Z");
    const char numbers[] = "[R2]\nPosition=0\n[R10]\nPosition=0\n";
    row("numbers in names sort as text", numbers, 0, "R10");
    const char doubled[] = "[c]\nPosition=0\n[b]\nPosition=1\n[a]\nPosition=1\n";
    row("first of two groups wins", doubled, 1, "a");
    row("after a duplicate Position", doubled, 0, "c");
    row("no group has this position", "[a]\nPosition=0\n[b]\nPosition=0\n", 1, nullptr);
    row("last position", "[a]\nPosition=0\n[b]\nPosition=1\n[c]\nPosition=2\n", 2, "c");
    row("only one group", "[a]\nPosition=0\n", 0, "a");

    row("negative, not found", "[a]\nPosition=0\n", -1, nullptr);
    row("negative, found", "[a]\nPosition=0\n[b]\nPosition=-1\n", -1, "b");
    row("smallest number, found", "[a]\nPosition=-2147483648\n", -2147483647 - 1, "a");
    row("negative in an empty file", "", -1, nullptr);
    row("negative, top-level keys only", "Position=-1\n", -1, nullptr);

    row("in quotes", "[a]\nPosition=\"0\"\n", 0, "a");
    row("surrounding spaces", "[a]\n Position = 0 \n", 0, "a");
    row("more than 32 bits are truncated", "[a]\nPosition=4294967296\n", 0, "a");
    row("duplicate key: the last wins", "[a]\nPosition=1\nPosition=0\n", 0, "a");
    row("duplicate group", "[a]\nk=1\n[b]\nPosition=1\n[a]\nPosition=0\n", 0, "a");
    row("top-level Position does not belong to a group",
        "Position=1\n[a]\nPosition=0\n[b]\nPosition=0\n", 1, nullptr);
    row("group named General", "[%General]\nPosition=0\n", 0, "General");
    row("Position of a subgroup does not belong to the group",
        "[a]\nPosition=0\nsub\\Position=1\n[b]\nPosition=0\n", 1, nullptr);
    const char nextGroupsName[] = "[a]\nPosition=5\nPositionb\\Position=1\n[b]\nPosition=0\n";
    row("subgroup whose name ends in the next group's, 0", nextGroupsName, 0, "b");
    row("subgroup whose name ends in the next group's, 1", nextGroupsName, 1, nullptr);
    row("subgroups are not listed", "[a/sub]\nk=1\n[a]\nPosition=0\n", 0, "a");
}

void tst_IniFileManagerIndexed::searchFindsPosition()
{
    QFETCH(QByteArray, content);
    QFETCH(int, externalIndex);
    QFETCH(QString, group);
    writeIni(content);
    const IniFileManager manager(iniFile(), nullptr);

    int groupIndex = untouched;
    QCOMPARE(manager.searchIndex(externalIndex, groupIndex), !group.isNull());
    if (group.isNull()) {
        QCOMPARE(groupIndex, untouched);
    } else {
        QVERIFY(groupIndex >= 0 && groupIndex < manager.getCount());
        QCOMPARE(manager.getGroups().at(groupIndex), group);
    }
}

void tst_IniFileManagerIndexed::searchRejectsTooHighIndex_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("externalIndex");

    const QByteArray three = "[a]\nPosition=0\n[b]\nPosition=1\n[c]\nPosition=5\n";
    QTest::newRow("empty file") << QByteArray() << 0;
    QTest::newRow("top-level keys only") << QByteArray("Position=0\nk=1\n") << 0;
    QTest::newRow("number of groups") << three << 3;
    QTest::newRow("above, position of a group") << three << 5;
    QTest::newRow("largest number") << three << 2147483647;
    QTest::newRow("groups without keys do not count") << QByteArray("[a]\n[b]\n") << 0;
    QTest::newRow("subgroups do not count") << QByteArray("[a]\nPosition=0\nb\\Position=1\n") << 1;
}

void tst_IniFileManagerIndexed::searchRejectsTooHighIndex()
{
    QFETCH(QByteArray, content);
    QFETCH(int, externalIndex);
    writeIni(content);
    const IniFileManager manager(iniFile(), nullptr);

    // Since there is only this warning, no group is read.
    expectIniWarning("Invalid external index!").function(searchIndexSignature);
    int groupIndex = untouched;
    QVERIFY(!manager.searchIndex(externalIndex, groupIndex));
    QCOMPARE(groupIndex, untouched);
}

void tst_IniFileManagerIndexed::searchWarnsAboutGroupsWithoutPosition_data()
{
    QTest::addColumn<int>("externalIndex");
    QTest::addColumn<int>("groupIndex");
    QTest::addColumn<int>("warnings");

    QTest::newRow("negative, before all warnings") << -1 << 0 << 0;
    QTest::newRow("missing Position counts as 0") << 0 << 1 << 1;
    QTest::newRow("after some groups") << 3 << 6 << 4;
    QTest::newRow("after all groups") << 4 << 8 << 5;
    QTest::newRow("not found") << 5 << untouched << 5;
}

void tst_IniFileManagerIndexed::searchWarnsAboutGroupsWithoutPosition()
{
    QFETCH(int, externalIndex);
    QFETCH(int, groupIndex);
    QFETCH(int, warnings);
    writeIni("[a]\nPosition=-1\n"
             "[b]\nk=1\n"
             "[c]\nPosition=first\n"
             "[d]\nposition=3\n" // a different key: names are case-sensitive
             "[e]\nPosition=1,3\n"
             "[f]\nPosition=0\n"
             "[g]\nPosition=3\n"
             "[h]\nPosition=\n"
             "[i]\nPosition=4\n");
    const IniFileManager manager(iniFile(), nullptr);

    const std::function<void()> probes[] = {
        [this] { expectNoPosition("b"); },
        [this] { expectBadPosition("QVariant(QString, \"first\")"); },
        [this] { expectNoPosition("d"); },
        [this] { expectBadPosition("QVariant(QStringList, (\"1\", \"3\"))"); },
        [this] { expectBadPosition("QVariant(QString, \"\")"); },
    };
    std::for_each_n(probes, warnings, [](const auto& expectProbe) { expectProbe(); });
    int found = untouched;
    QCOMPARE(manager.searchIndex(externalIndex, found), groupIndex != untouched);
    QCOMPARE(found, groupIndex);
}

void tst_IniFileManagerIndexed::gettersReturnTheValue()
{
    writeIni("k=top\n"
             "[last]\nPosition=0\nk=12\n"
             "[early]\nPosition=1\nk=-3\n"
             "[middle]\nPosition=-7\nk=true\n");
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getValueInteger(0, key, 99), 12);
    QCOMPARE(manager.getValueInteger(1, key, 99), -3);
    QCOMPARE(manager.getValueString(0, key, defaultText), QStringLiteral("12"));
    QCOMPARE(manager.getValueString(1, key, defaultText), QStringLiteral("-3"));
    QCOMPARE(manager.getValueString(-7, key, defaultText), QStringLiteral("true"));
    QCOMPARE(manager.getValueBool(0, key, false), true);
    QCOMPARE(manager.getValueBool(-7, key, false), true);
    QCOMPARE(manager.getValueInteger(1, QStringLiteral("Position"), 99), 1);
}

void tst_IniFileManagerIndexed::gettersBehaveAsThoseByGroup_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("requestedKey");
    QTest::addColumn<QString>("warning"); // the same for every getter
    QTest::addColumn<QString>("shown");   // in the warning of a failed conversion
    QTest::addColumn<int>("integer");
    QTest::addColumn<QString>("string");
    QTest::addColumn<bool>("truth");

    const QString none;
    QTest::newRow("number") << QByteArray("k=7\n") << key << none << none << 7 << "7" << true;
    QTest::newRow("zero") << QByteArray("k=0\n") << key << none << none << 0 << "0" << false;
    QTest::newRow("64 bits are truncated")
        << QByteArray("k=4294967301\n") << key << none << none << 5 << "4294967301" << true;
    QTest::newRow("letters") << QByteArray("k=abc\n") << key << none << "QVariant(QString, \"abc\")"
                             << 99 << "abc" << true;
    QTest::newRow("empty value") << QByteArray("k=\n") << key << none << "QVariant(QString, \"\")"
                                 << 99 << "" << false;
    QTest::newRow("list") << QByteArray("k=1,2\n") << key << none
                          << "QVariant(QStringList, (\"1\", \"2\"))" << 99 << QString() << false;
    const QString notFound = "Key \"%1\" not found in Group \"b\" !";
    QTest::newRow("missing key") << QByteArray() << key << notFound.arg(key) << none << 99
                                 << defaultText << true;
    QTest::newRow("key in different case")
        << QByteArray("K=1\n") << key << notFound.arg(key) << none << 99 << defaultText << true;
    QTest::newRow("key of a subgroup")
        << QByteArray("sub\\k=1\n") << "sub/k" << notFound.arg("sub/k") << none << 99 << defaultText
        << true;
    QTest::newRow("null key") << QByteArray("=5\n") << none << "Key is empty!" << none << 99
                              << defaultText << true;
    QTest::newRow("empty key") << QByteArray("=5\n") << ""
                               << "Key is empty!" << none << 99 << defaultText << true;
}

void tst_IniFileManagerIndexed::gettersBehaveAsThoseByGroup()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, requestedKey);
    QFETCH(QString, warning);
    QFETCH(QString, shown);
    QFETCH(int, integer);
    QFETCH(QString, string);
    QFETCH(bool, truth);
    writeIni("k=top\n[a]\nPosition=0\nk=other\n[b]\nPosition=1\n" + lines);
    const IniFileManager manager(iniFile(), nullptr);

    const auto expectWarning = [&] {
        if (!warning.isEmpty()) {
            expectIniWarning(warning).function(groupValueSignature);
        }
    };
    expectWarning();
    if (!shown.isEmpty()) {
        expectIniWarning("Conversion failed: " + shown).function(groupIntegerSignature);
    }
    QCOMPARE(manager.getValueInteger(1, requestedKey, 99), integer);
    expectWarning();
    const QString text = manager.getValueString(1, requestedKey, defaultText);
    QCOMPARE(text, string);
    QCOMPARE(text.isNull(), string.isNull());
    expectWarning();
    QCOMPARE(manager.getValueBool(1, requestedKey, true), truth);
}

void tst_IniFileManagerIndexed::gettersRejectTooHighIndex_data()
{
    searchRejectsTooHighIndex_data();
}

void tst_IniFileManagerIndexed::gettersRejectTooHighIndex()
{
    QFETCH(QByteArray, content);
    QFETCH(int, externalIndex);
    writeIni(content);
    const IniFileManager manager(iniFile(), nullptr);

    // Each getter checks the index before it searches and before it reads the key.
    const QStringList keys = {key, QString()};
    for (const QString& anyKey : keys) {
        const QString warning = "Invalid group index!";
        expectIniWarning(warning).function(integerSignature);
        QCOMPARE(manager.getValueInteger(externalIndex, anyKey, -99), -99);
        expectIniWarning(warning).function(stringSignature);
        QCOMPARE(manager.getValueString(externalIndex, anyKey, defaultText), defaultText);
        expectIniWarning(warning).function(boolSignature);
        QCOMPARE(manager.getValueBool(externalIndex, anyKey, true), true);
        expectIniWarning(warning).function(boolSignature);
        QCOMPARE(manager.getValueBool(externalIndex, anyKey, false), false);
    }
}

void tst_IniFileManagerIndexed::missingPositionReturnsDefault_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("externalIndex");

    const QByteArray two = "k=1\n[a]\nPosition=0\nk=1\n[b]\nPosition=0\nk=1\n";
    QTest::newRow("negative") << two << -1;
    QTest::newRow("smallest number") << two << -2147483647 - 1;
    QTest::newRow("gap") << two << 1;
    QTest::newRow("no group at 0") << QByteArray("[a]\nPosition=1\nk=1\n") << 0;
    QTest::newRow("negative in an empty file") << QByteArray() << -1;
}

void tst_IniFileManagerIndexed::missingPositionReturnsDefault()
{
    QFETCH(QByteArray, content);
    QFETCH(int, externalIndex);
    writeIni(content);
    const IniFileManager manager(iniFile(), nullptr);

    const QStringList keys = {key, QString()};
    for (const QString& anyKey : keys) {
        const QString warning = "Index not found in group!";
        expectIniWarning(warning).function(integerSignature);
        QCOMPARE(manager.getValueInteger(externalIndex, anyKey, -99), -99);
        expectIniWarning(warning).function(stringSignature);
        QCOMPARE(manager.getValueString(externalIndex, anyKey, defaultText), defaultText);
        expectIniWarning(warning).function(boolSignature);
        QCOMPARE(manager.getValueBool(externalIndex, anyKey, true), true);
        expectIniWarning(warning).function(boolSignature);
        QCOMPARE(manager.getValueBool(externalIndex, anyKey, false), false);
    }
    int groupIndex = untouched;
    QVERIFY(!manager.searchIndex(externalIndex, groupIndex)); // logs nothing itself
    QCOMPARE(groupIndex, untouched);
}

void tst_IniFileManagerIndexed::gettersWarnAboutGroupsWithoutPosition()
{
    writeIni("[a]\nk=1\n[b]\nPosition=x\nk=2\n[c]\nPosition=2\nk=3\n[d]\nk=4\n");
    const IniFileManager manager(iniFile(), nullptr);
    const auto expectProbes = [this] {
        expectNoPosition("a");
        expectBadPosition("QVariant(QString, \"x\")");
    };

    // The group without a Position precedes the matching groups.
    expectNoPosition("a");
    QCOMPARE(manager.getValueInteger(0, key, 99), 1);
    expectProbes();
    QCOMPARE(manager.getValueInteger(2, key, 99), 3);
    expectProbes();
    QCOMPARE(manager.getValueString(2, key, defaultText), QStringLiteral("3"));
    expectProbes();
    QCOMPARE(manager.getValueBool(2, key, false), true);
    // Nothing is cached: each call reads all groups again. A warning of the getter itself follows
    // the warnings of the search.
    expectProbes();
    expectNoPosition("d");
    expectIniWarning("Index not found in group!").function(integerSignature);
    QCOMPARE(manager.getValueInteger(1, key, 99), 99);
    expectProbes();
    expectIniWarning("Key \"none\" not found in Group \"c\" !").function(groupValueSignature);
    QCOMPARE(manager.getValueInteger(2, QStringLiteral("none"), 99), 99);
}

void tst_IniFileManagerIndexed::namelessGroupReadsTheTopLevel()
{
    // A nameless group is listed first, but an empty group name refers to the top level.
    writeIni("Position=1\nk=top\n[]\nPosition=0\nk=nameless\n[a]\nPosition=0\nk=5\n");
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getGroups(), QStringList({QStringLiteral(""), "a"}));

    int groupIndex = untouched;
    QVERIFY(manager.searchIndex(1, groupIndex));
    QCOMPARE(groupIndex, 0);
    QVERIFY(manager.searchIndex(0, groupIndex));
    QCOMPARE(groupIndex, 1);
    QCOMPARE(manager.getValueString(1, key, defaultText), QStringLiteral("top"));
    QCOMPARE(manager.getValueString(0, key, defaultText), QStringLiteral("5"));

    writeFile("bare.ini", "[]\nPosition=0\nk=nameless\n[a]\nPosition=1\nk=5\n");
    const IniFileManager bare(path("bare.ini"), nullptr);
    const QString warning =
        QStringLiteral("\"%1\" Key \"%2\" not found in Group \"\" !").arg(bare.getGeneralLogInfo());
    messages().expectWarning("IniFileManager", warning.arg("Position"));
    messages().expectWarning("IniFileManager", warning.arg(key));
    QCOMPARE(bare.getValueString(0, key, defaultText), defaultText);
}

void tst_IniFileManagerIndexed::changesOfAnotherManagerAreSeen()
{
    const QString position = "Position";
    writeIni("[a]\nPosition=0\nk=1\n[b]\nPosition=1\nk=2\n");
    const IniFileManager manager(iniFile(), nullptr);
    IniFileManager other(iniFile(), nullptr);
    QCOMPARE(manager.getValueInteger(0, key, 99), 1);

    other.setValue("a", position, 1);
    other.setValue("b", position, 0);
    QCOMPARE(manager.getValueInteger(0, key, 99), 2);
    QCOMPARE(manager.getValueInteger(1, key, 99), 1);

    // A new group raises the limit and may shift others in the list.
    expectIniWarning("Invalid group index!");
    QCOMPARE(manager.getValueInteger(2, key, 99), 99);
    other.setValue("A", position, 2);
    other.setValue("A", key, 3);
    QCOMPARE(manager.getValueInteger(2, key, 99), 3);
    int groupIndex = untouched;
    QVERIFY(manager.searchIndex(0, groupIndex));
    QCOMPARE(groupIndex, 2);

    other.removeValue("b", position);
    other.removeValue("b", key);
    expectIniWarning("Index not found in group!");
    QCOMPARE(manager.getValueInteger(0, key, 99), 99);
    expectIniWarning("Invalid group index!");
    QCOMPARE(manager.getValueInteger(2, key, 99), 99);
}

void tst_IniFileManagerIndexed::searchSeesTheFileThatAHandlerRereads()
{
    writeIni("[A]\nk=1\n[B]\nPosition=0\n");
    IniFileManager manager(iniFile(), nullptr);
    expectNoPosition("A");
    // The top level of the new file also has a Position for B; the section takes precedence over
    // it.
    messages().setObserver([this, &manager](const Message&) {
        writeIni("B\\Position=7\n[A]\nk=1\n[B]\nPosition=1\n[B/A]\nx=1\n");
        manager.sync();
        QVERIFY(!manager.containsGeneral("none"));
    });
    int groupIndex = untouched;
    const bool isFound = manager.searchIndex(1, groupIndex);
    messages().setObserver(nullptr);
    QVERIFY(isFound);
    QCOMPARE(groupIndex, 1);
}

QTEST_GUILESS_MAIN(tst_IniFileManagerIndexed)
#include "tst_IniFileManagerIndexed.moc"
