#include "FailingCalls.h"

#include "OriginalFunction.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using Path = std::array<char, PATH_MAX>;

long firstFailing = 0;
long lastFailing = 0;
long count = 0;
bool announces = false;
int errorNumber = 0;
std::array<char, 16> armedCall {};
Path armedDirectory {};
Path failedPath {};

void copy(std::string_view text, char* target, std::size_t size)
{
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(target, text.data(), length);
    target[length] = '\0';
}

bool isInArmedDirectory(std::string_view path)
{
    const std::string_view directory(armedDirectory.data());
    return path.substr(0, directory.size()) == directory
        && (path.size() == directory.size() || path[directory.size()] == '/');
}

bool fails(std::string_view call, std::string_view path)
{
    if (lastFailing == 0 || call != armedCall.data() || !isInArmedDirectory(path))
        return false;
    ++count;
    if (count < firstFailing || count > lastFailing)
        return false;
    if (announces && failedPath[0] == '\0')
        syscall(SYS_write, STDERR_FILENO, "failed\n", 7);
    copy(path, failedPath.data(), failedPath.size());
    if (errorNumber >= 0)
        errno = errorNumber;
    return true;
}

// The path of what a descriptor stands for, and of a name in it.
Path pathOf(int descriptor, const char* name = "")
{
    Path path {};
    if (name[0] == '/') {
        copy(name, path.data(), path.size());
        return path;
    }
    std::array<char, 40> link {};
    if (descriptor == AT_FDCWD)
        std::snprintf(link.data(), link.size(), "/proc/self/cwd");
    else
        std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    const int previousError = errno;
    const long length = syscall(SYS_readlink, link.data(), path.data(), path.size() - 1);
    errno = previousError;
    std::size_t end = length > 0 ? static_cast<std::size_t>(length) : 0;
    if (name[0] != '\0' && end + 1 < path.size()) {
        path[end++] = '/';
        copy(name, path.data() + end, path.size() - end);
    }
    return path;
}

bool fails(std::string_view call, int descriptor, const char* name = "")
{
    return lastFailing > 0 && fails(call, std::string_view(pathOf(descriptor, name).data()));
}

bool failsAt(std::string_view call, const char* path)
{
    return fails(call, AT_FDCWD, path);
}

// With the file types no more told, if that is what is armed.
void forgetFileTypes(int descriptor, void* entries, ssize_t size)
{
    if (!fails("kind", descriptor))
        return;
    for (ssize_t offset = 0; offset < size;) {
        auto* const entry = reinterpret_cast<dirent64*>(static_cast<char*>(entries) + offset);
        entry->d_type = DT_UNKNOWN;
        offset += entry->d_reclen;
    }
}

[[gnu::constructor]] void armFromEnvironment()
{
    const char* const order = std::getenv("VLFOLIO_FAILING_CALL");
    if (order == nullptr)
        return;
    std::array<char, 16> call {};
    long first = 0;
    long last = 0;
    int error = 0;
    int directory = 0;
    if (std::sscanf(order, "%15s %ld %ld %d %n", call.data(), &first, &last, &error, &directory)
        != 4)
        return;
    announces = true;
    vlArmFailingCall(call.data(), first, last, error, order + directory);
}

} // namespace

void vlArmFailingCall(const char* call, long first, long last, int error, const char* directory)
{
    copy(call, armedCall.data(), armedCall.size());
    copy(directory, armedDirectory.data(), armedDirectory.size());
    failedPath[0] = '\0';
    errorNumber = error;
    count = 0;
    firstFailing = first;
    lastFailing = last;
}

const char* vlDisarmFailingCall()
{
    lastFailing = 0;
    return failedPath[0] == '\0' ? nullptr : failedPath.data();
}

