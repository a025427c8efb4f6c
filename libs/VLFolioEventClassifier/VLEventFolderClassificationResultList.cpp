#include "VLEventFolderClassificationResultList.h"

#include "VLOwnFileInfo_p.h"

#include <VLCore/VLKomma_p.h>

#include <QtCore/QStringList>

#include <utility>

VLEventFolderClassificationResultList::~VLEventFolderClassificationResultList() = default;

VLEventFolderClassificationResultList
VLEventFolderClassificationResultList::filtered(const VLEventFolderType& type)
{
    VLEventFolderClassificationResultList matching;
    for (const VLEventFolderClassificationResult& result : std::as_const(*this)) {
        if (result.classification() == type)
            matching.append(result);
    }
    return matching;
}

QString VLEventFolderClassificationResultList::toString()
{
    QStringList paths;
    paths.reserve(size());
    for (const VLEventFolderClassificationResult& result : std::as_const(*this))
        paths.append(VLOwnFileInfo::absolutePath(result.directory()));
    return paths.join(u'\n');
}
