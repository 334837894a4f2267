#ifndef EXAMPLES_MEDIUMWATCH_H
#define EXAMPLES_MEDIUMWATCH_H

#include "common/ProgressDisplay.h"

#include <DirectoryWatcher.h>
#include <MediaWatcher.h>
#include <WildcardFilter.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QSet>
#include <QtCore/QStringList>
#include <QtCore/QThreadPool>
#include <QtCore/QTimer>

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
};

/*
 * Treats a folder as a medium that was just mounted: lists its files, then follows what changes.
 *
 * One DirectoryWatcher tells that a burst of changes is over; a second one, without delay, tells
 * that a change has come, so that a copy in progress is seen and keeps the watch alive. After a
 * burst a RecursiveFileSearchWorkerThread searches the medium in a thread pool.
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
    void listMedium(const QFileInfoList& entries);
    void noteChange();
    void noteEndOfBurst();
    void search();
    void evaluate(const QStringList& entries);
    QStringList matchingFiles(const QStringList& entries) const;
    bool watchFolders(const QStringList& entries);
    bool watchFolder(const QString& folder);
    void showFiles(const char* mark, const QStringList& files);
    void showDifferences(const QStringList& files);
    void settle();
    void startIdleTimer(int durationInMs);
    QString endCondition() const;
    void showStatus();
    QString activity() const;
    QString elapsed() const;
    void finish(ExitCode exitCode);

    const WatchOptions m_options;
    const WildcardFilter m_filter;
    MediaWatcher m_mediaWatcher;
    DirectoryWatcher m_burstWatcher;
    DirectoryWatcher m_changeWatcher;
    ProgressDisplay m_display;
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
    int m_bursts = 0;
    int m_shownBursts = 0;
    int m_changes = 0; // since the last burst
    int m_newInBurst = 0;
    int m_goneInBurst = 0;
    // The last member, so that a search that still runs is waited for first.
    QThreadPool m_threadPool;
};

#endif
