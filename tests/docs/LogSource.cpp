#include "LogSource.h"

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace {

const QString variablePart = QStringLiteral("<>");

const QSet<QString> levels{QStringLiteral("debug"), QStringLiteral("info"),
                           QStringLiteral("warning"), QStringLiteral("critical"),
                           QStringLiteral("fatal")};

QString withoutEscapes(QString literal)
{
    static const QRegularExpression escape(QStringLiteral("\\\\([\"'\\\\])"));
    return literal.replace(escape, QStringLiteral("\\1"));
}

} // namespace

LogSource::LogSource(const QString& path, const QString& code) : m_path(path)
{
    readTokens(code);
    findFunctions();
    findConstants();
    findForeignMessages();
    for (int i = 2; i + 1 < m_tokens.size(); ++i) {
        const bool isCall = isMark(i - 1, ".") || isMark(i - 1, "->");
        if (isCall && isMark(i + 1, "(") && levels.contains(m_tokens.at(i).value)) {
            findStatement(i);
        }
    }
}

void LogSource::readTokens(const QString& code)
{
    static const QRegularExpression expression(
        QStringLiteral("//[^\\n]*|/\\*.*?\\*/|^[ \\t]*#[ \\t]*include\\b[^\\n]*"
                       "|R\"(?<delimiter>\\w*)\\((?<raw>.*?)\\)\\k<delimiter>\""
                       "|\"(?<text>(?:[^\"\\\\\\n]|\\\\.)*)\""
                       "|(?<word>\\w+)"
                       "|(?<mark>'(?:[^'\\\\\\n]|\\\\.)+'|::|<<|->|\\S)"),
        QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    int line = 1;
    int counted = 0;
    QRegularExpressionMatchIterator matches = expression.globalMatch(code);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        line += code.midRef(counted, match.capturedStart() - counted).count(QLatin1Char('\n'));
        counted = match.capturedStart();
        if (match.capturedStart(QStringLiteral("raw")) >= 0) {
            m_tokens.append({Token::Text, match.captured(QStringLiteral("raw")), line});
        } else if (match.capturedStart(QStringLiteral("text")) >= 0) {
            m_tokens.append(
                {Token::Text, withoutEscapes(match.captured(QStringLiteral("text"))), line});
        } else if (match.capturedStart(QStringLiteral("word")) >= 0) {
            m_tokens.append({Token::Word, match.captured(QStringLiteral("word")), line});
        } else if (match.capturedStart(QStringLiteral("mark")) >= 0) {
            m_tokens.append({Token::Mark, match.captured(QStringLiteral("mark")), line});
        }
    }
}

void LogSource::findFunctions()
{
    Range head;
    for (int i = 0; i < m_tokens.size(); ++i) {
        head.end = i;
        if (isMark(i, ";") || isMark(i, "}")) {
            head.begin = i + 1;
        } else if (isMark(i, "{")) {
            int parenthesis = head.begin;
            while (parenthesis < i && !isMark(parenthesis, "(")) {
                ++parenthesis;
            }
            const bool isFunction = parenthesis > head.begin && parenthesis < i &&
                                    !isMark(i - 1, "=") && !hasWord(head, "namespace") &&
                                    !hasWord(head, "enum");
            if (isFunction) {
                m_functions.append({m_tokens.at(parenthesis - 1).value,
                                    split({parenthesis + 1, closing(parenthesis)}, ","),
                                    {i, closing(i)}});
                i = closing(i);
            }
            head.begin = i + 1;
        }
    }
}

// Those of the file; what a function names is its own matter.
void LogSource::findConstants()
{
    for (int i = 0; i < m_tokens.size(); ++i) {
        if (enclosing(i) != nullptr || !(isWord(i, "constexpr") || isWord(i, "const"))) {
            continue;
        }
        int end = i;
        while (end < m_tokens.size() && !isMark(end, ";")) {
            ++end;
        }
        const QVector<Range> sides = split({i, end}, "=");
        if (sides.size() == 2) {
            int name = sides.first().end - 1;
            while (name > i && m_tokens.at(name).kind != Token::Word) {
                --name; // the brackets of an array
            }
            m_constants.insert(m_tokens.at(name).value, sides.last());
        }
        i = end;
    }
}

