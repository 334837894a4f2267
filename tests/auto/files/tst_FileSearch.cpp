#include "ChildProcess.h"
#include "QtVersion.h"
#include "RecursiveFileSearchWorkerThread.h"
#include "TestCase.h"
#include "WildcardFilter.h"

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRandomGenerator>
#include <QtCore/QTextCodec>
#include <QtCore/QThreadPool>

#include <filesystem>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

Q_DECLARE_METATYPE(QDir::Filters)

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr uint smallStackSize = 512 * 1024; // the sanitizer needs larger stack frames
#else
constexpr uint smallStackSize = 64 * 1024; // less than the minimum of 64-bit ARM
#endif

// Creates entries with arbitrary bytes as names: Qt can neither create nor remove names that are
// not valid UTF-8.
class Tree
{
public:
    explicit Tree(const QString& root) : m_root(QFile::encodeName(root) + '/') {}
    ~Tree()
    {
        for (const auto& entry : std::filesystem::directory_iterator(m_root.constData())) {
            std::filesystem::remove_all(entry.path());
        }
    }

    void addDirectory(const QByteArray& name) const
    {
        require(mkdir((m_root + name).constData(), 0755) == 0, name);
    }
    void addFile(const QByteArray& name) const
    {
        const int descriptor = open((m_root + name).constData(), O_CREAT | O_EXCL | O_WRONLY, 0644);
        require(descriptor >= 0 && close(descriptor) == 0, name);
    }
    void addLink(const QByteArray& name, const QByteArray& target) const
    {
        require(symlink(target.constData(), (m_root + name).constData()) == 0, name);
    }
    void addPipe(const QByteArray& name) const
    {
        require(mkfifo((m_root + name).constData(), 0644) == 0, name);
    }
    void setMode(const QByteArray& name, mode_t mode) const
    {
        require(chmod((m_root + name).constData(), mode) == 0, name);
    }

private:
    Q_DISABLE_COPY(Tree)

    static void require(bool isDone, const QByteArray& name)
    {
        if (!isDone) {
            qFatal("cannot create or change %s", name.constData());
        }
    }

    QByteArray m_root;
};

// One entry of each type.
void addSmallTree(const Tree& tree)
{
    tree.addFile(".hidden.txt");
    tree.addDirectory(".hiddendirectory");
    tree.addFile(".hiddendirectory/inner.txt");
    tree.addFile("UPPER.TXT");
    tree.addFile("lower.txt");
    tree.addFile("data.bin");
    tree.addDirectory("empty");
    tree.addDirectory("sub");
    tree.addFile("sub/deep.txt");
    tree.addDirectory("sub/deeper.txt");
    tree.addFile("sub/deeper.txt/deepest.txt");
    tree.addLink("link.txt", "lower.txt");
    tree.addLink("linkeddirectory", "sub");
    tree.addLink("broken.txt", "nowhere");
    tree.addPipe("pipe.txt");
}

// Several hundred entries, with all types and names that occur on removable media.
void addLargeTree(const Tree& tree)
{
    addSmallTree(tree);
    for (int i = 0; i < 12; ++i) {
        const QByteArray directory = "directory" + QByteArray::number(i * 7 % 12);
        tree.addDirectory(directory);
        tree.addDirectory(directory + "/inner");
        tree.addFile(directory + "/.hidden");
        for (int j = 0; j < 25; ++j) {
            tree.addFile(directory + "/file" + QByteArray::number(j * 11 % 25) +
                         (j % 2 != 0 ? ".txt" : ".bin"));
        }
        for (int j = 0; j < 5; ++j) {
            tree.addFile(directory + "/inner/FILE" + QByteArray::number(j) + ".TXT");
        }
        tree.addLink(directory + "/up", "..");
        tree.addLink(directory + "/self", ".");
    }
    tree.addLink("loop", "loop");
    tree.addLink("linkedpipe", "pipe.txt");
    const QByteArray oddNames[] = {"line\nfeed.txt",
                                   "\xef\xbb\xbfmarked.txt",
                                   "\xef\xbb\xbf.marked.txt",
                                   "not a character \xef\xbf\xbe.txt",
                                   "replaced \xef\xbf\xbd.txt",
                                   "half \xed\xa0\x80 of a pair.txt",
                                   "gr\xc3\xbc\xc3\x9f.txt",
                                   "\xf0\x9f\x98\x80.txt",
                                   "latin\xe4.txt",
                                   "cut\xc3",
                                   " space .txt ",
                                   "...",
                                   "..dots",
                                   "trailing.",
                                   "back\\slash.txt",
                                   "star*.txt",
                                   "[set].txt",
                                   "percent%41.txt",
                                   ":colon.txt",
                                   "~"};
    for (const QByteArray& name : oddNames) {
        tree.addFile(name);
        tree.addDirectory("in " + name);
        tree.addFile("in " + name + "/" + name);
    }
    QByteArray deep = "deep";
    tree.addDirectory(deep);
    for (int i = 0; i < 40; ++i) {
        deep += "/d";
        tree.addDirectory(deep);
    }
    tree.addFile(deep + "/bottom.txt");
}

