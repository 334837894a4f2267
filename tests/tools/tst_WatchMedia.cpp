#include "DeviceRoot.h"
#include "ProgramRun.h"
#include "Terminal.h"
#include "TestCase.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <csignal>

namespace {

const QString program = QStringLiteral(WATCH_MEDIA_PROGRAM);
const QString hint = "watch-media: try --help\n";

// The output without the time in the summary, which differs in each run.
QString withoutTime(QString output)
{
    return output.replace(QRegularExpression(", \\d+\\.\\d s\n$"), "\n");
}

// A search may still use the medium.
bool unmount(const QByteArray& medium)
{
    return QTest::qWaitFor([&medium] { return umount(medium.constData()) == 0; });
}

} // namespace

// The program that watches what is copied to a medium.
class tst_WatchMedia : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void listsTheMedium_data();
    void listsTheMedium();
    void showsATreeThatIsMovedIn();
    void showsATreeThatIsCopiedIn();
    void showsRemovedFiles();
    void watchesNewDirectories();
    void subdirectoriesNeedRecursive();
    void idleTimeStartsAfterTheLastChange();
    void exitsAfterTheBursts();
    void exitsWhenTheDirectoryIsRemoved();
    void controlCharactersAreEscapedInAPipe();
    void statusLineIsRedrawnOnATerminal();
    void statusLineFitsANarrowTerminal();
    void mountedAndRemovedMediaAreReported();
    void remountedMediumIsWatched();
    void printsJson();
    void signalPrintsTheSummary_data();
    void signalPrintsTheSummary();
    void namesThatAreNotUtf8AreCounted();
    void invalidArgumentsAreRefused_data();
    void invalidArgumentsAreRefused();
    void helpListsEveryExitCode();

private:
    QString medium(const QString& name) const { return path("medium/" + name); }
    void makeFile(const QString& name) const;
    void makeMedium() const;
    QStringList arguments(const QStringList& options) const;
};

void tst_WatchMedia::makeFile(const QString& name) const
{
    QDir().mkpath(QFileInfo(medium(name)).path());
    writeFile("medium/" + name, "content");
}

void tst_WatchMedia::makeMedium() const
{
    makeFile("b.mp3");
    makeFile("A.MP3");
    makeFile("c.txt");
    makeFile("sub/d.mp3");
    makeFile("directory.mp3/e.ogg");
    makeFile(".hidden.mp3");
}

// The options and the directory of the row's medium, relative to the row's directory.
QStringList tst_WatchMedia::arguments(const QStringList& options) const
{
    return options + QStringList("medium");
}

void tst_WatchMedia::listsTheMedium_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("expected");

    QTest::newRow("top directory") << QStringList{"--pattern", "*.mp3"}
                                   << "medium: 2 files (*.mp3)\n"
                                      "  A.MP3\n"
                                      "  b.mp3\n"
                                      "Watching 1 directory; ends after 0.1 s without a change\n"
                                      "Summary: 2 files, 0 new since the start, 0 gone, 0 bursts\n";
    QTest::newRow("all directories")
        << QStringList{"--pattern", "*.mp3", "--recursive"}
        << "medium: 3 files (*.mp3)\n"
           "  A.MP3\n"
           "  b.mp3\n"
           "  sub/d.mp3\n"
           "Watching 3 directories; ends after 0.1 s without a change\n"
           "Summary: 3 files, 0 new since the start, 0 gone, 0 bursts\n";
    QTest::newRow("several patterns, short options")
        << QStringList{"-r", "-p", "*.ogg", "-p", "c*"}
        << "medium: 2 files (*.ogg c*)\n"
           "  c.txt\n"
           "  directory.mp3/e.ogg\n"
           "Watching 3 directories; ends after 0.1 s without a change\n"
           "Summary: 2 files, 0 new since the start, 0 gone, 0 bursts\n";
    QTest::newRow("no pattern") << QStringList()
                                << "medium: 3 files (*)\n"
                                   "  A.MP3\n"
                                   "  b.mp3\n"
                                   "  c.txt\n"
                                   "Watching 1 directory; ends after 0.1 s without a change\n"
                                   "Summary: 3 files, 0 new since the start, 0 gone, 0 bursts\n";
    QTest::newRow("no file matches")
        << QStringList{"--pattern", "*.wav"}
        << "medium: 0 files (*.wav)\n"
           "Watching 1 directory; ends after 0.1 s without a change\n"
           "Summary: 0 files, 0 new since the start, 0 gone, 0 bursts\n";
}

