#include "ProgramRun.h"
#include "Terminal.h"
#include "TestCase.h"

#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString program = QStringLiteral(INI_LINT_PROGRAM);
const QString hint = "ini-lint: try --help\n";
const QString file = "file.ini";

QByteArray toJson(const char* text)
{
    return QJsonDocument::fromJson(text).toJson();
}

} // namespace

// The program that finds what QSettings reads differently than it looks. tst_IniRules compares its
// findings with QSettings.
class tst_IniLint : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void findings_data();
    void findings();
    void unambiguousTextHasNoFindings_data();
    void unambiguousTextHasNoFindings();
    void codecs_data();
    void codecs();
    void rulesCanBeIgnored();
    void levelHidesLowerSeverities();
    void repeatsAreCounted();
    void commentsIgnoreFindings_data();
    void commentsIgnoreFindings();
    void listsIgnoreFindings_data();
    void listsIgnoreFindings();
    void invalidListsAreRefused_data();
    void invalidListsAreRefused();
    void severalFiles();
    void standardInput();
    void directories();
    void unreadableDirectoryIsReported();
    void findingsAsJson();
    void findingsAsSarif();
    void dryRunPrintsADiff_data();
    void dryRunPrintsADiff();
    void diffQuotesSpecialNames();
    void patchAcceptsTheDiff_data();
    void patchAcceptsTheDiff();
    void cleanMakesTheChangesOfTheDryRun();
    void cleanKeepsOwnerAndMode();
    void fileWithoutChangesIsNotWritten();
    void failedCleanUpIsReported();
    void changesAsJson();
    void fullDiskIsReported();
    void terminalShowsTheFileBeingRead();
    void severitiesAreColoredOnATerminal_data();
    void severitiesAreColoredOnATerminal();
    void invalidArgumentsAreRefused_data();
    void invalidArgumentsAreRefused();
    void helpListsEveryExitCode();

private:
    ProgramResult run(const QStringList& arguments) const
    {
        return ProgramRun(program, arguments, directory()).finish();
    }
    void verifyRun(const QStringList& arguments, int exitCode, const QString& output,
                   const QString& errors = QString()) const
    {
        verifyResult(run(arguments), exitCode, output, errors);
    }
    // As bytes: a diff need not be UTF-8.
    QByteArray cleanUpDiff(const QString& name) const
    {
        const QString output = "output.diff";
        ProgramRun("sh", {"-c", "\"$0\" --clean --dry-run \"$1\" >\"$2\"", program, name, output},
                   directory())
            .finish();
        const QByteArray diff = readFile(path(output));
        QFile::remove(path(output));
        return diff;
    }
    QStringList filesInTheDirectory() const
    {
        return QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
};

