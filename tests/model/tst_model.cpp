#include <OpenTable.h>
#include <TestRows.h>
#include <WorkingDirectory.h>

#include <VLFolioEventClassifier/VLEventFolderClassificationResultList.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <initializer_list>
#include <limits>
#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Table = OpenTable<Type>;
using Result = VLEventFolderClassificationResult;
using ResultList = VLEventFolderClassificationResultList;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

QHash<QString, Type> sevenNames()
{
    return { { u"unknown"_s, Type::Unknown },
             { u"root"_s, Type::Root },
             { u"year"_s, Type::Year },
             { u"month"_s, Type::Month },
             { u"day"_s, Type::Day },
             { u"event"_s, Type::Event },
             { u"projectfolder"_s, Type::ProjectFolder } };
}

QHash<Type, QString> sevenValues()
{
    return { { Type::Unknown, u"Unknown"_s },
             { Type::Root, u"Root"_s },
             { Type::Year, u"Year"_s },
             { Type::Month, u"Month"_s },
             { Type::Day, u"Day"_s },
             { Type::Event, u"Event"_s },
             { Type::ProjectFolder, u"ProjectFolder"_s } };
}

VLEventFolderType type(qint32 number)
{
    return static_cast<Type>(number);
}

VLOccasionInfoList occasions(const QStringList& names)
{
    VLOccasionInfoList list;
    for (const QString& name : names)
        list.append(VLOccasionInfo(name, u"s"_s, 0.5));
    return list;
}

Result result(const QString& path, qint32 number, const QStringList& occasionNames = {})
{
    Result made(QFileInfo(path), type(number));
    made.setOccasionInformation(occasions(occasionNames));
    return made;
}

/// All that a result holds, "path=number occasions".
QString contentsOf(const Result& result)
{
    return result.directory().filePath() + u'='
        + QString::number(qint32(result.classification().value())) + u' '
        + result.occasionInformation().occasion();
}

/// All that a list of results holds, "path=number occasions" for each.
QString contentsOf(const ResultList& list)
{
    QStringList texts;
    for (const Result& result : list)
        texts.append(contentsOf(result).trimmed());
    return texts.join(u' ');
}

template <typename T>
constexpr bool isValueClass =
    std::conjunction_v<std::has_virtual_destructor<T>, std::is_default_constructible<T>,
                       std::is_copy_constructible<T>, std::is_copy_assignable<T>,
                       std::is_nothrow_move_constructible<T>, std::is_nothrow_move_assignable<T>>;

} // namespace

static_assert(qint32(Type::Unknown) == 0);
static_assert(qint32(Type::Root) == 1);
static_assert(qint32(Type::Year) == 2);
static_assert(qint32(Type::Month) == 4);
static_assert(qint32(Type::Day) == 8);
static_assert(qint32(Type::Event) == 16);
static_assert(qint32(Type::ProjectFolder) == 32);
static_assert(std::is_same_v<std::underlying_type_t<Type>, qint32>);
static_assert(!std::is_convertible_v<Type, qint32>, "a scoped enumeration");

static_assert(isValueClass<VLEventFolderType>);
static_assert(std::is_convertible_v<VLEventFolderType*, VLEnumWrapper<Type>*>);
static_assert(sizeof(VLEventFolderType) == sizeof(VLEnumWrapper<Type>), "adds no data");
static_assert(!std::is_abstract_v<VLEventFolderType>);
static_assert(std::is_convertible_v<Type, VLEventFolderType>);
static_assert(!std::is_constructible_v<VLEventFolderType, qint32>);
static_assert(!std::is_constructible_v<Type, VLEventFolderType>);
static_assert(!std::is_constructible_v<bool, VLEventFolderType>);

static_assert(isValueClass<VLOccasionInfo>);
static_assert(isValueClass<VLOccasionInfoList>);
static_assert(std::is_nothrow_default_constructible_v<VLOccasionInfoList>);
static_assert(std::is_convertible_v<VLOccasionInfoList*, QList<VLOccasionInfo>*>);
static_assert(sizeof(VLOccasionInfoList) == sizeof(void*) + sizeof(QList<VLOccasionInfo>));

static_assert(isValueClass<Result>);
static_assert(isValueClass<ResultList>);
static_assert(std::is_nothrow_default_constructible_v<ResultList>);
static_assert(std::is_convertible_v<ResultList*, QList<Result>*>);
static_assert(sizeof(ResultList) == sizeof(void*) + sizeof(QList<Result>), "adds no data");
static_assert(std::is_convertible_v<QList<Result>, ResultList>);
static_assert(std::is_convertible_v<std::initializer_list<Result>, ResultList>);
// Neither changes the list, yet both ask for one that may be changed.
static_assert(std::is_same_v<decltype(&ResultList::filtered),
                             ResultList (ResultList::*)(const VLEventFolderType&)>);
