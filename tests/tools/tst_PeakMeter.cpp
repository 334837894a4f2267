#include "ProgramRun.h"
#include "Terminal.h"
#include "TestCase.h"

#include <DragIndicator.h>

#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>

#include <sys/resource.h>

#include <csignal>

namespace {

const QString program = QStringLiteral(PEAK_METER_PROGRAM);
const QString hint = "peak-meter: try --help\n";
const QStringList withFile = {"--file", "peaks.json"};

QString withoutDates(QString output)
{
    return output.replace(QRegularExpression("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d"), "DATE");
}

QString record(const QString& title, const QString& minimum, const QString& maximum)
{
    return QStringLiteral("%1:\n"
                          "  minimum  %2  (DATE)\n"
                          "  maximum  %3  (DATE)\n")
        .arg(title, minimum, maximum);
}

QString sinceReset(const QString& minimum, const QString& maximum)
{
    return record("since the last reset", minimum, maximum);
}

QString ever(const QString& minimum, const QString& maximum)
{
    return record("ever", minimum, maximum);
}

QByteArray recordJson(const char* minimum, const char* maximum, const char* date)
{
    return QByteArray(R"({"Initialized": true, "MinValue": )") + minimum + R"(, "MaxValue": )" +
           maximum + R"(, "MinValueDate": ")" + date + R"(", "MaxValueDate": ")" + date + R"("})";
}

} // namespace

// The program that records the range of the values that it reads.
class tst_PeakMeter : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsValues_data();
    void readsValues();
    void everyLineIsShownImmediately();
    void manyExtremesNeedFewSystemCalls();
    void printsJson();
    void jsonOnATerminalHasNoStatusLine();
    void continuesFromTheFile();
    void resetClearsOneRecord();
    void resetWithoutValuesIsSaved();
    void readsDatesInTheOldFormat();
    void damagedFileIsNotChanged_data();
    void damagedFileIsNotChanged();
    void failedSaveIsReported();
    void fullDiskKeepsTheOldFile();
    void secondRunWithTheFileIsRefused();
    void saveReplacesTheFileAtomically();
    void killedRunKeepsEveryValueShown();
    void signalSavesAndPrintsTheSummary_data();
    void signalSavesAndPrintsTheSummary();
    void statusLineIsRedrawnOnATerminal();
    void statusLineFitsTheTerminal_data();
    void statusLineFitsTheTerminal();
    void verboseShowsLogMessages();
    void invalidArgumentsAreRefused_data();
    void invalidArgumentsAreRefused();
    void unreadableInputIsReported_data();
    void unreadableInputIsReported();
    void helpListsEveryExitCode();

private:
    ProgramResult run(const QStringList& arguments, const QByteArray& input = QByteArray()) const;
    QString peaks() const { return path("peaks.json"); }
    DragIndicator keptRecords() const;
};

// Replaces the dates in the output, which differ in each run.
ProgramResult tst_PeakMeter::run(const QStringList& arguments, const QByteArray& input) const
{
    ProgramRun programRun(program, arguments, directory());
    programRun.write(input);
    ProgramResult result = programRun.finish();
    result.output = withoutDates(result.output);
    return result;
}

// The two records of the file; without values if the file is incomplete.
DragIndicator tst_PeakMeter::keptRecords() const
{
    DragIndicator indicator;
    indicator.fromJsonArray(QJsonDocument::fromJson(readFile(peaks())).array());
    return indicator;
}

