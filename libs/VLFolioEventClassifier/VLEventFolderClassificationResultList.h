#pragma once

/// \file

#include "VLEventFolderClassificationResult.h"

#include <QtCore/QList>

#include <initializer_list>

/// List of classification results: a QList that can be filtered by type and printed.
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
    /// Implicit on purpose, so that what the classifier returns can be passed wherever this class
    /// is expected.
    VLEventFolderClassificationResultList( // NOLINT(google-explicit-constructor)
        const QList<VLEventFolderClassificationResult>& results)
        : QList(results)
    {
    }
    /// Makes a list of copies of \a results, with a capacity for exactly these.
    VLEventFolderClassificationResultList(
        std::initializer_list<VLEventFolderClassificationResult> results)
    {
        reserve(static_cast<qsizetype>(results.size()));
        for (const VLEventFolderClassificationResult& result : results)
            append(result);
    }
    VL_DEFAULT_COPY_MOVE(VLEventFolderClassificationResultList)
    virtual ~VLEventFolderClassificationResultList();

    /// Returns copies of the results whose type is exactly \a type, in list order. A result that
    /// combines it with other types is not one of them.
    [[nodiscard]] VLEventFolderClassificationResultList filtered(const VLEventFolderType& type);

    /// Returns the absolute paths of the directories (QFileInfo::absoluteFilePath()), separated by
    /// line feeds, with none at the end. A line feed within a path is not escaped.
    [[nodiscard]] QString toString();
};
