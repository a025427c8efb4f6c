#pragma once

#include "FileIdentity.h"
#include "IncompleteListing.h"

#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QDir>
#include <QtCore/QList>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <atomic>
#include <map>
#include <optional>
#include <vector>

/// The platform service of the program. The walk and the report list folders through it, so this is
/// where folders are left out, counted, and watched for what cannot be read. In use for as long as
/// it lives.
class ProgramPlatform : public VLPlatformIndependent
{
public:
    /// \param rootPath where the walk begins.
    /// \param excluded patterns of the names of folders that are left out.
    ProgramPlatform(const QString& rootPath, const QStringList& excluded);
    ~ProgramPlatform() override;
    Q_DISABLE_COPY_MOVE(ProgramPlatform)

    /// Lets openFile() open what it is asked for. Without it, nothing is opened.
    void allowOpening();
    /// Counts a file at \a path in its folder, whether it is there already or not.
    void expectFile(const QString& path);

    /// How many folders the walk has read. May be called from any thread.
    [[nodiscard]] int walkedFolders() const;
    /// In how many folders the files were counted. May be called from any thread.
    [[nodiscard]] int countedFolders() const;

    /// What the listings of the folder at \a path lacked, each once.
    [[nodiscard]] QList<IncompleteListing> incompleteListings(const QString& path) const;
    /// Says in a line each what was left out that nobody wanted to be, and what should be and was
    /// not found.
    void tellLeftOut() const;

    /// Opens nothing unless that is allowed. Says why when that fails.
    bool openFile(const QString& path, const QStringList& arguments,
                  const QString& application) override;
    [[nodiscard]] QStringList getDirectFilesInDirectory(const QDir& directory) const override;
    /// Leaves out what is excluded, and everything below a link that leads back.
    [[nodiscard]] QStringList
    getDirectSubdirectoriesInDirectory(const QDir& directory) const override;

protected:
    void listingIncomplete(const QDir& directory, ListingProblem problem,
                           int systemError) const override;

private:
    struct Exclusion
    {
        QString pattern;
        QRegularExpression expression;
        bool matched = false;
    };
    struct Circle
    {
        QString link;
        QString folder;
    };

    [[nodiscard]] bool isExpectedIn(const QString& path) const;
    [[nodiscard]] bool isExcluded(const QString& name) const;

    QString m_rootPath;
    bool m_opens = false;
    QString m_expectedPath;
    std::optional<FileIdentity> m_expectedDirectory;
    QString m_expectedName;
    mutable std::atomic<int> m_walkedFolders = 0;
    mutable std::atomic<int> m_countedFolders = 0;
    mutable std::vector<Exclusion> m_exclusions;
    mutable QList<Circle> m_circles;
    // Not a QMap nor a QHash, which end the program where there is no memory.
    mutable std::map<QString, QList<IncompleteListing>> m_incomplete;
};
