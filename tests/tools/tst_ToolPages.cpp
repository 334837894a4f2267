#include "ProgramRun.h"
#include "TestCase.h"

#include <QtCore/QDir>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>

#include <csignal>

namespace {

const QString tools = QStringLiteral(PROJECT_DIRECTORY "/tools");
const QString completion = QStringLiteral(COMPLETION_DIRECTORY "/misctools.");

// The sorted matches of the expression's first group in a text.
QStringList linesOf(const QString& text, const QString& expression)
{
    const QRegularExpression lines(expression, QRegularExpression::MultilineOption);
    QStringList result;
    for (auto match = lines.globalMatch(text); match.hasNext();) {
        result.append(match.next().captured(1));
    }
    result.removeDuplicates();
    result.sort();
    return result;
}

// The part of a text from a line that starts with begin to one that starts with end.
QString part(const QString& text, const QString& begin, const QString& end)
{
    const int first = text.indexOf(QLatin1Char('\n') + begin);
    const int last = text.indexOf(QLatin1Char('\n') + end, first + 1);
    return first < 0 ? QString() : text.mid(first, last < 0 ? -1 : last - first);
}

// From lines such as "  -e, --expression <EXPRESSION>  Print ...".
QStringList optionsOfHelp(const QString& help)
{
    return linesOf(help, "^  (-\\w), --") + linesOf(help, "^  (?:-\\w, )?(--[a-z][a-z-]*)");
}

// From lines such as ".It Fl e , Fl -expression Ar EXPRESSION".
QStringList optionsOfPage(const QString& page)
{
    return linesOf(page, "^\\.It Fl (\\w) ,").replaceInStrings(QRegularExpression("^"), "-") +
           linesOf(page, "^\\.It Fl (?:\\w , Fl )?(-[a-z][a-z-]*)")
               .replaceInStrings(QRegularExpression("^"), "-");
}

} // namespace

// The manual pages and the completion match the --help of each program.
class tst_ToolPages : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void everyProgramHasAPage();
    void helpAndPageAgree_data();
    void helpAndPageAgree();
    void helpAndCompletionAgree_data();
    void helpAndCompletionAgree();
    void shellsCompleteTheSameOptions_data();
    void shellsCompleteTheSameOptions();
    void optionsWithValuesMatchTheHelp_data();
    void optionsWithValuesMatchTheHelp();
    void commandsOfEepromImageAgree_data();
    void commandsOfEepromImageAgree();
    void rulesOfIniLintAgree();
    void completesValues_data();
    void completesValues();
    void versionIsThatOfTheLibrary_data();
    void versionIsThatOfTheLibrary();
    void unwritableOutputIsReported_data();
    void unwritableOutputIsReported();
    void closedPipeIsNotReported_data();
    void closedPipeIsNotReported();
    void pagesAreValid_data();
    void pagesAreValid();

private:
    static QStringList programs();
    static void eachProgram();
    static QString page(const QString& program);
    QString help(const QString& program) const;
    // The completions of bash for the last argument of a command line.
    QStringList completed(const QStringList& commandLine) const;
    QStringList outputOf(const QString& shell, const QStringList& arguments) const;
};

QStringList tst_ToolPages::programs()
{
    QStringList result;
    for (const QString& name : QDir(tools).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (QFile::exists(tools + QLatin1Char('/') + name + "/main.cpp")) {
            result.append(name);
        }
    }
    return result;
}

void tst_ToolPages::eachProgram()
{
    QTest::addColumn<QString>("program");
    for (const QString& program : programs()) {
        QTest::newRow(qPrintable(program)) << program;
    }
}

QString tst_ToolPages::page(const QString& program)
{
    return QString::fromUtf8(
        readFile(QStringLiteral(PROJECT_DIRECTORY "/docs/man/%1.1").arg(program)));
}

QString tst_ToolPages::help(const QString& program) const
{
    return ProgramRun(QStringLiteral(PROGRAM_DIRECTORY "/") + program, {"--help"}, directory())
        .finish()
        .output;
}

QStringList tst_ToolPages::completed(const QStringList& commandLine) const
{
    const QString script =
        QStringLiteral("source \"$0\" && complete -p \"${1##*/}\" >/dev/null || exit\n"
                       "COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1))\n"
                       "_misctools \"$1\"\n"
                       "printf '%s\\n' \"${COMPREPLY[@]}\"");
    const ProgramResult result =
        ProgramRun("bash", QStringList{"--norc", "-c", script, completion + "bash"} + commandLine,
                   directory())
            .finish();
    if (result.exitCode != 0 || !result.errors.isEmpty()) {
        qWarning("%s", qPrintable(result.errors));
    }
    QStringList lines = result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines.removeDuplicates(); // a command can be in two directories
    lines.sort();
    return lines;
}

