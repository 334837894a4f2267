#include "ProgramRun.h"
#include "Terminal.h"
#include "TestCase.h"

#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <sys/stat.h>

namespace {

const QString program = QStringLiteral(INI_LINT_PROGRAM);
const QString hint = QStringLiteral("ini-lint: try --help\n");
const QString file = QStringLiteral("file.ini");

QByteArray toJson(const char* text)
{
    return QJsonDocument::fromJson(text).toJson();
}

} // namespace

// The program that says what QSettings reads otherwise than it looks; that it is so shows
// tst_IniRules.
class tst_IniLint : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void findings_data();
    void findings();
    void nothingToFind_data();
    void nothingToFind();
    void codecs_data();
    void codecs();
    void rulesCanBeIgnored();
    void severalFiles();
    void findingsAsJson();
    void dryRunShowsTheChanges_data();
    void dryRunShowsTheChanges();
    void cleanDoesWhatTheDryRunShows();
    void cleanFilesAreNotWritten();
    void cleanSaysWhatItCannotDo();
    void changesAsJson();
    void fullDisk();
    void terminalsShowTheFileThatIsWaitedFor();
    void refusesWhatItCannotUse_data();
    void refusesWhatItCannotUse();
    void helpNamesEveryExitCode();

private:
    ProgramResult run(const QStringList& arguments) const
    {
        return ProgramRun(program, arguments, folder()).finish();
    }
    void verifyRun(const QStringList& arguments, int exitCode, const QString& output,
                   const QString& errors = QString()) const
    {
        verifyResult(run(arguments), exitCode, output, errors);
    }
    QStringList filesInTheFolder() const
    {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
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
        "1: for its comma the value is a list of 2 texts, and empty where a text is asked for; "
        "quotes keep it whole [comma-list]\n");
    row("semicolon", "\n[s]\nflags=a;b\n",
        "3: the value ends at the semicolon: 'a'; quotes keep it whole [semicolon]\n");
    row("no equals sign", "a=1\nb: 2\n",
        "2: there is no '='; the line is skipped, and QSettings reports a format error: 'b: 2' "
        "[no-equals]\n");
    row("hash before words", "# words\n",
        "1: '#' starts no comment; the line is skipped for want of a '=', and QSettings reports a "
        "format error: '# words' [hash-comment]\n");
    row("hash before a key", "#a=1\n%23b=1\n",
        "1: '#' starts no comment: the line is read as the key '#a' [hash-comment]\n"
        "2: '#' starts no comment: the line is read as the key '#b' [hash-comment]\n");
    row("hash behind a value", "a=1 # one\n",
        "1: '#' starts no comment; the value is '1 # one' [hash-comment]\n");
    row("key again", "[s]\na=1\na=2\n",
        "3: 's/a' is given again: this value counts, not that of line 2 [duplicate-key]\n");
    row("key again in the section's second part", "[s]\na=1\n[t]\na=1\n[s]\na=2\n",
        "6: 's/a' is given again: this value counts, not that of line 2 [duplicate-key]\n");
    row("key again by another spelling", "[s]\na%20b=1\na b=2\n",
        "3: 's/a b' is given again: this value counts, not that of line 2 [duplicate-key]\n");
    row("key again in another section", "[s/t]\na=1\n[s]\nt/a=2\n",
        "1: 's/t' is nested: the group that is listed is 's' [nested-name]\n"
        "4: 't/a' is nested: it is read as the key 'a' of the group 's/t' [nested-name]\n"
        "4: 's/t/a' is given in another section, too, in line 2: which value counts depends on "
        "what the program reads first [duplicate-key]\n");
    row("keys differ in case", "a=1\nA=2\nA=3\n",
        "2: 'A' is another key than 'a' in line 1: case counts [case]\n"
        "3: 'A' is given again: this value counts, not that of line 2 [duplicate-key]\n");
    row("sections differ in case", "[s]\na=1\n[S]\na=1\n",
        "3: 'S' is another section than 's' in line 1: case counts [case]\n");
    row("general section", "[general]\na=1\n",
        "1: [general] is no group but the top level of the file; the group 'General' is written "
        "[%General] [general-section]\n");
    row("backslash in a section's name", "[a\\b]\nc=1\n",
        "1: 'a/b' is nested: the group that is listed is 'a' [nested-name]\n");
    row("section without a name", "[]\na=1\n",
        "1: the keys of '' cannot be looked up: a part of its name is empty [unreachable]\n");
    row("section's name ends in a slash", "[a/]\nb=1\n",
        "1: the keys of 'a/' cannot be looked up: a part of its name is empty [unreachable]\n");
    row("no key", "=1\n",
        "1: there is no key before the '='; the value cannot be looked up [unreachable]\n");
    row("key begins with a slash", "/a=1\n",
        "1: the key '/a' cannot be looked up: a part of its name is empty [unreachable]\n");
    row("section without its end", "[a\nb=1\n",
        "1: the section has no ']'; its name is read as 'a' [section-end]\n");
    row("something behind a section", "[a] b=1\n",
        "1: what stands behind the ']' is skipped: 'b=1' [section-end]\n");
    row("percent sign in a key", "%41=1\n",
        "1: '%41' is read as 'A': '%' begins the number of a character [name-escape]\n");
    row("percent sign in a section", "[a%2Fb]\nc=1\n",
        "1: 'a%2Fb' is read as 'a/b': '%' begins the number of a character [name-escape]\n"
        "1: 'a/b' is nested: the group that is listed is 'a' [nested-name]\n");
    row("backslashes in a path", "path=C:\\temp\\data\n",
        "1: for '\\t' the value is read as 'C:\\x09empata'; '\\\\' is a backslash [escape]\n");
    row("numbers of characters", "a=\\x41bc,\\101\n",
        "1: for its comma the value is a list of 2 texts, and empty where a text is asked for; "
        "quotes keep it whole [comma-list]\n"
        "1: for '\\x41bc' the value is read as '\xE4\x86\xBC', 'A'; '\\\\' is a backslash "
        "[escape]\n");
    row("quotes within a value", "a=b\"c\"d\n",
        "1: quotes within a value vanish; it is read as 'bcd' [quotes]\n");
    row("single quotes", "a='b'\n",
        "1: single quotes are none; they are a part of the value: ''b'' [quotes]\n");
    row("quotes around a key", "\"a\"=1\n",
        "1: quotes are a part of the key's name: '\"a\"' [quotes]\n");
    row("quote over two lines", "a=\"b\nc\"\nd=,\n",
        "1: everything up to line 2 belongs to this line: a quote or a backslash takes the line's "
        "end in [multi-line]\n"
        "3: for its comma the value is a list of 2 texts, and empty where a text is asked for; "
        "quotes keep it whole [comma-list]\n");
    row("backslash at the end of a line", "a=b\\\r\nc\r\n",
        "1: everything up to line 2 belongs to this line: a quote or a backslash takes the line's "
        "end in [multi-line]\n");
    row("quote without its end", "a=\"b\n[s]\nc=1\n",
        "1: the quote is not closed: everything up to the end of the file belongs to this line "
        "[multi-line]\n");
    row("section with a quote", "[a\"b\nc\"]\n",
        "1: everything up to line 2 belongs to this line: a quote or a backslash takes the line's "
        "end in [multi-line]\n");
    row("words with a quote", "a\"b\nc\"\n",
        "1: everything up to line 2 belongs to this line: a quote or a backslash takes the line's "
        "end in [multi-line]\n"
        "1: there is no '='; the line is skipped, and QSettings reports a format error: "
        "'a\"b\\x0ac\"' [no-equals]\n");
    row("mark of another type", "a=@Size(1 2)\nb=@@c\nc=@Invalid()\n",
        "1: '@Size(1 2)' is read as a point, a size or a rectangle [at-sign]\n"
        "2: '@@c' is read as the text without its first '@' [at-sign]\n"
        "3: '@Invalid()' is read as no value at all [at-sign]\n");
    row("mark of bytes, text or an object",
        "a=@ByteArray(x)\nb=@String(x)\nc=@Variant(x)\nd=@DateTime(x)\n",
        "1: '@ByteArray(x)' is read as the bytes in the brackets [at-sign]\n"
        "2: '@String(x)' is read as the text in the brackets [at-sign]\n"
        "3: '@Variant(x)' is read as a stored object [at-sign]\n"
        "4: '@DateTime(x)' is read as a stored object [at-sign]\n");
    row("word that is no boolean", "a=Off\n",
        "1: as a boolean 'Off' is true: only '0', 'false' and an empty value are false "
        "[boolean-word]\n");
    row("large number", "a=4294967301\n",
        "1: as an integer '4294967301' is 5: it has more than 32 bits [large-number]\n");
    row("byte order mark before a key",
        "\xEF\xBB\xBF"
        "a=1\n",
        "1: a byte order mark is a part of this key's name [byte-order-mark]\n");
    row("byte order mark before a section", "\xEF\xBB\xBF[a]\nb=1\n",
        "1: a byte order mark counts as a line without '='; QSettings reports a format error "
        "[byte-order-mark]\n");
    row("long line", QByteArray(70, 'x') + "\n",
        ("1: there is no '='; the line is skipped, and QSettings reports a format error: '" +
         QByteArray(60, 'x') + "...' [no-equals]\n")
            .constData());
    row("carriage returns alone end lines", "a=1\rb=1,2\rc=3\r",
        "2: for its comma the value is a list of 2 texts, and empty where a text is asked for; "
        "quotes keep it whole [comma-list]\n");
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
    verifyRun({file}, 1, expected);
    QCOMPARE(readFile(path(file)), text);
    QCOMPARE(filesInTheFolder(), QStringList(file));
}

