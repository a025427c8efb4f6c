#pragma once

#include <QtCore/QFileInfo>

/// A shortcut for the comparison of two QFileInfos, which takes a system call for each component of
/// a path.
namespace VLSameDirectory {

/// Returns true only if `directory == root` is false. For most directories this takes one system
/// call. If it returns false, nothing is known.
[[nodiscard]] bool areCertainlyDifferent(const QFileInfo& directory, const QFileInfo& root);

} // namespace VLSameDirectory
