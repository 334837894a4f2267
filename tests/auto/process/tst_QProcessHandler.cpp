#include "QProcessHandler.h"
#include "TestCase.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTextCodec>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const char* const signature =
    "int QProcessHandler::startProcess(const QString&, const QStringList&)";

// Long enough for the test program to start and write, even on a busy machine.
constexpr int shortTimeoutInMs = 300;
// Only a hang exceeds this time.
constexpr int hangInMs = 20000;

QString testProgram()
{
    return QStringLiteral(TEST_PROGRAM);
}

QString warningText(const QString& text, const QString& program, const QString& arguments,
                    const QString& output = QString(), const QString& error = QString())
{
    return QStringLiteral("%1 \"%2\"   \"%3\" ,  \"%4\"  ,  \"%5\"")
        .arg(text, program, arguments, output, error);
}

QString hex(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

int openDescriptors()
{
    return QDir("/proc/self/fd")
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

// Whether this process has any child, including zombies.
bool hasChildren()
{
    siginfo_t info;
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT | __WALL) == 0;
}

// Delays the start of a program until release(), by a lease on its file.
class HeldProgram
{
public:
    explicit HeldProgram(const QString& filePath)
        : m_descriptor(open(QFile::encodeName(filePath).constData(), O_RDONLY | O_CLOEXEC))
        // The signal with which the kernel recalls the lease.
        , m_previousHandler(std::signal(SIGIO, SIG_IGN))
        , m_isHeld(fcntl(m_descriptor, F_SETLEASE, F_WRLCK) == 0)
    {
    }

    ~HeldProgram()
    {
        close(m_descriptor);
        std::signal(SIGIO, m_previousHandler);
    }

    bool isHeld() const { return m_isHeld; }
    void release() { m_isHeld = fcntl(m_descriptor, F_SETLEASE, F_UNLCK) != 0; }

private:
    Q_DISABLE_COPY(HeldProgram)

    int m_descriptor;
    void (*m_previousHandler)(int);
    bool m_isHeld;
};

// The fields that the binary interface guarantees.
struct Layout
{
    virtual ~Layout() = default;

    QProcess process;
    int waitForStartedTimeout;
    int waitForFinishedTimeout;
    QString standardOutput;
    QString standardError;
    int lastExitStatus;
};

static_assert(sizeof(Layout) == sizeof(QProcessHandler), "layout of QProcessHandler");

} // namespace

class tst_QProcessHandler : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void resultsAreEmptyBeforeTheFirstRun();
    void defaultTimeoutsAreThirtySeconds();

    void exitCodesAreReturned();
    void terminationBySignalIsACrash_data();
    void terminationBySignalIsACrash();
    void outputIsDecoded_data();
    void outputIsDecoded();
    void outputIsUtf8InEveryLocale();
    void largeOutputIsReadCompletely_data();
    void largeOutputIsReadCompletely();
    void argumentsArriveUnchanged_data();
    void argumentsArriveUnchanged();
    void programIsFoundInThePath();

    void programThatCannotBeStarted_data();
    void programThatCannotBeStarted();
    void emptyProgramNameIsReported();
    void missingWorkingDirectoryIsReported();
    void missingStandardInputFileIsReported();
    void startTimeoutIsReported();

    void finishTimeout();
    void finishTimeoutShowsArguments_data();
    void finishTimeoutShowsArguments();
    void outputAfterATimeoutIsKept();
    void finishTimeoutOfZeroExpiresImmediately();
    void negativeTimeoutsNeverExpire();
    void secondStartWaitsForTheFirstProgram();
    void secondStartTimesOutOnTheFirstProgram();
    void outputBetweenRunsIsDiscarded();

    void standardInputStaysOpen();
    void settingsPersist();
    void settingsCanBeReset();
    void resultsAreClearedByTheNextRun();
    void resultsAreClearedWhileTheProgramRuns();
    void clearLastStatesClearsResults();
    void saveLastStatesKeepsTheExitStatus();
    void saveLastStatesBeforeTheFirstRunReadsNothing();

    void destructionKillsTheProgram();
    void destructionKillsAStartingProgram();
    void thousandRunsLeakNothing();

