// Prints what a device knows of itself.

#include "DeviceReport.h"

#include "common/CommandLine.h"
#include "common/LibraryMessages.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>

#include <cstdio>

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
    CommandLine::complainOfUsage(reason);
    return WrongUsage;
}

bool writeOut(const QByteArray& bytes)
{
    return fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) == size_t(bytes.size()) &&
           fflush(stdout) == 0;
}

int run(const QStringList& arguments)
{
    const QCommandLineOption& help = CommandLine::helpOption();
    const QCommandLineOption eeprom(
        QStringLiteral("eeprom"),
        QStringLiteral("Read the board's hardware record from the EEPROM image <path>."),
        QStringLiteral("path"));
    const QCommandLineOption hardwareId(QStringLiteral("hardware-id"),
                                        QStringLiteral("Take the 16-digit hardware ID <id> apart."),
                                        QStringLiteral("id"));
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Print one JSON object, for tools."));
    const QCommandLineOption verbose(
        QStringLiteral("verbose"),
        QStringLiteral("Show the library's log messages on standard error."));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Prints the identity of the device: board, hardware ID, versions, how it booted, device\n"
        "index and the name of the next export file. Changes nothing on the device.\n"
        "\n"
        "Exit codes: 0 all is known, 1 something is missing (the report says what), 2 wrong\n"
        "usage, 3 the report could not be written."));
    parser.addOptions({help, eeprom, hardwareId, json, verbose});
    if (!parser.parse(arguments)) {
        return usageError(parser.errorText());
    }
    if (parser.isSet(help)) {
        return writeOut(parser.helpText().toLocal8Bit()) ? Complete : NotWritten;
    }
    if (!parser.positionalArguments().isEmpty()) {
        return usageError(
            QStringLiteral("unexpected argument %1").arg(parser.positionalArguments().first()));
    }
    for (const QCommandLineOption& option : {eeprom, hardwareId}) {
        if (parser.isSet(option) && parser.value(option).isEmpty()) {
            return usageError(QStringLiteral("--%1 must not be empty").arg(option.names().first()));
        }
    }

    LibraryMessages::take(parser.isSet(verbose));
    const Report report = DeviceReport::make(parser.value(eeprom), parser.value(hardwareId));
    if (!writeOut(parser.isSet(json) ? report.toJson() : report.toText())) {
        CommandLine::complain(QStringLiteral("cannot write the report"));
        return NotWritten;
    }
    return report.isComplete() ? Complete : SomethingMissing;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return run(QCoreApplication::arguments());
}
