#pragma once

#include <QtCore/QFileInfo>

// The namespace keeps the names of the functions apart from those of a program that is linked with
// the static library.
namespace VLOwnFileInfo {

/// Returns a copy of \a info with data of its own, in which nothing is cached. Copies of a
/// QFileInfo otherwise share their data, in which Qt caches, without a lock, what it finds out
/// about the file. Even const functions therefore change what other threads read.
///
/// The data stays shared if the path is relative, as the absolute path may have been cached under
/// another working directory, or belongs to a file engine, or if there is no path at all, because a
/// default-constructed QFileInfo is equal only to its copies.
[[nodiscard]] QFileInfo detached(const QFileInfo& info);

/// Returns what QFileInfo::absoluteFilePath() returns. If \a info is absolute, nothing is cached in
/// its data: other threads may use copies of it, and it takes no more memory afterwards.
[[nodiscard]] QString absolutePath(const QFileInfo& info);

} // namespace VLOwnFileInfo
