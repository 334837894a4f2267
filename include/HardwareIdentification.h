#ifndef MISCTOOLS_HARDWAREIDENTIFICATION_H
#define MISCTOOLS_HARDWAREIDENTIFICATION_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Parses a device's 16-digit hardware ID.
 *
 * Use it to validate an ID and to read its parts. It checks the format alone, not whether the ID
 * was ever assigned.
 *
 * \snippet HardwareIdentification.cpp parts
 *
 * \par Contract
 * - **Threads:** reentrant; one object must not be used in two threads at a time.
 * - **Ownership:** copies are independent; getters return copies.
 * - **Errors:** nothing throws. For an ID that fails a check, isHardwareIDValid() returns false and
 *   every part is empty.
 * - **Log messages:** one warning for an invalid ID; see
 *   \ref log-messages-hardwareidentification "log messages of HardwareIdentification".
 * - **Units and formats:** sixteen digits 0 to 9, without spaces or signs.
 *
 * \sa \ref hardware, \ref formats
 * \since 1.0
 */
class MISCTOOLS_EXPORT HardwareIdentification
{
public:
    /*! \brief Parses \a hardwareId, as divideHardwareID() does. */
    HardwareIdentification(const QString& hardwareId);
    virtual ~HardwareIdentification();

    /*! \brief Copies the parts. */
    HardwareIdentification(const HardwareIdentification&) = default;
    /*! \brief Copies the parts. */
    HardwareIdentification& operator=(const HardwareIdentification&) = default;

    /*!
     * \brief Parses \a hardwareId and replaces all parts of a previous ID.
     *
     * Stops at the first check that fails, with a warning: "Size of hardware ID is invalid" with
     * the length, "Hardware ID contains not only numbers" with the ID, "Document type count number
     * is invalid " with that number if it is 000, "Parts list paragrpah is invalid " with that
     * number if it is 00.
     */
    void divideHardwareID(const QString& hardwareId);

    /*! \brief Returns true if \a hardwareId contains sixteen consecutive digits. */
    bool containsHardwareIDOnlyNumbers(const QString& hardwareId) const;

    /*! \brief Returns true if the last ID passed every check. */
    bool isHardwareIDValid() const;

    /*! \brief Returns digits 1 to 6. */
    QString getProductGroupNumber() const;
    /*! \brief Returns digits 7 and 8. */
    QString getBasicTypeSupplement() const;
    /*! \brief Returns digits 9 to 11; never 000. */
    QString getDocumentTypeCountingNumber() const;
    /*! \brief Returns digits 12 to 14. */
    QString getCustomerVersion() const;
    /*! \brief Returns digits 15 and 16; never 00. */
    QString getPartsListSales() const;

private:
    bool m_isValid;
    QString m_productGroupNumber;
    QString m_basicTypeSupplement;
    QString m_documentTypeCountingNumber;
    QString m_customerVersion;
    QString m_partsListSales;
};

#endif
