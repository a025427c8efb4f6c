#pragma once

#include "FolderReasons.h"
#include "IncompleteListing.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QList>
#include <QtCore/QString>

/// What a line of --json tells of a folder.
struct JsonFolder
{
    VLEventFolderClassificationResult result;
    qsizetype fileCount = 0;
    FolderReasons::Reason reason;
    QList<IncompleteListing> incomplete;
};

/// Returns \a folder as a JSON object on one line. \a prefix is the length of what the relative
/// path leaves out of the absolute one.
[[nodiscard]] QString jsonLine(const JsonFolder& folder, int prefix);
