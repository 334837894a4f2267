#include "HardwareIdentification.h"

#include "common/Log.h"

#include <QtCore/QRegExp>

HardwareIdentification::HardwareIdentification(const QString& hardwareId) : m_isValid(false)
{
    divideHardwareID(hardwareId);
}

HardwareIdentification::~HardwareIdentification() = default;

void HardwareIdentification::divideHardwareID(const QString& hardwareId)
{
    m_isValid = false;
    m_productGroupNumber.clear();
    m_basicTypeSupplement.clear();
    m_documentTypeCountingNumber.clear();
    m_customerVersion.clear();
    m_partsListSales.clear();

    if (hardwareId.length() != 16) {
        MISCTOOLS_LOG(HardwareIdentification).warning()
            << "Size of hardware ID is invalid" << hardwareId.length();
        return;
    }
    if (!containsHardwareIDOnlyNumbers(hardwareId)) {
        MISCTOOLS_LOG(HardwareIdentification).warning()
            << "Hardware ID contains not only numbers" << hardwareId;
        return;
    }
    // The trailing space of the two messages below and their spelling are intentional.
    const QString documentTypeCountingNumber = hardwareId.mid(8, 3);
    const QString partsListSales = hardwareId.mid(14, 2);
    if (documentTypeCountingNumber == QLatin1String("000")) {
        MISCTOOLS_LOG(HardwareIdentification).warning()
            << "Document type count number is invalid " << documentTypeCountingNumber;
        return;
    }
    if (partsListSales == QLatin1String("00")) {
        MISCTOOLS_LOG(HardwareIdentification).warning()
            << "Parts list paragrpah is invalid " << partsListSales;
        return;
    }

    m_isValid = true;
    m_productGroupNumber = hardwareId.left(6);
    m_basicTypeSupplement = hardwareId.mid(6, 2);
    m_documentTypeCountingNumber = documentTypeCountingNumber;
    m_customerVersion = hardwareId.mid(11, 3);
    m_partsListSales = partsListSales;
}

bool HardwareIdentification::containsHardwareIDOnlyNumbers(const QString& hardwareId) const
{
    return hardwareId.contains(QRegExp(QStringLiteral("[0-9]{16,16}")));
}

bool HardwareIdentification::isHardwareIDValid() const
{
    return m_isValid;
}

QString HardwareIdentification::getProductGroupNumber() const
{
    return m_productGroupNumber;
}

QString HardwareIdentification::getBasicTypeSupplement() const
{
    return m_basicTypeSupplement;
}

QString HardwareIdentification::getDocumentTypeCountingNumber() const
{
    return m_documentTypeCountingNumber;
}

QString HardwareIdentification::getCustomerVersion() const
{
    return m_customerVersion;
}

QString HardwareIdentification::getPartsListSales() const
{
    return m_partsListSales;
}
