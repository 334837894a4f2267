#ifndef TESTS_INIWARNINGS_H
#define TESTS_INIWARNINGS_H

#include "MessageRecorder.h"

#include <QtCore/QString>

// Expects the warnings of reading an INI file.
namespace IniWarnings {

// At construction: the file is missing.
void expectMissingFile(MessageRecorder& messages, const QString& filePath);

// The group has no such key.
void expectMissingKey(MessageRecorder& messages, const QString& filePath, const QString& key,
                      const QString& group);

// The value is not an integer; it is given as QDebug shows it: QVariant(QString, "7a").
void expectNoInteger(MessageRecorder& messages, const QString& filePath, const QString& value);

} // namespace IniWarnings

#endif
