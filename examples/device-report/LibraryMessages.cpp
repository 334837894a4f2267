#include "LibraryMessages.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <cstdio>

namespace {

int messageCount = 0;
bool messagesAreShown = false;

void handle(QtMsgType /*level*/, const QMessageLogContext& context, const QString& text)
{
    ++messageCount;
    if (messagesAreShown) {
        fprintf(stderr, "%s: %s\n", context.file == nullptr ? "Qt" : context.file,
                text.toUtf8().constData());
    }
}

} // namespace

void LibraryMessages::take(bool areShown)
{
    messagesAreShown = areShown;
    qInstallMessageHandler(&handle);
}

int LibraryMessages::count()
{
    return messageCount;
}