QStringList filePaths(const QFileInfoList& entries)
{
    QStringList paths;
    for (const QFileInfo& entry : entries) {
        paths.append(entry.filePath());
    }
    return paths;
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

// The reference that searches are compared with.
QStringList iterated(const QString& path, const QStringList& nameFilters, QDir::Filters filters)
{
    if (filters == QDir::NoFilter && isQtOfDebian11()) {
        filters = QDir::AllEntries; // as later versions interpret it
    }
    QStringList paths;
    QDirIterator iterator(path, nameFilters, filters, QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        paths.append(iterator.next());
    }
    return paths;
}

QStringList relativeTo(const QString& path, const QStringList& entryPaths)
{
    QStringList relativePaths;
    for (const QString& entryPath : entryPaths) {
        relativePaths.append(QDir(path).relativeFilePath(entryPath));
    }
    return relativePaths;
}

QStringList searched(const QString& path, const QStringList& nameFilters, QDir::Filters filters)
{
    QFileInfoList result;
    searchFilesOnPathRecursive(path, nameFilters, filters, result);
    return filePaths(result);
}

QStringList searched(const QString& path, const QStringList& nameFilters)
{
    QFileInfoList result;
    searchFilesOnPathRecursive(path, nameFilters, result);
    return filePaths(result);
}

QStringList searchedRelatively(const QString& path, const QStringList& nameFilters)
{
    QStringList result;
    searchFilesOnPathRecursive(path, nameFilters, result);
    return result;
}

bool isUtf8(const char* name)
{
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(name, int(qstrlen(name)), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

// All entries that QDir::NoFilter includes, read with system calls instead of Qt.
void readDirectory(const QByteArray& directory, QStringList& result)
{
    DIR* const stream = opendir(directory.constData());
    if (stream == nullptr) {
        return;
    }
    while (const dirent* entry = readdir(stream)) {
        const QByteArray name = entry->d_name;
        const QByteArray path = directory + '/' + name;
        const bool isDotOrDotDot = name == "." || name == "..";
        struct stat own = {};
        struct stat target = {};
        lstat(path.constData(), &own);
        const bool isLink = S_ISLNK(own.st_mode);
        const bool exists = stat(path.constData(), &target) == 0;
        const bool isHidden = name.startsWith('.') && !isDotOrDotDot;
        const bool isOrdinary = S_ISREG(own.st_mode) || S_ISDIR(own.st_mode) || isLink;
        if (isHidden || !exists || !isOrdinary || !isUtf8(entry->d_name)) {
            continue;
        }
        result.append(QFile::decodeName(path));
        if (S_ISDIR(own.st_mode) && !isDotOrDotDot) {
            readDirectory(path, result);
        }
    }
    closedir(stream);
}

class CurrentDirectory
{
public:
    explicit CurrentDirectory(const QString& path) : m_previous(QDir::currentPath())
    {
        QDir::setCurrent(path);
    }
    ~CurrentDirectory() { QDir::setCurrent(m_previous); }

private:
    Q_DISABLE_COPY(CurrentDirectory)

    QString m_previous;
};

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

class tst_FileSearch : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void noFilterListsEveryDecodableEntry();
    void entryTypes_data();
    void entryTypes();
    void largeTreeMatchesQDirIterator_data();
    void largeTreeMatchesQDirIterator();
    void randomTreesMatchQDirIterator();
    void deepTreesNeedLittleStack();
    void longPathsAreSearched();
    void searchWorksAtProgramExit();
    void otherLocaleEncodings_data();
    void otherLocaleEncodings();
    void unreadableDirectories();
    void startPathsAreResolved_data();
    void startPathsAreResolved();
    void entriesOfAnEmptyDirectory();
    void namesThatCannotBeEncoded();
    void unsearchablePathsHaveNoEntries_data();
    void unsearchablePathsHaveNoEntries();
    void resultsAreAppended();
    void pathsAreJoined_data();
    void pathsAreJoined();
};

void tst_FileSearch::noFilterListsEveryDecodableEntry()
{
    const Tree tree(directory());
    addLargeTree(tree);

    QStringList expected;
    readDirectory(QFile::encodeName(directory()), expected);
    QVERIFY(expected.size() > 400);
    QVERIFY(expected.contains(path("line\nfeed.txt")));
    QVERIFY(expected.contains(path(QFile::decodeName("gr\xc3\xbc\xc3\x9f.txt"))));
    QVERIFY(expected.contains(path("sub/deeper.txt/deepest.txt")));
    QVERIFY(expected.contains(path(".")));
    QVERIFY(expected.contains(path("linkedpipe")));

    QCOMPARE(searched(directory(), {}), expected);
    QCOMPARE(searched(directory(), {}, QDir::NoFilter), expected);
    QCOMPARE(searched(directory(), {QStringLiteral("*")}), expected);
    QCOMPARE(searchedRelatively(directory(), {}), relativeTo(directory(), expected));
}

void tst_FileSearch::entryTypes_data()
{
    QTest::addColumn<QDir::Filters>("filters");
    QTest::addColumn<QStringList>("patterns");
    QTest::addColumn<QStringList>("expected"); // sorted, relative to the directory

    const auto row = [](const char* name, QDir::Filters filters, const char* patterns,
                        const char* expected) {
        QTest::newRow(name) << filters << words(patterns) << sorted(words(expected));
    };
    const QDir::Filters filesAndDirectories = QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot;

    row("NoFilter ignores case, hidden, broken and special entries", QDir::NoFilter, "*.txt",
        "UPPER.TXT lower.txt link.txt sub/deep.txt sub/deeper.txt sub/deeper.txt/deepest.txt");
    row("NoFilter with a pattern in different case", QDir::NoFilter, "LOWER.*", "lower.txt");
    row("NoFilter with a pattern for dots", QDir::NoFilter, ".",
        ". empty/. sub/. sub/deeper.txt/.");
    row("NoFilter with a pattern for two dots", QDir::NoFilter, "..",
        ".. empty/.. sub/.. sub/deeper.txt/..");
    row("NoFilter with several patterns", QDir::NoFilter, "*.bin deep*",
        "data.bin sub/deep.txt sub/deeper.txt sub/deeper.txt/deepest.txt");
    row("NoFilter with a duplicate pattern", QDir::NoFilter, "*.bin *.bin", "data.bin");
    row("NoFilter finds a linked directory, not its content", QDir::NoFilter, "linked* deep.txt",
        "linkeddirectory sub/deep.txt");
    row("NoFilter with a character set", QDir::NoFilter, "[ul]*.txt",
        "UPPER.TXT lower.txt link.txt");
    row("NoFilter with a pattern for hidden entries", QDir::NoFilter, ".hidden*", "");
    row("NoFilter with a pattern that contains a directory", QDir::NoFilter, "sub/deep.txt", "");
    row("Files", QDir::Files, "*.txt",
        "UPPER.TXT lower.txt link.txt sub/deep.txt sub/deeper.txt/deepest.txt");
    row("Files, case-sensitive", QDir::Files | QDir::CaseSensitive, "*.txt",
        "lower.txt link.txt sub/deep.txt sub/deeper.txt/deepest.txt");
    row("Files, including hidden", QDir::Files | QDir::Hidden, "*.txt",
        ".hidden.txt .hiddendirectory/inner.txt UPPER.TXT lower.txt link.txt sub/deep.txt "
        "sub/deeper.txt/deepest.txt");
    row("Files without links", QDir::Files | QDir::NoSymLinks, "l*.txt", "lower.txt");
    row("Files and special files", QDir::Files | QDir::System, "*.txt",
        "UPPER.TXT lower.txt link.txt broken.txt pipe.txt sub/deep.txt "
        "sub/deeper.txt/deepest.txt");
    row("Files without a pattern", QDir::Files, "",
        "UPPER.TXT lower.txt data.bin link.txt sub/deep.txt sub/deeper.txt/deepest.txt");
    row("Dirs without dot entries", QDir::Dirs | QDir::NoDotAndDotDot, "",
        "empty sub sub/deeper.txt linkeddirectory");
    row("Dirs with dot entries", QDir::Dirs | QDir::NoDotDot, "",
        "empty sub sub/deeper.txt linkeddirectory . empty/. sub/. sub/deeper.txt/.");
    row("Dirs, including hidden", QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden, "",
        ".hiddendirectory empty sub sub/deeper.txt linkeddirectory");
    row("Dirs and a pattern", filesAndDirectories, "deep*",
        "sub/deep.txt sub/deeper.txt sub/deeper.txt/deepest.txt");
    row("AllDirs ignores patterns and enters hidden directories",
        QDir::AllDirs | QDir::Files | QDir::NoDotAndDotDot, "inner.txt",
        "empty linkeddirectory sub sub/deeper.txt .hiddendirectory/inner.txt");
    row("no entry type", QDir::Filters(), "", "");
}

void tst_FileSearch::entryTypes()
{
    QFETCH(QDir::Filters, filters);
    QFETCH(QStringList, patterns);
    QFETCH(QStringList, expected);
    const Tree tree(directory());
    addSmallTree(tree);

    QStringList expectedPaths;
    for (const QString& name : qAsConst(expected)) {
        expectedPaths.append(path(name));
    }
    QCOMPARE(sorted(searched(directory(), patterns, filters)), sorted(expectedPaths));
    if (filters == QDir::NoFilter) {
        QCOMPARE(sorted(searched(directory(), patterns)), sorted(expectedPaths));
    }
}

void tst_FileSearch::largeTreeMatchesQDirIterator_data()
{
    QTest::addColumn<QDir::Filters>("filters");
    QTest::addColumn<QStringList>("patterns");

    const QVector<QPair<const char*, QDir::Filters>> allFilters = {
        {"NoFilter", QDir::NoFilter},
        {"none", QDir::Filters()},
        {"Files", QDir::Files},
        {"Files, Hidden", QDir::Files | QDir::Hidden},
        {"Files, System", QDir::Files | QDir::System},
        {"Dirs", QDir::Dirs},
        {"AllDirs", QDir::AllDirs},
        {"AllEntries", QDir::AllEntries},
        {"AllEntries, CaseSensitive", QDir::AllEntries | QDir::CaseSensitive},
        {"AllEntries, NoSymLinks", QDir::AllEntries | QDir::NoSymLinks},
        {"AllEntries, NoDotAndDotDot", QDir::AllEntries | QDir::NoDotAndDotDot},
        {"AllEntries, Executable", QDir::AllEntries | QDir::Executable},
        {"all entries", QDir::AllEntries | QDir::AllDirs | QDir::Hidden | QDir::System}};
    for (const auto& filters : allFilters) {
        for (const char* patterns : {"", "*", "*.txt", "FILE? *.bin", "[!a]* .*", "nothing"}) {
            QTest::addRow("%s: <%s>", filters.first, patterns) << filters.second << words(patterns);
        }
    }
}

void tst_FileSearch::largeTreeMatchesQDirIterator()
{
    QFETCH(QDir::Filters, filters);
    QFETCH(QStringList, patterns);
    const Tree tree(directory());
    addLargeTree(tree);

    QCOMPARE(searched(directory(), patterns, filters), iterated(directory(), patterns, filters));
    const QStringList expected = iterated(directory(), patterns, QDir::NoFilter);
    QCOMPARE(searched(directory(), patterns), expected);
    QCOMPARE(searchedRelatively(directory(), patterns), relativeTo(directory(), expected));
}

void tst_FileSearch::randomTreesMatchQDirIterator()
{
    const QByteArray names[] = {"a",   "b.txt", "C.TXT",     ".d", "e f",  "g\nh.txt",
                                "..i", "\xe4j", "\xc3\xbck", "l.", "m\\n", "o*.txt"};
    const QStringList patterns = words("* *.txt ?.* .* [a-e]* . .. *k");
    const int nameCount = int(std::end(names) - std::begin(names));
    const Tree tree(directory());
    int found = 0;

    const quint32 count = quint32(rounds(300));
    for (quint32 seed = 0; seed < count; ++seed) {
        QRandomGenerator random(seed);
        const QString root = path(QString::number(seed));
        const QByteArray rootName = QByteArray::number(seed);
        tree.addDirectory(rootName);
        QVector<QByteArray> directories(1, rootName);
        QSet<QByteArray> taken;
        for (int i = random.bounded(20); i > 0; --i) {
            const QByteArray parent = directories.at(random.bounded(directories.size()));
            const QByteArray entry = parent + '/' + names[random.bounded(nameCount)];
            if (taken.contains(entry)) {
                continue;
            }
            taken.insert(entry);
            switch (random.bounded(5)) {
            case 0:
            case 1:
                tree.addFile(entry);
                break;
            case 2:
                tree.addLink(entry, names[random.bounded(nameCount)]);
                break;
            case 3:
                tree.addLink(entry, "..");
                break;
            default:
                tree.addDirectory(entry);
                directories.append(entry);
            }
        }
        QStringList nameFilters;
        for (int i = random.bounded(3); i > 0; --i) {
            nameFilters.append(patterns.at(random.bounded(patterns.size())));
        }
        const QDir::Filters filters(QFlag(int(random.bounded(0x8000))));

        const QStringList expected = iterated(root, nameFilters, QDir::NoFilter);
        const QByteArray seedName = "seed " + QByteArray::number(seed);
        QVERIFY2(searched(root, nameFilters) == expected, seedName.constData());
        QVERIFY2(searchedRelatively(root, nameFilters) == relativeTo(root, expected),
                 seedName.constData());
        QVERIFY2(searched(root, nameFilters, filters) == iterated(root, nameFilters, filters),
                 seedName.constData());
        QStringList systemEntries;
        readDirectory(QFile::encodeName(root), systemEntries);
        QVERIFY2(searched(root, {}) == systemEntries, seedName.constData());
        found += expected.size();
    }
    QVERIFY(found > 3 * int(count)); // the trees are not empty
}

// A tree as deep as the limit of descriptors allows, and a stack size that is realistic on a small
// device.
void tst_FileSearch::deepTreesNeedLittleStack()
{
    // With many open directories an emulator takes minutes.
    const int levels = isEmulated() ? 100 : 900;
    rlimit descriptors = {};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    descriptors.rlim_cur = qMax(descriptors.rlim_cur, rlim_t(levels + 100));
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &descriptors), 0);

    QVERIFY(QDir(directory()).mkpath(QStringLiteral("d/").repeated(levels)));
    QThreadPool pool;
    pool.setStackSize(qMax(smallStackSize, uint(sysconf(_SC_THREAD_STACK_MIN))));
    RecursiveFileSearchWorkerThread* const worker =
        new RecursiveFileSearchWorkerThread(directory(), QStringList()); // owned by the pool
    QStringList found;
    connect(
        worker, &RecursiveFileSearchWorkerThread::searchFinished, this,
        [&found](const QStringList& result) { found = result; }, Qt::DirectConnection);
    pool.start(worker);
    QVERIFY(pool.waitForDone());
    // Each directory is listed, with "." and "..".
    QCOMPARE(found.size(), levels + 2 * (levels + 1));
}

