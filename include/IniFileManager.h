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
 * Use it for settings that several threads read and write, or whose errors should appear in the
 * log with the name of the file. A value that only one thread reads once needs no more than
 * QSettings. Keys before the first section and in the section [General] are accessed with the
 * functions with "General" in their name, all others through their group, which is the name of the
 * section. A key or group that is missing or invalid returns the caller's default and logs one
 * warning that names the file.
 *
 * \snippet IniFileManager.cpp read
 *
 * \par Contract
 * - **Threads:** thread-safe, except cleanUp() and the list sm_CleanUpFunctions. Every call holds
 *   the object's recursive mutex, except getGroups(), sync() and getGeneralLogInfo(), which never
 *   wait for it. Warnings are logged while the mutex is held: a message handler may call back into
 *   the same object, but must not wait for another thread that uses it. The event loop of the
 *   thread that created the object flushes pending writes, too.
 * - **Durability:** after sync(), the flush of the event loop, the destructor or cleanUp(), a power
 *   cut does not restore the previous file.
 * - **Ownership:** the object owns everything that it uses; it cannot be copied.
 * - **Errors:** nothing throws. A missing file is a warning, and the object remains usable.
 * - **Log messages:** documented with each function; see
 *   \ref log-messages-inifilemanager "log messages of IniFileManager". All warnings except those of
 *   the constructor and of cleanUp() begin with getGeneralLogInfo().
 * - **Units and formats:** QSettings::IniFormat: a value with an unquoted comma is a list, ';'
 *   starts a comment, keys and groups are case-sensitive. Managers and QSettings objects on the
 *   same path in one process share their unsynced writes.
 *
 * \sa \ref ini-files, \ref threads, \ref gotchas
 * \since 1.0
 */
class MISCTOOLS_EXPORT IniFileManager
{
public:
    /*!
     * \brief Opens the file at \a filePath; does not create it.
     *
     * \param filePath  path of the INI file
     * \param codecName name of the codec of the file's values, such as "UTF-8"; null for that of
     *                  QSettings, which is Latin-1 with escapes. An unknown name counts as null.
     *
     * If the file does not exist, logs the warning "Can't find specified ini-file:" with the path.
     * Reads then find nothing, and the first sync after a write creates the file.
     */
    IniFileManager(const QString& filePath, const char* codecName);

    /*! \brief Writes pending changes, as durably as sync(). */
    ~IniFileManager();

    /*!
     * \brief Writes pending changes and reads those of other processes. Does not lock the object.
     *
     * Waits while another process writes. A lock file whose owner no longer runs is removed
     * immediately; one whose owner is unknown (from another host, or empty) after 30 seconds.
     * If QSettings cannot write, the changes remain pending. With Qt 5.15, a disk that becomes full
     * during the write leaves an empty file, which the next sync with a change replaces.
     *
     * Written changes are durable when the function returns: a later power cut does not restore the
     * old file, provided that file system and disk honor flushes. If the file was not replaced,
     * nothing is flushed. Other calls on the object do not wait for the flush of the directory. A
     * failed flush of the directory is not reported.
     */
    void sync();

    /*! \brief Returns the names of all top-level groups, sorted. Does not lock the object. */
    QStringList getGroups() const;

    /*! \brief Returns the number of top-level groups. */
    int getCount() const;

    /*!
     * \brief Returns the beginning of every warning: "Ini-File (<path>):". Does not lock the
     *        object.
     */
    QString getGeneralLogInfo() const;

