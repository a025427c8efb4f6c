#include "ApplicationObject.h"
#include "FailingAllocation.h"
#include "RawDirectory.h"
#include "ReportText.h"
#include "Walk.h"

#include <VLCore/VLLogger.h>
#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>
#include <QtCore/QProcess>
#include <QtTest/QTest>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <string_view>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <sys/mman.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

// The program has two roles. The test starts it once more as a subject, "subject ROOT walk|run
// warm|cold once|onwards STEP", which calls the library while allocations fail: attempt N, which
// fails the N-th allocation of the call, in a process of its own.

namespace {

// Reaches every test of a name: in the language of the host, in that of the system, in the fixed
// formats of dates, in the three shapes, a link and a folder with the root's own name.
QByteArrayList entries()
{
    return {
        "14 Jul 2019/",       "2019/05/05/",       "2019/05/14.07.2019/",
        "2019/2020/",         "2019/Sommer/pics/", "2019/Sommer/2019-07-14/",
        "Album_vlp-Dateien/", "Januar/",           "Montag/14.07.19/",
        "Urlaub/Monday/",     "Link -> Urlaub",    "b.jpg",
        "2019/a.jpg",         "2019/.\xff",        "2019/\xfe/",
    };
}

QByteArrayList walkedFolders()
{
    return {
        " Root",
        "/14 Jul 2019 Event",
        "/2019 Year",
        "/2019/05 Month",
        "/2019/05/05 Event",
        "/2019/05/14.07.2019 Event",
        "/2019/2020 Event",
        "/2019/Sommer Event",
        "/2019/Sommer/2019-07-14 Day",
        "/2019/Sommer/pics Unknown",
        "/Album_vlp-Dateien ProjectFolder",
        "/Januar Month",
        "/Link Unknown",
        "/Link/Monday Event",
        "/Montag Event",
        "/Montag/14.07.19 Day",
        "/Urlaub Unknown",
        "/Urlaub/Monday Event",
    };
}

bool isFull(const QString& root, const QList<VLEventFolderClassificationResult>& results)
{
    return lines(results, root) == walkedFolders();
}

bool isFullReport(const QString& root)
{
    QByteArrayList rows;
    const QByteArrayList folders = walkedFolders();
    for (const QByteArray& folder : folders) {
        const qsizetype end = folder.lastIndexOf(' ');
        const QByteArray path = folder.first(end);
        const QByteArray count = path.isEmpty() ? "2" : path == "/2019" ? "1" : "0";
        rows.append(ReportText::row(folder.sliced(end + 1), path.isEmpty() ? root.toUtf8() : path,
                                    count, "no data"));
    }
    return ReportText::fileContents(root + u"/vela.classification.results.html"_s)
        == ReportText::report(rows);
}

// What an attempt tells the subject. It lies in memory that the two processes share.
struct Attempt
{
    enum class Outcome { Killed, Untouched, BadAlloc, Completed, Short, Died };

    Outcome outcome = Outcome::Killed;
    long blocks = 0;
    int descriptors = 0;
    /// What is not as it was.
    std::array<char, 256> changes {};
    /// Who made the allocation that failed, or where the process died: "inner < outer < ...".
    std::array<char, 65536> callers {};
};
Attempt* told = nullptr;

template <std::size_t size>
void add(std::array<char, size>& text, std::string_view more)
{
    const std::size_t length = std::strlen(text.data());
    const std::size_t room = size - 1 - length;
    std::memcpy(text.data() + length, more.data(), std::min(more.size(), room));
}

void addCallers(void* const* callers, int count)
{
    for (int i = 0; i < count; ++i) {
        Dl_info info {};
        if (dladdr(callers[i], &info) == 0 || info.dli_sname == nullptr)
            continue;
        int status = 0;
        char* const name = abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, &status);
        add(told->callers, status == 0 ? name : info.dli_sname);
        add(told->callers, " < ");
        std::free(name);
    }
}

