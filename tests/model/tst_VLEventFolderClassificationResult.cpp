#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QScopeGuard>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <limits>
#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Result = VLEventFolderClassificationResult;

namespace {

VLEventFolderType type(qint32 number)
{
    return static_cast<Type>(number);
}

qint32 typeOf(const Result& result)
{
    return qint32(result.classification().value());
}

VLOccasionInfoList occasions(const QString& occasion)
{
    VLOccasionInfoList list;
    list.append(VLOccasionInfo(occasion, u"Calendar"_s, 0.5));
    return list;
}

} // namespace

static_assert(std::is_polymorphic_v<Result>);
static_assert(std::has_virtual_destructor_v<Result>);
static_assert(std::is_default_constructible_v<Result>);
static_assert(std::is_copy_constructible_v<Result>);
static_assert(std::is_copy_assignable_v<Result>);
static_assert(std::is_nothrow_move_constructible_v<Result>);
static_assert(std::is_nothrow_move_assignable_v<Result>);
static_assert(std::is_same_v<decltype(&Result::directory), QFileInfo (Result::*)() const>);
static_assert(
    std::is_same_v<decltype(&Result::classification), VLEventFolderType (Result::*)() const>);
static_assert(
    std::is_same_v<decltype(&Result::occasionInformation), VLOccasionInfoList (Result::*)() const>);
static_assert(std::is_same_v<decltype(&Result::render), QString (Result::*)(int) const>);

class tst_VLEventFolderClassificationResult : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void default_made_result();
    void result_of_a_directory_and_a_type();
    void occasions_are_replaced_as_a_whole();
    void accessors_return_copies();
    void copies_are_independent();
    void moved_values_arrive();

    void types_decide_equality_first_data();
    void types_decide_equality_first();
    void occasions_take_no_part_in_equality();
    void directories_decide_equality_data();
    void directories_decide_equality();
    void two_default_made_results_are_different();
    void copy_of_a_default_made_result_is_equal();
    void default_made_result_differs_from_any_other();

    void expanded_type_data();
    void expanded_type();
    void expanding_leaves_directory_and_occasions();
    void expanding_by_the_result_itself();

    void render_data();
    void render();
    void render_of_a_relative_directory_is_absolute();
    void render_of_no_directory();
};

void tst_VLEventFolderClassificationResult::default_made_result()
{
    const Result result;
    QCOMPARE(result.directory().filePath(), QString());
    QCOMPARE(result.directory().absoluteFilePath(), QString());
    QCOMPARE(typeOf(result), 0);
    QCOMPARE(result.occasionInformation().size(), 0);
    QCOMPARE(result.occasionInformation().description(), u"no Data"_s);
}

void tst_VLEventFolderClassificationResult::result_of_a_directory_and_a_type()
{
    const Result result(QFileInfo(u"/vl/2023/07"_s), Type::Month);
    QCOMPARE(result.directory().filePath(), u"/vl/2023/07"_s);
    QCOMPARE(typeOf(result), 4);
    QCOMPARE(result.occasionInformation().size(), 0);
}

void tst_VLEventFolderClassificationResult::occasions_are_replaced_as_a_whole()
{
    Result result(QFileInfo(u"/vl"_s), Type::Event);
    VLOccasionInfoList two = occasions(u"A"_s);
    two.append(VLOccasionInfo(u"B"_s, u"Tags"_s, 1.0));
    result.setOccasionInformation(two);
    QCOMPARE(result.occasionInformation().description(), u"A (0.5, Calendar); B (1, Tags)"_s);
    result.setOccasionInformation(occasions(u"C"_s));
    QCOMPARE(result.occasionInformation().description(), u"C (0.5, Calendar)"_s);
    result.setOccasionInformation(result.occasionInformation());
    QCOMPARE(result.occasionInformation().description(), u"C (0.5, Calendar)"_s);
    result.setOccasionInformation(VLOccasionInfoList());
    QCOMPARE(result.occasionInformation().description(), u"no Data"_s);
    QCOMPARE(typeOf(result), 16);
    QCOMPARE(result.directory().filePath(), u"/vl"_s);
}