void LogSource::findForeignMessages()
{
    static const QRegularExpression foreign(QStringLiteral(
        "^(?:qC?(?:Debug|Info|Warning|Critical|Fatal)|qErrnoWarning|qt_message_output"
        "|Q_LOGGING_CATEGORY|QLoggingCategory|v?f?printf|dprintf|f?puts|f?putc|putchar|perror"
        "|cerr|cout|clog|v?syslog|stderr|stdout)$"));
    for (int i = 0; i < m_tokens.size(); ++i) {
        if (m_tokens.at(i).kind != Token::Word) {
            continue;
        }
        const bool isOwnStream = isWord(i, "QDebug") && (isMark(i + 1, "(") || isMark(i + 2, "("));
        const bool isOwnLogger = isWord(i, "QMessageLogger") && !isMark(i + 1, "&") &&
                                 !(isMark(i + 2, "=") && isWord(i + 3, "MISCTOOLS_LOG"));
        if (isOwnLogger || isOwnStream || foreign.match(m_tokens.at(i).value).hasMatch()) {
            addProblem(i, QStringLiteral("%1 makes a message past MISCTOOLS_LOG(Class) of "
                                         "src/common/Log.h; use that")
                              .arg(m_tokens.at(i).value));
        }
    }
}

void LogSource::findStatement(int levelIndex)
{
    const Function* const function = enclosing(levelIndex);
    if (function == nullptr) {
        addProblem(levelIndex, QStringLiteral("a message outside of any function"));
        return;
    }
    if (!isMark(levelIndex + 2, ")") || !isMark(levelIndex + 3, "<<")) {
        addProblem(levelIndex,
                   QStringLiteral("a message is made as MISCTOOLS_LOG(Class).%1() << ...")
                       .arg(m_tokens.at(levelIndex).value));
        return;
    }
    int end = levelIndex;
    while (end < m_tokens.size() && !isMark(end, ";")) {
        ++end;
    }
    const QVector<Range> operands = split({levelIndex + 4, end}, "<<");

    const int receiver = levelIndex - 2;
    const int loggerIndex = m_tokens.at(receiver).kind == Token::Word
                                ? parameterIndex(*function, m_tokens.at(receiver).value)
                                : -1;
    const QVector<int> texts = streamedTexts(operands, *function);
    const bool needsCalls =
        loggerIndex >= 0 || std::any_of(texts.begin(), texts.end(), [&](int index) {
            return isCharPointer(function->parameters.at(index));
        });
    const QVector<int> calls = callsOf(*function);
    if (!needsCalls) {
        addMessage(levelIndex, operands, Arguments(), originsOfLogger(receiver, *function));
    } else if (calls.isEmpty()) {
        addProblem(levelIndex, QStringLiteral("nothing in this file calls %1(), which is given the "
                                              "text or the logger of a message")
                                   .arg(function->name));
    }
    for (const int call : calls) {
        const QVector<Range> given = argumentsOf(call);
        const Arguments arguments = fixedArguments(*function, texts, given);
        if (loggerIndex >= 0) {
            addMessage(levelIndex, operands, arguments,
                       originsOfArgument(given.value(loggerIndex)));
        } else if (!arguments.isEmpty()) {
            addMessage(levelIndex, operands, arguments, originsOfLogger(receiver, *function));
        }
    }
}

// The parameters of a function that it streams as they are, and that may be fixed texts.
QVector<int> LogSource::streamedTexts(const QVector<Range>& operands,
                                      const Function& function) const
{
    QVector<int> indexes;
    for (const Range& operand : operands) {
        const int index = operand.end - operand.begin == 1
                              ? parameterIndex(function, m_tokens.at(operand.begin).value)
                              : -1;
        const bool isText = index >= 0 && (isCharPointer(function.parameters.at(index)) ||
                                           hasWord(function.parameters.at(index), "QString"));
        if (isText) {
            indexes.append(index);
        }
    }
    return indexes;
}

