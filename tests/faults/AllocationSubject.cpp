// Calls the library while allocations fail:
//
//     allocation_subject DIRECTORY walk|listed|run warm|cold once|onwards FIRST STEP [trace]
//
// A "listed" walk is that under a Qt whose listing ends at a name that it cannot decode.
//
// Attempt N, which fails the N-th allocation of the call, has a process of its own. It prints one
// line "N OUTCOME NOTE... at CALLER < CALLER < ...", where OUTCOME is
//
//     bad_alloc    std::bad_alloc came out
//     completed    the call answered as it does when nothing fails
//     short        the call answered, but not everything
//     died         the process ended, at the callers that are named
//     untouched    the call made less than N allocations; no more attempts follow
//
// and each NOTE is something that is not as it was. With "trace" there is one attempt only, and
// the callers that made what it leaked are NOTEs, too.

#include "ReportText.h"
#include "FailingAllocation.h"
#include "SharedPlatform.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <VLCore/VLLogger.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QLibraryInfo>
#include <QtCore/QLocale>
#include <QtCore/QVersionNumber>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <string_view>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using Type = VLEventFolderTypeEnum;

namespace {

struct Folder
{
    QLatin1StringView path;
    Type type = Type::Unknown;
    const char* typeName = nullptr;
    const char* fileCount = nullptr;
};

// Reaches every test of a name: in the language of the host, in that of the system, in the fixed
// formats of dates, in the three shapes, a link and a folder with the root's own name.
constexpr std::array folders {
    Folder { ""_L1, Type::Root, "Root", "2" },
    Folder { "/14 Jul 2019"_L1, Type::Event, "Event", "0" },
    Folder { "/2019"_L1, Type::Year, "Year", "1" },
    Folder { "/2019/05"_L1, Type::Month, "Month", "0" },
    Folder { "/2019/05/05"_L1, Type::Event, "Event", "0" },
    Folder { "/2019/05/14.07.2019"_L1, Type::Event, "Event", "0" },
    Folder { "/2019/2020"_L1, Type::Event, "Event", "0" },
    Folder { "/2019/Sommer"_L1, Type::Event, "Event", "0" },
    Folder { "/2019/Sommer/2019-07-14"_L1, Type::Day, "Day", "0" },
    Folder { "/2019/Sommer/pics"_L1, Type::Unknown, "Unknown", "0" },
    Folder { "/Album_vlp-Dateien"_L1, Type::ProjectFolder, "ProjectFolder", "0" },
    Folder { "/Januar"_L1, Type::Month, "Month", "0" },
    Folder { "/Link"_L1, Type::Unknown, "Unknown", "0" },
    Folder { "/Link/Monday"_L1, Type::Event, "Event", "0" },
    Folder { "/Montag"_L1, Type::Event, "Event", "0" },
    Folder { "/Montag/14.07.19"_L1, Type::Day, "Day", "0" },
    Folder { "/Urlaub"_L1, Type::Unknown, "Unknown", "0" },
    Folder { "/Urlaub/Monday"_L1, Type::Event, "Event", "0" },
};

bool listingEnds = false;

bool isFull(const QString& root, const QList<VLEventFolderClassificationResult>& results)
{
    return std::equal(results.cbegin(), results.cend(), folders.cbegin(), folders.cend(),
                      [&root](const auto& result, const Folder& folder) {
                          return result.directory().absoluteFilePath() == root + folder.path
                              && result.classification() == folder.type;
                      });
}

bool isFullReport(const QString& root)
{
    QByteArrayList rows;
    for (const Folder& folder : folders) {
        const QString shown = folder.type == Type::Root ? root : QString(folder.path);
        rows.append(ReportText::row(folder.typeName, shown.toUtf8(), folder.fileCount, "no data"));
    }
    return ReportText::fileContents(root + u"/vela.classification.results.html"_s)
        == ReportText::report(rows);
}

struct Order
{
    const char* directory;
    bool wholeRun;
    bool warm;
    FailingAllocation::Extent extent;
    bool traced;
};

// What is printed is collected where no memory is asked for.
class Line
{
public:
    void clear() { m_length = 0; }
    void add(std::string_view text)
    {
        const std::size_t length = std::min(text.size(), m_text.size() - m_length);
        std::memcpy(m_text.data() + m_length, text.data(), length);
        m_length += length;
    }
    void addCallers(void* const* callers, int count)
    {
        for (int i = 0; i < count; ++i)
            addFunction(callers[i]);
    }
    [[noreturn]] void finish()
    {
        add("\n");
        const bool written = write(STDOUT_FILENO, m_text.data(), m_length) > 0;
        _exit(written ? EXIT_SUCCESS : EXIT_FAILURE);
    }

private:
    void addFunction(const void* address)
    {
        Dl_info info {};
        if (dladdr(address, &info) == 0 || info.dli_sname == nullptr)
            return;
        int status = 0;
        char* const name = abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, &status);
        add(status == 0 ? name : info.dli_sname);
        std::free(name);
        add(" < ");
    }

