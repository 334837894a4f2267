#include "LibraryMessages.h"

#include "CommandLine.h"

#include <algorithm>

LibraryMessages* LibraryMessages::s_current = nullptr;

LibraryMessages::LibraryMessages(bool isVerbose)
    : m_isVerbose(isVerbose), m_previousHandler(qInstallMessageHandler(&LibraryMessages::handle))
{
    s_current = this;
}

LibraryMessages::~LibraryMessages()
{
    qInstallMessageHandler(m_previousHandler);
    s_current = nullptr;
}

bool LibraryMessages::anyStartsWith(const QString& text) const
{
    return std::any_of(m_texts.cbegin(), m_texts.cend(),
                       [&text](const QString& message) { return message.startsWith(text); });
}

bool LibraryMessages::anyContains(const QString& text) const
{
    return !m_texts.filter(text).isEmpty();
}

void LibraryMessages::handle(QtMsgType, const QMessageLogContext&, const QString& text)
{
    s_current->m_texts.append(text);
    if (s_current->m_isVerbose) {
        printError(QStringLiteral("library: ") + text);
    }
}
