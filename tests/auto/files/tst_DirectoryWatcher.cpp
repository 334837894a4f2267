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

// A coarse timer may be early by a twentieth.
constexpr int earliestInMs(int delayInMs)
{
    return delayInMs - delayInMs / 20;
}

const QString folderA = "/a";
const QString folderB = "/b";

// What the system keeps for this process.
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
            continue; // the one that listed the folder
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
    void burstMayBeBegunThroughTheMetaObject();
    void delayIsOneSecondFromTheStart();
    void everyNoticePutsTheEndOff();
    void nextBurstStartsEmpty();
    void newDelayIsForTheNextBurst_data();
    void newDelayIsForTheNextBurst();
    void delayOfZeroReportsFromTheEventLoop();
    void negativeDelayNeverReports();
    void noticesDuringDeliveryAreLost();
    void laterReceiversSeeWhatANoticeDuringDeliveryLeaves();
    void expiryReportsAndEmptiesTheList();
    void destructionDropsTheBurst_data();
    void destructionDropsTheBurst();
    void receiverMayDeleteTheWatcherLater();

    void changesAreReported_data();
    void changesAreReported();
    void changesOfTwoFoldersAreOneBurst();
    void contentOfFilesDoesNotCount_data();
    void contentOfFilesDoesNotCount();
    void foldersBelowDoNotCount();
    void removedFolderIsReportedAndForgotten();
    void addPathTells_data();
    void addPathTells();
    void pathBelowAFileIsLoggedByQt();
    void pathThatIsWatchedAlready();
    void pathsAreAdded();
    void unwatchablePathsArePassedOver();
    void emptyListIsSilent();
    void emptyPathsWarnAsQtDoes();
    void nothingIsLeftBehind();

private:
    QString makeFolder(const QString& name);
};

QString tst_DirectoryWatcher::makeFolder(const QString& name)
{
    const QString folderPath = path(name);
    if (!QDir().mkdir(folderPath)) {
        qFatal("cannot make %s", qPrintable(folderPath));
    }
    return folderPath;
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
    QTest::addColumn<QStringList>("notices");
    QTest::newRow("one") << QStringList(folderA);
    QTest::newRow("several in their order") << QStringList({folderA, folderB, folderA});
    QTest::newRow("the same three times") << QStringList({folderB, folderB, folderB});
    QTest::newRow("an empty path") << QStringList({QString(), folderA, QString()});
    QTest::newRow("not sorted") << QStringList({folderB, folderA});

    QStringList thousand;
    for (int i = 0; i < 1000; ++i) {
        thousand.append(QString::number(i % 7));
    }
    QTest::newRow("a thousand") << thousand;
}

void tst_DirectoryWatcher::burstIsOneSignal()
{
    QFETCH(QStringList, notices);

    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(shortDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    QElapsedTimer clock;
    for (const QString& notice : qAsConst(notices)) {
        clock.start();
        watcher.directoryGotChanged(notice);
    }
    QCOMPARE(changes.count(), 0);
    QVERIFY(changes.wait());
    QVERIFY(clock.elapsed() >= earliestInMs(shortDelayInMs));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toStringList(), notices);

    // Nothing of it is left for another one.
    watcher.directoryGotChanged(folderB);
    QVERIFY(changes.wait());
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes.last().first().toStringList(), QStringList(folderB));
}

void tst_DirectoryWatcher::burstMayBeBegunThroughTheMetaObject()
{
    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(0);
    QSignalSpy changes(&watcher, SIGNAL(directoryChanged(QStringList)));
    QVERIFY(changes.isValid());
    QVERIFY(QMetaObject::invokeMethod(&watcher, "directoryGotChanged", Qt::QueuedConnection,
                                      Q_ARG(QString, folderA)));
    QVERIFY(changes.wait());
    QCOMPARE(changes.first().first().toStringList(), QStringList(folderA));
}

void tst_DirectoryWatcher::delayIsOneSecondFromTheStart()
{
    DirectoryWatcher watcher{QStringList()};
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    // Timers expire in their order, however busy the machine is.
    QTimer later;
    QSignalSpy laterExpiry(&later, &QTimer::timeout);
    QElapsedTimer clock;
    clock.start();
    watcher.directoryGotChanged(folderA);
    later.start(1200);
    QVERIFY(changes.wait());
    QVERIFY(clock.elapsed() >= earliestInMs(1000));
    QCOMPARE(laterExpiry.count(), 0);
    QCOMPARE(changes.first().first().toStringList(), QStringList(folderA));
}

