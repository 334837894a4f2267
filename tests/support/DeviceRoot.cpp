#include "DeviceRoot.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>
#include <cstring>

#include <sys/mount.h>
#include <sys/stat.h>

namespace {

QString commandLinePath()
{
    return qEnvironmentVariable("MISCTOOLS_DEVICE_ROOT") + "/cmdline";
}

bool isSameFile(const char* path, const QString& otherPath)
{
    struct stat file;
    struct stat otherFile;
    return stat(path, &file) == 0 &&
           stat(QFile::encodeName(otherPath).constData(), &otherFile) == 0 &&
           file.st_dev == otherFile.st_dev && file.st_ino == otherFile.st_ino;
}

void requireDeviceRoot()
{
    if (!DeviceRoot::isEntered()) {
        qFatal("the files of a device may be changed in a device root only");
    }
}

void write(const QString& filePath, const QByteArray& content)
{
    QFile file(filePath);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(filePath));
    }
}

void require(int result, const char* what, const char* path)
{
    if (result != 0) {
        qFatal("cannot %s %s: %s", what, path, strerror(errno));
    }
}

} // namespace

bool DeviceRoot::isEntered()
{
    // The variable may be a leftover, and clear() must never remove the files of a real device.
    static const bool entered = qEnvironmentVariableIsSet("MISCTOOLS_DEVICE_ROOT") &&
                                isSameFile("/proc/cmdline", commandLinePath());
    return entered;
}

void DeviceRoot::clear()
{
    requireDeviceRoot();
    for (const char* directory : {"/orvalis", "/orvalis-reboot", "/etc/rauc"}) {
        const QString path = QString::fromLatin1(directory);
        if (!QFile::remove(path) && !QDir(path).removeRecursively()) {
            qFatal("cannot remove %s", directory);
        }
    }
    setCommandLine(QByteArray());
}

void DeviceRoot::writeFile(const QString& filePath, const QByteArray& content)
{
    requireDeviceRoot();
    QDir().mkpath(QFileInfo(filePath).path());
    write(filePath, content);

    // QSettings assumes that a file of the same size and time is unchanged, and rows of a test may
    // follow each other within the resolution of that time.
    static qint64 latest = 0;
    latest = qMax(latest + 1, QDateTime::currentMSecsSinceEpoch());
    QFile file(filePath);
    if (!file.open(QIODevice::ReadWrite) ||
        !file.setFileTime(QDateTime::fromMSecsSinceEpoch(latest),
                          QFileDevice::FileModificationTime)) {
        qFatal("cannot set the time of %s", qPrintable(filePath));
    }
}

void DeviceRoot::setCommandLine(const QByteArray& content)
{
    requireDeviceRoot();
    write(commandLinePath(), content);
}

DeviceRoot::Covered::Covered(const char* directoryPath) : m_path(directoryPath)
{
    require(mount("none", m_path, "tmpfs", 0, nullptr), "cover", m_path);
}

DeviceRoot::Covered::Covered(const char* filePath, const QString& otherPath) : m_path(filePath)
{
    require(mount(QFile::encodeName(otherPath).constData(), m_path, "none", MS_BIND, nullptr),
            "cover", m_path);
}

DeviceRoot::Covered::~Covered()
{
    require(umount2(m_path, MNT_DETACH), "uncover", m_path);
}
