#pragma once

#include <QtCore/QString>

/// Paths as they are given on the command line.
namespace GivenPath {

/// Returns the absolute path of \a given, without a slash at its end, as the paths of all other
/// folders have none either. The path is not absolute if \a given is relative and the working
/// directory was removed.
[[nodiscard]] QString absolute(const QString& given);

/// Returns why the directory \a given, whose absolute path is \a path, cannot be classified, or an
/// empty string if it can.
[[nodiscard]] QString directoryProblem(const QString& given, const QString& path);

} // namespace GivenPath
