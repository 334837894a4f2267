#include "IniFileManager.h"

#include "common/DirectoryFlush.h"
#include "common/Log.h"

#include <QtCore/QEvent>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMutexLocker>
#include <QtCore/QRegularExpression>

#include <mutex>
#include <optional>

#include <sys/stat.h>

namespace {

constexpr char keyIsEmpty[] = "Key is empty!";
constexpr char groupIsEmpty[] = "Group is empty!";

// The identity of the file at a path; all zeros if there is none. Inode or change time differ after
// the file has been replaced.
struct FileIdentity
{
    dev_t device = 0;
    ino_t inode = 0;
    timespec changeTime = {};

    static FileIdentity of(const QString& path)
    {
        struct stat status = {};
        if (stat(QFile::encodeName(path).constData(), &status) != 0) {
            return {};
        }
        return {status.st_dev, status.st_ino, status.st_ctim};
    }

    bool operator==(const FileIdentity& other) const
    {
        return device == other.device && inode == other.inode &&
               changeTime.tv_sec == other.changeTime.tv_sec &&
               changeTime.tv_nsec == other.changeTime.tv_nsec;
    }
};

/*
 * Guards the per-object state that QSettings does not lock: the current group, the flag for pending
 * changes, and the status, which every read may set. The manager's mutex cannot serve, since
 * getGroups() and sync() must not wait for it. The guard is held for one QSettings operation at a
 * time and never while a message is logged.
 *
 * It is the only child of the settings object, since the manager's layout is part of the binary
 * interface. As that object's event filter, it also covers the flush that QSettings posts to its
 * event loop: without the guard, a write between the flush and the reset of the flag would remain
 * unwritten.
 *
 * It also makes the writes of QSettings durable. QSettings does not report whether it replaced the
 * file, so the file is compared with the last one that is known to be durable. This includes a file
 * with values of this manager that another manager on the path has written but not flushed; a
 * manager that only reads never flushes. The guard is not held during a flush: other threads
 * continue to read and write, and only a sync() that must guarantee the same waits for the disk.
 */
class SettingsGuard : public QObject
{
public:
    explicit SettingsGuard(QSettings* settings)
        : QObject(settings), m_filePath(settings->fileName())
    {
        settings->installEventFilter(this);
    }

    // The settings have just written pending changes.
    ~SettingsGuard() override
    {
        if (unflushedFile()) {
            flush();
        }
    }

    Q_DISABLE_COPY(SettingsGuard)

    static std::mutex& of(const QSettings& settings) { return guardOf(settings).m_mutex; }

    // Must be called with the guard held, before a value is written or removed.
    static void noteWrite(const QSettings& settings)
    {
        SettingsGuard& guard = guardOf(settings);
        if (!guard.m_durableFile) {
            guard.m_durableFile = FileIdentity::of(guard.m_filePath);
        }
    }

    static void sync(QSettings& settings)
    {
        SettingsGuard& guard = guardOf(settings);
        std::optional<FileIdentity> file;
        {
            const std::lock_guard<std::mutex> locker(guard.m_mutex);
            settings.sync();
            file = guard.unflushedFile();
        }
        if (!file) {
            return;
        }
        guard.flush();
        const std::lock_guard<std::mutex> locker(guard.m_mutex);
        guard.m_durableFile = file;
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::UpdateRequest) {
            return false;
        }
        // Like QSettings itself: in INI format, a flush is a sync.
        sync(*static_cast<QSettings*>(watched));
        return true;
    }

private:
    static SettingsGuard& guardOf(const QSettings& settings)
    {
        return *static_cast<SettingsGuard*>(settings.children().constFirst());
    }

    // Returns the current file unless it is known to be durable.
    std::optional<FileIdentity> unflushedFile() const
    {
        if (!m_durableFile) {
            return std::nullopt;
        }
        const FileIdentity file = FileIdentity::of(m_filePath);
        return file == *m_durableFile ? std::nullopt : std::make_optional(file);
    }

    // QSettings replaces the target of a symbolic link.
    void flush() const { flushDirectory(QFileInfo(m_filePath).canonicalPath()); }

    std::mutex m_mutex;
    const QString m_filePath;
    std::optional<FileIdentity> m_durableFile; // none until the first write
};

// Enters a group of the settings for the object's lifetime.
class GroupScope
{
public:
    GroupScope(QSettings& settings, const QString& group)
        : m_locker(SettingsGuard::of(settings)), m_settings(settings)
    {
        m_settings.beginGroup(group);
    }

