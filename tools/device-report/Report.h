#ifndef TOOLS_DEVICEREPORT_REPORT_H
#define TOOLS_DEVICEREPORT_REPORT_H

#include <QtCore/QByteArray>
#include <QtCore/QJsonValue>
#include <QtCore/QString>
#include <QtCore/QVector>

// A group of facts. Each one is a line of the text report and a member of the JSON report.
class ReportSection
{
public:
    explicit ReportSection(const QString& member);

    // Adds a known value. If text is given, the text report shows it instead of the value.
    void addKnown(const QString& member, const QString& label, const QJsonValue& value,
                  const QString& text = QString());
    // Adds a value that may be absent; text says so, for example "none".
    void addAbsent(const QString& member, const QString& label, const QString& text);
    // Adds a value that should be there but is not.
    void addMissing(const QString& member, const QString& label, const QString& reason);
    // Adds a null member to the JSON report only: another line of the text report has the reason.
    void addHidden(const QString& member);

private:
    friend class Report;

    struct Fact
    {
        QString member;
        QString label; // empty: JSON only
        QJsonValue value;
        QString text;
        bool isMissing;
    };

    QString m_member;
    QVector<Fact> m_facts;
};

// All facts about a device.
class Report
{
public:
    void add(const ReportSection& section);

    // Returns true if nothing is missing.
    bool isComplete() const;
    // Returns aligned lines, with control characters escaped.
    QByteArray toText() const;
    // Returns one object with an object for each section; unknown values are null.
    QByteArray toJson() const;

private:
    QVector<ReportSection> m_sections;
};

#endif
