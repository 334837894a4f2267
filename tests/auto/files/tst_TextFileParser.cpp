#include "ChildProcess.h"
#include "CpuTime.h"
#include "LiteralTextFile.h"
#include "TestCase.h"
#include "TextFileParser.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QRandomGenerator>
#include <QtCore/QRegularExpression>
#include <QtCore/QTextCodec>

#include <atomic>
#include <cstdio>
#include <thread>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

Q_DECLARE_METATYPE(QRegularExpression::PatternOptions)

namespace {

const char* const signature = "void TextFileParser::setError(const QString&)";

using Options = QRegularExpression::PatternOptions;

// Whether expressions are compiled to machine code. Otherwise matching uses the heap instead of a
// small stack, and takes minutes for a long text.
const bool areExpressionsCompiled = qgetenv("QT_ENABLE_REGEXP_JIT") != "0";

// The outcome of matching an expression with a text.
enum Outcome
{
    NoMatch,
    LimitExceeded, // of steps or of the stack
    Invalid
};

// Peak memory use of this process.
int peakMemoryInMiB()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return int(usage.ru_maxrss / 1024);
}

int availableMemoryInMiB()
{
    TextFileParser memory("/proc/meminfo");
    return memory.match(QRegularExpression("MemAvailable:\\s+(\\d+)")).toInt() / 1024;
}

// Compares lists and, unlike QStringList, distinguishes null from empty texts.
QString difference(const QStringList& actual, const QStringList& expected)
{
    const QString actualTexts = LiteralTextFile::described(actual);
    const QString expectedTexts = LiteralTextFile::described(expected);
    return actualTexts == expectedTexts ? QString() : actualTexts + " instead of " + expectedTexts;
}

QString oneOf(QRandomGenerator& random, const QStringList& texts)
{
    return texts.at(random.bounded(texts.size()));
}

QByteArray randomBytes(QRandomGenerator& random)
{
    static const QList<QByteArray> pieces = {
        "a", "b",  "ab",   "A",        "1",        "23",   "=",        " ",
        "_", "\n", "\r\n", "\xc3\xa4", "\xff\xc3", "\r\r", "a=b1\na=", "\xf0\x9f\x98\x80"};
    QByteArray bytes;
    const int count = random.bounded(30);
    for (int i = 0; i < count; ++i) {
        bytes += pieces.at(random.bounded(pieces.size()));
    }
    if (random.bounded(10) == 0) {
        bytes.insert(random.bounded(bytes.size() + 1), '\0');
    }
    return bytes;
}

QString randomPattern(QRandomGenerator& random, int depth)
{
    if (depth == 0) {
        return oneOf(random, {"a", "b", ".", "\\w", "\\d", "\\s", "[ab=]", "[^a]", "^", "$", "\\b",
                              "=", "\\x{e4}", "\\n"});
    }
    const QString inner = randomPattern(random, depth - 1);
    switch (random.bounded(8)) {
    case 0:
        return inner + randomPattern(random, depth - 1);
    case 1:
        return QStringLiteral("(?:%1|%2)").arg(inner, randomPattern(random, depth - 1));
    case 2:
        return QStringLiteral("(%1)").arg(inner);
    case 3:
        return QStringLiteral("(%1)%2").arg(inner, oneOf(random, {"?", "*", "+?"}));
    case 4:
        return QStringLiteral("(?:%1)%2").arg(inner, oneOf(random, {"?", "*", "+", "{0,2}"}));
    case 5:
        return QStringLiteral("(%1)|(%2)").arg(inner, randomPattern(random, depth - 1));
    case 6:
        return QStringLiteral("(?%1%2)%3")
            .arg(oneOf(random, {"=", "!"}), inner, randomPattern(random, depth - 1));
    default:
        return QStringLiteral("(?%1a)%2").arg(oneOf(random, {"<=", "<!"}), inner);
    }
}

} // namespace

Q_DECLARE_METATYPE(Outcome)

class tst_TextFileParser : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void fileIsDecoded_data();
    void fileIsDecoded();
    void fileIsUtf8InEveryLocale();
    void filesOfUnknownSizeAreRead();
    void largeFilesAreRead();
    void hugeFileEndsAtItsZeroByte_data();
    void hugeFileEndsAtItsZeroByte();
    void hugeFileNeedsLittleAddressSpace();
    void growingFileIsReadUpToItsInitialSize();
    void fifoIsReadToItsEnd();
    void contentIsReadAtConstruction();

    void missingFileIsReported_data();
    void missingFileIsReported();
    void directoryIsReported();
    void unreadableFileIsReported();
    void fileInAnInaccessibleDirectoryIsMissing();
    void relativePathIsReportedAsGiven();

    void matchesAreReturned_data();
    void matchesAreReturned();
    void emptyContentMatchesEmptyExpressions();
    void matchesTheLiteralVersion();

    void invalidExpressionIsReportedByMultiMatch_data();
    void invalidExpressionIsReportedByMultiMatch();
    void invalidExpressionIsReportedByInternalMatch();
    void invalidExpressionIsReportedByMatch();
    void excessiveBacktrackingIsReported();
    void missingRequiredCharacterAvoidsBacktracking();
    void backtrackingAfterAMatchEndsTheList();
    void hostileExpressions_data();
    void hostileExpressions();
    void patternMayLimitSteps();
    void patternMayLimitMemory();

    void internalMatchReturnsAllGroups();
    void errorsPersistUntilCleared();
    void setErrorWarns_data();
    void setErrorWarns();
    void copiesAreIndependent();

