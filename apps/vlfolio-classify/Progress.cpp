#include "Progress.h"

#include "Terminal.h"

#include <chrono>
#include <cstdio>
#include <system_error>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto firstDelay = 300ms;
constexpr auto interval = 250ms;
constexpr auto clearLine = "\r\033[K";

} // namespace

Progress::Progress(std::function<std::string()> text)
    : m_text(std::move(text))
{
    if (!Terminal::canWriteOverErrorLine())
        return;
    try {
        m_thread = std::thread(&Progress::run, this);
    } catch (const std::system_error&) {
        // The work goes on where the system has no thread to spare; nothing is shown of it.
    }
}

Progress::~Progress()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_done = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void Progress::run()
{
    std::unique_lock lock(m_mutex);
    const auto isDone = [this] { return m_done; };
    if (m_wake.wait_for(lock, firstDelay, isDone))
        return;
    do {
        std::fputs((clearLine + m_text()).c_str(), stderr);
        std::fflush(stderr);
    } while (!m_wake.wait_for(lock, interval, isDone));
    std::fputs(clearLine, stderr);
    std::fflush(stderr);
}
