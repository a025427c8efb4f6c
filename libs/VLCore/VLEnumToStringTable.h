#pragma once

/// \file

#include "VLGlobal.h"

#include <QtCore/QHash>
#include <QtCore/QString>

/// Two-way table between the values of an enumeration and their names.
///
/// The table is filled once, by VLEnumWrapper::fillTable(), and only read afterwards. Its two
/// directions treat repeats differently: a repeated name leads to the newest value, a repeated
/// value keeps its oldest name.
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

    /// Adds one pair.
    ///
    /// \param name the name as it is to be shown. Its key is the name lower-cased with
    ///     QString::toLower(), so names that differ only in case are one name, and the last value
    ///     given for it counts. The empty name is accepted like any other.
    /// \param value the value. If it has a name already, that name stays.
    void insert(const QString& name, E value);

    /// Returns the name of \a value, spelled as it was inserted, or an empty (null) string if the
    /// value has none. A combination of flags is a value of its own: its flags are not looked up
    /// one by one.
    [[nodiscard]] QString nameFor(E value) const;

    /// Returns the value that \a name stands for, in whatever case it is written, or 0 if the name
    /// is unknown.
    [[nodiscard]] E valueFor(const QString& name) const;

protected:
    /// Value of each name; the keys are lower-cased.
    QHash<QString, E> nameToValue;
    /// Name of each value, spelled as it was inserted.
    QHash<E, QString> valueToName;
    /// What a value without a name reads as: empty (null), and never set.
    QString fallbackName;
    /// What an unknown name reads as: 0, and never set.
    E fallbackValue {};
};

template <typename E>
void VLEnumToStringTable<E>::insert(const QString& name, E value)
{
    nameToValue.insert(name.toLower(), value);
    if (!valueToName.contains(value))
        valueToName.insert(value, name);
}

template <typename E>
QString VLEnumToStringTable<E>::nameFor(E value) const
{
    return valueToName.value(value, fallbackName);
}

template <typename E>
E VLEnumToStringTable<E>::valueFor(const QString& name) const
{
    return nameToValue.value(name.toLower(), fallbackValue);
}
