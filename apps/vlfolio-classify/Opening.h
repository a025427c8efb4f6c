#pragma once

#include "CommandLine.h"
#include "ProgramPlatform.h"

#include <QtCore/QString>

/// Opens what the program has written, the file \a path, as the command line says: where there is a
/// desktop only if it \a isTrusted. Says so when that fails, calling the file \a what. Returns
/// false if it failed and the user had asked for it.
[[nodiscard]] bool openWritten(ProgramPlatform& platform, const QString& what, const QString& path,
                               CommandLine::Opening opening, bool isTrusted);
