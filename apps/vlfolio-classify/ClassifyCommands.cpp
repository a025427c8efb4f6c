#include "ClassifyCommands.h"

#include "FolderReasons.h"
#include "JsonLine.h"
#include "ProgramPlatform.h"
#include "Progress.h"
#include "Terminal.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QList>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// clang-format off
constexpr std::array allTypes {
    VLEventFolderTypeEnum::Unknown,
    VLEventFolderTypeEnum::Root,
    VLEventFolderTypeEnum::Year,
    VLEventFolderTypeEnum::Month,
    VLEventFolderTypeEnum::Day,
    VLEventFolderTypeEnum::Event,
    VLEventFolderTypeEnum::ProjectFolder,
};
// clang-format on

// A folder that the walk found, with the number of its files for --json.
struct Folder
{
    VLEventFolderClassificationResult result;
    qsizetype fileCount = 0;
};

bool isWanted(const VLEventFolderType& type, const QList<VLEventFolderType>& types)
{
    return types.isEmpty() || types.contains(type);
}

qsizetype filesIn(const VLEventFolderClassificationResult& result, const ProgramPlatform& platform)
{
    return platform.getDirectFilesInDirectory(QDir(result.directory().filePath())).size();
}

// Only --json shows how many files there are.
QList<Folder> classified(const CommandLine& commandLine, const QString& rootPath,
                         const ProgramPlatform& platform)
{
    const Progress progress(platform);
    const QFileInfo root(rootPath);
    VLFolioEventClassifier classifier(root);
    const auto results = classifier.eventFolderTypes(root, VLEventFolderClassificationResult());
    const bool counts = commandLine.action == CommandLine::Action::Json;
    QList<Folder> folders;
    folders.reserve(results.size());
    for (const VLEventFolderClassificationResult& result : results) {
        const bool isCounted = counts && isWanted(result.classification(), commandLine.types);
        folders.append({ result, isCounted ? filesIn(result, platform) : 0 });
    }
    return folders;
}

// Returns the length of the root's path, including the slash after it.
int prefixLength(const QString& rootPath)
{
    return static_cast<int>(rootPath.endsWith(u'/') ? rootPath.size() : rootPath.size() + 1);
}

QString listLine(const CommandLine& commandLine, const Folder& folder, const FolderReasons& reasons,
                 int prefix)
{
    const QString line = folder.result.render(prefix);
    return commandLine.why ? line + u"  ("_s + reasons.reason().text + u')' : line;
}

void printCount(const QString& name, qsizetype count)
{
    Terminal::writeLine(u"%1 %2"_s.arg(name, -13).arg(count));
}

void printSummary(const QList<Folder>& folders, const QList<VLEventFolderType>& types)
{
    qsizetype total = 0;
    for (const VLEventFolderTypeEnum type : allTypes) {
        if (!isWanted(type, types))
            continue;
        const auto isOfType = [type](const Folder& folder) {
            return folder.result.classification() == type;
        };
        const auto count = std::count_if(folders.cbegin(), folders.cend(), isOfType);
        printCount(VLEventFolderType(type).name(), count);
        total += count;
    }
    printCount(u"Total"_s, total);
}

QString explanation(const VLFolioEventClassifier& classifier, const QString& name)
{
    const QStringList met = FolderReasons::testsMet(classifier, name);
    const QString tests = met.isEmpty() ? u"none"_s : met.join(u", "_s);
    return classifier.eventFolderType(name).name() + u" <= "_s + name + u" (tests met: "_s + tests
        + u')';
}

int exitCode()
{
    return Terminal::flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int ClassifyCommands::printFolders(const CommandLine& commandLine, const QString& rootPath)
{
    ProgramPlatform platform(commandLine.excluded);
    if (commandLine.action == CommandLine::Action::Json)
        platform.keepFileCounts();
    const QList<Folder> folders = classified(commandLine, rootPath, platform);
    platform.tellLeftOut();
    if (commandLine.action == CommandLine::Action::Summary) {
        printSummary(folders, commandLine.types);
        return exitCode();
    }

    const int prefix = prefixLength(rootPath);
    FolderReasons reasons { QFileInfo(rootPath) };
    for (const Folder& folder : folders) {
        reasons.enter(folder.result);
        if (!isWanted(folder.result.classification(), commandLine.types))
            continue;
        const QString path = folder.result.directory().filePath();
        Terminal::writeLine(commandLine.action == CommandLine::Action::Json
                                ? jsonLine({ folder.result, folder.fileCount, reasons.reason(),
                                             platform.incompleteListings(path) },
                                           prefix)
                                : listLine(commandLine, folder, reasons, prefix));
    }
    return exitCode();
}

int ClassifyCommands::explain(const CommandLine& commandLine)
{
    const VLFolioEventClassifier classifier { QFileInfo() };
    for (const QString& name : std::as_const(commandLine.operands))
        Terminal::writeLine(explanation(classifier, name));
    return exitCode();
}

int ClassifyCommands::printLocales()
{
    const QStringList names = CommandLine::localeNames();
    for (const QString& name : names)
        Terminal::writeLine(name);
    return exitCode();
}
