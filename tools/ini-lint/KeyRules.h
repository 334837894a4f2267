#ifndef EXAMPLES_INILINT_KEYRULES_H
#define EXAMPLES_INILINT_KEYRULES_H

#include "Finding.h"

class IniReading;

// The rules of the names of keys.
namespace KeyRules {

void check(const IniReading& reading, Findings& findings);

} // namespace KeyRules

#endif
