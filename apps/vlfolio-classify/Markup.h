#pragma once

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Finds markup in the report, which contains names as they are.
namespace Markup {

/// Returns the folders of \a results, the outcome of a walk from \a rootPath, in whose rows a
/// browser finds markup that is not in the row of the folder above already. They are returned as
/// paths relative to the root, and the root itself as its absolute path.
[[nodiscard]] QStringList folders(const QList<VLEventFolderClassificationResult>& results,
                                  const QString& rootPath);

/// Returns one line which says that the names of \a folders contain markup, and lists the first
/// three. \a folders must not be empty.
[[nodiscard]] QString sentence(const QStringList& folders);

} // namespace Markup
