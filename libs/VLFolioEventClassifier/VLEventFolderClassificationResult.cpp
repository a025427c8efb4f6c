#include "VLEventFolderClassificationResult.h"

#include "VLOwnFileInfo_p.h"

#include <VLCore/VLKomma_p.h>

using namespace Qt::StringLiterals;

VLEventFolderClassificationResult::~VLEventFolderClassificationResult() = default;

bool VLEventFolderClassificationResult::operator==(
    const VLEventFolderClassificationResult& other) const
{
    if (m_classification != other.m_classification)
        return false;
    return VLOwnFileInfo::detached(m_directory) == VLOwnFileInfo::detached(other.m_directory);
}

QString VLEventFolderClassificationResult::render(int prefixLength) const
{
    const QString path = VLOwnFileInfo::absolutePath(m_directory).mid(prefixLength);
    // There are two calls, of which the second replaces a placeholder in the path, as documented.
    const QString line = u"%2 <= %1"_s.arg(path);
    return line.arg(m_classification.name(), 7);
}
