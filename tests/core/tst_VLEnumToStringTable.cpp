#include <VLCore/VLEnumToStringTable.h>

#include <QtTest/QTest>

#include <type_traits>

using namespace Qt::StringLiterals;

namespace {

enum class Colour : qint32 { None = 0, Red = 1, Green = 2, Blue = 4, Negative = -1 };

/// Shows the members that only derived classes see.
class OpenTable : public VLEnumToStringTable<Colour>
{
public:
    using VLEnumToStringTable::fallbackName;
    using VLEnumToStringTable::fallbackValue;
    using VLEnumToStringTable::nameToValue;
    using VLEnumToStringTable::valueToName;
};

template <typename T>
quintptr addressOf(const T& member)
{
    return reinterpret_cast<quintptr>(&member);
}

} // namespace

static_assert(std::is_default_constructible_v<VLEnumToStringTable<Colour>>);
static_assert(!std::is_copy_constructible_v<VLEnumToStringTable<Colour>>);
static_assert(!std::is_copy_assignable_v<VLEnumToStringTable<Colour>>);
static_assert(std::has_virtual_destructor_v<VLEnumToStringTable<Colour>>);
static_assert(std::is_same_v<decltype(OpenTable::nameToValue), QHash<QString, Colour>>);
static_assert(std::is_same_v<decltype(OpenTable::valueToName), QHash<Colour, QString>>);
static_assert(std::is_same_v<decltype(OpenTable::fallbackName), QString>);
static_assert(std::is_same_v<decltype(OpenTable::fallbackValue), Colour>);

class tst_VLEnumToStringTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void new_table_is_empty();
    void members_keep_their_order();
    void insert_fills_both_directions();
    void keys_are_lower_case_and_names_are_not();
    void repeated_name_leads_to_the_newest_value();
    void repeated_name_in_other_case_is_the_same_name();
    void repeated_value_keeps_its_oldest_name();
    void repeated_pair_changes_nothing();
    void empty_name_is_a_name();
    void name_lookup_ignores_case_data();
    void name_lookup_ignores_case();
    void unknown_name_reads_as_zero_data();
    void unknown_name_reads_as_zero();
    void unnamed_value_reads_as_null_string_data();
    void unnamed_value_reads_as_null_string();
    void fallbacks_are_what_lookups_yield();
};

void tst_VLEnumToStringTable::new_table_is_empty()
{
    const OpenTable table;
    QVERIFY(table.nameToValue.isEmpty());
    QVERIFY(table.valueToName.isEmpty());
    QVERIFY(table.fallbackName.isNull());
    QCOMPARE(table.fallbackValue, Colour::None);
    QVERIFY(table.nameFor(Colour::None).isNull());
    QCOMPARE(table.valueFor(u"Red"_s), Colour::None);
}

void tst_VLEnumToStringTable::members_keep_their_order()
{
    const OpenTable table;
    QVERIFY(addressOf(table.nameToValue) < addressOf(table.valueToName));
    QVERIFY(addressOf(table.valueToName) < addressOf(table.fallbackName));
    QVERIFY(addressOf(table.fallbackName) < addressOf(table.fallbackValue));
}

void tst_VLEnumToStringTable::insert_fills_both_directions()
{
    OpenTable table;
    table.insert(u"Red"_s, Colour::Red);
    table.insert(u"Below"_s, Colour::Negative);
    QCOMPARE(table.nameFor(Colour::Red), u"Red"_s);
    QCOMPARE(table.nameFor(Colour::Negative), u"Below"_s);
    QCOMPARE(table.valueFor(u"Red"_s), Colour::Red);
    QCOMPARE(table.valueFor(u"Below"_s), Colour::Negative);
    QCOMPARE(table.nameToValue.size(), 2);
    QCOMPARE(table.valueToName.size(), 2);
}

void tst_VLEnumToStringTable::keys_are_lower_case_and_names_are_not()
{
    OpenTable table;
    table.insert(u"DarkRed"_s, Colour::Red);
    QCOMPARE(table.nameToValue.keys(), QStringList { u"darkred"_s });
    QCOMPARE(table.valueToName.values(), QStringList { u"DarkRed"_s });
}

void tst_VLEnumToStringTable::repeated_name_leads_to_the_newest_value()
{
    OpenTable table;
    table.insert(u"Warm"_s, Colour::Red);
    table.insert(u"Warm"_s, Colour::Green);
    QCOMPARE(table.valueFor(u"Warm"_s), Colour::Green);
    QCOMPARE(table.nameToValue.size(), 1);
    QCOMPARE(table.nameFor(Colour::Red), u"Warm"_s);
    QCOMPARE(table.nameFor(Colour::Green), u"Warm"_s);
}

void tst_VLEnumToStringTable::repeated_name_in_other_case_is_the_same_name()
{
    OpenTable table;
    table.insert(u"Warm"_s, Colour::Red);
    table.insert(u"WARM"_s, Colour::Green);
    QCOMPARE(table.valueFor(u"Warm"_s), Colour::Green);
    QCOMPARE(table.nameToValue.size(), 1);
    QCOMPARE(table.nameFor(Colour::Red), u"Warm"_s);
    QCOMPARE(table.nameFor(Colour::Green), u"WARM"_s);
}