private:
    void expectError(const QString& text)
    {
        messages()
            .expectWarning("TextFileParser", QLatin1Char('"') + text + QLatin1Char('"'))
            .function(signature);
    }

    // The entire text of the parser.
    static QString contentOf(TextFileParser& parser)
    {
        return parser.match(
            QRegularExpression("\\A.*\\z", QRegularExpression::DotMatchesEverythingOption));
    }
};

void tst_TextFileParser::fileIsDecoded_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("content");

    QTest::newRow("plain") << QByteArray("one\ntwo\n") << "one\ntwo\n";
    QTest::newRow("empty") << QByteArray("") << QString();
    QTest::newRow("carriage returns before line feeds")
        << QByteArray("one\r\ntwo\r\n") << "one\ntwo\n";
    QTest::newRow("carriage returns elsewhere") << QByteArray("\rone\r\r\ntw\ro\r") << "one\ntwo";
    QTest::newRow("only carriage returns") << QByteArray("\r\r") << QString();
    QTest::newRow("carriage return and zero byte") << QByteArray("\r\0a", 3) << "";
    QTest::newRow("zero byte") << QByteArray("one\0two", 7) << "one";
    QTest::newRow("leading zero byte") << QByteArray("\0two", 4) << "";
    QTest::newRow("trailing zero byte") << QByteArray("one\0", 4) << "one";
    QTest::newRow("UTF-8") << QByteArray("\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80")
                           << QStringLiteral("\u00e4\u20ac\U0001f600");
    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbfone") << "one";
    QTest::newRow("only a byte order mark") << QByteArray("\xef\xbb\xbf") << "";
    QTest::newRow("not UTF-8") << QByteArray("a\xff\xe4z") << QStringLiteral("a\ufffd\ufffdz");
    QTest::newRow("truncated character")
        << QByteArray("a\xe2\x82") << QStringLiteral("a\ufffd\ufffd");
}

void tst_TextFileParser::fileIsDecoded()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, content);

    TextFileParser parser(writeFile("file", bytes));
    const QString actual = contentOf(parser);
    QCOMPARE(actual, content);
    QCOMPARE(actual.isNull(), content.isNull());
    QVERIFY(!parser.hasError());
    QVERIFY(parser.getLastError().isNull());
}

void tst_TextFileParser::fileIsUtf8InEveryLocale()
{
    QTextCodec* const before = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    TextFileParser parser(writeFile("file", "\xc3\xa4"));
    QTextCodec::setCodecForLocale(before);
    QCOMPARE(contentOf(parser), QStringLiteral("\u00e4"));
}

// Kernel files report size 0.
void tst_TextFileParser::filesOfUnknownSizeAreRead()
{
    TextFileParser parser("/proc/self/status");
    QCOMPARE(parser.match(QRegularExpression(QStringLiteral("\\bPid:\\s+(\\d+)"))),
             QString::number(QCoreApplication::applicationPid()));
    QVERIFY(!parser.hasError());
}

void tst_TextFileParser::largeFilesAreRead()
{
    QByteArray bytes;
    int count = 0;
    while (bytes.size() < 5 * 1024 * 1024) {
        bytes += "some line of no interest\r\nversion=" + QByteArray::number(count++) + "\r\n";
    }
    TextFileParser parser(writeFile("file", bytes));
    const QStringList versions = parser.multiMatch(QRegularExpression("version=(\\S+)"));
    QCOMPARE(versions.size(), count);
    for (int i = 0; i < count; ++i) {
        QCOMPARE(versions.at(i), QString::number(i));
    }
    QCOMPARE(contentOf(parser), QString::fromLatin1(bytes.replace("\r", "")));
}

void tst_TextFileParser::hugeFileEndsAtItsZeroByte_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("content");
    QTest::newRow("too many characters for a QString when doubled")
        << qint64(1025) * 1024 * 1024 << "text";
    // QIODevice::readAll() returns nothing if the file is too large for a QByteArray.
    QTest::newRow("largest int as size") << qint64(INT_MAX) << QString();
    QTest::newRow("size larger than an int") << qint64(5) * 1024 * 1024 * 1024 << QString();
}

