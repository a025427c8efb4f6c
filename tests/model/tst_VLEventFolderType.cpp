#include <RunTogether.h>

#include <VLFolioEventClassifier/VLEventFolderType.h>

#include <QtCore/QHash>
#include <QtCore/QStringList>
#include <QtTest/QTest>

#include <type_traits>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Table = VLEnumToStringTable<Type>;

namespace {

/// Gives access to the members of a table that only derived classes see.
class OpenTable : public Table
{
public:
    static const QHash<QString, Type>& namesOf(const Table& table)
    {
        return table.*(&OpenTable::nameToValue);
    }
    static const QHash<Type, QString>& valuesOf(const Table& table)
    {
        return table.*(&OpenTable::valueToName);
    }
    static const QString& fallbackNameOf(const Table& table)
    {
        return table.*(&OpenTable::fallbackName);
    }
    static Type fallbackValueOf(const Table& table) { return table.*(&OpenTable::fallbackValue); }
};

VLEventFolderType type(qint32 number)
{
    return static_cast<Type>(number);
}

QHash<QString, Type> keysOfTable()
{
    return {
        { u"unknown"_s, Type::Unknown },
        { u"root"_s, Type::Root },
        { u"year"_s, Type::Year },
        { u"month"_s, Type::Month },
        { u"day"_s, Type::Day },
        { u"event"_s, Type::Event },
        { u"projectfolder"_s, Type::ProjectFolder },
    };
}

QHash<Type, QString> namesOfTable()
{
    return {
        { Type::Unknown, u"Unknown"_s },
        { Type::Root, u"Root"_s },
        { Type::Year, u"Year"_s },
        { Type::Month, u"Month"_s },
        { Type::Day, u"Day"_s },
        { Type::Event, u"Event"_s },
        { Type::ProjectFolder, u"ProjectFolder"_s },
    };
}

} // namespace

static_assert(std::is_same_v<std::underlying_type_t<Type>, qint32>);
static_assert(!std::is_convertible_v<Type, qint32>, "a scoped enumeration");
static_assert(qint32(Type::Unknown) == 0);
static_assert(qint32(Type::Root) == 1);
static_assert(qint32(Type::Year) == 2);
static_assert(qint32(Type::Month) == 4);
static_assert(qint32(Type::Day) == 8);
static_assert(qint32(Type::Event) == 16);
static_assert(qint32(Type::ProjectFolder) == 32);

static_assert(std::is_convertible_v<VLEventFolderType*, VLEnumWrapper<Type>*>, "publicly derived");
static_assert(sizeof(VLEventFolderType) == sizeof(VLEnumWrapper<Type>), "adds no data");
static_assert(std::has_virtual_destructor_v<VLEventFolderType>);
static_assert(!std::is_abstract_v<VLEventFolderType>);
static_assert(std::is_default_constructible_v<VLEventFolderType>);
static_assert(std::is_copy_constructible_v<VLEventFolderType>);
static_assert(std::is_copy_assignable_v<VLEventFolderType>);
static_assert(std::is_nothrow_move_constructible_v<VLEventFolderType>);
static_assert(std::is_nothrow_move_assignable_v<VLEventFolderType>);
static_assert(std::is_convertible_v<Type, VLEventFolderType>);
static_assert(!std::is_constructible_v<VLEventFolderType, qint32>);
static_assert(!std::is_constructible_v<Type, VLEventFolderType>);
static_assert(!std::is_constructible_v<bool, VLEventFolderType>);

class tst_VLEventFolderType : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void default_made_type_is_unknown();
    void made_from_an_enumerator();
    void moved_and_copied_values();
    void valid_unless_unknown_data();
    void valid_unless_unknown();
    void reduced_to_a_mask_data();
    void reduced_to_a_mask();
    void equality_never_tests_flag_overlap();
    void order_is_that_of_the_numbers();
    void widened_by_another_type();
    void name_of_a_value_data();
    void name_of_a_value();
    void value_of_a_name_data();
    void value_of_a_name();
    void shared_table_holds_seven_names_both_ways();
    void fill_table_inserts_seven_names();
    void fill_table_keeps_what_a_value_was_called_before();
    void all_objects_share_one_table();
    void threads_get_one_full_table();
};

void tst_VLEventFolderType::default_made_type_is_unknown()
{
    QCOMPARE(VLEventFolderType().value(), Type::Unknown);
    QVERIFY(VLEventFolderType() == Type::Unknown);
}