    ~GroupScope() { m_settings.endGroup(); }

    Q_DISABLE_COPY(GroupScope)

private:
    const std::lock_guard<std::mutex> m_locker;
    QSettings& m_settings;
};

const QChar separator = QLatin1Char('/');

/*
 * Reads the value under a full path, "group/key". Returns false if there is none. Since the file
 * may contain an invalid value, a missing one is detected by a default that cannot be stored.
 */
bool readPath(const QSettings& settings, const QString& path, QVariant& value)
{
    static char mark;
    const QVariant missing = QVariant::fromValue(static_cast<void*>(&mark));
    QVariant found = settings.value(path, missing);
    if (found.userType() == QMetaType::VoidStar && found.value<void*>() == &mark) {
        return false;
    }
    value.swap(found);
    return true;
}

/*
 * Reads a value with the same result and side effects as listing the group's keys first: QSettings
 * parses a section on its first access, and if two sections contain a key, the one that is parsed
 * last counts.
 */
bool readKey(QSettings& settings, const QString& group, const QString& key, QVariant& value)
{
    if (!group.isEmpty() && !group.contains(separator) && !key.contains(separator)) {
        // Looking up the key that sorts before all others of the group parses the section that a
        // listing would parse, and no other. No unparsed section can then contain the key.
        const std::lock_guard<std::mutex> locker(SettingsGuard::of(settings));
        const QString prefix = group + separator;
        if (!settings.contains(prefix + QChar(QChar::Null))) {
            return readPath(settings, prefix + key, value);
        }
    }
    const GroupScope scope(settings, group);
    return settings.childKeys().contains(key) && readPath(settings, key, value);
}

// Reads a value whose section is known to be parsed.
bool readParsedKey(const QSettings& settings, const QString& group, const QString& key,
                   QVariant& value)
{
    const std::lock_guard<std::mutex> locker(SettingsGuard::of(settings));
    return readPath(settings, group + separator + key, value);
}

// The functions from here on log warnings with the context of their caller.

// Returns true if the name of a key or group is not empty; warns otherwise.
bool isGiven(const QString& name, const char* warning, const IniFileManager& file,
             const QMessageLogger& log)
{
    if (name.isEmpty()) {
        log.warning() << file.getGeneralLogInfo() << warning;
        return false;
    }
    return true;
}

// Returns the value as a number; warns and returns defaultValue if it is not one.
int toInteger(const QVariant& value, int defaultValue, const IniFileManager& file,
              const QMessageLogger& log)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    if (!ok) {
        log.warning() << file.getGeneralLogInfo() << "Conversion failed:" << value;
        return defaultValue;
    }
    return number;
}

// Returns a function that reads a group's Position as getValueInteger() does, with its warnings.
auto positionsIn(const IniFileManager& file)
{
    return [&file](const QString& group) {
        return file.getValueInteger(group, QStringLiteral("Position"), 0);
    };
}

// Returns the index in groups of the first one whose Position is externalIndex; -1 if there is
// none.
template <typename PositionOf>
int findPosition(const QStringList& groups, int externalIndex, PositionOf positionOf)
{
    for (int i = 0; i < groups.count(); ++i) {
        if (positionOf(groups.at(i)) == externalIndex) {
            return i;
        }
    }
    return -1;
}

// The same for the indexed getters; warns if there is none.
int findIndexedGroup(const IniFileManager& file, const QStringList& groups, int externalIndex,
                     const QMessageLogger& log)
{
    if (externalIndex >= groups.count()) {
        log.warning() << file.getGeneralLogInfo() << "Invalid group index!";
        return -1;
    }
    const int groupIndex = findPosition(groups, externalIndex, positionsIn(file));
    if (groupIndex < 0) {
        log.warning() << file.getGeneralLogInfo() << "Index not found in group!";
    }
    return groupIndex;
}

} // namespace

IniFileManager::IniFileManager(const QString& filePath, const char* codecName)
    : m_settings(filePath, QSettings::IniFormat), m_mutex(QMutex::Recursive)
{
    new SettingsGuard(&m_settings); // owned by the settings
    if (codecName != nullptr) {
        m_settings.setIniCodec(codecName);
    }
    if (!QFile::exists(filePath)) {
        MISCTOOLS_LOG(IniFileManager).warning() << "Can't find specified ini-file:" << filePath;
    }
}

IniFileManager::~IniFileManager() = default;