void tst_WatchMedia::listsTheMedium()
{
    QFETCH(QStringList, options);
    QFETCH(QString, expected);

    makeMedium();
    const ProgramResult result =
        ProgramRun(program, arguments(options + QStringList{"--idle", "100"}), directory())
            .finish();
    QCOMPARE(result.errors, QString());
    QCOMPARE(withoutTime(result.output), expected);
    QCOMPARE(result.exitCode, 0);
}

void tst_WatchMedia::showsATreeThatIsMovedIn()
{
    makeFile("a.mp3");
    QDir().mkpath(path("tree/deep/deeper"));
    writeFile("tree/x.mp3", "x");
    writeFile("tree/x.txt", "x");
    writeFile("tree/deep/deeper/y.mp3", "y");

    ProgramRun run(
        program, arguments({"--recursive", "--pattern", "*.mp3", "--delay", "50", "--bursts", "1"}),
        directory());
    QVERIFY(run.waitForOutput("Watching"));
    QVERIFY(QDir().rename(path("tree"), medium("tree")));
    const ProgramResult result = run.finish();
    QCOMPARE(result.errors, QString());
    QCOMPARE(withoutTime(result.output),
             QStringLiteral("medium: 1 file (*.mp3)\n"
                            "  a.mp3\n"
                            "Watching 1 directory; ends after 1 burst\n"
                            "+ tree/deep/deeper/y.mp3\n"
                            "+ tree/x.mp3\n"
                            "Burst 1: 2 new, 0 gone, now 3 files\n"
                            "Summary: 3 files, 2 new since the start, 0 gone, 1 burst\n"));
    QCOMPARE(result.exitCode, 0);
}

void tst_WatchMedia::showsATreeThatIsCopiedIn()
{
    constexpr int files = 400;

    QDir().mkpath(path("medium"));
    // The pauses end bursts continually, so directories are found while they are being filled.
    ProgramRun run(program, arguments({"--recursive", "--delay", "1", "--idle", "700"}),
                   directory());
    QVERIFY(run.waitForOutput("Watching"));
    QStringList expected;
    for (int i = 0; i < files; ++i) {
        const QString name = QStringLiteral("f%1/g/%2").arg(i / 4).arg(i);
        makeFile(name);
        expected.append("+ " + name);
        QTest::qWait(i % 3);
    }
    const ProgramResult result = run.finish();
    QCOMPARE(result.errors, QString());
    QStringList found = result.output.split(QLatin1Char('\n')).filter(QLatin1String("+ "));
    found.sort();
    expected.sort();
    QCOMPARE(found, expected);
    QVERIFY2(result.output.contains("\nSummary: 400 files, 400 new since the start, 0 gone, "),
             qPrintable(result.output));
    QCOMPARE(result.exitCode, 0);
}

void tst_WatchMedia::showsRemovedFiles()
{
    makeMedium();
    ProgramRun run(program, arguments({"--delay", "50", "--bursts", "2"}), directory());
    QVERIFY(run.waitForOutput("Watching"));
    QVERIFY(QFile::remove(medium("b.mp3")));
    QVERIFY(run.waitForOutput("Burst 1"));
    QVERIFY(QFile::rename(medium("c.txt"), medium("z.txt")));
    const ProgramResult result = run.finish();
    QVERIFY2(withoutTime(result.output)
                 .endsWith(
                     QStringLiteral("- b.mp3\n"
                                    "Burst 1: 0 new, 1 gone, now 2 files\n"
                                    "+ z.txt\n"
                                    "- c.txt\n"
                                    "Burst 2: 1 new, 1 gone, now 2 files\n"
                                    "Summary: 2 files, 1 new since the start, 2 gone, 2 bursts\n")),
             qPrintable(result.output));
    QCOMPARE(result.exitCode, 0);
}

