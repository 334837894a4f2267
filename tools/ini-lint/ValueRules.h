#ifndef EXAMPLES_INILINT_VALUERULES_H
#define EXAMPLES_INILINT_VALUERULES_H

#include "Finding.h"

class IniReading;

// The rules of the values.
namespace ValueRules {

void check(const IniReading& reading, Findings& findings);

} // namespace ValueRules

#endif
