#include "VLEventFolderClassificationResult.h"

#include "VLOwnFileInfo_p.h"

#include <VLCore/VLKomma_p.h>

using namespace Qt::StringLiterals;

VLEventFolderClassificationResult::VLEventFolderClassificationResult() = default;

VLEventFolderClassificationResult::VLEventFolderClassificationResult(
    const QFileInfo& directory, const VLEventFolderType& classification)
    : m_directory(directory)
    , m_classification(classification)
{
}

VLEventFolderClassificationResult::~VLEventFolderClassificationResult() = default;

bool VLEventFolderClassificationResult::operator==(
    const VLEventFolderClassificationResult& other) const
{
    if (m_classification != other.m_classification)
        return false;
    return VLOwnFileInfo::detached(m_directory) == VLOwnFileInfo::detached(other.m_directory);
}

QFileInfo VLEventFolderClassificationResult::directory() const
{
    return m_directory;
}

VLEventFolderType VLEventFolderClassificationResult::classification() const
{
    return m_classification;
}

VLOccasionInfoList VLEventFolderClassificationResult::occasionInformation() const
{
    return m_occasionInformation;
}

void VLEventFolderClassificationResult::setOccasionInformation(
    const VLOccasionInfoList& occasionInformation)
{
    m_occasionInformation = occasionInformation;
}

QString VLEventFolderClassificationResult::render(int prefixLength) const
{
    const QString path = VLOwnFileInfo::detached(m_directory).absoluteFilePath().mid(prefixLength);
    // Two calls, the path first: the second one replaces a placeholder within the path before the
    // "%2", as the documentation of this function says.
    const QString line = u"%2 <= %1"_s.arg(path);
    return line.arg(m_classification.name(), 7);
}

void VLEventFolderClassificationResult::expandTo(const VLEventFolderType& type)
{
    m_classification |= type;
}
