#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/// What differs from one platform to the next. One source file per platform defines it.
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

/// True where a file system may hold names that are not UTF-8.
[[nodiscard]] bool mayHoldUndecodableNames();

/// What stands directly inside a directory, in no particular order.
struct Listing
{
    /// Names of the regular files and of links to such, those that are not UTF-8 included, hidden
    /// ones left out.
    QStringList files;
    /// Names of the directories and of links to anything but regular files, hidden ones left out:
    /// those that QDir lists as directories. A name that is not UTF-8 is left out, too: no QString
    /// leads to it.
    QStringList directories;
    /// True when any name, also a hidden one, is not UTF-8.
    bool holdsUndecodableName = false;
    /// False when the directory could not be read, or not to its end.
    bool isComplete = false;
};

/// What to look for: the kind of an entry may cost a system call.
enum class Wanted { Files, Directories };

/// Reads the directory at \a path, which no file engine stands behind. The listing is empty when it
/// cannot be read.
[[nodiscard]] Listing listing(const QString& path, Wanted wanted);

} // namespace VLPlatform