// The fixed texts that a call gives to these parameters.
LogSource::Arguments LogSource::fixedArguments(const Function& function,
                                               const QVector<int>& parameters,
                                               const QVector<Range>& given) const
{
    Arguments arguments;
    for (const int index : parameters) {
        const Range parameter = function.parameters.at(index);
        if (index < given.size() && (isCharPointer(parameter) || hasText(given.at(index)))) {
            arguments.insert(nameOf(parameter), given.at(index));
        }
    }
    return arguments;
}

void LogSource::addMessage(int levelIndex, const QVector<Range>& operands,
                           const Arguments& arguments, const QVector<Origin>& origins)
{
    QStringList shown;
    for (const Range& operand : operands) {
        shown.append(shownOperand(operand, arguments));
    }
    if (origins.isEmpty()) {
        addProblem(levelIndex, QStringLiteral("the MISCTOOLS_LOG(Class) of the message \"%1\" "
                                              "cannot be found in this file")
                                   .arg(shown.join(QLatin1Char(' '))));
    }
    for (const Origin& origin : origins) {
        m_messages.append({origin.className,
                           m_tokens.at(levelIndex).value,
                           shown.join(QLatin1Char(' ')),
                           {origin.function},
                           QStringLiteral("%1:%2").arg(m_path).arg(m_tokens.at(levelIndex).line)});
    }
}

void LogSource::addProblem(int index, const QString& text)
{
    m_problems.append(
        QStringLiteral("%1:%2: %3").arg(m_path).arg(m_tokens.at(index).line).arg(text));
}

QVector<LogSource::Origin> LogSource::originsOfLogger(int receiverIndex, const Function& function)
{
    if (isMark(receiverIndex, ")")) {
        // MISCTOOLS_LOG(Class)
        return originsOfArgument({receiverIndex - 3, receiverIndex + 1});
    }
    // A variable of this function; else a field, which holds the variable of another.
    QVector<Origin> origins;
    for (int i = 0; i < m_tokens.size(); ++i) {
        if (isMark(i, "=") && isWord(i + 1, "MISCTOOLS_LOG")) {
            const QVector<Origin> found = originsOfArgument({i + 1, i + 5});
            if (enclosing(i) == &function) {
                return found;
            }
            origins += found;
        }
    }
    return origins;
}

QVector<LogSource::Origin> LogSource::originsOfArgument(Range argument)
{
    const Function* const function = enclosing(argument.begin);
    const bool isLogger = argument.end - argument.begin == 4 &&
                          isWord(argument.begin, "MISCTOOLS_LOG") &&
                          isMark(argument.begin + 1, "(");
    if (function == nullptr || !isLogger) {
        return QVector<Origin>();
    }
    return {{m_tokens.at(argument.begin + 2).value, function->name}};
}

// An operand as QDebug shows it.
QString LogSource::shownOperand(Range operand, const Arguments& arguments)
{
    if (isAllText(operand)) {
        return join(operand);
    }
    const QString last =
        operand.end > operand.begin ? m_tokens.at(operand.end - 1).value : QString();
    if (operand.end - operand.begin == 1) {
        if (arguments.contains(last)) {
            return shownOperand(arguments.value(last), Arguments());
        }
        if (m_constants.contains(last)) {
            return shownOperand(m_constants.value(last), Arguments());
        }
        return last.at(0).isDigit() ? last : variablePart;
    }
    if (hasText(operand)) {
        return shownString(operand);
    }
    if (isMark(operand.end - 2, "(") && isMark(operand.end - 1, ")")) {
        for (const Function& function : qAsConst(m_functions)) {
            const Range result{function.body.begin + 2, function.body.end - 1};
            const bool isReturned = function.name == m_tokens.at(operand.end - 3).value &&
                                    isWord(result.begin - 1, "return") && hasText(result) &&
                                    split(result, ";").size() == 1;
            if (isReturned) {
                return shownString(result);
            }
        }
    }
    return variablePart;
}

