#include <MessageRecorder.h>
#include <RunTogether.h>

#include <VLCore/VLRegularExpression.h>

#include <QtCore/QMutex>
#include <QtCore/QSemaphore>
#include <QtTest/QTest>

#include <atomic>
#include <limits>
#include <thread>
#include <type_traits>

using namespace Qt::StringLiterals;

using Expression = QRegularExpression;

// The expressions stand in the rows. clazy:excludeall=use-static-qregularexpression

static_assert(std::has_virtual_destructor_v<VLRegularExpression>);
static_assert(!std::is_copy_constructible_v<VLRegularExpression>);
static_assert(!std::is_default_constructible_v<VLRegularExpression>);
static_assert(std::is_same_v<decltype(&VLRegularExpression::match),
                             QRegularExpressionMatch (VLRegularExpression::*)(
                                 const QString&, int, Expression::MatchType,
                                 QFlags<Expression::MatchOption>) const>);
static_assert(sizeof(VLRegularExpression)
                  == sizeof(void*) + sizeof(QMutex) + sizeof(QRegularExpression),
              "a lock, an expression, and nothing else");

Q_DECLARE_METATYPE(Expression::MatchType)

class tst_VLRegularExpression : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void match_data();
    void match();
    void captures_are_those_of_the_pattern();
    void empty_subject_and_null_subject();
    void invalid_pattern_matches_nothing();
    void object_can_be_used_again();
    void threads_share_one_object();
    void match_waits_for_the_lock_ahead_of_the_expression();
};

