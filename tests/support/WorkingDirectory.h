#pragma once

#include <QtCore/QDir>
#include <QtCore/QString>

/// Makes a directory the current one of this process for as long as it lives. Ends the program if
/// it cannot be entered.
class WorkingDirectory
{
public:
    explicit WorkingDirectory(const QString& path)
        : m_previous(QDir::currentPath())
    {
        if (!QDir::setCurrent(path))
            qFatal("Cannot enter %s", qPrintable(path));
    }
    ~WorkingDirectory() { QDir::setCurrent(m_previous); }
    Q_DISABLE_COPY_MOVE(WorkingDirectory)

private:
    QString m_previous;
};
