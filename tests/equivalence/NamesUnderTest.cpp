#include "NamesUnderTest.h"

#include <QtCore/QDate>
#include <QtCore/QHashFunctions>
#include <QtCore/QList>

#include <array>
#include <random>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array formatTypes { QLocale::LongFormat, QLocale::ShortFormat,
                                   QLocale::NarrowFormat };

// The zeros of scripts whose digits follow one another, those beyond the basic plane last. Then
// what only looks like digits: superscript, circled and Roman numbers.
constexpr std::u32string_view firstDigits =
    U"0\u0660\u06f0\u07c0\u0966\u09e6\u0e50\u0f20\u1040\u17e0\u1810\u1c50\uabf0\uff10"
    U"\U000104a0\U00011136\U0001d7ce\U0001e950\U0001fbf0\u2070\u2460\u2160";

// One generator for each list of names. The standard's distributions differ between libraries, so
// only the engine, whose numbers are fixed, is used.
class Draw
{
public:
    explicit Draw(const QString& seed)
    {
        quint32 number = 2166136261U;
        for (const QChar unit : seed)
            number = (number ^ unit.unicode()) * 16777619U;
        m_engine.seed(number);
    }

    // A number below the bound, which must not be 0.
    qsizetype below(qsizetype bound)
    {
        return static_cast<qsizetype>(m_engine() % static_cast<std::mt19937::result_type>(bound));
    }

    template <typename Container>
    const auto& oneOf(const Container& container)
    {
        return container.at(static_cast<typename Container::size_type>(
            below(static_cast<qsizetype>(container.size()))));
    }

private:
    std::mt19937 m_engine;
};

QString text(char32_t codePoint)
{
    return QString::fromUcs4(&codePoint, 1);
}

QString cut(const QString& name, Draw& draw)
{
    return name.left(draw.below(name.size() + 1));
}

QString swapped(const QString& name, Draw& draw)
{
    if (name.size() < 2)
        return name;
    const qsizetype at = draw.below(name.size() - 1);
    QString changed = name;
    std::swap(changed[at], changed[at + 1]);
    return changed;
}

// One character is replaced, left out or followed by another.
QString edited(const QString& name, Draw& draw)
{
    static const QStringList pieces {
        u""_s,       u"0"_s,      u"1"_s,      u"7"_s,      u"9"_s,      u"a"_s,
        u"x"_s,      u"/"_s,      u"\u2044"_s, u"-"_s,      u"_"_s,      u" "_s,
        u"."_s,      u","_s,      u"|"_s,      u"\t"_s,     u"\u202f"_s, u"\u00a0"_s,
        u"\u200f"_s, u"\u200e"_s, u"\u0301"_s, u"\u00b2"_s, u"'"_s,
    };
    QString changed = name;
    return changed.replace(draw.below(name.size() + 1), draw.below(2), draw.oneOf(pieces));
}

// Digits of any script become those of another one, all or each by chance.
QString inOtherDigits(const QString& name, Draw& draw)
{
    const char32_t zero = draw.oneOf(firstDigits);
    const bool all = draw.below(2) == 0;
    QString changed;
    const QList<uint> codePoints = name.toUcs4();
    for (const uint codePoint : codePoints) {
        const int digit = QChar::digitValue(codePoint);
        const bool change = digit >= 0 && (all || draw.below(2) == 0);
        changed +=
            text(change ? zero + static_cast<char32_t>(digit) : static_cast<char32_t>(codePoint));
    }
    return changed;
}

QString inWords(const QString& name, Draw& draw)
{
    static const QStringList words { u"Beach"_s, u"_"_s, u"a"_s, u"2019"_s, u"7"_s, u"\u6d77"_s };
    const QString& word = draw.oneOf(words);
    return draw.below(2) == 0 ? name + u' ' + word : word + u' ' + name;
}

QString inOtherCase(const QString& name, Draw& draw)
{
    return draw.below(2) == 0 ? name.toLower() : name.toUpper();
}

constexpr std::array variations { cut,    swapped,       edited,  edited,
                                  edited, inOtherDigits, inWords, inOtherCase };

QStringList variationsOf(const QString& name, int rounds, Draw& draw)
{
    QStringList names { name };
    for (int round = 0; round < rounds; ++round) {
        for (const auto& vary : variations)
            names.append(vary(name, draw));
        names.append(draw.oneOf(variations)(draw.oneOf(variations)(name, draw), draw));
    }
    return names;
}

QList<QDate> dates(NamesUnderTest::Extent extent, Draw& draw)
{
    QList<QDate> dates { { 2019, 7, 14 }, { 2000, 1, 1 }, { 1999, 12, 31 }, { 2024, 2, 29 } };
    if (extent == NamesUnderTest::Extent::All) {
        dates += { { 1, 1, 1 }, { 99, 3, 4 }, { 9999, 12, 31 }, { 12019, 5, 6 }, { -44, 3, 15 } };
        const QDate first(1900, 1, 1);
        for (int count = 0; count < 12; ++count)
            dates.append(first.addDays(draw.below(73000)));
    } else {
        dates.append(QDate(1950, 1, 1).addDays(draw.below(36500)));
    }
    return dates;
}

QStringList formattedDates(const QLocale& locale, NamesUnderTest::Extent extent, Draw& draw)
{
    QStringList names;
    const QList<QDate> wanted = dates(extent, draw);
    for (const QDate date : wanted) {
        for (const QLocale::FormatType formatType : formatTypes)
            names.append(locale.toString(date, formatType));
        names.append(date.toString(Qt::TextDate));
        names.append(date.toString(Qt::RFC2822Date));
        names.append(date.toString(Qt::ISODate));
    }
    return names;
}

