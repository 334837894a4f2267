#ifndef EXAMPLES_INILINT_INIRULES_H
#define EXAMPLES_INILINT_INIRULES_H

#include "Finding.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

class QTextCodec;

// What is read otherwise than people think.
namespace IniRules {

struct Rule
{
    const char* name;
    const char* summary;
};

// Every rule that a finding may name, in the order of the alphabet.
const QVector<Rule>& all();
bool contains(const QString& rule);

// The findings in an INI text, by line, without those of the ignored rules.
Findings check(const QByteArray& text, const QTextCodec* codec, const QStringList& ignoredRules);

} // namespace IniRules

#endif
