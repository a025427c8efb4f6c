#pragma once

#include "FolderReasons.h"
#include "IncompleteListing.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QList>
#include <QtCore/QString>

/// What a line of --json says about a folder.
struct JsonFolder
{
    VLEventFolderClassificationResult result;
    qsizetype fileCount = 0;
    FolderReasons::Reason reason;
    QList<IncompleteListing> incomplete;
};

/// Returns \a folder as a JSON object on one line. \a prefix is how many UTF-16 code units are left
/// out at the start of the absolute path to make the relative one.
[[nodiscard]] QString jsonLine(const JsonFolder& folder, int prefix);
