#pragma once

/// \file

#include "VLGlobal.h"

#include <QtCore/QHash>
#include <QtCore/QString>

/// Two-way table between the values of an enumeration and their names.
///
/// It is filled once, by VLEnumWrapper::fillTable(), and then only read. A name that is inserted
/// again leads to its newest value, but a value keeps its oldest name.
///
/// \code
/// VLEnumToStringTable<Colour> table;
/// table.insert(u"Red"_s, Colour::Red);
/// table.nameFor(Colour::Red);   // "Red"
/// table.valueFor(u"rED"_s);     // Colour::Red
/// \endcode
///
/// Threads: any number of readers, or one writer.
///
/// \tparam E an enumeration in which 0 stands for "nothing".
template <typename E>
class VL_TEMPLATE_EXPORT VLEnumToStringTable
{
public:
    /// Makes an empty table: every name reads as the value 0, every value as the empty string.
    VLEnumToStringTable() = default;
    virtual ~VLEnumToStringTable() = default;
    Q_DISABLE_COPY_MOVE(VLEnumToStringTable)

    /// Adds one pair. Names that differ only in case, as QString::toLower() sees it, are one name.
    /// The empty name is accepted like any other.
    void insert(const QString& name, E value)
    {
        nameToValue.insert(name.toLower(), value);
        if (!valueToName.contains(value))
            valueToName.insert(value, name);
    }

    /// Returns the name of \a value, spelled as it was inserted, or an empty (null) string if the
    /// value has none. A combination of flags is a value of its own: its flags are not looked up
    /// one by one.
    [[nodiscard]] QString nameFor(E value) const { return valueToName.value(value, fallbackName); }

    /// Returns the value that \a name stands for, in whatever case it is written, or 0 if the name
    /// is unknown.
    [[nodiscard]] E valueFor(const QString& name) const
    {
        return nameToValue.value(name.toLower(), fallbackValue);
    }

protected:
    QHash<QString, E> nameToValue; ///< Value of each name; the keys are lower-cased.
    QHash<E, QString> valueToName; ///< Name of each value, spelled as it was inserted.
    QString fallbackName; ///< What a value without a name reads as: empty (null), and never set.
    E fallbackValue {};   ///< What an unknown name reads as: 0, and never set.
};
