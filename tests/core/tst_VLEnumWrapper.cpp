#include <RunTogether.h>

#include <VLCore/VLEnumWrapper.h>

#include <QtTest/QTest>

#include <atomic>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr qint32 lowest = std::numeric_limits<qint32>::min();
constexpr qint32 highest = std::numeric_limits<qint32>::max();

enum class Flag : qint32 { None = 0, Red = 1, Green = 2, Blue = 4 };

using Table = VLEnumToStringTable<Flag>;
using Pairs = QList<std::pair<QString, qint32>>;

/// Shows the members that only derived classes see.
class OpenTable : public Table
{
public:
    using Table::fallbackName;
    using Table::fallbackValue;
    using Table::nameToValue;
    using Table::valueToName;

    OpenTable() = default;
    explicit OpenTable(const Pairs& pairs)
    {
        for (const auto& [name, value] : pairs)
            insert(name, Flag(value));
    }

    /// Both directions as sorted texts: "name=value" and "value=name".
    [[nodiscard]] QString names() const
    {
        QStringList texts;
        for (auto entry = nameToValue.cbegin(); entry != nameToValue.cend(); ++entry)
            texts.append(entry.key() + u'=' + QString::number(qint32(entry.value())));
        texts.sort();
        return texts.join(u' ');
    }
    [[nodiscard]] QString values() const
    {
        QStringList texts;
        for (auto entry = valueToName.cbegin(); entry != valueToName.cend(); ++entry)
            texts.append(QString::number(qint32(entry.key())) + u'=' + entry.value());
        texts.sort();
        return texts.join(u' ');
    }
};

class FlagType : public VLEnumWrapper<Flag>
{
public:
    using VLEnumWrapper::VLEnumWrapper;
    void fillTable(Table* table) const override { table->insert(u"Red"_s, Flag::Red); }
};

FlagType flag(qint32 number)
{
    return static_cast<Flag>(number);
}

/// One enumeration for each number, since each has one table per process. Takes its time for it.
template <int Number>
struct Numbered
{
    enum class Flag : qint32 {};
};
template <int Number>
class SlowType : public VLEnumWrapper<typename Numbered<Number>::Flag>
{
public:
    using Flag = typename Numbered<Number>::Flag;
    using VLEnumWrapper<Flag>::VLEnumWrapper;

    void fillTable(VLEnumToStringTable<Flag>* table) const override
    {
        ++fills;
        QThread::msleep(20);
        table->insert(u"last"_s, Flag(2));
    }

    static inline std::atomic<int> fills { 0 };
};

enum class Unlucky : qint32 { None = 0, Named = 1, Half = 2 };

class UnluckyType : public VLEnumWrapper<Unlucky>
{
public:
    using VLEnumWrapper::VLEnumWrapper;

    void fillTable(VLEnumToStringTable<Unlucky>* table) const override
    {
        if (std::exchange(failsOnce, false)) {
            table->insert(u"Half"_s, Unlucky::Half);
            throw std::bad_alloc();
        }
        table->insert(u"Named"_s, Unlucky::Named);
    }

    static inline bool failsOnce = true;
};

template <int Number>
void raceForTable()
{
    constexpr int threads = 16;
    using Type = SlowType<Number>;
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

template <typename T>
quintptr addressOf(const T& member)
{
    return reinterpret_cast<quintptr>(&member);
}

template <typename T, typename = void>
constexpr bool hasGreaterOrEqual = false;
template <typename T>
constexpr bool hasGreaterOrEqual<
    T, std::void_t<decltype(std::declval<const T&>() >= std::declval<const T&>())>> = true;

} // namespace

