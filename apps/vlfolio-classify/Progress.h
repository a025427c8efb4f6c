#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

/// Shows on standard error that a long run goes on, from a thread of its own: nothing at first,
/// then a line that is written over. Silent unless standard error is a terminal that can do that.
class Progress
{
public:
    /// \param text what is shown, asked for again each time; called on the other thread.
    explicit Progress(std::function<std::string()> text);
    /// Takes the line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

private:
    void run();

    std::function<std::string()> m_text;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_thread;
};