void tst_VLEventFolderClassificationResult::accessors_return_copies()
{
    Result result(QFileInfo(u"/vl"_s), Type::Year);
    result.setOccasionInformation(occasions(u"A"_s));
    auto directory = result.directory();
    auto classification = result.classification();
    auto information = result.occasionInformation();
    directory.setFile(u"/other"_s);
    classification |= Type::Event;
    information.clear();
    QCOMPARE(result.directory().filePath(), u"/vl"_s);
    QCOMPARE(typeOf(result), 2);
    QCOMPARE(result.occasionInformation().occasion(), u"A"_s);
}

void tst_VLEventFolderClassificationResult::copies_are_independent()
{
    Result original(QFileInfo(u"/vl/2023"_s), Type::Year);
    original.setOccasionInformation(occasions(u"A"_s));
    const Result copied = original;
    Result assigned;
    assigned = original;
    original.expandTo(Type::Event);
    original.setOccasionInformation(occasions(u"B"_s));
    for (const Result& copy : { copied, assigned }) {
        QCOMPARE(copy.directory().filePath(), u"/vl/2023"_s);
        QCOMPARE(typeOf(copy), 2);
        QCOMPARE(copy.occasionInformation().occasion(), u"A"_s);
    }
    QCOMPARE(typeOf(original), 18);
    QCOMPARE(original.occasionInformation().occasion(), u"B"_s);
}

void tst_VLEventFolderClassificationResult::moved_values_arrive()
{
    Result original(QFileInfo(u"/vl/2023"_s), type(18));
    original.setOccasionInformation(occasions(u"A"_s));
    Result moved = std::move(original);
    QCOMPARE(moved.directory().filePath(), u"/vl/2023"_s);
    QCOMPARE(typeOf(moved), 18);
    QCOMPARE(moved.occasionInformation().occasion(), u"A"_s);
    original = std::move(moved);
    QCOMPARE(original.directory().filePath(), u"/vl/2023"_s);
    QCOMPARE(typeOf(original), 18);
    QCOMPARE(original.occasionInformation().occasion(), u"A"_s);
}

void tst_VLEventFolderClassificationResult::types_decide_equality_first_data()
{
    QTest::addColumn<qint32>("left");
    QTest::addColumn<qint32>("right");
    QTest::addColumn<bool>("equal");

    QTest::newRow("same_type") << 16 << 16 << true;
    QTest::newRow("same_combination") << 18 << 18 << true;
    QTest::newRow("unknown_twice") << 0 << 0 << true;
    QTest::newRow("different_types") << 16 << 2 << false;
    QTest::newRow("flag_and_its_combination") << 16 << 18 << false;
    QTest::newRow("unknown_and_a_type") << 0 << 1 << false;
}

void tst_VLEventFolderClassificationResult::types_decide_equality_first()
{
    QFETCH(const qint32, left);
    QFETCH(const qint32, right);
    QFETCH(const bool, equal);
    const QFileInfo directory(u"/vl/2023"_s);
    QCOMPARE(Result(directory, type(left)) == Result(directory, type(right)), equal);
    QCOMPARE(Result(directory, type(right)) == Result(directory, type(left)), equal);
}

void tst_VLEventFolderClassificationResult::occasions_take_no_part_in_equality()
{
    const QFileInfo directory(u"/vl/2023"_s);
    Result with(directory, Type::Event);
    with.setOccasionInformation(occasions(u"A"_s));
    Result other(directory, Type::Event);
    other.setOccasionInformation(occasions(u"B"_s));
    QVERIFY(with == Result(directory, Type::Event));
    QVERIFY(with == other);
    QVERIFY(!(with == Result(directory, type(18))));
}

