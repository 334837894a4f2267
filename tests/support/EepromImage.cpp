#include "EepromImage.h"

#include <QtCore/QtEndian>

namespace {

constexpr int reservedField = EepromImage::headerAddress;
constexpr int startAddressField = EepromImage::headerAddress + 4;
constexpr int bytesToReadField = EepromImage::headerAddress + 8;
constexpr int checksumField = EepromImage::headerAddress + 12;

void put(QByteArray& image, int address, quint32 word)
{
    qToLittleEndian(word, image.data() + address);
}

} // namespace

EepromImage::EepromImage(const QByteArray& block)
    : m_block(block), m_bytesToRead(quint32(block.size()))
{
}

EepromImage& EepromImage::startAddress(quint32 address)
{
    m_startAddress = address;
    return writtenStartAddress(address);
}

EepromImage& EepromImage::size(int bytes)
{
    m_size = bytes;
    return *this;
}

EepromImage& EepromImage::fill(char byte)
{
    m_fill = byte;
    return *this;
}

EepromImage& EepromImage::reserved(quint32 word)
{
    m_reserved = word;
    return *this;
}

EepromImage& EepromImage::upperChecksumBits(quint16 bits)
{
    m_upperChecksumBits = bits;
    return *this;
}

EepromImage& EepromImage::bytesToRead(quint32 length)
{
    m_bytesToRead = length;
    return *this;
}

EepromImage& EepromImage::checksum(quint16 value)
{
    m_checksum = value;
    m_isChecksumValid = false;
    return *this;
}

EepromImage& EepromImage::writtenStartAddress(quint32 address)
{
    m_writtenStartAddress = address;
    return *this;
}

EepromImage& EepromImage::flipBit(int address, int bit)
{
    m_flippedBits.append({address, bit});
    return *this;
}

QByteArray EepromImage::bytes() const
{
    const int start = int(m_startAddress);
    QByteArray image(qMax(m_size, qMax(int(headerEnd), start + m_block.size())), m_fill);
    image.replace(start, m_block.size(), m_block);
    put(image, reservedField, m_reserved);
    put(image, startAddressField, m_writtenStartAddress);
    put(image, bytesToReadField, m_bytesToRead);
    image = m_isChecksumValid ? withValidChecksum(image) : withChecksum(image, m_checksum);
    for (const Bit& bit : m_flippedBits) {
        image[bit.address] = char(image.at(bit.address) ^ (1 << bit.number));
    }
    return image;
}

QByteArray EepromImage::withChecksum(const QByteArray& image, quint16 value) const
{
    QByteArray result = image;
    put(result, checksumField, quint32(m_upperChecksumBits) << 16 | value);
    return result;
}

QByteArray EepromImage::withValidChecksum(const QByteArray& image) const
{
    const int start = int(m_startAddress);
    // If the block contains its own checksum, storing it changes the block, so the loop searches
    // for a checksum that matches afterwards. Otherwise the first one matches.
    quint16 value = crc(withChecksum(image, 0).mid(start, m_block.size()));
    for (int tries = 0; tries <= 0xFFFF; ++tries, ++value) {
        const QByteArray result = withChecksum(image, value);
        if (crc(result.mid(start, m_block.size())) == value) {
            return result;
        }
    }
    qFatal("no checksum matches this block; change its text");
}

quint16 EepromImage::crc(const QByteArray& data)
{
    quint32 remainder = 0;
    for (const char byte : data) {
        remainder ^= quint32(quint8(byte)) << 8;
        for (int bit = 0; bit < 8; ++bit) {
            remainder <<= 1;
            if ((remainder & 0x10000) != 0) {
                remainder ^= 0x11021;
            }
        }
    }
    return quint16(remainder);
}
