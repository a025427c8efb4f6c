#include "FolderReasons.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct TypeWords
{
    VLEventFolderTypeEnum type = VLEventFolderTypeEnum::Unknown;
    /// Why a folder is of this type by itself.
    QLatin1StringView ground;
    /// A folder of this type, as the subject of a sentence.
    QLatin1StringView folder;
    /// A folder of this type, as what another folder is said to be.
    QLatin1StringView itself;
};

// clang-format off
constexpr std::array typeWords {
    TypeWords { VLEventFolderTypeEnum::Unknown, "no test met"_L1, "an unknown folder"_L1, "unknown"_L1 },
    TypeWords { VLEventFolderTypeEnum::Root, "the root of the collection"_L1, "the root"_L1, "the root"_L1 },
    TypeWords { VLEventFolderTypeEnum::Year, "test year met"_L1, "a year"_L1, "a year"_L1 },
    TypeWords { VLEventFolderTypeEnum::Month, "test month met"_L1, "a month"_L1, "a month"_L1 },
    TypeWords { VLEventFolderTypeEnum::Day, "test date met"_L1, "a day"_L1, "a day"_L1 },
    TypeWords { VLEventFolderTypeEnum::Event, "in a photo library"_L1, "an event"_L1, "an event"_L1 },
    TypeWords { VLEventFolderTypeEnum::ProjectFolder, "test project met"_L1, "a project folder"_L1, "a project folder"_L1 },
};
// clang-format on

const TypeWords& wordsFor(const VLEventFolderType& type)
{
    return *std::find_if(typeWords.cbegin(), typeWords.cend(),
                         [&type](const TypeWords& words) { return type == words.type; });
}

QString nameOf(const VLEventFolderType& type)
{
    return type.name();
}

// Returns true if the type of a folder that is \a ownType by itself depends on the folder above.
// The reason then names that folder even if the type stays the same.
bool dependsOnPlace(const VLEventFolderType& ownType)
{
    return ownType == VLEventFolderTypeEnum::Unknown || ownType == VLEventFolderTypeEnum::Day;
}

QString reasonText(const VLEventFolderType& ownType, const VLEventFolderType& typeAbove,
                   const VLEventFolderType& type)
{
    if (type == VLEventFolderTypeEnum::Root)
        return wordsFor(type).ground;
    const TypeWords& own = wordsFor(ownType);
    QString text = u"by itself %1: %2"_s.arg(nameOf(ownType), own.ground);
    if (type != ownType) {
        text += u"; %1 below %2 is %3"_s.arg(own.folder, wordsFor(typeAbove).folder,
                                             wordsFor(type).folder);
    } else if (dependsOnPlace(ownType)) {
        text += u"; %1 below %2 stays %3"_s.arg(own.folder, wordsFor(typeAbove).folder, own.itself);
    }
    return text;
}

bool isAt(const QString& path, const VLEventFolderClassificationResult& result)
{
    return result.directory().filePath() == path;
}

} // namespace

FolderReasons::FolderReasons(const QFileInfo& root)
    : m_classifier(root)
{
}

void FolderReasons::enter(const VLEventFolderClassificationResult& result)
{
    const QString pathAbove = result.directory().path();
    while (!m_path.isEmpty() && !isAt(pathAbove, m_path.constLast()))
        m_path.removeLast();
    m_path.append(result);
}

FolderReasons::Reason FolderReasons::reason() const
{
    const VLEventFolderClassificationResult& result = m_path.constLast();
    const VLEventFolderType typeAbove =
        m_path.size() > 1 ? m_path.at(m_path.size() - 2).classification() : VLEventFolderType();
    const QFileInfo directory = result.directory();
    // The folder above can only turn a folder into an event, so any other type is the folder's own.
    const VLEventFolderType ownType = result.classification() == VLEventFolderTypeEnum::Event
        ? m_classifier.eventFolderType(directory).classification()
        : result.classification();
    return { ownType, testsMet(m_classifier, directory.fileName()),
             reasonText(ownType, typeAbove, result.classification()), m_path.size() - 1 };
}

QStringList FolderReasons::testsMet(const VLFolioEventClassifier& classifier, const QString& name)
{
    QStringList met;
    if (classifier.matchesProject(name))
        met.append(u"project"_s);
    if (classifier.matchesDate(name))
        met.append(u"date"_s);
    if (classifier.matchesMonth(name))
        met.append(u"month"_s);
    if (classifier.matchesYear(name))
        met.append(u"year"_s);
    return met;
}
