#pragma once

#include "CommandLine.h"

#include <QtCore/QString>

/// The command that writes the report.
namespace ReportCommand {

/// Classifies the folders below \a rootPath, writes the report, prints its path and opens it as the
/// command line says. An old report stays until the new one is whole. Returns the program's exit
/// code.
[[nodiscard]] int run(const CommandLine& commandLine, const QString& rootPath);

} // namespace ReportCommand
