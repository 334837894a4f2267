#ifndef MISCTOOLS_HARDWAREVERSIONINIMANAGER_H
#define MISCTOOLS_HARDWAREVERSIONINIMANAGER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QTemporaryFile>

class IniFileManager;

/*!
 * \brief Reads the six hardware fields from an INI text in memory.
 *
 * HardwareInfoReader uses it for the INI text of an EEPROM image. Use it directly if the text comes
 * from elsewhere. For an INI file that already exists, use IniFileManager instead: this class
 * writes the text to a temporary file, which exists from construction to destruction. The keys are
 * at the top level of the text; keys in a named section are not found.
 *
 * \snippet HardwareVersionIniManager.cpp fields
 *
 * \par Contract
 * - **Threads:** reentrant; one object must not be used in two threads at a time. The functions
 *   that return names of keys and of the section are thread-safe.
 * - **Ownership:** the object owns its temporary file and removes it on destruction.
 * - **Errors:** nothing throws. If the text cannot be written to a file, every value is empty. An
 *   empty text counts as a write error.
 * - **Log messages:** without a file, one at construction ("Can't open temporary file for version
 *   data!" or "Error on writing to temporary file for version data!") and one for each read; see
 *   \ref log-messages-hardwareversioninimanager "log messages of HardwareVersionIniManager".
 * - **Units and formats:** the INI dialect is that of IniFileManager without a codec.
 *
 * \sa \ref hardware, \ref formats
 * \since 1.0
 */
class MISCTOOLS_EXPORT HardwareVersionIniManager
{
public:
    /*!
     * \brief Writes \a data to a temporary file and opens it.
     *
     * \param data         the INI text
     * \param fileTemplate template for the path of the file, as for
     *                     QTemporaryFile::setFileTemplate()
     */
    HardwareVersionIniManager(const QByteArray& data, const QString& fileTemplate);

    /*! \brief Closes and removes the temporary file. */
    virtual ~HardwareVersionIniManager();

    /*! \brief Returns the value of "Type". See getStringValueFromIniFile(). */
    QString getType() const;
    /*! \brief Returns the value of "TypeName". See getStringValueFromIniFile(). */
    QString getTypeName() const;
    /*! \brief Returns the value of "CompatibilityIndex". See getStringValueFromIniFile(). */
    QString getHwCompatibilityIndex() const;
    /*! \brief Returns the value of "Version". See getStringValueFromIniFile(). */
    QString getHwVersion() const;
    /*! \brief Returns the value of "LP-ID". See getStringValueFromIniFile(). */
    QString getLpIdNumber() const;

    /*!
     * \brief Returns the value of "Comment". The key is optional: if it is missing, the value is
     *        empty and nothing is logged.
     *
     * Without a file, warns "No valid IniFileManager object for accessing section", the section,
     * "with key", the key, "!".
     */
    QString getComment() const;

    /*!
     * \brief Returns the value of \a key in \a section; empty if there is none.
     *
     * A missing key logs the warning of IniFileManager::getValueString(). Without a file, warns "No
     * valid 'IniFileManager' object for accessing section", the section, "with key", the key, "!".
     */
    QString getStringValueFromIniFile(const QString& section, const QString& key) const;

    /*! \brief Returns the section of the keys: the empty string, which means the top level. */
    const QString& getVersionDataGroup() const;
    /*! \brief Returns "Type". */
    const QString& getKeyType() const;
    /*! \brief Returns "TypeName". */
    const QString& getKeyTypeName() const;
    /*! \brief Returns "CompatibilityIndex". */
    const QString& getKeyHwCompIndex() const;
    /*! \brief Returns "Version". */
    const QString& getKeyHwVersion() const;
    /*! \brief Returns "LP-ID". */
    const QString& getKeyLpIdNumber() const;
    /*! \brief Returns "Comment". */
    const QString& getKeyComment() const;

private:
    Q_DISABLE_COPY(HardwareVersionIniManager)

    QSharedPointer<IniFileManager> m_iniFileManager; // null if there is no file to read
    QTemporaryFile m_tempFile;
};

#endif
