#ifndef TOOLS_WATCHMEDIA_MEDIUMWATCH_H
#define TOOLS_WATCHMEDIA_MEDIUMWATCH_H

#include "WatchReport.h"

#include "common/EndSignals.h"

#include <DirectoryWatcher.h>
#include <MediaWatcher.h>
#include <WildcardFilter.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QObject>
#include <QtCore/QScopedPointer>
#include <QtCore/QSet>
#include <QtCore/QSocketNotifier>
#include <QtCore/QStringList>
#include <QtCore/QThreadPool>
#include <QtCore/QTimer>

#include <sys/types.h>

enum ExitCode
{
    Ended = 0,
    WrongUsage = 2,
    NoMedium = 3,
    MediumGone = 4,
    OutputLost = 5
};

struct WatchOptions
{
    QString name;      // of the directory, as passed by the user
    QString directory; // absolute: a search of a relative one returns no paths relative to it
    QStringList patterns;
    bool isRecursive = false;
    int delayInMs = 500;
    int idleInMs = 3000; // 0: no limit
    int bursts = 0;      // 0: no limit
    bool isJson = false;
};

/*
 * Treats a directory as a medium that was just mounted: lists its files, then follows changes.
 *
 * One DirectoryWatcher reports the end of a burst of changes; a second one, without a delay,
 * reports each change, so that a copy in progress is shown and restarts the idle timer. After a
 * burst, a RecursiveFileSearchWorkerThread searches the medium in a thread pool.
 *
 * The watches of a directory disappear with its file system, and do not notice a medium that is
 * mounted over it. The kernel's mount table reports both; the watches are then created again.
 */
class MediumWatch : public QObject
{
    Q_OBJECT

public:
    explicit MediumWatch(const WatchOptions& options);

    // Returns false if the directory cannot be watched. Requires a running event loop.
    bool start();

Q_SIGNALS:
    void finished(int exitCode);

private:
    // The identity of the directory at a path.
    struct Place
    {
        dev_t device = 0;
        ino_t inode = 0;
        bool isMedium = false; // a file system is mounted there
    };

    static Place placeOf(const QString& directory);
    void makeWatchers();
    void watchMounts();
    bool hasNewMedium();
    void noteMounts();
    void countSkippedNames();
    void listMedium(const QFileInfoList& entries);
    void noteChange();
    void noteEndOfBurst();
    void search();
    void evaluate(const QStringList& entries);
    QStringList matchingFiles(const QStringList& entries) const;
    bool watchDirectories(const QStringList& entries);
    bool watchDirectory(const QString& directory);
    void showDifferences(const QStringList& files);
    void settle();
    void startIdleTimer(int durationInMs);
    void showStatus();
    QString activity() const;
    void finish(ExitCode exitCode);

    const WatchOptions m_options;
    const WildcardFilter m_filter;
    MediaWatcher m_mediaWatcher;
    QScopedPointer<DirectoryWatcher> m_burstWatcher;
    QScopedPointer<DirectoryWatcher> m_changeWatcher;
    WatchReport m_report;
    const EndSignals m_signals;
    QScopedPointer<QSocketNotifier> m_endNotifier;
    QFile m_mounts;
    QScopedPointer<QSocketNotifier> m_mountNotifier;
    Place m_place;
    QTimer m_idleTimer;
    QTimer m_statusTimer;
    QElapsedTimer m_clock;
    QSet<QString> m_watchedDirectories;
    QSet<QString> m_unwatchableDirectories;
    QStringList m_filesAtStart;
    QStringList m_files; // sorted
    bool m_isWatching = false;
    bool m_isSearching = false;
    bool m_mustSearchAgain = false;
    bool m_mustList = false; // the next search finds the files of another medium
    int m_skippedNames = 0;
    int m_bursts = 0;
    int m_shownBursts = 0;
    int m_changes = 0; // since the last burst
    int m_newInBurst = 0;
    int m_goneInBurst = 0;
    // The last member, so that its destructor, which waits for a running search, runs first.
    QThreadPool m_threadPool;
};

#endif
