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

// Says what is wrong with an image; gives exitCode.
ExitCode refuseImage(const QString& filePath, ExitCode exitCode, const QString& trouble);

/*
 * Parses a command's arguments, the first of which is the program's name. Gives an exit code when
 * the program is done: help was asked for, or the arguments are wrong.
 */
std::optional<ExitCode> parseArguments(QCommandLineParser& parser, const QStringList& arguments,
                                       int fileCount);

#endif
