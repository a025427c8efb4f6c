#include "VLKomma_p.h"
#include "VLPlatform_p.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>

#include <algorithm>
#include <cerrno>
#include <new>

#include <fcntl.h>
#include <unistd.h>

using ListingProblem = VLPlatformIndependent::ListingProblem;

namespace {

int openDirectory(const QByteArray& path)
{
    return ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

} // namespace

// Resolving "." in a directory takes the permission to search it, so that opening "path/." shows
// without a further call whether the directory is searchable. A path of the greatest length that
// the system allows has no room for it, and the empty path must not become that of the root.
VLPlatform::OpenDirectory::OpenDirectory(const QByteArray& path)
    : m_descriptor(openDirectory(path.isEmpty() ? path : path + "/."))
    , m_error(isOpen() ? 0 : errno)
{
    if (m_error != EACCES && m_error != ENAMETOOLONG)
        return;
    m_isSearchable = m_error != EACCES;
    m_descriptor = openDirectory(path);
    m_error = isOpen() ? 0 : errno;
}

VLPlatform::OpenDirectory::~OpenDirectory()
{
    if (isOpen())
        ::close(m_descriptor);
}

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

void VLPlatform::addNotOpened(Listing& listing, const OpenDirectory& directory)
{
    // A symlink to a pipe is listed like a directory, and has nothing in it.
    if (directory.error() != ENOTDIR)
        addProblem(listing, ListingProblem::Unreadable, directory.error());
}

void VLPlatform::addIfUnsearchable(Listing& listing, const OpenDirectory& directory)
{
    if (directory.isSearchable())
        return;
    // One problem of the directory stands for those of its entries.
    listing.problems.removeIf([](const Problem& problem) {
        return problem.kind == ListingProblem::UnknownEntry && problem.systemError == EACCES;
    });
    addProblem(listing, ListingProblem::Unsearchable, EACCES);
}

QStringList VLPlatform::namesListedByQt(const QString& path, Wanted wanted)
{
    const QDir::Filters filters =
        wanted == Wanted::Files ? QDir::Filters(QDir::Files) : QDir::Dirs | QDir::NoDotAndDotDot;
    QStringList names;
    for (QDirIterator entries(path, filters); entries.hasNext();) {
        entries.next();
        names.append(entries.fileName());
    }
    return names;
}
