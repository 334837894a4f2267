#ifndef TOOLS_INILINT_INIRULES_H
#define TOOLS_INILINT_INIRULES_H

#include "Finding.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

class QTextCodec;

// Finds where QSettings reads an INI text differently from what it seems to say.
namespace IniRules {

struct Rule
{
    const char* name;
    Severity severity; // the highest of its findings
    const char* summary;
};

// Returns all rules, in alphabetical order.
const QVector<Rule>& all();
bool contains(const QString& rule);

// Returns all findings in an INI text, sorted by line and column, without those that comments in
// the text ignore.
Findings check(const QByteArray& text, const QTextCodec* codec);

} // namespace IniRules

#endif
