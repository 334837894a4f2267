#ifndef MISCTOOLS_DIRECTORYFLUSH_H
#define MISCTOOLS_DIRECTORYFLUSH_H

#include <QtCore/QFile>
#include <QtCore/QString>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

// Writes a directory's entries to the disk. QSaveFile flushes the new file before it renames it, so
// a power cut leaves no incomplete file; but the renaming itself is durable only after this. Errors
// are ignored, since not every file system supports it.
inline void flushDirectory(const QString& path)
{
    const QByteArray encodedPath = QFile::encodeName(path);
    int descriptor = -1;
    do {
        descriptor = open(encodedPath.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) {
        return;
    }
    while (fsync(descriptor) != 0 && errno == EINTR) {
    }
    close(descriptor);
}

#endif
