#include "Arguments.h"

#include "common/CommandLine.h"

#include <QtCore/QCommandLineParser>

namespace {

constexpr char help[] =
    R"(Writes, reads and checks EEPROM images that hold the hardware record of a board.

Usage:
  eeprom-image create [--start ADDRESS] [--size BYTES] [--fill BYTE] [--allow-overlap]
                      [--in-place] INI-FILE IMAGE
  eeprom-image show [--json] [--verbose] IMAGE
  eeprom-image verify IMAGE
  eeprom-image dump IMAGE
  eeprom-image extract IMAGE
  eeprom-image --help | --version

create  writes IMAGE, which holds the text of INI-FILE as its block, a header that points at the
        block, and the checksum. Numbers are decimal, or hexadecimal after 0x. INI-FILE may be -
        for standard input, IMAGE - for standard output. A file is replaced as a whole and keeps
        its owner and mode; into an EEPROM of this machine, in /sys, the image is written page by
        page and read back. Whatever else is no regular file is refused.
  --start ADDRESS   where the block starts; 36, right after the header, when not given
  --size BYTES      the size of the image; as small as can be when not given
  --fill BYTE       what stands where nothing else does; 0xFF when not given
  --allow-overlap   write even a block that overlaps the header; the header's bytes win. A block
                    over its own checksum (bytes 32 and 33) is refused all the same.
  --in-place        write into the file or device IMAGE as into an EEPROM: bytes after the end of
                    the image stay

show    prints the record of IMAGE, which may be the file that the kernel shows for the EEPROM
        of this machine. Only the directory for temporary files must be writable.
  --json            print one JSON object; what is missing or empty is null
  --verbose         show on standard error what the library logs

verify  checks header, length and checksum of IMAGE without parsing its block; says where they
        stand, or what is wrong and at which bytes. It writes nothing anywhere.

dump    prints the header of IMAGE field by field, the checksum stored and the one calculated, and
        the bytes of the block, as many as are there. A damaged image is printed, too; what is
        wrong with it follows on standard error.

extract prints the INI text of IMAGE, byte for byte, if the image is valid.

Every command knows:
  -h, --help        show this help
  -v, --version     show the version

Exit codes:
   0  done; the image is valid
   1  wrong usage
   5  the output could not be written
create:
   2  INI-FILE cannot be read
   3  the layout is refused: block too long, image too small or too large, header overlapped
   4  IMAGE cannot be written
   6  IMAGE was written in place, but reads back otherwise
   7  interrupted while writing in place; a message says which bytes are new
show, verify, dump and extract:
  10  there is no such image
  11  the image cannot be opened
  12  the header is cut short
  13  the start address cannot be reached
  14  the length is over the limit of 65535 bytes
  15  the block is cut short
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
    CommandLine::complainOfUsage(reason);
    return ExitCode::WrongUsage;
}

ExitCode refuseImage(const QString& filePath, ExitCode exitCode, const QString& trouble)
{
    CommandLine::complain(QStringLiteral("%1: %2").arg(filePath, trouble));
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
        return refuseUsage(QStringLiteral("this command needs %1 file name(s), not %2")
                               .arg(fileCount)
                               .arg(parser.positionalArguments().size()));
    }
    return std::nullopt;
}
