// Saves a file repeatedly with one operation, each time with new content, for script/check
// powercut.
//
//     powercut-writer OPERATION GENERATIONS DIRECTORY NOTES|-
//     powercut-writer --times GENERATIONS DIRECTORY
//
// After each call it notes on the block device NOTES, bypassing all caches, which content was
// acknowledged. --times measures operations of the library instead.
#include "BootInformationHelper.h"
#include "IniFileManager.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QScopedPointer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr size_t noteSize = 4096;

[[noreturn]] void fail(const QString& reason)
{
    std::fprintf(stderr, "powercut-writer: %s\n", qPrintable(reason));
    std::exit(1);
}

// Bypasses FlushVoid.cpp, which must omit only the flushes under test.
void flushReally(const QString& path)
{
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0 || syscall(SYS_fsync, descriptor) != 0) {
        fail(QStringLiteral("cannot flush ") + path);
    }
    close(descriptor);
}

// Writes a file that survives a power cut.
void writeDurably(const QString& directory, const QString& name, const QByteArray& content)
{
    const QString path = directory + QLatin1Char('/') + name;
    const QString temporary = path + QStringLiteral(".prepared");
    QFile file(temporary);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        fail(QStringLiteral("cannot write ") + temporary);
    }
    file.close();
    flushReally(temporary);
    if (rename(QFile::encodeName(temporary).constData(), QFile::encodeName(path).constData()) !=
        0) {
        fail(QStringLiteral("cannot rename ") + temporary);
    }
    flushReally(directory);
}

class Notes
{
public:
    void open(const char* path)
    {
        m_descriptor = ::open(path, O_WRONLY | O_DIRECT | O_CLOEXEC);
        if (m_descriptor < 0) {
            fail(QStringLiteral("cannot open ") + QString::fromLocal8Bit(path));
        }
    }

    // Notes the file's content as the operation's last acknowledged state.
    void acknowledge(const QString& operation, int generation, const QString& path)
    {
        if (m_descriptor < 0) {
            return;
        }
        QFile file(path);
        QJsonObject note{{"operation", operation}, {"generation", generation}, {"path", path}};
        if (file.open(QIODevice::ReadOnly)) {
            note.insert("content", QString::fromLatin1(file.readAll().toBase64()));
        }
        const QByteArray text = QJsonDocument(note).toJson(QJsonDocument::Compact);
        if (size_t(text.size()) >= noteSize) {
            fail(QStringLiteral("the note is too long"));
        }
        alignas(noteSize) char sector[noteSize] = {};
        std::memcpy(sector, text.constData(), size_t(text.size()));
        if (pwrite(m_descriptor, sector, noteSize, 0) != ssize_t(noteSize)) {
            fail(QStringLiteral("cannot write a note"));
        }
    }

private:
    int m_descriptor = -1;
};

Notes notes;

struct Work
{
    QString operation;
    QString directory;
    int generations = 0;

    QString path() const { return directory + QStringLiteral("/file"); }
    void acknowledge(int generation) const { acknowledge(generation, path()); }
    void acknowledge(int generation, const QString& path) const
    {
        notes.acknowledge(operation, generation, path);
    }
};

void setGeneration(IniFileManager& manager, int generation)
{
    manager.setValue(QStringLiteral("State"), QStringLiteral("Generation"), generation);
}

void writeWithOneManager(const Work& work, const std::function<void(IniFileManager&)>& save)
{
    IniFileManager manager(work.path(), nullptr);
    for (int generation = 1; generation <= work.generations; ++generation) {
        setGeneration(manager, generation);
        save(manager);
        work.acknowledge(generation);
    }
}

void sync(const Work& work)
{
    writeWithOneManager(work, [](IniFileManager& manager) { manager.sync(); });
}

void eventLoop(const Work& work)
{
    writeWithOneManager(work, [](IniFileManager&) { QCoreApplication::sendPostedEvents(); });
}