void tst_PeakMeter::readsValues_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("errors");

    const QString title = "in this run";
    QTest::newRow("empty input") << QByteArray() << 0
                                 << "Summary: 0 values, 0 lines refused\nin this run: no value\n"
                                 << "";
    QTest::newRow("lines of white space")
        << QByteArray("\n \t\n\r\n") << 0
        << "Summary: 0 values, 0 lines refused\nin this run: no value\n"
        << "";
    QTest::newRow("one value: minimum and maximum are the same")
        << QByteArray("5\n") << 0
        << "line 1: new minimum and maximum 5\nSummary: 1 value, 0 lines refused\n" +
               record(title, "5", "5")
        << "";
    QTest::newRow("only changes are printed") << QByteArray("5\n7\n6\n7\n\n2.5\n5\n") << 0
                                              << "line 1: new minimum and maximum 5\n"
                                                 "line 2: new maximum 7\n"
                                                 "line 6: new minimum 2.5\n"
                                                 "Summary: 6 values, 0 lines refused\n" +
                                                     record(title, "2.5", "7")
                                              << "";
    QTest::newRow("spaces, other line endings, signs, exponents, no trailing line feed")
        << QByteArray("  1e1 \r\n\t+2\r\n-.5E1") << 0
        << "line 1: new minimum and maximum 10\n"
           "line 2: new minimum 2\n"
           "line 3: new minimum -5\n"
           "Summary: 3 values, 0 lines refused\n" +
               record(title, "-5", "10")
        << "";
    QTest::newRow("all digits") << QByteArray("0.1234567890123456\n") << 0
                                << "line 1: new minimum and maximum 0.1234567890123456\n"
                                   "Summary: 1 value, 0 lines refused\n" +
                                       record(title, "0.1234567890123456", "0.1234567890123456")
                                << "";
    QTest::newRow("underflow is zero") << QByteArray("1e-400\n-1e-400\n5e-324\n0.00001e-320\n") << 0
                                       << "line 1: new minimum and maximum 0\n"
                                          "line 3: new maximum 5e-324\n"
                                          "Summary: 4 values, 0 lines refused\n" +
                                              record(title, "0", "5e-324")
                                       << "";
    QTest::newRow("overflow, texts that resemble numbers")
        << QByteArray("1e400\n1e-400x\n0x1p-2000\n") << 1
        << "Summary: 0 values, 3 lines refused\nin this run: no value\n"
        << "peak-meter: line 1: not a finite number: '1e400'\n"
           "peak-meter: line 2: not a finite number: '1e-400x'\n"
           "peak-meter: line 3: not a finite number: '0x1p-2000'\n";
    QTest::newRow("extremes") << QByteArray("-0\n5e-324\n1.7976931348623157e308\n-1e308\n") << 0
                              << "line 1: new minimum and maximum 0\n"
                                 "line 2: new maximum 5e-324\n"
                                 "line 3: new maximum 1.7976931348623157e+308\n"
                                 "line 4: new minimum -1e+308\n"
                                 "Summary: 4 values, 0 lines refused\n" +
                                     record(title, "-1e+308", "1.7976931348623157e+308")
                              << "";
    QTest::newRow("lines that are not numbers")
        << QByteArray("1\nabc\n\n1,5\n0x10\n2 3\n1\0002\n9\nx\n", 28) << 1
        << "line 1: new minimum and maximum 1\n"
           "line 8: new maximum 9\n"
           "Summary: 2 values, 6 lines refused\n" +
               record(title, "1", "9")
        << "peak-meter: line 2: not a finite number: 'abc'\n"
           "peak-meter: line 4: not a finite number: '1,5'\n"
           "peak-meter: line 5: not a finite number: '0x10'\n"
           "peak-meter: line 6: not a finite number: '2 3'\n"
           "peak-meter: line 7: not a finite number: '1\\x002'\n"
           "peak-meter: line 9: not a finite number: 'x'\n";
    QTest::newRow("not finite, or beyond the range of a double")
        << QByteArray("nan\ninf\n-inf\n1e999\n4") << 1
        << "line 5: new minimum and maximum 4\nSummary: 1 value, 4 lines refused\n" +
               record(title, "4", "4")
        << "peak-meter: line 1: not a finite number: 'nan'\n"
           "peak-meter: line 2: not a finite number: 'inf'\n"
           "peak-meter: line 3: not a finite number: '-inf'\n"
           "peak-meter: line 4: not a finite number: '1e999'\n";
    QTest::newRow("refused line is truncated and escaped")
        << QByteArray("\x1b[31m") + QByteArray(100, 'x') << 1
        << "Summary: 0 values, 1 line refused\nin this run: no value\n"
        << "peak-meter: line 1: not a finite number: '\\x1b[31m" + QString(35, 'x') + "...'\n";
    QTest::newRow("longest line") << QByteArray("1").rightJustified(4096, '0') + "\n2\n"
                                  << 0
                                  << "line 1: new minimum and maximum 1\n"
                                     "line 2: new maximum 2\n"
                                     "Summary: 2 values, 0 lines refused\n" +
                                         record(title, "1", "2")
                                  << "";
    QTest::newRow("line one byte too long")
        << QByteArray("1").rightJustified(4097, '0') + "\n2\n"
        << 1
        << "line 2: new minimum and maximum 2\nSummary: 1 value, 1 line refused\n" +
               record(title, "2", "2")
        << "peak-meter: line 1: longer than 4096 bytes\n";
    QTest::newRow("line of megabytes")
        << QByteArray(3000000, '1') + "\n2\n"
        << 1
        << "line 2: new minimum and maximum 2\nSummary: 1 value, 1 line refused\n" +
               record(title, "2", "2")
        << "peak-meter: line 1: longer than 4096 bytes\n";
}

