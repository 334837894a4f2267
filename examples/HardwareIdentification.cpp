// Splits a device's 16-digit hardware ID into its parts.

#include <HardwareIdentification.h>

#include <cstdio>

int main()
{
    //! [parts]
    const HardwareIdentification id(QStringLiteral("1234567891234567"));
    std::printf("product group %s\n", qPrintable(id.getProductGroupNumber()));
    std::printf("basic type supplement %s\n", qPrintable(id.getBasicTypeSupplement()));
    std::printf("document type %s\n", qPrintable(id.getDocumentTypeCountingNumber()));
    std::printf("customer version %s\n", qPrintable(id.getCustomerVersion()));
    std::printf("parts list %s\n", qPrintable(id.getPartsListSales()));
    //! [parts]

    // All parts of an invalid ID are empty.
    const HardwareIdentification tooShort(QStringLiteral("12345"));
    std::printf("valid: %s, product group <%s>\n", tooShort.isHardwareIDValid() ? "yes" : "no",
                qPrintable(tooShort.getProductGroupNumber()));
    return 0;
}
