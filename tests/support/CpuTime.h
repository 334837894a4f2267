#ifndef TESTS_CPUTIME_H
#define TESTS_CPUTIME_H

#include <ctime>

// CPU time of this process since construction, in seconds. Unlike elapsed time, it hardly depends
// on the load of the machine.
class CpuTime
{
public:
    CpuTime() : m_start(std::clock()) {}

    double seconds() const { return double(std::clock() - m_start) / CLOCKS_PER_SEC; }

private:
    const std::clock_t m_start;
};

#endif
