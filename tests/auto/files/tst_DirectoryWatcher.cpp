#include "DirectoryWatcher.h"
#include "TestCase.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QMetaMethod>

#include <cerrno>
#include <memory>

Q_DECLARE_METATYPE(QMetaMethod::MethodType)

namespace {

constexpr int shortDelayInMs = 20;
constexpr int longDelayInMs = 200;

// A coarse timer may be 5 % early.
constexpr int earliestInMs(int delayInMs)
{
    return delayInMs - delayInMs / 20;
}

const QString directoryA = "/a";
const QString directoryB = "/b";

// System resources of this process.
struct Resources
{
    int descriptors = 0;
    int watches = 0;
};

Resources resources()
{
    Resources result;
    const QDir descriptions("/proc/self/fdinfo");
    const QStringList names = descriptions.entryList(QDir::Files);
    for (const QString& name : names) {
        QFile description(descriptions.filePath(name));
        if (!description.open(QIODevice::ReadOnly)) {
            continue; // the descriptor that lists the directory
        }
        ++result.descriptors;
        result.watches += description.readAll().count("inotify wd:");
    }
    return result;
}

} // namespace

class tst_DirectoryWatcher : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void methods_data();
    void methods();
    void burstIsOneSignal_data();
    void burstIsOneSignal();
    void slotMayBeInvokedByName();
    void defaultDelayIsOneSecond();
    void everyNotificationRestartsTheDelay();
    void nextBurstStartsEmpty();
    void newDelayAppliesToTheNextBurst_data();
    void newDelayAppliesToTheNextBurst();
    void zeroDelayReportsFromTheEventLoop();
    void negativeDelayNeverReports();
    void notificationsDuringDeliveryAreLost();
    void notificationDuringDeliveryReplacesTheListForLaterReceivers();
    void timeoutReportsAndClearsTheList();
    void destructionDiscardsTheBurst_data();
    void destructionDiscardsTheBurst();
    void receiverMayCallDeleteLater();

    void changesAreReported_data();
    void changesAreReported();
    void changesInTwoDirectoriesAreOneBurst();
    void contentOfFilesIsNotWatched_data();
    void contentOfFilesIsNotWatched();
    void subdirectoriesAreNotWatched();
    void removedDirectoryIsReportedAndForgotten();
    void addPathReturnsWhetherPathIsWatched_data();
    void addPathReturnsWhetherPathIsWatched();
    void pathBelowAFileIsLoggedByQt();
    void watchedPathIsNotAddedAgain();
    void addPathsKeepsEarlierPaths();
    void unwatchablePathsAreSkipped();
    void emptyListLogsNothing();
    void emptyPathsAreLoggedByQt();
    void noDescriptorOrWatchIsLeaked();

private:
    QString makeDirectory(const QString& name);
};

QString tst_DirectoryWatcher::makeDirectory(const QString& name)
{
    const QString directoryPath = path(name);
    if (!QDir().mkdir(directoryPath)) {
        qFatal("cannot create %s", qPrintable(directoryPath));
    }
    return directoryPath;
}

void tst_DirectoryWatcher::metaObject()
{
    const QMetaObject& type = DirectoryWatcher::staticMetaObject;
    QCOMPARE(type.className(), "DirectoryWatcher");
    QCOMPARE(type.superClass(), &QObject::staticMetaObject);
    QCOMPARE(type.methodCount() - type.methodOffset(), 3);
    QCOMPARE(type.propertyCount(), type.propertyOffset());
    QCOMPARE(type.constructorCount(), 0);

    const DirectoryWatcher watcher{QStringList()};
    QCOMPARE(watcher.metaObject(), &type);
    QVERIFY(watcher.parent() == nullptr);
    QVERIFY(watcher.children().isEmpty());
}

void tst_DirectoryWatcher::methods_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QMetaMethod::MethodType>("type");
    QTest::addColumn<QByteArray>("parameter");

    QTest::newRow("directoryChanged") << 0 << QByteArray("directoryChanged(QStringList)")
                                      << QMetaMethod::Signal << QByteArray("changedDirectories");
    QTest::newRow("directoryGotChanged") << 1 << QByteArray("directoryGotChanged(QString)")
                                         << QMetaMethod::Slot << QByteArray("strPath");
    QTest::newRow("delayTimeout") << 2 << QByteArray("delayTimeout()") << QMetaMethod::Slot
                                  << QByteArray();
}