private:
    void expectWarning(const QString& text)
    {
        messages().expectWarning("QProcessHandler", text).function(signature);
    }

    void expectDestroyedWhileRunning(const QString& program = testProgram())
    {
        messages().expect(
            QtWarningMsg,
            QStringLiteral("QProcess: Destroyed while process (\"%1\") is still running.")
                .arg(program));
    }

    void expectNotOpen(int times)
    {
        for (int i = 0; i < times; ++i) {
            messages().expect(QtWarningMsg, "QIODevice::read (QProcess): device not open");
        }
    }

    // The arguments of a program that waits for release() and creates a file before it exits.
    QStringList waiting() const { return {"wait-for", path("go"), path("done")}; }

    void release() const { writeFile("go", QByteArray()); }

    // Starts the waiting program and expects a timeout.
    void startWaiting(QProcessHandler& handler)
    {
        handler.setWaitForFinishedTimeout(shortTimeoutInMs);
        expectWarning(warningText("Timeout from command ", testProgram(),
                                  waiting().join(QLatin1Char(' ')), "early output", "early error"));
        QCOMPARE(handler.startProcess(testProgram(), waiting()), -1);
    }
};

void tst_QProcessHandler::resultsAreEmptyBeforeTheFirstRun()
{
    const QProcessHandler handler;
    QVERIFY(handler.getStandardOutput().isNull());
    QVERIFY(handler.getStandardError().isNull());
    QCOMPARE(handler.getLastExitStatus(), 1);
}

// The test does not wait for 30 seconds; it reads the fields.
void tst_QProcessHandler::defaultTimeoutsAreThirtySeconds()
{
    QProcessHandler handler;
    const auto timeouts = [&handler] {
        int values[2];
        memcpy(values, reinterpret_cast<const char*>(&handler) + sizeof(void*) + sizeof(QProcess),
               sizeof values);
        return QPair<int, int>(values[0], values[1]);
    };
    QCOMPARE(timeouts(), qMakePair(30000, 30000));
    handler.setWaitForStartedTimeout(-5);
    QCOMPARE(timeouts(), qMakePair(-5, 30000));
    handler.setWaitForFinishedTimeout(7);
    QCOMPARE(timeouts(), qMakePair(-5, 7));
}

void tst_QProcessHandler::exitCodesAreReturned()
{
    QProcessHandler handler;
    for (int exitCode = 0; exitCode <= 255; ++exitCode) {
        // The shell starts faster than the test program.
        QCOMPARE(handler.startProcess("/bin/sh", {"-c", QStringLiteral("exit %1").arg(exitCode)}),
                 exitCode);
        QCOMPARE(handler.getLastExitStatus(), 0);
    }
}

void tst_QProcessHandler::terminationBySignalIsACrash_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("termination") << SIGTERM;
    QTest::newRow("kill") << SIGKILL;
    QTest::newRow("segmentation fault") << SIGSEGV;
    QTest::newRow("abort") << SIGABRT;
    QTest::newRow("broken pipe") << SIGPIPE;
}

void tst_QProcessHandler::terminationBySignalIsACrash()
{
    QFETCH(int, signal);

    QProcessHandler handler;
    // QProcess returns the signal as exit code.
    QCOMPARE(handler.startProcess(testProgram(), {"signal", QString::number(signal)}), signal);
    QCOMPARE(handler.getLastExitStatus(), 1);
    QVERIFY(handler.getStandardOutput().isNull());
    QVERIFY(handler.getStandardError().isNull());

    QCOMPARE(handler.startProcess(testProgram(), {}), 0);
    QCOMPARE(handler.getLastExitStatus(), 0);
}

void tst_QProcessHandler::outputIsDecoded_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");

    QTest::newRow("no output") << QByteArray() << QString();
    QTest::newRow("text") << QByteArray("one\ntwo\n") << "one\ntwo\n";
    QTest::newRow("carriage returns") << QByteArray("one\r\n") << "one\r\n";
    QTest::newRow("zero byte") << QByteArray("a\0b", 3) << "a";
    QTest::newRow("leading zero byte") << QByteArray("\0b", 2) << "";
    QTest::newRow("UTF-8") << QByteArray("\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80")
                           << QStringLiteral("\u00e4\u20ac\U0001f600");
    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbfone") << "one";
    QTest::newRow("not UTF-8") << QByteArray("a\xff\xe4z") << QStringLiteral("a\ufffd\ufffdz");
}

