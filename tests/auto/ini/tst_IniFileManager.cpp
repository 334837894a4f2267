#include "ChildProcess.h"
#include "IniFileManager.h"
#include "IniTestCase.h"

#include <limits>
#include <type_traits>

#include <dlfcn.h>

static_assert(!std::is_polymorphic<IniFileManager>::value, "no virtual functions");
static_assert(!std::is_copy_constructible<IniFileManager>::value &&
                  !std::is_copy_assignable<IniFileManager>::value,
              "owns settings and a mutex");
static_assert(sizeof(IniFileManager) == sizeof(QSettings) + sizeof(QMutex),
              "the layout is published: the settings, then the mutex");
static_assert(std::is_same<decltype(&IniFileManager::containsGeneral),
                           bool (IniFileManager::*)(const QString&)>::value,
              "the published signature is not const");

namespace {

int syncs = 0;

} // namespace

// Interposes Qt's function, except for calls from Qt itself.
void QSettings::sync()
{
    ++syncs;
    using Function = void (*)(QSettings*);
    static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "_ZN9QSettings4syncEv"));
    next(this);
}

class tst_IniFileManager : public IniTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void missingFileWarnsOnce_data();
    void missingFileWarnsOnce();
    void emptyPathWarns();
    void relativePathIsLoggedAsGiven();
    void existingPathOpensWithoutWarning_data();
    void existingPathOpensWithoutWarning();
    void openingDoesNotChangeTheFile();
    void unreadableFileReadsAsEmpty();
    void firstWriteCreatesTheFile_data();
    void firstWriteCreatesTheFile();

    void codecDecodesValues_data();
    void codecDecodesValues();
    void codecEncodesValues_data();
    void codecEncodesValues();

    void destructorWritesToTheFile();
    void syncWritesToTheFile();
    void syncReadsChangesOfOtherWriters();
    void eventLoopWritesToTheFile();
    void eventLoopWritesThroughTheManager();
    void managersOfOnePathShareUnsyncedWrites();

    void logInfoNamesTheAbsolutePath_data();
    void logInfoNamesTheAbsolutePath();
    void groupsAreListed_data();
    void groupsAreListed();

    void gettersReturnThePresentValue_data();
    void gettersReturnThePresentValue();
    void missingKeyReturnsDefault_data();
    void missingKeyReturnsDefault();
    void defaultsKeepTheirType_data();
    void defaultsKeepTheirType();
    void typedDefaultsAreReturned();
    void emptyKeyReturnsDefault_data();
    void emptyKeyReturnsDefault();

    void setGeneralValueWritesTheKey_data();
    void setGeneralValueWritesTheKey();
    void roundTripKeepsOnlyIniTypes_data();
    void roundTripKeepsOnlyIniTypes();
    void unsyncedListOfOneConverts();
    void removeGeneralValueRemovesTheKey_data();
    void removeGeneralValueRemovesTheKey();
    void containsGeneralFindsKeys_data();
    void containsGeneralFindsKeys();
    void generalChildKeysAreListed_data();
    void generalChildKeysAreListed();
};

void tst_IniFileManager::missingFileWarnsOnce_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");

    const auto row = [](const char* situation, const QString& name, const QString& shown) {
        QTest::newRow(situation) << name << shown;
    };
    row("missing file", "none.ini", "none.ini");
    row("missing directory", "none/none.ini", "none/none.ini");
    row("space in the name", "a b.ini", "a b.ini");
    row("quote in the name", "a\"b.ini", "a\\\"b.ini");
    row("dangling link", "link.ini", "link.ini");
}

void tst_IniFileManager::missingFileWarnsOnce()
{
    QFETCH(QString, name);
    QFETCH(QString, shown);
    QVERIFY(QFile::link(path("nowhere"), path("link.ini")));
    messages()
        .expectWarning("IniFileManager",
                       QStringLiteral("Can't find specified ini-file: \"%1\"").arg(path(shown)))
        .function("IniFileManager::IniFileManager(const QString&, const char*)");
    {
        const IniFileManager manager(path(name), nullptr);
        QCOMPARE(manager.getGroups(), QStringList());
        QCOMPARE(manager.getGeneralChildKeys(), QStringList());
        QVERIFY(!QFile::exists(path(name)));
    }
    QVERIFY(!QFile::exists(path(name)));
    QVERIFY(!QFile::exists(path("none")));
}

