#include "ChildProcess.h"
#include "CpuTime.h"
#include "DirectoryWatcher.h"
#include "IniFileManager.h"
#include "TestCase.h"
#include "WildcardFilter.h"

#include <QtCore/QDirIterator>

#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString root = QStringLiteral(PROJECT_DIRECTORY);
const QString net = "Net";
const QString key = "key";

QStringList texts(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* text : list) {
        result.append(QString::fromLatin1(text));
    }
    return result;
}

// All captures of the expression's first group in the project's files with those names.
QStringList found(const QString& below, const QStringList& names, const QString& expression)
{
    QStringList result;
    QDirIterator files(root + below, names, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly)) {
            auto matches =
                QRegularExpression(expression).globalMatch(QString::fromUtf8(file.readAll()));
            while (matches.hasNext()) {
                result.append(matches.next().captured(1));
            }
        }
    }
    return result;
}

constexpr int noLimits = 100;

bool writeSetting(const char* filePath, const QByteArray& value)
{
    QFile file(QString::fromLatin1(filePath));
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
           file.write(value) == value.size();
}

// Limits this process's inotify resources: the root of a user namespace may set its own limits,
// which work like those of the system.
bool limitInotify(const char* setting, const QByteArray& value)
{
    return writeSetting(QByteArray("/proc/sys/user/").append(setting).constData(), value);
}

// Runs with a limit on watches; returns how many of four more directories are watched.
int watchFiveDirectories(const QDir& directory)
{
    if (!limitInotify("max_inotify_watches", "3")) {
        return noLimits;
    }
    DirectoryWatcher watcher(QStringList{directory.filePath("0")});
    int added = 0;
    for (int i = 1; i < 5; ++i) {
        added += watcher.addPath(directory.filePath(QString::number(i))) ? 1 : 0;
    }
    return added;
}

// Runs with a limit of one inotify instance; returns 0 if a second watcher reports a change late.
int watchOneDirectoryTwice(const QDir& directory)
{
    if (!limitInotify("max_inotify_instances", "1")) {
        return noLimits;
    }
    const QString inbox = directory.filePath("inbox");
    DirectoryWatcher first(inbox);
    DirectoryWatcher second(inbox);
    first.setDelayInMs(0);
    second.setDelayInMs(0);
    QSignalSpy changesOfFirst(&first, &DirectoryWatcher::directoryChanged);
    QSignalSpy changesOfSecond(&second, &DirectoryWatcher::directoryChanged);
    QElapsedTimer timer;
    timer.start();
    if (!QFile(QDir(inbox).filePath("file")).open(QIODevice::WriteOnly) || !changesOfFirst.wait() ||
        !changesOfSecond.isEmpty()) {
        return 1;
    }
    // The first poll is a second after construction.
    return changesOfSecond.wait() && timer.elapsed() > 500 ? 0 : 2;
}

const QHash<QString, int (*)(const QDir& directory)> limitedParts = {
    {"watches", watchFiveDirectories},
    {"instances", watchOneDirectoryTwice},
};

// Runs a part as the root of a user namespace. Another program creates the namespace, because a
// process with threads, such as an emulator, cannot enter one.
ChildResult runLimited(const char* part, const QString& directory)
{
    return ChildProcess::run([part, &directory] {
        execlp("unshare", "unshare", "--user", "--map-root-user",
               qPrintable(QCoreApplication::applicationFilePath()), part, qPrintable(directory),
               nullptr);
        return noLimits;
    });
}

#define MISCTOOLS_NEED_LIMITS(result)                                                              \
    do {                                                                                           \
        QVERIFY2(result.exited, result.output.constData());                                        \
        if (result.exitCode == noLimits || result.output.startsWith("unshare: ")) {                \
            MISCTOOLS_SKIP("needs user namespaces with separate limits");                          \
        }                                                                                          \
    } while (false)

} // namespace

// Demonstrates the statements of docs/gotchas.md that no test of a class covers.
class tst_Gotchas : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void commasMakeLists();
    void semicolonsEndValues();
    void wordsThatReadAsFalse();
    void largeNumbersAreTruncated();
    void commentsAreLostOnWriting();
    void sectionsNestAtSlashes();
    void containsDependsOnWhatWasParsed();
    void topLevelReadsListAllKeys();
    void replacedFilesAreOwnedByTheWriter();
    void specialFilesBecomeRegularFiles();
    void filterExcludesDotEntries();
    void renamedDirectoryIsNotReported();
    void watchesBeyondTheLimitFail();
    void watchersBeyondTheLimitPollEverySecond();
    void namedTestsExist();

private:
    std::unique_ptr<IniFileManager> iniFile(const QByteArray& content) const
    {
        return std::make_unique<IniFileManager>(writeFile("file.ini", content), nullptr);
    }
};

void tst_Gotchas::commasMakeLists()
{
    const auto file = iniFile("[Net]\nkey=eth0, eth1\nquoted=\"eth0, eth1\"\n");
    QCOMPARE(file->getValueString(net, key, QStringLiteral("default")), QString());
    QCOMPARE(file->getValue(net, key, QVariant()).toStringList(), texts({"eth0", "eth1"}));
    QCOMPARE(file->getValueString(net, QStringLiteral("quoted"), QString()), "eth0, eth1");
}

