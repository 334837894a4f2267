#include "CpuTime.h"
#include "IniFileManager.h"
#include "IniTestCase.h"

#include <QtCore/QSettings>

class tst_IniFileManagerGroups : public IniTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void gettersReturnThePresentValue_data();
    void gettersReturnThePresentValue();
    void keyIsFound_data();
    void keyIsFound();
    void pointersAreStoredAsValues();
    void missingKeyReturnsDefault_data();
    void missingKeyReturnsDefault();
    void emptyKeyReturnsDefault();
    void invalidIntegerReturnsDefault_data();
    void invalidIntegerReturnsDefault();

    void containsFindsKeys_data();
    void containsFindsKeys();
    void setValueWritesTheKey_data();
    void setValueWritesTheKey();
    void removeValueRemovesTheKey_data();
    void removeValueRemovesTheKey();
    void emptyNamesWriteNothing_data();
    void emptyNamesWriteNothing();

    void filterSelectsGroups_data();
    void filterSelectsGroups();
    void invalidFilterSelectsNothing();
    void filterThatExceedsTheMatchLimitSelectsNothing();
    void containsGroupComparesExactly_data();
    void containsGroupComparesExactly();
    void childKeysAreListed_data();
    void childKeysAreListed();
    void groupValuesAreReturned_data();
    void groupValuesAreReturned();
    void groupValuesWithNamelessKey();
    void groupValuesOfSectionsWithCommonKeys();
    void groupValuesOfSectionsOnThreeLevels();
    void singlePathLookUpWouldFindAnotherValue();
    void everyCallReturnsToTheTopLevel();
};

void tst_IniFileManagerGroups::gettersReturnThePresentValue_data()
{
    addValueRows();
}

void tst_IniFileManagerGroups::gettersReturnThePresentValue()
{
    QFETCH(QByteArray, text);
    QFETCH(QVariant, value);
    QFETCH(QString, string);
    QFETCH(bool, truth);
    QFETCH(bool, isInteger);
    QFETCH(int, integer);
    QFETCH(QString, shown);
    writeIni("key=top\n[Net]\nkey=" + text + "\n[Other]\nkey=other\n");
    const IniFileManager manager(iniFile(), nullptr);
    const QString net = "Net";
    const QString key = "key";

    const QVariant read = manager.getValue(net, key, 4711);
    QCOMPARE(read.userType(), value.userType());
    QCOMPARE(read, value);
    QCOMPARE(manager.getGroupValues(net), (QMap<QString, QVariant>{{key, value}}));
    QCOMPARE(manager.getValueString(net, key, QStringLiteral("default")), string);
    QCOMPARE(manager.getValueBool(net, key, !truth), truth);
    if (!isInteger) {
        expectIniWarning("Conversion failed: " + shown)
            .function("int IniFileManager::getValueInteger(const QString&, const QString&, int) "
                      "const");
    }
    QCOMPARE(manager.getValueInteger(net, key, 4711), isInteger ? integer : 4711);
}

void tst_IniFileManagerGroups::keyIsFound_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");

    const auto row = [](const char* situation, const char* content, const char* group,
                        const char* key) {
        QTest::newRow(situation) << QByteArray(content) << QString::fromUtf8(group)
                                 << QString::fromUtf8(key);
    };
    row("plain", "[Net]\nPort=5\n", "Net", "Port");
    row("trailing slash in the group", "[Net]\nPort=5\n", "Net/", "Port");
    row("leading slash in the group", "[Net]\nPort=5\n", "/Net", "Port");
    row("path of a group", "[Net]\nSub\\Port=5\n", "Net/Sub", "Port");
    row("section with a slash", "[Net/Sub]\nPort=5\n", "Net/Sub", "Port");
    row("doubled slash in the group", "[Net]\nSub\\Port=5\n", "Net//Sub", "Port");
    row("empty group: top level", "Port=5\n", "", "Port");
    row("group of one slash: top level", "Port=5\n", "/", "Port");
    row("group named General", "Port=1\n[%General]\nPort=5\n", "General", "Port");
    row("escaped key", "[Net]\n%50%20t=5\n", "Net", "P t");
    row("escaped group", "[N%65t]\nPort=5\n", "Net", "Port");
    row("key that is also a subgroup", "[Net]\nPort=5\nPort\\x=1\n", "Net", "Port");
    row("duplicate key: the last wins", "[Net]\nPort=1\nPort=5\n", "Net", "Port");
    row("duplicate section", "[Net]\na=1\n[X]\nb=1\n[Net]\nPort=5\n", "Net", "Port");
    row("key in various cases", "[Net]\nPORT=1\nport=2\nPort=5\n", "Net", "Port");
    row("group in various cases", "[NET]\nPort=1\n[Net]\nPort=5\n[net]\nPort=2\n", "Net", "Port");
    row("hash in the key", "[Net]\n#Port=5\n", "Net", "#Port");
}

