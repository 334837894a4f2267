#include "ImageFile.h"

#include "HardwareInfoReader.h"
#include "ImageFormat.h"
#include "common/LibraryMessages.h"

#include <QtCore/QFile>
#include <QtCore/QtEndian>

using namespace ImageFormat;

namespace {

// Formats a reason from the system for the end of a message.
QString because(const QString& error)
{
    return error.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(error);
}

} // namespace

ImageFile::ImageFile(const QString& filePath)
{
    read(filePath);
}

void ImageFile::read(const QString& filePath)
{
    LibraryMessages::capture(false); // Qt logs a message for a file that is not seekable
    QFile file(filePath);
    if (!file.exists()) {
        setVerdict(ExitCode::NoSuchImage, QStringLiteral("there is no such file"));
        return;
    }
    // Unbuffered: a buffer would read ahead, which takes seconds on the EEPROM's bus.
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        setVerdict(ExitCode::CannotOpenImage,
                   QStringLiteral("the file cannot be opened") + because(file.errorString()));
        return;
    }
    if (!file.seek(headerAddress)) {
        setVerdict(ExitCode::StartAddressUnreachable,
                   QStringLiteral("no address can be reached: the file is a pipe or a device that "
                                  "is not seekable"));
        return;
    }
    m_isRead = true;
    m_header = file.read(headerSize);
    // Seeking beyond the end of a sysfs file fails.
    m_isStartReached = hasHeader() && file.seek(startAddress());
    if (m_isStartReached) {
        m_block = file.read(qMin<qint64>(length(), maxBlockSize));
    }
    judge(file.error() == QFileDevice::NoError ? QString() : file.errorString());
}

// Checks the image in the same order as the library.
void ImageFile::judge(const QString& readError)
{
    if (!hasHeader()) {
        setVerdict(ExitCode::HeaderShort,
                   QStringLiteral("the header is truncated: %1 of its %2, are present")
                           .arg(m_header.size())
                           .arg(range(headerAddress, headerSize)) +
                       because(readError));
    } else if (!m_isStartReached && startAddress() != 0xFFFFFFFF) {
        setVerdict(
            ExitCode::StartAddressUnreachable,
            QStringLiteral("the start address at %1 is %2, which cannot be reached: the header "
                           "is damaged")
                .arg(startAddressField)
                .arg(startAddress()));
    } else if (length() == 0xFFFFFFFF) {
        setVerdict(ExitCode::LengthOverLimit,
                   QStringLiteral("the header has no length, all bits at %1 are set: the EEPROM "
                                  "seems to be erased and was never written")
                       .arg(lengthField));
    } else if (length() > maxBlockSize) {
        setVerdict(
            ExitCode::LengthOverLimit,
            QStringLiteral("the length at %1 is %2, more than the limit of %3 bytes: the header is "
                           "damaged")
                .arg(lengthField)
                .arg(length())
                .arg(maxBlockSize));
    } else if (m_block.size() < qint64(length())) {
        setVerdict(ExitCode::BlockShort,
                   QStringLiteral("the block is truncated: %1 of its %2, are present")
                           .arg(m_block.size())
                           .arg(range(startAddress(), length())) +
                       because(readError));
    } else if (calculatedChecksum() != storedChecksum()) {
        setVerdict(
            ExitCode::ChecksumWrong,
            QStringLiteral("the checksum is wrong: 0x%1 is stored at %2, but 0x%3 is calculated "
                           "from the block's %4")
                .arg(storedChecksum(), 4, 16, QLatin1Char('0'))
                .arg(checksumField)
                .arg(*calculatedChecksum(), 4, 16, QLatin1Char('0'))
                .arg(range(startAddress(), length())));
    } else if (length() == 0) {
        setVerdict(ExitCode::BlockEmpty,
                   QStringLiteral(
                       "the block is empty, the length at %1 is 0: the image contains no record "
                       "(an EEPROM full of zeros looks like this)")
                       .arg(lengthField));
    }
}

void ImageFile::setVerdict(ExitCode verdict, const QString& error)
{
    m_verdict = verdict;
    m_error = error;
}

QByteArray ImageFile::field(qint64 address, int size) const
{
    return m_header.mid(int(address - headerAddress), size);
}

bool ImageFile::hasHeader() const
{
    return m_header.size() == headerSize;
}

quint32 ImageFile::startAddress() const
{
    return word(startAddressField);
}

quint32 ImageFile::length() const
{
    return word(lengthField);
}

quint16 ImageFile::storedChecksum() const
{
    return quint16(word(checksumField) & 0xFFFF);
}

std::optional<quint16> ImageFile::calculatedChecksum() const
{
    if (!hasHeader() || m_block.size() < qint64(length())) {
        return std::nullopt;
    }
    return HardwareInfoReader(nullptr).checksumXModemCRC(m_block.constData(), uint(m_block.size()));
}

quint32 ImageFile::word(qint64 address) const
{
    constexpr int size = sizeof(quint32);
    return qFromLittleEndian<quint32>(field(address, size).leftJustified(size, '\0').constData());
}

QString ImageFile::range(qint64 address, qint64 size)
{
    QString bytes = size == 1 ? QStringLiteral("1 byte") : QStringLiteral("%1 bytes").arg(size);
    if (size == 0) {
        return bytes;
    }
    const qint64 last = address + size - 1;
    return QStringLiteral("%1, %2 to %3 (0x%4 to 0x%5)")
        .arg(bytes)
        .arg(address)
        .arg(last)
        .arg(address, 0, 16)
        .arg(last, 0, 16);
}