void tst_IniFileManager::emptyPathWarns()
{
    messages().expectWarning("IniFileManager", "Can't find specified ini-file: \"\"");
    messages().expectWarning("IniFileManager", "\"Ini-File ():\" Key is empty!");
    const IniFileManager manager(QString(), nullptr);
    QCOMPARE(manager.getGeneralValue(QString(), 1), QVariant(1));
}

void tst_IniFileManager::relativePathIsLoggedAsGiven()
{
    // The working directory of the tests has no such file.
    const QString name = "tst_IniFileManager-none.ini";
    messages().expectWarning("IniFileManager",
                             QStringLiteral("Can't find specified ini-file: \"%1\"").arg(name));
    messages().expectWarning("IniFileManager", QStringLiteral("\"Ini-File (%1):\" Key is empty!")
                                                   .arg(QDir::current().absoluteFilePath(name)));
    const IniFileManager manager(name, nullptr);
    manager.getGeneralValue(QString(), 1);
}

void tst_IniFileManager::existingPathOpensWithoutWarning_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("file") << "settings.ini";
    QTest::newRow("empty file") << "empty.ini";
    QTest::newRow("directory") << "directory.ini";
    QTest::newRow("link to a file") << "link.ini";
}

void tst_IniFileManager::existingPathOpensWithoutWarning()
{
    QFETCH(QString, name);
    writeIni("key=1\n");
    writeFile("empty.ini", QByteArray());
    QVERIFY(QDir().mkdir(path("directory.ini")));
    QVERIFY(QFile::link(iniFile(), path("link.ini")));

    IniFileManager manager(path(name), nullptr);
    const bool hasContent = QFileInfo(path(name)).canonicalFilePath() == iniFile();
    QCOMPARE(manager.containsGeneral(QStringLiteral("key")), hasContent);
}

void tst_IniFileManager::openingDoesNotChangeTheFile()
{
    const QByteArray content = "color=%23ff0000\r\nlist=a,b,c\n;note, %23\n[Z]\n[A]\nb=1\na=2";
    writeIni(content);
    {
        IniFileManager manager(iniFile(), nullptr);
        QCOMPARE(manager.getGeneralValue(QStringLiteral("color"), 0),
                 QVariant(QStringLiteral("%23ff0000")));
        QCOMPARE(manager.getGeneralValue(QStringLiteral("list"), 0), QVariant(words("a b c")));
        manager.sync();
    }
    QCOMPARE(readFile(iniFile()), content);
}

void tst_IniFileManager::unreadableFileReadsAsEmpty()
{
    const QByteArray content = "key=1\n[Net]\nPort=80\n";
    writeIni(content);
    QVERIFY(QFile::setPermissions(iniFile(), QFileDevice::Permissions()));
    QVERIFY(QFile::setPermissions(directory(), QFileDevice::Permissions(0x7777)));

    const ChildResult result = ChildProcess::runAsOrdinaryUser([this] {
        IniFileManager manager(iniFile(), nullptr);
        const bool isEmpty = manager.getGroups().isEmpty() && manager.getCount() == 0 &&
                             manager.getGeneralValueInteger("key", 7) == 7;
        manager.setGeneralValue("key", 2);
        manager.sync();
        return isEmpty ? 0 : 1;
    });
    QVERIFY(result.exited);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(QString::fromLocal8Bit(result.output),
             QStringLiteral("\"Ini-File (%1):\" Key \"key\" not found in section 'General'!\n")
                 .arg(iniFile()));

    QVERIFY(QFile::setPermissions(iniFile(), QFileDevice::ReadOwner));
    QCOMPARE(readFile(iniFile()), content);
}

void tst_IniFileManager::firstWriteCreatesTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing file") << "none.ini";
    QTest::newRow("missing directory") << "none/deeper/none.ini";
}

void tst_IniFileManager::firstWriteCreatesTheFile()
{
    QFETCH(QString, name);
    messages().expectWarning(
        "IniFileManager", QStringLiteral("Can't find specified ini-file: \"%1\"").arg(path(name)));
    IniFileManager manager(path(name), nullptr);
    manager.setGeneralValue("key", 5);
    QVERIFY(!QFile::exists(path(name)));
    manager.sync();
    QCOMPARE(readFile(path(name)), QByteArray("[General]\nkey=5\n"));
}

