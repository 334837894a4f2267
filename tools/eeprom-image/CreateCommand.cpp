#include "CreateCommand.h"

#include "Arguments.h"
#include "HardwareInfoReader.h"
#include "ImageFormat.h"
#include "InPlace.h"
#include "common/CommandLine.h"
#include "common/WholeFile.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QtEndian>

#include <cstdio>

using namespace ImageFormat;

namespace {

// Much larger than any EEPROM, so that a typing error cannot fill the disk.
constexpr qint64 maxImageSize = qint64(16) * 1024 * 1024;

struct Layout
{
    qint64 start = headerEnd;
    std::optional<qint64> size;
    qint64 fill = 0xFF;
    bool mayOverlap = false;
};

struct Options
{
    const QCommandLineOption start{QStringLiteral("start"), QString(), QStringLiteral("ADDRESS")};
    const QCommandLineOption size{QStringLiteral("size"), QString(), QStringLiteral("BYTES")};
    const QCommandLineOption fill{QStringLiteral("fill"), QString(), QStringLiteral("BYTE")};
    const QCommandLineOption allowOverlap{QStringLiteral("allow-overlap")};
    const QCommandLineOption inPlace{QStringLiteral("in-place")};
};

std::optional<qint64> parseNumber(const QString& text, qint64 max)
{
    const bool isHexadecimal = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    bool ok = false;
    const qint64 number = text.toLongLong(&ok, isHexadecimal ? 16 : 10);
    if (!ok || number < 0 || number > max) {
        return std::nullopt;
    }
    return number;
}

// Returns an exit code if an option's value is not a number or is out of range.
std::optional<ExitCode> parseLayout(const QCommandLineParser& parser, const Options& options,
                                    Layout& layout)
{
    std::optional<qint64> start = layout.start;
    std::optional<qint64> fill = layout.fill;
    const struct
    {
        const QCommandLineOption& option;
        qint64 max;
        std::optional<qint64>& number;
    } numbers[] = {{options.start, 0xFFFFFFFF, start},
                   {options.size, 0xFFFFFFFF, layout.size},
                   {options.fill, 0xFF, fill}};
    for (const auto& [option, max, number] : numbers) {
        if (!parser.isSet(option)) {
            continue;
        }
        number = parseNumber(parser.value(option), max);
        if (!number) {
            return refuseUsage(
                QStringLiteral("--%1 must be a number from 0 to %2, not '%3'")
                    .arg(option.names().constFirst(), QString::number(max), parser.value(option)));
        }
    }
    layout.start = *start;
    layout.fill = *fill;
    layout.mayOverlap = parser.isSet(options.allowOverlap);
    return std::nullopt;
}

std::optional<QByteArray> readText(const QString& filePath)
{
    QFile file(filePath);
    const bool isOpen = filePath == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                       : file.open(QIODevice::ReadOnly);
    // One more byte than the limit shows whether it is exceeded.
    const QByteArray text = isOpen ? file.read(maxBlockSize + 1) : QByteArray();
    if (!isOpen || file.error() != QFileDevice::NoError) {
        CommandLine::printError(QStringLiteral("%1: %2").arg(filePath, file.errorString()));
        return std::nullopt;
    }
    return text;
}

qint64 smallestSize(const Layout& layout, const QByteArray& block)
{
    return qMax(headerEnd, layout.start + block.size());
}

bool blockOverlaps(const Layout& layout, const QByteArray& block, qint64 begin, qint64 end)
{
    return layout.start < end && layout.start + block.size() > begin && !block.isEmpty();
}

// Returns why such an image is impossible; empty if it is possible.
QString objection(const Layout& layout, const QByteArray& block)
{
    if (block.size() > maxBlockSize) {
        return QStringLiteral("the text is longer than the %1 bytes that a block may have")
            .arg(maxBlockSize);
    }
    if (blockOverlaps(layout, block, checksumField, checksumField + checksumSize)) {
        return QStringLiteral("the block would overlap its own checksum (bytes 32 and 33)");
    }
    if (!layout.mayOverlap && blockOverlaps(layout, block, headerAddress, headerEnd)) {
        return QStringLiteral("the block would overlap the header (bytes 20 to 35); to write it "
                              "nevertheless, use --allow-overlap");
    }
    const qint64 needed = smallestSize(layout, block);
    const qint64 size = layout.size.value_or(needed);
    if (size < needed) {
        return QStringLiteral("an image of %1 bytes is too small; this one needs %2")
            .arg(size)
            .arg(needed);
    }
    if (size > maxImageSize) {
        return QStringLiteral("an image of %1 bytes is too large; the limit is %2")
            .arg(size)
            .arg(maxImageSize);
    }
    return QString();
}

quint16 checksumOf(const QByteArray& block)
{
    return HardwareInfoReader(nullptr).checksumXModemCRC(block.constData(), uint(block.size()));
}

QByteArray buildImage(const Layout& layout, const QByteArray& block)
{
    const qint64 size = layout.size.value_or(smallestSize(layout, block));
    QByteArray image(int(size), char(layout.fill));
    const auto putWord = [&image](qint64 address, quint32 word) {
        const quint32 bytes = qToLittleEndian(word);
        image.replace(int(address), int(sizeof bytes), reinterpret_cast<const char*>(&bytes),
                      int(sizeof bytes));
    };
    image.replace(int(layout.start), block.size(), block);
    putWord(reservedField, 0);
    putWord(startAddressField, quint32(layout.start));
    putWord(lengthField, quint32(block.size()));
    putWord(checksumField, 0);
    // Of the bytes in the image: the header may have overwritten some of the text.
    putWord(checksumField, checksumOf(image.mid(int(layout.start), block.size())));
    return image;
}

// Replaces an existing image only after the new one has been written completely.
ExitCode replaceImage(const QString& filePath, const QByteArray& image)
{
    const QString error = WholeFile::replace(filePath, image);
    if (error.isEmpty()) {
        return ExitCode::Done;
    }
    CommandLine::printError(QStringLiteral("%1: %2").arg(filePath, error));
    const QFileInfo target(filePath);
    if (target.exists() && !target.isFile() && !target.isDir()) {
        CommandLine::printError(QStringLiteral("to write into a device, use --in-place"));
    }
    return ExitCode::CannotWriteImage;
}

void report(const QString& filePath, const Layout& layout, const QByteArray& block,
            const QByteArray& image)
{
    const quint16 checksum = qFromLittleEndian<quint16>(image.constData() + checksumField);
    CommandLine::print(
        QStringLiteral("%1: %2 bytes written").arg(filePath, QString::number(image.size())));
    CommandLine::print(QStringLiteral("  block     %1 bytes from address %2 (0x%3)")
                           .arg(block.size())
                           .arg(layout.start)
                           .arg(layout.start, 0, 16));
    CommandLine::print(QStringLiteral("  checksum  0x%1").arg(checksum, 4, 16, QLatin1Char('0')));
}

} // namespace

