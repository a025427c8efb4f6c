#include "TypeNames.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>
#include <QtTest/QTest>

#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Classifier = VLFolioEventClassifier;

static_assert(std::is_polymorphic_v<Classifier>);
static_assert(std::has_virtual_destructor_v<Classifier>);
static_assert(sizeof(Classifier) == sizeof(void*) + sizeof(QFileInfo),
              "a classifier holds its root directory and nothing else");
static_assert(std::is_constructible_v<Classifier, const QFileInfo&>);
static_assert(!std::is_default_constructible_v<Classifier>);

using Predicate = bool (Classifier::*)(const QString&) const;
static_assert(std::is_same_v<decltype(&Classifier::matchesProject), Predicate>);
static_assert(std::is_same_v<decltype(&Classifier::matchesApplePhotos), Predicate>);
static_assert(std::is_same_v<decltype(&Classifier::matchesDate), Predicate>);
static_assert(std::is_same_v<decltype(&Classifier::matchesMonth), Predicate>);
static_assert(std::is_same_v<decltype(&Classifier::matchesYear), Predicate>);
static_assert(std::is_same_v<decltype(std::declval<const Classifier&>().eventFolderType(
                                 std::declval<const QString&>())),
                             VLEventFolderType>);

namespace {

/// In which locales a row holds.
enum Where : unsigned {
    InC = 0x01,
    InEnglish = 0x02,
    InGerman = 0x04,
    InFrench = 0x08,
    InJapanese = 0x10,
    InArabic = 0x20,
    InChakma = 0x40,
    Everywhere = 0x7f,
};

constexpr unsigned notIn(unsigned where)
{
    return Everywhere & ~where;
}

struct LocaleName
{
    QString name;
    Where where;
};

const QList<LocaleName>& localeNames()
{
    static const QList<LocaleName> names {
        { u"C"_s, InC },           { u"en_US"_s, InEnglish },  { u"de_DE"_s, InGerman },
        { u"fr_FR"_s, InFrench },  { u"ja_JP"_s, InJapanese }, { u"ar_EG"_s, InArabic },
        { u"ccp_BD"_s, InChakma },
    };
    return names;
}

/// The locale of this process, 0 for one that the tables do not know.
unsigned here()
{
    const QString system = QLocale::system().name();
    for (const LocaleName& locale : localeNames()) {
        if (locale.name == system)
            return locale.where;
    }
    return 0;
}

struct TypeRow
{
    const char* rule;
    QString name;
    Type type;
    unsigned where;
};

// clang-format off

QList<TypeRow> projectRows()
{
    return {
        { "project", u"Urlaub_vlp-Dateien"_s, Type::ProjectFolder, Everywhere },
        { "project_suffix_alone", u"_vlp-Dateien"_s, Type::ProjectFolder, Everywhere },
        { "project_before_date", u"2019-07-14_vlp-Dateien"_s, Type::ProjectFolder, Everywhere },
        { "project_before_year", u"2019_vlp-Dateien"_s, Type::ProjectFolder, Everywhere },
        { "project_small_d", u"Urlaub_vlp-dateien"_s, Type::Unknown, Everywhere },
        { "project_small_d_with_date", u"2019-07-14_vlp-dateien"_s, Type::Day, Everywhere },
        { "project_suffix_not_at_the_end", u"Urlaub_vlp-Dateien 2"_s, Type::Unknown, Everywhere },
        { "photo_library_prefix_is_no_type", u"photokit"_s, Type::Unknown, Everywhere },
    };
}

QList<TypeRow> shapeRows()
{
    return {
        { "year_month_day", u"2019-07-14"_s, Type::Day, Everywhere },
        { "year_month_day_and_text", u"2019-07-14 Beach"_s, Type::Day, Everywhere },
        { "text_and_year_month_day", u"Beach 2019-07-14"_s, Type::Day, Everywhere },
        { "day_month_year", u"14.07.2019"_s, Type::Day, Everywhere },
        { "day_month_two_digit_year", u"14.07.19"_s, Type::Day, Everywhere },
        { "commas", u"2019,07,14"_s, Type::Day, Everywhere },
        { "blanks", u"2019 07 14"_s, Type::Day, Everywhere },
        { "vertical_bars", u"2019|07|14"_s, Type::Day, Everywhere },
        { "separators_may_differ", u"2019-07.14"_s, Type::Day, Everywhere },
        { "no_real_date", u"2019-13-45"_s, Type::Day, Everywhere },
        { "one_digit_of_a_day_is_no_shape", u"x1-07-2019"_s, Type::Year, Everywhere },
        { "one_digit_of_a_month_is_no_shape", u"x14-7-2019"_s, Type::Year, Everywhere },
        { "three_digits_of_a_month_are_no_shape", u"x14-007-2019"_s, Type::Year, Everywhere },
        { "no_real_two_digit_date", u"99.99.99"_s, Type::Day, Everywhere },
        { "shape_needs_no_2000", u"1999-12-31"_s, Type::Day, Everywhere },
        { "shape_within_more_digits", u"120190-07-1456"_s, Type::Day, Everywhere },
        { "shape_of_the_last_two_digits", u"019-07-14"_s, Type::Day, Everywhere },
        { "shape_within_a_time", u"IMG_20190714.12.30"_s, Type::Day, Everywhere },
        { "shape_on_a_later_line", u"Beach\n2019-07-14"_s, Type::Day, Everywhere },
        { "shape_after_nul", u"a\0002019-07-14"_s, Type::Day, Everywhere },
        { "shape_before_nul", u"2019-07-14\000"_s, Type::Day, Everywhere },
        { "one_digit_first", u"9-07-14"_s, Type::Unknown, Everywhere },
        { "one_digit_month", u"2019-7-14"_s, Type::Year, Everywhere },
        { "one_digit_day", u"2019-07-1"_s, Type::Year, Everywhere },
        { "three_digit_month", u"2019-007-14"_s, Type::Year, Everywhere },
        { "no_separator", u"20190714"_s, Type::Year, Everywhere },
        { "underscore_is_no_separator", u"2019_07_14"_s, Type::Year, Everywhere },
        { "colon_is_no_separator", u"2019:07:14"_s, Type::Year, Everywhere },
        { "en_dash_is_no_separator", u"2019\u201307\u201314"_s, Type::Year, Everywhere },
        { "no_break_space_is_no_separator", u"2019\u00a007\u00a014"_s, Type::Year, Everywhere },
        { "arabic_digits_have_no_shape", u"٢٠١٩-٠٧-١٤"_s, Type::Unknown, Everywhere },
        { "fullwidth_digits_have_no_shape", u"２０１９-０７-１４"_s, Type::Unknown, Everywhere },
        { "chakma_digits_have_no_shape", u"𑄸𑄶𑄷𑄿-𑄶𑄽-𑄷𑄺"_s, Type::Unknown, Everywhere },
        { "lone_surrogate_before", QChar(0xd83d) + u" 2019-07-14"_s, Type::Unknown, Everywhere },
        { "lone_surrogate_after", u"2019-07-14 "_s + QChar(0xde00), Type::Unknown, Everywhere },
        { "surrogate_pair_before_shape", u"😀 2019-07-14"_s, Type::Day, Everywhere },
        { "shape_ends_long_name", QString(100'000, u'x') + u"2019-07-14"_s, Type::Day, Everywhere },
    };
}

QList<TypeRow> fixedFormatRows()
{
    return {
        { "text_date", u"Sun Jul 14 2019"_s, Type::Day, Everywhere },
        { "text_date_before_2000", u"Sun Jul 14 1985"_s, Type::Day, Everywhere },
        { "text_date_two_digits", u"Trip Jul 4 5"_s, Type::Day, Everywhere },
        { "text_date_first_word_does_not_count", u"Trip Jul 14 2019"_s, Type::Day, Everywhere },
        { "text_date_wrong_day_of_the_week", u"Mon Jul 14 2019"_s, Type::Day, Everywhere },
        { "text_date_several_blanks", u"Sun  Jul  14  2019"_s, Type::Day, Everywhere },
        { "text_date_month_is_case_sensitive", u"Trip JUL 14 2019"_s, Type::Year, Everywhere },
        { "text_date_month_is_short", u"Trip July 14 2019"_s, Type::Year, Everywhere },
        { "text_date_month_is_english", u"Trip Juil 14 2019"_s, Type::Year, Everywhere },
        { "text_date_without_first_word", u"Jul 14 2019"_s, Type::Year, Everywhere },
        { "text_date_fifth_word", u"Sun Jul 14 2019 x"_s, Type::Year, Everywhere },
        { "text_date_no_real_day", u"Trip Jul 32 2019"_s, Type::Year, Everywhere },
        { "four_words", u"a b c d"_s, Type::Unknown, Everywhere },
        { "rfc_2822", u"Sun, 14 Jul 2019"_s, Type::Day, Everywhere },
        { "rfc_2822_before_2000", u"Sun, 14 Jul 1985"_s, Type::Day, Everywhere },
        { "rfc_2822_without_day_name", u"14 Jul 2019"_s, Type::Day, Everywhere },
        { "rfc_2822_one_digit_day", u"4 Jul 1999"_s, Type::Day, Everywhere },
        { "rfc_2822_two_digits", u"4 Jul 5"_s, Type::Day, Everywhere },
        { "rfc_2822_with_time", u"Sun, 14 Jul 2019 10:00:00 +0200"_s, Type::Day, Everywhere },
        { "rfc_2822_wrong_day_of_the_week", u"Mon, 14 Jul 2019"_s, Type::Year, Everywhere },
        { "rfc_2822_no_real_day", u"32 Jul 2019"_s, Type::Year, Everywhere },
        { "rfc_2822_and_text", u"14 Jul 2019 x"_s, Type::Year, Everywhere },
        { "rfc_2822_long_month", u"14 July 2019"_s, Type::Year, Everywhere },
    };
}

QList<TypeRow> localeDateRows()
{
    return {
        { "c_long_date", u"Sunday, 14 July 2019"_s, Type::Day, InC },
        { "c_long_date_elsewhere", u"Sunday, 14 July 2019"_s, Type::Year, notIn(InC) },
        { "c_date_in_small_letters", u"14 jul 2019"_s, Type::Day, InC },
        { "c_date_in_small_letters_elsewhere", u"14 jul 2019"_s, Type::Year, notIn(InC) },
        { "english_long_date", u"Sunday, July 14, 2019"_s, Type::Day, InEnglish },
        { "english_long_date_elsewhere", u"Sunday, July 14, 2019"_s, Type::Year, notIn(InEnglish) },
        { "english_long_date_in_capitals", u"SUNDAY, JULY 14, 2019"_s, Type::Day, InEnglish },
        { "english_wrong_day_of_the_week", u"Monday, July 14, 2019"_s, Type::Year, Everywhere },
        { "english_long_date_and_text", u"Sunday, July 14, 2019 Beach"_s, Type::Year, Everywhere },
        { "english_short_date", u"7/14/19"_s, Type::Day, InEnglish },
        { "english_short_date_elsewhere", u"7/14/19"_s, Type::Unknown, notIn(InEnglish) },
        { "two_digit_year_is_not_of_2000", u"2/29/00"_s, Type::Unknown, Everywhere },
        { "two_digit_year_is_of_1900", u"2/28/00"_s, Type::Day, InEnglish },
        { "two_digit_leap_year", u"2/29/04"_s, Type::Day, InEnglish },
        { "german_long_date", u"Sonntag, 14. Juli 2019"_s, Type::Day, InGerman },
        { "german_long_date_elsewhere", u"Sonntag, 14. Juli 2019"_s, Type::Year, notIn(InGerman) },
        { "german_long_date_in_small_letters", u"sonntag, 14. juli 2019"_s, Type::Day, InGerman },
        { "german_date_without_day_of_the_week", u"14. Juli 2019"_s, Type::Year, Everywhere },
        { "french_long_date", u"dimanche 14 juillet 2019"_s, Type::Day, InFrench },
        { "french_date_elsewhere", u"dimanche 14 juillet 2019"_s, Type::Year, notIn(InFrench) },
        { "french_short_date", u"14/07/2019"_s, Type::Day, InFrench },
        { "french_short_date_elsewhere", u"14/07/2019"_s, Type::Year, notIn(InFrench) },
        { "japanese_long_date", u"2019年7月14日日曜日"_s, Type::Day, InJapanese },
        { "japanese_long_date_elsewhere", u"2019年7月14日日曜日"_s, Type::Year, notIn(InJapanese) },
        { "japanese_short_date", u"2019/07/14"_s, Type::Day, InJapanese },
        { "japanese_short_date_elsewhere", u"2019/07/14"_s, Type::Year, notIn(InJapanese) },
        { "arabic_long_date", u"الأحد، ١٤ يوليو ٢٠١٩"_s, Type::Day, InArabic },
        { "arabic_long_date_elsewhere", u"الأحد، ١٤ يوليو ٢٠١٩"_s, Type::Unknown, notIn(InArabic) },
        { "arabic_long_date_with_ascii_digits", u"الأحد، 14 يوليو 2019"_s, Type::Day, InArabic },
        { "chakma_short_date_in_ascii", u"14/7/19"_s, Type::Day, InChakma },
        { "chakma_short_date_elsewhere", u"14/7/19"_s, Type::Unknown, notIn(InChakma) },
        { "chakma_date_elsewhere", u"𑄷𑄺/𑄽/𑄷𑄿"_s, Type::Unknown, notIn(InChakma) },
    };
}

QList<TypeRow> dayNameRows()
{
    return {
        { "english_day", u"Monday"_s, Type::Day, InC | InEnglish },
        { "english_day_elsewhere", u"Monday"_s, Type::Unknown, notIn(InC | InEnglish) },
        { "english_short_day", u"Mon"_s, Type::Day, InC | InEnglish },
        { "english_short_day_elsewhere", u"Mon"_s, Type::Unknown, notIn(InC | InEnglish) },
        { "narrow_day", u"M"_s, Type::Day, InEnglish | InGerman | InFrench },
        { "narrow_day_elsewhere", u"M"_s, Type::Unknown, notIn(InEnglish | InGerman | InFrench) },
        { "day_in_small_letters", u"monday"_s, Type::Unknown, Everywhere },
        { "day_in_capitals", u"MONDAY"_s, Type::Unknown, Everywhere },
        { "narrow_day_in_small_letters", u"m"_s, Type::Unknown, Everywhere },
        { "day_and_blank", u"Monday "_s, Type::Unknown, Everywhere },
        { "blank_and_day", u" Monday"_s, Type::Unknown, Everywhere },
        { "day_and_nul", u"Monday\000"_s, Type::Unknown, Everywhere },
        { "day_and_text", u"Monday at the beach"_s, Type::Unknown, Everywhere },
        { "german_day", u"Montag"_s, Type::Day, InGerman },
        { "german_day_elsewhere", u"Montag"_s, Type::Unknown, notIn(InGerman) },
        { "german_short_day_has_a_full_stop", u"Mo."_s, Type::Day, InGerman },
        { "german_short_day_without_full_stop", u"Mo"_s, Type::Unknown, Everywhere },
        { "french_day", u"lundi"_s, Type::Day, InFrench },
        { "french_day_elsewhere", u"lundi"_s, Type::Unknown, notIn(InFrench) },
        { "french_day_with_capital", u"Lundi"_s, Type::Unknown, Everywhere },
        { "japanese_day", u"月曜日"_s, Type::Day, InJapanese },
        { "japanese_day_elsewhere", u"月曜日"_s, Type::Unknown, notIn(InJapanese) },
        { "japanese_narrow_day", u"月"_s, Type::Day, InJapanese },
        { "arabic_day", u"الاثنين"_s, Type::Day, InArabic },
        { "arabic_day_elsewhere", u"الاثنين"_s, Type::Unknown, notIn(InArabic) },
        { "chakma_day", u"𑄥𑄧𑄟𑄴𑄝𑄢𑄴"_s, Type::Day, InChakma },
        { "chakma_day_elsewhere", u"𑄥𑄧𑄟𑄴𑄝𑄢𑄴"_s, Type::Unknown, notIn(InChakma) },
    };
}

QList<TypeRow> monthRows()
{
    return {
        { "one_is_a_narrow_day_in_c", u"1"_s, Type::Day, InC },
        { "one", u"1"_s, Type::Month, notIn(InC) },
        { "seven_is_a_narrow_day_in_c", u"7"_s, Type::Day, InC },
        { "seven", u"7"_s, Type::Month, notIn(InC) },
        { "eight", u"8"_s, Type::Month, Everywhere },
        { "nine", u"9"_s, Type::Month, Everywhere },
        { "ten", u"10"_s, Type::Month, Everywhere },
        { "twelve", u"12"_s, Type::Month, Everywhere },
        { "thirteen", u"13"_s, Type::Unknown, Everywhere },
        { "zero", u"0"_s, Type::Unknown, Everywhere },
        { "two_zeros", u"00"_s, Type::Unknown, Everywhere },
        { "padded_one", u"01"_s, Type::Month, Everywhere },
        { "padded_seven", u"07"_s, Type::Month, Everywhere },
        { "padded_nine", u"09"_s, Type::Month, Everywhere },
        { "padded_ten", u"010"_s, Type::Unknown, Everywhere },
        { "padded_twice", u"007"_s, Type::Unknown, Everywhere },
        { "signed_number", u"+8"_s, Type::Unknown, Everywhere },
        { "number_and_blank", u"08 "_s, Type::Unknown, Everywhere },
        { "number_and_nul", u"08\000"_s, Type::Unknown, Everywhere },
        { "number_and_text", u"08 Beach"_s, Type::Unknown, Everywhere },
        { "arabic_digit", u"٧"_s, Type::Unknown, Everywhere },
        { "fullwidth_digit", u"７"_s, Type::Unknown, Everywhere },
        { "chakma_digit", u"𑄽"_s, Type::Unknown, Everywhere },
        { "english_month", u"July"_s, Type::Month, InC | InEnglish },
        { "english_month_elsewhere", u"July"_s, Type::Unknown, notIn(InC | InEnglish) },
        { "english_short_month", u"Jul"_s, Type::Month, InC | InEnglish },
        { "english_short_month_elsewhere", u"Jul"_s, Type::Unknown, notIn(InC | InEnglish) },
        { "month_in_small_letters", u"july"_s, Type::Unknown, Everywhere },
        { "month_in_capitals", u"JULY"_s, Type::Unknown, Everywhere },
        { "month_and_blank", u"July "_s, Type::Unknown, Everywhere },
        { "month_and_text", u"July in Rome"_s, Type::Unknown, Everywhere },
        { "month_and_year", u"July 2019"_s, Type::Year, Everywhere },
        { "narrow_month", u"O"_s, Type::Unknown, Everywhere },
        { "german_month", u"Juli"_s, Type::Month, InGerman },
        { "german_month_elsewhere", u"Juli"_s, Type::Unknown, notIn(InGerman) },
        { "german_month_composed", u"M\u00e4rz"_s, Type::Month, InGerman },
        { "german_month_decomposed", u"Ma\u0308rz"_s, Type::Unknown, Everywhere },
        { "french_month", u"juillet"_s, Type::Month, InFrench },
        { "french_short_month", u"juil."_s, Type::Month, InFrench },
        { "french_month_elsewhere", u"juillet"_s, Type::Unknown, notIn(InFrench) },
        { "japanese_month", u"7月"_s, Type::Month, InJapanese },
        { "japanese_month_elsewhere", u"7月"_s, Type::Unknown, notIn(InJapanese) },
        { "japanese_month_padded", u"07月"_s, Type::Unknown, Everywhere },
        { "arabic_month", u"يوليو"_s, Type::Month, InArabic },
        { "arabic_month_elsewhere", u"يوليو"_s, Type::Unknown, notIn(InArabic) },
        { "chakma_month", u"𑄎𑄪𑄣𑄭"_s, Type::Month, InChakma },
        { "chakma_month_elsewhere", u"𑄎𑄪𑄣𑄭"_s, Type::Unknown, notIn(InChakma) },
    };
}

QList<TypeRow> otherRows()
{
    return {
        { "empty", u""_s, Type::Unknown, Everywhere },
        { "null", QString(), Type::Unknown, Everywhere },
        { "blank", u" "_s, Type::Unknown, Everywhere },
        { "nul", u"\000"_s, Type::Unknown, Everywhere },
        { "text", u"Beach"_s, Type::Unknown, Everywhere },
        { "year", u"2019"_s, Type::Year, Everywhere },
        { "year_within_text", u"Summer 2019 trip"_s, Type::Year, Everywhere },
        { "year_within_digits", u"12345"_s, Type::Year, Everywhere },
        { "year_before_2000", u"1999"_s, Type::Unknown, Everywhere },
        { "year_of_a_range", u"1999-2000"_s, Type::Year, Everywhere },
        { "year_3000", u"3000"_s, Type::Unknown, Everywhere },
        { "year_after_nul", u"a\0002019"_s, Type::Year, Everywhere },
        { "long_name", QString(100'000, u'x'), Type::Unknown, Everywhere },
        { "long_name_of_blanks", QString(100'000, u' '), Type::Unknown, Everywhere },
        { "markup", u"<b>2019</b>"_s, Type::Year, Everywhere },
        { "place_marker", u"%1"_s, Type::Unknown, Everywhere },
    };
}

// clang-format on

QList<TypeRow> typeRows()
{
    return projectRows() + shapeRows() + fixedFormatRows() + localeDateRows() + dayNameRows()
        + monthRows() + otherRows();
}

struct MatchRow
{
    const char* rule;
    QString name;
    bool matches;
};

void addRows(const QList<MatchRow>& rows)
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("matches");
    for (const MatchRow& row : rows)
        QTest::newRow(row.rule) << row.name << row.matches;
}

struct NameList
{
    const char* rule;
    unsigned where;
    QString names; // parted by blanks
};

void addNames(const QList<NameList>& lists)
{
    QTest::addColumn<QStringList>("names");
    for (const NameList& list : lists) {
        if ((list.where & here()) != 0)
            QTest::newRow(list.rule) << list.names.split(u' ');
    }
}

} // namespace

class tst_matchers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void eventFolderType_data();
    void eventFolderType();
    void matchesProject_data();
    void matchesProject();
    void matchesApplePhotos_data();
    void matchesApplePhotos();
    void separator_data();
    void separator();
    void matchesDate_data();
    void matchesDate();
    void dayNames_data();
    void dayNames();
    void monthNames_data();
    void monthNames();
    void matchesMonth_data();
    void matchesMonth();
    void matchesYear_data();
    void matchesYear();

private:
    const Classifier classifier { QFileInfo(u"/pictures"_s) };
};

// Should Qt not know a locale, everything would run in another one and pass there.
void tst_matchers::initTestCase()
{
    const QString wanted = qEnvironmentVariable("LC_ALL").section(u'.', 0, 0);
    if (here() == 0)
        QSKIP("The tables know C, en_US, de_DE, fr_FR, ja_JP, ar_EG and ccp_BD: set LC_ALL");
    QCOMPARE(QLocale::system().name(), wanted);
    QCOMPARE(QLocale().name(), wanted);
    QCOMPARE(QLocale().zeroDigit().size(), here() == InChakma ? 2 : 1);
}

void tst_matchers::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_matchers::eventFolderType_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<VLEventFolderTypeEnum>("type");
    const QList<TypeRow> rows = typeRows();
    for (const TypeRow& row : rows) {
        if ((row.where & here()) != 0)
            QTest::newRow(row.rule) << row.name << row.type;
    }
}

void tst_matchers::eventFolderType()
{
    QFETCH(const QString, name);
    QFETCH(const VLEventFolderTypeEnum, type);

    QCOMPARE(classifier.eventFolderType(name).value(), type);
}

void tst_matchers::matchesProject_data()
{
    addRows({
        { "suffix", u"Urlaub_vlp-Dateien"_s, true },
        { "suffix_alone", u"_vlp-Dateien"_s, true },
        { "suffix_after_a_date", u"2019-07-14_vlp-Dateien"_s, true },
        { "suffix_after_nul", u"a\000_vlp-Dateien"_s, true },
        { "suffix_after_a_lone_surrogate", QChar(0xd83d) + u"_vlp-Dateien"_s, true },
        { "trailing_slash", u"x_vlp-Dateien/"_s, false },
        { "trailing_blank", u"x_vlp-Dateien "_s, false },
        { "trailing_nul", u"x_vlp-Dateien\000"_s, false },
        { "suffix_in_front", u"_vlp-Dateien_x"_s, false },
        { "small_d", u"x_vlp-dateien"_s, false },
        { "capitals", u"x_VLP-DATEIEN"_s, false },
        { "no_underscore", u"xvlp-Dateien"_s, false },
        { "en_dash", u"x_vlp\u2013Dateien"_s, false },
        { "empty", u""_s, false },
    });
}

void tst_matchers::matchesProject()
{
    QFETCH(const QString, name);
    QFETCH(const bool, matches);

    QCOMPARE(classifier.matchesProject(name), matches);
}

void tst_matchers::matchesApplePhotos_data()
{
    addRows({
        { "prefix_alone", u"photokit"_s, true },
        { "prefix_and_path", u"photokit/Library/2019"_s, true },
        { "prefix_and_scheme", u"photokit://asset"_s, true },
        { "prefix_and_letters", u"photokitten"_s, true },
        { "prefix_and_nul", u"photokit\000"_s, true },
        { "capital", u"Photokit"_s, false },
        { "capitals", u"PHOTOKIT/x"_s, false },
        { "text_before", u"my photokit"_s, false },
        { "blank_before", u" photokit"_s, false },
        { "slash_before", u"/photokit"_s, false },
        { "one_letter_less", u"photoki"_s, false },
        { "empty", u""_s, false },
    });
}

void tst_matchers::matchesApplePhotos()
{
    QFETCH(const QString, name);
    QFETCH(const bool, matches);

    QCOMPARE(classifier.matchesApplePhotos(name), matches);
}

void tst_matchers::separator_data()
{
    addRows({
        { "hyphen", u"-"_s, true },
        { "vertical_bar", u"|"_s, true },
        { "comma", u","_s, true },
        { "full_stop", u"."_s, true },
        { "blank", u" "_s, true },
        { "tab", u"\t"_s, true },
        { "line_feed", u"\n"_s, true },
        { "vertical_tab", u"\v"_s, true },
        { "form_feed", u"\f"_s, true },
        { "carriage_return", u"\r"_s, true },
        { "nothing", u""_s, false },
        { "two_hyphens", u"--"_s, false },
        { "comma_and_blank", u", "_s, false },
        { "underscore", u"_"_s, false },
        { "slash", u"/"_s, false },
        { "backslash", u"\\"_s, false },
        { "opening_bracket", u"["_s, false },
        { "colon", u":"_s, false },
        { "semicolon", u";"_s, false },
        { "plus", u"+"_s, false },
        { "letter_s", u"s"_s, false },
        { "nul", u"\000"_s, false },
        { "file_separator", u"\x1c"_s, false },
        { "next_line", u"\u0085"_s, false },
        { "no_break_space", u"\u00a0"_s, false },
        { "middle_dot", u"\u00b7"_s, false },
        { "em_space", u"\u2003"_s, false },
        { "no_break_hyphen", u"\u2011"_s, false },
        { "en_dash", u"\u2013"_s, false },
        { "line_separator", u"\u2028"_s, false },
        { "narrow_no_break_space", u"\u202f"_s, false },
        { "minus_sign", u"\u2212"_s, false },
        { "ideographic_space", u"\u3000"_s, false },
        { "ideographic_full_stop", u"\u3002"_s, false },
        { "fullwidth_full_stop", u"\uff0e"_s, false },
        { "emoji", u"😀"_s, false },
        { "lone_surrogate", QString(QChar(0xd83d)), false },
    });
}

// No 99th month exists in any locale: only the shape can be found.
void tst_matchers::separator()
{
    QFETCH(const QString, name);
    QFETCH(const bool, matches);

    QCOMPARE(classifier.matchesDate(u"3999"_s + name + u"99"_s + name + u"99"_s), matches);
    QCOMPARE(classifier.matchesDate(u"99"_s + name + u"99"_s + name + u"3999"_s), matches);
    QCOMPARE(classifier.matchesDate(u"99"_s + name + u"99"_s + name + u"99"_s), matches);
    QCOMPARE(classifier.matchesDate(u"99"_s + name + u"99-99"_s), matches);
    QCOMPARE(classifier.matchesDate(u"99-99"_s + name + u"99"_s), matches);
}

void tst_matchers::matchesDate_data()
{
    addRows({
        { "year_month_day", u"2019-07-14"_s, true },
        { "day_month_year", u"14.07.2019"_s, true },
        { "two_digit_year", u"14.07.19"_s, true },
        { "shape_only", u"0000-00-00"_s, true },
        { "shape_within_a_project_folder", u"2019-07-14_vlp-Dateien"_s, true },
        { "text_date", u"Trip Jul 14 2019"_s, true },
        { "rfc_2822_date", u"14 Jul 2019"_s, true },
        { "two_parts", u"2019-07"_s, false },
        { "year", u"2019"_s, false },
        { "month", u"08"_s, false },
        { "range_of_years", u"1999-2000"_s, false },
        { "lone_surrogate", u"2019-07-14"_s + QChar(0xd800), false },
        { "empty_name_is_no_empty_day_name", u""_s, false },
        { "null", QString(), false },
        { "long_name", QString(100'000, u'9'), false },
    });
}

void tst_matchers::matchesDate()
{
    QFETCH(const QString, name);
    QFETCH(const bool, matches);

    QCOMPARE(classifier.matchesDate(name), matches);
}

void tst_matchers::dayNames_data()
{
    addNames({
        { "long_english", InC | InEnglish,
          u"Monday Tuesday Wednesday Thursday Friday Saturday Sunday"_s },
        { "short_english", InC | InEnglish, u"Mon Tue Wed Thu Fri Sat Sun"_s },
        { "narrow_c", InC, u"1 2 3 4 5 6 7"_s },
        { "narrow_english", InEnglish, u"M T W F S"_s },
        { "long_german", InGerman,
          u"Montag Dienstag Mittwoch Donnerstag Freitag Samstag Sonntag"_s },
        { "short_german", InGerman, u"Mo. Di. Mi. Do. Fr. Sa. So."_s },
        { "narrow_german", InGerman, u"M D F S"_s },
        { "long_french", InFrench, u"lundi mardi mercredi jeudi vendredi samedi dimanche"_s },
        { "short_french", InFrench, u"lun. mar. mer. jeu. ven. sam. dim."_s },
        { "narrow_french", InFrench, u"L M J V S D"_s },
        { "long_japanese", InJapanese, u"月曜日 火曜日 水曜日 木曜日 金曜日 土曜日 日曜日"_s },
        { "narrow_japanese", InJapanese, u"月 火 水 木 金 土 日"_s },
        { "long_arabic", InArabic, u"الاثنين الثلاثاء الأربعاء الخميس الجمعة السبت الأحد"_s },
        { "narrow_arabic", InArabic, u"ن ث ر خ ج س ح"_s },
        { "short_chakma", InChakma, u"𑄥𑄧𑄟𑄴 𑄟𑄧𑄁𑄉𑄧𑄣𑄴 𑄝𑄪𑄖𑄴 𑄝𑄳𑄢𑄨𑄥𑄪𑄛𑄴 𑄥𑄪𑄇𑄴𑄇𑄮𑄢𑄴 𑄥𑄧𑄚𑄨 𑄢𑄧𑄝𑄨"_s },
    });
}

void tst_matchers::dayNames()
{
    QFETCH(const QStringList, names);

    for (const QString& name : names) {
        QVERIFY2(classifier.matchesDate(name), qPrintable(name));
        QVERIFY2(!classifier.matchesDate(name + u' '), qPrintable(name));
        QCOMPARE(classifier.eventFolderType(name).value(), Type::Day);
    }
}

void tst_matchers::monthNames_data()
{
    addNames({
        { "long_english", InC | InEnglish,
          u"January February March April May June July August September October November "
          "December"_s },
        { "short_english", InC | InEnglish, u"Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec"_s },
        { "long_german", InGerman,
          u"Januar Februar März April Mai Juni Juli August September Oktober November "
          "Dezember"_s },
        { "short_german", InGerman,
          u"Jan. Feb. März Apr. Mai Juni Juli Aug. Sept. Okt. Nov. Dez."_s },
        { "long_french", InFrench,
          u"janvier février mars avril mai juin juillet août septembre octobre novembre "
          "décembre"_s },
        { "short_french", InFrench,
          u"janv. févr. mars avr. mai juin juil. août sept. oct. nov. déc."_s },
        { "japanese", InJapanese, u"1月 2月 3月 4月 5月 6月 7月 8月 9月 10月 11月 12月"_s },
        { "arabic", InArabic,
          u"يناير فبراير مارس أبريل مايو يونيو يوليو أغسطس سبتمبر أكتوبر نوفمبر ديسمبر"_s },
        { "long_chakma", InChakma, u"𑄎𑄚𑄪𑄠𑄢𑄨 𑄜𑄬𑄛𑄴𑄝𑄳𑄢𑄪𑄠𑄢𑄨 𑄟𑄢𑄴𑄌𑄧 𑄃𑄬𑄛𑄳𑄢𑄨𑄣𑄴 𑄟𑄬 𑄎𑄪𑄚𑄴 𑄎𑄪𑄣𑄭"_s },
        { "short_chakma", InChakma, u"𑄎𑄚𑄪 𑄜𑄬𑄛𑄴"_s },
        { "numbers", Everywhere, u"1 2 3 4 5 6 7 8 9 10 11 12"_s },
        { "padded_numbers", Everywhere, u"01 02 03 04 05 06 07 08 09"_s },
    });
}

void tst_matchers::monthNames()
{
    QFETCH(const QStringList, names);

    for (const QString& name : names) {
        QVERIFY2(classifier.matchesMonth(name), qPrintable(name));
        QVERIFY2(!classifier.matchesMonth(name + u' '), qPrintable(name));
    }
}

void tst_matchers::matchesMonth_data()
{
    addRows({
        { "zero", u"0"_s, false },
        { "two_zeros", u"00"_s, false },
        { "thirteen", u"13"_s, false },
        { "padded_ten", u"010"_s, false },
        { "padded_twelve", u"012"_s, false },
        { "padded_twice", u"007"_s, false },
        { "negative", u"-7"_s, false },
        { "arabic_digit", u"٧"_s, false },
        { "chakma_digit", u"𑄽"_s, false },
        { "number_within_text", u"a 7"_s, false },
        { "number_and_line_feed", u"7\n"_s, false },
        { "number_and_nul", u"7\000"_s, false },
        { "narrow_month_name", u"N"_s, false },
        { "narrow_arabic_month_name", u"أ"_s, false },
        { "small_letters", u"july"_s, false },
        { "year_and_month", u"2019-07"_s, false },
        { "empty", u""_s, false },
        { "lone_surrogate", QString(QChar(0xd800)), false },
        { "long_name", QString(100'000, u'7'), false },
    });
}

void tst_matchers::matchesMonth()
{
    QFETCH(const QString, name);
    QFETCH(const bool, matches);

    QCOMPARE(classifier.matchesMonth(name), matches);
}

void tst_matchers::matchesYear_data()
{
    addRows({
        { "first", u"2000"_s, true },
        { "last", u"2999"_s, true },
        { "before", u"1999"_s, false },
        { "after", u"3000"_s, false },
        { "letters_around", u"x2019y"_s, true },
        { "digits_around", u"9201999"_s, true },
        { "later_digits_of_a_number", u"12345"_s, true },
        { "first_digits_of_a_number", u"20190"_s, true },
        { "second_two", u"2 2019"_s, true },
        { "within_a_date", u"14.07.2019"_s, true },
        { "within_a_project_folder", u"2019_vlp-Dateien"_s, true },
        { "after_nul", u"\0002019"_s, true },
        { "after_line_feed", u"a\n2019"_s, true },
        { "three_digits", u"201"_s, false },
        { "two_in_the_last_three_digits", u"13299"_s, false },
        { "parted", u"20 19"_s, false },
        { "arabic_digits", u"٢٠١٩"_s, false },
        { "arabic_digits_after_an_ascii_two", u"2٠١٩"_s, false },
        { "fullwidth_digits", u"２０１９"_s, false },
        { "mathematical_digits", u"𝟐𝟎𝟏𝟗"_s, false },
        { "surrogate_pair_before", u"😀2019"_s, true },
        { "lone_surrogate_before", QChar(0xd800) + u"2019"_s, false },
        { "lone_surrogate_after", u"2019"_s + QChar(0xdc00), false },
        { "empty", u""_s, false },
        { "end_of_a_long_name", QString(100'000, u'1') + u"2019"_s, true },
        { "long_name", QString(100'000, u'1'), false },
    });
}

void tst_matchers::matchesYear()
{
    QFETCH(const QString, name);
    QFETCH(const bool, matches);

    QCOMPARE(classifier.matchesYear(name), matches);
}

QTEST_GUILESS_MAIN(tst_matchers)
#include "tst_matchers.moc"
