#include "ReaderSamples.h"

const QByteArray ReaderSamples::boardText = "Type=4711\n"
                                            "TypeName=Sample board\n"
                                            "Version=2.1\n"
                                            "CompatibilityIndex=3\n"
                                            "LP-ID=LP-000815\n"
                                            "Comment=Made up\n";
const QStringList ReaderSamples::boardRecord = {"4711", "Sample board", "2.1",
                                                "3",    "LP-000815",    "Made up"};

const QStringList ReaderSamples::sixEmptyTexts = {QString(), QString(), QString(),
                                                  QString(), QString(), QString()};
const QStringList ReaderSamples::untouched = {"type",  "type name", "version",
                                              "index", "lp-id",     "comment"};
HardwareInfo ReaderSamples::usedRecord()
{
    HardwareInfo info;
    info.setType(untouched.at(0));
    info.setTypeName(untouched.at(1));
    info.setHwVersion(untouched.at(2));
    info.setHwCompIndex(untouched.at(3));
    info.setLpId(untouched.at(4));
    info.setComment(untouched.at(5));
    return info;
}

QStringList ReaderSamples::values(const HardwareInfo& info)
{
    return {info.type(),        info.typeName(), info.hwVersion(),
            info.hwCompIndex(), info.lpId(),     info.Comment()};
}

QString ReaderSamples::shortHeader(int count, const QString& image)
{
    return QStringLiteral("Number of INI header bytes is %1 , expected 16 (file: \"%2\" )!")
        .arg(QString::number(count), image);
}

// The numbers in the message are those of the header.
QString ReaderSamples::shortBlock(const QString& image)
{
    return QStringLiteral("Number of INI file bytes is 16 , expected 16 (file: \"%1\" )!")
        .arg(image);
}

QString ReaderSamples::failedSeek(quint32 address, const QString& image)
{
    return QStringLiteral("Seek to start addr %1 failed (file: \"%2\" )!")
        .arg(QString::number(address), image);
}

QString ReaderSamples::tooLong(quint32 length, const QString& image)
{
    return QStringLiteral("Max. number of bytes for INI file exceeded (bytesToRead field = %1 , "
                          "file: \"%2\" )!")
        .arg(QString::number(length), image);
}

QString ReaderSamples::invalidChecksum(const QString& image)
{
    return QStringLiteral("Invalid checksum for INI block in eeprom binary file \"%1\" .")
        .arg(image);
}
