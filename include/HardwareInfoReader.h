#ifndef MISCTOOLS_HARDWAREINFOREADER_H
#define MISCTOOLS_HARDWAREINFOREADER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>

class HardwareInfo;

/*!
 * \brief Reads a board's hardware record from its EEPROM image.
 *
 * Use it with the file that the kernel's EEPROM driver provides, or with a copy of it. At offset
 * 20, the image has a header of four little-endian 32-bit words: reserved, start address and length
 * of a block of INI text, and the block's checksum. A read succeeds only if the block is complete
 * and its checksum matches. For an INI text that is already in memory, use
 * HardwareVersionIniManager instead.
 *
 * \snippet HardwareInfoReader.cpp read
 *
 * \par Contract
 * - **Threads:** reentrant; one object must not be used in two threads at a time.
 * - **Ownership:** the parent owns the reader, as with any QObject. Each read opens and closes its
 *   own files, and removes its temporary file before it returns.
 * - **Errors:** nothing throws; a failed read returns false.
 * - **Log messages:** one for each failed read; see
 *   \ref log-messages-hardwareinforeader "log messages of HardwareInfoReader".
 * - **Units and formats:** addresses and lengths are in bytes; the block is at most 65,535 bytes
 *   long. Only header and block are read from the driver, since an EEPROM's bus is slow.
 *
 * \sa HardwareInfo, \ref hardware, \ref formats
 * \since 1.0
 */
class MISCTOOLS_EXPORT HardwareInfoReader : public QObject
{
    Q_OBJECT

public:
    /*! \brief Creates a reader owned by \a parent, which may be null. */
    HardwareInfoReader(QObject* parent);
    ~HardwareInfoReader() override;

    /*!
     * \brief Reads the image at \a eepromFilePath into \a hwInfo.
     *
     * \param tempFileTemplate template for the temporary file with the INI text, as for
     *                         QTemporaryFile::setFileTemplate()
     * \param eepromFilePath   path of the image
     * \param hwInfo           the record; unchanged if the function returns false
     *
     * \return true if the block is complete and its checksum matches
     *
     * A field that is missing from a valid block becomes empty, with a warning (see
     * HardwareVersionIniManager). An EEPROM that was never written, all bytes 0xFF, returns false.
     * An image of zeros is a valid empty block, since the checksum of no data is 0: it returns true
     * and six empty fields.
     *
     * Logs, in the order of the checks: debug "Can't find eeprom binary file", debug "Can't open
     * eeprom binary file", and the warnings "Number of INI header bytes is", "Seek to start addr",
     * "Max. number of bytes for INI file exceeded", "Number of INI file bytes is" (with the numbers
     * of the header), "Invalid checksum for INI block in eeprom binary file"; each with the path.
     */
    bool readHardwareInfoFromSysFs(const QString& tempFileTemplate, const QString& eepromFilePath,
                                   HardwareInfo& hwInfo);

    /*!
     * \brief Returns the first four of \a bytes as an unsigned little-endian number.
     *
     * If bytes are missing, each incomplete 16-bit half counts as zero.
     */
    quint32 bytes2Uint32(const QByteArray& bytes) const;

    /*!
     * \brief Returns the CRC-16/XMODEM of \a length bytes at \a data; 0 if there are none.
     *
     * Polynomial 0x1021, initial value 0, not reflected, no final XOR; the check value for
     * "123456789" is 0x31C3.
     */
    quint16 checksumXModemCRC(const char* data, unsigned int length);

    /*!
     * \brief Parses the INI text \a iniData into \a hwInfo.
     *
     * Sets all six fields; one that cannot be read becomes empty, with the warning that
     * HardwareVersionIniManager documents.
     */
    void data2HwInfo(const QByteArray& iniData, const QString& tempFileTemplate,
                     HardwareInfo& hwInfo);

    /*! \brief The checksum of each single byte, indexed by the byte. */
    static const quint16 sm_CrcLookupTable[256];

private:
    // A part of the header; offset and size are in bytes.
    struct Field
    {
        int offset;
        int size;
    };

    const int m_headerAddress;
    const int m_headerSize;
    const Field m_reservedField; // not evaluated
    const Field m_startAddressField;
    const Field m_bytesToReadField;
    const Field m_checksumField;
};

#endif
