#ifndef TOOLS_INILINT_INPUTFILES_H
#define TOOLS_INILINT_INPUTFILES_H

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace InputFiles {

// A file to check, or what is wrong with its path.
struct Input
{
    QString path;
    QString error;
};

// Whether an argument means standard input, and the name of a file in the results.
bool isStandardInput(const QString& path);
QString shownName(const QString& path);

// Returns the files that arguments name. For a directory, these are the files in it and below whose
// names match one of the patterns, sorted; symbolic links to directories are not followed.
QVector<Input> find(const QStringList& arguments, const QStringList& patterns);

} // namespace InputFiles

#endif