void tst_QProcessHandler::outputIsDecoded()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);

    const auto check = [](const QString& actual, const QString& expected) {
        return actual == expected && actual.isNull() == expected.isNull();
    };
    QProcessHandler handler;
    const QString write = "write";
    const QString other = "other";
    QCOMPARE(handler.startProcess(testProgram(), {write, hex(bytes), hex("other")}), 0);
    QVERIFY2(check(handler.getStandardOutput(), text), qPrintable(handler.getStandardOutput()));
    QCOMPARE(handler.getStandardError(), other);

    QCOMPARE(handler.startProcess(testProgram(), {write, hex("other"), hex(bytes)}), 0);
    QCOMPARE(handler.getStandardOutput(), other);
    QVERIFY2(check(handler.getStandardError(), text), qPrintable(handler.getStandardError()));
}

void tst_QProcessHandler::outputIsUtf8InEveryLocale()
{
    const QByteArray program = QFile::encodeName(testProgram());
    QTextCodec* const before = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    QProcessHandler handler;
    // That codec also encodes the program's path, which may contain non-ASCII characters.
    const int exitCode = handler.startProcess(QFile::decodeName(program),
                                              {"write", hex("\xc3\xa4"), hex("\xc3\xb6")});
    QTextCodec::setCodecForLocale(before);
    QCOMPARE(exitCode, 0);
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("\u00e4"));
    QCOMPARE(handler.getStandardError(), QStringLiteral("\u00f6"));
}

void tst_QProcessHandler::largeOutputIsReadCompletely_data()
{
    QTest::addColumn<int>("output");
    QTest::addColumn<int>("error");

    constexpr int tenMegabytes = 10 * 1024 * 1024;
    QTest::newRow("on both channels") << tenMegabytes << tenMegabytes;
    QTest::newRow("on standard output") << tenMegabytes << 0;
    QTest::newRow("on standard error") << 0 << tenMegabytes;
    QTest::newRow("more on standard error") << 5000 << tenMegabytes + 1;
}

void tst_QProcessHandler::largeOutputIsReadCompletely()
{
    QFETCH(int, output);
    QFETCH(int, error);

    QProcessHandler handler;
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("flood"), QString::number(output),
                                                  QString::number(error)}),
             0);
    QCOMPARE(handler.getLastExitStatus(), 0);
    QVERIFY(handler.getStandardOutput() == QString(output, QLatin1Char('o')));
    QVERIFY(handler.getStandardError() == QString(error, QLatin1Char('e')));
}

void tst_QProcessHandler::argumentsArriveUnchanged_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("none") << QStringList();
    QTest::newRow("spaces") << QStringList{"a b", " c  ", "\t\n"};
    QTest::newRow("quotation marks") << QStringList{"\"a\"", "'b c'", "\\\""};
    QTest::newRow("empty") << QStringList{QString(), "a", ""};
    QTest::newRow("shell syntax") << QStringList{"$HOME", "*", ";exit 1", "~"};
    QTest::newRow("not ASCII") << QStringList{QStringLiteral("\u00e4\u20ac\U0001f600")};
}

void tst_QProcessHandler::argumentsArriveUnchanged()
{
    QFETCH(QStringList, arguments);

    QProcessHandler handler;
    QString expected;
    for (const QString& argument : arguments) {
        expected += hex(QFile::encodeName(argument)) + QLatin1Char('\n');
    }
    QCOMPARE(handler.startProcess(testProgram(), QStringList("arguments") + arguments), 0);
    QCOMPARE(handler.getStandardOutput(), expected);
}

void tst_QProcessHandler::programIsFoundInThePath()
{
    const QByteArray before = qgetenv("PATH");
    const QFileInfo program(testProgram());
    qputenv("PATH", QFile::encodeName(program.path()));
    QProcessHandler handler;
    const int exitCode = handler.startProcess(program.fileName(), {"exit", "3"});
    qputenv("PATH", before);
    QCOMPARE(exitCode, 3);
}

