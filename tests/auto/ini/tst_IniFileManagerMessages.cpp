#include "IniFileManager.h"
#include "IniTestCase.h"

#include <functional>

// A call that warns once, and its result; an invalid variant if the function returns nothing.
using WarningCall = std::function<QVariant(IniFileManager&)>;
Q_DECLARE_METATYPE(WarningCall)

// Tests every message of an object: its text and context, the result of the call, and that a
// message handler may use the object.
class tst_IniFileManagerMessages : public IniTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void callsLogOneWarning_data();
    void callsLogOneWarning();
    void handlerUsesTheObject_data();
    void handlerUsesTheObject();
    void handlerWritesThroughTheObject();

private:
    static QByteArray content()
    {
        return "top=1\nword=abc\n[Net]\nName=eighty\nPort=8080\nPosition=-1\n[Z]\nk=1\nPosition="
               "1\n";
    }
};

void tst_IniFileManagerMessages::callsLogOneWarning_data()
{
    QTest::addColumn<WarningCall>("call");
    QTest::addColumn<QString>("items");
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QVariant>("result");

    const auto row = [](const char* situation, const WarningCall& call, const char* items,
                        const char* signature, const QVariant& result) {
        QTest::newRow(situation) << call << QString::fromLatin1(items) << QByteArray(signature)
                                 << result;
    };
    const QString net = "Net";
    const QString name = "Name";
    const QString none = "none";
    const QString word = "word";

    const char setGeneralValue[] =
        "void IniFileManager::setGeneralValue(const QString&, const QVariant&)";
    const char removeGeneralValue[] = "void IniFileManager::removeGeneralValue(const QString&)";
    const char containsGeneral[] = "bool IniFileManager::containsGeneral(const QString&)";
    const char getGeneralValue[] =
        "QVariant IniFileManager::getGeneralValue(const QString&, const QVariant&) const";
    const char getGeneralValueInteger[] =
        "int IniFileManager::getGeneralValueInteger(const QString&, int) const";
    const char setValue[] =
        "void IniFileManager::setValue(const QString&, const QString&, const QVariant&)";
    const char removeValue[] = "void IniFileManager::removeValue(const QString&, const QString&)";
    const char contains[] = "bool IniFileManager::contains(const QString&, const QString&) const";
    const char getValue[] =
        "QVariant IniFileManager::getValue(const QString&, const QString&, const QVariant&) const";
    const char getValueInteger[] =
        "int IniFileManager::getValueInteger(const QString&, const QString&, int) const";

    const char searchIndex[] = "bool IniFileManager::searchIndex(int, int&) const";
    const char getIndexedInteger[] =
        "int IniFileManager::getValueInteger(int, const QString&, int) const";
    const char getIndexedString[] =
        "QString IniFileManager::getValueString(int, const QString&, const QString&) const";
    const char getIndexedBool[] =
        "bool IniFileManager::getValueBool(int, const QString&, bool) const";

    const char keyIsEmpty[] = "Key is empty!";
    const char groupIsEmpty[] = "Group is empty!";
    const char notInGeneral[] = "Key \"none\" not found in section 'General'!";
    const char notInGroup[] = "Key \"none\" not found in Group \"Net\" !";

    row(
        "setGeneralValue, empty key",
        [](IniFileManager& manager) {
            manager.setGeneralValue(QString(), 1);
            return QVariant();
        },
        keyIsEmpty, setGeneralValue, QVariant());
    row(
        "removeGeneralValue, empty key",
        [](IniFileManager& manager) {
            manager.removeGeneralValue(QString());
            return QVariant();
        },
        keyIsEmpty, removeGeneralValue, QVariant());
    row(
        "containsGeneral, empty key",
        [](IniFileManager& manager) { return QVariant(manager.containsGeneral(QString())); },
        keyIsEmpty, containsGeneral, false);
    row(
        "getGeneralValue, empty key",
        [](IniFileManager& manager) { return manager.getGeneralValue(QString(), 7); }, keyIsEmpty,
        getGeneralValue, 7);
    row(
        "getGeneralValueInteger, empty key",
        [](IniFileManager& manager) {
            return QVariant(manager.getGeneralValueInteger(QString(), 7));
        },
        keyIsEmpty, getGeneralValue, 7);
    row(
        "getGeneralValueString, empty key",
        [name](IniFileManager& manager) {
            return QVariant(manager.getGeneralValueString(QString(), name));
        },
        keyIsEmpty, getGeneralValue, name);
    row(
        "getGeneralValueBool, empty key",
        [](IniFileManager& manager) {
            return QVariant(manager.getGeneralValueBool(QString(), true));
        },
        keyIsEmpty, getGeneralValue, true);
    row(
        "getGeneralValue, missing key",
        [none](IniFileManager& manager) { return manager.getGeneralValue(none, 7); }, notInGeneral,
        getGeneralValue, 7);
    row(
        "getGeneralValueInteger, missing key",
        [none](IniFileManager& manager) {
            return QVariant(manager.getGeneralValueInteger(none, 7));
        },
        notInGeneral, getGeneralValue, 7);
    row(
        "getGeneralValueInteger, not a number",
        [word](IniFileManager& manager) {
            return QVariant(manager.getGeneralValueInteger(word, 7));
        },
        "Conversion failed: QVariant(QString, \"abc\")", getGeneralValueInteger, 7);

    row(
        "setValue, empty group",
        [name](IniFileManager& manager) {
            manager.setValue(QString(), name, 1);
            return QVariant();
        },
        groupIsEmpty, setValue, QVariant());
    row(
        "setValue, empty key",
        [net](IniFileManager& manager) {
            manager.setValue(net, QString(), 1);
            return QVariant();
        },
        keyIsEmpty, setValue, QVariant());
    row(
        "removeValue, empty group",
        [name](IniFileManager& manager) {
            manager.removeValue(QString(), name);
            return QVariant();
        },
        groupIsEmpty, removeValue, QVariant());
    row(
        "removeValue, empty key",
        [net](IniFileManager& manager) {
            manager.removeValue(net, QString());
            return QVariant();
        },
        keyIsEmpty, removeValue, QVariant());
    row(
        "contains, empty key",
        [net](IniFileManager& manager) { return QVariant(manager.contains(net, QString())); },
        keyIsEmpty, contains, false);
    row(
        "getValue, empty key",
        [net](IniFileManager& manager) { return manager.getValue(net, QString(), 7); }, keyIsEmpty,
        getValue, 7);
    row(
        "getValueInteger, empty key",
        [net](IniFileManager& manager) {
            return QVariant(manager.getValueInteger(net, QString(), 7));
        },
        keyIsEmpty, getValue, 7);
    row(
        "getValueString, empty key",
        [net, name](IniFileManager& manager) {
            return QVariant(manager.getValueString(net, QString(), name));
        },
        keyIsEmpty, getValue, name);
    row(
        "getValueBool, empty key",
        [net](IniFileManager& manager) {
            return QVariant(manager.getValueBool(net, QString(), true));
        },
        keyIsEmpty, getValue, true);
    row(
        "getValue, missing key",
        [net, none](IniFileManager& manager) { return manager.getValue(net, none, 7); }, notInGroup,
        getValue, 7);
    row(
        "getValueInteger, missing key",
        [net, none](IniFileManager& manager) {
            return QVariant(manager.getValueInteger(net, none, 7));
        },
        notInGroup, getValue, 7);
    row(
        "getValueInteger, not a number",
        [net, name](IniFileManager& manager) {
            return QVariant(manager.getValueInteger(net, name, 7));
        },
        "Conversion failed: QVariant(QString, \"eighty\")", getValueInteger, 7);

    // Of the two groups, one has Position -1 and one has 1.
    row(
        "searchIndex, too high",
        [](IniFileManager& manager) {
            int groupIndex = 0;
            return QVariant(manager.searchIndex(2, groupIndex));
        },
        "Invalid external index!", searchIndex, false);
    struct Miss
    {
        int externalIndex;
        const char* warning;
    };
    const Miss misses[] = {{2, "Invalid group index!"}, {0, "Index not found in group!"}};
    for (const Miss& miss : misses) {
        const int index = miss.externalIndex;
        const auto situation = [&miss](const char* getter) {
            return QByteArray(getter) + " at an index, " + miss.warning;
        };
        row(
            situation("getValueInteger"),
            [index, name](IniFileManager& manager) {
                return QVariant(manager.getValueInteger(index, name, 7));
            },
            miss.warning, getIndexedInteger, 7);
        row(
            situation("getValueString"),
            [index, name](IniFileManager& manager) {
                return QVariant(manager.getValueString(index, name, name));
            },
            miss.warning, getIndexedString, name);
        row(
            situation("getValueBool"),
            [index, name](IniFileManager& manager) {
                return QVariant(manager.getValueBool(index, name, true));
            },
            miss.warning, getIndexedBool, true);
    }
}

