#include "VLPlatform_p.h"

#include <QtCore/QFile>
#include <QtCore/QStringDecoder>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <new>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

struct CloseDirectory
{
    void operator()(DIR* stream) const { ::closedir(stream); }
};
using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

// Most file systems say the kind of an entry with its name.
mode_t kindOf(int directory, const dirent& entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return static_cast<mode_t>(DTTOIF(entry.d_type));
    struct stat status = {};
    const bool isKnown = ::fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0;
    return isKnown ? status.st_mode & S_IFMT : 0;
}

// What a link leads to, or 0. Asked for by its whole path, as Qt does: the system refuses a path
// with too many links, and would count anew from an open directory.
mode_t kindOfTarget(const QByteArray& directoryPath, const dirent& entry)
{
    const QByteArray link = directoryPath + '/' + entry.d_name;
    struct stat status = {};
    return ::stat(link.constData(), &status) == 0 ? status.st_mode & S_IFMT : 0;
}

// Whether an entry is of the kind that is looked for, or a link to such.
bool isWanted(VLPlatform::Wanted wanted, int directory, const QByteArray& directoryPath,
              const dirent& entry)
{
    const mode_t kind = kindOf(directory, entry);
    const bool isLink = kind == S_IFLNK;
    const mode_t target = isLink ? kindOfTarget(directoryPath, entry) : kind;
    if (wanted == VLPlatform::Wanted::Files)
        return target == S_IFREG;
    // QDir takes every link for a directory that leads to something else than a file.
    return isLink ? target != 0 && target != S_IFREG : target == S_IFDIR;
}

bool isListed(const QString& name)
{
    return !name.startsWith(u'.');
}

// A byte order mark in front is part of the name, which QFile::decodeName() would drop. Nearly all
// names are ASCII and need no decoder.
QString decoded(QByteArrayView name)
{
    const bool isAscii = std::all_of(name.cbegin(), name.cend(), [](char unit) {
        return static_cast<unsigned char>(unit) < 0x80;
    });
    if (isAscii)
        return QString::fromLatin1(name);
    QStringDecoder decode(QStringDecoder::Utf8,
                          QStringDecoder::Flag::Stateless
                              | QStringDecoder::Flag::ConvertInitialBom);
    return decode(name);
}

// Decoding replaces what is not UTF-8, so that the way back does not lead to the same bytes.
bool isUndecodable(const char* name, const QString& decoded)
{
    if (!decoded.contains(QChar::ReplacementCharacter))
        return false;
    return decoded.toUtf8() != name;
}

} // namespace

VLPlatform::Command VLPlatform::openCommand(const QString& path, const QStringList& arguments,
                                            const QString& application)
{
    if (application.isEmpty())
        return { u"xdg-open"_s, { path } };
    return { application, arguments + QStringList { path } };
}

bool VLPlatform::mayHoldUndecodableNames()
{
    return true;
}

VLPlatform::Listing VLPlatform::listing(const QString& path, Wanted wanted)
{
    Listing listing;
    const QByteArray directoryPath = QFile::encodeName(path);
    const DirectoryStream stream(::opendir(directoryPath.constData()));
    if (!stream && errno == ENOMEM)
        throw std::bad_alloc();
    if (!stream)
        return listing;
    const int directory = ::dirfd(stream.get());
    QStringList& names = wanted == Wanted::Files ? listing.files : listing.directories;
    // Only the error number tells the end of a directory from a failure.
    errno = 0;
    while (const dirent* const entry = ::readdir(stream.get())) {
        const QString name = decoded(QByteArrayView(entry->d_name));
        const bool undecodable = isUndecodable(entry->d_name, name);
        listing.holdsUndecodableName |= undecodable;
        const bool isKept = wanted == Wanted::Files || !undecodable;
        if (isKept && isListed(name) && isWanted(wanted, directory, directoryPath, *entry))
            names.append(name);
        errno = 0;
    }
    listing.isComplete = errno == 0;
    return listing;
}
