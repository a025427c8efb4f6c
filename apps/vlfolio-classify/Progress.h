#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

class ProgramPlatform;

/// Shows the progress of a long run on standard error, from a thread of its own: nothing at first,
/// then a line that is overwritten again and again. It shows nothing unless standard error is a
/// terminal that can do that.
class Progress
{
public:
    /// \param platform counts the folders that the walk reads, and those that the report asks for.
    explicit Progress(const ProgramPlatform& platform);
    /// Ends the thread and clears the line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Has to be called after the walk, before a report with rows for \a total folders is written.
    void startReport(int total);

private:
    void run();
    void show() const;

    const ProgramPlatform& m_platform;
    // The number of folders in the report, or 0 during the walk.
    std::atomic<int> m_total = 0;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_thread;
};
