#ifndef TESTS_CHILDPROCESS_H
#define TESTS_CHILDPROCESS_H

#include <QtCore/QByteArray>

#include <functional>

// How a child ended, and its output.
struct ChildResult
{
    bool exited = false; // false if a signal ended it
    int exitCode = -1;
    int signal = 0;
    QByteArray output; // standard output and standard error
};

namespace ChildProcess {

/*
 * Runs function in a forked copy of this process and waits until it ends; the function's result is
 * the exit code. Use it for code that would end the test itself (a crash, an assertion) or must not
 * change it (its user, its limits). The child logs to its standard error.
 */
ChildResult run(const std::function<int()>& function);

/*
 * Like run(), but as an ordinary user without privileges, because root passes every permission
 * check. The user may read and write only what everyone may.
 */
ChildResult runAsOrdinaryUser(const std::function<int()>& function);

/*
 * Call this before a fork, as run() does. The start of a test function wakes Qt Test's watchdog
 * thread, which reads the environment. A copy forked at that moment would inherit Qt's environment
 * lock in locked state and deadlock.
 */
void letOtherThreadsSleep();

// Ends a forked copy of this process without affecting what it shares with the original.
[[noreturn]] void leave(int exitCode);

} // namespace ChildProcess

#endif
