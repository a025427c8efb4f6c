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

/// Returns \a folder as a JSON object on one line. \a prefix is how many code units
/// at the start of the absolute path are left out of the relative one.
[[nodiscard]] QString jsonLine(const JsonFolder& folder, int prefix);