    std::array<char, 65536> m_text {};
    std::size_t m_length = 0;
};

Line line;

[[noreturn]] void die()
{
    FailingAllocation::disarm();
    static std::array<void*, 64> callers {};
    const int count = backtrace(callers.data(), static_cast<int>(callers.size()));
    line.clear();
    line.add("died at ");
    line.addCallers(callers.data(), count);
    line.finish();
}

int startMessages = 0;

void onMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // Every handler that writes somewhere makes a line of it.
    const QString formatted = qFormatLogMessage(type, context, text);
    const bool aboutRemoval =
        text.startsWith("removing file"_L1) && text.endsWith("succeeded:  true"_L1);
    if (text == "startClassifyEvent"_L1)
        ++startMessages;
    else if (!aboutRemoval || formatted.isEmpty())
        line.add("odd-message ");
}

int openDescriptors()
{
    constexpr int mostDescriptors = 256;
    int count = 0;
    for (int descriptor = 0; descriptor < mostDescriptors; ++descriptor)
        count += fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

// A program that uses the library.
class Host
{
public:
    explicit Host(const Order& order)
        : m_order(order)
        , m_application(m_argumentCount, m_arguments.data())
        , m_directory(QFile::decodeName(order.directory))
        , m_classifier(QFileInfo(m_directory))
    {
        qInstallMessageHandler(onMessage);
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        VLPlatformIndependent::setInstance(&m_platform);
        m_before.append(m_parent);
        m_results = m_before;
    }

    // Afterwards everything has been made that is made once, and the report is there.
    void warmUp()
    {
        for (int i = 0; i < 3; ++i) {
            m_classifier.start();
            m_results = m_classifier.eventFolderTypes(QFileInfo(m_directory), m_parent);
            static_cast<void>(isFullReport(m_directory));
        }
        m_results = m_before;
    }

    [[noreturn]] void attempt(long nth);

private:
    bool call();
    void addOutcome(bool touched, bool completed);
    void addWhatRemains(long blocks, int descriptors);
    void addWhatIsWrongNext();

    Order m_order;
    int m_argumentCount = 1;
    std::array<char, 2> m_name { 'x', '\0' };
    std::array<char*, 2> m_arguments { m_name.data(), nullptr };
    QCoreApplication m_application;
    QString m_directory;
    VLFolioEventClassifier m_classifier;
    SharedPlatform m_platform;
    VLEventFolderClassificationResult m_parent;
    QList<VLEventFolderClassificationResult> m_before;
    QList<VLEventFolderClassificationResult> m_results;
};

bool Host::call()
{
    try {
        if (m_order.wholeRun)
            m_classifier.start();
        else
            m_results = m_classifier.eventFolderTypes(QFileInfo(m_directory), m_parent);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

void Host::addOutcome(bool touched, bool completed)
{
    if (!touched) {
        line.add("untouched ");
    } else if (!completed) {
        line.add("bad_alloc ");
        if (m_results != m_before)
            line.add("list-changed ");
    } else {
        const bool full =
            m_order.wholeRun ? isFullReport(m_directory) : isFull(m_directory, m_results);
        line.add(full ? "completed " : "short ");
    }
}

void Host::addWhatRemains(long blocks, int descriptors)
{
    FailingAllocation::forEachTracedBlock([](void* const* callers, int count) {
        line.add("[ ");
        line.addCallers(callers, count);
        line.add("] ");
    });
    std::array<char, 40> text {};
    std::snprintf(text.data(), text.size(), "blocks=%ld descriptors=%d ", blocks, descriptors);
    line.add(text.data());
}

void Host::addWhatIsWrongNext()
{
    m_results = m_classifier.eventFolderTypes(QFileInfo(m_directory), m_parent);
    if (!isFull(m_directory, m_results))
        line.add("next-walk-differs ");
    startMessages = m_platform.opened = 0;
    m_classifier.start();
    if (startMessages != 1 || m_platform.opened != 1 || !isFullReport(m_directory))
        line.add("next-run-differs ");
    m_results = m_before;
}

void Host::attempt(long nth)
{
    std::set_terminate(die);
    std::signal(SIGSEGV, [](int) { die(); });
    std::signal(SIGABRT, [](int) { die(); });
    constexpr unsigned int mostSeconds = 60;
    alarm(mostSeconds);
    startMessages = m_platform.opened = 0;
    const VLLogger* const logger = m_order.warm ? VLSingleton<VLLogger>::instance() : nullptr;
    const auto* const table = m_order.warm ? VLEventFolderType().enumToStringTable() : nullptr;
    FailingAllocation::prepare(m_order.traced);
    const int descriptors = openDescriptors();
    const long blocks = FailingAllocation::liveBlocks();

    FailingAllocation::arm(nth, m_order.extent);
    const bool completed = call();
    const bool touched = FailingAllocation::disarm();

    if (startMessages > 1 || m_platform.opened > 1)
        line.add("repeated ");
    addOutcome(touched, completed);
    m_results = m_before;
    // What is made once is not there yet when the call is the first: all of it is, in the end.
    if (!m_order.warm)
        warmUp();
    addWhatRemains(FailingAllocation::liveBlocks() - blocks, openDescriptors() - descriptors);
    addWhatIsWrongNext();
    if (m_order.warm
        && (logger != VLSingleton<VLLogger>::instance()
            || table != VLEventFolderType().enumToStringTable()))
        line.add("made-again ");
    line.add("at ");
    void* const* callers = nullptr;
    const int count = FailingAllocation::failedCallers(&callers);
    line.addCallers(callers, count);
    line.finish();
}

// Runs one attempt in a child and prints its line. Returns false when no more attempts follow.
bool printAttempt(std::optional<Host>& host, const Order& order, long nth)
{
    std::array<int, 2> ends {};
    if (pipe(ends.data()) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        if (!host)
            host.emplace(order);
        host->attempt(nth);
    }
    close(ends[1]);
    std::FILE* const output = fdopen(ends[0], "r");
    static std::array<char, 65537> text {};
    const std::size_t length = std::fread(text.data(), 1, text.size() - 1, output);
    std::fclose(output);
    int status = 0;
    waitpid(child, &status, 0);
    if (length == 0)
        std::printf("%ld killed at nothing %d\n", nth, status);
    else
        std::printf("%ld %.*s", nth, static_cast<int>(length), text.data());
    return std::string_view(text.data(), length).substr(0, 9) != "untouched";
}

} // namespace

// The program comes first when the libraries look for a function.
QVersionNumber QLibraryInfo::version() noexcept
{
    return listingEnds ? QVersionNumber(6, 8, 2)
                       : QVersionNumber::fromString(QLatin1StringView(qVersion()));
}

int main(int argc, char* argv[])
{
    constexpr int fewestArguments = 7;
    if (argc < fewestArguments)
        return EXIT_FAILURE;
    const auto extent = std::string_view(argv[4]) == "once"
        ? FailingAllocation::Extent::Once
        : FailingAllocation::Extent::FromThereOn;
    const Order order { argv[1], std::string_view(argv[2]) == "run",
                        std::string_view(argv[3]) == "warm", extent, argc > fewestArguments };
    listingEnds = std::string_view(argv[2]) == "listed";
    const long first = std::atol(argv[5]);
    const long step = std::atol(argv[6]);

    // The children of a program that has used the library begin where it stands.
    std::optional<Host> host;
    if (order.warm) {
        host.emplace(order);
        host->warmUp();
    }
    long nth = first;
    while (printAttempt(host, order, nth) && !order.traced)
        nth += step;
    return EXIT_SUCCESS;
}
