#include "DumpCommand.h"

#include "Arguments.h"
#include "ImageFile.h"
#include "ImageFormat.h"
#include "common/CommandLine.h"

#include <QtCore/QCommandLineParser>

#include <algorithm>

using namespace ImageFormat;

namespace {

QString number(quint32 value)
{
    return QStringLiteral("%1 (0x%2)").arg(value).arg(value, 0, 16);
}

QString checksum(quint16 value)
{
    return QStringLiteral("0x%1").arg(value, 4, 16, QLatin1Char('0'));
}

// Compares the stored checksum with that of the block.
QString checksumVerdict(const ImageFile& image)
{
    const auto calculated = image.calculatedChecksum();
    const QString stored = checksum(image.storedChecksum()) + QStringLiteral(" stored, ");
    if (!calculated) {
        return stored + QStringLiteral("not calculated: the block is incomplete");
    }
    return stored + checksum(*calculated) + QStringLiteral(" calculated: ") +
           (*calculated == image.storedChecksum() ? QStringLiteral("correct")
                                                  : QStringLiteral("wrong"));
}

// Prints a line for a header field; a truncated field has no meaning.
void printField(const ImageFile& image, qint64 address, int size, const char* name,
                const QString& meaning)
{
    const QByteArray bytes = image.field(address, size);
    // The address in hexadecimal, as for the block, and in decimal, as in messages.
    CommandLine::print(QStringLiteral("  %1  %2  %3  %4  %5")
                           .arg(address, 4, 16, QLatin1Char('0'))
                           .arg(address)
                           .arg(QString::fromLatin1(bytes.toHex(' ')), -11)
                           .arg(QLatin1String(name), -13)
                           .arg(bytes.size() == size ? meaning : QStringLiteral("missing")));
}

void printHeader(const ImageFile& image)
{
    const QString notEvaluated = QStringLiteral("not evaluated");
    CommandLine::print(QStringLiteral("Header, ") + ImageFile::range(headerAddress, headerSize));
    printField(image, reservedField, 4, "reserved", notEvaluated);
    printField(image, startAddressField, 4, "start address", number(image.startAddress()));
    printField(image, lengthField, 4, "length", number(image.length()));
    printField(image, checksumField, int(checksumSize), "checksum", checksumVerdict(image));
    printField(image, unusedField, int(headerEnd - unusedField), "unused", notEvaluated);
}

// Returns the character that represents a byte at the end of a line.
char shownCharacter(char byte)
{
    return byte >= ' ' && byte <= '~' ? byte : '.';
}

void printBlock(const ImageFile& image)
{
    constexpr int bytesPerLine = 16;

    const QByteArray block = image.block();
    CommandLine::print(QStringLiteral("Block, ") +
                       ImageFile::range(image.startAddress(), block.size()));
    for (int position = 0; position < block.size(); position += bytesPerLine) {
        QByteArray line = block.mid(position, bytesPerLine);
        const QString hexadecimal = QString::fromLatin1(line.toHex(' '));
        std::transform(line.cbegin(), line.cend(), line.begin(), shownCharacter);
        CommandLine::print(
            QStringLiteral("  %1  %2  |%3|")
                .arg(image.startAddress() + quint32(position), 4, 16, QLatin1Char('0'))
                .arg(hexadecimal, -(3 * bytesPerLine - 1))
                .arg(QString::fromLatin1(line)));
    }
}

} // namespace

ExitCode dumpImage(const QStringList& arguments)
{
    QCommandLineParser parser;
    if (const auto exitCode = parseArguments(parser, arguments, 1)) {
        return *exitCode;
    }
    const QString filePath = parser.positionalArguments().constFirst();
    const ImageFile image(filePath);
    if (image.isRead()) {
        printHeader(image);
        if (image.hasHeader()) {
            printBlock(image);
        }
    }
    return image.verdict() == ExitCode::Done
               ? ExitCode::Done
               : refuseImage(filePath, image.verdict(), image.error());
}
