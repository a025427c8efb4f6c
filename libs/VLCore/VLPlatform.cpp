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

// The "." in a directory is found only where the directory may be searched, so that opening it
// tells that with no further call. The longest path that the system takes has no room for it.
VLPlatform::OpenDirectory::OpenDirectory(const QByteArray& path)
    : m_descriptor(openDirectory(path + "/."))
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
    // A link to a pipe is listed as a directory, and has nothing in it.
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