void tst_WatchMedia::watchesNewDirectories()
{
    makeFile("a");
    ProgramRun run(program, arguments({"--recursive", "--delay", "50", "--bursts", "5"}),
                   directory());
    QVERIFY(run.waitForOutput("Watching 1 directory;"));
    QVERIFY(QDir().mkpath(medium("later")));
    QVERIFY(run.waitForOutput("Burst 1: 0 new, 0 gone, now 1 file\n"));
    makeFile("later/b");
    QVERIFY(run.waitForOutput("+ later/b\nBurst 2: 1 new, 0 gone, now 2 files\n"));
    // The directory is removed and created again.
    QVERIFY(QDir(medium("later")).removeRecursively());
    QVERIFY(run.waitForOutput("- later/b\nBurst 3: 0 new, 1 gone, now 1 file\n"));
    QVERIFY(QDir().mkpath(medium("later")));
    QVERIFY(run.waitForOutput("Burst 4: 0 new, 0 gone, now 1 file\n"));
    makeFile("later/c");
    QVERIFY(run.waitForOutput("+ later/c\nBurst 5: 1 new, 0 gone, now 2 files\n"));
    QCOMPARE(run.finish().exitCode, 0);
}

void tst_WatchMedia::subdirectoriesNeedRecursive()
{
    makeMedium();
    ProgramRun run(program, arguments({"--delay", "50", "--bursts", "1"}), directory());
    QVERIFY(run.waitForOutput("Watching 1 directory;"));
    makeFile("sub/new");
    makeFile("new");
    const ProgramResult result = run.finish();
    QVERIFY2(result.output.contains(QStringLiteral("Watching 1 directory; ends after 1 burst\n"
                                                   "+ new\n"
                                                   "Burst 1: 1 new, 0 gone, now 4 files\n")),
             qPrintable(result.output));
}

void tst_WatchMedia::idleTimeStartsAfterTheLastChange()
{
    constexpr int copyInMs = 1500; // longer than the idle time of the run

    QDir().mkpath(path("medium"));
    ProgramRun run(program, arguments({"--delay", "1000", "--idle", "800"}), directory());
    QVERIFY(run.waitForOutput("Watching 1 directory; ends after 0.8 s"));
    QElapsedTimer clock;
    clock.start();
    int files = 0;
    while (clock.elapsed() < copyInMs) {
        makeFile(QStringLiteral("%1").arg(++files, 5, 10, QLatin1Char('0')));
        QTest::qWait(10);
    }
    QVERIFY(run.isRunning());
    const ProgramResult result = run.finish();
    QVERIFY2(result.output.contains(
                 QStringLiteral("\nSummary: %1 files, %1 new since the start").arg(files)),
             qPrintable(result.output));
    QCOMPARE(result.exitCode, 0);
}

void tst_WatchMedia::exitsAfterTheBursts()
{
    makeFile("a");
    ProgramRun run(program, arguments({"--delay", "50", "--idle", "20000", "--bursts", "1"}),
                   directory());
    QVERIFY(run.waitForOutput("ends after 1 burst or 20.0 s without a change\n"));
    makeFile("b");
    const ProgramResult result = run.finish();
    QVERIFY(withoutTime(result.output).endsWith("1 new since the start, 0 gone, 1 burst\n"));
    QCOMPARE(result.exitCode, 0);
}

void tst_WatchMedia::exitsWhenTheDirectoryIsRemoved()
{
    makeMedium();
    ProgramRun run(program, arguments({"--delay", "50"}), directory());
    QVERIFY(run.waitForOutput("Watching"));
    QVERIFY(QDir(path("medium")).removeRecursively());
    const ProgramResult result = run.finish();
    QCOMPARE(result.errors, QStringLiteral("watch-media: medium is gone\n"));
    QVERIFY2(
        withoutTime(result.output).contains("Summary: 0 files, 0 new since the start, 3 gone, "),
        qPrintable(result.output));
    QCOMPARE(result.exitCode, 4);
}

