#include "PeakFile.h"

#include "common/CommandLine.h"
#include "common/WholeFile.h"

#include <DragIndicator.h>

#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSaveFile>

namespace {

// A valid file has some hundred bytes; any other file need not be read to its end.
constexpr qint64 maxSize = 65536;

const QString dateKeys[] = {QStringLiteral("MinValueDate"), QStringLiteral("MaxValueDate")};

bool isEmptyRecord(const QJsonObject& record)
{
    return record.value(QStringLiteral("Initialized")) == QJsonValue(false);
}

// A record without a value has empty dates, which an import reports as errors. Returns the records
// with these dates filled in, so that the import reports only real errors.
QJsonArray withDates(const QJsonArray& records)
{
    const QString anyDate = QDateTime::currentDateTime().toString(Qt::ISODate);
    QJsonArray result;
    for (const QJsonValue& value : records) {
        QJsonObject record = value.toObject();
        for (const QString& key : dateKeys) {
            if (isEmptyRecord(record) && record.value(key) == QJsonValue(QString())) {
                record.insert(key, anyDate);
            }
        }
        result.append(value.isObject() ? QJsonValue(record) : value);
    }
    return result;
}

bool isValid(const QJsonObject& record)
{
    // An invalid date is empty after the import.
    const bool hasDates = !record.value(dateKeys[0]).toString().isEmpty() &&
                          !record.value(dateKeys[1]).toString().isEmpty();
    const bool isRange = record.value(QStringLiteral("MinValue")).toDouble() <=
                         record.value(QStringLiteral("MaxValue")).toDouble();
    return isEmptyRecord(record) || (hasDates && isRange);
}

bool areValid(const QJsonArray& records)
{
    DragIndicator indicator;
    if (!indicator.fromJsonArray(withDates(records))) {
        return false;
    }
    const QJsonArray imported = indicator.asJsonArray();
    return isValid(imported.at(0).toObject()) && isValid(imported.at(1).toObject());
}

} // namespace

PeakFile::PeakFile(const QString& path)
    : m_path(path), m_name(CommandLine::printable(path)), m_lock(path + QStringLiteral(".lock"))
{
    // A run may take any time. QLockFile removes the lock of a process that was killed.
    m_lock.setStaleLockTime(0);
}

ExitCode PeakFile::restore(DragIndicator& indicator)
{
    if (!m_lock.tryLock() && m_lock.error() == QLockFile::LockFailedError) {
        return refuse(QStringLiteral("another peak-meter is using it"));
    }
    const ExitCode exitCode = read(indicator);
    if (exitCode != AllTaken) {
        return exitCode;
    }
    // Report a write error now, not after the first hour of a measurement.
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly)) {
        CommandLine::printError(writeError(file.errorString()));
        return NotSaved;
    }
    return AllTaken;
}

ExitCode PeakFile::read(DragIndicator& indicator) const
{
    const QFileInfo info(m_path);
    if (!info.exists()) {
        return AllTaken;
    }
    if (!info.isFile()) {
        return refuse(QStringLiteral("it is not a regular file"));
    }
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        return refuse(file.errorString());
    }
    QJsonParseError error = {};
    const QJsonDocument document = QJsonDocument::fromJson(file.read(maxSize), &error);
    const QString unchanged = QStringLiteral("; the file is unchanged");
    if (error.error != QJsonParseError::NoError) {
        return refuse(QStringLiteral("damaged: %1").arg(error.errorString()) + unchanged);
    }
    if (!areValid(document.array())) {
        return refuse(QStringLiteral("it does not contain two valid records") + unchanged);
    }
    indicator.fromJsonArray(document.array());
    return AllTaken;
}

QString PeakFile::save(const DragIndicator& indicator) const
{
    const QByteArray json = QJsonDocument(indicator.asJsonArray()).toJson();
    const QString error = WholeFile::replace(m_path, json);
    return error.isEmpty() ? QString() : writeError(error);
}

ExitCode PeakFile::refuse(const QString& reason) const
{
    CommandLine::printError(QStringLiteral("cannot restore from %1: %2").arg(m_name, reason));
    return NotRestored;
}

QString PeakFile::writeError(const QString& reason) const
{
    return QStringLiteral("cannot write %1: %2").arg(m_name, reason);
}
