#pragma once

#include <QtCore/QString>

/// The program's standard output and standard error.
namespace Terminal {

/// Puts the null device where standard input, output or error is closed, so that no file that is
/// opened later takes that place and gets what is written there. Call it before anything else.
void occupyClosedStreams();

/// The system's own words for the error \a number, an errno value.
[[nodiscard]] QString errorText(int number);

/// True when standard error is a terminal on which a line can be written over: not one that says in
/// TERM that it is "dumb", or nothing.
[[nodiscard]] bool canWriteOverErrorLine();

/// How many columns the terminal of standard error has; 80 where it does not say.
[[nodiscard]] int errorLineWidth();

/// Returns \a text with every control character and every character that changes the direction of
/// writing replaced by "\uXXXX", so that a file name can neither steer a terminal nor break a line.
[[nodiscard]] QString escaped(const QString& text);

/// Writes \a line and a line feed to standard output: as it is into a file or a pipe, with
/// characters escaped on a terminal.
void writeLine(const QString& line);

/// Sends off what writeLine() has collected.
///
/// \return true when all of it was written. When nobody reads any more (a closed pipe), that is
///     not worth a message; any other error is told on standard error.
[[nodiscard]] bool flush();

/// Writes one line "vlfolio-classify: MESSAGE", escaped, to standard error.
void complain(const QString& message);

} // namespace Terminal
