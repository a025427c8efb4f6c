#include "VLOccasionInfoList.h"

#include <VLCore/VLKomma_p.h>

using namespace Qt::StringLiterals;

VLOccasionInfoList::~VLOccasionInfoList() = default;

QStringList VLOccasionInfoList::occasions() const
{
    QStringList texts;
    texts.reserve(size());
    for (const VLOccasionInfo& info : *this)
        texts.append(info.occasion());
    return texts;
}

QStringList VLOccasionInfoList::descriptions() const
{
    QStringList texts;
    texts.reserve(size());
    for (const VLOccasionInfo& info : *this)
        texts.append(info.description());
    return texts;
}

QString VLOccasionInfoList::description() const
{
    if (isEmpty())
        return u"no Data"_s;
    return descriptions().join(u"; "_s);
}
