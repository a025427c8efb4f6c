#include "FailingAllocation.h"

#include <array>
#include <cerrno>
#include <cstdint>

#include <execinfo.h>
#include <malloc.h>

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

constexpr int maximumDepth = 48;

struct Trace
{
    void* block = nullptr;
    int depth = 0;
    std::array<void*, maximumDepth> callers {};
};

long remaining = 0;
bool staysFailing = false;
bool failed = false;
long live = 0;
bool tracing = false;
std::array<Trace, 8192> traces;
Trace failure;

// Noting a caller must not be traced itself.
bool inside = false;

void note(Trace& trace)
{
    inside = true;
    trace.depth = backtrace(trace.callers.data(), maximumDepth);
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
        note(failure);
    failed = true;
    errno = ENOMEM;
    return true;
}

void* made(void* block)
{
    if (block == nullptr)
        return nullptr;
    ++live;
    if (!tracing || inside)
        return block;
    for (Trace& trace : traces) {
        if (trace.block == nullptr) {
            trace.block = block;
            note(trace);
            break;
        }
    }
    return block;
}

void released(const void* block)
{
    if (block == nullptr)
        return;
    --live;
    if (!tracing)
        return;
    for (Trace& trace : traces) {
        if (trace.block == block)
            trace.block = nullptr;
    }
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

void FailingAllocation::prepare(bool traced)
{
    // The first look at the stack allocates.
    note(failure);
    tracing = traced;
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

void FailingAllocation::forEachTracedBlock(void (*report)(void* const* callers, int count))
{
    tracing = false;
    for (const Trace& trace : traces) {
        if (trace.block != nullptr)
            report(trace.callers.data(), trace.depth);
    }
}

int FailingAllocation::failedCallers(void* const** callers)
{
    *callers = failure.callers.data();
    return failure.depth;
}
