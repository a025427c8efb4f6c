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

/// Takes the place of the C library's function: a listing begins late, as on a disk far away. All
/// of them do, or as many as the environment says.
extern "C" DIR* opendir(const char* name)
{
    static const auto function = original<DIR* (*)(const char*)>("opendir");
    static std::atomic<long> left = lateListings();
    if (left-- > 0)
        std::this_thread::sleep_for(100ms);
    return function(name);
}
