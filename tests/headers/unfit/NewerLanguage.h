#ifndef TESTS_NEWERLANGUAGE_H
#define TESTS_NEWERLANGUAGE_H

class NewerLanguage
{
public:
    auto number() const { return 1; }
};

#endif