void tst_IniFileManager::codecDecodesValues_data()
{
    QTest::addColumn<QByteArray>("codec");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("value");

    const QByteArray utf8 = "\xc3\xa4\xe2\x82\xac"; // a with diaeresis, euro sign
    const QString decoded = QString::fromUtf8(utf8);
    const QString asLatin1 = QString::fromLatin1(utf8);
    QTest::newRow("UTF-8") << QByteArray("UTF-8") << utf8 << decoded;
    QTest::newRow("name in lowercase") << QByteArray("utf-8") << utf8 << decoded;
    QTest::newRow("Windows code page")
        << QByteArray("windows-1252") << QByteArray("\xe4\x80") << decoded;
    QTest::newRow("Latin-1") << QByteArray("ISO-8859-1") << utf8 << asLatin1;
    QTest::newRow("no codec") << QByteArray() << utf8 << asLatin1;
    QTest::newRow("unknown codec") << QByteArray("no-such-codec") << utf8 << asLatin1;
    QTest::newRow("empty name") << QByteArray("") << utf8 << asLatin1;
    QTest::newRow("escapes, no codec") << QByteArray() << QByteArray("\\xe4\\x20ac") << decoded;
}

void tst_IniFileManager::codecDecodesValues()
{
    QFETCH(QByteArray, codec);
    QFETCH(QByteArray, text);
    QFETCH(QString, value);
    writeIni("key=" + text + "\n[Group]\nkey=" + text + "\n");
    const IniFileManager manager(iniFile(), codec.isNull() ? nullptr : codec.constData());
    const QString key = "key";
    QCOMPARE(manager.getGeneralValueString(key, QString()), value);
    QCOMPARE(manager.getValueString(QStringLiteral("Group"), key, QString()), value);
}

void tst_IniFileManager::codecEncodesValues_data()
{
    QTest::addColumn<QByteArray>("codec");
    QTest::addColumn<QByteArray>("content");

    const QByteArray escaped = "[G%E4]\n%E4%U20AC=\\xe4\\x20ac\n";
    // Names of keys and sections are escaped with any codec.
    QTest::newRow("UTF-8") << QByteArray("UTF-8")
                           << QByteArray("[G%E4]\n%E4%U20AC=\xc3\xa4\xe2\x82\xac\n");
    QTest::newRow("no codec") << QByteArray() << escaped;
    QTest::newRow("unknown codec") << QByteArray("no-such-codec") << escaped;
}

void tst_IniFileManager::codecEncodesValues()
{
    QFETCH(QByteArray, codec);
    QFETCH(QByteArray, content);
    writeIni(QByteArray());
    const char* const codecName = codec.isNull() ? nullptr : codec.constData();
    const QString group = QString::fromUtf8("G\xc3\xa4");
    const QString key = QString::fromUtf8("\xc3\xa4\xe2\x82\xac");
    {
        IniFileManager manager(iniFile(), codecName);
        manager.setValue(group, key, key);
    }
    QCOMPARE(readFile(iniFile()), content);
    const IniFileManager manager(copyOfIniFile(), codecName);
    QCOMPARE(manager.getValueString(group, key, QString()), key);
}

void tst_IniFileManager::destructorWritesToTheFile()
{
    writeIni("key=1\n");
    {
        IniFileManager manager(iniFile(), nullptr);
        manager.setGeneralValue("key", 2);
        QCOMPARE(readFile(iniFile()), QByteArray("key=1\n"));
    }
    QCOMPARE(readFile(iniFile()), QByteArray("[General]\nkey=2\n"));
}

void tst_IniFileManager::syncWritesToTheFile()
{
    writeIni("key=1\n");
    IniFileManager manager(iniFile(), nullptr);
    manager.setGeneralValue("key", 2);
    manager.sync();
    QCOMPARE(readFile(iniFile()), QByteArray("[General]\nkey=2\n"));
}

