#include "MediumWatch.h"

#include "common/CommandLine.h"

#include <RecursiveFileSearchWorkerThread.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <iterator>

namespace {

constexpr int statusIntervalInMs = 100;

QString count(int number, const char* what)
{
    return QStringLiteral("%1 %2%3").arg(number).arg(QLatin1String(what),
                                                     number == 1 ? QString() : QStringLiteral("s"));
}

QString seconds(qint64 milliseconds)
{
    return QStringLiteral("%1 s").arg(double(milliseconds) / 1000, 0, 'f', 1);
}

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
    , m_burstWatcher(QStringList())
    , m_changeWatcher(QStringList())
{
    m_mediaWatcher.setRecursive(options.isRecursive);
    m_mediaWatcher.setFileMatchPatternList(options.patterns);
    m_burstWatcher.setDelayInMs(options.delayInMs);
    m_changeWatcher.setDelayInMs(0);
    m_threadPool.setMaxThreadCount(1);
    m_idleTimer.setSingleShot(true);
    m_idleTimer.setTimerType(Qt::PreciseTimer);

    connect(&m_mediaWatcher, &MediaWatcher::filesFound, this, &MediumWatch::listMedium);
    connect(&m_changeWatcher, &DirectoryWatcher::directoryChanged, this, &MediumWatch::noteChange);
    connect(&m_burstWatcher, &DirectoryWatcher::directoryChanged, this,
            &MediumWatch::noteEndOfBurst);
    connect(&m_idleTimer, &QTimer::timeout, this, [this] { finish(Ended); });
    connect(&m_statusTimer, &QTimer::timeout, this, &MediumWatch::showStatus);
}

bool MediumWatch::start()
{
    m_clock.start();
    // Watched first, listed then: what comes in between is seen by both rather than by neither.
    if (!watchFolder(m_options.folder)) {
        return false;
    }
    m_display.showStatus(QStringLiteral("listing %1").arg(CommandLine::printable(m_options.name)));
    m_mediaWatcher.mediumMounted(m_options.folder);
    m_display.showEvent(
        QStringLiteral("%1: %2 (%3)")
            .arg(CommandLine::printable(m_options.name), count(m_files.size(), "file"),
                 CommandLine::printable(m_options.patterns.join(QLatin1Char(' ')))));
    showFiles("  ", m_files);
    if (m_display.isLive()) {
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
    // A new folder may have been filled further between this search and its watch.
    if (m_options.isRecursive && watchFolders(entries)) {
        m_mustSearchAgain = true;
    }
    showDifferences(matchingFiles(entries));
    if (m_mustSearchAgain) {
        m_mustSearchAgain = false;
        search();
    } else {
        settle();
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
    if (QFileInfo(folder).isReadable() && m_burstWatcher.addPath(folder)) {
        m_changeWatcher.addPath(folder);
        m_watchedFolders.insert(folder);
        return true;
    }
    const bool isKnown = m_watchedFolders.contains(folder) || m_unwatchableFolders.contains(folder);
    if (!isKnown) {
        m_unwatchableFolders.insert(folder);
        m_display.clearStatus();
        CommandLine::complain(
            QStringLiteral("cannot watch %1").arg(CommandLine::printable(folder)));
    }
    return false;
}

void MediumWatch::showFiles(const char* mark, const QStringList& files)
{
    // Nobody reads hundreds of lines that rush by; a pipe gets them all.
    constexpr int mostOnTerminal = 10;

    const int shown = m_display.isLive() ? qMin(files.size(), mostOnTerminal) : files.size();
    const QStringList shownFiles = files.mid(0, shown);
    for (const QString& file : shownFiles) {
        m_display.showEvent(QLatin1String(mark) + CommandLine::printable(file));
    }
    if (shown < files.size()) {
        m_display.showEvent(
            QStringLiteral("%1... and %2 more").arg(QLatin1String(mark)).arg(files.size() - shown));
    }
}

void MediumWatch::showDifferences(const QStringList& files)
{
    const QStringList newFiles = missingIn(m_files, files);
    const QStringList goneFiles = missingIn(files, m_files);
    showFiles("+ ", newFiles);
    showFiles("- ", goneFiles);
    m_newInBurst += newFiles.size();
    m_goneInBurst += goneFiles.size();
    m_files = files;
}

// The medium is searched and nothing is left to do until the next change.
void MediumWatch::settle()
{
    if (!m_isWatching) {
        m_isWatching = true;
        m_display.showEvent(QStringLiteral("Watching %1; ends after %2")
                                .arg(count(m_watchedFolders.size(), "folder"), endCondition()));
    }
    if (m_bursts > m_shownBursts) {
        m_shownBursts = m_bursts;
        m_display.showEvent(QStringLiteral("Burst %1: %2 new, %3 gone, now %4")
                                .arg(m_bursts)
                                .arg(m_newInBurst)
                                .arg(m_goneInBurst)
                                .arg(count(m_files.size(), "file")));
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

QString MediumWatch::endCondition() const
{
    QStringList conditions;
    if (m_options.bursts > 0) {
        conditions.append(count(m_options.bursts, "burst"));
    }
    if (m_options.idleInMs > 0) {
        conditions.append(seconds(m_options.idleInMs) + QStringLiteral(" without a change"));
    }
    return conditions.join(QStringLiteral(" or "));
}

void MediumWatch::showStatus()
{
    m_display.showStatus(QStringLiteral("%1 | %2, %3 new | %4 | %5")
                             .arg(elapsed(), count(m_files.size(), "file"))
                             .arg(missingIn(m_filesAtStart, m_files).size())
                             .arg(count(m_bursts, "burst"), activity()));
}

QString MediumWatch::activity() const
{
    if (m_isSearching) {
        return QStringLiteral("searching");
    }
    if (m_changes > 0) {
        return QStringLiteral("changing: ") + count(m_changes, "notice");
    }
    if (m_idleTimer.isActive()) {
        return QStringLiteral("quiet, ends in ") + seconds(m_idleTimer.remainingTime());
    }
    return QStringLiteral("quiet");
}

QString MediumWatch::elapsed() const
{
    return seconds(m_clock.elapsed());
}

void MediumWatch::finish(ExitCode exitCode)
{
    m_statusTimer.stop();
    m_display.clearStatus();
    if (exitCode == MediumGone) {
        CommandLine::complain(
            QStringLiteral("%1 is gone").arg(CommandLine::printable(m_options.name)));
        m_files.clear();
    }
    m_display.showEvent(QStringLiteral("Summary: %1, %2 new since the start, %3 gone, %4, %5")
                            .arg(count(m_files.size(), "file"))
                            .arg(missingIn(m_filesAtStart, m_files).size())
                            .arg(missingIn(m_files, m_filesAtStart).size())
                            .arg(count(m_bursts, "burst"), elapsed()));
    Q_EMIT finished(exitCode);
}
