#pragma once

#include <VLCore/VLPlatformIndependent.h>

#include <atomic>

/// A platform service that several threads may use at once. It opens nothing and counts what is
/// asked of it. Directories are listed by the built-in service.
class SharedPlatform : public VLPlatformIndependent
{
public:
    bool openFile(const QString& path, const QStringList& arguments,
                  const QString& application) override
    {
        Q_UNUSED(path)
        Q_UNUSED(arguments)
        Q_UNUSED(application)
        ++opened;
        return true;
    }

    QStringList getDirectFilesInDirectory(const QDir& directory) const override
    {
        ++listed;
        return VLPlatformIndependent::getDirectFilesInDirectory(directory);
    }

    void directoryContentsChanged(const QDir& directory) override
    {
        Q_UNUSED(directory)
        ++changed;
    }

    std::atomic_int opened { 0 };
    mutable std::atomic_int listed { 0 };
    std::atomic_int changed { 0 };
};