void tst_ToolPages::everyProgramHasAPage()
{
    QCOMPARE(programs().size(), 6);
    QStringList pages = QDir(QStringLiteral(PROJECT_DIRECTORY "/docs/man")).entryList(QDir::Files);
    pages.replaceInStrings(QRegularExpression("\\.1$"), QString());
    QCOMPARE(pages, programs());
}

void tst_ToolPages::helpAndPageAgree_data()
{
    eachProgram();
}

void tst_ToolPages::helpAndPageAgree()
{
    QFETCH(QString, program);
    const QString help = this->help(program);
    const QString page = this->page(program);
    QVERIFY(page.contains(QStringLiteral("\n.Nm %1\n").arg(program)));

    QVERIFY2(optionsOfHelp(help).contains("--help"), qPrintable(help));
    QCOMPARE(optionsOfPage(page), optionsOfHelp(help));

    const QStringList exitCodes = linesOf(part(help, "Exit codes:", "Example"), "^ +(\\d+)  \\S");
    QVERIFY2(exitCodes.size() > 2, qPrintable(help));
    QCOMPARE(
        linesOf(part(page, QStringLiteral(".Sh EXIT STATUS"), ".Sh EXAMPLES"), "^\\.It (\\d+)$"),
        exitCodes);
}

void tst_ToolPages::helpAndCompletionAgree_data()
{
    eachProgram();
}

void tst_ToolPages::helpAndCompletionAgree()
{
    QFETCH(QString, program);
    QStringList offered = completed({program, "-"});
    // Each command of the program has other options.
    if (program == "eeprom-image") {
        for (const QString& command : completed({program, QString()})) {
            offered += completed({program, command, "-"});
        }
        offered.removeDuplicates();
    }
    QStringList options = optionsOfHelp(help(program));
    offered.sort();
    options.sort();
    QCOMPARE(offered, options);
}

// The lines that a shell writes, sorted. Its errors are a warning, which fails the test.
QStringList tst_ToolPages::outputOf(const QString& shell, const QStringList& arguments) const
{
    const ProgramResult result = ProgramRun(shell, arguments, directory()).finish();
    if (result.exitCode != 0 || !result.errors.isEmpty()) {
        qWarning("%s: %s", qPrintable(shell), qPrintable(result.errors));
    }
    QStringList lines = result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines.removeDuplicates();
    lines.sort();
    return lines;
}

void tst_ToolPages::shellsCompleteTheSameOptions_data()
{
    QTest::addColumn<QString>("shell");
    QTest::addColumn<QStringList>("commandLine");
    // "script/check completion" installs the others.
    for (const char* shell : {"bash", "zsh", "fish"}) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(shell)).isEmpty()) {
            continue;
        }
        for (const QString& program : programs()) {
            QTest::addRow("%s %s", shell, qPrintable(program))
                << QString::fromLatin1(shell) << QStringList{program};
        }
        for (const char* command : {"create", "show", "verify", "dump", "extract"}) {
            QTest::addRow("%s eeprom-image %s", shell, command)
                << QString::fromLatin1(shell)
                << QStringList{"eeprom-image", QString::fromLatin1(command)};
        }
    }
}

void tst_ToolPages::shellsCompleteTheSameOptions()
{
    QFETCH(QString, shell);
    QFETCH(QStringList, commandLine);
    const QString file = completion + shell;
    QStringList offered;
    if (shell == "zsh") {
        // What the completion passes to the function that completes options.
        const QString script =
            QStringLiteral("_arguments() { print -l -- \"$@\" }; _normal() { }\n"
                           "service=$2 words=(\"${@:2}\" -) CURRENT=$#; source $1");
        offered = outputOf(shell, QStringList{"-f", "-c", script, "zsh", file} + commandLine)
                      .filter(QRegularExpression("^\\*-"))
                      .replaceInStrings(QRegularExpression("^\\*(-[a-z-]+).*"), "\\1");
    } else if (shell == "bash") {
        // "--" completes long options only.
        offered = completed(commandLine + QStringList("--")) +
                  completed(commandLine + QStringList("-")).filter(QRegularExpression("^-\\w$"));
    } else {
        const QString script = QStringLiteral("source $argv[1]; complete -C \"$argv[2] -\"\n"
                                              "complete -C \"$argv[2] --\"");
        offered =
            outputOf(shell, {"--no-config", "-c", script, file, commandLine.join(QLatin1Char(' '))})
                .filter(QRegularExpression("^-"))
                .replaceInStrings(QRegularExpression("[=\t].*"), QString());
    }
    offered.removeDuplicates();
    offered.sort();
    QStringList expected = completed(commandLine + QStringList("-"));
    expected.sort();
    QVERIFY(expected.size() >= 4);
    QCOMPARE(offered, expected);
}

