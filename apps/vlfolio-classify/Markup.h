#pragma once

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Markup in the report, which holds names as they are.
namespace Markup {

/// Returns the folders of \a results, the outcome of a walk from \a rootPath, in whose rows a
/// browser finds markup that is not in the row of the folder above already. They are given as paths
/// below the root; the root itself is given as its full path.
[[nodiscard]] QStringList folders(const QList<VLEventFolderClassificationResult>& results,
                                  const QString& rootPath);

/// Returns one line saying that the names of \a folders hold markup, and naming the first three.
/// \a folders must not be empty.
[[nodiscard]] QString sentence(const QStringList& folders);

} // namespace Markup