void tst_QProcessHandler::programThatCannotBeStarted_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("shownArguments");

    // A relative path is relative to the row's directory.
    QTest::newRow("unknown") << "/nowhere/to/be/found" << QByteArray() << QStringList{"a", "b c"}
                             << "a b c";
    QTest::newRow("unknown in PATH")
        << "no-such-program-in-the-path" << QByteArray() << QStringList() << QString();
    QTest::newRow("quotation marks in the arguments")
        << "/nowhere" << QByteArray() << QStringList{"\"a\""} << "\\\"a\\\"";
    QTest::newRow("empty arguments")
        << "/nowhere" << QByteArray() << QStringList{QString(), QString()} << " ";
    QTest::newRow("not ASCII") << QStringLiteral("/nowhere/\u00e4") << QByteArray()
                               << QStringList{QStringLiteral("\u20ac")} << QStringLiteral("\u20ac");
    QTest::newRow("directory") << "/" << QByteArray() << QStringList() << QString();
    QTest::newRow("no permission to execute")
        << "script" << QByteArray("#!/bin/sh\n") << QStringList() << QString();
    QTest::newRow("unknown interpreter")
        << "script" << QByteArray("#!/nowhere\n") << QStringList() << QString();
    QTest::newRow("not a program") << "script" << QByteArray("text") << QStringList() << QString();
}

void tst_QProcessHandler::programThatCannotBeStarted()
{
    QFETCH(QString, program);
    QFETCH(QByteArray, content);
    QFETCH(QStringList, arguments);
    QFETCH(QString, shownArguments);

    if (!content.isEmpty()) {
        program = writeFile(program, content);
        if (!content.contains("/bin/sh")) {
            QVERIFY(QFile::setPermissions(program, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        }
    }
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("write"), hex("a"), hex("b")}), 0);

    expectWarning(warningText("Timeout on starting command ", program, shownArguments));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(handler.startProcess(program, arguments), -1);
    QVERIFY(timer.elapsed() < hangInMs);
    QVERIFY(handler.getStandardOutput().isNull());
    QVERIFY(handler.getStandardError().isNull());
    // QProcess does not report this as a crash.
    QCOMPARE(handler.getLastExitStatus(), 0);

    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("exit"), "4"}), 4);
}

void tst_QProcessHandler::emptyProgramNameIsReported()
{
    const QString warning = warningText("Timeout on starting command ", QString(), "a");
    QProcessHandler handler;
    // QProcess rejects the empty name before it opens its channels.
    expectNotOpen(2);
    expectWarning(warning);
    expectNotOpen(2);
    QCOMPARE(handler.startProcess(QString(), {QStringLiteral("a")}), -1);
    QVERIFY(handler.getStandardOutput().isNull());
    QVERIFY(handler.getStandardError().isNull());
    QCOMPARE(handler.getLastExitStatus(), 0);

    // No program was started, so QProcess keeps the exit status of the previous run.
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("signal"), "9"}), 9);
    expectWarning(warning);
    QCOMPARE(handler.startProcess(QString(), {QStringLiteral("a")}), -1);
    QCOMPARE(handler.getLastExitStatus(), 1);
}

void tst_QProcessHandler::missingWorkingDirectoryIsReported()
{
    QProcessHandler handler;
    handler.setWorkingDirectory(path("missing"));
    for (int i = 0; i < 2; ++i) {
        expectWarning(warningText("Timeout on starting command ", testProgram(), "cwd"));
        QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("cwd")}), -1);
        QCOMPARE(handler.getLastExitStatus(), 0);
    }
    QVERIFY(QDir(directory()).mkdir("missing"));
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("cwd")}), 0);
    QCOMPARE(handler.getStandardOutput(), path(QStringLiteral("missing")));
}

void tst_QProcessHandler::missingStandardInputFileIsReported()
{
    QProcessHandler handler;
    handler.setStandardInputFile(path("missing"));
    expectWarning(warningText("Timeout on starting command ", testProgram(), "echo"));
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("echo")}), -1);
    QCOMPARE(handler.getLastExitStatus(), 0);

    writeFile("missing", "found");
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("echo")}), 0);
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("found"));
}

