#include "VLKomma_p.h"
#include "VLPlatform_p.h"

#include <QtCore/QFile>
#include <QtCore/QStringDecoder>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

using ListingProblem = VLPlatformIndependent::ListingProblem;

namespace {

/// A file type, as in st_mode, or the error number if it could not be found out.
struct FileType
{
    mode_t type = 0;
    int error = 0;
};

FileType fileTypeOf(int directory, const char* path, int flags)
{
    struct stat status = {};
    if (::fstatat(directory, path, &status, flags) != 0)
        return { 0, errno };
    return { status.st_mode & S_IFMT, 0 };
}

bool isAscii(QByteArrayView name)
{
    return std::all_of(name.cbegin(), name.cend(),
                       [](char unit) { return static_cast<unsigned char>(unit) < 0x80; });
}

// QFile::decodeName() is not used, because it drops a byte order mark at the start of a name.
QString decoded(QByteArrayView name)
{
    // Most names are ASCII, for which the decoder is not needed.
    if (isAscii(name))
        return QString::fromLatin1(name);
    using Flag = QStringDecoder::Flag;
    QStringDecoder decode(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    return decode(name);
}

/// Reads the entries of one open directory.
struct Reader
{
    // readdir() is not used, because it takes the error ENOENT for the end of the directory.
    VLPlatform::Listing readAll()
    {
        // The buffer is not initialized, because only what the system has written is read.
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
        alignas(dirent64) std::array<char, size_t(16) * 1024> buffer;
        ssize_t used = 0;
        while ((used = ::getdents64(descriptor, buffer.data(), buffer.size())) > 0)
            addEntries(buffer.data(), used);
        if (used < 0)
            VLPlatform::addProblem(listing, ListingProblem::Unreadable, errno);
        // Nothing is lost if all file types came with the names and there is no folder to be
        // entered.
        const bool hasFolders =
            wanted == VLPlatform::Wanted::Directories && !listing.names.isEmpty();
        if (hasFolders || !listing.problems.isEmpty())
            VLPlatform::addIfUnsearchable(listing, descriptor);
        return std::move(listing);
    }

    void addEntries(const char* entries, ssize_t size)
    {
        for (ssize_t offset = 0; offset < size;) {
            const auto* const entry = reinterpret_cast<const dirent64*>(entries + offset);
            // Hidden entries are left out, and so are "." and "..".
            if (entry->d_name[0] != '.')
                addEntry(*entry);
            offset += entry->d_reclen;
        }
    }

    void addEntry(const dirent64& entry)
    {
        const char* const name = static_cast<const char*>(entry.d_name);
        // Most file systems return the file type of an entry along with its name.
        FileType found { static_cast<mode_t>(DTTOIF(entry.d_type)), 0 };
        if (entry.d_type == DT_UNKNOWN)
            found = fileTypeOf(descriptor, name, AT_SYMLINK_NOFOLLOW);
        const bool isSymlink = found.type == S_IFLNK;
        // The target is asked for by its whole path, because the kernel's limit of 40 symlinks
        // counts per path. So a cycle ends where it does with QDir.
        if (isSymlink)
            found = fileTypeOf(AT_FDCWD, (QFile::encodeName(path) + '/' + name).constData(), 0);
        // A dangling symlink, a cycle of symlinks and a removed entry hide no folder and no file.
        if (found.error == ENOENT || found.error == ENOTDIR || found.error == ELOOP)
            return;
        const bool isFile = found.type == S_IFREG;
        // QDir lists a symlink to anything but a regular file as a directory.
        const bool isFolder = isSymlink ? !isFile : found.type == S_IFDIR;
        if (found.error != 0)
            VLPlatform::addProblem(listing, ListingProblem::UnknownEntry, found.error);
        else if (wanted == VLPlatform::Wanted::Files ? isFile : isFolder)
            addName(name, isSymlink);
        listing.fileCount += isFile ? 1 : 0;
    }

    void addName(QByteArrayView bytes, bool isSymlink)
    {
        if (wanted == VLPlatform::Wanted::Directories && !bytes.isValidUtf8()) {
            VLPlatform::addProblem(listing, ListingProblem::UndecodableName, 0);
            return;
        }
        listing.names.append(decoded(bytes));
        if (isSymlink)
            listing.symlinks.append(listing.names.constLast());
    }

    int descriptor = -1;
    QString path;
    VLPlatform::Wanted wanted = VLPlatform::Wanted::Files;
    VLPlatform::Listing listing {};
};

} // namespace

QStringList VLPlatform::openCommand(const QString& path, const QStringList& arguments,
                                    const QString& application)
{
    if (application.isEmpty())
        return QStringList(u"xdg-open"_s) << path;
    return QStringList(application) << arguments << path;
}

VLPlatform::Listing VLPlatform::readEntries(int descriptor, const QString& path, Wanted wanted)
{
    return Reader { descriptor, path, wanted }.readAll();
}