void tst_IniFileManagerGroups::keyIsFound()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, group);
    QFETCH(QString, key);
    writeIni(content);
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getValue(group, key, 0), QVariant(QStringLiteral("5")));
    QCOMPARE(manager.getValueInteger(group, key, 0), 5);
    QVERIFY(manager.contains(group, key));
    QCOMPARE(manager.getGroupValues(group).value(key), QVariant(QStringLiteral("5")));
}

void tst_IniFileManagerGroups::pointersAreStoredAsValues()
{
    IniFileManager manager(writeFile("net.ini", "[Net]\nPort=5\n"), nullptr);
    const QVariant pointer = QVariant::fromValue(static_cast<void*>(&manager));
    manager.setValue("Net", "Owner", pointer);
    QCOMPARE(manager.getValue(QStringLiteral("Net"), QStringLiteral("Owner"), 0), pointer);
    manager.removeValue("Net", "Owner");
}

void tst_IniFileManagerGroups::missingKeyReturnsDefault_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");

    const auto row = [](const char* situation, const char* group, const char* key) {
        QTest::newRow(situation) << QString::fromUtf8(group) << QString::fromUtf8(key);
    };
    row("missing key", "Net", "none");
    row("missing group", "None", "Port");
    row("key in different case", "Net", "port");
    row("group in different case", "net", "Port");
    row("key of another group", "Net", "x");
    row("top-level key", "Net", "top");
    row("only a subgroup", "Net", "Sub");
    row("path into a subgroup", "Net", "Sub/deep");
    row("trailing slash in the key", "Net", "Port/");
    row("leading slash in the key", "Net", "/Port");
    row("only a slash", "Net", "/");
    row("only a slash at top level", "", "/");
    row("comment", "Net", ";note");
    row("empty group", "", "Port");
    row("empty group, section", "", "Net");
    row("General as the top level", "General", "top");
    row("group is not normalized", "/Net//Sub/", "none");
    row("spaces", " ", " ");
    row("umlauts", "\xc3\xa4", "\xc3\xb6");
}

void tst_IniFileManagerGroups::missingKeyReturnsDefault()
{
    QFETCH(QString, group);
    QFETCH(QString, key);
    writeIni("top=1\n[Net]\nPort=80\n;note=1\nSub\\deep=1\n[Other]\nx=1\n");
    const IniFileManager manager(iniFile(), nullptr);

    for (int reader = 0; reader < 4; ++reader) {
        expectIniWarning("Key \"" + key + "\" not found in Group \"" + group + "\" !")
            .function("QVariant IniFileManager::getValue(const QString&, const QString&, const "
                      "QVariant&) const");
    }
    QCOMPARE(manager.getValue(group, key, QStringLiteral("x")), QVariant(QStringLiteral("x")));
    QCOMPARE(manager.getValueInteger(group, key, -7), -7);
    QCOMPARE(manager.getValueString(group, key, QStringLiteral("x")), "x");
    QCOMPARE(manager.getValueBool(group, key, true), true);
}

