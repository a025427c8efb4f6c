#pragma once

#include <cstddef>

/// The allocator of this program, which can be told to fail. It takes the place of malloc() and of
/// everything that ends there: operator new, Qt's arrays and the C library's own buffers. For
/// programs of one thread.
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