void tst_TextFileParser::hugeFileEndsAtItsZeroByte()
{
    QFETCH(qint64, size);
    QFETCH(QString, content);
    if (availableMemoryInMiB() < 2500) {
        MISCTOOLS_SKIP("needs 2.5 GB of free memory");
    }
    const QString filePath = writeFile("file", QByteArray("text\0more", 9));
    QVERIFY(QFile::resize(filePath, size));
    TextFileParser parser(filePath);
    QVERIFY(!parser.hasError());
    QCOMPARE(contentOf(parser), content);
}

void tst_TextFileParser::hugeFileNeedsLittleAddressSpace()
{
    const QString filePath = writeFile("file", QByteArray("text\0more", 9));
    QVERIFY(QFile::resize(filePath, qint64(600) * 1024 * 1024));
    const ChildResult child = ChildProcess::run([&filePath] {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        // The sanitizer's own mappings exceed such a limit.
        const rlim_t addressSpace = RLIM_INFINITY;
#else
        const rlim_t addressSpace = rlim_t(900000) * 1024;
#endif
        const rlimit limit = {addressSpace, addressSpace};
        setrlimit(RLIMIT_AS, &limit);
        TextFileParser parser(filePath);
        return contentOf(parser) == QLatin1String("text") ? 0 : 1;
    });
    QVERIFY2(child.exited, child.output.constData());
    QCOMPARE(child.exitCode, 0);
}

void tst_TextFileParser::growingFileIsReadUpToItsInitialSize()
{
    constexpr int initialSize = 8 * 1024 * 1024;
    constexpr int finalSize = 16 * initialSize;
    const QString filePath = writeFile("file", QByteArray(initialSize, 'a'));
    std::atomic_bool isWriting(true);
    std::thread writer([&filePath, &isWriting] {
        QFile file(filePath);
        file.open(QIODevice::Append | QIODevice::Unbuffered);
        const QByteArray block(64 * 1024, 'b');
        for (int size = initialSize; isWriting && size < finalSize; size += block.size()) {
            file.write(block);
        }
    });
    TextFileParser parser(filePath);
    isWriting = false;
    writer.join();
    // Without the limit, the parser would read everything that the writer appends.
    QVERIFY(contentOf(parser).size() >= initialSize);
    QVERIFY2(contentOf(parser).size() < finalSize,
             QByteArray::number(contentOf(parser).size()).constData());
    QVERIFY(!parser.hasError());
}

void tst_TextFileParser::fifoIsReadToItsEnd()
{
    const QString filePath = path("fifo");
    const QByteArray name = QFile::encodeName(filePath);
    QCOMPARE(mkfifo(name.constData(), 0600), 0);
    // Several times the size of a pipe's buffer, so that the write fails if the reader stops early.
    const QByteArray bytes = QByteArray("a\0", 2) + QByteArray(300000 - 2, 'b');
    std::atomic<ssize_t> written(-1);
    std::thread writer([&name, &bytes, &written] {
        sigset_t pipeSignal;
        sigemptyset(&pipeSignal);
        sigaddset(&pipeSignal, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr); // write() returns an error instead
        const int descriptor = open(name.constData(), O_WRONLY | O_CLOEXEC);
        written = write(descriptor, bytes.constData(), size_t(bytes.size()));
        close(descriptor);
    });
    TextFileParser parser(filePath);
    writer.join();
    QCOMPARE(written.load(), ssize_t(bytes.size()));
    QCOMPARE(contentOf(parser), QStringLiteral("a"));
    QVERIFY(!parser.hasError());
}

void tst_TextFileParser::contentIsReadAtConstruction()
{
    const QString filePath = writeFile("file", "first");
    TextFileParser parser(filePath);
    writeFile("file", "second");
    QCOMPARE(contentOf(parser), QStringLiteral("first"));
    QVERIFY(QFile::remove(filePath));
    QCOMPARE(contentOf(parser), QStringLiteral("first"));
    QVERIFY(!parser.hasError());
}

void tst_TextFileParser::missingFileIsReported_data()
{
    QTest::addColumn<QString>("filePath");

    QTest::newRow("absolute") << "/nowhere/to/be/found";
    QTest::newRow("relative") << "nowhere/../to/./be//found";
    QTest::newRow("tilde is not expanded") << "~";
    QTest::newRow("not ASCII") << QStringLiteral("/nowhere/\u00e4\u20ac");
    QTest::newRow("through a file") << "/proc/version/file";
    QTest::newRow("empty") << QString();
}

void tst_TextFileParser::missingFileIsReported()
{
    QFETCH(QString, filePath);

    const QString error = "File doesn't exists: " + filePath;
    expectError(error);
    TextFileParser parser(filePath);
    QVERIFY(parser.hasError());
    QCOMPARE(parser.getLastError(), error);

    // Matching adds no further error.
    const QRegularExpression expression("\\w+");
    QCOMPARE(parser.multiMatch(expression), QStringList());
    QVERIFY(parser.match(expression).isNull());
    QRegularExpressionMatchIterator matches = parser.internallMatch(expression);
    QVERIFY(matches.isValid());
    QVERIFY(!matches.hasNext());
    QVERIFY(parser.hasError());
    QCOMPARE(parser.getLastError(), error);
}

