#ifndef MISCTOOLS_INIFILEMANAGER_H
#define MISCTOOLS_INIFILEMANAGER_H

#include "MiscToolsGlobal.h"

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QMutex>
#include <QtCore/QSettings>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

/*!
 * \brief Reads and writes one INI file, safely from several threads.
 *
 * \snippet IniFileManager.cpp read
 *
 * The manager wraps a QSettings object in INI format. Keys that stand in no section, or in the
 * section [General], are reached through the functions with "General" in their name; all others
 * through their group, which is the name of the section. Every miss and every misuse is answered
 * with the caller's default and one warning that names the file.
 *
 * \par Contract
 * - **Threads:** one object may be shared. Every call holds the object's recursive mutex, except
 *   getGroups(), sync() and getGeneralLogInfo(), which never wait for that mutex and may run beside
 *   every other call. Warnings are made while the mutex is held: a message handler may call back
 *   into the same object, but must not wait for another thread that uses it. Pending writes are
 *   also flushed by the event loop of the thread that made the object, which is safe beside all
 *   calls and durable as sync() is. cleanUp() and the list sm_CleanUpFunctions are not
 * synchronized.
 * - **Ownership:** the object owns all that it uses; it cannot be copied.
 * - **Errors:** nothing throws. A missing file is a warning, and the object stays usable; each
 *   function says what else it logs. Every warning but those of the constructor and of cleanUp()
 *   begins with getGeneralLogInfo().
 * - **Units and formats:** the INI dialect is that of QSettings::IniFormat: a value with an
 *   unquoted comma is a list, ';' starts a comment, keys and groups are case-sensitive. Managers
 *   and QSettings objects on the same path in one process share their unsynced writes.
 *
 * \since 1.0
 */
class MISCTOOLS_EXPORT IniFileManager
{
public:
    /*!
     * \brief Opens the file at \a filePath; the file is never created here.
     *
     * \param filePath  path of the INI file
     * \param codecName name of the codec of the file's values, such as "UTF-8"; null for that of
     *                  QSettings, which is Latin-1 with escapes. An unknown name counts as null.
     *
     * When the file does not exist, warns "Can't find specified ini-file:" with the path; reads
     * then find nothing and the first write creates the file at the next sync.
     */
    IniFileManager(const QString& filePath, const char* codecName);

    /*! \brief Writes what is still pending, as QSettings does, durably as sync() does. */
    ~IniFileManager();

    /*!
     * \brief Writes pending changes and reads what others changed. Takes no lock.
     *
     * While another process writes, this waits; a lock whose owner is dead is taken at once, one of
     * which that cannot be told (of another host, or empty) when it is half a minute old. Where
     * QSettings may not write, the changes stay pending. With QSettings of Qt 5.15 a disk that
     * becomes full just then leaves an empty file, which the next sync with a change replaces.
     *
     * What was written is durable then: no power cut after the return brings the old file back, as
     * far as the file system and the disk can promise that. When nothing was replaced, nothing is
     * flushed. Other calls on the object do not wait for the flush of the directory. A failure of
     * it is silent.
     */
    void sync();

    /*! \brief The names of all top-level groups, sorted. Takes no lock. */
    QStringList getGroups() const;

    /*! \brief The number of top-level groups. */
    int getCount() const;

    /*! \brief The beginning of every warning: "Ini-File (<path>):". Takes no lock. */
    QString getGeneralLogInfo() const;

    /*!
     * \brief Rewrites the file at \a filePath so that QSettings reads it as its author meant it.
     *
     * Runs every function of sm_CleanUpFunctions over the whole text and replaces the file
     * atomically and durably, also when nothing changed. Carriage returns and a byte order mark are
     * dropped, and so is everything from the first zero byte on. Call it before a manager is opened
     * on the file, never while one writes.
     *
     * Warns "Can not open file:" with the path, and leaves the file as it was, when it cannot be
     * opened for reading or writing; warns "Function pointer is Null." for each null in the list.
     * When the old text cannot be read to its end (2 GiB or more never can), or the new one cannot
     * be written, as on a full disk, the file stays as it was, too, but nothing is logged.
     *
     * The file is replaced: it belongs to the caller afterwards, and what is no regular file, such
     * as a device node or a FIFO, becomes one.
     */
    static void cleanUp(const QString& filePath);

    /*! \brief Replaces every "%23" in \a text by "#". */
    static void cleanUpComments(QString& text);

    /*!
     * \brief Replaces every comma in \a text by a blank, so that no value becomes a list.
     *
     * Keys, section names and comments are not spared. (The spelling of the name is public.)
     */
    static void cleanUpListSeperators(QString& text);

    /*!
     * \brief The steps of cleanUp(), in order: cleanUpComments, cleanUpListSeperators.
     *
     * Applications may change the list before any thread calls cleanUp().
     */
    static QList<void (*)(QString&)> sm_CleanUpFunctions;

    /*! \name Keys outside every group (section [General]) */
    /*! @{ */

    /*! \brief Writes \a value under \a key. Empty key: warns "Key is empty!", writes nothing. */
    void setGeneralValue(const QString& key, const QVariant& value);

    /*!
     * \brief Removes \a key and everything below it. Empty key: warns "Key is empty!".
     *
     * A key made only of slashes stands for the whole file, as QSettings::remove() has it.
     */
    void removeGeneralValue(const QString& key);

    /*! \brief Whether \a key exists. Empty key: warns "Key is empty!", false. */
    bool containsGeneral(const QString& key);

    /*!
     * \brief The value of \a key, or \a defaultValue with one warning.
     *
     * Warns "Key is empty!", or "Key", the key, "not found in section 'General'!" when \a key is
     * not one of getGeneralChildKeys().
     */
    QVariant getGeneralValue(const QString& key, const QVariant& defaultValue) const;