[[noreturn]] void die()
{
    FailingAllocation::disarm();
    static std::array<void*, 64> callers {};
    told->outcome = Attempt::Outcome::Died;
    addCallers(callers.data(), backtrace(callers.data(), static_cast<int>(callers.size())));
    _exit(EXIT_SUCCESS);
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
        add(told->changes, "odd message, ");
}

int openDescriptors()
{
    int count = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor)
        count += fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

// Counts what is opened, and asks for no memory itself.
class OpeningPlatform : public VLPlatformIndependent
{
public:
    bool openFile(const QString&, const QStringList&, const QString&) override
    {
        ++opened;
        return true;
    }

    int opened = 0;
};

// A program that uses the library.
class Host
{
public:
    Host(const char* directory, bool isRun)
        : m_directory(QFile::decodeName(directory))
        , m_isRun(isRun)
        , m_classifier(QFileInfo(m_directory))
    {
        m_application.begin();
        qInstallMessageHandler(onMessage);
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        VLPlatformIndependent::setInstance(&m_platform);
        m_before.append(VLEventFolderClassificationResult());
        m_results = m_before;
    }

    // Afterwards everything has been made that is made once, and the report is there.
    void warmUp()
    {
        for (int i = 0; i < 3; ++i) {
            m_classifier.start();
            m_results = m_classifier.eventFolderTypes(QFileInfo(m_directory), {});
            static_cast<void>(isFull(m_directory, m_results) && isFullReport(m_directory));
        }
        m_results = m_before;
    }

    void attempt(long nth, FailingAllocation::Extent extent, bool isWarm);

private:
    // False when std::bad_alloc came out.
    bool call()
    {
        try {
            if (m_isRun)
                m_classifier.start();
            else
                m_results = m_classifier.eventFolderTypes(QFileInfo(m_directory), {});
        } catch (const std::bad_alloc&) {
            return false;
        }
        return true;
    }

    [[nodiscard]] Attempt::Outcome outcome(bool isTouched, bool isCompleted) const
    {
        if (!isTouched)
            return Attempt::Outcome::Untouched;
        if (!isCompleted)
            return Attempt::Outcome::BadAlloc;
        const bool full = m_isRun ? isFullReport(m_directory) : isFull(m_directory, m_results);
        return full ? Attempt::Outcome::Completed : Attempt::Outcome::Short;
    }

    void lookAtTheNextCalls()
    {
        m_results = m_classifier.eventFolderTypes(QFileInfo(m_directory), {});
        if (!isFull(m_directory, m_results))
            add(told->changes, "next walk, ");
        startMessages = m_platform.opened = 0;
        m_classifier.start();
        if (startMessages != 1 || m_platform.opened != 1 || !isFullReport(m_directory))
            add(told->changes, "next run, ");
    }

    ApplicationObject m_application;
    QString m_directory;
    bool m_isRun;
    VLFolioEventClassifier m_classifier;
    OpeningPlatform m_platform;
    QList<VLEventFolderClassificationResult> m_before;
    QList<VLEventFolderClassificationResult> m_results;
};

void Host::attempt(long nth, FailingAllocation::Extent extent, bool isWarm)
{
    std::set_terminate(die);
    std::signal(SIGSEGV, [](int) { die(); });
    std::signal(SIGABRT, [](int) { die(); });
    const VLLogger* const logger = isWarm ? VLSingleton<VLLogger>::instance() : nullptr;
    const auto* const table = isWarm ? VLEventFolderType().enumToStringTable() : nullptr;
    startMessages = m_platform.opened = 0;
    FailingAllocation::prepare();
    const int descriptors = openDescriptors();
    const long blocks = FailingAllocation::liveBlocks();

    FailingAllocation::arm(nth, extent);
    const bool isCompleted = call();
    const bool isTouched = FailingAllocation::disarm();

    if (startMessages > 1 || m_platform.opened > 1)
        add(told->changes, "repeated, ");
    if (!isCompleted && m_results != m_before)
        add(told->changes, "list, ");
    const Attempt::Outcome found = outcome(isTouched, isCompleted);
    m_results = m_before;
    // What is made once is not there yet when the call is the first: all of it is, in the end.
    if (!isWarm)
        warmUp();
    told->blocks = FailingAllocation::liveBlocks() - blocks;
    told->descriptors = openDescriptors() - descriptors;
    lookAtTheNextCalls();
    if (isWarm
        && (logger != VLSingleton<VLLogger>::instance()
            || table != VLEventFolderType().enumToStringTable()))
        add(told->changes, "made again, ");
    void* const* callers = nullptr;
    const int count = FailingAllocation::failedCallers(&callers);
    addCallers(callers, count);
    told->outcome = found;
}

