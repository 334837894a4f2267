#include "ProgramRun.h"
#include "Terminal.h"
#include "TestCase.h"

#include <QtCore/QDir>

#include <sys/stat.h>

#include <cerrno>
#include <csignal>

namespace {

const QString program = QStringLiteral(RUN_AND_GREP_PROGRAM);
const QString hint = "run-and-grep: try --help\n";

// Whether a process has terminated; it may still be a zombie.
bool hasTerminated(int pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    return !file.open(QIODevice::ReadOnly) || file.readAll().contains(") Z ");
}

} // namespace

// The program that searches a command's output or a file for expressions.
class tst_RunAndGrep : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void matchesAFile_data();
    void matchesAFile();
    void runsACommand_data();
    void runsACommand();
    void outputIsSaved();
    void oldFileStaysWhenTheCommandDoesNotStart();
    void noTemporaryFileStays();
    void needsNoTemporaryDirectory();
    void signalStopsTheCommandAndItsChildren_data();
    void signalStopsTheCommandAndItsChildren();
    void timeoutStopsTheCommandAndItsChildren();
    void commandIsKilledWithTheProgram();
    void exitCodeOfTheCommandIsReturned_data();
    void exitCodeOfTheCommandIsReturned();
    void dashIsStandardInput();
    void dashWritesTheOutputToStandardOutput();
    void specialFileIsNotReplaced();
    void searchStopsAtAZeroByte();
    void timeoutKillsTheCommand();
    void terminalShowsWhatIsRunOrRead_data();
    void terminalShowsWhatIsRunOrRead();
    void verboseShowsLogMessages();
    void invalidArgumentsAreRefused_data();
    void invalidArgumentsAreRefused();
    void helpListsEveryExitCode();

private:
    void writeSpawner(const QByteArray& beforeWaiting);
    QList<int> spawned() const;
    static void verifyNothingRuns(const QList<int>& pids);
    ProgramResult run(const QStringList& arguments) const
    {
        return ProgramRun(program, arguments, directory()).finish();
    }
    void verifyRun(const QStringList& arguments, int exitCode, const QString& output,
                   const QString& errors) const
    {
        verifyResult(run(arguments), exitCode, output, errors);
    }
};

void tst_RunAndGrep::matchesAFile_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");

    QTest::newRow("entire matches")
        << QStringList{"-e", "version=\\S+"} << 0 << "version=1.2\nversion=3\n";
    QTest::newRow("first group") << QStringList{"-e", "version=(\\S+)"} << 0 << "1.2\n3\n";
    QTest::newRow("first match") << QStringList{"--first", "-e", "version=(\\S+)"} << 0 << "1.2\n";
    QTest::newRow("several expressions, first match of each")
        << QStringList{"--first", "-e", "version=(\\S+)", "--expression", "\\w+$"} << 0
        << "version=(\\S+): 1.2\n\\w+$: alpha\n";
    QTest::newRow("several expressions, one without a match")
        << QStringList{"-e", "none", "-e", "^beta"} << 0 << "^beta: beta\n";
    QTest::newRow("line anchors") << QStringList{"-e", "^\\w+$"} << 0 << "alpha\n";
    QTest::newRow("across lines") << QStringList{"-e", "alpha\\nbeta"} << 0 << "alpha\\nbeta\n";
    QTest::newRow("letters beyond ASCII") << QStringList{"-e", QString::fromUtf8("caf\xc3\xa9")}
                                          << 0 << QString::fromUtf8("caf\xc3\xa9\n");
    QTest::newRow("expression that looks like an option")
        << QStringList{"-e", "-dash"} << 0 << "-dash\n";
    QTest::newRow("no match") << QStringList{"-e", "none"} << 1 << "";
}

void tst_RunAndGrep::matchesAFile()
{
    QFETCH(QStringList, options);
    QFETCH(int, exitCode);
    QFETCH(QString, output);

    writeFile("text", "alpha\r\nbeta version=1.2\nx-dash version=3 caf\xc3\xa9 .\n");
    verifyRun(options + QStringList("text"), exitCode, output, QString());
}

