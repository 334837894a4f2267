#ifndef TOOLS_DEVICEREPORT_REPORT_H
#define TOOLS_DEVICEREPORT_REPORT_H

#include <QtCore/QByteArray>
#include <QtCore/QJsonValue>
#include <QtCore/QString>
#include <QtCore/QVector>

// Facts under one heading: each is a line of text for people and a JSON member for tools.
class ReportSection
{
public:
    explicit ReportSection(const QString& member);

    // A fact. Where people want to read something else than the value, text is it.
    void addKnown(const QString& member, const QString& label, const QJsonValue& value,
                  const QString& text = QString());
    // What is rightly absent; the text says so: "none".
    void addAbsent(const QString& member, const QString& label, const QString& text);
    // What should be there and is not.
    void addMissing(const QString& member, const QString& label, const QString& reason);
    // A member that only tools see, as another line tells people why it is null.
    void addHidden(const QString& member);

private:
    friend class Report;

    struct Fact
    {
        QString member;
        QString label; // empty: for tools only
        QJsonValue value;
        QString text;
        bool isMissing;
    };

    QString m_member;
    QVector<Fact> m_facts;
};

// What is known of a device.
class Report
{
public:
    void add(const ReportSection& section);

    // Whether nothing is missing.
    bool isComplete() const;
    // Aligned lines; control characters of values are escaped.
    QByteArray toText() const;
    // One object with an object per section; what is not known is null.
    QByteArray toJson() const;

private:
    QVector<ReportSection> m_sections;
};

#endif
