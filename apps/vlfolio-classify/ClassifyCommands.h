#pragma once

#include "CommandLine.h"

#include <QtCore/QString>

/// The commands that print and write no file. Each returns the program's exit code.
namespace ClassifyCommands {

/// Prints the folders below \a rootPath as --list, --json or --summary says.
[[nodiscard]] int printFolders(const CommandLine& commandLine, const QString& rootPath);

/// Prints for each name in the operands what it is by itself.
[[nodiscard]] int explain(const CommandLine& commandLine);

/// Prints the names that --locale takes.
[[nodiscard]] int printLocales();

} // namespace ClassifyCommands
