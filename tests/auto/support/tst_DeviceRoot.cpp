#include "ChildProcess.h"
#include "DeviceRoot.h"
#include "TestCase.h"

#include <QtCore/QDirIterator>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>

#include <csignal>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// The exit state of a program in a device root, and the output of the program and the launcher.
struct Result
{
    QProcess::ExitStatus status = QProcess::CrashExit;
    int exitCode = -1; // or the signal
    QByteArray output;
    QByteArray errors;
};

// A shell command that lists a device's paths.
const QByteArray listDevice("for f in /orvalis /orvalis-reboot /etc/rauc; do "
                            "[ -e $f ] && echo $f; done; cat /proc/cmdline");

// The entries of the machine's root directory, and the device files that the machine has.
QStringList machine()
{
    QStringList entries = QDir("/").entryList(QDir::AllEntries | QDir::Hidden | QDir::System);
    for (const QString& directory : {QStringLiteral("/orvalis"), QStringLiteral("/etc/rauc")}) {
        QDirIterator iterator(directory, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                              QDirIterator::Subdirectories);
        while (iterator.hasNext()) {
            entries.append(iterator.next());
        }
    }
    return entries;
}

} // namespace

// Tests the launcher that provides a device's files at their real paths.
class tst_DeviceRoot : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void filesAreAtTheirPaths();
    void filesMissingInTheTreeDoNotExist();
    void commandLineCanBeChanged();
    void filesOfTheDeviceCanBeChanged();
    void machineIsNotChanged();
    void twoDeviceRootsAreIndependent();
    void restOfTheMachineIsVisible();
    void argumentsArePassedThrough();
    void standardInputIsPassedThrough();
    void exitCodesArePassedThrough_data();
    void exitCodesArePassedThrough();
    void signalsArePassedThrough();
    void workingDirectoryIsKept_data();
    void workingDirectoryIsKept();
    void linksInTheTreeAreKept();
    void treePathMayBeRelative();
    void unusableTreeIsRejected_data();
    void unusableTreeIsRejected();
    void missingProgramShowsUsage();
    void ordinaryUserMayUseADeviceRoot();
    void unreadableTreeIsRejected_data();
    void unreadableTreeIsRejected();
    void programRunsWithoutNamespaces();
    void programRunsWithoutPivotRoot();
    void testsAreSkippedWithoutNamespaces();
    void skipFailsInContinuousIntegration_data();
    void skipFailsInContinuousIntegration();
    void variableAloneIsNotADeviceRoot();

private:
    // Creates an empty tree in the row's directory and restores the test's original environment.
    void prepare();
    bool isAvailable();
    QString writeTreeFile(const QString& name, const QByteArray& content);
    Result runProgram(const QString& program, const QStringList& arguments,
                      const QByteArray& input = QByteArray());
    // Runs a shell command in a device root of the row's tree.
    Result runShell(const QByteArray& command, const QStringList& arguments = QStringList());
    // Runs a shell command in the row's directory as an ordinary user; "$LAUNCHER" is the launcher.
    ChildResult runAsOrdinaryUser(const QByteArray& command);
    // Makes the row's programs use an unshare that fails as if namespaces were forbidden.
    void forbidNamespaces();

    const QString m_launcher = QStringLiteral(MISCTOOLS_DEVICE_ROOT_LAUNCHER);
    QString m_currentDirectory;
    QProcessEnvironment m_environment;
};

#define NEED_NAMESPACES()                                                                          \
    do {                                                                                           \
        prepare();                                                                                 \
        if (!isAvailable()) {                                                                      \
            MISCTOOLS_SKIP("needs private namespaces, which are not available here");              \
        }                                                                                          \
    } while (false)

void tst_DeviceRoot::prepare()
{
    m_currentDirectory = directory();
    m_environment = QProcessEnvironment::systemEnvironment();
    QVERIFY(QDir(directory()).mkpath("tree"));
}

bool tst_DeviceRoot::isAvailable()
{
    // Checked once, because each start takes a while.
    static const bool available = !runShell("true").errors.contains("not available here");
    return available;
}

