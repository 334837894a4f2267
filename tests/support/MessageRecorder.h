#ifndef TESTS_MESSAGERECORDER_H
#define TESTS_MESSAGERECORDER_H

#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtCore/QtGlobal>

#include <functional>

// One log message as a message handler sees it.
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

// A message that a test announces. What is not pinned is not compared, except that an expectation
// without a file also takes messages of Qt itself.
class ExpectedMessage
{
public:
    ExpectedMessage() = default;
    ExpectedMessage(QtMsgType level, const QString& text);

    ExpectedMessage& file(const char* name);
    ExpectedMessage& function(const char* signature);
    ExpectedMessage& category(const char* name);

    // What differs between the announced and the real message; empty when nothing does.
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
 * Takes every message of the process while it lives. Messages must come exactly as announced, in
 * the announced order: one that was not announced is a problem, and so is an announced one that
 * never came. Messages may come from any thread.
 */
class MessageRecorder
{
public:
    MessageRecorder();
    ~MessageRecorder();

    // Announces the next message. The reference is valid until the next announcement.
    ExpectedMessage& expect(QtMsgType level, const QString& text);

    // A warning of the library's source file (and class) fileName.
    ExpectedMessage& expectWarning(const char* fileName, const QString& text);

    // All messages since the last call, and forgets them and what was announced.
    QVector<Message> take();

    // Each deviation from what was announced, in words; forgets all.
    QStringList takeProblems();

    // Called for every message, in the thread that makes it, after it was recorded.
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
