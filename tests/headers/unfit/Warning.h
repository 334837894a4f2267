#ifndef TESTS_WARNING_H
#define TESTS_WARNING_H

class Warning
{
public:
    void set(int value) {}
};

#endif
