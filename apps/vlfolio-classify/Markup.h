#pragma once

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Markup in the report, which holds names as they are.
namespace Markup {

/// The folders of \a results, a walk's from \a rootPath on, in whose rows a browser finds markup
/// that it does not find in the row of the folder above: paths below the root, and the root's own.
[[nodiscard]] QStringList folders(const QList<VLEventFolderClassificationResult>& results,
                                  const QString& rootPath);

/// Says in one line that \a folders, at least one, hold markup, and names the first ones.
[[nodiscard]] QString sentence(const QStringList& folders);

} // namespace Markup
