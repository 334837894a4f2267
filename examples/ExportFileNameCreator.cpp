// Writes an export to a file whose name contains the device index and the time.

#include <ExportFileNameCreator.h>

#include <QtCore/QFile>

#include <cstdio>

int main()
{
    //! [name]
    const QString name = ExportFileNameCreator::create(QStringLiteral("csv"));
    QFile file(name); // the name has no directory, so this is the current one
    // Two names of the same second are equal. NewOnly does not overwrite the first file.
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        return 1;
    }
    file.write("time;value\n1;20.5\n");
    //! [name]
    std::printf("%s, %d bytes\n", qPrintable(name), static_cast<int>(file.size()));
    return 0;
}