void tst_IniLint::findings_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("output"); // without the name of the file

    const auto row = [](const char* name, const QByteArray& text, const char* output) {
        QTest::newRow(name) << text << QString::fromUtf8(output);
    };
    row("comma", "dns=10.0.0.1, 10.0.0.2\n",
        "1:13: error: the comma makes the value a list of 2 strings, which is empty when read as "
        "one string; quote the value to keep the comma [comma-list]\n");
    row("semicolon", "\n[s]\nflags=a;b\n",
        "3:8: error: the value ends at the semicolon: 'a'; quote the value to keep it whole "
        "[semicolon]\n");
    row("semicolon right after the equals sign", "a=;b\n",
        "1:3: error: the value ends at the semicolon: ''; quote the value to keep it whole "
        "[semicolon]\n");
    row("semicolon that looks like a comment", "a=1 ; b\nb=\t;\n",
        "1:5: warning: the value ends at the semicolon: '1'; quote the value to keep it whole "
        "[semicolon]\n"
        "2:4: warning: the value ends at the semicolon: ''; quote the value to keep it whole "
        "[semicolon]\n");
    row("no equals sign", "a=1\nb: 2\n",
        "2:1: error: there is no '='; the line is skipped, and QSettings reports a format error: "
        "'b: 2' [no-equals]\n");
    row("hash before a key", "#a=1,2;3\n#a='4\n%23b=1\n",
        "1:1: note: '#' does not start a comment: the line is read as the key '#a' [hash-comment]\n"
        "2:1: note: '#' does not start a comment: the line is read as the key '#a' [hash-comment]\n"
        "3:1: warning: '%23b' is read as '#b': '%' begins a character code "
        "[name-escape]\n");
    row("hash after a value", "a=1 # one\n",
        "1:5: warning: '#' does not start a comment; the value is '1 # one' [hash-comment]\n");
    row("hash before a text that includes a key", "# it\"s\na=1\n",
        "1:1: error: the quote is not closed: everything up to the end of the file belongs to this "
        "line [multi-line]\n");
    row("hash before a path that includes a key", "# C:\\\na=1\n#b=\\\n[s]\n",
        "1:1: note: '#' does not start a comment: the line is read as the key '# C:/\\x0aa' "
        "[hash-comment]\n"
        "1:1: error: everything up to line 2 belongs to this line: a quote or a backslash includes "
        "the line ending [multi-line]\n"
        "3:1: note: '#' does not start a comment: the line is read as the key '#b' [hash-comment]\n"
        "3:1: error: everything up to line 4 belongs to this line: a quote or a backslash includes "
        "the line ending [multi-line]\n");
    row("duplicate key", "[s]\na=1\na=2\na=2\n",
        "2:1: error: 's/a' is a duplicate: the value in line 4 counts, not this one "
        "[duplicate-key]\n"
        "3:1: note: 's/a' is a duplicate: the value in line 4 counts, not this one "
        "[duplicate-key]\n");
    row("duplicate key in the section's second part", "[s]\na=1\n[t]\na=1\n[s]\na=2\n",
        "2:1: error: 's/a' is a duplicate: the value in line 6 counts, not this one "
        "[duplicate-key]\n");
    row("duplicate key in another spelling", "[s]\na%20b=1\na b=2\n",
        "2:1: warning: 'a%20b' is read as 'a b': '%' begins a character code "
        "[name-escape]\n"
        "2:1: error: 's/a b' is a duplicate: the value in line 3 counts, not this one "
        "[duplicate-key]\n");
    row("duplicate key in another section", "[s/t]\na=1\n[s]\nt/a=2\n",
        "1:1: warning: 's/t' is nested: it is listed as the group 's' [nested-name]\n"
        "4:1: warning: 't/a' is nested: it is read as the key 'a' in the group 's/t' "
        "[nested-name]\n"
        "4:1: error: 's/t/a' also has a value in another section, in line 2: which one counts "
        "depends on what the program reads first [read-order]\n");
    row("section that hides keys of another", "[s]\na=1\nz=2\n[s/t]\n",
        "3:1: error: a look-up of 's/z' fails until its section has been read for another reason, "
        "such as listing the keys [read-order]\n"
        "4:1: warning: 's/t' is nested: it is listed as the group 's' [nested-name]\n");
    row("nested key at the top level", "a/b=1\n",
        "1:1: warning: 'a/b' is nested: it is read as the key 'b' in the group 'a' "
        "[nested-name]\n"
        "1:1: error: a look-up of 'a/b' fails until its section has been read for another reason, "
        "such as listing the keys [read-order]\n");
    row("keys differ in case", "a=1\nA=2\nA=3\n",
        "2:1: error: 'A' is a duplicate: the value in line 3 counts, not this one [duplicate-key]\n"
        "2:1: warning: 'A' and 'a' in line 1 are different keys: case matters [case]\n");
    row("sections differ in case", "[s]\na=1\n[S]\na=1\n",
        "3:1: warning: 'S' and 's' in line 1 are different sections: case matters [case]\n");
    row("general section", "[general]\na=1\n",
        "1:1: warning: [general] is not a group but the top level of the file; the group 'General' "
        "is spelled [%General] [general-section]\n");
    row("group named General", "[%General]\na=1\n",
        "1:1: warning: '%General' is read as 'General': '%' distinguishes it from the file's top "
        "level "
        "[name-escape]\n");
    row("backslash in a section's name", "[a\\b]\nc=1\n",
        "1:1: error: 'a/b' is nested: it is listed as the group 'a' [nested-name]\n");
    row("backslash in a key", "[s]\na\\b=1\n",
        "2:1: error: 'a/b' is nested: it is read as the key 'b' in the group 's/a' "
        "[nested-name]\n");
    row("section without a name", "[]\na=1\n",
        "1:1: error: the keys of '' cannot be looked up: a part of its name is empty "
        "[unreachable]\n");
    row("section's name ends in a slash", "[a/]\nb=1\n",
        "1:1: error: the keys of 'a/' cannot be looked up: a part of its name is empty "
        "[unreachable]\n");
    row("no key", " =1\n",
        "1:2: error: there is no key before the '='; the value cannot be looked up "
        "[unreachable]\n");
    row("key begins with a slash", "/a=1\n",
        "1:1: error: the key '/a' cannot be looked up: a part of its name is empty "
        "[unreachable]\n");
    row("section without a closing bracket", "[a\nb=1\n",
        "1:1: error: the section has no ']'; its name is read as 'a' [section-end]\n");
    row("text after a section", "[a] b=1\n",
        "1:1: error: what follows the ']' is skipped: 'b=1' [section-end]\n");
    row("percent sign in a key", "%41=1\n",
        "1:1: error: '%41' is read as 'A': '%' begins a character code [name-escape]\n");
    row("percent sign in a section", "[a%2Fb]\nc=1\n",
        "1:1: error: 'a%2Fb' is read as 'a/b': '%' begins a character code "
        "[name-escape]\n"
        "1:1: warning: 'a/b' is nested: it is listed as the group 'a' [nested-name]\n");
    row("backslashes in a path", "path=C:\\temp\\data\n",
        "1:8: error: the escape '\\t' makes the value 'C:\\x09empata'; write '\\\\' for a "
        "backslash "
        "[escape]\n"
        "1:13: error: the escape '\\d' makes the value 'C:\\x09empata'; write '\\\\' for a "
        "backslash "
        "[escape]\n");
    row("character codes", "a=\\x41bc,\\101\n",
        "1:3: error: the escape '\\x41bc' makes the value '\xE4\x86\xBC', 'A'; write '\\\\' for a "
        "backslash "
        "[escape]\n"
        "1:9: error: the comma makes the value a list of 2 strings, which is empty when read as "
        "one string; quote the value to keep the comma [comma-list]\n"
        "1:10: error: the escape '\\101' makes the value '\xE4\x86\xBC', 'A'; write '\\\\' for a "
        "backslash "
        "[escape]\n");
    row("doubled backslash", "a=C:\\\\temp\n",
        "1:5: warning: '\\\\' is read without its first backslash; the value is 'C:\\temp' "
        "[literal-escape]\n");
    row("escaped quote", "a=\\\"b\n",
        "1:3: warning: '\\\"' is read without its first backslash; the value is '\"b' "
        "[literal-escape]\n");
    row("quotes within a value", "a= b\"c\"d\n",
        "1:4: error: quotes within a value are removed; it is read as 'bcd' [quotes]\n");
    row("single quotes", "a='b'\n",
        "1:3: warning: single quotes do not quote; they are part of the value: ''b'' [quotes]\n");
    row("quotes around a key", "\"a\"=1\n",
        "1:1: warning: quotes are part of the key's name: '\"a\"' [quotes]\n");
    row("quote over two lines", "a=\"b\nc\"\nd=,\n",
        "1:1: error: everything up to line 2 belongs to this line: a quote or a backslash includes "
        "the line ending [multi-line]\n"
        "3:3: error: the comma makes the value a list of 2 strings, which is empty when read as "
        "one string; quote the value to keep the comma [comma-list]\n");
    row("backslash at the end of a line", "a=b\\\r\nc\r\n",
        "1:1: error: everything up to line 2 belongs to this line: a quote or a backslash includes "
        "the line ending [multi-line]\n");
    row("backslash at the end of a line before an empty line", "a=b\\\n\nc=1\n",
        "1:4: error: the trailing backslash is dropped; the value is 'b' [escape]\n");
    row("backslash at the end of a line before a comment", "a=b\\\r\n;c\n",
        "1:4: error: the trailing backslash is dropped; the value is 'b' [escape]\n"
        "2:1: error: the value ends at the semicolon: 'b'; quote the value to keep it whole "
        "[semicolon]\n");
    row("backslash at the end of the last line", "a=b\\\n",
        "1:4: error: the trailing backslash is dropped; the value is 'b' [escape]\n");
    row("backslash at the end of the file", "a=b\\",
        "1:4: error: the trailing backslash is dropped; the value is 'b' [escape]\n");
    row("quote that is not closed", "a=\"b\n[s]\nc=1\n",
        "1:1: error: the quote is not closed: everything up to the end of the file belongs to this "
        "line [multi-line]\n");
    row("section with a quote", "[a\"b\nc\"]\n",
        "1:1: error: everything up to line 2 belongs to this line: a quote or a backslash includes "
        "the line ending [multi-line]\n");
    row("quote without an equals sign", "a\"b\nc\"\n",
        "1:1: error: everything up to line 2 belongs to this line: a quote or a backslash includes "
        "the line ending [multi-line]\n"
        "1:1: error: there is no '='; the line is skipped, and QSettings reports a format error: "
        "'a\"b\\x0ac\"' [no-equals]\n");
    row("at sign of another type", "a=@Size(1 2)\nb=@@c\nc=@Invalid()\n",
        "1:3: error: \'@Size(1 2)' is read as a point, a size or a rectangle [at-sign]\n"
        "2:3: error: \'@@c' is read as the text without its first '@' [at-sign]\n"
        "3:3: error: \'@Invalid()' is read as no value at all [at-sign]\n");
    row("at sign of bytes, text or an object",
        "a=@ByteArray(x)\nb=@String(x)\nc=@Variant(x)\nd=@DateTime(x)\n",
        "1:3: error: \'@ByteArray(x)' is read as the bytes in the parentheses [at-sign]\n"
        "2:3: error: \'@String(x)' is read as the text in the parentheses [at-sign]\n"
        "3:3: error: \'@Variant(x)' is read as a stored object [at-sign]\n"
        "4:3: error: \'@DateTime(x)' is read as a stored object [at-sign]\n");
    row("boolean word that is read as true", "a=Off\n",
        "1:3: warning: as a boolean, 'Off' is true: only '0', 'false' and an empty value are false "
        "[boolean-word]\n");
    row("large number", "a=4294967301\n",
        "1:3: warning: as an integer, '4294967301' is read as 5: it exceeds 32 bits "
        "[large-number]\n");
    row("byte order mark before a key",
        "\xEF\xBB\xBF"
        "a=1\n",
        "1:1: error: the byte order mark is part of this key's name [byte-order-mark]\n");
    row("byte order mark before a section", "\xEF\xBB\xBF[a]\nb=1\n",
        "1:1: note: a byte order mark counts as a line without '='; QSettings reports a format "
        "error [byte-order-mark]\n");
    row("byte order mark before a text",
        "\xEF\xBB\xBF"
        "a\n",
        "1:1: note: a byte order mark counts as a line without '='; QSettings reports a format "
        "error [byte-order-mark]\n"
        "1:1: error: there is no '='; the line is skipped, and QSettings reports a format error: "
        "'a' [no-equals]\n");
    row("byte order mark before a comment", "\xEF\xBB\xBF# a\n",
        "1:1: note: a byte order mark counts as a line without '='; QSettings reports a format "
        "error [byte-order-mark]\n");
    row("byte order mark before a key in a comment", "\xEF\xBB\xBF#a=1,2\n",
        "1:1: note: '#' does not start a comment: the line is read as the key "
        "'\xC3\xAF\xC2\xBB\xC2\xBF#a' "
        "[hash-comment]\n");
    row("UTF-16", QByteArray("\xFF\xFE=\0\n\0", 6),
        "1:1: error: the file is UTF-16, which QSettings cannot read [byte-order-mark]\n"
        "2:1: error: there is no '='; the line is skipped, and QSettings reports a format error: "
        "'' [no-equals]\n");
    row("long line", QByteArray(70, 'x') + "\n",
        ("1:1: error: there is no '='; the line is skipped, and QSettings reports a format error: "
         "'" +
         QByteArray(60, 'x') + "...' [no-equals]\n")
            .constData());
    row("carriage returns as line endings", "a=1\rb=1,2\rc=3\r",
        "2:4: error: the comma makes the value a list of 2 strings, which is empty when read as "
        "one string; quote the value to keep the comma [comma-list]\n");
    row("column in characters of UTF-8", "; \xC3\xA4\nb=\"\xC3\xA4\",\n",
        "2:3: error: the value is UTF-8, but is decoded as Latin-1 and read as "
        "'\xC3\x83\xC2\xA4', '' [encoding]\n"
        "2:6: error: the comma makes the value a list of 2 strings, which is empty when read as "
        "one string; quote the value to keep the comma [comma-list]\n");
    row("column in bytes of Latin-1", "; \xE4\nb=\"\xE4\x84\",\n",
        "2:7: error: the comma makes the value a list of 2 strings, which is empty when read as "
        "one string; quote the value to keep the comma [comma-list]\n");
    row("invalid ini-lint comment",
        "; ini-lint: ignore\n# ini-lint: ignore-line case\n;ini-lint:\n",
        "1:1: warning: this must be 'ini-lint: ignore RULE...' or 'ini-lint: ignore-file RULE...' "
        "[ignore-comment]\n"
        "2:1: warning: this must be 'ini-lint: ignore RULE...' or 'ini-lint: ignore-file RULE...' "
        "[ignore-comment]\n"
        "3:1: warning: this must be 'ini-lint: ignore RULE...' or 'ini-lint: ignore-file RULE...' "
        "[ignore-comment]\n");
    row("comment that ignores an unknown rule", "  ; ini-lint: ignore comma\na=1,2\n",
        "1:1: warning: unknown rule 'comma' [ignore-comment]\n"
        "2:4: error: the comma makes the value a list of 2 strings, which is empty when read as "
        "one string; quote the value to keep the comma [comma-list]\n");
}

