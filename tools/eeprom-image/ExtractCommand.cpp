#include "ExtractCommand.h"

#include "Arguments.h"
#include "ImageFile.h"
#include "common/CommandLine.h"

#include <QtCore/QCommandLineParser>

ExitCode extractText(const QStringList& arguments)
{
    QCommandLineParser parser;
    if (const auto exitCode = parseArguments(parser, arguments, 1)) {
        return *exitCode;
    }
    const QString filePath = parser.positionalArguments().constFirst();
    const ImageFile image(filePath);
    if (image.verdict() != ExitCode::Done) {
        return refuseImage(filePath, image.verdict(), image.error());
    }
    CommandLine::write(image.block());
    return ExitCode::Done;
}
