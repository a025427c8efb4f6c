#pragma once

#include <QtCore/QString>

/// The program's standard output and standard error.
namespace Terminal {

/// Opens the null device in place of each of standard input, output and error that is closed.
/// Otherwise a file that is opened later would get its descriptor, and the text that is meant for
/// it. This function has to be called before any other.
void occupyClosedStreams();

/// Returns the system's own words for the error \a number, an errno value.
[[nodiscard]] QString errorText(int number);

/// Returns true if standard error is a terminal on which a line can be overwritten, which is not so
/// if TERM is "dumb" or empty.
[[nodiscard]] bool canWriteOverErrorLine();

/// Returns how many columns the terminal of standard error has, or 80 if it does not say.
[[nodiscard]] int errorLineWidth();

/// Returns \a text with every control character and every character that changes the writing
/// direction replaced by "\uXXXX", so that a file name can neither control the terminal nor break a
/// line.
[[nodiscard]] QString escaped(const QString& text);

/// Writes \a line and a line feed to standard output. On a terminal the line is escaped; a file or
/// a pipe gets it as it is.
void writeLine(const QString& line);

/// Writes out what writeLine() has buffered.
///
/// \return true if everything was written. Otherwise a message on standard error says why, except
///     for a closed pipe, whose reader wants no more.
[[nodiscard]] bool flush();

/// Writes one line "vlfolio-classify: MESSAGE", escaped, to standard error.
void complain(const QString& message);

} // namespace Terminal
