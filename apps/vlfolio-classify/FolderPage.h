#pragma once

#include "PageFolder.h"

#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QString>

/// The results of a walk as one HTML page for people to look at: how many folders and files there
/// are of each type and of each year, and the tree of all folders with the reason for each type.
///
/// The page is safe to open, whatever the names of the folders are: they are escaped, and the page
/// allows nothing to load or run but its own style and script.
class FolderPage
{
public:
    /// \param folders all folders of the walk from \a rootPath, in its order. They are kept by
    ///     reference and have to outlive the page.
    FolderPage(const QString& rootPath, const QList<PageFolder>& folders);

    /// Writes the page to \a file, which must be unbuffered. Returns false if that failed; the
    /// file's errorString() then says why.
    [[nodiscard]] bool write(QFile& file) const;

private:
    QString m_rootPath;
    const QList<PageFolder>& m_folders;
};
