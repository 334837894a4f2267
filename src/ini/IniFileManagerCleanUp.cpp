#include "IniFileManager.h"

#include "common/DirectoryFlush.h"
#include "common/FileReading.h"
#include "common/Log.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

namespace {

constexpr char canNotOpenFile[] = "Can not open file:";

// Reads the text of the file at path, and sets isWhole if it was read to its end. Warns
// and returns false if the file cannot be opened. Closes the file, so that replacing it needs no
// additional descriptor.
bool readText(const QString& path, const QMessageLogger& log, QString& text, bool& isWhole)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        log.warning() << canNotOpenFile << path;
        return false;
    }
    text = decodeToFirstZeroByte(readAllInTextMode(file));
    isWhole = file.error() == QFileDevice::NoError && file.atEnd();
    return true;
}

} // namespace

QList<void (*)(QString&)> IniFileManager::sm_CleanUpFunctions = {
    &IniFileManager::cleanUpComments, &IniFileManager::cleanUpListSeperators};

void IniFileManager::cleanUp(const QString& filePath)
{
    QString text;
    bool isWhole = false;
    if (!readText(filePath, MISCTOOLS_LOG(IniFileManager), text, isWhole)) {
        return;
    }
    for (const auto cleanUpFunction : qAsConst(sm_CleanUpFunctions)) {
        if (cleanUpFunction == nullptr) {
            MISCTOOLS_LOG(IniFileManager).warning() << "Function pointer is Null.";
            continue;
        }
        cleanUpFunction(text);
    }

    QSaveFile target(filePath);
    if (!target.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        MISCTOOLS_LOG(IniFileManager).warning() << canNotOpenFile << filePath;
        return;
    }
    const QByteArray utf8 = text.toUtf8();
    // If the old text could not be read to its end, or the new one not written, as on a full disk,
    // committing would truncate the file.
    if (!isWhole || target.write(utf8) != utf8.size()) {
        target.cancelWriting();
    }
    if (target.commit()) {
        flushDirectory(QFileInfo(filePath).canonicalPath());
    }
}

void IniFileManager::cleanUpComments(QString& text)
{
    text.replace(QStringLiteral("%23"), QStringLiteral("#"));
}

void IniFileManager::cleanUpListSeperators(QString& text)
{
    text.replace(QLatin1Char(','), QLatin1Char(' '));
}
