#include "OriginalFunction.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <thread>

#include <dirent.h>

using namespace std::chrono_literals;

namespace {

long lateListings()
{
    const char* const number = std::getenv("VLFOLIO_LATE_LISTINGS");
    return number == nullptr ? std::numeric_limits<long>::max() : std::atol(number);
}

} // namespace

/// Takes the place of the C library's function: a listing comes late, as from a disk far away. All
/// of them do, or as many as the environment says.
extern "C" ssize_t getdents64(int descriptor, void* entries, size_t size) noexcept
{
    static const auto function = original<ssize_t (*)(int, void*, size_t)>("getdents64");
    static std::atomic<long> left = lateListings();
    const ssize_t used = function(descriptor, entries, size);
    // The last call for a directory only tells its end.
    if (used > 0 && left-- > 0)
        std::this_thread::sleep_for(100ms);
    return used;
}
