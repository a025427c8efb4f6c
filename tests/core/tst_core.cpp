#include <MessageRecorder.h>
#include <OpenTable.h>
#include <RunTogether.h>
#include <TestRows.h>

#include <VLCore/VLKomma_p.h>
#include <VLCore/VLLogger.h>
#include <VLCore/VLPlatformIndependent.h>
#include <VLCore/VLRegularExpression.h>
#include <VLCore/VLSingleton.h>
#include <VLFolioEventClassifier/VLEventFolderType.h>

#include <QtCore/QLoggingCategory>
#include <QtCore/QScopeGuard>
#include <QtTest/QTest>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

using Expression = QRegularExpression;

// The expressions stand in the rows. clazy:excludeall=use-static-qregularexpression

const QString* kommaOfSecondSourceFile();

namespace {

/// Counts what happens to it.
struct Counted
{
    Counted() { ++made; }
    ~Counted() { ++released; }
    void initialize() { ++initialized; }

    static inline int made = 0;
    static inline int initialized = 0;
    static inline int released = 0;
};

/// Cannot be made at first.
struct Refusing
{
    Refusing()
    {
        if (++attempts <= 2)
            throw std::runtime_error("not yet");
    }
    void initialize() { ++initialized; }

    static inline int attempts = 0;
    static inline int initialized = 0;
};

/// Is made, but its set-up fails.
struct Stumbling
{
    Stumbling() { ++made; }
    void initialize()
    {
        ++initialized;
        throw std::runtime_error("no set-up");
    }

    static inline int made = 0;
    static inline int initialized = 0;
};

/// One type for each race, since every type has one instance per process. Takes its time, so that
/// whoever does not wait for it is seen.
template <int Number>
struct Slow
{
    Slow()
    {
        ++made;
        QThread::msleep(10);
    }
    void initialize()
    {
        QThread::msleep(10);
        ready = true;
        ++initialized;
    }

    bool ready = false;
    static inline std::atomic<int> made { 0 };
    static inline std::atomic<int> initialized { 0 };
};

/// Is made at once; there are many of them, since few races are close.
template <int Number>
struct Quick
{
    Quick() { ++made; }
    void initialize() { }

    static inline std::atomic<int> made { 0 };
};

template <int Number>
void raceForSlowInstance()
{
    constexpr int threads = 16;
    std::vector<const void*> instances(threads);
    std::atomic<int> ready { 0 };
    runTogether(threads, [&](int thread) {
        const auto* const instance = VLSingleton<Slow<Number>>::instance();
        instances[size_t(thread)] = instance;
        ready += instance->ready ? 1 : 0;
    });
    QCOMPARE(Slow<Number>::made.load(), 1);
    QCOMPARE(Slow<Number>::initialized.load(), 1);
    QVERIFY(instances.front() != nullptr);
    QCOMPARE(instances, std::vector<const void*>(threads, instances.front()));
    QCOMPARE(ready.load(), threads);
}

template <int... Numbers>
void raceForQuickInstances(std::integer_sequence<int, Numbers...> numbers)
{
    (runTogether(4, [](int) { Q_UNUSED(VLSingleton<Quick<Numbers>>::instance()) }), ...);
    QCOMPARE((Quick<Numbers>::made.load() + ...), int(numbers.size()));
}

/// What a host's own static object finds that was made before main(), and so is destroyed after
/// everything that was made in it.
class LastToGo
{
public:
    LastToGo() = default;
    ~LastToGo()
    {
        const char* const missing = m_names.isEmpty() ? nullptr : whatIsMissing();
        if (missing == nullptr)
            return;
        std::fprintf(stderr, "FAIL!  : at the end of the process the %s is gone\n", missing);
        std::_Exit(EXIT_FAILURE);
    }
    Q_DISABLE_COPY_MOVE(LastToGo)

    /// Shares the data of the table: it is alone with it once the table is freed.
    void watch(const QHash<QString, VLEventFolderTypeEnum>& names) { m_names = names; }

private:
    [[nodiscard]] const char* whatIsMissing() const
    {
        if (m_names.isDetached())
            return "table of names";
        if (Counted::made != 1 || Counted::released != 0)
            return "singleton's instance";
        const auto* const table = VLEventFolderType().enumToStringTable();
        if (table->nameFor(VLEventFolderTypeEnum::Month) != "Month"_L1)
            return "name of a month";
        qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& text) { s_logged = text; });
        VLSingleton<VLLogger>::instance()->logFolioService(u"the end"_s);
        qInstallMessageHandler(nullptr);
        return s_logged == "the end"_L1 ? nullptr : "logger";
    }

    QHash<QString, VLEventFolderTypeEnum> m_names;
    static inline QString s_logged; // clazy:exclude=non-pod-global-static
};