QString tst_DeviceRoot::writeTreeFile(const QString& name, const QByteArray& content)
{
    const QString file = "tree/" + name;
    QDir().mkpath(QFileInfo(path(file)).path());
    return writeFile(file, content);
}

Result tst_DeviceRoot::runProgram(const QString& program, const QStringList& arguments,
                                  const QByteArray& input)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.setWorkingDirectory(m_currentDirectory);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    Result result;
    if (!process.waitForFinished(60000)) {
        qFatal("%s does not exit", qPrintable(program));
    }
    result.status = process.exitStatus();
    result.exitCode = process.exitCode();
    result.output = process.readAllStandardOutput();
    result.errors = process.readAllStandardError();
    return result;
}

Result tst_DeviceRoot::runShell(const QByteArray& command, const QStringList& arguments)
{
    return runProgram(m_launcher,
                      QStringList{path("tree"), "sh", "-c", QString::fromUtf8(command), "sh"} +
                          arguments);
}

ChildResult tst_DeviceRoot::runAsOrdinaryUser(const QByteArray& command)
{
    // An ordinary user may have no access to the checkout.
    const QString launcher = path("launcher");
    if (!QFile::exists(launcher) && !QFile::copy(m_launcher, launcher)) {
        qFatal("cannot copy the launcher");
    }
    const QByteArray place = QFile::encodeName(directory());
    chmod(place.constData(), 0755);
    const QByteArray script = "cd '" + place + "' && LAUNCHER=./launcher && " + command;
    return ChildProcess::runAsOrdinaryUser([&script] {
        // An ordinary user's PATH often lacks the directories of system tools.
        setenv("PATH", "/usr/bin:/bin", 1);
        execl("/bin/sh", "sh", "-c", script.constData(), nullptr);
        return 254;
    });
}

void tst_DeviceRoot::forbidNamespaces()
{
    QDir().mkpath(path("bin"));
    const QString unshare = writeFile(
        "bin/unshare",
        "#!/bin/sh\necho 'unshare: unshare failed: Operation not permitted' >&2\nexit 1\n");
    QFile::setPermissions(unshare, QFile::ReadOwner | QFile::ExeOwner);
    const QString searchPath = "PATH";
    m_environment.insert(searchPath,
                         path("bin") + QLatin1Char(':') + m_environment.value(searchPath));
}

void tst_DeviceRoot::filesAreAtTheirPaths()
{
    NEED_NAMESPACES();
    writeTreeFile("orvalis/VersionFile.ini", "version");
    writeTreeFile("orvalis/etc/OrvalisVersionInfo.ini", "info");
    writeTreeFile("orvalis/etc/orvalis-first-boot", "");
    writeTreeFile("orvalis-reboot", "");
    writeTreeFile("etc/rauc/system.conf", "system");
    writeTreeFile("proc/cmdline", "quiet\n");

    const Result result = runShell(
        "cat /orvalis/VersionFile.ini; echo; cat /orvalis/etc/OrvalisVersionInfo.ini; echo; "
        "cat /etc/rauc/system.conf; echo; cat /proc/cmdline; "
        "find /orvalis /orvalis-reboot /etc/rauc -type f | LC_ALL=C sort");
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.output, QByteArray("version\ninfo\nsystem\nquiet\n"
                                       "/etc/rauc/system.conf\n/orvalis-reboot\n"
                                       "/orvalis/VersionFile.ini\n"
                                       "/orvalis/etc/OrvalisVersionInfo.ini\n"
                                       "/orvalis/etc/orvalis-first-boot\n"));
    QCOMPARE(result.exitCode, 0);
}

void tst_DeviceRoot::filesMissingInTheTreeDoNotExist()
{
    NEED_NAMESPACES();
    const Result result = runShell(listDevice);
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.output, QByteArray());
}

