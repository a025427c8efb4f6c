#include "WholeFile.h"

#include "Terminal.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>

#include <cerrno>
#include <ctime>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr auto directoryPrefix = ".vlfolio-classify-";
// The name is the same in every such directory, so that the file can be found and removed from one
// that was left behind.
constexpr auto fileName = "new";
constexpr std::time_t oneDay = 24 * 60 * 60;

int openDirectory(int parent, const char* name, int flags)
{
    return openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags);
}

QByteArray randomName()
{
    const quint64 number = QRandomGenerator::system()->generate64();
    return directoryPrefix + QByteArray::number(number, 36);
}

void closeIfOpen(int descriptor)
{
    if (descriptor >= 0)
        close(descriptor);
}

// Another user may have put a directory in the place of the one just made. Its owner is therefore
// compared with that of a new file in it, not with the user's ID, because on some file systems
// everything has the same owner, whoever made it.
bool isOwn(int directory)
{
    const int file =
        openat(directory, fileName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0)
        return false;
    struct stat fileStatus = {};
    struct stat status = {};
    const bool isOwn = fstat(file, &fileStatus) == 0 && fstat(directory, &status) == 0
        && status.st_uid == fileStatus.st_uid;
    close(file);
    unlinkat(directory, fileName, 0);
    errno = EPERM;
    return isOwn;
}

bool haveOneOwner(int one, int other)
{
    struct stat status = {};
    struct stat otherStatus = {};
    return fstat(one, &status) == 0 && fstat(other, &otherStatus) == 0
        && status.st_uid == otherStatus.st_uid;
}

bool isOld(int directory)
{
    struct stat status = {};
    return fstat(directory, &status) == 0 && status.st_mtime < std::time(nullptr) - oneDay;
}

bool isSameDirectory(int directory, const char* path)
{
    struct stat wanted = {};
    struct stat found = {};
    return fstat(directory, &wanted) == 0 && stat(path, &found) == 0
        && wanted.st_dev == found.st_dev && wanted.st_ino == found.st_ino;
}

// Some file systems do not support fsync(), which is no failure.
bool isFlushed(int file)
{
    return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP;
}

} // namespace

WholeFile::WholeFile(const QString& path)
{
    const QFileInfo target(path);
    m_name = QFile::encodeName(target.fileName());
    m_parentPath = QFile::encodeName(target.absolutePath());
    m_directoryName = randomName();
    m_parent = openDirectory(AT_FDCWD, m_parentPath.constData(), 0);
    if (m_parent < 0 || !makeDirectory())
        m_error = Terminal::errorText(errno);
    else
        removeLeftOvers();
}

WholeFile::~WholeFile()
{
    if (m_directory >= 0)
        unlinkat(m_directory, fileName, 0);
    if (m_parent >= 0)
        unlinkat(m_parent, m_directoryName.constData(), AT_REMOVEDIR);
    closeIfOpen(m_directory);
    closeIfOpen(m_parent);
}

QString WholeFile::error() const
{
    return m_error;
}

QString WholeFile::writingPath() const
{
    // A path through the descriptor leads to the same directory even if that is moved and another
    // one is put in its place. Not every system has such paths.
    QByteArray path = "/proc/self/fd/" + QByteArray::number(m_directory);
    if (!isSameDirectory(m_directory, path.constData()))
        path = m_parentPath + '/' + m_directoryName;
    return QFile::decodeName(path + '/' + fileName);
}

QString WholeFile::commit()
{
    const int file = openat(m_directory, fileName, O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    const bool isInPlace = file >= 0 && isFlushed(file)
        && renameat(m_directory, fileName, m_parent, m_name.constData()) == 0;
    QString error = isInPlace ? QString() : Terminal::errorText(errno);
    closeIfOpen(file);
    return error;
}

QString WholeFile::obstacle(const QString& path, bool isGiven)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    const bool isThere = lstat(name.constData(), &status) == 0;
    if (isThere && S_ISDIR(status.st_mode))
        return u"a directory has that name; rename or remove it"_s;
    if (isThere && isGiven && !S_ISREG(status.st_mode))
        return u"what has that name is no file; remove it or give another name"_s;
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath() + u"/."_s);
    return faccessat(AT_FDCWD, folder.constData(), W_OK | X_OK, AT_EACCESS) == 0
        ? QString()
        : Terminal::errorText(errno);
}

bool WholeFile::writeAll(QFile& file, const QByteArray& bytes)
{
    // A write that is incomplete sets no error. The next one, of the rest, does.
    qint64 written = 0;
    for (qint64 sum = 0; sum < bytes.size(); sum += written) {
        written = file.write(bytes.constData() + sum, bytes.size() - sum);
        if (written <= 0)
            return false;
    }
    return true;
}

// Returns false, with the reason in errno, if the directory could not be made.
bool WholeFile::makeDirectory()
{
    if (mkdirat(m_parent, m_directoryName.constData(), S_IRWXU) != 0)
        return false;
    m_directory = openDirectory(m_parent, m_directoryName.constData(), O_NOFOLLOW);
    return m_directory >= 0 && isOwn(m_directory);
}

void WholeFile::removeLeftOvers() const
{
    const int copy = openDirectory(m_parent, ".", 0);
    DIR* const stream = copy >= 0 ? fdopendir(copy) : nullptr;
    if (stream == nullptr) {
        closeIfOpen(copy);
        return;
    }
    while (const dirent* const entry = readdir(stream)) {
        if (QByteArrayView(entry->d_name).startsWith(directoryPrefix))
            removeLeftOver(entry->d_name);
    }
    closedir(stream);
}

void WholeFile::removeLeftOver(const char* name) const
{
    const int directory = openDirectory(m_parent, name, O_NOFOLLOW);
    if (directory < 0)
        return;
    if (haveOneOwner(directory, m_directory) && isOld(directory)) {
        unlinkat(directory, fileName, 0);
        unlinkat(m_parent, name, AT_REMOVEDIR);
    }
    close(directory);
}
