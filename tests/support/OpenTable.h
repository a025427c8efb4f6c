#pragma once

#include <VLCore/VLEnumToStringTable.h>

#include <QtCore/QHash>
#include <QtCore/QString>

/// Shows the maps of any table of names, which only derived classes see.
template <typename E>
class TableMaps : public VLEnumToStringTable<E>
{
public:
    [[nodiscard]] static const QHash<QString, E>& namesOf(const VLEnumToStringTable<E>& table)
    {
        return table.*(&TableMaps::nameToValue);
    }
    [[nodiscard]] static const QHash<E, QString>& valuesOf(const VLEnumToStringTable<E>& table)
    {
        return table.*(&TableMaps::valueToName);
    }
};

/// A table of names that shows its own members.
template <typename E>
class OpenTable : public VLEnumToStringTable<E>
{
public:
    using Table = VLEnumToStringTable<E>;
    using Table::fallbackName;
    using Table::fallbackValue;
    using Table::nameToValue;
    using Table::valueToName;
};