LastToGo lastToGo; // clazy:exclude=non-pod-global-static

/// Shows the operations that only derived classes see.
class OpenPlatform : public VLPlatformIndependent
{
public:
    using VLPlatformIndependent::directoryListed;
    using VLPlatformIndependent::listingIncomplete;
};

/// Where a virtual operation stands in the table of virtual operations, counted from 0. So both
/// processors' variants of the C++ ABI that GCC and Clang follow have it in a pointer to a member.
template <typename Operation>
int slotOf(Operation operation)
{
    struct
    {
        qptrdiff pointer;
        qptrdiff adjustment;
    } parts {};
    static_assert(sizeof parts == sizeof operation);
    std::memcpy(&parts, &operation, sizeof parts);
#if defined(Q_PROCESSOR_ARM)
    const qptrdiff offset = parts.pointer;
#else
    const qptrdiff offset = parts.pointer - 1;
#endif
    return int(offset / qptrdiff(sizeof(void*)));
}

void compareMatches(const VLRegularExpression& expression, const Expression& plain,
                    const QString& subject, int offset)
{
    for (const auto option : { Expression::NoMatchOption, Expression::AnchorAtOffsetMatchOption }) {
        for (const auto type : { Expression::NormalMatch, Expression::PartialPreferCompleteMatch,
                                 Expression::PartialPreferFirstMatch, Expression::NoMatch }) {
            const auto match = expression.match(subject, offset, type, option);
            const auto expected = plain.match(subject, offset, type, option);
            QCOMPARE(match.isValid(), expected.isValid());
            QCOMPARE(match.hasMatch(), expected.hasMatch());
            QCOMPARE(match.hasPartialMatch(), expected.hasPartialMatch());
            QCOMPARE(match.capturedStart(), expected.capturedStart());
            QCOMPARE(match.capturedTexts(), expected.capturedTexts());
            QCOMPARE(match.regularExpression(), plain);
        }
    }
}

} // namespace

static_assert(std::is_same_v<decltype(KOMMA), const QString>);

static_assert(!std::is_default_constructible_v<VLSingleton<Counted>>);
static_assert(!std::is_copy_constructible_v<VLSingleton<Counted>>);
static_assert(std::has_virtual_destructor_v<VLSingleton<Counted>>);

static_assert(std::has_virtual_destructor_v<VLLogger>);
static_assert(std::is_default_constructible_v<VLLogger> && !std::is_copy_constructible_v<VLLogger>);

static_assert(std::has_virtual_destructor_v<VLRegularExpression>);
static_assert(!std::is_default_constructible_v<VLRegularExpression>);
static_assert(!std::is_copy_constructible_v<VLRegularExpression>);
static_assert(std::is_same_v<decltype(&VLRegularExpression::match),
                             QRegularExpressionMatch (VLRegularExpression::*)(
                                 const QString&, int, Expression::MatchType,
                                 QFlags<Expression::MatchOption>) const>);
static_assert(sizeof(VLRegularExpression) == sizeof(void*) + sizeof(QMutex) + sizeof(Expression));

class tst_core : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void virtualOperationsKeepTheirOrder();
    void eachSourceFileHasItsOwnComma();

    void singletonIsMadeAndInitializedOnce();
    void singletonIsReadyForAllThreads();
    void singletonIsMadeOnceInCloseRaces();
    void singletonWhoseConstructorFailedIsTriedAgain();
    void singletonIsPublishedBeforeItIsInitialized();
    void sharedObjectsOutliveStaticObjects();

    void loggedTextStaysAsItIs_data();
    void loggedTextStaysAsItIs();
    void loggerInitializeLogsNothing();
    void filterRulesDirectTheLog_data();
    void filterRulesDirectTheLog();

    void matchIsThatOfQRegularExpression();
    void invalidPatternMatchesNothingAndWarnsWhenUsed();
    void threadsShareOneExpression_data();
    void threadsShareOneExpression();
};

void tst_core::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

