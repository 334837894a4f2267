#include "LogSource.h"
#include "MessageTable.h"
#include "TestCase.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>

// docs/log-messages.md lists each message of the library, as the sources make it.
class tst_LogMessages : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreFound_data();
    void textsAreFound();
    void whatCannotBeFollowedIsReported_data();
    void whatCannotBeFollowedIsReported();
    void differencesAreReported_data();
    void differencesAreReported();
    void tableAndSourcesAgree();
};

namespace {

const QString root = QStringLiteral(PROJECT_FOLDER);

// "Class, level, function: text" of each message.
QStringList descriptions(const QVector<LogMessage>& messages)
{
    QStringList result;
    for (const LogMessage& message : messages) {
        result.append(QStringLiteral("%1, %2, %3: %4")
                          .arg(message.className, message.level,
                               QStringList(message.functions.values()).join(QLatin1Char(' ')),
                               message.text));
    }
    return result;
}

// The body of a function f, which is given a name.
QString inFunction(const char* body)
{
    return QStringLiteral("void Thing::f(const QString& name)\n{\n%1\n}\n")
        .arg(QString::fromLatin1(body));
}

QString table(const char* rows)
{
    return QStringLiteral("# Messages\n\nIntroduction\n\n## Thing\n\n"
                          "| Level | Text | Function | Cause | What to do |\n"
                          "|---|---|---|---|---|\n%1\n\n## Not a class\n\n| any | thing |\n")
        .arg(QString::fromLatin1(rows));
}

QStringList sourceFiles()
{
    QStringList files;
    for (const QString& folder : {QStringLiteral("src"), QStringLiteral("include")}) {
        QDirIterator found(root + QLatin1Char('/') + folder,
                           {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (found.hasNext()) {
            files.append(QDir(root).relativeFilePath(found.next()));
        }
    }
    // The one place where a logger may be made.
    files.removeOne(QStringLiteral("src/common/Log.h"));
    files.sort();
    return files;
}

} // namespace

void tst_LogMessages::textsAreFound_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QStringList>("found");
    const auto row = [](const char* name, const QString& code, const QStringList& found) {
        QTest::newRow(name) << code << found;
    };
    const auto one = [](const char* text) {
        return QStringList(QStringLiteral("Thing, warning, f: ") + QString::fromLatin1(text));
    };
    row("one line", inFunction("MISCTOOLS_LOG(Thing).warning() << \"No file\";"), one("No file"));
    row("several lines",
        inFunction("    MISCTOOLS_LOG(Thing)\n        .warning()\n        << \"No file\"\n"
                   "        << name << \"of \"\n           \"two\";"),
        one("No file <> of two"));
    row("level", inFunction("MISCTOOLS_LOG(Thing).critical() << \"No file\";"),
        {QStringLiteral("Thing, critical, f: No file")});
    row("escaped quotes", inFunction("MISCTOOLS_LOG(Thing).warning() << \"No \\\"file\\\"; <<\";"),
        one("No \"file\"; <<"));
    row("raw text", inFunction("MISCTOOLS_LOG(Thing).warning() << R\"(No \"file\")\";"),
        one("No \"file\""));
    row("own blanks", inFunction("MISCTOOLS_LOG(Thing).warning() << \"No \" << name << \" , \";"),
        one("No  <>  , "));
    row("call with a character",
        inFunction("MISCTOOLS_LOG(Thing).warning() << name.left(2, '\"') << \"!\";"), one("<> !"));
    row("named text",
        QStringLiteral("constexpr char noFile[] = \"No file\";\n") +
            inFunction("MISCTOOLS_LOG(Thing).warning() << noFile << name;"),
        one("No file <>"));
    row("named string and number",
        QStringLiteral("constexpr int limit = 2;\n"
                       "const QString path = QStringLiteral(\"/a\") + QStringLiteral(\"/b\");\n") +
            inFunction("MISCTOOLS_LOG(Thing).warning() << path << limit;"),
        one("\"/a/b\" 2"));
    row("constant of another function",
        QStringLiteral("void g()\n{\n    const QString name = QStringLiteral(\"x\");\n}\n") +
            inFunction("MISCTOOLS_LOG(Thing).warning() << name;"),
        one("<>"));
    row("function that returns a text",
        QStringLiteral("QString Thing::info() const\n{\n"
                       "    return QStringLiteral(\"Thing (\") + m_name + QStringLiteral(\"):\");\n"
                       "}\n") +
            inFunction("MISCTOOLS_LOG(Thing).warning() << info() << \"No file\";"),
        one("\"Thing (<>):\" No file"));
    row("text of the caller",
        QStringLiteral("constexpr char noFile[] = \"No file\";\n"
                       "void log(const QMessageLogger& log, const char* text, int number)\n{\n"
                       "    log.warning() << text << number;\n}\n"
                       "void Thing::f()\n{\n    log(MISCTOOLS_LOG(Thing), noFile, 1);\n}\n"
                       "void Thing::g()\n{\n    log(MISCTOOLS_LOG(Thing), \"No g\", 2);\n}\n"),
        {QStringLiteral("Thing, warning, f: No file <>"),
         QStringLiteral("Thing, warning, g: No g <>")});
    row("string of the caller",
        QStringLiteral("Thing::Thing()\n{\n"
                       "    f(QStringLiteral(\"No \\\"file\\\" \") + file.name());\n}\n") +
            inFunction("MISCTOOLS_LOG(Thing).warning() << name;"),
        {QStringLiteral("Thing, warning, f: <>"),
         QStringLiteral("Thing, warning, f: \"No \\\"file\\\" <>\"")});
    row("logger in a variable and a field",
        QStringLiteral("class Reader\n{\npublic:\n"
                       "    explicit Reader(const QMessageLogger& log) : m_log(log) {}\n"
                       "    void read() { m_log.debug() << \"Read\"; }\n"
                       "    const QMessageLogger& m_log;\n};\n") +
            inFunction("const QMessageLogger log = MISCTOOLS_LOG(Thing);\n"
                       "log.warning() << \"No file\";"),
        {QStringLiteral("Thing, debug, f: Read"), QStringLiteral("Thing, warning, f: No file")});
    row("stream operator",
        QStringLiteral("QDebug operator<<(QDebug debug, const Thing& thing)\n{\n    return debug "
                       "<< \"thing\";\n}\n"),
        QStringList());
    row("commented out",
        inFunction("// MISCTOOLS_LOG(Thing).warning() << \"a\";\n"
                   "/* MISCTOOLS_LOG(Thing).warning()\n << \"a\"; qWarning(); */"),
        QStringList());
    row("member without a message", inFunction("name.warning; warning(); entry.info;"),
        QStringList());
}

void tst_LogMessages::textsAreFound()
{
    QFETCH(QString, code);
    QFETCH(QStringList, found);
    const LogSource source(QStringLiteral("Thing.cpp"), code);
    QCOMPARE(source.problems(), QStringList());
    QCOMPARE(descriptions(source.messages()), found);
}

void tst_LogMessages::whatCannotBeFollowedIsReported_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char* name, const QString& code, const char* problem) {
        QTest::newRow(name) << code << QStringLiteral("Thing.cpp:") + QString::fromLatin1(problem);
    };
    constexpr char past[] =
        "3: %1 makes a message past MISCTOOLS_LOG(Class) of src/common/Log.h; use that";
    for (const char* way :
         {"qDebug", "qInfo", "qWarning", "qCritical", "qFatal", "qCWarning", "qErrnoWarning",
          "QMessageLogger", "QDebug", "fprintf", "printf", "puts", "syslog", "perror"}) {
        QTest::newRow(way) << inFunction("%1(\"a\");").arg(QLatin1String(way))
                           << QStringLiteral("Thing.cpp:") +
                                  QString::fromLatin1(past).arg(QLatin1String(way));
    }
    row("std::cerr", inFunction("std::cerr << \"a\";"),
        qPrintable(QString::fromLatin1(past).arg(QStringLiteral("cerr"))));
    row("stream of its own", inFunction("QDebug stream(QtWarningMsg);"),
        qPrintable(QString::fromLatin1(past).arg(QStringLiteral("QDebug"))));
    row("logger of its own", inFunction("const QMessageLogger log(\"a\", 1, \"b\");"),
        qPrintable(QString::fromLatin1(past).arg(QStringLiteral("QMessageLogger"))));
    row("behind a macro", QStringLiteral("\n\n#define LOG() qWarning()\n"),
        qPrintable(QString::fromLatin1(past).arg(QStringLiteral("qWarning"))));
    row("format", inFunction("MISCTOOLS_LOG(Thing).warning(\"%d\", 1);"),
        "3: a message is made as MISCTOOLS_LOG(Class).warning() << ...");
    row("stream kept", inFunction("auto stream = MISCTOOLS_LOG(Thing).debug();"),
        "3: a message is made as MISCTOOLS_LOG(Class).debug() << ...");
    row("choice of texts", inFunction("MISCTOOLS_LOG(Thing).warning() << (a ? \"b\" : \"c\");"),
        "3: the fixed text of a message cannot be found: stream it, or add QStringLiterals");
    row("string with arguments",
        inFunction("MISCTOOLS_LOG(Thing).warning() << QStringLiteral(\"No %1\").arg(name);"),
        "3: the fixed text of a message cannot be found: stream it, or add QStringLiterals");
    row("text of nobody",
        QStringLiteral("void f(const char* text)\n{\n    MISCTOOLS_LOG(Thing).warning() << text;\n"
                       "}\n"),
        "3: nothing in this file calls f(), which is given the text or the logger of a message");
    row("unknown logger", inFunction("m_log.warning() << \"a\";"),
        "3: the MISCTOOLS_LOG(Class) of the message \"a\" cannot be found in this file");
    row("outside of functions",
        QStringLiteral("const int a = (MISCTOOLS_LOG(Thing).warning() << \"a\", 1);"),
        "1: a message outside of any function");
}