void IniFileManager::sync()
{
    SettingsGuard::sync(m_settings);
}

QStringList IniFileManager::getGroups() const
{
    const std::lock_guard<std::mutex> locker(SettingsGuard::of(m_settings));
    return m_settings.childGroups();
}

int IniFileManager::getCount() const
{
    const QMutexLocker locker(&m_mutex);
    return getGroups().count();
}

QString IniFileManager::getGeneralLogInfo() const
{
    return QStringLiteral("Ini-File (") + m_settings.fileName() + QStringLiteral("):");
}

void IniFileManager::setGeneralValue(const QString& key, const QVariant& value)
{
    const QMutexLocker locker(&m_mutex);
    if (!isGiven(key, keyIsEmpty, *this, MISCTOOLS_LOG(IniFileManager))) {
        return;
    }
    const std::lock_guard<std::mutex> settingsLocker(SettingsGuard::of(m_settings));
    SettingsGuard::noteWrite(m_settings);
    m_settings.setValue(key, value);
}

void IniFileManager::removeGeneralValue(const QString& key)
{
    const QMutexLocker locker(&m_mutex);
    if (!isGiven(key, keyIsEmpty, *this, MISCTOOLS_LOG(IniFileManager))) {
        return;
    }
    const std::lock_guard<std::mutex> settingsLocker(SettingsGuard::of(m_settings));
    SettingsGuard::noteWrite(m_settings);
    m_settings.remove(key);
}

bool IniFileManager::containsGeneral(const QString& key)
{
    const QMutexLocker locker(&m_mutex);
    if (!isGiven(key, keyIsEmpty, *this, MISCTOOLS_LOG(IniFileManager))) {
        return false;
    }
    const std::lock_guard<std::mutex> settingsLocker(SettingsGuard::of(m_settings));
    return m_settings.contains(key);
}

QVariant IniFileManager::getGeneralValue(const QString& key, const QVariant& defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    if (!isGiven(key, keyIsEmpty, *this, MISCTOOLS_LOG(IniFileManager))) {
        return defaultValue;
    }
    {
        const std::lock_guard<std::mutex> settingsLocker(SettingsGuard::of(m_settings));
        if (m_settings.childKeys().contains(key)) {
            return m_settings.value(key, defaultValue);
        }
    }
    MISCTOOLS_LOG(IniFileManager).warning()
        << getGeneralLogInfo() << "Key" << key << "not found in section 'General'!";
    return defaultValue;
}

int IniFileManager::getGeneralValueInteger(const QString& key, int defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    const QVariant value = getGeneralValue(key, QVariant(defaultValue));
    return toInteger(value, defaultValue, *this, MISCTOOLS_LOG(IniFileManager));
}

QString IniFileManager::getGeneralValueString(const QString& key, const QString& defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    return getGeneralValue(key, QVariant(defaultValue)).toString();
}

bool IniFileManager::getGeneralValueBool(const QString& key, bool defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    return getGeneralValue(key, QVariant(defaultValue)).toBool();
}

QStringList IniFileManager::getGeneralChildKeys() const
{
    const QMutexLocker locker(&m_mutex);
    const std::lock_guard<std::mutex> settingsLocker(SettingsGuard::of(m_settings));
    return m_settings.childKeys();
}

void IniFileManager::setValue(const QString& group, const QString& key, const QVariant& value)
{
    const QMutexLocker locker(&m_mutex);
    if (!isGiven(group, groupIsEmpty, *this, MISCTOOLS_LOG(IniFileManager))) {
        return;
    }
    if (!isGiven(key, keyIsEmpty, *this, MISCTOOLS_LOG(IniFileManager))) {
        return;
    }
    const GroupScope scope(m_settings, group);
    SettingsGuard::noteWrite(m_settings);
    m_settings.setValue(key, value);
}

void IniFileManager::removeValue(const QString& group, const QString& key)
{
    const QMutexLocker locker(&m_mutex);
    if (!isGiven(group, groupIsEmpty, *this, MISCTOOLS_LOG(IniFileManager))) {
        return;
    }
    if (!isGiven(key, keyIsEmpty, *this, MISCTOOLS_LOG(IniFileManager))) {
        return;
    }
    const GroupScope scope(m_settings, group);
    SettingsGuard::noteWrite(m_settings);
    m_settings.remove(key);
}

bool IniFileManager::contains(const QString& group, const QString& key) const
{
    const QMutexLocker locker(&m_mutex);
    if (!isGiven(key, keyIsEmpty, *this, MISCTOOLS_LOG(IniFileManager))) {
        return false;
    }
    const GroupScope scope(m_settings, group);
    return m_settings.contains(key);
}

