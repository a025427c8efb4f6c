#include <RunTogether.h>

#include <VLCore/VLEnumWrapper.h>

#include <QtTest/QTest>

#include <atomic>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// One enumeration for each number, since every enumeration has one table per process.
template <int Number>
struct Numbered
{
    enum class Flag : qint32 {};
};

enum class Flag : qint32 { None = 0, A = 1, B = 2 };

class FlagType : public VLEnumWrapper<Flag>
{
public:
    using VLEnumWrapper::VLEnumWrapper;
    void fillTable(VLEnumToStringTable<Flag>* table) const override
    {
        table->insert(u"A"_s, Flag::A);
    }
};

/// Counts how often its table is filled, and takes its time for it.
template <int Number>
class CountingType : public VLEnumWrapper<typename Numbered<Number>::Flag>
{
public:
    using Flag = typename Numbered<Number>::Flag;
    using VLEnumWrapper<Flag>::VLEnumWrapper;

    void fillTable(VLEnumToStringTable<Flag>* table) const override
    {
        ++fills;
        table->insert(u"first"_s, Flag(1));
        QThread::msleep(20);
        table->insert(u"last"_s, Flag(2));
    }

    static inline std::atomic<int> fills { 0 };
};

enum class Unlucky : qint32 { None = 0, Named = 1 };

class UnluckyType : public VLEnumWrapper<Unlucky>
{
public:
    using VLEnumWrapper::VLEnumWrapper;

    void fillTable(VLEnumToStringTable<Unlucky>* table) const override
    {
        table->insert(u"Named"_s, Unlucky::Named);
        if (std::exchange(failsOnce, false))
            throw std::bad_alloc();
    }

    static inline bool failsOnce = true;
};

using Wrapper = VLEnumWrapper<Flag>;
using Const = const FlagType&;
using Variable = FlagType&;

template <typename T, typename = void>
struct HasGreaterOrEqual : std::false_type
{
};
template <typename T>
struct HasGreaterOrEqual<T, std::void_t<decltype(std::declval<T>() >= std::declval<T>())>>
    : std::true_type
{
};

template <typename T, typename = void>
struct HasLessOrEqual : std::false_type
{
};
template <typename T>
struct HasLessOrEqual<T, std::void_t<decltype(std::declval<T>() <= std::declval<T>())>>
    : std::true_type
{
};

FlagType flag(qint32 number)
{
    return FlagType(static_cast<Flag>(number));
}

/// Where a virtual operation stands in the table of virtual operations, counted from 0.
template <typename Operation>
qptrdiff slotOf(Operation operation)
{
    struct
    {
        qptrdiff pointer;
        qptrdiff adjustment;
    } parts {};
    static_assert(sizeof parts == sizeof operation);
    std::memcpy(&parts, &operation, sizeof parts);
#if defined(Q_PROCESSOR_ARM)
    const qptrdiff offset = parts.pointer;
#else
    const qptrdiff offset = parts.pointer - 1;
#endif
    return offset / qptrdiff(sizeof(void*));
}

template <int Number>
void raceForTable()
{
    constexpr int threads = 16;
    using Type = CountingType<Number>;
    std::vector<void*> tables(threads);
    std::vector<QString> names(threads);
    runTogether(threads, [&](int thread) {
        auto* const table = Type().enumToStringTable();
        tables[size_t(thread)] = table;
        names[size_t(thread)] = table->nameFor(typename Type::Flag(2));
    });
    QCOMPARE(Type::fills.load(), 1);
    QVERIFY(tables.front() != nullptr);
    QCOMPARE(tables, std::vector<void*>(threads, tables.front()));
    QCOMPARE(names, std::vector<QString>(threads, u"last"_s));
}

} // namespace

// What the type can do.
static_assert(std::is_abstract_v<Wrapper>);
static_assert(std::has_virtual_destructor_v<Wrapper>);
static_assert(std::is_default_constructible_v<FlagType>);
static_assert(std::is_copy_constructible_v<FlagType>);
static_assert(std::is_copy_assignable_v<FlagType>);
static_assert(std::is_nothrow_move_constructible_v<FlagType>);
static_assert(std::is_nothrow_move_assignable_v<FlagType>);
static_assert(std::is_convertible_v<Flag, FlagType>);
static_assert(!std::is_convertible_v<qint32, FlagType>);

