#include <HardwareIdentification.h>
#include <HardwareInfo.h>
#include <HardwareInfoReader.h>

#include <cstdio>

int main()
{
    // On a device the image is a file of the kernel, such as /sys/bus/i2c/devices/0-0050/eeprom.
    const QString image = QStringLiteral("eeprom.bin");
    HardwareInfo board;
    HardwareInfoReader reader(nullptr);
    if (!reader.readHardwareInfoFromSysFs(QStringLiteral("/tmp/hwinfo.XXXXXX"), image, board)) {
        std::puts("no record");
        return 1;
    }
    std::printf("%s, type %s, version %s, LP-ID %s\n", qPrintable(board.typeName()),
                qPrintable(board.type()), qPrintable(board.hwVersion()), qPrintable(board.lpId()));

    const HardwareIdentification id(QStringLiteral("1234567891234567"));
    std::printf("product group %s, document type %s, parts list %s\n",
                qPrintable(id.getProductGroupNumber()),
                qPrintable(id.getDocumentTypeCountingNumber()), qPrintable(id.getPartsListSales()));

    const HardwareIdentification tooShort(QStringLiteral("12345"));
    std::printf("valid: %s\n", tooShort.isHardwareIDValid() ? "yes" : "no");
    return 0;
}
