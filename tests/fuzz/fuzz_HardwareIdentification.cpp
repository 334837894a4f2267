// The input is a hardware ID.
#include "Fuzz.h"
#include "LiteralHardwareId.h"

using LiteralHardwareId::Parts;
using LiteralHardwareId::partsOf;

namespace {

QStringList shown(const Parts& parts, bool contains)
{
    return parts.texts +
           QStringList{parts.isValid ? QStringLiteral("valid") : QStringLiteral("invalid"),
                       contains ? QStringLiteral("contains an ID")
                                : QStringLiteral("contains none")};
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString id = Fuzz::toText(Fuzz::toBytes(data, size));

    Parts parts;
    LiteralHardwareId::divide(id, parts);
    const QStringList messages = Fuzz::takeMessages();
    const QStringList expected =
        shown(parts, LiteralHardwareId::containsOnlyNumbers(id)) + messages;

    const HardwareIdentification fresh(id);
    Fuzz::verifySame("parts and messages",
                     shown(partsOf(fresh), fresh.containsHardwareIDOnlyNumbers(id)) +
                         Fuzz::takeMessages(),
                     expected);
    // No part of the previous ID remains.
    HardwareIdentification reused("1234567891234567");
    reused.divideHardwareID(id);
    Fuzz::verifySame("parts and messages of the second call",
                     shown(partsOf(reused), reused.containsHardwareIDOnlyNumbers(id)) +
                         Fuzz::takeMessages(),
                     expected);
    return 0;
}