void tst_IniFileManager::syncReadsChangesOfOtherWriters()
{
    writeIni("key=1\n");
    IniFileManager manager(iniFile(), nullptr);
    const QString key = "key";
    QCOMPARE(manager.getGeneralValueInteger(key, 0), 1);
    writeIni("key=1234\n[Net]\n");
    QCOMPARE(manager.getGeneralValueInteger(key, 0), 1);
    manager.sync();
    QCOMPARE(manager.getGeneralValueInteger(key, 0), 1234);
}

void tst_IniFileManager::eventLoopWritesToTheFile()
{
    writeIni("key=1\n");
    IniFileManager manager(iniFile(), nullptr);
    manager.setGeneralValue("key", 2);
    QTRY_COMPARE(readFile(iniFile()), QByteArray("[General]\nkey=2\n"));
    // A second time: the first flush must clear the flag of a pending flush.
    manager.setValue("Net", "Port", 80);
    QTRY_COMPARE(readFile(iniFile()), QByteArray("[General]\nkey=2\n\n[Net]\nPort=80\n"));
    manager.removeGeneralValue("key");
    QTRY_COMPARE(readFile(iniFile()), QByteArray("[Net]\nPort=80\n"));
    manager.removeValue("Net", "Port");
    QTRY_COMPARE(readFile(iniFile()), QByteArray());
}

// Unlike Qt's flush, the manager's flush is synchronized with writes in other threads.
void tst_IniFileManager::eventLoopWritesThroughTheManager()
{
    writeIni("key=1\n");
    IniFileManager manager(iniFile(), nullptr);
    manager.setGeneralValue(QStringLiteral("key"), 2);
    syncs = 0;
    QCoreApplication::sendPostedEvents();
    QCOMPARE(syncs, 1);
    QCOMPARE(readFile(iniFile()), QByteArray("[General]\nkey=2\n"));
    // Other events are passed on to the settings object, which does not handle this one.
    QEvent other(QEvent::LanguageChange);
    QVERIFY(!QCoreApplication::sendEvent(reinterpret_cast<QSettings*>(&manager), &other));
    QCOMPARE(syncs, 1);
}

void tst_IniFileManager::managersOfOnePathShareUnsyncedWrites()
{
    const QByteArray content = "key=1\n[Net]\nPort=80\nName=a\n";
    writeIni(content);
    const QString net = "Net";
    const QString port = "Port";
    IniFileManager writer(iniFile(), nullptr);
    const IniFileManager reader(iniFile(), nullptr);
    QCOMPARE(reader.getValueInteger(net, port, 0), 80);

    writer.setValue(net, port, 8080);
    writer.removeValue(net, "Name");
    writer.setGeneralValue("key", 2);
    writer.setValue("New", "x", 1);

    QCOMPARE(reader.getValue(net, port, 0), QVariant(8080));
    QCOMPARE(reader.getChildKeys(net), words("Port"));
    QCOMPARE(reader.getGeneralValueInteger(QStringLiteral("key"), 0), 2);
    QCOMPARE(reader.getGroups(), words("Net New"));
    QCOMPARE(readFile(iniFile()), content);
}

void tst_IniFileManager::logInfoNamesTheAbsolutePath_data()
{
    QTest::addColumn<QString>("constructionPath"); // %1 is the row's directory
    QTest::newRow("absolute") << "%1/settings.ini";
    QTest::newRow("relative") << "settings.ini";
    QTest::newRow("relative with a dot") << "./settings.ini";
}

void tst_IniFileManager::logInfoNamesTheAbsolutePath()
{
    QFETCH(QString, constructionPath);
    writeIni(QByteArray());
    const QString workingDirectory = QDir::currentPath();
    QVERIFY(QDir::setCurrent(directory()));
    QString logInfo;
    {
        const IniFileManager manager(constructionPath.contains(QLatin1Char('%'))
                                         ? constructionPath.arg(directory())
                                         : constructionPath,
                                     nullptr);
        logInfo = manager.getGeneralLogInfo();
    }
    QVERIFY(QDir::setCurrent(workingDirectory));
    QCOMPARE(logInfo, QStringLiteral("Ini-File (%1):").arg(iniFile()));
}

