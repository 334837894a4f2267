#include "IniFileManager.h"

#include "common/Log.h"
#include "common/Text.h"
#include "common/TextPieces.h"

#include <QtCore/QFile>
#include <QtCore/QSaveFile>

namespace {

constexpr char canNotOpenFile[] = "Can not open file:";

QList<void (*)(QString&)> ownCleanUpFunctions()
{
    return {&IniFileManager::cleanUpComments, &IniFileManager::cleanUpListSeperators};
}

// What these functions do to a text, done to its UTF-8 in one pass: ASCII characters stand for
// themselves there.
void cleanUpUtf8(QByteArray& utf8)
{
    const char* const begin = utf8.data();
    Text::rewriteBytes(
        utf8, 0,
        [](quint64 block) { return Text::isInBlock(block, ',') || Text::isInBlock(block, '3'); },
        [begin](char byte, char* target) {
            if (byte == ',') {
                byte = ' ';
            } else if (byte == '3' && target - begin >= 2 && target[-1] == '2' &&
                       target[-2] == '%') {
                target -= 2;
                byte = '#';
            }
            *target = byte;
            return target + 1;
        });
}

bool writeAll(QIODevice& device, const QByteArray& bytes)
{
    return device.write(bytes) == bytes.size();
}

} // namespace

QList<void (*)(QString&)> IniFileManager::sm_CleanUpFunctions = ownCleanUpFunctions();

void IniFileManager::cleanUp(const QString& filePath)
{
    QFile source(filePath);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        MISCTOOLS_LOG(IniFileManager).warning() << canNotOpenFile << filePath;
        return;
    }
    TextPieces pieces(source);
    QString text;
    // The library's own functions do to each piece of a text what they do to the whole, so that a
    // large file need not fit into memory. Of others this is not known.
    const bool isPieceByPiece = sm_CleanUpFunctions == ownCleanUpFunctions();
    if (!isPieceByPiece) {
        while (pieces.next()) {
            pieces.appendTo(text);
        }
        for (const auto cleanUpFunction : qAsConst(sm_CleanUpFunctions)) {
            if (cleanUpFunction == nullptr) {
                MISCTOOLS_LOG(IniFileManager).warning() << "Function pointer is Null.";
                continue;
            }
            cleanUpFunction(text);
        }
    }

    QSaveFile target(filePath);
    if (!target.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        MISCTOOLS_LOG(IniFileManager).warning() << canNotOpenFile << filePath;
        return;
    }
    bool isWritten = true;
    if (isPieceByPiece) {
        while (isWritten && pieces.next()) {
            QByteArray utf8 = pieces.toUtf8();
            cleanUpUtf8(utf8);
            isWritten = writeAll(target, utf8);
        }
    } else {
        isWritten = writeAll(target, text.toUtf8());
    }
    // QSaveFile would put a text that was cut short in the file's place: one that could not be
    // written, as on a full disk, or one that could be read in part only.
    if (!isWritten || source.error() != QFileDevice::NoError) {
        target.cancelWriting();
    }
    target.commit();
}

void IniFileManager::cleanUpComments(QString& text)
{
    text.replace(QStringLiteral("%23"), QStringLiteral("#"));
}

void IniFileManager::cleanUpListSeperators(QString& text)
{
    text.replace(QLatin1Char(','), QLatin1Char(' '));
}