// The longest paths that the system accepts: 4,095 bytes.
void tst_FileSearch::longPathsAreSearched()
{
    const QString level = QLatin1Char('/') + QString(200, QLatin1Char('d'));
    QString deepest = directory();
    QStringList expected;
    while (deepest.size() + level.size() + 2 < 4096) {
        deepest += level;
        QVERIFY(QDir().mkpath(deepest));
        QFile file(deepest + "/f");
        QVERIFY(file.open(QIODevice::WriteOnly));
        expected.append(file.fileName());
    }
    QVERIFY(expected.constLast().size() > 3800);
    const QStringList patterns("f");
    QCOMPARE(sorted(searched(directory(), patterns)), sorted(expected));
    QCOMPARE(sorted(searchedRelatively(directory(), patterns)),
             sorted(relativeTo(directory(), expected)));
    // The same search, starting in the deepest directory.
    QCOMPARE(searched(deepest, patterns), QStringList(expected.constLast()));
    QCOMPARE(searchedRelatively(deepest, patterns), patterns);
}

// The program searches in a destructor that runs after Qt has destroyed its globals.
void tst_FileSearch::searchWorksAtProgramExit()
{
    writeFile("one", QByteArray());
    writeFile("two", QByteArray());
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QStringLiteral(SEARCH_AT_EXIT_PROGRAM), {directory()});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(program.readAll(), QByteArray("4 entries\n"));
}

