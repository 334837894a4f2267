#include "LibraryLog.h"

#include "common/CommandLine.h"

#include <QtCore/QtGlobal>

namespace {

struct State
{
    bool isVerbose = false;
    QString lastText;
};

State& state()
{
    static State theState;
    return theState;
}

void handle(QtMsgType, const QMessageLogContext& context, const QString& text)
{
    state().lastText = text;
    if (state().isVerbose) {
        CommandLine::complain(
            QStringLiteral("log: %1: %2")
                .arg(QLatin1String(context.file != nullptr ? context.file : "Qt"), text));
    }
}

} // namespace

void LibraryLog::install(bool isVerbose)
{
    state().isVerbose = isVerbose;
    qInstallMessageHandler(handle);
}

QString LibraryLog::lastText()
{
    return state().lastText;
}