QStringList dayNames(const QLocale& locale)
{
    QStringList names;
    for (const QLocale::FormatType formatType : formatTypes) {
        for (int day = 1; day <= 7; ++day)
            names.append(locale.dayName(day, formatType));
    }
    return names;
}

QStringList calendarWords(const QLocale& locale)
{
    QStringList names = dayNames(locale);
    for (const QLocale::FormatType formatType : formatTypes) {
        for (int day = 1; day <= 7; ++day)
            names.append(locale.standaloneDayName(day, formatType));
        for (int month = 1; month <= 12; ++month) {
            names.append(locale.monthName(month, formatType));
            names.append(locale.standaloneMonthName(month, formatType));
        }
    }
    return names;
}

QStringList numbers(const QLocale& locale)
{
    QStringList names { locale.zeroDigit(), locale.negativeSign(), locale.positiveSign() };
    constexpr std::array values { 0, 1, 7, 9, 10, 12, 13, 31, 99, 714, 1999, 2019, 20190714 };
    QLocale plain = locale;
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    for (const int value : values) {
        names.append(locale.toString(value));
        names.append(plain.toString(value));
        names.append(plain.toString(value) + locale.zeroDigit());
        names.append(QString::number(value).rightJustified(2, u'0'));
    }
    return names;
}

QStringList folderNames()
{
    return u"2019\n07\n7\n007\n13\n1999\n2019-07\n2019_07_14\n2019-07-14 Beach\n14.07.2019\n"
           "14.07.19\n2019,07,14\n2019 07 14\n2019|07|14\n99.99.99\n9-9-9\n1/2/3\n7/14/19\n"
           "20190714\nSun Jul 14 2019\nSun, 14 Jul 2019\n14 Jul 2019\nJul 14 2019\n"
           "14 Jul 2019 13:04:05 +0200\nSo 14. Jul 2019\nSunday, July 14, 2019\n"
           "Sonntag, 14. Juli 2019\nIMG_2019\nDSC00012\n100CANON\nChristmas\n"
           "Hochzeit J\u00f6rg & Zo\u00eb\nSummer 2019 trip\n12345\nM\nm\nMon\nmon\nMONDAY\n"
           "Monday\nMontag\nJuly\nJuli\nJul\nUrlaub_vlp-Dateien\n_vlp-Dateien\n"
           "2019-07-14_vlp-Dateien\nx_vlp-dateien\n"
           "\u0662\u0660\u0661\u0669-\u0660\u0667-\u0661\u0664\n\uff12\uff10\uff11\uff19\n"
           "\U0001e952\U0001e950\U0001e951\U0001e959\nphotokit\n\u00bd\n\u2460"_s.split(u'\n');
}

QStringList oddNames()
{
    const QString highSurrogate(QChar(0xd83a));
    const QString lowSurrogate(QChar(0xdd52));
    const QString nul { QChar() };
    QStringList names =
        u"| |.|..|\n|-|'|'7'|%1|\ufeff14.07.19|\u200e7\u200e/\u200e14/19"_s.split(u'|');
    names += { QString(),
               highSurrogate,
               lowSurrogate,
               lowSurrogate + highSurrogate,
               u"2019-07-14"_s + highSurrogate,
               lowSurrogate + u"14.07.19"_s,
               u"20"_s + highSurrogate + u"19"_s,
               highSurrogate + u"Monday"_s,
               nul,
               u"2019-07-14"_s + nul,
               nul + u"14.07.19"_s,
               u"Mon"_s + nul + u"day"_s };
    constexpr qsizetype veryLong = 4000;
    names += { QString(veryLong, u'a'), QString(veryLong, u'7'), QString(veryLong, u' '),
               QString(veryLong, u'a') + u"14.07.19"_s };
    return names;
}

// The very long names once in a while only: they cost as much as all the others.
QStringList sampled(const QStringList& names, qsizetype count, Draw& draw)
{
    if (names.size() <= count)
        return names;
    QStringList drawn;
    drawn.reserve(count);
    for (qsizetype index = 0; index < count; ++index)
        drawn.append(draw.oneOf(names));
    return drawn;
}

} // namespace

QString NamesUnderTest::fullName(const QLocale& locale)
{
    if (locale.language() == QLocale::C)
        return u"C"_s;
    return QLocale::languageToCode(locale.language()) + u'_'
        + QLocale::scriptToCode(locale.script()) + u'_'
        + QLocale::territoryToCode(locale.territory());
}

QStringList NamesUnderTest::ofLocale(const QLocale& locale, Extent extent)
{
    const bool all = extent == Extent::All;
    const int rounds = all ? 2 : 1;
    Draw draw(fullName(locale));

    const QStringList dates = formattedDates(locale, extent, draw);
    const QStringList words = calendarWords(locale) + numbers(locale);
    QStringList variedDates;
    for (const QString& date : dates)
        variedDates += variationsOf(date, rounds, draw);
    QStringList variedWords;
    for (const QString& word : words)
        variedWords += variationsOf(word, 1, draw);
    QStringList variedFolders;
    const QStringList folders = folderNames();
    for (const QString& folder : folders)
        variedFolders += variationsOf(folder, 1, draw);
    if (all)
        return variedDates + variedWords + variedFolders + oddNames();
    return dates.first(3) + dayNames(locale) + sampled(variedDates, 70, draw)
        + sampled(variedWords, 50, draw) + sampled(variedFolders, 25, draw)
        + sampled(oddNames(), 3, draw);
}