QVariant IniFileManager::getValue(const QString& group, const QString& key,
                                  const QVariant& defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    if (!isGiven(key, keyIsEmpty, *this, MISCTOOLS_LOG(IniFileManager))) {
        return defaultValue;
    }
    QVariant value;
    if (readKey(m_settings, group, key, value)) {
        return value;
    }
    MISCTOOLS_LOG(IniFileManager).warning()
        << getGeneralLogInfo() << "Key" << key << "not found in Group" << group << "!";
    return defaultValue;
}

int IniFileManager::getValueInteger(const QString& group, const QString& key,
                                    int defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    const QVariant value = getValue(group, key, QVariant(defaultValue));
    return toInteger(value, defaultValue, *this, MISCTOOLS_LOG(IniFileManager));
}

QString IniFileManager::getValueString(const QString& group, const QString& key,
                                       const QString& defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    return getValue(group, key, QVariant(defaultValue)).toString();
}

bool IniFileManager::getValueBool(const QString& group, const QString& key, bool defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    return getValue(group, key, QVariant(defaultValue)).toBool();
}

QStringList IniFileManager::getGroups(const QString& filter) const
{
    const QMutexLocker locker(&m_mutex);
    const QRegularExpression beginsWithFilter(QStringLiteral("^") + filter + QStringLiteral(".*"));
    return getGroups().filter(beginsWithFilter);
}

bool IniFileManager::containsGroup(const QString& group) const
{
    const QMutexLocker locker(&m_mutex);
    return getGroups().contains(group);
}

QStringList IniFileManager::getChildKeys(const QString& group) const
{
    const QMutexLocker locker(&m_mutex);
    const GroupScope scope(m_settings, group);
    return m_settings.childKeys();
}

QMap<QString, QVariant> IniFileManager::getGroupValues(const QString& group) const
{
    const QMutexLocker locker(&m_mutex);
    QMap<QString, QVariant> values;
    const QStringList keys = getChildKeys(group);
    // The listing has parsed the group's section. For a group within groups, "a/b", each further
    // look-up may parse one more section that has keys of this group: "a" with a key "b/c".
    int unparsedSections = group.count(separator);
    for (const QString& key : keys) {
        QVariant value;
        if (key.isEmpty() || unparsedSections > 0 ||
            !readParsedKey(m_settings, group, key, value)) {
            value = getValue(group, key, QVariant());
            --unparsedSections;
        }
        values.insert(values.cend(), key, value);
    }
    return values;
}

bool IniFileManager::searchIndex(int externalIndex, int& groupIndex) const
{
    const QMutexLocker locker(&m_mutex);
    const QStringList groups = getGroups();
    if (externalIndex >= groups.count()) {
        MISCTOOLS_LOG(IniFileManager).warning() << getGeneralLogInfo() << "Invalid external index!";
        return false;
    }
    const int found = findPosition(groups, externalIndex, positionsIn(*this));
    if (found < 0) {
        return false;
    }
    groupIndex = found;
    return true;
}

// The indexed getters list the groups once, so that a sync() in another thread cannot shift them
// between finding a group and reading from it.

int IniFileManager::getValueInteger(int externalIndex, const QString& key, int defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    const QStringList groups = getGroups();
    const int groupIndex =
        findIndexedGroup(*this, groups, externalIndex, MISCTOOLS_LOG(IniFileManager));
    return groupIndex < 0 ? defaultValue
                          : getValueInteger(groups.at(groupIndex), key, defaultValue);
}

QString IniFileManager::getValueString(int externalIndex, const QString& key,
                                       const QString& defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    const QStringList groups = getGroups();
    const int groupIndex =
        findIndexedGroup(*this, groups, externalIndex, MISCTOOLS_LOG(IniFileManager));
    return groupIndex < 0 ? defaultValue : getValueString(groups.at(groupIndex), key, defaultValue);
}

bool IniFileManager::getValueBool(int externalIndex, const QString& key, bool defaultValue) const
{
    const QMutexLocker locker(&m_mutex);
    const QStringList groups = getGroups();
    const int groupIndex =
        findIndexedGroup(*this, groups, externalIndex, MISCTOOLS_LOG(IniFileManager));
    return groupIndex < 0 ? defaultValue : getValueBool(groups.at(groupIndex), key, defaultValue);
}
