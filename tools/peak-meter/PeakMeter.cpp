#include "PeakMeter.h"

#include "RangeLine.h"

#include "common/CommandLine.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>

namespace {

constexpr int acknowledgeIntervalInMs = 100;
constexpr auto resettable = DragIndicator::ResettableInstance;

// Gives a descriptor to read Ctrl-C and SIGTERM from. They wait until then, so that none comes in
// the middle of a save. Who had them ignored, as the shell for a job in the background, is obeyed.
int openEndSignals()
{
    sigset_t signalNumbers;
    sigemptyset(&signalNumbers);
    for (const int number : {SIGINT, SIGTERM}) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            sigaddset(&signalNumbers, number);
        }
    }
    sigprocmask(SIG_BLOCK, &signalNumbers, nullptr);
    return signalfd(-1, &signalNumbers, SFD_CLOEXEC);
}

QString count(qint64 number, const QString& what)
{
    return QStringLiteral("%1 %2%3").arg(QString::number(number), what,
                                         number == 1 ? QString() : QStringLiteral("s"));
}

// As much of a line as helps to recognize it.
QString beginningOf(const QByteArray& line)
{
    constexpr int length = 40;

    const QString text = QString::fromUtf8(line.constData(), line.size());
    return CommandLine::printable(text.left(length)) +
           (text.size() > length ? QStringLiteral("...") : QString());
}

} // namespace

PeakMeter::PeakMeter(const QString& file)
    : m_file(file.isEmpty() ? nullptr : new PeakFile(file)), m_isTyped(isatty(STDIN_FILENO) != 0)
{
    m_acknowledgeTimer.setSingleShot(true);
    connect(&m_acknowledgeTimer, &QTimer::timeout, this, &PeakMeter::acknowledge);
}

ExitCode PeakMeter::restore(bool mustReset)
{
    if (m_file.isNull()) {
        return AllTaken;
    }
    const ExitCode exitCode = m_file->restore(m_indicator);
    if (exitCode != AllTaken || !mustReset) {
        return exitCode;
    }
    m_indicator.reset();
    m_mustSave = true;
    return save() ? AllTaken : NotSaved;
}

void PeakMeter::start()
{
    m_endSignals.reset(new QSocketNotifier(openEndSignals(), QSocketNotifier::Read));
    connect(m_endSignals.data(), &QSocketNotifier::activated, this, &PeakMeter::finish);
    m_input.reset(new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read));
    connect(m_input.data(), &QSocketNotifier::activated, this, &PeakMeter::readInput);

    if (m_display.isLive() && m_isTyped) {
        m_display.showEvent(QStringLiteral("One number per line, please; Ctrl-D ends."));
    }
    showRange();
}

void PeakMeter::readInput()
{
    std::array<char, 65536> buffer;
    const ssize_t size = read(STDIN_FILENO, buffer.data(), buffer.size());
    if (size > 0) {
        takeLines(m_splitter.take(QByteArray(buffer.data(), int(size))));
        return;
    }
    if (size < 0) {
        if (errno == EAGAIN || errno == EINTR) {
            return;
        }
        complain(QStringLiteral("cannot read standard input: %1").arg(qt_error_string(errno)));
        m_hasInputTrouble = true;
    }
    takeLines(m_splitter.takeRest());
    finish();
}

void PeakMeter::takeLines(const QList<LineSplitter::Line>& lines)
{
    for (const LineSplitter::Line& line : lines) {
        takeLine(line);
    }
    if (!lines.isEmpty()) {
        acknowledgeSoon();
    }
}

void PeakMeter::takeLine(const LineSplitter::Line& line)
{
    ++m_lines;
    if (line.isCut) {
        refuseLine(QStringLiteral("longer than %1 bytes").arg(LineSplitter::maxLength));
        return;
    }
    const QByteArray text = line.text.trimmed();
    if (text.isEmpty()) {
        return;
    }
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (isNumber && std::isfinite(value)) {
        takeValue(value);
    } else {
        refuseLine(QStringLiteral("no finite number: '%1'").arg(beginningOf(text)));
    }
}

void PeakMeter::refuseLine(const QString& reason)
{
    ++m_refusedLines;
    complain(QStringLiteral("line %1: %2").arg(QString::number(m_lines), reason));
}

