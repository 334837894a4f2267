#ifndef EXAMPLES_COMMANDLINE_H
#define EXAMPLES_COMMANDLINE_H

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

// A result, on standard output.
void print(const QString& line);

// Trouble, on standard error, with the program's name in front.
void complain(const QString& trouble);
void complainOfUsage(const QString& trouble);

// Reads a whole number from 1 upwards; tells whether text is one.
bool readPositive(const QString& text, int& number);

} // namespace CommandLine

#endif