void tst_IniLint::nothingToFind_data()
{
    QTest::addColumn<QByteArray>("text");

    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("comments") << QByteArray("; one, two; three\n\n  ; four = \"\n");
    QTest::newRow("quotes that keep a value whole")
        << QByteArray("a=\"1, 2\"\nb=\"1; 2\"\nc = \" 3 \" \n");
    QTest::newRow("escapes that stand for themselves") << QByteArray("a=C:\\\\temp\nb=\\\"c\\\"\n");
    QTest::newRow("group of the name General") << QByteArray("[%General]\na=1\n");
    QTest::newRow("as QSettings writes names") << QByteArray("a%20b=1\n%UABCD=2\n");
    QTest::newRow("same key in two sections") << QByteArray("[s]\na=1\n[t]\na=1\n");
    QTest::newRow("section in two parts") << QByteArray("[s]\na=1\n[t]\na=1\n[s]\nb=1\n");
    QTest::newRow("color") << QByteArray("a=#ff0000\nb = #ff0000\n");
    QTest::newRow("address") << QByteArray("a=@home\n");
    QTest::newRow("largest number") << QByteArray("a=2147483647\nb=-2147483648\n");
    QTest::newRow("no number") << QByteArray("a=99999999999999999999\n");
    QTest::newRow("carriage returns") << QByteArray("[s]\r\na=1\r\n");
}

