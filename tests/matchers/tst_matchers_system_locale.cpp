#include "LiteralRules.h"
#include "TypeNames.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QVariant>
#include <QtCore/private/qlocale_p.h>
#include <QtTest/QTest>

#include <utility>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;

namespace {

// A value in some versions of Qt, a reference in others.
template <typename Argument>
Argument argumentOf(QVariant (QSystemLocale::*query)(QSystemLocale::QueryType, Argument) const);
using QueryArgument = decltype(argumentOf(&QSystemLocale::query));

// The settings of a user who has changed the format of dates, or the names of days, by hand. What
// is null stays as it is in English, but for a full stop in a month's name.
class UserSettings : public QSystemLocale
{
public:
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

Type typeOf(const QString& name)
{
    return VLFolioEventClassifier(QFileInfo(u"/pictures"_s)).eventFolderType(name).value();
}

} // namespace

class tst_matchers_system_locale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void dateFormat_data();
    void dateFormat();
    void dayName_data();
    void dayName();
};

void tst_matchers_system_locale::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    // Decides which months there are, before any settings do.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QVERIFY(VLFolioEventClassifier(QFileInfo(u"/pictures"_s)).matchesMonth(u"July"_s));
}

void tst_matchers_system_locale::dateFormat_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("name");
    QTest::addColumn<VLEventFolderTypeEnum>("type");

    const auto row = [](const char* name, const QString& format, const QString& folder, Type type) {
        QTest::newRow(name) << format << folder << type;
    };
    row("month_and_day", u"MMMM d"_s, u"July 4"_s, Type::Day);
    row("month_and_two_digits", u"MMMM d"_s, u"July 14"_s, Type::Day);
    row("month_without_day", u"MMMM d"_s, u"July"_s, Type::Month);
    row("no_such_day", u"MMMM d"_s, u"July 40"_s, Type::Unknown);
    row("day_alone", u"d"_s, u"4"_s, Type::Day);
    row("day_alone_beyond_the_months", u"d"_s, u"31"_s, Type::Day);
    row("no_such_day_alone", u"d"_s, u"32"_s, Type::Unknown);
    row("two_digits_of_a_day", u"dd"_s, u"31"_s, Type::Day);
    row("month_alone_in_letters", u"MMMM"_s, u"July"_s, Type::Day);
    row("short_month_alone", u"MMM"_s, u"Aug"_s, Type::Day);
    row("month_alone_in_digits", u"M"_s, u"7"_s, Type::Day);
    row("two_digits_of_a_month", u"MM"_s, u"07"_s, Type::Day);
    row("year_alone", u"yyyy"_s, u"1999"_s, Type::Day);
    row("two_digits_of_a_year", u"yy"_s, u"99"_s, Type::Day);
    row("weekday_alone", u"dddd"_s, u"Monday"_s, Type::Day);
    row("day_and_month", u"d M"_s, u"4 7"_s, Type::Day);
    row("day_and_month_too_few_digits", u"d M"_s, u"4 "_s, Type::Unknown);
    row("day_month_and_short_year", u"d M yy"_s, u"4 7 99"_s, Type::Day);
    row("quoted_day_is_text", u"'d' MMMM"_s, u"d July"_s, Type::Day);
    row("quoted_month_is_text", u"'M' MMMM"_s, u"M July"_s, Type::Day);
    row("quoted_year_is_text", u"'y' MMMM"_s, u"y July"_s, Type::Day);
    row("field_behind_quotes", u"'on' MMMM d"_s, u"on July 4"_s, Type::Day);
    row("field_between_quotes", u"'a' d 'b'"_s, u"a 4 b"_s, Type::Day);
    row("two_quoted_texts", u"'d' MMMM 'd'"_s, u"d July d"_s, Type::Day);
    row("full_stop", u"d.M"_s, u"4.7"_s, Type::Day);
    row("full_stop_missing", u"d.M"_s, u"4 7"_s, Type::Unknown);
    row("comma", u"d,M"_s, u"4,7"_s, Type::Day);
    row("comma_missing", u"d,M"_s, u"4 7"_s, Type::Unknown);
    row("slash", u"d/M"_s, u"4/7"_s, Type::Day);
    row("slash_missing", u"d/M"_s, u"4 7"_s, Type::Unknown);
    row("hyphen", u"d-M"_s, u"4-7"_s, Type::Day);
    row("hyphen_missing", u"d-M"_s, u"4 7"_s, Type::Unknown);
    row("other_sign", u"d_M"_s, u"4_7"_s, Type::Day);
    row("unclosed_quote", u"MMMM d 'x"_s, u"July 4 x"_s, Type::Day);
    row("letters_that_are_no_fields", u"MMMM c e L N x z"_s, u"July c e L N x z"_s, Type::Day);
    row("full_stop_of_a_month_name", u"d MMM"_s, u"4 Jul."_s, Type::Day);
    row("nothing_is_a_date_of_no_format", u""_s, u""_s, Type::Day);
    row("format_of_the_host_counts_as_before", u"d_M"_s, u"7/14/19"_s, Type::Day);
}

void tst_matchers_system_locale::dateFormat()
{
    QFETCH(const QString, format);
    QFETCH(const QString, name);
    QFETCH(const VLEventFolderTypeEnum, type);

    const UserSettings settings(format, {});
    QCOMPARE(QLocale::system().dateFormat(QLocale::LongFormat), format);
    QCOMPARE(typeOf(name), type);
    QCOMPARE(LiteralRules::matchesDate(name, LiteralRules::Locales::current()), type == Type::Day);
}

void tst_matchers_system_locale::dayName_data()
{
    QTest::addColumn<QString>("dayName");
    QTest::addColumn<QString>("name");
    QTest::addColumn<VLEventFolderTypeEnum>("type");

    QTest::newRow("own_name") << u"Washday"_s << u"Washday"_s << Type::Day;
    QTest::newRow("own_name_in_another_case") << u"Washday"_s << u"washday"_s << Type::Unknown;
    QTest::newRow("numerals_are_no_digits")
        << u"Tag \u2160 \u2161"_s << u"Tag \u2160 \u2161"_s << Type::Day;
    QTest::newRow("name_of_the_host_counts_as_before") << u"Washday"_s << u"Monday"_s << Type::Day;
    QTest::newRow("empty_name_matches_nothing") << u""_s << u""_s << Type::Unknown;
    QTest::newRow("empty_name_is_not_in_every_name") << u""_s << u"Beach"_s << Type::Unknown;
}

void tst_matchers_system_locale::dayName()
{
    QFETCH(const QString, dayName);
    QFETCH(const QString, name);
    QFETCH(const VLEventFolderTypeEnum, type);

    const UserSettings settings({}, dayName);
    QCOMPARE(QLocale::system().dayName(1), dayName);
    QCOMPARE(typeOf(name), type);
    QCOMPARE(LiteralRules::matchesDate(name, LiteralRules::Locales::current()), type == Type::Day);
}

QTEST_GUILESS_MAIN(tst_matchers_system_locale)
#include "tst_matchers_system_locale.moc"