void tst_IniLint::findings()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, output);

    writeFile(file, text);
    QString expected;
    for (const QString& line : output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        expected += file + QLatin1Char(':') + line + QLatin1Char('\n');
    }
    verifyRun({"--all", "--level=note", file}, 1, expected);
    QCOMPARE(readFile(path(file)), text);
    QCOMPARE(filesInTheDirectory(), QStringList(file));
}

void tst_IniLint::unambiguousTextHasNoFindings_data()
{
    QTest::addColumn<QByteArray>("text");

    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("comments") << QByteArray("; one, two; three\n\n  ; four = \"\n");
    QTest::newRow("quoted values") << QByteArray("a=\"1, 2\"\nb=\"1; 2\"\nc = \" 3 \" \n");
    QTest::newRow("comments after a hash") << QByteArray(
        "# one\n#\n  # it's one; two\n# [s]\n# \"three\n# four\"\n# C:\\\n\n# five\\");
    QTest::newRow("comment after a section") << QByteArray("[s] # one\na=1\n[t];two\na=1\n");

    QTest::newRow("same key in two sections") << QByteArray("[s]\na=1\n[t]\na=1\n");
    QTest::newRow("section in two parts") << QByteArray("[s]\na=1\n[t]\na=1\n[s]\nb=1\n");
    QTest::newRow("color") << QByteArray("a=#ff0000\nb = #ff0000\n");
    QTest::newRow("address") << QByteArray("a=@home\n");
    QTest::newRow("largest number") << QByteArray("a=2147483647\nb=-2147483648\n");
    QTest::newRow("number over 64 bits") << QByteArray("a=99999999999999999999\n");
    QTest::newRow("carriage returns") << QByteArray("[s]\r\na=1\r\n");
}

