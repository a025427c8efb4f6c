#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

/// One run of the program that is tested, and what was seen of it from outside.
class ProgramRun
{
public:
    /// What a standard stream of the program is.
    enum class Stream { Pipe, Terminal };
    /// Who "xdg-open" is on the search path.
    enum class Opener { Recording, Missing };

    struct Outcome
    {
        /// The exit code; minus the signal's number when one ended the program.
        int exitCode = -1000;
        QByteArray output;
        QByteArray error;
        /// What was shown on the terminal, when there was one.
        QByteArray terminal;
        /// The arguments of each call of the opener, a line each.
        QByteArray opened;
    };

    /// What the child reports with this code could not be set up: nothing was tested.
    static constexpr int setUpFailed = 125;

    explicit ProgramRun(QStringList arguments)
        : m_arguments(std::move(arguments))
    {
    }

    ProgramRun& in(const QString& directory);
    ProgramRun& with(const QString& variable, const QString& value);
    ProgramRun& with(const QHash<QString, QString>& variables);
    /// Loads \a library into the program. May be called more than once.
    ProgramRun& preloading(const QString& library);
    ProgramRun& output(Stream stream);
    ProgramRun& error(Stream stream);
    ProgramRun& outputFile(const QString& path);
    ProgramRun& opener(Opener opener);
    /// Sets how many columns the terminal has.
    ProgramRun& columns(unsigned short number);
    /// Begins the program with the signal of a closed pipe ignored.
    ProgramRun& ignoringClosedPipes();
    /// What the child does before the program begins. Nothing in it may allocate.
    ProgramRun& before(const std::function<void()>& step);

    /// Runs the program to its end, and to the end of an opener that it started. The program ends
    /// with this process.
    [[nodiscard]] Outcome run() const;

private:
    QStringList m_arguments;
    QString m_directory;
    QHash<QString, QString> m_variables;
    QStringList m_libraries;
    unsigned short m_columns = 0;
    Stream m_output = Stream::Pipe;
    Stream m_error = Stream::Pipe;
    QString m_outputFile;
    Opener m_opener = Opener::Recording;
    bool m_ignoresClosedPipes = false;
    std::function<void()> m_before;
};

/// Steps for ProgramRun::before(). Each ends the child with ProgramRun::setUpFailed when the
/// system does not allow it.
namespace ChildSteps {

/// Takes the superuser's right to pass over permissions away, so that a test that runs as root
/// meets the same refusals as any other user.
void obeyPermissions();

/// Standard output is a pipe that nobody reads.
void closedPipe();

/// No file grows beyond \a bytes.
void limitFileSize(unsigned long bytes);

/// The program can take no more memory than that for itself.
void limitMemory(unsigned long bytes);

/// Puts a small file system of the child's own, read-only or full, over \a directory.
void mountOver(const char* directory, bool readOnly);

} // namespace ChildSteps
