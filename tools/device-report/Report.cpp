#include "Report.h"

#include "common/CommandLine.h"

#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

ReportSection::ReportSection(const QString& member) : m_member(member) {}

void ReportSection::addKnown(const QString& member, const QString& label, const QJsonValue& value,
                             const QString& text)
{
    m_facts.append({member, label, value, text.isEmpty() ? value.toString() : text, false});
}

void ReportSection::addAbsent(const QString& member, const QString& label, const QString& text)
{
    m_facts.append({member, label, QJsonValue(), text, false});
}

void ReportSection::addMissing(const QString& member, const QString& label, const QString& reason)
{
    m_facts.append({member, label, QJsonValue(), reason, true});
}

void ReportSection::addHidden(const QString& member)
{
    m_facts.append({member, QString(), QJsonValue(), QString(), false});
}

void Report::add(const ReportSection& section)
{
    m_sections.append(section);
}

bool Report::isComplete() const
{
    for (const ReportSection& section : m_sections) {
        for (const ReportSection::Fact& fact : section.m_facts) {
            if (fact.isMissing) {
                return false;
            }
        }
    }
    return true;
}

QByteArray Report::toText() const
{
    int width = 0;
    for (const ReportSection& section : m_sections) {
        for (const ReportSection::Fact& fact : section.m_facts) {
            width = qMax(width, fact.label.size());
        }
    }

    QHash<QString, QString> labelOfReason; // of the line that states the reason
    QString text;
    for (const ReportSection& section : m_sections) {
        if (!text.isEmpty()) {
            text += QLatin1Char('\n');
        }
        for (const ReportSection::Fact& fact : section.m_facts) {
            if (fact.label.isEmpty()) {
                continue;
            }
            const QString label = fact.label + QLatin1Char(':');
            QString value = fact.text;
            if (fact.isMissing) {
                const bool isSaid = labelOfReason.contains(fact.text);
                value = QStringLiteral("not known (%1)")
                            .arg(isSaid ? QStringLiteral("see %1").arg(labelOfReason[fact.text])
                                        : fact.text);
                labelOfReason.insert(fact.text, labelOfReason.value(fact.text, fact.label));
            }
            text +=
                label.leftJustified(width + 2) + CommandLine::printable(value) + QLatin1Char('\n');
        }
    }
    return text.toUtf8();
}

QByteArray Report::toJson() const
{
    QJsonObject report;
    QJsonArray missing;
    for (const ReportSection& section : m_sections) {
        QJsonObject members;
        for (const ReportSection::Fact& fact : section.m_facts) {
            members.insert(fact.member, fact.value);
            if (fact.isMissing) {
                missing.append(QJsonObject{
                    {QStringLiteral("member"), section.m_member + QLatin1Char('.') + fact.member},
                    {QStringLiteral("reason"), fact.text}});
            }
        }
        report.insert(section.m_member, members);
    }
    report.insert(QStringLiteral("missing"), missing);
    return QJsonDocument(report).toJson();
}