void tst_TextFileParser::directoryIsReported()
{
    const QString error =
        "Can't open file " + directory() + " IO Error: file to open is a directory";
    expectError(error);
    TextFileParser parser(directory());
    QVERIFY(parser.hasError());
    QCOMPARE(parser.getLastError(), error);
    QVERIFY(contentOf(parser).isNull());
    QCOMPARE(parser.getLastError(), error);
}

void tst_TextFileParser::unreadableFileIsReported()
{
    const QString filePath = writeFile("file", "secret");
    QVERIFY(QFile::setPermissions(filePath, QFileDevice::WriteOwner));
    QVERIFY(QFile::setPermissions(directory(),
                                  QFile::permissions(directory()) | QFileDevice::ExeOther));

    const QString error = "Can't open file " + filePath + " IO Error: Permission denied";
    const ChildResult result = ChildProcess::runAsOrdinaryUser([&] {
        TextFileParser parser(filePath);
        return parser.hasError() && parser.getLastError() == error && contentOf(parser).isNull()
                   ? 0
                   : 1;
    });
    QVERIFY(result.exited);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output, '"' + error.toUtf8() + "\"\n");
}

// A file in an inaccessible directory is reported as missing.
void tst_TextFileParser::fileInAnInaccessibleDirectoryIsMissing()
{
    const QString filePath = writeFile("file", "secret");
    const QString error = "File doesn't exists: " + filePath;
    QVERIFY(QFile::setPermissions(directory(), QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    const ChildResult result = ChildProcess::runAsOrdinaryUser([&] {
        const TextFileParser parser(filePath);
        return parser.hasError() && parser.getLastError() == error ? 0 : 1;
    });
    QVERIFY(QFile::setPermissions(directory(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                   QFileDevice::ExeOwner));
    QVERIFY(result.exited);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output, '"' + error.toUtf8() + "\"\n");
}

void tst_TextFileParser::relativePathIsReportedAsGiven()
{
    writeFile("file", "content");
    QVERIFY(QDir(directory()).mkdir("sub"));
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(directory()));
    TextFileParser file("./sub/../file");
    const QString error = QStringLiteral("Can't open file ./sub/ IO Error: file to open is a "
                                         "directory");
    expectError(error);
    const TextFileParser sub("./sub/");
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(contentOf(file), QStringLiteral("content"));
    QCOMPARE(sub.getLastError(), error);
}

void tst_TextFileParser::matchesAreReturned_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<Options>("options");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("texts");

    const auto addRow = [](const char* name, const QString& pattern, const QByteArray& bytes,
                           const QStringList& texts, Options options = Options()) {
        QTest::newRow(name) << pattern << options << bytes << texts;
    };
    const QByteArray lines("name=x\nversion=1.2 b\nend\nversion=3\n");
    const QString null;
    const QString empty = "";

    addRow("no match", "nothing", lines, {});
    addRow("no group", "version=\\S+", lines, {"version=1.2", "version=3"});
    addRow("one group", "version=(\\S+)", lines, {"1.2", "3"});
    addRow("several groups", "(\\w+)=(\\S)(\\S*)", lines, {"name", "version", "version"});
    addRow("group in a group", "version=((\\d)\\S*)", lines, {"1.2", "3"});
    addRow("non-capturing group", "(?:version|name)=.", lines,
           {"name=x", "version=1", "version=3"});
    addRow("named group", "version=(?<number>\\d)", lines, {"1", "3"});
    addRow("second group named", "(v)ersion=(?<number>\\d)", lines, {"v", "v"});
    addRow("repeated group keeps its last match", "(?:(\\d)\\.?)+", lines, {"2", "3"});
    addRow("optional group participates or not", "a(b)?", "ab a", {"b", "a"});
    addRow("only group does not participate", "a|(b)", "a", {"a"});
    addRow("first group does not participate, a later one does", "(a)|(b)", "ab", {"a", null});
    addRow("first group participates, the later one does not", "(a)(b)?", "a", {"a"});
    addRow("group in a negative look-ahead never participates", "a(?!(b))", "ac", {"a"});
    addRow("empty group", "key=(\\w*)", "key=\nkey=v", {empty, "v"});
    addRow("only an empty group", "()", "ab", {empty, empty, empty});
    addRow("empty matches", "x*", "axxb", {empty, "xx", empty, empty});
    addRow("empty matches do not split a surrogate pair", "x*", "\xf0\x9f\x98\x80", {empty, empty});
    addRow("empty expression", QString(), "a", {empty, empty});
    addRow("look-behind", "(?<==)\\d", lines, {"1", "3"});
    addRow("negative look-behind", "(?<!b)a", "ba ca", {"a"});
    addRow("look-behind includes the previous match", "(?<=a)b|a", "ab", {"a", "b"});
    addRow("look-ahead", "\\w+(?==)", lines, {"name", "version", "version"});
    addRow("group in a look-ahead", "version(?==(\\S+))", lines, {"1.2", "3"});
    addRow("match start moved", "version=\\K\\d", lines, {"1", "3"});
    addRow("back-reference", "(.)\\1", "aabcc", {"a", "c"});
    addRow("overlapping occurrences", "aa", "aaaa", {"aa", "aa"});
    addRow("case-sensitive", "VERSION", lines, {});
    addRow("case-insensitive", "VERSION", lines, {"version", "version"},
           QRegularExpression::CaseInsensitiveOption);
    addRow("case-insensitive beyond ASCII", QStringLiteral("\u00c4"), "\xc3\xa4",
           {QStringLiteral("\u00e4")}, QRegularExpression::CaseInsensitiveOption);
    addRow("word without Unicode properties", "\\w+", "a\xc3\xa4", {"a"});
    addRow("word with Unicode properties", "\\w+", "a\xc3\xa4", {QStringLiteral("a\u00e4")},
           QRegularExpression::UseUnicodePropertiesOption);
    addRow("a character outside the BMP is one character", "^.$", "\xf0\x9f\x98\x80",
           {QStringLiteral("\U0001f600")});
    addRow("anchors match at the ends of the text", "^\\w+|\\w+$", "one\ntwo\nthree\n",
           {"one", "three"});
    addRow("anchors match at the ends of lines", "^\\w+$", "one\r\ntwo\nthree",
           {"one", "two", "three"}, QRegularExpression::MultilineOption);
    addRow("dot does not match a line feed", "e.t", "e\nt", {});
    addRow("dot matches a line feed", "e.t", "e\r\nt", {"e\nt"},
           QRegularExpression::DotMatchesEverythingOption);
    addRow("carriage returns are removed", "\\r", "one\r\ntwo\r", {});
    addRow("groups do not capture", "version=(\\S+)", lines, {"version=1.2", "version=3"},
           QRegularExpression::DontCaptureOption);
    addRow("inverted greediness", "a+", "aa", {"a", "a"},
           QRegularExpression::InvertedGreedinessOption);
    addRow("extended syntax", "v (\\w) # a comment", "ve v x", {"e"},
           QRegularExpression::ExtendedPatternSyntaxOption);
}

