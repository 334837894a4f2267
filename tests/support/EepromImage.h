#ifndef TESTS_EEPROMIMAGE_H
#define TESTS_EEPROMIMAGE_H

#include <QtCore/QByteArray>
#include <QtCore/QVector>

/*
 * Builds the image of a board's EEPROM: filler bytes, the header at address 20, and a block of INI
 * text. By default the image is valid: the block follows the header, the image ends with the block,
 * and length and checksum are correct. Where block and header overlap, the header overwrites the
 * block, and the checksum is that of the resulting bytes.
 */
class EepromImage
{
public:
    static constexpr int headerAddress = 20;
    static constexpr int headerSize = 16;
    static constexpr int headerEnd = headerAddress + headerSize;

    explicit EepromImage(const QByteArray& block);

    // The layout.
    EepromImage& startAddress(quint32 address);
    EepromImage& size(int bytes);
    EepromImage& fill(char byte);
    EepromImage& reserved(quint32 word);
    EepromImage& upperChecksumBits(quint16 bits);

    // Deliberate damage: invalid values in the header, and bits that are flipped afterwards.
    EepromImage& bytesToRead(quint32 length);
    EepromImage& checksum(quint16 value);
    EepromImage& writtenStartAddress(quint32 address);
    EepromImage& flipBit(int address, int bit);

    QByteArray bytes() const;

    // CRC-16/XMODEM, computed bit by bit from the polynomial.
    static quint16 crc(const QByteArray& data);

private:
    struct Bit
    {
        int address;
        int number;
    };

    QByteArray withChecksum(const QByteArray& image, quint16 value) const;
    QByteArray withValidChecksum(const QByteArray& image) const;

    QByteArray m_block;
    quint32 m_startAddress = headerEnd;
    quint32 m_writtenStartAddress = headerEnd;
    quint32 m_bytesToRead;
    quint32 m_reserved = 0;
    quint16 m_upperChecksumBits = 0;
    quint16 m_checksum = 0;
    bool m_isChecksumValid = true;
    int m_size = headerEnd;
    char m_fill = '\xFF';
    QVector<Bit> m_flippedBits;
};

#endif
