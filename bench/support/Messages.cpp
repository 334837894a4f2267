#include "Messages.h"

#include <QtCore/QtGlobal>

#include <cstdio>

namespace {

int theCount = 0;
QString theLast;

void handle(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    }
    ++theCount;
    theLast = text;
}

} // namespace

void Messages::take()
{
    qInstallMessageHandler(&handle);
}

void Messages::forget()
{
    theCount = 0;
    theLast.clear();
}

int Messages::count()
{
    return theCount;
}

QString Messages::last()
{
    return theLast;
}
