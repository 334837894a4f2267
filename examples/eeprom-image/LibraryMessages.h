#ifndef LIBRARYMESSAGES_H
#define LIBRARYMESSAGES_H

#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

/*
 * Keeps what the library logs while it lives. The library tells the kind of a failure in its
 * messages only, and their texts are fixed.
 */
class LibraryMessages
{
public:
    // A verbose one also writes each message to standard error.
    explicit LibraryMessages(bool isVerbose);
    ~LibraryMessages();

    // Whether a message begins with, or holds, this text.
    bool anyStartsWith(const QString& text) const;
    bool anyContains(const QString& text) const;

private:
    Q_DISABLE_COPY(LibraryMessages)

    static void handle(QtMsgType level, const QMessageLogContext& context, const QString& text);

    static LibraryMessages* s_current;

    const bool m_isVerbose;
    const QtMessageHandler m_previousHandler;
    QStringList m_texts;
};

#endif
