#include "OriginalFunction.h"

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::atomic<long> callsLeft = 0;
const char* command = nullptr;

/// Takes the number of the call and the shell's command from the environment.
[[gnu::constructor]] void arm()
{
    const char* const order = std::getenv("VLFOLIO_COMMAND_AT_CALL");
    int start = 0;
    long call = 0;
    if (order == nullptr || std::sscanf(order, "%ld %n", &call, &start) != 1)
        return;
    command = order + start;
    callsLeft = call;
}

// Before the call is made: what the one before it has done is all that was done.
void count()
{
    if (callsLeft <= 0 || --callsLeft != 0)
        return;
    std::array<char, 8> shell { "/bin/sh" };
    std::array<char, 3> option { "-c" };
    char path[] = "PATH=/usr/bin:/bin";
    std::array<char*, 4> arguments { shell.data(), option.data(), const_cast<char*>(command),
                                     nullptr };
    std::array<char*, 2> environment { path, nullptr };
    pid_t child = 0;
    if (posix_spawn(&child, shell.data(), nullptr, nullptr, arguments.data(), environment.data())
        == 0) {
        waitpid(child, nullptr, 0);
    }
}

mode_t modeOf(int flags, va_list arguments)
{
    // Passed as an int where it is shorter than one.
    return isModeGiven(flags) ? static_cast<mode_t>(va_arg(arguments, unsigned)) : 0;
}

} // namespace

/// Take the places of the C library's functions. Before one of the calls, a command is run.
extern "C" {

int open(const char* path, int flags, ...)
{
    static const auto function = original<int (*)(const char*, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    count();
    return function(path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    static const auto function = original<int (*)(const char*, int, ...)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    count();
    return function(path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...)
{
    static const auto function = original<int (*)(int, const char*, int, ...)>("openat");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    count();
    return function(directory, path, flags, mode);
}

int close(int descriptor)
{
    static const auto function = original<int (*)(int)>("close");
    count();
    return function(descriptor);
}

ssize_t write(int descriptor, const void* data, std::size_t size)
{
    static const auto function = original<ssize_t (*)(int, const void*, std::size_t)>("write");
    count();
    return function(descriptor, data, size);
}

int fsync(int descriptor)
{
    static const auto function = original<int (*)(int)>("fsync");
    count();
    return function(descriptor);
}

int mkdirat(int directory, const char* path, mode_t mode) noexcept
{
    static const auto function = original<int (*)(int, const char*, mode_t)>("mkdirat");
    count();
    return function(directory, path, mode);
}

int renameat(int from, const char* path, int to, const char* newPath) noexcept
{
    static const auto function = original<int (*)(int, const char*, int, const char*)>("renameat");
    count();
    return function(from, path, to, newPath);
}

int unlinkat(int directory, const char* path, int flags) noexcept
{
    static const auto function = original<int (*)(int, const char*, int)>("unlinkat");
    count();
    return function(directory, path, flags);
}

DIR* opendir(const char* path)
{
    static const auto function = original<DIR* (*)(const char*)>("opendir");
    count();
    return function(path);
}

int closedir(DIR* stream)
{
    static const auto function = original<int (*)(DIR*)>("closedir");
    count();
    return function(stream);
}

} // extern "C"
