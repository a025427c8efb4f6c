#pragma once

#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QString>

/// What the listing of a folder lacks, and why.
struct IncompleteListing
{
    using Problem = VLPlatformIndependent::ListingProblem;

    Problem problem = Problem::Unreadable;
    /// The system's reason, an errno value; 0 where it gave none.
    int systemError = 0;

    [[nodiscard]] bool operator==(const IncompleteListing& other) const
    {
        return problem == other.problem && systemError == other.systemError;
    }
};

/// Returns the name of what \a listing lacks, as --json shows it.
[[nodiscard]] QString incompleteName(const IncompleteListing& listing);

/// Returns one line that says what \a listing of the folder at \a path lacks, and why.
[[nodiscard]] QString incompleteReason(const QString& path, const IncompleteListing& listing);
