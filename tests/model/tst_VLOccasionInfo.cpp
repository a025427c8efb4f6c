#include <VLFolioEventClassifier/VLOccasionInfo.h>

#include <QtCore/QLocale>
#include <QtCore/QScopeGuard>
#include <QtTest/QTest>

#include <limits>
#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

} // namespace

static_assert(std::is_polymorphic_v<VLOccasionInfo>);
static_assert(std::has_virtual_destructor_v<VLOccasionInfo>);
static_assert(std::is_default_constructible_v<VLOccasionInfo>);
static_assert(std::is_copy_constructible_v<VLOccasionInfo>);
static_assert(std::is_copy_assignable_v<VLOccasionInfo>);
static_assert(std::is_nothrow_move_constructible_v<VLOccasionInfo>);
static_assert(std::is_nothrow_move_assignable_v<VLOccasionInfo>);
static_assert(
    std::is_same_v<decltype(&VLOccasionInfo::occasion), QString (VLOccasionInfo::*)() const>);
static_assert(
    std::is_same_v<decltype(&VLOccasionInfo::source), QString (VLOccasionInfo::*)() const>);
static_assert(
    std::is_same_v<decltype(&VLOccasionInfo::confidence), double (VLOccasionInfo::*)() const>);

class tst_VLOccasionInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void default_made_record_is_empty();
    void values_are_stored_as_given_data();
    void values_are_stored_as_given();
    void not_a_number_is_stored();
    void copies_are_independent();
    void moved_values_arrive();
    void description_data();
    void description();
    void description_does_not_follow_the_default_locale();
    void equality_data();
    void equality();
    void record_without_a_number_is_not_equal_to_itself();
};

void tst_VLOccasionInfo::default_made_record_is_empty()
{
    const VLOccasionInfo info;
    QCOMPARE(info.occasion(), QString());
    QCOMPARE(info.source(), QString());
    QVERIFY(info.confidence() == 0.0);
}

void tst_VLOccasionInfo::values_are_stored_as_given_data()
{
    QTest::addColumn<QString>("occasion");
    QTest::addColumn<QString>("source");
    QTest::addColumn<double>("confidence");

    QTest::newRow("usual") << u"Birthday"_s << u"Calendar"_s << 0.9;
    QTest::newRow("empty_texts") << u""_s << u""_s << 0.5;
    QTest::newRow("blanks_and_line_feeds") << u" a\n"_s << u"\tb "_s << 0.5;
    QTest::newRow("negative") << u"a"_s << u"b"_s << -3.5;
    QTest::newRow("above_one") << u"a"_s << u"b"_s << 1234.5;
    QTest::newRow("infinite") << u"a"_s << u"b"_s << infinite;
    QTest::newRow("all_digits") << u"a"_s << u"b"_s << 0.1234567890123456;
}

void tst_VLOccasionInfo::values_are_stored_as_given()
{
    QFETCH(const QString, occasion);
    QFETCH(const QString, source);
    QFETCH(const double, confidence);
    const VLOccasionInfo info(occasion, source, confidence);
    QCOMPARE(info.occasion(), occasion);
    QCOMPARE(info.source(), source);
    QVERIFY(info.confidence() == confidence);
}

void tst_VLOccasionInfo::not_a_number_is_stored()
{
    QVERIFY(qIsNaN(VLOccasionInfo(u"a"_s, u"b"_s, notANumber).confidence()));
}

void tst_VLOccasionInfo::copies_are_independent()
{
    VLOccasionInfo original(u"Birthday"_s, u"Calendar"_s, 0.9);
    const VLOccasionInfo copied = original;
    VLOccasionInfo assigned;
    assigned = original;
    original = VLOccasionInfo(u"Party"_s, u"Tags"_s, 0.5);
    QCOMPARE(copied.description(), u"Birthday (0.9, Calendar)"_s);
    QCOMPARE(assigned.description(), u"Birthday (0.9, Calendar)"_s);
    QCOMPARE(original.description(), u"Party (0.5, Tags)"_s);
}

