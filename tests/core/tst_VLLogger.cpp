#include <MessageRecorder.h>
#include <RunTogether.h>

#include <VLCore/VLLogger.h>

#include <QtCore/QLoggingCategory>
#include <QtCore/QScopeGuard>
#include <QtTest/QTest>

#include <type_traits>
#include <vector>

using namespace Qt::StringLiterals;

static_assert(std::is_polymorphic_v<VLLogger>);
static_assert(std::has_virtual_destructor_v<VLLogger>);
static_assert(std::is_default_constructible_v<VLLogger>);
static_assert(!std::is_copy_constructible_v<VLLogger>);
static_assert(std::is_same_v<decltype(&VLLogger::initialize), void (VLLogger::*)()>);
static_assert(
    std::is_same_v<decltype(&VLLogger::logFolioService), void (VLLogger::*)(const QString&)>);

class tst_VLLogger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void message_goes_to_its_category_at_info_level();
    void text_stays_as_it_is_data();
    void text_stays_as_it_is();
    void messages_keep_their_order();
    void initialize_logs_nothing();
    void filter_rules_direct_the_messages_data();
    void filter_rules_direct_the_messages();
    void a_logger_of_ones_own_logs_likewise();
    void process_has_one_logger();
};

void tst_VLLogger::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_VLLogger::message_goes_to_its_category_at_info_level()
{
    const MessageRecorder recorder;
    VLSingleton<VLLogger>::instance()->logFolioService(u"startClassifyEvent"_s);
    QCOMPARE(recorder.messages().size(), 1);
    const auto message = recorder.messages().constFirst();
    QCOMPARE(message.category, QByteArray("vl.folio.service"));
    QCOMPARE(message.type, QtInfoMsg);
    QCOMPARE(message.text, u"startClassifyEvent"_s);
}

void tst_VLLogger::text_stays_as_it_is_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("plain") << u"startClassifyEvent"_s;
    QTest::newRow("empty") << u""_s;
    QTest::newRow("quotes") << u"say \"no\" or 'yes'"_s;
    QTest::newRow("backslash") << u"C:\\new\\table"_s;
    QTest::newRow("placeholders") << u"%1 %2 %s %{message} 100%"_s;
    QTest::newRow("leading_blank") << u"  text"_s;
    QTest::newRow("trailing_blank") << u"text "_s;
    QTest::newRow("two_trailing_blanks") << u"text  "_s;
    QTest::newRow("only_a_blank") << u" "_s;
    QTest::newRow("line_feed") << u"one\ntwo\n"_s;
    QTest::newRow("tab_and_carriage_return") << u"one\ttwo\r"_s;
    QTest::newRow("non_latin") << u"\u5199\u771F \u0635\u0648\u0631 Gr\u00FC\u00DFe"_s;
    QTest::newRow("outside_the_basic_plane") << u"\U0001F4F7"_s;
    QTest::newRow("lone_surrogate") << QString(QChar(0xD83D));
    QTest::newRow("null_character") << u"a\0b"_s;
    QTest::newRow("long") << QString(100'000, u'x');
}

void tst_VLLogger::text_stays_as_it_is()
{
    QFETCH(const QString, text);
    const MessageRecorder recorder;
    VLSingleton<VLLogger>::instance()->logFolioService(text);
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(recorder.messages().constFirst().text, text);
}

void tst_VLLogger::messages_keep_their_order()
{
    const MessageRecorder recorder;
    VLSingleton<VLLogger>::instance()->logFolioService(u"one"_s);
    VLSingleton<VLLogger>::instance()->logFolioService(u"two"_s);
    VLSingleton<VLLogger>::instance()->logFolioService(u"two"_s);
    QCOMPARE(recorder.messages().size(), 3);
    QCOMPARE(recorder.messages().at(0).text, u"one"_s);
    QCOMPARE(recorder.messages().at(1).text, u"two"_s);
    QCOMPARE(recorder.messages().at(2).text, u"two"_s);
}

void tst_VLLogger::initialize_logs_nothing()
{
    const MessageRecorder recorder;
    VLLogger logger;
    logger.initialize();
    QCOMPARE(recorder.messages().size(), 0);
}

void tst_VLLogger::filter_rules_direct_the_messages_data()
{
    QTest::addColumn<QString>("rules");
    QTest::addColumn<int>("messages");

    QTest::newRow("no_rules") << u""_s << 1;
    QTest::newRow("category_off") << u"vl.folio.service=false"_s << 0;
    QTest::newRow("info_of_the_category_off") << u"vl.folio.service.info=false"_s << 0;
    QTest::newRow("group_of_categories_off") << u"vl.*=false"_s << 0;
    QTest::newRow("all_off_but_this") << u"*=false\nvl.folio.service=true"_s << 1;
    QTest::newRow("debug_of_the_category_off") << u"vl.folio.service.debug=false"_s << 1;
    QTest::newRow("another_category_off") << u"vl.folio=false"_s << 1;
}

void tst_VLLogger::filter_rules_direct_the_messages()
{
    QFETCH(const QString, rules);
    const auto restore = qScopeGuard([] { QLoggingCategory::setFilterRules(QString()); });
    QLoggingCategory::setFilterRules(rules);
    const MessageRecorder recorder;
    VLSingleton<VLLogger>::instance()->logFolioService(u"text"_s);
    QTEST(int(recorder.messages().size()), "messages");
}

void tst_VLLogger::a_logger_of_ones_own_logs_likewise()
{
    const MessageRecorder recorder;
    VLLogger logger;
    logger.logFolioService(u"text"_s);
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(recorder.messages().constFirst().category, QByteArray("vl.folio.service"));
}

void tst_VLLogger::process_has_one_logger()
{
    std::vector<VLLogger*> loggers(16);
    runTogether(16, [&loggers](int thread) {
        loggers[size_t(thread)] = VLSingleton<VLLogger>::instance();
    });
    QVERIFY(loggers.front() != nullptr);
    QCOMPARE(loggers, std::vector<VLLogger*>(16, loggers.front()));
}

QTEST_GUILESS_MAIN(tst_VLLogger)
#include "tst_VLLogger.moc"
