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

/// The platform service of the program, in use for as long as it lives. The walk and the report
/// list folders through it, so this is where folders are left out and counted, and where incomplete
/// listings are noted.
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
    /// Makes getDirectFilesInDirectory() list the file at \a path even while it does not exist yet,
    /// in whichever folders the walk has then found to be its folder.
    void expectFile(const QString& path);

    /// How many folders the walk has read. May be called from any thread.
    [[nodiscard]] int walkedFolders() const;
    /// In how many folders the files were counted. May be called from any thread.
    [[nodiscard]] int countedFolders() const;

    /// Returns what the listings of the folder at \a path lacked, without duplicates.
    [[nodiscard]] QList<IncompleteListing> incompleteListings(const QString& path) const;
    /// Writes a line to standard error for each incomplete listing, for each link that leads back,
    /// and for each pattern of a folder to exclude that matched none.
    void tellLeftOut() const;

    /// Opens the file if allowOpening() was called, and otherwise does nothing and returns true.
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
    // By whatever path the walk has come to the directory of the expected file.
    mutable QStringList m_foldersOfExpected;
    mutable std::atomic<int> m_walkedFolders = 0;
    mutable std::atomic<int> m_countedFolders = 0;
    mutable std::vector<Exclusion> m_exclusions;
    mutable QList<Circle> m_circles;
    // This is neither a QMap nor a QHash, because these end the program where there is no memory.
    mutable std::map<QString, QList<IncompleteListing>> m_incomplete;
};
