#include "Benchmark.h"
#include "WildcardFilter.h"

#include <filesystem>

using namespace Benchmark;

namespace {

// Directories of a hundred files; every tenth file is an INI file.
QString tree(int files)
{
    const QString name = QStringLiteral("tree-%1").arg(files);
    for (int i = 0; i < files && !QFile::exists(path(name + QStringLiteral("-complete"))); ++i) {
        const QString directory = name + QStringLiteral("/directory-%1/").arg(i / 100);
        QDir().mkpath(path(directory));
        file(directory + QStringLiteral("%1.%2").arg(i).arg(i % 10 ? "txt" : "ini"),
             [](QIODevice&) {});
    }
    file(name + QStringLiteral("-complete"), [](QIODevice&) {});
    return path(name);
}

const QStringList all;
const QStringList iniFiles(QStringLiteral("*.ini"));

template <const QStringList& patterns>
void measureSearch(int files)
{
    const QString root = tree(files);
    const auto search = [&root] {
        QStringList result;
        searchFilesOnPathRecursive(root, patterns, result);
        return result;
    };
    // Compares one by one, because a second list would increase the peak memory use.
    const auto check = [&root](const QStringList& result) {
        QDirIterator each(root, patterns, QDir::NoFilter, QDirIterator::Subdirectories);
        for (const QString& name : result) {
            QCOMPARE(name, QDir(root).relativeFilePath(each.next()));
        }
        QVERIFY(!each.hasNext());
    };
    measureChecked(search, check);
}

template <const QStringList& patterns>
void measureQtWalk(int files)
{
    const QString root = tree(files);
    const auto walk = [&root] {
        int entries = 0;
        QDirIterator each(root, patterns, QDir::NoFilter, QDirIterator::Subdirectories);
        for (; each.hasNext(); each.next()) {
            ++entries;
        }
        return entries;
    };
    // Each directory, and the entries "." and ".." of each directory and the root.
    const int directories = files / 100;
    measure(walk, patterns.isEmpty() ? files + directories + 2 * (directories + 1) : files / 10);
}

void measureStandardWalk(int files)
{
    const std::string root = tree(files).toStdString();
    const auto walk = [&root] {
        const auto entries = std::filesystem::recursive_directory_iterator(root);
        return int(std::distance(begin(entries), end(entries)));
    };
    measure(walk, files + files / 100);
}

} // namespace

class tst_bench_FileSearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void searchFilesOnPathRecursive() { runRow(); }
    void searchFilesOnPathRecursive_data()
    {
        const Rows rows("files", {100, 1000, 10000, 100000});
        rows.add("MiscTools", &measureSearch<all>);
        rows.add("QDirIterator, walk alone", &measureQtWalk<all>);
        rows.add("std::filesystem, walk alone", &measureStandardWalk);
    }

    void searchIniFiles() { runRow(); }
    void searchIniFiles_data()
    {
        const Rows rows("files", {1000});
        rows.add("MiscTools", &measureSearch<iniFiles>);
        rows.add("QDirIterator, walk alone", &measureQtWalk<iniFiles>);
    }
};

QTEST_GUILESS_MAIN(tst_bench_FileSearch)
#include "tst_bench_FileSearch.moc"
