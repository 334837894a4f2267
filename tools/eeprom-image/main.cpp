#include "Arguments.h"
#include "CreateCommand.h"
#include "DumpCommand.h"
#include "ExtractCommand.h"
#include "ShowCommand.h"
#include "VerifyCommand.h"

#include "common/CommandLine.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <iterator>

namespace {

struct Command
{
    const char* name;
    ExitCode (*run)(const QStringList& arguments);
};

constexpr Command commands[] = {
    {"create", &createImage}, {"show", &showImage},      {"verify", &verifyImage},
    {"dump", &dumpImage},     {"extract", &extractText},
};

ExitCode run(QStringList arguments)
{
    if (arguments.size() < 2) {
        return refuseUsage(
            QStringLiteral("a command is required: create, show, verify, dump or extract"));
    }
    const QString name = arguments.takeAt(1);
    const auto* const command =
        std::find_if(std::cbegin(commands), std::cend(commands), [&name](const Command& candidate) {
            return name == QLatin1String(candidate.name);
        });
    if (command != std::cend(commands)) {
        return command->run(arguments);
    }
    if (name == QLatin1String("--help") || name == QLatin1String("-h")) {
        return printHelp();
    }
    if (name == QLatin1String("--version") || name == QLatin1String("-v")) {
        return printVersion();
    }
    return refuseUsage(QStringLiteral("unknown command '%1'").arg(name));
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return CommandLine::end(int(run(QCoreApplication::arguments())), int(ExitCode::OutputLost));
}
