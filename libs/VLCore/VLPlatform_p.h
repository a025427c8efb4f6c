#pragma once

#include "VLPlatformIndependent.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// What differs between the platforms, and what they share. One source file per platform defines
/// openCommand() and readEntries().
namespace VLPlatform {

/// Returns the command that opens the file at the absolute path \a path in \a application or, if
/// that is empty, in the application that the desktop uses for such files. The first string is the
/// name or path of a program, the others are its arguments.
[[nodiscard]] QStringList openCommand(const QString& path, const QStringList& arguments,
                                      const QString& application);

/// Why a listing is incomplete.
struct Problem
{
    VLPlatformIndependent::ListingProblem kind;
    /// The system's error number (errno), or 0 if it gave none.
    int systemError;
};

/// Which entries are listed. Hidden ones never are.
enum class Wanted {
    /// Regular files and symlinks to them. Invalid UTF-8 in their names is replaced.
    Files,
    /// Directories and symlinks to anything but regular files, as with QDir::Dirs. Those whose
    /// names are not valid UTF-8 are left out, because no QString can hold the path to them.
    Directories,
};

/// The entries directly inside a directory, in no particular order.
struct Listing
{
    QStringList names;
    /// Those of the names that belong to symlinks.
    QStringList symlinks;
    /// How many names there would be if files were wanted.
    qsizetype fileCount = 0;
    /// Each pair of a problem and an error number is in the list once.
    QList<Problem> problems;
};

/// Adds a problem to \a listing unless it is in there already. Throws std::bad_alloc if
/// \a systemError is ENOMEM.
void addProblem(Listing& listing, VLPlatformIndependent::ListingProblem kind, int systemError);

/// If the directory that is open as \a descriptor cannot be searched, adds that problem in place of
/// those of single entries that have the same cause.
void addIfUnsearchable(Listing& listing, int descriptor);

/// Lists the directory at \a path, which must be a native path. The listing is empty if there is
/// something else at the path. Throws std::bad_alloc if the system is out of memory.
[[nodiscard]] Listing listing(const QString& path, Wanted wanted);

/// Lists the directory at \a path with QDirIterator, which supports file engines and knows what is
/// hidden on each platform, but does not report errors.
[[nodiscard]] Listing listingByQt(const QString& path, Wanted wanted);

/// Lists the directory at \a path, which the caller has opened as \a descriptor and closes.
[[nodiscard]] Listing readEntries(int descriptor, const QString& path, Wanted wanted);

} // namespace VLPlatform
