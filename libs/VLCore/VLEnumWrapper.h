#pragma once

/// \file

#include "VLEnumToStringTable.h"
#include "VLGlobal.h"

#include <QtCore/QAtomicPointer>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>

#include <memory>
#include <type_traits>

/// Value class around an enumeration of bit flags: comparisons and bit operations on the raw
/// value, and a table of names that the whole process shares.
///
/// A concrete type derives from it and names its values in fillTable():
///
/// \code
/// class ColourType : public VLEnumWrapper<Colour>
/// {
/// public:
///     using VLEnumWrapper::VLEnumWrapper;
///     void fillTable(VLEnumToStringTable<Colour>* table) const override;
/// };
/// ColourType(Colour::Red).enumToStringTable()->nameFor(Colour::Red);
/// \endcode
///
/// Every comparison is of the numbers: a value that holds a flag among others is not equal to that
/// flag. There is no `operator>=`; write `!(a < b)`. The order of the virtual functions is part of
/// the binary interface.
///
/// Threads: a plain value. An object that one thread changes while another reads it needs a lock;
/// enumToStringTable() needs none.
///
/// \tparam E an enumeration with a signed 32-bit underlying type.
template <typename E>
class VL_TEMPLATE_EXPORT VLEnumWrapper
{
    static_assert(std::is_same_v<std::underlying_type_t<E>, qint32>,
                  "VLEnumWrapper wraps enumerations of signed 32-bit values");

public:
    /// Makes the value 0.
    VLEnumWrapper() noexcept = default;
    /// Makes the given value; any combination of flags is legal. Implicit on purpose, so that an
    /// enumerator can be passed wherever a wrapper is expected.
    VLEnumWrapper(E value) noexcept; // NOLINT(google-explicit-constructor)
    VL_DEFAULT_COPY_MOVE(VLEnumWrapper)
    virtual ~VLEnumWrapper() = default;

    /// Signed comparison of the raw values.
    [[nodiscard]] virtual bool operator<(const VLEnumWrapper& other) const;
    /// Signed comparison of the raw values.
    [[nodiscard]] virtual bool operator<=(const VLEnumWrapper& other) const;
    /// Signed comparison of the raw values.
    [[nodiscard]] virtual bool operator>(const VLEnumWrapper& other) const;
    /// True when the raw values are the same number.
    [[nodiscard]] virtual bool operator==(const VLEnumWrapper& other) const;
    /// True when the raw value is \a other.
    [[nodiscard]] virtual bool operator==(E other) const;
    /// True when the raw values are different numbers.
    [[nodiscard]] virtual bool operator!=(const VLEnumWrapper& other) const;
    /// True when the raw value is not \a other.
    [[nodiscard]] virtual bool operator!=(E other) const;
    /// Adds the flags of \a other.
    virtual VLEnumWrapper& operator|=(const VLEnumWrapper& other);
    /// Adds the flags of \a other.
    virtual VLEnumWrapper& operator|=(E other);
    /// Keeps only the flags that \a other has, too.
    virtual VLEnumWrapper& operator&=(const VLEnumWrapper& other);
    /// Keeps only the flags that \a other has, too.
    virtual VLEnumWrapper& operator&=(E other);
    /// The flags that both have, as a raw value.
    [[nodiscard]] virtual E operator&(const VLEnumWrapper& other) const;
    /// The flags that either has, as a raw value.
    [[nodiscard]] virtual E operator|(const VLEnumWrapper& other) const;
    /// The flags of this value that are in \a mask, as a raw value.
    [[nodiscard]] virtual E reducedTo(E mask) const;
    /// True for every value but 0.
    [[nodiscard]] virtual bool isValid() const;
    /// Inserts the names of all values into \a table, which is empty. Called once per process, with
    /// the lock of enumToStringTable() held, which it therefore must not call.
    virtual void fillTable(VLEnumToStringTable<E>* table) const = 0;

    /// The raw value.
    [[nodiscard]] E value() const noexcept;