void tst_VLEnumToStringTable::repeated_value_keeps_its_oldest_name()
{
    OpenTable table;
    table.insert(u"Blue"_s, Colour::Blue);
    table.insert(u"Azure"_s, Colour::Blue);
    QCOMPARE(table.nameFor(Colour::Blue), u"Blue"_s);
    QCOMPARE(table.valueToName.size(), 1);
    QCOMPARE(table.valueFor(u"Blue"_s), Colour::Blue);
    QCOMPARE(table.valueFor(u"Azure"_s), Colour::Blue);
}

void tst_VLEnumToStringTable::repeated_pair_changes_nothing()
{
    OpenTable table;
    table.insert(u"Blue"_s, Colour::Blue);
    table.insert(u"Blue"_s, Colour::Blue);
    QCOMPARE(table.nameToValue.size(), 1);
    QCOMPARE(table.valueToName.size(), 1);
    QCOMPARE(table.nameFor(Colour::Blue), u"Blue"_s);
}

void tst_VLEnumToStringTable::empty_name_is_a_name()
{
    OpenTable table;
    table.insert(u""_s, Colour::Red);
    table.insert(u"Red"_s, Colour::Red);
    QCOMPARE(table.nameFor(Colour::Red), u""_s);
    QCOMPARE(table.valueFor(QString()), Colour::Red);
}

void tst_VLEnumToStringTable::name_lookup_ignores_case_data()
{
    QTest::addColumn<QString>("inserted");
    QTest::addColumn<QString>("asked");

    QTest::newRow("as_inserted") << u"ProjectFolder"_s << u"ProjectFolder"_s;
    QTest::newRow("lower_case") << u"ProjectFolder"_s << u"projectfolder"_s;
    QTest::newRow("upper_case") << u"ProjectFolder"_s << u"PROJECTFOLDER"_s;
    QTest::newRow("mixed_case") << u"ProjectFolder"_s << u"pROJECTfOLDER"_s;
    QTest::newRow("umlaut") << u"\u00C4rger"_s << u"\u00E4RGER"_s;
    QTest::newRow("latin_i_in_every_language") << u"TITLE"_s << u"title"_s;
    QTest::newRow("outside_the_basic_plane") << u"\U00010400"_s << u"\U00010428"_s;
}

void tst_VLEnumToStringTable::name_lookup_ignores_case()
{
    QFETCH(const QString, inserted);
    QFETCH(const QString, asked);
    OpenTable table;
    table.insert(inserted, Colour::Green);
    QCOMPARE(table.valueFor(asked), Colour::Green);
    QCOMPARE(table.nameFor(Colour::Green), inserted);
}

void tst_VLEnumToStringTable::unknown_name_reads_as_zero_data()
{
    QTest::addColumn<QString>("asked");

    QTest::newRow("never_inserted") << u"Green"_s;
    QTest::newRow("start_of_a_name") << u"Re"_s;
    QTest::newRow("name_and_a_blank") << u"Red "_s;
    QTest::newRow("empty") << u""_s;
    QTest::newRow("null") << QString();
}

void tst_VLEnumToStringTable::unknown_name_reads_as_zero()
{
    QFETCH(const QString, asked);
    OpenTable table;
    table.insert(u"Red"_s, Colour::Red);
    QCOMPARE(table.valueFor(asked), Colour::None);
    QCOMPARE(table.nameToValue.size(), 1);
}

void tst_VLEnumToStringTable::unnamed_value_reads_as_null_string_data()
{
    QTest::addColumn<qint32>("asked");

    QTest::newRow("zero") << qint32(0);
    QTest::newRow("combination_of_named_values") << qint32(3);
    QTest::newRow("never_inserted") << qint32(64);
    QTest::newRow("negative") << qint32(-1);
}

void tst_VLEnumToStringTable::unnamed_value_reads_as_null_string()
{
    QFETCH(const qint32, asked);
    OpenTable table;
    table.insert(u"Red"_s, Colour::Red);
    table.insert(u"Green"_s, Colour::Green);
    QVERIFY(table.nameFor(static_cast<Colour>(asked)).isNull());
    QCOMPARE(table.valueToName.size(), 2);
}

void tst_VLEnumToStringTable::fallbacks_are_what_lookups_yield()
{
    OpenTable table;
    table.fallbackName = u"nothing"_s;
    table.fallbackValue = Colour::Blue;
    table.insert(u"Red"_s, Colour::Red);
    QCOMPARE(table.nameFor(Colour::Green), u"nothing"_s);
    QCOMPARE(table.nameFor(Colour::Red), u"Red"_s);
    QCOMPARE(table.valueFor(u"Green"_s), Colour::Blue);
    QCOMPARE(table.valueFor(u"Red"_s), Colour::Red);
}

QTEST_GUILESS_MAIN(tst_VLEnumToStringTable)
#include "tst_VLEnumToStringTable.moc"
