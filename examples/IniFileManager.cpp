// Reads an INI file, changes one value, and saves it.

#include <IniFileManager.h>

#include <cstdio>

int main()
{
    //! [read]
    const QString path = QStringLiteral("sensors.ini");
    // Before a manager is opened: commas become spaces, so that no value is read as a list.
    IniFileManager::cleanUp(path);

    IniFileManager sensors(path, "UTF-8");
    const QString hosts =
        sensors.getValueString(QStringLiteral("Net"), QStringLiteral("Hosts"), QString());
    // The file has no such key: the result is the default, 80, and the library logs a warning.
    const int port = sensors.getValueInteger(QStringLiteral("Net"), QStringLiteral("Port"), 80);
    std::printf("hosts <%s>, port %d\n", qPrintable(hosts), port);
    //! [read]

    // A group can be found by the number under "Position" instead of by its name.
    for (int place = 0; place < 2; ++place) {
        const QString name =
            sensors.getValueString(place, QStringLiteral("Name"), QStringLiteral("?"));
        const int limit = sensors.getValueInteger(place, QStringLiteral("Limit"), 0);
        std::printf("%d: %s, up to %d\n", place, qPrintable(name), limit);
    }

    // Every manager of the process reads the new value immediately; the file has it after sync().
    sensors.setValue(QStringLiteral("Net"), QStringLiteral("Port"), 8080);
    sensors.sync();
    const IniFileManager reader(path, "UTF-8");
    std::printf("port %d\n",
                reader.getValueInteger(QStringLiteral("Net"), QStringLiteral("Port"), 80));
    return 0;
}
