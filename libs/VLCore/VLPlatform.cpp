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

void VLPlatform::addIfUnsearchable(Listing& listing, int descriptor)
{
    // Resolving "." in a directory takes the permission to search it.
    struct stat status = {};
    if (::fstatat(descriptor, ".", &status, 0) == 0 || (errno != EACCES && errno != ENOMEM))
        return;
    const int error = errno;
    listing.problems.removeIf([](const Problem& problem) {
        return problem.kind == ListingProblem::UnknownEntry && problem.systemError == EACCES;
    });
    addProblem(listing, ListingProblem::Unsearchable, error);
}

VLPlatform::Listing VLPlatform::listing(const QString& path, Wanted wanted)
{
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        Listing listing;
        // A symlink to a pipe, or to a socket (EOPNOTSUPP on macOS), is listed like a directory.
        if (errno != ENOTDIR && errno != EOPNOTSUPP)
            addProblem(listing, ListingProblem::Unreadable, errno);
        return listing;
    }
    const auto closed = qScopeGuard([descriptor] { ::close(descriptor); });
    return readEntries(descriptor, path, wanted);
}

VLPlatform::Listing VLPlatform::listingByQt(const QString& path, Wanted wanted)
{
    Listing listing;
    QDirIterator entries(path, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        const QFileInfo info = entries.nextFileInfo();
        // A symlink to neither a directory nor a regular file is listed as both.
        if (wanted == Wanted::Files ? !info.isDir() : !info.isFile()) {
            listing.names.append(info.fileName());
            if (info.isSymbolicLink())
                listing.symlinks.append(info.fileName());
        }
        listing.fileCount += info.isDir() ? 0 : 1;
    }
    return listing;
}
