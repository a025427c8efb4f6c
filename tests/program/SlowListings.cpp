#include "OriginalFunction.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <dirent.h>
#include <sys/types.h>

using namespace std::chrono_literals;

namespace {

std::atomic<long> flushes = 0;

long numberIn(const char* variable)
{
    const char* const number = std::getenv(variable);
    return number == nullptr ? 0 : std::atol(number);
}

// Each line of the progress is flushed. Gives up after a time that no machine takes.
void awaitProgress()
{
    const long before = flushes;
    for (int i = 0; i < 6000 && flushes == before; ++i)
        std::this_thread::sleep_for(10ms);
}

} // namespace

/// Takes the place of the C library's function: a listing comes late, as from a disk far away. So
/// many of the first ones come after 100 ms, and two when another line of the progress was shown.
extern "C" ssize_t getdents64(int descriptor, void* entries, size_t size) noexcept
{
    static const auto function = original<ssize_t (*)(int, void*, size_t)>("getdents64");
    static std::atomic<long> late = numberIn("VLFOLIO_LATE_LISTINGS");
    static const long first = numberIn("VLFOLIO_AWAITING_LISTING");
    static const long second = numberIn("VLFOLIO_OTHER_AWAITING_LISTING");
    static std::atomic<long> listing = 0;
    const ssize_t used = function(descriptor, entries, size);
    // The last call for a directory only tells its end.
    if (used <= 0)
        return used;
    if (late-- > 0)
        std::this_thread::sleep_for(100ms);
    ++listing;
    if (listing == first || listing == second)
        awaitProgress();
    return used;
}

extern "C" int fflush(std::FILE* stream)
{
    static const auto function = original<int (*)(std::FILE*)>("fflush");
    const int result = function(stream);
    if (stream == stderr)
        ++flushes;
    return result;
}
