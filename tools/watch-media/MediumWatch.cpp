#include "MediumWatch.h"

#include "common/CommandLine.h"

#include <RecursiveFileSearchWorkerThread.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <iterator>

namespace {

constexpr int statusIntervalInMs = 100;

// Returns the elements of the sorted list names that the sorted list others does not contain.
QStringList missingIn(const QStringList& others, const QStringList& names)
{
    QStringList result;
    std::set_difference(names.begin(), names.end(), others.begin(), others.end(),
                        std::back_inserter(result));
    return result;
}

// A search without a name filter also returns "." and "..".
bool isDots(const QString& entry)
{
    const QString name = entry.section(QLatin1Char('/'), -1);
    return name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..");
}

} // namespace

MediumWatch::MediumWatch(const WatchOptions& options)
    : m_options(options)
    , m_filter(options.patterns, QDir::Files) // case-insensitive, like MediaWatcher
    , m_mediaWatcher(nullptr)
    , m_report(options.name, options.isJson)
    , m_mounts(QStringLiteral("/proc/self/mountinfo"))
{
    m_mediaWatcher.setRecursive(options.isRecursive);
    m_mediaWatcher.setFileMatchPatternList(options.patterns);
    m_threadPool.setMaxThreadCount(1);
    m_idleTimer.setSingleShot(true);
    m_idleTimer.setTimerType(Qt::PreciseTimer);

    connect(&m_mediaWatcher, &MediaWatcher::filesFound, this, &MediumWatch::listMedium);
    connect(&m_idleTimer, &QTimer::timeout, this, [this] { finish(Ended); });
    connect(&m_statusTimer, &QTimer::timeout, this, &MediumWatch::showStatus);
}

MediumWatch::Place MediumWatch::placeOf(const QString& directory)
{
    struct stat status = {};
    struct stat parent = {};
    if (stat(QFile::encodeName(directory).constData(), &status) != 0 ||
        stat(QFile::encodeName(directory + QStringLiteral("/..")).constData(), &parent) != 0) {
        return Place();
    }
    return {status.st_dev, status.st_ino, status.st_dev != parent.st_dev};
}

void MediumWatch::makeWatchers()
{
    m_burstWatcher.reset(new DirectoryWatcher(QStringList()));
    m_changeWatcher.reset(new DirectoryWatcher(QStringList()));
    m_burstWatcher->setDelayInMs(m_options.delayInMs);
    m_changeWatcher->setDelayInMs(0);
    connect(m_changeWatcher.data(), &DirectoryWatcher::directoryChanged, this,
            &MediumWatch::noteChange);
    connect(m_burstWatcher.data(), &DirectoryWatcher::directoryChanged, this,
            &MediumWatch::noteEndOfBurst);
    m_watchedDirectories.clear();
    m_unwatchableDirectories.clear();
    m_place = placeOf(m_options.directory);
}

void MediumWatch::watchMounts()
{
    if (m_mounts.open(QIODevice::ReadOnly)) {
        m_mountNotifier.reset(new QSocketNotifier(m_mounts.handle(), QSocketNotifier::Exception));
        connect(m_mountNotifier.data(), &QSocketNotifier::activated, this,
                &MediumWatch::noteMounts);
    }
}

// Returns true, and reports what happened to the medium, if the path leads to another directory.
bool MediumWatch::hasNewMedium()
{
    const Place now = placeOf(m_options.directory);
    const bool isOther = now.device != m_place.device || now.inode != m_place.inode;
    // If the same medium was unmounted and mounted again, its watch is lost.
    const bool hasLostWatch = !isOther && m_burstWatcher->addPath(m_options.directory);
    if (!isOther && !hasLostWatch) {
        return false;
    }
    if (m_place.isMedium) {
        m_report.showMediumRemoved();
    }
    if (now.isMedium) {
        m_report.showMediumMounted();
    }
    makeWatchers();
    watchDirectory(m_options.directory);
    m_mustList = true;
    return true;
}

void MediumWatch::noteMounts()
{
    // If the directory has been removed, the search reports that.
    if (!QFileInfo(m_options.directory).isDir() || hasNewMedium()) {
        search();
    }
}

