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

// Most file systems say the kind of an entry with its name; only links and the others cost a call.
bool isOfKind(int directory, const dirent& entry, unsigned char type, mode_t mode)
{
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN)
        return entry.d_type == type;
    struct stat target = {};
    return ::fstatat(directory, entry.d_name, &target, 0) == 0 && (target.st_mode & S_IFMT) == mode;
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
    return decoded.contains(QChar::ReplacementCharacter) && decoded.toUtf8() != name;
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
    const DirectoryStream stream(::opendir(QFile::encodeName(path).constData()));
    if (!stream && errno == ENOMEM)
        throw std::bad_alloc(); // GCOV_EXCL_LINE: tested in processes that count nothing
    if (!stream)
        return listing;
    const int directory = ::dirfd(stream.get());
    // Only the error number tells the end of a directory from a failure.
    errno = 0;
    while (const dirent* const entry = ::readdir(stream.get())) {
        const QString name = decoded(QByteArrayView(entry->d_name));
        const bool undecodable = isUndecodable(entry->d_name, name);
        listing.holdsUndecodableName |= undecodable;
        if (wanted == Wanted::Files && isListed(name)
            && isOfKind(directory, *entry, DT_REG, S_IFREG))
            listing.files.append(name);
        else if (wanted == Wanted::Directories && isListed(name) && !undecodable
                 && isOfKind(directory, *entry, DT_DIR, S_IFDIR))
            listing.directories.append(name);
        errno = 0;
    }
    listing.isComplete = errno == 0;
    return listing;
}
