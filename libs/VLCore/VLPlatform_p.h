#pragma once

#include "VLPlatformIndependent.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// What differs from one platform to the next, and what the platforms share for that. One source
/// file per platform defines openCommand() and listing().
namespace VLPlatform {

/// A program and what it is started with.
struct Command
{
    /// Name or path of the program.
    QString program;
    /// Its arguments, in order.
    QStringList arguments;
};

/// The command that shows the file at the absolute path \a path in \a application, or, where that
/// is empty, in the application that the desktop has chosen.
[[nodiscard]] Command openCommand(const QString& path, const QStringList& arguments,
                                  const QString& application);

/// Why a listing lacks something.
struct Problem
{
    VLPlatformIndependent::ListingProblem kind;
    /// The system's error number (errno), 0 where it gave none.
    int systemError;
};

/// What stands directly inside a directory, in no particular order.
struct Listing
{
    QStringList names;
    /// Each problem with each error once.
    QList<Problem> problems;
};

/// What to look for; hidden entries are left out.
enum class Wanted {
    /// Regular files and links to such. In names that are not UTF-8, invalid bytes are replaced.
    Files,
    /// Directories and links to anything but regular files, as QDir::Dirs has them. Those whose
    /// names are not UTF-8 are left out: no QString leads to them.
    Directories,
};

/// Reads the directory at \a path, which no file engine stands behind. What is no directory has
/// nothing in it. Throws std::bad_alloc where the system lacks memory.
[[nodiscard]] Listing listing(const QString& path, Wanted wanted);

/// Lists the directory at \a path by QDirIterator, which knows file engines and what each platform
/// hides, but does not tell what went wrong.
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
    /// Why it could not be opened (errno), or 0.
    [[nodiscard]] int error() const { return m_error; }
    /// False if its entries can be neither asked about nor entered (EACCES).
    [[nodiscard]] bool isSearchable() const { return m_isSearchable; }

private:
    int m_descriptor;
    int m_error;
    bool m_isSearchable = true;
};

/// Adds a problem to \a listing unless it is there. Throws std::bad_alloc for the error ENOMEM.
void addProblem(Listing& listing, VLPlatformIndependent::ListingProblem kind, int systemError);

/// Adds that \a directory, which is not open, cannot be read.
void addNotOpened(Listing& listing, const OpenDirectory& directory);

/// Adds that nothing in \a directory can be entered or asked, if that is so, in place of what was
/// found out about single entries for the same reason.
void addIfUnsearchable(Listing& listing, const OpenDirectory& directory);

} // namespace VLPlatform