static_assert(std::is_abstract_v<VLEnumWrapper<Flag>>);
static_assert(std::has_virtual_destructor_v<VLEnumWrapper<Flag>>);
static_assert(std::is_default_constructible_v<FlagType>);
static_assert(std::is_copy_constructible_v<FlagType> && std::is_copy_assignable_v<FlagType>);
static_assert(std::is_nothrow_move_constructible_v<FlagType>);
static_assert(std::is_nothrow_move_assignable_v<FlagType>);
static_assert(std::is_convertible_v<Flag, FlagType>);
static_assert(!std::is_convertible_v<qint32, FlagType>);
static_assert(!std::is_constructible_v<Flag, FlagType>);
static_assert(!std::is_constructible_v<qint32, FlagType>);
static_assert(!std::is_constructible_v<bool, FlagType>);
static_assert(!hasGreaterOrEqual<FlagType> && hasGreaterOrEqual<int>);

static_assert(std::has_virtual_destructor_v<Table>);
static_assert(std::is_default_constructible_v<Table> && !std::is_copy_constructible_v<Table>);
static_assert(std::is_same_v<decltype(OpenTable::nameToValue), QHash<QString, Flag>>);
static_assert(std::is_same_v<decltype(OpenTable::valueToName), QHash<Flag, QString>>);
static_assert(std::is_same_v<decltype(OpenTable::fallbackName), QString>);
static_assert(std::is_same_v<decltype(OpenTable::fallbackValue), Flag>);

class tst_VLEnumWrapper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultValueIsZero();
    void operators_data();
    void operators();
    void assignmentsReturnTheObjectItself();

    void insertedPairs_data();
    void insertedPairs();
    void valueFor_data();
    void valueFor();
    void nameFor_data();
    void nameFor();
    void newTableReadsAsFallbacks();
    void membersKeepTheirOrder();

    void tableIsOneForAllObjects();
    void threadsFillTheTableOnce();
    void failedFillingLeavesNothingBehind();
};

void tst_VLEnumWrapper::defaultValueIsZero()
{
    QCOMPARE(qint32(FlagType().value()), 0);
}

void tst_VLEnumWrapper::operators_data()
{
    QTest::addColumn<qint32>("left");
    QTest::addColumn<qint32>("right");
    QTest::addColumn<bool>("less");
    QTest::addColumn<bool>("equal");
    QTest::addColumn<qint32>("either");
    QTest::addColumn<qint32>("both");

    QTest::newRow("zero_and_zero") << 0 << 0 << false << true << 0 << 0;
    QTest::newRow("zero_and_flag") << 0 << 16 << true << false << 16 << 0;
    QTest::newRow("one_below_two") << 1 << 2 << true << false << 3 << 0;
    QTest::newRow("two_above_one") << 2 << 1 << false << false << 3 << 0;
    QTest::newRow("same_flag") << 16 << 16 << false << true << 16 << 16;
    QTest::newRow("shared_flag_is_not_equal") << 18 << 16 << false << false << 18 << 16;
    QTest::newRow("flag_below_combination") << 16 << 18 << true << false << 18 << 16;
    QTest::newRow("same_combination") << 18 << 18 << false << true << 18 << 18;
    QTest::newRow("overlapping_combinations") << 6 << 12 << true << false << 14 << 4;
    QTest::newRow("negative_below_zero") << -1 << 0 << true << false << -1 << 0;
    QTest::newRow("negative_below_positive") << -1 << 32 << true << false << -1 << 32;
    QTest::newRow("positive_above_negative") << 1 << -1 << false << false << -1 << 1;
    QTest::newRow("same_negative") << -7 << -7 << false << true << -7 << -7;
    QTest::newRow("lowest_below_highest") << lowest << highest << true << false << -1 << 0;
    QTest::newRow("without_a_name") << 64 << 64 << false << true << 64 << 64;
    QTest::newRow("lowest_below_minus_one") << lowest << -1 << true << false << -1 << lowest;
}

