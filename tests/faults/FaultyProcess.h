#ifndef TESTS_FAULTYPROCESS_H
#define TESTS_FAULTYPROCESS_H

#include <QtCore/QByteArray>
#include <QtCore/QVector>

#include <functional>

// What happens to one system call, or to several.
struct Fault
{
    enum Kind
    {
        None,
        Once,    // the call fails with the error
        Lasting, // the call and all later calls of the same name fail
        Kill,    // the process is killed before the call
        Short    // the call, a read or a write, transfers half of the requested bytes
    };

    Kind kind = None;
    int call = 0;           // counted from 0; Short counts only reads and writes
    bool isAtStart = false; // among the calls between fork and exec of a started program
    int error = 0;
};

// The result of a process with a fault.
struct FaultyRun
{
    bool exited = false; // normally, with code 0
    bool isTimedOut = false;
    int signal = 0;
    bool hasSignalledOthers = false; // has tried to: the signal is not sent
    QByteArray result;
    int descriptorsLeft = 0; // leaked, without those of failed closes

    QVector<QByteArray> calls;        // their names, in order
    QVector<QByteArray> callsAtStart; // of started programs, between fork and exec
    QVector<QByteArray> failedCalls;
    int transfers = 0; // number of reads and writes
};

/*
 * Fault injection: runs a function in a forked copy of this process and makes one of its system
 * calls fail, kill the process, or transfer half the bytes. With a seccomp filter, the kernel
 * notifies this process before each call on files and processes; the response is to continue, an
 * error, or a kill. A test runs the function without a fault to count its calls, and then once for
 * each call, so that every error path is taken, those in Qt and the C library too. Needs no
 * privileges; a run takes a millisecond.
 */
namespace FaultyProcess {

// Whether the system supports fault injection.
bool isAvailable();

// Runs the function; its result is FaultyRun::result.
FaultyRun run(const Fault& fault, const std::function<QByteArray()>& function);

} // namespace FaultyProcess

#define MISCTOOLS_NEED_FAULTS()                                                                    \
    do {                                                                                           \
        if (!FaultyProcess::isAvailable()) {                                                       \
            MISCTOOLS_SKIP("needs a kernel that reports system calls to user space, and a "        \
                           "container that allows it (seccomp)");                                  \
        }                                                                                          \
    } while (false)

#endif
