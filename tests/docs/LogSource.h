#ifndef TESTS_LOGSOURCE_H
#define TESTS_LOGSOURCE_H

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

// A message that the library can make.
struct LogMessage
{
    QString className; // the context's file
    QString level;
    QString text;            // as a user sees it, with <> for each variable part
    QSet<QString> functions; // that make it, without class and arguments
    QString place;           // where it stands
};

/*
 * The log statements of one C++ file.
 *
 * Fixed texts are followed into named constants, into a function that only returns one, and out of
 * a helper function to those who call it; so is the QMessageLogger that a helper is given. What is
 * written in a way that cannot be followed is a problem, never left out.
 */
class LogSource
{
public:
    LogSource(const QString& path, const QString& code);

    QVector<LogMessage> messages() const { return m_messages; }
    QStringList problems() const { return m_problems; }

private:
    struct Token
    {
        enum Kind
        {
            Word,
            Text,
            Mark,
        };
        Kind kind;
        QString value;
        int line;
    };
    // Tokens, from the first to the one behind the last.
    struct Range
    {
        int begin = 0;
        int end = 0;
    };
    struct Function
    {
        QString name;
        QVector<Range> parameters;
        Range body;
    };
    struct Origin
    {
        QString className;
        QString function;
    };
    using Arguments = QHash<QString, Range>;

    void readTokens(const QString& code);
    void findFunctions();
    void findConstants();
    void findForeignMessages();
    void findStatement(int levelIndex);
    void addMessage(int levelIndex, const QVector<Range>& operands, const Arguments& arguments,
                    const QVector<Origin>& origins);
    void addProblem(int index, const QString& text);

    QVector<int> streamedTexts(const QVector<Range>& operands, const Function& function) const;
    Arguments fixedArguments(const Function& function, const QVector<int>& parameters,
                             const QVector<Range>& given) const;
    QVector<Origin> originsOfLogger(int receiverIndex, const Function& function);
    QVector<Origin> originsOfArgument(Range argument);
    QString shownOperand(Range operand, const Arguments& arguments);
    QString shownString(Range expression);

    bool isWord(int index, const char* value) const { return is(index, Token::Word, value); }
    bool isMark(int index, const char* value) const { return is(index, Token::Mark, value); }
    bool is(int index, Token::Kind kind, const char* value) const;
    bool hasText(Range range) const;
    bool isAllText(Range range) const;
    bool hasWord(Range range, const char* word) const;
    bool isCharPointer(Range parameter) const;
    QString nameOf(Range parameter) const;
    QString join(Range range) const;
    int closing(int index) const;
    QVector<Range> split(Range range, const char* separator) const;
    const Function* enclosing(int index) const;
    int parameterIndex(const Function& function, const QString& name) const;
    QVector<int> callsOf(const Function& function) const;
    QVector<Range> argumentsOf(int callIndex) const;

    const QString m_path;
    QVector<Token> m_tokens;
    QVector<Function> m_functions;
    QHash<QString, Range> m_constants;
    QVector<LogMessage> m_messages;
    QStringList m_problems;
};

#endif