void tst_VLEnumWrapper::operators()
{
    QFETCH(const qint32, left);
    QFETCH(const qint32, right);
    QFETCH(const bool, less);
    QFETCH(const bool, equal);
    QFETCH(const qint32, either);
    QFETCH(const qint32, both);
    const FlagType a = flag(left);
    const FlagType b = flag(right);
    QCOMPARE(a.isValid(), left != 0);
    QCOMPARE(a < b, less);
    QCOMPARE(a <= b, less || equal);
    QCOMPARE(a > b, !less && !equal);
    QCOMPARE(a == b, equal);
    QCOMPARE(a == Flag(right), equal);
    QCOMPARE(a != b, !equal);
    QCOMPARE(a != Flag(right), !equal);
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

void tst_VLEnumWrapper::assignmentsReturnTheObjectItself()
{
    FlagType type = flag(1);
    QCOMPARE(&(type |= flag(2)), &type);
    QCOMPARE(&(type |= Flag(4)), &type);
    QCOMPARE(&(type &= flag(7)), &type);
    QCOMPARE(&(type &= Flag(3)), &type);
    QCOMPARE(qint32(type.value()), 3);
}

void tst_VLEnumWrapper::insertedPairs_data()
{
    QTest::addColumn<Pairs>("inserted");
    QTest::addColumn<QString>("names");
    QTest::addColumn<QString>("values");

    QTest::newRow("new_table_is_empty") << Pairs() << u""_s << u""_s;
    QTest::newRow("both_directions_are_filled") << Pairs { { u"red"_s, 1 }, { u"below"_s, -1 } }
                                                << u"below=-1 red=1"_s << u"-1=below 1=red"_s;
    QTest::newRow("keys_are_lower_case_and_names_are_not")
        << Pairs { { u"DarkRed"_s, 1 } } << u"darkred=1"_s << u"1=DarkRed"_s;
    QTest::newRow("umlaut_is_lowered")
        << Pairs { { u"\u00C4rger"_s, 1 } } << u"\u00E4rger=1"_s << u"1=\u00C4rger"_s;
    QTest::newRow("latin_i_is_lowered_alike_in_every_language")
        << Pairs { { u"TITLE"_s, 1 } } << u"title=1"_s << u"1=TITLE"_s;
    QTest::newRow("letter_outside_the_basic_plane_is_lowered")
        << Pairs { { u"\U00010400"_s, 1 } } << u"\U00010428=1"_s << u"1=\U00010400"_s;
    QTest::newRow("repeated_name_leads_to_the_newest_value")
        << Pairs { { u"Warm"_s, 1 }, { u"Warm"_s, 2 } } << u"warm=2"_s << u"1=Warm 2=Warm"_s;
    QTest::newRow("repeated_name_in_other_case_is_the_same_name")
        << Pairs { { u"Warm"_s, 1 }, { u"WARM"_s, 2 } } << u"warm=2"_s << u"1=Warm 2=WARM"_s;
    QTest::newRow("repeated_value_keeps_its_oldest_name")
        << Pairs { { u"Blue"_s, 4 }, { u"Azure"_s, 4 } } << u"azure=4 blue=4"_s << u"4=Blue"_s;
    QTest::newRow("repeated_pair_changes_nothing")
        << Pairs { { u"Blue"_s, 4 }, { u"Blue"_s, 4 } } << u"blue=4"_s << u"4=Blue"_s;
    QTest::newRow("empty_name_is_a_name")
        << Pairs { { u""_s, 1 }, { u"Red"_s, 1 } } << u"=1 red=1"_s << u"1="_s;
}

void tst_VLEnumWrapper::insertedPairs()
{
    QFETCH(const Pairs, inserted);
    const OpenTable table(inserted);
    QTEST(table.names(), "names");
    QTEST(table.values(), "values");
}

void tst_VLEnumWrapper::valueFor_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<qint32>("value");

    QTest::newRow("as_inserted") << u"DarkRed"_s << 1;
    QTest::newRow("lower_case") << u"darkred"_s << 1;
    QTest::newRow("upper_case") << u"DARKRED"_s << 1;
    QTest::newRow("umlaut_in_other_case") << u"\u00E4RGER"_s << 2;
    QTest::newRow("latin_i_in_other_case") << u"title"_s << 4;
    QTest::newRow("never_inserted") << u"Green"_s << 0;
    QTest::newRow("start_of_a_name") << u"Dark"_s << 0;
    QTest::newRow("name_and_a_blank") << u"DarkRed "_s << 0;
    QTest::newRow("empty") << u""_s << 0;
    QTest::newRow("null") << QString() << 0;
}

