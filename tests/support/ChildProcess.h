#ifndef TESTS_CHILDPROCESS_H
#define TESTS_CHILDPROCESS_H

#include <QtCore/QByteArray>

#include <functional>

// How a child ended, and what it wrote.
struct ChildResult
{
    bool exited = false; // by itself; otherwise a signal ended it
    int exitCode = -1;
    int signal = 0;
    QByteArray output; // standard output and standard error
};

namespace ChildProcess {

/*
 * Runs function in a forked copy of this process and waits for its end; the function's result is
 * the exit code. For what would bring the test itself down (a crash, an assertion), or must not
 * change it (its user, its limits). The child's messages go to its standard error.
 */
ChildResult run(const std::function<int()>& function);

/*
 * As run(), as an ordinary user without any privilege: root passes every permission check. The
 * user may read and write only what everybody may.
 */
ChildResult runAsOrdinaryUser(const std::function<int()>& function);

/*
 * To be called before a fork, as run() does. The start of a test function wakes the watchdog of Qt
 * Test, which reads the environment: a copy that is made in that moment would find Qt's lock for it
 * taken, and wait for ever.
 */
void letOtherThreadsSleep();

// Ends a forked copy of this process, and nothing of what it shares with the original.
[[noreturn]] void leave(int exitCode);

} // namespace ChildProcess

#endif
