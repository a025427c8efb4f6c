#include "VLSameDirectory_p.h"

#include <VLCore/VLKomma_p.h>

#include <QtCore/QFile>

#include <algorithm>

#include <sys/stat.h>

namespace {

QStringView lastComponent(const QString& path)
{
    return QStringView(path).mid(path.lastIndexOf(u'/') + 1);
}

// Returns true if both names are ASCII and differ in more than case. No file system takes such
// names for the same.
bool neverSameName(QStringView first, QStringView second)
{
    const auto isAscii = [](QChar unit) { return unit.unicode() < 0x80; };
    return std::all_of(first.cbegin(), first.cend(), isAscii)
        && std::all_of(second.cbegin(), second.cend(), isAscii)
        && first.compare(second, Qt::CaseInsensitive) != 0;
}

// Returns true if the canonical path of the directory certainly ends with \a name, its own name.
// Returns false for a removed file, because a QFileInfo may have cached where a removed symlink
// led. QFileInfo::isSymLink() is not used, because it would cache its answer, and the path once
// more.
bool keepsItsName(const QString& path, QStringView name)
{
    struct stat status = {};
    return !name.isEmpty() && name != u"." && name != u".."
        && ::lstat(QFile::encodeName(path).constData(), &status) == 0 && !S_ISLNK(status.st_mode);
}

// The system is asked about both, because a QFileInfo may have cached the path of a directory that
// was removed.
bool areDifferentFiles(const QString& path, const QString& rootPath)
{
    struct stat directory = {};
    struct stat root = {};
    return ::stat(QFile::encodeName(path).constData(), &directory) == 0
        && ::stat(QFile::encodeName(rootPath).constData(), &root) == 0
        && (directory.st_dev != root.st_dev || directory.st_ino != root.st_ino);
}

} // namespace

// QFileInfo compares canonical paths. The canonical path of what is no symlink ends with its own
// name, and different files have different canonical paths.
bool VLSameDirectory::areCertainlyDifferent(const QFileInfo& directory, const QFileInfo& root)
{
    const QString path = directory.filePath();
    // The same path is the same directory, even if that is made or removed between two system
    // calls.
    if (path == root.filePath() || !directory.isNativePath() || !root.isNativePath())
        return false;
    const QString rootPath = root.canonicalFilePath();
    if (rootPath.isEmpty())
        return false;
    const QStringView name = lastComponent(path);
    if (neverSameName(name, lastComponent(rootPath)) && keepsItsName(path, name))
        return true;
    return areDifferentFiles(path, rootPath);
}