void tst_DeviceRoot::commandLineCanBeChanged()
{
    NEED_NAMESPACES();
    writeTreeFile("proc/cmdline", "first\n");
    const Result result = runShell("cat /proc/cmdline; echo second "
                                   ">$MISCTOOLS_DEVICE_ROOT/cmdline; cat /proc/cmdline");
    QCOMPARE(result.output, QByteArray("first\nsecond\n"));
    QCOMPARE(readFile(path(QStringLiteral("tree/proc/cmdline"))), QByteArray("first\n"));
}

void tst_DeviceRoot::filesOfTheDeviceCanBeChanged()
{
    NEED_NAMESPACES();
    const QString reboot = writeTreeFile("orvalis-reboot", "");
    const QString version = writeTreeFile("orvalis/VersionFile.ini", "old");
    const Result result = runShell(
        "rm /orvalis-reboot && echo new >/orvalis/VersionFile.ini && mkdir /etc/rauc && "
        "touch /etc/rauc/system.conf && ls / | grep orvalis; cat /orvalis/*; ls /etc/rauc");
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.output, QByteArray("orvalis\nnew\nsystem.conf\n"));
    // The tree itself is not changed.
    QVERIFY(QFile::exists(reboot));
    QCOMPARE(readFile(version), QByteArray("old"));
    QVERIFY(!QFile::exists(path("tree/etc")));
}

void tst_DeviceRoot::machineIsNotChanged()
{
    NEED_NAMESPACES();
    writeTreeFile("orvalis/VersionFile.ini", "version");
    writeTreeFile("orvalis-reboot", "");
    const QStringList before = machine();
    const QByteArray commandLine = readFile("/proc/cmdline");
    const QByteArray mounts = readFile("/proc/self/mounts");

    const Result result = runShell("touch /orvalis/new /etc/rauc && mkdir /directory && echo in");
    QCOMPARE(result.output, QByteArray("in\n"));

    QCOMPARE(machine(), before);
    QCOMPARE(readFile(QStringLiteral("/proc/cmdline")), commandLine);
    QCOMPARE(readFile(QStringLiteral("/proc/self/mounts")), mounts);
}

void tst_DeviceRoot::twoDeviceRootsAreIndependent()
{
    NEED_NAMESPACES();
    // Each program reports that it is ready, waits for the other, and then lists its files.
    const QStringList names{"a", "b"};
    QScopedPointer<QProcess> processes[2];
    for (int i = 0; i < 2; ++i) {
        writeFile(names.at(i), QByteArray());
        QVERIFY(QDir(directory()).mkpath("tree-" + names.at(i)));
        writeFile(QStringLiteral("tree-%1/orvalis-reboot").arg(names.at(i)),
                  names.at(i).toLatin1());
        processes[i].reset(new QProcess);
        processes[i]->start(
            m_launcher,
            {path("tree-" + names.at(i)), "sh", "-c",
             QStringLiteral("echo own-%1 >$MISCTOOLS_DEVICE_ROOT/cmdline; mkdir /orvalis; "
                            "touch /orvalis/%1 /etc/rauc; echo ready; read line; "
                            "cat /orvalis-reboot /proc/cmdline; ls /orvalis")
                 .arg(names.at(i))});
    }
    for (const QScopedPointer<QProcess>& process : processes) {
        QTRY_VERIFY_WITH_TIMEOUT(process->canReadLine(), 30000);
        QCOMPARE(process->readLine(), QByteArray("ready\n"));
    }
    for (int i = 0; i < 2; ++i) {
        processes[i]->write("go\n");
        processes[i]->closeWriteChannel();
        QVERIFY(processes[i]->waitForFinished());
        const QByteArray name = names.at(i).toLatin1();
        QCOMPARE(processes[i]->readAllStandardOutput(), name + "own-" + name + '\n' + name + '\n');
    }
}

