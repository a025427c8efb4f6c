#pragma once

#include "PageFolder.h"

#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QString>

/// Writes the rows of \a folders, all folders of the walk from \a rootPath in its order, to \a
/// file: as list items within lists, with the years folded. The file must be unbuffered. Returns
/// false if writing failed; the file's errorString() then says why.
[[nodiscard]] bool writeFolderTree(QFile& file, const QString& rootPath,
                                   const QList<PageFolder>& folders);
