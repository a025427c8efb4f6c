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

/// The type of a file as the bits of S_IFMT, or why it cannot be told.
struct FileType
{
    mode_t type = 0;
    int error = 0;
};

FileType fileTypeFrom(int result, const struct stat& status)
{
    return result == 0 ? FileType { status.st_mode & S_IFMT, 0 } : FileType { 0, errno };
}

// Most file systems tell the file type of an entry with its name.
FileType fileTypeOf(int directory, const dirent64& entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return { static_cast<mode_t>(DTTOIF(entry.d_type)), 0 };
    struct stat status = {};
    return fileTypeFrom(::fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW), status);
}

// File type of the symlink's target. stat() by full path, not fstatat(): the kernel's limit of 40
// links counts per path, so that a cycle ends where QDir's does.
FileType targetTypeOf(const QByteArray& directoryPath, const dirent64& entry)
{
    const QByteArray link = directoryPath + '/' + entry.d_name;
    struct stat status = {};
    return fileTypeFrom(::stat(link.constData(), &status), status);
}

bool isAscii(QByteArrayView name)
{
    return std::all_of(name.cbegin(), name.cend(),
                       [](char unit) { return static_cast<unsigned char>(unit) < 0x80; });
}

// A byte order mark in front is part of the name; QFile::decodeName() would drop it.
QString decoded(QByteArrayView name)
{
    // Nearly all names are ASCII and need no decoder.
    if (isAscii(name))
        return QString::fromLatin1(name);
    QStringDecoder decode(QStringDecoder::Utf8,
                          QStringDecoder::Flag::Stateless
                              | QStringDecoder::Flag::ConvertInitialBom);
    return decode(name);
}

// Decoding replaces invalid UTF-8, so that encoding again does not give the same bytes.
bool isUndecodable(QByteArrayView name, const QString& decoded)
{
    return decoded.contains(QChar::ReplacementCharacter) && decoded.toUtf8() != name;
}

/// One directory being read.
class Reader
{
public:
    Reader(const QByteArray& path, const VLPlatform::OpenDirectory& directory,
           VLPlatform::Wanted wanted)
        : m_path(path)
        , m_directory(directory)
        , m_wantsFiles(wanted == VLPlatform::Wanted::Files)
    {
    }

    // Not readdir(), which takes the error ENOENT for the end of the directory.
    void readAll()
    {
        // Not initialized: the system writes what is read.
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
        alignas(dirent64) std::array<char, size_t(16) * 1024> buffer;
        ssize_t used = 0;
        while ((used = ::getdents64(m_directory.descriptor(), buffer.data(), buffer.size())) > 0)
            addEntries(buffer.data(), used);
        if (used < 0)
            VLPlatform::addProblem(listing, ListingProblem::Unreadable, errno);
        // A directory that cannot be searched loses nothing as long as nothing had to be asked
        // about its entries and no folder in it is to be entered.
        if (!listing.problems.isEmpty() || (!m_wantsFiles && !listing.names.isEmpty()))
            VLPlatform::addIfUnsearchable(listing, m_directory);
    }

    VLPlatform::Listing listing;

private:
    void addEntries(const char* entries, ssize_t size)
    {
        // Nearly all entries are files, and each takes 32 bytes or more.
        if (m_wantsFiles && listing.names.isEmpty())
            listing.names.reserve(size / 32);
        for (ssize_t offset = 0; offset < size;) {
            const auto* const entry = reinterpret_cast<const dirent64*>(entries + offset);
            const bool isHidden = entry->d_name[0] == '.';
            if (!isHidden && isWanted(*entry))
                addName(static_cast<const char*>(entry->d_name));
            offset += entry->d_reclen;
        }
    }

    bool isWanted(const dirent64& entry)
    {
        FileType found = fileTypeOf(m_directory.descriptor(), entry);
        const bool isLink = found.type == S_IFLNK;
        if (isLink)
            found = targetTypeOf(m_path, entry);
        if (found.error != 0) {
            tellUnknown(found.error);
            return false;
        }
        if (m_wantsFiles)
            return found.type == S_IFREG;
        // QDir takes every link for a directory that leads to something else than a file.
        return isLink ? found.type != S_IFREG : found.type == S_IFDIR;
    }

    void tellUnknown(int error)
    {
        // A dangling link, the end of a circle of links and a removed entry hide nothing.
        if (error != ENOENT && error != ENOTDIR && error != ELOOP)
            VLPlatform::addProblem(listing, ListingProblem::UnknownEntry, error);
    }

    void addName(QByteArrayView bytes)
    {
        QString name = decoded(bytes);
        if (!m_wantsFiles && isUndecodable(bytes, name))
            VLPlatform::addProblem(listing, ListingProblem::UndecodableName, 0);
        else
            listing.names.append(std::move(name));
    }

    const QByteArray& m_path;
    const VLPlatform::OpenDirectory& m_directory;
    bool m_wantsFiles;
};

} // namespace

VLPlatform::Command VLPlatform::openCommand(const QString& path, const QStringList& arguments,
                                            const QString& application)
{
    if (application.isEmpty())
        return { u"xdg-open"_s, { path } };
    return { application, arguments + QStringList { path } };
}

VLPlatform::Listing VLPlatform::listing(const QString& path, Wanted wanted)
{
    const QByteArray name = QFile::encodeName(path);
    const OpenDirectory directory(name);
    Reader reader(name, directory, wanted);
    if (directory.isOpen())
        reader.readAll();
    else
        addNotOpened(reader.listing, directory);
    return std::move(reader.listing);
}
