#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <thread>

#include <unistd.h>

extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t number, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

std::atomic<long> allocationsLeft = 0;

/// Takes the number of the allocation that fails from the environment.
[[gnu::constructor]] void arm()
{
    const char* const order = std::getenv("FAILING_ALLOCATION");
    allocationsLeft = order == nullptr ? 0 : std::atol(order);
}

bool fails()
{
    if (allocationsLeft <= 0 || --allocationsLeft != 0)
        return false;
    static_cast<void>(!write(STDERR_FILENO, "failed\n", 7));
    errno = ENOMEM;
    return true;
}

} // namespace

/// Take the places of the C library's functions: one allocation fails.
extern "C" {

void* malloc(std::size_t size)
{
    return fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t number, std::size_t size)
{
    return fails() ? nullptr : __libc_calloc(number, size);
}

void* realloc(void* block, std::size_t size)
{
    return fails() ? nullptr : __libc_realloc(block, size);
}

} // extern "C"

/// Takes the place of the C++ library's function: there is memory for the first thread alone.
void* operator new(std::size_t size)
{
    static const std::thread::id first = std::this_thread::get_id();
    void* const block = std::this_thread::get_id() == first ? std::malloc(size) : nullptr;
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}
