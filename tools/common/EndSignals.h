#ifndef TOOLS_COMMON_ENDSIGNALS_H
#define TOOLS_COMMON_ENDSIGNALS_H

#include <csignal>

/*
 * Ctrl-C, SIGTERM and SIGHUP of a program that ends in good order: from the construction on they
 * wait until the program looks. One that was ignored when the program started, as the shell does
 * for a job in the background, stays ignored. Threads and programs started later inherit the mask.
 */
class EndSignals
{
public:
    EndSignals();

    // The number of a signal that came, or 0; does not wait.
    int take() const;

    // They work as usual again.
    void release() const;

    // A new descriptor that is readable when a signal came, for QSocketNotifier.
    int openDescriptor() const;

private:
    sigset_t m_numbers;
};

#endif
