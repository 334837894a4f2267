#include "IniFileManager.h"

#include "common/DirectoryFlush.h"
#include "common/FileReading.h"
#include "common/Log.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

namespace {

constexpr char canNotOpenFile[] = "Can not open file:";

// Reads the text of the file at path; false, with a warning, when it cannot be opened. isWhole
// tells whether it was read to its end. The file is closed afterwards, as replacing it needs a
// descriptor.
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
    // Committing would replace the file by a part of its text: one that could not be read to its
    // end, or not be written, as on a full disk.
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