    /*!
     * \brief The value of \a key as a number.
     *
     * As getGeneralValue(); a value that is no int warns "Conversion failed:" with the value and
     * gives \a defaultValue. A 64-bit number in the file is cut to its low 32 bits.
     */
    int getGeneralValueInteger(const QString& key, int defaultValue) const;

    /*! \brief The value of \a key as text; a list gives an empty text. As getGeneralValue(). */
    QString getGeneralValueString(const QString& key, const QString& defaultValue) const;

    /*! \brief The value of \a key as QVariant::toBool() has it. As getGeneralValue(). */
    bool getGeneralValueBool(const QString& key, bool defaultValue) const;

    /*! \brief The keys outside every group, sorted. */
    QStringList getGeneralChildKeys() const;

    /*! @} */
    /*! \name Keys in a group */
    /*! @{ */

    /*!
     * \brief Writes \a value under \a key in \a group.
     *
     * Warns "Group is empty!", else "Key is empty!", and writes nothing.
     */
    void setValue(const QString& group, const QString& key, const QVariant& value);

    /*!
     * \brief Removes \a key, and everything below it, from \a group.
     *
     * Warns "Group is empty!", else "Key is empty!", and removes nothing. A key made only of
     * slashes stands for the whole group, as QSettings::remove() has it.
     */
    void removeValue(const QString& group, const QString& key);

    /*!
     * \brief Whether \a key exists in \a group; an empty group stands for the top level.
     *
     * Empty key: warns "Key is empty!", false. Where the file has subsections of \a group, such as
     * [Net/Alias] beside [Net], QSettings finds a key only once its section is parsed, which every
     * listing and getValue() does: call one of them first.
     */
    bool contains(const QString& group, const QString& key) const;

    /*!
     * \brief The value of \a key in \a group, or \a defaultValue with one warning.
     *
     * Warns "Key is empty!", or "Key", the key, "not found in Group", the group, "!" when \a key is
     * not one of getChildKeys(). An empty group stands for the top level.
     */
    QVariant getValue(const QString& group, const QString& key, const QVariant& defaultValue) const;

    /*!
     * \brief The value of \a key in \a group as a number.
     *
     * As getValue(); a value that is no int warns "Conversion failed:" with the value and gives
     * \a defaultValue. A 64-bit number in the file is cut to its low 32 bits.
     */
    int getValueInteger(const QString& group, const QString& key, int defaultValue) const;

    /*! \brief The value of \a key in \a group as text; a list gives an empty text. As getValue().
     */
    QString getValueString(const QString& group, const QString& key,
                           const QString& defaultValue) const;

    /*! \brief The value of \a key in \a group as QVariant::toBool() has it. As getValue(). */
    bool getValueBool(const QString& group, const QString& key, bool defaultValue) const;

    /*!
     * \brief The groups whose names begin with a match of \a filter, sorted.
     *
     * \param filter a regular expression, put between "^" and ".*" as it stands: an alternation's
     *               anchor holds for its first branch only. An empty filter matches every group, an
     *               invalid one none. A group over which its search takes too many steps, and is
     *               given up, is left out without a message.
     */
    QStringList getGroups(const QString& filter) const;

    /*! \brief Whether \a group is one of getGroups(), compared case-sensitively. */
    bool containsGroup(const QString& group) const;

    /*! \brief The keys that stand directly in \a group, sorted; its subgroups do not count. */
    QStringList getChildKeys(const QString& group) const;

    /*!
     * \brief All keys of \a group with their values; an unknown group gives an empty map.
     *
     * A nameless key ("=5" in the file) warns "Key is empty!" and has an invalid value.
     */
    QMap<QString, QVariant> getGroupValues(const QString& group) const;

    /*! @} */
    /*!
     * \name Groups by their "Position"
     *
     * A file may hold a list of like records, one group each, whose place in the list is the number
     * under their key "Position". A group without that key, or with one that is no number, counts
     * as Position 0, with the warning of getValueInteger() each time it is looked at. Positions
     * are expected to run from 0 to one less than the number of groups; a higher one is never
     * found. A search looks at one group after the other, in the order of getGroups(), and takes
     * the first that fits. A nameless group ("[]" in the file) is one of them, but its name stands
     * for the top level here, too, so that the keys outside every group are read.
     */
    /*! @{ */

    /*!
     * \brief Finds the group whose "Position" is \a externalIndex.
     *
     * \param externalIndex the Position; a negative one is searched for like any other
     * \param groupIndex    the group's place in getGroups(); left as it is when there is none
     * \return whether there is one
     *
     * Warns "Invalid external index!" when \a externalIndex is not below the number of groups.
     */
    bool searchIndex(int externalIndex, int& groupIndex) const;

    /*!
     * \brief The value of \a key in the group at Position \a externalIndex, as a number.
     *
     * Warns "Invalid group index!" when \a externalIndex is not below the number of groups, and
     * "Index not found in group!" when no group has that Position; both give \a defaultValue. Else
     * as the function of the same name that takes the group.
     */
    int getValueInteger(int externalIndex, const QString& key, int defaultValue) const;

    /*! \brief As above, as text. */
    QString getValueString(int externalIndex, const QString& key,
                           const QString& defaultValue) const;

    /*! \brief As above, as QVariant::toBool() has it. */
    bool getValueBool(int externalIndex, const QString& key, bool defaultValue) const;

    /*! @} */

private:
    Q_DISABLE_COPY(IniFileManager)

    // Mutable, as reading a group enters it for a moment.
    mutable QSettings m_settings;
    mutable QMutex m_mutex;
};

#endif
