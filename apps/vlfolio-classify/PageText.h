#pragma once

#include <VLFolioEventClassifier/VLEventFolderType.h>

#include <QtCore/QString>

/// The words of the page.
namespace PageText {

/// A name that is safe within an element, and shows what would only steer the text around it.
[[nodiscard]] QString shown(const QString& name);

/// A number with its thousands parted.
[[nodiscard]] QString grouped(qsizetype number);

/// "1 folder", "2 folders".
[[nodiscard]] QString folderCount(qsizetype number);

/// "1 file", "2 files".
[[nodiscard]] QString fileCount(qsizetype number);

[[nodiscard]] QString nameOf(const VLEventFolderType& type);

/// The name of the folder at \a rootPath; the path where there is none.
[[nodiscard]] QString nameOfRoot(const QString& rootPath);

} // namespace PageText
