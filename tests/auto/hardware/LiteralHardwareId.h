#ifndef TESTS_LITERALHARDWAREID_H
#define TESTS_LITERALHARDWAREID_H

#include "HardwareIdentification.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

// A simple implementation of the rules of HardwareIdentification.
namespace LiteralHardwareId {

// The parts of an object's ID, for comparison.
struct Parts
{
    bool isValid = false;
    QStringList texts = {QString(), QString(), QString(), QString(), QString()};

    bool operator==(const Parts& other) const
    {
        return isValid == other.isValid && texts == other.texts;
    }
};

Parts partsOf(const HardwareIdentification& id);
char* toString(const Parts& parts);

enum class Outcome
{
    WrongSize,
    NotOnlyNumbers,
    NoDocumentType,
    NoPartsList,
    Valid
};
constexpr int outcomeCount = 5;

bool containsOnlyNumbers(const QString& id);
Outcome divide(const QString& id, Parts& parts);

} // namespace LiteralHardwareId

#endif
