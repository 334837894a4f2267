#include "IniFileManager.h"
#include "TestCase.h"

#include <QtCore/QSemaphore>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Call = std::function<void(IniFileManager&)>;

const QString group = "Group";
const QString key = "Key";
const QString missing = "Missing";
const QString text = "Text";

// Long enough for any call that does not block, short enough for many rows.
constexpr int shortWhileInMs = 40;
constexpr int longWhileInMs = 10000;

// A thread that makes one call and signals when the call has returned.
class Caller
{
public:
    Caller(IniFileManager& manager, const Call& call)
        : m_thread([this, &manager, call] {
            call(manager);
            m_done.release();
        })
    {
    }
    ~Caller() { m_thread.join(); }

    bool isDoneWithin(int milliseconds)
    {
        if (!m_done.tryAcquire(1, milliseconds)) {
            return false;
        }
        m_done.release(); // for the next wait
        return true;
    }

private:
    QSemaphore m_done;
    std::thread m_thread;
};

// Whether a locking call blocks until the caller returns.
bool isLocked(IniFileManager& manager, std::unique_ptr<Caller>& waiter)
{
    waiter = std::make_unique<Caller>(manager, [](IniFileManager& file) { file.getCount(); });
    return !waiter->isDoneWithin(shortWhileInMs);
}

// A value that notifies a test when it is converted.
struct Probe
{
    std::function<void()> converted;

    template <typename Result>
    Result convert() const
    {
        converted();
        return Result();
    }
};

// A value that notifies a test when it is copied. It is small and movable, so a variant stores it
// inline.
class CopyProbe
{
public:
    CopyProbe() = default;
    explicit CopyProbe(const std::function<void()>& copied) : m_copied(&copied) {}
    CopyProbe(const CopyProbe& other) : m_copied(other.m_copied)
    {
        if (m_copied != nullptr) {
            (*m_copied)();
        }
    }
    CopyProbe& operator=(const CopyProbe&) = delete;

private:
    const std::function<void()>* m_copied = nullptr;
};

} // namespace

Q_DECLARE_TYPEINFO(CopyProbe, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(Call)
Q_DECLARE_METATYPE(CopyProbe)
Q_DECLARE_METATYPE(Probe)

/*
 * Tests one manager in many threads. QSettings does not support that, so these tests fail
 * immediately or crash if an operation is unguarded.
 */
class tst_IniFileManagerThreads : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void lockingCallsWait_data();
    void lockingCallsWait();
    void callsGuardTheSettings_data();
    void callsGuardTheSettings();
    void unlockedCallsDoNotWait_data();
    void unlockedCallsDoNotWait();
    void warningsAreLoggedUnderTheLock_data();
    void warningsAreLoggedUnderTheLock();
    void valuesAreConvertedUnderTheLock_data();
    void valuesAreConvertedUnderTheLock();
    void valuesAreListedUnderTheLock();
    void handlersMayCallBack_data();
    void handlersMayCallBack();
    void handlersOfManyThreadsMayCallBack();
    void groupIsNotEnteredByOtherThreads();
    void listingsAreConsistent();
    void indexedReadsAreConsistent_data();
    void indexedReadsAreConsistent();
    void noWriteIsLostBetweenFlushes_data();
    void noWriteIsLostBetweenFlushes();
    void eventLoopFlushes();
    void mixedCallsKeepTheValuesOfEachThread();

private:
    QString iniFile();
    static void addLockingRows();
    static void addWarningRows();
};

QString tst_IniFileManagerThreads::iniFile()
{
    return writeFile("file.ini", "Key=1\nText=abc\n[Group]\nKey=2\nText=abc\nPosition=-1\n");
}

