#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <sys/types.h>

/// Which file a path leads to, however it is spelled.
class FileIdentity
{
public:
    explicit FileIdentity(const QString& path);
    explicit FileIdentity(const QByteArray& path);

    /// True when both paths lead to one file that is there.
    [[nodiscard]] bool operator==(const FileIdentity& other) const;

    /// True when \a path itself is a symbolic link.
    [[nodiscard]] static bool isLink(const QString& path);

private:
    bool m_isKnown = false;
    dev_t m_device = 0;
    ino_t m_inode = 0;
};