void tst_DirectoryWatcher::everyNoticePutsTheEndOff()
{
    constexpr int delayInMs = 60;
    constexpr int noticeCount = 20;

    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(delayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    QStringList notices;
    QElapsedTimer clock;
    QTimer stream;
    connect(&stream, &QTimer::timeout, &watcher, [&] {
        QCOMPARE(changes.count(), 0);
        const QString notice = QString::number(notices.size());
        notices.append(notice);
        clock.start();
        watcher.directoryGotChanged(notice);
        if (notices.size() == noticeCount) {
            stream.stop();
        }
    });
    // Five times the delay in all. Should the machine pause, the stream's timer still expires
    // first.
    stream.start(delayInMs / 4);
    QVERIFY(changes.wait());
    QVERIFY(clock.elapsed() >= earliestInMs(delayInMs));
    QCOMPARE(notices.size(), noticeCount);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toStringList(), notices);
}

void tst_DirectoryWatcher::nextBurstStartsEmpty()
{
    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(0);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    for (const QStringList& burst :
         {QStringList(folderA), QStringList({folderB, folderB}), QStringList(folderA)}) {
        for (const QString& notice : burst) {
            watcher.directoryGotChanged(notice);
        }
        QVERIFY(changes.wait());
        QCOMPARE(changes.takeFirst().first().toStringList(), burst);
        QVERIFY(changes.isEmpty());
    }
}

void tst_DirectoryWatcher::newDelayIsForTheNextBurst_data()
{
    QTest::addColumn<int>("delayInMs");
    QTest::addColumn<int>("newDelayInMs");
    QTest::newRow("longer") << shortDelayInMs << longDelayInMs;
    QTest::newRow("shorter") << longDelayInMs << shortDelayInMs;
}

void tst_DirectoryWatcher::newDelayIsForTheNextBurst()
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
    watcher.directoryGotChanged(folderA);
    watcher.setDelayInMs(newDelayInMs);
    watcher.directoryGotChanged(folderB); // a restart takes the old delay, too
    between.start();
    QVERIFY(changes.wait());
    QCOMPARE(changes.first().first().toStringList(), QStringList({folderA, folderB}));
    QCOMPARE(betweenExpiry.count(), delayInMs == longDelayInMs ? 1 : 0);

    betweenExpiry.clear();
    watcher.directoryGotChanged(folderA);
    between.start();
    QVERIFY(changes.wait());
    QCOMPARE(changes.last().first().toStringList(), QStringList(folderA));
    QCOMPARE(betweenExpiry.count(), newDelayInMs == longDelayInMs ? 1 : 0);
}

void tst_DirectoryWatcher::delayOfZeroReportsFromTheEventLoop()
{
    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(0);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    watcher.directoryGotChanged(folderA);
    watcher.directoryGotChanged(folderB);
    QCOMPARE(changes.count(), 0);
    QTRY_COMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toStringList(), QStringList({folderA, folderB}));
}

void tst_DirectoryWatcher::negativeDelayNeverReports()
{
    // The timer counts as active and yet never expires, so that not even a new delay is taken.
    const QString text = "QObject::startTimer: Timers cannot have negative intervals";
    DirectoryWatcher watcher{QStringList()};
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    watcher.setDelayInMs(-1);
    messages().expect(QtWarningMsg, text);
    watcher.directoryGotChanged(folderA);
    watcher.setDelayInMs(0);
    messages().expect(QtWarningMsg, text);
    watcher.directoryGotChanged(folderB);

    DirectoryWatcher other{QStringList()};
    other.setDelayInMs(shortDelayInMs);
    QSignalSpy otherChanges(&other, &DirectoryWatcher::directoryChanged);
    other.directoryGotChanged(folderA);
    QVERIFY(otherChanges.wait());
    QCOMPARE(changes.count(), 0);
}

void tst_DirectoryWatcher::noticesDuringDeliveryAreLost()
{
    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(0);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    connect(&watcher, &DirectoryWatcher::directoryChanged, &watcher, [&] {
        if (changes.count() == 1) {
            watcher.directoryGotChanged(folderB);
        }
    });
    watcher.directoryGotChanged(folderA);
    QVERIFY(changes.wait());
    QCOMPARE(changes.first().first().toStringList(), QStringList(folderA));
    // The notice begins a burst; its list is emptied with the one before.
    QTRY_COMPARE(changes.count(), 2);
    QCOMPARE(changes.last().first().toStringList(), QStringList());

    watcher.directoryGotChanged(folderA);
    QVERIFY(changes.wait());
    QCOMPARE(changes.count(), 3);
    QCOMPARE(changes.last().first().toStringList(), QStringList(folderA));
}

void tst_DirectoryWatcher::laterReceiversSeeWhatANoticeDuringDeliveryLeaves()
{
    DirectoryWatcher watcher{QStringList()};
    connect(
        &watcher, &DirectoryWatcher::directoryChanged, &watcher,
        [&watcher] { watcher.directoryGotChanged(folderB); }, Qt::DirectConnection);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    watcher.setDelayInMs(0);
    watcher.directoryGotChanged(folderA);
    QVERIFY(changes.wait());
    QCOMPARE(changes.first().first().toStringList(), QStringList(folderB));
}