void tst_WatchMedia::controlCharactersAreEscapedInAPipe()
{
    makeFile("two\nlines");
    ProgramRun run(program, arguments({"--delay", "50", "--bursts", "1"}), directory());
    QVERIFY(run.waitForOutput("Watching"));
    makeFile(QString::fromUtf8("red \x1b[31m \xc3\xa9"));
    const QString output = run.finish().output;
    QVERIFY2(output.contains("\n  two\\x0alines\n"), qPrintable(output));
    QVERIFY2(output.contains(QString::fromUtf8("\n+ red \\x1b[31m \xc3\xa9\n")),
             qPrintable(output));
    const QRegularExpression control("[^\\P{Cc}\n]");
    QVERIFY(control.match("\r").hasMatch());
    QVERIFY(!control.match(output).hasMatch());
}

void tst_WatchMedia::statusLineIsRedrawnOnATerminal()
{
    for (int i = 0; i < 13; ++i) {
        makeFile(QStringLiteral("file%1").arg(i, 2, 10, QLatin1Char('0')));
    }
    const QString output =
        QString::fromUtf8(Terminal(80).run(program, {"--idle", "400", path("medium")}));
    // At most ten files, then the status line: each time it starts with a carriage return, never
    // with a line feed. A slow search shows it, too.
    const QRegularExpression expected(QStringLiteral(
        "^\rlisting [^\r\n]+\r +\r"
        "[^\r\n]+/medium: 13 files \\(\\*\\)\n"
        "(  file0\\d\n){10}"
        "  \\.\\.\\. and 3 more\n"
        "((\r\\d+\\.\\d s \\| 13 files, 0 new \\| 0 bursts \\| searching *)+\r +\r)?"
        "Watching 1 directory; ends after 0\\.4 s without a change\n"
        "(\r\\d+\\.\\d s \\| 13 files, 0 new \\| 0 bursts \\| "
        "quiet, ends in \\d\\.\\d s *)+"
        "\r +\r"
        "Summary: 13 files, 0 new since the start, 0 gone, 0 bursts, \\d+\\.\\d s\n$"));
    QVERIFY2(expected.match(output).hasMatch(), qPrintable(output));
}

void tst_WatchMedia::statusLineFitsANarrowTerminal()
{
    QDir().mkpath(path("medium"));
    const QByteArray output = Terminal(20).run(program, {"--idle", "400", path("medium")});
    QVERIFY2(output.contains(" s | 0 files, "), output.constData());
    for (const QByteArray& line : output.split('\r')) {
        // A line with a line feed is not redrawn and may be longer.
        QVERIFY2(line.size() < 20 || line.endsWith('\n'), line.constData());
    }
}

void tst_WatchMedia::mountedAndRemovedMediaAreReported()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    makeFile("below");
    const QByteArray medium = path("medium").toLocal8Bit();
    ProgramRun run(program, arguments({"--bursts", "99", "--delay", "50"}), directory());
    QVERIFY(run.waitForOutput("Watching"));

    for (const char* name : {"first", "second"}) {
        QCOMPARE(mount("tmpfs", medium.constData(), "tmpfs", 0, nullptr), 0);
        // A file that is created before the medium is listed would not be new.
        const int times = name == QLatin1String("first") ? 1 : 2;
        QVERIFY(run.waitForOutput("medium mounted\nmedium: 0 files (*)\n", times));
        makeFile(QLatin1String(name));
        QVERIFY(run.waitForOutput(QStringLiteral("+ %1\n").arg(QLatin1String(name))));
        QVERIFY(run.waitForOutput("now 1 file\n", times));
        QVERIFY(unmount(medium));
        QVERIFY(
            run.waitForOutput("now 1 file\nmedium removed\nmedium: 1 file (*)\n  below\n", times));
    }
    run.send(SIGINT);
    const ProgramResult result = run.finish();
    QCOMPARE(result.errors, QString());
    QCOMPARE(withoutTime(result.output),
             QStringLiteral("medium: 1 file (*)\n"
                            "  below\n"
                            "Watching 1 directory; ends after 99 bursts\n"
                            "medium mounted\n"
                            "medium: 0 files (*)\n"
                            "+ first\n"
                            "Burst 1: 1 new, 0 gone, now 1 file\n"
                            "medium removed\n"
                            "medium: 1 file (*)\n"
                            "  below\n"
                            "medium mounted\n"
                            "medium: 0 files (*)\n"
                            "+ second\n"
                            "Burst 2: 1 new, 0 gone, now 1 file\n"
                            "medium removed\n"
                            "medium: 1 file (*)\n"
                            "  below\n"
                            "Summary: 1 file, 0 new since the start, 0 gone, 2 bursts\n"));
    QCOMPARE(result.exitCode, 0);
}

