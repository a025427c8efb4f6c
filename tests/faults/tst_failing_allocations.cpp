#include "FailingAllocation.h"
#include "RawDirectory.h"
#include "ReportText.h"
#include "Walk.h"

#include <VLCore/VLLogger.h>
#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

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
#include <vector>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

// The program has two roles. The test starts it once more as a subject, "subject ROOT walk|run
// warm|cold once|onwards STEP", which calls the library while allocations fail.
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
// and each NOTE is something that is not as it was.

namespace {

// Reaches every test of a name: in the language of the host, in that of the system, in the fixed
// formats of dates, in the three shapes, a link and a folder with the root's own name.
const QByteArrayList entries {
    "14 Jul 2019/",       "2019/05/05/",       "2019/05/14.07.2019/",
    "2019/2020/",         "2019/Sommer/pics/", "2019/Sommer/2019-07-14/",
    "Album_vlp-Dateien/", "Januar/",           "Montag/14.07.19/",
    "Urlaub/Monday/",     "Link -> Urlaub",    "b.jpg",
    "2019/a.jpg",         "2019/.\xff",        "2019/\xfe/",
};
const QByteArrayList walkedFolders {
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

bool isFull(const QString& root, const QList<VLEventFolderClassificationResult>& results)
{
    return lines(results, root) == walkedFolders;
}

bool isFullReport(const QString& root)
{
    QByteArrayList rows;
    for (const QByteArray& folder : walkedFolders) {
        const qsizetype end = folder.lastIndexOf(' ');
        const QByteArray path = folder.first(end);
        const QByteArray count = path.isEmpty() ? "2" : path == "/2019" ? "1" : "0";
        rows.append(ReportText::row(folder.sliced(end + 1), path.isEmpty() ? root.toUtf8() : path,
                                    count, "no data"));
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

Line said;

[[noreturn]] void die()
{
    FailingAllocation::disarm();
    static std::array<void*, 64> callers {};
    const int count = backtrace(callers.data(), static_cast<int>(callers.size()));
    said.clear();
    said.add("died at ");
    said.addCallers(callers.data(), count);
    said.finish();
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
        said.add("odd-message ");
}

int openDescriptors()
{
    constexpr int mostDescriptors = 256;
    int count = 0;
    for (int descriptor = 0; descriptor < mostDescriptors; ++descriptor)
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
    OpeningPlatform m_platform;
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
        said.add("untouched ");
    } else if (!completed) {
        said.add("bad_alloc ");
        if (m_results != m_before)
            said.add("list-changed ");
    } else {
        const bool full =
            m_order.wholeRun ? isFullReport(m_directory) : isFull(m_directory, m_results);
        said.add(full ? "completed " : "short ");
    }
}

void Host::addWhatRemains(long blocks, int descriptors)
{
    std::array<char, 40> text {};
    std::snprintf(text.data(), text.size(), "blocks=%ld descriptors=%d ", blocks, descriptors);
    said.add(text.data());
}

void Host::addWhatIsWrongNext()
{
    m_results = m_classifier.eventFolderTypes(QFileInfo(m_directory), m_parent);
    if (!isFull(m_directory, m_results))
        said.add("next-walk-differs ");
    startMessages = m_platform.opened = 0;
    m_classifier.start();
    if (startMessages != 1 || m_platform.opened != 1 || !isFullReport(m_directory))
        said.add("next-run-differs ");
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
    FailingAllocation::prepare();
    const int descriptors = openDescriptors();
    const long blocks = FailingAllocation::liveBlocks();

    FailingAllocation::arm(nth, m_order.extent);
    const bool completed = call();
    const bool touched = FailingAllocation::disarm();

    if (startMessages > 1 || m_platform.opened > 1)
        said.add("repeated ");
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
        said.add("made-again ");
    said.add("at ");
    void* const* callers = nullptr;
    const int count = FailingAllocation::failedCallers(&callers);
    said.addCallers(callers, count);
    said.finish();
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

int runSubject(char* argv[])
{
    const auto is = [argv](int index, std::string_view word) { return argv[index] == word; };
    const Order order { argv[2], is(3, "run"), is(4, "warm"),
                        is(5, "once") ? FailingAllocation::Extent::Once
                                      : FailingAllocation::Extent::FromThereOn };
    // The children of a program that has used the library begin where it stands.
    std::optional<Host> host;
    if (order.warm) {
        host.emplace(order);
        host->warmUp();
    }
    long nth = 1;
    while (printAttempt(host, order, nth))
        nth += std::atol(argv[6]);
    return EXIT_SUCCESS;
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
    Callers { "__cxa_throw"_L1, "QLoggingCategory::init("_L1 },
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

// One attempt, as the program under test tells of it.
struct Attempt
{
    explicit Attempt(const QString& line)
        : text(line)
        , what(line.section(u" at "_s, 0, 0).split(u' '))
        , where(line.section(u" at "_s, 1))
    {
    }

    [[nodiscard]] QString outcome() const { return what.value(1); }
    [[nodiscard]] qsizetype number(const QString& name) const
    {
        const auto note = std::find_if(what.cbegin(), what.cend(), [&name](const QString& word) {
            return word.startsWith(name + u'=');
        });
        return note == what.cend() ? 0 : note->section(u'=', 1).toLongLong();
    }

    QString text;
    QStringList what;
    QString where;
};

// What is wrong with the attempt, or an empty string. \a blocks are those that remain from a
// call in which nothing fails.
QString problem(const Attempt& attempt, qsizetype blocks)
{
    static const QStringList outcomes { u"bad_alloc"_s, u"completed"_s, u"short"_s, u"died"_s };
    if (!outcomes.contains(attempt.outcome()))
        return u"no such outcome"_s;
    if (attempt.outcome() == u"died"_s)
        return isKnown(deathsInQt, attempt.where) ? QString() : u"the process ended"_s;
    if (attempt.outcome() == u"short"_s)
        return u"the answer is not complete"_s;
    // The two numbers are the only notes when nothing has changed.
    if (attempt.what.size() != 4)
        return u"something has changed"_s;
    const bool leaks = attempt.number(u"blocks"_s) > blocks || attempt.number(u"descriptors"_s) > 0;
    return leaks && !isKnown(leaksInQt, attempt.where) ? u"something leaks"_s : QString();
}

bool allAttempts = false;

} // namespace

class tst_failing_allocations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void attempts_data();
    void attempts();

private:
    [[nodiscard]] static std::vector<Attempt> run(const QStringList& arguments);
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

std::vector<Attempt> tst_failing_allocations::run(const QStringList& arguments)
{
    QProcess subject;
    subject.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    subject.start(QCoreApplication::applicationFilePath(),
                  QStringList { u"subject"_s } + arguments);
    if (!subject.waitForFinished(-1) || subject.exitCode() != 0)
        return {};
    std::vector<Attempt> attempts;
    const QStringList all =
        QString::fromUtf8(subject.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    for (const QString& line : all)
        attempts.emplace_back(line);
    return attempts;
}

// Of a warm process, which has used the library, and of a cold one; of one failing allocation and
// of all from one on.
void tst_failing_allocations::attempts()
{
    QFETCH(const QString, call);
    QFETCH(const QString, temperature);
    QFETCH(const QString, extent);

    // The root is called "pics" so that a folder below can have its name.
    RawDirectory tree;
    QByteArrayList all;
    for (const QByteArray& entry : entries)
        all.append("pics/" + entry);
    tree.make(all);
    VERIFY_MADE(tree);
    // Two primes, so that the short form does not see the same allocation of every folder.
    const QString step = allAttempts ? u"1"_s : temperature == u"cold"_s ? u"41"_s : u"29"_s;
    const std::vector<Attempt> attempts =
        run({ tree.path("pics"), call, temperature, extent, step });
    QVERIFY(attempts.size() > 1);
    const Attempt& last = attempts.back();
    QCOMPARE(last.outcome(), u"untouched"_s);
    const qsizetype blocks = last.number(u"blocks"_s);
    if (temperature == u"warm"_s)
        QCOMPARE(blocks, 0);

    qsizetype died = 0;
    for (auto attempt = attempts.cbegin(); attempt + 1 != attempts.cend(); ++attempt) {
        const QString found = problem(*attempt, blocks);
        QVERIFY2(found.isEmpty(), qPrintable(found + u": "_s + attempt->text));
        died += attempt->outcome() == u"died"_s ? 1 : 0;
    }
    qInfo("%zu allocations failed, %lld of them ended the process within Qt", attempts.size() - 1,
          static_cast<long long>(died));
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
