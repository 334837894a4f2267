#include "WildcardFilter.h"
#include "support/Program.h"
#include "support/Workspace.h"

#include <QtCore/QDirIterator>

#include <filesystem>

namespace {

constexpr int filesPerFolder = 100;

// Folders of a hundred files each, ten to a folder of their own.
QString tree(int files)
{
    return Workspace::filledFolder(
        QStringLiteral("tree-%1").arg(files), [files](const QString& root) {
            const QDir rootFolder(root);
            for (int i = 0; i < files; i += filesPerFolder) {
                const int number = i / filesPerFolder;
                const QString folder =
                    QStringLiteral("part-%1/folder-%2").arg(number / 10).arg(number % 10);
                rootFolder.mkpath(folder);
                for (int j = 0; j < filesPerFolder; ++j) {
                    Workspace::write(QStringLiteral("%1/%2/file-%3.%4")
                                         .arg(root, folder)
                                         .arg(j, 3, 10, QLatin1Char('0'))
                                         .arg(QLatin1String(j % 10 == 0 ? "ini" : "txt")),
                                     QByteArray());
                }
            }
        });
}

QStringList patterns(const QString& pattern)
{
    return pattern.isEmpty() ? QStringList() : QStringList(pattern);
}

// What the search is to give: the iterator's entries, as paths relative to the folder.
QStringList literalSearch(const QString& path, const QStringList& filters)
{
    QStringList result;
    const QDir folder(path);
    QDirIterator entries(path, filters, QDir::NoFilter, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        result.append(folder.relativeFilePath(entries.next()));
    }
    return result;
}

void addSearch(Contenders& contenders, int files, const QString& pattern)
{
    const QString path = tree(files);
    const QStringList filters = patterns(pattern);
    const auto isComplete = [files, pattern](int entries) {
        return entries >= (pattern.isEmpty() ? files : files / 10);
    };
    contenders.subject(
        [path, filters] {
            QStringList result;
            searchFilesOnPathRecursive(path, filters, result);
            return result;
        },
        [path, filters, isComplete](const QStringList& result) {
            return isComplete(result.size()) && result == literalSearch(path, filters);
        });
    contenders
        .peer(
            QStringLiteral("QDirIterator, walk alone"),
            [path, filters] {
                int entries = 0;
                QDirIterator iterator(path, filters, QDir::NoFilter, QDirIterator::Subdirectories);
                while (iterator.hasNext()) {
                    iterator.next();
                    ++entries;
                }
                return entries;
            },
            isComplete)
        .atMost(1.25);
    if (pattern.isEmpty()) {
        contenders.peer(
            QStringLiteral("std::filesystem, walk alone"),
            [folder = path.toStdString()] {
                int entries = 0;
                for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
                    keep(entry);
                    ++entries;
                }
                return entries;
            },
            isComplete);
    }
}

Operation search(const QString& name, int files, const QString& pattern)
{
    return Operation(
        name, [files, pattern](Contenders& contenders) { addSearch(contenders, files, pattern); });
}

Operations operations()
{
    Operations all = {
        search(QStringLiteral("names, 1,000 files"), 1000, QString()).counted(2),
        search(QStringLiteral("names, 100,000 files"), 100000, QString())
            .inTable()
            .peakMeasured()
            .limit(Measure::PeakMemory, 25 * 1000 * 1000 / 1024),
        search(QStringLiteral("names *.ini, 1,000 files"), 1000, QStringLiteral("*.ini"))
            .counted(2),
    };
    for (const int files : {100, 1000, 10000, 100000}) {
        all.push_back(search(QStringLiteral("names plot, %1").arg(files), files, QString())
                          .inPlot(QStringLiteral("file search"), QStringLiteral("files"), files));
    }
    return all;
}

} // namespace

int main(int argc, char* argv[])
{
    return Program::run(argc, argv, operations());
}