void tst_RunAndGrep::runsACommand_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("errors");

    QTest::newRow("match") << QStringList{"-e", "b+", "--", "echo", "abba"} << 0 << "bb\n"
                           << "run-and-grep: echo exited with code 0\n";
    QTest::newRow("no match") << QStringList{"-e", "c", "--", "echo", "abba"} << 1 << ""
                              << "run-and-grep: echo exited with code 0\n";
    QTest::newRow("another exit code")
        << QStringList{"-e", "a", "--", "sh", "-c", "echo a; exit 7"} << 0 << "a\n"
        << "run-and-grep: sh exited with code 7\n";
    QTest::newRow("arguments are not expanded")
        << QStringList{"-e", ".+", "--", "printf", "%s\n", "a  b", "--", "-e", "$HOME"} << 0
        << "a  b\n--\n-e\n$HOME\n"
        << "run-and-grep: printf exited with code 0\n";
    QTest::newRow("standard error after standard output")
        << QStringList{"-e", "^.*$", "--", "sh", "-c", "echo error >&2; printf output"} << 0
        << "output\nerror\n"
        << "run-and-grep: sh exited with code 0\n";
    QTest::newRow("standard error only")
        << QStringList{"-e", ".+", "--", "sh", "-c", "echo error >&2"} << 0 << "error\n"
        << "run-and-grep: sh exited with code 0\n";
    QTest::newRow("standard input is empty") << QStringList{"-e", "x", "--", "cat"} << 1 << ""
                                             << "run-and-grep: cat exited with code 0\n";
    QTest::newRow("crash") << QStringList{"-e", "a", "--", "sh", "-c", "echo a; kill -SEGV $$"} << 4
                           << "a\n"
                           << "run-and-grep: sh crashed with signal 11\n";
    QTest::newRow("unknown program")
        << QStringList{"-e", "a", "--", "no-such-program"} << 3 << ""
        << "run-and-grep: cannot start no-such-program: no such program\n";
    QTest::newRow("file that is not executable")
        << QStringList{"-e", "a", "--", "./text"} << 3 << ""
        << "run-and-grep: cannot start ./text: not an executable program\n";
    QTest::newRow("timeout") << QStringList{"-e", "a", "--timeout", "50", "--", "sleep", "60"} << 3
                             << ""
                             << "run-and-grep: sleep did not exit within 50 ms and was stopped\n";
}

void tst_RunAndGrep::runsACommand()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, output);
    QFETCH(QString, errors);

    writeFile("text", "a\n");
    verifyRun(arguments, exitCode, output, errors);
}

void tst_RunAndGrep::outputIsSaved()
{
    writeFile("kept", "something older that is longer\n");
    verifyRun({"--output", "kept", "-e", "none", "--", "echo", QString::fromUtf8("\xc3\xa9")}, 1,
              QString(), "run-and-grep: echo exited with code 0\n");
    QCOMPARE(readFile(path(QStringLiteral("kept"))), QByteArray("\xc3\xa9\n"));
    QCOMPARE(QDir(directory()).entryList(QDir::Files | QDir::Hidden), QStringList("kept"));
}

void tst_RunAndGrep::oldFileStaysWhenTheCommandDoesNotStart()
{
    writeFile("kept", "older\n");
    const ProgramResult result = run({"--output", "kept", "-e", "older", "--", "no-such-program"});
    QCOMPARE(result.exitCode, 3);
    QCOMPARE(result.output, QString());
    QCOMPARE(readFile(path(QStringLiteral("kept"))), QByteArray("older\n"));
}

void tst_RunAndGrep::noTemporaryFileStays()
{
    // Temporary files would be in the row's directory, too.
    const ProgramResult result = run({"-e", ".", "--", "ls", directory()});
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

void tst_RunAndGrep::needsNoTemporaryDirectory()
{
    const ProgramResult result =
        ProgramRun(program, {"-e", "a", "--", "echo", "a"}, directory(), "/none").finish();
    QCOMPARE(result.output, QStringLiteral("a\n"));
    QCOMPARE(result.exitCode, 0);
}

// The script "spawn" and its child write their process IDs to the file "pids", and wait.
void tst_RunAndGrep::writeSpawner(const QByteArray& beforeWaiting)
{
    writeFile("spawn", "mkfifo never; " + beforeWaiting +
                           "; (echo >>pids $(exec sh -c 'echo $PPID'); read x <never) &\n"
                           "echo $$ >>pids; read x <never\n");
}

QList<int> tst_RunAndGrep::spawned() const
{
    QList<int> pids;
    for (const QByteArray& line : readFile(path("pids")).split('\n')) {
        if (!line.isEmpty()) {
            pids.append(line.toInt());
        }
    }
    return pids;
}

void tst_RunAndGrep::verifyNothingRuns(const QList<int>& pids)
{
    QCOMPARE(pids.size(), 2);
    for (const int pid : pids) {
        QVERIFY(pid > 0);
        // An orphan may take a moment to be reaped by its new parent.
        QTRY_VERIFY2(hasTerminated(pid), qPrintable(QString::number(pid)));
    }
}

void tst_RunAndGrep::signalStopsTheCommandAndItsChildren_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QByteArray>("beforeWaiting");
    QTest::newRow("SIGTERM") << SIGTERM << QByteArray(":");
    QTest::newRow("SIGINT") << SIGINT << QByteArray("trap 'exit 1' INT");
    QTest::newRow("SIGHUP") << SIGHUP << QByteArray(":");
    QTest::newRow("SIGTERM ignored") << SIGTERM << QByteArray("trap '' TERM");
}

