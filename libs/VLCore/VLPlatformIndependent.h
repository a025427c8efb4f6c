#pragma once

/// \file

#include "VLGlobal.h"

#include <QtCore/QDir>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/// What the libraries need of the desktop and its file system. instance() is the one service of
/// the process; a host that wants another behaviour derives from this class and puts its own
/// service in.
///
/// \code
/// class QuietPlatform : public VLPlatformIndependent
/// {
/// public:
///     bool openFile(const QString&, const QStringList&, const QString&) override { return true; }
/// };
/// QuietPlatform platform;
/// VLPlatformIndependent::setInstance(&platform);
/// \endcode
class VLCORE_EXPORT VLPlatformIndependent
{
public:
    /// Makes a service with the built-in behaviour. It is not used until setInstance() is called.
    VLPlatformIndependent();
    /// Releases nothing. A service that is still set must be taken out before.
    virtual ~VLPlatformIndependent();
    Q_DISABLE_COPY_MOVE(VLPlatformIndependent)

    /// Returns the service in use, never null: the host's own or, without one, the built-in
    /// service, which lives until the process ends. May be called from any thread.
    [[nodiscard]] static VLPlatformIndependent* instance();

    /// Puts \a service in the place of the present one; nullptr puts the built-in one back. The
    /// service stays the caller's, who keeps it alive until it has been replaced and no thread
    /// uses it any more. Safe while other threads call instance(): they get the old service or the
    /// new one.
    static void setInstance(VLPlatformIndependent* service);

    /// Opens a file in an application that goes on by itself, with none of this process's standard
    /// streams, and returns without waiting for it.
    ///
    /// \param path the file; a relative one is taken from the current working directory.
    /// \param arguments handed to \a application ahead of the file (on macOS behind
    ///     `--args`). The desktop's own choice takes none, so they count only with an application.
    /// \param application program name or path (on macOS also an application's name), or empty
    ///     for the application that the desktop has chosen for such files.
    /// \return true when the program was started, which does not say that it could show the file;
    ///     false, after one warning that names the file, when it could not be started.
    virtual bool openFile(const QString& path, const QStringList& arguments,
                          const QString& application);

    /// Returns the names of the regular files directly inside \a directory, in no particular
    /// order. Links to regular files count, as do files that cannot be read and, with the bytes
    /// that are not UTF-8 replaced, files whose names are not. Hidden files, directories, dangling
    /// links, pipes, sockets and devices are left out. The list is empty when the directory does
    /// not exist or cannot be read. Only the path of \a directory is used, not its filters.
    [[nodiscard]] virtual QStringList getDirectFilesInDirectory(const QDir& directory) const;

    /// Called when files of \a directory were replaced, so that a host can refresh what it shows.
    /// The built-in service does nothing.
    virtual void directoryContentsChanged(const QDir& directory);

    /// Returns the names of the directories directly inside \a directory, and of links to anything
    /// but regular files, as QDir::Dirs has them, if anything in it has a name that is not UTF-8;
    /// otherwise nothing. Names that are not UTF-8 and hidden ones are left out; the order is
    /// unspecified.
    ///
    /// Qt's listing passes over a name that it cannot decode in Qt 6.4, and ends at it in Qt 6.8
    /// (nothing between them was tried): there this finds the directories that it loses.
    [[nodiscard]] static std::optional<QStringList>
    directoriesBesideUndecodableNames(const QDir& directory);

protected:
    /// Why a listing lacks something.
    enum class ListingProblem {
        /// The directory could not be read, or not to its end.
        Unreadable,
        /// A name in it is not UTF-8, so that no QString can hold it.
        UndecodableName,
    };

    /// Called by the built-in getDirectFilesInDirectory() when something in \a directory cannot be
    /// shown, at most once for each problem, so that a host can say so. The built-in service does
    /// nothing.
    virtual void listingIncomplete(const QDir& directory, ListingProblem problem) const;
};
