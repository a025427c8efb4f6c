#include "FailingAllocation.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string_view>
#include <thread>

#include <dlfcn.h>
#include <execinfo.h>
#include <malloc.h>
#include <unistd.h>

// The C library's own allocator, under the names that stay reachable.
extern "C" {
void* __libc_malloc(std::size_t size);                    // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* block, std::size_t size);      // NOLINT(bugprone-reserved-identifier)
void* __libc_memalign(std::size_t alignment,
                      std::size_t size); // NOLINT(bugprone-reserved-identifier)
void __libc_free(void* block);           // NOLINT(bugprone-reserved-identifier)
}

namespace {

std::atomic<long> remaining = 0;
bool staysFailing = false;
bool announces = false;
bool failed = false;
std::atomic<long> live = 0;
// The callers of the last allocation that failed.
std::array<void*, 48> callers {};
int callerCount = 0;

// Noting the callers must not count itself.
bool inside = false;

void noteCallers()
{
    inside = true;
    callerCount = backtrace(callers.data(), static_cast<int>(callers.size()));
    inside = false;
}

bool fails()
{
    if (remaining == 0 || inside)
        return false;
    if (remaining > 1) {
        --remaining;
        return false;
    }
    if (!staysFailing)
        remaining = 0;
    if (!failed)
        noteCallers();
    if (announces)
        static_cast<void>(!write(STDERR_FILENO, "failed\n", 7));
    failed = true;
    errno = ENOMEM;
    return true;
}

bool isOfTheSystem(std::string_view module)
{
    constexpr std::array names { "/libvlfailing", "/libc.so", "/libstdc++", "/libgcc_s", "/ld-" };
    return std::any_of(names.begin(), names.end(), [module](std::string_view name) {
        return module.find(name) != std::string_view::npos;
    });
}

// Tells in which program or library the process ends.
void tellWhereItDied(int signal)
{
    noteCallers();
    for (const auto* caller = callers.begin(); caller != callers.begin() + callerCount; ++caller) {
        Dl_info info {};
        if (dladdr(*caller, &info) == 0 || isOfTheSystem(info.dli_fname))
            continue;
        for (const std::string_view text : { "died in ", info.dli_fname, "\n" })
            static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
        break;
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

[[gnu::constructor]] void armFromEnvironment()
{
    if (const char* const nth = std::getenv("FAILING_ALLOCATION")) {
        announces = true;
        std::signal(SIGSEGV, tellWhereItDied);
        std::signal(SIGABRT, tellWhereItDied);
        FailingAllocation::arm(std::atol(nth), FailingAllocation::Extent::Once);
    }
}

void* made(void* block)
{
    live += block == nullptr ? 0 : 1;
    return block;
}

void released(const void* block)
{
    live -= block == nullptr ? 0 : 1;
}

} // namespace

extern "C" {

void* malloc(std::size_t size)
{
    return fails() ? nullptr : made(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return fails() ? nullptr : made(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size)
{
    if (fails())
        return nullptr;
    released(block);
    return made(__libc_realloc(block, size));
}

void* memalign(std::size_t alignment, std::size_t size)
{
    return fails() ? nullptr : made(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    *block = memalign(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}

void free(void* block)
{
    released(block);
    __libc_free(block);
}

} // extern "C"

void* operator new(std::size_t size)
{
    static const std::thread::id first = std::this_thread::get_id();
    const bool lacksMemory = announces && std::this_thread::get_id() != first;
    void* const block = lacksMemory ? nullptr : std::malloc(size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void FailingAllocation::prepare()
{
    // The first look at the stack allocates.
    noteCallers();
}

void FailingAllocation::arm(long nth, Extent extent)
{
    failed = false;
    staysFailing = extent == Extent::FromThereOn;
    remaining = nth;
}

bool FailingAllocation::disarm()
{
    remaining = 0;
    return failed;
}

long FailingAllocation::liveBlocks()
{
    return live;
}

int FailingAllocation::failedCallers(void* const** found)
{
    *found = callers.data();
    return callerCount;
}