void tst_IniLint::nothingToFind()
{
    QFETCH(QByteArray, text);
    writeFile(file, text);
    verifyRun({file}, 0, QString());
}

void tst_IniLint::codecs_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("output");

    const QByteArray utf8 = "a=\xC3\xA4\n";
    const QByteArray latin1 = "a=\xE4\n";
    const QStringList codec{QStringLiteral("--codec")};
    QTest::newRow("UTF-8, none") << QStringList() << utf8
                                 << QString::fromUtf8(
                                        "file.ini:1: the value's bytes are UTF-8, but they are "
                                        "taken for Latin-1; it is read as '\xC3\x83\xC2\xA4' "
                                        "[encoding]\n");
    QTest::newRow("UTF-8, UTF-8") << codec + QStringList("UTF-8") << utf8 << QString();
    QTest::newRow("UTF-8, ISO-8859-15")
        << codec + QStringList("ISO-8859-15") << utf8
        << QString::fromUtf8("file.ini:1: the value's bytes are UTF-8, but they are taken for "
                             "ISO-8859-15; it is read as '\xC3\x83\xE2\x82\xAC' [encoding]\n");
    QTest::newRow("Latin-1, none") << QStringList() << latin1 << QString();
    QTest::newRow("Latin-1, UTF-8")
        << codec + QStringList("UTF-8") << latin1
        << QString::fromUtf8("file.ini:1: the value's bytes are not UTF-8; it is read as "
                             "'\xEF\xBF\xBD' [encoding]\n");
    QTest::newRow("UTF-8 after a byte order mark, none")
        << QStringList() << "\xEF\xBB\xBF;\n" + utf8
        << QStringLiteral("file.ini:1: a byte order mark counts as a line without '='; QSettings "
                          "reports a format error [byte-order-mark]\n");
    QTest::newRow("name in UTF-8, UTF-8")
        << codec + QStringList("UTF-8") << QByteArray("\xC3\xA4=1\n[\xC3\xB6]\n")
        << QString::fromUtf8("file.ini:1: '\xC3\xA4' is read as '\xC3\x83\xC2\xA4': names are "
                             "Latin-1 whatever the codec [encoding]\n"
                             "file.ini:2: '\xC3\xB6' is read as '\xC3\x83\xC2\xB6': names are "
                             "Latin-1 whatever the codec [encoding]\n");
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
              QStringLiteral("file.ini:2: 'a' is given again: this value counts, not that of line "
                             "1 [duplicate-key]\n"));
    verifyRun({"--ignore", "semicolon", "--ignore=comma-list", file, "--ignore", "no-equals",
               "--ignore", "duplicate-key"},
              0, QString());
}

