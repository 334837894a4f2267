#ifndef MISCTOOLS_HARDWAREIDENTIFICATION_H
#define MISCTOOLS_HARDWAREIDENTIFICATION_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief Takes a device's 16-digit hardware ID apart.
 *
 * \snippet HardwareIdentification.cpp parts
 *
 * \par Contract
 * - **Threads:** a plain value; one thread at a time.
 * - **Ownership:** getters return copies.
 * - **Errors:** nothing throws. An ID that fails a check is warned of once; isHardwareIDValid() is
 *   then false, and every part is empty.
 * - **Units and formats:** sixteen digits 0 to 9, without blanks or signs.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT HardwareIdentification
{
public:
    /*! \brief Takes \a hardwareId apart, as divideHardwareID(). */
    HardwareIdentification(const QString& hardwareId);
    virtual ~HardwareIdentification();

    /*! \brief An independent copy. */
    HardwareIdentification(const HardwareIdentification&) = default;
    /*! \brief Makes this an independent copy. */
    HardwareIdentification& operator=(const HardwareIdentification&) = default;

    /*!
     * \brief Takes \a hardwareId apart; what was known of another ID is forgotten first.
     *
     * The first check that fails warns, and ends it: "Size of hardware ID is invalid" with the
     * length, "Hardware ID contains not only numbers" with the ID, "Document type count number is
     * invalid " with that number when it is 000, "Parts list paragrpah is invalid " with that
     * number when it is 00.
     */
    void divideHardwareID(const QString& hardwareId);

    /*! \brief Whether sixteen digits follow each other anywhere in \a hardwareId. */
    bool containsHardwareIDOnlyNumbers(const QString& hardwareId) const;

    /*! \brief Whether the last ID passed every check. */
    bool isHardwareIDValid() const;

    /*! \brief Digits 1 to 6. */
    QString getProductGroupNumber() const;
    /*! \brief Digits 7 and 8. */
    QString getBasicTypeSupplement() const;
    /*! \brief Digits 9 to 11; never 000. */
    QString getDocumentTypeCountingNumber() const;
    /*! \brief Digits 12 to 14. */
    QString getCustomerVersion() const;
    /*! \brief Digits 15 and 16; never 00. */
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