static_assert(std::is_same_v<decltype(&ResultList::toString), QString (ResultList::*)()>);

class tst_model : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::system()); }

    void typeIsUnknownUnlessGiven();
    void nameOfType_data();
    void nameOfType();
    void tableOfTypesHoldsSevenNamesBothWays();

    void occasionStoresWhatItIsGiven();
    void occasionIsEmptyUnlessGiven();
    void occasionDescription_data();
    void occasionDescription();
    void occasionEquality_data();
    void occasionEquality();
    void confidencesAreComparedAsNumbers();
    void occasionListTexts_data();
    void occasionListTexts();

    void resultIsEmptyUnlessGiven();
    void resultHasTheOccasionsLastSet();
    void resultEquality_data();
    void resultEquality();
    void resultsWithoutDirectoryDifferUnlessCopied();
    void resultIsExpandedToMoreFlags_data();
    void resultIsExpandedToMoreFlags();
    void renderedResult_data();
    void renderedResult();
    void relativeDirectoriesAreShownAbsolute();

    void listOfOtherResults();
    void listHasRoomForExactlyTheGivenResults();
    void filtered_data();
    void filtered();
    void listText_data();
    void listText();
};

void tst_model::typeIsUnknownUnlessGiven()
{
    QCOMPARE(VLEventFolderType().value(), Type::Unknown);
    const VLEventFolderType month = Type::Month;
    QCOMPARE(month.value(), Type::Month);
    QCOMPARE(qint32(type(63).value()), 63);
}

void tst_model::nameOfType_data()
{
    const TestRows<qint32, QString> row("number", "name");
    row("unknown", 0, u"Unknown"_s);
    row("root", 1, u"Root"_s);
    row("year", 2, u"Year"_s);
    row("month", 4, u"Month"_s);
    row("day", 8, u"Day"_s);
    row("event", 16, u"Event"_s);
    row("project_folder", 32, u"ProjectFolder"_s);
    row("combination_has_no_name", 18, {});
    row("number_beyond_the_flags", 64, {});
}

void tst_model::nameOfType()
{
    QFETCH(const qint32, number);
    QFETCH(const QString, name);
    const QString found = VLEventFolderType().enumToStringTable()->nameFor(Type(number));
    QCOMPARE(found, name);
    QCOMPARE(found.isNull(), name.isNull());
    QCOMPARE(type(number).name(), name);
}

void tst_model::tableOfTypesHoldsSevenNamesBothWays()
{
    const auto* const shared = type(18).enumToStringTable();
    QCOMPARE(VLEventFolderType().enumToStringTable(), shared);
    QCOMPARE(TableMaps<Type>::namesOf(*shared), sevenNames());
    QCOMPARE(TableMaps<Type>::valuesOf(*shared), sevenValues());
    QCOMPARE(shared->valueFor(u"PROJECTFOLDER"_s), Type::ProjectFolder);
    QCOMPARE(shared->valueFor(u"Holiday"_s), Type::Unknown);

    Table own;
    type(18).fillTable(&own);
    QCOMPARE(own.nameToValue, sevenNames());
    QCOMPARE(own.valueToName, sevenValues());
}

void tst_model::occasionStoresWhatItIsGiven()
{
    for (const double confidence : { 0.1234567890123456, -3.5, infinite }) {
        const VLOccasionInfo info(u" a\n"_s, u"\tb "_s, confidence);
        QCOMPARE(info.occasion(), u" a\n"_s);
        QCOMPARE(info.source(), u"\tb "_s);
        QVERIFY(info.confidence() == confidence);
    }
    QVERIFY(qIsNaN(VLOccasionInfo(u"a"_s, u"b"_s, notANumber).confidence()));
}

void tst_model::occasionIsEmptyUnlessGiven()
{
    const VLOccasionInfo info;
    QCOMPARE(info.occasion(), QString());
    QCOMPARE(info.source(), QString());
    QVERIFY(info.confidence() == 0.0);
    QCOMPARE(info.description(), u" (0, )"_s);
}

