#include "InPlace.h"

#include "common/CommandLine.h"
#include "common/EndSignals.h"
#include "common/ProgressDisplay.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QtEndian>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

// The page size of the smallest EEPROMs. The kernel splits a write that crosses a page boundary, so
// a size that is too small only costs time.
constexpr quint32 smallestPage = 8;
constexpr quint32 largestPage = 4096;
constexpr int progressIntervalInMs = 100;

class InPlaceWriter
{
public:
    InPlaceWriter(const QString& filePath, const QByteArray& image)
        : m_name(CommandLine::printable(filePath)), m_file(filePath), m_image(image)
    {
    }

    ExitCode run();

private:
    bool open();
    bool writePages();
    bool readBack();
    bool isInterrupted(const QString& state);
    qint64 pageSize() const;
    void showProgress(const char* activity, qint64 position);
    QString stateAfter(qint64 position) const;
    bool fail(ExitCode exitCode, const QString& error);

    const QString m_name;
    QFile m_file;
    const QByteArray& m_image;
    struct stat m_status = {};
    ExitCode m_exitCode = ExitCode::Done;
    const EndSignals m_signals;
    ProgressDisplay m_display{stderr};
    QElapsedTimer m_sinceShown;
};

ExitCode InPlaceWriter::run()
{
    if (open() && writePages()) {
        readBack();
    }
    m_display.clearStatus();
    return m_exitCode;
}

bool InPlaceWriter::open()
{
    const QByteArray path = QFile::encodeName(m_file.fileName());
    if (stat(path.constData(), &m_status) != 0) {
        return fail(ExitCode::CannotWriteImage, qt_error_string(errno));
    }
    // Other files, such as pipes, cannot be read back.
    if (!S_ISREG(m_status.st_mode) && !S_ISBLK(m_status.st_mode) && !S_ISCHR(m_status.st_mode)) {
        return fail(ExitCode::CannotWriteImage,
                    QStringLiteral("only a file or a device can be written in place"));
    }
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
        return fail(ExitCode::CannotWriteImage, m_file.errorString());
    }
    // If a device does not report its size, the first failing write shows that it is full.
    const off_t size =
        S_ISREG(m_status.st_mode) ? m_status.st_size : lseek(m_file.handle(), 0, SEEK_END);
    if ((S_ISREG(m_status.st_mode) || size > 0) && size < m_image.size()) {
        return fail(ExitCode::CannotWriteImage,
                    QStringLiteral("it has room for %1 bytes, and the image has %2; nothing was "
                                   "written")
                        .arg(size)
                        .arg(m_image.size()));
    }
    return true;
}

// Returns the page size from the device tree of an EEPROM; the preferred block size of other
// devices.
qint64 InPlaceWriter::pageSize() const
{
    if (!S_ISREG(m_status.st_mode)) {
        return std::clamp<qint64>(m_status.st_blksize, smallestPage, largestPage);
    }
    QFile property(QFileInfo(m_file).path() + QStringLiteral("/of_node/pagesize"));
    const QByteArray bytes =
        property.open(QIODevice::ReadOnly) ? property.read(sizeof(quint32)) : QByteArray();
    const quint32 size =
        bytes.size() == sizeof(quint32) ? qFromBigEndian<quint32>(bytes.constData()) : smallestPage;
    return size >= 1 && size <= largestPage ? size : smallestPage;
}

bool InPlaceWriter::writePages()
{
    const qint64 page = pageSize();
    for (qint64 position = 0; position < m_image.size(); position += page) {
        if (isInterrupted(stateAfter(position))) {
            return false;
        }
        showProgress("writing", position);
        const qint64 size = std::min<qint64>(page, m_image.size() - position);
        errno = 0;
        if (pwrite(m_file.handle(), m_image.constData() + position, size_t(size), position) !=
            size) {
            return fail(ExitCode::CannotWriteImage,
                        (errno != 0 ? qt_error_string(errno) : QStringLiteral("no more room")) +
                            QStringLiteral("; ") + stateAfter(position));
        }
    }
    // Files in sysfs cannot be synchronized.
    if (fsync(m_file.handle()) != 0 && errno != EINVAL) {
        return fail(ExitCode::CannotWriteImage, qt_error_string(errno));
    }
    // Read back from the device, not from the page cache.
    posix_fadvise(m_file.handle(), 0, 0, POSIX_FADV_DONTNEED);
    return true;
}

bool InPlaceWriter::readBack()
{
    QByteArray piece(largestPage, '\0');
    for (qint64 position = 0; position < m_image.size(); position += piece.size()) {
        if (isInterrupted(QStringLiteral("all bytes were written, but not all read back"))) {
            return false;
        }
        showProgress("reading back", position);
        const QByteArray expected = m_image.mid(int(position), piece.size());
        const ssize_t size =
            pread(m_file.handle(), piece.data(), size_t(expected.size()), position);
        const qint64 same =
            std::mismatch(expected.cbegin(), expected.cbegin() + std::max<ssize_t>(size, 0),
                          piece.cbegin())
                .first -
            expected.cbegin();
        if (same < expected.size()) {
            return fail(
                ExitCode::ReadBackDiffers,
                QStringLiteral("the image was written, but byte %1 differs when read back: is the "
                               "device write-protected?")
                    .arg(position + same));
        }
    }
    return true;
}

bool InPlaceWriter::isInterrupted(const QString& state)
{
    return m_signals.take() != 0 &&
           !fail(ExitCode::Interrupted, QStringLiteral("interrupted; ") + state);
}

void InPlaceWriter::showProgress(const char* activity, qint64 position)
{
    // Printing a line for each page on a serial console would take longer than writing the page.
    if (m_sinceShown.isValid() && m_sinceShown.elapsed() < progressIntervalInMs) {
        return;
    }
    m_sinceShown.start();
    m_display.showStatus(QStringLiteral("%1 %2: byte %3 of %4")
                             .arg(QLatin1String(activity), m_name)
                             .arg(position)
                             .arg(m_image.size()));
}

QString InPlaceWriter::stateAfter(qint64 position) const
{
    if (position == 0) {
        return QStringLiteral("nothing was written");
    }
    return QStringLiteral("bytes 0 to %1 are new, bytes %2 to %3 are old: write the image "
                          "again")
        .arg(position - 1)
        .arg(position)
        .arg(m_image.size() - 1);
}

// Prints an error, sets the exit code and returns false.
bool InPlaceWriter::fail(ExitCode exitCode, const QString& error)
{
    m_display.clearStatus();
    CommandLine::printError(QStringLiteral("%1: %2").arg(m_name, error));
    m_exitCode = exitCode;
    return false;
}

} // namespace

bool InPlace::isEeprom(const QString& filePath)
{
    struct statfs fileSystem = {};
    return statfs(QFile::encodeName(filePath).constData(), &fileSystem) == 0 &&
           fileSystem.f_type == SYSFS_MAGIC;
}

ExitCode InPlace::write(const QString& filePath, const QByteArray& image)
{
    return InPlaceWriter(filePath, image).run();
}