void tst_IniFileManagerGroups::emptyKeyReturnsDefault()
{
    // The group has a nameless key, which these functions must not access.
    writeIni("[Net]\n=5\n");
    const IniFileManager manager(iniFile(), nullptr);
    const QString net = "Net";
    const QStringList keys = {QString(), ""};
    for (const QString& key : keys) {
        for (int reader = 0; reader < 7; ++reader) {
            expectIniWarning("Key is empty!");
        }
        QCOMPARE(manager.getValue(net, key, 7), QVariant(7));
        QCOMPARE(manager.getValue(QString(), key, 7), QVariant(7));
        QCOMPARE(manager.getValueInteger(net, key, 7), 7);
        QCOMPARE(manager.getValueString(net, key, QStringLiteral("x")), "x");
        QCOMPARE(manager.getValueBool(net, key, true), true);
        QCOMPARE(manager.contains(net, key), false);
        QCOMPARE(manager.contains(QString(), key), false);
    }
}

void tst_IniFileManagerGroups::invalidIntegerReturnsDefault_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("warning");
    QTest::addColumn<int>("port");

    QTest::newRow("number") << QByteArray("[Net]\nPort=8080\n") << QString() << 8080;
    QTest::newRow("letters") << QByteArray("[Net]\nPort=eighty\n")
                             << "Conversion failed: QVariant(QString, \"eighty\")" << 80;
    QTest::newRow("no key") << QByteArray("[Net]\nName=a\n")
                            << "Key \"Port\" not found in Group \"Net\" !" << 80;
}

void tst_IniFileManagerGroups::invalidIntegerReturnsDefault()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, warning);
    QFETCH(int, port);
    writeIni(content);
    const IniFileManager manager(iniFile(), nullptr);
    if (!warning.isEmpty()) {
        expectIniWarning(warning);
    }
    QCOMPARE(manager.getValueInteger(QStringLiteral("Net"), QStringLiteral("Port"), 80), port);
}

void tst_IniFileManagerGroups::containsFindsKeys_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("contained");

    const auto row = [](const char* situation, const char* group, const char* key, bool contained) {
        QTest::newRow(situation) << QString::fromUtf8(group) << QString::fromUtf8(key) << contained;
    };
    row("key", "Net", "Port", true);
    row("invalid value", "Net", "invalid", true);
    row("missing key", "Net", "none", false);
    row("missing group", "None", "Port", false);
    row("key in different case", "Net", "port", false);
    row("group in different case", "net", "Port", false);
    row("subgroup", "Net", "Sub", false);
    row("path into a subgroup", "Net", "Sub/deep", true);
    row("extra slashes", "/Net/", "//Sub//deep/", true);
    row("empty group, top-level key", "", "top", true);
    row("empty group, key of a section", "", "Port", false);
    row("empty group, path", "", "Net/Port", true);
    row("top-level key in a group", "Net", "top", false);
    row("General as the top level", "General", "top", false);
    row("only a slash, no nameless key", "Net", "/", false);
    row("only a slash, nameless key", "Other", "/", true);
}

void tst_IniFileManagerGroups::containsFindsKeys()
{
    QFETCH(QString, group);
    QFETCH(QString, key);
    QFETCH(bool, contained);
    writeIni("top=1\n[Net]\nPort=80\nSub\\deep=1\ninvalid=@Invalid()\n[Other]\n=5\n");
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.contains(group, key), contained);
}

