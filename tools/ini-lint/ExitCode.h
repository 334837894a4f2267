#ifndef TOOLS_INILINT_EXITCODE_H
#define TOOLS_INILINT_EXITCODE_H

// Scripts rely on these numbers, which --help documents: they must not change.
enum ExitCode
{
    NothingFound = 0,
    SomethingFound = 1,
    Failed = 2 // wrong usage, or a file that cannot be read or written
};

#endif
