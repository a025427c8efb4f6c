#pragma once

#include "PageFolder.h"

#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QString>

/// Writes the rows of \a folders, all of the walk below \a rootPath in its order, to \a file as
/// list items within lists, the years folded. The file must be unbuffered; where writing falls
/// short, returns false, and the file knows why.
[[nodiscard]] bool writeFolderTree(QFile& file, const QString& rootPath,
                                   const QList<PageFolder>& folders);