void tst_FileSearch::otherLocaleEncodings_data()
{
    QTest::addColumn<QByteArray>("codec");
    for (const char* codec : {"UTF-8", "ISO-8859-1", "US-ASCII", "ISO-8859-15", "Shift_JIS"}) {
        QTest::newRow(codec) << QByteArray(codec);
    }
}

void tst_FileSearch::otherLocaleEncodings()
{
    QFETCH(QByteArray, codec);
    const Tree tree(directory());
    addLargeTree(tree);
    QTextCodec* const usual = QTextCodec::codecForLocale();
    QTextCodec* const other = QTextCodec::codecForName(codec);
    QVERIFY(other != nullptr);

    QTextCodec::setCodecForLocale(other);
    const QStringList expected = relativeTo(directory(), iterated(directory(), {}, QDir::NoFilter));
    const QStringList found = searchedRelatively(directory(), {});
    QTextCodec::setCodecForLocale(usual);
    QCOMPARE(found, expected);
    QVERIFY(found.size() > 400);
}

void tst_FileSearch::unreadableDirectories()
{
    const Tree tree(directory());
    addLargeTree(tree);
    tree.setMode("", 0755); // only its owner may enter a temporary directory
    tree.addDirectory("listable");
    tree.addFile("listable/seen.txt");
    tree.setMode("directory3", 0);
    tree.setMode("directory4/inner", 0311);
    tree.setMode("listable", 0444);

    const QString root = directory();
    const ChildResult child = ChildProcess::runAsOrdinaryUser([&root] {
        const QStringList patternsOfRows[] = {{}, {"*.txt"}};
        const QDir::Filters filtersOfRows[] = {QDir::NoFilter, QDir::Files,
                                               QDir::AllEntries | QDir::Readable,
                                               QDir::AllEntries | QDir::System};
        for (const QStringList& patterns : patternsOfRows) {
            for (const QDir::Filters filters : filtersOfRows) {
                if (searched(root, patterns, filters) != iterated(root, patterns, filters)) {
                    return 1;
                }
            }
        }
        const QStringList found = searchedRelatively(root, {});
        if (found != relativeTo(root, iterated(root, {}, QDir::NoFilter))) {
            return 2;
        }
        // The directories are found, but not their content.
        if (!found.contains("directory3") || !found.contains("directory4/inner")) {
            return 3;
        }
        for (const QString& entry : found) {
            if (entry.startsWith(QLatin1String("directory3/")) ||
                entry.startsWith(QLatin1String("directory4/inner/"))) {
                return 4;
            }
        }
        if (found.size() < 300) {
            return 5;
        }
        return searchedRelatively(root + "/directory3", {}).isEmpty() ? 0 : 6;
    });
    for (const char* name : {"directory3", "directory4/inner", "listable"}) {
        tree.setMode(name, 0755); // so that they can be removed
    }
    QCOMPARE(child.output, QByteArray());
    QVERIFY(child.exited);
    QCOMPARE(child.exitCode, 0);
}