void tst_VLRegularExpression::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_VLRegularExpression::match_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<Expression::PatternOptions>("options");
    QTest::addColumn<QString>("subject");
    QTest::addColumn<int>("offset");
    QTest::addColumn<Expression::MatchType>("type");
    QTest::addColumn<Expression::MatchOptions>("matchOptions");
    QTest::addColumn<bool>("hasMatch");
    QTest::addColumn<bool>("hasPartialMatch");
    QTest::addColumn<int>("start");
    QTest::addColumn<QString>("captured");

    const Expression::PatternOptions plain = Expression::NoPatternOption;
    const Expression::MatchOptions no = Expression::NoMatchOption;
    constexpr auto normal = Expression::NormalMatch;
    const QString date = uR"(\d{2}[-|,|.|\s]\d{2}[-|,|.|\s]\d{2})"_s;
    const QString none;

    const auto row = [&](const char* name, const QString& pattern, const QString& subject,
                         bool hasMatch, int start, const QString& captured) {
        QTest::newRow(name) << pattern << plain << subject << 0 << normal << no << hasMatch << false
                            << start << captured;
    };
    row("date_with_hyphens", date, u"19-07-14"_s, true, 0, u"19-07-14"_s);
    row("date_with_vertical_bars", date, u"19|07|14"_s, true, 0, u"19|07|14"_s);
    row("date_with_mixed_separators", date, u"19,07.14"_s, true, 0, u"19,07.14"_s);
    row("date_with_tab_and_blank", date, u"19\t07 14"_s, true, 0, u"19\t07 14"_s);
    row("date_is_not_anchored", date, u"x2019-07-14 y"_s, true, 3, u"19-07-14"_s);
    row("date_with_underscores", date, u"19_07_14"_s, false, -1, none);
    row("date_with_no_break_space", date, u"19\u00A007\u00A014"_s, false, -1, none);
    row("date_with_arabic_digits", date, u"\u0661\u0669-\u0660\u0667-\u0661\u0664"_s, false, -1,
        none);
    row("no_match", u"b+"_s, u"aaa"_s, false, -1, none);
    row("empty_pattern", none, u"abc"_s, true, 0, u""_s);
    row("case_counts", u"july"_s, u"July"_s, false, -1, none);
    row("outside_the_basic_plane_is_one_character", u"^.$"_s, u"\U0001F4F7"_s, true, 0,
        u"\U0001F4F7"_s);
    row("lone_surrogate_matches_nothing", u"a"_s, u"a"_s + QChar(0xD83D), false, -1, none);

    const auto at = [&](const char* name, int offset, bool hasMatch, int start) {
        QTest::newRow(name) << u"a"_s << plain << u"abca"_s << offset << normal << no << hasMatch
                            << false << start << (hasMatch ? u"a"_s : none);
    };
    at("offset_at_the_start", 0, true, 0);
    at("offset_behind_the_first", 1, true, 3);
    at("offset_at_the_last", 3, true, 3);
    at("offset_at_the_end", 4, false, -1);
    at("offset_beyond_the_end", 5, false, -1);
    at("highest_offset", std::numeric_limits<int>::max(), false, -1);
    at("negative_offset_counts_from_the_end", -1, true, 3);
    at("negative_offset_to_the_start", -4, true, 0);
    at("negative_offset_beyond_the_start", -5, false, -1);
    at("lowest_offset", std::numeric_limits<int>::min(), false, -1);

    const auto option = [&](const char* name, Expression::PatternOptions options,
                            const QString& pattern, const QString& subject, bool hasMatch,
                            int start, const QString& captured) {
        QTest::newRow(name) << pattern << options << subject << 0 << normal << no << hasMatch
                            << false << start << captured;
    };
    option("case_insensitive", Expression::CaseInsensitiveOption, u"july"_s, u"in July"_s, true, 3,
           u"July"_s);
    option("unicode_digits", Expression::UseUnicodePropertiesOption, u"\\d"_s, u"x\u0661"_s, true,
           1, u"\u0661"_s);
    option("extended_syntax", Expression::ExtendedPatternSyntaxOption, u"a b # two"_s, u"ab"_s,
           true, 0, u"ab"_s);
    option("multiline", Expression::MultilineOption, u"^b$"_s, u"a\nb"_s, true, 2, u"b"_s);
    option("without_multiline", Expression::NoPatternOption, u"^b$"_s, u"a\nb"_s, false, -1, none);
    option("dot_matches_line_feed", Expression::DotMatchesEverythingOption, u"a.b"_s, u"a\nb"_s,
           true, 0, u"a\nb"_s);
    option("inverted_greediness", Expression::InvertedGreedinessOption, u"a+"_s, u"aaa"_s, true, 0,
           u"a"_s);

    const auto mode = [&](const char* name, Expression::MatchType type,
                          Expression::MatchOptions matchOptions, const QString& subject,
                          bool hasMatch, bool hasPartialMatch, int start, const QString& captured) {
        QTest::newRow(name) << u"July"_s << plain << subject << 0 << type << matchOptions
                            << hasMatch << hasPartialMatch << start << captured;
    };
    mode("partial_match_preferring_complete", Expression::PartialPreferCompleteMatch, no,
         u"in Ju"_s, false, true, 3, u"Ju"_s);
    mode("partial_match_preferring_first", Expression::PartialPreferFirstMatch, no, u"in Ju"_s,
         false, true, 3, u"Ju"_s);
    mode("complete_when_partial_is_allowed", Expression::PartialPreferCompleteMatch, no, u"July"_s,
         true, false, 0, u"July"_s);
    mode("no_match_wanted", Expression::NoMatch, no, u"July"_s, false, false, -1, none);
    mode("anchored_at_offset_misses", normal, Expression::AnchorAtOffsetMatchOption, u"in July"_s,
         false, false, -1, none);
    mode("anchored_at_offset_hits", normal, Expression::AnchorAtOffsetMatchOption, u"July 4"_s,
         true, false, 0, u"July"_s);
}

void tst_VLRegularExpression::match()
{
    QFETCH(const QString, pattern);
    QFETCH(const Expression::PatternOptions, options);
    QFETCH(const QString, subject);
    QFETCH(const int, offset);
    QFETCH(const Expression::MatchType, type);
    QFETCH(const Expression::MatchOptions, matchOptions);
    const VLRegularExpression expression(pattern, options);
    const auto match = expression.match(subject, offset, type, matchOptions);
    QTEST(match.hasMatch(), "hasMatch");
    QTEST(match.hasPartialMatch(), "hasPartialMatch");
    QTEST(int(match.capturedStart()), "start");
    QTEST(match.captured(), "captured");
    QCOMPARE(match.matchType(), type);
    QCOMPARE(match.matchOptions(), matchOptions);
    QCOMPARE(match.regularExpression(), QRegularExpression(pattern, options));

    const auto plain =
        QRegularExpression(pattern, options).match(subject, offset, type, matchOptions);
    QCOMPARE(match.isValid(), plain.isValid());
    QCOMPARE(match.capturedTexts(), plain.capturedTexts());
    QCOMPARE(match.capturedStart(), plain.capturedStart());
}

