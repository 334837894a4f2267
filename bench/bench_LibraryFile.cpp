#include "support/Counting.h"
#include "support/Program.h"
#include "support/Workspace.h"

#include <QtCore/QFileInfo>
#include <QtCore/QProcess>

#include <spawn.h>
#include <sys/wait.h>

namespace {

// The program's exit code; without what QProcess adds.
int start(const char* program)
{
    pid_t child = 0;
    char* arguments[] = {const_cast<char*>(program), nullptr};
    int status = 0;
    if (posix_spawn(&child, program, nullptr, nullptr, arguments, environ) != 0 ||
        waitpid(child, &status, 0) != child) {
        qFatal("cannot start %s", program);
    }
    return status;
}

void addStart(Contenders& contenders)
{
    contenders.subject([] { return start(BENCH_EMPTY_PROGRAM_WITH_LIBRARY); }, equals(0));
    contenders
        .peer(
            QStringLiteral("the same without the library"),
            [] { return start(BENCH_EMPTY_PROGRAM); }, equals(0))
        .atMost(1.01);
    contenders.peer(
        QStringLiteral("the same with an empty library"),
        [] { return start(BENCH_EMPTY_PROGRAM_WITH_EMPTY_LIBRARY); }, equals(0));
}

// What the loader does for a library, and the library at start.
qint64 instructionsAddedIn(const char* program)
{
    return Counting::instructionsOf(QString::fromLocal8Bit(program)) -
           Counting::instructionsOf(QStringLiteral(BENCH_EMPTY_PROGRAM));
}

qint64 strippedSize()
{
    const QString stripped = Workspace::path(QStringLiteral("stripped"));
    if (QProcess::execute(QStringLiteral("strip"), {QStringLiteral("-o"), stripped,
                                                    QStringLiteral(BENCH_LIBRARY_FILE)}) != 0) {
        qFatal("cannot strip the library");
    }
    return QFileInfo(stripped).size();
}

Operations operations()
{
    return {
        Operation(QStringLiteral("start of an empty Qt program"), addStart)
            .inTable()
            .measured(Measure::Instructions,
                      [] { return instructionsAddedIn(BENCH_EMPTY_PROGRAM_WITH_LIBRARY); })
            .measured(Measure::FileSize, strippedSize)
            .limit(Measure::FileSize, BENCH_STRIPPED_SIZE_LIMIT),
        Operation(QStringLiteral("start with an empty library"), [](Contenders&) {})
            .measured(Measure::Instructions,
                      [] { return instructionsAddedIn(BENCH_EMPTY_PROGRAM_WITH_EMPTY_LIBRARY); }),
    };
}

} // namespace

int main(int argc, char* argv[])
{
    return Program::run(argc, argv, operations());
}
