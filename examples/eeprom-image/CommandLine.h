#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include "ExitCode.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

class QCommandLineParser;

// Results go to standard output, everything else to standard error.
void print(const QString& line);
void printError(const QString& line);

ExitCode printHelp();
ExitCode printVersion();
ExitCode refuseUsage(const QString& reason);

/*
 * Parses a command's arguments, the first of which is the program's name. Gives an exit code when
 * the program is done: help was asked for, or the arguments are wrong.
 */
std::optional<ExitCode> parseArguments(QCommandLineParser& parser, const QStringList& arguments,
                                       int fileCount);

#endif
