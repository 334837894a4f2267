#ifndef MISCTOOLS_HARDWAREINFO_H
#define MISCTOOLS_HARDWAREINFO_H

#include "MiscToolsGlobal.h"

#include <QtCore/QString>

/*!
 * \brief What a board says of itself: six texts, all empty until somebody sets them.
 *
 * \snippet HardwareInfo.cpp record
 *
 * HardwareInfoReader fills a record from the board's EEPROM.
 *
 * \par Contract
 * - **Threads:** a plain value; one thread at a time.
 * - **Ownership:** copies are independent; getters return copies.
 * - **Errors:** none.
 * - **Units and formats:** the texts stand as the board's INI block holds them, unchecked.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT HardwareInfo
{
public:
    /*! \brief An empty record. */
    HardwareInfo();
    virtual ~HardwareInfo();

    /*! \brief An independent copy. */
    HardwareInfo(const HardwareInfo&) = default;
    /*! \brief Makes this an independent copy. */
    HardwareInfo& operator=(const HardwareInfo&) = default;

    /*! \brief The board's type; key "Type". */
    QString type() const;
    /*! \brief Sets type(). */
    void setType(const QString& type);

    /*! \brief The type's name for people; key "TypeName". */
    QString typeName() const;
    /*! \brief Sets typeName(). */
    void setTypeName(const QString& typeName);

    /*! \brief The hardware's version; key "Version". */
    QString hwVersion() const;
    /*! \brief Sets hwVersion(). */
    void setHwVersion(const QString& hwVersion);

    /*! \brief The hardware's compatibility index; key "CompatibilityIndex". */
    QString hwCompIndex() const;
    /*! \brief Sets hwCompIndex(). */
    void setHwCompIndex(const QString& hwCompIndex);

    /*! \brief The LP-ID; key "LP-ID". */
    QString lpId() const;
    /*! \brief Sets lpId(). */
    void setLpId(const QString& lpId);

    /*! \brief The comment; key "Comment". (The capital letter is part of the interface.) */
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