// Callers that stand next to each other, the inner one first.
struct Callers
{
    QLatin1StringView inner;
    QLatin1StringView outer;
};

// Where Qt up to 6.11.2 ends the process for want of memory, and the library needs that call.
constexpr std::array deathsInQt {
    // Does not check what malloc() returns when it makes room for a connection.
    Callers { "QObject::connect("_L1, "QTextStream::QTextStream("_L1 },
    // The same connection, half made, is followed when the file is closed.
    Callers { "QIODevice::close("_L1, "QFileDevice::close("_L1 },
    // QHash makes room in a function that is noexcept; only the first use of the names inserts.
    Callers { "VLEnumToStringTable<VLEventFolderTypeEnum>::insert("_L1,
              "VLEventFolderType::fillTable("_L1 },
    // The registry of categories is such a hash; only the first message registers.
    Callers { "operator new"_L1, "QLoggingCategory::init("_L1 },
    // A list made of an initializer list is not checked; once in a process.
    Callers { "QGregorianCalendar::nameList("_L1, "QCalendar::QCalendar("_L1 },
    // Qt 6.11.2 asks for the settings of the system in a function that is noexcept.
    Callers { "QSystemLocale::query("_L1, "QLocaleData::groupSizes("_L1 },
    // The C library gives up when a thread cannot have a destructor; once in a thread.
    Callers { "abort"_L1, "__libc_fatal"_L1 },
    Callers { "abort"_L1, "__cxa_thread_atexit_impl"_L1 },
};

// Where Qt forgets what it holds when an exception passes.
constexpr std::array leaksInQt {
    // What the search works with.
    Callers { "QArrayData::allocate("_L1, "QRegularExpression::match("_L1 },
    // The pattern of messages, at the first message; Qt 6.4.2 alone.
    Callers { "operator new"_L1, "qFormatLogMessage("_L1 },
    Callers { "QString::toLatin1_helper("_L1, "qFormatLogMessage("_L1 },
};

template <typename Known>
bool isKnown(const Known& known, const QString& where)
{
    const QStringList callers = where.split(u" < "_s);
    return std::any_of(known.cbegin(), known.cend(), [&callers](const Callers& pair) {
        for (qsizetype i = 1; i < callers.size(); ++i) {
            if (callers.at(i - 1).startsWith(pair.inner) && callers.at(i).startsWith(pair.outer))
                return true;
        }
        return false;
    });
}

// What is wrong with the attempt, or an empty string. \a blocks are those that remain from a call
// in which nothing fails.
QString problemOf(const Attempt& attempt, long blocks)
{
    const QString callers = QString::fromUtf8(attempt.callers.data());
    switch (attempt.outcome) {
    case Attempt::Outcome::Killed:
        return u"the process was killed"_s;
    case Attempt::Outcome::Died:
        return isKnown(deathsInQt, callers) ? QString() : u"the process ended"_s;
    case Attempt::Outcome::Short:
        return u"the answer is not complete"_s;
    case Attempt::Outcome::Untouched:
    case Attempt::Outcome::BadAlloc:
    case Attempt::Outcome::Completed:
        break;
    }
    if (attempt.changes.front() != '\0')
        return u"not as it was: "_s + QString::fromUtf8(attempt.changes.data());
    const bool leaks = attempt.blocks > blocks || attempt.descriptors > 0;
    return leaks && !isKnown(leaksInQt, callers) ? u"something leaks"_s : QString();
}

