#include "VerifyCommand.h"

#include "Arguments.h"
#include "ImageFile.h"
#include "ImageFormat.h"
#include "common/CommandLine.h"

#include <QtCore/QCommandLineParser>

namespace {

void printLayout(const QString& filePath, const ImageFile& image)
{
    CommandLine::print(QStringLiteral("%1: the image is valid").arg(filePath));
    CommandLine::print(QStringLiteral("  header    ") +
                       ImageFile::range(ImageFormat::headerAddress, ImageFormat::headerSize));
    CommandLine::print(QStringLiteral("  block     ") +
                       ImageFile::range(image.startAddress(), image.length()));
    CommandLine::print(
        QStringLiteral("  checksum  0x%1").arg(image.storedChecksum(), 4, 16, QLatin1Char('0')));
}

} // namespace

ExitCode verifyImage(const QStringList& arguments)
{
    QCommandLineParser parser;
    if (const auto exitCode = parseArguments(parser, arguments, 1)) {
        return *exitCode;
    }
    const QString filePath = parser.positionalArguments().constFirst();
    const ImageFile image(filePath);
    if (image.verdict() == ExitCode::Done) {
        printLayout(filePath, image);
        return ExitCode::Done;
    }
    return refuseImage(filePath, image.verdict(), image.error());
}