void tst_DirectoryWatcher::methods()
{
    QFETCH(int, index);
    QFETCH(QByteArray, signature);
    QFETCH(QMetaMethod::MethodType, type);
    QFETCH(QByteArray, parameter);

    const QMetaObject& object = DirectoryWatcher::staticMetaObject;
    const QMetaMethod method = object.method(object.methodOffset() + index);
    QCOMPARE(method.methodSignature(), signature);
    QCOMPARE(method.methodType(), type);
    QCOMPARE(method.access(), QMetaMethod::Public);
    QCOMPARE(method.returnType(), int(QMetaType::Void));
    QCOMPARE(method.parameterNames().value(0), parameter);
}

void tst_DirectoryWatcher::burstIsOneSignal_data()
{
    QTest::addColumn<QStringList>("notifications");
    QTest::newRow("one path") << QStringList(directoryA);
    QTest::newRow("several paths") << QStringList({directoryA, directoryB, directoryA});
    QTest::newRow("the same path three times") << QStringList({directoryB, directoryB, directoryB});
    QTest::newRow("an empty path") << QStringList({QString(), directoryA, QString()});
    QTest::newRow("unsorted paths") << QStringList({directoryB, directoryA});

    QStringList thousand;
    for (int i = 0; i < 1000; ++i) {
        thousand.append(QString::number(i % 7));
    }
    QTest::newRow("a thousand paths") << thousand;
}

void tst_DirectoryWatcher::burstIsOneSignal()
{
    QFETCH(QStringList, notifications);

    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(shortDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    QElapsedTimer clock;
    for (const QString& notification : qAsConst(notifications)) {
        clock.start();
        watcher.directoryGotChanged(notification);
    }
    QCOMPARE(changes.count(), 0);
    QVERIFY(changes.wait());
    QVERIFY(clock.elapsed() >= earliestInMs(shortDelayInMs));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toStringList(), notifications);

    // The next signal reports only the next burst.
    watcher.directoryGotChanged(directoryB);
    QVERIFY(changes.wait());
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes.last().first().toStringList(), QStringList(directoryB));
}

void tst_DirectoryWatcher::slotMayBeInvokedByName()
{
    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(0);
    QSignalSpy changes(&watcher, SIGNAL(directoryChanged(QStringList)));
    QVERIFY(changes.isValid());
    QVERIFY(QMetaObject::invokeMethod(&watcher, "directoryGotChanged", Qt::QueuedConnection,
                                      Q_ARG(QString, directoryA)));
    QVERIFY(changes.wait());
    QCOMPARE(changes.first().first().toStringList(), QStringList(directoryA));
}

void tst_DirectoryWatcher::defaultDelayIsOneSecond()
{
    DirectoryWatcher watcher{QStringList()};
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    // Timers expire in order even if the machine is busy.
    QTimer later;
    QSignalSpy laterExpiry(&later, &QTimer::timeout);
    QElapsedTimer clock;
    clock.start();
    watcher.directoryGotChanged(directoryA);
    later.start(1200);
    QVERIFY(changes.wait());
    QVERIFY(clock.elapsed() >= earliestInMs(1000));
    QCOMPARE(laterExpiry.count(), 0);
    QCOMPARE(changes.first().first().toStringList(), QStringList(directoryA));
}

void tst_DirectoryWatcher::everyNotificationRestartsTheDelay()
{
    constexpr int delayInMs = 60;
    constexpr int notificationCount = 20;

    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(delayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    QStringList notifications;
    QElapsedTimer clock;
    QTimer stream;
    connect(&stream, &QTimer::timeout, &watcher, [&] {
        QCOMPARE(changes.count(), 0);
        const QString notification = QString::number(notifications.size());
        notifications.append(notification);
        clock.start();
        watcher.directoryGotChanged(notification);
        if (notifications.size() == notificationCount) {
            stream.stop();
        }
    });
    // Five times the delay in total. Even if the machine pauses, the stream's timer expires first.
    stream.start(delayInMs / 4);
    QVERIFY(changes.wait());
    QVERIFY(clock.elapsed() >= earliestInMs(delayInMs));
    QCOMPARE(notifications.size(), notificationCount);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toStringList(), notifications);
}

