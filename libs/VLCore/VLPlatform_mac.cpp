#include "VLPlatform_p.h"

#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>

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

bool VLPlatform::mayHoldUndecodableNames()
{
    return false;
}

// An entry is hidden here by its name or by a flag of the file system, which Qt knows how to read.
VLPlatform::Listing VLPlatform::listing(const QString& path, Wanted wanted)
{
    const bool wantsFiles = wanted == Wanted::Files;
    const QDir::Filters filters =
        wantsFiles ? QDir::Filters(QDir::Files) : QDir::Dirs | QDir::NoDotAndDotDot;
    Listing listing;
    listing.isComplete = QFileInfo(path).isReadable();
    QStringList& names = wantsFiles ? listing.files : listing.directories;
    for (QDirIterator entries(path, filters); entries.hasNext();) {
        entries.next();
        names.append(entries.fileName());
    }
    return listing;
}
