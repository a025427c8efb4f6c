#include "Shell.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QTemporaryDir>

#include <array>

#include <fcntl.h>
#include <linux/capability.h>
#include <pty.h>
#include <sys/prctl.h>
#include <termios.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int terminalDescriptor = 8;
// Where the opener prints. Nothing else of the program's is open in it.
constexpr int openerDescriptor = 9;

// Two ends of a channel, which programs do not inherit.
class Channel
{
public:
    Channel() = default;
    ~Channel()
    {
        close(far);
        close(near);
    }
    Q_DISABLE_COPY_MOVE(Channel)

    // Keeps both away from the descriptors that programs are given.
    void settle()
    {
        for (int* const end : { &near, &far }) {
            const int moved = fcntl(*end, F_DUPFD_CLOEXEC, openerDescriptor + 1);
            close(*end);
            *end = moved;
        }
        if (near < 0 || far < 0)
            qFatal("No descriptor is free");
    }

    // What comes until \a mark, or until the far end has been closed by everybody.
    [[nodiscard]] QByteArray readUntil(char mark) const
    {
        QByteArray all;
        char character = 0;
        // From Qt 6.8 on, the shell's end interrupts the call while the opener still runs.
        while (TEMP_FAILURE_RETRY(read(near, &character, 1)) == 1 && character != mark)
            all.append(character);
        return all;
    }

    int near = -1;
    int far = -1;
};

// The directory that comes first in the search path.
QString programs()
{
    static const QTemporaryDir directory;
    QFile opener(directory.filePath(u"xdg-open"_s));
    if (!opener.exists()) {
        const QByteArray text = "#!/bin/sh\necho \"opens $*\" >&9\n";
        if (!opener.open(QIODevice::WriteOnly) || opener.write(text) != text.size()
            || !opener.setPermissions(QFile::ReadOwner | QFile::ExeOwner)
            || !QFile::link(QStringLiteral(VLFOLIO_PROGRAM),
                            directory.filePath(u"vlfolio-classify"_s)))
            qFatal("Cannot make the programs");
    }
    return directory.path();
}

QProcessEnvironment environment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto* const name : { "DISPLAY", "WAYLAND_DISPLAY", "LANG", "LANGUAGE", "NO_COLOR",
                                    "CLICOLOR_FORCE", "QT_LOGGING_RULES", "QT_MESSAGE_PATTERN" }) {
        environment.remove(QString::fromLatin1(name));
    }
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    environment.insert(u"PATH"_s, programs() + u":/usr/sbin:/usr/bin:/sbin:/bin"_s);
    environment.insert(u"TERM"_s, u"xterm"_s);
    // What to preload into the program. A sanitizer gives memory of its own, and wants to be loaded
    // first unless told otherwise.
    environment.insert(u"calls"_s, QStringLiteral(VLFOLIO_CALLS));
#if defined(VLFOLIO_MEMORY)
    environment.insert(u"memory"_s, QStringLiteral(VLFOLIO_MEMORY));
#endif
    environment.insert(u"ASAN_OPTIONS"_s, u"verify_asan_link_order=0"_s);
    return environment;
}

void obeyPermissions()
{
    if (geteuid() != 0)
        return;
    for (const auto capability : { CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH }) {
        if (prctl(PR_CAPBSET_DROP, capability, 0, 0, 0) != 0)
            _exit(Shell::setUpFailed);
    }
}

} // namespace

Shell::Outcome Shell::run(const QString& command, const RawDirectory& tree, bool obeysPermissions)
{
    Channel output;
    std::array<int, 2> ends {};
    Channel terminal;
    termios settings {};
    if (pipe(ends.data()) != 0
        || openpty(&terminal.near, &terminal.far, nullptr, nullptr, nullptr) != 0)
        qFatal("No pipe and no terminal can be made");
    output.near = ends[0];
    output.far = ends[1];
    output.settle();
    terminal.settle();
    // What is written arrives as it is, without carriage returns of the system's own.
    tcgetattr(terminal.far, &settings);
    cfmakeraw(&settings);
    tcsetattr(terminal.far, TCSANOW, &settings);

    QProcess process;
    process.setProcessEnvironment(environment());
    process.setWorkingDirectory(tree.path());
    process.setChildProcessModifier([&] {
        dup2(output.far, STDOUT_FILENO);
        dup2(output.far, openerDescriptor);
        dup2(terminal.far, terminalDescriptor);
        if (obeysPermissions)
            obeyPermissions();
    });
    process.start(u"/bin/sh"_s, { u"-c"_s, QString(command).replace(u"{}"_s, tree.path()) });
    if (!process.waitForStarted(-1))
        qFatal("The shell cannot be started");
    close(output.far);
    output.far = -1;

    Outcome outcome;
    outcome.output = output.readUntil('\0');
    process.waitForFinished(-1);
    // Qt gives the signal's number as the exit code of a program that crashed.
    outcome.exitCode = process.exitCode() + (process.exitStatus() == QProcess::CrashExit ? 128 : 0);
    outcome.error = process.readAllStandardError();
    // Its end is marked, since some systems drop what nobody has read when the last writer goes.
    if (write(terminal.far, "", 1) != 1)
        qFatal("The terminal cannot be written to");
    outcome.terminal = terminal.readUntil('\0');
    return outcome;
}
