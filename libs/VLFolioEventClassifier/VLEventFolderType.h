#pragma once

/// \file

#include "VLFolioGlobal.h"

#include <VLCore/VLEnumWrapper.h>

/// What kind of folder a directory is within a picture collection. The values are bit flags and may
/// be combined; the names in quotes are those in the shared table of names.
enum class VLFOLIOEVENTCLASSIFIER_EXPORT VLEventFolderTypeEnum : qint32 {
    /// No type, "Unknown". The only value that is not valid.
    Unknown = 0,
    /// The root of the collection, "Root".
    Root = 1,
    /// Pictures of one year, "Year".
    Year = 2,
    /// Pictures of one month, "Month".
    Month = 4,
    /// Pictures of one day of an event, "Day".
    Day = 8,
    /// Pictures of one event, "Event".
    Event = 16,
    /// Data of a project, "ProjectFolder".
    ProjectFolder = 32,
};

/// Type of an event folder: a value class around VLEventFolderTypeEnum that compares, combines and
/// prints it.
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
    /// Makes VLEventFolderTypeEnum::Unknown.
    VLEventFolderType() noexcept = default;
    /// Makes the given type, or combination of types. Implicit on purpose.
    VLEventFolderType(VLEventFolderTypeEnum value) noexcept; // NOLINT(google-explicit-constructor)
    VL_DEFAULT_COPY_MOVE(VLEventFolderType)
    ~VLEventFolderType() override;

    /// Returns the name of this type in the shared table, for instance "Year", or an empty string
    /// for a combination of flags.
    [[nodiscard]] QString name() const;

    /// Inserts the seven names of VLEventFolderTypeEnum into \a table, which must not be null.
    void fillTable(VLEnumToStringTable<VLEventFolderTypeEnum>* table) const override;
};

// Instantiated in this library alone. Otherwise, a module that is opened with RTLD_LOCAL might have
// a table of names of its own.
extern template class VLEnumWrapper<VLEventFolderTypeEnum>;
extern template class VLEnumToStringTable<VLEventFolderTypeEnum>;
