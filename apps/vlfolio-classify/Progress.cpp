#include "Progress.h"

#include "HostPlatform.h"
#include "Terminal.h"

#include <chrono>
#include <cstdio>
#include <system_error>

using namespace std::chrono_literals;

namespace {

constexpr auto firstDelay = 300ms;
constexpr auto interval = 250ms;
constexpr auto clearLine = "\r\033[K";

} // namespace

Progress::Progress(const HostPlatform& platform, const char* step)
    : m_platform(platform)
    , m_step(step)
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

// Takes no memory: there may be none left, and nobody catches what this thread throws.
void Progress::show() const
{
    const int folders = m_platform.folderCount();
    if (folders == 0)
        std::fprintf(stderr, "%sWalking the folders ...", clearLine);
    else
        std::fprintf(stderr, "%s%s folder %d", clearLine, m_step, folders);
    std::fflush(stderr);
}

void Progress::run()
{
    std::unique_lock lock(m_mutex);
    const auto isDone = [this] { return m_done; };
    if (m_wake.wait_for(lock, firstDelay, isDone))
        return;
    do {
        show();
    } while (!m_wake.wait_for(lock, interval, isDone));
    std::fputs(clearLine, stderr);
    std::fflush(stderr);
}
