#ifndef TESTS_CHILDPROCESS_H
#define TESTS_CHILDPROCESS_H

#include <QtCore/QByteArray>

#include <functional>

// How a child terminated, and its output.
struct ChildResult
{
    bool exited = false; // false if a signal terminated it
    int exitCode = -1;
    int signal = 0;
    QByteArray output; // standard output and standard error
};

namespace ChildProcess {

/*
 * Runs function in a forked copy of this process and waits for its exit; the function's result is
 * the exit code. Use it for code that would terminate the test (a crash, an assertion) or change
 * its state (its user, its limits). The child logs to its standard error.
 */
ChildResult run(const std::function<int()>& function);

/*
 * Like run(), but as an ordinary user without privileges, because root passes every permission
 * check. The user may access only files that everyone may access.
 */
ChildResult runAsOrdinaryUser(const std::function<int()>& function);

/*
 * Call this before a fork, as run() does. The start of a test function wakes Qt Test's watchdog
 * thread, which reads the environment. A copy forked at that moment would inherit Qt's environment
 * lock in locked state and deadlock.
 */
void letOtherThreadsSleep();

// Exits a forked copy of this process without affecting the resources that it shares with the
// original.
[[noreturn]] void leave(int exitCode);

} // namespace ChildProcess

#endif