void tst_DeviceRoot::restOfTheMachineIsVisible()
{
    NEED_NAMESPACES();
    // Every other entry of the machine's / and /etc is visible in the device root, too.
    QByteArray expected;
    for (const QString& name : {QStringLiteral("/"), QStringLiteral("/etc")}) {
        const QStringList entries =
            QDir(name).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        for (const QString& entry : entries) {
            const QString file = name + QLatin1Char('/') + entry;
            if (!entry.startsWith(QLatin1String("orvalis")) && entry != QLatin1String("rauc")) {
                expected += QFile::encodeName(file) + '\n';
            }
        }
    }
    const QString list = writeFile("list", expected);
    const Result result = runShell("while IFS= read -r f; do [ -e \"$f\" ] && echo \"$f\"; done "
                                   "<\"$1\"; cat /etc/passwd | cmp - \"$2\" >&2",
                                   {list, "/etc/passwd"});
    QCOMPARE(result.output, expected);
    QCOMPARE(result.errors, QByteArray());
}

void tst_DeviceRoot::argumentsArePassedThrough()
{
    NEED_NAMESPACES();
    const QStringList arguments{"two  spaces", QString(), "*",       "--inside",
                                "line\nfeed",  "$HOME",   "quote'\""};
    const Result result = runShell("printf '<%s>' \"$@\"", arguments);
    QByteArray expected;
    for (const QString& argument : arguments) {
        expected += '<' + argument.toUtf8() + '>';
    }
    QCOMPARE(result.output, expected);
}

void tst_DeviceRoot::standardInputIsPassedThrough()
{
    NEED_NAMESPACES();
    const QByteArray input(100000, 'x');
    const Result result = runProgram(m_launcher, {path("tree"), "cat"}, input);
    QCOMPARE(result.output.size(), input.size());
    QCOMPARE(result.output, input);
}

void tst_DeviceRoot::exitCodesArePassedThrough_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {0, 1, 2, 77, 125, 255}) {
        QTest::addRow("%d", code) << code;
    }
}

void tst_DeviceRoot::exitCodesArePassedThrough()
{
    NEED_NAMESPACES();
    QFETCH(int, code);
    const Result result = runShell("exit " + QByteArray::number(code));
    QCOMPARE(result.status, QProcess::NormalExit);
    QCOMPARE(result.exitCode, code);
}

void tst_DeviceRoot::signalsArePassedThrough()
{
    NEED_NAMESPACES();
    // A signal that the program sends to itself ...
    const Result result = runShell("kill -KILL $$");
    QCOMPARE(result.status, QProcess::CrashExit);
    QCOMPARE(result.exitCode, SIGKILL);

    // ... and one that the launcher receives.
    QProcess process;
    process.start(m_launcher, {path("tree"), "sh", "-c",
                               QStringLiteral("trap 'echo caught; exit 9' TERM; echo ready; "
                                              "while :; do read line || exit 8; done")});
    QTRY_VERIFY_WITH_TIMEOUT(process.canReadLine(), 30000);
    QCOMPARE(process.readLine(), QByteArray("ready\n"));
    process.terminate();
    // The shell handles signals between two commands.
    process.write("\n");
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAll(), QByteArray("caught\n"));
    QCOMPARE(process.exitCode(), 9);
}

void tst_DeviceRoot::workingDirectoryIsKept_data()
{
    QTest::addColumn<QString>("directoryPath"); // null: the row's directory
    QTest::newRow("temporary directory") << QString();
    QTest::newRow("root") << "/";
    QTest::newRow("tmp") << "/tmp";
    QTest::newRow("mount point of the new root") << "/mnt";
    QTest::newRow("the project") << QFileInfo(m_launcher).path();
    QTest::newRow("etc") << "/etc";
}

void tst_DeviceRoot::workingDirectoryIsKept()
{
    NEED_NAMESPACES();
    QFETCH(QString, directoryPath);
    m_currentDirectory = directoryPath.isNull() ? directory() : directoryPath;
    const Result result = runShell("pwd");
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.output, QFile::encodeName(m_currentDirectory) + '\n');
}

void tst_DeviceRoot::linksInTheTreeAreKept()
{
    NEED_NAMESPACES();
    QVERIFY(QFile::link("/nothing", path("tree/orvalis-reboot")));
    QVERIFY(QDir(directory()).mkpath("tree/orvalis/etc"));
    QVERIFY(QFile::link("/etc/passwd", path("tree/orvalis/etc/orvalis-first-boot")));
    const Result result =
        runShell("readlink /orvalis-reboot; readlink /orvalis/etc/orvalis-first-boot");
    QCOMPARE(result.output, QByteArray("/nothing\n/etc/passwd\n"));
}

