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

FileType fileTypeFrom(int result, const struct stat& status)
{
    return result == 0 ? FileType { status.st_mode & S_IFMT, 0 } : FileType { 0, errno };
}

// Most file systems return the file type of an entry along with its name.
FileType fileTypeOf(int directory, const dirent64& entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return { static_cast<mode_t>(DTTOIF(entry.d_type)), 0 };
    struct stat status = {};
    return fileTypeFrom(::fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW), status);
}

// File type of the symlink's target. stat() by full path, not fstatat(): the kernel's limit of 40
// symlinks counts per path, so that a cycle ends where it does with QDir.
FileType targetTypeOf(const QByteArray& directoryPath, const dirent64& entry)
{
    const QByteArray path = directoryPath + '/' + entry.d_name;
    struct stat status = {};
    return fileTypeFrom(::stat(path.constData(), &status), status);
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
    QStringDecoder decode(QStringDecoder::Utf8,
                          QStringDecoder::Flag::Stateless
                              | QStringDecoder::Flag::ConvertInitialBom);
    return decode(name);
}

// Decoding replaces invalid UTF-8, so that encoding the result gives other bytes.
bool isUndecodable(QByteArrayView name, const QString& decoded)
{
    return decoded.contains(QChar::ReplacementCharacter) && decoded.toUtf8() != name;
}

/// Reads the entries of one open directory.
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

    // readdir() is not used, because it takes the error ENOENT for the end of the directory.
    void readAll()
    {
        // The buffer is not initialized, because only what the system has written is read.
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
        alignas(dirent64) std::array<char, size_t(16) * 1024> buffer;
        ssize_t used = 0;
        while ((used = ::getdents64(m_directory.descriptor(), buffer.data(), buffer.size())) > 0)
            addEntries(buffer.data(), used);
        if (used < 0)
            VLPlatform::addProblem(listing, ListingProblem::Unreadable, errno);
        // The listing of a directory that cannot be searched is complete if all file types came
        // with the names and there is no folder in it to be entered.
        if (!listing.problems.isEmpty() || (!m_wantsFiles && !listing.names.isEmpty()))
            VLPlatform::addIfUnsearchable(listing, m_directory);
    }

    VLPlatform::Listing listing;

private:
    void addEntries(const char* entries, ssize_t size)
    {
        // In folders of pictures nearly all entries are files, and most take 32 bytes or more.
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
        const bool isSymlink = found.type == S_IFLNK;
        if (isSymlink)
            found = targetTypeOf(m_path, entry);
        if (found.error != 0) {
            addUnknownEntry(found.error);
            return false;
        }
        if (m_wantsFiles)
            return found.type == S_IFREG;
        // QDir lists a symlink to anything but a regular file as a directory.
        return isSymlink ? found.type != S_IFREG : found.type == S_IFDIR;
    }

    void addUnknownEntry(int error)
    {
        // A dangling symlink, a cycle of symlinks and a removed entry hide no folder and no file.
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