void tst_Gotchas::semicolonsEndValues()
{
    const auto file = iniFile("[Net]\nkey=on;off\nquoted=\"on;off\"\n");
    QCOMPARE(file->getValueString(net, key, QString()), QStringLiteral("on"));
    QCOMPARE(file->getValueString(net, QStringLiteral("quoted"), QString()), "on;off");
}

void tst_Gotchas::wordsThatReadAsFalse()
{
    const auto file = iniFile("[Net]\noff=off\nno=no\nfalse=FALSE\n0=0\nempty=\n");
    QCOMPARE(file->getValueBool(net, QStringLiteral("off"), false), true);
    QCOMPARE(file->getValueBool(net, QStringLiteral("no"), false), true);
    QCOMPARE(file->getValueBool(net, QStringLiteral("false"), true), false);
    QCOMPARE(file->getValueBool(net, QStringLiteral("0"), true), false);
    QCOMPARE(file->getValueBool(net, QStringLiteral("empty"), true), false);
}

void tst_Gotchas::largeNumbersAreTruncated()
{
    const auto file = iniFile("[Net]\nkey=4294967301\n");
    QCOMPARE(file->getValueInteger(net, key, 0), 5);
    QCOMPARE(file->getValue(net, key, QVariant()).toLongLong(), 4294967301LL);
}

void tst_Gotchas::commentsAreLostOnWriting()
{
    const auto file = iniFile("; a comment\n[Net]\nkey=1\n# none=2\n");
    file->setValue(net, key, 3);
    file->sync();
    const QByteArray content = readFile(path("file.ini"));
    QVERIFY2(!content.contains("a comment"), content.constData());
    QVERIFY2(content.contains("\nkey=3\n"), content.constData());
    QVERIFY2(content.contains("%23%20none=2\n"), content.constData());
}

void tst_Gotchas::sectionsNestAtSlashes()
{
    const auto file = iniFile("[Net/eth0]\nkey=1\n");
    QCOMPARE(file->getGroups(), texts({"Net"}));
    QCOMPARE(file->getValueInteger(QStringLiteral("Net/eth0"), key, 0), 1);
}

void tst_Gotchas::containsDependsOnWhatWasParsed()
{
    const QString port = "Port";
    const QString filePath = writeFile("file", "[Net]\nPort=80\n[Net/Alias]\nx=1\n");
    const IniFileManager fresh(filePath, nullptr);
    QVERIFY(!fresh.contains(net, port));
    QCOMPARE(fresh.getValueInteger(net, port, 0), 80);
    QVERIFY(fresh.contains(net, port));
}

void tst_Gotchas::topLevelReadsListAllKeys()
{
    constexpr int count = 2000;
    QByteArray keys;
    for (int i = 0; i < count; ++i) {
        keys += "key" + QByteArray::number(i) + "=1\n";
    }
    const QString filePath = writeFile("file", keys + "[Net]\n" + keys);
    const IniFileManager manager(filePath, nullptr);
    const auto secondsOf = [](const std::function<void(const QString&)>& read) {
        const CpuTime time;
        for (int i = 0; i < count; ++i) {
            read(QStringLiteral("key%1").arg(i));
        }
        return time.seconds();
    };
    const double topLevel =
        secondsOf([&manager](const QString& name) { manager.getGeneralValue(name, QVariant()); });
    const double inGroup =
        secondsOf([&manager](const QString& name) { manager.getValue(net, name, QVariant()); });
    // The ratio is about 200 if nothing else is measured.
    QVERIFY2(topLevel > 10 * inGroup,
             qPrintable(QStringLiteral("%1 s and %2 s").arg(topLevel).arg(inGroup)));
}

void tst_Gotchas::replacedFilesAreOwnedByTheWriter()
{
    const QString filePath = path("file");
    const auto replaceFile = [&filePath](bool isCleanedUp) {
        if (isCleanedUp) {
            IniFileManager::cleanUp(filePath);
        } else {
            IniFileManager manager(filePath, nullptr);
            manager.setValue(net, key, 1);
            manager.sync();
        }
    };
    for (const bool isCleanedUp : {true, false}) {
        QFile::remove(filePath);
        writeFile("file", "[Net]\na=1\n");
        // Only root can change a file's owner; for everyone the file is replaced by a new one.
        constexpr uid_t other = 65534;
        const bool isRoot =
            chown(QFile::encodeName(filePath).constData(), other, other) == 0 && geteuid() == 0;
        const QString otherName = path(QStringLiteral("link%1").arg(isCleanedUp));
        QCOMPARE(
            link(QFile::encodeName(filePath).constData(), QFile::encodeName(otherName).constData()),
            0);
        replaceFile(isCleanedUp);
        QCOMPARE(QFileInfo(filePath).ownerId(), uint(geteuid()));
        QCOMPARE(QFileInfo(otherName).ownerId(), isRoot ? other : uint(geteuid()));
        QCOMPARE(readFile(otherName), QByteArray("[Net]\na=1\n"));
        QCOMPARE(readFile(filePath) != readFile(otherName), !isCleanedUp);
    }
}