// One row per call that locks the object's mutex.
void tst_IniFileManagerThreads::addLockingRows()
{
    QTest::addColumn<Call>("call");

    const auto row = [](const char* name, const Call& call) { QTest::newRow(name) << call; };
    row("getCount", [](IniFileManager& file) { file.getCount(); });
    row("setGeneralValue", [](IniFileManager& file) { file.setGeneralValue(key, 3); });
    row("removeGeneralValue", [](IniFileManager& file) { file.removeGeneralValue(key); });
    row("containsGeneral", [](IniFileManager& file) { file.containsGeneral(key); });
    row("getGeneralValue", [](IniFileManager& file) { file.getGeneralValue(key, 3); });
    row("getGeneralValueInteger",
        [](IniFileManager& file) { file.getGeneralValueInteger(key, 3); });
    row("getGeneralValueString",
        [](IniFileManager& file) { file.getGeneralValueString(key, text); });
    row("getGeneralValueBool", [](IniFileManager& file) { file.getGeneralValueBool(key, true); });
    row("getGeneralChildKeys", [](IniFileManager& file) { file.getGeneralChildKeys(); });
    row("setValue", [](IniFileManager& file) { file.setValue(group, key, 3); });
    row("removeValue", [](IniFileManager& file) { file.removeValue(group, key); });
    row("contains", [](IniFileManager& file) { file.contains(group, key); });
    row("getValue", [](IniFileManager& file) { file.getValue(group, key, 3); });
    row("getValueInteger", [](IniFileManager& file) { file.getValueInteger(group, key, 3); });
    row("getValueString", [](IniFileManager& file) { file.getValueString(group, key, text); });
    row("getValueBool", [](IniFileManager& file) { file.getValueBool(group, key, true); });
    row("getGroups with a filter", [](IniFileManager& file) { file.getGroups(text); });
    row("containsGroup", [](IniFileManager& file) { file.containsGroup(group); });
    row("getChildKeys", [](IniFileManager& file) { file.getChildKeys(group); });
    row("getGroupValues", [](IniFileManager& file) { file.getGroupValues(group); });
    row("searchIndex", [](IniFileManager& file) {
        int groupIndex = 0;
        file.searchIndex(-1, groupIndex);
    });
    row("getValueInteger, indexed", [](IniFileManager& file) { file.getValueInteger(-1, key, 3); });
    row("getValueString, indexed",
        [](IniFileManager& file) { file.getValueString(-1, key, text); });
    row("getValueBool, indexed", [](IniFileManager& file) { file.getValueBool(-1, key, true); });
}

void tst_IniFileManagerThreads::lockingCallsWait_data()
{
    addLockingRows();
}

void tst_IniFileManagerThreads::lockingCallsWait()
{
    QFETCH(Call, call);

    IniFileManager manager(iniFile(), nullptr);
    QSemaphore inside;
    QSemaphore leave;
    messages().setObserver([&](const Message&) {
        inside.release();
        leave.acquire();
    });
    {
        // Blocks inside its warning and therefore holds the object's mutex.
        Caller holder(manager, [](IniFileManager& file) { file.getValue(group, missing, 0); });
        inside.acquire();
        Caller waiter(manager, call);
        const bool waited = !waiter.isDoneWithin(shortWhileInMs);
        leave.release();
        QVERIFY(waited);
        QVERIFY(waiter.isDoneWithin(longWhileInMs));
    }
    QCOMPARE(messages().take().size(), 1);
}

void tst_IniFileManagerThreads::callsGuardTheSettings_data()
{
    addLockingRows();
    QTest::newRow("getGroups") << Call([](IniFileManager& file) { file.getGroups(); });
    QTest::newRow("sync") << Call([](IniFileManager& file) { file.sync(); });
}

// sync() holds only the guard of the settings, so nothing but that guard orders the two threads:
// the thread sanitizer detects a call without it, whichever thread is first.
void tst_IniFileManagerThreads::callsGuardTheSettings()
{
    constexpr int rounds = 100;

    QFETCH(Call, call);
    IniFileManager manager(iniFile(), nullptr);
    std::thread caller([&] {
        for (int i = 0; i < rounds; ++i) {
            call(manager);
        }
    });
    for (int i = 0; i < rounds; ++i) {
        manager.sync();
    }
    caller.join();
    QCOMPARE(manager.getGroups(), QStringList(group));
    // No warning is expected, so an incorrect read fails this test.
}

void tst_IniFileManagerThreads::unlockedCallsDoNotWait_data()
{
    QTest::addColumn<Call>("call");
    QTest::newRow("getGroups") << Call([](IniFileManager& file) { file.getGroups(); });
    QTest::newRow("sync") << Call([](IniFileManager& file) { file.sync(); });
    QTest::newRow("getGeneralLogInfo")
        << Call([](IniFileManager& file) { file.getGeneralLogInfo(); });
}