void tst_ToolPages::optionsWithValuesMatchTheHelp_data()
{
    eachProgram();
}

void tst_ToolPages::optionsWithValuesMatchTheHelp()
{
    QFETCH(QString, program);
    const QString table = QString::fromUtf8(readFile(tools + "/completion/options"));
    const QString row = "^%1[^|]*\\|(?:-\\w,)?(--[a-z-]+)\\|%2\\|";
    const QString help = this->help(program);
    const QString inHelp = "^  (?:-\\w, )?(--[a-z][a-z-]*)%1";
    QCOMPARE(linesOf(table, row.arg(program, QStringLiteral("[^|]+"))),
             linesOf(help, inHelp.arg(" <?[A-Z]")));
    QStringList others = linesOf(help, inHelp.arg("(?! <?[A-Z])(?![a-z-])"));
    others.removeOne("--help");
    others.removeOne("--version");
    QCOMPARE(linesOf(table, row.arg(program, QString())), others);
}

void tst_ToolPages::commandsOfEepromImageAgree_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QStringList>("options"); // apart from those of every command
    QTest::newRow("create") << "create"
                            << QStringList{"--allow-overlap", "--fill", "--in-place", "--size",
                                           "--start"};
    QTest::newRow("show") << "show" << QStringList{"--json", "--verbose"};
    QTest::newRow("verify") << "verify" << QStringList();
    QTest::newRow("dump") << "dump" << QStringList();
    QTest::newRow("extract") << "extract" << QStringList();
}

void tst_ToolPages::commandsOfEepromImageAgree()
{
    QFETCH(QString, command);
    QFETCH(QStringList, options);

    const QString program = "eeprom-image";
    QVERIFY(completed({program, QString()}).contains(command));
    QCOMPARE(completed({program, QString()}).size(), 5);
    QVERIFY(help(program).contains(QStringLiteral("\n  eeprom-image %1 ").arg(command)));
    QVERIFY(page(program).contains(QStringLiteral("\n.It Cm %1\n").arg(command)));

    QStringList offered = completed({program, command, "--"});
    offered.removeOne("--help");
    offered.removeOne("--version");
    QCOMPARE(offered, options);
    // The program accepts each option: it reports only the missing files.
    for (const QString& option : offered) {
        const bool hasValue = QStringList{"--start", "--size", "--fill"}.contains(option);
        const ProgramResult result =
            ProgramRun(QStringLiteral(PROGRAM_DIRECTORY "/") + program,
                       {command, hasValue ? option + "=1" : option}, directory())
                .finish();
        QVERIFY2(result.errors.contains("file name(s), not 0"), qPrintable(result.errors));
    }
}

void tst_ToolPages::rulesOfIniLintAgree()
{
    const QString program = "ini-lint";
    const QStringList rules =
        linesOf(part(help(program), "Rules:", "Exit codes:"), "^  ([a-z-]+)  +\\S");
    QCOMPARE(rules.size(), 22);
    QCOMPARE(linesOf(part(page(program), QStringLiteral(".Sh RULES"), ".Sh JSON"),
                     "^\\.It Sy ([a-z-]+)$"),
             rules);
    QCOMPARE(completed({program, QStringLiteral("--ignore"), QString()}), rules);
}

void tst_ToolPages::completesValues_data()
{
    QTest::addColumn<QStringList>("commandLine");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("value of an option")
        << QStringList{"ini-lint", "--format", "t"} << QStringList{"text"};
    QTest::newRow("value after an equals sign")
        << QStringList{"ini-lint", "--format", "=", "j"} << QStringList{"json"};
    QTest::newRow("all values after an equals sign")
        << QStringList{"ini-lint", "--format", "="} << QStringList{"json", "sarif", "text"};
    QTest::newRow("severities") << QStringList{"ini-lint", "--level", ""}
                                << QStringList{"error", "note", "warning"};
    QTest::newRow("file of rules to ignore")
        << QStringList{"ini-lint", "--ignore-list", "f"} << QStringList{"file.ini"};
    QTest::newRow("argument after an option with a value")
        << QStringList{"ini-lint", "--format", "=", "json", "f"} << QStringList{"file.ini"};
    QTest::newRow("files") << QStringList{"ini-lint", "f"} << QStringList{"file.ini"};
    QTest::newRow("image of a command")
        << QStringList{"eeprom-image", "dump", "f"} << QStringList{"file.ini"};
    QTest::newRow("file of an option")
        << QStringList{"peak-meter", "-f", "f"} << QStringList{"file.ini"};
    QTest::newRow("directories only") << QStringList{"watch-media", "f"} << QStringList{"files"};
    QTest::newRow("no guess for a number")
        << QStringList{"watch-media", "--delay", "f"} << QStringList();
    QTest::newRow("program after the dashes")
        << QStringList{"run-and-grep", "-e", "x", "--", "mkfif"} << QStringList{"mkfifo"};
    QTest::newRow("no arguments") << QStringList{"device-report", "f"} << QStringList();
    QTest::newRow("program with its path")
        << QStringList{"/usr/bin/ini-lint", "--dr"} << QStringList{"--dry-run"};
}

