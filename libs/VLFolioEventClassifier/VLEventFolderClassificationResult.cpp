#include "VLEventFolderClassificationResult.h"

#include "VLOwnFileInfo_p.h"

using namespace Qt::StringLiterals;

namespace {

// Compared are objects that no other thread sees: QFileInfo caches what it finds out, without a
// lock.
bool areEqual(const QFileInfo& first, const QFileInfo& second)
{
    // Objects without a path cache nothing, and are equal only to their copies.
    if (first.filePath().isEmpty() || second.filePath().isEmpty())
        return first == second;
    return QFileInfo(first.filePath()) == QFileInfo(second.filePath());
}

} // namespace

VLEventFolderClassificationResult::VLEventFolderClassificationResult() = default;

VLEventFolderClassificationResult::VLEventFolderClassificationResult(
    const QFileInfo& directory, const VLEventFolderType& classification)
    : m_directory(withOwnData(directory))
    , m_classification(classification)
{
    // Copies of this share its data. A path that Qt has cached in it is only read from then on; a
    // relative one is not absolute before someone asks.
    if (m_directory.isAbsolute())
        (void)m_directory.absoluteFilePath();
}

VLEventFolderClassificationResult::~VLEventFolderClassificationResult() = default;

bool VLEventFolderClassificationResult::operator==(
    const VLEventFolderClassificationResult& other) const
{
    return m_classification == other.m_classification && areEqual(m_directory, other.m_directory);
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
    const QString path = m_directory.absoluteFilePath().mid(prefixLength);
    const QString name = m_classification.enumToStringTable()->nameFor(m_classification.value());
    // Two substitutions, the path first: the second one also fills a placeholder of the path.
    const QString line = u"%2 <= %1"_s.arg(path);
    return line.arg(name, 7);
}

void VLEventFolderClassificationResult::expandTo(const VLEventFolderType& type)
{
    m_classification |= type;
}