void destructor(const Work& work)
{
    for (int generation = 1; generation <= work.generations; ++generation) {
        {
            IniFileManager manager(work.path(), nullptr);
            setGeneration(manager, generation);
        }
        work.acknowledge(generation);
    }
}

// QSettings creates the directory, too.
void firstSave(const Work& work)
{
    for (int generation = 1; generation <= work.generations; ++generation) {
        const QString path = QStringLiteral("%1/new-%2/file").arg(work.directory).arg(generation);
        IniFileManager manager(path, nullptr);
        setGeneration(manager, generation);
        manager.sync();
        work.acknowledge(generation, path);
    }
}

QByteArray textOfGeneration(int generation)
{
    return "[State]\nGeneration=" + QByteArray::number(generation) + '\n';
}

int cleanUpGeneration = 0;

void cleanUp(const Work& work)
{
    writeDurably(work.directory, QStringLiteral("file"), textOfGeneration(1));
    work.acknowledge(1);
    IniFileManager::sm_CleanUpFunctions = {
        [](QString& text) { text = QString::fromUtf8(textOfGeneration(cleanUpGeneration)); }};
    for (cleanUpGeneration = 2; cleanUpGeneration <= work.generations; ++cleanUpGeneration) {
        IniFileManager::cleanUp(work.path());
        work.acknowledge(cleanUpGeneration);
    }
}

// Two generations for each marker: created, and removed.
void removeMarkers(const Work& work, const QString& path,
                   void (BootInformationHelper::*remove)() const)
{
    const QFileInfo marker(path);
    for (int generation = 1; generation <= work.generations; generation += 2) {
        writeDurably(marker.path(), marker.fileName(), QByteArray::number(generation));
        work.acknowledge(generation, path);
        (BootInformationHelper().*remove)();
        work.acknowledge(generation + 1, path);
    }
}

// The markers have fixed paths: the directory becomes the root.
void enter(const QString& directory)
{
    if (chroot(QFile::encodeName(directory).constData()) != 0 || chdir("/") != 0) {
        fail(QStringLiteral("cannot enter ") + directory);
    }
}

void firmwareMarker(const Work& work)
{
    QDir().mkpath(work.directory + QStringLiteral("/orvalis/etc"));
    flushReally(work.directory + QStringLiteral("/orvalis"));
    flushReally(work.directory + QStringLiteral("/orvalis/etc"));
    enter(work.directory);
    removeMarkers(work, QStringLiteral("/orvalis/etc/orvalis-first-boot"),
                  &BootInformationHelper::deleteFirmwareUpdateMarker);
}

void rebootMarker(const Work& work)
{
    enter(work.directory);
    removeMarkers(work, QStringLiteral("/orvalis-reboot"),
                  &BootInformationHelper::deleteOrvalisRebootMarker);
}

void run(const QString& program, const QStringList& arguments,
         const QByteArray& input = QByteArray())
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished() || process.exitCode() != 0) {
        fail(program + QStringLiteral(" failed"));
    }
}

void eepromImage(const Work& work)
{
    const QString text = QStringLiteral("/tmp/board.ini");
    for (int generation = 1; generation <= work.generations; ++generation) {
        QFile file(text);
        if (!file.open(QIODevice::WriteOnly)) {
            fail(QStringLiteral("cannot write ") + text);
        }
        file.write(
            "Type=4711\nTypeName=Board\nVersion=1.0\nCompatibilityIndex=1\nLP-ID=1\nComment=" +
            QByteArray::number(generation) + '\n');
        file.close();
        run(QStringLiteral("eeprom-image"), {QStringLiteral("create"), text, work.path()});
        work.acknowledge(generation);
    }
}

// Two generations for each file: written, and cleaned up.
void iniLint(const Work& work)
{
    for (int generation = 1; generation <= work.generations; generation += 2) {
        writeDurably(work.directory, QStringLiteral("file"),
                     "Generation=" + QByteArray::number(generation) + ",1\n");
        work.acknowledge(generation);
        run(QStringLiteral("ini-lint"), {QStringLiteral("--clean"), work.path()});
        work.acknowledge(generation + 1);
    }
}