void tst_model::occasionDescription_data()
{
    const TestRows<QString, QString, double, QString> row("occasion", "source", "confidence",
                                                          "description");
    row("usual", u"Birthday"_s, u"Calendar"_s, 0.9, u"Birthday (0.9, Calendar)"_s);
    row("one_has_no_point", u"o"_s, u"s"_s, 1.0, u"o (1, s)"_s);
    row("small_number_has_an_exponent", u"o"_s, u"s"_s, 0.000012, u"o (1.2e-05, s)"_s);
    row("smallest_without_exponent", u"o"_s, u"s"_s, 0.0001, u"o (0.0001, s)"_s);
    row("seven_digits_are_rounded_up", u"o"_s, u"s"_s, 0.1234567, u"o (0.123457, s)"_s);
    row("seven_digits_are_rounded_down", u"o"_s, u"s"_s, 0.1234561, u"o (0.123456, s)"_s);
    row("seven_digits_before_the_point", u"o"_s, u"s"_s, 1234567.0, u"o (1.23457e+06, s)"_s);
    row("thousands_are_not_grouped", u"o"_s, u"s"_s, 12345.0, u"o (12345, s)"_s);
    row("negative", u"o"_s, u"s"_s, -0.5, u"o (-0.5, s)"_s);
    row("not_a_number", u"o"_s, u"s"_s, notANumber, u"o (nan, s)"_s);
    row("placeholders_in_the_occasion_stay", u"%1 %2 %3"_s, u"s"_s, 0.5, u"%1 %2 %3 (0.5, s)"_s);
    row("placeholders_in_the_source_stay", u"o"_s, u"%1 %L1"_s, 0.5, u"o (0.5, %1 %L1)"_s);
    row("non_latin", u"\u8A95\u751F"_s, u"Gr\u00FC\u00DFe"_s, 0.5,
        u"\u8A95\u751F (0.5, Gr\u00FC\u00DFe)"_s);
    row("separators_stay", u"a; b\n"_s, u"c, d)"_s, 0.5, u"a; b\n (0.5, c, d))"_s);
}

// Whatever the default locale is: the Arabic one has other digits and another point.
void tst_model::occasionDescription()
{
    QFETCH(const QString, occasion);
    QFETCH(const QString, source);
    QFETCH(const double, confidence);
    const VLOccasionInfo info(occasion, source, confidence);
    QTEST(info.description(), "description");
    for (const QLocale::Language language : { QLocale::German, QLocale::Arabic }) {
        QLocale::setDefault(QLocale(language));
        QTEST(info.description(), "description");
    }
}

void tst_model::occasionEquality_data()
{
    const TestRows<VLOccasionInfo, bool> row("other", "equal");
    row("same_values", { u"Birthday"_s, u"Calendar"_s, 0.9 }, true);
    row("other_confidence", { u"Birthday"_s, u"Calendar"_s, 0.8 }, false);
    row("next_confidence", { u"Birthday"_s, u"Calendar"_s, 0.90000000000000013 }, false);
    row("other_occasion", { u"Party"_s, u"Calendar"_s, 0.9 }, false);
    row("other_case_of_occasion", { u"birthday"_s, u"Calendar"_s, 0.9 }, false);
    row("other_source", { u"Birthday"_s, u"Tags"_s, 0.9 }, false);
    row("other_case_of_source", { u"Birthday"_s, u"calendar"_s, 0.9 }, false);
    row("occasion_and_source_swapped", { u"Calendar"_s, u"Birthday"_s, 0.9 }, false);
}

void tst_model::occasionEquality()
{
    QFETCH(const VLOccasionInfo, other);
    QFETCH(const bool, equal);
    const VLOccasionInfo usual(u"Birthday"_s, u"Calendar"_s, 0.9);
    QCOMPARE(usual == other, equal);
    QCOMPARE(other == usual, equal);
}

void tst_model::confidencesAreComparedAsNumbers()
{
    const auto info = [](double confidence) { return VLOccasionInfo(u"a"_s, u"b"_s, confidence); };
    QVERIFY(info(0.0) == info(-0.0));
    QVERIFY(info(infinite) == info(infinite));
    const VLOccasionInfo unknown = info(notANumber);
    const VLOccasionInfo& same = unknown;
    QVERIFY(!(unknown == same));
}