void tst_IniFileManager::groupsAreListed_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("groups");

    QTest::newRow("empty file") << QByteArray() << QStringList();
    QTest::newRow("top-level keys only") << QByteArray("a=1\n[General]\nb=2\n") << QStringList();
    QTest::newRow("General in any case")
        << QByteArray("[GENERAL]\na=1\n[general]\nb=1\n") << QStringList();
    QTest::newRow("sorted, uppercase first")
        << QByteArray("[b]\nk=1\n[a]\nk=1\n[B]\nk=1\n[A]\nk=1\n") << words("A B a b");
    QTest::newRow("section without a key") << QByteArray("[A]\n[B]\nk=1\n") << words("B");
    QTest::newRow("duplicate section")
        << QByteArray("[A]\nk=1\n[B]\nk=1\n[A]\nl=1\n") << words("A B");
    QTest::newRow("section with a slash") << QByteArray("[A/B]\nk=1\n[A/C]\nk=1\n") << words("A");
    QTest::newRow("section with a backslash") << QByteArray("[A\\B]\nk=1\n") << words("A");
    QTest::newRow("top-level key with a path") << QByteArray("A\\k=1\n") << words("A");
    QTest::newRow("escaped name") << QByteArray("[%41%20%U20AC]\nk=1\n")
                                  << QStringList(QString::fromUtf8("A \xe2\x82\xac"));
    QTest::newRow("group named General") << QByteArray("[%General]\nk=1\n") << words("General");
    QTest::newRow("section in a comment") << QByteArray(";[A]\nk=1\n") << QStringList();
    QTest::newRow("section line after a hash") << QByteArray("#[A]\nk=1\n[B]\nk=1\n") << words("B");
    QTest::newRow("nameless group") << QByteArray("[]\nk=1\n") << QStringList(QString());
}

void tst_IniFileManager::groupsAreListed()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, groups);
    writeIni(content);
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getGroups(), groups);
    QCOMPARE(manager.getCount(), groups.count());
    for (const QString& group : qAsConst(groups)) {
        QVERIFY(manager.containsGroup(group));
    }
}

void tst_IniFileManager::gettersReturnThePresentValue_data()
{
    addValueRows();
}

void tst_IniFileManager::gettersReturnThePresentValue()
{
    QFETCH(QByteArray, text);
    QFETCH(QVariant, value);
    QFETCH(QString, string);
    QFETCH(bool, truth);
    QFETCH(bool, isInteger);
    QFETCH(int, integer);
    QFETCH(QString, shown);
    writeIni("[General]\nkey=" + text + "\n");
    const IniFileManager manager(iniFile(), nullptr);
    const QString key = "key";

    const QVariant read = manager.getGeneralValue(key, 4711);
    QCOMPARE(read.userType(), value.userType());
    QCOMPARE(read, value);
    QCOMPARE(manager.getGeneralValueString(key, QStringLiteral("default")), string);
    QCOMPARE(manager.getGeneralValueBool(key, !truth), truth);
    if (!isInteger) {
        expectIniWarning("Conversion failed: " + shown)
            .function("int IniFileManager::getGeneralValueInteger(const QString&, int) const");
    }
    QCOMPARE(manager.getGeneralValueInteger(key, 4711), isInteger ? integer : 4711);
}

void tst_IniFileManager::missingKeyReturnsDefault_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("shown");

    const auto row = [](const char* situation, const char* key, const char* shown) {
        QTest::newRow(situation) << QString::fromUtf8(key) << QString::fromUtf8(shown);
    };
    row("missing key", "other", "other");
    row("different case", "Top", "Top");
    row("part of a key", "to", "to");
    row("section", "Net", "Net");
    row("key of a section", "Port", "Port");
    row("path of a key in a section", "Net/Port", "Net/Port");
    row("path that starts with General", "General/top", "General/top");
    row("trailing slash", "top/", "top/");
    row("leading slash", "/top", "/top");
    row("only a slash", "/", "/");
    row("escaped spelling", "%74op", "%74op");
    row("quote", "a\"b", "a\\\"b");
    row("backslash", "a\\b", "a\\\\b");
    row("space", " ", " ");
    row("umlaut", "\xc3\xa4", "\xc3\xa4");
}

