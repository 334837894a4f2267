#include "WholeFile.h"

#include <QtCore/QSaveFile>

QString WholeFile::replace(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    // A commit alone passes over a flush that fails, as on a full disk, and puts what was written
    // so far in the file's place.
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() &&
        file.commit()) {
        return QString();
    }
    return file.errorString();
}
