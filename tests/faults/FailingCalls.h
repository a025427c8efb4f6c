#pragma once

/// Calls of the system that can be told to fail, or to wait for a command. A shared library that
/// takes the place of the C library's functions: in a program that is linked with it, and in one
/// that it is preloaded into.
///
/// The calls are "access", "change" (of a directory), "close", "getdents64", "open", "realpath",
/// "stat" (in all its forms), "unlink" and "write". Those of the C library within itself do not
/// count. "kind" lets "getdents64" go on without telling file types, as on some file systems.
/// "compile" and "search" are those of regular expressions, which lack memory then; "expression" is
/// their directory.
///
/// These variables of the environment are for programs that it is preloaded into:
///
/// - FAILING_CALL, "CALL FIRST LAST ERROR DIRECTORY", arms it at the program's begin. The line
///   "failed" on standard error tells then that a call has failed.
/// - AT_CALL and AT_OTHER_CALL, "CALL NUMBER COMMAND", let the shell run a command before that call
///   is made. "any" stands for each call that opens, closes, writes or changes something. The
///   command "await" waits until another line of the progress has been shown.
/// - NEW_ROOT is the directory that becomes the root of the file system before the program begins.
extern "C" {

/// Makes the \a first to the \a last \a call on \a directory or on anything below it fail with
/// \a error, an errno value. The very first call is 1. With 0 for the error nothing fails, and each
/// such call is told instead, as a line "CALL PATH" on standard error.
void vlArmFailingCall(const char* call, long first, long last, int error, const char* directory);

/// Ends the failing. Returns the path that the last failed call was about, or a null pointer if
/// none has failed.
const char* vlDisarmFailingCall();

/// How many such calls there were since it was armed.
long vlFailingCallCount();

} // extern "C"