// The compiler keeps two entries ahead of them for the destructor, 0 and 1.
void tst_core::virtualOperationsKeepTheirOrder()
{
    using Type = VLEventFolderType;
    using Enum = VLEventFolderTypeEnum;
    using Wrapper = VLEnumWrapper<Enum>;
    using Compare = bool (Wrapper::*)(const Wrapper&) const;
    using CompareRaw = bool (Wrapper::*)(Enum) const;
    using Assign = Wrapper& (Wrapper::*)(const Wrapper&);
    using AssignRaw = Wrapper& (Wrapper::*)(Enum);
    using Combine = Enum (Wrapper::*)(const Wrapper&) const;
    using Platform = VLPlatformIndependent;

    const QList<int> ofType {
        slotOf<Compare>(&Type::operator<),
        slotOf<Compare>(&Type::operator<=),
        slotOf<Compare>(&Type::operator>),
        slotOf<Compare>(&Type::operator==),
        slotOf<CompareRaw>(&Type::operator==),
        slotOf<Compare>(&Type::operator!=),
        slotOf<CompareRaw>(&Type::operator!=),
        slotOf<Assign>(&Type::operator|=),
        slotOf<AssignRaw>(&Type::operator|=),
        slotOf<Assign>(&Type::operator&=),
        slotOf<AssignRaw>(&Type::operator&=),
        slotOf<Combine>(&Type::operator&),
        slotOf<Combine>(&Type::operator|),
        slotOf(&Type::reducedTo),
        slotOf(&Type::isValid),
        slotOf(&Type::fillTable),
    };
    const QList<int> ofPlatform {
        slotOf(&Platform::openFile),
        slotOf(&Platform::getDirectFilesInDirectory),
        slotOf(&Platform::getDirectSubdirectoriesInDirectory),
        slotOf(&Platform::directoryContentsChanged),
        slotOf(&OpenPlatform::listingIncomplete),
        slotOf(&OpenPlatform::directoryListed),
    };
    for (const QList<int>& operations : { ofType, ofPlatform, { slotOf(&VLLogger::initialize) } }) {
        for (qsizetype i = 0; i < operations.size(); ++i)
            QCOMPARE(operations.at(i), i + 2);
    }
}

void tst_core::eachSourceFileHasItsOwnComma()
{
    QCOMPARE(KOMMA, u","_s);
    QCOMPARE(*kommaOfSecondSourceFile(), u","_s);
    QVERIFY(kommaOfSecondSourceFile() != &KOMMA);
}

void tst_core::singletonIsMadeAndInitializedOnce()
{
    Counted* const instance = VLSingleton<Counted>::instance();
    QVERIFY(instance != nullptr);
    for (int call = 0; call < 100; ++call)
        QCOMPARE(VLSingleton<Counted>::instance(), instance);
    QCOMPARE(Counted::made, 1);
    QCOMPARE(Counted::initialized, 1);
}

void tst_core::singletonIsReadyForAllThreads()
{
    raceForSlowInstance<0>();
    raceForSlowInstance<1>();
    raceForSlowInstance<2>();
    raceForSlowInstance<3>();
}

// Of two threads that have both found no instance, the second one looks again under the lock.
void tst_core::singletonIsMadeOnceInCloseRaces()
{
    raceForQuickInstances(std::make_integer_sequence<int, 200>());
}

void tst_core::singletonWhoseConstructorFailedIsTriedAgain()
{
    QVERIFY_THROWS_EXCEPTION(std::runtime_error,
                             static_cast<void>(VLSingleton<Refusing>::instance()));
    QVERIFY_THROWS_EXCEPTION(std::runtime_error,
                             static_cast<void>(VLSingleton<Refusing>::instance()));
    Refusing* const instance = VLSingleton<Refusing>::instance();
    QVERIFY(instance != nullptr);
    QCOMPARE(VLSingleton<Refusing>::instance(), instance);
    QCOMPARE(Refusing::attempts, 3);
    QCOMPARE(Refusing::initialized, 1);
}

// One whose set-up fails is there all the same, and is not set up again.
void tst_core::singletonIsPublishedBeforeItIsInitialized()
{
    QVERIFY_THROWS_EXCEPTION(std::runtime_error,
                             static_cast<void>(VLSingleton<Stumbling>::instance()));
    QVERIFY(VLSingleton<Stumbling>::instance() != nullptr);
    QCOMPARE(Stumbling::made, 1);
    QCOMPARE(Stumbling::initialized, 1);
}

// The test goes on in ~LastToGo(), which makes the process fail.
void tst_core::sharedObjectsOutliveStaticObjects()
{
    Q_UNUSED(VLSingleton<Counted>::instance())
    Q_UNUSED(VLSingleton<VLLogger>::instance())
    const auto& names =
        TableMaps<VLEventFolderTypeEnum>::namesOf(*VLEventFolderType().enumToStringTable());
    QCOMPARE(names.size(), 7);
    lastToGo.watch(names);
}

