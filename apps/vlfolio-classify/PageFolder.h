#pragma once

#include "FolderReasons.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QList>
#include <QtCore/QString>

/// What the page tells of a folder.
struct PageFolder
{
    VLEventFolderClassificationResult result;
    FolderReasons::Reason reason;
    qsizetype fileCount = 0;
    /// What of it is left out, and why; empty for a folder that is complete.
    QString omission;

    [[nodiscard]] bool isOfType(VLEventFolderTypeEnum type) const
    {
        return result.classification() == type;
    }
    [[nodiscard]] bool isComplete() const { return omission.isEmpty(); }
};

/// How many folders there are, and files in them.
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
