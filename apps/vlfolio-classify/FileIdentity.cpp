#include "FileIdentity.h"

#include <QtCore/QFile>

#include <fcntl.h>
#include <sys/stat.h>

FileIdentity::FileIdentity(const QString& path)
    : FileIdentity(QFile::encodeName(path))
{
}

FileIdentity::FileIdentity(const QByteArray& path)
    : FileIdentity(path, 0)
{
}

FileIdentity::FileIdentity(const QByteArray& path, int flags)
{
    struct stat status = {};
    m_isKnown = fstatat(AT_FDCWD, path.constData(), &status, flags) == 0;
    m_isSymlink = m_isKnown && S_ISLNK(status.st_mode);
    m_device = status.st_dev;
    m_inode = status.st_ino;
}

FileIdentity FileIdentity::ofEntry(const QString& path)
{
    return { QFile::encodeName(path), AT_SYMLINK_NOFOLLOW };
}

bool FileIdentity::operator==(const FileIdentity& other) const
{
    return m_isKnown && other.m_isKnown && m_device == other.m_device && m_inode == other.m_inode;
}