void tst_IniFileManagerThreads::unlockedCallsDoNotWait()
{
    QFETCH(Call, call);

    IniFileManager manager(iniFile(), nullptr);
    QSemaphore inside;
    QSemaphore leave;
    messages().setObserver([&](const Message&) {
        inside.release();
        leave.acquire();
    });
    {
        Caller holder(manager, [](IniFileManager& file) { file.getValue(group, missing, 0); });
        inside.acquire();
        Caller caller(manager, call);
        const bool done = caller.isDoneWithin(longWhileInMs);
        leave.release();
        QVERIFY(done);
    }
    QCOMPARE(messages().take().size(), 1);
}

// One row per warning, with a call that logs it.
void tst_IniFileManagerThreads::addWarningRows()
{
    QTest::addColumn<Call>("call");

    const auto row = [](const char* name, const Call& call) { QTest::newRow(name) << call; };
    const QString none;
    row("setGeneralValue", [=](IniFileManager& file) { file.setGeneralValue(none, 3); });
    row("removeGeneralValue", [=](IniFileManager& file) { file.removeGeneralValue(none); });
    row("containsGeneral", [=](IniFileManager& file) { file.containsGeneral(none); });
    row("getGeneralValue, no key", [=](IniFileManager& file) { file.getGeneralValue(none, 3); });
    row("getGeneralValue, missing", [](IniFileManager& file) { file.getGeneralValue(missing, 3); });
    row("getGeneralValueInteger",
        [](IniFileManager& file) { file.getGeneralValueInteger(text, 3); });
    row("setValue, no group", [=](IniFileManager& file) { file.setValue(none, key, 3); });
    row("setValue, no key", [=](IniFileManager& file) { file.setValue(group, none, 3); });
    row("removeValue, no group", [=](IniFileManager& file) { file.removeValue(none, key); });
    row("removeValue, no key", [=](IniFileManager& file) { file.removeValue(group, none); });
    row("contains", [=](IniFileManager& file) { file.contains(group, none); });
    row("getValue, no key", [=](IniFileManager& file) { file.getValue(group, none, 3); });
    row("getValue, missing", [](IniFileManager& file) { file.getValue(group, missing, 3); });
    row("getValueInteger", [](IniFileManager& file) { file.getValueInteger(group, text, 3); });
    row("searchIndex, too high", [](IniFileManager& file) {
        int groupIndex = 0;
        file.searchIndex(1, groupIndex);
    });
    // The only group has Position -1.
    for (const int index : {0, 1}) {
        const auto name = [index](const char* getter) {
            return QByteArray(getter) + ", indexed, " + (index == 0 ? "missing" : "too high");
        };
        row(name("getValueInteger"),
            [=](IniFileManager& file) { file.getValueInteger(index, key, 3); });
        row(name("getValueString"),
            [=](IniFileManager& file) { file.getValueString(index, key, text); });
        row(name("getValueBool"),
            [=](IniFileManager& file) { file.getValueBool(index, key, true); });
    }
}

void tst_IniFileManagerThreads::warningsAreLoggedUnderTheLock_data()
{
    addWarningRows();
}

void tst_IniFileManagerThreads::warningsAreLoggedUnderTheLock()
{
    QFETCH(Call, call);

    IniFileManager manager(iniFile(), nullptr);
    std::unique_ptr<Caller> waiter;
    bool waited = false;
    messages().setObserver([&](const Message&) { waited = isLocked(manager, waiter); });
    call(manager);
    waiter.reset();
    QVERIFY(waited);
    QCOMPARE(messages().take().size(), 1);
}

void tst_IniFileManagerThreads::valuesAreConvertedUnderTheLock_data()
{
    QTest::addColumn<Call>("read");

    const auto row = [](const char* name, const Call& read) { QTest::newRow(name) << read; };
    row("getGeneralValueInteger",
        [](IniFileManager& file) { file.getGeneralValueInteger(key, 3); });
    row("getGeneralValueString",
        [](IniFileManager& file) { file.getGeneralValueString(key, text); });
    row("getGeneralValueBool", [](IniFileManager& file) { file.getGeneralValueBool(key, true); });
    row("getValueInteger", [](IniFileManager& file) { file.getValueInteger(group, key, 3); });
    row("getValueString", [](IniFileManager& file) { file.getValueString(group, key, text); });
    row("getValueBool", [](IniFileManager& file) { file.getValueBool(group, key, true); });
}

