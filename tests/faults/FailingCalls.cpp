#include "FailingCalls.h"

#include "OriginalFunction.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <clocale>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string_view>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

using Path = std::array<char, PATH_MAX>;

// What stands for the path of calls that have none.
constexpr std::string_view expression("expression");

long firstFailing = 0;
long lastFailing = 0;
long count = 0;
bool announces = false;
int errorNumber = 0;
std::array<char, 16> armedCall {};
Path armedDirectory {};
Path failedPath {};

// A command that is run before a call.
struct Order
{
    std::array<char, 16> call {};
    std::atomic<long> callsLeft = 0;
    const char* command = nullptr;
};

std::array<Order, 2> orders {};
// Each line of the progress is flushed.
std::atomic<long> flushes = 0;

void copy(std::string_view text, char* target, std::size_t size)
{
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(target, text.data(), length);
    target[length] = '\0';
}

void tell(std::initializer_list<std::string_view> texts)
{
    for (const std::string_view text : texts)
        syscall(SYS_write, STDERR_FILENO, text.data(), text.size());
}

// Gives up after a time that no machine takes.
void awaitProgress()
{
    const long before = flushes;
    for (int i = 0; i < 6000 && flushes == before; ++i)
        std::this_thread::sleep_for(10ms);
}

void run(const char* command)
{
    char shell[] = "/bin/sh";
    char option[] = "-c";
    char path[] = "PATH=/usr/bin:/bin";
    std::array<char*, 4> arguments { shell, option, const_cast<char*>(command), nullptr };
    std::array<char*, 2> environment { path, nullptr };
    pid_t child = 0;
    if (posix_spawn(&child, shell, nullptr, nullptr, arguments.data(), environment.data()) == 0)
        waitpid(child, nullptr, 0);
}

// Before the call is made: what the one before it has done is all that was done.
void obeyOrders(std::string_view call)
{
    for (Order& order : orders) {
        const bool isMeant = std::string_view(order.call.data()) == "any"
            ? call == "open" || call == "close" || call == "write" || call == "change"
            : call == order.call.data();
        if (!isMeant || order.callsLeft <= 0 || --order.callsLeft != 0)
            continue;
        if (std::string_view(order.command) == "await")
            awaitProgress();
        else
            run(order.command);
    }
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
    if (errorNumber == 0 && call != "kind") {
        tell({ call, " ", path, "\n" });
        return false;
    }
    if (announces && failedPath[0] == '\0')
        tell({ "failed\n" });
    copy(path, failedPath.data(), failedPath.size());
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
    obeyOrders(call);
    return lastFailing > 0 && fails(call, std::string_view(pathOf(descriptor, name).data()));
}

bool failsAt(std::string_view call, const char* path)
{
    return fails(call, AT_FDCWD, path);
}

void forgetFileTypes(char* entries, ssize_t size)
{
    for (ssize_t offset = 0; offset < size;) {
        auto* const entry = reinterpret_cast<dirent64*>(entries + offset);
        entry->d_type = DT_UNKNOWN;
        offset += entry->d_reclen;
    }
}

void takeOrder(Order& order, const char* text)
{
    long call = 0;
    int command = 0;
    if (text == nullptr
        || std::sscanf(text, "%15s %ld %n", order.call.data(), &call, &command) != 2)
        return;
    order.command = text + command;
    order.callsLeft = call;
}

void changeRoot(const char* root)
{
    // The new root has no data of locales. Those that are loaded already, the C library keeps.
    std::setlocale(LC_ALL, "");
    constexpr int setUpFailed = 125;
    if (chroot(root) != 0 || chdir("/") != 0)
        _exit(setUpFailed);
}