void tst_IniLint::severalFiles()
{
    writeFile(QStringLiteral("a.ini"), "a=off\n");
    writeFile(QStringLiteral("b\n.ini"), "b=no\n");
    const QString a =
        QStringLiteral("a.ini:1: as a boolean 'off' is true: only '0', 'false' and an "
                       "empty value are false [boolean-word]\n");
    const QString b = QStringLiteral("b\\x0a.ini:1: as a boolean 'no' is true: only '0', 'false' "
                                     "and an empty value are false [boolean-word]\n");
    verifyRun({"a.ini", "b\n.ini"}, 1, a + b);
    // What cannot be read does not stop the rest.
    verifyRun({"none.ini", "a.ini", ".", "b\n.ini"}, 2, a + b,
              QStringLiteral("ini-lint: none.ini: No such file or directory\n"
                             "ini-lint: .: file to open is a directory\n"));
}

void tst_IniLint::findingsAsJson()
{
    writeFile(QStringLiteral("a.ini"), "a=off\nb=1;2\n");
    writeFile(QStringLiteral("b.ini"), "");
    const ProgramResult result = run({"--format=json", "a.ini", "b.ini", "none.ini"});
    QCOMPARE(QJsonDocument::fromJson(result.output.toUtf8()).toJson(), toJson(R"({"files": [
        {"file": "a.ini", "findings": [
            {"line": 1, "rule": "boolean-word",
             "message": "as a boolean 'off' is true: only '0', 'false' and an empty value are false"},
            {"line": 2, "rule": "semicolon",
             "message": "the value ends at the semicolon: '1'; quotes keep it whole"}]},
        {"file": "b.ini", "findings": []},
        {"file": "none.ini", "trouble": "No such file or directory"}]})"));
    QCOMPARE(result.errors, QStringLiteral("ini-lint: none.ini: No such file or directory\n"));
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(run({"--format", "json", "a.ini"}).exitCode, 1);
    QCOMPARE(run({"--format", "json", "b.ini"}).exitCode, 0);
}

void tst_IniLint::dryRunShowsTheChanges_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("output"); // without the name of the file

    const auto row = [](const char* name, const QByteArray& text, const char* output) {
        QTest::newRow(name) << text << QString::fromUtf8(output);
    };
    row("commas and comments", "a=1\nb=1, 2\n%23c=3\n",
        "2: - b=1, 2\n2: + b=1  2\n3: - %23c=3\n3: + #c=3\n");
    row("commas in quotes, too", "a=\"1,2\"\n", "1: - a=\"1,2\"\n1: + a=\"1 2\"\n");
    row("carriage returns", "a=1\r\nb=2\n", "1: - a=1\\x0d\n1: + a=1\n");
    row("bytes that are no UTF-8", "a=\xE4\n", "1: - a=\\xe4\n1: + a=\xEF\xBF\xBD\n");
    row("letters beyond ASCII", "a=\xC3\xA4,\n", "1: - a=\xC3\xA4,\n1: + a=\xC3\xA4 \n");
    row("zero byte", QByteArray("a=1\nb\0=2\nc=3", 12), "2: - b\\x00=2\n2: + b\n3: - c=3\n");
    row("byte order mark", "\xEF\xBB\xBF[a]\nb=\xC3\xA4\n", "1: - \\xef\\xbb\\xbf[a]\n1: + [a]\n");
    row("nothing", "a=1\n;b\n", "");
    row("empty", "", "");
}

void tst_IniLint::dryRunShowsTheChanges()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, output);

    writeFile(file, text);
    QString expected;
    for (const QString& line : output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        expected += file + QLatin1Char(':') + line + QLatin1Char('\n');
    }
    verifyRun({"--clean", "--dry-run", file}, output.isEmpty() ? 0 : 1, expected);
    QCOMPARE(readFile(path(file)), text);
    QCOMPARE(filesInTheFolder(), QStringList(file));
}

void tst_IniLint::cleanDoesWhatTheDryRunShows()
{
    writeFile(file, "a=1,2\r\n%23b\n");
    const QString changes = run({"--clean", "--dry-run", file}).output;
    QCOMPARE(changes.count(QLatin1Char('\n')), 4);
    verifyRun({"--clean", file}, 0, changes);
    QCOMPARE(readFile(path(file)), QByteArray("a=1 2\n#b\n"));
    verifyRun({"--clean", file}, 0, QString());
    QCOMPARE(filesInTheFolder(), QStringList(file));
}

