#include "BootInformationHelper.h"
#include "DeviceRoot.h"
#include "IniFileManager.h"
#include "TestCase.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMutex>

#include <functional>
#include <future>
#include <thread>

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class FlushLog;
FlushLog* flushLog = nullptr;

// The directories that are flushed during the life of the object.
class FlushLog
{
public:
    FlushLog() { flushLog = this; }
    ~FlushLog() { flushLog = nullptr; }
    Q_DISABLE_COPY(FlushLog)

    QStringList directories() const
    {
        const QMutexLocker locker(&m_mutex);
        return m_directories;
    }

    // The function is called before the first flush.
    void callBeforeFirst(const std::function<void()>& function) { m_beforeFirst = function; }

    void add(const QString& directory)
    {
        std::function<void()> function;
        {
            const QMutexLocker locker(&m_mutex);
            m_directories.append(directory);
            std::swap(function, m_beforeFirst);
        }
        if (function) {
            function();
        }
    }

private:
    mutable QMutex m_mutex;
    QStringList m_directories;
    std::function<void()> m_beforeFirst;
};

} // namespace

// Replaces the function of the C library.
extern "C" Q_DECL_EXPORT int fsync(int descriptor)
{
    using Function = int (*)(int);
    static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "fsync"));
    struct stat status = {};
    if (flushLog != nullptr && fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        flushLog->add(QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(descriptor)));
    }
    return next(descriptor);
}

namespace {

void setPort(IniFileManager& manager, int port)
{
    manager.setValue(QStringLiteral("Net"), QStringLiteral("Port"), port);
}

// Whether another thread can finish this while the current one waits.
bool isDoneElsewhere(const std::function<void()>& function)
{
    auto promise = std::make_shared<std::promise<void>>();
    const std::future<void> done = promise->get_future();
    // Detached: if it waits for the current thread, it finishes after that one continues.
    std::thread([function, promise] {
        function();
        promise->set_value();
    }).detach();
    return done.wait_for(std::chrono::seconds(5)) == std::future_status::ready;
}

using Use = void (*)(const QString& filePath);

} // namespace

Q_DECLARE_METATYPE(Use)

/*
 * Which directories are flushed, and when: that of a replaced file, once per replacement, and no
 * other. script/check powercut tests that files are then durable.
 */
class tst_DurableWrites : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void directoryOfAReplacedFileIsFlushed_data();
    void directoryOfAReplacedFileIsFlushed();
    void directoryOfAnUnchangedFileIsNotFlushed_data();
    void directoryOfAnUnchangedFileIsNotFlushed();
    void failedCreationFlushesNothing();
    void eachReplacementIsFlushed();
    void directoryOfALinksTargetIsFlushed();
    void replacementByAnotherManagerIsFlushed();
    void replacementWithAReusedInodeIsFlushed();
    void flushDoesNotBlockOtherCalls();
    void syncDuringAFlushAlsoFlushes();
    void directoryOfARemovedMarkerIsFlushed();
    void missingMarkerFlushesNothing();

private:
    QString file() const { return path(QStringLiteral("settings.ini")); }
};

void tst_DurableWrites::directoryOfAReplacedFileIsFlushed_data()
{
    QTest::addColumn<Use>("use");
    const auto add = [](const char* name, Use use) { QTest::newRow(name) << use; };
    add("set and sync", [](const QString& filePath) {
        IniFileManager manager(filePath, nullptr);
        setPort(manager, 8080);
        manager.sync();
    });
    add("set and sync of General", [](const QString& filePath) {
        IniFileManager manager(filePath, nullptr);
        manager.setGeneralValue(QStringLiteral("Name"), 1);
        manager.sync();
    });
    add("remove and sync", [](const QString& filePath) {
        IniFileManager manager(filePath, nullptr);
        manager.removeValue(QStringLiteral("Net"), QStringLiteral("Port"));
        manager.sync();
    });
    add("remove and sync of General", [](const QString& filePath) {
        IniFileManager manager(filePath, nullptr);
        manager.removeGeneralValue(QStringLiteral("Name"));
        manager.sync();
    });
    add("event loop", [](const QString& filePath) {
        IniFileManager manager(filePath, nullptr);
        setPort(manager, 8080);
        QCoreApplication::sendPostedEvents();
    });
    add("destructor", [](const QString& filePath) {
        IniFileManager manager(filePath, nullptr);
        setPort(manager, 8080);
    });
    add("clean-up", [](const QString& filePath) { IniFileManager::cleanUp(filePath); });
}