void tst_IniFileManager::missingKeyReturnsDefault()
{
    QFETCH(QString, key);
    QFETCH(QString, shown);
    writeIni("top=1\n[Net]\nPort=80\n");
    const IniFileManager manager(iniFile(), nullptr);

    const auto expectMiss = [this, &shown] {
        expectIniWarning("Key \"" + shown + "\" not found in section 'General'!")
            .function("QVariant IniFileManager::getGeneralValue(const QString&, const QVariant&) "
                      "const");
    };
    for (int reader = 0; reader < 4; ++reader) {
        expectMiss();
    }
    QCOMPARE(manager.getGeneralValue(key, QStringLiteral("x")), QVariant(QStringLiteral("x")));
    QCOMPARE(manager.getGeneralValueInteger(key, -7), -7);
    QCOMPARE(manager.getGeneralValueString(key, QStringLiteral("x")), "x");
    QCOMPARE(manager.getGeneralValueBool(key, true), true);
}

void tst_IniFileManager::defaultsKeepTheirType_data()
{
    QTest::addColumn<QVariant>("defaultValue");
    QTest::newRow("int") << QVariant(7);
    QTest::newRow("bool") << QVariant(true);
    QTest::newRow("double") << QVariant(1.5);
    QTest::newRow("bytes") << QVariant(QByteArray("7"));
    QTest::newRow("list") << QVariant(words("a b"));
    QTest::newRow("invalid") << QVariant();
    QTest::newRow("null text") << QVariant(QString());
}

void tst_IniFileManager::defaultsKeepTheirType()
{
    QFETCH(QVariant, defaultValue);
    writeIni("[Net]\nPort=80\n");
    const IniFileManager manager(iniFile(), nullptr);
    const QString key = "none";

    expectIniWarning("Key \"none\" not found in section 'General'!");
    const QVariant general = manager.getGeneralValue(key, defaultValue);
    QCOMPARE(general.userType(), defaultValue.userType());
    QCOMPARE(general, defaultValue);

    expectIniWarning("Key \"none\" not found in Group \"Net\" !");
    const QVariant grouped = manager.getValue("Net", key, defaultValue);
    QCOMPARE(grouped.userType(), defaultValue.userType());
    QCOMPARE(grouped, defaultValue);

    expectIniWarning("Key is empty!");
    QCOMPARE(manager.getGeneralValue(QString(), defaultValue), defaultValue);
    expectIniWarning("Key is empty!");
    QCOMPARE(manager.getValue(QStringLiteral("Net"), QString(), defaultValue), defaultValue);
}

void tst_IniFileManager::typedDefaultsAreReturned()
{
    writeIni(QByteArray());
    const IniFileManager manager(iniFile(), nullptr);
    const QString key = "none";
    for (int reader = 0; reader < 5; ++reader) {
        expectIniWarning("Key \"none\" not found in section 'General'!");
    }
    QCOMPARE(manager.getGeneralValueInteger(key, std::numeric_limits<int>::min()),
             std::numeric_limits<int>::min());
    QCOMPARE(manager.getGeneralValueInteger(key, std::numeric_limits<int>::max()),
             std::numeric_limits<int>::max());
    QCOMPARE(manager.getGeneralValueString(key, QString()), QString());
    QCOMPARE(manager.getGeneralValueBool(key, false), false);
    QCOMPARE(manager.getGeneralValueBool(key, true), true);
}

void tst_IniFileManager::emptyKeyReturnsDefault_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("null") << QString();
    QTest::newRow("empty") << "";
}

void tst_IniFileManager::emptyKeyReturnsDefault()
{
    QFETCH(QString, key);
    // The file has a nameless key, which these functions must not access.
    const QByteArray content = "[General]\n=5\n";
    writeIni(content);
    {
        IniFileManager manager(iniFile(), nullptr);
        for (int call = 0; call < 7; ++call) {
            expectIniWarning("Key is empty!");
        }
        QCOMPARE(manager.getGeneralValue(key, 7), QVariant(7));
        QCOMPARE(manager.getGeneralValueInteger(key, 7), 7);
        QCOMPARE(manager.getGeneralValueString(key, QStringLiteral("x")), "x");
        QCOMPARE(manager.getGeneralValueBool(key, true), true);
        QCOMPARE(manager.containsGeneral(key), false);
        manager.setGeneralValue(key, 6);
        manager.removeGeneralValue(key);
    }
    QCOMPARE(readFile(iniFile()), content);
}