void tst_model::occasionListTexts_data()
{
    const TestRows<QStringList, QString, QString> row("occasions", "occasion", "description");
    row("empty_list_has_no_data", {}, u""_s, u"no Data"_s);
    row("one_record_has_no_separator", { u"A"_s }, u"A"_s, u"A (0.5, s)"_s);
    row("two_records", { u"A"_s, u"B"_s }, u"A,B"_s, u"A (0.5, s); B (0.5, s)"_s);
    row("order_and_repeats_are_kept", { u"B"_s, u"A"_s, u"B"_s }, u"B,A,B"_s,
        u"B (0.5, s); A (0.5, s); B (0.5, s)"_s);
    row("one_empty_occasion_is_data", { u""_s }, u""_s, u" (0.5, s)"_s);
    row("empty_occasions_keep_their_place", { u""_s, u"A"_s, u""_s }, u",A,"_s,
        u" (0.5, s); A (0.5, s);  (0.5, s)"_s);
    row("separators_and_placeholders_stay", { u"%2,B"_s, u"C; %1"_s }, u"%2,B,C; %1"_s,
        u"%2,B (0.5, s); C; %1 (0.5, s)"_s);
}

void tst_model::occasionListTexts()
{
    QFETCH(const QStringList, occasions);
    const VLOccasionInfoList list = ::occasions(occasions);
    QCOMPARE(list.occasions(), occasions);
    QCOMPARE(list.occassions(), occasions);
    QTEST(list.occasion(), "occasion");
    QTEST(list.description(), "description");
    QStringList descriptions;
    for (const QString& name : occasions)
        descriptions.append(name + u" (0.5, s)"_s);
    QCOMPARE(list.descriptions(), descriptions);
}

void tst_model::resultIsEmptyUnlessGiven()
{
    const Result empty;
    QCOMPARE(contentsOf(empty), u"=0 "_s);
    QCOMPARE(empty.directory().absoluteFilePath(), QString());
    QCOMPARE(empty.occasionInformation().description(), u"no Data"_s);
    QCOMPARE(contentsOf(Result(QFileInfo(u"/vl/2023/07"_s), Type::Month)), u"/vl/2023/07=4 "_s);
}

void tst_model::resultHasTheOccasionsLastSet()
{
    Result event(QFileInfo(u"/vl"_s), Type::Event);
    event.setOccasionInformation(occasions({ u"A"_s, u"B"_s }));
    QCOMPARE(contentsOf(event), u"/vl=16 A,B"_s);
    event.setOccasionInformation(occasions({ u"C"_s }));
    QCOMPARE(contentsOf(event), u"/vl=16 C"_s);
    event.setOccasionInformation(event.occasionInformation());
    QCOMPARE(contentsOf(event), u"/vl=16 C"_s);
    event.setOccasionInformation(VLOccasionInfoList());
    QCOMPARE(contentsOf(event), u"/vl=16 "_s);
}

void tst_model::resultEquality_data()
{
    const TestRows<QString, qint32, QString, qint32, bool> row("left", "leftType", "right",
                                                               "rightType", "equal");
    row("same_type", u"one"_s, 16, u"one"_s, 16, true);
    row("unknown_twice", u"one"_s, 0, u"one"_s, 0, true);
    row("different_types", u"one"_s, 16, u"one"_s, 2, false);
    row("flag_and_its_combination", u"one"_s, 16, u"one"_s, 18, false);
    row("different_directories", u"one"_s, 16, u"two"_s, 16, false);
    row("directory_and_its_parent", u"one"_s, 16, u"."_s, 16, false);
    row("trailing_slash", u"one"_s, 16, u"one/"_s, 16, true);
    row("detour", u"one"_s, 16, u"two/../one"_s, 16, true);
    row("through_a_link", u"one"_s, 16, u"link"_s, 16, true);
    row("below_a_link", u"one/sub"_s, 16, u"link/sub"_s, 16, true);
    row("through_a_link_with_another_type", u"one"_s, 16, u"link"_s, 8, false);
    row("two_that_do_not_exist", u"missing"_s, 16, u"gone"_s, 16, true);
    row("one_that_does_not_exist", u"one"_s, 16, u"missing"_s, 16, false);
    row("dangling_link_and_missing", u"dangling"_s, 16, u"missing"_s, 16, true);
}

// The occasions, which differ each time, take no part in it.
void tst_model::resultEquality()
{
    QFETCH(const QString, left);
    QFETCH(const qint32, leftType);
    QFETCH(const QString, right);
    QFETCH(const qint32, rightType);
    QFETCH(const bool, equal);
    const QTemporaryDir base;
    const QDir tree(base.path());
    QVERIFY(tree.mkpath(u"one/sub"_s));
    QVERIFY(tree.mkdir(u"two"_s));
    QVERIFY(QFile::link(u"one"_s, base.filePath(u"link"_s)));
    QVERIFY(QFile::link(u"nowhere"_s, base.filePath(u"dangling"_s)));

    const Result a = result(base.filePath(left), leftType, { u"A"_s });
    const Result b = result(base.filePath(right), rightType, { u"B"_s });
    QCOMPARE(a == b, equal);
    QCOMPARE(b == a, equal);
}