void tst_DurableWrites::directoryOfAReplacedFileIsFlushed()
{
    QFETCH(Use, use);
    writeFile(QStringLiteral("settings.ini"), "[General]\nName=a\n[Net]\nPort=80\n");
    const FlushLog flushes;
    use(file());
    QCOMPARE(flushes.directories(), QStringList(directory()));
}

void tst_DurableWrites::directoryOfAnUnchangedFileIsNotFlushed_data()
{
    QTest::addColumn<Use>("use");
    const auto add = [](const char* name, Use use) { QTest::newRow(name) << use; };
    add("only read", [](const QString& filePath) {
        IniFileManager manager(filePath, nullptr);
        QCOMPARE(manager.getValueInteger(QStringLiteral("Net"), QStringLiteral("Port"), 0), 80);
        manager.sync();
    });
    add("only read, while the file is replaced", [](const QString& filePath) {
        IniFileManager manager(filePath, nullptr);
        QFile::remove(filePath);
        QFile other(filePath);
        QVERIFY(other.open(QIODevice::WriteOnly));
        QVERIFY(other.write("[Net]\nPort=8080\n") > 0);
        other.close();
        manager.sync();
        QCOMPARE(manager.getValueInteger(QStringLiteral("Net"), QStringLiteral("Port"), 0), 8080);
    });
}

void tst_DurableWrites::directoryOfAnUnchangedFileIsNotFlushed()
{
    QFETCH(Use, use);
    writeFile(QStringLiteral("settings.ini"), "[Net]\nPort=80\n");
    const FlushLog flushes;
    use(file());
    QCOMPARE(flushes.directories(), QStringList());
}

void tst_DurableWrites::failedCreationFlushesNothing()
{
    const QString belowAFile = writeFile(QStringLiteral("file"), "") + QStringLiteral("/a.ini");
    messages().expectWarning(
        "IniFileManager", QStringLiteral("Can't find specified ini-file: \"%1\"").arg(belowAFile));
    const FlushLog flushes;
    {
        IniFileManager manager(belowAFile, nullptr);
        setPort(manager, 8080);
        manager.sync();
    }
    QCOMPARE(flushes.directories(), QStringList());
}

void tst_DurableWrites::eachReplacementIsFlushed()
{
    writeFile(QStringLiteral("settings.ini"), "[Net]\nPort=80\n");
    const FlushLog flushes;
    {
        IniFileManager manager(file(), nullptr);
        for (int port = 0; port < 100; ++port) {
            setPort(manager, port);
            manager.sync();
            QCOMPARE(flushes.directories().size(), port + 1);
            manager.sync();
            QCoreApplication::sendPostedEvents();
            QCOMPARE(flushes.directories().size(), port + 1);
        }
    }
    QCOMPARE(flushes.directories().size(), 100);
}

void tst_DurableWrites::directoryOfALinksTargetIsFlushed()
{
    QVERIFY(QDir(directory()).mkpath(QStringLiteral("real")));
    QVERIFY(QDir(directory()).mkpath(QStringLiteral("links")));
    const QString real = writeFile(QStringLiteral("real/settings.ini"), "[Net]\nPort=80\n");
    const QString link = path(QStringLiteral("links/link.ini"));
    QVERIFY(QFile::link(real, link));
    const FlushLog flushes;
    {
        IniFileManager manager(link, nullptr);
        setPort(manager, 8080);
        manager.sync();
    }
    IniFileManager::cleanUp(link);
    QCOMPARE(QFile::symLinkTarget(link), real);
    QCOMPARE(readFile(real), QByteArray("[Net]\nPort=8080\n"));
    QCOMPARE(flushes.directories(), QStringList({path("real"), path("real")}));
}