void tst_TextFileParser::matchesAreReturned()
{
    QFETCH(QString, pattern);
    QFETCH(Options, options);
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, texts);

    TextFileParser parser(writeFile("file", bytes));
    const QRegularExpression expression(pattern, options);
    QCOMPARE(difference(parser.multiMatch(expression), texts), QString());
    const QString first = parser.match(expression);
    QCOMPARE(difference({first}, {texts.value(0)}), QString());
    QVERIFY(!parser.hasError());
    QVERIFY(parser.getLastError().isNull());
}

void tst_TextFileParser::emptyContentMatchesEmptyExpressions()
{
    const QRegularExpression expression("x*");
    TextFileParser emptyFile(writeFile("empty", QByteArray()));
    QCOMPARE(difference(emptyFile.multiMatch(expression), {QString()}), QString());
    TextFileParser zeroByte(writeFile("zero", QByteArray(1, '\0')));
    QCOMPARE(difference(zeroByte.multiMatch(expression), {QStringLiteral("")}), QString());

    expectError("File doesn't exists: nowhere");
    TextFileParser missing("nowhere");
    QCOMPARE(difference(missing.multiMatch(expression), {QString()}), QString());
}

void tst_TextFileParser::matchesTheLiteralVersion()
{
    const int files = rounds(300);
    constexpr int patternsPerFile = 20;
    QRandomGenerator random(20240229);
    int withResults = 0;
    for (int i = 0; i < files; ++i) {
        const QByteArray bytes = randomBytes(random);
        TextFileParser parser(writeFile("file", bytes));
        const QString content = LiteralTextFile::content(bytes);
        for (int j = 0; j < patternsPerFile; ++j) {
            const QRegularExpression expression(
                randomPattern(random, 1 + random.bounded(4)),
                QRegularExpression::PatternOptions(random.bounded(8)));
            QVERIFY2(expression.isValid(), qPrintable(expression.pattern()));
            const QStringList expected = LiteralTextFile::multiMatch(content, expression);
            const QString result = difference(parser.multiMatch(expression), expected);
            QVERIFY2(result.isEmpty(),
                     qPrintable(expression.pattern() + " over " + content + ": " + result));
            QCOMPARE(difference({parser.match(expression)}, {expected.value(0)}), QString());
            // If the first match takes too many steps, both calls report an error.
            const bool isLimitExceeded = !expression.globalMatch(content).isValid();
            QCOMPARE(parser.hasError(), isLimitExceeded);
            QCOMPARE(messages().take().size(), isLimitExceeded ? 2 : 0);
            parser.clearLastError();
            withResults += expected.isEmpty() ? 0 : 1;
        }
    }
    // Enough patterns match, and not all do.
    QVERIFY(withResults > files * patternsPerFile / 4);
    QVERIFY(withResults < files * patternsPerFile);
}

