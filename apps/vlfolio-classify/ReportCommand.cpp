#include "ReportCommand.h"

#include "GivenPath.h"
#include "Markup.h"
#include "Opening.h"
#include "ProgramPlatform.h"
#include "Progress.h"
#include "Terminal.h"
#include "WholeFile.h"

#include <VLCore/VLLogger.h>
#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>

#include <algorithm>
#include <cstdlib>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Results = QList<VLEventFolderClassificationResult>;
using Renderer = VLClassificationResultsRendererHTML;

Results walked(const QString& rootPath)
{
    const QFileInfo root(rootPath);
    return VLFolioEventClassifier(root).eventFolderTypes(root, VLEventFolderClassificationResult());
}

QString reportPathFor(const CommandLine& commandLine, const QString& rootPath)
{
    const QString name = u"vela.classification.results.html"_s;
    if (commandLine.output.isEmpty())
        return QDir(rootPath).filePath(name);
    const QString path = GivenPath::absolute(commandLine.output);
    const bool isFolder = commandLine.output.endsWith(u'/') || QFileInfo(path).isDir();
    return isFolder ? QDir(path).filePath(name) : path;
}

// Writes \a text to \a file and clears it. Returns false if not all of it could be written.
bool passOn(QString& text, QFile& file)
{
    const QByteArray bytes = text.toUtf8();
    text.clear();
    return WholeFile::writeAll(file, bytes);
}

// Writes the report as renderToFile() does. That function is not used, because it does not notice a
// write that fails. A stream on the file is not used either, because after a failed write it goes
// on with the next one.
bool writeReport(const Results& results, int rootPathLength, QFile& file)
{
    constexpr qsizetype pieceSize = 1 << 13;
    // The lists are filled by append(), because an initializer list, or a shared copy that sorting
    // detaches, crashes if there is no memory for it.
    QStringList nameFilters;
    nameFilters.append(u"*.*"_s);
    const Renderer renderer({}, rootPathLength, nameFilters);
    Results sorted;
    sorted.append(results);
    if (!std::is_sorted(sorted.cbegin(), sorted.cend(), Renderer::isSmaller))
        std::sort(sorted.begin(), sorted.end(), Renderer::isSmaller);
    QString text;
    QTextStream stream(&text);
    renderer.writeHTMLHeader(stream);
    renderer.writeTableStart(stream);
    for (const VLEventFolderClassificationResult& result : std::as_const(sorted)) {
        renderer.writeTableEntry(stream, result);
        if (text.size() >= pieceSize && !passOn(text, file))
            return false;
    }
    renderer.writeTableEnd(stream);
    renderer.writeHTMLEnd(stream);
    return passOn(text, file);
}

// Writes the report. Returns why that failed, or an empty string.
QString replaceReport(const Results& results, int rootPathLength, const QString& reportPath)
{
    WholeFile report(reportPath);
    if (!report.error().isEmpty())
        return report.error();
    QFile file(report.writingPath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::Unbuffered)
        || !writeReport(results, rootPathLength, file)) {
        return file.errorString();
    }
    file.close();
    return report.commit();
}

// Tells the user if a browser would run some of the names in the report.
void tellMarkup(CommandLine::Opening opening, const QStringList& foldersWithMarkup)
{
    if (!foldersWithMarkup.isEmpty()) {
        Terminal::complain(Markup::sentence(foldersWithMarkup)
                           + (opening == CommandLine::Opening::Desktop
                                  ? u"; only --open opens the report"_s
                                  : QString()));
    }
}

} // namespace

// This takes the steps of VLFolioEventClassifier::start() in the same order. But the old report
// stays until the new one is whole, and the user is told what went wrong.
int ReportCommand::run(const CommandLine& commandLine, const QString& rootPath)
{
    const QString reportPath = reportPathFor(commandLine, rootPath);
    const auto fail = [&reportPath](const QString& reason) {
        Terminal::complain(u"cannot write the report %1: %2"_s.arg(reportPath, reason));
        return EXIT_FAILURE;
    };
    if (const QString reason = WholeFile::obstacle(reportPath, !commandLine.output.isEmpty());
        !reason.isEmpty()) {
        return fail(reason);
    }

    ProgramPlatform platform(commandLine.excluded);
    platform.keepFileCounts();
    platform.expectFile(reportPath);
    VLSingleton<VLLogger>::instance()->logFolioService(u"startClassifyEvent"_s);
    Results results;
    QString error;
    {
        Progress progress(platform);
        results = walked(rootPath);
        progress.startReport(static_cast<int>(results.size()));
        error = replaceReport(results, static_cast<int>(rootPath.size()), reportPath);
    }
    platform.tellLeftOut();
    if (!error.isEmpty())
        return fail(error);

    Terminal::writeLine(reportPath);
    const bool isPrinted = Terminal::flush();
    const QStringList foldersWithMarkup = Markup::folders(results, rootPath);
    tellMarkup(commandLine.opening, foldersWithMarkup);
    const bool isOpened = openWritten(platform, u"report"_s, reportPath, commandLine.opening,
                                      foldersWithMarkup.isEmpty());
    return isPrinted && isOpened ? EXIT_SUCCESS : EXIT_FAILURE;
}