void tst_IniFileManagerThreads::valuesAreConvertedUnderTheLock()
{
    QFETCH(Call, read);

    static const bool areRegistered = QMetaType::registerConverter(&Probe::convert<int>) &&
                                      QMetaType::registerConverter(&Probe::convert<QString>) &&
                                      QMetaType::registerConverter(&Probe::convert<bool>);
    QVERIFY(areRegistered);
    IniFileManager manager(iniFile(), nullptr);
    std::unique_ptr<Caller> waiter;
    bool waited = false;
    const Probe probe{[&] { waited = isLocked(manager, waiter); }};
    manager.setGeneralValue(key, QVariant::fromValue(probe));
    manager.setValue(group, key, QVariant::fromValue(probe));
    read(manager);
    waiter.reset();
    QVERIFY(waited);
    // The value cannot be stored in a file.
    manager.removeGeneralValue(key);
    manager.removeValue(group, key);
}

void tst_IniFileManagerThreads::valuesAreListedUnderTheLock()
{
    IniFileManager manager(iniFile(), nullptr);
    bool isListing = false;
    int copies = 0;
    int copiesUnlocked = 0;
    std::vector<std::unique_ptr<Caller>> waiters;
    const std::function<void()> copied = [&] {
        if (isListing) {
            ++copies;
            waiters.emplace_back();
            copiesUnlocked += isLocked(manager, waiters.back()) ? 0 : 1;
        }
    };
    manager.setValue(group, key, QVariant::fromValue(CopyProbe(copied)));
    isListing = true;
    manager.getGroupValues(group);
    isListing = false;
    waiters.clear();
    // One copy from the settings, one into the result.
    QVERIFY(copies >= 2);
    QCOMPARE(copiesUnlocked, 0);
    manager.removeValue(group, key); // the value cannot be stored in a file
}

void tst_IniFileManagerThreads::handlersMayCallBack_data()
{
    addWarningRows();
}

void tst_IniFileManagerThreads::handlersMayCallBack()
{
    QFETCH(Call, call);

    const QString added = "NewFromHandler";
    const QString file = iniFile();
    IniFileManager manager(file, nullptr);
    int value = 0;
    int missingValue = 0;
    int indexedValue = 0;
    QByteArray written;
    QStringList keys;
    messages().setObserver([&](const Message&) {
        value = manager.getValueInteger(group, key, 5);
        missingValue = manager.getValueInteger(group, missing, 6);
        indexedValue = manager.getValueInteger(-1, key, 7);
        manager.setValue(group, added, 8);
        manager.setGeneralValue(added, 9);
        manager.sync();
        written = readFile(file);
        manager.removeGeneralValue(added);
        keys = manager.getGroupValues(group).keys();
    });
    call(manager);

    QCOMPARE(value, 2);
    QCOMPARE(missingValue, 6);
    QCOMPARE(indexedValue, 2);
    QVERIFY(written.startsWith("[General]\nKey=1\nNewFromHandler=9\nText=abc\n"));
    QVERIFY(written.contains("\nNewFromHandler=8\n"));
    QCOMPARE(keys, QStringList({key, added, QStringLiteral("Position"), text}));
    QVERIFY(!manager.containsGeneral(added));
    // Qt prints messages that a handler logs and does not pass them to a handler.
    QCOMPARE(messages().take().size(), 1);
}

void tst_IniFileManagerThreads::handlersOfManyThreadsMayCallBack()
{
    // A handler runs under the lock of the call that warns, so no increment is lost.
    constexpr int threadCount = 4;
    constexpr int warningsPerThread = 250;

    IniFileManager manager(iniFile(), nullptr);
    messages().setObserver([&](const Message&) {
        manager.setValue(group, key, manager.getValueInteger(group, key, -1) + 1);
    });
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < warningsPerThread; ++round) {
                manager.getValue(group, missing, 0);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    QCOMPARE(manager.getValueInteger(group, key, -1), 2 + threadCount * warningsPerThread);
    QCOMPARE(messages().take().size(), threadCount * warningsPerThread);
}

