#include "IncompleteListing.h"

#include "Terminal.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

using ListingProblem = IncompleteListing::ListingProblem;

struct ProblemRow
{
    ListingProblem problem = ListingProblem::Unreadable;
    QLatin1StringView name;
    /// %1 stands for the path of the folder, %2 for the system's reason.
    QLatin1StringView sentence;
};

// clang-format off
constexpr std::array problemTable {
    ProblemRow { ListingProblem::Unreadable, "unreadable"_L1,
                 "cannot read %1: %2; what is in it is left out"_L1 },
    ProblemRow { ListingProblem::Unsearchable, "unsearchable"_L1,
                 "cannot enter %1: %2; what is below its folders is left out"_L1 },
    ProblemRow { ListingProblem::UnknownEntry, "unknownEntries"_L1,
                 "%1 holds an entry that cannot be looked at: %2; it is left out"_L1 },
    ProblemRow { ListingProblem::UndecodableName, "undecodableNames"_L1,
                 "%1 holds folders whose names are not UTF-8; they are left out"_L1 },
};
// clang-format on

const ProblemRow& rowOf(const IncompleteListing& listing)
{
    return *std::find_if(
        problemTable.cbegin(), problemTable.cend(),
        [&listing](const ProblemRow& row) { return row.problem == listing.problem; });
}

} // namespace

QString incompleteName(const IncompleteListing& listing)
{
    return rowOf(listing).name;
}

QString incompleteReason(const QString& path, const IncompleteListing& listing)
{
    QString sentence = rowOf(listing).sentence;
    // One call replaces both, because the path itself may contain "%2".
    return listing.problem == ListingProblem::UndecodableName
        ? sentence.arg(path)
        : sentence.arg(path, Terminal::errorText(listing.systemError));
}
