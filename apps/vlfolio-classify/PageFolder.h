#pragma once

#include "FolderReasons.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QList>
#include <QtCore/QString>

/// What the page shows of a folder.
struct PageFolder
{
    VLEventFolderClassificationResult result;
    FolderReasons::Reason reason;
    qsizetype fileCount = 0;
    /// What its listings lack, and why; empty if they are complete.
    QString incompleteReasons;

    [[nodiscard]] bool isOfType(VLEventFolderTypeEnum type) const
    {
        return result.classification() == type;
    }
    [[nodiscard]] bool isComplete() const { return incompleteReasons.isEmpty(); }
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
