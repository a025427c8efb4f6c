#include "VLOwnFileInfo_p.h"

#include <VLCore/VLKomma_p.h>

QFileInfo VLOwnFileInfo::detached(const QFileInfo& info)
{
    if (!info.isNativePath())
        return info;
    QFileInfo own = info;
    // This detaches the data, even though the value does not change.
    own.setCaching(info.caching());
    return own.isAbsolute() ? own : info;
}
