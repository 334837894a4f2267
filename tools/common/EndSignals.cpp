#include "EndSignals.h"

#include <sys/signalfd.h>

#include <algorithm>
#include <ctime>

EndSignals::EndSignals()
{
    sigemptyset(&m_numbers);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            sigaddset(&m_numbers, number);
        }
    }
    sigprocmask(SIG_BLOCK, &m_numbers, nullptr);
}

int EndSignals::take() const
{
    const timespec noTime = {};
    return std::max(sigtimedwait(&m_numbers, nullptr, &noTime), 0);
}

void EndSignals::release() const
{
    sigprocmask(SIG_UNBLOCK, &m_numbers, nullptr);
}

int EndSignals::openDescriptor() const
{
    return signalfd(-1, &m_numbers, SFD_CLOEXEC);
}
