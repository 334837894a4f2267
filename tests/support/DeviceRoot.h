#ifndef TESTS_DEVICEROOT_H
#define TESTS_DEVICEROOT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

/*
 * The files of a device, at their real paths. A test may change them only in a device root (see
 * script/device-root), which is private to the test.
 */
namespace DeviceRoot {

// Whether the test runs in a device root.
bool isEntered();

// Removes every file of the device; the command line becomes empty.
void clear();

// Writes a file of the device and creates its directories, for example "/orvalis/VersionFile.ini".
void writeFile(const QString& filePath, const QByteArray& content);

// Sets the content of /proc/cmdline.
void setCommandLine(const QByteArray& content);

// Mounts another file or directory over a path during the object's lifetime.
class Covered
{
public:
    // Mounts an empty directory over directoryPath, for example to simulate a machine without
    // /proc/cmdline.
    explicit Covered(const char* directoryPath);
    // Mounts the file at otherPath over filePath.
    Covered(const char* filePath, const QString& otherPath);
    ~Covered();

private:
    Q_DISABLE_COPY(Covered)

    const char* m_path;
};

} // namespace DeviceRoot

// Skips a test function outside a device root.
#define MISCTOOLS_NEED_DEVICE_ROOT()                                                               \
    do {                                                                                           \
        if (!DeviceRoot::isEntered()) {                                                            \
            MISCTOOLS_SKIP("needs the device's fixed paths; run it through script/device-root, "   \
                           "where namespaces are allowed");                                        \
        }                                                                                          \
        DeviceRoot::clear();                                                                       \
    } while (false)

#endif