void tst_DeviceRoot::treePathMayBeRelative()
{
    NEED_NAMESPACES();
    QVERIFY(QDir(directory()).mkpath("a  tree/-odd"));
    writeFile("a  tree/-odd/orvalis-reboot", "odd");
    m_currentDirectory = path("a  tree");
    const Result result = runProgram(m_launcher, {"-odd", "cat", "/orvalis-reboot"});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.output, QByteArray("odd"));
}

void tst_DeviceRoot::unusableTreeIsRejected_data()
{
    QTest::addColumn<QString>("tree");
    QTest::newRow("missing") << "none";
    QTest::newRow("file") << "file";
    QTest::newRow("empty name") << QString();
}

void tst_DeviceRoot::unusableTreeIsRejected()
{
    QFETCH(QString, tree);
    prepare();
    writeFile("file", "x");
    const Result result = runProgram(m_launcher, {tree, "echo", "must not run"});
    QCOMPARE(result.errors, "device root: no such directory: " + tree.toUtf8() + '\n');
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.exitCode, 125);
}

void tst_DeviceRoot::missingProgramShowsUsage()
{
    prepare();
    const Result result = runProgram(m_launcher, {directory()});
    QVERIFY(result.errors.contains("script/device-root TREE PROGRAM [ARGUMENT...]"));
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.exitCode, 125);
}

void tst_DeviceRoot::ordinaryUserMayUseADeviceRoot()
{
    NEED_NAMESPACES();
    writeTreeFile("orvalis/VersionFile.ini", "version");
    writeTreeFile("proc/cmdline", "quiet\n");
    const ChildResult result = runAsOrdinaryUser(
        "\"$LAUNCHER\" tree sh -c 'cat /orvalis/VersionFile.ini /proc/cmdline; "
        "echo \"$PATH\"; echo own >/orvalis/VersionFile.ini; touch /orvalis-reboot; "
        "cat /orvalis/VersionFile.ini; exit 7'");
    if (result.output.contains("not available here")) {
        MISCTOOLS_SKIP("needs user namespaces, which only root may create here");
    }
    QCOMPARE(result.output, QByteArray("versionquiet\n/usr/bin:/bin\nown\n"));
    QCOMPARE(result.exitCode, 7);
    QVERIFY(!QFile::exists("/orvalis-reboot"));
}

void tst_DeviceRoot::unreadableTreeIsRejected_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("command line is a directory") << QString();
    // In a device root the owner of a file always has access, so this row needs root, which can run
    // the launcher as another user.
    if (geteuid() == 0) {
        QTest::newRow("no permission") << "orvalis/VersionFile.ini";
    }
}

void tst_DeviceRoot::unreadableTreeIsRejected()
{
    NEED_NAMESPACES();
    QFETCH(QString, file);
    if (file.isEmpty()) {
        QVERIFY(QDir(directory()).mkpath("tree/proc/cmdline"));
    } else {
        QVERIFY(QFile::setPermissions(writeTreeFile(file, "x"), QFileDevice::Permissions()));
    }
    const ChildResult result = runAsOrdinaryUser("\"$LAUNCHER\" tree echo must not run");
    if (result.output.contains("not available here")) {
        MISCTOOLS_SKIP("needs user namespaces, which only root may create here");
    }
    QVERIFY2(result.output.contains("device root: cannot read the device tree "),
             result.output.constData());
    QVERIFY2(!result.output.contains("must not run"), result.output.constData());
    QCOMPARE(result.exitCode, 125);
}

