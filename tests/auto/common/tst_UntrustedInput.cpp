#include "ChildProcess.h"
#include "DragIndicator.h"
#include "HardwareInfo.h"
#include "HardwareInfoReader.h"
#include "HashGenerator.h"
#include "IniFileManager.h"
#include "QProcessHandler.h"
#include "TestCase.h"
#include "TextFileParser.h"
#include "WildcardFilter.h"

#include <QtCore/QJsonArray>
#include <QtCore/QRegularExpression>

#include <sys/resource.h>

// Returns true if the input had the expected effect.
using Operation = std::function<bool(const QString& filePath)>;
Q_DECLARE_METATYPE(Operation)

/*
 * The memory that the library allocates for untrusted input, as a multiple of the input's size;
 * docs/security.md documents these bounds. Each row has the kind of input that needs the most
 * memory per byte.
 */
class tst_UntrustedInput : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void memoryIsAMultipleOfTheInput_data();
    void memoryIsAMultipleOfTheInput();

private:
    // False if the measured memory includes that of a sanitizer or an emulator.
    static bool isMemoryJudged()
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        return false;
#else
        return !isEmulated();
#endif
    }
};

namespace {

constexpr int inputSize = 4 * 1024 * 1024;

qint64 peakMemory()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return qint64(usage.ru_maxrss) * 1024;
}

QByteArray repeated(const QByteArray& text)
{
    return text.repeated(inputSize / text.size());
}

// Different keys of a few bytes each.
QByteArray shortKeys()
{
    QByteArray text;
    for (int number = 0; text.size() < inputSize; ++number) {
        text += QByteArray::number(number, 36) + "=\n";
    }
    return text;
}

QByteArray shortSections()
{
    QByteArray text;
    for (int number = 0; text.size() < inputSize; ++number) {
        text += '[' + QByteArray::number(number, 36) + "]\na=\n";
    }
    return text;
}

} // namespace

void tst_UntrustedInput::memoryIsAMultipleOfTheInput_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<int>("multiple");

    const auto row = [](const char* name, const QByteArray& input, int multiple,
                        const Operation& operation) {
        QTest::newRow(name) << input << operation << multiple;
    };
    const Operation readKey = [](const QString& filePath) {
        return IniFileManager(filePath, nullptr).getGeneralValue("key", QVariant()).isValid();
    };
    row("INI file: short keys", shortKeys(), 60, [](const QString& filePath) {
        return IniFileManager(filePath, nullptr).getGroupValues(QString()).size() > inputSize / 8;
    });
    row("INI file: short sections", shortSections(), 60, [](const QString& filePath) {
        return IniFileManager(filePath, nullptr).getGroups().size() > inputSize / 16;
    });
    row("INI file: a long list", "key=" + repeated(","), 20, readKey);
    row("INI file: a long value", "key=" + repeated("a"), 8, readKey);
    row("INI file: clean-up", repeated("a=%23\n"), 8, [](const QString& filePath) {
        IniFileManager::cleanUp(filePath);
        return !readFile(filePath).contains("%23");
    });
    row("text file: each character matches", repeated("a"), 90, [](const QString& filePath) {
        return TextFileParser(filePath).multiMatch(QRegularExpression("a")).size() == inputSize;
    });
    row("JSON: nested arrays", "[[],[" + repeated("[],") + "[]]]", 20, [](const QString& filePath) {
        const QJsonArray records = QJsonDocument::fromJson(readFile(filePath)).array();
        return records.size() == 2 && !DragIndicator().fromJsonArray(records);
    });
    row("EEPROM image", repeated("\xff"), 1, [](const QString& filePath) {
        HardwareInfo info;
        return !HardwareInfoReader(nullptr).readHardwareInfoFromSysFs(filePath + "XXXXXX", filePath,
                                                                      info);
    });
    const QByteArray digest = QCryptographicHash::hash(repeated("a"), QCryptographicHash::Sha256);
    row("hash of a file", repeated("a"), 2, [digest](const QString& filePath) {
        return HashGenerator::createHashFromFile(filePath, QCryptographicHash::Sha256) == digest;
    });
    row("output of a program", repeated("a"), 8, [](const QString& filePath) {
        QProcessHandler handler;
        handler.startProcess("cat", {filePath});
        return handler.getStandardOutput().size() == inputSize;
    });
    row("wildcard", QByteArray("a*").repeated(128 * 1024), 1000, [](const QString& filePath) {
        const QString pattern = QString::fromLatin1(readFile(filePath));
        return !WildcardFilter({pattern}, QDir::Files).matchesFilters("aaa");
    });
}

void tst_UntrustedInput::memoryIsAMultipleOfTheInput()
{
    QFETCH(QByteArray, input);
    QFETCH(Operation, operation);
    QFETCH(int, multiple);

    const QString filePath = writeFile("input", input);
    const ChildResult child = ChildProcess::run([&] {
        const qint64 before = peakMemory();
        const bool isExpected = operation(filePath);
        const double factor = double(peakMemory() - before) / input.size();
        fprintf(stderr, "%.1f times the input\n", factor);
        return isExpected && (factor <= multiple || !isMemoryJudged()) ? 0 : 1;
    });
    const QByteArray lastLine = child.output.trimmed().split('\n').constLast();
    QVERIFY2(child.exited, lastLine.constData());
    QVERIFY2(child.exitCode == 0, lastLine.constData());
}

QTEST_GUILESS_MAIN(tst_UntrustedInput)
#include "tst_UntrustedInput.moc"
