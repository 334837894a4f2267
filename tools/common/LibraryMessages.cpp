#include "LibraryMessages.h"

#include "CommandLine.h"

#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

#include <algorithm>

namespace {

struct State
{
    bool areShown = false;
    QStringList texts;
};

State& state()
{
    static State theState;
    return theState;
}

void handle(QtMsgType /*type*/, const QMessageLogContext& context, const QString& text)
{
    state().texts.append(text);
    if (state().areShown) {
        CommandLine::printError(
            QStringLiteral("log: %1: %2")
                .arg(QLatin1String(context.file != nullptr ? context.file : "Qt"), text));
    }
}

} // namespace

void LibraryMessages::capture(bool areShown)
{
    state().areShown = areShown;
    qInstallMessageHandler(&handle);
}

int LibraryMessages::count()
{
    return state().texts.size();
}

bool LibraryMessages::anyStartsWith(const QString& text)
{
    const QStringList& texts = state().texts;
    return std::any_of(texts.cbegin(), texts.cend(),
                       [&text](const QString& message) { return message.startsWith(text); });
}

bool LibraryMessages::anyContains(const QString& text)
{
    return !state().texts.filter(text).isEmpty();
}

bool LibraryMessages::indicateErasedEeprom()
{
    return anyStartsWith(QStringLiteral("Seek to start addr 4294967295 failed")) ||
           anyStartsWith(QStringLiteral("Max. number of bytes for INI file exceeded "
                                        "(bytesToRead field = 4294967295 ,"));
}