    /*!
     * \brief Rewrites the file at \a filePath so that QSettings reads it as its author intended.
     *
     * Applies every function of sm_CleanUpFunctions to the entire text and replaces the file
     * atomically and durably, even if nothing changed. Removes carriage returns, a byte order mark,
     * and everything from the first zero byte on. Call it before a manager is opened on the file,
     * never while a manager writes to it.
     *
     * If the file cannot be opened for reading or writing, logs the warning "Can not open file:"
     * with the path, and does not change the file. Logs the warning "Function pointer is Null." for
     * each null pointer in the list. If the old text cannot be read to its end (which is the case
     * for 2 GiB or more), or the new text cannot be written, as on a full disk, the file is not
     * changed, and nothing is logged.
     *
     * The new file is owned by the caller. A device node or a FIFO is replaced by a regular file.
     */
    static void cleanUp(const QString& filePath);

    /*! \brief Replaces every "%23" in \a text with "#". */
    static void cleanUpComments(QString& text);

    /*!
     * \brief Replaces every comma in \a text with a space, so that no value becomes a list.
     *
     * This includes keys, section names and comments. (The spelling of the name is public.)
     */
    static void cleanUpListSeperators(QString& text);

    /*!
     * \brief The steps of cleanUp(), in order: cleanUpComments, cleanUpListSeperators.
     *
     * Applications may change the list before any thread calls cleanUp().
     */
    static QList<void (*)(QString&)> sm_CleanUpFunctions;

    /*! \name Keys outside all groups (section [General]) */
    /*! @{ */

    /*! \brief Writes \a value under \a key. An empty key logs "Key is empty!" and writes nothing.
     */
    void setGeneralValue(const QString& key, const QVariant& value);

    /*!
     * \brief Removes \a key and its subkeys. An empty key logs "Key is empty!" and removes nothing.
     *
     * As in QSettings::remove(), a key that consists of slashes removes all keys of the file.
     */
    void removeGeneralValue(const QString& key);

    /*! \brief Returns true if \a key exists. An empty key logs "Key is empty!" and returns false.
     */
    bool containsGeneral(const QString& key);

    /*!
     * \brief Returns the value of \a key, or \a defaultValue with one warning.
     *
     * Logs "Key is empty!", or "Key", the key, "not found in section 'General'!" if \a key is not
     * one of getGeneralChildKeys().
     */
    QVariant getGeneralValue(const QString& key, const QVariant& defaultValue) const;

    /*!
     * \brief Returns the value of \a key as a number.
     *
     * Like getGeneralValue(); a value that is not an int logs "Conversion failed:" with the value
     * and returns \a defaultValue. A 64-bit number is truncated to its low 32 bits.
     */
    int getGeneralValueInteger(const QString& key, int defaultValue) const;

    /*! \brief Returns the value of \a key as a string, empty for a list. Like getGeneralValue(). */
    QString getGeneralValueString(const QString& key, const QString& defaultValue) const;

    /*! \brief Returns the value of \a key by QVariant::toBool(). Like getGeneralValue(). */
    bool getGeneralValueBool(const QString& key, bool defaultValue) const;

    /*! \brief Returns the keys outside all groups, sorted. */
    QStringList getGeneralChildKeys() const;

    /*! @} */
    /*! \name Keys in a group */
    /*! @{ */

    /*!
     * \brief Writes \a value under \a key in \a group.
     *
     * An empty group logs "Group is empty!", else an empty key "Key is empty!"; neither writes.
     */
    void setValue(const QString& group, const QString& key, const QVariant& value);

    /*!
     * \brief Removes \a key and its subkeys from \a group.
     *
     * An empty group logs "Group is empty!", else an empty key "Key is empty!"; neither removes
     * anything. As in QSettings::remove(), a key that consists of slashes removes the whole group.
     */
    void removeValue(const QString& group, const QString& key);

    /*!
     * \brief Returns true if \a key exists in \a group; an empty group means the top level.
     *
     * An empty key logs "Key is empty!" and returns false. If the file has subsections of \a group,
     * such as [Net/Alias] besides [Net], QSettings finds a key only after its section has been
     * parsed. Every listing and getValue() parse it: call one of them first.
     */
    bool contains(const QString& group, const QString& key) const;