void tst_DirectoryWatcher::nextBurstStartsEmpty()
{
    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(0);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    for (const QStringList& burst : {QStringList(directoryA), QStringList({directoryB, directoryB}),
                                     QStringList(directoryA)}) {
        for (const QString& notification : burst) {
            watcher.directoryGotChanged(notification);
        }
        QVERIFY(changes.wait());
        QCOMPARE(changes.takeFirst().first().toStringList(), burst);
        QVERIFY(changes.isEmpty());
    }
}

void tst_DirectoryWatcher::newDelayAppliesToTheNextBurst_data()
{
    QTest::addColumn<int>("delayInMs");
    QTest::addColumn<int>("newDelayInMs");
    QTest::newRow("longer") << shortDelayInMs << longDelayInMs;
    QTest::newRow("shorter") << longDelayInMs << shortDelayInMs;
}

void tst_DirectoryWatcher::newDelayAppliesToTheNextBurst()
{
    QFETCH(int, delayInMs);
    QFETCH(int, newDelayInMs);

    DirectoryWatcher watcher{QStringList()};
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    QTimer between; // expires after a short burst and before a long one
    between.setSingleShot(true);
    between.setInterval((shortDelayInMs + longDelayInMs) / 2);
    QSignalSpy betweenExpiry(&between, &QTimer::timeout);

    watcher.setDelayInMs(delayInMs);
    watcher.directoryGotChanged(directoryA);
    watcher.setDelayInMs(newDelayInMs);
    watcher.directoryGotChanged(directoryB); // a restart uses the old delay, too
    between.start();
    QVERIFY(changes.wait());
    QCOMPARE(changes.first().first().toStringList(), QStringList({directoryA, directoryB}));
    QCOMPARE(betweenExpiry.count(), delayInMs == longDelayInMs ? 1 : 0);

    betweenExpiry.clear();
    watcher.directoryGotChanged(directoryA);
    between.start();
    QVERIFY(changes.wait());
    QCOMPARE(changes.last().first().toStringList(), QStringList(directoryA));
    QCOMPARE(betweenExpiry.count(), newDelayInMs == longDelayInMs ? 1 : 0);
}

void tst_DirectoryWatcher::zeroDelayReportsFromTheEventLoop()
{
    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(0);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    watcher.directoryGotChanged(directoryA);
    watcher.directoryGotChanged(directoryB);
    QCOMPARE(changes.count(), 0);
    QTRY_COMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toStringList(), QStringList({directoryA, directoryB}));
}

void tst_DirectoryWatcher::negativeDelayNeverReports()
{
    // The timer is active but never expires, so even a new delay has no effect.
    const QString text = "QObject::startTimer: Timers cannot have negative intervals";
    DirectoryWatcher watcher{QStringList()};
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    watcher.setDelayInMs(-1);
    messages().expect(QtWarningMsg, text);
    watcher.directoryGotChanged(directoryA);
    watcher.setDelayInMs(0);
    messages().expect(QtWarningMsg, text);
    watcher.directoryGotChanged(directoryB);

    DirectoryWatcher other{QStringList()};
    other.setDelayInMs(shortDelayInMs);
    QSignalSpy otherChanges(&other, &DirectoryWatcher::directoryChanged);
    other.directoryGotChanged(directoryA);
    QVERIFY(otherChanges.wait());
    QCOMPARE(changes.count(), 0);
}

void tst_DirectoryWatcher::notificationsDuringDeliveryAreLost()
{
    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(0);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    connect(&watcher, &DirectoryWatcher::directoryChanged, &watcher, [&] {
        if (changes.count() == 1) {
            watcher.directoryGotChanged(directoryB);
        }
    });
    watcher.directoryGotChanged(directoryA);
    QVERIFY(changes.wait());
    QCOMPARE(changes.first().first().toStringList(), QStringList(directoryA));
    // The notification starts a burst, but its list is cleared together with the previous one.
    QTRY_COMPARE(changes.count(), 2);
    QCOMPARE(changes.last().first().toStringList(), QStringList());

    watcher.directoryGotChanged(directoryA);
    QVERIFY(changes.wait());
    QCOMPARE(changes.count(), 3);
    QCOMPARE(changes.last().first().toStringList(), QStringList(directoryA));
}