void tst_LogMessages::whatCannotBeFollowedIsReported()
{
    QFETCH(QString, code);
    QFETCH(QString, problem);
    QCOMPARE(LogSource(QStringLiteral("Thing.cpp"), code).problems(), QStringList(problem));
}

void tst_LogMessages::differencesAreReported_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("markdown");
    QTest::addColumn<QStringList>("differences");
    const auto row = [](const char* name, const QString& code, const QString& markdown,
                        const QStringList& differences) {
        QTest::newRow(name) << code << markdown << differences;
    };
    const QString code =
        inFunction("MISCTOOLS_LOG(Thing).warning() << \"No file\" << name << \"!\";");
    const QString twice =
        code + QString(code).replace(QStringLiteral("::f("), QStringLiteral("::g("));
    const char* const good = "| warning | `No file \"<path>\" !` | `f` | It is gone. | Look. |";
    row("same", code, table(good), {});
    row("same of two functions", twice,
        table("| warning | `No file <path> !` | `g`, `f` | It is gone. | Look. |"), {});
    row("missing row", code, table(""),
        {QStringLiteral("Thing.cpp:3: no row of messages.md lists this message, made in f: add one "
                        "under \"## Thing\", or correct the one it had. "
                        "Thing, warning: No file <> !")});
    row("superfluous row", QString(), table(good),
        {QStringLiteral("messages.md:9: no source makes this message: correct the row as the "
                        "source has it, or drop it. Thing, warning: No file <> !")});
    row("wrong level", code,
        table("| debug | `No file \"<path>\" !` | `f` | It is gone. | Look. |"),
        {QStringLiteral("Thing.cpp:3: no row of messages.md lists this message, made in f: add one "
                        "under \"## Thing\", or correct the one it had. "
                        "Thing, warning: No file <> !"),
         QStringLiteral("messages.md:9: the level of this message is warning: correct the row. "
                        "Thing, debug: No file <> !")});
    const auto otherText = [&row, &code](const char* name, const char* text) {
        row(name, code,
            table("| warning | `%1` | `f` | It is gone. | Look. |").arg(QString::fromLatin1(text)),
            {QStringLiteral("Thing.cpp:3: no row of messages.md lists this message, made in f: add "
                            "one under \"## Thing\", or correct the one it had. "
                            "Thing, warning: No file <> !"),
             QStringLiteral("messages.md:9: no source makes this message: correct the row as the "
                            "source has it, or drop it. Thing, warning: %1")
                 .arg(QString::fromLatin1(text).replace(QStringLiteral("\"<path>\""),
                                                        QStringLiteral("<>")))});
    };
    otherText("other piece", "No path \"<path>\" !");
    otherText("piece left out", "No file \"<path>\"");
    otherText("other order", "No file ! \"<path>\"");
    otherText("blank left out", "No file \"<path>\"!");
    row("row of another class", code,
        table(good).replace(QStringLiteral("## Thing"), QStringLiteral("## Think")),
        {QStringLiteral("Thing.cpp:3: no row of messages.md lists this message, made in f: add one "
                        "under \"## Thing\", or correct the one it had. "
                        "Thing, warning: No file <> !"),
         QStringLiteral("messages.md:9: no source makes this message: correct the row as the "
                        "source has it, or drop it. Think, warning: No file <> !")});
    row("double row", code, table(qPrintable(QStringLiteral("%1\n%1").arg(QLatin1String(good)))),
        {QStringLiteral("messages.md:10: a second row for a message that messages.md:9 lists: drop "
                        "one. Thing, warning: No file <> !")});
    row("another function", twice, table(good),
        {QStringLiteral("messages.md:9: the functions that make this message are f, g, not f. "
                        "Thing, warning: No file <> !")});
    const QStringList malformed{
        QStringLiteral("messages.md:9: a row has the form | level | `text` | `function`, "
                       "`function` | cause | what to do |")};
    row("row without advice", QString(),
        table("| warning | `No file \"<path>\" !` | `f` | It is gone. | |"), malformed);
    row("row without cause", QString(), table("| warning | `No file \"<path>\" !` | `f` | Look. |"),
        malformed);
    row("text that is no code", QString(),
        table("| warning | No file \"<path>\" ! | `f` | It is gone. | Look. |"), malformed);
}

