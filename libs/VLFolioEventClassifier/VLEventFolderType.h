#pragma once

/// \file

#include "VLFolioGlobal.h"

#include <VLCore/VLEnumWrapper.h>

/// What kind of folder a directory is within a picture collection. The values are bit flags and may
/// be combined; the names in quotes are those in the shared table of names.
enum class VLFOLIOEVENTCLASSIFIER_EXPORT VLEventFolderTypeEnum : qint32 {
    Unknown = 0,        ///< No type, "Unknown". The only value that is not valid.
    Root = 1,           ///< The root of the collection, "Root".
    Year = 2,           ///< Pictures of one year, "Year".
    Month = 4,          ///< Pictures of one month, "Month".
    Day = 8,            ///< Pictures of one day of an event, "Day".
    Event = 16,         ///< Pictures of one event, "Event".
    ProjectFolder = 32, ///< Data of a project, "ProjectFolder".
};

/// Type of an event folder: a VLEventFolderTypeEnum that can be compared, combined and printed.
///
/// \code
/// VLEventFolderType type = VLEventFolderTypeEnum::Year;
/// type.name();                                            // "Year"
/// type |= VLEventFolderTypeEnum::Event;                   // 18, which has no name
/// type == VLEventFolderTypeEnum::Event;                   // false: the numbers differ
/// type.reducedTo(VLEventFolderTypeEnum::Event);           // VLEventFolderTypeEnum::Event
/// \endcode
///
/// Threads: a plain value, see VLEnumWrapper.
class VLFOLIOEVENTCLASSIFIER_EXPORT VLEventFolderType : public VLEnumWrapper<VLEventFolderTypeEnum>
{
public:
    using VLEnumWrapper::VLEnumWrapper;
    /// Makes VLEventFolderTypeEnum::Unknown.
    VLEventFolderType() noexcept = default;
    VL_DEFAULT_COPY_MOVE(VLEventFolderType)
    ~VLEventFolderType() override;

    /// Returns the name in the shared table, for instance "Year"; empty for a combination of flags.
    [[nodiscard]] QString name() const { return enumToStringTable()->nameFor(value()); }

    /// Inserts the seven names of VLEventFolderTypeEnum into \a table, which must not be null.
    void fillTable(VLEnumToStringTable<VLEventFolderTypeEnum>* table) const override;
};

// Instantiated in this library alone. Otherwise, a module that is opened with RTLD_LOCAL might have
// a table of names of its own.
extern template class VLEnumWrapper<VLEventFolderTypeEnum>;
extern template class VLEnumToStringTable<VLEventFolderTypeEnum>;
