#include <HardwareInfo.h>
#include <HardwareInfoReader.h>

#include <QDir>
#include <cstdio>

int main(int argc, char* argv[])
{
    if (argc != 2) {
        return 2;
    }
    const QString image = QString::fromLocal8Bit(argv[1]);
    HardwareInfo board;
    HardwareInfoReader reader(nullptr);
    const QString temporary = QDir::temp().filePath(QStringLiteral("hwinfo.XXXXXX"));
    if (!reader.readHardwareInfoFromSysFs(temporary, image, board)) {
        return 1; // The library has logged why.
    }
    std::printf("This is a %s, version %s.\n", qPrintable(board.typeName()),
                qPrintable(board.hwVersion()));
    return 0;
}