void tst_DirectoryWatcher::notificationDuringDeliveryReplacesTheListForLaterReceivers()
{
    DirectoryWatcher watcher{QStringList()};
    connect(
        &watcher, &DirectoryWatcher::directoryChanged, &watcher,
        [&watcher] { watcher.directoryGotChanged(directoryB); }, Qt::DirectConnection);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    watcher.setDelayInMs(0);
    watcher.directoryGotChanged(directoryA);
    QVERIFY(changes.wait());
    QCOMPARE(changes.first().first().toStringList(), QStringList(directoryB));
}

void tst_DirectoryWatcher::timeoutReportsAndClearsTheList()
{
    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(shortDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    watcher.delayTimeout(); // without a burst
    QCOMPARE(changes.takeFirst().first().toStringList(), QStringList());

    watcher.directoryGotChanged(directoryA);
    watcher.delayTimeout(); // reports the list so far, but does not end the burst
    QCOMPARE(changes.takeFirst().first().toStringList(), QStringList(directoryA));
    watcher.directoryGotChanged(directoryB);
    QVERIFY(changes.wait());
    QCOMPARE(changes.takeFirst().first().toStringList(), QStringList(directoryB));
    QVERIFY(changes.isEmpty());
}

void tst_DirectoryWatcher::destructionDiscardsTheBurst_data()
{
    QTest::addColumn<bool>("isDetected");
    QTest::newRow("in a burst") << true;
    QTest::newRow("before the change is detected") << false;
}

void tst_DirectoryWatcher::destructionDiscardsTheBurst()
{
    QFETCH(bool, isDetected);

    std::unique_ptr<DirectoryWatcher> watcher(new DirectoryWatcher(directory()));
    watcher->setDelayInMs(shortDelayInMs);
    QSignalSpy changes(watcher.get(), &DirectoryWatcher::directoryChanged);
    DirectoryWatcher other(directory());
    other.setDelayInMs(2 * shortDelayInMs);
    QSignalSpy otherChanges(&other, &DirectoryWatcher::directoryChanged);
    writeFile("file", "");
    if (isDetected) {
        watcher->directoryGotChanged(directoryA);
    }
    watcher.reset();

    QVERIFY(otherChanges.wait());
    QCOMPARE(changes.count(), 0);
}

void tst_DirectoryWatcher::receiverMayCallDeleteLater()
{
    auto* const watcher = new DirectoryWatcher{QStringList()};
    watcher->setDelayInMs(0);
    QSignalSpy destroyed(watcher, &QObject::destroyed);
    connect(watcher, &DirectoryWatcher::directoryChanged, watcher, &QObject::deleteLater);
    watcher->directoryGotChanged(directoryA);
    QVERIFY(destroyed.wait());
}

void tst_DirectoryWatcher::changesAreReported_data()
{
    QTest::addColumn<int>("change");
    QTest::newRow("file added") << 0;
    QTest::newRow("file removed") << 1;
    QTest::newRow("file renamed") << 2;
    QTest::newRow("directory added") << 3;
    QTest::newRow("directory removed") << 4;
    QTest::newRow("permissions changed") << 5;
    QTest::newRow("many files added") << 6;
}

void tst_DirectoryWatcher::changesAreReported()
{
    QFETCH(int, change);

    const QString watched = makeDirectory("watched");
    const QString file = writeFile("watched/file", "");
    makeDirectory("watched/directory");
    DirectoryWatcher watcher(watched);
    watcher.setDelayInMs(shortDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    switch (change) {
    case 0:
        writeFile("watched/new", "");
        break;
    case 1:
        QVERIFY(QFile::remove(file));
        break;
    case 2:
        QVERIFY(QFile::rename(file, path("watched/renamed")));
        break;
    case 3:
        makeDirectory("watched/new");
        break;
    case 4:
        QVERIFY(QDir().rmdir(path("watched/directory")));
        break;
    case 5:
        QVERIFY(QFile::setPermissions(file, QFile::ReadOwner));
        break;
    default:
        for (int i = 0; i < 500; ++i) {
            writeFile(QStringLiteral("watched/%1").arg(i), "content");
        }
    }
    QVERIFY(changes.wait());
    QCOMPARE(changes.count(), 1);
    const QStringList directories = changes.first().first().toStringList();
    QVERIFY(!directories.isEmpty());
    QCOMPARE(directories.count(watched), directories.size());
}

void tst_DirectoryWatcher::changesInTwoDirectoriesAreOneBurst()
{
    const QString first = makeDirectory("first");
    const QString second = makeDirectory("second");
    DirectoryWatcher watcher({first, second});
    watcher.setDelayInMs(longDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    writeFile("first/file", "");
    writeFile("second/file", "");
    QVERIFY(changes.wait());
    QStringList directories = changes.first().first().toStringList();
    QCOMPARE(changes.count(), 1);
    directories.removeDuplicates();
    directories.sort();
    QCOMPARE(directories, QStringList({first, second}));
}

void tst_DirectoryWatcher::contentOfFilesIsNotWatched_data()
{
    QTest::addColumn<bool>("isFileWatched");
    QTest::newRow("in a watched directory") << false;
    QTest::newRow("watched itself") << true;
}

void tst_DirectoryWatcher::contentOfFilesIsNotWatched()
{
    QFETCH(bool, isFileWatched);

    const QString watched = makeDirectory("watched");
    const QString other = makeDirectory("other");
    const QString filePath = writeFile("watched/file", "");
    DirectoryWatcher watcher({watched, other});
    watcher.setDelayInMs(longDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    if (isFileWatched) {
        QVERIFY(watcher.addPath(filePath));
    }
    QFileSystemWatcher observer({filePath});
    QSignalSpy contentChanges(&observer, &QFileSystemWatcher::fileChanged);

    QFile file(filePath);
    QVERIFY(file.open(QIODevice::Append));
    QCOMPARE(file.write("content"), qint64(7));
    file.close();
    QVERIFY(contentChanges.wait());
    // Notifications arrive in order, so this one would follow an earlier one.
    writeFile("other/file", "");
    QVERIFY(changes.wait());
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toStringList(), QStringList(other));
}

void tst_DirectoryWatcher::subdirectoriesAreNotWatched()
{
    makeDirectory("below");
    const QString other = makeDirectory("other");
    DirectoryWatcher watcher({directory(), other});
    watcher.setDelayInMs(longDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    writeFile("below/file", "");
    writeFile("other/file", "");
    QVERIFY(changes.wait());
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toStringList(), QStringList(other));
}

void tst_DirectoryWatcher::removedDirectoryIsReportedAndForgotten()
{
    const QString watched = makeDirectory("watched");
    DirectoryWatcher watcher(watched);
    watcher.setDelayInMs(shortDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    QVERIFY(QDir().rmdir(watched));
    QVERIFY(changes.wait());
    QVERIFY(changes.takeFirst().first().toStringList().contains(watched));
    QVERIFY(!watcher.addPath(watched));

    // A new directory of the same name must be added again.
    makeDirectory("watched");
    QVERIFY(watcher.addPath(watched));
    writeFile("watched/file", "");
    QVERIFY(changes.wait());
    QVERIFY(changes.first().first().toStringList().contains(watched));
}

void tst_DirectoryWatcher::addPathReturnsWhetherPathIsWatched_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isAdded");
    QTest::newRow("directory") << "directory" << true;
    QTest::newRow("directory, trailing slash") << "directory/" << true;
    QTest::newRow("file") << "file" << true;
    QTest::newRow("linked directory") << "link" << true;
    QTest::newRow("missing") << "missing" << false;
}

void tst_DirectoryWatcher::addPathReturnsWhetherPathIsWatched()
{
    QFETCH(QString, name);
    QFETCH(bool, isAdded);

    const QString target = makeDirectory("directory");
    writeFile("file", "");
    QVERIFY(QFile::link(target, path("link")));
    DirectoryWatcher watcher{QStringList()};
    const int watchesBefore = resources().watches;
    QCOMPARE(watcher.addPath(path(name)), isAdded);
    QCOMPARE(resources().watches - watchesBefore, isAdded ? 1 : 0);
}

void tst_DirectoryWatcher::pathBelowAFileIsLoggedByQt()
{
    const QString below = writeFile("file", "") + "/directory";
    DirectoryWatcher watcher{QStringList()};
    // The reason is in the system's language.
    messages().expect(
        QtCriticalMsg,
        QStringLiteral("inotify_add_watch(%1) failed: (%2)").arg(below, qt_error_string(ENOTDIR)));
    QVERIFY(!watcher.addPath(below));
}

void tst_DirectoryWatcher::watchedPathIsNotAddedAgain()
{
    const QString watched = makeDirectory("watched");
    const int watchesBefore = resources().watches;
    DirectoryWatcher watcher(watched);
    QVERIFY(!watcher.addPath(watched));
    watcher.addPaths({watched, watched});
    QCOMPARE(resources().watches - watchesBefore, 1);

    watcher.setDelayInMs(shortDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    writeFile("watched/file", "");
    QVERIFY(changes.wait());
    QCOMPARE(changes.count(), 1);
}

void tst_DirectoryWatcher::addPathsKeepsEarlierPaths()
{
    const QStringList paths = {makeDirectory("a"), makeDirectory("b"), makeDirectory("c")};
    const int watchesBefore = resources().watches;
    DirectoryWatcher watcher{QStringList()};
    QVERIFY(watcher.addPath(paths.first()));
    watcher.addPaths({paths.at(1), path("missing"), paths.at(2)});
    QCOMPARE(resources().watches - watchesBefore, 3);

    watcher.setDelayInMs(longDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    for (const char* file : {"a/file", "b/file", "c/file"}) {
        writeFile(QString::fromLatin1(file), "");
    }
    QVERIFY(changes.wait());
    QStringList directories = changes.first().first().toStringList();
    directories.removeDuplicates();
    directories.sort();
    QCOMPARE(directories, paths);
}

void tst_DirectoryWatcher::unwatchablePathsAreSkipped()
{
    const QString watched = makeDirectory("watched");
    const int watchesBefore = resources().watches;
    const DirectoryWatcher some({path("missing"), watched, path("missing too")});
    QCOMPARE(resources().watches - watchesBefore, 1);
    const DirectoryWatcher none(path("missing"));
    QCOMPARE(resources().watches - watchesBefore, 1);
}

void tst_DirectoryWatcher::emptyListLogsNothing()
{
    const int watchesBefore = resources().watches;
    DirectoryWatcher watcher{QStringList()};
    QCOMPARE(resources().watches, watchesBefore);

    QVERIFY(watcher.addPath(directory()));
    watcher.setDelayInMs(shortDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    writeFile("file", "");
    QVERIFY(changes.wait());
}

void tst_DirectoryWatcher::emptyPathsAreLoggedByQt()
{
    const QString listText = "QFileSystemWatcher::addPaths: list is empty";
    messages().expect(QtWarningMsg, listText);
    DirectoryWatcher watcher{QString()};
    messages().expect(QtWarningMsg, listText);
    watcher.addPaths({});
    messages().expect(QtWarningMsg, "QFileSystemWatcher::addPath: path is empty");
    QVERIFY(watcher.addPath(QString()));
}

void tst_DirectoryWatcher::noDescriptorOrWatchIsLeaked()
{
    const QStringList paths = {makeDirectory("a"), makeDirectory("b"), directory()};
    const Resources before = resources();
    {
        const DirectoryWatcher watcher(paths);
        const Resources during = resources();
        QCOMPARE(during.watches - before.watches, paths.size());
        QVERIFY(during.descriptors > before.descriptors);
    }
    for (int i = 0; i < 200; ++i) {
        DirectoryWatcher watcher(paths);
        watcher.directoryGotChanged(directoryA);
        writeFile(QStringLiteral("a/%1").arg(i), "");
        QCoreApplication::processEvents();
    }
    QCOMPARE(resources().descriptors, before.descriptors);
    QCOMPARE(resources().watches, before.watches);
}

QTEST_GUILESS_MAIN(tst_DirectoryWatcher)

#include "tst_DirectoryWatcher.moc"
