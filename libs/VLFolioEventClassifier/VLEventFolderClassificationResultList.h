#pragma once

/// \file

#include "VLEventFolderClassificationResult.h"
#include "VLFolioGlobal.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <initializer_list>

/// List of classification results, in the order in which they were added, that can be filtered by
/// type and printed. It is a QList in every other respect and never sorts nor removes anything.
///
/// \code
/// VLEventFolderClassificationResultList list(classifier.eventFolderTypes(root, {}));
/// const QString paths = list.filtered(VLEventFolderTypeEnum::Event).toString();
/// \endcode
///
/// Threads: as for QList, one writer or any number of readers.
class VLFOLIOEVENTCLASSIFIER_EXPORT VLEventFolderClassificationResultList
    : public QList<VLEventFolderClassificationResult>
{
public:
    /// Makes an empty list.
    VLEventFolderClassificationResultList() noexcept = default;
    /// Makes a list of the same elements, which are shared until one of the two lists changes.
    /// Implicit on purpose: what the classifier returns can stand where this class is asked for.
    VLEventFolderClassificationResultList( // NOLINT(google-explicit-constructor)
        const QList<VLEventFolderClassificationResult>& results);
    /// Makes a list of copies of \a results, with room for exactly these.
    VLEventFolderClassificationResultList(
        std::initializer_list<VLEventFolderClassificationResult> results);
    VL_DEFAULT_COPY_MOVE(VLEventFolderClassificationResultList)
    virtual ~VLEventFolderClassificationResultList();

    /// Returns copies of the results whose type is exactly \a type, in list order. A result that
    /// holds the type among others is not one of them; the type Unknown gives those without a type.
    [[nodiscard]] VLEventFolderClassificationResultList filtered(const VLEventFolderType& type);

    /// Returns the absolute paths of the directories (QFileInfo::absoluteFilePath()), a line feed
    /// between each two and none at the end. A path that holds a line feed keeps it.
    [[nodiscard]] QString toString();
};
