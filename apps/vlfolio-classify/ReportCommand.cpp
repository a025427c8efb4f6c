#include "ReportCommand.h"

#include "HostPlatform.h"
#include "Progress.h"
#include "ReportMessages.h"
#include "Terminal.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>
#include <cstdlib>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

void classify(const QString& rootPath, const HostPlatform& platform)
{
    const Progress progress(platform, "Writing the report:");
    VLFolioEventClassifier(QFileInfo(rootPath)).start();
}

// A link or a pipe under the report's name must go: what is written would end up elsewhere, or wait
// for a reader for ever. A directory is the user's to move. Returns what stays there and why, or an
// empty string.
QString removeObstacle(const QString& reportPath)
{
    const QByteArray name = QFile::encodeName(reportPath);
    struct stat status = {};
    if (lstat(name.constData(), &status) != 0 || S_ISREG(status.st_mode))
        return {};
    if (S_ISDIR(status.st_mode))
        return u"a directory has that name; rename or remove it"_s;
    const bool isGone = unlink(name.constData()) == 0;
    return isGone ? QString()
                  : Terminal::errorText(errno) + u"; what has that name is no file and stays"_s;
}

// What is wrong with a report that could be opened, or an empty string. A full disk is not noticed
// while it is written: its last line says that all is there.
QString defect(const QString& reportPath)
{
    constexpr QByteArrayView lastLine("</html>\n");
    QFile report(reportPath);
    if (!report.open(QIODevice::ReadOnly))
        return u"it cannot be read back: "_s + report.errorString();
    const bool isComplete =
        report.seek(report.size() - lastLine.size()) && report.readAll() == lastLine;
    return isComplete ? QString() : u"it is incomplete, the disk may be full"_s;
}

// What kept the report from being written, or an empty string.
QString failure(const ReportMessages& messages, const QString& reportPath)
{
    if (!messages.openError().isEmpty()) {
        return messages.oldReportRemains()
            ? messages.openError() + u"; the old one could not be replaced"_s
            : messages.openError();
    }
    return defect(reportPath);
}

int fail(const QString& reportPath, const QString& reason)
{
    Terminal::complain(u"cannot write the report %1: %2"_s.arg(reportPath, reason));
    return EXIT_FAILURE;
}

} // namespace

int ReportCommand::run(const CommandLine& commandLine, const QString& rootPath)
{
    const QString expectedPath = QDir(rootPath).filePath(u"vela.classification.results.html"_s);
    if (const QString reason = removeObstacle(expectedPath); !reason.isEmpty())
        return fail(expectedPath, reason);

    const ReportMessages messages;
    HostPlatform platform(commandLine.opening);
    classify(rootPath, platform);
    platform.tellOmissions();
    if (const QString reason = failure(messages, platform.reportPath()); !reason.isEmpty())
        return fail(platform.reportPath(), reason);
    Terminal::writeLine(platform.reportPath());
    const bool printed = Terminal::flush();
    platform.openReport();
    return printed ? EXIT_SUCCESS : EXIT_FAILURE;
}
