#ifndef TOOLS_EEPROMIMAGE_IMAGEFILE_H
#define TOOLS_EEPROMIMAGE_IMAGEFILE_H

#include "ExitCode.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/*
 * What an image holds, read as the library reads it: the header and the block alone, as each byte
 * of an EEPROM takes its time on the bus. Damaged images give what can be read of them.
 */
class ImageFile
{
public:
    explicit ImageFile(const QString& filePath);

    // The verdict: ExitCode::Done for a valid image, otherwise what is wrong and where.
    ExitCode verdict() const { return m_verdict; }
    QString trouble() const { return m_trouble; }

    // Whether there was a file to read from at all.
    bool isRead() const { return m_isRead; }

    // The bytes of a field of the header, as many as are there.
    QByteArray field(qint64 address, int size) const;

    // Of a header that is whole: where the block starts, its length, and the checksum stored for
    // it.
    bool hasHeader() const;
    quint32 startAddress() const;
    quint32 length() const;
    quint16 storedChecksum() const;

    // As many of the block's bytes as are there, up to the limit of a block, and their checksum
    // when that is all of them.
    QByteArray block() const { return m_block; }
    std::optional<quint16> calculatedChecksum() const;

    // Some bytes by their addresses: "78 bytes, 36 to 113 (0x24 to 0x71)".
    static QString range(qint64 address, qint64 size);

private:
    void read(const QString& filePath);
    void judge(const QString& readError);
    void condemn(ExitCode verdict, const QString& trouble);
    quint32 word(qint64 address) const;

    ExitCode m_verdict = ExitCode::Done;
    QString m_trouble;
    bool m_isRead = false;
    bool m_isStartReached = false;
    QByteArray m_header;
    QByteArray m_block;
};

#endif