void tst_IniFileManager::setGeneralValueWritesTheKey_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("content");

    const auto row = [](const char* situation, const char* key, const char* content) {
        QTest::newRow(situation) << QString::fromUtf8(key) << QByteArray(content);
    };
    row("new key", "new", "[General]\nnew=5\ntop=1\n");
    row("existing key", "top", "[General]\ntop=5\n");
    row("different case", "Top", "[General]\nTop=5\ntop=1\n");
    row("path", "Net/Port", "[General]\ntop=1\n\n[Net]\nPort=5\n");
    row("long path", "Net/a/b", "[General]\ntop=1\n\n[Net]\na\\b=5\n");
    row("extra slashes", "/Net//Port/", "[General]\ntop=1\n\n[Net]\nPort=5\n");
    row("path that starts with General", "General/top", "[General]\ntop=1\n\n[%General]\ntop=5\n");
    row("characters to escape", "a b=%;", "[General]\na%20b%3D%25%3B=5\ntop=1\n");
    row("non-ASCII", "\xe2\x82\xac", "[General]\ntop=1\n%U20AC=5\n");
    row("only a slash", "/", "[General]\n=5\ntop=1\n");
}

void tst_IniFileManager::setGeneralValueWritesTheKey()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, content);
    writeIni("top=1\n");
    IniFileManager manager(iniFile(), nullptr);
    manager.setGeneralValue(key, 5);
    QVERIFY(manager.containsGeneral(key));
    manager.sync();
    QCOMPARE(readFile(iniFile()), content);
}

void tst_IniFileManager::roundTripKeepsOnlyIniTypes_data()
{
    QTest::addColumn<QVariant>("written");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QVariant>("read");

    const auto row = [](const char* type, const QVariant& written, const char* text,
                        const QVariant& read) {
        QTest::newRow(type) << written << QByteArray(text) << read;
    };
    row("int", 5, "5", "5");
    row("bool", true, "true", "true");
    row("double", 1.5, "1.5", "1.5");
    row("text", "a b", "a b", "a b");
    row("text with a comma", "a,b", "\"a,b\"", "a,b");
    row("text with an at sign", "@a", "@@a", "@a");
    row("lines", "a\nb", "a\\nb", "a\nb");
    row("empty text", QString(), "", QString());
    row("bytes", QByteArray("a\xff"), "@ByteArray(a\\xff)", QByteArray("a\xff"));
    row("list", words("a b"), "a, b", words("a b"));
    row("list of one", words("a"), "a", "a");
    row("empty list", QStringList(), "@Invalid()", QVariant());
    row("invalid", QVariant(), "@Invalid()", QVariant());
}

void tst_IniFileManager::roundTripKeepsOnlyIniTypes()
{
    QFETCH(QVariant, written);
    QFETCH(QByteArray, text);
    QFETCH(QVariant, read);
    writeIni(QByteArray());
    const QString key = "key";
    const QString group = "Group";
    {
        IniFileManager manager(iniFile(), nullptr);
        manager.setGeneralValue(key, written);
        manager.setValue(group, key, written);
        // A value that has not been written to the file yet keeps its type.
        QCOMPARE(manager.getGeneralValue(key, 4711), written);
        QCOMPARE(manager.getGeneralValue(key, 4711).userType(), written.userType());
    }
    QCOMPARE(readFile(iniFile()), "[General]\nkey=" + text + "\n\n[Group]\nkey=" + text + "\n");

    const IniFileManager manager(copyOfIniFile(), nullptr);
    const QVariant general = manager.getGeneralValue(key, 4711);
    const QVariant grouped = manager.getValue(group, key, 4711);
    QCOMPARE(general.userType(), read.userType());
    QCOMPARE(general, read);
    QCOMPARE(grouped.userType(), read.userType());
    QCOMPARE(grouped, read);
}

