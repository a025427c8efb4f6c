#include "VLKomma_p.h"
#include "VLPlatform_p.h"

#include <QtCore/QFile>

using namespace Qt::StringLiterals;

VLPlatform::Command VLPlatform::openCommand(const QString& path, const QStringList& arguments,
                                            const QString& application)
{
    if (application.isEmpty())
        return { u"open"_s, { path } };
    QStringList all { u"-a"_s, application, path };
    if (!arguments.isEmpty())
        all += QStringList { u"--args"_s } + arguments;
    return { u"open"_s, all };
}

// On macOS an entry is hidden by its name or by a flag of the file system, which Qt knows how to
// read. The directory is opened as well, because Qt does not report why it lists nothing.
VLPlatform::Listing VLPlatform::listing(const QString& path, Wanted wanted)
{
    Listing listing;
    const OpenDirectory directory(QFile::encodeName(path));
    if (!directory.isOpen()) {
        addNotOpened(listing, directory);
        return listing;
    }
    listing.names = namesListedByQt(path, wanted);
    if (!listing.names.isEmpty())
        addIfUnsearchable(listing, directory);
    return listing;
}
