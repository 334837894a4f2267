#include "TextFileParser.h"
#include "support/Program.h"
#include "support/Workspace.h"

#include <QtCore/QFile>

#include <memory>

#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

namespace {

constexpr int mebi = 1024 * 1024;
constexpr char lineFeed[] = "\n";
constexpr char carriageReturn[] = "\r\n";

// Each hundredth line, the first one too, holds what the expression finds.
QString logFile(int bytes, const QByteArray& lineEnd)
{
    const QString name = QStringLiteral("log-%1-%2.txt").arg(bytes).arg(lineEnd.size());
    return Workspace::file(name, [bytes, lineEnd] {
        QByteArray text;
        for (int line = 0; text.size() < bytes; ++line) {
            if (line % 100 == 0) {
                text += "state=number" + QByteArray::number(line) + lineEnd;
            }
            text += "2024-03-01 12:30:05 daemon: nothing of note in round " +
                    QByteArray::number(line) + lineEnd;
        }
        return text;
    });
}

QString expressionText()
{
    return QStringLiteral("\\bstate=(\\w+)");
}

QString literalText(const QString& filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return QString();
    }
    const QByteArray bytes = file.readAll();
    return QString::fromUtf8(bytes.constData(),
                             int(qstrnlen(bytes.constData(), uint(bytes.size()))));
}

// The whole text, once more out of the parser.
bool holds(TextFileParser& parser, const QString& text)
{
    return parser.match(QRegularExpression(QStringLiteral("(?s)\\A.*\\z"))) == text;
}

void addLoad(Contenders& contenders, int bytes, const QByteArray& lineEnd)
{
    const QString filePath = logFile(bytes, lineEnd);
    contenders.subject(
        [filePath] { return TextFileParser(filePath); },
        [filePath](TextFileParser parser) { return holds(parser, literalText(filePath)); });
    Contender& literal = contenders.peer(
        QStringLiteral("readAll, QString::fromUtf8"), [filePath] { return literalText(filePath); },
        [bytes](const QString& text) { return text.size() >= bytes / 2; });
    if (lineEnd == lineFeed) {
        literal.atMost(0.8);
    }
}

// An expression of the library beneath QRegularExpression, translated to machine code.
class CompiledExpression
{
public:
    explicit CompiledExpression(const QString& pattern)
    {
        int error = 0;
        PCRE2_SIZE position = 0;
        m_code = pcre2_compile(pattern.utf16(), PCRE2_SIZE(pattern.size()), PCRE2_UTF, &error,
                               &position, nullptr);
        if (m_code == nullptr || pcre2_jit_compile(m_code, PCRE2_JIT_COMPLETE) != 0) {
            qFatal("cannot compile %s", qPrintable(pattern));
        }
        m_matches = pcre2_match_data_create_from_pattern(m_code, nullptr);
    }

    ~CompiledExpression()
    {
        pcre2_match_data_free(m_matches);
        pcre2_code_free(m_code);
    }

    Q_DISABLE_COPY(CompiledExpression)

    // The first group of each match.
    QStringList all(const QString& text) const
    {
        QStringList result;
        const PCRE2_SIZE* const offsets = pcre2_get_ovector_pointer(m_matches);
        PCRE2_SIZE start = 0;
        while (pcre2_match(m_code, text.utf16(), PCRE2_SIZE(text.size()), start, PCRE2_NO_UTF_CHECK,
                           m_matches, nullptr) > 1) {
            result.append(text.mid(int(offsets[2]), int(offsets[3] - offsets[2])));
            start = offsets[1];
        }
        return result;
    }

private:
    pcre2_code* m_code;
    pcre2_match_data* m_matches;
};

void addMultiMatch(Contenders& contenders, int bytes)
{
    const QString filePath = logFile(bytes, lineFeed);
    const auto text = std::make_shared<QString>(literalText(filePath));
    const auto compiled = std::make_shared<CompiledExpression>(expressionText());
    contenders.subject([parser = std::make_shared<TextFileParser>(filePath),
                        expression = QRegularExpression(
                            expressionText())] { return parser->multiMatch(expression); },
                       [text, compiled](const QStringList& result) {
                           return !result.isEmpty() && result == compiled->all(*text);
                       });
    contenders
        .peer(
            QStringLiteral("PCRE2-16, JIT"), [text, compiled] { return compiled->all(*text); },
            [](const QStringList& result) { return result.value(0) == QStringLiteral("number0"); })
        .atMost(2);
}

auto firstMatch(int bytes)
{
    return
        [parser = std::make_shared<TextFileParser>(logFile(bytes, lineFeed)),
         expression = QRegularExpression(expressionText())] { return parser->match(expression); };
}

void addFirstMatch(Contenders& contenders, int bytes)
{
    const auto isFirst = equals(QStringLiteral("number0"));
    contenders.subject(firstMatch(bytes), isFirst);
    contenders.peer(QStringLiteral("MiscTools with 1 MiB"), firstMatch(mebi), isFirst).atMost(1.1);
}

template <typename Add, typename... Arguments>
Operation operation(const QString& name, Add add, Arguments... arguments)
{
    return Operation(name, [=](Contenders& contenders) { add(contenders, arguments...); });
}

Operations operations()
{
    Operations all = {
        operation(QStringLiteral("load, 1 MiB"), addLoad, mebi, lineFeed).counted(2),
        operation(QStringLiteral("load, 1 MiB, CR LF"), addLoad, mebi, carriageReturn).counted(2),
        operation(QStringLiteral("load, 10 MiB"), addLoad, 10 * mebi, lineFeed)
            .inTable()
            .peakMeasured(),
        operation(QStringLiteral("load, 10 MiB, CR LF"), addLoad, 10 * mebi, carriageReturn)
            .inTable(),
        operation(QStringLiteral("multiMatch, 1 MiB"), addMultiMatch, mebi).counted(2),
        operation(QStringLiteral("multiMatch, 10 MiB"), addMultiMatch, 10 * mebi).inTable(),
        operation(QStringLiteral("match at the start, 1 MiB"), addFirstMatch, mebi).counted(2),
        operation(QStringLiteral("match at the start, 10 MiB"), addFirstMatch, 10 * mebi).inTable(),
    };
    const QString unit = QStringLiteral("bytes");
    for (const int size : {mebi / 1024, mebi / 64, mebi / 4, 4 * mebi}) {
        all.push_back(operation(QStringLiteral("load plot, %1").arg(size), addLoad, size, lineFeed)
                          .inPlot(QStringLiteral("TextFileParser, load"), unit, size));
        all.push_back(
            operation(QStringLiteral("multiMatch plot, %1").arg(size), addMultiMatch, size)
                .inPlot(QStringLiteral("multiMatch"), unit, size));
        all.push_back(operation(QStringLiteral("match plot, %1").arg(size), addFirstMatch, size)
                          .inPlot(QStringLiteral("match at the start"), unit, size));
    }
    return all;
}

} // namespace

int main(int argc, char* argv[])
{
    return Program::run(argc, argv, operations());
}
