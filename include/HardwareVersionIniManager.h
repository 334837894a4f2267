#ifndef MISCTOOLS_HARDWAREVERSIONINIMANAGER_H
#define MISCTOOLS_HARDWAREVERSIONINIMANAGER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QTemporaryFile>

class IniFileManager;

/*!
 * \brief Reads the six hardware fields from an INI text held in memory.
 *
 * \snippet HardwareVersionIniManager.cpp fields
 *
 * The text goes into a temporary file, which an IniFileManager reads; the file is there from
 * construction to destruction. The keys stand at the top level of the text: keys inside a named
 * section are not found.
 *
 * \par Contract
 * - **Threads:** one object, one thread. The name accessors may be called from any thread.
 * - **Ownership:** the object owns its temporary file, which goes when the object goes.
 * - **Errors:** nothing throws. When the text cannot be put into a file, that is warned of once at
 *   construction ("Can't open temporary file for version data!" or "Error on writing to temporary
 *   file for version data!"), again at each read, and every value is empty. An empty text counts
 *   as an error on writing.
 * - **Units and formats:** the INI dialect is that of IniFileManager without a codec.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT HardwareVersionIniManager
{
public:
    /*!
     * \brief Puts \a data into a temporary file and opens it.
     *
     * \param data         the INI text
     * \param fileTemplate the file's name and folder, as QTemporaryFile::setFileTemplate() takes it
     */
    HardwareVersionIniManager(const QByteArray& data, const QString& fileTemplate);

    /*! \brief Closes and removes the temporary file. */
    virtual ~HardwareVersionIniManager();

    /*! \brief The value of "Type". As getStringValueFromIniFile(). */
    QString getType() const;
    /*! \brief The value of "TypeName". As getStringValueFromIniFile(). */
    QString getTypeName() const;
    /*! \brief The value of "CompatibilityIndex". As getStringValueFromIniFile(). */
    QString getHwCompatibilityIndex() const;
    /*! \brief The value of "Version". As getStringValueFromIniFile(). */
    QString getHwVersion() const;
    /*! \brief The value of "LP-ID". As getStringValueFromIniFile(). */
    QString getLpIdNumber() const;

    /*!
     * \brief The value of "Comment"; a text without one is no fault, and nothing is logged.
     *
     * Without a file, warns "No valid IniFileManager object for accessing section", the section,
     * "with key", the key, "!".
     */
    QString getComment() const;

    /*!
     * \brief The value of \a key in \a section, empty when there is none.
     *
     * A missing key is warned of as IniFileManager::getValueString() does. Without a file, warns
     * "No valid 'IniFileManager' object for accessing section", the section, "with key", the key,
     * "!".
     */
    QString getStringValueFromIniFile(const QString& section, const QString& key) const;

    /*! \brief The section that holds the keys: the empty one, that is the top level. */
    const QString& getVersionDataGroup() const;
    /*! \brief "Type" */
    const QString& getKeyType() const;
    /*! \brief "TypeName" */
    const QString& getKeyTypeName() const;
    /*! \brief "CompatibilityIndex" */
    const QString& getKeyHwCompIndex() const;
    /*! \brief "Version" */
    const QString& getKeyHwVersion() const;
    /*! \brief "LP-ID" */
    const QString& getKeyLpIdNumber() const;
    /*! \brief "Comment" */
    const QString& getKeyComment() const;

private:
    Q_DISABLE_COPY(HardwareVersionIniManager)

    QSharedPointer<IniFileManager> m_iniFileManager; // null when there is no file to read
    QTemporaryFile m_tempFile;
};

#endif
