#include "ChildProcess.h"
#include "HostileText.h"
#include "IniFileManager.h"
#include "IniTestCase.h"
#include "LiteralIniFile.h"

#include <cerrno>
#include <csignal>
#include <type_traits>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

static_assert(
    std::is_same<decltype(IniFileManager::sm_CleanUpFunctions), QList<void (*)(QString&)>>::value,
    "the published type");

using CleanUpFunctions = QList<void (*)(QString&)>;
Q_DECLARE_METATYPE(CleanUpFunctions)

namespace {

// The number of reads that return half of the requested bytes before all further reads fail; -1: no
// read fails.
int readsBeforeFailure = -1;

} // namespace

// Interposes read() to simulate a medium that is removed during the read.
extern "C" Q_DECL_EXPORT ssize_t read(int descriptor, void* buffer, size_t size)
{
    using Function = ssize_t (*)(int, void*, size_t);
    static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "read"));
    if (readsBeforeFailure < 0) {
        return next(descriptor, buffer, size);
    }
    if (readsBeforeFailure == 0) {
        errno = EIO;
        return -1;
    }
    --readsBeforeFailure;
    return next(descriptor, buffer, size / 2);
}

namespace {

// Replaces the process-wide list of functions during the object's lifetime.
class CleanUpFunctionsGuard
{
public:
    explicit CleanUpFunctionsGuard(const CleanUpFunctions& functions)
        : m_functions(IniFileManager::sm_CleanUpFunctions)
    {
        IniFileManager::sm_CleanUpFunctions = functions;
    }

    ~CleanUpFunctionsGuard() { IniFileManager::sm_CleanUpFunctions = m_functions; }

    Q_DISABLE_COPY(CleanUpFunctionsGuard)

private:
    const CleanUpFunctions m_functions;
};

// The functions of the list are plain pointers, so their state is global.
QStringList seenTexts;
QString directoryToRemove;

void appendA(QString& text)
{
    seenTexts.append(text);
    text += QLatin1Char('A');
}

void appendB(QString& text)
{
    seenTexts.append(text);
    text += QLatin1Char('B');
}

void recordText(QString& text)
{
    seenTexts.append(text);
}

void removeDirectory(QString&)
{
    QDir(directoryToRemove).removeRecursively();
}

void keepText(QString&) {}

// Not stat(), which fails on 32-bit machines for files of 2 GiB or more.
ino64_t inodeOf(const QString& filePath)
{
    struct stat64 status = {};
    if (stat64(QFile::encodeName(filePath).constData(), &status) != 0) {
        qFatal("cannot find %s", qPrintable(filePath));
    }
    return status.st_ino;
}

} // namespace

class tst_IniFileManagerCleanUp : public IniTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void randomFilesMatchTheLiteralVersion_data();
    void randomFilesMatchTheLiteralVersion();
    void cleanUpCommentsReplacesEscapes_data();
    void cleanUpCommentsReplacesEscapes();
    void cleanUpListSeparatorsReplacesCommas_data();
    void cleanUpListSeparatorsReplacesCommas();
    void fileIsRewritten_data();
    void fileIsRewritten();
    void cleanedFileIsReadAsIntended();
    void defaultFunctionsAreTheTwoSteps();

    void unchangedFileIsReplacedAtomically();
    void permissionsAreKept();
    void linkIsKept();
    void missingFileIsNotCreated_data();
    void missingFileIsNotCreated();
    void emptyPathWarns();
    void fileRemovedBeforeItIsWritten();
    void missingPermissionIsReported_data();
    void missingPermissionIsReported();
    void failedReplacementLogsNothing_data();
    void failedReplacementLogsNothing();

    void partlyReadFileIsKept();
    void unreadableFileOfSizeZeroIsKept();
    void oneFreeDescriptorIsEnough();
    void fileTooLargeForAByteArrayIsKept();

    void functionsRunInOrder_data();
    void functionsRunInOrder();
    void functionsReceiveTheTextOfTheFile_data();
    void functionsReceiveTheTextOfTheFile();
    void nullFunctionsAreSkipped_data();
    void nullFunctionsAreSkipped();
    void withoutFunctionsOnlyLineEndingsChange();
};

