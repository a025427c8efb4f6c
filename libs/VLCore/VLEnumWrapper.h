#pragma once

/// \file

#include "VLEnumToStringTable.h"

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
/// Threads: a plain value. An object that one thread changes while another reads it needs a lock;
/// enumToStringTable() needs none. The order of the virtual functions is part of the binary
/// interface.
///
/// \tparam E an enumeration with a signed 32-bit underlying type.
template <typename E>
class VL_TEMPLATE_EXPORT VLEnumWrapper
{
    static_assert(std::is_same_v<std::underlying_type_t<E>, qint32>);

public:
    /// Makes the value 0.
    VLEnumWrapper() noexcept = default;
    /// Makes the given value; any combination of flags is legal. Implicit on purpose, so that an
    /// enumerator can be passed wherever a wrapper is expected.
    VLEnumWrapper(E value) noexcept // NOLINT(google-explicit-constructor)
        : m_value(value)
    {
    }
    VL_DEFAULT_COPY_MOVE(VLEnumWrapper)
    virtual ~VLEnumWrapper() = default;

    /// \{
    /// Compares the raw values as signed numbers. A value that holds a flag among others is
    /// therefore not equal to that flag. There is no `operator>=`; write `!(a < b)`.
    [[nodiscard]] virtual bool operator<(const VLEnumWrapper& other) const
    {
        return raw(m_value) < raw(other.m_value);
    }
    [[nodiscard]] virtual bool operator<=(const VLEnumWrapper& other) const
    {
        return raw(m_value) <= raw(other.m_value);
    }
    [[nodiscard]] virtual bool operator>(const VLEnumWrapper& other) const
    {
        return raw(m_value) > raw(other.m_value);
    }
    [[nodiscard]] virtual bool operator==(const VLEnumWrapper& other) const
    {
        return m_value == other.m_value;
    }
    [[nodiscard]] virtual bool operator==(E other) const { return m_value == other; }
    [[nodiscard]] virtual bool operator!=(const VLEnumWrapper& other) const
    {
        return m_value != other.m_value;
    }
    [[nodiscard]] virtual bool operator!=(E other) const { return m_value != other; }
    /// \}

    /// \{
    /// `|=` adds the flags of \a other, and `&=` keeps only those that \a other has, too.
    virtual VLEnumWrapper& operator|=(const VLEnumWrapper& other)
    {
        return set(raw(m_value) | raw(other.m_value));
    }
    virtual VLEnumWrapper& operator|=(E other) { return set(raw(m_value) | raw(other)); }
    virtual VLEnumWrapper& operator&=(const VLEnumWrapper& other)
    {
        return set(raw(m_value) & raw(other.m_value));
    }
    virtual VLEnumWrapper& operator&=(E other) { return set(raw(m_value) & raw(other)); }
    /// \}

    /// The flags that both have, as a raw value.
    [[nodiscard]] virtual E operator&(const VLEnumWrapper& other) const
    {
        return E(raw(m_value) & raw(other.m_value));
    }
    /// The flags that either has, as a raw value.
    [[nodiscard]] virtual E operator|(const VLEnumWrapper& other) const
    {
        return E(raw(m_value) | raw(other.m_value));
    }
    /// The flags of this value that are in \a mask, as a raw value.
    [[nodiscard]] virtual E reducedTo(E mask) const { return E(raw(m_value) & raw(mask)); }
    /// True for every value but 0.
    [[nodiscard]] virtual bool isValid() const { return raw(m_value) != 0; }
    /// Inserts the names of all values into \a table, which is empty. Called until it has
    /// succeeded once, with the lock of enumToStringTable() held, which it must not call.
    virtual void fillTable(VLEnumToStringTable<E>* table) const = 0;

    /// The raw value.
    [[nodiscard]] E value() const noexcept { return m_value; }

    /// Returns the table of names, which all objects of the process share. The first call makes
    /// it, with fillTable() of the object on which it was called; it is never freed and never
    /// changes, so the pointer may be kept. May be called from any thread. If filling the table
    /// throws (std::bad_alloc), nothing is left behind and the next call tries again.
    [[nodiscard]] VLEnumToStringTable<E>* enumToStringTable() const;

private:
    static constexpr qint32 raw(E value) noexcept { return qint32(value); }
    VLEnumWrapper& set(qint32 value) noexcept
    {
        m_value = E(value);
        return *this;
    }

    E m_value {};
};

// An inline function would be compiled into every module, with statics of its own.
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
        // It is stored last, so that a thread without the lock finds the table complete.
        myTable.storeRelease(table.release());
    }
    return myTable.loadRelaxed();
}