ExitCode createImage(const QStringList& arguments)
{
    const Options options;
    QCommandLineParser parser;
    parser.addOptions(
        {options.start, options.size, options.fill, options.allowOverlap, options.inPlace});
    if (const auto exitCode = parseArguments(parser, arguments, 2)) {
        return *exitCode;
    }
    Layout layout;
    if (const auto exitCode = parseLayout(parser, options, layout)) {
        return *exitCode;
    }

    const QStringList files = parser.positionalArguments();
    const auto block = readText(files.at(0));
    if (!block) {
        return ExitCode::CannotReadText;
    }
    const QString reason = objection(layout, *block);
    if (!reason.isEmpty()) {
        CommandLine::printError(QStringLiteral("%1: %2").arg(files.at(1), reason));
        return ExitCode::LayoutRefused;
    }
    const QByteArray image = buildImage(layout, *block);
    if (WholeFile::isStandardOutput(files.at(1))) {
        CommandLine::write(image);
        return ExitCode::Done;
    }
    const bool isInPlace = parser.isSet(options.inPlace) || InPlace::isEeprom(files.at(1));
    const ExitCode exitCode =
        isInPlace ? InPlace::write(files.at(1), image) : replaceImage(files.at(1), image);
    if (exitCode == ExitCode::Done) {
        report(files.at(1), layout, *block, image);
    }
    return exitCode;
}