// Between two checks by the program: the directory seems to be the same one, but its watch is lost.
void tst_WatchMedia::remountedMediumIsWatched()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QDir().mkpath(path("medium"));
    const QByteArray medium = path("medium").toLocal8Bit();
    QCOMPARE(mount("tmpfs", medium.constData(), "tmpfs", 0, nullptr), 0);
    makeFile("old");
    ProgramRun run(program, arguments({"--bursts", "99", "--delay", "50"}), directory());
    QVERIFY(run.waitForOutput("Watching"));
    run.send(SIGSTOP);
    QCOMPARE(umount(medium.constData()), 0);
    QCOMPARE(mount("tmpfs", medium.constData(), "tmpfs", 0, nullptr), 0);
    run.send(SIGCONT);
    QVERIFY(run.waitForOutput(QStringLiteral("medium removed\nmedium mounted\n"
                                             "medium: 0 files (*)\n")));
    makeFile("new");
    QVERIFY(run.waitForOutput("+ new\n"));
    run.send(SIGTERM);
    const ProgramResult result = run.finish();
    QVERIFY2(!result.output.contains("- old"), qPrintable(result.output));
    QVERIFY(unmount(medium));
}

void tst_WatchMedia::printsJson()
{
    makeFile("a");
    ProgramRun run(program, arguments({"--json", "--bursts", "2", "--delay", "50"}), directory());
    QVERIFY(run.waitForOutput("watching"));
    makeFile("b\"\n");
    QVERIFY(run.waitForOutput("burst"));
    QVERIFY(QFile::remove(path("medium/a")));
    const ProgramResult result = run.finish();
    QCOMPARE(result.errors, QString());
    QList<QJsonObject> objects;
    for (const QString& line : result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        objects.append(QJsonDocument::fromJson(line.toUtf8()).object());
    }
    QVERIFY(!objects.isEmpty());
    QVERIFY(objects.last().take("milliseconds").toInt(-1) > 0);
    const QList<QJsonObject> expected = {
        {{"event", "medium"}, {"name", "medium"}, {"files", 1}},
        {{"event", "file"}, {"name", "a"}},
        {{"event", "watching"}, {"directories", 1}},
        {{"event", "new"}, {"name", "b\"\n"}},
        {{"event", "burst"}, {"number", 1}, {"new", 1}, {"gone", 0}, {"files", 2}},
        {{"event", "gone"}, {"name", "a"}},
        {{"event", "burst"}, {"number", 2}, {"new", 0}, {"gone", 1}, {"files", 1}},
        {{"event", "summary"},
         {"files", 1},
         {"new", 1},
         {"gone", 1},
         {"bursts", 2},
         {"namesSkipped", 0}}};
    QVERIFY2(objects == expected, qPrintable(result.output));
}

void tst_WatchMedia::signalPrintsTheSummary_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void tst_WatchMedia::signalPrintsTheSummary()
{
    QFETCH(int, number);
    makeFile("a");
    ProgramRun run(program, arguments({"--bursts", "1"}), directory());
    QVERIFY(run.waitForOutput("Watching"));
    run.send(number);
    const ProgramResult result = run.finish();
    QVERIFY2(withoutTime(result.output)
                 .endsWith(QStringLiteral(
                     "\nSummary: 1 file, 0 new since the start, 0 gone, 0 bursts\n")),
             qPrintable(result.output));
    QCOMPARE(result.exitCode, 0);
}