void tst_VLEventFolderType::made_from_an_enumerator()
{
    const VLEventFolderType month = Type::Month;
    QCOMPARE(month.value(), Type::Month);
    QCOMPARE(qint32(type(63).value()), 63);
}

void tst_VLEventFolderType::moved_and_copied_values()
{
    VLEventFolderType original = type(18);
    const VLEventFolderType copied = original;
    original |= Type::Root;
    VLEventFolderType assigned;
    assigned = original;
    const VLEventFolderType moved = std::move(original);
    original = Type::Day;
    QCOMPARE(qint32(copied.value()), 18);
    QCOMPARE(qint32(assigned.value()), 19);
    QCOMPARE(qint32(moved.value()), 19);
    QCOMPARE(qint32(original.value()), 8);
}

void tst_VLEventFolderType::valid_unless_unknown_data()
{
    QTest::addColumn<qint32>("number");
    QTest::addColumn<bool>("valid");

    QTest::newRow("unknown") << 0 << false;
    QTest::newRow("root") << 1 << true;
    QTest::newRow("year") << 2 << true;
    QTest::newRow("root_and_year") << 3 << true;
    QTest::newRow("month") << 4 << true;
    QTest::newRow("day") << 8 << true;
    QTest::newRow("event") << 16 << true;
    QTest::newRow("project_folder") << 32 << true;
    QTest::newRow("event_and_project_folder") << 48 << true;
    QTest::newRow("all_flags") << 63 << true;
}

void tst_VLEventFolderType::valid_unless_unknown()
{
    QFETCH(const qint32, number);
    QTEST(type(number).isValid(), "valid");
}

void tst_VLEventFolderType::reduced_to_a_mask_data()
{
    QTest::addColumn<qint32>("number");
    QTest::addColumn<qint32>("mask");
    QTest::addColumn<qint32>("reduced");

    QTest::newRow("flag_of_a_combination") << 18 << 16 << 16;
    QTest::newRow("flag_that_is_missing") << 2 << 16 << 0;
    QTest::newRow("mask_of_two") << 63 << 18 << 18;
    QTest::newRow("mask_of_two_one_missing") << 16 << 18 << 16;
    QTest::newRow("no_mask") << 18 << 0 << 0;
    QTest::newRow("unknown") << 0 << 63 << 0;
}

void tst_VLEventFolderType::reduced_to_a_mask()
{
    QFETCH(const qint32, number);
    QFETCH(const qint32, mask);
    const VLEventFolderType original = type(number);
    QTEST(qint32(original.reducedTo(Type(mask))), "reduced");
    QCOMPARE(qint32(original.value()), number);
}

void tst_VLEventFolderType::equality_never_tests_flag_overlap()
{
    const VLEventFolderType year = Type::Year;
    const VLEventFolderType yearAndEvent = type(18);
    QVERIFY(!(year == yearAndEvent));
    QVERIFY(year != yearAndEvent);
    QVERIFY(!(yearAndEvent == Type::Year));
    QVERIFY(!(yearAndEvent == Type::Event));
    QVERIFY(yearAndEvent != Type::Event);
    QVERIFY(yearAndEvent == type(18));
}

void tst_VLEventFolderType::order_is_that_of_the_numbers()
{
    // Combinations stand between the flags: 3 behind Year, 18 behind Event.
    const std::vector<VLEventFolderType> rising { Type::Unknown, Type::Root,  Type::Year,
                                                  type(3),       Type::Month, Type::Day,
                                                  Type::Event,   type(18),    Type::ProjectFolder,
                                                  type(48) };
    for (size_t left = 0; left < rising.size(); ++left) {
        for (size_t right = 0; right < rising.size(); ++right) {
            QCOMPARE(rising[left] < rising[right], left < right);
            QCOMPARE(rising[left] <= rising[right], left <= right);
            QCOMPARE(rising[left] > rising[right], left > right);
        }
    }
}

void tst_VLEventFolderType::widened_by_another_type()
{
    VLEventFolderType widened = Type::Year;
    widened |= Type::Event;
    QCOMPARE(qint32(widened.value()), 18);
    QCOMPARE(qint32(VLEventFolderType(Type::Year) | VLEventFolderType(Type::Event)), 18);
    QCOMPARE(qint32(widened & VLEventFolderType(Type::Event)), 16);
}