void tst_VLEnumWrapper::valueFor()
{
    QFETCH(const QString, name);
    const OpenTable table({ { u"DarkRed"_s, 1 }, { u"\u00C4rger"_s, 2 }, { u"TITLE"_s, 4 } });
    QTEST(qint32(table.valueFor(name)), "value");
    QCOMPARE(table.nameToValue.size(), 3);
}

void tst_VLEnumWrapper::nameFor_data()
{
    QTest::addColumn<qint32>("value");
    QTest::addColumn<QString>("name");

    QTest::newRow("named") << 1 << u"DarkRed"_s;
    QTest::newRow("negative_named") << -1 << u"Below"_s;
    QTest::newRow("zero") << 0 << QString();
    QTest::newRow("combination_of_named_values") << 3 << QString();
    QTest::newRow("never_inserted") << 64 << QString();
}

void tst_VLEnumWrapper::nameFor()
{
    QFETCH(const qint32, value);
    QFETCH(const QString, name);
    const OpenTable table({ { u"DarkRed"_s, 1 }, { u"Green"_s, 2 }, { u"Below"_s, -1 } });
    QCOMPARE(table.nameFor(Flag(value)), name);
    QCOMPARE(table.nameFor(Flag(value)).isNull(), name.isNull());
    QCOMPARE(table.valueToName.size(), 3);
}

void tst_VLEnumWrapper::newTableReadsAsFallbacks()
{
    OpenTable table;
    QVERIFY(table.fallbackName.isNull());
    QCOMPARE(table.fallbackValue, Flag::None);
    table.fallbackName = u"nothing"_s;
    table.fallbackValue = Flag::Blue;
    QCOMPARE(table.nameFor(Flag::Green), u"nothing"_s);
    QCOMPARE(table.valueFor(u"Green"_s), Flag::Blue);
}

void tst_VLEnumWrapper::membersKeepTheirOrder()
{
    const OpenTable table;
    QVERIFY(addressOf(table.nameToValue) < addressOf(table.valueToName));
    QVERIFY(addressOf(table.valueToName) < addressOf(table.fallbackName));
    QVERIFY(addressOf(table.fallbackName) < addressOf(table.fallbackValue));
}

void tst_VLEnumWrapper::tableIsOneForAllObjects()
{
    Table* const table = flag(1).enumToStringTable();
    QVERIFY(table != nullptr);
    QCOMPARE(flag(2).enumToStringTable(), table);
    QCOMPARE(FlagType().enumToStringTable(), table);
    QCOMPARE(table->nameFor(Flag::Red), u"Red"_s);
    QCOMPARE(table->nameFor(Flag::Green), QString());
}

void tst_VLEnumWrapper::threadsFillTheTableOnce()
{
    raceForTable<0>();
    raceForTable<1>();
    raceForTable<2>();
    raceForTable<3>();
}

void tst_VLEnumWrapper::failedFillingLeavesNothingBehind()
{
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc, static_cast<void>(UnluckyType().enumToStringTable()));
    QCOMPARE(UnluckyType().enumToStringTable()->nameFor(Unlucky::Named), u"Named"_s);
    QCOMPARE(UnluckyType().enumToStringTable()->nameFor(Unlucky::Half), QString());
}

QTEST_GUILESS_MAIN(tst_VLEnumWrapper)
#include "tst_VLEnumWrapper.moc"
