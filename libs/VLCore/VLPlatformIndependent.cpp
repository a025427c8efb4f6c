#include "VLPlatformIndependent.h"

#include "VLPlatform_p.h"

#include <QtCore/QAtomicPointer>
#include <QtCore/QDebug>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>

#include <utility>

namespace {

Q_CONSTINIT QBasicAtomicPointer<VLPlatformIndependent> hostService =
    Q_BASIC_ATOMIC_INITIALIZER(nullptr);

VLPlatformIndependent* builtInService()
{
    // Never deleted: code that runs at process exit may still ask for it.
    static auto* const service = new VLPlatformIndependent;
    return service;
}

// Only Qt can list what a file engine presents, resources for instance.
QStringList engineFileNames(const QString& path)
{
    QStringList names;
    for (QDirIterator files(path, QDir::Files); files.hasNext();) {
        files.next();
        names.append(files.fileName());
    }
    return names;
}

} // namespace

VLPlatformIndependent::VLPlatformIndependent() = default;

VLPlatformIndependent::~VLPlatformIndependent() = default;

VLPlatformIndependent* VLPlatformIndependent::instance()
{
    if (auto* const service = hostService.loadAcquire())
        return service;
    return builtInService();
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
    const auto command = VLPlatform::openCommand(absolutePath, arguments, application);
    // A caller that reads this process's output must not wait for the application, too.
    QProcess process;
    process.setProgram(command.program);
    process.setArguments(command.arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (process.startDetached())
        return true;
    qWarning() << "Could not open file" << path << "with" << command.program;
    return false;
}

QStringList VLPlatformIndependent::getDirectFilesInDirectory(const QDir& directory) const
{
    const QString path = directory.path();
    if (!QFileInfo(path).isNativePath())
        return engineFileNames(path);
    const VLPlatform::Listing listing = VLPlatform::listing(path, VLPlatform::Wanted::Files);
    if (!listing.isComplete)
        listingIncomplete(directory, ListingProblem::Unreadable);
    if (listing.holdsUndecodableName)
        listingIncomplete(directory, ListingProblem::UndecodableName);
    return listing.files;
}

void VLPlatformIndependent::directoryContentsChanged(const QDir& directory)
{
    Q_UNUSED(directory)
}

void VLPlatformIndependent::listingIncomplete(const QDir& directory, ListingProblem problem) const
{
    Q_UNUSED(directory)
    Q_UNUSED(problem)
}

std::optional<QStringList>
VLPlatformIndependent::directoriesBesideUndecodableNames(const QDir& directory)
{
    const QString path = directory.path();
    if (!VLPlatform::mayHoldUndecodableNames() || !QFileInfo(path).isNativePath())
        return std::nullopt;
    VLPlatform::Listing listing = VLPlatform::listing(path, VLPlatform::Wanted::Directories);
    if (!listing.holdsUndecodableName)
        return std::nullopt;
    return std::move(listing.directories);
}
