#pragma once

#include <cstddef>

/// An allocator that can be told to fail. A shared library that takes the place of malloc() and of
/// everything that ends there: operator new, Qt's arrays and the C library's own buffers. In a
/// program that is linked with it, and in one that it is preloaded into.
///
/// The environment variable FAILING_ALLOCATION, a number, arms it at the program's begin. The line
/// "failed" on standard error tells then that this allocation has failed, and other threads than
/// the first have no memory. No other allocation fails if it is 0. If a signal ends the program,
/// the line "died in" tells the file of the innermost code that is not of the C or C++ library.
namespace FailingAllocation {

/// Which allocations fail.
enum class Extent { Once, FromThereOn };

/// Makes ready for arm(), which must not allocate.
void prepare();

/// Makes the \a nth allocation from now on fail, the first being 1.
void arm(long nth, Extent extent);

/// Ends the failing. Returns whether an allocation has failed.
bool disarm();

/// Number of blocks that are allocated and not yet released.
[[nodiscard]] long liveBlocks();

/// The callers of the last allocation that failed.
[[nodiscard]] int failedCallers(void* const** callers);

} // namespace FailingAllocation
