// Prints the identity of a device.

#include "DeviceReport.h"

#include "common/CommandLine.h"
#include "common/LibraryMessages.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>

namespace {

enum ExitCode
{
    Complete = 0,
    SomethingMissing = 1,
    WrongUsage = 2,
    NotWritten = 3,
};

int usageError(const QString& reason)
{
    CommandLine::printUsageError(reason);
    return WrongUsage;
}

QString helpText(const QCommandLineParser& parser)
{
    return parser.helpText() +
           QStringLiteral("\n"
                          "Exit codes:\n"
                          "  0  everything is known\n"
                          "  1  something is missing; the report says what and why\n"
                          "  2  wrong usage\n"
                          "  3  the report could not be written\n"
                          "\n"
                          "Examples:\n"
                          "  device-report --eeprom /sys/bus/i2c/devices/0-0050/eeprom\n"
                          "  device-report --json --hardware-id 1234567891234567");
}

int run(const QStringList& arguments)
{
    const QCommandLineOption& help = CommandLine::helpOption();
    const QCommandLineOption& version = CommandLine::versionOption();
    const QCommandLineOption& verbose = CommandLine::verboseOption();
    const QCommandLineOption eeprom(
        QStringLiteral("eeprom"),
        QStringLiteral("Read the board's hardware record from the EEPROM image PATH, such as the "
                       "file 'eeprom' of its driver in /sys/bus/i2c/devices."),
        QStringLiteral("PATH"));
    const QCommandLineOption hardwareId(QStringLiteral("hardware-id"),
                                        QStringLiteral("Parse the 16-digit hardware ID."),
                                        QStringLiteral("ID"));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Print one JSON object."));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "\nPrints the identity of the device: board, hardware ID, versions, how it booted, device\n"
        "index and the name of the next export file. Changes nothing on the device."));
    parser.addOptions({eeprom, hardwareId, json, verbose, help, version});
    if (!parser.parse(arguments)) {
        return usageError(parser.errorText());
    }
    if (parser.isSet(help)) {
        CommandLine::print(helpText(parser));
        return Complete;
    }
    if (parser.isSet(version)) {
        CommandLine::printVersion();
        return Complete;
    }
    if (!parser.positionalArguments().isEmpty()) {
        return usageError(QStringLiteral("unexpected argument %1")
                              .arg(parser.positionalArguments().constFirst()));
    }
    for (const QCommandLineOption& option : {eeprom, hardwareId}) {
        if (parser.isSet(option) && parser.value(option).isEmpty()) {
            return usageError(
                QStringLiteral("--%1 must not be empty").arg(option.names().constFirst()));
        }
    }

    LibraryMessages::capture(parser.isSet(verbose));
    const Report report = DeviceReport::make(parser.value(eeprom), parser.value(hardwareId));
    CommandLine::write(parser.isSet(json) ? report.toJson() : report.toText());
    return report.isComplete() ? Complete : SomethingMissing;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return CommandLine::end(run(QCoreApplication::arguments()), NotWritten);
}
