#include "ReportCommand.h"

#include "GivenPath.h"
#include "Markup.h"
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
#include <cerrno>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

// Why no report can come to lie there, or an empty string. A link or a pipe that someone has put
// under the report's name is replaced; one that the user names is more likely a mistake.
QString obstacle(const QString& reportPath, bool isGiven)
{
    const QByteArray name = QFile::encodeName(reportPath);
    struct stat status = {};
    const bool isThere = lstat(name.constData(), &status) == 0;
    if (isThere && S_ISDIR(status.st_mode))
        return u"a directory has that name; rename or remove it"_s;
    if (isThere && isGiven && !S_ISREG(status.st_mode))
        return u"what has that name is no file; remove it or give another name"_s;
    // A walk may take long: this is better known before it.
    const QByteArray folder = QFile::encodeName(QFileInfo(reportPath).absolutePath() + u"/."_s);
    return faccessat(AT_FDCWD, folder.constData(), W_OK | X_OK, AT_EACCESS) == 0
        ? QString()
        : Terminal::errorText(errno);
}

// Writes what was gathered in \a text. False when that fell short.
bool passOn(QString& text, QFile& file)
{
    QByteArray bytes = text.toUtf8();
    text.clear();
    // Only a write that writes nothing tells why.
    while (!bytes.isEmpty()) {
        const qint64 written = file.write(bytes);
        if (written <= 0)
            return false;
        bytes.remove(0, written);
    }
    return true;
}

// The report as renderToFile() writes it, which does not notice when a write falls short. Not from
// a stream on the file, either: there, what is lost in one write is followed by the next.
bool writeReport(const Results& results, int rootPathLength, QFile& file)
{
    constexpr qsizetype pieceSize = 1 << 13;
    const Renderer renderer({}, rootPathLength, { u"*.*"_s });
    // Not a shared copy, which sorting would have to detach: that crashes where memory is short.
    Results sorted;
    sorted.append(results);
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

// Why the report could not be put in its place, or an empty string.
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

bool hasDesktop()
{
#if defined(Q_OS_MACOS)
    return true;
#else
    return !qEnvironmentVariableIsEmpty("DISPLAY")
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#endif
}

// Whether the report is to be opened. Says so when it is not because of the names in it.
bool isToBeOpened(CommandLine::Opening opening, const QStringList& foldersWithMarkup)
{
    const bool byDefault = opening == CommandLine::Opening::Desktop;
    if (!foldersWithMarkup.isEmpty()) {
        Terminal::complain(Markup::sentence(foldersWithMarkup)
                           + (byDefault ? u"; only --open opens the report"_s : QString()));
    }
    return opening == CommandLine::Opening::Always
        || (byDefault && hasDesktop() && foldersWithMarkup.isEmpty());
}

} // namespace

// start() does the same in the same order, but for what a program of its own can do better: the old
// report stays until the new one is whole, and what goes wrong is told.
int ReportCommand::run(const CommandLine& commandLine, const QString& rootPath)
{
    const QString reportPath = reportPathFor(commandLine, rootPath);
    const auto fail = [&reportPath](const QString& reason) {
        Terminal::complain(u"cannot write the report %1: %2"_s.arg(reportPath, reason));
        return EXIT_FAILURE;
    };
    if (const QString reason = obstacle(reportPath, !commandLine.output.isEmpty());
        !reason.isEmpty()) {
        return fail(reason);
    }

    ProgramPlatform platform(rootPath, commandLine.excluded);
    platform.expectFile(reportPath);
    VLSingleton<VLLogger>::instance()->logFolioService(u"startClassifyEvent"_s);
    Results results;
    QString error;
    {
        Progress progress(platform);
        results = walked(rootPath);
        progress.lookAgain("Writing the report:", static_cast<int>(results.size()));
        error = replaceReport(results, static_cast<int>(rootPath.size()), reportPath);
    }
    platform.tellLeftOut();
    if (!error.isEmpty())
        return fail(error);

    Terminal::writeLine(reportPath);
    const bool isPrinted = Terminal::flush();
    if (isToBeOpened(commandLine.opening, Markup::folders(results, rootPath)))
        platform.allowOpening();
    const bool isOpened = platform.openFile(reportPath, {}, {});
    if (!isOpened)
        Terminal::complain(u"cannot open the report %1"_s.arg(reportPath));
    const bool isWanted = commandLine.opening == CommandLine::Opening::Always;
    return isPrinted && (isOpened || !isWanted) ? EXIT_SUCCESS : EXIT_FAILURE;
}