void tst_FileSearch::startPathsAreResolved_data()
{
    QTest::addColumn<QString>("current"); // below the row's directory
    QTest::addColumn<QString>("start");   // %1 is the row's directory
    QTest::addColumn<QStringList>("expected");

    const auto row = [](const char* name, const char* current, const char* start,
                        const QStringList& expected) {
        QTest::newRow(name) << QString::fromLatin1(current) << QString::fromLatin1(start)
                            << sorted(expected);
    };
    const QStringList sub = words("deep.txt deeper.txt deeper.txt/deepest.txt");
    const QStringList top = words("sub/deep.txt sub/deeper.txt sub/deeper.txt/deepest.txt");
    const QStringList subFromTop = top;
    const QStringList linkedFromTop = words("linkeddirectory/deep.txt linkeddirectory/deeper.txt "
                                            "linkeddirectory/deeper.txt/deepest.txt");
    const QStringList topFromEmpty =
        words("../sub/deep.txt ../sub/deeper.txt ../sub/deeper.txt/deepest.txt");
    const QStringList subFromEmpty = topFromEmpty;

    row("absolute", "", "%1/sub", sub);
    row("absolute, trailing slash", "", "%1/sub/", sub);
    row("absolute, several trailing slashes", "", "%1/sub///", sub);
    row("absolute, double slash", "", "%1//sub", sub);
    row("absolute, with dot components", "", "%1/./empty/../sub", sub);
    row("absolute, linked", "", "%1/linkeddirectory", sub);
    row("absolute, parent of a link", "", "%1/linkeddirectory/..", top);
    row("absolute, above the current directory", "sub/deeper.txt", "%1/sub", sub);
    // QDir keeps a relative path relative to the current directory.
    row("relative", "", "sub", subFromTop);
    row("relative, trailing slash", "", "sub/", subFromTop);
    row("relative, with dot components", "", "./sub", subFromTop);
    row("relative, into the directory twice", "", "sub/../sub", subFromTop);
    row("relative, linked", "", "linkeddirectory", linkedFromTop);
    row("relative, linked, trailing slash", "", "linkeddirectory/", linkedFromTop);
    row("relative, parent of a link", "", "linkeddirectory/..", top);
    row("current directory", "sub", ".", sub);
    row("current directory, trailing slash", "sub", "./", sub);
    row("parent directory", "empty", "..", topFromEmpty);
    row("through the parent directory", "empty", "../sub", subFromEmpty);
    row("empty path", "sub", "", {});
    row("file", "", "lower.txt", {});
    row("missing directory", "", "missing", {});
    row("sibling of a missing directory", "", "missing/../sub", {});
}

