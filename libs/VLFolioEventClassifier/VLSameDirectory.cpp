#include "VLSameDirectory_p.h"

#include <VLCore/VLKomma_p.h>

#include <QtCore/QFile>

#include <algorithm>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

QStringView lastComponent(const QString& path)
{
    return QStringView(path).mid(path.lastIndexOf(u'/') + 1);
}

// No file system folds these together: both are ASCII, and they differ in more than case.
bool neverSameName(QStringView first, QStringView second)
{
    const auto isAscii = [](QChar unit) { return unit.unicode() < 0x80; };
    return std::all_of(first.cbegin(), first.cend(), isAscii)
        && std::all_of(second.cbegin(), second.cend(), isAscii)
        && first.compare(second, Qt::CaseInsensitive) != 0;
}

// False for what is gone, too: a QFileInfo may remember where a removed link led. QFileInfo's own
// isSymLink() is not asked, since it keeps the answer, and the path once more, in every result.
bool isNoLink(const QString& path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && !S_ISLNK(status.st_mode);
}

// True when the canonical path of the directory ends with its own name.
bool keepsItsName(const QString& path, QStringView name)
{
    return !name.isEmpty() && name != "."_L1 && name != ".."_L1 && isNoLink(path);
}

// Asks the system for both files. QFileInfo may remember where a directory was that is gone.
bool areDifferentFiles(const QString& path, const QString& rootPath)
{
    struct stat directory = {};
    struct stat root = {};
    return ::stat(QFile::encodeName(path).constData(), &directory) == 0
        && ::stat(QFile::encodeName(rootPath).constData(), &root) == 0
        && (directory.st_dev != root.st_dev || directory.st_ino != root.st_ino);
}

} // namespace

// QFileInfo compares canonical paths. What is no link keeps its name in its canonical path, and two
// paths of different files have different canonical paths.
bool VLSameDirectory::areCertainlyDifferent(const QFileInfo& directory, const QFileInfo& root)
{
    const QString path = directory.filePath();
    // One path is one directory, even if that comes and goes between two looks at it.
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