void tst_VLRegularExpression::captures_are_those_of_the_pattern()
{
    const VLRegularExpression expression(uR"((?<year>\d{4})-(\d{2}))"_s,
                                         Expression::NoPatternOption);
    const auto match =
        expression.match(u"on 2019-07"_s, 0, Expression::NormalMatch, Expression::NoMatchOption);
    const QStringList expected { u"2019-07"_s, u"2019"_s, u"07"_s };
    QCOMPARE(match.capturedTexts(), expected);
    QCOMPARE(match.captured(u"year"_s), u"2019"_s);
}

void tst_VLRegularExpression::empty_subject_and_null_subject()
{
    const VLRegularExpression expression(u"^$"_s, Expression::NoPatternOption);
    QVERIFY(
        expression.match(u""_s, 0, Expression::NormalMatch, Expression::NoMatchOption).hasMatch());
    QVERIFY(expression.match(QString(), 0, Expression::NormalMatch, Expression::NoMatchOption)
                .hasMatch());
}

void tst_VLRegularExpression::invalid_pattern_matches_nothing()
{
    const MessageRecorder recorder;
    const VLRegularExpression expression(u"(unclosed"_s, Expression::NoPatternOption);
    QCOMPARE(recorder.messages().size(), 0);
    const auto match =
        expression.match(u"(unclosed"_s, 0, Expression::NormalMatch, Expression::NoMatchOption);
    QVERIFY(!match.isValid());
    QVERIFY(!match.hasMatch());
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(recorder.messages().constFirst().type, QtWarningMsg);
}

void tst_VLRegularExpression::object_can_be_used_again()
{
    const VLRegularExpression expression(u"a"_s, Expression::NoPatternOption);
    const auto hasMatch = [&expression](const QString& subject) {
        return expression.match(subject, 0, Expression::NormalMatch, Expression::NoMatchOption)
            .hasMatch();
    };
    QVERIFY(hasMatch(u"ab"_s));
    QVERIFY(!hasMatch(u"b"_s));
    QVERIFY(hasMatch(u"ba"_s));
}

void tst_VLRegularExpression::threads_share_one_object()
{
    constexpr int threads = 8;
    constexpr int calls = 500;
    const VLRegularExpression expression(uR"(\d+)"_s, Expression::NoPatternOption);
    std::atomic<int> right { 0 };
    runTogether(threads, [&](int thread) {
        const QString number = QString::number(thread);
        const QString subject = u"no "_s + number;
        for (int call = 0; call < calls; ++call) {
            const auto match =
                expression.match(subject, 0, Expression::NormalMatch, Expression::NoMatchOption);
            right += match.captured() == number ? 1 : 0;
        }
    });
    QCOMPARE(right.load(), threads * calls);
}

// Released from the last to the first: the expression goes ahead of the lock.
void tst_VLRegularExpression::match_waits_for_the_lock_ahead_of_the_expression()
{
    VLRegularExpression expression(u"a"_s, Expression::NoPatternOption);
    auto* const lock =
        reinterpret_cast<QMutex*>(reinterpret_cast<char*>(&expression) + sizeof(void*));
    QVERIFY(lock->tryLock());
    QSemaphore matched;
    std::thread other([&expression, &matched] {
        static_cast<void>(
            expression.match(u"a"_s, 0, Expression::NormalMatch, Expression::NoMatchOption));
        matched.release();
    });
    const bool matchedWhileLocked = matched.tryAcquire(1, 50);
    lock->unlock();
    other.join();
    QVERIFY(!matchedWhileLocked);
}

QTEST_GUILESS_MAIN(tst_VLRegularExpression)
#include "tst_VLRegularExpression.moc"