void tst_IniFileManagerCleanUp::cleanUpCommentsReplacesEscapes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("cleaned");

    const auto row = [](const char* situation, const char* text, const char* cleaned) {
        QTest::newRow(situation) << QString::fromUtf8(text) << QString::fromUtf8(cleaned);
    };
    row("empty", "", "");
    row("nothing to replace", "a=1, %2 23 #", "a=1, %2 23 #");
    row("one occurrence", "%23", "#");
    row("every occurrence", "%23a%23%23=%23\n%23", "#a##=#\n#");
    row("result is not replaced again", "%2%233", "%2#3");
    row("left to right", "%%2323", "%#23");
    row("other escapes are kept", "%20%2C%24", "%20%2C%24");
    row("fullwidth digits are kept", "%\xef\xbc\x92\xef\xbc\x93", "%\xef\xbc\x92\xef\xbc\x93");
}

void tst_IniFileManagerCleanUp::cleanUpCommentsReplacesEscapes()
{
    QFETCH(QString, text);
    QFETCH(QString, cleaned);
    IniFileManager::cleanUpComments(text);
    QCOMPARE(text, cleaned);
}

void tst_IniFileManagerCleanUp::cleanUpListSeparatorsReplacesCommas_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("cleaned");

    const auto row = [](const char* situation, const char* text, const char* cleaned) {
        QTest::newRow(situation) << QString::fromUtf8(text) << QString::fromUtf8(cleaned);
    };
    row("empty", "", "");
    row("nothing to replace", "a;b %23 %2C", "a;b %23 %2C");
    row("one occurrence", ",", " ");
    row("every occurrence", ",a,,b,\n,", " a  b \n ");
    row("key, section, comment, quotes", "[a,b]\nc,d=\"e,f\"\n;g,h", "[a b]\nc d=\"e f\"\n;g h");
    row("other commas are kept", "\xd8\x8c\xef\xbc\x8c", "\xd8\x8c\xef\xbc\x8c");
}

void tst_IniFileManagerCleanUp::cleanUpListSeparatorsReplacesCommas()
{
    QFETCH(QString, text);
    QFETCH(QString, cleaned);
    IniFileManager::cleanUpListSeperators(text);
    QCOMPARE(text, cleaned);
}

void tst_IniFileManagerCleanUp::fileIsRewritten_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("cleaned");

    const auto row = [](const char* situation, const QByteArray& content,
                        const QByteArray& cleaned) {
        QTest::newRow(situation) << content << cleaned;
    };
    row("empty", "", "");
    row("nothing to replace", "[A]\nk=1\n", "[A]\nk=1\n");
    row("no line feed at the end", "k=1", "k=1");
    row("both steps", "c=%23ff,%2300\n", "c=#ff #00\n");
    row("steps do not interact", "%2,3", "%2 3");
    row("comma everywhere", "a,b=1,2\n[C,D]\n;e,f\n", "a b=1 2\n[C D]\n;e f\n");
    row("carriage return and line feed", "a=1\r\nb=2\r\n", "a=1\nb=2\n");
    row("single carriage return", "a=1\rb=2\r", "a=1b=2");
    row("only carriage returns", "\r\r\r", "");
    row("byte order mark", "\xef\xbb\xbf[A]\nk=1\n", "[A]\nk=1\n");
    row("only a byte order mark", "\xef\xbb\xbf", "");
    row("byte order mark in the middle", "k=\xef\xbb\xbf\n", "k=\xef\xbb\xbf\n");
    row("zero byte", QByteArray("a=1\nb=\0002\nc,=3\n", 14), "a=1\nb=");
    row("trailing zero byte", QByteArray("a,b\0", 4), "a b");
    row("leading zero byte", QByteArray("\0a=1\n", 5), "");
    row("text of many multi-byte characters", "k=\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80,\n",
        "k=\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80 \n");
    row("Latin-1", "k=\xe4\n", "k=\xef\xbf\xbd\n");
    row("text truncated inside a character", "k=\xe2\x82", "k=\xef\xbf\xbd\xef\xbf\xbd");
    row("text longer than a buffer", QByteArray(100000, ','), QByteArray(100000, ' '));
}