void tst_model::resultsWithoutDirectoryDifferUnlessCopied()
{
    const Result original;
    const Result copied = original;
    QVERIFY(copied == original);
    QVERIFY(!(original == Result()));
    QVERIFY(!(original == result(u"/"_s, 0)));
    QVERIFY(!(result(u"/vl/missing"_s, 0) == original));
}

void tst_model::resultIsExpandedToMoreFlags_data()
{
    const TestRows<qint32, qint32, qint32> row("before", "by", "after");
    row("event_is_added_to_year", 2, 16, 18);
    row("flag_that_it_has", 18, 16, 18);
    row("combination_is_added", 1, 18, 19);
    row("unknown_adds_nothing", 2, 0, 2);
    row("unknown_is_expanded", 0, 16, 16);
}

void tst_model::resultIsExpandedToMoreFlags()
{
    QFETCH(const qint32, before);
    QFETCH(const qint32, by);
    QFETCH(const qint32, after);
    Result expanded = result(u"/vl"_s, before, { u"A"_s });
    for (int time = 0; time < 2; ++time) {
        expanded.expandTo(type(by));
        QCOMPARE(contentsOf(expanded), u"/vl=%1 A"_s.arg(after));
    }
}

void tst_model::renderedResult_data()
{
    const TestRows<QString, qint32, int, QString> row("path", "number", "prefixLength", "line");
    const QString july = u"/vl/2023/07"_s;
    row("unknown_fills_the_field", july, 0, 4, u"Unknown <= 2023/07"_s);
    row("shorter_name_is_padded_in_front", july, 1, 4, u"   Root <= 2023/07"_s);
    row("longer_name_is_not_cut", july, 32, 4, u"ProjectFolder <= 2023/07"_s);
    row("combination_has_seven_blanks", july, 18, 4, u"        <= 2023/07"_s);

    row("no_prefix", july, 4, 0, u"  Month <= /vl/2023/07"_s);
    row("all_but_one", july, 4, 10, u"  Month <= 7"_s);
    row("prefix_as_long_as_the_path", july, 4, 11, u"  Month <= "_s);
    row("prefix_longer_than_the_path", july, 4, 12, u"  Month <= "_s);
    row("negative_prefix_keeps_the_path", july, 4, -1, u"  Month <= /vl/2023/07"_s);
    row("prefix_counts_utf_16_units", u"/\U0001F4F7/a"_s, 16, 2,
        u"  Event <= "_s + QChar(0xDCF7) + u"/a"_s);

    row("placeholder_1_takes_the_name", u"/vl/a%1b"_s, 16, 4, u"%2 <= a  Eventb"_s);
    row("placeholder_2_takes_it_as_well", u"/vl/a%2b"_s, 16, 4, u"  Event <= a  Eventb"_s);
    row("placeholder_3_stays", u"/vl/a%3b"_s, 16, 4, u"  Event <= a%3b"_s);
    row("localised_placeholder_1", u"/vl/a%L1b"_s, 16, 4, u"%2 <= a  Eventb"_s);
    row("lowest_number_only", u"/vl/%0%1%2"_s, 16, 4, u"%2 <=   Event%1%2"_s);
    row("placeholder_takes_no_name_of_a_combination", u"/vl/a%1b"_s, 18, 4, u"%2 <= a       b"_s);
    row("placeholder_in_front_of_the_cut", u"/%1/x"_s, 16, 4, u"  Event <= x"_s);
    row("percent_sign_alone", u"/vl/100%"_s, 16, 4, u"  Event <= 100%"_s);

    row("markup_and_line_feed", u"/vl/<b>&\nb"_s, 16, 4, u"  Event <= <b>&\nb"_s);
    row("non_latin", u"/vl/\u5199\u771F"_s, 16, 4, u"  Event <= \u5199\u771F"_s);
    row("trailing_slash_stays", u"/vl/a/"_s, 16, 4, u"  Event <= a/"_s);
    row("detours_are_cleaned", u"/vl/b/../a"_s, 16, 4, u"  Event <= a"_s);
    row("doubled_slashes_are_cleaned", u"/vl//a"_s, 16, 4, u"  Event <= a"_s);
    row("root_of_the_file_system", u"/"_s, 1, 0, u"   Root <= /"_s);
    row("no_directory", u""_s, 0, 17, u"Unknown <= "_s);
}