void tst_TextFileParser::invalidExpressionIsReportedByMultiMatch_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("shown");

    const auto addRow = [](const char* name, const QString& pattern, const QString& shown) {
        QTest::newRow(name) << pattern << shown;
    };
    addRow("unclosed bracket", "version=[a", "version=[a");
    addRow("unclosed group", "version=(\\S+", "version=(\\\\S+");
    addRow("nothing to repeat", "*", "*");
    addRow("quotation mark", "(\"", "(\\\"");
    addRow("line feed", "(\n", "(\\n");
    addRow("not ASCII", QStringLiteral("(\u00e4"), QStringLiteral("(\u00e4"));
}

void tst_TextFileParser::invalidExpressionIsReportedByMultiMatch()
{
    QFETCH(QString, pattern);
    QFETCH(QString, shown);

    TextFileParser parser(writeFile("file", "version=[a"));
    expectError("Invalid regular expresion: " + shown);
    expectError("Invalid match on expresion: " + shown);
    QCOMPARE(parser.multiMatch(QRegularExpression(pattern)), QStringList());
    QVERIFY(parser.hasError());
    QCOMPARE(parser.getLastError(), QStringLiteral("Invalid match on expresion: ") + pattern);
}

void tst_TextFileParser::invalidExpressionIsReportedByInternalMatch()
{
    TextFileParser parser(writeFile("file", "content"));
    expectError("Invalid regular expresion: [");
    const QRegularExpressionMatchIterator matches = parser.internallMatch(QRegularExpression("["));
    QVERIFY(!matches.isValid());
    QVERIFY(!matches.hasNext());
    QVERIFY(parser.hasError());
    QCOMPARE(parser.getLastError(), QStringLiteral("Invalid regular expresion: ["));
}

void tst_TextFileParser::invalidExpressionIsReportedByMatch()
{
    TextFileParser parser(writeFile("file", "content"));
    expectError("Invalid regular expresion: [");
    expectError("Invalid match on expresion: [");
    QVERIFY(parser.match(QRegularExpression("[")).isNull());
    QVERIFY(parser.hasError());
    QCOMPARE(parser.getLastError(), QStringLiteral("Invalid match on expresion: ["));
}

// A match of a valid expression is invalid if matching exceeds a limit.
void tst_TextFileParser::excessiveBacktrackingIsReported()
{
    TextFileParser parser(writeFile("file", QByteArray(60, 'x') + " y"));
    const QString pattern = "(x+x+)+y";
    QElapsedTimer timer;
    timer.start();
    expectError("Invalid match on expresion: " + pattern);
    QCOMPARE(parser.multiMatch(QRegularExpression(pattern)), QStringList());
    QVERIFY(timer.elapsed() < 60000);
    QVERIFY(parser.hasError());
    QCOMPARE(parser.getLastError(), QStringLiteral("Invalid match on expresion: ") + pattern);
}

// The engine knows that a match needs a y, and the text has none.
void tst_TextFileParser::missingRequiredCharacterAvoidsBacktracking()
{
    TextFileParser parser(writeFile("file", QByteArray(60, 'x')));
    QVERIFY(parser.match(QRegularExpression("(x+x+)+y")).isNull());
    QVERIFY(!parser.hasError());
}

void tst_TextFileParser::backtrackingAfterAMatchEndsTheList()
{
    TextFileParser parser(writeFile("file", "xxy " + QByteArray(60, 'x') + " xxy"));
    QCOMPARE(parser.multiMatch(QRegularExpression(QStringLiteral("(x+x+)+y"))), QStringList("xx"));
    QVERIFY(!parser.hasError());
}

