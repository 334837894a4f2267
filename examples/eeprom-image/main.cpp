#include "Arguments.h"
#include "CreateCommand.h"
#include "ShowCommand.h"

#include <QtCore/QCoreApplication>

namespace {

ExitCode run(QStringList arguments)
{
    if (arguments.size() < 2) {
        return refuseUsage(QStringLiteral("a command is needed: create or show"));
    }
    const QString command = arguments.takeAt(1);
    if (command == QLatin1String("create")) {
        return createImage(arguments);
    }
    if (command == QLatin1String("show")) {
        return showImage(arguments);
    }
    if (command == QLatin1String("--help") || command == QLatin1String("-h")) {
        return printHelp();
    }
    if (command == QLatin1String("--version") || command == QLatin1String("-v")) {
        return printVersion();
    }
    return refuseUsage(QStringLiteral("unknown command '%1'").arg(command));
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return int(run(QCoreApplication::arguments()));
}
