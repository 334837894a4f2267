#ifndef TESTS_READERSAMPLES_H
#define TESTS_READERSAMPLES_H

#include "HardwareInfo.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

// The INI text of a board, the resulting record, and the warnings of HardwareInfoReader.
namespace ReaderSamples {

extern const QByteArray boardText;
extern const QStringList boardRecord;
extern const QStringList sixEmptyTexts;

// A record with values that show whether it was changed.
extern const QStringList untouched;
HardwareInfo usedRecord();
QStringList values(const HardwareInfo& info);

// The reader's warnings.
QString shortHeader(int count, const QString& image);
QString shortBlock(const QString& image);
QString failedSeek(quint32 address, const QString& image);
QString tooLong(quint32 length, const QString& image);
QString invalidChecksum(const QString& image);

} // namespace ReaderSamples

#endif
