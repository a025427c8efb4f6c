#pragma once

#include "CommandLine.h"

#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QDir>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <atomic>

/// The platform service of the program: opens the report only when the user wants that and a
/// browser may be trusted with it. In use for as long as it lives.
class HostPlatform : public VLPlatformIndependent
{
public:
    /// Something in the directory at \a path was left out, and why.
    struct Omission
    {
        QString path;
        ListingProblem problem;
        /// Why, as an errno value; 0 where the system gave no reason.
        int systemError;
    };

    explicit HostPlatform(CommandLine::Opening opening);
    ~HostPlatform() override;
    Q_DISABLE_COPY_MOVE(HostPlatform)

    /// Opens nothing yet: only openReport() knows whether the report could be written.
    bool openFile(const QString& path, const QStringList& arguments,
                  const QString& application) override;

    /// Lists \a directory as the built-in service does. The report asks once for each folder, so
    /// this is where folders are counted and their names looked at.
    [[nodiscard]] QStringList getDirectFilesInDirectory(const QDir& directory) const override;

    /// How many folders were listed. May be called from any thread.
    [[nodiscard]] int folderCount() const;

    /// Path of the report that was to be opened; empty before.
    [[nodiscard]] QString reportPath() const;

    /// What the listings so far left out of the directory at \a path, each once.
    [[nodiscard]] QList<Omission> omissionsIn(const QString& path) const;

    /// Says which folders hold something that was left out, and why.
    void tellOmissions() const;

    /// Opens the report, or says why not.
    void openReport();

protected:
    void listingIncomplete(const QDir& directory, ListingProblem problem,
                           int systemError) const override;

private:
    CommandLine::Opening m_opening;
    QString m_reportPath;
    mutable std::atomic<int> m_folderCount = 0;
    mutable int m_markupCount = 0;
    mutable QList<Omission> m_omissions;
};
