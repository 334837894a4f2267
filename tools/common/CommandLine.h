#ifndef TOOLS_COMMON_COMMANDLINE_H
#define TOOLS_COMMON_COMMANDLINE_H

#include <QtCore/QByteArray>
#include <QtCore/QCommandLineOption>
#include <QtCore/QString>

// What every program says and reads the same way.
namespace CommandLine {

// The options --verbose, for LibraryMessages::take(), --help and --version.
const QCommandLineOption& verboseOption();
const QCommandLineOption& helpOption();
const QCommandLineOption& versionOption();

// The program's name; the same with the version, on standard output.
QString programName();
void printVersion();

// Text that stays on its line whatever it holds: a file's name may contain line feeds and the
// commands of a terminal. They are shown as \x0a and the like.
QString printable(const QString& text);

// A result, on standard output. Off a terminal it may wait in a buffer for flush() or end().
void print(const QString& line);
void write(const QByteArray& bytes);
void flush();

// Whether results may be colored: standard output is a terminal that knows colors, and the
// environment variable NO_COLOR is not set or empty.
bool isColored();

// For a program with an event loop: flushes whenever the loop waits.
void flushBeforeWaiting();

// The last call of a program: returns exitCode, or lostOutput with a complaint when standard output
// did not take everything. A reader that closes the pipe early has what it wanted: no complaint.
int end(int exitCode, int lostOutput);

// Trouble, on standard error, with the program's name in front.
void complain(const QString& trouble);
void complainOfUsage(const QString& trouble);

// Reads a whole number from 1 upwards; tells whether text is one.
bool readPositive(const QString& text, int& number);

} // namespace CommandLine

#endif
