#include "LiteralHardwareId.h"

#include <QtCore/QDebug>
#include <QtCore/QRegExp>

LiteralHardwareId::Parts LiteralHardwareId::partsOf(const HardwareIdentification& id)
{
    return {id.isHardwareIDValid(),
            {id.getProductGroupNumber(), id.getBasicTypeSupplement(),
             id.getDocumentTypeCountingNumber(), id.getCustomerVersion(), id.getPartsListSales()}};
}

char* LiteralHardwareId::toString(const Parts& parts)
{
    return qstrdup(QByteArray((parts.isValid ? "valid <" : "invalid <") +
                              parts.texts.join("> <").toUtf8() + '>'));
}

bool LiteralHardwareId::containsOnlyNumbers(const QString& id)
{
    return id.indexOf(QRegExp("[0-9]{16,16}", Qt::CaseSensitive), 0) != -1;
}

LiteralHardwareId::Outcome LiteralHardwareId::divide(const QString& id, Parts& parts)
{
    if (id.length() != 16) {
        qWarning() << "Size of hardware ID is invalid" << id.length();
        return Outcome::WrongSize;
    }
    if (!containsOnlyNumbers(id)) {
        qWarning() << "Hardware ID contains not only numbers" << id;
        return Outcome::NotOnlyNumbers;
    }
    const QString documentType = id.mid(8, 3);
    const QString partsList = id.mid(14, 2);
    if (documentType.contains("000", Qt::CaseSensitive)) {
        qWarning() << "Document type count number is invalid " << documentType;
        return Outcome::NoDocumentType;
    }
    if (partsList.contains("00", Qt::CaseSensitive)) {
        qWarning() << "Parts list paragrpah is invalid " << partsList;
        return Outcome::NoPartsList;
    }
    parts.isValid = true;
    parts.texts = QStringList({id.mid(0, 6), id.mid(6, 2), documentType, id.mid(11, 3), partsList});
    return Outcome::Valid;
}
