#pragma once

#include <VLFolioEventClassifier/VLEventFolderType.h>

#include <QtCore/QString>

/// The words of the page.
namespace PageText {

/// Returns \a name escaped for use within an HTML element, with invisible characters, which would
/// only affect the text around them, replaced by visible ones.
[[nodiscard]] QString shown(const QString& name);

/// Returns \a number with its thousands separated.
[[nodiscard]] QString grouped(qsizetype number);

/// Returns \a number with the noun, such as "1 folder" or "2 folders".
[[nodiscard]] QString folderCount(qsizetype number);

/// Returns \a number with the noun, such as "1 file" or "2 files".
[[nodiscard]] QString fileCount(qsizetype number);

[[nodiscard]] QString nameOf(const VLEventFolderType& type);

/// Returns the name of the folder at \a rootPath, or the path if it has no name, like "/".
[[nodiscard]] QString nameOfRoot(const QString& rootPath);

} // namespace PageText