void tst_TextFileParser::hostileExpressions_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QByteArray>("matching"); // a line that matches; empty if there is none
    QTest::addColumn<QByteArray>("hostile");
    QTest::addColumn<Outcome>("outcome"); // for the hostile text

    const auto row = [](const char* name, const char* pattern, const QByteArray& matching,
                        const QByteArray& hostile, Outcome outcome) {
        // The interpreter takes several times as long for the same number of steps.
        const QString limit =
            areExpressionsCompiled ? QString() : QStringLiteral("(*LIMIT_MATCH=100000)");
        QTest::newRow(name) << limit + QString::fromLatin1(pattern) << matching << hostile
                            << outcome;
    };
    const auto as = [](int count) { return QByteArray(count, 'a'); };

    // The number of ways to split the text is exponential.
    row("repetition of a repetition", "(a+)+b", "aab", as(40) + "!b", LimitExceeded);
    row("repetition of a possibly empty group", "(a*)*b", "aab", as(40) + "!b", LimitExceeded);
    row("repetition of a repetition, at the end", "(a+)+$", "", as(40) + '!', LimitExceeded);
    row("lazy repetitions", "(a+?)+?b", "aab", as(40) + "!b", LimitExceeded);
    row("overlapping alternatives", "(a|aa)+b", "aab", as(80) + "!b", LimitExceeded);
    row("identical alternatives", "(?:a|a|a)+b", "aab", as(40) + "!b", LimitExceeded);
    row("many greedy repetitions", "(.*a){20}b", "", as(60) + "!b", LimitExceeded);
    row("fields of a CSV line", "(?m)^(?:.*?,){11}P", "1,2,3,4,5,6,7,8,9,10,11,P",
        QByteArray("1,").repeated(60) + "xP", LimitExceeded);
    row("class name", "(?m)^(([a-z])+.)+[A-Z]([a-z])+$", "aaBb", as(60) + '!', LimitExceeded);
    row("optional letters", "(?:a?){30}a{30}b", as(60) + 'b', as(29) + '!' + QByteArray(9, 'b'),
        LimitExceeded);
    row("look-ahead in a look-ahead", "(?=(?=(a|aa)+b)a)a+b", "aab", as(80) + "!b", LimitExceeded);
    row("negative look-ahead", "(?!(a|aa)+c)a+b", "aab", as(80) + "!bc", LimitExceeded);
    row("look-behind", "(?<=!)(a+)+b", "!aab", '!' + as(40) + "!b", LimitExceeded);
    row("back-reference", "(?:(a*)\\1)+b", "aab", as(80) + "!b", LimitExceeded);
    row("three back-references", "(a*)(a*)(a*)\\1\\2\\3b", "aab", as(1000) + "!b", LimitExceeded);
    row("match start moved", "(?:a\\K|aa)+b", "aab", as(80) + "!b", LimitExceeded);
    row("huge quantifiers", "(?:a{1,65535}){1,50}b", "aab", as(3000) + "!b", LimitExceeded);
    row("condition", "(?:(?(?=aa)a|a)|aa)+b", "aab", as(80) + "!b", LimitExceeded);

    // Expressions that are rejected.
    row("nested huge quantifiers", "((x{1,65535}){1,65535}){1,65535}", "", "x", Invalid);
    row("nested quantifiers", "((a{1,100}){1,100}){1,100}b", "", "b", Invalid);
    row("quantifier above the maximum", "a{65536}", "", "a", Invalid);
    row("unbounded look-behind", "(?<=a+)b", "", "ab", Invalid);

    if (!areExpressionsCompiled) {
        return;
    }

    // The stack for recursion and groups is limited.
    row("recursion", "a(?R)?b", "aabb", as(100000) + 'b', LimitExceeded);
    row("recursion in alternatives", "(?:a|\\((?R)(?R)?\\))*c", "(ac)c",
        QByteArray(100000, '(') + 'c', LimitExceeded);
    row("recursion that consumes nothing", "(?R)?a|b", "", as(40), LimitExceeded);
    row("a group for each character", "(.|\\n)*z", "", QByteArray(1000000, 'a'), LimitExceeded);

    row("one repetition for all characters", "(?s)\\A.*z", "", QByteArray(1000000, 'a'), NoMatch);

    // Each start position stays below the limit, but time grows polynomially with the text's
    // length.
    row("possessive repetitions", "(a++)++b", "aab", as(5000) + "!b", NoMatch);
    row("atomic group", "(?>(a|aa)+)b", "aab", as(2000) + "!b", NoMatch);
    row("spaces at the end", "\\s+$", "", QByteArray(5000, ' ') + '!', NoMatch);
    row("overlapping neighbors", "(?:a|b)*(?:a|c)*[xy]", "aax", as(300) + '!', NoMatch);
}

void tst_TextFileParser::hostileExpressions()
{
    QFETCH(QString, pattern);
    QFETCH(QByteArray, matching);
    QFETCH(QByteArray, hostile);
    QFETCH(Outcome, outcome);

    const QRegularExpression expression(pattern);
    const QString invalidMatch = "Invalid match on expresion: ";
    const QString shown = QString(pattern).replace("\\", "\\\\");
    const int memoryBefore = peakMemoryInMiB();
    const CpuTime time;

    TextFileParser parser(writeFile("hostile", hostile));
    if (outcome == Invalid) {
        expectError("Invalid regular expresion: " + shown);
    }
    if (outcome != NoMatch) {
        expectError(invalidMatch + shown);
    }
    QCOMPARE(difference(parser.multiMatch(expression), {}), QString());
    QCOMPARE(parser.hasError(), outcome != NoMatch);
    QCOMPARE(parser.getLastError(), outcome == NoMatch ? QString() : invalidMatch + pattern);

    // After a match there is no error, regardless of the outcome.
    if (!matching.isEmpty()) {
        TextFileParser both(writeFile("both", matching + '\n' + hostile));
        QCOMPARE(both.multiMatch(expression).size(), 1);
        QVERIFY(!both.hasError());
    }
    QVERIFY2(time.seconds() < 60, qPrintable(QString::number(time.seconds())));
    const int memory = peakMemoryInMiB() - memoryBefore;
    QVERIFY2(memory < 128, qPrintable(QString::number(memory)));
}

