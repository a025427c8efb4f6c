#include "VLEventFolderType.h"

#include <VLCore/VLKomma_p.h>

using namespace Qt::StringLiterals;

template class VLEnumWrapper<VLEventFolderTypeEnum>;
template class VLEnumToStringTable<VLEventFolderTypeEnum>;

VLEventFolderType::~VLEventFolderType() = default;

void VLEventFolderType::fillTable(VLEnumToStringTable<VLEventFolderTypeEnum>* table) const
{
    table->insert(u"Unknown"_s, VLEventFolderTypeEnum::Unknown);
    table->insert(u"Root"_s, VLEventFolderTypeEnum::Root);
    table->insert(u"Year"_s, VLEventFolderTypeEnum::Year);
    table->insert(u"Month"_s, VLEventFolderTypeEnum::Month);
    table->insert(u"Day"_s, VLEventFolderTypeEnum::Day);
    table->insert(u"Event"_s, VLEventFolderTypeEnum::Event);
    table->insert(u"ProjectFolder"_s, VLEventFolderTypeEnum::ProjectFolder);
}
