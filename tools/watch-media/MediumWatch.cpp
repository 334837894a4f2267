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

// What the sorted list names has and others has not.
QStringList missingIn(const QStringList& others, const QStringList& names)
{
    QStringList result;
    std::set_difference(names.begin(), names.end(), others.begin(), others.end(),
                        std::back_inserter(result));
    return result;
}

// A search without a name filter gives "." and ".." too.
bool isDots(const QString& entry)
{
    const QString name = entry.section(QLatin1Char('/'), -1);
    return name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..");
}

} // namespace

MediumWatch::MediumWatch(const WatchOptions& options)
    : m_options(options)
    , m_filter(options.patterns, QDir::Files) // without case, as MediaWatcher searches
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

MediumWatch::Place MediumWatch::placeOf(const QString& folder)
{
    struct stat status = {};
    struct stat parent = {};
    if (stat(QFile::encodeName(folder).constData(), &status) != 0 ||
        stat(QFile::encodeName(folder + QStringLiteral("/..")).constData(), &parent) != 0) {
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
    m_watchedFolders.clear();
    m_unwatchableFolders.clear();
    m_place = placeOf(m_options.folder);
}

void MediumWatch::watchMounts()
{
    if (m_mounts.open(QIODevice::ReadOnly)) {
        m_mountNotifier.reset(new QSocketNotifier(m_mounts.handle(), QSocketNotifier::Exception));
        connect(m_mountNotifier.data(), &QSocketNotifier::activated, this,
                &MediumWatch::noteMounts);
    }
}

// Tells whether the path leads to another folder than before, and says what became of the medium.
bool MediumWatch::hasNewMedium()
{
    const Place now = placeOf(m_options.folder);
    const bool isOther = now.device != m_place.device || now.inode != m_place.inode;
    // The same medium, unmounted and mounted at once, has taken the watch along.
    const bool hasLostWatch = !isOther && m_burstWatcher->addPath(m_options.folder);
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
    watchFolder(m_options.folder);
    m_mustList = true;
    return true;
}

void MediumWatch::noteMounts()
{
    // A search notices that the folder is gone.
    if (!QFileInfo(m_options.folder).isDir() || hasNewMedium()) {
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
    // Watched first, listed then: what comes in between is seen by both rather than by neither.
    if (!watchFolder(m_options.folder)) {
        return false;
    }
    m_report.showStatus(QStringLiteral("listing %1").arg(CommandLine::printable(m_options.name)));
    m_mediaWatcher.mediumMounted(m_options.folder);
    m_report.showMedium(m_options.patterns, m_files);
    if (m_report.isLive()) {
        m_statusTimer.start(statusIntervalInMs);
    }
    search();
    return true;
}

void MediumWatch::listMedium(const QFileInfoList& entries)
{
    const QDir medium(m_options.folder);
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
        // The end of this burst is noticed only after the delay, and is a change too.
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
    // Without patterns: folders are of interest too, whatever their names.
    auto* worker = new RecursiveFileSearchWorkerThread(m_options.folder, QStringList());
    connect(worker, &RecursiveFileSearchWorkerThread::searchFinished, this, &MediumWatch::evaluate);
    m_threadPool.start(worker); // and deletes it
}

void MediumWatch::evaluate(const QStringList& entries)
{
    m_isSearching = false;
    if (!QFileInfo(m_options.folder).isDir()) {
        finish(MediumGone);
        return;
    }
    const QStringList files = matchingFiles(entries);
    // Of two media there is no difference to show; and this search may have seen a part of each.
    if (hasNewMedium() || (m_mustList && m_mustSearchAgain)) {
        m_mustSearchAgain = false;
        search();
        return;
    }
    // A new folder may have been filled further between this search and its watch.
    if (m_options.isRecursive && watchFolders(entries)) {
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
    countNamesLeftOut();
    if (m_mustSearchAgain) {
        m_mustSearchAgain = false;
        search();
    } else {
        settle();
    }
}

// Qt passes over names that it cannot decode.
void MediumWatch::countNamesLeftOut()
{
    int count = 0;
    for (const QString& folder : qAsConst(m_watchedFolders)) {
        DIR* directory = opendir(QFile::encodeName(folder).constData());
        const dirent* entry = directory == nullptr ? nullptr : readdir(directory);
        for (; entry != nullptr; entry = readdir(directory)) {
            const QByteArray name = entry->d_name;
            if (!name.startsWith('.') && QFile::encodeName(QFile::decodeName(name)) != name) {
                ++count;
            }
        }
        if (directory != nullptr) {
            closedir(directory);
        }
    }
    if (count != m_namesLeftOut) {
        m_namesLeftOut = count;
        m_report.showNamesLeftOut(count);
    }
}

QStringList MediumWatch::matchingFiles(const QStringList& entries) const
{
    QStringList files;
    for (const QString& entry : entries) {
        const QFileInfo info(concatenatePaths(m_options.folder, entry));
        const bool isInReach = m_options.isRecursive || !entry.contains(QLatin1Char('/'));
        if (isInReach && !isDots(entry) && info.isFile() &&
            m_filter.matchesFilters(info.fileName())) {
            files.append(entry);
        }
    }
    files.sort();
    return files;
}

// Watches every folder among entries; tells whether one of them is new.
bool MediumWatch::watchFolders(const QStringList& entries)
{
    bool hasNewFolder = false;
    for (const QString& entry : entries) {
        const QFileInfo info(concatenatePaths(m_options.folder, entry));
        if (!isDots(entry) && info.isDir() && !info.isSymLink()) {
            hasNewFolder |= watchFolder(info.filePath());
        }
    }
    return hasNewFolder;
}

// Tells whether the folder was not watched before and is now. One that was removed and is there
// again counts as new: its watch went with it.
bool MediumWatch::watchFolder(const QString& folder)
{
    // Qt has a line of its own to log for a folder that cannot be read.
    if (QFileInfo(folder).isReadable() && m_burstWatcher->addPath(folder)) {
        m_changeWatcher->addPath(folder);
        m_watchedFolders.insert(folder);
        return true;
    }
    const bool isKnown = m_watchedFolders.contains(folder) || m_unwatchableFolders.contains(folder);
    if (!isKnown) {
        m_unwatchableFolders.insert(folder);
        m_report.complain(QStringLiteral("cannot watch %1").arg(CommandLine::printable(folder)));
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

// The medium is searched and nothing is left to do until the next change.
void MediumWatch::settle()
{
    if (!m_isWatching) {
        m_isWatching = true;
        m_report.showWatching(m_watchedFolders.size(), m_options.bursts, m_options.idleInMs);
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
        m_report.complain(QStringLiteral("%1 is gone").arg(CommandLine::printable(m_options.name)));
        m_files.clear();
    }
    m_report.showSummary({m_files.size(), missingIn(m_filesAtStart, m_files).size(),
                          missingIn(m_files, m_filesAtStart).size(), m_bursts, m_namesLeftOut,
                          m_clock.elapsed()});
    Q_EMIT finished(exitCode);
}