void tst_FileSearch::startPathsAreResolved()
{
    QFETCH(QString, current);
    QFETCH(QString, start);
    QFETCH(QStringList, expected);
    const Tree tree(directory());
    addSmallTree(tree);
    const CurrentDirectory currentDirectory(path(current));
    const QString startPath = start.contains(QLatin1Char('%')) ? start.arg(directory()) : start;

    QCOMPARE(sorted(searchedRelatively(startPath, {QStringLiteral("deep*")})), expected);
    for (const QStringList& patterns : {QStringList(), words("*.txt"), words(". ..")}) {
        const QStringList entries = iterated(startPath, patterns, QDir::NoFilter);
        QCOMPARE(searched(startPath, patterns), entries);
        QCOMPARE(searchedRelatively(startPath, patterns), relativeTo(startPath, entries));
    }
}

void tst_FileSearch::entriesOfAnEmptyDirectory()
{
    const QStringList dots = {path("."), path("..")};
    QCOMPARE(sorted(searched(directory(), {})), dots);
    QCOMPARE(sorted(searched(directory(), {QStringLiteral("*")})), dots);
    QCOMPARE(sorted(searchedRelatively(directory(), {})), words(". ../"));
    QCOMPARE(sorted(searched(directory(), {QStringLiteral("*.*")})), dots);
    QCOMPARE(searched(directory(), {QStringLiteral("*.txt")}), QStringList());
}

