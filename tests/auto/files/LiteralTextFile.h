#ifndef TESTS_LITERALTEXTFILE_H
#define TESTS_LITERALTEXTFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

// A simple implementation of TextFileParser, which the library is compared with.
namespace LiteralTextFile {

// The text of a file's bytes; null if they are only carriage returns.
QString content(QByteArray bytes);

// The captured texts of all matches.
QStringList multiMatch(const QString& content, const QRegularExpression& expression);

// The texts as one string that distinguishes null from empty texts.
QString described(const QStringList& texts);

} // namespace LiteralTextFile

#endif
