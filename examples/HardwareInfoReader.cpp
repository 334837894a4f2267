// Reads a board's hardware record from its EEPROM image.

#include <HardwareInfo.h>
#include <HardwareInfoReader.h>

#include <QDir>
#include <cstdio>

int main()
{
    // On a device, the EEPROM's file is /sys/bus/i2c/devices/0-0050/eeprom or similar.
    const QString image = QStringLiteral("eeprom.bin");
    //! [read]
    HardwareInfo board;
    HardwareInfoReader reader(nullptr);
    // Names a temporary file; its directory must be writable.
    const QString temporary = QDir::temp().filePath(QStringLiteral("hwinfo.XXXXXX"));
    if (!reader.readHardwareInfoFromSysFs(temporary, image, board)) {
        return 1; // the library has logged the reason
    }
    std::printf("%s, type %s, version %s, LP-ID %s\n", qPrintable(board.typeName()),
                qPrintable(board.type()), qPrintable(board.hwVersion()), qPrintable(board.lpId()));
    //! [read]

    // After a failure the record is unchanged: it never mixes the values of two boards.
    const QString missing = QStringLiteral("missing.bin");
    if (!reader.readHardwareInfoFromSysFs(temporary, missing, board)) {
        std::printf("no record, still %s\n", qPrintable(board.typeName()));
    }
    return 0;
}
