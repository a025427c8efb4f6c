#include "IncompleteListing.h"

#include "Terminal.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

using Problem = IncompleteListing::Problem;

struct ProblemRow
{
    Problem problem = Problem::Unreadable;
    QLatin1StringView name;
    /// %1 is the folder, %2 the system's reason.
    QLatin1StringView sentence;
};

// clang-format off
constexpr std::array problemTable {
    ProblemRow { Problem::Unreadable, "unreadable"_L1,
                 "cannot read %1: %2; what is in it is left out"_L1 },
    ProblemRow { Problem::Unsearchable, "unsearchable"_L1,
                 "cannot enter %1: %2; what is below its folders is left out"_L1 },
    ProblemRow { Problem::UnknownEntry, "unknownEntries"_L1,
                 "%1 holds an entry that cannot be looked at: %2; it is left out"_L1 },
    ProblemRow { Problem::UndecodableName, "undecodableNames"_L1,
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
    // Both are replaced by one call, because the path may itself contain "%2".
    return listing.problem == Problem::UndecodableName
        ? sentence.arg(path)
        : sentence.arg(path, Terminal::errorText(listing.systemError));
}
