#include "VLKomma_p.h"
#include "VLPlatform_p.h"

using namespace Qt::StringLiterals;

QStringList VLPlatform::openCommand(const QString& path, const QStringList& arguments,
                                    const QString& application)
{
    if (application.isEmpty())
        return QStringList(u"open"_s) << path;
    const QStringList command = QStringList(u"open"_s) << u"-a"_s << application << path;
    return arguments.isEmpty() ? command : QStringList(command) << u"--args"_s << arguments;
}

// On macOS an entry is hidden by its name or by a flag of the file system, which Qt knows how to
// read. What cannot be searched may look empty to Qt, which does not report that.
VLPlatform::Listing VLPlatform::readEntries(int descriptor, const QString& path, Wanted wanted)
{
    Listing listing = listingByQt(path, wanted);
    addIfUnsearchable(listing, descriptor);
    return listing;
}