[[gnu::constructor]] void obeyEnvironment()
{
    if (const char* const root = std::getenv("NEW_ROOT"))
        changeRoot(root);
    takeOrder(orders.front(), std::getenv("AT_CALL"));
    takeOrder(orders.back(), std::getenv("AT_OTHER_CALL"));
    const char* const order = std::getenv("FAILING_CALL");
    std::array<char, 16> call {};
    long first = 0;
    long last = 0;
    int error = 0;
    int directory = 0;
    if (order == nullptr
        || std::sscanf(order, "%15s %ld %ld %d %n", call.data(), &first, &last, &error, &directory)
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

long vlFailingCallCount()
{
    return count;
}

// A function, its parameters and the arguments for the one of the same name that stands behind, the
// call that fails, and what it is about: a descriptor, or a path that begins there.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define FAILING(name, parameters, arguments, call, ...)                                            \
    int name parameters                                                                            \
    {                                                                                              \
        return fails(call, __VA_ARGS__) ? -1 : original<decltype(&name)>(#name) arguments;         \
    }
// NOLINTEND(bugprone-macro-parentheses)
#define FAILING_OPEN(name)                                                                         \
    int name(const char* path, int flags, ...)                                                     \
    {                                                                                              \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const mode_t mode = isModeGiven(flags) ? va_arg(arguments, mode_t) : 0;                    \
        va_end(arguments);                                                                         \
        return failsAt("open", path) ? -1 : original<decltype(&(name))>(#name)(path, flags, mode); \
    }

extern "C" {

// clang-format off
FAILING_OPEN(open)
FAILING_OPEN(open64)
FAILING(stat, (const char* path, struct stat* data) noexcept, (path, data), "stat", AT_FDCWD, path)
FAILING(stat64, (const char* path, struct stat64* data) noexcept, (path, data), "stat", AT_FDCWD, path)
FAILING(lstat, (const char* path, struct stat* data) noexcept, (path, data), "stat", AT_FDCWD, path)
FAILING(lstat64, (const char* path, struct stat64* data) noexcept, (path, data), "stat", AT_FDCWD, path)
FAILING(fstat, (int file, struct stat* data) noexcept, (file, data), "stat", file)
FAILING(fstat64, (int file, struct stat64* data) noexcept, (file, data), "stat", file)
FAILING(fstatat, (int from, const char* path, struct stat* data, int flags) noexcept, (from, path, data, flags), "stat", from, path)
FAILING(fstatat64, (int from, const char* path, struct stat64* data, int flags) noexcept, (from, path, data, flags), "stat", from, path)
FAILING(statx, (int from, const char* path, int flags, unsigned mask, struct statx* data) noexcept, (from, path, flags, mask, data), "stat", from, path)
FAILING(access, (const char* path, int mode) noexcept, (path, mode), "access", AT_FDCWD, path)
FAILING(unlink, (const char* path) noexcept, (path), "unlink", AT_FDCWD, path)
FAILING(mkdirat, (int from, const char* path, mode_t mode) noexcept, (from, path, mode), "change", from, path)
FAILING(renameat, (int from, const char* path, int to, const char* name) noexcept, (from, path, to, name), "change", from, path)
FAILING(unlinkat, (int from, const char* path, int flags) noexcept, (from, path, flags), "change", from, path)
FAILING(fsync, (int file), (file), "change", file)
// clang-format on

int openat(int directory, const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = isModeGiven(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return fails("open", directory, path)
        ? -1
        : original<decltype(&openat)>("openat")(directory, path, flags, mode);
}

// The descriptor is gone afterwards, whatever the answer is.
int close(int descriptor)
{
    const bool failing = fails("close", descriptor);
    const int result = original<decltype(&close)>("close")(descriptor);
    if (!failing)
        return result;
    errno = errorNumber;
    return -1;
}

ssize_t getdents64(int descriptor, void* entries, std::size_t size) noexcept
{
    if (fails("getdents64", descriptor))
        return -1;
    const ssize_t used = original<decltype(&getdents64)>("getdents64")(descriptor, entries, size);
    if (fails("kind", descriptor))
        forgetFileTypes(static_cast<char*>(entries), used);
    return used;
}

char* realpath(const char* path, char* resolved) noexcept
{
    return failsAt("realpath", path) ? nullptr
                                     : original<decltype(&realpath)>("realpath")(path, resolved);
}

// What realpath() becomes in a library that was built with _FORTIFY_SOURCE.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
char* __realpath_chk(const char* path, char* resolved, std::size_t size) noexcept
{
    return failsAt("realpath", path)
        ? nullptr
        : original<decltype(&__realpath_chk)>("__realpath_chk")(path, resolved, size);
}

int fflush(std::FILE* stream)
{
    const int result = original<decltype(&fflush)>("fflush")(stream);
    if (stream == stderr)
        ++flushes;
    return result;
}

ssize_t write(int descriptor, const void* data, std::size_t size)
{
    return fails("write", descriptor) ? -1
                                      : original<decltype(&write)>("write")(descriptor, data, size);
}

void* pcre2_compile_16(const char16_t* pattern, std::size_t length, std::uint32_t options,
                       int* error, std::size_t* offset, void* context)
{
    if (!fails("compile", expression)) {
        return original<decltype(&pcre2_compile_16)>("pcre2_compile_16")(pattern, length, options,
                                                                         error, offset, context);
    }
    constexpr int heapFailed = 121;
    *error = heapFailed;
    *offset = 0;
    return nullptr;
}

int pcre2_match_16(const void* code, const char16_t* subject, std::size_t length, std::size_t start,
                   std::uint32_t options, void* data, void* context)
{
    constexpr int noMemory = -48;
    return fails("search", expression) ? noMemory
                                       : original<decltype(&pcre2_match_16)>("pcre2_match_16")(
                                           code, subject, length, start, options, data, context);
}

} // extern "C"