// What it deliberately cannot do.
static_assert(HasLessOrEqual<FlagType>::value, "the detection works");
static_assert(!HasGreaterOrEqual<FlagType>::value);
static_assert(!HasGreaterOrEqual<const FlagType&>::value);
static_assert(!std::is_constructible_v<Flag, FlagType>);
static_assert(!std::is_constructible_v<qint32, FlagType>);
static_assert(!std::is_constructible_v<bool, FlagType>);

// What its operations return.
static_assert(std::is_same_v<decltype(std::declval<Const>() < std::declval<Const>()), bool>);
static_assert(std::is_same_v<decltype(std::declval<Const>() <= std::declval<Const>()), bool>);
static_assert(std::is_same_v<decltype(std::declval<Const>() > std::declval<Const>()), bool>);
static_assert(std::is_same_v<decltype(std::declval<Const>() == std::declval<Const>()), bool>);
static_assert(std::is_same_v<decltype(std::declval<Const>() == Flag::A), bool>);
static_assert(std::is_same_v<decltype(std::declval<Const>() != std::declval<Const>()), bool>);
static_assert(std::is_same_v<decltype(std::declval<Const>() != Flag::A), bool>);
static_assert(
    std::is_same_v<decltype(std::declval<Variable>() |= std::declval<Const>()), Wrapper&>);
static_assert(std::is_same_v<decltype(std::declval<Variable>() |= Flag::A), Wrapper&>);
static_assert(
    std::is_same_v<decltype(std::declval<Variable>() &= std::declval<Const>()), Wrapper&>);
static_assert(std::is_same_v<decltype(std::declval<Variable>() &= Flag::A), Wrapper&>);
static_assert(std::is_same_v<decltype(std::declval<Const>() & std::declval<Const>()), Flag>);
static_assert(std::is_same_v<decltype(std::declval<Const>() | std::declval<Const>()), Flag>);
static_assert(std::is_same_v<decltype(std::declval<Const>().reducedTo(Flag::A)), Flag>);
static_assert(std::is_same_v<decltype(std::declval<Const>().isValid()), bool>);
static_assert(std::is_same_v<decltype(std::declval<Const>().value()), Flag>);
static_assert(std::is_same_v<decltype(std::declval<Const>().enumToStringTable()),
                             VLEnumToStringTable<Flag>*>);

class tst_VLEnumWrapper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void default_value_is_zero();
    void copies_are_independent();
    void comparisons_are_of_signed_numbers_data();
    void comparisons_are_of_signed_numbers();
    void bit_operations_data();
    void bit_operations();
    void assignment_operators_return_the_object_itself();
    void assignment_operators_chain();
    void operand_may_be_the_object_itself();
    void every_value_but_zero_is_valid_data();
    void every_value_but_zero_is_valid();
    void virtual_operations_keep_their_order_data();
    void virtual_operations_keep_their_order();
    void table_is_one_for_all_objects();
    void threads_fill_the_table_once();
    void failed_filling_leaves_nothing_behind();
};

void tst_VLEnumWrapper::default_value_is_zero()
{
    QCOMPARE(qint32(FlagType().value()), 0);
}

void tst_VLEnumWrapper::copies_are_independent()
{
    const FlagType original = flag(18);
    FlagType copy(original);
    copy |= flag(1);
    FlagType assigned;
    assigned = copy;
    copy &= flag(0);
    QCOMPARE(qint32(original.value()), 18);
    QCOMPARE(qint32(assigned.value()), 19);
    QCOMPARE(qint32(copy.value()), 0);
}

void tst_VLEnumWrapper::comparisons_are_of_signed_numbers_data()
{
    QTest::addColumn<qint32>("left");
    QTest::addColumn<qint32>("right");
    QTest::addColumn<bool>("less");
    QTest::addColumn<bool>("equal");
    QTest::addColumn<bool>("greater");

    constexpr qint32 lowest = std::numeric_limits<qint32>::min();
    constexpr qint32 highest = std::numeric_limits<qint32>::max();
    QTest::newRow("zero_and_zero") << 0 << 0 << false << true << false;
    QTest::newRow("one_below_two") << 1 << 2 << true << false << false;
    QTest::newRow("two_above_one") << 2 << 1 << false << false << true;
    QTest::newRow("negative_below_zero") << -1 << 0 << true << false << false;
    QTest::newRow("negative_below_positive") << -1 << 1 << true << false << false;
    QTest::newRow("positive_above_negative") << 1 << -1 << false << false << true;
    QTest::newRow("lowest_below_highest") << lowest << highest << true << false << false;
    QTest::newRow("lowest_below_minus_one") << lowest << -1 << true << false << false;
    QTest::newRow("same_negative") << -7 << -7 << false << true << false;
    QTest::newRow("shared_flag_is_not_equal") << 18 << 16 << false << false << true;
    QTest::newRow("flag_below_combination") << 16 << 18 << true << false << false;
    QTest::newRow("same_combination") << 18 << 18 << false << true << false;
}