void tst_ToolPages::completesValues()
{
    QFETCH(QStringList, commandLine);
    QFETCH(QStringList, expected);

    writeFile("file.ini", "");
    QVERIFY(QDir(directory()).mkdir("files"));
    if (commandLine.contains("f") && !expected.isEmpty() &&
        commandLine.constFirst() != "watch-media") {
        expected.append("files");
    }
    QCOMPARE(completed(commandLine), expected);
}

void tst_ToolPages::versionIsThatOfTheLibrary_data()
{
    eachProgram();
}

void tst_ToolPages::versionIsThatOfTheLibrary()
{
    QFETCH(QString, program);
    for (const char* option : {"--version", "-v"}) {
        const ProgramResult result = ProgramRun(QStringLiteral(PROGRAM_DIRECTORY "/") + program,
                                                {QString::fromLatin1(option)}, directory())
                                         .finish();
        QCOMPARE(result.output, program + QStringLiteral(" " PROJECT_VERSION "\n"));
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.exitCode, 0);
    }
}

void tst_ToolPages::unwritableOutputIsReported_data()
{
    eachProgram();
}

void tst_ToolPages::unwritableOutputIsReported()
{
    QFETCH(QString, program);
    const QString script = "\"$0\" %1 >/dev/full";
    for (const char* option : {"--help", "--version"}) {
        const ProgramResult result = ProgramRun("sh",
                                                {"-c", script.arg(QLatin1String(option)),
                                                 QStringLiteral(PROGRAM_DIRECTORY "/") + program},
                                                directory())
                                         .finish();
        QCOMPARE(result.errors,
                 program + ": cannot write standard output: No space left on device\n");
        const QString exitCode = QStringLiteral("^ +%1  .*(output|written)").arg(result.exitCode);
        QVERIFY2(result.exitCode > 0 && help(program).contains(QRegularExpression(
                                            exitCode, QRegularExpression::MultilineOption)),
                 qPrintable(exitCode));
    }
}

void tst_ToolPages::closedPipeIsNotReported_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("trap");
    QTest::addColumn<int>("exitCode"); // of the shell
    for (const QString& program : programs()) {
        const auto row = [&program](const char* name, const char* trap, int exitCode) {
            QTest::addRow("%s, %s", qPrintable(program), name)
                << program << QString::fromLatin1(trap) << exitCode;
        };
        row("SIGPIPE", "", 128 + SIGPIPE);
        row("SIGPIPE ignored", "trap '' PIPE; ", 0);
    }
}

void tst_ToolPages::closedPipeIsNotReported()
{
    QFETCH(QString, program);
    QFETCH(QString, trap);
    QFETCH(int, exitCode);
    // A pipe whose only reader is closed before the program starts.
    const QString script = trap + QStringLiteral("mkfifo pipe; exec 3<>pipe 4>pipe 3<&-\n"
                                                 "\"$0\" --help >&4; exit $?");
    const ProgramResult result =
        ProgramRun("sh", {"-c", script, QStringLiteral(PROGRAM_DIRECTORY "/") + program},
                   directory())
            .finish();
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, exitCode);
}

void tst_ToolPages::pagesAreValid_data()
{
    eachProgram();
}

void tst_ToolPages::pagesAreValid()
{
    if (QStandardPaths::findExecutable("groff").isEmpty()) {
        MISCTOOLS_SKIP("groff is not installed");
    }
    QFETCH(QString, program);
    const ProgramResult result =
        ProgramRun("groff",
                   {"-ww", "-mdoc", "-Tutf8", "-z",
                    QStringLiteral(PROJECT_DIRECTORY "/docs/man/%1.1").arg(program)},
                   directory())
            .finish();
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_ToolPages)
#include "tst_ToolPages.moc"
