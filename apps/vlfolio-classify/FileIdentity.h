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

    /// Returns true if both paths lead to the same existing file.
    [[nodiscard]] bool operator==(const FileIdentity& other) const;

private:
    bool m_isKnown = false;
    dev_t m_device = 0;
    ino_t m_inode = 0;
};
