#pragma once

#include "CommandLine.h"
#include "ProgramPlatform.h"

#include <QtCore/QString>

/// Opens the file at \a path, which the program has written, if \a opening asks for it: with
/// Opening::Desktop, only where there is a desktop and the file \a isTrusted. When that fails, a
/// message on standard error says so and calls the file \a what. Returns false if opening failed
/// and was asked for by the user.
[[nodiscard]] bool openWritten(ProgramPlatform& platform, const QString& what, const QString& path,
                               CommandLine::Opening opening, bool isTrusted);
