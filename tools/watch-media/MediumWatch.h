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
    QString name;   // of the folder, as the user gave it
    QString folder; // absolute: a search of a relative one gives no paths relative to it
    QStringList patterns;
    bool isRecursive = false;
    int delayInMs = 500;
    int idleInMs = 3000; // 0: idleness does not end the watch
    int bursts = 0;      // 0: no number of bursts ends the watch
    bool isJson = false;
};

/*
 * Treats a folder as a medium that was just mounted: lists its files, then follows what changes.
 *
 * One DirectoryWatcher tells that a burst of changes is over; a second one, without delay, tells
 * that a change has come, so that a copy in progress is seen and keeps the watch alive. After a
 * burst a RecursiveFileSearchWorkerThread searches the medium in a thread pool.
 *
 * The watches of a folder go with its file system, and of a medium that is mounted over it they
 * notice nothing. The kernel's table of mounts tells of both: the watches are made anew then.
 */
class MediumWatch : public QObject
{
    Q_OBJECT

public:
    explicit MediumWatch(const WatchOptions& options);

    // Begins; tells whether the folder can be watched. Needs a running event loop from here on.
    bool start();

Q_SIGNALS:
    void finished(int exitCode);

private:
    // Which folder a path leads to.
    struct Place
    {
        dev_t device = 0;
        ino_t inode = 0;
        bool isMedium = false; // something is mounted there
    };

    static Place placeOf(const QString& folder);
    void makeWatchers();
    void watchMounts();
    bool hasNewMedium();
    void noteMounts();
    void countNamesLeftOut();
    void listMedium(const QFileInfoList& entries);
    void noteChange();
    void noteEndOfBurst();
    void search();
    void evaluate(const QStringList& entries);
    QStringList matchingFiles(const QStringList& entries) const;
    bool watchFolders(const QStringList& entries);
    bool watchFolder(const QString& folder);
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
    QSet<QString> m_watchedFolders;
    QSet<QString> m_unwatchableFolders;
    QStringList m_filesAtStart;
    QStringList m_files; // sorted
    bool m_isWatching = false;
    bool m_isSearching = false;
    bool m_mustSearchAgain = false;
    bool m_mustList = false; // the next search finds the files of another medium
    int m_namesLeftOut = 0;
    int m_bursts = 0;
    int m_shownBursts = 0;
    int m_changes = 0; // since the last burst
    int m_newInBurst = 0;
    int m_goneInBurst = 0;
    // The last member, so that a search that still runs is waited for first.
    QThreadPool m_threadPool;
};

#endif
