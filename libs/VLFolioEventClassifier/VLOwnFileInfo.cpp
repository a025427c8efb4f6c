#include "VLOwnFileInfo_p.h"

#include <VLCore/VLKomma_p.h>

#include <algorithm>

namespace {

// Returns false for the path of a hidden file, too, for which absolutePath() only takes longer.
bool isCleanAbsolutePath(const QString& path)
{
    const auto needsCleaning = [](QChar first, QChar second) {
        return first == u'/' && (second == u'/' || second == u'.');
    };
    return path.startsWith(u'/')
        && std::adjacent_find(path.cbegin(), path.cend(), needsCleaning) == path.cend();
}

} // namespace

QFileInfo VLOwnFileInfo::detached(const QFileInfo& info)
{
    if (!info.isNativePath())
        return info;
    QFileInfo own = info;
    // This detaches the data, even though the value does not change.
    own.setCaching(info.caching());
    return own.isAbsolute() ? own : info;
}

QString VLOwnFileInfo::absolutePath(const QFileInfo& info)
{
    QString path = info.filePath();
    if (info.isNativePath() && isCleanAbsolutePath(path))
        return path;
    return detached(info).absoluteFilePath();
}