    /*!
     * \brief Returns the value of \a key in \a group, or \a defaultValue with one warning.
     *
     * Logs "Key is empty!", or "Key", the key, "not found in Group", the group, "!" if \a key is
     * not one of getChildKeys(). An empty group means the top level.
     */
    QVariant getValue(const QString& group, const QString& key, const QVariant& defaultValue) const;

    /*!
     * \brief Returns the value of \a key in \a group as a number.
     *
     * Like getValue(); a value that is not an int logs "Conversion failed:" with the value and
     * returns \a defaultValue. A 64-bit number is truncated to its low 32 bits.
     */
    int getValueInteger(const QString& group, const QString& key, int defaultValue) const;

    /*! \brief Returns the value of \a key in \a group as a string, empty for a list. Like
     * getValue().
     */
    QString getValueString(const QString& group, const QString& key,
                           const QString& defaultValue) const;

    /*! \brief Returns the value of \a key in \a group by QVariant::toBool(). Like getValue(). */
    bool getValueBool(const QString& group, const QString& key, bool defaultValue) const;

    /*!
     * \brief Returns the groups whose names begin with a match of \a filter, sorted.
     *
     * \param filter a regular expression, which is inserted unchanged between "^" and ".*": in an
     *               alternation, the anchor applies to the first branch only. An empty filter
     *               matches every group, an invalid one none. A group whose match exceeds the match
     *               limit is omitted; this is not reported.
     */
    QStringList getGroups(const QString& filter) const;

    /*! \brief Returns true if \a group is one of getGroups(), compared case-sensitively. */
    bool containsGroup(const QString& group) const;

    /*! \brief Returns the keys directly in \a group, sorted, without those of its subgroups. */
    QStringList getChildKeys(const QString& group) const;

    /*!
     * \brief Returns all keys of \a group with their values; an empty map for an unknown group.
     *
     * A nameless key ("=5" in the file) logs "Key is empty!" and has an invalid value.
     */
    QMap<QString, QVariant> getGroupValues(const QString& group) const;

    /*! @} */
    /*!
     * \name Groups by their "Position"
     *
     * A file may hold a list of similar records, one group each; the number under the key
     * "Position" is the index in the list. A group without that key, or with a value that is not a
     * number, has Position 0, with the warning of getValueInteger() each time it is examined.
     * Positions are expected to range from 0 to the number of groups minus one; higher ones are
     * never found. A search examines the groups in the order of getGroups() and returns the first
     * match. A nameless group ("[]" in the file) is one of them, but its empty name means the top
     * level here, too, so the keys outside all groups are read.
     */
    /*! @{ */

    /*!
     * \brief Finds the group whose "Position" is \a externalIndex.
     *
     * \param externalIndex the Position; negative ones are searched for, too
     * \param groupIndex    the group's index in getGroups(); unchanged if there is no such group
     * \return true if there is such a group
     *
     * Logs "Invalid external index!" if \a externalIndex is not less than the number of groups.
     */
    bool searchIndex(int externalIndex, int& groupIndex) const;

    /*!
     * \brief Returns the value of \a key in the group at Position \a externalIndex, as a number.
     *
     * Logs "Invalid group index!" if \a externalIndex is not less than the number of groups, and
     * "Index not found in group!" if no group has that Position; both return \a defaultValue.
     * Otherwise like the function of the same name that takes the group.
     */
    int getValueInteger(int externalIndex, const QString& key, int defaultValue) const;

    /*! \brief Like the function above, as a string. */
    QString getValueString(int externalIndex, const QString& key,
                           const QString& defaultValue) const;

    /*! \brief Like the function above, by QVariant::toBool(). */
    bool getValueBool(int externalIndex, const QString& key, bool defaultValue) const;

    /*! @} */

private:
    Q_DISABLE_COPY(IniFileManager)

    // Mutable, as reading a group enters it temporarily.
    mutable QSettings m_settings;
    mutable QMutex m_mutex;
};

#endif
