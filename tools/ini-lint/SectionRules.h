#ifndef TOOLS_INILINT_SECTIONRULES_H
#define TOOLS_INILINT_SECTIONRULES_H

#include "FindingCollector.h"

class IniReading;

// The rules for lines that begin sections.
namespace SectionRules {

void check(const IniReading& reading, FindingCollector& findings);

} // namespace SectionRules

#endif
