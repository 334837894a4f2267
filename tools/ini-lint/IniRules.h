#ifndef TOOLS_INILINT_INIRULES_H
#define TOOLS_INILINT_INIRULES_H

#include "Finding.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

class QTextCodec;

// What is read otherwise than people think.
namespace IniRules {

struct Rule
{
    const char* name;
    Severity severity; // the highest that its findings have
    const char* summary;
};

// Every rule that a finding may name, in alphabetical order.
const QVector<Rule>& all();
bool contains(const QString& rule);

// All findings in an INI text, by line and column, without those that its comments ignore.
Findings check(const QByteArray& text, const QTextCodec* codec);

} // namespace IniRules

#endif
