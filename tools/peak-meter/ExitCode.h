#ifndef TOOLS_PEAKMETER_EXITCODE_H
#define TOOLS_PEAKMETER_EXITCODE_H

// Scripts rely on these numbers, which --help documents: they must not change.
enum ExitCode
{
    AllTaken = 0,
    LinesRefused = 1,
    WrongUsage = 2,
    NotRestored = 3,
    NotSaved = 4,
    InputError = 5,
    OutputLost = 6
};

#endif
