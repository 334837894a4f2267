#ifndef TOOLS_COMMON_COMMANDLINE_H
#define TOOLS_COMMON_COMMANDLINE_H

#include <QtCore/QByteArray>
#include <QtCore/QCommandLineOption>
#include <QtCore/QString>

// The common parts of the command-line interfaces.
namespace CommandLine {

// The options --verbose (see LibraryMessages::capture()), --help and --version.
const QCommandLineOption& verboseOption();
const QCommandLineOption& helpOption();
const QCommandLineOption& versionOption();

// Returns the program's name; prints it with the version on standard output.
QString programName();
void printVersion();

// Returns text with control characters escaped as \x0a and the like: a file name may contain line
// feeds and terminal escape sequences.
QString printable(const QString& text);

// Print results on standard output. Unless that is a terminal, they are buffered until flush() or
// end().
void print(const QString& line);
void write(const QByteArray& bytes);
void flush();

// Whether results may be colored: standard output is a terminal that supports colors, and the
// environment variable NO_COLOR is not set or empty.
bool isColored();

// For a program with an event loop: flushes before the loop waits.
void flushBeforeWaiting();

// The last call of a program: returns exitCode. If standard output could not be written, prints an
// error and returns lostOutput, unless the reader has closed the pipe.
int end(int exitCode, int lostOutput);

// Print an error on standard error, after the program's name.
void printError(const QString& error);
void printUsageError(const QString& error);

// Parses an integer from 1 up. Returns false if text is anything else.
bool readPositive(const QString& text, int& number);

} // namespace CommandLine

#endif