    /// Returns the table of names, which all objects of the process share. The first call makes
    /// it, with fillTable() of the object on which it was called; it is never freed and never
    /// changes, so the pointer may be kept. May be called from any thread. If filling the table
    /// throws (std::bad_alloc), nothing is left behind and the next call tries again.
    [[nodiscard]] VLEnumToStringTable<E>* enumToStringTable() const;

private:
    using Raw = std::underlying_type_t<E>;

    static constexpr Raw raw(E value) noexcept { return static_cast<Raw>(value); }

    E m_value {};
};

template <typename E>
VLEnumWrapper<E>::VLEnumWrapper(E value) noexcept
    : m_value(value)
{
}

template <typename E>
bool VLEnumWrapper<E>::operator<(const VLEnumWrapper& other) const
{
    return raw(m_value) < raw(other.m_value);
}

template <typename E>
bool VLEnumWrapper<E>::operator<=(const VLEnumWrapper& other) const
{
    return raw(m_value) <= raw(other.m_value);
}

template <typename E>
bool VLEnumWrapper<E>::operator>(const VLEnumWrapper& other) const
{
    return raw(m_value) > raw(other.m_value);
}

template <typename E>
bool VLEnumWrapper<E>::operator==(const VLEnumWrapper& other) const
{
    return m_value == other.m_value;
}

template <typename E>
bool VLEnumWrapper<E>::operator==(E other) const
{
    return m_value == other;
}

template <typename E>
bool VLEnumWrapper<E>::operator!=(const VLEnumWrapper& other) const
{
    return m_value != other.m_value;
}

template <typename E>
bool VLEnumWrapper<E>::operator!=(E other) const
{
    return m_value != other;
}

template <typename E>
VLEnumWrapper<E>& VLEnumWrapper<E>::operator|=(const VLEnumWrapper& other)
{
    m_value = static_cast<E>(raw(m_value) | raw(other.m_value));
    return *this;
}

template <typename E>
VLEnumWrapper<E>& VLEnumWrapper<E>::operator|=(E other)
{
    m_value = static_cast<E>(raw(m_value) | raw(other));
    return *this;
}

template <typename E>
VLEnumWrapper<E>& VLEnumWrapper<E>::operator&=(const VLEnumWrapper& other)
{
    m_value = static_cast<E>(raw(m_value) & raw(other.m_value));
    return *this;
}

template <typename E>
VLEnumWrapper<E>& VLEnumWrapper<E>::operator&=(E other)
{
    m_value = static_cast<E>(raw(m_value) & raw(other));
    return *this;
}

template <typename E>
E VLEnumWrapper<E>::operator&(const VLEnumWrapper& other) const
{
    return static_cast<E>(raw(m_value) & raw(other.m_value));
}

template <typename E>
E VLEnumWrapper<E>::operator|(const VLEnumWrapper& other) const
{
    return static_cast<E>(raw(m_value) | raw(other.m_value));
}

template <typename E>
E VLEnumWrapper<E>::reducedTo(E mask) const
{
    return static_cast<E>(raw(m_value) & raw(mask));
}

template <typename E>
bool VLEnumWrapper<E>::isValid() const
{
    return raw(m_value) != 0;
}

template <typename E>
E VLEnumWrapper<E>::value() const noexcept
{
    return m_value;
}

template <typename E>
VLEnumToStringTable<E>* VLEnumWrapper<E>::enumToStringTable() const
{
    static QAtomicPointer<VLEnumToStringTable<E>> myTable;
    if (auto* const table = myTable.loadAcquire())
        return table;

    static QMutex theMutex;
    const QMutexLocker locker(&theMutex);
    if (myTable.loadRelaxed() == nullptr) {
        auto table = std::make_unique<VLEnumToStringTable<E>>();
        fillTable(table.get());
        // The pointer is stored last, so that a thread that reads it without the lock finds the
        // table complete.
        myTable.storeRelease(table.release());
    }
    return myTable.loadRelaxed();
}
