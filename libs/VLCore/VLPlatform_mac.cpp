#include "VLKomma_p.h"
#include "VLPlatform_p.h"

using namespace Qt::StringLiterals;

QStringList VLPlatform::openCommand(const QString& path, const QStringList& arguments,
                                    const QString& application)
{
    if (application.isEmpty())
        return { u"open"_s, path };
    QStringList command { u"open"_s, u"-a"_s, application, path };
    if (!arguments.isEmpty())
        command << u"--args"_s << arguments;
    return command;
}

// On macOS an entry is hidden by its name or by a flag of the file system, which Qt knows how to
// read. The descriptor serves for what Qt does not report, namely why it lists too little.
VLPlatform::Listing VLPlatform::readEntries(int descriptor, const QString& path, Wanted wanted)
{
    Listing listing = listingByQt(path, wanted);
    if (!listing.names.isEmpty() || listing.fileCount > 0)
        addIfUnsearchable(listing, descriptor);
    return listing;
}
