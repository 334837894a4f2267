// Fills a hardware record by hand, as for a board that has no EEPROM.

#include <HardwareInfo.h>

#include <cstdio>

namespace {

void print(const HardwareInfo& board)
{
    std::printf("%s, type %s, version %s, comment <%s>\n", qPrintable(board.typeName()),
                qPrintable(board.type()), qPrintable(board.hwVersion()),
                qPrintable(board.Comment()));
}

} // namespace

int main()
{
    //! [record]
    HardwareInfo board; // all six strings are empty
    board.setType(QStringLiteral("4711"));
    board.setTypeName(QStringLiteral("Sample board"));
    board.setHwVersion(QStringLiteral("2.1"));

    HardwareInfo successor = board; // an independent copy
    successor.setHwVersion(QStringLiteral("2.2"));
    successor.setComment(QStringLiteral("Prototype"));
    //! [record]
    print(board);
    print(successor);
    return 0;
}
