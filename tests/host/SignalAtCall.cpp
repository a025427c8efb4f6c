#include "OriginalFunction.h"

#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

int signalNumber = 0;
std::atomic<long> callsLeft = 0;

/// Takes the signal's number and that of the call from the environment.
[[gnu::constructor]] void arm()
{
    const char* const order = std::getenv("VLFOLIO_SIGNAL_AT_CALL");
    long call = 0;
    if (order != nullptr && std::sscanf(order, "%d %ld", &signalNumber, &call) == 2)
        callsLeft = call;
}

// Before the call is made: what the one before it has done is all that was done.
void count()
{
    if (callsLeft > 0 && --callsLeft == 0)
        kill(getpid(), signalNumber);
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    static const auto function = original<int (*)(const char*, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = isModeGiven(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    count();
    return function(path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    static const auto function = original<int (*)(const char*, int, ...)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = isModeGiven(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    count();
    return function(path, flags, mode);
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

int unlink(const char* path) noexcept
{
    static const auto function = original<int (*)(const char*)>("unlink");
    count();
    return function(path);
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
