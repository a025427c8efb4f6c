#include <OpenTable.h>
#include <RunTogether.h>
#include <TestRows.h>

#include <VLFolioEventClassifier/VLEventFolderType.h>

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

enum class Flag : qint32 { None = 0, Red = 1, Green = 2, Blue = 4, Below = -1 };

using Table = OpenTable<Flag>;
using Pairs = QList<std::pair<QString, Flag>>;
using Wrapper = VLEnumWrapper<VLEventFolderTypeEnum>;

VLEventFolderTypeEnum typeEnum(qint32 number)
{
    return static_cast<VLEventFolderTypeEnum>(number);
}

/// One enumeration for each number, since each has one table per process. Takes its time to fill
/// the table, so that whoever does not wait for it is seen.
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

    void fillTable(VLEnumToStringTable<Flag>* table) const override
    {
        ++fills;
        QThread::msleep(20);
        table->insert(u"last"_s, Flag(2));
    }

    static inline std::atomic<int> fills { 0 };
};

class UnluckyType : public VLEnumWrapper<Flag>
{
public:
    void fillTable(VLEnumToStringTable<Flag>* table) const override
    {
        if (std::exchange(failsOnce, false)) {
            table->insert(u"Half"_s, Flag::Blue);
            throw std::bad_alloc();
        }
        table->insert(u"Named"_s, Flag::Red);
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

template <typename T, typename = void>
constexpr bool hasGreaterOrEqual = false;
template <typename T>
constexpr bool hasGreaterOrEqual<
    T, std::void_t<decltype(std::declval<const T&>() >= std::declval<const T&>())>> = true;

} // namespace

static_assert(std::is_abstract_v<Wrapper>);
static_assert(std::has_virtual_destructor_v<Wrapper>);
static_assert(!hasGreaterOrEqual<VLEventFolderType> && hasGreaterOrEqual<int>);

static_assert(std::has_virtual_destructor_v<VLEnumToStringTable<Flag>>);
static_assert(!std::is_copy_constructible_v<VLEnumToStringTable<Flag>>);
static_assert(std::is_same_v<decltype(Table::nameToValue), QHash<QString, Flag>>);
static_assert(std::is_same_v<decltype(Table::valueToName), QHash<Flag, QString>>);
static_assert(std::is_same_v<decltype(Table::fallbackName), QString>);
static_assert(std::is_same_v<decltype(Table::fallbackValue), Flag>);

class tst_VLEnumWrapper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void operators_data();
    void operators();
    void assignmentsReturnTheObjectItself();

    void insertedPairs_data();
    void insertedPairs();
    void valueFor_data();
    void valueFor();
    void nameFor();
    void fallbacksOfATable();
    void membersKeepTheirOrder();

    void threadsFillTheTableOnce();
    void failedFillingLeavesNothingBehind();
};

void tst_VLEnumWrapper::operators_data()
{
    const TestRows<qint32, qint32, bool, bool, qint32, qint32> row("left", "right", "less", "equal",
                                                                   "either", "both");
    row("unknown_twice", 0, 0, false, true, 0, 0);
    row("unknown_below_a_flag", 0, 16, true, false, 16, 0);
    row("root_below_year", 1, 2, true, false, 3, 0);
    row("event_above_day", 16, 8, false, false, 24, 0);
    row("event_below_project_folder", 16, 32, true, false, 48, 0);
    row("year_has_no_event_to_be_reduced_to", 2, 16, true, false, 18, 0);
    row("combination_is_reduced_to_event", 18, 16, false, false, 18, 16);
    row("year_differs_from_its_combination", 2, 18, true, false, 18, 2);
    row("combination_sorts_by_its_number", 3, 4, true, false, 7, 0);
    row("same_combination", 48, 48, false, true, 48, 48);
    row("overlapping_combinations", 6, 12, true, false, 14, 4);
    row("negative_below_positive", -1, 32, true, false, -1, 32);
    row("positive_above_negative", 1, -1, false, false, -1, 1);
    row("lowest_below_highest", lowest, highest, true, false, -1, 0);
    row("without_a_name", 64, 64, false, true, 64, 64);
}

void tst_VLEnumWrapper::operators()
{
    QFETCH(const qint32, left);
    QFETCH(const qint32, right);
    QFETCH(const bool, less);
    QFETCH(const bool, equal);
    QFETCH(const qint32, either);
    QFETCH(const qint32, both);
    const VLEventFolderType a = typeEnum(left);
    const VLEventFolderType b = typeEnum(right);
    QCOMPARE(a.isValid(), left != 0);
    QCOMPARE(a < b, less);
    QCOMPARE(a <= b, less || equal);
    QCOMPARE(a > b, !less && !equal);
    QCOMPARE(a == b, equal);
    QCOMPARE(a == typeEnum(right), equal);
    QCOMPARE(a != b, !equal);
    QCOMPARE(a != typeEnum(right), !equal);
    QCOMPARE(qint32(a | b), either);
    QCOMPARE(qint32(a & b), both);
    QCOMPARE(qint32(a.reducedTo(typeEnum(right))), both);

    VLEventFolderType orWrapper = a;
    VLEventFolderType orRaw = a;
    VLEventFolderType andWrapper = a;
    VLEventFolderType andRaw = a;
    orWrapper |= b;
    orRaw |= typeEnum(right);
    andWrapper &= b;
    andRaw &= typeEnum(right);
    QCOMPARE(qint32(orWrapper.value()), either);
    QCOMPARE(qint32(orRaw.value()), either);
    QCOMPARE(qint32(andWrapper.value()), both);
    QCOMPARE(qint32(andRaw.value()), both);
    QCOMPARE(qint32(a.value()), left);
    QCOMPARE(qint32(b.value()), right);
}

