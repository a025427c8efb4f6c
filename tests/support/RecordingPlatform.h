#pragma once

#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QDir>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// A platform service that notes what is asked of it, opens nothing, and is in use for as long as
/// it lives. Directories are listed by the built-in service.
class RecordingPlatform : public VLPlatformIndependent
{
public:
    RecordingPlatform() { setInstance(this); }
    ~RecordingPlatform() override { setInstance(nullptr); }
    Q_DISABLE_COPY_MOVE(RecordingPlatform)

    bool openFile(const QString& path, const QStringList& arguments,
                  const QString& application) override
    {
        calls.append(QStringLiteral("openFile ") + path);
        openedArguments = arguments;
        openedApplication = application;
        return true;
    }

    QStringList getDirectFilesInDirectory(const QDir& directory) const override
    {
        calls.append(QStringLiteral("getDirectFilesInDirectory ") + directory.path());
        return VLPlatformIndependent::getDirectFilesInDirectory(directory);
    }

    void directoryContentsChanged(const QDir& directory) override
    {
        calls.append(QStringLiteral("directoryContentsChanged ") + directory.path());
    }

    mutable QStringList calls;
    QStringList openedArguments;
    QString openedApplication;
};