void tst_VLEnumWrapper::comparisons_are_of_signed_numbers()
{
    QFETCH(const qint32, left);
    QFETCH(const qint32, right);
    QFETCH(const bool, less);
    QFETCH(const bool, equal);
    QFETCH(const bool, greater);
    const FlagType a = flag(left);
    const FlagType b = flag(right);
    QCOMPARE(a < b, less);
    QCOMPARE(a <= b, less || equal);
    QCOMPARE(a > b, greater);
    QCOMPARE(a == b, equal);
    QCOMPARE(a != b, !equal);
    QCOMPARE(a == Flag(right), equal);
    QCOMPARE(a != Flag(right), !equal);
}

void tst_VLEnumWrapper::bit_operations_data()
{
    QTest::addColumn<qint32>("left");
    QTest::addColumn<qint32>("right");
    QTest::addColumn<qint32>("either");
    QTest::addColumn<qint32>("both");

    QTest::newRow("zero_and_zero") << 0 << 0 << 0 << 0;
    QTest::newRow("zero_and_flag") << 0 << 16 << 16 << 0;
    QTest::newRow("two_flags") << 2 << 16 << 18 << 0;
    QTest::newRow("same_flag") << 16 << 16 << 16 << 16;
    QTest::newRow("combination_and_its_flag") << 18 << 16 << 18 << 16;
    QTest::newRow("overlapping_combinations") << 6 << 12 << 14 << 4;
    QTest::newRow("all_bits_and_flag") << -1 << 32 << -1 << 32;
    QTest::newRow("sign_bit_and_flag")
        << std::numeric_limits<qint32>::min() << 1 << -2147483647 << 0;
}

void tst_VLEnumWrapper::bit_operations()
{
    QFETCH(const qint32, left);
    QFETCH(const qint32, right);
    QFETCH(const qint32, either);
    QFETCH(const qint32, both);
    const FlagType a = flag(left);
    const FlagType b = flag(right);
    QCOMPARE(qint32(a | b), either);
    QCOMPARE(qint32(a & b), both);
    QCOMPARE(qint32(a.reducedTo(Flag(right))), both);

    FlagType orWrapper = a;
    FlagType orRaw = a;
    FlagType andWrapper = a;
    FlagType andRaw = a;
    orWrapper |= b;
    orRaw |= Flag(right);
    andWrapper &= b;
    andRaw &= Flag(right);
    QCOMPARE(qint32(orWrapper.value()), either);
    QCOMPARE(qint32(orRaw.value()), either);
    QCOMPARE(qint32(andWrapper.value()), both);
    QCOMPARE(qint32(andRaw.value()), both);
    QCOMPARE(qint32(a.value()), left);
    QCOMPARE(qint32(b.value()), right);
}

void tst_VLEnumWrapper::assignment_operators_return_the_object_itself()
{
    FlagType type = flag(1);
    QCOMPARE(&(type |= flag(2)), &type);
    QCOMPARE(&(type |= Flag(4)), &type);
    QCOMPARE(&(type &= flag(7)), &type);
    QCOMPARE(&(type &= Flag(3)), &type);
    QCOMPARE(qint32(type.value()), 3);
}

void tst_VLEnumWrapper::assignment_operators_chain()
{
    FlagType type = flag(1);
    ((type |= Flag(2)) |= flag(4)) &= Flag(6);
    QCOMPARE(qint32(type.value()), 6);
}

void tst_VLEnumWrapper::operand_may_be_the_object_itself()
{
    FlagType type = flag(18);
    const FlagType& same = type;
    type |= same;
    QCOMPARE(qint32(type.value()), 18);
    type &= same;
    QCOMPARE(qint32(type.value()), 18);
    QVERIFY(type == same);
    QVERIFY(type <= same);
}