void tst_IniFileManagerCleanUp::fileIsRewritten()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, cleaned);
    writeIni(content);
    IniFileManager::cleanUp(iniFile());
    QVERIFY(QFile::exists(iniFile()));
    QCOMPARE(readFile(iniFile()), cleaned);
}

void tst_IniFileManagerCleanUp::cleanedFileIsReadAsIntended()
{
    writeIni("color=%23ff0000\nlist=a,b,c\n");
    IniFileManager::cleanUp(iniFile());
    const IniFileManager manager(iniFile(), nullptr);
    QCOMPARE(manager.getGeneralValue(QStringLiteral("color"), 0),
             QVariant(QStringLiteral("#ff0000")));
    QCOMPARE(manager.getGeneralValue(QStringLiteral("list"), 0), QVariant(QStringLiteral("a b c")));
}

void tst_IniFileManagerCleanUp::defaultFunctionsAreTheTwoSteps()
{
    const CleanUpFunctions expected = {&IniFileManager::cleanUpComments,
                                       &IniFileManager::cleanUpListSeperators};
    QCOMPARE(IniFileManager::sm_CleanUpFunctions.size(), 2);
    QVERIFY(IniFileManager::sm_CleanUpFunctions == expected);
}

void tst_IniFileManagerCleanUp::unchangedFileIsReplacedAtomically()
{
    writeIni("k=1\n");
    const ino64_t before = inodeOf(iniFile());
    IniFileManager::cleanUp(iniFile());
    QVERIFY(inodeOf(iniFile()) != before);
    QCOMPARE(readFile(iniFile()), QByteArray("k=1\n"));
    // No temporary file remains.
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             words("settings.ini"));
}

void tst_IniFileManagerCleanUp::permissionsAreKept()
{
    writeIni("k=1,2\n");
    const QFileDevice::Permissions permissions = QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                 QFileDevice::ReadUser | QFileDevice::WriteUser |
                                                 QFileDevice::ReadGroup;
    QVERIFY(QFile::setPermissions(iniFile(), permissions));
    IniFileManager::cleanUp(iniFile());
    QCOMPARE(readFile(iniFile()), QByteArray("k=1 2\n"));
    QCOMPARE(QFile::permissions(iniFile()), permissions);
}

void tst_IniFileManagerCleanUp::linkIsKept()
{
    writeIni("k=1,2\n");
    const QString link = path("link.ini");
    QVERIFY(QFile::link(iniFile(), link));
    IniFileManager::cleanUp(link);
    QCOMPARE(QFile::symLinkTarget(link), iniFile());
    QCOMPARE(readFile(iniFile()), QByteArray("k=1 2\n"));
}

void tst_IniFileManagerCleanUp::missingFileIsNotCreated_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing file") << "none.ini";
    QTest::newRow("missing directory") << "none/none.ini";
    QTest::newRow("dangling link") << "link.ini";
    QTest::newRow("directory") << "directory.ini";
}

void tst_IniFileManagerCleanUp::missingFileIsNotCreated()
{
    QFETCH(QString, name);
    QVERIFY(QFile::link(path("nowhere"), path("link.ini")));
    QVERIFY(QDir().mkdir(path("directory.ini")));
    const CleanUpFunctionsGuard guard({&recordText});
    seenTexts.clear();

    messages()
        .expectWarning("IniFileManager",
                       QStringLiteral("Can not open file: \"%1\"").arg(path(name)))
        .function("static void IniFileManager::cleanUp(const QString&)");
    IniFileManager::cleanUp(path(name));

    QCOMPARE(seenTexts, QStringList());
    QCOMPARE(QDir(directory())
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
             words("directory.ini link.ini"));
    QVERIFY(QDir(path("directory.ini")).isEmpty());
}

