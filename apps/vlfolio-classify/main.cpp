#include "ClassifyCommands.h"
#include "CommandLine.h"
#include "ReportCommand.h"
#include "Terminal.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QLoggingCategory>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int wrongUsage = 2;

int print(const QString& text)
{
    const QStringList lines = text.split(u'\n');
    for (const QString& line : lines)
        Terminal::writeLine(line);
    return Terminal::flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}

// The absolute path without a slash at its end, which would stay in the root's path and be cut
// from every other one. Not absolute if that takes a working directory that was removed.
QString rootPathOf(const QString& argument)
{
    // Qt takes "name/.." for the folder that holds the name; the system asks whether that name is
    // there and where a link leads.
    const QFileInfo given(argument);
    if (argument.split(u'/').contains(u".."_s))
        return given.exists() ? given.canonicalFilePath() : QDir::current().filePath(argument);
    QString path = given.absoluteFilePath();
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

QString missing(const QString& path)
{
    // That is what Qt puts where an argument is not UTF-8. The way back leads to another name.
    return path.contains(QChar::ReplacementCharacter)
        ? u"it does not exist, or its name is not UTF-8"_s
        : u"it does not exist"_s;
}

// Asked of the system, which tells a directory that is not there from one that cannot be looked at.
QString directoryProblem(const QString& path)
{
    if (QDir::isRelativePath(path))
        return u"its path cannot be found (was the working directory removed?)"_s;
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    if (stat(name.constData(), &status) != 0)
        return errno == ENOENT ? missing(path) : Terminal::errorText(errno);
    if (!S_ISDIR(status.st_mode))
        return u"it is not a directory"_s;
    const int directory = open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0)
        return Terminal::errorText(errno);
    close(directory);
    return access(name.constData(), X_OK) == 0 ? QString() : Terminal::errorText(errno);
}

int runOnDirectory(const CommandLine& commandLine)
{
    const QString& given = commandLine.operands.constFirst();
    const QString rootPath = rootPathOf(given);
    const QString problem = directoryProblem(rootPath);
    if (!problem.isEmpty()) {
        Terminal::complain(u"cannot classify %1: %2"_s.arg(
            QDir::isRelativePath(rootPath) ? given : rootPath, problem));
        return EXIT_FAILURE;
    }
    return commandLine.action == CommandLine::Action::Report
        ? ReportCommand::run(commandLine, rootPath)
        : ClassifyCommands::printFolders(commandLine, rootPath);
}

int run(const CommandLine& commandLine)
{
    if (commandLine.locale)
        QLocale::setDefault(*commandLine.locale);
    switch (commandLine.action) {
    case CommandLine::Action::Help:
        return print(CommandLine::helpText());
    case CommandLine::Action::Version:
        return print(u"vlfolio-classify " VLFOLIO_VERSION ""_s);
    case CommandLine::Action::Explain:
        return ClassifyCommands::explain(commandLine);
    default:
        return runOnDirectory(commandLine);
    }
}

QtMessageHandler previousHandler = nullptr;

// Newer Qt complains about a locale that is not of UTF-8 or not installed. It reads and writes
// UTF-8 all the same, and has its own data of the language.
void dropLocaleWarning(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (!message.startsWith("Detected locale "_L1))
        previousHandler(type, context, message);
}

int runProgram(int argc, char* argv[])
{
    previousHandler = qInstallMessageHandler(dropLocaleWarning);
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler(previousHandler);
    // The log of a service is noise on a terminal. QT_LOGGING_RULES brings it back.
    QLoggingCategory::setFilterRules(u"vl.folio.service.info=false"_s);

    QString error;
    const auto commandLine = CommandLine::parse(QCoreApplication::arguments(), &error);
    if (!commandLine) {
        Terminal::complain(error + u". Try 'vlfolio-classify --help'."_s);
        return wrongUsage;
    }
    return run(*commandLine);
}

} // namespace

int main(int argc, char* argv[])
{
    Terminal::occupyClosedStreams();
    try {
        return runProgram(argc, argv);
    } catch (const std::bad_alloc&) {
        // What makes the other messages needs memory.
        std::fputs("vlfolio-classify: out of memory\n", stderr);
        return EXIT_FAILURE;
    }
}
