#ifndef TOOLS_WATCHMEDIA_WATCHREPORT_H
#define TOOLS_WATCHMEDIA_WATCHREPORT_H

#include "common/ProgressDisplay.h"

#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

// Prints lines of text, or one JSON object per line.
class WatchReport
{
public:
    WatchReport(const QString& name, bool isJson);

    struct Summary
    {
        int files;
        int newFiles;
        int goneFiles;
        int bursts;
        int skippedNames;
        qint64 milliseconds;
    };

    // The status line, on a terminal only.
    bool isLive() const { return m_display.isLive() && !m_isJson; }
    void showStatus(const QString& text);

    void showMedium(const QStringList& patterns, const QStringList& files);
    void showWatching(int directories, int bursts, int idleInMs);
    void showNew(const QStringList& files);
    void showGone(const QStringList& files);
    void showBurst(int number, int newFiles, int goneFiles, int files);
    void showMediumRemoved();
    void showMediumMounted();
    void showSkippedNames(int count);
    void showSummary(const Summary& summary);

    void printError(const QString& error);

    // "1 file", "2 files"; "0.4 s".
    static QString count(int number, const char* what);
    static QString seconds(qint64 milliseconds);

private:
    void show(const QString& line, const QString& event, QJsonObject members = QJsonObject());
    void showFiles(const char* mark, const QString& event, const QStringList& files);

    ProgressDisplay m_display;
    const QString m_name; // of the directory
    const bool m_isJson;
};

#endif
