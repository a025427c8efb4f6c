#pragma once

#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QString>

/// Why the listing of a folder is incomplete.
struct IncompleteListing
{
    using ListingProblem = VLPlatformIndependent::ListingProblem;

    ListingProblem problem = ListingProblem::Unreadable;
    /// The system's error number (errno), or 0 if it gave none.
    int systemError = 0;

    [[nodiscard]] bool operator==(const IncompleteListing& other) const
    {
        return problem == other.problem && systemError == other.systemError;
    }
};

/// Returns the name of the problem of \a listing, as --json shows it.
[[nodiscard]] QString incompleteName(const IncompleteListing& listing);

/// Returns one line that says why \a listing, that of the folder at \a path, is incomplete.
[[nodiscard]] QString incompleteReason(const QString& path, const IncompleteListing& listing);
