#pragma once

#include <QtCore/QFileInfo>

// A namespace, since a static library shows the name of its function to all that are linked with
// it.
namespace VLOwnFileInfo {

/// Returns \a info with data of its own. Copies of a QFileInfo share theirs, in which Qt caches,
/// without a lock, what it finds out about the file: what is asked of it changes what other threads
/// read. What was cached is not taken over.
///
/// A relative path keeps its data: it may have become absolute under another working directory. So
/// does the path of a file engine, and an object without a path, which is equal only to its copies.
[[nodiscard]] QFileInfo detached(const QFileInfo& info);

} // namespace VLOwnFileInfo