void tst_VLEventFolderClassificationResult::directories_decide_equality_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<bool>("equal");

    QTest::newRow("same_path") << u"one"_s << u"one"_s << true;
    QTest::newRow("different_directories") << u"one"_s << u"two"_s << false;
    QTest::newRow("directory_and_its_parent") << u"one"_s << u"."_s << false;
    QTest::newRow("trailing_slash") << u"one"_s << u"one/"_s << true;
    QTest::newRow("way_round") << u"one"_s << u"two/../one"_s << true;
    QTest::newRow("through_a_link") << u"one"_s << u"link"_s << true;
    QTest::newRow("through_a_link_to_the_other") << u"two"_s << u"link"_s << false;
    QTest::newRow("below_a_link") << u"one/sub"_s << u"link/sub"_s << true;
    QTest::newRow("two_that_do_not_exist") << u"missing"_s << u"gone"_s << true;
    QTest::newRow("one_that_does_not_exist") << u"one"_s << u"missing"_s << false;
    QTest::newRow("dangling_link_and_missing") << u"dangling"_s << u"missing"_s << true;
}

void tst_VLEventFolderClassificationResult::directories_decide_equality()
{
    QFETCH(const QString, left);
    QFETCH(const QString, right);
    QFETCH(const bool, equal);
    const QTemporaryDir base;
    const QDir tree(base.path());
    QVERIFY(tree.mkpath(u"one/sub"_s));
    QVERIFY(tree.mkdir(u"two"_s));
    QVERIFY(QFile::link(u"one"_s, base.filePath(u"link"_s)));
    QVERIFY(QFile::link(u"nowhere"_s, base.filePath(u"dangling"_s)));

    const Result a(QFileInfo(base.filePath(left)), Type::Event);
    const Result b(QFileInfo(base.filePath(right)), Type::Event);
    QCOMPARE(a == b, equal);
    QCOMPARE(b == a, equal);
    QVERIFY(!(a == Result(QFileInfo(base.filePath(right)), Type::Day)));
}

void tst_VLEventFolderClassificationResult::two_default_made_results_are_different()
{
    QVERIFY(!(Result() == Result()));
}

void tst_VLEventFolderClassificationResult::copy_of_a_default_made_result_is_equal()
{
    const Result original;
    const Result copied = original;
    const Result& same = original;
    QVERIFY(copied == original);
    QVERIFY(original == same);
}

void tst_VLEventFolderClassificationResult::default_made_result_differs_from_any_other()
{
    QVERIFY(!(Result() == Result(QFileInfo(u"/"_s), Type::Unknown)));
    QVERIFY(!(Result(QFileInfo(u"/vl/missing"_s), Type::Unknown) == Result()));
}

void tst_VLEventFolderClassificationResult::expanded_type_data()
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

void tst_VLEventFolderClassificationResult::expanded_type()
{
    QFETCH(const qint32, before);
    QFETCH(const qint32, by);
    QFETCH(const qint32, after);
    Result result(QFileInfo(u"/vl"_s), type(before));
    result.expandTo(type(by));
    QCOMPARE(typeOf(result), after);
    result.expandTo(type(by));
    QCOMPARE(typeOf(result), after);
}

void tst_VLEventFolderClassificationResult::expanding_leaves_directory_and_occasions()
{
    Result result(QFileInfo(u"/vl"_s), Type::Year);
    result.setOccasionInformation(occasions(u"A"_s));
    result.expandTo(Type::Event);
    QCOMPARE(result.directory().filePath(), u"/vl"_s);
    QCOMPARE(result.occasionInformation().occasion(), u"A"_s);
}

void tst_VLEventFolderClassificationResult::expanding_by_the_result_itself()
{
    Result result(QFileInfo(u"/vl"_s), type(18));
    result.expandTo(result.classification());
    QCOMPARE(typeOf(result), 18);
}