void tst_FileSearch::namesThatCannotBeEncoded()
{
    // Encoding replaces or drops half of a surrogate pair.
    const QString half(QChar(0xd800));
    const QString start = path(half + QLatin1Char('b'));
    const Tree tree(directory());
    tree.addDirectory("?b");
    tree.addFile("?b/file.txt");
    QCOMPARE(iterated(start, {}, QDir::NoFilter).size(), 3);

    for (const QString& startPath : {start, path(half)}) {
        for (const QStringList& patterns : {QStringList(), words("*.txt")}) {
            const QStringList expected = iterated(startPath, patterns, QDir::NoFilter);
            QCOMPARE(searchedRelatively(startPath, patterns), relativeTo(startPath, expected));
        }
    }
}

void tst_FileSearch::unsearchablePathsHaveNoEntries_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing directory") << "missing";
    QTest::newRow("file") << "lower.txt";
    QTest::newRow("broken link") << "broken.txt";
    QTest::newRow("pipe") << "pipe.txt";
    QTest::newRow("directory below a file") << "lower.txt/directory";
    QTest::newRow("name too long") << QString(300, QLatin1Char('a'));
    QTest::newRow("NUL after a directory") << QStringLiteral("sub") + QChar(QChar::Null);
    QTest::newRow("NUL in a directory's name")
        << QStringLiteral("sub") + QChar(QChar::Null) + QStringLiteral("/deeper.txt");
}

