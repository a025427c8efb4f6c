#include "ClassifyCommands.h"

#include "HostPlatform.h"
#include "Progress.h"
#include "Terminal.h"

#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier/VLEventFolderClassificationResultList.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <array>
#include <cstdlib>
#include <string>
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

std::string progressText(const HostPlatform& platform)
{
    const int folders = platform.folderCount();
    if (folders == 0)
        return "Walking the folders ...";
    return "Reading folder " + std::to_string(folders);
}

QList<VLEventFolderClassificationResult> classified(const QString& rootPath,
                                                    const HostPlatform& platform)
{
    const Progress progress([&platform] { return progressText(platform); });
    const QFileInfo root(rootPath);
    VLFolioEventClassifier classifier(root);
    auto results = classifier.eventFolderTypes(root, VLEventFolderClassificationResult());
    // The walk says nothing of what it cannot read. Another look at each folder does.
    for (const VLEventFolderClassificationResult& result : std::as_const(results)) {
        const QStringList files =
            platform.getDirectFilesInDirectory(QDir(result.directory().absoluteFilePath()));
        Q_UNUSED(files)
    }
    return results;
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

// Only what is incomplete says so: that is what a reader looks for.
QString jsonLine(const VLEventFolderClassificationResult& result, int prefix,
                 const QStringList& omissions = {})
{
    const QString path = result.directory().absoluteFilePath();
    const VLEventFolderType type = result.classification();
    const QStringList files =
        VLPlatformIndependent::instance()->getDirectFilesInDirectory(QDir(path));
    // clang-format off
    QJsonObject object {
        { u"path"_s, path },
        { u"relativePath"_s, path.mid(prefix) },
        { u"type"_s, nameOf(type) },
        { u"value"_s, static_cast<int>(type.value()) },
        { u"files"_s, files.size() },
        { u"occasions"_s, occasionsOf(result) },
    };
    // clang-format on
    if (!omissions.isEmpty())
        object.insert(u"incomplete"_s, QJsonArray::fromStringList(omissions));
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

void printSummary(VLEventFolderClassificationResultList& results,
                  const std::optional<VLEventFolderType>& only)
{
    for (const VLEventFolderTypeEnum type : allTypes) {
        if (!only || *only == type) {
            const qsizetype count = results.filtered(type).size();
            Terminal::writeLine(u"%1 %2"_s.arg(nameOf(type), -13).arg(count));
        }
    }
}

QString explanation(const VLFolioEventClassifier& classifier, const QString& name)
{
    QStringList met;
    if (classifier.matchesProject(name))
        met.append(u"project"_s);
    if (classifier.matchesDate(name))
        met.append(u"date"_s);
    if (classifier.matchesMonth(name))
        met.append(u"month"_s);
    if (classifier.matchesYear(name))
        met.append(u"year"_s);
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
    VLEventFolderClassificationResultList results = classified(rootPath, platform);
    platform.tellOmissions();
    if (commandLine.action == CommandLine::Action::Summary) {
        printSummary(results, commandLine.type);
        return exitCode();
    }

    if (commandLine.type)
        results = results.filtered(*commandLine.type);
    const int prefix = prefixLength(rootPath);
    const bool asJson = commandLine.action == CommandLine::Action::Json;
    for (const VLEventFolderClassificationResult& result : std::as_const(results)) {
        const QString path = result.directory().absoluteFilePath();
        Terminal::writeLine(asJson ? jsonLine(result, prefix, platform.omissionsIn(path))
                                   : result.render(prefix));
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
