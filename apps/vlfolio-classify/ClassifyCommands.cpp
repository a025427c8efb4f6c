#include "ClassifyCommands.h"

#include "FolderReasons.h"
#include "HostPlatform.h"
#include "Progress.h"
#include "Terminal.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QList>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
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

QString nameOf(const VLEventFolderType& type)
{
    return type.enumToStringTable()->nameFor(type.value());
}

// A folder of the outcome, and what was seen in it.
struct Folder
{
    VLEventFolderClassificationResult result;
    qsizetype fileCount = 0;
    QList<HostPlatform::Omission> omissions;
};

Folder lookedInto(const VLEventFolderClassificationResult& result, const HostPlatform& platform)
{
    const QDir directory(result.directory().absoluteFilePath());
    const qsizetype fileCount = platform.getDirectFilesInDirectory(directory).size();
    return { result, fileCount, platform.omissionsIn(directory.path()) };
}

QList<Folder> classified(const QString& rootPath, const HostPlatform& platform)
{
    const Progress progress(platform, "Reading");
    const QFileInfo root(rootPath);
    VLFolioEventClassifier classifier(root);
    const auto results = classifier.eventFolderTypes(root, VLEventFolderClassificationResult());
    QList<Folder> folders;
    folders.reserve(results.size());
    for (const VLEventFolderClassificationResult& result : results)
        folders.append(lookedInto(result, platform));
    return folders;
}

bool isWanted(const VLEventFolderType& type, const std::optional<VLEventFolderType>& only)
{
    return !only || *only == type;
}

// The root's path and the slash behind it.
int prefixLength(const QString& rootPath)
{
    return static_cast<int>(rootPath.endsWith(u'/') ? rootPath.size() : rootPath.size() + 1);
}

QJsonArray occasionsOf(const VLEventFolderClassificationResult& result)
{
    QJsonArray array;
    const VLOccasionInfoList occasions = result.occasionInformation();
    for (const VLOccasionInfo& info : occasions) {
        array.append(QJsonObject { { u"occasion"_s, info.occasion() },
                                   { u"source"_s, info.source() },
                                   { u"confidence"_s, info.confidence() } });
    }
    return array;
}

QString incompleteReason(HostPlatform::ListingProblem problem)
{
    switch (problem) {
    case HostPlatform::ListingProblem::Unreadable:
        return u"unreadable"_s;
    case HostPlatform::ListingProblem::Unsearchable:
        return u"unsearchable"_s;
    case HostPlatform::ListingProblem::UnknownEntry:
        return u"unknownEntries"_s;
    case HostPlatform::ListingProblem::UndecodableName:
        break;
    }
    return u"undecodableNames"_s;
}

QJsonArray incompleteReasons(const QList<HostPlatform::Omission>& omissions)
{
    QJsonArray array;
    for (const HostPlatform::Omission& omission : omissions) {
        const QString reason = incompleteReason(omission.problem);
        if (!array.contains(reason))
            array.append(reason);
    }
    return array;
}

QString jsonLine(const Folder& folder, const FolderReasons::Reason& reason, int prefix)
{
    const QString path = folder.result.directory().absoluteFilePath();
    const VLEventFolderType type = folder.result.classification();
    // clang-format off
    QJsonObject object {
        { u"path"_s, path },
        { u"relativePath"_s, path.mid(prefix) },
        { u"type"_s, nameOf(type) },
        { u"value"_s, static_cast<int>(type.value()) },
        { u"ownType"_s, nameOf(reason.ownType) },
        { u"tests"_s, QJsonArray::fromStringList(reason.tests) },
        { u"files"_s, folder.fileCount },
        { u"occasions"_s, occasionsOf(folder.result) },
    };
    // clang-format on
    // Only what is incomplete says so: that is what a reader looks for.
    if (!folder.omissions.isEmpty())
        object.insert(u"incomplete"_s, incompleteReasons(folder.omissions));
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QString line(const CommandLine& commandLine, const Folder& folder, const FolderReasons& reasons,
             int prefix)
{
    if (commandLine.action == CommandLine::Action::Json)
        return jsonLine(folder, reasons.reason(), prefix);
    const QString line = folder.result.render(prefix);
    return commandLine.why ? line + u"  ("_s + reasons.reason().text + u')' : line;
}

void printSummary(const QList<Folder>& folders, const std::optional<VLEventFolderType>& only)
{
    for (const VLEventFolderTypeEnum type : allTypes) {
        if (isWanted(type, only)) {
            const auto count =
                std::count_if(folders.cbegin(), folders.cend(), [type](const Folder& folder) {
                    return folder.result.classification() == type;
                });
            Terminal::writeLine(u"%1 %2"_s.arg(nameOf(type), -13).arg(count));
        }
    }
}

QString explanation(const VLFolioEventClassifier& classifier, const QString& name)
{
    const QStringList met = FolderReasons::testsMet(classifier, name);
    const QString tests = met.isEmpty() ? u"none"_s : met.join(u", "_s);
    return nameOf(classifier.eventFolderType(name)) + u" <= "_s + name + u" (tests met: "_s + tests
        + u')';
}

int exitCode()
{
    return Terminal::flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int ClassifyCommands::printFolders(const CommandLine& commandLine, const QString& rootPath)
{
    const HostPlatform platform(CommandLine::Opening::Never);
    const QList<Folder> folders = classified(rootPath, platform);
    platform.tellOmissions();
    if (commandLine.action == CommandLine::Action::Summary) {
        printSummary(folders, commandLine.type);
        return exitCode();
    }

    const int prefix = prefixLength(rootPath);
    FolderReasons reasons { QFileInfo(rootPath) };
    for (const Folder& folder : folders) {
        reasons.enter(folder.result);
        if (isWanted(folder.result.classification(), commandLine.type))
            Terminal::writeLine(line(commandLine, folder, reasons, prefix));
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
