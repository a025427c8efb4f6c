#pragma once

#include <QtCore/QThread>

#include <atomic>
#include <memory>
#include <vector>

/// Calls work(0) to work(count - 1), each in a thread of its own, all let go at the same moment,
/// and returns when the last one is done.
template <typename Work>
void runTogether(int count, const Work& work)
{
    std::atomic<int> missing { count };
    std::vector<std::unique_ptr<QThread>> threads;
    for (int number = 0; number < count; ++number) {
        threads.emplace_back(QThread::create([&missing, &work, number] {
            --missing;
            while (missing > 0)
                QThread::yieldCurrentThread();
            work(number);
        }));
        threads.back()->start();
    }
    for (const auto& thread : threads)
        thread->wait();
}