void tst_core::loggedTextStaysAsItIs_data()
{
    const TestRows<QString> row("text");
    row("plain", u"startClassifyEvent"_s);
    row("empty", u""_s);
    row("quotes_and_backslashes", u"say \"no\" or 'C:\\new\\table'"_s);
    row("placeholders", u"%1 %2 %s %{message} 100%"_s);
    row("white_space_at_the_ends", u"  one\ntwo\t\r\n"_s);
    row("non_latin", u"\u5199\u771F \u0635\u0648\u0631 Gr\u00FC\u00DFe \U0001F4F7"_s);
    row("lone_surrogate", QString(QChar(0xD83D)));
    row("null_character", u"a\0b"_s);
    row("long", QString(100'000, u'x'));
}

void tst_core::loggedTextStaysAsItIs()
{
    QFETCH(const QString, text);
    const MessageRecorder recorder;
    VLSingleton<VLLogger>::instance()->logFolioService(text);
    QCOMPARE(recorder.messages().size(), 1);
    const auto message = recorder.messages().constFirst();
    QCOMPARE(message.category, QByteArray("vl.folio.service"));
    QCOMPARE(message.type, QtInfoMsg);
    QCOMPARE(message.text, text);
}

void tst_core::loggerInitializeLogsNothing()
{
    const MessageRecorder recorder;
    VLLogger logger;
    logger.initialize();
    QCOMPARE(recorder.messages().size(), 0);
}

void tst_core::filterRulesDirectTheLog_data()
{
    const TestRows<QString, int> row("rules", "messages");
    row("category_off", u"vl.folio.service=false"_s, 0);
    row("info_of_the_category_off", u"vl.folio.service.info=false"_s, 0);
    row("group_of_categories_off", u"vl.*=false"_s, 0);
    row("all_off_but_this", u"*=false\nvl.folio.service=true"_s, 1);
    row("debug_of_the_category_off", u"vl.folio.service.debug=false"_s, 1);
    row("another_category_off", u"vl.folio=false"_s, 1);
}

void tst_core::filterRulesDirectTheLog()
{
    QFETCH(const QString, rules);
    const auto restore = qScopeGuard([] { QLoggingCategory::setFilterRules(QString()); });
    QLoggingCategory::setFilterRules(rules);
    const MessageRecorder recorder;
    VLSingleton<VLLogger>::instance()->logFolioService(u"text"_s);
    QTEST(int(recorder.messages().size()), "messages");
}

void tst_core::matchIsThatOfQRegularExpression()
{
    const QString date = uR"((?<year>\d{2})[-|,|.|\s](\d{2})[-|,|.|\s]\d{2})"_s;
    const QList<Expression> expressions {
        Expression(date),
        Expression(date, Expression::UseUnicodePropertiesOption),
        Expression(u"july"_s, Expression::CaseInsensitiveOption),
        Expression(u""_s),
        Expression(u"^.$"_s, Expression::MultilineOption),
        Expression(u"J u # two"_s, Expression::ExtendedPatternSyntaxOption),
    };
    const QStringList subjects { u"x2019-07-14 19|07|14"_s,
                                 u"19\u00A007\u00A014"_s,
                                 u"\u0661\u0669-\u0660\u0667-\u0661\u0664"_s,
                                 u"in July, July"_s,
                                 u"in Ju"_s,
                                 u"a\nb"_s,
                                 u"a"_s + QChar(0xD83D),
                                 QString() };
    for (const Expression& plain : expressions) {
        const VLRegularExpression expression(plain.pattern(), plain.patternOptions());
        for (const QString& subject : subjects) {
            for (const int offset : { 0, 1, 100, -1, -5, -100, std::numeric_limits<int>::min() })
                compareMatches(expression, plain, subject, offset);
        }
    }
}

void tst_core::invalidPatternMatchesNothingAndWarnsWhenUsed()
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

void tst_core::threadsShareOneExpression_data()
{
    const TestRows<QString, int> row("pattern", "found");
    row("valid", u"\\d+"_s, 4000);
    // Is compiled anew in each call, which no two threads may do at once.
    row("invalid", u"(unclosed"_s, 0);
}

void tst_core::threadsShareOneExpression()
{
    QFETCH(const QString, pattern);
    const VLRegularExpression expression(pattern, Expression::NoPatternOption);
    std::atomic<int> right { 0 };
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    runTogether(8, [&](int thread) {
        const QString number = QString::number(thread);
        for (int call = 0; call < 500; ++call) {
            const auto match = expression.match(u"no "_s + number, 0, Expression::NormalMatch,
                                                Expression::NoMatchOption);
            right += match.captured() == number ? 1 : 0;
        }
    });
    qInstallMessageHandler(previous);
    QTEST(right.load(), "found");
}

QTEST_GUILESS_MAIN(tst_core)
#include "tst_core.moc"
