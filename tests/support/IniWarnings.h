#ifndef TESTS_INIWARNINGS_H
#define TESTS_INIWARNINGS_H

#include "MessageRecorder.h"

#include <QtCore/QString>

// Announces the warnings that reading an INI file may make.
namespace IniWarnings {

// At construction: there is no file.
void expectMissingFile(MessageRecorder& messages, const QString& filePath);

// The file has no such key in the group.
void expectMissingKey(MessageRecorder& messages, const QString& filePath, const QString& key,
                      const QString& group);

// The value, as QDebug shows it, is no integer: QVariant(QString, "7a").
void expectNoInteger(MessageRecorder& messages, const QString& filePath, const QString& value);

} // namespace IniWarnings

#endif
