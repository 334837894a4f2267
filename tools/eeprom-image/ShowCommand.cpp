#include "ShowCommand.h"

#include "Arguments.h"
#include "HardwareInfo.h"
#include "HardwareInfoReader.h"
#include "common/CommandLine.h"
#include "common/LibraryMessages.h"
#include "common/TemporaryPath.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace {

// The beginning of a library message, and its meaning for the user. The first match counts.
struct Failure
{
    const char* message;
    ExitCode exitCode;
    const char* meaning;
};

constexpr Failure failures[] = {
    {"Can't find eeprom binary file", ExitCode::NoSuchImage, "there is no such file"},
    {"Can't open eeprom binary file", ExitCode::CannotOpenImage,
     "the file cannot be opened: permission is denied, or it is a directory"},
    {"Number of INI header bytes is", ExitCode::HeaderShort,
     "the header is truncated: the image ends before byte 36"},
    {"Seek to start addr", ExitCode::StartAddressUnreachable,
     "the start address of the block cannot be reached: it is beyond the end of the EEPROM, or "
     "the file is a pipe or a device that is not seekable"},
    {"Max. number of bytes for INI file exceeded", ExitCode::LengthOverLimit,
     "the length in the header exceeds the limit of 65535 bytes: the header is damaged"},
    {"Number of INI file bytes is", ExitCode::BlockShort,
     "the block is truncated: the image ends before it, or the header is damaged"},
    {"Invalid checksum for INI block", ExitCode::ChecksumWrong,
     "the checksum is wrong: the block or the header was changed or damaged"},
    {"Error on writing to temporary file", ExitCode::BlockEmpty,
     "the block is empty, its length is 0: the image contains no record (an EEPROM full of zeros "
     "looks like this)"},
    {"Can't open temporary file", ExitCode::CannotParseBlock,
     "the block is valid, but no temporary file could be created to parse it"},
    {"Can't create 'IniFileManager' object!", ExitCode::CannotParseBlock,
     "the block is valid, but there is not enough memory to parse it"},
};

struct Field
{
    const char* label;
    const char* member; // of the JSON object, as device-report names it
    const char* key;
    QString (HardwareInfo::*value)() const;
    bool isOptional; // the library does not distinguish a missing one from an empty one
};

constexpr Field fields[] = {
    {"Type", "type", "Type", &HardwareInfo::type, false},
    {"Type name", "typeName", "TypeName", &HardwareInfo::typeName, false},
    {"Version", "version", "Version", &HardwareInfo::hwVersion, false},
    {"Compatibility index", "compatibilityIndex", "CompatibilityIndex", &HardwareInfo::hwCompIndex,
     false},
    {"LP-ID", "lpId", "LP-ID", &HardwareInfo::lpId, false},
    {"Comment", "comment", "Comment", &HardwareInfo::Comment, true},
};

const Failure* findFailure()
{
    for (const Failure& failure : failures) {
        if (LibraryMessages::anyStartsWith(QString::fromLatin1(failure.message))) {
            return &failure;
        }
    }
    return nullptr;
}

bool isMissing(const Field& field)
{
    return LibraryMessages::anyContains(
        QStringLiteral("Key \"%1\" not found in Group").arg(QLatin1String(field.key)));
}

QString shownValue(const Field& field, const HardwareInfo& info)
{
    const QString value = (info.*field.value)();
    if (!value.isEmpty()) {
        return CommandLine::printable(value);
    }
    if (isMissing(field)) {
        return QStringLiteral("(missing)");
    }
    return field.isOptional ? QStringLiteral("(none)")
                            : QStringLiteral("(empty: no value, or a comma outside quotes)");
}

void printRecord(const HardwareInfo& info)
{
    bool isAnyFound = false;
    for (const Field& field : fields) {
        CommandLine::print(QStringLiteral("  %1  %2")
                               .arg(QLatin1String(field.label), -19)
                               .arg(shownValue(field, info)));
        isAnyFound = isAnyFound || !(field.isOptional || isMissing(field));
    }
    if (!isAnyFound) {
        CommandLine::print(
            QStringLiteral("None of the keys was found: they must be before any [section], "
                           "and the temporary directory must not be full."));
    }
}

void printJson(const QString& filePath, const HardwareInfo& info)
{
    QJsonObject record{{QStringLiteral("image"), filePath}};
    for (const Field& field : fields) {
        const QString value = (info.*field.value)();
        record.insert(QLatin1String(field.member),
                      value.isEmpty() ? QJsonValue() : QJsonValue(value));
    }
    CommandLine::write(QJsonDocument(record).toJson());
}

ExitCode showRecord(const QString& filePath, bool isJson)
{
    HardwareInfo info;
    HardwareInfoReader reader(nullptr);
    const bool isRead = reader.readHardwareInfoFromSysFs(TemporaryPath::pattern(), filePath, info);
    if (LibraryMessages::indicateErasedEeprom()) {
        return refuseImage(filePath, ExitCode::LengthOverLimit,
                           QStringLiteral("the header has no length, all its bits are set: the "
                                          "EEPROM seems to be erased and was never written"));
    }
    if (const Failure* failure = findFailure()) {
        return refuseImage(filePath, failure->exitCode, QString::fromLatin1(failure->meaning));
    }
    if (!isRead) {
        return refuseImage(filePath, ExitCode::UnknownFailure,
                           QStringLiteral("the library refuses the image; --verbose shows why"));
    }
    if (isJson) {
        printJson(filePath, info);
        return ExitCode::Done;
    }
    CommandLine::print(QStringLiteral("%1: the image is valid").arg(filePath));
    printRecord(info);
    return ExitCode::Done;
}

} // namespace

ExitCode showImage(const QStringList& arguments)
{
    const QCommandLineOption verbose(QStringLiteral("verbose"));
    const QCommandLineOption json(QStringLiteral("json"));
    QCommandLineParser parser;
    parser.addOptions({verbose, json});
    if (const auto exitCode = parseArguments(parser, arguments, 1)) {
        return *exitCode;
    }
    LibraryMessages::capture(parser.isSet(verbose));
    return showRecord(parser.positionalArguments().constFirst(), parser.isSet(json));
}