void tst_IniFileManagerGroups::setValueWritesTheKey_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("content");

    const auto row = [](const char* situation, const char* group, const char* key,
                        const char* content) {
        QTest::newRow(situation) << QString::fromUtf8(group) << QString::fromUtf8(key)
                                 << QByteArray(content);
    };
    const char changed[] = "[General]\nPort=1\n\n[Net]\nPort=5\n";
    row("existing key", "Net", "Port", changed);
    row("trailing slash in the group", "Net/", "Port", changed);
    row("leading slash in the group", "/Net", "Port", changed);
    row("slashes around the key", "Net", "/Port/", changed);
    row("new key", "Net", "Name", "[General]\nPort=1\n\n[Net]\nName=5\nPort=80\n");
    row("key with a path", "Net", "Sub/x", "[General]\nPort=1\n\n[Net]\nPort=80\nSub\\x=5\n");
    row("group with a path", "Net/Sub", "x", "[General]\nPort=1\n\n[Net]\nPort=80\nSub\\x=5\n");
    row("doubled slash", "Net//Sub", "x", "[General]\nPort=1\n\n[Net]\nPort=80\nSub\\x=5\n");
    row("new group", "New", "x", "[General]\nPort=1\n\n[Net]\nPort=80\n\n[New]\nx=5\n");
    row("group named General", "General", "Port",
        "[General]\nPort=1\n\n[%General]\nPort=5\n\n[Net]\nPort=80\n");
    row("group of one slash: top level", "/", "Port", "[General]\nPort=5\n\n[Net]\nPort=80\n");
    row("only a slash: the nameless key", "Net", "/", "[General]\nPort=1\n\n[Net]\n=5\nPort=80\n");
    row("characters to escape", "N t", "a=b",
        "[General]\nPort=1\n\n[N%20t]\na%3Db=5\n\n[Net]\nPort=80\n");
}

void tst_IniFileManagerGroups::setValueWritesTheKey()
{
    QFETCH(QString, group);
    QFETCH(QString, key);
    QFETCH(QByteArray, content);
    writeIni("Port=1\n[Net]\nPort=80\n");
    IniFileManager manager(iniFile(), nullptr);
    manager.setValue(group, key, 5);
    QVERIFY(manager.contains(group, key));
    manager.sync();
    QCOMPARE(readFile(iniFile()), content);
}

void tst_IniFileManagerGroups::removeValueRemovesTheKey_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("content");

    const auto row = [](const char* situation, const char* group, const char* key,
                        const char* content) {
        QTest::newRow(situation) << QString::fromUtf8(group) << QString::fromUtf8(key)
                                 << QByteArray(content);
    };
    const char unchanged[] =
        "[General]\na=1\n\n[Net]\nSub\\a=1\nSub\\b=2\na=1\nab=2\n\n[Other]\na=1\n";
    row("key", "Net", "a", "[General]\na=1\n\n[Net]\nSub\\a=1\nSub\\b=2\nab=2\n\n[Other]\na=1\n");
    row("missing key", "Net", "none", unchanged);
    row("missing group", "None", "a", unchanged);
    row("different case", "Net", "A", unchanged);
    row("subgroup", "Net", "Sub", "[General]\na=1\n\n[Net]\na=1\nab=2\n\n[Other]\na=1\n");
    row("path into a subgroup", "Net", "Sub/a",
        "[General]\na=1\n\n[Net]\nSub\\b=2\na=1\nab=2\n\n[Other]\na=1\n");
    row("group with a path", "Net/Sub", "a",
        "[General]\na=1\n\n[Net]\nSub\\b=2\na=1\nab=2\n\n[Other]\na=1\n");
    row("extra slashes", "/Net/", "//a/",
        "[General]\na=1\n\n[Net]\nSub\\a=1\nSub\\b=2\nab=2\n\n[Other]\na=1\n");
    row("last key of a group", "Other", "a",
        "[General]\na=1\n\n[Net]\nSub\\a=1\nSub\\b=2\na=1\nab=2\n");
    row("only a slash: the entire group", "Net", "/", "[General]\na=1\n\n[Other]\na=1\n");
    row("only slashes: the entire group", "Net", "//", "[General]\na=1\n\n[Other]\na=1\n");
    row("group and key of one slash: everything", "/", "/", "");
}