void tst_FileSearch::unsearchablePathsHaveNoEntries()
{
    QFETCH(QString, name);
    const Tree tree(directory());
    addSmallTree(tree);

    QCOMPARE(searched(path(name), {}, QDir::AllEntries | QDir::System), QStringList());
    QCOMPARE(searched(path(name), {}), QStringList());
    QCOMPARE(searchedRelatively(path(name), {}), QStringList());
}

void tst_FileSearch::resultsAreAppended()
{
    writeFile("a.txt", "");
    const QStringList patterns("*.txt");
    const QFileInfo earlier("/earlier");
    const QString found = path("a.txt");

    QFileInfoList entries = {earlier};
    searchFilesOnPathRecursive(directory(), patterns, QDir::Files, entries);
    searchFilesOnPathRecursive(directory(), patterns, entries);
    searchFilesOnPathRecursive(path("missing"), patterns, entries);
    QCOMPARE(filePaths(entries), QStringList({earlier.filePath(), found, found}));

    QStringList names = {"earlier"};
    searchFilesOnPathRecursive(directory(), patterns, names);
    searchFilesOnPathRecursive(directory(), patterns, names);
    searchFilesOnPathRecursive(path("missing"), patterns, names);
    QCOMPARE(names, words("earlier a.txt a.txt"));
}

void tst_FileSearch::pathsAreJoined_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("joined");

    const auto row = [](const char* name, const char* first, const char* second,
                        const char* joined) {
        QTest::newRow(name) << QString::fromUtf8(first) << QString::fromUtf8(second)
                            << QString::fromUtf8(joined);
    };
    row("no slash", "/media/usb", "data", "/media/usb/data");
    row("slash at the end", "/media/usb/", "data", "/media/usb/data");
    row("two slashes at the end", "/media/usb//", "data", "/media/usb//data");
    row("slash at the start of the second", "a/", "/b", "a//b");
    row("slash only at the start of the second", "a", "/b", "a//b");
    row("empty first", "", "x", "/x");
    row("null first", nullptr, "x", "/x");
    row("empty second", "a", "", "a/");
    row("empty second after a slash", "a/", "", "a/");
    row("both empty", "", "", "/");
    row("root", "/", "x", "/x");
    row("relative", "a", "b", "a/b");
    row("dot components are kept", "a/..", "../b/./c/", "a/../../b/./c/");
    row("backslash is not a slash", "a\\", "b", "a\\/b");
    row("slash-like character is not a slash", "a\xe2\x88\x95", "b", "a\xe2\x88\x95/b");
    row("spaces are kept", " a ", " b ", " a / b ");
    row("umlauts", "\xc3\xa4", "\xc3\xbc", "\xc3\xa4/\xc3\xbc");
}

void tst_FileSearch::pathsAreJoined()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QString, joined);

    const QString firstBefore = first;
    QCOMPARE(concatenatePaths(first, second), joined);
    QCOMPARE(first, firstBefore);
}

QTEST_GUILESS_MAIN(tst_FileSearch)

#include "tst_FileSearch.moc"
