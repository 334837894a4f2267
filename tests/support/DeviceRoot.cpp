#include "DeviceRoot.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>
#include <cstring>

#include <sys/mount.h>

namespace {

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
    return qEnvironmentVariableIsSet("MISCTOOLS_DEVICE_ROOT");
}

void DeviceRoot::clear()
{
    Q_ASSERT(isEntered());
    for (const char* folder : {"/orvalis", "/orvalis-reboot", "/etc/rauc"}) {
        const QString path = QString::fromLatin1(folder);
        QFile::remove(path);
        QDir(path).removeRecursively();
    }
    setCommandLine(QByteArray());
}

void DeviceRoot::writeFile(const QString& filePath, const QByteArray& content)
{
    Q_ASSERT(isEntered());
    QDir().mkpath(QFileInfo(filePath).path());
    write(filePath, content);
}

void DeviceRoot::setCommandLine(const QByteArray& content)
{
    Q_ASSERT(isEntered());
    write(qEnvironmentVariable("MISCTOOLS_DEVICE_ROOT") + QStringLiteral("/cmdline"), content);
}

DeviceRoot::Covered::Covered(const char* folderPath) : m_path(folderPath)
{
    require(mount("none", m_path, "tmpfs", 0, nullptr), "cover", m_path);
}

DeviceRoot::Covered::Covered(const char* filePath, const QString& otherPath) : m_path(filePath)
{
    require(mount(QFile::encodeName(otherPath).constData(), m_path, nullptr, MS_BIND, nullptr),
            "cover", m_path);
}

DeviceRoot::Covered::~Covered()
{
    require(umount2(m_path, MNT_DETACH), "uncover", m_path);
}