void tst_IniFileManagerCleanUp::emptyPathWarns()
{
    // Qt itself warns about a file without a name.
    messages().expect(QtWarningMsg, "QFSFileEngine::open: No file name specified");
    messages().expectWarning("IniFileManager", "Can not open file: \"\"");
    IniFileManager::cleanUp(QString());
}

void tst_IniFileManagerCleanUp::fileRemovedBeforeItIsWritten()
{
    directoryToRemove = path("sub");
    QVERIFY(QDir().mkdir(directoryToRemove));
    const QString file = writeFile("sub/settings.ini", "k=1\n");
    const CleanUpFunctionsGuard guard({&removeDirectory});
    messages()
        .expectWarning("IniFileManager", QStringLiteral("Can not open file: \"%1\"").arg(file))
        .function("static void IniFileManager::cleanUp(const QString&)");
    IniFileManager::cleanUp(file);
    QVERIFY(!QFile::exists(directoryToRemove));
}

void tst_IniFileManagerCleanUp::missingPermissionIsReported_data()
{
    QTest::addColumn<int>("filePermissions");
    QTest::addColumn<int>("directoryPermissions");
    QTest::newRow("unreadable file") << 0x2222 << 0x7777;
    QTest::newRow("read-only file") << 0x4444 << 0x7777;
    QTest::newRow("read-only directory") << 0x6666 << 0x5555;
    QTest::newRow("read-only file and directory") << 0x4444 << 0x5555;
}

void tst_IniFileManagerCleanUp::missingPermissionIsReported()
{
    QFETCH(int, filePermissions);
    QFETCH(int, directoryPermissions);
    const QByteArray content = "k=1,2\r\n%23\n";
    writeIni(content);
    const ino64_t before = inodeOf(iniFile());
    QVERIFY(QFile::setPermissions(iniFile(), QFileDevice::Permissions(filePermissions)));
    QVERIFY(QFile::setPermissions(directory(), QFileDevice::Permissions(directoryPermissions)));

    const ChildResult result = ChildProcess::runAsOrdinaryUser([this] {
        IniFileManager::cleanUp(iniFile());
        return 0;
    });

    // Restored before any check can fail, so that the directory can be removed.
    QVERIFY(QFile::setPermissions(directory(), QFileDevice::Permissions(0x7700)));
    QVERIFY(QFile::setPermissions(iniFile(), QFileDevice::Permissions(0x6600)));
    QVERIFY(result.exited);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(QString::fromLocal8Bit(result.output),
             QStringLiteral("Can not open file: \"%1\"\n").arg(iniFile()));
    QCOMPARE(readFile(iniFile()), content);
    QCOMPARE(inodeOf(iniFile()), before);
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             words("settings.ini"));
}

void tst_IniFileManagerCleanUp::failedReplacementLogsNothing_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("free");
    QTest::newRow("small file, no free space") << 50 << 0;
    QTest::newRow("small file, little free space") << 50 << 10;
    QTest::newRow("large file, no free space") << 100000 << 0;
    QTest::newRow("large file, little free space") << 100000 << 20000;
}

void tst_IniFileManagerCleanUp::failedReplacementLogsNothing()
{
    QFETCH(int, size);
    QFETCH(int, free);
    const QByteArray content = QByteArray(size, ',');
    writeIni(content);
    const ChildResult result = ChildProcess::run([this, free] {
        // The temporary file can be opened but not written, as on a full disk.
        signal(SIGXFSZ, SIG_IGN);
        rlimit limit = {};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlim_t unlimited = limit.rlim_cur;
        limit.rlim_cur = rlim_t(free);
        setrlimit(RLIMIT_FSIZE, &limit);
        IniFileManager::cleanUp(iniFile());
        limit.rlim_cur = unlimited;
        setrlimit(RLIMIT_FSIZE, &limit);
        return 0;
    });
    QVERIFY(result.exited);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(readFile(iniFile()), content);
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             words("settings.ini"));
}

