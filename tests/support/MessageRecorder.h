#ifndef TESTS_MESSAGERECORDER_H
#define TESTS_MESSAGERECORDER_H

#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtCore/QtGlobal>

#include <functional>

// One log message as a message handler receives it.
struct Message
{
    QtMsgType level = QtDebugMsg;
    QString text;
    QString file;
    QString function;
    QString category;
    int line = 0;

    QString description() const;
};

// A message that a test expects. Properties that are not specified are not compared.
class ExpectedMessage
{
public:
    ExpectedMessage() = default;
    ExpectedMessage(QtMsgType level, const QString& text);

    ExpectedMessage& file(const char* name);
    ExpectedMessage& function(const char* signature);
    ExpectedMessage& category(const char* name);

    // The differences between the expected and the actual message; empty if there are none.
    QString difference(const Message& message) const;
    QString description() const;

private:
    QtMsgType m_level = QtDebugMsg;
    QString m_text;
    QString m_file;
    QString m_function;
    QString m_category;
};

/*
 * Records every message of the process during its lifetime. The messages must be exactly the
 * expected ones, in the expected order: an unexpected message is a problem, and so is an expected
 * one that was not logged. Messages may come from any thread.
 */
class MessageRecorder
{
public:
    MessageRecorder();
    ~MessageRecorder();

    // Expects a message after those expected so far. The reference is valid until the next call.
    ExpectedMessage& expect(QtMsgType level, const QString& text);

    // Expects a warning from the library's source file (and class) fileName.
    ExpectedMessage& expectWarning(const char* fileName, const QString& text);

    // Returns all messages since the last call; forgets them and the expected ones.
    QVector<Message> take();

    // Describes each deviation from the expected messages; forgets all messages.
    QStringList takeProblems();

    // Called for every message in the thread that logs it, after it was recorded.
    void setObserver(const std::function<void(const Message&)>& observer);

private:
    Q_DISABLE_COPY(MessageRecorder)

    static void handle(QtMsgType level, const QMessageLogContext& context, const QString& text);

    QMutex m_mutex;
    QVector<Message> m_messages;
    QVector<ExpectedMessage> m_expected;
    std::function<void(const Message&)> m_observer;
    QtMessageHandler m_previousHandler;
};

#endif