void tst_RunAndGrep::signalStopsTheCommandAndItsChildren()
{
    QFETCH(int, number);
    QFETCH(QByteArray, beforeWaiting);
    writeSpawner(beforeWaiting);
    ProgramRun run(program, {"-e", "a", "--", "sh", "spawn"}, directory());
    QTRY_COMPARE(spawned().size(), 2);
    run.send(number);
    verifyResult(run.finish(), 128 + number, QString(),
                 "run-and-grep: interrupted; sh was stopped\n");
    verifyNothingRuns(spawned());
}

void tst_RunAndGrep::timeoutStopsTheCommandAndItsChildren()
{
    writeSpawner(":");
    verifyRun({"-e", "a", "--timeout", "1500", "--", "sh", "spawn"}, 3, QString(),
              "run-and-grep: sh did not exit within 1500 ms and was stopped\n");
    verifyNothingRuns(spawned());
}

void tst_RunAndGrep::commandIsKilledWithTheProgram()
{
    writeFile("wait", "mkfifo never; echo $$ >pids; read x <never");
    ProgramRun run(program, {"-e", "a", "--", "sh", "wait"}, directory());
    QTRY_COMPARE(spawned().size(), 1);
    run.send(SIGKILL);
    run.finish();
    QTRY_VERIFY(hasTerminated(spawned().constFirst()));
}

void tst_RunAndGrep::exitCodeOfTheCommandIsReturned_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("match") << "echo a; exit 7" << 7;
    QTest::newRow("no match") << "exit 0" << 0;
    QTest::newRow("crash") << "kill -SEGV $$" << 4;
}

void tst_RunAndGrep::exitCodeOfTheCommandIsReturned()
{
    QFETCH(QString, script);
    QFETCH(int, exitCode);
    QCOMPARE(run({"--exit-code", "-e", "a", "--", "sh", "-c", script}).exitCode, exitCode);
}

void tst_RunAndGrep::dashIsStandardInput()
{
    ProgramRun run(program, {"-e", "b.*", "-"}, directory());
    run.write("a\nb1\n");
    verifyResult(run.finish(), 0, "b1\n");
}

void tst_RunAndGrep::dashWritesTheOutputToStandardOutput()
{
    verifyRun({"--output", "-", "-e", "b", "--", "echo", "abc"}, 0, "abc\nb\n",
              "run-and-grep: echo exited with code 0\n");
}

void tst_RunAndGrep::specialFileIsNotReplaced()
{
    const QString pipe = path("pipe");
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    verifyRun({"--output", "pipe", "-e", "a", "--", "echo", "a"}, 5, QString(),
              QStringLiteral("run-and-grep: cannot write pipe: it is not a regular file and is not "
                             "replaced\n"));
    struct stat status = {};
    QCOMPARE(lstat(qPrintable(pipe), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
}

void tst_RunAndGrep::searchStopsAtAZeroByte()
{
    verifyRun({"--output", "kept", "-e", "[ab]", "--", "printf", "a\\0b"}, 0, "a\n",
              "run-and-grep: printf exited with code 0\n");
    QCOMPARE(readFile(path(QStringLiteral("kept"))), QByteArray("a\0b", 3));
}

void tst_RunAndGrep::timeoutKillsTheCommand()
{
    const ProgramResult result =
        run({"-e", "a", "--timeout", "1000", "--", "sh", "-c", "echo $$ >pid; exec sleep 60"});
    QCOMPARE(result.exitCode, 3);
    const int pid = readFile(path("pid")).trimmed().toInt();
    QVERIFY(pid > 0);
    QVERIFY(kill(pid, 0) == -1 && errno == ESRCH);
}

void tst_RunAndGrep::terminalShowsWhatIsRunOrRead_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("last"); // of the lines on the screen

    const QString pipe = "pipe";
    QTest::newRow("program") << QStringList{"-e", "a", "--", "cat", pipe}
                             << QByteArray("s: running cat, for 30 s at most")
                             << QByteArray("run-and-grep: cat exited with code 0");
    QTest::newRow("file") << QStringList{"-e", "a", pipe} << QByteArray("s: reading ")
                          << QByteArray();
}

// The pipe has no writer at first, so reading it blocks.
void tst_RunAndGrep::terminalShowsWhatIsRunOrRead()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, last);

    const QString pipe = path(arguments.takeLast());
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    Terminal terminal(70, Terminal::StandardError);
    terminal.start(program, arguments + QStringList(pipe));
    QVERIFY(terminal.waitForText(status));
    QFile writer(pipe);
    QVERIFY(writer.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    writer.write("a\n");
    writer.close();
    const QByteArray written = terminal.finish();
    QVERIFY2(Terminal::screenAfter(written).contains(last), written.constData());
    // The status line is erased.
    QVERIFY2(!Terminal::screenAfter(written).join().contains(status), written.constData());
}

