#ifndef TOOLS_PEAKMETER_PEAKMETER_H
#define TOOLS_PEAKMETER_PEAKMETER_H

#include "ExitCode.h"
#include "LineSplitter.h"
#include "PeakFile.h"

#include "common/EndSignals.h"
#include "common/ProgressDisplay.h"

#include <DragIndicator.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonValue>
#include <QtCore/QObject>
#include <QtCore/QScopedPointer>
#include <QtCore/QSocketNotifier>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <optional>

/*
 * Adds the numbers from standard input to a DragIndicator and shows its range.
 *
 * A value is shown only after it has been saved. Values in quick succession are saved and shown
 * together, since every save is written to the disk.
 */
class PeakMeter : public QObject
{
    Q_OBJECT

public:
    // If file is empty, nothing is saved. isJson: print JSON objects, even on a terminal.
    PeakMeter(const QString& file, bool isJson);

    // Reads the records of the file. Returns AllTaken on success.
    ExitCode restore(bool mustReset);

    // Starts to read standard input; requires a running event loop.
    void start();

Q_SIGNALS:
    void finished(int exitCode);

private:
    void readInput();
    void takeLines(const QList<LineSplitter::Line>& lines);
    void takeLine(const LineSplitter::Line& line);
    void takeValue(double value);
    void refuseLine(const QString& reason);
    QString newsLine(double value, bool isMinimum, bool isMaximum) const;
    void printError(const QString& error);
    void acknowledgeSoon();
    bool acknowledge();
    bool save();
    QString statusLine(int columns) const;
    void showRange();
    QJsonValue recordJson(int index) const;
    void showJsonSummary();
    void showSummary();
    void showRecord(const QString& title, int index);
    void finish();
    void leave(ExitCode exitCode);

    QScopedPointer<PeakFile> m_file;
    DragIndicator m_indicator;
    ProgressDisplay m_display;
    LineSplitter m_splitter;
    QScopedPointer<QSocketNotifier> m_input;
    const EndSignals m_signals; // must not interrupt a save
    QScopedPointer<QSocketNotifier> m_endNotifier;
    QTimer m_acknowledgeTimer;
    QElapsedTimer m_sinceAcknowledged;
    QStringList m_news; // lines to print after the next save
    std::optional<double> m_value;
    const bool m_isJson;
    const bool m_isTyped;
    bool m_mustSave = false;
    bool m_hasInputError = false;
    qint64 m_lines = 0;
    qint64 m_values = 0;
    qint64 m_refusedLines = 0;
};

#endif
