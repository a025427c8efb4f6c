#include <VLFolioEventClassifier/VLEventFolderClassificationResultList.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QScopeGuard>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <initializer_list>
#include <limits>
#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Table = VLEnumToStringTable<Type>;
using Result = VLEventFolderClassificationResult;
using ResultList = VLEventFolderClassificationResultList;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

/// Shows the maps of a table, which only derived classes see.
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
};

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

/// All that a list of results without occasions holds, "path=number" for each.
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
    void typeIsValidUnlessUnknown_data();
    void typeIsValidUnlessUnknown();
    void typesAreOrderedByTheirNumbers();
    void nameOfType_data();
    void nameOfType();
    void tableOfTypesHoldsSevenNamesBothWays();
    void filledTableKeepsWhatAValueWasCalledBefore();

    void occasionStoresWhatItIsGiven_data();
    void occasionStoresWhatItIsGiven();
    void occasionIsEmptyUnlessGiven();
    void occasionDescription_data();
    void occasionDescription();
    void occasionEquality_data();
    void occasionEquality();
    void occasionWithoutANumberDiffersFromItself();
    void occasionListTexts_data();
    void occasionListTexts();
    void occasionListDescribesEachRecord();

    void resultIsEmptyUnlessGiven();
    void resultHasTheOccasionsLastSet();
    void copiesAreIndependentAndMovedValuesArrive();
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
    void filteredResultsAreWholeCopies();
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

void tst_model::typeIsValidUnlessUnknown_data()
{
    QTest::addColumn<qint32>("number");
    QTest::addColumn<bool>("valid");

    QTest::newRow("unknown") << 0 << false;
    QTest::newRow("root") << 1 << true;
    QTest::newRow("root_and_year") << 3 << true;
    QTest::newRow("event_and_project_folder") << 48 << true;
}

void tst_model::typeIsValidUnlessUnknown()
{
    QFETCH(const qint32, number);
    QTEST(type(number).isValid(), "valid");
}

void tst_model::typesAreOrderedByTheirNumbers()
{
    // Combinations stand between the flags: 3 behind Year, 18 behind Event.
    const QList<VLEventFolderType> rising { Type::Unknown, Type::Root,  Type::Year,
                                            type(3),       Type::Month, Type::Day,
                                            Type::Event,   type(18),    Type::ProjectFolder };
    for (qsizetype left = 0; left < rising.size(); ++left) {
        for (qsizetype right = 0; right < rising.size(); ++right) {
            QCOMPARE(rising[left] < rising[right], left < right);
            QCOMPARE(rising[left] == rising[right], left == right);
        }
    }
    QVERIFY(type(18) != Type::Event);
    QCOMPARE(type(18).reducedTo(Type::Event), Type::Event);
    QCOMPARE(type(2).reducedTo(Type::Event), Type::Unknown);
}

void tst_model::nameOfType_data()
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
    const Table* const shared = type(18).enumToStringTable();
    QCOMPARE(VLEventFolderType().enumToStringTable(), shared);
    QCOMPARE(OpenTable::namesOf(*shared), sevenNames());
    QCOMPARE(OpenTable::valuesOf(*shared), sevenValues());
    QCOMPARE(shared->valueFor(u"PROJECTFOLDER"_s), Type::ProjectFolder);
    QCOMPARE(shared->valueFor(u"Holiday"_s), Type::Unknown);

    Table own;
    type(18).fillTable(&own);
    QCOMPARE(OpenTable::namesOf(own), sevenNames());
    QCOMPARE(OpenTable::valuesOf(own), sevenValues());
}

void tst_model::filledTableKeepsWhatAValueWasCalledBefore()
{
    Table table;
    table.insert(u"Party"_s, Type::Event);
    VLEventFolderType().fillTable(&table);
    QCOMPARE(table.nameFor(Type::Event), u"Party"_s);
    QCOMPARE(table.valueFor(u"Event"_s), Type::Event);
}

