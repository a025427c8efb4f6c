#include "VLOwnFileInfo_p.h"

#include <VLCore/VLKomma_p.h>

QFileInfo VLOwnFileInfo::detached(const QFileInfo& info)
{
    if (!info.isNativePath())
        return info;
    QFileInfo own = info;
    // Setting what is set already detaches all the same.
    own.setCaching(info.caching());
    return own.isAbsolute() ? own : info;
}
