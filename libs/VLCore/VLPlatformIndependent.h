#pragma once

/// \file

#include "VLGlobal.h"

#include <QtCore/QDir>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// What the libraries need from the desktop and the file system. instance() is the one service of
/// the process; a host that needs other behaviour derives a service of its own from this class and
/// passes it to setInstance(). Its operations are called on the thread that walks or writes a
/// report, and therefore on several threads at once if several walk.
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
    /// Makes a service with the built-in behaviour, which setInstance() puts in use.
    VLPlatformIndependent();
    virtual ~VLPlatformIndependent();
    Q_DISABLE_COPY_MOVE(VLPlatformIndependent)

    /// Returns the service in use, never null: the host's own or, without one, the built-in
    /// service, which lives until the process ends. May be called from any thread.
    [[nodiscard]] static VLPlatformIndependent* instance();

    /// Replaces the service in use by \a service, which remains the caller's and has to live until
    /// it is replaced and no thread uses it any more, or by the built-in one if that is nullptr. A
    /// call of instance() on another thread meanwhile returns the old service or the new one.
    static void setInstance(VLPlatformIndependent* service);

    /// Opens a file in an application that runs detached from this process, without its standard
    /// streams, and returns without waiting for it.
    ///
    /// \param path the file; a relative path is relative to the current working directory.
    /// \param arguments passed to \a application ahead of the file (on macOS behind `--args`).
    ///     They are ignored if \a application is empty.
    /// \param application the name or path of a program (on macOS also the name of an
    ///     application), or empty for the application that the desktop uses for such files.
    /// \return true if the program was started, which does not mean that it could show the file;
    ///     false, after one warning that names the file, if it could not be started.
    virtual bool openFile(const QString& path, const QStringList& arguments,
                          const QString& application);

    /// Why a listing is incomplete.
    enum class ListingProblem {
        /// The directory could not be opened, or could not be read to its end.
        Unreadable,
        /// The directory could be read, but not searched: nothing in it can be accessed.
        Unsearchable,
        /// The system could not tell the file type of an entry, or of a symlink's target.
        UnknownEntry,
        /// The name of a folder in it is not valid UTF-8, so that no QString can hold it.
        UndecodableName,
    };

    /// Returns the names of the regular files directly inside \a directory, in no particular
    /// order. Symlinks to regular files are included, as are files that cannot be read. Invalid
    /// UTF-8 in a name is replaced. Hidden files, directories, dangling symlinks, pipes, sockets
    /// and devices are left out.
    ///
    /// The report calls this once for each folder, to count the files. Of \a directory only the
    /// path is used, not its filters. What could not be read is missing, and listingIncomplete() is
    /// called for it; the list is empty if \a directory is no directory. Throws std::bad_alloc if
    /// the system is out of memory.
    [[nodiscard]] virtual QStringList getDirectFilesInDirectory(const QDir& directory) const;

    /// Returns the names of the folders directly inside \a directory, in no particular order. These
    /// are the entries that QDir lists for QDir::Dirs and QDir::NoDotAndDotDot: directories, and
    /// symlinks to anything but regular files. Hidden folders are left out, as are folders whose
    /// names are not valid UTF-8, for which listingIncomplete() is called. Unlike with QDir, such a
    /// name never hides another folder, and a byte order mark at the start of a name remains part
    /// of it.
    ///
    /// The walk calls this once for each folder, on its own thread, and sorts the names. A host
    /// that overrides it can therefore show the progress of a walk by counting the calls, leave out
    /// folders and everything below them by returning fewer names, and end a walk early by
    /// returning no names from then on. In all else as getDirectFilesInDirectory().
    [[nodiscard]] virtual QStringList
    getDirectSubdirectoriesInDirectory(const QDir& directory) const;

    /// Called after a report was to be written in \a directory, whether or not that failed, so that
    /// a host can refresh what it shows. The built-in service does nothing.
    virtual void directoryContentsChanged(const QDir& directory);

protected:
    /// Called by both built-in listings when a listing of \a directory is incomplete, so that a
    /// host can tell its user. \a systemError is the system's error number (errno), for which
    /// qt_error_string() has a text, or 0 if the system gave none. Each listing calls this at most
    /// once for each pair of \a problem and \a systemError; the two listings of a directory may
    /// report the same. The built-in service does nothing.
    virtual void listingIncomplete(const QDir& directory, ListingProblem problem,
                                   int systemError) const;

    /// Called by the built-in getDirectSubdirectoriesInDirectory(), on its thread and before it
    /// returns. \a symlinks are those of its names that belong to symlinks, so that a host can look
    /// for cycles. \a fileCount is how many names getDirectFilesInDirectory() would return then, or
    /// -1 if the listing is incomplete. A host that keeps the number can return as many empty names
    /// from there, and the report lists no directory again. The built-in service does nothing.
    virtual void directoryListed(const QDir& directory, const QStringList& symlinks,
                                 qsizetype fileCount) const;
};
