#pragma once

#include "FolderReasons.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QList>
#include <QtCore/QString>

/// What the page shows about a folder.
struct PageFolder
{
    VLEventFolderClassificationResult result;
    FolderReasons::Reason reason;
    qsizetype fileCount = 0;
    /// Why its listings are incomplete; empty if they are complete.
    QString incompleteReasons;

    [[nodiscard]] bool isOfType(VLEventFolderTypeEnum type) const
    {
        return result.classification() == type;
    }
    [[nodiscard]] bool isComplete() const { return incompleteReasons.isEmpty(); }
};

/// A number of folders and of the files in them.
struct PageAmount
{
    qsizetype folders = 0;
    qsizetype files = 0;

    void add(const PageAmount& other)
    {
        folders += other.folders;
        files += other.files;
    }
    void add(const PageFolder& folder) { add({ 1, folder.fileCount }); }
};
