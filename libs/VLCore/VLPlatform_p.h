#pragma once

#include "VLPlatformIndependent.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// What differs between the platforms, and what they share. One source file per platform defines
/// openCommand() and listing().
namespace VLPlatform {

/// A program and its arguments.
struct Command
{
    /// Name or path of the program.
    QString program;
    QStringList arguments;
};

/// Returns the command that opens the file at the absolute path \a path in \a application or, if
/// that is empty, in the application that the desktop uses for such files.
[[nodiscard]] Command openCommand(const QString& path, const QStringList& arguments,
                                  const QString& application);

/// Why a listing is incomplete.
struct Problem
{
    VLPlatformIndependent::ListingProblem kind;
    /// The system's error number (errno), or 0 if it gave none.
    int systemError;
};

/// The entries directly inside a directory, in no particular order.
struct Listing
{
    QStringList names;
    /// Each pair of a problem and an error number is in the list once.
    QList<Problem> problems;
};

/// Which entries are listed. Hidden ones never are.
enum class Wanted {
    /// Regular files and symlinks to them. Invalid UTF-8 in their names is replaced.
    Files,
    /// Directories and symlinks to anything but regular files, as with QDir::Dirs. Those whose
    /// names are not valid UTF-8 are left out, because no QString can hold the path to them.
    Directories,
};

/// Lists the directory at \a path, which must be a native path. The listing is empty if there is
/// something else at the path. Throws std::bad_alloc if the system is out of memory.
[[nodiscard]] Listing listing(const QString& path, Wanted wanted);

/// Lists the directory at \a path with QDirIterator, which supports file engines and knows what is
/// hidden on each platform, but does not report errors.
[[nodiscard]] QStringList namesListedByQt(const QString& path, Wanted wanted);

/// A directory that is open for as long as the object lives.
class OpenDirectory
{
public:
    explicit OpenDirectory(const QByteArray& path);
    ~OpenDirectory();
    Q_DISABLE_COPY_MOVE(OpenDirectory)

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int descriptor() const { return m_descriptor; }
    /// The error number (errno) if the directory could not be opened, or 0.
    [[nodiscard]] int error() const { return m_error; }
    /// False if the directory cannot be searched (EACCES), so that its entries cannot be accessed.
    [[nodiscard]] bool isSearchable() const { return m_isSearchable; }

private:
    int m_descriptor;
    int m_error;
    bool m_isSearchable = true;
};

/// Adds a problem to \a listing unless it is in there already. Throws std::bad_alloc if
/// \a systemError is ENOMEM.
void addProblem(Listing& listing, VLPlatformIndependent::ListingProblem kind, int systemError);

/// Adds the problem that \a directory could not be opened.
void addNotOpened(Listing& listing, const OpenDirectory& directory);

/// If \a directory cannot be searched, adds that problem in place of those of single entries that
/// have the same cause.
void addIfUnsearchable(Listing& listing, const OpenDirectory& directory);

} // namespace VLPlatform