void tst_LogMessages::differencesAreReported()
{
    QFETCH(QString, code);
    QFETCH(QString, markdown);
    QFETCH(QStringList, differences);
    const LogSource source(QStringLiteral("Thing.cpp"), code);
    QCOMPARE(source.problems(), QStringList());
    const MessageTable messageTable(QStringLiteral("messages.md"), markdown);
    QCOMPARE(messageTable.differences(source.messages()), differences);
}

void tst_LogMessages::tableAndSourcesAgree()
{
    QStringList problems;
    QVector<LogMessage> messages;
    for (const QString& file : sourceFiles()) {
        const QByteArray code = readFile(root + QLatin1Char('/') + file);
        QVERIFY2(!code.isEmpty(), qPrintable(file));
        const LogSource source(file, QString::fromUtf8(code));
        problems += source.problems();
        messages += source.messages();
    }
    const QString document = QStringLiteral("docs/log-messages.md");
    const MessageTable messageTable(
        document, QString::fromUtf8(readFile(root + QLatin1Char('/') + document)));
    QVERIFY(!messages.isEmpty());
    problems += messageTable.differences(messages);
    // Qt Test cuts longer texts off.
    const int shown = 3;
    const QString text = QStringLiteral("%1 problems:\n").arg(problems.size()) +
                         problems.mid(0, shown).join(QLatin1Char('\n'));
    QVERIFY2(problems.isEmpty(), qPrintable(text));
}

QTEST_GUILESS_MAIN(tst_LogMessages)
#include "tst_LogMessages.moc"