void tst_IniLint::cleanFilesAreNotWritten()
{
    writeFile(file, "a=1\n");
    struct stat before = {};
    struct stat after = {};
    QCOMPARE(stat(qPrintable(path(file)), &before), 0);
    verifyRun({"--clean", file}, 0, QString());
    QCOMPARE(stat(qPrintable(path(file)), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino); // a file that is written is a new one
}

void tst_IniLint::cleanSaysWhatItCannotDo()
{
    verifyRun({"--clean", "none.ini"}, 2, QString(),
              QStringLiteral("ini-lint: none.ini: No such file or directory\n"));
    ProgramRun pipe(program, {"--clean", "/dev/stdin"}, folder());
    pipe.write("a=1,2\n");
    const ProgramResult result = pipe.finish();
    QCOMPARE(result.errors,
             QStringLiteral("ini-lint: /dev/stdin: only a file can be cleaned up\n"));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, 2);

    // There are commas in it, and nobody can make a file beside it.
    verifyRun({"--clean", "/proc/mounts"}, 2, QString(),
              QStringLiteral("ini-lint: /proc/mounts: the file cannot be cleaned up: it, or its "
                             "folder, cannot be written\n"));

    writeFile(file, "a=1,2\n");
    const ProgramResult without =
        ProgramRun(QStringLiteral("env"), {"TMPDIR=/none", program, "--clean", file}, folder())
            .finish();
    QCOMPARE(without.errors,
             QStringLiteral("ini-lint: file.ini: there can be no copy in the folder "
                            "for temporary files\n"));
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

void tst_IniLint::fullDisk()
{
    writeFile(file, "a=off\n");
    const ProgramResult result =
        ProgramRun(QStringLiteral("sh"), {"-c", "\"$0\" \"$1\" >/dev/full", program, file},
                   folder())
            .finish();
    QCOMPARE(result.errors,
             QStringLiteral("ini-lint: cannot write standard output: No space left on device\n"));
    QCOMPARE(result.exitCode, 2);
}

void tst_IniLint::terminalsShowTheFileThatIsWaitedFor()
{
    // Nobody writes into the pipe yet: the program waits for it as for a file of any size.
    const QString pipe = path(QStringLiteral("pipe.ini"));
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
    // In the end the line is gone.
    QCOMPARE(Terminal::screenAfter(written), QList<QByteArray>{QByteArray()});
    for (const QByteArray& line : written.split('\r')) {
        QVERIFY2(line.size() < 60, line.constData());
    }
}

void tst_IniLint::refusesWhatItCannotUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    QTest::newRow("no file") << QStringList() << "at least one FILE is needed";
    QTest::newRow("unknown option") << QStringList{"--fix", "a"} << "Unknown option 'fix'.";
    QTest::newRow("unknown format")
        << QStringList{"--format", "xml", "a"} << "--format must be text or json, not 'xml'";
    QTest::newRow("unknown codec")
        << QStringList{"--codec", "none", "a"} << "there is no codec 'none'";
    QTest::newRow("empty codec") << QStringList{"--codec=", "a"} << "there is no codec ''";
    QTest::newRow("unknown rule") << QStringList{"--ignore", "all", "a"}
                                  << "there is no rule 'all'";
    QTest::newRow("dry run of nothing")
        << QStringList{"--dry-run", "a"} << "--dry-run needs --clean";
    QTest::newRow("clean-up with a codec") << QStringList{"--clean", "--codec", "UTF-8", "a"}
                                           << "--codec and --ignore mean nothing with --clean";
    QTest::newRow("clean-up without a rule") << QStringList{"--clean", "--ignore", "escape", "a"}
                                             << "--codec and --ignore mean nothing with --clean";
}

void tst_IniLint::refusesWhatItCannotUse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    verifyRun(arguments, 2, QString(), QStringLiteral("ini-lint: %1\n").arg(error) + hint);
}

void tst_IniLint::helpNamesEveryExitCode()
{
    const ProgramResult result = run({"--help"});
    for (const char* line : {"\n  0  nothing was found", "\n  1  something was found",
                             "\n  2  wrong usage, or a FILE cannot be read or written"}) {
        QVERIFY2(result.output.contains(QLatin1String(line)), line);
    }
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_IniLint)
#include "tst_IniLint.moc"