void tst_model::renderedResult()
{
    QFETCH(const QString, path);
    QFETCH(const qint32, number);
    QFETCH(const int, prefixLength);
    const Result rendered = result(path, number, { u"A"_s });
    QTEST(rendered.render(prefixLength), "line");
    QCOMPARE(contentsOf(rendered), u"%1=%2 A"_s.arg(path, QString::number(number)));
}

void tst_model::relativeDirectoriesAreShownAbsolute()
{
    const WorkingDirectory top(u"/"_s);
    QCOMPARE(result(u"vl/2023"_s, 2).render(4), u"   Year <= 2023"_s);
    ResultList list { result(u"vl/a"_s, 16), result(u"./b"_s, 0) };
    QCOMPARE(list.toString(), u"/vl/a\n/b"_s);
}

void tst_model::listOfOtherResults()
{
    QVERIFY(ResultList().isEmpty());
    QList<Result> plain { result(u"/b"_s, 16), result(u"/a"_s, 2), result(u"/b"_s, 16) };
    const ResultList converted = plain;
    plain.removeLast();
    QCOMPARE(contentsOf(converted), u"/b=16 /a=2 /b=16"_s);
    QCOMPARE(contentsOf(ResultList { plain.at(1), plain.at(0), plain.at(1) }),
             u"/a=2 /b=16 /a=2"_s);
    QVERIFY(ResultList(std::initializer_list<Result> {}).isEmpty());
}

void tst_model::listHasRoomForExactlyTheGivenResults()
{
    const Result one = result(u"/a"_s, 2);
    QCOMPARE(ResultList(std::initializer_list<Result> {}).capacity(), 0);
    // A list that grows has room for more than two, and for more than five.
    QCOMPARE((ResultList { one, one }).capacity(), 2);
    QCOMPARE((ResultList { one, one, one, one, one }).capacity(), 5);
}

void tst_model::filtered_data()
{
    const ResultList mixed { result(u"/c"_s, 16, { u"A"_s }), result(u"/b"_s, 18),
                             result(u"/a"_s, 16) };
    const ResultList untyped { result(u"/r"_s, 1), result(u"/u"_s, 0), result(u"/u"_s, 0) };
    const TestRows<ResultList, qint32, QString> row("list", "number", "contents");
    row("empty_list", {}, 0, u""_s);
    row("flag_leaves_out_its_combination", mixed, 16, u"/c=16 A /a=16"_s);
    row("combination_leaves_out_its_flags", mixed, 18, u"/b=18"_s);
    row("other_flag_of_the_combination", mixed, 2, u""_s);
    row("unknown_where_all_have_a_type", mixed, 0, u""_s);
    row("unknown_gives_those_without_a_type", untyped, 0, u"/u=0 /u=0"_s);
}

void tst_model::filtered()
{
    QFETCH(ResultList, list);
    QFETCH(const qint32, number);
    const QString before = contentsOf(list);
    QTEST(contentsOf(list.filtered(type(number))), "contents");
    QCOMPARE(contentsOf(list), before);
}

void tst_model::listText_data()
{
    const TestRows<QStringList, QString> row("paths", "text");
    row("empty_list", {}, u""_s);
    row("one_has_no_line_feed", { u"/vl/a"_s }, u"/vl/a"_s);
    row("three_have_two_line_feeds", { u"/vl/b"_s, u"/vl/a"_s, u"/vl/a"_s },
        u"/vl/b\n/vl/a\n/vl/a"_s);
    row("line_feed_and_placeholder_stay", { u"/vl/%1\nb"_s, u"/vl/c"_s }, u"/vl/%1\nb\n/vl/c"_s);
    row("trailing_slash_stays", { u"/vl/a/"_s }, u"/vl/a/"_s);
    row("detours_are_cleaned", { u"/vl/b/../a"_s }, u"/vl/a"_s);
    row("no_directory", { u"/a"_s, u""_s, u"/b"_s }, u"/a\n\n/b"_s);
}

void tst_model::listText()
{
    QFETCH(const QStringList, paths);
    ResultList list;
    for (const QString& path : paths)
        list.append(result(path, 16));
    QTEST(list.toString(), "text");
    QCOMPARE(list.size(), paths.size());
}

QTEST_GUILESS_MAIN(tst_model)
#include "tst_model.moc"