void PeakMeter::takeValue(double value)
{
    const bool isFirst = !m_indicator.isInitialized(resettable);
    QStringList news;
    if (isFirst || value < m_indicator.getMinValue(resettable)) {
        news.append(QStringLiteral("minimum"));
    }
    if (isFirst || value > m_indicator.getMaxValue(resettable)) {
        news.append(QStringLiteral("maximum"));
    }
    if (!news.isEmpty()) {
        m_news.append(QStringLiteral("line %1: new %2 %3")
                          .arg(QString::number(m_lines), news.join(QStringLiteral(" and ")),
                               exactText(value)));
    }
    m_mustSave = m_indicator.compute(value) || m_mustSave;
    m_value = value;
    ++m_values;
}

// On a terminal the complaint must not stand behind the range.
void PeakMeter::complain(const QString& trouble)
{
    m_display.clearStatus();
    CommandLine::complain(trouble);
}

void PeakMeter::acknowledgeSoon()
{
    if (m_acknowledgeTimer.isActive()) {
        return;
    }
    const qint64 wait =
        m_sinceAcknowledged.isValid() ? acknowledgeIntervalInMs - m_sinceAcknowledged.elapsed() : 0;
    if (wait > 0) {
        m_acknowledgeTimer.start(int(wait));
    } else {
        acknowledge();
    }
}

// Tells whether the run goes on.
bool PeakMeter::acknowledge()
{
    if (!save()) {
        leave(NotSaved);
        return false;
    }
    if (!m_display.isLive()) {
        for (const QString& line : qAsConst(m_news)) {
            m_display.showEvent(line);
        }
    }
    m_news.clear();
    showRange();
    m_sinceAcknowledged.start();
    return true;
}

bool PeakMeter::save()
{
    if (m_file.isNull() || !m_mustSave) {
        return true;
    }
    const QString error = m_file->save(m_indicator);
    if (!error.isEmpty()) {
        complain(error);
        return false;
    }
    m_mustSave = false;
    return true;
}

QString PeakMeter::statusLine(int columns) const
{
    if (!m_indicator.isInitialized(resettable)) {
        return QStringLiteral("no value yet");
    }
    return rangeLine(
        {m_indicator.getMinValue(resettable), m_indicator.getMaxValue(resettable), m_value},
        columns);
}

void PeakMeter::showRange()
{
    // What is typed must not look like the end of the value that is shown.
    const QString prompt = m_isTyped ? QStringLiteral("  > ") : QString();
    const int typingWidth = m_isTyped ? 10 : 0;
    m_display.showStatus(statusLine(m_display.columns() - prompt.size() - typingWidth) + prompt);
}

void PeakMeter::showSummary()
{
    m_display.showEvent(QStringLiteral("Summary: %1, %2 refused")
                            .arg(count(m_values, QStringLiteral("value")),
                                 count(m_refusedLines, QStringLiteral("line"))));
    if (m_file.isNull()) {
        showRecord(QStringLiteral("in this run"), DragIndicator::ResettableInstance);
        return;
    }
    showRecord(QStringLiteral("since the last reset"), DragIndicator::ResettableInstance);
    showRecord(QStringLiteral("ever"), DragIndicator::PermanentInstance);
}

void PeakMeter::showRecord(const QString& title, int place)
{
    const QJsonObject record = m_indicator.asJsonArray().at(place).toObject();
    if (!record.value(QStringLiteral("Initialized")).toBool()) {
        m_display.showEvent(title + QStringLiteral(": no value"));
        return;
    }
    m_display.showEvent(title + QLatin1Char(':'));
    const auto showExtreme = [this, &record](const QString& label, const QString& key) {
        const QString date = record.value(key + QStringLiteral("Date")).toString();
        m_display.showEvent(QStringLiteral("  %1  %2  (%3)")
                                .arg(label, exactText(record.value(key).toDouble()),
                                     QString(date).replace(QLatin1Char('T'), QLatin1Char(' '))));
    };
    showExtreme(QStringLiteral("minimum"), QStringLiteral("MinValue"));
    showExtreme(QStringLiteral("maximum"), QStringLiteral("MaxValue"));
}

void PeakMeter::finish()
{
    if (!acknowledge()) {
        return;
    }
    if (m_hasInputTrouble) {
        leave(InputTrouble);
    } else {
        leave(m_refusedLines > 0 ? LinesRefused : AllTaken);
    }
}

void PeakMeter::leave(ExitCode exitCode)
{
    m_input->setEnabled(false);
    m_endSignals->setEnabled(false);
    m_acknowledgeTimer.stop();
    showSummary();
    Q_EMIT finished(exitCode);
}
