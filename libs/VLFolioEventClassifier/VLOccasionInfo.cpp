#include "VLOccasionInfo.h"

#include <VLCore/VLKomma_p.h>

using namespace Qt::StringLiterals;

VLOccasionInfo::VLOccasionInfo() = default;

VLOccasionInfo::~VLOccasionInfo() = default;

QString VLOccasionInfo::description() const
{
    // All three are replaced by one call, so that a "%2" within the occasion stays as it is.
    return u"%1 (%2, %3)"_s.arg(m_occasion, QString::number(m_confidence, 'g', 6), m_source);
}

bool VLOccasionInfo::operator==(const VLOccasionInfo& other) const
{
    return m_confidence == other.m_confidence && m_occasion == other.m_occasion
        && m_source == other.m_source;
}