extern "C" {

int access(const char* path, int mode) noexcept
{
    static const auto function = original<decltype(&access)>("access");
    return failsAt("access", path) ? -1 : function(path, mode);
}

// The descriptor is gone afterwards, whatever the answer is.
int close(int descriptor)
{
    static const auto function = original<decltype(&close)>("close");
    const bool failing = fails("close", descriptor);
    const int result = function(descriptor);
    if (!failing)
        return result;
    errno = errorNumber;
    return -1;
}

int open(const char* path, int flags, ...)
{
    static const auto function = original<int (*)(const char*, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = isModeGiven(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return failsAt("open", path) ? -1 : function(path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    static const auto function = original<int (*)(const char*, int, ...)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = isModeGiven(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return failsAt("open", path) ? -1 : function(path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...)
{
    static const auto function = original<int (*)(int, const char*, int, ...)>("openat");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = isModeGiven(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return fails("open", directory, path) ? -1 : function(directory, path, flags, mode);
}

ssize_t getdents64(int descriptor, void* entries, std::size_t size) noexcept
{
    static const auto function = original<decltype(&getdents64)>("getdents64");
    if (fails("getdents64", descriptor))
        return -1;
    const ssize_t used = function(descriptor, entries, size);
    if (lastFailing > 0)
        forgetFileTypes(descriptor, entries, used);
    return used;
}

ssize_t readlink(const char* path, char* target, std::size_t size) noexcept
{
    static const auto function = original<decltype(&readlink)>("readlink");
    return failsAt("readlink", path) ? -1 : function(path, target, size);
}

char* realpath(const char* path, char* resolved) noexcept
{
    static const auto function = original<decltype(&realpath)>("realpath");
    return failsAt("realpath", path) ? nullptr : function(path, resolved);
}

// What realpath() becomes in a library that was built with _FORTIFY_SOURCE.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
char* __realpath_chk(const char* path, char* resolved, std::size_t size) noexcept
{
    static const auto function = original<decltype(&__realpath_chk)>("__realpath_chk");
    return failsAt("realpath", path) ? nullptr : function(path, resolved, size);
}

int stat(const char* path, struct stat* data) noexcept
{
    static const auto function = original<int (*)(const char*, struct stat*)>("stat");
    return failsAt("stat", path) ? -1 : function(path, data);
}

int stat64(const char* path, struct stat64* data) noexcept
{
    static const auto function = original<int (*)(const char*, struct stat64*)>("stat64");
    return failsAt("stat", path) ? -1 : function(path, data);
}

int lstat(const char* path, struct stat* data) noexcept
{
    static const auto function = original<int (*)(const char*, struct stat*)>("lstat");
    return failsAt("stat", path) ? -1 : function(path, data);
}

int lstat64(const char* path, struct stat64* data) noexcept
{
    static const auto function = original<int (*)(const char*, struct stat64*)>("lstat64");
    return failsAt("stat", path) ? -1 : function(path, data);
}

int fstat(int descriptor, struct stat* data) noexcept
{
    static const auto function = original<int (*)(int, struct stat*)>("fstat");
    return fails("stat", descriptor) ? -1 : function(descriptor, data);
}

int fstat64(int descriptor, struct stat64* data) noexcept
{
    static const auto function = original<int (*)(int, struct stat64*)>("fstat64");
    return fails("stat", descriptor) ? -1 : function(descriptor, data);
}

int fstatat(int directory, const char* path, struct stat* data, int flags) noexcept
{
    static const auto function = original<int (*)(int, const char*, struct stat*, int)>("fstatat");
    return fails("stat", directory, path) ? -1 : function(directory, path, data, flags);
}

int statx(int directory, const char* path, int flags, unsigned int mask,
          struct statx* data) noexcept
{
    static const auto function =
        original<int (*)(int, const char*, int, unsigned int, struct statx*)>("statx");
    return fails("stat", directory, path) ? -1 : function(directory, path, flags, mask, data);
}

int unlink(const char* path) noexcept
{
    static const auto function = original<decltype(&unlink)>("unlink");
    return failsAt("unlink", path) ? -1 : function(path);
}

ssize_t write(int descriptor, const void* data, std::size_t size)
{
    static const auto function = original<decltype(&write)>("write");
    return fails("write", descriptor) ? -1 : function(descriptor, data, size);
}

} // extern "C"
