#include "VLPlatformIndependent.h"

#include "VLKomma_p.h"
#include "VLPlatform_p.h"

#include <QtCore/QAtomicPointer>
#include <QtCore/QDebug>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>

namespace {

Q_CONSTINIT QBasicAtomicPointer<VLPlatformIndependent> hostService =
    Q_BASIC_ATOMIC_INITIALIZER(nullptr);

VLPlatform::Listing listingOf(const QDir& directory, VLPlatform::Wanted wanted)
{
    const QString path = directory.path();
    // The system would end the path at the null character and list a directory above, so that a
    // walk would never end.
    if (path.contains(QChar(0)))
        return {};
    if (QFileInfo(path).isNativePath())
        return VLPlatform::listing(path, wanted);
    // Only Qt can list what a file engine provides, such as resources.
    return VLPlatform::listingByQt(path, wanted);
}

} // namespace

VLPlatformIndependent::VLPlatformIndependent() = default;

VLPlatformIndependent::~VLPlatformIndependent() = default;

VLPlatformIndependent* VLPlatformIndependent::instance()
{
    if (auto* const service = hostService.loadAcquire())
        return service;
    // Never deleted: code that runs at process exit may still ask for it.
    static auto* const builtInService = new VLPlatformIndependent;
    return builtInService;
}

void VLPlatformIndependent::setInstance(VLPlatformIndependent* service)
{
    hostService.storeRelease(service);
}

bool VLPlatformIndependent::openFile(const QString& path, const QStringList& arguments,
                                     const QString& application)
{
    // An absolute path cannot be mistaken for an option of the program.
    const QString absolutePath = QFileInfo(path).absoluteFilePath();
    QStringList command = VLPlatform::openCommand(absolutePath, arguments, application);
    // Whoever reads the output of this process must not have to wait for the application to end.
    QProcess process;
    process.setProgram(command.takeFirst());
    process.setArguments(command);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (process.startDetached())
        return true;
    qWarning() << "Could not open file" << path << "with" << process.program();
    return false;
}

QStringList VLPlatformIndependent::getDirectFilesInDirectory(const QDir& directory) const
{
    const VLPlatform::Listing listing = listingOf(directory, VLPlatform::Wanted::Files);
    for (const VLPlatform::Problem& problem : listing.problems)
        listingIncomplete(directory, problem.kind, problem.systemError);
    return listing.names;
}

QStringList VLPlatformIndependent::getDirectSubdirectoriesInDirectory(const QDir& directory) const
{
    const VLPlatform::Listing listing = listingOf(directory, VLPlatform::Wanted::Directories);
    for (const VLPlatform::Problem& problem : listing.problems)
        listingIncomplete(directory, problem.kind, problem.systemError);
    directoryListed(directory, listing.symlinks,
                    listing.problems.isEmpty() ? listing.fileCount : -1);
    return listing.names;
}

void VLPlatformIndependent::directoryContentsChanged(const QDir&) { }

void VLPlatformIndependent::listingIncomplete(const QDir&, ListingProblem, int) const { }

void VLPlatformIndependent::directoryListed(const QDir&, const QStringList&, qsizetype) const { }
