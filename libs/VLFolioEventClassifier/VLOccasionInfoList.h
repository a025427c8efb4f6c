#pragma once

/// \file

#include "VLOccasionInfo.h"

#include <QtCore/QList>
#include <QtCore/QStringList>

/// List of the occasions suggested for one event: a QList that can join their texts.
///
/// \code
/// VLOccasionInfoList list;
/// list.append(VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.9));
/// list.append(VLOccasionInfo(u"Party"_s, u"Tags"_s, 0.5));
/// list.occasion();      // "Birthday,Party"
/// list.description();   // "Birthday (0.9, Calendar); Party (0.5, Tags)"
/// \endcode
///
/// Threads: as for QList, one writer or any number of readers.
class VLFOLIOEVENTCLASSIFIER_EXPORT VLOccasionInfoList : public QList<VLOccasionInfo>
{
public:
    /// Makes an empty list.
    VLOccasionInfoList() noexcept = default;
    VL_DEFAULT_COPY_MOVE(VLOccasionInfoList)
    virtual ~VLOccasionInfoList();

    /// Returns the occasions of all records, in list order.
    [[nodiscard]] QStringList occasions() const;
    /// Returns the same as occasions(), under the name that earlier callers use.
    [[nodiscard]] QStringList occassions() const { return occasions(); }
    /// Returns the descriptions of all records, in list order; see VLOccasionInfo::description().
    [[nodiscard]] QStringList descriptions() const;
    /// Returns the descriptions joined by "; ", or "no Data" for an empty list.
    [[nodiscard]] QString description() const;
    /// Returns the occasions joined by "," without a blank, or an empty string for an empty list.
    [[nodiscard]] QString occasion() const { return occasions().join(u','); }
};