void tst_IniLint::unambiguousTextHasNoFindings()
{
    QFETCH(QByteArray, text);
    writeFile(file, text);
    verifyRun({"--all", "--level=note", file}, 0, QString());
}

void tst_IniLint::codecs_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("output");

    const QByteArray utf8 = "a=\xC3\xA4\n";
    const QByteArray latin1 = "a=\xE4\n";
    const QStringList codec{"--codec"};
    QTest::newRow("UTF-8, none") << QStringList() << utf8
                                 << QString::fromUtf8(
                                        "file.ini:1:3: error: the value is UTF-8, but is decoded "
                                        "as Latin-1 and read as '\xC3\x83\xC2\xA4' "
                                        "[encoding]\n");
    QTest::newRow("UTF-8, UTF-8") << codec + QStringList("UTF-8") << utf8 << QString();
    QTest::newRow("UTF-8, ISO-8859-15")
        << codec + QStringList("ISO-8859-15") << utf8
        << QString::fromUtf8("file.ini:1:3: error: the value is UTF-8, but is decoded as "
                             "ISO-8859-15 and read as '\xC3\x83\xE2\x82\xAC' [encoding]\n");
    QTest::newRow("Latin-1, none") << QStringList() << latin1 << QString();
    QTest::newRow("Latin-1, UTF-8")
        << codec + QStringList("UTF-8") << latin1
        << QString::fromUtf8("file.ini:1:3: error: the value is not UTF-8; it is read as "
                             "'\xEF\xBF\xBD' [encoding]\n");
    QTest::newRow("UTF-8 after a byte order mark, none")
        << QStringList() << "\xEF\xBB\xBF;\n" + utf8 << QString();
    QTest::newRow("name in UTF-8, UTF-8")
        << codec + QStringList("UTF-8") << QByteArray("\xC3\xA4=1\n[\xC3\xB6]\n")
        << QString::fromUtf8(
               "file.ini:1:1: error: '\xC3\xA4' is read as '\xC3\x83\xC2\xA4': names are "
               "Latin-1 with any codec (and 1 more in this file) [encoding]\n");
    QTest::newRow("name in Latin-1, none") << QStringList() << QByteArray("\xE4=1\n") << QString();
}

void tst_IniLint::codecs()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, text);
    QFETCH(QString, output);
    writeFile(file, text);
    verifyRun(options + QStringList(file), output.isEmpty() ? 0 : 1, output);
}

void tst_IniLint::rulesCanBeIgnored()
{
    writeFile(file, "a=1;b\na=2,3\nno\n");
    verifyRun({"--ignore", "semicolon", "--ignore=comma-list", file, "--ignore", "no-equals"}, 1,
              QStringLiteral("file.ini:1:1: error: 'a' is a duplicate: the value in line 2 counts, "
                             "not this one [duplicate-key]\n"));
    verifyRun({"--ignore", "semicolon", "--ignore=comma-list", file, "--ignore", "no-equals",
               "--ignore", "duplicate-key"},
              0, QString());
}

void tst_IniLint::levelHidesLowerSeverities()
{
    writeFile(file, "#a=1\nb=off\nc=1;2\n");
    const QString note =
        QStringLiteral("file.ini:1:1: note: '#' does not start a comment: the line is "
                       "read as the key '#a' [hash-comment]\n");
    const QString warning =
        QStringLiteral("file.ini:2:3: warning: as a boolean, 'off' is true: only '0', 'false' and "
                       "an empty value are false [boolean-word]\n");
    const QString error = QStringLiteral("file.ini:3:4: error: the value ends at the semicolon: "
                                         "'1'; quote the value to keep it whole [semicolon]\n");
    verifyRun({file}, 1, warning + error);
    verifyRun({"--level=note", file}, 1, note + warning + error);
    verifyRun({"--level", "warning", file}, 1, warning + error);
    verifyRun({"--level", "error", file}, 1, error);
    verifyRun({"--level", "error", "--ignore", "semicolon", file}, 0, QString());
}

void tst_IniLint::repeatsAreCounted()
{
    writeFile(file, "a=1;2\nb=1 ;\nc=1;\nd=off\ne=;\n");
    const QString text = QStringLiteral(
        "the value ends at the semicolon: '%1'; quote the value to keep it whole%2 [semicolon]\n");
    const QString boolean =
        QStringLiteral("file.ini:4:3: warning: as a boolean, 'off' is true: only '0', 'false' and "
                       "an empty value are false [boolean-word]\n");
    // A warning does not hide an error of the same rule.
    verifyRun({file}, 1,
              "file.ini:1:4: error: " + text.arg("1", " (and 2 more in this file)") +
                  "file.ini:2:5: warning: " + text.arg("1", "") + boolean);
    verifyRun({"--all", file}, 1,
              "file.ini:1:4: error: " + text.arg("1", "") + "file.ini:2:5: warning: " +
                  text.arg("1", "") + "file.ini:3:4: error: " + text.arg("1", "") + boolean +
                  "file.ini:5:3: error: " + text.arg("", ""));
}

void tst_IniLint::commentsIgnoreFindings_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("places");

    QTest::newRow("next line") << QByteArray("; ini-lint: ignore semicolon\na=1;2\nb=1;2\n")
                               << QStringList{"3:4"};
    QTest::newRow("hash") << QByteArray("#ini-lint: ignore semicolon\na=1;2\nb=1;2\n")
                          << QStringList{"3:4"};
    QTest::newRow("another rule") << QByteArray("; ini-lint: ignore comma-list\na=1;2\n")
                                  << QStringList{"2:4"};
    QTest::newRow("several rules")
        << QByteArray("; ini-lint: ignore semicolon, comma-list boolean-word\na=1,1;2\nb=off\n")
        << QStringList{"3:3"};
    QTest::newRow("several comments")
        << QByteArray("; ini-lint: ignore semicolon\n; because\n\n"
                      "; ini-lint: ignore comma-list\r\na=1,1;2\nb=1;\n")
        << QStringList{"6:4"};
    QTest::newRow("section") << QByteArray("; ini-lint: ignore general-section\n[General]\n")
                             << QStringList();
    QTest::newRow("value of several lines")
        << QByteArray("; ini-lint: ignore escape multi-line\na=\"\\q\n\\q\"\nb=\\q\n")
        << QStringList{"4:3"};
    QTest::newRow("entire file") << QByteArray(
                                        "a=1;2\n; ini-lint: ignore-file semicolon\nb=1;2\nc=1,2\n")
                                 << QStringList{"4:4"};
    QTest::newRow("no comment") << QByteArray("a=1 ini-lint: ignore semicolon\nb=1;2\n")
                                << QStringList{"2:4"};
    QTest::newRow("comment without the program's name")
        << QByteArray("; ignore semicolon\na=1;2\n") << QStringList{"2:4"};
}

