#include "LintTruth.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <QtCore/QSettings>

#include <algorithm>

namespace {

const QString notFound = QStringLiteral("(not found)");

// Whether QSettings looks up the path as it is; it normalizes others.
bool isNormalized(const QString& path)
{
    const QLatin1Char slash('/');
    return !path.isEmpty() && !path.startsWith(slash) && !path.endsWith(slash) &&
           !path.contains(QStringLiteral("//"));
}

bool isVisible(const Finding& finding)
{
    return finding.severity != Severity::Note;
}

} // namespace

LintTruth::LintTruth(const QByteArray& text, const Findings& findings, const QString& directory)
    : m_text(text)
    , m_findings(findings)
    , m_directory(directory)
    , m_look(text)
    , m_reading(readCopy(text))
{
}

// QSettings caches what it has read from a file, so each copy has a different name.
QString LintTruth::writeCopy(const QByteArray& text) const
{
    static int copies = 0;
    QFile file(QDir(m_directory).filePath(QStringLiteral("copy%1.ini").arg(++copies)));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        qFatal("%s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
    }
    return file.fileName();
}

LintTruth::Reading LintTruth::readAll(const QString& filePath)
{
    const QSettings settings(filePath, QSettings::IniFormat);
    Reading result;
    for (const QString& key : settings.allKeys()) {
        if (isNormalized(key)) {
            result.values.insert(key, settings.value(key));
        }
    }
    result.hasFormatError = settings.status() == QSettings::FormatError;
    return result;
}

LintTruth::Reading LintTruth::readCopy(const QByteArray& text) const
{
    const QString copy = writeCopy(text);
    const Reading result = readAll(copy);
    QFile::remove(copy);
    return result;
}

QString LintTruth::firstLookUp(const QString& path) const
{
    const QString copy = writeCopy(m_text);
    const QString result = [&] {
        const QSettings settings(copy, QSettings::IniFormat);
        return settings.contains(path) ? settings.value(path).toString() : notFound;
    }();
    QFile::remove(copy);
    return result;
}

QStringList LintTruth::contradictions() const
{
    QStringList result;
    for (const Finding& finding : m_findings) {
        if (finding.severity == Severity::Error && !isTrue(finding)) {
            result.append(QStringLiteral("line %1: [%2] is read as it looks: %3")
                              .arg(QString::number(finding.line), finding.rule, finding.message));
        }
    }
    const bool hasFinding = std::any_of(m_findings.cbegin(), m_findings.cend(), &isVisible);
    return hasFinding ? result : result + surprises();
}

bool LintTruth::isTrue(const Finding& error) const
{
    static const QRegularExpression lastLine(QStringLiteral("^everything up to line (\\d+)"));

    const int line = error.firstLine;
    if (error.rule == QStringLiteral("multi-line")) {
        const QRegularExpressionMatch match = lastLine.match(error.message);
        return isAnyLineLost(line, match.hasMatch() ? match.captured(1).toInt() : m_look.count());
    }
    if (error.message.contains(QStringLiteral("UTF-16"))) {
        return isAnyLineLost(1, m_look.count());
    }
    if (error.rule == QStringLiteral("read-order")) {
        return dependsOnOrder(m_look.line(line).path());
    }
    if (error.rule == QStringLiteral("no-equals")) {
        return isOtherLineSkipped(line);
    }
    switch (m_look.line(line).kind) {
    case IniLook::Entry:
        return !isLineRead(line);
    case IniLook::Section:
        return isSectionLost(line);
    default:
        // Such as "[a]b": its text must not be read as a key.
        return !m_reading.values.contains(m_look.line(line).path());
    }
}

// Whether an entry has the value that it appears to have.
bool LintTruth::isLineRead(int number) const
{
    const IniLook::Line& line = m_look.line(number);
    const auto value = m_reading.values.constFind(line.path());
    return value != m_reading.values.cend() && value->toString() == line.value;
}

bool LintTruth::isAnyLineLost(int first, int last) const
{
    for (int number = first; number <= qMin(last, m_look.count()); ++number) {
        const IniLook::Kind kind = m_look.line(number).kind;
        if ((kind == IniLook::Entry && !isLineRead(number)) ||
            (kind == IniLook::Section && isSectionLost(number)) || kind == IniLook::Other) {
            return true;
        }
    }
    return false;
}

// Whether a key in the next line would not be in the section in which it appears to be.
bool LintTruth::isSectionLost(int number) const
{
    IniLook::Line probe = m_look.line(number);
    probe.name = QStringLiteral("a probe key");
    const QByteArray text = m_look.withLineAfter(number, probe.name.toLatin1() + "=1");
    return !readCopy(text).values.contains(probe.path());
}

bool LintTruth::isOtherLineSkipped(int number) const
{
    const bool isMerged =
        std::any_of(m_findings.cbegin(), m_findings.cend(), [number](const Finding& finding) {
            return finding.firstLine == number && finding.rule == QStringLiteral("multi-line");
        });
    if (isMerged) {
        return !m_reading.values.contains(m_look.line(number).path());
    }
    return m_reading.hasFormatError &&
           readCopy(m_look.withoutLine(number)).values == m_reading.values;
}

// Whether the value of a path depends on what was looked up before.
bool LintTruth::dependsOnOrder(const QString& path) const
{
    const QString copy = writeCopy(m_text);
    QSet<QString> values = {m_reading.values.value(path, notFound).toString()};
    {
        const QSettings settings(copy, QSettings::IniFormat);
        for (int i = 0; i < 2; ++i) {
            values.insert(settings.contains(path) ? settings.value(path).toString() : notFound);
        }
        (void)settings.allKeys();
        values.insert(settings.value(path).toString());
    }
    QFile::remove(copy);
    return values.size() > 1;
}

QStringList LintTruth::surprises() const
{
    QStringList result;
    QSet<QString> paths;
    for (int number = 1; number <= m_look.count(); ++number) {
        const IniLook::Line& line = m_look.line(number);
        if (line.kind == IniLook::Other) {
            result.append(QStringLiteral("line %1: is skipped").arg(number));
        } else if (line.kind == IniLook::Entry) {
            const QString value = isNormalized(line.path()) ? firstLookUp(line.path()) : notFound;
            paths.insert(line.path());
            if (value != line.value) {
                result.append(QStringLiteral("line %1: '%2' is read as '%3'")
                                  .arg(QString::number(number), line.value, value));
            }
        }
    }
    // A key that is commented out with '#' is read as another key, which no program looks up.
    static const QRegularExpression comment(QStringLiteral("(^|/)(\u00EF\u00BB\u00BF)?[ \\t]*#"));
    for (const QString& path : m_reading.values.keys()) {
        if (!paths.contains(path) && !path.contains(comment)) {
            result.append(QStringLiteral("there is a key '%1'").arg(path));
        }
    }
    return result;
}
