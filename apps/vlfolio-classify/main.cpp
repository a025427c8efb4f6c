#include "ClassifyCommands.h"
#include "CommandLine.h"
#include "GivenPath.h"
#include "PageCommand.h"
#include "ReportCommand.h"
#include "Terminal.h"

#include <QtCore/QDir>
#include <QtCore/QLocale>
#include <QtCore/QLoggingCategory>
#include <QtCore/QStringDecoder>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <optional>

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

int runOnDirectory(const CommandLine& commandLine)
{
    const QString& given = commandLine.operands.constFirst();
    const QString rootPath = GivenPath::absolute(given);
    const QString problem = GivenPath::directoryProblem(given, rootPath);
    if (!problem.isEmpty()) {
        Terminal::complain(
            u"cannot classify %1: %2"_s.arg(rootPath.startsWith(u'/') ? rootPath : given, problem));
        return EXIT_FAILURE;
    }
    switch (commandLine.action) {
    case CommandLine::Action::Report:
        return ReportCommand::run(commandLine, rootPath);
    case CommandLine::Action::Page:
        return PageCommand::run(commandLine, rootPath);
    default:
        return ClassifyCommands::printFolders(commandLine, rootPath);
    }
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
    case CommandLine::Action::Locales:
        return ClassifyCommands::printLocales();
    default:
        return runOnDirectory(commandLine);
    }
}

// Returns the arguments, or nothing if one of them is not valid UTF-8, because it would name
// another file when it is decoded. QString::fromUtf8() is not used, because it drops a byte order
// mark at the beginning.
std::optional<QStringList> decodedArguments(int argc, char* argv[], QString* error)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
        const QString argument = decode(QByteArrayView(argv[i]));
        if (argument.toUtf8() != argv[i]) {
            *error = u"the argument '%1' is not UTF-8"_s.arg(argument);
            return std::nullopt;
        }
        arguments.append(argument);
    }
    return arguments;
}

// The program makes no QCoreApplication: it has no events, and GLib's event dispatcher would end
// the process when memory runs out.
int runProgram(int argc, char* argv[])
{
    // The service log would be noise on a terminal. QT_LOGGING_RULES can enable it.
    QLoggingCategory::setFilterRules(u"vl.folio.service.info=false"_s);

    QString error;
    std::optional<CommandLine> commandLine;
    if (const auto arguments = decodedArguments(argc, argv, &error))
        commandLine = CommandLine::parse(*arguments, &error);
    if (!commandLine) {
        Terminal::complain(error + u". Try 'vlfolio-classify --help'."_s);
        return wrongUsage;
    }
    return run(*commandLine);
}

// This message needs no memory, unlike those of Terminal::complain().
int tellLackOfMemory()
{
    std::fputs("vlfolio-classify: out of memory\n", stderr);
    return EXIT_FAILURE;
}

// Some functions of Qt allocate memory although they are noexcept. When it runs out there, the user
// is told so before the process ends.
[[noreturn]] void endForGood()
{
    try {
        if (std::current_exception())
            throw;
    } catch (const std::bad_alloc&) {
        std::_Exit(tellLackOfMemory());
    } catch (...) {
        std::abort();
    }
    std::abort();
}

} // namespace

int main(int argc, char* argv[])
{
    Terminal::occupyClosedStreams();
    // The system's error messages are in the user's language, but always in UTF-8.
    std::setlocale(LC_ALL, "");
    std::setlocale(LC_CTYPE, "C.UTF-8");
    // Where the size of files is limited, a write then fails with an error, as on a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    std::set_terminate(endForGood);
    try {
        return runProgram(argc, argv);
    } catch (const std::bad_alloc&) {
        return tellLackOfMemory();
    }
}