// QFile does not report an error if a read fails after its first bytes.
void tst_IniFileManagerCleanUp::partlyReadFileIsKept()
{
    const QByteArray content = QByteArray("a=%23,\n").repeated(10000);
    for (int reads = 0; reads < 5; ++reads) {
        writeIni(content);
        const ino64_t before = inodeOf(iniFile());
        readsBeforeFailure = reads;
        IniFileManager::cleanUp(iniFile());
        readsBeforeFailure = -1;
        QCOMPARE(readFile(iniFile()), content);
        QCOMPARE(inodeOf(iniFile()), before);
    }
}

void tst_IniFileManagerCleanUp::oneFreeDescriptorIsEnough()
{
    writeIni("a=%23,\n");
    const ChildResult result = ChildProcess::run([this] {
        // The first call opens descriptors that later calls use.
        IniFileManager::cleanUp(path("missing"));
        rlimit limit = {};
        getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = 64;
        setrlimit(RLIMIT_NOFILE, &limit);
        int last = -1;
        for (int descriptor = 0; descriptor >= 0; descriptor = open("/dev/null", O_RDONLY)) {
            last = descriptor;
        }
        close(last);
        IniFileManager::cleanUp(iniFile());
        return 0;
    });
    QVERIFY(result.exited);
    QCOMPARE(result.output,
             QStringLiteral("Can not open file: \"%1\"\n").arg(path("missing")).toLocal8Bit());
    QCOMPARE(readFile(iniFile()), QByteArray("a=# \n"));
}

// A file of size 0 may have content, as kernel files do.
void tst_IniFileManagerCleanUp::unreadableFileOfSizeZeroIsKept()
{
    writeIni("");
    const ino64_t before = inodeOf(iniFile());
    readsBeforeFailure = 0;
    IniFileManager::cleanUp(iniFile());
    readsBeforeFailure = -1;
    QCOMPARE(inodeOf(iniFile()), before);
}

// Qt reads no bytes from such a file; cleanUp() must not empty it.
void tst_IniFileManagerCleanUp::fileTooLargeForAByteArrayIsKept()
{
    writeIni("a=%23,\n");
    const qint64 size = qint64(5) * 1024 * 1024 * 1024;
    QVERIFY(QFile::resize(iniFile(), size));
    const ino64_t before = inodeOf(iniFile());
    IniFileManager::cleanUp(iniFile());
    QCOMPARE(QFileInfo(iniFile()).size(), size);
    QCOMPARE(inodeOf(iniFile()), before);
}

void tst_IniFileManagerCleanUp::functionsRunInOrder_data()
{
    QTest::addColumn<CleanUpFunctions>("functions");
    QTest::addColumn<QStringList>("seen");
    QTest::addColumn<QByteArray>("cleaned");

    QTest::newRow("library's and application's functions")
        << CleanUpFunctions{&appendA, &IniFileManager::cleanUpListSeperators, &appendB,
                            &appendA, &IniFileManager::cleanUpComments,       &recordText}
        << QStringList{"%23,", "%23 A", "%23 AB", "# ABA"} << QByteArray("# ABA");
    // The same number of functions as the default.
    QTest::newRow("two functions of the application")
        << CleanUpFunctions{&appendA, &appendB} << words("%23, %23,A") << QByteArray("%23,AB");
    QTest::newRow("the library's functions in reverse order")
        << CleanUpFunctions{&IniFileManager::cleanUpListSeperators, &recordText,
                            &IniFileManager::cleanUpComments}
        << QStringList("%23 ") << QByteArray("# ");
    QTest::newRow("one of the library's functions twice")
        << CleanUpFunctions{&IniFileManager::cleanUpComments, &IniFileManager::cleanUpComments}
        << QStringList() << QByteArray("#,");
}

void tst_IniFileManagerCleanUp::functionsRunInOrder()
{
    QFETCH(CleanUpFunctions, functions);
    QFETCH(QStringList, seen);
    QFETCH(QByteArray, cleaned);
    writeIni("%23,");
    const CleanUpFunctionsGuard guard(functions);
    seenTexts.clear();
    IniFileManager::cleanUp(iniFile());
    QCOMPARE(seenTexts, seen);
    QCOMPARE(readFile(iniFile()), cleaned);
    QVERIFY(IniFileManager::sm_CleanUpFunctions == functions);
}