void tst_VLEnumWrapper::assignmentsReturnTheObjectItself()
{
    VLEventFolderType type = typeEnum(1);
    QCOMPARE(&(type |= VLEventFolderType(typeEnum(2))), &type);
    QCOMPARE(&(type |= typeEnum(4)), &type);
    QCOMPARE(&(type &= VLEventFolderType(typeEnum(7))), &type);
    QCOMPARE(&(type &= typeEnum(3)), &type);
    QCOMPARE(qint32(type.value()), 3);
}

void tst_VLEnumWrapper::insertedPairs_data()
{
    using Names = QHash<QString, Flag>;
    using Values = QHash<Flag, QString>;
    const TestRows<Pairs, Names, Values> row("inserted", "names", "values");
    row("new_table_is_empty", {}, {}, {});
    row("keys_are_lower_case_and_names_are_not", { { u"DarkRed"_s, Flag::Red } },
        { { u"darkred"_s, Flag::Red } }, { { Flag::Red, u"DarkRed"_s } });
    row("latin_i_is_lowered_alike_in_every_language", { { u"TITLE"_s, Flag::Red } },
        { { u"title"_s, Flag::Red } }, { { Flag::Red, u"TITLE"_s } });
    row("letter_beyond_latin_is_lowered", { { u"\u00C4\U00010400"_s, Flag::Below } },
        { { u"\u00E4\U00010428"_s, Flag::Below } }, { { Flag::Below, u"\u00C4\U00010400"_s } });
    row("repeated_name_leads_to_the_newest_value",
        { { u"Warm"_s, Flag::Red }, { u"WARM"_s, Flag::Green } }, { { u"warm"_s, Flag::Green } },
        { { Flag::Red, u"Warm"_s }, { Flag::Green, u"WARM"_s } });
    row("repeated_value_keeps_its_oldest_name",
        { { u"Blue"_s, Flag::Blue }, { u"Azure"_s, Flag::Blue } },
        { { u"blue"_s, Flag::Blue }, { u"azure"_s, Flag::Blue } }, { { Flag::Blue, u"Blue"_s } });
    row("empty_name_is_a_name", { { u""_s, Flag::Red }, { u"Red"_s, Flag::Red } },
        { { u""_s, Flag::Red }, { u"red"_s, Flag::Red } }, { { Flag::Red, u""_s } });
}

void tst_VLEnumWrapper::insertedPairs()
{
    QFETCH(const Pairs, inserted);
    Table table;
    for (const auto& [name, value] : inserted)
        table.insert(name, value);
    QTEST(table.nameToValue, "names");
    QTEST(table.valueToName, "values");
}

void tst_VLEnumWrapper::valueFor_data()
{
    const TestRows<QString, Flag> row("name", "value");
    row("as_inserted", u"DarkRed"_s, Flag::Red);
    row("lower_case", u"darkred"_s, Flag::Red);
    row("latin_i_in_other_case", u"title"_s, Flag::Blue);
    row("never_inserted", u"Green"_s, Flag::None);
    row("start_of_a_name", u"Dark"_s, Flag::None);
    row("name_and_a_blank", u"DarkRed "_s, Flag::None);
    row("empty", u""_s, Flag::None);
}

void tst_VLEnumWrapper::valueFor()
{
    QFETCH(const QString, name);
    Table table;
    table.insert(u"DarkRed"_s, Flag::Red);
    table.insert(u"TITLE"_s, Flag::Blue);
    QTEST(table.valueFor(name), "value");
    QCOMPARE(table.nameToValue.size(), 2);
}

void tst_VLEnumWrapper::nameFor()
{
    Table table;
    table.insert(u"DarkRed"_s, Flag::Red);
    table.insert(u"Below"_s, Flag::Below);
    QCOMPARE(table.nameFor(Flag::Red), u"DarkRed"_s);
    QCOMPARE(table.nameFor(Flag::Below), u"Below"_s);
    QVERIFY(table.nameFor(Flag::None).isNull());
    QVERIFY(table.nameFor(Flag::Green).isNull());
    QCOMPARE(table.valueToName.size(), 2);
}

void tst_VLEnumWrapper::fallbacksOfATable()
{
    Table table;
    QVERIFY(table.fallbackName.isNull());
    QCOMPARE(table.fallbackValue, Flag::None);
    table.fallbackName = u"nothing"_s;
    table.fallbackValue = Flag::Blue;
    QCOMPARE(table.nameFor(Flag::Green), u"nothing"_s);
    QCOMPARE(table.valueFor(u"Green"_s), Flag::Blue);
}

void tst_VLEnumWrapper::membersKeepTheirOrder()
{
    const Table table;
    const auto address = [](const auto& member) { return reinterpret_cast<quintptr>(&member); };
    QVERIFY(address(table.nameToValue) < address(table.valueToName));
    QVERIFY(address(table.valueToName) < address(table.fallbackName));
    QVERIFY(address(table.fallbackName) < address(table.fallbackValue));
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
    const auto* const table = UnluckyType().enumToStringTable();
    QCOMPARE(table->nameFor(Flag::Red), u"Named"_s);
    QCOMPARE(table->nameFor(Flag::Blue), QString());
    QCOMPARE(UnluckyType().enumToStringTable(), table);
}

QTEST_GUILESS_MAIN(tst_VLEnumWrapper)
#include "tst_VLEnumWrapper.moc"
