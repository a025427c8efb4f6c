#pragma once

#include "CommandLine.h"
#include "ProgramPlatform.h"

#include <QtCore/QString>

/// Opens the file at \a path, which the program has written, as \a opening says: with
/// Opening::Desktop, only if there is a desktop and the file \a isTrusted. If that fails, a message
/// on standard error says so and calls the file \a what. Returns false if opening failed although
/// the user has asked for it.
[[nodiscard]] bool openWritten(ProgramPlatform& platform, const QString& what, const QString& path,
                               CommandLine::Opening opening, bool isTrusted);
