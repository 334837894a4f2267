#include "ProcessUsage.h"

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <malloc.h>
#include <unistd.h>

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList entries(const QString& directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
}

long countInotifyWatches()
{
    long watches = 0;
    const QString directory = "/proc/self/fdinfo/";
    for (const QString& descriptor : entries(directory)) {
        watches += readAll(directory + descriptor).count("inotify wd:");
    }
    return watches;
}

// The parent's ID is the second field after the name, which ends at the last parenthesis.
bool isChild(const QString& process)
{
    const QByteArray stat = readAll(QStringLiteral("/proc/%1/stat").arg(process));
    return stat.mid(stat.lastIndexOf(')') + 2).split(' ').value(1).toLong() == getpid();
}

// A joined thread may remain in /proc for a moment.
long countThreads()
{
    constexpr int longWhileInMs = 100;

    long threads = entries("/proc/self/task").size();
    for (int i = 0; threads > 1 && i < longWhileInMs; ++i) {
        usleep(1000);
        threads = entries("/proc/self/task").size();
    }
    return threads;
}

long countChildren()
{
    long children = 0;
    for (const QString& process : entries("/proc")) {
        bool isProcess = false;
        process.toInt(&isProcess);
        children += isProcess && isChild(process) ? 1 : 0;
    }
    return children;
}

long readResidentInKiB()
{
    const QByteArray pages = readAll("/proc/self/statm").split(' ').value(1);
    return pages.toLong() * (sysconf(_SC_PAGESIZE) / 1024);
}

long readHeapInKiB()
{
    // glibc before 2.33 has only the old function with 32-bit numbers.
#if __GLIBC_PREREQ(2, 33)
    return static_cast<long>(mallinfo2().uordblks / 1024);
#else
    return mallinfo().uordblks / 1024;
#endif
}

} // namespace

ProcessUsage ProcessUsage::now()
{
    ProcessUsage usage;
    usage.descriptors = entries("/proc/self/fd").size();
    usage.threads = countThreads();
    usage.children = countChildren();
    usage.inotifyWatches = countInotifyWatches();
    usage.heapInKiB = readHeapInKiB();
    usage.residentInKiB = readResidentInKiB();
    return usage;
}
