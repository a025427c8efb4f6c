#pragma once

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

/// Calls work(0) to work(count - 1), each in a thread of its own, all let go at the same moment,
/// and returns when the last one is done.
template <typename Work>
void runTogether(int count, const Work& work)
{
    // Not QThread: the thread sanitizer sees how these are started and waited for.
    std::atomic<int> missing { count };
    std::vector<std::thread> threads;
    threads.reserve(std::size_t(count));
    for (int number = 0; number < count; ++number) {
        threads.emplace_back([&missing, &work, number] {
            --missing;
            while (missing > 0)
                std::this_thread::yield();
            work(number);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}
