#include "PageCommand.h"

#include "FolderPage.h"
#include "FolderReasons.h"
#include "GivenPath.h"
#include "IncompleteListing.h"
#include "Opening.h"
#include "PageFolder.h"
#include "ProgramPlatform.h"
#include "Progress.h"
#include "Terminal.h"
#include "WholeFile.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

QString incompleteReasonsOf(const QString& path, const ProgramPlatform& platform)
{
    QStringList reasons;
    const QList<IncompleteListing> listings = platform.incompleteListings(path);
    for (const IncompleteListing& listing : listings)
        reasons.append(incompleteReason(u"this folder"_s, listing));
    return reasons.join(u"; "_s);
}

QList<PageFolder> classified(const QString& rootPath, const ProgramPlatform& platform)
{
    const Progress progress(platform);
    const QFileInfo root(rootPath);
    const auto results =
        VLFolioEventClassifier(root).eventFolderTypes(root, VLEventFolderClassificationResult());
    FolderReasons reasons(root);
    QList<PageFolder> folders;
    folders.reserve(results.size());
    for (const VLEventFolderClassificationResult& result : results) {
        reasons.enter(result);
        const QString path = result.directory().filePath();
        const qsizetype fileCount = platform.getDirectFilesInDirectory(QDir(path)).size();
        folders.append(
            { result, reasons.reason(), fileCount, incompleteReasonsOf(path, platform) });
    }
    return folders;
}

// Writes the page. Returns why that failed, or an empty string.
QString replacePage(const FolderPage& page, const QString& path)
{
    WholeFile whole(path);
    if (!whole.error().isEmpty())
        return whole.error();
    QFile file(whole.writingPath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || !page.write(file))
        return file.errorString();
    file.close();
    return whole.commit();
}

} // namespace

int PageCommand::run(const CommandLine& commandLine, const QString& rootPath)
{
    const QString pagePath = GivenPath::absolute(commandLine.page);
    ProgramPlatform platform(commandLine.excluded);
    QString error = WholeFile::obstacle(pagePath, true);
    if (error.isEmpty()) {
        platform.keepFileCounts();
        platform.expectFile(pagePath);
        const QList<PageFolder> folders = classified(rootPath, platform);
        platform.tellLeftOut();
        error = replacePage(FolderPage(rootPath, folders), pagePath);
    }
    if (!error.isEmpty()) {
        Terminal::complain(u"cannot write the page %1: %2"_s.arg(pagePath, error));
        return EXIT_FAILURE;
    }
    Terminal::writeLine(pagePath);
    const bool isPrinted = Terminal::flush();
    const bool isOpened = openWritten(platform, u"page"_s, pagePath, commandLine.opening, true);
    return isPrinted && isOpened ? EXIT_SUCCESS : EXIT_FAILURE;
}
