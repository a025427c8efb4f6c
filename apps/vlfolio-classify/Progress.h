#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

class HostPlatform;

/// Shows on standard error that a long run goes on, from a thread of its own: nothing at first,
/// then a line that is written over. Silent unless standard error is a terminal that can do that.
class Progress
{
public:
    /// \param platform counts no folder during the walk, and each one after it.
    /// \param step says what is done with a folder after the walk. It is not copied.
    Progress(const HostPlatform& platform, const char* step);
    /// Takes the line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

private:
    void run();
    void show() const;

    const HostPlatform& m_platform;
    const char* m_step;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_thread;
};
