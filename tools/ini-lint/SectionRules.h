#ifndef EXAMPLES_INILINT_SECTIONRULES_H
#define EXAMPLES_INILINT_SECTIONRULES_H

#include "Finding.h"

class IniReading;

// The rules of the names and ends of sections, of lines that are none, and of the file's begin.
namespace SectionRules {

void check(const IniReading& reading, Findings& findings);

} // namespace SectionRules

#endif
