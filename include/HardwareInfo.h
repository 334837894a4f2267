#ifndef MISCTOOLS_HARDWAREINFO_H
#define MISCTOOLS_HARDWAREINFO_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief A board's hardware record: six strings, all empty until they are set.
 *
 * HardwareInfoReader fills a record from the board's EEPROM. Set the fields yourself for a board
 * without an EEPROM. Do not rely on a field's format: nothing validates it.
 *
 * \snippet HardwareInfo.cpp record
 *
 * \par Contract
 * - **Threads:** reentrant; one object must not be used in two threads at a time.
 * - **Ownership:** copies are independent; getters return copies.
 * - **Errors:** nothing throws.
 * - **Log messages:** none.
 * - **Units and formats:** each string is the value in the board's INI block, unchanged.
 *
 * \sa HardwareInfoReader, \ref hardware, \ref formats
 * \since 1.0
 */
class MISCTOOLS_EXPORT HardwareInfo
{
public:
    /*! \brief Creates an empty record. */
    HardwareInfo();
    virtual ~HardwareInfo();

    /*! \brief Copies the record. */
    HardwareInfo(const HardwareInfo&) = default;
    /*! \brief Copies the record. */
    HardwareInfo& operator=(const HardwareInfo&) = default;

    /*! \brief Returns the board's type; key "Type". */
    QString type() const;
    /*! \brief Sets type(). */
    void setType(const QString& type);

    /*! \brief Returns the human-readable name of the type; key "TypeName". */
    QString typeName() const;
    /*! \brief Sets typeName(). */
    void setTypeName(const QString& typeName);

    /*! \brief Returns the hardware version; key "Version". */
    QString hwVersion() const;
    /*! \brief Sets hwVersion(). */
    void setHwVersion(const QString& hwVersion);

    /*! \brief Returns the hardware compatibility index; key "CompatibilityIndex". */
    QString hwCompIndex() const;
    /*! \brief Sets hwCompIndex(). */
    void setHwCompIndex(const QString& hwCompIndex);

    /*! \brief Returns the LP-ID; key "LP-ID". */
    QString lpId() const;
    /*! \brief Sets lpId(). */
    void setLpId(const QString& lpId);

    /*! \brief Returns the comment; key "Comment". The capital C is part of the interface. */
    QString Comment() const;
    /*! \brief Sets Comment(). */
    void setComment(const QString& comment);

private:
    QString m_type;
    QString m_typeName;
    QString m_hwVersion;
    QString m_hwCompIndex;
    QString m_lpId;
    QString m_comment;
};

#endif
