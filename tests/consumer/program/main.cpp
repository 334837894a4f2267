// A program outside the project, which uses only the installed package. It writes a value, reads it
// back, and reads a record, so that every layer of the library is called.

#include <HardwareInfo.h>
#include <HardwareInfoReader.h>
#include <IniFileManager.h>

#include <QtCore/QTemporaryDir>

#include <cstdio>

int main()
{
    const QTemporaryDir directory;
    IniFileManager settings(directory.filePath(QString::fromLatin1("settings.ini")), "UTF-8");
    settings.setValue(QString::fromLatin1("Net"), QString::fromLatin1("Port"), 8080);
    const int port =
        settings.getValueInteger(QString::fromLatin1("Net"), QString::fromLatin1("Port"), 0);

    HardwareInfo board;
    HardwareInfoReader reader(nullptr);
    reader.data2HwInfo("Type=1\nTypeName=Sample board\nVersion=2\nCompatibilityIndex=3\nLP-ID=4\n",
                       directory.filePath(QString::fromLatin1("record.XXXXXX")), board);

    printf("port %d, board <%s>\n", port, qPrintable(board.typeName()));
    return port == 8080 && board.typeName() == QString::fromLatin1("Sample board") ? 0 : 1;
}