void tst_IniFileManager::unsyncedListOfOneConverts()
{
    writeIni(QByteArray());
    IniFileManager manager(iniFile(), nullptr);
    const QString key = "key";
    // A list converts to text, and therefore to a number, if it has exactly one element.
    manager.setGeneralValue(key, words("12"));
    QCOMPARE(manager.getGeneralValueString(key, QString()), QStringLiteral("12"));
    expectIniWarning("Conversion failed: QVariant(QStringList, (\"12\"))");
    QCOMPARE(manager.getGeneralValueInteger(key, 7), 7);
}

void tst_IniFileManager::removeGeneralValueRemovesTheKey_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("content");

    const auto row = [](const char* situation, const char* key, const char* content) {
        QTest::newRow(situation) << QString::fromUtf8(key) << QByteArray(content);
    };
    const char unchanged[] = "[General]\na=1\nab=2\n\n[Net]\nPort=80\nSub\\deep=1\n";
    row("key", "a", "[General]\nab=2\n\n[Net]\nPort=80\nSub\\deep=1\n");
    row("missing key", "none", unchanged);
    row("different case", "A", unchanged);
    row("key of a section", "Port", unchanged);
    row("section", "Net", "[General]\na=1\nab=2\n");
    row("path of a key", "Net/Port", "[General]\na=1\nab=2\n\n[Net]\nSub\\deep=1\n");
    row("path of a subgroup", "Net/Sub", "[General]\na=1\nab=2\n\n[Net]\nPort=80\n");
    row("extra slashes", "//ab/", "[General]\na=1\n\n[Net]\nPort=80\nSub\\deep=1\n");
    row("only a slash: everything", "/", "");
    row("only slashes: everything", "///", "");
}

void tst_IniFileManager::removeGeneralValueRemovesTheKey()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, content);
    writeIni("[General]\na=1\nab=2\n\n[Net]\nPort=80\nSub\\deep=1\n");
    {
        IniFileManager manager(iniFile(), nullptr);
        manager.removeGeneralValue(key);
    }
    QCOMPARE(readFile(iniFile()), content);
}

void tst_IniFileManager::containsGeneralFindsKeys_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("contained");

    const auto row = [](const char* situation, const char* key, bool contained) {
        QTest::newRow(situation) << QString::fromUtf8(key) << contained;
    };
    row("key before all sections", "top", true);
    row("key in General", "inner", true);
    row("invalid value", "invalid", true);
    row("missing key", "none", false);
    row("different case", "Top", false);
    row("section", "Net", false);
    row("key of a section", "Port", false);
    row("path of a key", "Net/Port", true);
    row("extra slashes", "/Net//Port/", true);
    row("path that starts with General", "General/top", false);
    row("only a slash, no nameless key", "/", false);
}

void tst_IniFileManager::containsGeneralFindsKeys()
{
    QFETCH(QString, key);
    QFETCH(bool, contained);
    writeIni("top=1\n[Net]\nPort=80\n[General]\ninner=1\ninvalid=@Invalid()\n");
    IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.containsGeneral(key), contained);
}

void tst_IniFileManager::generalChildKeysAreListed_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("keys");

    QTest::newRow("empty file") << QByteArray() << QStringList();
    QTest::newRow("sections only") << QByteArray("[Net]\nPort=1\n") << QStringList();
    QTest::newRow("sorted") << QByteArray("b=1\na=1\nB=1\n") << words("B a b");
    QTest::newRow("before all sections and in General")
        << QByteArray("b=1\n[Net]\nPort=1\n[General]\na=1\n[general]\nc=1\n") << words("a b c");
    QTest::newRow("group named General") << QByteArray("a=1\n[%General]\nb=1\n") << words("a");
    QTest::newRow("key with a path") << QByteArray("a=1\nb\\c=1\n") << words("a");
    QTest::newRow("duplicate key") << QByteArray("a=1\na=2\n") << words("a");
    QTest::newRow("comments") << QByteArray(";a=1\n#b=1\n# c\nd=1\n") << words("#b d");
    QTest::newRow("escaped key") << QByteArray("%41%20b=1\n") << QStringList("A b");
    QTest::newRow("nameless key") << QByteArray("=5\n") << QStringList(QString());
}

void tst_IniFileManager::generalChildKeysAreListed()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, keys);
    writeIni(content);
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getGeneralChildKeys(), keys);
}

QTEST_GUILESS_MAIN(tst_IniFileManager)
#include "tst_IniFileManager.moc"
