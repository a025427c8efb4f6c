#pragma once

/// \file

#include "VLGlobal.h"

#include <QtCore/QDir>
#include <QtCore/QString>
#include <QtCore/QStringList>

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

    /// Why a listing lacks something.
    enum class ListingProblem {
        /// The directory could not be opened, or not be read to its end.
        Unreadable,
        /// The directory could be read, but nothing in it can be entered or asked about.
        Unsearchable,
        /// The system could not tell what an entry is, or what a link leads to.
        UnknownEntry,
        /// The name of a folder in it is not UTF-8, so that no QString can hold it.
        UndecodableName,
    };

    /// Returns the names of the regular files directly inside \a directory, in no particular
    /// order. Links to regular files count, as do files that cannot be read and, with the bytes
    /// that are not UTF-8 replaced, files whose names are not. Hidden files, directories, dangling
    /// links, pipes, sockets and devices are left out.
    ///
    /// The report asks for them once for each folder, to count them. Of \a directory only the path
    /// is used, not its filters. What could not be read is missing, and listingIncomplete() says
    /// so; what is no directory has no files. Throws std::bad_alloc where the system lacks memory.
    [[nodiscard]] virtual QStringList getDirectFilesInDirectory(const QDir& directory) const;

    /// Returns the names of the folders directly inside \a directory, in no particular order: those
    /// of the entries that QDir lists for QDir::Dirs and QDir::NoDotAndDotDot. These are
    /// directories and links to anything but regular files. Hidden folders are left out, as are
    /// folders whose names are not UTF-8, which listingIncomplete() tells. In contrast to QDir,
    /// such a name never hides another folder, and a byte order mark at the start of a name stays a
    /// part of it.
    ///
    /// The walk asks for them once for each folder, on the thread that walks, and sorts them. So a
    /// host that overrides this can show how far a walk is by counting the calls, leave folders and
    /// everything below them out by returning fewer names, and end a walk early by returning no
    /// names from then on. Otherwise as getDirectFilesInDirectory().
    [[nodiscard]] virtual QStringList
    getDirectSubdirectoriesInDirectory(const QDir& directory) const;

    /// Called when files of \a directory were replaced, so that a host can refresh what it shows.
    /// The built-in service does nothing.
    virtual void directoryContentsChanged(const QDir& directory);

protected:
    /// Called by both built-in listings when they leave something of \a directory out, so that a
    /// host can tell its user. One call of a listing calls it at most once for each pair of
    /// \a problem and \a systemError; the two listings of a directory may tell the same. The
    /// built-in service does nothing.
    ///
    /// \param directory the directory that was listed.
    /// \param problem what is missing.
    /// \param systemError the system's reason as an errno value, for which qt_error_string() has a
    ///     text; 0 where the system gave none.
    virtual void listingIncomplete(const QDir& directory, ListingProblem problem,
                                   int systemError) const;
};
