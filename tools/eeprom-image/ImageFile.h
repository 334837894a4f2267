#ifndef TOOLS_EEPROMIMAGE_IMAGEFILE_H
#define TOOLS_EEPROMIMAGE_IMAGEFILE_H

#include "ExitCode.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/*
 * The content of an image. Like the library, it reads only the header and the block, since an
 * EEPROM's bus is slow. A damaged image is read as far as possible.
 */
class ImageFile
{
public:
    explicit ImageFile(const QString& filePath);

    // The verdict: ExitCode::Done for a valid image; otherwise error() says what is wrong and
    // where.
    ExitCode verdict() const { return m_verdict; }
    QString error() const { return m_error; }

    // Whether the file could be read.
    bool isRead() const { return m_isRead; }

    // Returns the existing bytes of a header field.
    QByteArray field(qint64 address, int size) const;

    // Whether the header is complete, and its fields: the block's start address, its length, and
    // its stored checksum.
    bool hasHeader() const;
    quint32 startAddress() const;
    quint32 length() const;
    quint16 storedChecksum() const;

    // The existing bytes of the block, up to the limit of a block, and their checksum if the block
    // is complete.
    QByteArray block() const { return m_block; }
    std::optional<quint16> calculatedChecksum() const;

    // Describes a range of bytes: "78 bytes, 36 to 113 (0x24 to 0x71)".
    static QString range(qint64 address, qint64 size);

private:
    void read(const QString& filePath);
    void judge(const QString& readError);
    void setVerdict(ExitCode verdict, const QString& error);
    quint32 word(qint64 address) const;

    ExitCode m_verdict = ExitCode::Done;
    QString m_error;
    bool m_isRead = false;
    bool m_isStartReached = false;
    QByteArray m_header;
    QByteArray m_block;
};

#endif