void tst_IniLint::commentsIgnoreFindings()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, places);

    writeFile(file, text);
    const ProgramResult result = run({"--all", file});
    QStringList found = result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (QString& line : found) {
        line = line.section(QLatin1Char(':'), 1, 2);
    }
    QCOMPARE(found, places);
    QCOMPARE(result.exitCode, places.isEmpty() ? 0 : 1);
}

void tst_IniLint::listsIgnoreFindings_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QStringList>("remaining"); // files and rules

    const QStringList a = {"a/one.ini boolean-word", "a/one.ini semicolon"};
    const QStringList b = {"b c/two.ini boolean-word", "b c/two.ini semicolon"};
    QTest::newRow("empty") << QByteArray("") << a + b;
    QTest::newRow("comments") << QByteArray("# * *\n\n  # semicolon *\n") << a + b;
    QTest::newRow("rule everywhere")
        << QByteArray("semicolon *.ini\n") << QStringList{a.at(0), b.at(0)};
    QTest::newRow("file by its name") << QByteArray("* one.ini") << b;
    QTest::newRow("part of a name") << QByteArray("* ne.ini") << a + b;
    QTest::newRow("file by its path") << QByteArray("* a/one.ini") << b;
    QTest::newRow("directory") << QByteArray("* b c/*\r\n") << a;
    QTest::newRow("pattern that begins with a slash") << QByteArray("* /*\n") << a + b;
    QTest::newRow("rules of files")
        << QByteArray("semicolon one.ini\nboolean-word t*.ini\n") << QStringList{a.at(0), b.at(1)};
}

void tst_IniLint::listsIgnoreFindings()
{
    QFETCH(QByteArray, list);
    QFETCH(QStringList, remaining);

    for (const char* name : {"a/one.ini", "b c/two.ini"}) {
        QVERIFY(QDir(directory()).mkpath(QFileInfo(QLatin1String(name)).path()));
        writeFile(QLatin1String(name), "a=off\nb=1;2\n");
    }
    writeFile("list.txt", list);
    const ProgramResult result = run({"--ignore-list", "list.txt", "a/one.ini", "b c/two.ini"});
    QStringList found = result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (QString& line : found) {
        const QString rule = line.section(QLatin1Char('['), -1).chopped(1);
        line = line.section(QLatin1Char(':'), 0, 0) + QLatin1Char(' ') + rule;
    }
    QCOMPARE(found, remaining);
    QCOMPARE(result.errors, QString());
}

void tst_IniLint::invalidListsAreRefused_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QString>("error");
    QTest::newRow("no pattern") << QByteArray("* *\nsemicolon\n")
                                << "list.txt:2: this must be RULE PATTERN: 'semicolon'";
    QTest::newRow("unknown rule") << QByteArray("colon *.ini")
                                  << "list.txt:1: unknown rule 'colon'";
}

void tst_IniLint::invalidListsAreRefused()
{
    QFETCH(QByteArray, list);
    QFETCH(QString, error);
    writeFile("list.txt", list);
    writeFile(file, "");
    verifyRun({"--ignore-list=list.txt", file}, 2, QString(),
              "ini-lint: " + error + QLatin1Char('\n') + hint);
    verifyRun({"--ignore-list=none.txt", file}, 2, QString(),
              "ini-lint: none.txt: No such file or directory\n" + hint);
}

void tst_IniLint::standardInput()
{
    const QString finding = QStringLiteral("<stdin>:1:4: error: the value ends at the semicolon: "
                                           "'1'; quote the value to keep it whole [semicolon]\n");
    ProgramRun lint(program, {"-"}, directory());
    lint.write("a=1;2\n");
    verifyResult(lint.finish(), 1, finding);

    ProgramRun dryRun(program, {"--clean", "--dry-run", "-"}, directory());
    dryRun.write("a=1,2\n");
    verifyResult(dryRun.finish(), 1, "--- <stdin>\n+++ <stdin>\n@@ -1,1 +1,1 @@\n-a=1,2\n+a=1 2\n");

    writeFile("-", "a=1,2\n"); // must not be read
    ProgramRun clean(program, {"--clean", "-"}, directory());
    clean.write("a=1,2\n");
    verifyResult(clean.finish(), 2, QString(),
                 "ini-lint: <stdin>: only a regular file can be cleaned up\n");
    QCOMPARE(readFile(path(QStringLiteral("-"))), QByteArray("a=1,2\n"));
}

void tst_IniLint::directories()
{
    QVERIFY(QDir(directory()).mkpath("d/b/.c"));
    for (const char* name : {"d/z.ini", "d/b/y.ini", "d/b/.c/.x.ini", "d/b/w.conf", "d/ini"}) {
        writeFile(QLatin1String(name), "a=1;2\n");
    }
    QVERIFY(QFile::link("..", path("d/b/up.ini")));
    QCOMPARE(mkfifo(qPrintable(path(QStringLiteral("d/pipe.ini"))), 0600), 0);

    const auto filesOf = [this](const QStringList& arguments) {
        QStringList files;
        for (const QString& line :
             run(arguments).output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            files.append(line.section(QLatin1Char(':'), 0, 0));
        }
        return files;
    };
    const QStringList all = {"d/b/.c/.x.ini", "d/b/y.ini", "d/z.ini"};
    QCOMPARE(filesOf({"d"}), all);
    QCOMPARE(filesOf({"d/z.ini", "d", "d/ini"}),
             QStringList("d/z.ini") + all + QStringList("d/ini"));
    QCOMPARE(filesOf({"-p", "*.conf", "d"}), QStringList("d/b/w.conf"));
    QCOMPARE(filesOf({"--pattern=*.conf", "--pattern=z*", "d"}),
             (QStringList{"d/b/w.conf", "d/z.ini"}));
    verifyRun({"--pattern=*.none", "--pattern=x", "d"}, 2, QString(),
              QStringLiteral("ini-lint: d: no file in this directory matches '*.none', 'x'\n"));
}

