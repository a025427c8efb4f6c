#pragma once

#include <QtCore/QString>

/// Paths as they are given on the command line.
namespace GivenPath {

/// The absolute path of \a given, without a slash at its end, which would stay in a root's path and
/// be cut from every other one. Not absolute if that takes a working directory that was removed.
[[nodiscard]] QString absolute(const QString& given);

/// Why the directory \a given, whose absolute path is \a path, cannot be classified, or an empty
/// string.
[[nodiscard]] QString directoryProblem(const QString& given, const QString& path);

} // namespace GivenPath
