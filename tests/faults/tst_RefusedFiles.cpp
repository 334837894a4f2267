#include "ChildProcess.h"
#include "IniFileManager.h"
#include "TestCase.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QSysInfo>

#include <sys/wait.h>
#include <unistd.h>

namespace {

const QByteArray oldSettings = "[Net]\nPort=80\n";
const QByteArray newSettings = "[Net]\nPort=8080\n";

void setAndSync(const QString& filePath)
{
    IniFileManager manager(filePath, nullptr);
    manager.setValue("Net", "Port", 8080);
    manager.sync();
}

// The ID of a process that has terminated.
QByteArray deadProcess()
{
    const pid_t process = fork();
    if (process == 0) {
        _exit(0);
    }
    waitpid(process, nullptr, 0);
    return QByteArray::number(process);
}

QByteArray lockOf(const QByteArray& process, const QByteArray& program, const QByteArray& host,
                  const QByteArray& hostId)
{
    return process + '\n' + program + '\n' + host + '\n' + hostId + '\n' +
           QSysInfo::bootUniqueId() + '\n';
}

} // namespace

// Settings whose file cannot be written, or that another process seems to be writing.
class tst_RefusedFiles : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void withoutPermission_data();
    void withoutPermission();
    void leftoverLock_data();
    void leftoverLock();

private:
    QString file() const { return path("settings.ini"); }
    QString lock() const { return path("settings.ini.lock"); }
    QStringList entries() const
    {
        return QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
};

void tst_RefusedFiles::withoutPermission_data()
{
    QTest::addColumn<int>("filePermissions");
    QTest::addColumn<int>("directoryPermissions");
    QTest::newRow("read-only file") << 0x4444 << 0x7777;
    QTest::newRow("read-only directory") << 0x6666 << 0x5555;
    QTest::newRow("read-only file and directory") << 0x4444 << 0x5555;
    QTest::newRow("unreadable file") << 0x2222 << 0x7777;
    QTest::newRow("unreadable directory") << 0x6666 << 0x3333;
    QTest::newRow("file without permissions") << 0x0000 << 0x7777;
}

void tst_RefusedFiles::withoutPermission()
{
    QFETCH(int, filePermissions);
    QFETCH(int, directoryPermissions);
    writeFile("settings.ini", oldSettings);
    QVERIFY(QFile::setPermissions(file(), QFileDevice::Permissions(filePermissions)));
    QVERIFY(QFile::setPermissions(directory(), QFileDevice::Permissions(directoryPermissions)));
    const ChildResult result = ChildProcess::runAsOrdinaryUser([this] {
        QElapsedTimer timer;
        timer.start();
        setAndSync(file());
        return timer.elapsed() < 5000 ? 0 : 1;
    });
    // Before all checks, so that the directory can be removed.
    QVERIFY(QFile::setPermissions(directory(), QFileDevice::Permissions(0x7700)));
    QVERIFY(QFile::setPermissions(file(), QFileDevice::Permissions(0x6600)));
    QVERIFY(result.exited);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output, QByteArray());
    // A directory that is writable but not readable does not prevent the save.
    const bool isWritten = qstrcmp(QTest::currentDataTag(), "unreadable directory") == 0;
    QCOMPARE(readFile(file()), isWritten ? newSettings : oldSettings);
    QCOMPARE(entries(), QStringList(QStringLiteral("settings.ini")));
}

void tst_RefusedFiles::leftoverLock_data()
{
    QTest::addColumn<QByteArray>("lockText");
    QTest::addColumn<int>("ageInSeconds");
    QTest::addColumn<bool>("isWaitedFor");

    const QByteArray own = QByteArray::number(QCoreApplication::applicationPid());
    const QByteArray host = QSysInfo::machineHostName().toUtf8();
    const QByteArray hostId = QSysInfo::machineUniqueId();
    const QByteArray ofOtherHost =
        lockOf(deadProcess(), "program", "other-host", "0123456789abcdef");
    const auto row = [](const char* name, const QByteArray& text, int age, bool isWaitedFor) {
        QTest::newRow(name) << text << age << isWaitedFor;
    };
    // A terminated process does not own its lock.
    row("dead process", lockOf(deadProcess(), "program", host, hostId), 0, false);
    row("dead process without a host", lockOf(deadProcess(), "program", "", ""), 0, false);
    row("process ID that another program has now", lockOf(own, "program", host, hostId), 0, false);
    row("before a reboot", own + "\nprogram\n" + host + '\n' + hostId + "\nanother-boot\n", 0,
        false);
    // The state of other owners is unknown: their locks are valid for half a minute, here for the
    // rest of it.
    row("other host", ofOtherHost, 28, true);
    row("other host, long ago", ofOtherHost, 3600, false);
    row("other host, in the future", ofOtherHost, -3600, false);
    row("empty", "", 28, true);
    row("empty, long ago", "", 3600, false);
    row("garbage", QByteArray(5000, '\xA5'), 28, true);
    row("garbage, long ago", QByteArray(5000, '\xA5'), 3600, false);
    row("zeros, long ago", QByteArray(4096, '\0'), 3600, false);
}

void tst_RefusedFiles::leftoverLock()
{
    QFETCH(QByteArray, lockText);
    QFETCH(int, ageInSeconds);
    QFETCH(bool, isWaitedFor);
    writeFile("settings.ini", oldSettings);
    writeFile("settings.ini.lock", lockText);
    QFile lockFile(lock());
    QVERIFY(lockFile.open(QIODevice::ReadWrite));
    QVERIFY(lockFile.setFileTime(QDateTime::currentDateTime().addSecs(-ageInSeconds),
                                 QFileDevice::FileModificationTime));
    lockFile.close();
    if (ageInSeconds < 0) {
        messages().expect(QtInfoMsg, QStringLiteral("QLockFile: Lock file '%1' has a modification "
                                                    "time in the future")
                                         .arg(lock()));
    }

    QElapsedTimer timer;
    timer.start();
    setAndSync(file());
    const qint64 elapsed = timer.elapsed();

    QCOMPARE(readFile(file()), newSettings);
    QCOMPARE(entries(), QStringList(QStringLiteral("settings.ini")));
    QVERIFY2(isWaitedFor ? elapsed >= 1000 : elapsed < 1000, QByteArray::number(elapsed));
    QVERIFY2(elapsed < 15000, QByteArray::number(elapsed));
}

QTEST_GUILESS_MAIN(tst_RefusedFiles)
#include "tst_RefusedFiles.moc"