void tst_IniLint::unreadableDirectoryIsReported()
{
    // Root can read every directory, unless it lacks these capabilities. (Another user may be
    // unable to start the program, for example in root's home directory.)
    const QStringList unprivileged =
        geteuid() == 0 ? QStringList{"setpriv", "--inh-caps=-all",
                                     "--bounding-set=-dac_override,-dac_read_search"}
                       : QStringList{"env"};
    QVERIFY(QDir(directory()).mkpath("d/closed"));
    writeFile("d/a.ini", "a=1;2\n");
    writeFile("d/closed/b.ini", "a=1;2\n");
    QCOMPARE(chmod(qPrintable(directory()), 0755), 0);
    QCOMPARE(chmod(qPrintable(path(QStringLiteral("d/closed"))), 0), 0);
    const ProgramResult result =
        ProgramRun(unprivileged.constFirst(), unprivileged.mid(1) + QStringList{program, "d"},
                   directory())
            .finish();
    QCOMPARE(chmod(qPrintable(path(QStringLiteral("d/closed"))), 0755), 0);
    QCOMPARE(result.output.count(QLatin1Char('\n')), 1);
    QCOMPARE(result.errors, QStringLiteral("ini-lint: d/closed: the directory cannot be read\n"));
    QCOMPARE(result.exitCode, 2);
}

void tst_IniLint::severalFiles()
{
    writeFile("a.ini", "a=off\n");
    writeFile("b\n.ini", "b=no\n");
    const QString a =
        QStringLiteral("a.ini:1:3: warning: as a boolean, 'off' is true: only '0', 'false' and an "
                       "empty value are false [boolean-word]\n");
    const QString b =
        QStringLiteral("b\\x0a.ini:1:3: warning: as a boolean, 'no' is true: only '0', 'false' "
                       "and an empty value are false [boolean-word]\n");
    verifyRun({"a.ini", "b\n.ini"}, 1, a + b);
    // A missing file does not stop the check of the others.
    verifyRun({"none.ini", "a.ini", "b\n.ini"}, 2, a + b,
              "ini-lint: none.ini: No such file or directory\n");
}

void tst_IniLint::findingsAsJson()
{
    writeFile("a.ini", "a=off\nb=1;2\nc=no\n");
    writeFile("b.ini", "");
    const ProgramResult result = run({"--format=json", "a.ini", "b.ini", "none.ini"});
    QCOMPARE(QJsonDocument::fromJson(result.output.toUtf8()).toJson(), toJson(R"({"files": [
        {"file": "a.ini", "findings": [
            {"line": 1, "column": 3, "severity": "warning", "rule": "boolean-word", "repeats": 1,
             "message": "as a boolean, 'off' is true: only '0', 'false' and an empty value are false"},
            {"line": 2, "column": 4, "severity": "error", "rule": "semicolon", "repeats": 0,
             "message": "the value ends at the semicolon: '1'; quote the value to keep it whole"}]},
        {"file": "b.ini", "findings": []},
        {"file": "none.ini", "error": "No such file or directory"}]})"));
    QCOMPARE(result.errors, QStringLiteral("ini-lint: none.ini: No such file or directory\n"));
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(run({"--format", "json", "a.ini"}).exitCode, 1);
    QCOMPARE(run({"--format", "json", "b.ini"}).exitCode, 0);
}

// The members that the schema of SARIF 2.1.0 requires, and those that code hosts read.
void tst_IniLint::findingsAsSarif()
{
    writeFile("a b.ini", "a=off\nb=1;2\nc=no\n");
    const ProgramResult result = run({"--format=sarif", "a b.ini", "none.ini"});
    QCOMPARE(result.exitCode, 2);
    const QJsonObject log = QJsonDocument::fromJson(result.output.toUtf8()).object();
    QCOMPARE(log.value("version").toString(), QStringLiteral("2.1.0"));
    QCOMPARE(log.value("runs").toArray().size(), 1);

    const QJsonObject sarifRun = log.value("runs").toArray().at(0).toObject();
    const QJsonObject driver = sarifRun.value("tool").toObject().value("driver").toObject();
    QCOMPARE(driver.value("name").toString(), QStringLiteral("ini-lint"));
    QStringList rules;
    for (const QJsonValue& rule : driver.value("rules").toArray()) {
        rules.append(rule.toObject().value("id").toString());
        const QJsonObject text = rule.toObject().value("shortDescription").toObject();
        QVERIFY(!text.value("text").toString().isEmpty());
    }
    QCOMPARE(rules.size(), 22);
    QVERIFY(rules.contains("boolean-word"));

    QCOMPARE(QJsonDocument(sarifRun.value("results").toArray()).toJson(), toJson(R"([
        {"ruleId": "boolean-word", "level": "warning", "occurrenceCount": 2,
         "message": {"text": "as a boolean, 'off' is true: only '0', 'false' and an empty value are false"},
         "locations": [{"physicalLocation": {"artifactLocation": {"uri": "a%20b.ini"},
                                             "region": {"startLine": 1, "startColumn": 3}}}]},
        {"ruleId": "semicolon", "level": "error", "occurrenceCount": 1,
         "message": {"text": "the value ends at the semicolon: '1'; quote the value to keep it whole"},
         "locations": [{"physicalLocation": {"artifactLocation": {"uri": "a%20b.ini"},
                                             "region": {"startLine": 2, "startColumn": 4}}}]}])"));
    QCOMPARE(QJsonDocument(sarifRun.value("invocations").toArray()).toJson(), toJson(R"([
        {"executionSuccessful": false, "toolExecutionNotifications": [
            {"level": "error", "message": {"text": "No such file or directory"},
             "locations": [{"physicalLocation": {"artifactLocation": {"uri": "none.ini"}}}]}]}])"));

    const ProgramResult absolute = run({"--format=sarif", path("a b.ini")});
    QVERIFY(absolute.output.contains("\"uri\": \"file:///"));
    QVERIFY(absolute.output.contains("\"executionSuccessful\": true"));
    QCOMPARE(absolute.exitCode, 1);
}

