#ifndef TESTS_LINTTRUTH_H
#define TESTS_LINTTRUTH_H

#include "IniLook.h"

#include "ini-lint/Finding.h"

#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

/*
 * Compares the findings in a text with what QSettings reads: each error must mark a place that is
 * read differently than it looks; a text without errors and warnings must have no such place.
 */
class LintTruth
{
public:
    // Creates copies of the text in a directory.
    LintTruth(const QByteArray& text, const Findings& findings, const QString& directory);

    // Where findings and QSettings contradict each other, such as "line 3: [rule] ...".
    QStringList contradictions() const;

private:
    // What a program reads that lists all keys first.
    struct Reading
    {
        QVariantMap values;
        bool hasFormatError;
    };
    static Reading readAll(const QString& filePath);
    Reading readCopy(const QByteArray& text) const;
    QString writeCopy(const QByteArray& text) const;

    bool isTrue(const Finding& error) const;
    bool isLineRead(int number) const;
    bool isAnyLineLost(int first, int last) const;
    bool isSectionLost(int number) const;
    bool isOtherLineSkipped(int number) const;
    bool dependsOnOrder(const QString& path) const;

    // What QSettings reads differently than it looks, in a text without findings.
    QStringList surprises() const;
    QString firstLookUp(const QString& path) const;

    const QByteArray m_text;
    const Findings m_findings;
    const QString m_directory;
    const IniLook m_look;
    const Reading m_reading;
};

#endif