void tst_PeakMeter::readsValues()
{
    QFETCH(QByteArray, input);
    QFETCH(int, exitCode);
    QFETCH(QString, output);
    QFETCH(QString, errors);

    const ProgramResult result = run({}, input);
    QCOMPARE(result.errors, errors);
    QCOMPARE(result.output, output);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

void tst_PeakMeter::everyLineIsShownImmediately()
{
    ProgramRun programRun(program, withFile, directory());
    for (int value = 1; value <= 5; ++value) {
        // The input stays open; each number arrives in two parts.
        programRun.write("10");
        programRun.write(QByteArray::number(value) + '\n');
        QVERIFY(programRun.waitForOutput(QStringLiteral("line %1: new ").arg(value)));
        QCOMPARE(keptRecords().getMaxValue(DragIndicator::ResettableInstance), 100.0 + value);
    }
    QVERIFY(programRun.isRunning());
    QCOMPARE(programRun.finish().exitCode, 0);
}

// Rising values are all extremes. Each has a line and a date, but needs no separate system call.
void tst_PeakMeter::manyExtremesNeedFewSystemCalls()
{
    constexpr int values = 50000;
    QByteArray input;
    for (int value = 1; value <= values; ++value) {
        input += QByteArray::number(value) + '\n';
    }
    writeFile("input", input);
    struct rusage before = {};
    getrusage(RUSAGE_CHILDREN, &before);
    // The counters of a process include those of its terminated children.
    const ProgramResult result =
        ProgramRun("sh", {"-c", "unset TZ; \"$0\" <input && grep syscw /proc/$$/io", program},
                   directory())
            .finish();
    struct rusage after = {};
    getrusage(RUSAGE_CHILDREN, &after);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output.count(QStringLiteral("maximum ")), values + 1);
    QVERIFY(result.output.contains("Summary: 50000 values, "));

    const QRegularExpressionMatch writes = QRegularExpression("syscw: (\\d+)").match(result.output);
    QVERIFY(writes.hasMatch());
    QVERIFY2(writes.captured(1).toInt() < values / 10, qPrintable(writes.captured(1)));
    const auto milliseconds = [](const timeval& from, const timeval& to) {
        return (to.tv_sec - from.tv_sec) * 1000 + (to.tv_usec - from.tv_usec) / 1000;
    };
    const auto user = milliseconds(before.ru_utime, after.ru_utime);
    const auto system = milliseconds(before.ru_stime, after.ru_stime);
    QVERIFY2(system < user, qPrintable(QStringLiteral("%1 %2").arg(user).arg(system)));
}

