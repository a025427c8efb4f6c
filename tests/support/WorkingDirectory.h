#pragma once

#include <QtCore/QDir>
#include <QtCore/QString>

/// Makes a directory the current one of this process for as long as it lives.
class WorkingDirectory
{
public:
    explicit WorkingDirectory(const QString& path)
        : m_previous(QDir::currentPath())
        , m_active(QDir::setCurrent(path))
    {
    }
    ~WorkingDirectory() { QDir::setCurrent(m_previous); }
    Q_DISABLE_COPY_MOVE(WorkingDirectory)

    /// False when the directory could not be entered.
    [[nodiscard]] bool isActive() const { return m_active; }

private:
    QString m_previous;
    bool m_active;
};
