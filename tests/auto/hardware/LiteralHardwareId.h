#ifndef TESTS_LITERALHARDWAREID_H
#define TESTS_LITERALHARDWAREID_H

#include "HardwareIdentification.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

// What HardwareIdentification does, written down as plainly as its rules are stated.
namespace LiteralHardwareId {

// What an object tells about its ID.
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