void tst_DeviceRoot::programRunsWithoutNamespaces()
{
    prepare();
    writeTreeFile("orvalis-reboot", "");
    forbidNamespaces();
    m_environment.insert("MISCTOOLS_DEVICE_ROOT", "/left-over");

    const Result result =
        runShell("echo \"$1,${MISCTOOLS_DEVICE_ROOT-none}\"; pwd; exit 7", {"it runs"});
    // The program runs without a device root, and a single line explains why.
    QCOMPARE(result.output, "it runs,none\n" + QFile::encodeName(directory()) + '\n');
    QCOMPARE(result.exitCode, 7);
    QVERIFY2(result.errors.startsWith("device root: not available here; to allow it: "),
             result.errors.constData());
    QCOMPARE(result.errors.count('\n'), 1);
    QVERIFY(!result.errors.contains("Operation not permitted"));
}

void tst_DeviceRoot::programRunsWithoutPivotRoot()
{
    NEED_NAMESPACES();
    // Inside a device root a system program can be hidden by a mount.
    const Result result =
        runShell("for file in /usr/sbin/pivot_root /sbin/pivot_root; do\n"
                 "    [ ! -e $file ] || PATH=$PATH:/usr/sbin:/sbin mount --bind /dev/null $file\n"
                 "done\n"
                 "\"$1\" tree echo it runs",
                 {m_launcher});
    QCOMPARE(result.errors, QByteArray("device root: not available here; to allow it: the system's "
                                       "pivot_root (in Debian's package util-linux, "
                                       "util-linux-extra or mount)\n"));
    QCOMPARE(result.output, QByteArray("it runs\n"));
    QCOMPARE(result.exitCode, 0);
}

void tst_DeviceRoot::testsAreSkippedWithoutNamespaces()
{
    prepare();
    m_environment.insert("CI", QString()); // an empty value counts as unset
    forbidNamespaces();
    const Result result =
        runProgram(m_launcher, {directory(), QStringLiteral(MISCTOOLS_DEVICE_TEST)});
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.output.contains("needs the device's fixed paths; run it through "
                                    "script/device-root, where namespaces are allowed"),
             result.output.constData());
    // CTest recognizes a skipped test by this line.
    const QRegularExpression skipped(QStringLiteral(MISCTOOLS_SKIPPED_EXPRESSION));
    QVERIFY(skipped.isValid());
    QVERIFY2(skipped.match(QString::fromUtf8(result.output)).hasMatch(), result.output.constData());
}

void tst_DeviceRoot::skipFailsInContinuousIntegration_data()
{
    QTest::addColumn<QString>("value");
    for (const char* const value : {"true", "1", "false"}) {
        QTest::newRow(value) << QString::fromLatin1(value);
    }
}

void tst_DeviceRoot::skipFailsInContinuousIntegration()
{
    QFETCH(QString, value);
    prepare();
    m_environment.insert("CI", value);
    forbidNamespaces();
    const Result result =
        runProgram(m_launcher, {directory(), QStringLiteral(MISCTOOLS_DEVICE_TEST)});
    QVERIFY(result.exitCode > 0);
    QVERIFY2(result.output.contains("must not be skipped where CI is set: needs the device's "
                                    "fixed paths"),
             result.output.constData());
    const QRegularExpression skipped(QStringLiteral(MISCTOOLS_SKIPPED_EXPRESSION));
    QVERIFY(!skipped.match(QString::fromUtf8(result.output)).hasMatch());
}

void tst_DeviceRoot::variableAloneIsNotADeviceRoot()
{
    // A leftover variable must not let a test remove the files of a real device.
    const QString commandLine = writeFile("cmdline", "quiet\n");
    qputenv("MISCTOOLS_DEVICE_ROOT", QFile::encodeName(directory()));
    const ChildResult entered = ChildProcess::run([] { return DeviceRoot::isEntered() ? 1 : 0; });
    const ChildResult changed = ChildProcess::run([] {
        DeviceRoot::setCommandLine("changed");
        return 0;
    });
    qunsetenv("MISCTOOLS_DEVICE_ROOT");
    QCOMPARE(entered.exitCode, 0);
    QCOMPARE(changed.signal, SIGABRT);
    QCOMPARE(readFile(commandLine), QByteArray("quiet\n"));
}

QTEST_GUILESS_MAIN(tst_DeviceRoot)
#include "tst_DeviceRoot.moc"