void tst_PeakMeter::printsJson()
{
    const ProgramResult result = run({"--json"}, "5\nx\n2.5\n3\n");
    const QStringList lines = result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 3);
    const auto object = [&lines](int line) {
        return QJsonDocument::fromJson(lines.at(line).toUtf8()).object();
    };
    QCOMPARE(object(0), QJsonObject({{"event", "extreme"},
                                     {"line", 1},
                                     {"value", 5},
                                     {"isMinimum", true},
                                     {"isMaximum", true}}));
    QCOMPARE(object(1), QJsonObject({{"event", "extreme"},
                                     {"line", 3},
                                     {"value", 2.5},
                                     {"isMinimum", true},
                                     {"isMaximum", false}}));
    QJsonObject summary = object(2);
    QJsonObject range = summary.value("sinceReset").toObject();
    QCOMPARE(summary.value(QStringLiteral("ever")).toObject(), range);
    for (const char* date : {"minimumDate", "maximumDate"}) {
        // The date is replaced by run().
        QVERIFY(!range.take(QLatin1String(date)).toString().isEmpty());
    }
    QCOMPARE(range, QJsonObject({{"minimum", 2.5}, {"maximum", 5}}));
    QCOMPARE(summary.value(QStringLiteral("values")), QJsonValue(3));
    QCOMPARE(summary.value(QStringLiteral("refusedLines")), QJsonValue(1));
    QCOMPARE(result.exitCode, 1);

    const QString none = run({"--json"}).output;
    QCOMPARE(none, QStringLiteral("{\"event\":\"summary\",\"ever\":null,\"refusedLines\":0,"
                                  "\"sinceReset\":null,\"values\":0}\n"));
}

void tst_PeakMeter::jsonOnATerminalHasNoStatusLine()
{
    Terminal terminal(60);
    terminal.start(program, {"--json"});
    terminal.write("5\n");
    QVERIFY(terminal.waitForText("\"extreme\""));
    const QByteArray written = terminal.finish();
    for (const QByteArray& line : written.split('\n')) {
        QVERIFY2(line.trimmed().isEmpty() || QJsonDocument::fromJson(line).isObject(),
                 written.constData());
    }
}

void tst_PeakMeter::continuesFromTheFile()
{
    QCOMPARE(run(withFile, "5e-324\n0.1\n").exitCode, 0);
    const ProgramResult result = run(withFile, "0.05\n-1e308\n");
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output, "line 2: new minimum -1e+308\nSummary: 2 values, 0 lines refused\n" +
                                sinceReset("-1e+308", "0.1") + ever("-1e+308", "0.1"));
    QCOMPARE(result.exitCode, 0);

    // Without a change the file is not rewritten.
    const QByteArray kept = readFile(peaks());
    const QDateTime written = QFileInfo(peaks()).lastModified();
    QCOMPARE(run(withFile, "0\n").exitCode, 0);
    QCOMPARE(readFile(peaks()), kept);
    QCOMPARE(QFileInfo(peaks()).lastModified(), written);
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("peaks.json"));
}

void tst_PeakMeter::resetClearsOneRecord()
{
    QCOMPARE(run(withFile, "1\n9\n").exitCode, 0);
    const ProgramResult result = run(withFile + QStringList("--reset"), "4\n5\n");
    QCOMPARE(result.output, QStringLiteral("line 1: new minimum and maximum 4\n"
                                           "line 2: new maximum 5\n"
                                           "Summary: 2 values, 0 lines refused\n") +
                                sinceReset("4", "5") + ever("1", "9"));
    QCOMPARE(run(withFile).output, QStringLiteral("Summary: 0 values, 0 lines refused\n") +
                                       sinceReset("4", "5") + ever("1", "9"));
}