void tst_TextFileParser::patternMayLimitSteps()
{
    // Without the limit this takes half a minute and finishes without an error.
    const QString pattern = "(*LIMIT_MATCH=10000)(?:a|b)*(?:a|c)*[xy]";
    TextFileParser parser(writeFile("file", QByteArray(3000, 'a') + '!'));
    expectError("Invalid match on expresion: " + pattern);
    const CpuTime time;
    QCOMPARE(parser.multiMatch(QRegularExpression(pattern)), QStringList());
    QVERIFY2(time.seconds() < 10, qPrintable(QString::number(time.seconds())));
    QVERIFY(parser.hasError());
}

// If expressions are not compiled to machine code (disabled by the pattern, as here, by the
// environment, or for lack of processor support), backtracking state is kept on the heap.
void tst_TextFileParser::patternMayLimitMemory()
{
    const QString pattern = "(*NO_JIT)(*LIMIT_HEAP=10000)^(a|b)*$";
    TextFileParser parser(writeFile("file", QByteArray(1000000, 'a')));
    expectError("Invalid match on expresion: " + pattern);
    const int before = peakMemoryInMiB();
    QCOMPARE(parser.multiMatch(QRegularExpression(pattern)), QStringList());
    QVERIFY(parser.hasError());
    QVERIFY(peakMemoryInMiB() - before < 128);
}

void tst_TextFileParser::internalMatchReturnsAllGroups()
{
    TextFileParser parser(writeFile("file", "a=1\r\nb=2"));
    QRegularExpressionMatchIterator matches =
        parser.internallMatch(QRegularExpression("(\\w)=(?<value>\\d)"));
    QVERIFY(matches.isValid());
    QCOMPARE(matches.matchType(), QRegularExpression::NormalMatch);
    QCOMPARE(matches.matchOptions(), QRegularExpression::MatchOptions());
    QCOMPARE(matches.next().capturedStart(), 0);
    const QRegularExpressionMatch second = matches.next();
    QCOMPARE(second.capturedStart(), 4);
    QCOMPARE(second.captured(QStringLiteral("value")), QStringLiteral("2"));
    QVERIFY(!matches.hasNext());
    QVERIFY(!parser.hasError());
}

void tst_TextFileParser::errorsPersistUntilCleared()
{
    TextFileParser parser(writeFile("file", "content"));
    const QRegularExpression valid("\\w+");
    const QString error = "Invalid regular expresion: (";
    expectError(error);
    parser.internallMatch(QRegularExpression("("));

    QCOMPARE(parser.match(valid), QStringLiteral("content"));
    QCOMPARE(parser.multiMatch(valid), QStringList(QStringLiteral("content")));
    QVERIFY(parser.internallMatch(valid).isValid());
    QVERIFY(parser.hasError());
    QCOMPARE(parser.getLastError(), error);

    parser.clearLastError();
    QVERIFY(!parser.hasError());
    QVERIFY(parser.getLastError().isNull());
    QCOMPARE(parser.match(valid), QStringLiteral("content"));
    QVERIFY(!parser.hasError());

    // The next error is reported again.
    expectError(error);
    parser.internallMatch(QRegularExpression("("));
    QVERIFY(parser.hasError());
    QCOMPARE(parser.getLastError(), error);
}

void tst_TextFileParser::setErrorWarns_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("warning");

    QTest::newRow("text") << "some error"
                          << "\"some error\"";
    QTest::newRow("quotation marks") << "a \"b\""
                                     << "\"a \\\"b\\\"\"";
    QTest::newRow("empty") << ""
                           << "\"\"";
    QTest::newRow("null") << QString() << "\"\"";
}

void tst_TextFileParser::setErrorWarns()
{
    QFETCH(QString, text);
    QFETCH(QString, warning);

    TextFileParser parser(writeFile("file", QByteArray()));
    messages().expectWarning("TextFileParser", warning).function(signature);
    // A message handler can already read the error.
    QStringList errorsInHandler;
    messages().setObserver([&parser, &errorsInHandler](const Message&) {
        errorsInHandler.append(parser.hasError() ? parser.getLastError() : QStringLiteral("none"));
    });
    parser.setError(text);
    QCOMPARE(difference(errorsInHandler, {text}), QString());
    QVERIFY(parser.hasError());
    QCOMPARE(difference({parser.getLastError()}, {text}), QString());
}

void tst_TextFileParser::copiesAreIndependent()
{
    TextFileParser parser(writeFile("file", "content"));
    TextFileParser copy(parser);
    expectError("error");
    copy.setError("error");
    QVERIFY(!parser.hasError());
    QCOMPARE(contentOf(copy), QStringLiteral("content"));
    parser = copy;
    QCOMPARE(parser.getLastError(), QStringLiteral("error"));
}

QTEST_GUILESS_MAIN(tst_TextFileParser)
#include "tst_TextFileParser.moc"