void tst_VLEventFolderType::name_of_a_value_data()
{
    QTest::addColumn<qint32>("number");
    QTest::addColumn<QString>("name");

    QTest::newRow("unknown") << 0 << u"Unknown"_s;
    QTest::newRow("root") << 1 << u"Root"_s;
    QTest::newRow("year") << 2 << u"Year"_s;
    QTest::newRow("month") << 4 << u"Month"_s;
    QTest::newRow("day") << 8 << u"Day"_s;
    QTest::newRow("event") << 16 << u"Event"_s;
    QTest::newRow("project_folder") << 32 << u"ProjectFolder"_s;
    QTest::newRow("combination_has_no_name") << 18 << QString();
    QTest::newRow("all_flags_have_no_name") << 63 << QString();
    QTest::newRow("number_beyond_the_flags") << 64 << QString();
    QTest::newRow("negative_number") << -1 << QString();
}

void tst_VLEventFolderType::name_of_a_value()
{
    QFETCH(const qint32, number);
    QFETCH(const QString, name);
    const QString found = VLEventFolderType().enumToStringTable()->nameFor(Type(number));
    QCOMPARE(found, name);
    QCOMPARE(found.isNull(), name.isNull());
}

void tst_VLEventFolderType::value_of_a_name_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<qint32>("number");

    QTest::newRow("unknown") << u"Unknown"_s << 0;
    QTest::newRow("root") << u"Root"_s << 1;
    QTest::newRow("year") << u"Year"_s << 2;
    QTest::newRow("month") << u"Month"_s << 4;
    QTest::newRow("day") << u"Day"_s << 8;
    QTest::newRow("event") << u"Event"_s << 16;
    QTest::newRow("project_folder") << u"ProjectFolder"_s << 32;
    QTest::newRow("lower_case") << u"projectfolder"_s << 32;
    QTest::newRow("upper_case") << u"PROJECTFOLDER"_s << 32;
    QTest::newRow("no_name_of_a_type") << u"Holiday"_s << 0;
    QTest::newRow("two_names") << u"Year|Event"_s << 0;
    QTest::newRow("number_is_no_name") << u"16"_s << 0;
    QTest::newRow("empty") << u""_s << 0;
}

void tst_VLEventFolderType::value_of_a_name()
{
    QFETCH(const QString, name);
    QTEST(qint32(VLEventFolderType().enumToStringTable()->valueFor(name)), "number");
}

void tst_VLEventFolderType::shared_table_holds_seven_names_both_ways()
{
    const Table* const table = VLEventFolderType().enumToStringTable();
    QCOMPARE(OpenTable::namesOf(*table), keysOfTable());
    QCOMPARE(OpenTable::valuesOf(*table), namesOfTable());
    QVERIFY(OpenTable::fallbackNameOf(*table).isNull());
    QCOMPARE(OpenTable::fallbackValueOf(*table), Type::Unknown);
}

void tst_VLEventFolderType::fill_table_inserts_seven_names()
{
    Table table;
    type(18).fillTable(&table);
    QCOMPARE(OpenTable::namesOf(table), keysOfTable());
    QCOMPARE(OpenTable::valuesOf(table), namesOfTable());
}

void tst_VLEventFolderType::fill_table_keeps_what_a_value_was_called_before()
{
    Table table;
    table.insert(u"Party"_s, Type::Event);
    VLEventFolderType().fillTable(&table);
    QCOMPARE(table.nameFor(Type::Event), u"Party"_s);
    QCOMPARE(table.valueFor(u"Event"_s), Type::Event);
}

void tst_VLEventFolderType::all_objects_share_one_table()
{
    const VLEventFolderType year = Type::Year;
    Table* const table = year.enumToStringTable();
    QVERIFY(table != nullptr);
    QCOMPARE(VLEventFolderType().enumToStringTable(), table);
    QCOMPARE(VLEventFolderType(year).enumToStringTable(), table);
    QCOMPARE(type(18).enumToStringTable(), table);
}

void tst_VLEventFolderType::threads_get_one_full_table()
{
    constexpr int threads = 16;
    std::vector<const Table*> tables(threads);
    std::vector<QString> names(threads);
    runTogether(threads, [&](int thread) {
        tables[size_t(thread)] = VLEventFolderType().enumToStringTable();
        names[size_t(thread)] = tables[size_t(thread)]->nameFor(Type::ProjectFolder);
    });
    QVERIFY(tables.front() != nullptr);
    QCOMPARE(tables, std::vector<const Table*>(threads, tables.front()));
    QCOMPARE(names, std::vector<QString>(threads, u"ProjectFolder"_s));
}

QTEST_GUILESS_MAIN(tst_VLEventFolderType)
#include "tst_VLEventFolderType.moc"
