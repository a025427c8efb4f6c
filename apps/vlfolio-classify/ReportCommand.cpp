#include "ReportCommand.h"

#include "HostPlatform.h"
#include "Progress.h"
#include "ReportMessages.h"
#include "Terminal.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstdlib>
#include <string>

using namespace Qt::StringLiterals;

namespace {

std::string progressText(const HostPlatform& platform)
{
    const int folders = platform.folderCount();
    if (folders == 0)
        return "Walking the folders ...";
    return "Writing the report: folder " + std::to_string(folders);
}

void classify(const QString& rootPath, const HostPlatform& platform)
{
    const Progress progress([&platform] { return progressText(platform); });
    VLFolioEventClassifier(QFileInfo(rootPath)).start();
}

// A full disk is not noticed while the report is written: its last line says that all is there.
bool isComplete(const QString& reportPath)
{
    constexpr QByteArrayView lastLine("</html>\n");
    QFile report(reportPath);
    return report.open(QIODevice::ReadOnly) && report.seek(report.size() - lastLine.size())
        && report.readAll() == lastLine;
}

// What kept the report from being written, or an empty string.
QString failure(const ReportMessages& messages, const QString& reportPath)
{
    if (!messages.openError().isEmpty()) {
        return messages.oldReportRemains()
            ? messages.openError() + u"; the old one could not be replaced"_s
            : messages.openError();
    }
    return isComplete(reportPath) ? QString() : u"it is incomplete, the disk may be full"_s;
}

} // namespace

int ReportCommand::run(const CommandLine& commandLine, const QString& rootPath)
{
    const ReportMessages messages;
    HostPlatform platform(commandLine.opening);
    classify(rootPath, platform);
    platform.tellOmissions();

    const QString reason = failure(messages, platform.reportPath());
    if (!reason.isEmpty()) {
        Terminal::complain(u"cannot write the report %1: %2"_s.arg(platform.reportPath(), reason));
        return EXIT_FAILURE;
    }
    Terminal::writeLine(platform.reportPath());
    const bool printed = Terminal::flush();
    platform.openReport();
    return printed ? EXIT_SUCCESS : EXIT_FAILURE;
}
