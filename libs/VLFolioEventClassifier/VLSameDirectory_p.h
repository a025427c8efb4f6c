#pragma once

#include <QtCore/QFileInfo>

/// A short cut to the comparison of QFileInfo, which asks the system for each component of a path.
namespace VLSameDirectory {

/// True only where `directory == root` is false, which it finds out with one call of the system for
/// most directories, going by the file system as it is now. What is false may be either.
[[nodiscard]] bool areCertainlyDifferent(const QFileInfo& directory, const QFileInfo& root);

} // namespace VLSameDirectory
