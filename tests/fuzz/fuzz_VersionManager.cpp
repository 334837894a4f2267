// The input is a version in either format.
#include "Fuzz.h"
#include "LiteralVersion.h"

namespace {

constexpr int sizeLimit = 600; // longer inputs are hard to read

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString version = Fuzz::toText(Fuzz::toBytes(data, size, sizeLimit));
    const QString before = "1.2.3-45";

    LiteralVersion literal;
    literal.read(version);
    QStringList expected = componentsOf(literal);
    // Parts that the version lacks keep their value.
    LiteralVersion literalReused;
    literalReused.read(before);
    literalReused.read(version);
    expected += componentsOf(literalReused);
    expected += Fuzz::takeMessages();

    const VersionManager fresh(version);
    QStringList actual = componentsOf(fresh);
    VersionManager reused(before);
    reused.initializeVersions(version);
    actual += componentsOf(reused);
    actual += Fuzz::takeMessages();
    Fuzz::verifySame("components and messages", actual, expected);
    return 0;
}
