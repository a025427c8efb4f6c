#include "Progress.h"

#include "ProgramPlatform.h"
#include "Terminal.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <system_error>

using namespace std::chrono_literals;

namespace {

constexpr auto firstDelay = 300ms;
constexpr auto interval = 250ms;
constexpr auto clearLine = "\r\033[K";

using Line = std::array<char, 120>;

// Some terminals would put an empty line after one that reaches the last column.
bool fits(int length)
{
    return length < Terminal::errorLineWidth();
}

} // namespace

Progress::Progress(const ProgramPlatform& platform)
    : m_platform(platform)
{
    if (!Terminal::canWriteOverErrorLine())
        return;
    try {
        m_thread = std::thread(&Progress::run, this);
    } catch (const std::system_error&) {
        // If the system has no thread to spare, the run goes on without showing progress.
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

void Progress::startReport(int total)
{
    m_total = total;
}

// This function must not allocate memory, because nothing would catch an exception on this thread.
void Progress::show() const
{
    Line full {};
    Line brief {};
    int length = 0;
    if (const int total = m_total; total > 0) {
        const int done = m_platform.countedFolders();
        length = std::snprintf(full.data(), full.size(), "Writing the report: folder %d of %d",
                               done, total);
        std::snprintf(brief.data(), brief.size(), "%d of %d", done, total);
    } else {
        const int done = m_platform.walkedFolders();
        length = std::snprintf(full.data(), full.size(), "Walking the folders: %d read", done);
        std::snprintf(brief.data(), brief.size(), "%d", done);
    }
    if (fits(length))
        std::fprintf(stderr, "%s%s", clearLine, full.data());
    else if (fits(static_cast<int>(std::strlen(brief.data()))))
        std::fprintf(stderr, "%s%s", clearLine, brief.data());
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
