#ifndef TOOLS_COMMON_ENDSIGNALS_H
#define TOOLS_COMMON_ENDSIGNALS_H

#include <csignal>

/*
 * Blocks Ctrl-C, SIGTERM and SIGHUP, so that the program can poll for them and exit in an orderly
 * way. A signal that was ignored when the program started, as in a background job, remains ignored.
 * Threads and programs that are started later inherit the mask.
 */
class EndSignals
{
public:
    EndSignals();

    // Returns the number of a pending signal, or 0; does not wait.
    int take() const;

    // Unblocks the signals.
    void release() const;

    // Returns a new descriptor that is readable if a signal is pending, for QSocketNotifier.
    int openDescriptor() const;

private:
    sigset_t m_numbers;
};

#endif