void tst_model::occasionStoresWhatItIsGiven_data()
{
    QTest::addColumn<QString>("occasion");
    QTest::addColumn<QString>("source");
    QTest::addColumn<double>("confidence");

    QTest::newRow("usual") << u"Birthday"_s << u"Calendar"_s << 0.9;
    QTest::newRow("blanks_and_line_feeds") << u" a\n"_s << u"\tb "_s << 0.5;
    QTest::newRow("negative") << u"a"_s << u"b"_s << -3.5;
    QTest::newRow("above_one") << u"a"_s << u"b"_s << 1234.5;
    QTest::newRow("infinite") << u"a"_s << u"b"_s << infinite;
    QTest::newRow("not_a_number") << u"a"_s << u"b"_s << notANumber;
    QTest::newRow("all_digits") << u"a"_s << u"b"_s << 0.1234567890123456;
}

void tst_model::occasionStoresWhatItIsGiven()
{
    QFETCH(const QString, occasion);
    QFETCH(const QString, source);
    QFETCH(const double, confidence);
    const VLOccasionInfo info(occasion, source, confidence);
    QCOMPARE(info.occasion(), occasion);
    QCOMPARE(info.source(), source);
    QVERIFY(info.confidence() == confidence || (qIsNaN(info.confidence()) && qIsNaN(confidence)));
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
    QTest::addColumn<QString>("occasion");
    QTest::addColumn<QString>("source");
    QTest::addColumn<double>("confidence");
    QTest::addColumn<QString>("description");

    QTest::newRow("usual") << u"Birthday"_s << u"Calendar"_s << 0.9
                           << u"Birthday (0.9, Calendar)"_s;
    const auto number = [](const char* name, double confidence, const QString& description) {
        QTest::newRow(name) << u"o"_s << u"s"_s << confidence << description;
    };
    number("two_digits", 0.85, u"o (0.85, s)"_s);
    number("one_has_no_point", 1.0, u"o (1, s)"_s);
    number("small_number_has_an_exponent", 0.000012, u"o (1.2e-05, s)"_s);
    number("smallest_without_exponent", 0.0001, u"o (0.0001, s)"_s);
    number("seven_digits_are_rounded_up", 0.1234567, u"o (0.123457, s)"_s);
    number("seven_digits_are_rounded_down", 0.1234561, u"o (0.123456, s)"_s);
    number("rounded_up_to_one", 0.9999999, u"o (1, s)"_s);
    number("six_digits_before_the_point", 123456.7, u"o (123457, s)"_s);
    number("seven_digits_before_the_point", 1234567.0, u"o (1.23457e+06, s)"_s);
    number("thousands_are_not_grouped", 12345.0, u"o (12345, s)"_s);
    number("negative", -0.5, u"o (-0.5, s)"_s);
    number("infinite", infinite, u"o (inf, s)"_s);
    number("not_a_number", notANumber, u"o (nan, s)"_s);

    const auto text = [](const char* name, const QString& occasion, const QString& source,
                         const QString& description) {
        QTest::newRow(name) << occasion << source << 0.5 << description;
    };
    text("placeholders_in_the_occasion_stay", u"%1 %2 %3"_s, u"s"_s, u"%1 %2 %3 (0.5, s)"_s);
    text("placeholders_in_the_source_stay", u"o"_s, u"%1 %2 %3"_s, u"o (0.5, %1 %2 %3)"_s);
    text("other_placeholders_stay", u"%0 %4 %%"_s, u"%L1 %99"_s, u"%0 %4 %% (0.5, %L1 %99)"_s);
    text("non_latin", u"\u8A95\u751F"_s, u"Gr\u00FC\u00DFe"_s,
         u"\u8A95\u751F (0.5, Gr\u00FC\u00DFe)"_s);
    text("separators_and_line_feeds_stay", u"a; b\n"_s, u"c, d)"_s, u"a; b\n (0.5, c, d))"_s);
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
    QTest::addColumn<VLOccasionInfo>("left");
    QTest::addColumn<VLOccasionInfo>("right");
    QTest::addColumn<bool>("equal");

    const VLOccasionInfo usual(u"Birthday"_s, u"Calendar"_s, 0.9);
    const auto with = [&usual](const char* name, const QString& occasion, const QString& source,
                               double confidence, bool equal) {
        QTest::newRow(name) << usual << VLOccasionInfo(occasion, source, confidence) << equal;
    };
    with("same_values", u"Birthday"_s, u"Calendar"_s, 0.9, true);
    with("other_confidence", u"Birthday"_s, u"Calendar"_s, 0.8, false);
    with("next_confidence", u"Birthday"_s, u"Calendar"_s, 0.90000000000000013, false);
    with("other_occasion", u"Party"_s, u"Calendar"_s, 0.9, false);
    with("other_case_of_occasion", u"birthday"_s, u"Calendar"_s, 0.9, false);
    with("other_source", u"Birthday"_s, u"Tags"_s, 0.9, false);
    with("other_case_of_source", u"Birthday"_s, u"calendar"_s, 0.9, false);
    with("occasion_and_source_swapped", u"Calendar"_s, u"Birthday"_s, 0.9, false);

    QTest::newRow("null_and_empty_texts")
        << VLOccasionInfo() << VLOccasionInfo(u""_s, u""_s, 0.0) << true;
    QTest::newRow("composed_and_decomposed_letter")
        << VLOccasionInfo(u"\u00FC"_s, u""_s, 0.5) << VLOccasionInfo(u"u\u0308"_s, u""_s, 0.5)
        << false;
    const auto numbers = [](const char* name, double left, double right, bool equal) {
        QTest::newRow(name) << VLOccasionInfo(u"a"_s, u"b"_s, left)
                            << VLOccasionInfo(u"a"_s, u"b"_s, right) << equal;
    };
    numbers("zero_and_negative_zero", 0.0, -0.0, true);
    numbers("infinite", infinite, infinite, true);
    numbers("not_a_number", notANumber, notANumber, false);
    numbers("sum_that_is_not_exact", 0.30000000000000004, 0.3, false);
}