void tst_PeakMeter::resetWithoutValuesIsSaved()
{
    QCOMPARE(run(withFile, "1\n9\n").exitCode, 0);
    const QString expected =
        "Summary: 0 values, 0 lines refused\nsince the last reset: no value\n" + ever("1", "9");
    QCOMPARE(run(withFile + QStringList(QStringLiteral("--reset"))).output, expected);
    const ProgramResult result = run(withFile);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output, expected);
    QCOMPARE(result.exitCode, 0);

    // The same without a file.
    QVERIFY(QFile::remove(peaks()));
    QCOMPARE(run(withFile + QStringList(QStringLiteral("--reset"))).exitCode, 0);
    QCOMPARE(run(withFile).output, QStringLiteral("Summary: 0 values, 0 lines refused\n"
                                                  "since the last reset: no value\n"
                                                  "ever: no value\n"));
}

void tst_PeakMeter::readsDatesInTheOldFormat()
{
    const QByteArray older = recordJson("1", "9", "Fri Mar 1 12:30:05 2024");
    writeFile("peaks.json", '[' + older + ',' + older + ']');
    QCOMPARE(run(withFile, "5\n").exitCode, 0);
    QCOMPARE(readFile(peaks()).count("\"2024-03-01T12:30:05\""), 4);
}

void tst_PeakMeter::damagedFileIsNotChanged_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");

    const QByteArray valid = recordJson("1", "9", "2024-03-01T12:30:05");
    const QByteArray complete = '[' + valid + ',' + valid + ']';
    const QString invalid = "it does not contain two valid records";
    const auto with = [&valid](const QByteArray& record) {
        return '[' + valid + ',' + record + ']';
    };
    const auto replaced = [&](const char* text, const char* replacement) {
        return with(QByteArray(valid).replace(text, replacement));
    };

    QTest::newRow("empty") << QByteArray() << "damaged: illegal value";
    QTest::newRow("truncated") << complete.left(complete.size() - 1)
                               << "damaged: unterminated array";
    QTest::newRow("other text") << QByteArray("peaks") << "damaged: illegal value";
    QTest::newRow("zeros") << QByteArray(300, '\0') << "damaged: illegal value";
    QTest::newRow("object") << QByteArray("{}") << invalid;
    QTest::newRow("one record") << '[' + valid + ']' << invalid;
    QTest::newRow("three records") << '[' + valid + ',' + valid + ',' + valid + ']' << invalid;
    QTest::newRow("number for a record") << with("7") << invalid;
    QTest::newRow("member missing") << replaced("MaxValueDate", "Other") << invalid;
    QTest::newRow("string for a number") << replaced("9", "\"9\"") << invalid;
    QTest::newRow("null for a number") << replaced("9", "null") << invalid;
    QTest::newRow("number for a boolean") << replaced("true", "1") << invalid;
    QTest::newRow("empty date") << replaced("2024-03-01T12:30:05", "") << invalid;
    QTest::newRow("impossible date") << replaced("2024-03", "2024-13") << invalid;
    QTest::newRow("minimum above maximum") << replaced("9", "0") << invalid;
}

void tst_PeakMeter::damagedFileIsNotChanged()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);

    writeFile("peaks.json", content);
    for (const QStringList& arguments : {withFile, withFile + QStringList("--reset")}) {
        const ProgramResult result = run(arguments, "5\n");
        QCOMPARE(result.errors, QStringLiteral("peak-meter: cannot restore from peaks.json: ") +
                                    reason + "; the file is unchanged\n");
        QCOMPARE(result.output, QString());
        QCOMPARE(result.exitCode, 3);
    }
    QCOMPARE(readFile(peaks()), content);
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("peaks.json"));
}

// The directory is removed during the run; the program prints the summary nevertheless.
void tst_PeakMeter::failedSaveIsReported()
{
    QVERIFY(QDir().mkpath(path("medium")));
    ProgramRun programRun(program, {"-f", "medium/peaks.json"}, directory());
    programRun.write("1\n");
    QVERIFY(programRun.waitForOutput("line 1"));
    QVERIFY(QDir(path("medium")).removeRecursively());
    programRun.write("2\n");
    const ProgramResult result = programRun.finish();
    QCOMPARE(result.errors,
             "peak-meter: cannot write medium/peaks.json: No such file or directory\n");
    QCOMPARE(withoutDates(result.output), QStringLiteral("line 1: new minimum and maximum 1\n"
                                                         "Summary: 2 values, 0 lines refused\n") +
                                              sinceReset("1", "2") + ever("1", "2"));
    QCOMPARE(result.exitCode, 4);
}

