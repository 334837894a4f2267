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

// Only root may give a file away; a member of the group may still keep the group.
bool keepOwner(int descriptor, const struct stat& old)
{
    const bool isKept = fchown(descriptor, old.st_uid, old.st_gid) == 0;
    if (!isKept && fchown(descriptor, uid_t(-1), old.st_gid) != 0) {
        // Without the group's rights for another group.
        fchmod(descriptor, old.st_mode & 0707);
        return false;
    }
    return fchmod(descriptor, old.st_mode & (isKept ? 07777 : 0777)) == 0 && isKept;
}

void sayOnce(const QString& path, const QString& trouble)
{
    static QSet<QString> saidPaths;
    if (!saidPaths.contains(path)) {
        saidPaths.insert(path);
        CommandLine::complain(QStringLiteral("%1: %2").arg(CommandLine::printable(path), trouble));
    }
}

} // namespace

QString WholeFile::replace(const QString& path, const QByteArray& bytes)
{
    const std::optional<struct stat> old = statusOf(path);
    if (old && !S_ISREG(old->st_mode) && !S_ISDIR(old->st_mode)) { // Qt refuses a directory
        return QStringLiteral("it is no regular file and is not replaced");
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return file.errorString();
    }
    const bool isOwnerKept = !old || keepOwner(file.handle(), *old);
    // commit() alone ignores a failed flush, as on a full disk, and replaces the file with what was
    // written so far.
    if (file.write(bytes) != bytes.size() || !file.flush() || !file.commit()) {
        return file.errorString();
    }
    flushDirectory(QFileInfo(path).canonicalPath());
    if (!isOwnerKept) {
        sayOnce(path, QStringLiteral("owner, group and mode could not all be kept"));
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