void tst_IniFileManagerGroups::removeValueRemovesTheKey()
{
    QFETCH(QString, group);
    QFETCH(QString, key);
    QFETCH(QByteArray, content);
    writeIni("[General]\na=1\n\n[Net]\nSub\\a=1\nSub\\b=2\na=1\nab=2\n\n[Other]\na=1\n");
    {
        IniFileManager manager(iniFile(), nullptr);
        manager.removeValue(group, key);
    }
    QCOMPARE(readFile(iniFile()), content);
}

void tst_IniFileManagerGroups::emptyNamesWriteNothing_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("warning");

    const QString groupIsEmpty = "Group is empty!";
    const QString keyIsEmpty = "Key is empty!";
    const QString empty = "";
    QTest::newRow("null group") << QString() << "a" << groupIsEmpty;
    QTest::newRow("empty group") << empty << "a" << groupIsEmpty;
    QTest::newRow("null key") << "Net" << QString() << keyIsEmpty;
    QTest::newRow("empty key") << "Net" << empty << keyIsEmpty;
    QTest::newRow("both null") << QString() << QString() << groupIsEmpty;
    QTest::newRow("both empty") << empty << empty << groupIsEmpty;
}

void tst_IniFileManagerGroups::emptyNamesWriteNothing()
{
    QFETCH(QString, group);
    QFETCH(QString, key);
    QFETCH(QString, warning);
    const QByteArray content = "a=1\n[Net]\n=5\na=1\n";
    writeIni(content);
    expectIniWarning(warning);
    expectIniWarning(warning);
    {
        IniFileManager manager(iniFile(), nullptr);
        manager.setValue(group, key, 2);
        manager.removeValue(group, key);
    }
    QCOMPARE(readFile(iniFile()), content);
}

void tst_IniFileManagerGroups::filterSelectsGroups_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("groups");

    const auto row = [](const char* situation, const char* filter, const char* groups) {
        QTest::newRow(situation) << QString::fromUtf8(filter) << words(groups);
    };
    row("prefix", "Sensor", "Sensor1 Sensor10 SensorA");
    row("complete name is also a prefix", "Sensor1", "Sensor1 Sensor10");
    row("end anchored", "Sensor1$", "Sensor1");
    row("anything before", ".*1", "Motor1 Sensor1 Sensor10 a1b sensor1");
    row("middle of a name", "otor", "");
    row("any character", "Sensor.0", "Sensor10");
    row("any character is required", "Sensor.", "Sensor1 Sensor10 SensorA");
    row("character class", "Sensor[0-9]", "Sensor1 Sensor10");
    row("escaped dot", "a\\.b", "a.b");
    row("not escaped", "a.b", "a.b a1b");
    row("empty filter", "", "Motor1 Sensor1 Sensor10 SensorA a.b a1b line\nend sensor1 xSensor");
    row("line feed in the name", "line", "line\nend");
    row("backslash at the end escapes the appended text", "Sensor1\\", "Sensor1 Sensor10");
    row("different case", "sensor", "sensor1");
    row("filter with case-insensitive option", "(?i)sensor", "Sensor1 Sensor10 SensorA sensor1");
    row("alternation: the anchor holds for the first branch only", "Motor|Sensor",
        "Motor1 Sensor1 Sensor10 SensorA xSensor");
    row("alternation in a group", "(?:Motor|Sensor)", "Motor1 Sensor1 Sensor10 SensorA");
    row("empty branch", "Motor|",
        "Motor1 Sensor1 Sensor10 SensorA a.b a1b line\nend sensor1 xSensor");
    row("nothing matches", "None", "");
    row("quantifier binds to the anchored text", "Sensor1?", "Sensor1 Sensor10 SensorA");
}

void tst_IniFileManagerGroups::filterSelectsGroups()
{
    QFETCH(QString, filter);
    QFETCH(QStringList, groups);
    writeIni("top=1\n[xSensor]\nk=1\n[Sensor10]\nk=1\n[sensor1]\nk=1\n[SensorA]\nk=1\n"
             "[Sensor1]\nk=1\n[Motor1]\nk=1\n[a1b]\nk=1\n[a.b]\nk=1\n[line%0Aend]\nk=1\n");
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getGroups(filter), groups);
}

