#include "LiteralRules.h"
#include "TestRows.h"
#include "TypeNames.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtCore/QLibraryInfo>
#include <QtCore/QList>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVersionNumber>
#include <QtTest/QTest>

#if __has_include(<QtCore/private/qlocale_p.h>)
#    include <QtCore/private/qlocale_p.h>
#endif

#include <array>
#include <thread>
#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Classifier = VLFolioEventClassifier;

static_assert(std::has_virtual_destructor_v<Classifier>);
static_assert(sizeof(Classifier) == sizeof(void*) + sizeof(QFileInfo),
              "a classifier holds its root directory and nothing else");
static_assert(std::is_constructible_v<Classifier, const QFileInfo&>);
static_assert(!std::is_default_constructible_v<Classifier>);
static_assert(std::is_copy_constructible_v<Classifier> && std::is_copy_assignable_v<Classifier>);
static_assert(std::is_nothrow_move_constructible_v<Classifier>);
static_assert(std::is_nothrow_move_assignable_v<Classifier>);

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

/// The locale of this process, 0 for one that the tables do not know.
unsigned here()
{
    const QList<std::pair<QString, Where>> names {
        { u"C"_s, InC },           { u"en_US"_s, InEnglish },  { u"de_DE"_s, InGerman },
        { u"fr_FR"_s, InFrench },  { u"ja_JP"_s, InJapanese }, { u"ar_EG"_s, InArabic },
        { u"ccp_BD"_s, InChakma },
    };
    for (const auto& [name, where] : names) {
        if (name == QLocale().name())
            return where;
    }
    return 0;
}

/// A name and its type in the locales where the row holds; what it is elsewhere.
struct TypeRow
{
    const char* rule;
    QString name;
    Type type;
    unsigned where = Everywhere;
    Type elsewhere = Type::Unknown;
};

// Seen with Qt 6.4, 6.8 and 6.11: somewhere between the last two its own answers changed.
bool isNewerQt()
{
    return QLibraryInfo::version() >= QVersionNumber(6, 9);
}

// clang-format off

QList<TypeRow> projectRows()
{
    return {
        { "project", u"Urlaub_vlp-Dateien"_s, Type::ProjectFolder },
        { "project_suffix_alone", u"_vlp-Dateien"_s, Type::ProjectFolder },
        { "project_before_date", u"2019-07-14_vlp-Dateien"_s, Type::ProjectFolder },
        { "project_before_year", u"2019_vlp-Dateien"_s, Type::ProjectFolder },
        { "project_small_d", u"Urlaub_vlp-dateien"_s, Type::Unknown },
        { "project_suffix_not_at_the_end", u"Urlaub_vlp-Dateien 2"_s, Type::Unknown },
        { "project_after_surrogate", QChar(0xd83d) + u"_vlp-Dateien"_s, Type::ProjectFolder },
        { "project_and_slash", u"x_vlp-Dateien/"_s, Type::Unknown },
        { "project_and_blank", u"x_vlp-Dateien "_s, Type::Unknown },
        { "project_in_capitals", u"x_VLP-DATEIEN"_s, Type::Unknown },
        { "project_without_underscore", u"xvlp-Dateien"_s, Type::Unknown },
        { "photo_library_prefix_is_no_type", u"photokit"_s, Type::Unknown },
    };
}