// Tries one allocation after the other, prints a line for each problem and, in the end, how many
// were tried and how many ended the process within Qt.
int runSubject(char* argv[])
{
    const auto is = [argv](int index, std::string_view word) { return argv[index] == word; };
    const bool isWarm = is(4, "warm");
    const auto extent =
        is(5, "once") ? FailingAllocation::Extent::Once : FailingAllocation::Extent::FromThereOn;
    told = static_cast<Attempt*>(
        mmap(nullptr, sizeof(Attempt), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    // The children of a program that has used the library begin where it stands.
    std::unique_ptr<Host> host;
    if (isWarm) {
        host = std::make_unique<Host>(argv[2], is(3, "run"));
        host->warmUp();
    }
    const auto attempt = [&](long nth) {
        *told = Attempt();
        const pid_t child = fork();
        if (child == 0) {
            if (!host)
                host = std::make_unique<Host>(argv[2], is(3, "run"));
            host->attempt(nth, extent, isWarm);
            _exit(EXIT_SUCCESS);
        }
        waitpid(child, nullptr, 0);
    };
    attempt(std::numeric_limits<long>::max());
    const long blocks = isWarm ? 0 : told->blocks;
    int deaths = 0;
    long nth = 1;
    for (;; nth += std::atol(argv[6])) {
        attempt(nth);
        deaths += told->outcome == Attempt::Outcome::Died ? 1 : 0;
        const QString problem = problemOf(*told, blocks);
        if (!problem.isEmpty())
            std::printf("%ld: %s at %s\n", nth, qPrintable(problem), told->callers.data());
        if (told->outcome == Attempt::Outcome::Untouched)
            break;
    }
    std::printf("%ld allocations, %d attempts ended the process within Qt\n", nth - 1, deaths);
    return nth > 1 ? EXIT_SUCCESS : EXIT_FAILURE;
}

bool allAttempts = false;

} // namespace

class tst_failing_allocations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void attempts_data();
    void attempts();
};

void tst_failing_allocations::attempts_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("temperature");
    QTest::addColumn<QString>("extent");

    for (const QString& call : { u"walk"_s, u"run"_s }) {
        for (const QString& temperature : { u"warm"_s, u"cold"_s }) {
            for (const QString& extent : { u"once"_s, u"onwards"_s })
                QTest::addRow("%s_%s_%s", qPrintable(call), qPrintable(temperature),
                              qPrintable(extent))
                    << call << temperature << extent;
        }
    }
}

// std::bad_alloc comes out or the answer is complete, nothing leaks, and the next calls are right:
// in a warm process, which has used the library, and in a cold one; with one failing allocation and
// with all from one on.
void tst_failing_allocations::attempts()
{
    QFETCH(const QString, call);
    QFETCH(const QString, temperature);
    QFETCH(const QString, extent);

    // The root is called "pics" so that a folder below can have its name.
    RawDirectory tree;
    QByteArrayList all;
    const QByteArrayList made = entries();
    for (const QByteArray& entry : made)
        all.append("pics/" + entry);
    tree.make(all);
    VERIFY_MADE(tree);
    // Two primes, so that the short form does not see the same allocation of every folder.
    const QString step = allAttempts ? u"1"_s : temperature == u"cold"_s ? u"41"_s : u"29"_s;
    QProcess subject;
    subject.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    subject.start(QCoreApplication::applicationFilePath(),
                  { u"subject"_s, tree.path("pics"), call, temperature, extent, step });
    QVERIFY(subject.waitForFinished(-1));
    QCOMPARE(subject.exitCode(), EXIT_SUCCESS);
    const QStringList printed =
        QString::fromUtf8(subject.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    QVERIFY(!printed.isEmpty());
    qInfo("%s", qPrintable(printed.constLast()));
    QVERIFY2(printed.size() == 1, qPrintable(printed.constFirst()));
}

int main(int argc, char* argv[])
{
    constexpr int subjectArguments = 7;
    if (argc == subjectArguments && std::string_view(argv[1]) == "subject")
        return runSubject(argv);
    const QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    allAttempts = arguments.removeAll(u"--all"_s) > 0;
    tst_failing_allocations test;
    return QTest::qExec(&test, arguments);
}

#include "tst_failing_allocations.moc"