void tst_VLEventFolderClassificationResult::render_data()
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
    path("placeholder_01_is_1", u"a%01b"_s, u"%2 <= a  Eventb"_s);
    path("placeholder_02_is_2", u"a%02b"_s, u"  Event <= a  Eventb"_s);
    path("third_digit_is_text", u"a%123b"_s, u"  Event <= a%123b"_s);
    path("localised_placeholder_1", u"a%L1b"_s, u"%2 <= a  Eventb"_s);
    path("lowest_number_only", u"%0%1%2"_s, u"%2 <=   Event%1%2"_s);
    path("placeholder_1_before_2", u"%2%1"_s, u"%2 <= %2  Event"_s);
    path("placeholder_1_twice", u"%1%1"_s, u"%2 <=   Event  Event"_s);
    path("percent_sign_alone", u"100%"_s, u"  Event <= 100%"_s);
    path("percent_sign_before_a_letter", u"%a"_s, u"  Event <= %a"_s);
    path("doubled_percent_sign", u"%%1"_s, u"%2 <= %  Event"_s);
    path("percent_sign_before_a_blank", u"% 1"_s, u"  Event <= % 1"_s);
    QTest::newRow("placeholder_takes_no_name_of_a_combination")
        << u"/vl/a%1b"_s << 18 << 4 << u"%2 <= a       b"_s;
    QTest::newRow("placeholder_in_front_of_the_cut") << u"/%1/x"_s << 16 << 4 << u"  Event <= x"_s;
    QTest::newRow("placeholder_cut_in_two") << u"/vl/%1"_s << 16 << 5 << u"  Event <= 1"_s;

    path("line_feed", u"a\nb"_s, u"  Event <= a\nb"_s);
    path("arrow", u"a <= b"_s, u"  Event <= a <= b"_s);
    path("markup", u"<b>&amp;"_s, u"  Event <= <b>&amp;"_s);
    path("blanks", u" a "_s, u"  Event <=  a "_s);
    path("non_latin", u"\u5199\u771F"_s, u"  Event <= \u5199\u771F"_s);
    path("trailing_slash_stays", u"a/"_s, u"  Event <= a/"_s);
    path("detours_are_cleaned", u"b/../a"_s, u"  Event <= a"_s);
    QTest::newRow("root_of_the_file_system") << u"/"_s << 1 << 0 << u"   Root <= /"_s;
    QTest::newRow("prefix_counts_utf_16_units")
        << u"/\U0001F4F7/a"_s << 16 << 3 << u"  Event <= /a"_s;
    QTest::newRow("surrogates_are_cut_in_two")
        << u"/\U0001F4F7/a"_s << 16 << 2 << u"  Event <= "_s + QChar(0xDCF7) + u"/a"_s;
}

void tst_VLEventFolderClassificationResult::render()
{
    QFETCH(const QString, path);
    QFETCH(const qint32, number);
    QFETCH(const int, prefixLength);
    const Result result(QFileInfo(path), type(number));
    QTEST(result.render(prefixLength), "line");
    QCOMPARE(typeOf(result), number);
    QCOMPARE(result.directory().filePath(), path);
}

void tst_VLEventFolderClassificationResult::render_of_a_relative_directory_is_absolute()
{
    const QString before = QDir::currentPath();
    const auto restore = qScopeGuard([&before] { QDir::setCurrent(before); });
    QVERIFY(QDir::setCurrent(u"/"_s));
    QCOMPARE(Result(QFileInfo(u"vl/2023"_s), Type::Year).render(0), u"   Year <= /vl/2023"_s);
    QCOMPARE(Result(QFileInfo(u"vl/2023"_s), Type::Year).render(4), u"   Year <= 2023"_s);
}

void tst_VLEventFolderClassificationResult::render_of_no_directory()
{
    QCOMPARE(Result().render(0), u"Unknown <= "_s);
    QCOMPARE(Result().render(17), u"Unknown <= "_s);
    QCOMPARE(Result().render(-1), u"Unknown <= "_s);
}

QTEST_GUILESS_MAIN(tst_VLEventFolderClassificationResult)
#include "tst_VLEventFolderClassificationResult.moc"