bool MediumWatch::start()
{
    m_clock.start();
    makeWatchers();
    watchMounts();
    m_endNotifier.reset(new QSocketNotifier(m_signals.openDescriptor(), QSocketNotifier::Read));
    connect(m_endNotifier.data(), &QSocketNotifier::activated, this, [this] { finish(Ended); });
    // Watch before listing: a file that appears in between must not be missed by both.
    if (!watchDirectory(m_options.directory)) {
        return false;
    }
    m_report.showStatus(QStringLiteral("listing %1").arg(CommandLine::printable(m_options.name)));
    m_mediaWatcher.mediumMounted(m_options.directory);
    m_report.showMedium(m_options.patterns, m_files);
    if (m_report.isLive()) {
        m_statusTimer.start(statusIntervalInMs);
    }
    search();
    return true;
}

void MediumWatch::listMedium(const QFileInfoList& entries)
{
    const QDir medium(m_options.directory);
    for (const QFileInfo& entry : entries) {
        if (entry.isFile()) {
            m_files.append(medium.relativeFilePath(entry.filePath()));
        }
    }
    m_files.sort();
    m_filesAtStart = m_files;
}

void MediumWatch::noteChange()
{
    ++m_changes;
    if (m_idleTimer.isActive()) {
        // This burst ends only after the delay, and its end is a change too.
        startIdleTimer(m_options.delayInMs + m_options.idleInMs);
    }
}

void MediumWatch::noteEndOfBurst()
{
    ++m_bursts;
    search();
}

void MediumWatch::search()
{
    if (m_isSearching) {
        m_mustSearchAgain = true;
        return;
    }
    m_isSearching = true;
    m_idleTimer.stop();
    // Without patterns, since directories of any name must be found, too.
    auto* worker = new RecursiveFileSearchWorkerThread(m_options.directory, QStringList());
    connect(worker, &RecursiveFileSearchWorkerThread::searchFinished, this, &MediumWatch::evaluate);
    m_threadPool.start(worker); // deletes the worker
}

void MediumWatch::evaluate(const QStringList& entries)
{
    m_isSearching = false;
    if (!QFileInfo(m_options.directory).isDir()) {
        finish(MediumGone);
        return;
    }
    const QStringList files = matchingFiles(entries);
    // Files of different media are not compared, and this search may have seen a part of each.
    if (hasNewMedium() || (m_mustList && m_mustSearchAgain)) {
        m_mustSearchAgain = false;
        search();
        return;
    }
    // Files may have been added to a new directory between this search and its watch.
    if (m_options.isRecursive && watchDirectories(entries)) {
        m_mustSearchAgain = true;
    }
    if (m_mustList) {
        m_mustList = false;
        m_files = files;
        m_filesAtStart = files;
        m_report.showMedium(m_options.patterns, files);
    } else {
        showDifferences(files);
    }
    countSkippedNames();
    if (m_mustSearchAgain) {
        m_mustSearchAgain = false;
        search();
    } else {
        settle();
    }
}

// Qt omits names that it cannot decode.
void MediumWatch::countSkippedNames()
{
    int count = 0;
    for (const QString& directory : qAsConst(m_watchedDirectories)) {
        DIR* stream = opendir(QFile::encodeName(directory).constData());
        const dirent* entry = stream == nullptr ? nullptr : readdir(stream);
        for (; entry != nullptr; entry = readdir(stream)) {
            const QByteArray name = entry->d_name;
            if (!name.startsWith('.') && QFile::encodeName(QFile::decodeName(name)) != name) {
                ++count;
            }
        }
        if (stream != nullptr) {
            closedir(stream);
        }
    }
    if (count != m_skippedNames) {
        m_skippedNames = count;
        m_report.showSkippedNames(count);
    }
}

QStringList MediumWatch::matchingFiles(const QStringList& entries) const
{
    QStringList files;
    for (const QString& entry : entries) {
        const QFileInfo info(concatenatePaths(m_options.directory, entry));
        const bool isInReach = m_options.isRecursive || !entry.contains(QLatin1Char('/'));
        if (isInReach && !isDots(entry) && info.isFile() &&
            m_filter.matchesFilters(info.fileName())) {
            files.append(entry);
        }
    }
    files.sort();
    return files;
}