void tst_IniFileManagerThreads::groupIsNotEnteredByOtherThreads()
{
    const int queries = stressRounds(60000, 60000);

    IniFileManager manager(
        writeFile("groups.ini", "top=1\n[A]\nk=1\nn/deep=1\n[B]\nk=2\n[C]\nk=3\n"), nullptr);
    const QStringList expected = {"A", "B", "C"};
    std::atomic<bool> stop{false};
    std::atomic<int> incorrectValues{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < expected.size(); ++i) {
        threads.emplace_back([&, i] {
            const QString ownGroup = expected.at(i);
            while (!stop) {
                if (manager.getValueInteger(ownGroup, "k", -1) != i + 1 ||
                    !manager.contains(ownGroup, "k") ||
                    manager.getChildKeys(ownGroup) != QStringList("k")) {
                    ++incorrectValues;
                }
                manager.setValue(ownGroup, "k", i + 1);
                manager.removeValue(ownGroup, "none");
            }
        });
    }
    int incorrectGroups = 0;
    for (int i = 0; i < queries; ++i) {
        if (manager.getGroups() != expected) {
            ++incorrectGroups;
        }
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    QCOMPARE(incorrectGroups, 0);
    QCOMPARE(incorrectValues.load(), 0);
}

void tst_IniFileManagerThreads::listingsAreConsistent()
{
    // No key is removed between listing a group and reading its values.
    const int listings = stressRounds(3000, 3000);

    IniFileManager manager(iniFile(), nullptr);
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        while (!stop) {
            manager.setValue(group, missing, 1);
            manager.removeValue(group, missing);
        }
    });
    for (int i = 0; i < listings; ++i) {
        manager.getGroupValues(group);
    }
    stop = true;
    writer.join();
    // No warning is expected, so a single "not found" fails this test.
}

void tst_IniFileManagerThreads::indexedReadsAreConsistent_data()
{
    QTest::addColumn<Call>("read");
    QTest::newRow("getValueInteger")
        << Call([](IniFileManager& file) { file.getValueInteger(0, key, 3); });
    QTest::newRow("getValueString")
        << Call([](IniFileManager& file) { file.getValueString(0, key, text); });
    QTest::newRow("getValueBool") << Call(
        [](IniFileManager& file) { file.getValueBool(0, key, true); });
}

void tst_IniFileManagerThreads::indexedReadsAreConsistent()
{
    // The first group loses its Position before its key, and gets its key back before its Position.
    // So the group that a search finds has the key, unless another thread changes it before the
    // read.
    const int reads = stressRounds(10000, 10000);

    QFETCH(Call, read);
    const QString first = "A";
    const QString position = "Position";
    IniFileManager manager(
        writeFile("positions.ini", "[A]\nPosition=0\nKey=1\n[B]\nPosition=0\nKey=2\n"), nullptr);
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        while (!stop) {
            manager.setValue(first, position, 1);
            manager.removeValue(first, key);
            manager.setValue(first, key, 1);
            manager.setValue(first, position, 0);
        }
    });
    for (int i = 0; i < reads; ++i) {
        read(manager);
    }
    stop = true;
    writer.join();
    // No warning is expected, so a single "not found" fails this test.
}

void tst_IniFileManagerThreads::noWriteIsLostBetweenFlushes_data()
{
    QTest::addColumn<Call>("write");
    QTest::addColumn<bool>("byEventLoop");

    const Call setGeneral = [](IniFileManager& file) { file.setGeneralValue(key, 1); };
    const Call removeGeneral = [](IniFileManager& file) { file.removeGeneralValue(text); };
    const Call set = [](IniFileManager& file) { file.setValue(group, key, 1); };
    const Call remove = [](IniFileManager& file) { file.removeValue(group, text); };
    QTest::newRow("setGeneralValue, sync") << setGeneral << false;
    QTest::newRow("removeGeneralValue, sync") << removeGeneral << false;
    QTest::newRow("setValue, sync") << set << false;
    QTest::newRow("removeValue, sync") << remove << false;
    QTest::newRow("setGeneralValue, event loop") << setGeneral << true;
    QTest::newRow("removeGeneralValue, event loop") << removeGeneral << true;
    QTest::newRow("setValue, event loop") << set << true;
    QTest::newRow("removeValue, event loop") << remove << true;
}

void tst_IniFileManagerThreads::noWriteIsLostBetweenFlushes()
{
    // A write right after a flush must set the pending flag again; otherwise the value is never
    // stored. Here one thread flushes continuously while another makes the last write; then the
    // destructor flushes for the last time.
    const int rounds = stressRounds(400, 400);
    const QByteArray content = "Text=0\nKey=0\n[Group]\nText=0\nKey=0\n";

    QFETCH(Call, write);
    QFETCH(bool, byEventLoop);
    int argumentCount = 0;
    QCoreApplication application(argumentCount, nullptr);
    for (int round = 0; round < rounds; ++round) {
        const QString file = writeFile(QStringLiteral("round%1.ini").arg(round), content);
        {
            IniFileManager manager(file, nullptr);
            std::atomic<bool> stop{false};
            std::thread writer([&] {
                for (int i = 0; i < 8; ++i) {
                    manager.setValue(group, "other", i);
                }
                write(manager);
                stop = true;
            });
            while (!stop) {
                if (byEventLoop) {
                    QCoreApplication::processEvents();
                } else {
                    manager.sync();
                }
            }
            writer.join();
        }
        {
            IniFileManager quiet(
                writeFile(QStringLiteral("expected%1.ini").arg(round), content + "other=7\n"),
                nullptr);
            write(quiet);
        }
        QCOMPARE(readFile(file), readFile(path(QStringLiteral("expected%1.ini").arg(round))));
    }
}

