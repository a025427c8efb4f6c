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
#include <set>
#include <vector>

/// The platform service of the program, which is in use for as long as the object lives. As the
/// walk and the report list folders through it, it leaves out and counts folders, keeps how many
/// files they hold, and notes incomplete listings.
class ProgramPlatform : public VLPlatformIndependent
{
public:
    /// \param excluded patterns of the names of folders that are left out.
    explicit ProgramPlatform(const QStringList& excluded);
    ~ProgramPlatform() override;
    Q_DISABLE_COPY_MOVE(ProgramPlatform)

    /// Allows openFile() to open files. Unless this is called, it does nothing.
    void allowOpening();
    /// Makes the walk keep how many files each folder holds, so that getDirectFilesInDirectory()
    /// need not list the folder again. Has to be called ahead of the walk.
    void keepFileCounts();
    /// Makes getDirectFilesInDirectory() list the file at \a path even before it exists, in each
    /// folder of the walk that is the directory of the file, by whatever path.
    void expectFile(const QString& path);

    /// Returns how many folders the walk has read. May be called from any thread.
    [[nodiscard]] int walkedFolders() const;
    /// Returns in how many folders the files were counted. May be called from any thread.
    [[nodiscard]] int countedFolders() const;

    /// Returns the incomplete listings of the folder at \a path, without duplicates.
    [[nodiscard]] QList<IncompleteListing> incompleteListings(const QString& path) const;
    /// Writes a line to standard error for each incomplete listing, for each symlink that leads
    /// back to a folder above it, and for each exclusion that matched no folder.
    void tellLeftOut() const;

    /// Opens the file if allowOpening() was called, and otherwise does nothing and returns true.
    bool openFile(const QString& path, const QStringList& arguments,
                  const QString& application) override;
    /// Returns as many empty strings as the folder has files if that number was kept, because only
    /// the number is used.
    [[nodiscard]] QStringList getDirectFilesInDirectory(const QDir& directory) const override;
    /// Leaves out excluded folders, and everything below a symlink that leads back to a folder
    /// above it.
    [[nodiscard]] QStringList
    getDirectSubdirectoriesInDirectory(const QDir& directory) const override;

protected:
    void listingIncomplete(const QDir& directory, ListingProblem problem,
                           int systemError) const override;
    void directoryListed(const QDir& directory, const QStringList& symlinks,
                         qsizetype fileCount) const override;

private:
    struct Exclusion
    {
        QString pattern;
        QRegularExpression expression;
        bool matched = false;
    };
    struct Cycle
    {
        QString symlink;
        QString folder;
    };

    struct FileCount
    {
        QString path;
        qsizetype files = 0;
    };

    [[nodiscard]] std::optional<qsizetype> keptFileCount(const QString& path) const;
    [[nodiscard]] bool isExpectedIn(const QString& path) const;
    [[nodiscard]] bool isExcluded(const QString& name) const;

    bool m_opens = false;
    bool m_keepsFileCounts = false;
    QString m_expectedPath;
    std::optional<FileIdentity> m_expectedDirectory;
    QString m_expectedName;
    // The paths by which the walk has come to the directory of the expected file.
    mutable QStringList m_foldersOfExpected;
    mutable std::atomic<int> m_walkedFolders = 0;
    mutable std::atomic<int> m_countedFolders = 0;
    mutable std::vector<Exclusion> m_exclusions;
    mutable QList<Cycle> m_cycles;
    // In the order of the walk, and by path once files are counted.
    mutable std::vector<FileCount> m_fileCounts;
    mutable bool m_areFileCountsSorted = false;
    // Behind the one that was found last.
    mutable size_t m_nextFileCount = 0;
    // A QMap or a QSet would end the program when memory runs out.
    mutable std::set<QString> m_symlinks;
    mutable std::map<QString, QList<IncompleteListing>> m_incomplete;
};
