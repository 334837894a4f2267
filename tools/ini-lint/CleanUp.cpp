#include "CleanUp.h"

#include "common/TemporaryPath.h"

#include <IniFileManager.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

namespace {

std::optional<QByteArray> contentOf(const QString& filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return file.readAll();
}

} // namespace

std::optional<QByteArray> CleanUp::preview(const QByteArray& text)
{
    const QTemporaryDir directory(TemporaryPath::pattern());
    const QString copy = directory.filePath(QStringLiteral("copy.ini"));
    QFile file(copy);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush()) {
        return std::nullopt;
    }
    file.close();
    IniFileManager::cleanUp(copy);
    return contentOf(copy);
}

CleanUp::Changes CleanUp::changes(const QByteArray& before, const QByteArray& after)
{
    const QList<QByteArray> oldLines = before.split('\n');
    const QList<QByteArray> newLines = after.split('\n');
    Changes result;
    for (int i = 0; i < oldLines.size(); ++i) {
        if (i >= newLines.size()) {
            result.append({i + 1, oldLines.at(i), std::nullopt});
        } else if (oldLines.at(i) != newLines.at(i)) {
            result.append({i + 1, oldLines.at(i), newLines.at(i)});
        }
    }
    return result;
}
