#include "TemporaryPath.h"

#include "CommandLine.h"

// Does not use QDir::tempPath(), which returns the root directory if TMPDIR does not exist.
QString TemporaryPath::pattern()
{
    const QString directory = qEnvironmentVariable("TMPDIR");
    return (directory.isEmpty() ? QStringLiteral("/tmp") : directory) + QLatin1Char('/') +
           CommandLine::programName() + QStringLiteral(".XXXXXX");
}
