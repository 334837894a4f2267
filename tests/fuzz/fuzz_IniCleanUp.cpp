// The input is the file to clean up. Input after an asterisk is repeated until the file is too
// large for one chunk.
#include "Fuzz.h"
#include "IniFileManager.h"
#include "LiteralIniFile.h"

#include <QtCore/QDir>

namespace {

constexpr int largeSize = 70000;

void keepText(QString&) {}

void verifyCleanUp(const char* what, const QByteArray& content, const QByteArray& expected)
{
    const QString filePath = Fuzz::writeFile("settings.ini", content);
    IniFileManager::cleanUp(filePath);
    Fuzz::verifySame(what, Fuzz::readFile(filePath), expected);
    Fuzz::verifySame("messages", Fuzz::takeMessages(), QStringList());
    Fuzz::removeFile(filePath);
    Fuzz::verify(QDir(Fuzz::directory()).isEmpty(), "a file remained");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QList<void (*)(QString&)> usualFunctions = IniFileManager::sm_CleanUpFunctions;

    QByteArray content = Fuzz::toBytes(data, size);
    if (content.startsWith('*')) {
        content.remove(0, 1);
        content = content.repeated(content.isEmpty() ? 0 : largeSize / content.size());
    }
    const QString filePath = Fuzz::writeFile("literal.ini", content);
    const QByteArray expected = LiteralIniFile::cleanUp(filePath);
    Fuzz::removeFile(filePath);

    verifyCleanUp("bytes, in chunks", content, expected);
    // An additional function requires the entire text.
    IniFileManager::sm_CleanUpFunctions.append(&keepText);
    verifyCleanUp("bytes, entire text", content, expected);
    IniFileManager::sm_CleanUpFunctions = usualFunctions;
    return 0;
}