void tst_model::occasionEquality()
{
    QFETCH(const VLOccasionInfo, left);
    QFETCH(const VLOccasionInfo, right);
    QFETCH(const bool, equal);
    QCOMPARE(left == right, equal);
    QCOMPARE(right == left, equal);
}

void tst_model::occasionWithoutANumberDiffersFromItself()
{
    const VLOccasionInfo info(u"a"_s, u"b"_s, notANumber);
    const VLOccasionInfo& same = info;
    QVERIFY(!(info == same));
}

void tst_model::occasionListTexts_data()
{
    QTest::addColumn<QStringList>("occasions");
    QTest::addColumn<QString>("occasion");
    QTest::addColumn<QString>("description");

    QTest::newRow("empty_list_has_no_data") << QStringList() << u""_s << u"no Data"_s;
    QTest::newRow("one_record_has_no_separator")
        << QStringList { u"A"_s } << u"A"_s << u"A (0.5, s)"_s;
    QTest::newRow("two_records") << QStringList { u"A"_s, u"B"_s } << u"A,B"_s
                                 << u"A (0.5, s); B (0.5, s)"_s;
    QTest::newRow("order_and_repeats_are_kept")
        << QStringList { u"B"_s, u"A"_s, u"B"_s } << u"B,A,B"_s
        << u"B (0.5, s); A (0.5, s); B (0.5, s)"_s;
    QTest::newRow("one_empty_occasion_is_data") << QStringList { u""_s } << u""_s << u" (0.5, s)"_s;
    QTest::newRow("empty_occasions_keep_their_place")
        << QStringList { u""_s, u"A"_s, u""_s } << u",A,"_s
        << u" (0.5, s); A (0.5, s);  (0.5, s)"_s;
    QTest::newRow("separators_and_placeholders_stay")
        << QStringList { u"%2,B"_s, u"C; %1"_s } << u"%2,B,C; %1"_s
        << u"%2,B (0.5, s); C; %1 (0.5, s)"_s;
}

void tst_model::occasionListTexts()
{
    QFETCH(const QStringList, occasions);
    const VLOccasionInfoList list = ::occasions(occasions);
    QCOMPARE(list.occasions(), occasions);
    QCOMPARE(list.occassions(), occasions);
    QTEST(list.occasion(), "occasion");
    QTEST(list.description(), "description");
    QCOMPARE(list.descriptions().size(), occasions.size());
}

