#include "PeakMeter.h"

#include "RangeLine.h"

#include "common/CommandLine.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

constexpr int acknowledgeIntervalInMs = 100;
constexpr auto resettable = DragIndicator::ResettableInstance;

// Parses a finite decimal number. One that is too small for a double is rounded, possibly to zero.
std::optional<double> numberIn(const QByteArray& text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (isNumber) {
        return std::isfinite(value) ? std::make_optional(value) : std::nullopt;
    }
    // QByteArray::toDouble() fails on underflow.
    static const QRegularExpression decimal(
        QStringLiteral("^[+-]?(\\d+\\.?\\d*|\\.\\d+)[eE][+-]?\\d+$"));
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    const double rounded = strtod_l(text.constData(), nullptr, plain);
    const bool isTooSmall = decimal.match(QString::fromLatin1(text)).hasMatch() &&
                            std::abs(rounded) < std::numeric_limits<double>::min();
    return isTooSmall ? std::make_optional(rounded) : std::nullopt;
}

QString toLine(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QString count(qint64 number, const QString& what)
{
    return QStringLiteral("%1 %2%3").arg(QString::number(number), what,
                                         number == 1 ? QString() : QStringLiteral("s"));
}

// Returns enough of a line to recognize it.
QString beginningOf(const QByteArray& line)
{
    constexpr int length = 40;

    const QString text = QString::fromUtf8(line.constData(), line.size());
    return CommandLine::printable(text.left(length)) +
           (text.size() > length ? QStringLiteral("...") : QString());
}

} // namespace

PeakMeter::PeakMeter(const QString& file, bool isJson)
    : m_file(file.isEmpty() ? nullptr : new PeakFile(file))
    , m_isJson(isJson)
    , m_isTyped(isatty(STDIN_FILENO) != 0)
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
    m_endNotifier.reset(new QSocketNotifier(m_signals.openDescriptor(), QSocketNotifier::Read));
    connect(m_endNotifier.data(), &QSocketNotifier::activated, this, &PeakMeter::finish);
    m_input.reset(new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read));
    connect(m_input.data(), &QSocketNotifier::activated, this, &PeakMeter::readInput);

    if (m_display.isLive() && m_isTyped && !m_isJson) {
        m_display.showEvent(QStringLiteral("Enter one number per line; Ctrl-D ends the input."));
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
        printError(QStringLiteral("cannot read standard input: %1").arg(qt_error_string(errno)));
        m_hasInputError = true;
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
    if (const auto value = numberIn(text)) {
        takeValue(*value);
    } else {
        refuseLine(QStringLiteral("not a finite number: '%1'").arg(beginningOf(text)));
    }
}

void PeakMeter::refuseLine(const QString& reason)
{
    ++m_refusedLines;
    printError(QStringLiteral("line %1: %2").arg(QString::number(m_lines), reason));
}

void PeakMeter::takeValue(double value)
{
    const bool isFirst = !m_indicator.isInitialized(resettable);
    const bool isMinimum = isFirst || value < m_indicator.getMinValue(resettable);
    const bool isMaximum = isFirst || value > m_indicator.getMaxValue(resettable);
    if (isMinimum || isMaximum) {
        m_news.append(newsLine(value, isMinimum, isMaximum));
    }
    m_mustSave = m_indicator.compute(value) || m_mustSave;
    m_value = value;
    ++m_values;
}

QString PeakMeter::newsLine(double value, bool isMinimum, bool isMaximum) const
{
    if (m_isJson) {
        return toLine({{QStringLiteral("event"), QStringLiteral("extreme")},
                       {QStringLiteral("line"), m_lines},
                       {QStringLiteral("value"), value},
                       {QStringLiteral("isMinimum"), isMinimum},
                       {QStringLiteral("isMaximum"), isMaximum}});
    }
    QStringList news;
    if (isMinimum) {
        news.append(QStringLiteral("minimum"));
    }
    if (isMaximum) {
        news.append(QStringLiteral("maximum"));
    }
    return QStringLiteral("line %1: new %2 %3")
        .arg(QString::number(m_lines), news.join(QStringLiteral(" and ")), exactText(value));
}

// On a terminal, the message must not follow the range on the same line.
void PeakMeter::printError(const QString& error)
{
    m_display.clearStatus();
    CommandLine::printError(error);
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

// Returns false if the run ends because of an error.
bool PeakMeter::acknowledge()
{
    if (!save()) {
        leave(NotSaved);
        return false;
    }
    if (!m_display.isLive() || m_isJson) {
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
        printError(error);
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
    if (m_isJson) {
        return;
    }
    // Separates what the user types from the value that is shown.
    const QString prompt = m_isTyped ? QStringLiteral("  > ") : QString();
    const int typingWidth = m_isTyped ? 10 : 0;
    m_display.showStatus(statusLine(m_display.columns() - prompt.size() - typingWidth) + prompt);
}

// Returns the record at an index as a JSON object; null if it has no value.
QJsonValue PeakMeter::recordJson(int index) const
{
    const QJsonObject record = m_indicator.asJsonArray().at(index).toObject();
    if (!record.value(QStringLiteral("Initialized")).toBool()) {
        return QJsonValue();
    }
    return QJsonObject{
        {QStringLiteral("minimum"), record.value(QStringLiteral("MinValue"))},
        {QStringLiteral("minimumDate"), record.value(QStringLiteral("MinValueDate"))},
        {QStringLiteral("maximum"), record.value(QStringLiteral("MaxValue"))},
        {QStringLiteral("maximumDate"), record.value(QStringLiteral("MaxValueDate"))}};
}

void PeakMeter::showJsonSummary()
{
    m_display.showEvent(
        toLine({{QStringLiteral("event"), QStringLiteral("summary")},
                {QStringLiteral("values"), m_values},
                {QStringLiteral("refusedLines"), m_refusedLines},
                {QStringLiteral("sinceReset"), recordJson(DragIndicator::ResettableInstance)},
                {QStringLiteral("ever"), recordJson(DragIndicator::PermanentInstance)}}));
}

void PeakMeter::showSummary()
{
    if (m_isJson) {
        showJsonSummary();
        return;
    }
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

void PeakMeter::showRecord(const QString& title, int index)
{
    const QJsonObject record = m_indicator.asJsonArray().at(index).toObject();
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
    if (m_hasInputError) {
        leave(InputError);
    } else {
        leave(m_refusedLines > 0 ? LinesRefused : AllTaken);
    }
}

void PeakMeter::leave(ExitCode exitCode)
{
    m_input->setEnabled(false);
    m_endNotifier->setEnabled(false);
    m_acknowledgeTimer.stop();
    showSummary();
    Q_EMIT finished(exitCode);
}