void tst_IniLint::dryRunPrintsADiff_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("hunks");

    const auto row = [](const char* name, const QByteArray& text, const QByteArray& hunks) {
        QTest::newRow(name) << text << hunks;
    };
    row("commas and comments", "a=1\nb=1, 2\n%23c=3\n",
        "@@ -1,3 +1,3 @@\n a=1\n-b=1, 2\n-%23c=3\n+b=1  2\n+#c=3\n");
    row("commas in quotes", "a=\"1,2\"\n", "@@ -1,1 +1,1 @@\n-a=\"1,2\"\n+a=\"1 2\"\n");
    row("carriage returns", "a=1\r\nb=2\n", "@@ -1,2 +1,2 @@\n-a=1\r\n+a=1\n b=2\n");
    row("bytes that are not UTF-8", "a=\xE4\n", "@@ -1,1 +1,1 @@\n-a=\xE4\n+a=\xEF\xBF\xBD\n");
    row("zero byte", QByteArray("a=1\nb\0=2\nc=3", 12),
        QByteArray("@@ -1,3 +1,2 @@\n a=1\n-b\0=2\n-c=3\n\\ No newline at end of file\n+b\n"
                   "\\ No newline at end of file\n",
                   91));
    row("zero byte at the beginning", QByteArray("\0a=1\nb=2\n", 9),
        QByteArray("@@ -1,2 +0,0 @@\n-\0a=1\n-b=2\n", 27));
    row("byte order mark", "\xEF\xBB\xBF[a]\nb=\xC3\xA4\n",
        "@@ -1,2 +1,2 @@\n-\xEF\xBB\xBF[a]\n+[a]\n b=\xC3\xA4\n");
    row("no trailing line feed", "a=1,2",
        "@@ -1,1 +1,1 @@\n-a=1,2\n\\ No newline at end of file\n"
        "+a=1 2\n\\ No newline at end of file\n");
    row("context of a change", "a\nb\nc\nd\n,\ne\nf\ng\nh\n",
        "@@ -2,7 +2,7 @@\n b\n c\n d\n-,\n+ \n e\n f\n g\n");
    row("changes that share context", ",\na\nb\nc\nd\ne\nf\n,\n",
        "@@ -1,8 +1,8 @@\n-,\n+ \n a\n b\n c\n d\n e\n f\n-,\n+ \n");
    row("changes that share no context", ",\na\nb\nc\nd\ne\nf\ng\n,\n",
        "@@ -1,4 +1,4 @@\n-,\n+ \n a\n b\n c\n@@ -6,4 +6,4 @@\n e\n f\n g\n-,\n+ \n");
    row("no change", "a=1\n;b\n", "");
    row("empty", "", "");
}

void tst_IniLint::dryRunPrintsADiff()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, hunks);

    writeFile(file, text);
    const QByteArray diff = hunks.isEmpty() ? hunks : "--- file.ini\n+++ file.ini\n" + hunks;
    QCOMPARE(cleanUpDiff(file), diff);
    verifyRun({"--clean", "--dry-run", file}, hunks.isEmpty() ? 0 : 1, QString::fromUtf8(diff));
    QCOMPARE(readFile(path(file)), text);
    QCOMPARE(filesInTheDirectory(), QStringList(file));
}

void tst_IniLint::diffQuotesSpecialNames()
{
    const QString name = QString::fromUtf8("a \"b\"\\\n\xC3\xA4.ini");
    writeFile(name, "a=1,2\n");
    const QByteArray quoted = "\"a \\\"b\\\"\\\\\\012\xC3\xA4.ini\"\n";
    QCOMPARE(cleanUpDiff(name),
             "--- " + quoted + "+++ " + quoted + "@@ -1,1 +1,1 @@\n-a=1,2\n+a=1 2\n");
}

// With the diff, patch creates the same file as a clean-up.
void tst_IniLint::patchAcceptsTheDiff_data()
{
    dryRunPrintsADiff_data();
}

void tst_IniLint::patchAcceptsTheDiff()
{
    if (QStandardPaths::findExecutable("patch").isEmpty()) {
        MISCTOOLS_SKIP("patch is not installed");
    }
    QFETCH(QByteArray, text);

    // From version 2.8 on, patch refuses names with a line feed.
    for (const char* name : {"file.ini", "a \"b\"\\\t\xC3\xA4.ini"}) {
        const QString patched = QString::fromUtf8(name);
        writeFile("cleaned.ini", text);
        QCOMPARE(run({"--clean", "cleaned.ini"}).exitCode, 0);
        writeFile(patched, text);
        writeFile("changes.diff", cleanUpDiff(patched));
        const ProgramResult result =
            ProgramRun("patch", {"--strip=0", "--input=changes.diff"}, directory()).finish();
        QVERIFY2(result.exitCode == 0, qPrintable(result.output + result.errors));
        QVERIFY(QFile::exists(path(patched)));
        QCOMPARE(readFile(path(patched)), readFile(path(QStringLiteral("cleaned.ini"))));
    }
}

void tst_IniLint::cleanMakesTheChangesOfTheDryRun()
{
    writeFile(file, "a=1,2\r\n%23b\n");
    const QString changes = run({"--clean", "--dry-run", file}).output;
    QCOMPARE(changes.count(QLatin1Char('\n')), 7);
    verifyRun({"--clean", file}, 0, changes);
    QCOMPARE(readFile(path(file)), QByteArray("a=1 2\n#b\n"));
    verifyRun({"--clean", file}, 0, QString());
    QCOMPARE(filesInTheDirectory(), QStringList(file));
}

void tst_IniLint::cleanKeepsOwnerAndMode()
{
    const QByteArray ini = QFile::encodeName(writeFile(file, "a=1,2\n"));
    // Only root can change the owner.
    const uid_t owner = geteuid() == 0 ? 4711 : geteuid();
    const gid_t group = geteuid() == 0 ? 815 : getegid();
    QCOMPARE(chown(ini.constData(), owner, group), 0);
    QCOMPARE(chmod(ini.constData(), 0642), 0);
    QCOMPARE(run({"--clean", file}).exitCode, 0);
    struct stat status = {};
    QCOMPARE(stat(ini.constData(), &status), 0);
    QCOMPARE(status.st_mode & 07777, mode_t(0642));
    QCOMPARE(status.st_uid, owner);
    QCOMPARE(status.st_gid, group);
    QCOMPARE(readFile(path(file)), QByteArray("a=1 2\n"));
}

void tst_IniLint::fileWithoutChangesIsNotWritten()
{
    writeFile(file, "a=1\n");
    struct stat before = {};
    struct stat after = {};
    QCOMPARE(stat(qPrintable(path(file)), &before), 0);
    verifyRun({"--clean", file}, 0, QString());
    QCOMPARE(stat(qPrintable(path(file)), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino); // a save replaces the file
}

void tst_IniLint::failedCleanUpIsReported()
{
    verifyRun({"--clean", "none.ini"}, 2, QString(),
              "ini-lint: none.ini: No such file or directory\n");
    ProgramRun pipe(program, {"--clean", "/dev/stdin"}, directory());
    pipe.write("a=1,2\n");
    const ProgramResult result = pipe.finish();
    QCOMPARE(result.errors, "ini-lint: /dev/stdin: only a regular file can be cleaned up\n");
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);

    // It contains commas, and no file can be created in its directory.
    const ProgramResult ofKernel = run({"--clean", "/proc/mounts"});
    const QRegularExpression refusal("^ini-lint: /proc/mounts: the file cannot be cleaned up: "
                                     "(Operation not permitted|Permission denied|No such "
                                     "file.*|Existing file .* is not writable)\n$");
    QVERIFY2(refusal.match(ofKernel.errors).hasMatch(), qPrintable(ofKernel.errors));
    QCOMPARE(ofKernel.output, QString());
    QCOMPARE(ofKernel.exitCode, 2);

    writeFile(file, "a=1,2\n");
    const ProgramResult without =
        ProgramRun("env", {"TMPDIR=/none", program, "--clean", file}, directory()).finish();
    QCOMPARE(
        without.errors,
        QStringLiteral(
            "ini-lint: file.ini: cannot create a copy in the directory for temporary files\n"));
    QCOMPARE(without.exitCode, 2);
    QCOMPARE(readFile(path(file)), QByteArray("a=1,2\n"));
}

