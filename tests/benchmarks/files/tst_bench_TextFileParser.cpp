#include "Benchmark.h"
#include "TextFileParser.h"

#include <memory>

#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

using namespace Benchmark;

namespace {

constexpr char lineFeed[] = "\n";
constexpr char carriageReturn[] = "\r\n";

// Sixteen lines per kibibyte. Every hundredth line, starting with the first, matches the
// expression.
template <const char* lineEnd>
QString logFile(int bytes)
{
    return file(
        QStringLiteral("log-%1-%2").arg(bytes).arg(qstrlen(lineEnd)), [bytes](QIODevice& file) {
            for (int line = 0; file.pos() < bytes; ++line) {
                const QByteArray text = line % 100 ? "nothing of note in round " : "state=number";
                const QByteArray number = QByteArray::number(line);
                file.write((text + number).leftJustified(64 - int(qstrlen(lineEnd))) + lineEnd);
            }
        });
}

QStringList states(int bytes)
{
    QStringList result;
    for (int line = 0; line * 64 < bytes; line += 100) {
        result.append(QStringLiteral("number%1").arg(line));
    }
    return result;
}

const QString expression = QStringLiteral("\\bstate=(\\w+)");

template <const char* lineEnd>
void measureLoad(int bytes)
{
    const QString filePath = logFile<lineEnd>(bytes);
    const auto check = [bytes](TextFileParser parser) {
        QCOMPARE(parser.multiMatch(QRegularExpression(expression)), states(bytes));
        QVERIFY(parser.match(QRegularExpression(QStringLiteral("\r"))).isEmpty());
    };
    measureChecked([&] { return TextFileParser(filePath); }, check);
}

template <const char* lineEnd>
void measureReadAll(int bytes)
{
    const QString filePath = logFile<lineEnd>(bytes);
    const auto load = [&filePath] {
        const QByteArray text = content(filePath);
        return QString::fromUtf8(text.constData(), int(qstrlen(text.constData())));
    };
    const auto check = [bytes](const QString& text) {
        QCOMPARE(text.count(QStringLiteral("state=")), states(bytes).size());
        QVERIFY(!text.contains(u'\r'));
    };
    measureChecked(load, check);
}

// The first group of each match, from the library that QRegularExpression uses.
QStringList allMatches(const pcre2_code* code, pcre2_match_data* match, const QString& text)
{
    QStringList result;
    const PCRE2_SIZE* const offsets = pcre2_get_ovector_pointer(match);
    PCRE2_SIZE start = 0;
    while (pcre2_match(code, text.utf16(), PCRE2_SIZE(text.size()), start, PCRE2_NO_UTF_CHECK,
                       match, nullptr) > 1) {
        result.append(text.mid(int(offsets[2]), int(offsets[3] - offsets[2])));
        start = offsets[1];
    }
    return result;
}

} // namespace

class tst_bench_TextFileParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void load() { runRow(); }
    void load_data()
    {
        const Rows rows("bytes", {kibi, 32 * kibi, mebi, 10 * mebi});
        rows.add("MiscTools", &measureLoad<lineFeed>);
        rows.add("readAll, QString::fromUtf8", &measureReadAll<lineFeed>);
    }

    void loadCarriageReturns() { runRow(); }
    void loadCarriageReturns_data()
    {
        const Rows rows("bytes", {mebi, 10 * mebi});
        rows.add("MiscTools", &measureLoad<carriageReturn>);
        rows.add("readAll, QString::fromUtf8", &measureReadAll<carriageReturn>);
    }

    void multiMatch() { runRow(); }
    void multiMatch_data()
    {
        const Rows rows("bytes", {kibi, 32 * kibi, mebi, 10 * mebi});
        rows.add("MiscTools", [](int bytes) {
            TextFileParser parser(logFile<lineFeed>(bytes));
            const QRegularExpression subject(expression);
            measure([&] { return parser.multiMatch(subject); }, states(bytes));
        });
        rows.add("PCRE2-16, JIT", [](int bytes) {
            const QString text = QString::fromUtf8(content(logFile<lineFeed>(bytes)));
            int error = 0;
            PCRE2_SIZE offset = 0;
            const std::unique_ptr<pcre2_code, decltype(&pcre2_code_free)> code(
                pcre2_compile(expression.utf16(), PCRE2_ZERO_TERMINATED, PCRE2_UTF, &error, &offset,
                              nullptr),
                &pcre2_code_free);
            const std::unique_ptr<pcre2_match_data, decltype(&pcre2_match_data_free)> match(
                pcre2_match_data_create_from_pattern(code.get(), nullptr), &pcre2_match_data_free);
            QCOMPARE(pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE), 0);
            measure([&] { return allMatches(code.get(), match.get(), text); }, states(bytes));
        });
    }

    void matchAtStart() { runRow(); }
    void matchAtStart_data()
    {
        const Rows rows("bytes", {kibi, 32 * kibi, mebi, 10 * mebi});
        rows.add("MiscTools", [](int bytes) {
            TextFileParser parser(logFile<lineFeed>(bytes));
            const QRegularExpression subject(expression);
            measure([&] { return parser.match(subject); }, QStringLiteral("number0"));
        });
    }
};

QTEST_GUILESS_MAIN(tst_bench_TextFileParser)
#include "tst_bench_TextFileParser.moc"