void tst_IniFileManagerThreads::eventLoopFlushes()
{
    // Without sync() and before the object is destroyed.
    int argumentCount = 0;
    QCoreApplication application(argumentCount, nullptr);
    const QString file = iniFile();
    IniFileManager manager(file, nullptr);
    std::thread([&] { manager.setValue(group, key, 3); }).join();
    QVERIFY(!readFile(file).contains("Key=3"));
    QCoreApplication::processEvents();
    QVERIFY(readFile(file).contains("Key=3"));
}

void tst_IniFileManagerThreads::mixedCallsKeepTheValuesOfEachThread()
{
    constexpr int threadCount = 8;
    constexpr int callsPerRound = 7; // at least
    const int rounds = stressRounds(2000, 100000) / callsPerRound + 1;

    int argumentCount = 0;
    QCoreApplication application(argumentCount, nullptr);
    QByteArray content = "[Fixed]\nk=1\nPosition=0\n";
    for (int t = 0; t < threadCount; ++t) {
        const QByteArray number = QByteArray::number(t);
        const QByteArray position = QByteArray::number(t + 1);
        content += "[Thread" + number + "]\nk=-1\nPosition=" + position + '\n';
    }
    const QString file = writeFile("mixed.ini", content);
    std::atomic<int> errors{0};
    {
        IniFileManager manager(file, "UTF-8");
        std::atomic<int> running{threadCount};
        std::vector<std::thread> threads;
        for (int t = 0; t < threadCount; ++t) {
            threads.emplace_back([&, t] {
                const QString own = QStringLiteral("Thread%1").arg(t);
                const QString general = QStringLiteral("general%1").arg(t);
                const auto check = [&errors](bool isCorrect) { errors += isCorrect ? 0 : 1; };
                for (int i = 0; i < rounds; ++i) {
                    manager.setValue(own, "k", i);
                    manager.setGeneralValue(general, i);
                    check(manager.getValueInteger(own, "k", -1) == i);
                    check(manager.containsGeneral(general));
                    check(manager.getGeneralValueInteger(general, -1) == i);
                    check(manager.getValueInteger(t + 1, "k", -1) == i);
                    check(manager.getValueBool("Fixed", "k", false));
                    switch (i % 8) {
                    case 0:
                        check(manager.getGroups().contains(own));
                        break;
                    case 1:
                        check(manager.getGroups("Fix") == QStringList("Fixed"));
                        break;
                    case 2:
                        check(manager.getGroupValues(own).value("k").toInt() == i);
                        break;
                    case 3:
                        manager.removeValue(own, "k");
                        check(!manager.contains(own, "k"));
                        break;
                    case 4:
                        check(manager.getGeneralChildKeys().contains(general));
                        break;
                    case 5:
                        check(manager.getGeneralLogInfo().contains(file));
                        break;
                    case 6:
                        check(manager.getCount() == threadCount + 1);
                        break;
                    default:
                        if (i % 32 == 7) {
                            manager.sync();
                        }
                        break;
                    }
                }
                manager.setValue(own, "k", "end");
                --running;
            });
        }
        while (running > 0) {
            QCoreApplication::processEvents();
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    QCOMPARE(errors.load(), 0);
    const IniFileManager reopened(file, "UTF-8");
    for (int t = 0; t < threadCount; ++t) {
        QCOMPARE(reopened.getValueString(QStringLiteral("Thread%1").arg(t), "k", QString()), "end");
        QCOMPARE(reopened.getGeneralValueInteger(QStringLiteral("general%1").arg(t), -1),
                 rounds - 1);
    }
}

QTEST_APPLESS_MAIN(tst_IniFileManagerThreads)
#include "tst_IniFileManagerThreads.moc"
