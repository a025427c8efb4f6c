#pragma once

#include "CommandLine.h"

#include <QtCore/QString>

/// The command that writes the page to look at.
namespace PageCommand {

/// Classifies the folders below \a rootPath, writes the page to the file that the command line
/// names, prints its path and opens it as the command line says. Returns the program's exit code.
[[nodiscard]] int run(const CommandLine& commandLine, const QString& rootPath);

} // namespace PageCommand