// A sum of texts as QDebug shows it.
QString LogSource::shownString(Range expression)
{
    QString shown;
    for (const Range& part : split(expression, "+")) {
        const bool isLiteral =
            (isWord(part.begin, "QStringLiteral") || isWord(part.begin, "QLatin1String")) &&
            isAllText({part.begin + 2, part.end - 1});
        if (isLiteral) {
            shown += join({part.begin + 2, part.end - 1});
        } else if (hasText(part)) {
            addProblem(part.begin, QStringLiteral("the fixed text of a message cannot be found: "
                                                  "stream it, or add QStringLiterals"));
        } else {
            shown += variablePart;
        }
    }
    shown.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    shown.replace(QLatin1Char('"'), QStringLiteral("\\\""));
    return QLatin1Char('"') + shown + QLatin1Char('"');
}

bool LogSource::is(int index, Token::Kind kind, const char* value) const
{
    return index >= 0 && index < m_tokens.size() && m_tokens.at(index).kind == kind &&
           m_tokens.at(index).value == QLatin1String(value);
}

bool LogSource::hasText(Range range) const
{
    return std::any_of(m_tokens.begin() + range.begin, m_tokens.begin() + range.end,
                       [](const Token& token) { return token.kind == Token::Text; });
}

bool LogSource::isAllText(Range range) const
{
    return range.begin < range.end &&
           std::all_of(m_tokens.begin() + range.begin, m_tokens.begin() + range.end,
                       [](const Token& token) { return token.kind == Token::Text; });
}

bool LogSource::hasWord(Range range, const char* word) const
{
    for (int i = range.begin; i < range.end; ++i) {
        if (isWord(i, word)) {
            return true;
        }
    }
    return false;
}

bool LogSource::isCharPointer(Range parameter) const
{
    return hasWord(parameter, "char") && isMark(parameter.end - 2, "*");
}

QString LogSource::nameOf(Range parameter) const
{
    return m_tokens.at(parameter.end - 1).value;
}

QString LogSource::join(Range range) const
{
    QString text;
    for (int i = range.begin; i < range.end; ++i) {
        text += m_tokens.at(i).value;
    }
    return text;
}

// The index of the bracket that closes the one at index.
int LogSource::closing(int index) const
{
    int depth = 0;
    for (int i = index; i < m_tokens.size(); ++i) {
        if (isMark(i, "(") || isMark(i, "{")) {
            ++depth;
        } else if (isMark(i, ")") || isMark(i, "}")) {
            --depth;
        }
        if (depth == 0) {
            return i;
        }
    }
    return m_tokens.size() - 1;
}

// The parts between separators that stand outside of brackets.
QVector<LogSource::Range> LogSource::split(Range range, const char* separator) const
{
    QVector<Range> parts;
    Range part{range.begin, range.end};
    for (int i = range.begin; i < range.end; ++i) {
        if (isMark(i, "(") || isMark(i, "{")) {
            i = closing(i);
        } else if (isMark(i, separator)) {
            parts.append({part.begin, i});
            part.begin = i + 1;
        }
    }
    if (part.begin < part.end) {
        parts.append(part);
    }
    return parts;
}

const LogSource::Function* LogSource::enclosing(int index) const
{
    for (const Function& function : m_functions) {
        if (function.body.begin < index && index < function.body.end) {
            return &function;
        }
    }
    return nullptr;
}

int LogSource::parameterIndex(const Function& function, const QString& name) const
{
    for (int i = 0; i < function.parameters.size(); ++i) {
        if (nameOf(function.parameters.at(i)) == name) {
            return i;
        }
    }
    return -1;
}

QVector<int> LogSource::callsOf(const Function& function) const
{
    QVector<int> calls;
    for (int i = 0; i < m_tokens.size(); ++i) {
        const bool isCall = m_tokens.at(i).kind == Token::Word &&
                            m_tokens.at(i).value == function.name && isMark(i + 1, "(");
        if (isCall && enclosing(i) != nullptr) {
            calls.append(i);
        }
    }
    return calls;
}

QVector<LogSource::Range> LogSource::argumentsOf(int callIndex) const
{
    return split({callIndex + 2, closing(callIndex + 1)}, ",");
}