void tst_VLOccasionInfo::moved_values_arrive()
{
    VLOccasionInfo original(u"Birthday"_s, u"Calendar"_s, 0.9);
    VLOccasionInfo moved = std::move(original);
    QCOMPARE(moved.description(), u"Birthday (0.9, Calendar)"_s);
    original = std::move(moved);
    QCOMPARE(original.description(), u"Birthday (0.9, Calendar)"_s);
}

void tst_VLOccasionInfo::description_data()
{
    QTest::addColumn<QString>("occasion");
    QTest::addColumn<QString>("source");
    QTest::addColumn<double>("confidence");
    QTest::addColumn<QString>("description");

    QTest::newRow("usual") << u"Birthday"_s << u"Calendar"_s << 0.9
                           << u"Birthday (0.9, Calendar)"_s;
    QTest::newRow("default_made") << QString() << QString() << 0.0 << u" (0, )"_s;
    QTest::newRow("empty_occasion") << u""_s << u"s"_s << 0.5 << u" (0.5, s)"_s;
    QTest::newRow("empty_source") << u"o"_s << u""_s << 0.5 << u"o (0.5, )"_s;

    const auto number = [](const char* name, double confidence, const QString& description) {
        QTest::newRow(name) << u"o"_s << u"s"_s << confidence << description;
    };
    number("two_digits", 0.85, u"o (0.85, s)"_s);
    number("one_has_no_point", 1.0, u"o (1, s)"_s);
    number("small_number_has_an_exponent", 0.000012, u"o (1.2e-05, s)"_s);
    number("smallest_without_exponent", 0.0001, u"o (0.0001, s)"_s);
    number("largest_with_negative_exponent", 0.00001, u"o (1e-05, s)"_s);
    number("seven_digits_are_rounded_up", 0.1234567, u"o (0.123457, s)"_s);
    number("seven_digits_are_rounded_down", 0.1234561, u"o (0.123456, s)"_s);
    number("rounded_up_to_one", 0.9999999, u"o (1, s)"_s);
    number("six_digits_before_the_point", 123456.7, u"o (123457, s)"_s);
    number("seven_digits_before_the_point", 1234567.0, u"o (1.23457e+06, s)"_s);
    number("million_has_an_exponent", 1000000.0, u"o (1e+06, s)"_s);
    number("thousands_are_not_grouped", 12345.0, u"o (12345, s)"_s);
    number("negative", -0.5, u"o (-0.5, s)"_s);
    number("largest", std::numeric_limits<double>::max(), u"o (1.79769e+308, s)"_s);
    number("infinite", infinite, u"o (inf, s)"_s);
    number("negative_infinite", -infinite, u"o (-inf, s)"_s);
    number("not_a_number", notANumber, u"o (nan, s)"_s);

    QTest::newRow("placeholders_in_the_occasion_stay")
        << u"%1 %2 %3"_s << u"s"_s << 0.5 << u"%1 %2 %3 (0.5, s)"_s;
    QTest::newRow("placeholders_in_the_source_stay")
        << u"o"_s << u"%1 %2 %3"_s << 0.5 << u"o (0.5, %1 %2 %3)"_s;
    QTest::newRow("other_placeholders_stay")
        << u"%0 %4 %%"_s << u"%L1 %99"_s << 0.5 << u"%0 %4 %% (0.5, %L1 %99)"_s;
    QTest::newRow("non_latin") << u"\u8A95\u751F\u65E5"_s << u"Gr\u00FC\u00DFe"_s << 0.5
                               << u"\u8A95\u751F\u65E5 (0.5, Gr\u00FC\u00DFe)"_s;
    QTest::newRow("separators_and_line_feeds_stay")
        << u"a; b\n"_s << u"c, d)"_s << 0.5 << u"a; b\n (0.5, c, d))"_s;
}

