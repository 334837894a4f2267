#ifndef TESTS_MISSINGINCLUDE_H
#define TESTS_MISSINGINCLUDE_H

class MissingInclude
{
public:
    QString text() const;
};

#endif