void tst_IniFileManagerGroups::invalidFilterSelectsNothing()
{
    writeIni("[A]\nk=1\n[B]\nk=1\n");
    const IniFileManager manager(iniFile(), nullptr);
    // Qt's own warning, once per group.
    const QString warning = "QString::contains: invalid QRegularExpression object";
    messages().expect(QtWarningMsg, warning);
    messages().expect(QtWarningMsg, warning);
    QCOMPARE(manager.getGroups(QStringLiteral("(")), QStringList());
}

void tst_IniFileManagerGroups::filterThatExceedsTheMatchLimitSelectsNothing()
{
    // Only the group whose match takes too many steps is omitted, without a message.
    writeIni("[aab]\nk=1\n[" + QByteArray(60, 'a') + "!b]\nk=1\n[ab]\nk=1\n");
    const IniFileManager manager(iniFile(), nullptr);
    const CpuTime time;
    QCOMPARE(manager.getGroups(QStringLiteral("(a+)+b")), words("aab ab"));
    QCOMPARE(manager.getGroups(QStringLiteral("(a+)+(b|!)")).size(), 3);
    QVERIFY2(time.seconds() < 30, qPrintable(QString::number(time.seconds())));
}

void tst_IniFileManagerGroups::containsGroupComparesExactly_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<bool>("contained");

    const auto row = [](const char* situation, const char* group, bool contained) {
        QTest::newRow(situation) << QString::fromUtf8(group) << contained;
    };
    row("group", "Net", true);
    row("different case", "net", false);
    row("part of a name", "Ne", false);
    row("missing group", "None", false);
    row("top-level key", "top", false);
    row("subgroup", "Sub", false);
    row("path of a subgroup", "Net/Sub", false);
    row("trailing slash", "Net/", false);
    row("pattern", "N.t", false);
    row("General", "General", false);
    row("empty", "", false);
    row("section without a key", "Empty", false);
}

void tst_IniFileManagerGroups::containsGroupComparesExactly()
{
    QFETCH(QString, group);
    QFETCH(bool, contained);
    writeIni("top=1\n[Net]\nPort=1\nSub\\x=1\n[Empty]\n");
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.containsGroup(group), contained);
}

void tst_IniFileManagerGroups::childKeysAreListed_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QStringList>("keys");

    const auto row = [](const char* situation, const char* group, const char* keys) {
        QTest::newRow(situation) << QString::fromUtf8(group) << words(keys);
    };
    row("sorted, no subgroups", "Net", "Name Port address");
    row("subgroup", "Net/Sub", "deep");
    row("extra slashes", "//Net//Sub/", "deep");
    row("empty group: top level", "", "top");
    row("only slashes: top level", "//", "top");
    row("missing group", "None", "");
    row("different case", "net", "");
    row("key as a group", "Net/Port", "");
    row("General", "General", "");
}

void tst_IniFileManagerGroups::childKeysAreListed()
{
    QFETCH(QString, group);
    QFETCH(QStringList, keys);
    writeIni("top=1\n[Net]\naddress=1\nPort=1\nName=1\nSub\\deep=1\n");
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getChildKeys(group), keys);
    QCOMPARE(QStringList(manager.getGroupValues(group).keys()), keys);
}

void tst_IniFileManagerGroups::groupValuesAreReturned_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QVariantMap>("values");

    const QString one = "1";
    QTest::newRow("values of all types")
        << "Net"
        << QVariantMap{
               {"Port", "80"}, {"List", words("a b")}, {"Nothing", QVariant()}, {"Word", "x y"}};
    QTest::newRow("subgroup") << "Net/Sub" << QVariantMap{{"deep", one}};
    QTest::newRow("empty group: top level") << QString() << QVariantMap{{"top", one}};
    QTest::newRow("missing group") << "None" << QVariantMap();
    QTest::newRow("group with subgroups only") << "Deep" << QVariantMap();
}

