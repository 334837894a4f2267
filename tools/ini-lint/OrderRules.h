#ifndef TOOLS_INILINT_ORDERRULES_H
#define TOOLS_INILINT_ORDERRULES_H

#include "FindingCollector.h"

class IniReading;

// The rules for values that depend on what a program has looked up before.
namespace OrderRules {

void check(const IniReading& reading, FindingCollector& findings);

} // namespace OrderRules

#endif
