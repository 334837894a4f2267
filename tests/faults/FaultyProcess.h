#ifndef TESTS_FAULTYPROCESS_H
#define TESTS_FAULTYPROCESS_H

#include <QtCore/QByteArray>
#include <QtCore/QVector>

#include <functional>

// What becomes of one call of the system, or of several.
struct Fault
{
    enum Kind
    {
        None,
        Once,    // the call fails with the error
        Lasting, // the call, and from then on every one of its name
        Kill,    // the process ends instead of the call
        Short    // the call, which reads or writes, does so with half of what it is asked for
    };

    Kind kind = None;
    int call = 0;           // counted from 0; Short counts what reads and writes, and nothing else
    bool isAtStart = false; // among the calls between the start of a program and its first own
    int error = 0;
};

// How a process with a fault ended.
struct FaultyRun
{
    bool exited = false; // by itself, with 0
    bool isTimedOut = false;
    int signal = 0;
    bool hasSignalledOthers = false; // has tried to: such a signal is held back
    QByteArray result;
    int descriptorsLeft = 0; // more than before; what a failed close leaves does not count

    QVector<QByteArray> calls;        // their names, in order
    QVector<QByteArray> callsAtStart; // of started programs, before the program's own
    QVector<QByteArray> failedCalls;
    int transfers = 0; // how often it has read or written
};

/*
 * Fault injection: runs a function in a forked copy of this process and makes one of its system
 * calls fail, kill the process, or transfer half the bytes. A seccomp filter has the kernel ask
 * this process before each call that deals with files and processes; the answer is to go on, an
 * error, or a kill. A test runs the function without a fault to count its calls, and then once for
 * each call, so that every error path is taken, those in Qt and the C library too. Needs no
 * privileges; a run takes a millisecond.
 */
namespace FaultyProcess {

// Whether the system offers what is needed.
bool isAvailable();

// The function's result is the run's.
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
