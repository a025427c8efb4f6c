#include "FileIdentity.h"

#include <QtCore/QFile>

#include <sys/stat.h>

FileIdentity::FileIdentity(const QString& path)
    : FileIdentity(QFile::encodeName(path))
{
}

FileIdentity::FileIdentity(const QByteArray& path)
{
    struct stat status = {};
    m_isKnown = stat(path.constData(), &status) == 0;
    m_device = status.st_dev;
    m_inode = status.st_ino;
}

bool FileIdentity::operator==(const FileIdentity& other) const
{
    return m_isKnown && other.m_isKnown && m_device == other.m_device && m_inode == other.m_inode;
}
