#include "WholeFile.h"

#include "CommandLine.h"
#include "src/common/DirectoryFlush.h"

#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QSet>
#include <QtCore/QStringList>

#include <sys/stat.h>
#include <unistd.h>

#include <optional>

namespace {

std::optional<struct stat> statusOf(const QString& path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? std::make_optional(status)
                                                                   : std::nullopt;
}

// Only root may change a file's owner; a member of the group may still set the group.
bool keepOwner(int descriptor, const struct stat& old)
{
    const bool isKept = fchown(descriptor, old.st_uid, old.st_gid) == 0;
    if (!isKept && fchown(descriptor, uid_t(-1), old.st_gid) != 0) {
        // The other group must not have the rights of the old one.
        fchmod(descriptor, old.st_mode & 0707);
        return false;
    }
    return fchmod(descriptor, old.st_mode & (isKept ? 07777 : 0777)) == 0 && isKept;
}

void reportOnce(const QString& path, const QString& error)
{
    static QSet<QString> reportedPaths;
    if (!reportedPaths.contains(path)) {
        reportedPaths.insert(path);
        CommandLine::printError(QStringLiteral("%1: %2").arg(CommandLine::printable(path), error));
    }
}

} // namespace

QString WholeFile::replace(const QString& path, const QByteArray& bytes)
{
    const std::optional<struct stat> old = statusOf(path);
    if (old && !S_ISREG(old->st_mode) && !S_ISDIR(old->st_mode)) { // Qt refuses a directory
        return QStringLiteral("it is not a regular file and is not replaced");
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return file.errorString();
    }
    const bool isOwnerKept = !old || keepOwner(file.handle(), *old);
    // commit() ignores a failed flush, as on a full disk, and would replace the file with an
    // incomplete one.
    if (file.write(bytes) != bytes.size() || !file.flush() || !file.commit()) {
        return file.errorString();
    }
    flushDirectory(QFileInfo(path).canonicalPath());
    if (!isOwnerKept) {
        reportOnce(path, QStringLiteral("owner, group and mode could not all be kept"));
    }
    return QString();
}

bool WholeFile::isStandardOutput(const QString& path)
{
    static const QStringList names = {QStringLiteral("-"), QStringLiteral("/dev/stdout"),
                                      QStringLiteral("/dev/fd/1"),
                                      QStringLiteral("/proc/self/fd/1")};
    return names.contains(path);
}
