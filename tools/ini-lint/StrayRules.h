#ifndef TOOLS_INILINT_STRAYRULES_H
#define TOOLS_INILINT_STRAYRULES_H

#include "FindingCollector.h"

class IniReading;

// The rules for lines that are neither sections nor keys.
namespace StrayRules {

void check(const IniReading& reading, FindingCollector& findings);

} // namespace StrayRules

#endif