void tst_IniFileManagerCleanUp::functionsReceiveTheTextOfTheFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty file") << QByteArray() << QString();
    QTest::newRow("UTF-8") << QByteArray("\xc3\xa4\r\n,") << QString::fromUtf8("\xc3\xa4\n,");
    QTest::newRow("zero byte") << QByteArray("a\0b", 3) << "a";
}

void tst_IniFileManagerCleanUp::functionsReceiveTheTextOfTheFile()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, text);
    writeIni(content);
    const CleanUpFunctionsGuard guard({&recordText});
    seenTexts.clear();
    IniFileManager::cleanUp(iniFile());
    QCOMPARE(seenTexts, QStringList(text));
}

void tst_IniFileManagerCleanUp::nullFunctionsAreSkipped_data()
{
    QTest::addColumn<QString>("functions"); // "0" is a null pointer
    QTest::addColumn<QByteArray>("cleaned");
    QTest::newRow("first") << "0AB" << QByteArray("xAB");
    QTest::newRow("middle") << "A0B" << QByteArray("xAB");
    QTest::newRow("last") << "AB0" << QByteArray("xAB");
    QTest::newRow("several") << "0B00A0" << QByteArray("xBA");
    QTest::newRow("only null functions") << "0" << QByteArray("x");
}

void tst_IniFileManagerCleanUp::nullFunctionsAreSkipped()
{
    QFETCH(QString, functions);
    QFETCH(QByteArray, cleaned);
    writeIni("x");
    CleanUpFunctions list;
    for (const QChar function : qAsConst(functions)) {
        if (function == QLatin1Char('0')) {
            list.append(nullptr);
            messages()
                .expectWarning("IniFileManager", "Function pointer is Null.")
                .function("static void IniFileManager::cleanUp(const QString&)");
        } else {
            list.append(function == QLatin1Char('A') ? &appendA : &appendB);
        }
    }
    const CleanUpFunctionsGuard guard(list);
    IniFileManager::cleanUp(iniFile());
    QCOMPARE(readFile(iniFile()), cleaned);
    QVERIFY(IniFileManager::sm_CleanUpFunctions == list);
}

void tst_IniFileManagerCleanUp::withoutFunctionsOnlyLineEndingsChange()
{
    writeIni("%23,\r\n");
    const CleanUpFunctionsGuard guard({});
    IniFileManager::cleanUp(iniFile());
    QCOMPARE(readFile(iniFile()), QByteArray("%23,\n"));
}

void tst_IniFileManagerCleanUp::randomFilesMatchTheLiteralVersion_data()
{
    QTest::addColumn<CleanUpFunctions>("functions");
    const CleanUpFunctions usual = IniFileManager::sm_CleanUpFunctions;
    QTest::newRow("default functions") << usual;
    // An additional function requires the entire text.
    QTest::newRow("one additional function") << usual + CleanUpFunctions{&keepText};
}

void tst_IniFileManagerCleanUp::randomFilesMatchTheLiteralVersion()
{
    QFETCH(CleanUpFunctions, functions);
    const CleanUpFunctionsGuard guard(functions);
    QRandomGenerator random(2);
    const int count = rounds(500);
    for (int i = 0; i < count; ++i) {
        // Some files have more than one chunk.
        QByteArray content = hostileText(random);
        if (random.bounded(20) == 0) {
            content = content.repeated(random.bounded(5000)) + hostileText(random);
        }
        const QString file = writeFile("file", content);
        const QByteArray expected = LiteralIniFile::cleanUp(file);
        IniFileManager::cleanUp(file);
        QVERIFY2(readFile(file) == expected,
                 qPrintable(QStringLiteral("round %1: %2")
                                .arg(QString::number(i),
                                     QString::fromLatin1(content.left(200).toPercentEncoding()))));
    }
}

QTEST_GUILESS_MAIN(tst_IniFileManagerCleanUp)
#include "tst_IniFileManagerCleanUp.moc"
