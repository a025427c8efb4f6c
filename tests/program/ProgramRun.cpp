#include "ProgramRun.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QTemporaryDir>

#include <array>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <linux/capability.h>
#include <pty.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// Where the recording opener finds its pipe.
constexpr int openerDescriptor = 9;

// A descriptor that is closed with its owner.
class Descriptor
{
public:
    explicit Descriptor(int number = -1)
        : m_number(number)
    {
    }
    ~Descriptor() { close(); }
    Q_DISABLE_COPY_MOVE(Descriptor)

    [[nodiscard]] int number() const { return m_number; }
    int* address() { return &m_number; }
    void close()
    {
        if (m_number >= 0)
            ::close(m_number);
        m_number = -1;
    }
    // Everything before \a mark, or until the last writer has gone.
    [[nodiscard]] QByteArray readUntil(char mark) const
    {
        QByteArray all;
        char character = 0;
        while (read(m_number, &character, 1) == 1 && character != mark)
            all.append(character);
        return all;
    }

private:
    int m_number;
};

// Moves a descriptor out of the way of those that the program is given, and keeps it from others.
void moveUp(Descriptor& descriptor)
{
    constexpr int firstFree = openerDescriptor + 1;
    const int moved = fcntl(descriptor.number(), F_DUPFD_CLOEXEC, firstFree);
    if (moved < 0)
        qFatal("No descriptor is free");
    descriptor.close();
    *descriptor.address() = moved;
}

void makePipe(Descriptor& reading, Descriptor& writing)
{
    std::array<int, 2> ends {};
    if (pipe(ends.data()) != 0)
        qFatal("No pipe can be made");
    *reading.address() = ends[0];
    *writing.address() = ends[1];
    moveUp(reading);
    moveUp(writing);
}

void makeTerminal(Descriptor& master, Descriptor& slave, unsigned short columns)
{
    winsize size {};
    size.ws_col = columns;
    if (openpty(master.address(), slave.address(), nullptr, nullptr, &size) != 0)
        qFatal("No terminal can be made");
    // Raw: what the program writes arrives as it is, without carriage returns of the system's own.
    termios settings {};
    tcgetattr(slave.number(), &settings);
    cfmakeraw(&settings);
    tcsetattr(slave.number(), TCSANOW, &settings);
    moveUp(master);
    moveUp(slave);
}

// What was written on a terminal. Its end is marked, since some systems drop what nobody has read
// when the last writer goes.
QByteArray takeShown(const Descriptor& master, const Descriptor& slave)
{
    constexpr char mark = '\0';
    if (write(slave.number(), &mark, 1) != 1)
        qFatal("The terminal cannot be written to");
    return master.readUntil(mark);
}

QProcessEnvironment plainEnvironment(const QString& searchPath)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto* const name : { "DISPLAY", "WAYLAND_DISPLAY", "LANG", "LANGUAGE", "NO_COLOR",
                                    "CLICOLOR_FORCE", "QT_LOGGING_RULES", "QT_MESSAGE_PATTERN" }) {
        environment.remove(QString::fromLatin1(name));
    }
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    environment.insert(u"PATH"_s, searchPath);
    environment.insert(u"TERM"_s, u"xterm"_s);
    return environment;
}

void addRecordingOpener(const QString& directory)
{
    QFile script(directory + u"/xdg-open"_s);
    const QByteArray text = "#!/bin/sh\n"
                            "printf '%s\\n' \"$*\" >&9\n"
                            "[ -z \"$VLFOLIO_SHOW_WHEN_OPENED\" ] || "
                            "/bin/cat \"$VLFOLIO_SHOW_WHEN_OPENED\" >&9\n";
    if (!script.open(QIODevice::WriteOnly) || script.write(text) != text.size()
        || !script.setPermissions(QFile::ReadOwner | QFile::ExeOwner)) {
        qFatal("Cannot make the opener");
    }
}

[[noreturn]] void giveUp()
{
    _exit(ProgramRun::setUpFailed);
}

} // namespace

ProgramRun& ProgramRun::in(const QString& directory)
{
    m_directory = directory;
    return *this;
}

ProgramRun& ProgramRun::with(const QString& variable, const QString& value)
{
    m_variables.insert(variable, value);
    return *this;
}

ProgramRun& ProgramRun::with(const QHash<QString, QString>& variables)
{
    m_variables.insert(variables);
    return *this;
}

ProgramRun& ProgramRun::preloading(const QString& library)
{
    m_libraries.append(library);
    return *this;
}

ProgramRun& ProgramRun::columns(unsigned short number)
{
    m_columns = number;
    return *this;
}

