#include "VLEventFolderClassificationResultList.h"

#include "VLOwnFileInfo_p.h"

#include <VLCore/VLKomma_p.h>

#include <QtCore/QStringList>

#include <algorithm>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

VLEventFolderClassificationResultList::VLEventFolderClassificationResultList(
    const QList<VLEventFolderClassificationResult>& results)
    : QList(results)
{
}

VLEventFolderClassificationResultList::VLEventFolderClassificationResultList(
    std::initializer_list<VLEventFolderClassificationResult> results)
    : QList(results)
{
}

VLEventFolderClassificationResultList::~VLEventFolderClassificationResultList() = default;

VLEventFolderClassificationResultList
VLEventFolderClassificationResultList::filtered(const VLEventFolderType& type)
{
    VLEventFolderClassificationResultList matching;
    std::copy_if(cbegin(), cend(), std::back_inserter(matching),
                 [&type](const VLEventFolderClassificationResult& result) {
                     return result.classification() == type;
                 });
    return matching;
}

QString VLEventFolderClassificationResultList::toString()
{
    QStringList paths;
    paths.reserve(size());
    for (const VLEventFolderClassificationResult& result : std::as_const(*this))
        paths.append(VLOwnFileInfo::detached(result.directory()).absoluteFilePath());
    return paths.join(u"\n"_s);
}
