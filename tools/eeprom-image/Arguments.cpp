#include "Arguments.h"

#include "common/CommandLine.h"

#include <QtCore/QCommandLineParser>

namespace {

constexpr char help[] =
    R"(Writes, reads and checks EEPROM images with the hardware record of a board.

Usage:
  eeprom-image create [--start ADDRESS] [--size BYTES] [--fill BYTE] [--allow-overlap]
                      [--in-place] INI-FILE IMAGE
  eeprom-image show [--json] [--verbose] IMAGE
  eeprom-image verify IMAGE
  eeprom-image dump IMAGE
  eeprom-image extract IMAGE
  eeprom-image --help | --version

create  writes IMAGE, with the text of INI-FILE as its block, a header that points to the block,
        and the checksum. Numbers are decimal, or hexadecimal after 0x. INI-FILE may be - for
        standard input, IMAGE - for standard output. A file is replaced completely and keeps its
        owner and mode. An EEPROM of this machine, in /sys, is written page by page and read
        back. Any other existing file that is not a regular file is refused.
  --start ADDRESS   the start address of the block (default: 36, directly after the header)
  --size BYTES      the size of the image (default: the smallest possible size)
  --fill BYTE       the value of unused bytes (default: 0xFF)
  --allow-overlap   write even a block that overlaps the header; the header's bytes take
                    precedence. A block that overlaps its own checksum (bytes 32 and 33) is still
                    refused.
  --in-place        write into the file or device IMAGE as into an EEPROM: bytes after the end of
                    the image are unchanged

show    prints the record of IMAGE, which may be the file that the kernel provides for the EEPROM
        of this machine. Only the directory for temporary files must be writable.
  --json            print one JSON object; a missing or empty value is null
  --verbose         print the library's log messages on standard error

verify  checks header, length and checksum of IMAGE without parsing the block. It prints where
        they are, or what is wrong and at which bytes, and writes no files.

dump    prints the fields of the header, the stored and the calculated checksum, and the bytes of
        the block as far as they exist. A damaged image is printed, too; standard error says what
        is wrong with it.

extract prints the INI text of IMAGE, byte for byte, if the image is valid.

Options of every command:
  -h, --help        show this help
  -v, --version     show the version

Exit codes:
   0  success; the image is valid
   1  wrong usage
   5  the output could not be written
create:
   2  INI-FILE cannot be read
   3  the layout is refused: block too long, image too small or too large, header overlapped
   4  IMAGE cannot be written
   6  IMAGE was written in place, but the data read back differs
   7  interrupted while writing in place; a message says which bytes are new
show, verify, dump and extract:
  10  the image does not exist
  11  the image cannot be opened
  12  the header is truncated
  13  the start address cannot be reached
  14  the length exceeds the limit of 65535 bytes
  15  the block is truncated
  16  the checksum is wrong
  17  the block is empty
  18  the block is valid but could not be parsed (show only)
  19  any other failure (show only)
)";

} // namespace

ExitCode printHelp()
{
    CommandLine::print(QString::fromLatin1(help).trimmed());
    return ExitCode::Done;
}

ExitCode printVersion()
{
    CommandLine::printVersion();
    return ExitCode::Done;
}

ExitCode refuseUsage(const QString& reason)
{
    CommandLine::printUsageError(reason);
    return ExitCode::WrongUsage;
}

ExitCode refuseImage(const QString& filePath, ExitCode exitCode, const QString& error)
{
    CommandLine::printError(QStringLiteral("%1: %2").arg(filePath, error));
    return exitCode;
}

std::optional<ExitCode> parseArguments(QCommandLineParser& parser, const QStringList& arguments,
                                       int fileCount)
{
    const QCommandLineOption helpOption = parser.addHelpOption();
    const QCommandLineOption versionOption = parser.addVersionOption();
    if (!parser.parse(arguments)) {
        return refuseUsage(parser.errorText());
    }
    if (parser.isSet(helpOption)) {
        return printHelp();
    }
    if (parser.isSet(versionOption)) {
        return printVersion();
    }
    if (parser.positionalArguments().size() != fileCount) {
        return refuseUsage(QStringLiteral("this command requires %1 file name(s), not %2")
                               .arg(fileCount)
                               .arg(parser.positionalArguments().size()));
    }
    return std::nullopt;
}
