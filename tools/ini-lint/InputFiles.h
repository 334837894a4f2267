#ifndef TOOLS_INILINT_INPUTFILES_H
#define TOOLS_INILINT_INPUTFILES_H

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace InputFiles {

// A file to look at, or what is wrong with the path.
struct Input
{
    QString path;
    QString trouble;
};

// Whether an argument means standard input, and the name of that in the results.
bool isStandardInput(const QString& path);
QString shownName(const QString& path);

// The files that arguments name. Of a directory those in it and below whose names fit one of the
// patterns, sorted; symbolic links to directories are not followed.
QVector<Input> find(const QStringList& arguments, const QStringList& patterns);

} // namespace InputFiles

#endif