// A limit on file sizes simulates the full disk: the write fails when it is flushed.
void tst_PeakMeter::fullDiskKeepsTheOldFile()
{
    QCOMPARE(run(withFile, "1\n").exitCode, 0);
    const QByteArray kept = readFile(peaks());
    const QString limited = "trap '' XFSZ; ulimit -f 0; exec \"$0\" \"$@\"";
    ProgramRun programRun("/bin/sh", QStringList{"-c", limited, program} + withFile, directory());
    programRun.write("2\n");
    const ProgramResult result = programRun.finish();
    QVERIFY2(result.errors.startsWith("peak-meter: cannot write peaks.json: "),
             qPrintable(result.errors));
    QCOMPARE(result.exitCode, 4);
    QCOMPARE(readFile(peaks()), kept);
}

void tst_PeakMeter::secondRunWithTheFileIsRefused()
{
    ProgramRun first(program, withFile, directory());
    first.write("1\n");
    QVERIFY(first.waitForOutput("line 1"));
    const ProgramResult second = run(withFile, "2\n");
    QCOMPARE(second.errors,
             QStringLiteral(
                 "peak-meter: cannot restore from peaks.json: another peak-meter is using it\n"));
    QCOMPARE(second.exitCode, 3);
    QCOMPARE(first.finish().exitCode, 0);
    QCOMPARE(run(withFile, "2\n").exitCode, 0);
}

void tst_PeakMeter::saveReplacesTheFileAtomically()
{
    QCOMPARE(run(withFile, "1\n").exitCode, 0);
    const QByteArray old = readFile(peaks());
    // A reader that has the old file open still reads the old content.
    QFile file(peaks());
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QCOMPARE(run(withFile, "2\n").exitCode, 0);
    QCOMPARE(file.readAll(), old);
    QVERIFY(readFile(peaks()) != old);
}

void tst_PeakMeter::killedRunKeepsEveryValueShown()
{
    const int runs = isEmulated() ? 10 : 40;
    constexpr int valuesPerRun = 300;

    const QRegularExpression shown("new (?:minimum and )?maximum (\\d+)\n");
    int cut = 0;
    for (int i = 0; i < runs; ++i) {
        const int first = i * valuesPerRun + 1;
        const int last = first + valuesPerRun - 1;
        ProgramRun programRun(program, withFile, directory());
        programRun.write(QByteArray::number(first) + '\n');
        QVERIFY(programRun.waitForOutput(QStringLiteral("maximum %1\n").arg(first)));
        QByteArray input;
        for (int value = first + 1; value <= last; ++value) {
            input += QByteArray::number(value) + '\n';
        }
        programRun.write(input);
        // Before, during and after the pending save.
        QTest::qSleep(1 + 3 * i);
        programRun.send(SIGKILL);
        const ProgramResult result = programRun.finish();
        QCOMPARE(result.exitCode, -1);
        int shownMaximum = 0;
        QRegularExpressionMatchIterator matches = shown.globalMatch(result.output);
        while (matches.hasNext()) {
            shownMaximum = matches.next().captured(1).toInt();
        }
        QVERIFY(shownMaximum >= first);
        cut += shownMaximum < last ? 1 : 0;
        for (const auto place :
             {DragIndicator::ResettableInstance, DragIndicator::PermanentInstance}) {
            const DragIndicator kept = keptRecords();
            QCOMPARE(kept.getMinValue(place), 1.0);
            QVERIFY2(kept.getMaxValue(place) >= shownMaximum, qPrintable(result.output));
            QVERIFY(kept.getMaxValue(place) <= last);
        }
    }
    // Otherwise all kills came too late.
    QVERIFY(cut > 0);
    const ProgramResult result = run(withFile);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exitCode, 0);
}

