#include "MessageRecorder.h"

#include <QtCore/QMutexLocker>

namespace {

MessageRecorder* currentRecorder = nullptr;

QString levelName(QtMsgType level)
{
    switch (level) {
    case QtDebugMsg:
        return "debug";
    case QtInfoMsg:
        return "info";
    case QtWarningMsg:
        return "warning";
    case QtCriticalMsg:
        return "critical";
    case QtFatalMsg:
        return "fatal";
    }
    return "unknown";
}

} // namespace

QString Message::description() const
{
    return QStringLiteral("%1 <%2> from %3:%4 (%5) [%6]")
        .arg(levelName(level), text, file, QString::number(line), function, category);
}

ExpectedMessage::ExpectedMessage(QtMsgType level, const QString& text)
    : m_level(level), m_text(text)
{
}

ExpectedMessage& ExpectedMessage::file(const char* name)
{
    m_file = QString::fromLatin1(name);
    return *this;
}

ExpectedMessage& ExpectedMessage::function(const char* signature)
{
    m_function = QString::fromLatin1(signature);
    return *this;
}

ExpectedMessage& ExpectedMessage::category(const char* name)
{
    m_category = QString::fromLatin1(name);
    return *this;
}

QString ExpectedMessage::difference(const Message& message) const
{
    QStringList differences;
    const auto compare = [&differences](const char* what, const QString& actual,
                                        const QString& expected) {
        if (actual != expected) {
            differences.append(QStringLiteral("%1 is <%2> instead of <%3>")
                                   .arg(QLatin1String(what), actual, expected));
        }
    };
    compare("level", levelName(message.level), levelName(m_level));
    compare("text", message.text, m_text);
    if (!m_file.isNull()) {
        compare("file", message.file, m_file);
        if (message.line <= 0) {
            differences.append("it has no line number");
        }
    }
    // Compilers write signatures differently; GCC's form is the reference.
#if defined(Q_CC_GNU) && !defined(Q_CC_CLANG)
    if (!m_function.isNull()) {
        compare("function", message.function, m_function);
    }
#endif
    if (!m_category.isNull()) {
        compare("category", message.category, m_category);
    }
    return differences.join(", ");
}

QString ExpectedMessage::description() const
{
    return QStringLiteral("%1 <%2>").arg(levelName(m_level), m_text);
}

MessageRecorder::MessageRecorder()
{
    Q_ASSERT(currentRecorder == nullptr);
    currentRecorder = this;
    m_previousHandler = qInstallMessageHandler(&MessageRecorder::handle);
}

MessageRecorder::~MessageRecorder()
{
    qInstallMessageHandler(m_previousHandler);
    currentRecorder = nullptr;
}

ExpectedMessage& MessageRecorder::expect(QtMsgType level, const QString& text)
{
    const QMutexLocker locker(&m_mutex);
    m_expected.append(ExpectedMessage(level, text));
    return m_expected.last();
}

ExpectedMessage& MessageRecorder::expectWarning(const char* fileName, const QString& text)
{
    return expect(QtWarningMsg, text).file(fileName).category("default");
}

QVector<Message> MessageRecorder::take()
{
    const QMutexLocker locker(&m_mutex);
    const QVector<Message> messages = m_messages;
    m_messages.clear();
    m_expected.clear();
    return messages;
}

QStringList MessageRecorder::takeProblems()
{
    const QMutexLocker locker(&m_mutex);
    QStringList problems;
    for (int i = 0; i < qMax(m_messages.size(), m_expected.size()); ++i) {
        if (i >= m_messages.size()) {
            problems.append(
                QStringLiteral("expected but not logged: %1").arg(m_expected.at(i).description()));
        } else if (i >= m_expected.size()) {
            problems.append(QStringLiteral("unexpected: %1").arg(m_messages.at(i).description()));
        } else {
            const QString difference = m_expected.at(i).difference(m_messages.at(i));
            if (!difference.isEmpty()) {
                problems.append(
                    QStringLiteral("message %1 differs: %2").arg(i + 1).arg(difference));
            }
        }
    }
    m_messages.clear();
    m_expected.clear();
    return problems;
}

void MessageRecorder::setObserver(const std::function<void(const Message&)>& observer)
{
    const QMutexLocker locker(&m_mutex);
    m_observer = observer;
}

void MessageRecorder::handle(QtMsgType level, const QMessageLogContext& context,
                             const QString& text)
{
    Message message;
    message.level = level;
    message.text = text;
    message.file = QString::fromLatin1(context.file);
    message.function = QString::fromLatin1(context.function);
    message.category = QString::fromLatin1(context.category);
    message.line = context.line;

    std::function<void(const Message&)> observer;
    {
        const QMutexLocker locker(&currentRecorder->m_mutex);
        currentRecorder->m_messages.append(message);
        observer = currentRecorder->m_observer;
    }
    // Without the lock, because the observer may log further messages.
    if (observer) {
        observer(message);
    }
}