void tst_QProcessHandler::startTimeoutIsReported()
{
    const QString program = path("program");
    QVERIFY(QFile::copy(testProgram(), program));
    HeldProgram held(program);
    if (!held.isHeld()) {
        MISCTOOLS_SKIP("needs file leases");
    }
    release();
    const QString done = path("done");
    const QString text = "Timeout on starting command ";

    QProcessHandler handler;
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("signal"), "9"}), 9);
    handler.setWaitForStartedTimeout(50);
    expectWarning(warningText(text, program, waiting().join(QLatin1Char(' '))));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(handler.startProcess(program, waiting()), -1);
    QVERIFY(timer.elapsed() >= 50);
    QVERIFY(timer.elapsed() < hangInMs);
    QVERIFY(handler.getStandardOutput().isNull());
    QVERIFY(handler.getStandardError().isNull());
    QCOMPARE(handler.getLastExitStatus(), 0);

    // The program is still starting, so no other program can be started.
    handler.setWaitForStartedTimeout(0);
    messages().expect(QtWarningMsg, "QProcess::start: Process is already running");
    expectWarning(warningText(text, "other", QString()));
    QCOMPARE(handler.startProcess(QStringLiteral("other"), {}), -1);
    QVERIFY(!QFile::exists(done));

    held.release();
    QTRY_VERIFY_WITH_TIMEOUT(!hasChildren(), hangInMs);
    QVERIFY(QFile::exists(done));
    handler.saveLastStates();
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("early outputlate output"));
    QCOMPARE(handler.getStandardError(), QStringLiteral("early errorlate error"));

    handler.setWaitForStartedTimeout(hangInMs);
    QCOMPARE(handler.startProcess(program, {QStringLiteral("exit"), "6"}), 6);
}

void tst_QProcessHandler::destructionKillsAStartingProgram()
{
    const QString program = path("program");
    QVERIFY(QFile::copy(testProgram(), program));
    const HeldProgram held(program);
    if (!held.isHeld()) {
        MISCTOOLS_SKIP("needs file leases");
    }
    const int descriptors = openDescriptors();
    {
        QProcessHandler handler;
        handler.setWaitForStartedTimeout(50);
        expectWarning(warningText("Timeout on starting command ", program, "echo"));
        QCOMPARE(handler.startProcess(program, {QStringLiteral("echo")}), -1);
        expectDestroyedWhileRunning(program);
    }
    QVERIFY(!hasChildren());
    QCOMPARE(openDescriptors(), descriptors);
}

void tst_QProcessHandler::finishTimeout()
{
    const QString done = path("done");
    QProcessHandler handler;
    QElapsedTimer timer;
    timer.start();
    startWaiting(handler);
    QVERIFY(timer.elapsed() >= shortTimeoutInMs);
    QVERIFY(timer.elapsed() < hangInMs);
    // The warning consumed the output.
    QVERIFY(handler.getStandardOutput().isNull());
    QVERIFY(handler.getStandardError().isNull());
    QCOMPARE(handler.getLastExitStatus(), 0);

    // The program is still running.
    QVERIFY(!QFile::exists(done));
    QVERIFY(hasChildren());
    release();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(done), hangInMs);
    QTRY_VERIFY_WITH_TIMEOUT(!hasChildren(), hangInMs);
}

void tst_QProcessHandler::finishTimeoutShowsArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("shown");

    const QString echo = "echo";
    QTest::newRow("one") << QStringList{echo} << echo;
    QTest::newRow("several") << QStringList{echo, "a b", "\""} << "echo a b \\\"";
    QTest::newRow("empty") << QStringList{echo, QString(), QString()} << "echo  ";
}

void tst_QProcessHandler::finishTimeoutShowsArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, shown);

    expectWarning(warningText("Timeout from command ", testProgram(), shown));
    expectDestroyedWhileRunning();
    QProcessHandler handler;
    handler.setWaitForFinishedTimeout(50);
    QCOMPARE(handler.startProcess(testProgram(), arguments), -1);
}

void tst_QProcessHandler::outputAfterATimeoutIsKept()
{
    QProcessHandler handler;
    startWaiting(handler);
    QVERIFY(handler.getStandardOutput().isNull());
    release();
    QTRY_VERIFY_WITH_TIMEOUT(!hasChildren(), hangInMs);
    handler.saveLastStates();
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("late output"));
    QCOMPARE(handler.getStandardError(), QStringLiteral("late error"));
    QCOMPARE(handler.getLastExitStatus(), 0);
}

void tst_QProcessHandler::finishTimeoutOfZeroExpiresImmediately()
{
    expectWarning(warningText("Timeout from command ", testProgram(), "echo"));
    expectDestroyedWhileRunning();
    QProcessHandler handler;
    handler.setWaitForFinishedTimeout(0);
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("echo")}), -1);
}

