#pragma once

#include <VLCore/VLEnumToStringTable.h>

#include <QtCore/QHash>
#include <QtCore/QString>

/// Shows the members of a table of names, which only derived classes see.
template <typename E>
class OpenTable : public VLEnumToStringTable<E>
{
public:
    using Table = VLEnumToStringTable<E>;
    using Table::fallbackName;
    using Table::fallbackValue;
    using Table::nameToValue;
    using Table::valueToName;

    [[nodiscard]] static const QHash<QString, E>& namesOf(const Table& table)
    {
        return table.*(&OpenTable::nameToValue);
    }
    [[nodiscard]] static const QHash<E, QString>& valuesOf(const Table& table)
    {
        return table.*(&OpenTable::valueToName);
    }
};
