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
#include <cstdlib>

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
// from every other one.
QString rootPathOf(const QString& argument)
{
    // Qt takes "name/.." for the folder that holds the name; the system asks whether that name is
    // there and where a link leads.
    const QFileInfo given(argument);
    if (argument.split(u'/').contains(u".."_s))
        return QDir::current().filePath(given.exists() ? given.canonicalFilePath() : argument);
    QString path = given.absoluteFilePath();
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

QString directoryProblem(const QString& path)
{
    // A folder above that may not be entered is no proof that the directory is not there: only the
    // system tells the two apart.
    if (access(QFile::encodeName(path).constData(), F_OK) != 0)
        return errno == ENOENT ? u"it does not exist"_s : Terminal::errorText(errno);
    const QFileInfo directory(path);
    if (!directory.isDir())
        return u"it is not a directory"_s;
    return directory.isReadable() && directory.isExecutable() ? QString()
                                                              : Terminal::errorText(EACCES);
}

int runOnDirectory(const CommandLine& commandLine)
{
    const QString rootPath = rootPathOf(commandLine.operands.constFirst());
    const QString problem = directoryProblem(rootPath);
    if (!problem.isEmpty()) {
        Terminal::complain(u"cannot classify %1: %2"_s.arg(rootPath, problem));
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

} // namespace

int main(int argc, char* argv[])
{
    Terminal::occupyClosedStreams();
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
