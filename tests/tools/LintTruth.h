#ifndef TESTS_LINTTRUTH_H
#define TESTS_LINTTRUTH_H

#include "IniLook.h"

#include "ini-lint/Finding.h"

#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

/*
 * Compares the findings in a text with what QSettings reads: each error must be a place that is
 * read otherwise than it looks, and in a text without errors and warnings there must be none.
 */
class LintTruth
{
public:
    // Copies of the text are made in a directory.
    LintTruth(const QByteArray& text, const Findings& findings, const QString& directory);

    // What contradicts QSettings; "line 3: [rule] ...".
    QStringList contradictions() const;

private:
    // What the text is read as by a program that lists all keys first.
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
    bool isLinesPartLost(int first, int last) const;
    bool isSectionLost(int number) const;
    bool isOtherLineSkipped(int number) const;
    bool isOrderFelt(const QString& path) const;

    // What differs although nothing was found.
    QStringList surprises() const;
    QString firstLookUp(const QString& path) const;

    const QByteArray m_text;
    const Findings m_findings;
    const QString m_directory;
    const IniLook m_look;
    const Reading m_reading;
};

#endif