void tst_IniLint::changesAsJson()
{
    writeFile(file, QByteArray("a=1,2\nb\0\nc", 10));
    const char* const report = R"({"files": [{"file": "file.ini", "done": %1, "changes": [
        {"line": 1, "before": "a=1,2", "after": "a=1 2"},
        {"line": 2, "before": "b\\x00", "after": "b"},
        {"line": 3, "before": "c", "after": null}]}]})";
    const auto expected = [report](const char* done) {
        return toJson(QByteArray(report).replace("%1", done).constData());
    };
    const ProgramResult dryRun = run({"--format=json", "--clean", "--dry-run", file});
    QCOMPARE(QJsonDocument::fromJson(dryRun.output.toUtf8()).toJson(), expected("false"));
    QCOMPARE(dryRun.exitCode, 1);
    const ProgramResult cleaned = run({"--format=json", "--clean", file});
    QCOMPARE(QJsonDocument::fromJson(cleaned.output.toUtf8()).toJson(), expected("true"));
    QCOMPARE(cleaned.exitCode, 0);
}

void tst_IniLint::fullDiskIsReported()
{
    writeFile(file, "a=off\n");
    const ProgramResult result =
        ProgramRun("sh", {"-c", "\"$0\" \"$1\" >/dev/full", program, file}, directory()).finish();
    QCOMPARE(result.errors, "ini-lint: cannot write standard output: No space left on device\n");
    QCOMPARE(result.exitCode, 2);
}

void tst_IniLint::terminalShowsTheFileBeingRead()
{
    // The pipe has no writer yet: the program waits as for a slow file.
    const QString pipe = path("pipe.ini");
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    const QString before = writeFile(file, "a=off\n");

    Terminal terminal(60, Terminal::StandardError);
    terminal.start(program, {before, pipe});
    QVERIFY(terminal.waitForText("s: file 2 of 2: /"));
    QFile writer(pipe);
    QVERIFY(writer.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    writer.write("a=1\n");
    writer.close();
    const QByteArray written = terminal.finish();
    // The status line is erased.
    QCOMPARE(Terminal::screenAfter(written), QList<QByteArray>{QByteArray()});
    for (const QByteArray& line : written.split('\r')) {
        QVERIFY2(line.size() < 60, line.constData());
    }
}

void tst_IniLint::severitiesAreColoredOnATerminal_data()
{
    QTest::addColumn<QStringList>("environment"); // arguments of env
    QTest::addColumn<bool>("isColored");

    const QStringList colored = {"-u", "NO_COLOR", "TERM=linux"};
    QTest::newRow("a terminal") << colored << true;
    QTest::newRow("NO_COLOR") << QStringList{"TERM=linux", "NO_COLOR=1"} << false;
    QTest::newRow("NO_COLOR is empty") << QStringList{"TERM=linux", "NO_COLOR="} << true;
    QTest::newRow("a terminal without colors")
        << QStringList{"-u", "NO_COLOR", "TERM=dumb"} << false;
}

void tst_IniLint::severitiesAreColoredOnATerminal()
{
    QFETCH(QStringList, environment);
    QFETCH(bool, isColored);
    const QString sample = writeFile(file, "a=x, y\nb=off\n");
    Terminal terminal(200);
    const QByteArray written = terminal.run("env", environment + QStringList{program, sample});
    const QByteArray error = isColored ? "\x1b[1;31merror\x1b[0m" : "error";
    const QByteArray warning = isColored ? "\x1b[1;35mwarning\x1b[0m" : "warning";
    QVERIFY2(written.contains(":1:4: " + error + ": the comma makes"), written.constData());
    QVERIFY2(written.contains(":2:3: " + warning + ": "), written.constData());
}

void tst_IniLint::invalidArgumentsAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    QTest::newRow("no file") << QStringList() << "at least one FILE is required";
    QTest::newRow("unknown option") << QStringList{"--fix", "a"} << "Unknown option 'fix'.";
    QTest::newRow("unknown format")
        << QStringList{"--format", "xml", "a"} << "--format must be text, json or sarif, not 'xml'";
    QTest::newRow("unknown codec") << QStringList{"--codec", "none", "a"} << "unknown codec 'none'";
    QTest::newRow("empty codec") << QStringList{"--codec=", "a"} << "unknown codec ''";
    QTest::newRow("unknown rule") << QStringList{"--ignore", "all", "a"} << "unknown rule 'all'";
    QTest::newRow("dry run without a clean-up")
        << QStringList{"--dry-run", "a"} << "--dry-run requires --clean";
    QTest::newRow("unknown level") << QStringList{"--level", "all", "a"}
                                   << "--level must be note, warning or error, not 'all'";
    QTest::newRow("clean-up with a codec")
        << QStringList{"--clean", "--codec", "UTF-8", "a"} << "--codec cannot be used with --clean";
    QTest::newRow("clean-up with an ignored rule")
        << QStringList{"--clean", "--ignore", "escape", "a"}
        << "--ignore cannot be used with --clean";
    QTest::newRow("clean-up with an ignore list")
        << QStringList{"--clean", "--ignore-list", "b", "a"}
        << "--ignore-list cannot be used with --clean";
    QTest::newRow("clean-up with a level")
        << QStringList{"--clean", "--level", "note", "a"} << "--level cannot be used with --clean";
    QTest::newRow("clean-up with all findings")
        << QStringList{"--clean", "--all", "a"} << "--all cannot be used with --clean";
    QTest::newRow("clean-up as SARIF") << QStringList{"--clean", "--format=sarif", "a"}
                                       << "--format=sarif cannot be used with --clean";
}

void tst_IniLint::invalidArgumentsAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    verifyRun(arguments, 2, QString(), QStringLiteral("ini-lint: %1\n").arg(error) + hint);
}

void tst_IniLint::helpListsEveryExitCode()
{
    const ProgramResult result = run({"--help"});
    for (const char* line :
         {"\n  0  no findings", "\n  1  there are findings",
          "\n  2  wrong usage, or a FILE or the output cannot be read or written"}) {
        QVERIFY2(result.output.contains(QLatin1String(line)), line);
    }
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_IniLint)
#include "tst_IniLint.moc"
