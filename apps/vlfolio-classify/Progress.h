#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

class ProgramPlatform;

/// Shows on standard error that a long run goes on, from a thread of its own: nothing at first,
/// then a line that is written over. Silent unless standard error is a terminal that can do that.
class Progress
{
public:
    /// \param platform counts the folders that the walk reads, and those whose files are counted.
    explicit Progress(const ProgramPlatform& platform);
    /// Ends the thread and clears the line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Tells that the walk is done and that the files in \a total folders are going to be counted.
    /// The line then begins with \a step, which is not copied.
    void lookAgain(const char* step, int total);

private:
    void run();
    void show() const;

    const ProgramPlatform& m_platform;
    // This is null during the walk.
    std::atomic<const char*> m_step = nullptr;
    std::atomic<int> m_total = 0;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_thread;
};
