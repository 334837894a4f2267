#include "InputFiles.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>

#include <algorithm>

using InputFiles::Input;

namespace {

QVector<Input> filesIn(const QString& directory, const QStringList& patterns)
{
    QVector<Input> result;
    const auto addUnreadable = [&result](const QFileInfo& info) {
        if (!info.isReadable() || !info.isExecutable()) {
            result.append({info.filePath(), QStringLiteral("the directory cannot be read")});
        }
    };
    addUnreadable(QFileInfo(directory));
    QDirIterator entries(directory,
                         QDir::Files | QDir::AllDirs | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QFileInfo info(entries.next());
        if (info.isDir()) {
            addUnreadable(info);
        } else if (QDir::match(patterns, info.fileName())) {
            result.append({info.filePath(), QString()});
        }
    }
    if (result.isEmpty()) {
        result.append({directory, QStringLiteral("no file in this directory matches '%1'")
                                      .arg(patterns.join(QStringLiteral("', '")))});
    }
    std::sort(result.begin(), result.end(),
              [](const Input& left, const Input& right) { return left.path < right.path; });
    return result;
}

} // namespace

bool InputFiles::isStandardInput(const QString& path)
{
    return path == QStringLiteral("-");
}

QString InputFiles::shownName(const QString& path)
{
    return isStandardInput(path) ? QStringLiteral("<stdin>") : path;
}

QVector<Input> InputFiles::find(const QStringList& arguments, const QStringList& patterns)
{
    QVector<Input> result;
    for (const QString& argument : arguments) {
        if (QFileInfo(argument).isDir()) {
            result += filesIn(argument, patterns);
        } else {
            result.append({argument, QString()});
        }
    }
    return result;
}
