#include "TemporaryPath.h"

#include "CommandLine.h"

// Not by QDir::tempPath(): for a TMPDIR that is none it gives the root of the file system, which
// must not be written to.
QString TemporaryPath::pattern()
{
    const QString directory = qEnvironmentVariable("TMPDIR");
    return (directory.isEmpty() ? QStringLiteral("/tmp") : directory) + QLatin1Char('/') +
           CommandLine::programName() + QStringLiteral(".XXXXXX");
}
