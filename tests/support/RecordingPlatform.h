#pragma once

#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QDir>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>
#include <utility>

/// A platform service that notes what is asked of it, opens nothing, and is in use for as long as
/// it lives. Directories are listed by the built-in service.
class RecordingPlatform : public VLPlatformIndependent
{
public:
    using Action = std::function<void(const QString& call)>;
    struct Incomplete
    {
        QString path;
        ListingProblem problem;
        int systemError;
    };

    /// \a action, if any, is told each call when it is noted, ahead of its work.
    explicit RecordingPlatform(Action action = {})
        : m_action(std::move(action))
    {
        setInstance(this);
    }
    ~RecordingPlatform() override { setInstance(nullptr); }
    Q_DISABLE_COPY_MOVE(RecordingPlatform)

    bool openFile(const QString& path, const QStringList& arguments,
                  const QString& application) override
    {
        note(QStringLiteral("openFile ") + path);
        openedArguments = arguments;
        openedApplication = application;
        return opens;
    }

    QStringList getDirectFilesInDirectory(const QDir& directory) const override
    {
        note(QStringLiteral("getDirectFilesInDirectory ") + directory.path());
        if (fileCount >= 0)
            return QStringList(fileCount, QStringLiteral("name"));
        return VLPlatformIndependent::getDirectFilesInDirectory(directory);
    }

    QStringList getDirectSubdirectoriesInDirectory(const QDir& directory) const override
    {
        if (walked)
            walked(directory.path());
        return VLPlatformIndependent::getDirectSubdirectoriesInDirectory(directory);
    }

    void directoryContentsChanged(const QDir& directory) override
    {
        note(QStringLiteral("directoryContentsChanged ") + directory.path());
    }

    /// Adds to the calls what a test wants to see among them.
    void note(const QString& call) const
    {
        calls.append(call);
        if (m_action)
            m_action(call);
    }

    mutable QStringList calls;
    QStringList openedArguments;
    QString openedApplication;
    /// What openFile() answers.
    bool opens = true;
    /// How many files each directory is said to hold, unless negative.
    qsizetype fileCount = -1;
    /// Told each directory whose subdirectories are asked for, if set; these are not among the
    /// calls.
    Action walked;
    /// What listings left out.
    mutable QList<Incomplete> incomplete;
    /// The paths of the symlinks that were listed.
    mutable QStringList symlinks;
    /// How many files each listing of subdirectories has seen.
    mutable QList<qsizetype> listedFiles;

protected:
    void listingIncomplete(const QDir& directory, ListingProblem problem,
                           int systemError) const override
    {
        incomplete.append({ directory.path(), problem, systemError });
    }

    void directoryListed(const QDir& directory, const QStringList& names,
                         qsizetype files) const override
    {
        for (const QString& name : names)
            symlinks.append(directory.path() + QLatin1Char('/') + name);
        listedFiles.append(files);
    }

private:
    Action m_action;
};