void tst_QProcessHandler::negativeTimeoutsNeverExpire()
{
    QProcessHandler handler;
    handler.setWaitForStartedTimeout(-1);
    handler.setWaitForFinishedTimeout(-1);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("delay"), "200"}), 0);
    QVERIFY(timer.elapsed() >= 200);
    QCOMPARE(handler.getLastExitStatus(), 0);
}

void tst_QProcessHandler::secondStartWaitsForTheFirstProgram()
{
    QProcessHandler handler;
    startWaiting(handler);
    release();
    handler.setWaitForFinishedTimeout(hangInMs);
    messages().expect(QtWarningMsg, "QProcess::start: Process is already running");
    // Exit code and output are those of the first program.
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("exit"), "3"}), 7);
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("late output"));
    QCOMPARE(handler.getStandardError(), QStringLiteral("late error"));
    QCOMPARE(handler.getLastExitStatus(), 0);
    QVERIFY(!hasChildren());

    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("exit"), "3"}), 3);
    QVERIFY(handler.getStandardOutput().isNull());
}

void tst_QProcessHandler::secondStartTimesOutOnTheFirstProgram()
{
    QProcessHandler handler;
    startWaiting(handler);
    handler.setWaitForFinishedTimeout(50);
    messages().expect(QtWarningMsg, "QProcess::start: Process is already running");
    // The warning names the second program, which was never started.
    expectWarning(warningText("Timeout from command ", "other", "a b"));
    QCOMPARE(handler.startProcess("other", {"a", "b"}), -1);
    QCOMPARE(handler.getLastExitStatus(), 0);
    expectDestroyedWhileRunning();
}

// Output between two runs belongs to neither.
void tst_QProcessHandler::outputBetweenRunsIsDiscarded()
{
    QProcessHandler handler;
    startWaiting(handler);
    release();
    QTRY_VERIFY_WITH_TIMEOUT(!hasChildren(), hangInMs);
    handler.setWaitForFinishedTimeout(hangInMs);
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("write"), hex("new"), QString()}),
             0);
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("new"));
    QVERIFY(handler.getStandardError().isNull());
}

// A program that reads its standard input until the end never exits.
void tst_QProcessHandler::standardInputStaysOpen()
{
    QProcessHandler handler;
    handler.setWaitForFinishedTimeout(shortTimeoutInMs);
    expectWarning(warningText("Timeout from command ", testProgram(), "echo"));
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("echo")}), -1);
    QVERIFY(hasChildren());
    expectDestroyedWhileRunning();
}

void tst_QProcessHandler::settingsPersist()
{
    QProcessHandler handler;
    handler.setWorkingDirectory(directory());
    handler.setStandardInputFile(writeFile("input", QByteArray(100000, 'i')));
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("cwd")}), 0);
        QCOMPARE(handler.getStandardOutput(), directory());
        QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("echo")}), 0);
        QCOMPARE(handler.getStandardOutput(), QString(100000, QLatin1Char('i')));
    }

    handler.setWaitForFinishedTimeout(50);
    expectWarning(warningText("Timeout on starting command ", "/nowhere", QString()));
    QCOMPARE(handler.startProcess(QStringLiteral("/nowhere"), {}), -1);
    const QStringList delay = {"delay", QString::number(hangInMs)};
    expectWarning(
        warningText("Timeout from command ", testProgram(), delay.join(QLatin1Char(' '))));
    QCOMPARE(handler.startProcess(testProgram(), delay), -1);
    expectDestroyedWhileRunning();
}

void tst_QProcessHandler::settingsCanBeReset()
{
    QProcessHandler handler;
    handler.setWorkingDirectory(directory());
    handler.setWorkingDirectory(QString());
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("cwd")}), 0);
    QCOMPARE(handler.getStandardOutput(), QDir::currentPath());

    handler.setStandardInputFile("/dev/null");
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("echo")}), 0);
    handler.setStandardInputFile(QString());
    handler.setWaitForFinishedTimeout(50);
    expectWarning(warningText("Timeout from command ", testProgram(), "echo"));
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("echo")}), -1);
    expectDestroyedWhileRunning();
}

void tst_QProcessHandler::resultsAreClearedByTheNextRun()
{
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("write"), hex("a"), hex("b")}), 0);
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("a"));
    QCOMPARE(handler.getStandardOutput(), QStringLiteral("a"));
    QCOMPARE(handler.getStandardError(), QStringLiteral("b"));
    QCOMPARE(handler.startProcess(testProgram(), {}), 0);
    QVERIFY(handler.getStandardOutput().isNull());
    QVERIFY(handler.getStandardError().isNull());
}