void tst_Gotchas::specialFilesBecomeRegularFiles()
{
    const QString filePath = path("file");
    const QByteArray name = QFile::encodeName(filePath);
    const auto withWriter = [&name](const QByteArray& text,
                                    const std::function<void()>& replaceFile) {
        std::thread writer([&name, &text] {
            const int descriptor =
                int(TEMP_FAILURE_RETRY(open(name.constData(), O_WRONLY | O_CLOEXEC)));
            if (TEMP_FAILURE_RETRY(write(descriptor, text.constData(), size_t(text.size()))) !=
                text.size()) {
                qFatal("cannot write into the FIFO: %s", strerror(errno));
            }
            close(descriptor);
        });
        replaceFile();
        writer.join();
    };

    QCOMPARE(mkfifo(name.constData(), 0600), 0);
    withWriter("a=1,\n", [&filePath] { IniFileManager::cleanUp(filePath); });
    QVERIFY(QFileInfo(filePath).isFile());
    QCOMPARE(readFile(filePath), QByteArray("a=1 \n"));

    QVERIFY(QFile::remove(filePath));
    QCOMPARE(mkfifo(name.constData(), 0600), 0);
    // QSettings opens the FIFO but reads nothing from a file of size 0.
    withWriter(QByteArray(), [&filePath] {
        IniFileManager manager(filePath, nullptr);
        manager.setValue(net, key, 1);
        manager.sync();
    });
    QVERIFY(QFileInfo(filePath).isFile());
    QVERIFY(readFile(filePath).contains("[Net]\nkey=1\n"));
}

void tst_Gotchas::filterExcludesDotEntries()
{
    QFileInfoList entries;
    searchFilesOnPathRecursive(directory(), {}, entries);
    QCOMPARE(entries.size(), 2);
    entries.clear();
    searchFilesOnPathRecursive(directory(), {}, QDir::AllEntries | QDir::NoDotAndDotDot, entries);
    QVERIFY(entries.isEmpty());
}

void tst_Gotchas::renamedDirectoryIsNotReported()
{
    const QString inbox = path("inbox");
    const QString other = path("other");
    QVERIFY(QDir().mkdir(inbox) && QDir().mkdir(other));
    DirectoryWatcher watcher(QStringList{inbox, other});
    watcher.setDelayInMs(50);
    QStringList changed;
    connect(&watcher, &DirectoryWatcher::directoryChanged,
            [&changed](const QStringList& directories) { changed += directories; });

    QVERIFY(QDir().rename(inbox, path("old")));
    QVERIFY(QDir().mkdir(inbox));
    writeFile("inbox/file", "");
    writeFile("other/file", ""); // is reported after the others
    QTRY_COMPARE(changed, QStringList(other));
    QVERIFY(!watcher.addPath(inbox));

    changed.clear();
    writeFile("old/file", "");
    QTRY_COMPARE(changed, QStringList(inbox)); // under its old name

    DirectoryWatcher fresh(inbox);
    fresh.setDelayInMs(50);
    QSignalSpy changes(&fresh, &DirectoryWatcher::directoryChanged);
    writeFile("inbox/second", "");
    QVERIFY(changes.wait());
}

// The system allows three watches. A directory that cannot be added uses none.
void tst_Gotchas::watchesBeyondTheLimitFail()
{
    for (int i = 0; i < 5; ++i) {
        QVERIFY(QDir().mkdir(path(QString::number(i))));
    }
    const ChildResult result = runLimited("watches", directory());
    MISCTOOLS_NEED_LIMITS(result);
    QCOMPARE(result.exitCode, 2);
    const QByteArray message = "inotify_add_watch(" + path("3").toUtf8() + ") failed:";
    QVERIFY2(result.output.startsWith(message), result.output.constData());
    QCOMPARE(result.output.count("inotify_add_watch("), 2);
    QCOMPARE(result.output.count("No space left on device"), 2);
}

// The system allows one instance, so one watcher. A second watcher polls its directories once a
// second, without a message.
void tst_Gotchas::watchersBeyondTheLimitPollEverySecond()
{
    QVERIFY(QDir().mkdir(path("inbox")));
    const ChildResult result = runLimited("instances", directory());
    MISCTOOLS_NEED_LIMITS(result);
    QVERIFY2(result.output.isEmpty(), result.output.constData());
    QCOMPARE(result.exitCode, 0);
}

void tst_Gotchas::namedTestsExist()
{
    const QStringList named = found(QString(), {"*.md"}, "`(tst_\\w+::\\w+)`");
    const QStringList functions = found("/tests", {"tst_*.cpp"}, "\nvoid (tst_\\w+::\\w+)\\(\\)");
    QVERIFY(named.size() > 15);
    for (const QString& test : named) {
        QVERIFY2(functions.contains(test), qUtf8Printable(test));
    }
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && limitedParts.contains(arguments.at(1))) {
        return limitedParts.value(arguments.at(1))(QDir(arguments.at(2)));
    }
    tst_Gotchas test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Gotchas.moc"