void tst_DirectoryWatcher::expiryReportsAndEmptiesTheList()
{
    DirectoryWatcher watcher{QStringList()};
    watcher.setDelayInMs(shortDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    watcher.delayTimeout(); // without a burst
    QCOMPARE(changes.takeFirst().first().toStringList(), QStringList());

    watcher.directoryGotChanged(folderA);
    watcher.delayTimeout(); // does not end the burst, but takes what there is
    QCOMPARE(changes.takeFirst().first().toStringList(), QStringList(folderA));
    watcher.directoryGotChanged(folderB);
    QVERIFY(changes.wait());
    QCOMPARE(changes.takeFirst().first().toStringList(), QStringList(folderB));
    QVERIFY(changes.isEmpty());
}

void tst_DirectoryWatcher::destructionDropsTheBurst_data()
{
    QTest::addColumn<bool>("isNoticed");
    QTest::newRow("in a burst") << true;
    QTest::newRow("before the change is noticed") << false;
}

void tst_DirectoryWatcher::destructionDropsTheBurst()
{
    QFETCH(bool, isNoticed);

    std::unique_ptr<DirectoryWatcher> watcher(new DirectoryWatcher(folder()));
    watcher->setDelayInMs(shortDelayInMs);
    QSignalSpy changes(watcher.get(), &DirectoryWatcher::directoryChanged);
    DirectoryWatcher other(folder());
    other.setDelayInMs(2 * shortDelayInMs);
    QSignalSpy otherChanges(&other, &DirectoryWatcher::directoryChanged);
    writeFile("file", "");
    if (isNoticed) {
        watcher->directoryGotChanged(folderA);
    }
    watcher.reset();

    QVERIFY(otherChanges.wait());
    QCOMPARE(changes.count(), 0);
}

void tst_DirectoryWatcher::receiverMayDeleteTheWatcherLater()
{
    auto* const watcher = new DirectoryWatcher{QStringList()};
    watcher->setDelayInMs(0);
    QSignalSpy destroyed(watcher, &QObject::destroyed);
    connect(watcher, &DirectoryWatcher::directoryChanged, watcher, &QObject::deleteLater);
    watcher->directoryGotChanged(folderA);
    QVERIFY(destroyed.wait());
}

void tst_DirectoryWatcher::changesAreReported_data()
{
    QTest::addColumn<int>("change");
    QTest::newRow("file added") << 0;
    QTest::newRow("file removed") << 1;
    QTest::newRow("file renamed") << 2;
    QTest::newRow("folder added") << 3;
    QTest::newRow("folder removed") << 4;
    QTest::newRow("permissions changed") << 5;
    QTest::newRow("many files added") << 6;
}

void tst_DirectoryWatcher::changesAreReported()
{
    QFETCH(int, change);

    const QString watched = makeFolder("watched");
    const QString file = writeFile("watched/file", "");
    makeFolder("watched/folder");
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
        makeFolder("watched/new");
        break;
    case 4:
        QVERIFY(QDir().rmdir(path("watched/folder")));
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
    const QStringList folders = changes.first().first().toStringList();
    QVERIFY(!folders.isEmpty());
    QCOMPARE(folders.count(watched), folders.size());
}

void tst_DirectoryWatcher::changesOfTwoFoldersAreOneBurst()
{
    const QString first = makeFolder("first");
    const QString second = makeFolder("second");
    DirectoryWatcher watcher({first, second});
    watcher.setDelayInMs(longDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    writeFile("first/file", "");
    writeFile("second/file", "");
    QVERIFY(changes.wait());
    QStringList folders = changes.first().first().toStringList();
    QCOMPARE(changes.count(), 1);
    folders.removeDuplicates();
    folders.sort();
    QCOMPARE(folders, QStringList({first, second}));
}

void tst_DirectoryWatcher::contentOfFilesDoesNotCount_data()
{
    QTest::addColumn<bool>("isFileWatched");
    QTest::newRow("in a watched folder") << false;
    QTest::newRow("watched itself") << true;
}

void tst_DirectoryWatcher::contentOfFilesDoesNotCount()
{
    QFETCH(bool, isFileWatched);

    const QString watched = makeFolder("watched");
    const QString other = makeFolder("other");
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
    // Notices come in their order: what this one comes without was none.
    writeFile("other/file", "");
    QVERIFY(changes.wait());
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toStringList(), QStringList(other));
}

void tst_DirectoryWatcher::foldersBelowDoNotCount()
{
    makeFolder("below");
    const QString other = makeFolder("other");
    DirectoryWatcher watcher({folder(), other});
    watcher.setDelayInMs(longDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    writeFile("below/file", "");
    writeFile("other/file", "");
    QVERIFY(changes.wait());
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toStringList(), QStringList(other));
}

void tst_DirectoryWatcher::removedFolderIsReportedAndForgotten()
{
    const QString watched = makeFolder("watched");
    DirectoryWatcher watcher(watched);
    watcher.setDelayInMs(shortDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    QVERIFY(QDir().rmdir(watched));
    QVERIFY(changes.wait());
    QVERIFY(changes.takeFirst().first().toStringList().contains(watched));
    QVERIFY(!watcher.addPath(watched));

    // Made anew it is another folder, which must be added again.
    makeFolder("watched");
    QVERIFY(watcher.addPath(watched));
    writeFile("watched/file", "");
    QVERIFY(changes.wait());
    QVERIFY(changes.first().first().toStringList().contains(watched));
}

void tst_DirectoryWatcher::addPathTells_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isAdded");
    QTest::newRow("folder") << "folder" << true;
    QTest::newRow("folder, trailing slash") << "folder/" << true;
    QTest::newRow("file") << "file" << true;
    QTest::newRow("linked folder") << "link" << true;
    QTest::newRow("missing") << "missing" << false;
}

void tst_DirectoryWatcher::addPathTells()
{
    QFETCH(QString, name);
    QFETCH(bool, isAdded);

    const QString target = makeFolder("folder");
    writeFile("file", "");
    QVERIFY(QFile::link(target, path("link")));
    DirectoryWatcher watcher{QStringList()};
    const int watchesBefore = resources().watches;
    QCOMPARE(watcher.addPath(path(name)), isAdded);
    QCOMPARE(resources().watches - watchesBefore, isAdded ? 1 : 0);
}

void tst_DirectoryWatcher::pathBelowAFileIsLoggedByQt()
{
    const QString below = writeFile("file", "") + "/folder";
    DirectoryWatcher watcher{QStringList()};
    // The system's reasons are in the system's language.
    messages().expect(
        QtCriticalMsg,
        QStringLiteral("inotify_add_watch(%1) failed: (%2)").arg(below, qt_error_string(ENOTDIR)));
    QVERIFY(!watcher.addPath(below));
}

void tst_DirectoryWatcher::pathThatIsWatchedAlready()
{
    const QString watched = makeFolder("watched");
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

void tst_DirectoryWatcher::pathsAreAdded()
{
    const QStringList paths = {makeFolder("a"), makeFolder("b"), makeFolder("c")};
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
    QStringList folders = changes.first().first().toStringList();
    folders.removeDuplicates();
    folders.sort();
    QCOMPARE(folders, paths);
}

void tst_DirectoryWatcher::unwatchablePathsArePassedOver()
{
    const QString watched = makeFolder("watched");
    const int watchesBefore = resources().watches;
    const DirectoryWatcher some({path("missing"), watched, path("missing too")});
    QCOMPARE(resources().watches - watchesBefore, 1);
    const DirectoryWatcher none(path("missing"));
    QCOMPARE(resources().watches - watchesBefore, 1);
}

void tst_DirectoryWatcher::emptyListIsSilent()
{
    const int watchesBefore = resources().watches;
    DirectoryWatcher watcher{QStringList()};
    QCOMPARE(resources().watches, watchesBefore);

    QVERIFY(watcher.addPath(folder()));
    watcher.setDelayInMs(shortDelayInMs);
    QSignalSpy changes(&watcher, &DirectoryWatcher::directoryChanged);
    writeFile("file", "");
    QVERIFY(changes.wait());
}

void tst_DirectoryWatcher::emptyPathsWarnAsQtDoes()
{
    const QString listText = "QFileSystemWatcher::addPaths: list is empty";
    messages().expect(QtWarningMsg, listText);
    DirectoryWatcher watcher{QString()};
    messages().expect(QtWarningMsg, listText);
    watcher.addPaths({});
    messages().expect(QtWarningMsg, "QFileSystemWatcher::addPath: path is empty");
    QVERIFY(watcher.addPath(QString()));
}

void tst_DirectoryWatcher::nothingIsLeftBehind()
{
    const QStringList paths = {makeFolder("a"), makeFolder("b"), folder()};
    const Resources before = resources();
    {
        const DirectoryWatcher watcher(paths);
        const Resources during = resources();
        QCOMPARE(during.watches - before.watches, paths.size());
        QVERIFY(during.descriptors > before.descriptors);
    }
    for (int i = 0; i < 200; ++i) {
        DirectoryWatcher watcher(paths);
        watcher.directoryGotChanged(folderA);
        writeFile(QStringLiteral("a/%1").arg(i), "");
        QCoreApplication::processEvents();
    }
    QCOMPARE(resources().descriptors, before.descriptors);
    QCOMPARE(resources().watches, before.watches);
}

QTEST_GUILESS_MAIN(tst_DirectoryWatcher)

#include "tst_DirectoryWatcher.moc"