void tst_IniFileManagerGroups::groupValuesAreReturned()
{
    QFETCH(QString, group);
    QFETCH(QVariantMap, values);
    writeIni("top=1\n[Net]\nPort=80\nList=a,b\nNothing=@Invalid()\nWord=x y\nSub\\deep=1\n"
             "[Deep]\nSub\\x=1\n");
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getGroupValues(group), values);
}

void tst_IniFileManagerGroups::groupValuesWithNamelessKey()
{
    writeIni("[Net]\n=5\nPort=80\n");
    const IniFileManager manager(iniFile(), nullptr);
    expectIniWarning("Key is empty!")
        .function("QVariant IniFileManager::getValue(const QString&, const QString&, const "
                  "QVariant&) const");
    QCOMPARE(manager.getGroupValues("Net"), (QVariantMap{{QString(), QVariant()}, {"Port", "80"}}));
}

void tst_IniFileManagerGroups::groupValuesOfSectionsWithCommonKeys()
{
    // "A/B/k" is in two sections, and the one that is parsed last wins. A third section, which
    // sorts between its group and the key, hides the second from a look-up of the key alone.
    writeIni("[A/B]\nk=1\nl=2\n[A]\nB\\k=3\n[A/B/a]\nx=1\n");
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getGroupValues(QStringLiteral("A/B")), (QVariantMap{{"k", "3"}, {"l", "2"}}));
}

void tst_IniFileManagerGroups::groupValuesOfSectionsOnThreeLevels()
{
    // Each look-up parses one more section, and the last section has the last key.
    writeIni("[A/B/C]\nk=1\nl=2\n[A/B]\nC\\k=3\n[A]\nB\\C\\l=4\n[A/B/C/a]\nx=1\n");
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getGroupValues(QStringLiteral("A/B/C")),
             (QVariantMap{{"k", "3"}, {"l", "4"}}));
}

void tst_IniFileManagerGroups::singlePathLookUpWouldFindAnotherValue()
{
    // The top level is parsed and has a key "A/k". Section [A] is not parsed, and a look-up of the
    // path does not find its "k", because [A/B] sorts between them.
    writeIni("A\\k=top level\n[A]\nk=section\n[A/B]\nx=1\n");
    const QString path = "A/k";
    QSettings settings(copyOfIniFile(), QSettings::IniFormat);
    QVERIFY(!settings.contains("none"));
    QCOMPARE(settings.value(path), QVariant(QStringLiteral("top level")));

    IniFileManager manager(iniFile(), nullptr);
    QVERIFY(!manager.containsGeneral("none"));
    QCOMPARE(manager.getValue(QStringLiteral("A"), QStringLiteral("k"), QVariant()),
             QVariant(QStringLiteral("section")));
}

void tst_IniFileManagerGroups::everyCallReturnsToTheTopLevel()
{
    writeIni("top=1\n[Net]\nPort=80\n");
    IniFileManager manager(iniFile(), nullptr);
    const QString net = "Net";
    const QString port = "Port";
    const auto isAtTopLevel = [&manager] {
        return manager.getGroups() == words("Net") && manager.getGeneralChildKeys() == words("top");
    };

    manager.setValue(net, port, 81);
    QVERIFY(isAtTopLevel());
    manager.setValue(net, "Name", 1);
    manager.removeValue(net, "Name");
    QVERIFY(isAtTopLevel());
    manager.contains(net, port);
    QVERIFY(isAtTopLevel());
    manager.getValue(net, port, 0);
    QVERIFY(isAtTopLevel());
    expectIniWarning("Key \"none\" not found in Group \"Net\" !");
    manager.getValue(net, "none", 0);
    QVERIFY(isAtTopLevel());
    manager.getChildKeys(net);
    QVERIFY(isAtTopLevel());
    manager.getGroupValues(net);
    QVERIFY(isAtTopLevel());
}

QTEST_GUILESS_MAIN(tst_IniFileManagerGroups)
#include "tst_IniFileManagerGroups.moc"
