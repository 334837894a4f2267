#ifndef TESTS_DEVICEROOT_H
#define TESTS_DEVICEROOT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

/*
 * The files of a device, at their real paths. They may be changed only where the test runs in a
 * device root (see script/device-root), which is private to it.
 */
namespace DeviceRoot {

// Whether the test runs in a device root.
bool isEntered();

// Removes every file of the device; the command line becomes empty.
void clear();

// Writes a file of the device with its folders, for example "/orvalis/VersionFile.ini".
void writeFile(const QString& filePath, const QByteArray& content);

// What /proc/cmdline holds.
void setCommandLine(const QByteArray& content);

// Something else in place of a file or folder for the life of the object.
class Covered
{
public:
    // Covers the folder at folderPath with an empty one: the way to a machine without
    // /proc/cmdline.
    explicit Covered(const char* folderPath);
    // Covers the file at filePath with the one at otherPath.
    Covered(const char* filePath, const QString& otherPath);
    ~Covered();

private:
    Q_DISABLE_COPY(Covered)

    const char* m_path;
};

} // namespace DeviceRoot

// Skips a test function where there is no device root.
#define MISCTOOLS_NEED_DEVICE_ROOT()                                                               \
    do {                                                                                           \
        if (!DeviceRoot::isEntered()) {                                                            \
            MISCTOOLS_SKIP("needs the device's fixed paths; run it through script/device-root, "   \
                           "where namespaces are allowed");                                        \
        }                                                                                          \
        DeviceRoot::clear();                                                                       \
    } while (false)

#endif