// Watches every directory in entries. Returns true if one of them is new.
bool MediumWatch::watchDirectories(const QStringList& entries)
{
    bool hasNewDirectory = false;
    for (const QString& entry : entries) {
        const QFileInfo info(concatenatePaths(m_options.directory, entry));
        if (!isDots(entry) && info.isDir() && !info.isSymLink()) {
            hasNewDirectory |= watchDirectory(info.filePath());
        }
    }
    return hasNewDirectory;
}

// Returns true if the directory was not watched before and is now. One that was removed and created
// again counts as new, since its watch was removed with it.
bool MediumWatch::watchDirectory(const QString& directory)
{
    // Qt would also log a message for a directory that cannot be read.
    if (QFileInfo(directory).isReadable() && m_burstWatcher->addPath(directory)) {
        m_changeWatcher->addPath(directory);
        m_watchedDirectories.insert(directory);
        return true;
    }
    const bool isKnown =
        m_watchedDirectories.contains(directory) || m_unwatchableDirectories.contains(directory);
    if (!isKnown) {
        m_unwatchableDirectories.insert(directory);
        m_report.printError(
            QStringLiteral("cannot watch %1").arg(CommandLine::printable(directory)));
    }
    return false;
}

void MediumWatch::showDifferences(const QStringList& files)
{
    const QStringList newFiles = missingIn(m_files, files);
    const QStringList goneFiles = missingIn(files, m_files);
    m_report.showNew(newFiles);
    m_report.showGone(goneFiles);
    m_newInBurst += newFiles.size();
    m_goneInBurst += goneFiles.size();
    m_files = files;
}

// The search has finished; nothing remains to be done until the next change.
void MediumWatch::settle()
{
    if (!m_isWatching) {
        m_isWatching = true;
        m_report.showWatching(m_watchedDirectories.size(), m_options.bursts, m_options.idleInMs);
    }
    if (m_bursts > m_shownBursts) {
        m_shownBursts = m_bursts;
        m_report.showBurst(m_bursts, m_newInBurst, m_goneInBurst, m_files.size());
        m_newInBurst = 0;
        m_goneInBurst = 0;
        m_changes = 0;
    }
    if (m_options.bursts > 0 && m_bursts >= m_options.bursts) {
        finish(Ended);
        return;
    }
    startIdleTimer(m_options.idleInMs);
}

void MediumWatch::startIdleTimer(int durationInMs)
{
    if (m_options.idleInMs > 0) {
        m_idleTimer.start(durationInMs);
    }
}

void MediumWatch::showStatus()
{
    m_report.showStatus(QStringLiteral("%1 | %2, %3 new | %4 | %5")
                            .arg(WatchReport::seconds(m_clock.elapsed()),
                                 WatchReport::count(m_files.size(), "file"))
                            .arg(missingIn(m_filesAtStart, m_files).size())
                            .arg(WatchReport::count(m_bursts, "burst"), activity()));
}

QString MediumWatch::activity() const
{
    if (m_isSearching) {
        return QStringLiteral("searching");
    }
    if (m_changes > 0) {
        return QStringLiteral("changing: ") + WatchReport::count(m_changes, "change");
    }
    if (m_idleTimer.isActive()) {
        return QStringLiteral("quiet, ends in ") +
               WatchReport::seconds(m_idleTimer.remainingTime());
    }
    return QStringLiteral("quiet");
}

void MediumWatch::finish(ExitCode exitCode)
{
    m_statusTimer.stop();
    if (exitCode == MediumGone) {
        m_report.printError(
            QStringLiteral("%1 is gone").arg(CommandLine::printable(m_options.name)));
        m_files.clear();
    }
    m_report.showSummary({m_files.size(), missingIn(m_filesAtStart, m_files).size(),
                          missingIn(m_files, m_filesAtStart).size(), m_bursts, m_skippedNames,
                          m_clock.elapsed()});
    Q_EMIT finished(exitCode);
}
