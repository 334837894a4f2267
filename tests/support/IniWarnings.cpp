#include "IniWarnings.h"

void IniWarnings::expectMissingFile(MessageRecorder& messages, const QString& filePath)
{
    messages
        .expectWarning("IniFileManager",
                       QStringLiteral("Can't find specified ini-file: \"%1\"").arg(filePath))
        .function("IniFileManager::IniFileManager(const QString&, const char*)");
}

void IniWarnings::expectMissingKey(MessageRecorder& messages, const QString& filePath,
                                   const QString& key, const QString& group)
{
    messages
        .expectWarning("IniFileManager",
                       QStringLiteral("\"Ini-File (%1):\" Key \"%2\" not found in Group \"%3\" !")
                           .arg(filePath, key, group))
        .function("QVariant IniFileManager::getValue(const QString&, const QString&, const "
                  "QVariant&) const");
}

void IniWarnings::expectNoInteger(MessageRecorder& messages, const QString& filePath,
                                  const QString& value)
{
    messages
        .expectWarning(
            "IniFileManager",
            QStringLiteral("\"Ini-File (%1):\" Conversion failed: %2").arg(filePath, value))
        .function("int IniFileManager::getValueInteger(const QString&, const QString&, int) const");
}