void tst_PeakMeter::signalSavesAndPrintsTheSummary_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void tst_PeakMeter::signalSavesAndPrintsTheSummary()
{
    QFETCH(int, signalNumber);

    ProgramRun programRun(program, withFile, directory());
    programRun.write("1\n2\n");
    QVERIFY(programRun.waitForOutput("line 2"));
    programRun.send(signalNumber);
    QVERIFY(programRun.waitForOutput("ever:"));
    const ProgramResult result = programRun.finish();
    QCOMPARE(result.errors, QString());
    QVERIFY2(withoutDates(result.output).endsWith(ever("1", "2")), qPrintable(result.output));
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("peaks.json"));
}

void tst_PeakMeter::statusLineIsRedrawnOnATerminal()
{
    Terminal terminal(60);
    terminal.start(program, {"-f", peaks()});
    QVERIFY(terminal.waitForText("\rno value yet"));
    const QPair<QByteArray, QByteArray> steps[] = {
        {"1", "1 [-----------------|----------------] 1  now 1"},
        {"5", "1 [---------------------------------|] 5  now 5"},
        {"-3.5", "-3.5 [|------------------------------] 5  now -3.5"},
        {"0.75", "-3.5 [---------------|---------------] 5  now 0.75"},
        {"1e308", "-3.5 [-------------------------|] 1e+308  now 1e+308"},
        {"-1e308", "-1e+308 [|----------------------] 1e+308  now -1e+308"},
        {"0", "-1e+308 [-----------|-----------] 1e+308  now 0"},
    };

    for (const auto& [value, line] : steps) {
        terminal.write(value + '\n');
        QVERIFY2(terminal.waitForText('\r' + line), line.constData());
    }
    const QByteArray written = terminal.finish();
    QVERIFY2(!written.contains("new m"), written.constData());
    // The status line is erased.
    const QByteArray screen = Terminal::screenAfter(written).join('\n');
    QCOMPARE(withoutDates(QString::fromUtf8(screen)), "Summary: 7 values, 0 lines refused\n" +
                                                          sinceReset("-1e+308", "1e+308") +
                                                          ever("-1e+308", "1e+308"));

    // The saved range is drawn before the first value.
    terminal.start(program, {"-f", peaks()});
    QVERIFY(terminal.waitForText("\r-1e+308 [-----------------------] 1e+308"));
    terminal.finish();
}

void tst_PeakMeter::statusLineFitsTheTerminal_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("expected");

    // 0 is in the middle of the bar.
    QTest::newRow("unknown width")
        << 0 << QByteArray("-2\n2\n0\n")
        << "-2 [" + QByteArray(26, '-') + '|' + QByteArray(26, '-') + "] 2  now 0";
    QTest::newRow("wide") << 40 << QByteArray("-2\n2\n0\n")
                          << QByteArray("-2 [------|------] 2  now 0");
    QTest::newRow("smallest numbers")
        << 60 << QByteArray("-5e-324\n5e-324\n0\n")
        << QByteArray("-4.94066e-324 [-----|-----] 4.94066e-324  now 0");
    QTest::newRow("adjacent limits") << 50 << QByteArray("1e308\n1.0000000000000002e308\n")
                                     << QByteArray("1e+308 [-------------|] 1e+308  now 1e+308");
    QTest::newRow("no room for a bar")
        << 25 << QByteArray("-2\n2\n0\n") << QByteArray("-2..2  now 0");
    QTest::newRow("room for the value only") << 10 << QByteArray("-2\n2\n0\n") << QByteArray("0");
}

void tst_PeakMeter::statusLineFitsTheTerminal()
{
    QFETCH(int, columns);
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, expected);

    Terminal terminal(columns);
    terminal.start(program, {});
    terminal.write(input);
    const QByteArray written = terminal.finish();
    const QByteArray drawn = written.left(written.indexOf("Summary"));
    bool isDrawn = false;
    for (const QByteArray& line : drawn.split('\r')) {
        QVERIFY2(columns == 0 || line.size() < columns, line.constData());
        isDrawn = isDrawn || line.trimmed() == expected;
    }
    QVERIFY2(isDrawn, written.constData());
}

