#ifndef TESTS_INIWARNINGS_H
#define TESTS_INIWARNINGS_H

#include "MessageRecorder.h"

#include <QtCore/QString>

// Expects the warnings of reading an INI file.
namespace IniWarnings {

// The constructor finds no file.
void expectMissingFile(MessageRecorder& messages, const QString& filePath);

// The group has no such key.
void expectMissingKey(MessageRecorder& messages, const QString& filePath, const QString& key,
                      const QString& group);

// The value is not an integer. Pass it in the format of QDebug: QVariant(QString, "7a").
void expectNoInteger(MessageRecorder& messages, const QString& filePath, const QString& value);

} // namespace IniWarnings

#endif