void tst_WatchMedia::namesThatAreNotUtf8AreCounted()
{
    makeFile("a");
    QList<QByteArray> names{"medium/\xe9.txt", "medium/\xff", "medium/.\xff"};
    for (QByteArray& name : names) {
        name.prepend(directory().toLocal8Bit() + '/');
        const int file = open(name.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
        if (file < 0) {
            MISCTOOLS_SKIP("this file system does not accept such names");
        }
        close(file);
    }
    ProgramResult result = ProgramRun(program, arguments({"--idle", "100"}), directory()).finish();
    QCOMPARE(result.errors, "watch-media: skipped: 2 names that cannot be decoded as UTF-8\n");
    QVERIFY2(withoutTime(result.output)
                 .endsWith(QStringLiteral("\nSummary: 1 file, 0 new since the start, 0 gone, "
                                          "0 bursts, 2 names skipped\n")),
             qPrintable(result.output));
    result = ProgramRun(program, arguments({"--idle", "100", "--json"}), directory()).finish();
    QCOMPARE(result.errors, QString());
    QVERIFY2(result.output.contains("{\"count\":2,\"event\":\"namesSkipped\"}\n"),
             qPrintable(result.output));
    // Qt cannot remove them.
    for (const QByteArray& name : qAsConst(names)) {
        QCOMPARE(unlink(name.constData()), 0);
    }
}

void tst_WatchMedia::invalidArgumentsAreRefused_data()
{
    QTest::addColumn<QStringList>("commandLine");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("errors");

    QTest::newRow("no directory") << QStringList() << 2
                                  << "watch-media: exactly one DIRECTORY is required\n" + hint;
    QTest::newRow("two directories") << QStringList{"medium", "medium"} << 2
                                     << "watch-media: exactly one DIRECTORY is required\n" + hint;
    QTest::newRow("unknown option")
        << QStringList{"--foo", "medium"} << 2 << "watch-media: Unknown option 'foo'.\n" + hint;
    QTest::newRow("option without its value")
        << QStringList{"medium", "--delay"} << 2
        << "watch-media: Missing value after '--delay'.\n" + hint;
    QTest::newRow("delay of 0") << QStringList{"--delay", "0", "medium"} << 2
                                << "watch-media: --delay requires a number from 1 up, not '0'\n" +
                                       hint;
    QTest::newRow("negative idle time")
        << QStringList{"--idle", "-5", "medium"} << 2
        << "watch-media: --idle requires a number from 1 up, not '-5'\n" + hint;
    QTest::newRow("bursts are not a number")
        << QStringList{"--bursts", "two", "medium"} << 2
        << "watch-media: --bursts requires a number from 1 up, not 'two'\n" + hint;
    QTest::newRow("missing directory")
        << QStringList{"none"} << 3 << "watch-media: no such directory: none\n";
    QTest::newRow("empty name") << QStringList{""} << 3 << "watch-media: no such directory: \n";
    QTest::newRow("file") << QStringList{"medium/a"} << 3
                          << "watch-media: medium/a is not a directory\n";
}

void tst_WatchMedia::invalidArgumentsAreRefused()
{
    QFETCH(QStringList, commandLine);
    QFETCH(int, exitCode);
    QFETCH(QString, errors);

    makeFile("a");
    const ProgramResult result = ProgramRun(program, commandLine, directory()).finish();
    QCOMPARE(result.errors, errors);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, exitCode);
}

void tst_WatchMedia::helpListsEveryExitCode()
{
    const ProgramResult result = ProgramRun(program, {"--help"}, directory()).finish();
    QCOMPARE(result.errors, QString());
    QVERIFY2(result.output.contains(QStringLiteral(
                 "\nExit codes:\n"
                 "  0  normal exit, also after Ctrl-C, SIGTERM or SIGHUP\n"
                 "  2  wrong usage\n"
                 "  3  DIRECTORY is missing, is not a directory, or cannot be watched\n"
                 "  4  DIRECTORY was removed\n"
                 "  5  the output could not be written\n")),
             qPrintable(result.output));
    QCOMPARE(result.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_WatchMedia)
#include "tst_WatchMedia.moc"
