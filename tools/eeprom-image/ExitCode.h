#ifndef TOOLS_EEPROMIMAGE_EXITCODE_H
#define TOOLS_EEPROMIMAGE_EXITCODE_H

// Scripts rely on these numbers, which --help documents: they must not change.
enum class ExitCode
{
    Done = 0,
    WrongUsage = 1,
    CannotReadText = 2,
    LayoutRefused = 3,
    CannotWriteImage = 4,
    OutputLost = 5,
    ReadBackDiffers = 6,
    Interrupted = 7,
    NoSuchImage = 10,
    CannotOpenImage = 11,
    HeaderShort = 12,
    StartAddressUnreachable = 13,
    LengthOverLimit = 14,
    BlockShort = 15,
    ChecksumWrong = 16,
    BlockEmpty = 17,
    CannotParseBlock = 18,
    UnknownFailure = 19
};

#endif
