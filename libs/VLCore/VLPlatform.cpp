#include "VLKomma_p.h"
#include "VLPlatform_p.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QScopeGuard>

#include <algorithm>
#include <cerrno>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using ListingProblem = VLPlatformIndependent::ListingProblem;

namespace {

// If the directory cannot be searched, adds that problem in place of those of single entries that
// have the same cause. Resolving "." in a directory takes the permission to search it.
void addIfUnsearchable(VLPlatform::Listing& listing, int descriptor)
{
    struct stat status = {};
    if (::fstatat(descriptor, ".", &status, 0) == 0 || errno != EACCES)
        return;
    listing.problems.removeIf([](const VLPlatform::Problem& problem) {
        return problem.kind == ListingProblem::UnknownEntry && problem.systemError == EACCES;
    });
    VLPlatform::addProblem(listing, ListingProblem::Unsearchable, EACCES);
}

} // namespace

void VLPlatform::addProblem(Listing& listing, ListingProblem kind, int systemError)
{
    if (systemError == ENOMEM)
        throw std::bad_alloc();
    const auto isSame = [kind, systemError](const Problem& problem) {
        return problem.kind == kind && problem.systemError == systemError;
    };
    if (std::none_of(listing.problems.cbegin(), listing.problems.cend(), isSame))
        listing.problems.append({ kind, systemError });
}

VLPlatform::Listing VLPlatform::listing(const QString& path, Wanted wanted)
{
    Listing listing;
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        // A symlink to a pipe is listed like a directory, and has nothing in it.
        if (errno != ENOTDIR)
            addProblem(listing, ListingProblem::Unreadable, errno);
        return listing;
    }
    const auto closed = qScopeGuard([descriptor] { ::close(descriptor); });
    listing = readEntries(descriptor, path, wanted);
    // Without a problem, the list of files is complete even if the directory cannot be searched.
    const bool isComplete = wanted == Wanted::Files || listing.names.isEmpty();
    if (!isComplete || !listing.problems.isEmpty())
        addIfUnsearchable(listing, descriptor);
    return listing;
}

VLPlatform::Listing VLPlatform::listingByQt(const QString& path, Wanted wanted)
{
    const QDir::Filters filters =
        wanted == Wanted::Files ? QDir::Filters(QDir::Files) : QDir::Dirs | QDir::NoDotAndDotDot;
    Listing listing;
    for (QDirIterator entries(path, filters); entries.hasNext();) {
        entries.next();
        listing.names.append(entries.fileName());
        if (wanted == Wanted::Directories && entries.fileInfo().isSymbolicLink())
            listing.symlinks.append(entries.fileName());
    }
    return listing;
}
