#pragma once

#include "RawDirectory.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// Runs commands in which "vlfolio-classify" is the program that is tested and "xdg-open" one that
/// prints "opens" and its arguments. In the environment there is no desktop, and the language is
/// none. The descriptor 8 is a terminal.
namespace Shell {

struct Outcome
{
    /// As a shell has it: of a program that a signal ended, 128 and the signal's number.
    int exitCode = -1;
    /// With what the opener prints, even if the program ends ahead of it.
    QByteArray output;
    QByteArray error;
    /// What was shown on the terminal.
    QByteArray terminal;
};

/// The exit code of a command that cannot set up what it needs: nothing was tested.
constexpr int setUpFailed = 125;

/// Runs \a command to its end in the directory \a tree, whose path stands for each "{}" in it. If
/// the command \a obeysPermissions, the superuser's right to pass over them is taken away, so that
/// root meets the same refusals as any other user.
[[nodiscard]] Outcome run(const QString& command, const RawDirectory& tree,
                          bool obeysPermissions = false);

} // namespace Shell