ProgramRun& ProgramRun::output(Stream stream)
{
    m_output = stream;
    return *this;
}

ProgramRun& ProgramRun::error(Stream stream)
{
    m_error = stream;
    return *this;
}

ProgramRun& ProgramRun::outputFile(const QString& path)
{
    m_outputFile = path;
    return *this;
}

ProgramRun& ProgramRun::opener(Opener opener)
{
    m_opener = opener;
    return *this;
}

ProgramRun& ProgramRun::ignoringClosedPipes()
{
    m_ignoresClosedPipes = true;
    return *this;
}

ProgramRun& ProgramRun::before(const std::function<void()>& step)
{
    m_before = step;
    return *this;
}

ProgramRun::Outcome ProgramRun::run() const
{
    const QTemporaryDir searchPath;
    if (m_opener == Opener::Recording)
        addRecordingOpener(searchPath.path());
    QProcessEnvironment environment = plainEnvironment(searchPath.path());
    if (!m_libraries.isEmpty()) {
        environment.insert(u"LD_PRELOAD"_s, m_libraries.join(u':'));
        // A sanitizer wants to be loaded first unless told otherwise.
        environment.insert(u"ASAN_OPTIONS"_s, u"verify_asan_link_order=0"_s);
    }
    for (auto entry = m_variables.cbegin(); entry != m_variables.cend(); ++entry)
        environment.insert(entry.key(), entry.value());

    Descriptor openedReading;
    Descriptor openedWriting;
    makePipe(openedReading, openedWriting);
    Descriptor master;
    Descriptor slave;
    makeTerminal(master, slave, m_columns);

    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_directory);
    if (!m_outputFile.isEmpty())
        process.setStandardOutputFile(m_outputFile);
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
    // From here on, what the child's own steps do about this signal is undone.
    if (m_ignoresClosedPipes)
        process.setUnixProcessParameters(QProcess::UnixProcessFlag::IgnoreSigPipe);
#endif
    const auto prepare = [&, this] {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        std::signal(SIGPIPE, m_ignoresClosedPipes ? SIG_IGN : SIG_DFL);
        dup2(openedWriting.number(), openerDescriptor);
        if (m_output == Stream::Terminal)
            dup2(slave.number(), STDOUT_FILENO);
        if (m_error == Stream::Terminal)
            dup2(slave.number(), STDERR_FILENO);
        if (m_before)
            m_before();
    };
    process.setChildProcessModifier(prepare);
    process.start(QStringLiteral(VLFOLIO_PROGRAM), m_arguments);
    if (!process.waitForStarted(-1))
        qFatal("The program cannot be started");
    openedWriting.close();
    Outcome outcome;
    process.waitForFinished(-1);
    // Qt gives the signal's number as the exit code of a program that crashed.
    outcome.exitCode =
        process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -process.exitCode();
    outcome.output = process.readAllStandardOutput();
    outcome.error = process.readAllStandardError();
    outcome.terminal = takeShown(master, slave);
    outcome.opened = openedReading.readUntil('\0');
    return outcome;
}

void ChildSteps::obeyPermissions()
{
    if (geteuid() != 0)
        return;
    for (const auto capability : { CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH }) {
        if (prctl(PR_CAPBSET_DROP, capability, 0, 0, 0) != 0)
            giveUp();
    }
}

void ChildSteps::closedPipe()
{
    std::array<int, 2> ends {};
    if (pipe(ends.data()) != 0)
        giveUp();
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
}

void ChildSteps::limitFileSize(unsigned long bytes)
{
    std::signal(SIGXFSZ, SIG_DFL);
    const rlimit limit { bytes, bytes };
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
        giveUp();
}

void ChildSteps::limitMemory(unsigned long bytes)
{
    // Not the address space: the libraries' code and tables are most of that, and differ in size.
    const rlimit limit { bytes, bytes };
    if (setrlimit(RLIMIT_DATA, &limit) != 0)
        giveUp();
}

void ChildSteps::mountOver(const char* directory, bool readOnly)
{
    const unsigned long flags = readOnly ? static_cast<unsigned long>(MS_RDONLY) : 0;
    if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0
        || mount("tmpfs", directory, "tmpfs", flags, "size=64k") != 0 || chdir(directory) != 0) {
        giveUp();
    }
    if (readOnly)
        return;
    const int filler = open("filler", O_WRONLY | O_CREAT, 0600);
    static constexpr std::array<char, 4096> block {};
    while (write(filler, block.data(), block.size()) > 0) { }
    close(filler);
}
