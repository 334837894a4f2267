// Reads the hardware record from an INI text in memory. HardwareInfoReader does this with the text
// of an EEPROM image; use the class itself when the text comes from elsewhere.

#include <HardwareVersionIniManager.h>

#include <QDir>
#include <cstdio>

int main()
{
    //! [fields]
    // All keys are before any [section]; keys in a section are not found.
    const QByteArray text("Type=4711\n"
                          "TypeName=Sample board\n"
                          "Version=2.1\n"
                          "CompatibilityIndex=3\n"
                          "LP-ID=LP-000815\n");
    // The class writes the text to a temporary file, which exists as long as the object does.
    const QString temporary = QDir::temp().filePath(QStringLiteral("hwinfo.XXXXXX"));
    const HardwareVersionIniManager record(text, temporary);
    std::printf("%s, type %s, version %s\n", qPrintable(record.getTypeName()),
                qPrintable(record.getType()), qPrintable(record.getHwVersion()));
    //! [fields]
    std::printf("compatibility index %s, LP-ID %s\n", qPrintable(record.getHwCompatibilityIndex()),
                qPrintable(record.getLpIdNumber()));
    // The comment is optional: this text has none, and nothing is logged.
    std::printf("comment <%s>\n", qPrintable(record.getComment()));
    return 0;
}