void tst_model::occasionListDescribesEachRecord()
{
    VLOccasionInfoList list;
    list.append(VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.9));
    list.append(VLOccasionInfo(u"Party"_s, u"Tags"_s, 0.1234567));
    list.append(VLOccasionInfo());
    const QStringList expected { u"Birthday (0.9, Calendar)"_s, u"Party (0.123457, Tags)"_s,
                                 u" (0, )"_s };
    QCOMPARE(list.descriptions(), expected);
    QCOMPARE(list.description(), expected.join(u"; "_s));
    QCOMPARE(list.occasion(), u"Birthday,Party,"_s);
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

void tst_model::copiesAreIndependentAndMovedValuesArrive()
{
    Result original = result(u"/vl"_s, 2, { u"A"_s });
    const Result copied = original;
    Result assigned;
    assigned = original;
    original.expandTo(Type::Event);
    original.setOccasionInformation(occasions({ u"B"_s }));
    QCOMPARE(contentsOf(copied), u"/vl=2 A"_s);
    QCOMPARE(contentsOf(assigned), u"/vl=2 A"_s);
    const Result moved = std::move(original);
    QCOMPARE(contentsOf(moved), u"/vl=18 B"_s);
    original = std::move(assigned);
    QCOMPARE(contentsOf(original), u"/vl=2 A"_s);

    ResultList list { moved, original };
    ResultList copiedList = list;
    QVERIFY(copiedList.isSharedWith(list));
    list.removeLast();
    QCOMPARE(copiedList.size(), 2);
    list = std::move(copiedList);
    QCOMPARE(list.size(), 2);
}

