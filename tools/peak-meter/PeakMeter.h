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
 * Takes the numbers that arrive on standard input into a DragIndicator and shows its range.
 *
 * A value is shown only after it was saved. Both are done at once when the last time is a while
 * ago; values that come in quick succession are gathered, because every save goes to the disk.
 */
class PeakMeter : public QObject
{
    Q_OBJECT

public:
    // With an empty file name nothing is kept. isJson: a JSON object per line, on terminals, too.
    PeakMeter(const QString& file, bool isJson);

    // Begins with the records of the file; tells whether they can be had.
    ExitCode restore(bool mustReset);

    // Reads standard input. Needs a running event loop from here on.
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
    void complain(const QString& trouble);
    void acknowledgeSoon();
    bool acknowledge();
    bool save();
    QString statusLine(int columns) const;
    void showRange();
    QJsonValue recordJson(int place) const;
    void showJsonSummary();
    void showSummary();
    void showRecord(const QString& title, int place);
    void finish();
    void leave(ExitCode exitCode);

    QScopedPointer<PeakFile> m_file;
    DragIndicator m_indicator;
    ProgressDisplay m_display;
    LineSplitter m_splitter;
    QScopedPointer<QSocketNotifier> m_input;
    const EndSignals m_signals; // none comes in the middle of a save
    QScopedPointer<QSocketNotifier> m_endNotifier;
    QTimer m_acknowledgeTimer;
    QElapsedTimer m_sinceAcknowledged;
    QStringList m_news; // what is still to be said of the values
    std::optional<double> m_value;
    const bool m_isJson;
    const bool m_isTyped;
    bool m_mustSave = false;
    bool m_hasInputTrouble = false;
    qint64 m_lines = 0;
    qint64 m_values = 0;
    qint64 m_refusedLines = 0;
};

#endif
