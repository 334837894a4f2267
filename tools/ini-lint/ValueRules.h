#ifndef TOOLS_INILINT_VALUERULES_H
#define TOOLS_INILINT_VALUERULES_H

#include "FindingCollector.h"

class IniReading;

// The rules for values.
namespace ValueRules {

void check(const IniReading& reading, FindingCollector& findings);

} // namespace ValueRules

#endif