void tst_PeakMeter::verboseShowsLogMessages()
{
    writeFile("peaks.json", "[]");
    QCOMPARE(run(withFile + QStringList(QStringLiteral("--verbose"))).errors,
             QStringLiteral("peak-meter: log: DragIndicator: Received invalid count for drag "
                            "indicator instances: 0 , 2 !\n"
                            "peak-meter: log: DragIndicator: Resetting drag indicator due to "
                            "errors on importing json data!\n"
                            "peak-meter: cannot restore from peaks.json: it does not contain two "
                            "valid records; the file is unchanged\n"));
}

void tst_PeakMeter::invalidArgumentsAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("errors");

    QTest::newRow("unknown option")
        << QStringList{"--foo"} << 2 << "peak-meter: Unknown option 'foo'.\n" + hint;
    QTest::newRow("option without its value")
        << QStringList{"--file"} << 2 << "peak-meter: Missing value after '--file'.\n" + hint;
    QTest::newRow("empty name") << QStringList{"--file", ""} << 2
                                << "peak-meter: --file requires a name\n" + hint;
    QTest::newRow("value as an argument")
        << QStringList{"5"} << 2
        << "peak-meter: values come from standard input, not from an argument: '5'\n" + hint;
    QTest::newRow("reset without a file")
        << QStringList{"--reset"} << 2 << "peak-meter: --reset requires --file\n" + hint;
    QTest::newRow("directory") << QStringList{"--file", "."} << 3
                               << "peak-meter: cannot restore from .: it is not a regular file\n";
    QTest::newRow("missing directory")
        << QStringList{"--file", "none/peaks.json"} << 4
        << "peak-meter: cannot write none/peaks.json: No such file or directory\n";
    QTest::newRow("reset in a missing directory")
        << QStringList{"--reset", "--file", "none/peaks.json"} << 4
        << "peak-meter: cannot write none/peaks.json: No such file or directory\n";
}

// The program exits although the input is still open.
void tst_PeakMeter::invalidArgumentsAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, errors);

    ProgramRun programRun(program, arguments, directory());
    QVERIFY(!programRun.waitForOutput("never"));
    const ProgramResult result = programRun.finish();
    QCOMPARE(result.errors, errors);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(QDir(directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

void tst_PeakMeter::unreadableInputIsReported_data()
{
    QTest::addColumn<QString>("redirection");
    QTest::addColumn<QString>("reason");

    QTest::newRow("closed") << "<&-"
                            << "it is closed";
    QTest::newRow("directory") << "</"
                               << "Is a directory";
}

void tst_PeakMeter::unreadableInputIsReported()
{
    QFETCH(QString, redirection);
    QFETCH(QString, reason);

    const ProgramResult result =
        ProgramRun("sh", {"-c", "exec \"$0\" " + redirection, program}, directory()).finish();
    QCOMPARE(result.errors,
             QStringLiteral("peak-meter: cannot read standard input: %1\n").arg(reason));
    QCOMPARE(result.exitCode, 5);
}

void tst_PeakMeter::helpListsEveryExitCode()
{
    const ProgramResult result = run({"--help"});
    QCOMPARE(result.errors, QString());
    QVERIFY2(
        result.output.contains(QStringLiteral(
            "\nExit codes:\n"
            "  0  all lines were accepted until the end of the input, Ctrl-C, SIGTERM or SIGHUP\n"
            "  1  some lines were not numbers\n"
            "  2  wrong usage\n"
            "  3  FILE cannot be read, is damaged, or another peak-meter is using it\n"
            "  4  FILE cannot be written\n"
            "  5  standard input cannot be read\n"
            "  6  the output could not be written\n")),
        qPrintable(result.output));
    QCOMPARE(result.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_PeakMeter)
#include "tst_PeakMeter.moc"
