#ifndef TOOLS_INILINT_KEYRULES_H
#define TOOLS_INILINT_KEYRULES_H

#include "FindingCollector.h"

class IniReading;

// The rules for names of keys.
namespace KeyRules {

void check(const IniReading& reading, FindingCollector& findings);

} // namespace KeyRules

#endif