void tst_VLOccasionInfo::description()
{
    QFETCH(const QString, occasion);
    QFETCH(const QString, source);
    QFETCH(const double, confidence);
    QTEST(VLOccasionInfo(occasion, source, confidence).description(), "description");
}

void tst_VLOccasionInfo::description_does_not_follow_the_default_locale()
{
    const auto restore = qScopeGuard([] { QLocale::setDefault(QLocale::system()); });
    const VLOccasionInfo info(u"o"_s, u"s"_s, 12345.5);
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QCOMPARE(info.description(), u"o (12345.5, s)"_s);
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    QCOMPARE(info.description(), u"o (12345.5, s)"_s);
}

void tst_VLOccasionInfo::equality_data()
{
    QTest::addColumn<VLOccasionInfo>("left");
    QTest::addColumn<VLOccasionInfo>("right");
    QTest::addColumn<bool>("equal");

    const auto row = [](const char* name, const VLOccasionInfo& left, const VLOccasionInfo& right,
                        bool equal) { QTest::newRow(name) << left << right << equal; };
    const VLOccasionInfo usual(u"Birthday"_s, u"Calendar"_s, 0.9);
    row("same_values", usual, VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.9), true);
    row("two_default_made", VLOccasionInfo(), VLOccasionInfo(), true);
    row("null_and_empty_texts", VLOccasionInfo(), VLOccasionInfo(u""_s, u""_s, 0.0), true);
    row("other_confidence", usual, VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.8), false);
    row("next_confidence", usual, VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.90000000000000013),
        false);
    row("other_occasion", usual, VLOccasionInfo(u"Party"_s, u"Calendar"_s, 0.9), false);
    row("other_case_of_occasion", usual, VLOccasionInfo(u"birthday"_s, u"Calendar"_s, 0.9), false);
    row("other_source", usual, VLOccasionInfo(u"Birthday"_s, u"Tags"_s, 0.9), false);
    row("other_case_of_source", usual, VLOccasionInfo(u"Birthday"_s, u"calendar"_s, 0.9), false);
    row("occasion_and_source_swapped", usual, VLOccasionInfo(u"Calendar"_s, u"Birthday"_s, 0.9),
        false);
    row("composed_and_decomposed_letter", VLOccasionInfo(u"\u00FC"_s, u""_s, 0.5),
        VLOccasionInfo(u"u\u0308"_s, u""_s, 0.5), false);
    row("zero_and_negative_zero", VLOccasionInfo(u"a"_s, u"b"_s, 0.0),
        VLOccasionInfo(u"a"_s, u"b"_s, -0.0), true);
    row("infinite", VLOccasionInfo(u"a"_s, u"b"_s, infinite),
        VLOccasionInfo(u"a"_s, u"b"_s, infinite), true);
    row("not_a_number", VLOccasionInfo(u"a"_s, u"b"_s, notANumber),
        VLOccasionInfo(u"a"_s, u"b"_s, notANumber), false);
    row("sum_that_is_not_exact", VLOccasionInfo(u"a"_s, u"b"_s, 0.30000000000000004),
        VLOccasionInfo(u"a"_s, u"b"_s, 0.3), false);
}

void tst_VLOccasionInfo::equality()
{
    QFETCH(const VLOccasionInfo, left);
    QFETCH(const VLOccasionInfo, right);
    QFETCH(const bool, equal);
    QCOMPARE(left == right, equal);
    QCOMPARE(right == left, equal);
}

void tst_VLOccasionInfo::record_without_a_number_is_not_equal_to_itself()
{
    const VLOccasionInfo info(u"a"_s, u"b"_s, notANumber);
    const VLOccasionInfo& same = info;
    QVERIFY(!(info == same));
    const VLOccasionInfo usual(u"a"_s, u"b"_s, 0.5);
    const VLOccasionInfo& sameUsual = usual;
    QVERIFY(usual == sameUsual);
}

QTEST_GUILESS_MAIN(tst_VLOccasionInfo)
#include "tst_VLOccasionInfo.moc"