// Managers with the same path share their unwritten changes, so one may write those of another.
void tst_DurableWrites::replacementByAnotherManagerIsFlushed()
{
    writeFile(QStringLiteral("settings.ini"), "[Net]\nPort=80\n");
    IniFileManager writer(file(), nullptr);
    IniFileManager other(file(), nullptr);
    setPort(writer, 8080);
    const FlushLog flushes;
    other.sync();
    QCOMPARE(readFile(file()), QByteArray("[Net]\nPort=8080\n"));
    QCOMPARE(flushes.directories(), QStringList());
    // Changes neither the file nor what must be flushed.
    writer.removeValue(QStringLiteral("Net"), QStringLiteral("none"));
    writer.sync();
    QCOMPARE(flushes.directories(), QStringList(directory()));
}

// A file system may reuse the inode number of the first file for the third one.
void tst_DurableWrites::replacementWithAReusedInodeIsFlushed()
{
    writeFile(QStringLiteral("settings.ini"), "[Net]\nPort=80\n");
    IniFileManager writer(file(), nullptr);
    IniFileManager other(file(), nullptr);
    FlushLog flushes;
    for (int round = 0; round < 10; ++round) {
        setPort(writer, 1000 + round);
        writer.sync();
        setPort(writer, 2000 + round);
        other.sync();
        setPort(other, 3000 + round);
        other.sync();
        const int before = flushes.directories().size();
        writer.sync();
        QCOMPARE(flushes.directories().size(), before + 1);
    }
}

void tst_DurableWrites::flushDoesNotBlockOtherCalls()
{
    writeFile(QStringLiteral("settings.ini"), "[Net]\nPort=80\n");
    IniFileManager manager(file(), nullptr);
    FlushLog flushes;
    bool isDone = false;
    flushes.callBeforeFirst([&manager, &isDone] {
        isDone = isDoneElsewhere([&manager] {
            manager.getGroups();
            manager.getGeneralLogInfo();
            manager.getValueInteger(QStringLiteral("Net"), QStringLiteral("Port"), 0);
            setPort(manager, 2);
        });
    });
    setPort(manager, 1);
    manager.sync();
    QVERIFY(isDone);
    QCOMPARE(readFile(file()), QByteArray("[Net]\nPort=1\n"));
    manager.sync();
    QCOMPARE(readFile(file()), QByteArray("[Net]\nPort=2\n"));
    QCOMPARE(flushes.directories().size(), 2);
}

// The second sync() has nothing to write, but must not return before the file is durable.
void tst_DurableWrites::syncDuringAFlushAlsoFlushes()
{
    writeFile(QStringLiteral("settings.ini"), "[Net]\nPort=80\n");
    IniFileManager manager(file(), nullptr);
    FlushLog flushes;
    int flushesOfOther = 0;
    flushes.callBeforeFirst([&] {
        QVERIFY(isDoneElsewhere([&manager] { manager.sync(); }));
        flushesOfOther = flushes.directories().size() - 1;
    });
    setPort(manager, 8080);
    manager.sync();
    QCOMPARE(flushesOfOther, 1);
}

void tst_DurableWrites::directoryOfARemovedMarkerIsFlushed()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    const auto create = [](const QString& filePath) {
        QFile marker(filePath);
        QVERIFY(marker.open(QIODevice::WriteOnly));
    };
    QVERIFY(QDir().mkpath(QStringLiteral("/orvalis/etc")));
    create(QStringLiteral("/orvalis/etc/orvalis-first-boot"));
    create(QStringLiteral("/orvalis-reboot"));
    const FlushLog flushes;
    BootInformationHelper().deleteFirmwareUpdateMarker();
    QCOMPARE(flushes.directories(), QStringList(QStringLiteral("/orvalis/etc")));
    BootInformationHelper().deleteOrvalisRebootMarker();
    QCOMPARE(flushes.directories().size(), 2);
    // An emulator opens its directory of libraries in place of the root directory.
    if (!isEmulated()) {
        QCOMPARE(flushes.directories().constLast(), QStringLiteral("/"));
    }
}

void tst_DurableWrites::missingMarkerFlushesNothing()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    messages().expectWarning(
        "BootInformationHelper",
        QStringLiteral("Unable to delete firmware update marker, file does not exist!"));
    const FlushLog flushes;
    BootInformationHelper().deleteFirmwareUpdateMarker();
    BootInformationHelper().deleteOrvalisRebootMarker();
    QCOMPARE(flushes.directories(), QStringList());
}

QTEST_GUILESS_MAIN(tst_DurableWrites)
#include "tst_DurableWrites.moc"
