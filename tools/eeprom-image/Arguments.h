#ifndef TOOLS_EEPROMIMAGE_ARGUMENTS_H
#define TOOLS_EEPROMIMAGE_ARGUMENTS_H

#include "ExitCode.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

class QCommandLineParser;

ExitCode printHelp();
ExitCode printVersion();
ExitCode refuseUsage(const QString& reason);

// Prints what is wrong with an image and returns exitCode.
ExitCode refuseImage(const QString& filePath, ExitCode exitCode, const QString& error);

/*
 * Parses a command's arguments, the first of which is the program's name. Returns an exit code if
 * the program must exit: help or the version was requested, or the arguments are invalid.
 */
std::optional<ExitCode> parseArguments(QCommandLineParser& parser, const QStringList& arguments,
                                       int fileCount);

#endif
