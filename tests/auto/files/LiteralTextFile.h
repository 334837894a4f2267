#ifndef TESTS_LITERALTEXTFILE_H
#define TESTS_LITERALTEXTFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

// What TextFileParser does, by the obvious way.
namespace LiteralTextFile {

// The text of a file's bytes; null when there is nothing but carriage returns.
QString content(QByteArray bytes);

// The texts of the matches.
QStringList multiMatch(const QString& content, const QRegularExpression& expression);

// The texts as one, null ones told apart from empty ones.
QString described(const QStringList& texts);

} // namespace LiteralTextFile

#endif