void tst_IniFileManagerMessages::callsLogOneWarning()
{
    QFETCH(WarningCall, call);
    QFETCH(QString, items);
    QFETCH(QByteArray, signature);
    QFETCH(QVariant, result);
    writeIni(content());
    expectIniWarning(items).function(signature.constData());
    {
        IniFileManager manager(iniFile(), nullptr);
        const QVariant actual = call(manager);
        QCOMPARE(actual.userType(), result.userType());
        QCOMPARE(actual, result);
    }
    QCOMPARE(readFile(iniFile()), content());
}

void tst_IniFileManagerMessages::handlerUsesTheObject_data()
{
    callsLogOneWarning_data();
}

void tst_IniFileManagerMessages::handlerUsesTheObject()
{
    QFETCH(WarningCall, call);
    QFETCH(QString, items);
    QFETCH(QVariant, result);
    writeIni(content());
    expectIniWarning(items);
    IniFileManager manager(iniFile(), nullptr);

    // These calls fail if a group is still entered, and deadlock if the mutex is not recursive.
    int handled = 0;
    messages().setObserver([&manager, &handled](const Message&) {
        ++handled;
        const QString net = "Net";
        const QString port = "Port";
        QCOMPARE(manager.getGroups(), words("Net Z"));
        QCOMPARE(manager.getCount(), 2);
        QCOMPARE(manager.getGroups(QStringLiteral("N")), words("Net"));
        QVERIFY(manager.containsGroup(net));
        QCOMPARE(manager.getValueInteger(net, port, 0), 8080);
        QVERIFY(manager.contains(net, port));
        QCOMPARE(manager.getChildKeys(net), words("Name Port Position"));
        QCOMPARE(manager.getGroupValues(net).size(), 3);
        QCOMPARE(manager.getGeneralValueInteger(QStringLiteral("top"), 0), 1);
        QVERIFY(manager.containsGeneral("top"));
        QCOMPARE(manager.getGeneralChildKeys(), words("top word"));
        int groupIndex = -1;
        QVERIFY(manager.searchIndex(1, groupIndex));
        QCOMPARE(groupIndex, 1);
        QCOMPARE(manager.getValueInteger(-1, port, 0), 8080);
        manager.sync();
    });
    const QVariant actual = call(manager);
    messages().setObserver(nullptr);

    QCOMPARE(handled, 1);
    QCOMPARE(actual, result);
    QCOMPARE(manager.getGroups(), words("Net Z"));
}

void tst_IniFileManagerMessages::handlerWritesThroughTheObject()
{
    writeIni(content());
    IniFileManager manager(iniFile(), nullptr);
    const QString net = "Net";
    const QString none = "none";
    // The handler adds the missing key: the current look-up still fails, the next one finds the
    // key.
    messages().setObserver([&](const Message&) {
        manager.setValue(net, none, 9);
        manager.setGeneralValue(none, 10);
        manager.removeValue("Z", "k");
        manager.removeValue("Z", "Position");
    });
    expectIniWarning("Key \"none\" not found in Group \"Net\" !");
    QCOMPARE(manager.getValueInteger(net, none, 7), 7);
    messages().setObserver(nullptr);

    QCOMPARE(manager.getValueInteger(net, none, 7), 9);
    QCOMPARE(manager.getGeneralValueInteger(none, 7), 10);
    QCOMPARE(manager.getGroups(), words("Net"));
}

QTEST_GUILESS_MAIN(tst_IniFileManagerMessages)
#include "tst_IniFileManagerMessages.moc"
