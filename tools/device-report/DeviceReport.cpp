#include "DeviceReport.h"

#include "BootInformationHelper.h"
#include "ExportFileNameCreator.h"
#include "HardwareIdentification.h"
#include "HardwareInfo.h"
#include "HardwareInfoReader.h"
#include "KernelCommandLineDefinition.h"
#include "KernelCommandLineParser.h"
#include "OrvalisVersionInfoIniManager.h"
#include "RaucSystemConfigIniManager.h"
#include "VersionFileIniManager.h"
#include "VersionManager.h"
#include "common/LibraryMessages.h"
#include "common/TemporaryPath.h"

#include <QtCore/QFileInfo>
#include <QtCore/QJsonObject>
#include <QtCore/QStringList>

namespace {

// A value with its names in the JSON and the text report.
struct NamedValue
{
    QString member;
    QString label;
    QString value;
};

// Returns why the file at filePath did not provide a value; otherwise is the reason if the file
// itself can be read.
QString reasonIn(const QString& filePath, const QString& otherwise)
{
    const QFileInfo file(filePath);
    if (!file.exists()) {
        return QStringLiteral("%1 is missing").arg(filePath);
    }
    if (!file.isFile() || !file.isReadable()) {
        return QStringLiteral("%1 cannot be read").arg(filePath);
    }
    return QStringLiteral("%1 %2").arg(filePath, otherwise);
}

void addIniValue(ReportSection& section, const NamedValue& value, const QString& filePath,
                 const QString& iniSection, const QString& key)
{
    if (value.value.isEmpty()) {
        section.addMissing(
            value.member, value.label,
            reasonIn(filePath, QStringLiteral("has no %1 in [%2]").arg(key, iniSection)));
    } else {
        section.addKnown(value.member, value.label, value.value);
    }
}

// Adds the parts of a version; the JSON report has the parts of both formats.
void addVersionParts(ReportSection& section, const QString& label, const QString& version)
{
    const QString member = QStringLiteral("parts");
    if (version.isEmpty()) {
        section.addHidden(member);
        return;
    }
    const QString odd = QStringLiteral("%1 is in neither version format").arg(version);
    const int messagesBefore = LibraryMessages::count();
    const VersionManager manager(version);
    if (LibraryMessages::count() != messagesBefore) {
        section.addMissing(member, label, odd);
        return;
    }

    // Getters of the other format must not be called: the library would log a warning.
    const bool isOld = manager.isOldVersion();
    const NamedValue parts[] = {
        {QStringLiteral("baseNumber"), QStringLiteral("base number"), manager.getBaseNumber()},
        {QStringLiteral("majorIndex"), QStringLiteral("major index"), manager.getMajorIndex()},
        {QStringLiteral("minorIndex"), QStringLiteral("minor index"), manager.getMinorIndex()},
        {QStringLiteral("testIndex"), QStringLiteral("test index"),
         isOld ? manager.getTestIndex() : QString()},
        {QStringLiteral("patchVersion"), QStringLiteral("patch version"),
         isOld ? QString() : manager.getPatchVersion()},
        {QStringLiteral("buildNumber"), QStringLiteral("build number"),
         isOld ? QString() : manager.getBuildNumber()},
        {QStringLiteral("gitHash"), QStringLiteral("git hash"),
         isOld ? QString() : manager.getGitHash()},
    };
    QJsonObject members;
    QStringList texts;
    for (const NamedValue& part : parts) {
        members.insert(part.member, part.value.isEmpty() ? QJsonValue() : QJsonValue(part.value));
        if (!part.value.isEmpty()) {
            texts.append(part.label + QLatin1Char(' ') + part.value);
        }
    }
    if (texts.isEmpty()) { // only dots
        section.addMissing(member, label, odd);
        return;
    }
    members.insert(QStringLiteral("format"), isOld ? QStringLiteral("old") : QStringLiteral("new"));
    section.addKnown(member, label, members, texts.join(QStringLiteral(", ")));
}

ReportSection hardware(const QString& eepromPath)
{
    HardwareInfo record;
    bool isRead = false;
    if (!eepromPath.isEmpty()) {
        HardwareInfoReader reader(nullptr);
        isRead = reader.readHardwareInfoFromSysFs(TemporaryPath::pattern(), eepromPath, record);
    }

    const NamedValue fields[] = {
        {QStringLiteral("type"), QStringLiteral("board type"), record.type()},
        {QStringLiteral("typeName"), QStringLiteral("board type name"), record.typeName()},
        {QStringLiteral("version"), QStringLiteral("board version"), record.hwVersion()},
        {QStringLiteral("compatibilityIndex"), QStringLiteral("board compatibility index"),
         record.hwCompIndex()},
        {QStringLiteral("lpId"), QStringLiteral("board LP-ID"), record.lpId()},
    };
    const QString eeprom = QStringLiteral("eeprom");
    const QString label = QStringLiteral("board record");
    const QString comment = QStringLiteral("comment");

    ReportSection section(QStringLiteral("hardware"));
    if (!isRead) {
        if (eepromPath.isEmpty()) {
            section.addAbsent(eeprom, label, QStringLiteral("not read (see --eeprom)"));
        } else {
            section.addMissing(
                eeprom, label,
                reasonIn(eepromPath,
                         LibraryMessages::indicateErasedEeprom()
                             ? QStringLiteral("seems to be erased and was never written")
                             : QStringLiteral("contains no valid hardware record")));
        }
        for (const NamedValue& field : fields) {
            section.addHidden(field.member);
        }
        section.addHidden(comment);
        return section;
    }

    section.addKnown(eeprom, label, eepromPath, QStringLiteral("read from ") + eepromPath);
    for (const NamedValue& field : fields) {
        if (field.value.isEmpty()) {
            section.addMissing(field.member, field.label,
                               QStringLiteral("missing from the board record"));
        } else {
            section.addKnown(field.member, field.label, field.value);
        }
    }
    const QString commentLabel = QStringLiteral("board comment");
    if (record.Comment().isEmpty()) {
        section.addAbsent(comment, commentLabel, QStringLiteral("none"));
    } else {
        section.addKnown(comment, commentLabel, record.Comment());
    }
    return section;
}

ReportSection hardwareIdParts(const QString& hardwareId)
{
    struct Part
    {
        QString member;
        QString label;
        QString (HardwareIdentification::*value)() const;
    };
    const Part parts[] = {
        {QStringLiteral("productGroupNumber"), QStringLiteral("product group number"),
         &HardwareIdentification::getProductGroupNumber},
        {QStringLiteral("basicTypeSupplement"), QStringLiteral("basic type supplement"),
         &HardwareIdentification::getBasicTypeSupplement},
        {QStringLiteral("documentTypeCountingNumber"),
         QStringLiteral("document type counting number"),
         &HardwareIdentification::getDocumentTypeCountingNumber},
        {QStringLiteral("customerVersion"), QStringLiteral("customer version"),
         &HardwareIdentification::getCustomerVersion},
        {QStringLiteral("partsListSales"), QStringLiteral("parts list sales"),
         &HardwareIdentification::getPartsListSales},
    };
    const QString id = QStringLiteral("id");
    const QString label = QStringLiteral("hardware ID");

    ReportSection section(QStringLiteral("hardwareId"));
    if (!hardwareId.isEmpty()) {
        const HardwareIdentification identification(hardwareId);
        if (identification.isHardwareIDValid()) {
            section.addKnown(id, label, hardwareId);
            for (const Part& part : parts) {
                section.addKnown(part.member, part.label, (identification.*part.value)());
            }
            return section;
        }
        section.addMissing(id, label, QStringLiteral("%1 is not a hardware ID").arg(hardwareId));
    } else {
        section.addAbsent(id, label, QStringLiteral("not given (see --hardware-id)"));
    }
    for (const Part& part : parts) {
        section.addHidden(part.member);
    }
    return section;
}

ReportSection software()
{
    const VersionFileIniManager manager;
    const QString filePath =
        QStringLiteral("/orvalis/") + VersionFileIniManager::getFileNameVersionFile();
    const QString iniSection = VersionFileIniManager::getSectionNameMainVersion();
    const QString version = manager.getMainVersionVersionString();

    ReportSection section(QStringLiteral("software"));
    addIniValue(section, {QStringLiteral("version"), QStringLiteral("software version"), version},
                filePath, iniSection, QStringLiteral("VersionString"));
    addVersionParts(section, QStringLiteral("software version parts"), version);
    addIniValue(section,
                {QStringLiteral("hash"), QStringLiteral("software version hash"),
                 manager.getVersionStringHash()},
                filePath, iniSection, QStringLiteral("VersionStringHash"));
    return section;
}

ReportSection application()
{
    using Manager = OrvalisVersionInfoIniManager;
    const Manager manager;
    const QString filePath =
        QStringLiteral("/orvalis/etc/") + Manager::getFileNameOrvalisVersionInfoIni();
    const QString version = manager.getApplicationVersion();

    ReportSection section(QStringLiteral("application"));
    addIniValue(section,
                {QStringLiteral("version"), QStringLiteral("application version"), version},
                filePath, Manager::getGroupNameApplicationVersion(), Manager::getKeyVersion());
    addVersionParts(section, QStringLiteral("application version parts"), version);
    addIniValue(
        section,
        {QStringLiteral("productCode"), QStringLiteral("product code"), manager.getProductCode()},
        filePath, Manager::getGroupNameApplicationVersion(), Manager::getKeyProductCode());
    // [General] would be the top level of the file; a group of that name is spelled [%General].
    addIniValue(section,
                {QStringLiteral("creationDate"), QStringLiteral("creation date"),
                 manager.getCreationDate()},
                filePath, QLatin1Char('%') + Manager::getGroupNameGeneral(),
                Manager::getKeyCreationDate());
    return section;
}

void addMarker(ReportSection& section, const QString& member, const QString& label,
               const QString& filePath)
{
    const bool exists = QFileInfo::exists(filePath);
    section.addKnown(member, label, exists,
                     exists ? QStringLiteral("present") : QStringLiteral("absent"));
}

void addBootMode(ReportSection& section)
{
    const QString member = QStringLiteral("mode");
    const QString label = QStringLiteral("boot mode");
    const int messagesBefore = LibraryMessages::count();
    const BootInformationHelper::BootMode mode = BootInformationHelper().getCurrentBootMode();
    if (LibraryMessages::count() != messagesBefore) {
        // Without the command line, the library reports a normal boot.
        section.addMissing(
            member, label,
            reasonIn(KernelCommandLineDefinition::getFilePath(), QStringLiteral("cannot be read")));
        return;
    }
    switch (mode) {
    case BootInformationHelper::BootModeNormal:
        section.addKnown(member, label, QStringLiteral("normal"));
        break;
    case BootInformationHelper::BootModeFirmwareUpdate:
        section.addKnown(member, label, QStringLiteral("firmwareUpdate"),
                         QStringLiteral("first boot after a firmware update"));
        break;
    case BootInformationHelper::BootModeFactoryReset:
        section.addKnown(member, label, QStringLiteral("factoryReset"),
                         QStringLiteral("factory reset"));
        break;
    case BootInformationHelper::BootModeHardReset:
        section.addKnown(member, label, QStringLiteral("hardReset"), QStringLiteral("hard reset"));
        break;
    }
}

void addCommandLineMode(ReportSection& section)
{
    const QString member = QStringLiteral("commandLineMode");
    const QString key = KernelCommandLineDefinition::getKeyOrvalisMode();
    const QString label = QStringLiteral("%1 on the command line").arg(key);
    const int messagesBefore = LibraryMessages::count();
    const KernelCommandLineParser parser;
    if (LibraryMessages::count() != messagesBefore) {
        section.addMissing(
            member, label,
            reasonIn(KernelCommandLineDefinition::getFilePath(), QStringLiteral("cannot be read")));
    } else if (parser.contains(key)) {
        const QString value = parser.getValue(key);
        section.addKnown(member, label, value, value.isEmpty() ? QStringLiteral("empty") : value);
    } else {
        section.addAbsent(member, label, QStringLiteral("none"));
    }
}

ReportSection boot()
{
    ReportSection section(QStringLiteral("boot"));
    addBootMode(section);
    addMarker(section, QStringLiteral("rebootMarker"), QStringLiteral("reboot marker"),
              QStringLiteral("/orvalis-reboot"));
    addMarker(section, QStringLiteral("firmwareUpdateMarker"),
              QStringLiteral("firmware update marker"),
              QStringLiteral("/orvalis/etc/orvalis-first-boot"));
    addCommandLineMode(section);
    return section;
}

ReportSection exports()
{
    const QString member = QStringLiteral("deviceIndex");
    const QString label = QStringLiteral("device index");

    ReportSection section(QStringLiteral("export"));
    const int messagesBefore = LibraryMessages::count();
    const QString deviceIndex = RaucSystemConfigIniManager().getDeviceIndex();
    if (LibraryMessages::count() != messagesBefore) {
        section.addMissing(member, label,
                           reasonIn(QStringLiteral("/etc/rauc/system.conf"),
                                    QStringLiteral("has no number under compatible in [system]")));
    } else {
        section.addKnown(member, label, deviceIndex);
    }
    section.addKnown(QStringLiteral("nextFileName"), QStringLiteral("next export file"),
                     ExportFileNameCreator::create(QStringLiteral("csv")));
    return section;
}

} // namespace

Report DeviceReport::make(const QString& eepromPath, const QString& hardwareId)
{
    Report report;
    report.add(hardware(eepromPath));
    report.add(hardwareIdParts(hardwareId));
    report.add(software());
    report.add(application());
    report.add(boot());
    report.add(exports());
    return report;
}
