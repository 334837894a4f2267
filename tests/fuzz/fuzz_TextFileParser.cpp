// The input is an expression on the first line, followed by the text of a file.
#include "Fuzz.h"
#include "LiteralTextFile.h"
#include "TextFileParser.h"

#include <QtCore/QDebug>

namespace {

constexpr int patternLimit = 80;
constexpr int contentLimit = 1000;

// The text of results, error and messages, for comparison.
QStringList shown(const QStringList& results, const QString& error)
{
    return QStringList{LiteralTextFile::described(results), error} + Fuzz::takeMessages();
}

// The texts of the expected warnings, in order; the last one is the parser's last error.
QStringList errorsOf(const QRegularExpression& expression, const QString& content)
{
    QStringList errors;
    if (!expression.isValid()) {
        errors += "Invalid regular expresion: " + expression.pattern();
    }
    if (!expression.isValid() || !expression.globalMatch(content).isValid()) {
        errors += "Invalid match on expresion: " + expression.pattern();
    }
    return errors;
}

QStringList shown(const QStringList& results, const QStringList& errors)
{
    for (const QString& error : errors) {
        qWarning() << error;
    }
    return shown(results, errors.isEmpty() ? QString() : errors.last());
}

QStringList shown(const QStringList& results, TextFileParser& parser)
{
    Fuzz::verify(parser.hasError() != parser.getLastError().isEmpty(), "the error state");
    const QString error = parser.getLastError();
    parser.clearLastError();
    return shown(results, error);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray bytes = Fuzz::toBytes(data, size);
    const QByteArray pattern = Fuzz::takeLine(bytes).left(patternLimit);
    bytes.truncate(contentLimit);
    // Limits the steps of expressions with excessive backtracking, which would slow down fuzzing.
    const QRegularExpression expression("(*LIMIT_MATCH=5000)" + Fuzz::toText(pattern));
    const QString filePath = Fuzz::writeFile("text", bytes);
    const QString content = LiteralTextFile::content(bytes);

    const QStringList errors = errorsOf(expression, content);
    // Qt compiles an expression once and logs warnings about it (duplicate group names) only then.
    Fuzz::takeMessages();
    QStringList results;
    if (errors.isEmpty()) {
        results = LiteralTextFile::multiMatch(content, expression);
    }
    const QStringList allExpected = shown(results, errors);
    const QStringList firstExpected = shown(QStringList(results.value(0)), errors);

    TextFileParser parser(filePath);
    Fuzz::verify(!parser.hasError(), "an error of the file");
    const QStringList all = parser.multiMatch(expression);
    Fuzz::verifySame("results and errors", shown(all, parser), allExpected);
    const QString first = parser.match(expression);
    Fuzz::verifySame("first result and errors", shown({first}, parser), firstExpected);
    Fuzz::verify(parser.internallMatch(expression).isValid() == errors.isEmpty(),
                 "validity of the iterator");
    Fuzz::takeMessages();
    return 0;
}