// The message handler is called before startProcess() returns.
void tst_QProcessHandler::resultsAreClearedWhileTheProgramRuns()
{
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("write"), hex("a"), hex("b")}), 0);
    QCOMPARE(handler.getLastExitStatus(), 0);
    int calls = 0;
    messages().setObserver([&](const Message&) {
        ++calls;
        QVERIFY(handler.getStandardOutput().isNull());
        QVERIFY(handler.getStandardError().isNull());
        QCOMPARE(handler.getLastExitStatus(), 1);
    });
    expectWarning(warningText("Timeout on starting command ", "/nowhere", QString()));
    QCOMPARE(handler.startProcess(QStringLiteral("/nowhere"), {}), -1);
    QCOMPARE(calls, 1);
}

void tst_QProcessHandler::clearLastStatesClearsResults()
{
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("write"), hex("a"), hex("b")}), 0);
    handler.clearLastStates();
    QVERIFY(handler.getStandardOutput().isNull());
    QVERIFY(handler.getStandardError().isNull());
    QCOMPARE(handler.getLastExitStatus(), 1);
}

// The output was consumed; the exit status is still available.
void tst_QProcessHandler::saveLastStatesKeepsTheExitStatus()
{
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(testProgram(), {QStringLiteral("write"), hex("a"), hex("b")}), 0);
    handler.clearLastStates();
    handler.saveLastStates();
    QVERIFY(handler.getStandardOutput().isNull());
    QVERIFY(handler.getStandardError().isNull());
    QCOMPARE(handler.getLastExitStatus(), 0);
}

void tst_QProcessHandler::saveLastStatesBeforeTheFirstRunReadsNothing()
{
    QProcessHandler handler;
    expectNotOpen(2);
    handler.saveLastStates();
    QVERIFY(handler.getStandardOutput().isNull());
    QVERIFY(handler.getStandardError().isNull());
    QCOMPARE(handler.getLastExitStatus(), 0);
}

void tst_QProcessHandler::destructionKillsTheProgram()
{
    const QString processIdFile = path("pid");
    const int descriptors = openDescriptors();
    pid_t processId = 0;
    {
        QProcessHandler handler;
        handler.setWaitForFinishedTimeout(50);
        const QStringList arguments = {"stay", processIdFile};
        expectWarning(
            warningText("Timeout from command ", testProgram(), arguments.join(QLatin1Char(' '))));
        QCOMPARE(handler.startProcess(testProgram(), arguments), -1);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(processIdFile), hangInMs);
        processId = readFile(processIdFile).toInt();
        QVERIFY(processId > 0);
        QCOMPARE(kill(processId, 0), 0);
        expectDestroyedWhileRunning();
    }
    // Not even a zombie remains.
    QCOMPARE(kill(processId, 0), -1);
    QCOMPARE(errno, ESRCH);
    QVERIFY(!hasChildren());
    QCOMPARE(openDescriptors(), descriptors);
}

void tst_QProcessHandler::thousandRunsLeakNothing()
{
    // Starts faster than the test program, especially under an emulator.
    const QString shell = "/bin/sh";
    QProcessHandler handler;
    QCOMPARE(handler.startProcess(shell, {QStringLiteral("-c"), QStringLiteral(":")}), 0);
    const int descriptors = openDescriptors();
    const int runs = isEmulated() ? 100 : 1000;
    for (int i = 0; i < runs; ++i) {
        if (i % 10 == 0) {
            expectWarning(warningText("Timeout on starting command ", "/nowhere", QString()));
            QCOMPARE(handler.startProcess(QStringLiteral("/nowhere"), {}), -1);
        } else if (i % 10 == 5) {
            QProcessHandler other;
            QCOMPARE(other.startProcess(shell, {QStringLiteral("-c"), QStringLiteral("exit 5")}),
                     5);
        } else {
            QCOMPARE(handler.startProcess(shell, {"-c", "echo a; echo b >&2"}), 0);
        }
        QVERIFY(!hasChildren());
    }
    QCOMPARE(openDescriptors(), descriptors);
}

QTEST_GUILESS_MAIN(tst_QProcessHandler)
#include "tst_QProcessHandler.moc"
