// Repeatedly uses the classes that hold descriptors, threads, processes and watches. Verifies that
// this process holds no more of them, and no more memory, at the end than in the middle. A run in
// which something has grown is repeated once.
#include "EepromImage.h"
#include "ProcessUsage.h"

#include <DirectoryWatcher.h>
#include <HardwareInfo.h>
#include <HardwareInfoReader.h>
#include <HashGenerator.h>
#include <MediaWatcher.h>
#include <QProcessHandler.h>
#include <RecursiveFileSearchWorkerThread.h>
#include <TextFileParser.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThreadPool>
#include <QtCore/QTimer>
#include <QtCore/QVector>

#include <algorithm>
#include <atomic>
#include <cstdio>

#include <unistd.h>

namespace {

enum ExitCode
{
    Flat = 0,
    Grown = 1,
    WrongUsage = 2,
    WrongResult = 3
};

constexpr int defaultSeconds = 6;
constexpr int samplesPerThird = 12;
constexpr int leastSamples = 2 * samplesPerThird;
constexpr int longWhileInMs = 20000;
constexpr int subdirectories = 4;
constexpr int filesPerDirectory = 5;

// A sanitizer delays the reuse of freed memory and has its own heap; it finds leaks itself.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isMemoryJudged = false;
#else
constexpr bool isMemoryJudged = true;
#endif

std::atomic<int> libraryWarnings{0};

void countWarning(QtMsgType, const QMessageLogContext& context, const QString&)
{
    // The messages of a release build of Qt have no file; those of the library always have one.
    if (context.file != nullptr) {
        ++libraryWarnings;
    }
}

// The first error, which terminates the run.
class Failure
{
public:
    explicit Failure(const char* what) : m_what(what) {}
    const char* what() const { return m_what; }

private:
    const char* m_what;
};

void require(bool isRight, const char* what)
{
    if (!isRight) {
        throw Failure(what);
    }
}

bool write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

bool touch(const QString& path)
{
    return write(path, QByteArray());
}

void createTree(const QString& root)
{
    for (int i = 0; i < subdirectories; ++i) {
        const QString directory = QStringLiteral("%1/directory%2").arg(root).arg(i);
        require(QDir().mkpath(directory), "a directory of the tree cannot be created");
        for (int j = 0; j < filesPerDirectory; ++j) {
            require(touch(QStringLiteral("%1/file%2.txt").arg(directory).arg(j)),
                    "a file of the tree cannot be created");
        }
    }
}

// Runs action, then the event loop until signal is emitted.
template <typename Sender, typename Signal, typename Action>
void awaitSignal(Sender* sender, Signal signal, const Action& action, const char* error)
{
    QEventLoop loop;
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(sender, signal, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    QObject::connect(&guard, &QTimer::timeout, &loop, [&loop] { loop.exit(1); });
    guard.start(longWhileInMs);
    action();
    require(loop.exec() == 0, error);
}

void watchDirectories(const QString& root)
{
    DirectoryWatcher watcher(root);
    watcher.setDelayInMs(1);
    for (int i = 0; i < subdirectories; ++i) {
        require(watcher.addPath(QStringLiteral("%1/directory%2").arg(root).arg(i)),
                "a directory cannot be watched");
    }
    const QString file = root + "/directory0/new.tmp";
    const char* const error = "a change was not detected";
    awaitSignal(
        &watcher, &DirectoryWatcher::directoryChanged, [&] { touch(file); }, error);
    awaitSignal(
        &watcher, &DirectoryWatcher::directoryChanged, [&] { QFile::remove(file); }, error);
    // And a watcher that is destroyed during a burst.
    watcher.directoryGotChanged(root);
}

void searchInPool(const QString& root, QThreadPool& pool)
{
    int found = 0;
    auto* worker = new RecursiveFileSearchWorkerThread(root, QStringList("*.txt"));
    QObject receiver;
    QObject::connect(worker, &RecursiveFileSearchWorkerThread::searchFinished, &receiver,
                     [&found](const QStringList& result) { found = result.size(); });
    awaitSignal(
        worker, &RecursiveFileSearchWorkerThread::searchFinished, [&] { pool.start(worker); },
        "a search did not finish");
    require(found == subdirectories * filesPerDirectory,
            "a search in the pool has an incorrect result");
}

void searchMedium(const QString& root)
{
    int found = 0;
    MediaWatcher watcher(nullptr);
    watcher.setFileMatchPatternList({"*.txt", "directory*"});
    QObject::connect(&watcher, &MediaWatcher::filesFound,
                     [&found](const QFileInfoList& files) { found = files.size(); });
    watcher.mediumMounted(root);
    require(found == subdirectories, "the top directory of a medium has an incorrect content");
    watcher.setRecursive(true);
    watcher.mediumMounted(root);
    require(found == subdirectories * (filesPerDirectory + 1), "a medium has an incorrect content");
}

void runPrograms()
{
    QProcessHandler handler;
    require(handler.startProcess("true", {}) == 0, "true has an incorrect result");
    require(handler.startProcess("echo", {"text"}) == 0 &&
                handler.getStandardOutput() == QLatin1String("text\n"),
            "echo has an incorrect result");
    require(handler.startProcess("/nonexistent/program", {}) == -1,
            "a missing program was started");
    // The program is still running when the handler is destroyed.
    handler.setWaitForFinishedTimeout(1);
    require(handler.startProcess("sleep", {"100"}) == -1, "sleep did not time out");
}

void parseText(const QString& root)
{
    const QString path = root + "/version";
    require(write(path, "version=1\nversion=2\n"), "a text file cannot be written");
    TextFileParser parser(path);
    require(parser.multiMatch(QRegularExpression("version=(\\d)")) == QStringList({"1", "2"}),
            "a text file has an incorrect match");
    require(parser.match(QRegularExpression("(")).isNull(), "an invalid expression matches");
    require(TextFileParser(root + "/none").hasError(), "a missing file was read");
    require(QFile::remove(path), "a text file cannot be removed");
}

void readHardware(const QString& root)
{
    // All keys are present except the one whose absence logs nothing.
    const EepromImage image("Type=4711\nTypeName=Board\nVersion=2.1\nCompatibilityIndex=3\n"
                            "LP-ID=LP-000815\n");
    const QString path = root + "/eeprom";
    const QString temporary = root + "/hwinfo.XXXXXX";
    HardwareInfoReader reader(nullptr);
    HardwareInfo info;
    require(write(path, image.bytes()) && reader.readHardwareInfoFromSysFs(temporary, path, info) &&
                info.type() == QLatin1String("4711"),
            "an EEPROM image has an incorrect record");
    require(write(path, EepromImage(image).flipBit(EepromImage::headerEnd, 0).bytes()) &&
                !reader.readHardwareInfoFromSysFs(temporary, path, info),
            "a damaged EEPROM image was accepted");
    require(QFile::remove(path), "an EEPROM image cannot be removed");
}

void hashFiles(const QString& root)
{
    const QString path = root + "/hashed";
    require(write(path, QByteArray(100000, 'x')), "a file to hash cannot be written");
    require(HashGenerator::createHashFromFile(path, QCryptographicHash::Md5).toHex() ==
                "d5816f35916d1d9482fb0f1ec201101d",
            "a file has an incorrect hash");
    require(QFile::remove(path), "a hashed file cannot be removed");
    require(HashGenerator::createHashFromFile(path, QCryptographicHash::Md5).isNull(),
            "a missing file has a hash");
}

// All entries of the temporary directory, at any depth.
int countTemporaryFiles()
{
    int count = 0;
    QDirIterator entries(QDir::tempPath(),
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    for (; entries.hasNext(); entries.next()) {
        ++count;
    }
    return count;
}

void runRound(const QString& root, QThreadPool& pool)
{
    constexpr int warningsPerRound = 7;

    const int filesBefore = countTemporaryFiles();

    const int warningsBefore = libraryWarnings;
    watchDirectories(root);
    searchInPool(root, pool);
    searchMedium(root);
    runPrograms();
    parseText(root);
    readHardware(root);
    hashFiles(root);
    // The pool deletes a worker after it emitted its signal.
    require(pool.waitForDone(longWhileInMs), "the pool is still working");
    QCoreApplication::processEvents();
    require(libraryWarnings - warningsBefore == warningsPerRound,
            "the library logged an unexpected warning");
    require(countTemporaryFiles() == filesBefore, "a temporary file remained");
}

struct Figure
{
    const char* name;
    long ProcessUsage::*member;
    long slack; // permitted growth from the middle to the end
    bool isJudged;
};

const QVector<Figure>& figures()
{
    // An emulator caches translated code and is too slow to warm up in seconds.
    const bool isJudged = isMemoryJudged && !qEnvironmentVariableIsSet("QEMU_LD_PREFIX");
    static const QVector<Figure> theFigures = {
        {"descriptors", &ProcessUsage::descriptors, 0, true},
        {"threads", &ProcessUsage::threads, 0, true},
        {"children", &ProcessUsage::children, 0, true},
        {"inotify watches", &ProcessUsage::inotifyWatches, 0, true},
        {"heap, KiB", &ProcessUsage::heapInKiB, 2, isJudged},
        {"resident, KiB", &ProcessUsage::residentInKiB, 512, isJudged},
    };
    return theFigures;
}

// The minimum of a third of the samples; third 0 is the warm-up. A transient resource, such as a
// finished thread that is still counted, is not in every sample; a leak is.
long smallest(const QVector<ProcessUsage>& samples, int third, long ProcessUsage::*member)
{
    const auto begin = samples.constBegin() + third * samples.size() / 3;
    const auto end = samples.constBegin() + (third + 1) * samples.size() / 3;
    return (*std::min_element(begin, end,
                              [member](const auto& left, const auto& right) {
                                  return left.*member < right.*member;
                              })).*
           member;
}

// Prints the table; returns whether anything has grown.
bool report(const QVector<ProcessUsage>& samples)
{
    bool hasGrown = false;
    std::printf("%-16s %8s %8s %8s  verdict\n", "", "start", "middle", "end");
    for (const Figure& figure : figures()) {
        const long middle = smallest(samples, 1, figure.member);
        const long end = smallest(samples, 2, figure.member);
        const bool isGrown = figure.isJudged && end > middle + figure.slack;
        const char* const verdict = isGrown ? "GROWN" : "flat";
        std::printf("%-16s %8ld %8ld %8ld  %s\n", figure.name, samples.constFirst().*figure.member,
                    middle, end,
                    figure.isJudged ? verdict : "not judged under a sanitizer or an emulator");
        hasGrown |= isGrown;
    }
    return hasGrown;
}

// The length of a run: a time or a number of rounds.
struct Length
{
    qint64 milliseconds = qint64(defaultSeconds) * 1000;
    int rounds = 0; // 0: limited by time
};

// The progress of the run, as the number of samples that are due.
qint64 dueSamples(const Length& length, qint64 elapsedInMs, int rounds)
{
    return length.rounds > 0 ? qint64(rounds) * 3 * samplesPerThird / length.rounds
                             : elapsedInMs * 3 * samplesPerThird / length.milliseconds;
}

// Repeats the work for a length of time, and reports its use of resources.
bool grows(const Length& length, const QString& root, QThreadPool& pool)
{
    QVector<ProcessUsage> samples;
    samples.reserve(4 * samplesPerThird);
    QElapsedTimer clock;
    clock.start();
    int rounds = 0;
    qint64 due = 0;
    // A slow machine runs longer, because few samples are not reliable.
    while (due < 3 * samplesPerThird || samples.size() < leastSamples) {
        runRound(root, pool);
        ++rounds;
        if (due >= samples.size()) {
            samples.append(ProcessUsage::now());
        }
        due = dueSamples(length, clock.elapsed(), rounds);
    }
    std::printf("soak: %d rounds, %d samples, %.1f s\n", rounds, samples.size(),
                double(clock.elapsed()) / 1000);
    return report(samples);
}

ExitCode soak(const Length& length)
{
    const QTemporaryDir directory;
    require(directory.isValid(), "there is no temporary directory");
    // From here on, only the library creates temporary files.
    qputenv("TMPDIR", QFile::encodeName(directory.path()));
    createTree(directory.path());
    QThreadPool pool;
    pool.setMaxThreadCount(2);

    // Memory may still grow by chance during the first run. A leak grows in the second one, too.
    const bool isGrown =
        grows(length, directory.path(), pool) && grows(length, directory.path(), pool);
    return isGrown ? Grown : Flat;
}

// Parses the arguments; false if they are not a length.
bool parse(const QStringList& arguments, Length& length)
{
    if (arguments.isEmpty()) {
        return true;
    }
    const bool areRounds = arguments.constFirst() == QLatin1String("--rounds");
    const int number = arguments.constLast().toInt();
    if (areRounds) {
        length.rounds = number;
    } else {
        length.milliseconds = qint64(number) * 1000;
    }
    return number > 0 && arguments.size() == (areRounds ? 2 : 1);
}

// The heap caches freed blocks, which count as allocated and whose number grows for minutes.
// Without the cache the size of the heap is exact; the variable must be set before a program
// starts.
void restartWithPlainHeap(char* argv[])
{
    constexpr const char* name = "GLIBC_TUNABLES";

    if (!qEnvironmentVariableIsSet(name)) {
        qputenv(name, "glibc.malloc.tcache_count=0:glibc.malloc.mxfast=0");
        execv("/proc/self/exe", argv);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    restartWithPlainHeap(argv);
    const QCoreApplication application(argc, argv);
    Length length;
    if (!parse(QCoreApplication::arguments().mid(1), length)) {
        std::fprintf(stderr,
                     "usage: soak [SECONDS | --rounds ROUNDS]  (default %d seconds)\n"
                     "exit codes: 0 flat, 1 growth, 2 wrong usage, 3 incorrect result\n",
                     defaultSeconds);
        return WrongUsage;
    }
    qInstallMessageHandler(countWarning);
    try {
        return soak(length);
    } catch (const Failure& failure) {
        std::fprintf(stderr, "soak: %s\n", failure.what());
        return WrongResult;
    }
}