void peakMeter(const Work& work)
{
    for (int generation = 1; generation <= work.generations; ++generation) {
        run(QStringLiteral("peak-meter"), {QStringLiteral("--file"), work.path()},
            QByteArray::number(generation) + '\n');
        work.acknowledge(generation);
    }
}

void runAndGrep(const Work& work)
{
    for (int generation = 1; generation <= work.generations; ++generation) {
        run(QStringLiteral("run-and-grep"),
            {QStringLiteral("--output"), work.path(), QStringLiteral("-e"), QStringLiteral("."),
             QStringLiteral("--"), QStringLiteral("echo"), QString::number(generation)});
        work.acknowledge(generation);
    }
}

struct Operation
{
    const char* name;
    void (*write)(const Work& work);
};

constexpr Operation operations[] = {{"sync", &sync},
                                    {"event-loop", &eventLoop},
                                    {"destructor", &destructor},
                                    {"first-save", &firstSave},
                                    {"cleanUp", &cleanUp},
                                    {"firmware-marker", &firmwareMarker},
                                    {"reboot-marker", &rebootMarker},
                                    {"eeprom-image", &eepromImage},
                                    {"ini-lint", &iniLint},
                                    {"peak-meter", &peakMeter},
                                    {"run-and-grep", &runAndGrep}};

void write(const char* name, const char* generations, const char* directory)
{
    const auto operation =
        std::find_if(std::begin(operations), std::end(operations),
                     [name](const Operation& each) { return std::strcmp(each.name, name) == 0; });
    const QString parent = QString::fromLocal8Bit(directory);
    const Work work = {QString::fromLatin1(name),
                       parent + QLatin1Char('/') + QString::fromLatin1(name),
                       QByteArray(generations).toInt()};
    if (operation == std::end(operations) || work.generations < 1 ||
        !QDir().mkpath(work.directory)) {
        fail(QStringLiteral("invalid operation, number of generations or directory"));
    }
    flushReally(parent);
    flushReally(work.directory);
    work.acknowledge(0);
    operation->write(work);
}

// Prints the median and the 90th percentile of a call's duration.
template <typename Call>
void measure(const char* name, int calls, Call call)
{
    std::vector<qint64> times;
    for (int i = 0; i < calls; ++i) {
        QElapsedTimer timer;
        timer.start();
        call(i);
        times.push_back(timer.nsecsElapsed() / 1000);
    }
    std::sort(times.begin(), times.end());
    std::printf("%-10s %6lld us, 90 %%: %6lld us\n", name,
                static_cast<long long>(times.at(times.size() / 2)),
                static_cast<long long>(times.at(times.size() * 9 / 10)));
}

void printTimes(const char* calls, const char* directory)
{
    const int count = std::max(1, QByteArray(calls).toInt());
    const QString path = QString::fromLocal8Bit(directory) + QStringLiteral("/times.ini");
    IniFileManager manager(path, nullptr);
    measure("sync", count, [&manager](int i) {
        setGeneration(manager, i);
        manager.sync();
    });
    measure("no change", count, [&manager](int) { manager.sync(); });
    measure("cleanUp", count, [&path](int) { IniFileManager::cleanUp(path); });
    QFile::remove(path);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc == 4 && std::strcmp(argv[1], "--times") == 0) {
        printTimes(argv[2], argv[3]);
        return 0;
    }
    if (argc != 5) {
        fail(QStringLiteral("usage: powercut-writer OPERATION GENERATIONS DIRECTORY NOTES|-"));
    }
    if (std::strcmp(argv[4], "-") != 0) {
        notes.open(argv[4]);
    }
    write(argv[1], argv[2], argv[3]);
    return 0;
}
