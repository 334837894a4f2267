#ifndef MISCTOOLS_HARDWAREINFOREADER_H
#define MISCTOOLS_HARDWAREINFOREADER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>

class HardwareInfo;

/*!
 * \brief Reads a board's hardware record out of its EEPROM image.
 *
 * \snippet HardwareInfoReader.cpp read
 *
 * The kernel shows the EEPROM as a file. Twenty bytes into it lies a header of four little-endian
 * 32-bit words: reserved, start address and length of a block of INI text, and the block's
 * checksum. The block is believed only when it is whole and its checksum matches.
 *
 * \par Contract
 * - **Threads:** one object, one thread; objects on different threads do not disturb each other.
 * - **Ownership:** the parent owns the reader, as QObject has it. Each read opens and closes its
 *   own file, and the temporary file of a read is gone when the read returns.
 * - **Errors:** nothing throws; each failed read logs one message and gives false.
 * - **Units and formats:** addresses and lengths are bytes; the block is at most 65,535 bytes. No
 *   more than header and block is asked of the driver, as an EEPROM's bus is slow.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT HardwareInfoReader : public QObject
{
    Q_OBJECT

public:
    /*! \brief A reader owned by \a parent, which may be null. */
    HardwareInfoReader(QObject* parent);
    ~HardwareInfoReader() override;

    /*!
     * \brief Reads the image at \a eepromFilePath into \a hwInfo.
     *
     * \param tempFileTemplate where the INI text is put while it is read, as
     *                         QTemporaryFile::setFileTemplate() takes it
     * \param eepromFilePath   the image
     * \param hwInfo           the record; left as it is when the result is false
     *
     * \return whether the block was whole and its checksum matched. What is missing in a good block
     *         is only warned of (see HardwareVersionIniManager), and comes back empty. An EEPROM
     *         that was never written, all bytes 0xFF, gives false. One of zeros only is a good and
     *         empty block, as the checksum of nothing is 0: it gives true and six empty fields.
     *
     * Logs, in the order of the checks: debug "Can't find eeprom binary file", debug "Can't open
     * eeprom binary file", and the warnings "Number of INI header bytes is", "Seek to start addr",
     * "Max. number of bytes for INI file exceeded", "Number of INI file bytes is" (the numbers in
     * it are those of the header), "Invalid checksum for INI block in eeprom binary file"; each
     * with the path.
     */
    bool readHardwareInfoFromSysFs(const QString& tempFileTemplate, const QString& eepromFilePath,
                                   HardwareInfo& hwInfo);

    /*!
     * \brief The first four of \a bytes as an unsigned little-endian number.
     *
     * A half (two bytes) that is not there in full counts as zero.
     */
    quint32 bytes2Uint32(const QByteArray& bytes) const;

    /*!
     * \brief The CRC-16/XMODEM of \a length bytes at \a data; 0 when there are none.
     *
     * Polynomial 0x1021, start value 0, nothing reflected, nothing inverted; the nine digits
     * "123456789" give 0x31C3.
     */
    quint16 checksumXModemCRC(const char* data, unsigned int length);

    /*!
     * \brief Parses the INI text \a iniData into \a hwInfo.
     *
     * All six fields are set; one that could not be read becomes empty and is warned of as
     * HardwareVersionIniManager says.
     */
    void data2HwInfo(const QByteArray& iniData, const QString& tempFileTemplate,
                     HardwareInfo& hwInfo);

    /*! \brief Entry i is the checksum of the one byte i. */
    static const quint16 sm_CrcLookupTable[256];

private:
    // A part of the header, both numbers in bytes.
    struct Field
    {
        int offset;
        int size;
    };

    const int m_headerAddress;
    const int m_headerSize;
    const Field m_reservedField; // never evaluated
    const Field m_startAddressField;
    const Field m_bytesToReadField;
    const Field m_checksumField;
};

#endif