void tst_model::resultEquality_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<qint32>("leftType");
    QTest::addColumn<QString>("right");
    QTest::addColumn<qint32>("rightType");
    QTest::addColumn<bool>("equal");

    const auto types = [](const char* name, qint32 left, qint32 right, bool equal) {
        QTest::newRow(name) << u"one"_s << left << u"one"_s << right << equal;
    };
    types("same_type", 16, 16, true);
    types("same_combination", 18, 18, true);
    types("unknown_twice", 0, 0, true);
    types("different_types", 16, 2, false);
    types("flag_and_its_combination", 16, 18, false);
    types("unknown_and_a_type", 0, 1, false);

    const auto paths = [](const char* name, const QString& left, const QString& right, bool equal) {
        QTest::newRow(name) << left << 16 << right << 16 << equal;
    };
    paths("different_directories", u"one"_s, u"two"_s, false);
    paths("directory_and_its_parent", u"one"_s, u"."_s, false);
    paths("trailing_slash", u"one"_s, u"one/"_s, true);
    paths("way_round", u"one"_s, u"two/../one"_s, true);
    paths("through_a_link", u"one"_s, u"link"_s, true);
    paths("through_a_link_to_the_other", u"two"_s, u"link"_s, false);
    paths("below_a_link", u"one/sub"_s, u"link/sub"_s, true);
    paths("two_that_do_not_exist", u"missing"_s, u"gone"_s, true);
    paths("one_that_does_not_exist", u"one"_s, u"missing"_s, false);
    paths("dangling_link_and_missing", u"dangling"_s, u"missing"_s, true);
    QTest::newRow("same_directory_by_a_link_of_another_type")
        << u"one"_s << 16 << u"link"_s << 8 << false;
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
    QTest::addColumn<qint32>("before");
    QTest::addColumn<qint32>("by");
    QTest::addColumn<qint32>("after");

    QTest::newRow("flag_is_added") << 2 << 16 << 18;
    QTest::newRow("flag_that_it_has") << 18 << 16 << 18;
    QTest::newRow("combination_is_added") << 1 << 18 << 19;
    QTest::newRow("unknown_adds_nothing") << 2 << 0 << 2;
    QTest::newRow("unknown_is_expanded") << 0 << 16 << 16;
    QTest::newRow("all_flags_stay") << 63 << 1 << 63;
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
    QTest::addColumn<QString>("path");
    QTest::addColumn<qint32>("number");
    QTest::addColumn<int>("prefixLength");
    QTest::addColumn<QString>("line");

    const auto named = [](const char* name, qint32 number, const QString& line) {
        QTest::newRow(name) << u"/vl/2023/07"_s << number << 4 << line;
    };
    named("unknown_fills_the_field", 0, u"Unknown <= 2023/07"_s);
    named("root_is_padded", 1, u"   Root <= 2023/07"_s);
    named("year_is_padded", 2, u"   Year <= 2023/07"_s);
    named("month_is_padded", 4, u"  Month <= 2023/07"_s);
    named("day_is_padded", 8, u"    Day <= 2023/07"_s);
    named("event_is_padded", 16, u"  Event <= 2023/07"_s);
    named("project_folder_is_not_cut", 32, u"ProjectFolder <= 2023/07"_s);
    named("combination_has_seven_blanks", 18, u"        <= 2023/07"_s);
    named("number_without_a_name", 64, u"        <= 2023/07"_s);

    const auto cut = [](const char* name, int prefixLength, const QString& line) {
        QTest::newRow(name) << u"/vl/2023/07"_s << 4 << prefixLength << line;
    };
    cut("no_prefix", 0, u"  Month <= /vl/2023/07"_s);
    cut("prefix_of_one", 1, u"  Month <= vl/2023/07"_s);
    cut("all_but_one", 10, u"  Month <= 7"_s);
    cut("prefix_as_long_as_the_path", 11, u"  Month <= "_s);
    cut("prefix_longer_than_the_path", 12, u"  Month <= "_s);
    cut("highest_prefix", std::numeric_limits<int>::max(), u"  Month <= "_s);
    cut("negative_prefix_keeps_the_path", -1, u"  Month <= /vl/2023/07"_s);
    cut("lowest_prefix_keeps_the_path", std::numeric_limits<int>::min(),
        u"  Month <= /vl/2023/07"_s);

    const auto path = [](const char* name, const QString& end, const QString& line) {
        QTest::newRow(name) << u"/vl/"_s + end << 16 << 4 << line;
    };
    path("placeholder_1_takes_the_name", u"a%1b"_s, u"%2 <= a  Eventb"_s);
    path("placeholder_0_takes_the_name", u"a%0b"_s, u"%2 <= a  Eventb"_s);
    path("placeholder_2_takes_it_as_well", u"a%2b"_s, u"  Event <= a  Eventb"_s);
    path("placeholder_3_stays", u"a%3b"_s, u"  Event <= a%3b"_s);
    path("placeholder_10_is_one_number", u"a%10b"_s, u"  Event <= a%10b"_s);
    path("localised_placeholder_1", u"a%L1b"_s, u"%2 <= a  Eventb"_s);
    path("lowest_number_only", u"%0%1%2"_s, u"%2 <=   Event%1%2"_s);
    path("placeholder_1_twice", u"%1%1"_s, u"%2 <=   Event  Event"_s);
    path("percent_sign_alone", u"100%"_s, u"  Event <= 100%"_s);
    path("doubled_percent_sign", u"%%1"_s, u"%2 <= %  Event"_s);
    path("markup_and_line_feed", u"<b>&amp;\nb"_s, u"  Event <= <b>&amp;\nb"_s);
    path("blanks", u" a "_s, u"  Event <=  a "_s);
    path("non_latin", u"\u5199\u771F"_s, u"  Event <= \u5199\u771F"_s);
    path("trailing_slash_stays", u"a/"_s, u"  Event <= a/"_s);
    path("detours_are_cleaned", u"b/../a"_s, u"  Event <= a"_s);

    QTest::newRow("placeholder_takes_no_name_of_a_combination")
        << u"/vl/a%1b"_s << 18 << 4 << u"%2 <= a       b"_s;
    QTest::newRow("placeholder_in_front_of_the_cut") << u"/%1/x"_s << 16 << 4 << u"  Event <= x"_s;
    QTest::newRow("root_of_the_file_system") << u"/"_s << 1 << 0 << u"   Root <= /"_s;
    QTest::newRow("prefix_counts_utf_16_units")
        << u"/\U0001F4F7/a"_s << 16 << 2 << u"  Event <= "_s + QChar(0xDCF7) + u"/a"_s;
    QTest::newRow("no_directory") << u""_s << 0 << 17 << u"Unknown <= "_s;
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
    const QString before = QDir::currentPath();
    const auto restore = qScopeGuard([&before] { QDir::setCurrent(before); });
    QVERIFY(QDir::setCurrent(u"/"_s));
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
    QTest::addColumn<ResultList>("list");
    QTest::addColumn<qint32>("number");
    QTest::addColumn<QString>("contents");

    const ResultList mixed { result(u"/c"_s, 16), result(u"/b"_s, 18), result(u"/a"_s, 16) };
    const ResultList untyped { result(u"/r"_s, 1), result(u"/u"_s, 0), result(u"/u"_s, 0) };
    QTest::newRow("empty_list") << ResultList() << 16 << u""_s;
    QTest::newRow("empty_list_by_unknown") << ResultList() << 0 << u""_s;
    QTest::newRow("flag_leaves_out_its_combination") << mixed << 16 << u"/c=16 /a=16"_s;
    QTest::newRow("combination_leaves_out_its_flags") << mixed << 18 << u"/b=18"_s;
    QTest::newRow("other_flag_of_the_combination") << mixed << 2 << u""_s;
    QTest::newRow("larger_combination") << mixed << 19 << u""_s;
    QTest::newRow("unknown_where_all_have_a_type") << mixed << 0 << u""_s;
    QTest::newRow("unknown_gives_those_without_a_type") << untyped << 0 << u"/u=0 /u=0"_s;
    QTest::newRow("root") << untyped << 1 << u"/r=1"_s;
}

