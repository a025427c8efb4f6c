#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <sys/types.h>

/// Identifies the file to which a path leads, however the path is spelled.
class FileIdentity
{
public:
    explicit FileIdentity(const QString& path);
    explicit FileIdentity(const QByteArray& path);
    /// Returns the identity of the entry at \a path itself, even if that is a symlink.
    [[nodiscard]] static FileIdentity ofEntry(const QString& path);

    /// Returns true if both paths lead to the same existing file.
    [[nodiscard]] bool operator==(const FileIdentity& other) const;

    /// Returns true if this is the identity of a symlink, which only ofEntry() returns.
    [[nodiscard]] bool isSymlink() const { return m_isSymlink; }

private:
    FileIdentity(const QByteArray& path, int flags);

    bool m_isKnown = false;
    bool m_isSymlink = false;
    dev_t m_device = 0;
    ino_t m_inode = 0;
};