void tst_VLEnumWrapper::every_value_but_zero_is_valid_data()
{
    QTest::addColumn<qint32>("number");
    QTest::addColumn<bool>("valid");

    QTest::newRow("zero") << 0 << false;
    QTest::newRow("flag") << 1 << true;
    QTest::newRow("combination") << 48 << true;
    QTest::newRow("without_a_name") << 64 << true;
    QTest::newRow("negative") << -1 << true;
    QTest::newRow("sign_bit_alone") << std::numeric_limits<qint32>::min() << true;
}

void tst_VLEnumWrapper::every_value_but_zero_is_valid()
{
    QFETCH(const qint32, number);
    QTEST(flag(number).isValid(), "valid");
}

void tst_VLEnumWrapper::virtual_operations_keep_their_order_data()
{
    using Compare = bool (Wrapper::*)(const Wrapper&) const;
    using CompareRaw = bool (Wrapper::*)(Flag) const;
    using Assign = Wrapper& (Wrapper::*)(const Wrapper&);
    using AssignRaw = Wrapper& (Wrapper::*)(Flag);
    using Combine = Flag (Wrapper::*)(const Wrapper&) const;

    QTest::addColumn<qptrdiff>("slot");
    QTest::addColumn<qptrdiff>("expected");

    // The compiler keeps two entries for the destructor, 0 and 1.
    QTest::newRow("<") << slotOf<Compare>(&Wrapper::operator<) << qptrdiff(2);
    QTest::newRow("<=") << slotOf<Compare>(&Wrapper::operator<=) << qptrdiff(3);
    QTest::newRow(">") << slotOf<Compare>(&Wrapper::operator>) << qptrdiff(4);
    QTest::newRow("==") << slotOf<Compare>(&Wrapper::operator==) << qptrdiff(5);
    QTest::newRow("==_raw") << slotOf<CompareRaw>(&Wrapper::operator==) << qptrdiff(6);
    QTest::newRow("!=") << slotOf<Compare>(&Wrapper::operator!=) << qptrdiff(7);
    QTest::newRow("!=_raw") << slotOf<CompareRaw>(&Wrapper::operator!=) << qptrdiff(8);
    QTest::newRow("|=") << slotOf<Assign>(&Wrapper::operator|=) << qptrdiff(9);
    QTest::newRow("|=_raw") << slotOf<AssignRaw>(&Wrapper::operator|=) << qptrdiff(10);
    QTest::newRow("&=") << slotOf<Assign>(&Wrapper::operator&=) << qptrdiff(11);
    QTest::newRow("&=_raw") << slotOf<AssignRaw>(&Wrapper::operator&=) << qptrdiff(12);
    QTest::newRow("&") << slotOf<Combine>(&Wrapper::operator&) << qptrdiff(13);
    QTest::newRow("|") << slotOf<Combine>(&Wrapper::operator|) << qptrdiff(14);
    QTest::newRow("reducedTo") << slotOf(&Wrapper::reducedTo) << qptrdiff(15);
    QTest::newRow("isValid") << slotOf(&Wrapper::isValid) << qptrdiff(16);
    QTest::newRow("fillTable") << slotOf(&Wrapper::fillTable) << qptrdiff(17);
}

void tst_VLEnumWrapper::virtual_operations_keep_their_order()
{
    QFETCH(const qptrdiff, slot);
    QTEST(slot, "expected");
}

void tst_VLEnumWrapper::table_is_one_for_all_objects()
{
    auto* const table = flag(1).enumToStringTable();
    QVERIFY(table != nullptr);
    QCOMPARE(flag(2).enumToStringTable(), table);
    QCOMPARE(FlagType().enumToStringTable(), table);
    QCOMPARE(table->nameFor(Flag::A), u"A"_s);
    QCOMPARE(table->nameFor(Flag::B), QString());
}

void tst_VLEnumWrapper::threads_fill_the_table_once()
{
    raceForTable<0>();
    raceForTable<1>();
    raceForTable<2>();
    raceForTable<3>();
    raceForTable<4>();
    raceForTable<5>();
    raceForTable<6>();
    raceForTable<7>();
}

void tst_VLEnumWrapper::failed_filling_leaves_nothing_behind()
{
    bool failed = false;
    try {
        Q_UNUSED(UnluckyType().enumToStringTable())
    } catch (const std::bad_alloc&) {
        failed = true;
    }
    QVERIFY(failed);
    QCOMPARE(UnluckyType().enumToStringTable()->nameFor(Unlucky::Named), u"Named"_s);
}

QTEST_GUILESS_MAIN(tst_VLEnumWrapper)
#include "tst_VLEnumWrapper.moc"