void tst_model::filtered()
{
    QFETCH(ResultList, list);
    QFETCH(const qint32, number);
    const QString before = contentsOf(list);
    QTEST(contentsOf(list.filtered(type(number))), "contents");
    QCOMPARE(contentsOf(list), before);
}

void tst_model::filteredResultsAreWholeCopies()
{
    ResultList list { result(u"/a"_s, 16, { u"A"_s }) };
    ResultList events = list.filtered(Type::Event);
    QCOMPARE(events.size(), 1);
    QCOMPARE(contentsOf(events.at(0)), u"/a=16 A"_s);
    events[0].expandTo(Type::Day);
    QCOMPARE(contentsOf(list.at(0)), u"/a=16 A"_s);
}

void tst_model::listText_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QString>("text");

    QTest::newRow("empty_list") << QStringList() << u""_s;
    QTest::newRow("one_has_no_line_feed") << QStringList { u"/vl/a"_s } << u"/vl/a"_s;
    QTest::newRow("three_have_two_line_feeds")
        << QStringList { u"/vl/b"_s, u"/vl/a"_s, u"/vl/c"_s } << u"/vl/b\n/vl/a\n/vl/c"_s;
    QTest::newRow("same_directory_twice")
        << QStringList { u"/vl/a"_s, u"/vl/a"_s } << u"/vl/a\n/vl/a"_s;
    QTest::newRow("line_feed_within_a_path_stays")
        << QStringList { u"/vl/a\nb"_s, u"/vl/c\n"_s } << u"/vl/a\nb\n/vl/c\n"_s;
    QTest::newRow("placeholders_stay")
        << QStringList { u"/vl/%1"_s, u"/vl/%2"_s } << u"/vl/%1\n/vl/%2"_s;
    QTest::newRow("trailing_slash_stays") << QStringList { u"/vl/a/"_s } << u"/vl/a/"_s;
    QTest::newRow("detours_are_cleaned") << QStringList { u"/vl/b/../a"_s } << u"/vl/a"_s;
    QTest::newRow("non_latin") << QStringList { u"/\u5199\u771F"_s, u"/\U0001F4F7"_s }
                               << u"/\u5199\u771F\n/\U0001F4F7"_s;
    QTest::newRow("no_directory") << QStringList { u"/a"_s, u""_s, u"/b"_s } << u"/a\n\n/b"_s;
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
