#include "ProgramRun.h"
#include "TestCase.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

// Each program that replaces a file makes that durable: it flushes the file's directory.
class tst_DurableSaves : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void directoryOfASavedFileIsFlushed_data();
    void directoryOfASavedFileIsFlushed();
    void nothingIsFlushedWithoutASave_data();
    void nothingIsFlushedWithoutASave();

private:
    void run();
    QStringList flushes() const;
};

// Runs the row's program in the row's directory.
void tst_DurableSaves::run()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QVERIFY(QDir(directory()).mkpath(QStringLiteral("data")));
    QVERIFY(QDir(directory()).mkpath(QStringLiteral("temporary")));
    QVERIFY(QFile::copy(QStringLiteral(SAMPLE_BOARD), path(QStringLiteral("board.ini"))));
    writeFile(QStringLiteral("data/commas.ini"), "a=1,2\n");
    writeFile(QStringLiteral("data/clean.ini"), "a=1\n");
    ProgramRun programRun(
        QStringLiteral("env"),
        preloadOf(QStringLiteral(FLUSH_RECORDER)) +
            QStringList{QStringLiteral("FLUSH_LOG=") + path(QStringLiteral("log")), program} +
            arguments,
        directory(), path(QStringLiteral("temporary")));
    programRun.write("1\n2\n");
    const ProgramResult result = programRun.finish();
    QVERIFY2(result.exitCode == exitCode, qPrintable(result.output + result.errors));
}

// The flushed directories, without those of temporary files.
QStringList tst_DurableSaves::flushes() const
{
    QStringList directories;
    const QStringList lines = QString::fromUtf8(readFile(path(QStringLiteral("log"))))
                                  .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (!line.startsWith(path(QStringLiteral("temporary/")))) {
            directories.append(line);
        }
    }
    return directories;
}

void tst_DurableSaves::directoryOfASavedFileIsFlushed_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("eeprom-image create")
        << EEPROM_IMAGE_PROGRAM << QStringList{"create", "board.ini", "data/eeprom"} << 0;
    QTest::newRow("ini-lint --clean")
        << INI_LINT_PROGRAM << QStringList{"--clean", "data/commas.ini"} << 0;
    QTest::newRow("peak-meter --file")
        << PEAK_METER_PROGRAM << QStringList{"--file", "data/peaks.json"} << 0;
    QTest::newRow("run-and-grep --output")
        << RUN_AND_GREP_PROGRAM
        << QStringList{"--output", "data/kept", "-e", "a", "--", "echo", "a"} << 0;
}

void tst_DurableSaves::directoryOfASavedFileIsFlushed()
{
    run();
    QCOMPARE(flushes(), QStringList(path(QStringLiteral("data"))));
}

void tst_DurableSaves::nothingIsFlushedWithoutASave_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("refused image")
        << EEPROM_IMAGE_PROGRAM << QStringList{"create", "board.ini", "data"} << 4;
    QTest::newRow("clean file") << INI_LINT_PROGRAM << QStringList{"--clean", "data/clean.ini"}
                                << 0;
    QTest::newRow("dry run") << INI_LINT_PROGRAM
                             << QStringList{"--clean", "--dry-run", "data/commas.ini"} << 1;
}

void tst_DurableSaves::nothingIsFlushedWithoutASave()
{
    run();
    QCOMPARE(flushes(), QStringList());
}

QTEST_GUILESS_MAIN(tst_DurableSaves)
#include "tst_DurableSaves.moc"