QList<TypeRow> shapeRows()
{
    return {
        { "year_month_day", u"2019-07-14"_s, Type::Day },
        { "year_month_day_and_text", u"2019-07-14 Beach"_s, Type::Day },
        { "text_and_year_month_day", u"Beach 2019-07-14"_s, Type::Day },
        { "day_month_year", u"14.07.2019"_s, Type::Day },
        { "day_month_two_digit_year", u"14.07.19"_s, Type::Day },
        { "commas", u"2019,07,14"_s, Type::Day },
        { "blanks", u"2019 07 14"_s, Type::Day },
        { "vertical_bars", u"2019|07|14"_s, Type::Day },
        { "separators_may_differ", u"2019-07.14"_s, Type::Day },
        { "no_real_date", u"2019-13-45"_s, Type::Day },
        { "one_digit_of_a_day_is_no_shape", u"x1-07-2019"_s, Type::Year },
        { "one_digit_of_a_month_is_no_shape", u"x14-7-2019"_s, Type::Year },
        { "three_digits_of_a_month_are_no_shape", u"x14-007-2019"_s, Type::Year },
        { "no_real_two_digit_date", u"99.99.99"_s, Type::Day },
        { "shape_needs_no_2000", u"1999-12-31"_s, Type::Day },
        { "shape_within_more_digits", u"120190-07-1456"_s, Type::Day },
        { "shape_within_a_time", u"IMG_20190714.12.30"_s, Type::Day },
        { "shape_on_a_later_line", u"Beach\n2019-07-14"_s, Type::Day },
        { "shape_after_nul", u"a\0002019-07-14"_s, Type::Day },
        { "one_digit_first", u"9-07-14"_s, Type::Unknown },
        { "one_digit_month", u"2019-7-14"_s, Type::Year },
        { "one_digit_day", u"2019-07-1"_s, Type::Year },
        { "three_digit_month", u"2019-007-14"_s, Type::Year },
        { "no_separator", u"20190714"_s, Type::Year },
        { "underscore_is_no_separator", u"2019_07_14"_s, Type::Year },
        { "arabic_digits_have_no_shape", u"٢٠١٩-٠٧-١٤"_s, Type::Unknown },
        { "arabic_shape_beside_ascii_digits", u"111111 ٢٠١٩-٠٧-١٤"_s, Type::Unknown },
        { "lone_surrogate_before", QChar(0xd83d) + u" 2019-07-14"_s, Type::Unknown },
        { "lone_surrogate_after", u"2019-07-14 "_s + QChar(0xde00), Type::Unknown },
        { "surrogate_pair_before_shape", u"😀 2019-07-14"_s, Type::Day },
        { "shape_ends_long_name", QString(100'000, u'x') + u"2019-07-14"_s, Type::Day },
    };
}

QList<TypeRow> fixedFormatRows()
{
    return {
        { "text_date", u"Sun Jul 14 2019"_s, Type::Day },
        { "text_date_two_digits", u"Trip Jul 4 5"_s, Type::Day },
        { "text_date_first_word_does_not_count", u"Trip Jul 14 2019"_s, Type::Day },
        { "text_date_wrong_day_of_the_week", u"Mon Jul 14 2019"_s, Type::Day },
        { "text_date_several_blanks", u"Sun  Jul  14  2019"_s, Type::Day },
        { "text_date_month_is_short", u"Trip July 14 2019"_s, Type::Year },
        { "text_date_without_first_word", u"Jul 14 2019"_s, Type::Year },
        { "text_date_fifth_word", u"Sun Jul 14 2019 x"_s, Type::Year },
        { "four_words", u"a b c d"_s, Type::Unknown },
        { "rfc_2822", u"Sun, 14 Jul 2019"_s, Type::Day },
        { "rfc_2822_without_day_name", u"14 Jul 2019"_s, Type::Day },
        { "rfc_2822_two_digits", u"4 Jul 5"_s, isNewerQt() ? Type::Unknown : Type::Day },
        { "rfc_2822_with_time", u"Sun, 14 Jul 2019 10:00:00 +0200"_s, Type::Day },
        { "rfc_2822_wrong_day_of_the_week", u"Mon, 14 Jul 2019"_s, Type::Year },
        { "rfc_2822_and_text", u"14 Jul 2019 x"_s, Type::Year },
    };
}

QList<TypeRow> localeDateRows()
{
    return {
        { "c_long_date", u"Sunday, 14 July 2019"_s, Type::Day, InC, Type::Year },
        { "english_long_date", u"Sunday, July 14, 2019"_s, Type::Day, InEnglish, Type::Year },
        { "english_long_date_and_text", u"Sunday, July 14, 2019 Beach"_s, Type::Year },
        { "english_short_date", u"7/14/19"_s, Type::Day, InEnglish },
        { "date_and_blank", u"7/14/19 "_s, Type::Unknown },
        { "two_digit_year_is_not_of_2000", u"2/29/00"_s, Type::Unknown },
        { "two_digit_year_is_of_1900", u"2/28/00"_s, Type::Day, InEnglish },
        { "two_digit_leap_year", u"2/29/04"_s, Type::Day, InEnglish },
        { "german_long_date", u"Sonntag, 14. Juli 2019"_s, Type::Day, InGerman, Type::Year },
        { "german_date_without_day_of_the_week", u"14. Juli 2019"_s, Type::Year },
        { "french_long_date", u"dimanche 14 juillet 2019"_s, Type::Day, InFrench, Type::Year },
        { "french_short_date", u"14/07/2019"_s, Type::Day, InFrench, Type::Year },
        { "japanese_long_date", u"2019年7月14日日曜日"_s, Type::Day, InJapanese, Type::Year },
        { "japanese_short_date", u"2019/07/14"_s, Type::Day, InJapanese, Type::Year },
        { "arabic_long_date", u"الأحد، ١٤ يوليو ٢٠١٩"_s, Type::Day, InArabic },
        { "arabic_date_with_ascii_digits", u"الأحد، 14 يوليو 2019"_s, Type::Day, InArabic, Type::Year },
        { "chakma_short_date_in_ascii", u"14/7/19"_s, Type::Day, InChakma },
    };
}

QList<TypeRow> dayNameRows()
{
    return {
        { "english_day", u"Monday"_s, Type::Day, InC | InEnglish },
        { "english_short_day", u"Mon"_s, Type::Day, InC | InEnglish },
        { "narrow_day", u"M"_s, Type::Day, InEnglish | InGerman | InFrench },
        { "day_in_small_letters", u"monday"_s, Type::Unknown },
        { "day_and_blank", u"Monday "_s, Type::Unknown },
        { "blank_and_day", u" Monday"_s, Type::Unknown },
        { "day_and_text", u"Monday at the beach"_s, Type::Unknown },
        { "german_day", u"Montag"_s, Type::Day, InGerman },
        { "german_short_day_has_a_full_stop", u"Mo."_s, Type::Day, InGerman },
        { "german_short_day_without_full_stop", u"Mo"_s, Type::Unknown },
        { "french_day", u"lundi"_s, Type::Day, InFrench },
        { "japanese_day", u"月曜日"_s, Type::Day, InJapanese },
        { "arabic_day", u"الاثنين"_s, Type::Day, InArabic },
        { "chakma_day", u"𑄥𑄧𑄟𑄴𑄝𑄢𑄴"_s, Type::Day, InChakma },
    };
}

QList<TypeRow> monthRows()
{
    return {
        { "one_is_a_narrow_day_in_c", u"1"_s, Type::Day, InC, Type::Month },
        { "seven_is_a_narrow_day_in_c", u"7"_s, Type::Day, InC, Type::Month },
        { "eight", u"8"_s, Type::Month },
        { "nine", u"9"_s, Type::Month },
        { "ten", u"10"_s, Type::Month },
        { "twelve", u"12"_s, Type::Month },
        { "thirteen", u"13"_s, Type::Unknown },
        { "zero", u"0"_s, Type::Unknown },
        { "two_zeros", u"00"_s, Type::Unknown },
        { "padded_one", u"01"_s, Type::Month },
        { "padded_seven", u"07"_s, Type::Month },
        { "padded_nine", u"09"_s, Type::Month },
        { "padded_ten", u"010"_s, Type::Unknown },
        { "padded_twice", u"007"_s, Type::Unknown },
        { "text_and_number", u"a 8"_s, Type::Unknown },
        { "number_and_blank", u"08 "_s, Type::Unknown },
        { "number_and_text", u"08 Beach"_s, Type::Unknown },
        { "arabic_digit", u"٧"_s, Type::Unknown },
        { "english_month", u"July"_s, Type::Month, InC | InEnglish },
        { "english_short_month", u"Jul"_s, Type::Month, InC | InEnglish },
        { "month_in_small_letters", u"july"_s, Type::Unknown },
        { "month_and_text", u"July in Rome"_s, Type::Unknown },
        { "month_and_year", u"July 2019"_s, Type::Year },
        { "year_and_month", u"2019-07"_s, Type::Year },
        { "narrow_month", u"O"_s, Type::Unknown },
        { "german_month", u"Juli"_s, Type::Month, InGerman },
        { "german_month_decomposed", u"Ma\u0308rz"_s, Type::Unknown },
        { "french_month", u"juillet"_s, Type::Month, InFrench },
        { "japanese_month", u"7月"_s, Type::Month, InJapanese },
        { "arabic_month", u"يوليو"_s, Type::Month, InArabic },
        { "chakma_month", u"𑄎𑄪𑄣𑄭"_s, Type::Month, InChakma },
    };
}

QList<TypeRow> otherRows()
{
    return {
        { "empty", u""_s, Type::Unknown },
        { "blank", u" "_s, Type::Unknown },
        { "text", u"Beach"_s, Type::Unknown },
        { "year", u"2019"_s, Type::Year },
        { "year_within_text", u"Summer 2019 trip"_s, Type::Year },
        { "year_within_digits", u"12345"_s, Type::Year },
        { "first_year", u"2000"_s, Type::Year },
        { "last_year", u"2999"_s, Type::Year },
        { "year_before_2000", u"1999"_s, Type::Unknown },
        { "year_of_a_range", u"1999-2000"_s, Type::Year },
        { "year_3000", u"3000"_s, Type::Unknown },
        { "year_within_letters", u"x2019y"_s, Type::Year },
        { "year_between_digits", u"9201999"_s, Type::Year },
        { "year_of_the_second_two", u"2 2019"_s, Type::Year },
        { "two_in_the_last_three_digits", u"13299"_s, Type::Unknown },
        { "parted_year", u"20 19"_s, Type::Unknown },
        { "year_in_arabic_digits", u"٢٠١٩"_s, Type::Unknown },
        { "arabic_digits_after_an_ascii_two", u"2٠١٩"_s, Type::Unknown },
        { "arabic_digits_beside_ascii_digits", u"1111 2٠١٩"_s, Type::Unknown },
        { "year_after_surrogate_pair", u"😀2019"_s, Type::Year },
        { "year_after_lone_surrogate", QChar(0xd800) + u"2019"_s, Type::Unknown },
        { "year_before_lone_surrogate", u"2019"_s + QChar(0xdc00), Type::Unknown },
        { "year_after_line_feed", u"a\n2019"_s, Type::Year },
        { "year_ends_long_name", QString(100'000, u'1') + u"2019"_s, Type::Year },
        { "long_name", QString(100'000, u'x'), Type::Unknown },
    };
}

// clang-format on

Type typeOf(const QString& name)
{
    return Classifier(QFileInfo(u"/pictures"_s)).eventFolderType(name).value();
}

/// What the matchers say of a name: "date", "month", "year", "project", parted by blanks.
QString answersFor(const QString& name)
{
    const Classifier classifier { QFileInfo(u"/pictures"_s) };
    QStringList answers;
    if (classifier.matchesDate(name))
        answers.append(u"date"_s);
    if (classifier.matchesMonth(name))
        answers.append(u"month"_s);
    if (classifier.matchesYear(name))
        answers.append(u"year"_s);
    if (classifier.matchesProject(name))
        answers.append(u"project"_s);
    return answers.join(u' ');
}

#if __has_include(<QtCore/private/qlocale_p.h>)

// A value in some versions of Qt, a reference in others.
template <typename Argument>
Argument argumentOf(QVariant (QSystemLocale::*query)(QSystemLocale::QueryType, Argument) const);
using QueryArgument = decltype(argumentOf(&QSystemLocale::query));

// The settings of a user who has changed the format of dates, or the names of days, by hand. What
// is null stays as it is in English, but for a full stop in a month's name.
class UserSettings : public QSystemLocale
{
public:
    static constexpr bool areAvailable = true;

    UserSettings(QString dateFormat, QString dayName)
        : m_dateFormat(std::move(dateFormat))
        , m_dayName(std::move(dayName))
    {
    }

    QVariant query(QueryType type, QueryArgument argument) const override
    {
        switch (type) {
        case DateFormatLong:
        case DateFormatShort:
            return m_dateFormat.isNull() ? QVariant() : m_dateFormat;
        case MonthNameShort:
            return argument.toInt() == 7 ? u"Jul."_s : QVariant();
        case DayNameLong:
        case DayNameShort:
        case DayNameNarrow:
            return m_dayName.isNull() ? QVariant() : m_dayName;
        default:
            return {};
        }
    }

private:
    QString m_dateFormat;
    QString m_dayName;
};

#else

class UserSettings
{
public:
    static constexpr bool areAvailable = false;
    UserSettings(const QString&, const QString&) { }
};

#endif

} // namespace

/// Runs once for each of the locales, which the environment names.
class tst_matchers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { QTest::failOnWarning(QRegularExpression(u".?"_s)); }

    void eventFolderType_data();
    void eventFolderType();
    void severalMatchersHold_data();
    void severalMatchersHold();
    void matchesApplePhotos_data();
    void matchesApplePhotos();
    void separators_data();
    void separators();
    void namesOfDaysAndMonths_data();
    void namesOfDaysAndMonths();
};

// Should Qt not know a locale, everything would run in another one and pass there.
void tst_matchers::initTestCase()
{
    const QString wanted = qEnvironmentVariable("LC_ALL").section(u'.', 0, 0);
    if (here() == 0)
        QSKIP("The tables know C, en_US, de_DE, fr_FR, ja_JP, ar_EG and ccp_BD: set LC_ALL");
    QCOMPARE(QLocale().name(), wanted);
    QCOMPARE(QLocale().zeroDigit().size(), here() == InChakma ? 2 : 1);
}

void tst_matchers::eventFolderType_data()
{
    const QList<TypeRow> rows = projectRows() + shapeRows() + fixedFormatRows() + localeDateRows()
        + dayNameRows() + monthRows() + otherRows();
    const TestRows<QString, Type> row("name", "type");
    for (const TypeRow& of : rows)
        row(of.rule, of.name, (of.where & here()) != 0 ? of.type : of.elsewhere);
}

// The type is that of the first matcher that holds.
void tst_matchers::eventFolderType()
{
    QFETCH(const QString, name);
    QFETCH(const VLEventFolderTypeEnum, type);

    QCOMPARE(typeOf(name), type);
    const QStringList answers = answersFor(name).split(u' ');
    QCOMPARE(answers.contains(u"project"_s), type == Type::ProjectFolder);
    if (type == Type::ProjectFolder)
        return;
    QCOMPARE(answers.contains(u"date"_s), type == Type::Day);
    if (type == Type::Day)
        return;
    QCOMPARE(answers.contains(u"month"_s), type == Type::Month);
    if (type != Type::Month)
        QCOMPARE(answers.contains(u"year"_s), type == Type::Year);
}

void tst_matchers::severalMatchersHold_data()
{
    const TestRows<QString, QString> row("name", "answers");
    row("date_and_year", u"2019-07-14"_s, u"date year"_s);
    row("date_without_year", u"0000-00-00"_s, u"date"_s);
    row("date_of_a_project", u"2019-07-14_vlp-Dateien"_s, u"date year project"_s);
    row("year_of_a_project", u"2019_vlp-Dateien"_s, u"year project"_s);
    row("month_of_a_project", u"08_vlp-Dateien"_s, u"project"_s);
    row("lone_surrogate", u"2019-07-14"_s + QChar(0xd800), u""_s);
    row("empty_name_is_no_empty_day_name", u""_s, u""_s);
    row("long_name_of_digits", QString(100'000, u'9'), u""_s);
}

void tst_matchers::severalMatchersHold()
{
    QFETCH(const QString, name);
    QTEST(answersFor(name), "answers");
}

void tst_matchers::matchesApplePhotos_data()
{
    const TestRows<QString, bool> row("path", "matches");
    row("prefix_alone", u"photokit"_s, true);
    row("prefix_and_path", u"photokit/Library/2019"_s, true);
    row("prefix_and_letters", u"photokitten"_s, true);
    row("capital", u"Photokit"_s, false);
    row("text_before", u"my photokit"_s, false);
    row("slash_before", u"/photokit"_s, false);
    row("one_letter_less", u"photoki"_s, false);
    row("empty", u""_s, false);
}

void tst_matchers::matchesApplePhotos()
{
    QFETCH(const QString, path);
    QTEST(Classifier(QFileInfo()).matchesApplePhotos(path), "matches");
}

// A row for each character, named by its number.
void tst_matchers::separators_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("parts");

    const auto rows = [](const QString& characters, bool parts) {
        for (const uint character : characters.toUcs4()) {
            QTest::addRow("%s_%04x", parts ? "separator" : "no_separator", character)
                << QString::fromUcs4(reinterpret_cast<const char32_t*>(&character), 1) << parts;
        }
    };
    rows(u"-|,. \t\n\v\f\r"_s, true);
    rows(
        u"_/\\[:;+s\x1c\u0085\u00a0\u00b7\u2003\u2011\u2013\u2028\u202f\u2212\u3000\u3002\uff0e😀"_s,
        false);
    QTest::newRow("nothing") << u""_s << false;
    QTest::newRow("two_hyphens") << u"--"_s << false;
    QTest::newRow("comma_and_blank") << u", "_s << false;
    QTest::newRow("nul") << u"\000"_s << false;
    QTest::newRow("lone_surrogate") << QString(QChar(0xd83d)) << false;
}

// No 99th month exists in any locale: only the shape can be found.
void tst_matchers::separators()
{
    QFETCH(const QString, text);
    QFETCH(const bool, parts);
    for (const char* shape :
         { "3999%99%99", "99%99%3999", "99%99%99", "99%99-99", "99-99%99", "- 99%99%99 -" }) {
        const QString name = QString::fromLatin1(shape).replace(u'%', text);
        QVERIFY2(answersFor(name).contains(u"date"_s) == parts, shape);
    }
}

void tst_matchers::namesOfDaysAndMonths_data()
{
    const TestRows<QString, QString> row("names", "answer");
    if (here() == InC)
        row("narrow_c_days", u"1 2 3 4 5 6 7"_s, u"date"_s);
    if (here() == InEnglish)
        row("narrow_english_days", u"M T W F S"_s, u"date"_s);
    if ((here() & (InC | InEnglish)) != 0) {
        row("long_english_days", u"Monday Tuesday Wednesday Thursday Friday Saturday Sunday"_s,
            u"date"_s);
        row("short_english_days", u"Mon Tue Wed Thu Fri Sat Sun"_s, u"date"_s);
        row("long_english_months",
            u"January February March April May June July August September October November "
            "December"_s,
            u"month"_s);
        row("short_english_months", u"Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec"_s,
            u"month"_s);
    }
    if (here() == InGerman) {
        row("long_german_days", u"Montag Dienstag Mittwoch Donnerstag Freitag Samstag Sonntag"_s,
            u"date"_s);
        row("short_german_days", u"Mo. Di. Mi. Do. Fr. Sa. So."_s, u"date"_s);
        row("long_german_months",
            u"Januar Februar März April Mai Juni Juli August September Oktober November "
            "Dezember"_s,
            u"month"_s);
        row("short_german_months", u"Jan. Feb. März Apr. Mai Juni Juli Aug. Sept. Okt. Nov. Dez."_s,
            u"month"_s);
    }
    row("numbers", u"1 2 3 4 5 6 7 8 9 10 11 12"_s, u"month"_s);
    row("padded_numbers", u"01 02 03 04 05 06 07 08 09"_s, u"month"_s);
}

void tst_matchers::namesOfDaysAndMonths()
{
    QFETCH(const QString, names);
    QFETCH(const QString, answer);
    const QStringList all = names.split(u' ');
    for (const QString& name : all) {
        QVERIFY2(answersFor(name).split(u' ').contains(answer), qPrintable(name));
        QCOMPARE(answersFor(name + u' '), QString());
        if (answer == "date"_L1)
            QCOMPARE(typeOf(name), Type::Day);
    }
}

/// What is decided once per process: each function runs in a process of its own, whose arguments
/// name it, and without an application object. The system's language is American English.
class tst_matchers_fresh : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void monthsStayAndDaysFollow();
    void onlyAQuestionForMonthsDecidesTheirLanguage();
    void userSettings_data();
    void userSettings();
};

void tst_matchers_fresh::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    QCOMPARE(QLocale().name(), u"en_US"_s);
}

void tst_matchers_fresh::monthsStayAndDaysFollow()
{
    // A year is asked after the months: this is the first call that needs their names.
    QCOMPARE(typeOf(u"2019"_s), Type::Year);
    QCOMPARE(typeOf(u"Montag"_s), Type::Unknown);
    QCOMPARE(typeOf(u"Sonntag, 14. Juli 2019"_s), Type::Year);

    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QCOMPARE(typeOf(u"July"_s), Type::Month);
    QCOMPARE(typeOf(u"Jul"_s), Type::Month);
    QCOMPARE(typeOf(u"Juli"_s), Type::Unknown);
    std::array inThread { Type::Root, Type::Root };
    std::thread worker([&inThread] { inThread = { typeOf(u"July"_s), typeOf(u"Juli"_s) }; });
    worker.join();
    QCOMPARE(inThread, (std::array { Type::Month, Type::Unknown }));
    QCOMPARE(typeOf(u"Montag"_s), Type::Day);
    QCOMPARE(typeOf(u"Sonntag, 14. Juli 2019"_s), Type::Day);
    // The system's language counts beside the default.
    QCOMPARE(typeOf(u"Monday"_s), Type::Day);
    QCOMPARE(typeOf(u"Sunday, July 14, 2019"_s), Type::Day);
    QCOMPARE(typeOf(u"7/14/19"_s), Type::Day);

    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    QCOMPARE(typeOf(u"July"_s), Type::Month);
    QCOMPARE(typeOf(u"juillet"_s), Type::Unknown);
    QCOMPARE(typeOf(u"lundi"_s), Type::Day);
    QCOMPARE(typeOf(u"dimanche 14 juillet 2019"_s), Type::Day);
    QCOMPARE(typeOf(u"Montag"_s), Type::Unknown);
    QCOMPARE(typeOf(u"Sonntag, 14. Juli 2019"_s), Type::Year);
    QCOMPARE(typeOf(u"Monday"_s), Type::Day);

    // A language whose days have another ending within a date, which counts here.
    QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));
    QCOMPARE(typeOf(u"maanantaina"_s), Type::Day);
    QCOMPARE(typeOf(u"maanantai"_s), Type::Unknown);

    QLocale::setDefault(QLocale::c());
    QCOMPARE(typeOf(u"7"_s), Type::Day);
    QCOMPARE(typeOf(u"8"_s), Type::Month);
    QCOMPARE(typeOf(u"lundi"_s), Type::Unknown);
}

void tst_matchers_fresh::onlyAQuestionForMonthsDecidesTheirLanguage()
{
    const Classifier classifier(QFileInfo(u"/pictures"_s));
    QVERIFY(classifier.matchesProject(u"July_vlp-Dateien"_s));
    QVERIFY(!classifier.matchesApplePhotos(u"July"_s));
    QVERIFY(!classifier.matchesDate(u"July"_s));
    QVERIFY(!classifier.matchesYear(u"July"_s));
    QCOMPARE(typeOf(u"July_vlp-Dateien"_s), Type::ProjectFolder);
    QCOMPARE(typeOf(u"2019-07-14"_s), Type::Day);
    QCOMPARE(typeOf(u"Monday"_s), Type::Day);

    // A language whose months have another ending within a date, which counts here.
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    QCOMPARE(typeOf(u"июля"_s), Type::Month);
    QCOMPARE(typeOf(u"июль"_s), Type::Unknown);
    QCOMPARE(typeOf(u"июл."_s), Type::Month);
    QCOMPARE(typeOf(u"July"_s), Type::Unknown);
}

void tst_matchers_fresh::userSettings_data()
{
    const Type day = Type::Day;
    const TestRows<QString, QString, QString, Type> row("format", "dayName", "name", "type");
    row("month_and_day", u"MMMM d"_s, {}, u"July 4"_s, day);
    row("month_without_day", u"MMMM d"_s, {}, u"July"_s, Type::Month);
    row("no_such_day", u"MMMM d"_s, {}, u"July 40"_s, Type::Unknown);
    row("day_alone", u"d"_s, {}, u"4"_s, day);
    row("month_alone_in_letters", u"MMMM"_s, {}, u"July"_s, day);
    row("short_month_alone", u"MMM"_s, {}, u"Aug"_s, day);
    row("month_alone_in_digits", u"M"_s, {}, u"7"_s, day);
    row("two_digits_of_a_month", u"MM"_s, {}, u"07"_s, day);
    row("year_alone", u"yyyy"_s, {}, u"1999"_s, day);
    row("two_digits_of_a_year", u"yy"_s, {}, u"99"_s, day);
    row("weekday_alone", u"dddd"_s, {}, u"Monday"_s, day);
    row("day_and_month", u"d M"_s, {}, u"4 7"_s, day);
    row("day_and_month_too_few_digits", u"d M"_s, {}, u"4 "_s, Type::Unknown);
    row("quoted_day_is_text", u"'d' MMMM"_s, {}, u"d July"_s, day);
    row("quoted_year_is_text", u"'y' MMMM"_s, {}, u"y July"_s, day);
    row("lone_year_letter_is_text", u"y MMMM"_s, {}, u"y July"_s, day);
    row("field_behind_quotes", u"'on' MMMM d"_s, {}, u"on July 4"_s, day);
    row("field_between_quotes", u"'a' d 'b'"_s, {}, u"a 4 b"_s, day);
    row("two_quoted_texts", u"'d' MMMM 'd'"_s, {}, u"d July d"_s, day);
    row("full_stop", u"d.M"_s, {}, u"4.7"_s, day);
    row("full_stop_missing", u"d.M"_s, {}, u"4 7"_s, Type::Unknown);
    row("comma", u"d,M"_s, {}, u"4,7"_s, day);
    row("comma_missing", u"d,M"_s, {}, u"4 7"_s, Type::Unknown);
    row("slash", u"d/M"_s, {}, u"4/7"_s, day);
    row("slash_missing", u"d/M"_s, {}, u"4 7"_s, Type::Unknown);
    row("hyphen", u"d-M"_s, {}, u"4-7"_s, day);
    row("hyphen_missing", u"d-M"_s, {}, u"4 7"_s, Type::Unknown);
    row("quote_within_quotes", u"'a''d' MMMM"_s, {}, u"ad July"_s, day);
    row("weekday_and_month", u"dddd MMMM"_s, {}, u"Monday July"_s, day);
    row("unclosed_quote", u"MMMM d 'x"_s, {}, u"July 4 x"_s, day);
    row("letters_that_are_no_fields", u"MMMM c e L N x z"_s, {}, u"July c e L N x z"_s, day);
    row("full_stop_of_a_month_name", u"d MMM"_s, {}, u"4 Jul."_s, day);
    row("first_number_without_a_separator", u"dMyyyy"_s, {}, u"1471999"_s, day);
    row("first_number_is_a_year", u"yyyy M"_s, {}, u"1999 7"_s, day);
    row("letter_before_the_first_number", u"'x'd M"_s, {}, u"x4 7"_s, day);
    row("nothing_is_a_date_of_no_format", u""_s, {}, u""_s, day);
    row("format_of_the_host_counts_as_before", u"d_M"_s, {}, u"7/14/19"_s, day);

    row("own_day_name", {}, u"Washday"_s, u"Washday"_s, day);
    row("own_day_name_in_another_case", {}, u"Washday"_s, u"washday"_s, Type::Unknown);
    row("numerals_of_a_day_name_are_no_digits", {}, u"Tag \u2160 \u2161"_s, u"Tag \u2160 \u2161"_s,
        day);
    row("day_name_of_the_host_counts_as_before", {}, u"Washday"_s, u"Monday"_s, day);
    row("empty_day_name_matches_nothing", {}, u""_s, u""_s, Type::Unknown);
    row("empty_day_name_is_not_in_every_name", {}, u""_s, u"Beach"_s, Type::Unknown);
}

void tst_matchers_fresh::userSettings()
{
    if (!UserSettings::areAvailable)
        QSKIP("Qt's private headers are not installed");
    QFETCH(const QString, format);
    QFETCH(const QString, dayName);
    QFETCH(const QString, name);
    QFETCH(const VLEventFolderTypeEnum, type);
    // Decides which months there are, before any settings do.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QCOMPARE(typeOf(u"July"_s), Type::Month);

    const UserSettings settings(format, dayName);
    if (!format.isNull())
        QCOMPARE(QLocale::system().dateFormat(QLocale::LongFormat), format);
    if (!dayName.isNull())
        QCOMPARE(QLocale::system().dayName(1), dayName);
    QCOMPARE(typeOf(name), type);
    QCOMPARE(LiteralRules::matchesDate(name, LiteralRules::Locales::current()), type == Type::Day);
}

int main(int argc, char* argv[])
{
#if defined(Q_OS_MACOS)
    // There the language is a setting, which the environment does not change.
    QLocale::setDefault(QLocale(qEnvironmentVariable("LC_ALL").section(u'.', 0, 0)));
#endif
    const QByteArray function = QByteArray(argc > 1 ? argv[1] : "").append("()");
    if (tst_matchers_fresh::staticMetaObject.indexOfSlot(function.constData()) >= 0) {
        tst_matchers_fresh test;
        return QTest::qExec(&test, argc, argv);
    }
    const QCoreApplication application(argc, argv);
    tst_matchers test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_matchers.moc"
