#include "LintReport.h"

#include "common/CommandLine.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTextCodec>

namespace {

const QString fileMember = QStringLiteral("file");

// Bytes as a line of text: UTF-8 as it is, other bytes and marks that nobody sees by their numbers.
QString shown(const QByteArray& bytes)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0) {
        return CommandLine::printable(text).replace(QChar(QChar::ByteOrderMark),
                                                    QStringLiteral("\\xef\\xbb\\xbf"));
    }
    QString result;
    for (const char byte : bytes) {
        const bool isAscii = quint8(byte) < 0x80;
        result += isAscii ? CommandLine::printable(QString(QLatin1Char(byte)))
                          : QStringLiteral("\\x%1").arg(quint8(byte), 2, 16, QLatin1Char('0'));
    }
    return result;
}

QJsonObject toJson(const Finding& finding)
{
    return {{QStringLiteral("line"), finding.line},
            {QStringLiteral("rule"), finding.rule},
            {QStringLiteral("message"), finding.message}};
}

QJsonObject toJson(const CleanUp::Change& change)
{
    return {
        {QStringLiteral("line"), change.line},
        {QStringLiteral("before"), shown(change.before)},
        {QStringLiteral("after"), change.after ? QJsonValue(shown(*change.after)) : QJsonValue()}};
}

template <typename Items>
QJsonArray toJsonArray(const Items& items)
{
    QJsonArray result;
    for (const auto& item : items) {
        result.append(toJson(item));
    }
    return result;
}

} // namespace

LintReport::LintReport(bool isJson) : m_display(QString()), m_isJson(isJson) {}

void LintReport::begin(const QString& file, int number, int count)
{
    m_display.setActivity(QStringLiteral("file %1 of %2: %3")
                              .arg(number)
                              .arg(count)
                              .arg(CommandLine::printable(file)));
}

void LintReport::addFindings(const QString& file, const Findings& findings)
{
    m_isEmpty = m_isEmpty && findings.isEmpty();
    if (m_isJson) {
        m_files.append(
            QJsonObject{{fileMember, file}, {QStringLiteral("findings"), toJsonArray(findings)}});
        return;
    }
    for (const Finding& finding : findings) {
        m_display.print(QStringLiteral("%1:%2: %3 [%4]")
                            .arg(CommandLine::printable(file), QString::number(finding.line),
                                 finding.message, finding.rule));
    }
}

void LintReport::addChanges(const QString& file, const CleanUp::Changes& changes, bool isDone)
{
    m_isEmpty = m_isEmpty && changes.isEmpty();
    if (m_isJson) {
        m_files.append(QJsonObject{{fileMember, file},
                                   {QStringLiteral("changes"), toJsonArray(changes)},
                                   {QStringLiteral("done"), isDone}});
        return;
    }
    for (const CleanUp::Change& change : changes) {
        const QString place = QStringLiteral("%1:%2: ").arg(CommandLine::printable(file),
                                                            QString::number(change.line));
        m_display.print(place + QStringLiteral("- ") + shown(change.before));
        if (change.after) {
            m_display.print(place + QStringLiteral("+ ") + shown(*change.after));
        }
    }
}

void LintReport::addTrouble(const QString& file, const QString& trouble)
{
    m_hasTrouble = true;
    m_files.append(QJsonObject{{fileMember, file}, {QStringLiteral("trouble"), trouble}});
    m_display.complain(QStringLiteral("%1: %2").arg(CommandLine::printable(file), trouble));
}

void LintReport::finish()
{
    if (m_isJson) {
        const QJsonObject report{{QStringLiteral("files"), m_files}};
        m_display.print(QString::fromUtf8(QJsonDocument(report).toJson()).trimmed());
    }
}