void tst_RunAndGrep::verboseShowsLogMessages()
{
    verifyRun({"--verbose", "-e", "a", "none"}, 5, QString(),
              QStringLiteral("run-and-grep: log: TextFileParser: \"File doesn't exists: none\"\n"
                             "run-and-grep: cannot read none: no such file\n"));
}

void tst_RunAndGrep::invalidArgumentsAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("errors");

    const QString neither =
        "run-and-grep: requires either '-- PROGRAM [ARGUMENTS]' or exactly one FILE\n" + hint;
    QTest::newRow("no arguments") << QStringList() << 2
                                  << "run-and-grep: an expression is required: -e EXPRESSION\n" +
                                         hint;
    QTest::newRow("no expression")
        << QStringList{"text"} << 2
        << "run-and-grep: an expression is required: -e EXPRESSION\n" + hint;
    QTest::newRow("option without its value")
        << QStringList{"text", "-e"} << 2 << "run-and-grep: Missing value after '-e'.\n" + hint;
    QTest::newRow("unknown option") << QStringList{"--foo", "-e", "a", "text"} << 2
                                    << "run-and-grep: Unknown option 'foo'.\n" + hint;
    QTest::newRow("neither program nor file") << QStringList{"-e", "a"} << 2 << neither;
    QTest::newRow("empty command") << QStringList{"-e", "a", "--"} << 2 << neither;
    QTest::newRow("two files") << QStringList{"-e", "a", "text", "text"} << 2 << neither;
    QTest::newRow("file and program")
        << QStringList{"-e", "a", "text", "--", "true"} << 2 << neither;
    QTest::newRow("--output with a file")
        << QStringList{"-e", "a", "--output", "b", "text"} << 2
        << "run-and-grep: --output, --timeout and --exit-code require a PROGRAM\n" + hint;
    QTest::newRow("--timeout with a file")
        << QStringList{"-e", "a", "--timeout", "9", "text"} << 2
        << "run-and-grep: --output, --timeout and --exit-code require a PROGRAM\n" + hint;
    QTest::newRow("timeout is not a number")
        << QStringList{"-e", "a", "--timeout", "soon", "--", "true"} << 2
        << "run-and-grep: --timeout requires a number from 1 up, not 'soon'\n" + hint;
    // Detected before the command runs, which would create a file.
    QTest::newRow("invalid expression")
        << QStringList{"-e", "a(b", "--", "touch", "ran"} << 2
        << "run-and-grep: invalid expression 'a(b': missing closing parenthesis at character 3\n";
    QTest::newRow("missing file") << QStringList{"-e", "a", "none"} << 5
                                  << "run-and-grep: cannot read none: no such file\n";
    QTest::newRow("directory") << QStringList{"-e", "a", "."} << 5
                               << "run-and-grep: cannot read .: file to open is a directory\n";
    QTest::newRow("output in a missing directory")
        << QStringList{"-e", "a", "--output", "none/kept", "--", "echo", "a"} << 5
        << "run-and-grep: cannot write none/kept: No such file or directory\n";
}

void tst_RunAndGrep::invalidArgumentsAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, errors);

    writeFile("text", "a\n");
    verifyRun(arguments, exitCode, QString(), errors);
    QCOMPARE(QDir(directory()).entryList(QDir::Files), QStringList(QStringLiteral("text")));
}

void tst_RunAndGrep::helpListsEveryExitCode()
{
    const ProgramResult result = run({"--help"});
    QCOMPARE(result.errors, QString());
    QVERIFY2(result.output.contains(QStringLiteral(
                 "\nExit codes:\n"
                 "  0  something matched\n"
                 "  1  nothing matched\n"
                 "  2  wrong usage or an invalid expression\n"
                 "  3  PROGRAM could not be started, or did not exit in time\n"
                 "  4  PROGRAM crashed (its output is searched nevertheless)\n"
                 "  5  a file could not be read or written, or the output could not be written\n")),
             qPrintable(result.output));
    QCOMPARE(result.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_RunAndGrep)
#include "tst_RunAndGrep.moc"
