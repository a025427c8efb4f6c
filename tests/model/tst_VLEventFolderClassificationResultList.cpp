#include <VLFolioEventClassifier/VLEventFolderClassificationResultList.h>

#include <QtCore/QDir>
#include <QtCore/QScopeGuard>
#include <QtTest/QTest>

#include <initializer_list>
#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Result = VLEventFolderClassificationResult;
using ResultList = VLEventFolderClassificationResultList;

namespace {

Result result(const QString& path, qint32 number)
{
    return Result(QFileInfo(path), static_cast<Type>(number));
}

/// What the list holds, as one text: "/path=number" for each result.
QString contentsOf(const ResultList& list)
{
    QStringList texts;
    for (const Result& result : list) {
        texts.append(result.directory().filePath() + u'='
                     + QString::number(qint32(result.classification().value())));
    }
    return texts.join(u' ');
}

} // namespace

static_assert(std::is_convertible_v<ResultList*, QList<Result>*>, "publicly derived");
static_assert(sizeof(ResultList) == sizeof(void*) + sizeof(QList<Result>), "adds no data");
static_assert(std::has_virtual_destructor_v<ResultList>);
static_assert(std::is_nothrow_default_constructible_v<ResultList>);
static_assert(std::is_copy_constructible_v<ResultList>);
static_assert(std::is_copy_assignable_v<ResultList>);
static_assert(std::is_nothrow_move_constructible_v<ResultList>);
static_assert(std::is_nothrow_move_assignable_v<ResultList>);
static_assert(std::is_convertible_v<QList<Result>, ResultList>);
static_assert(std::is_convertible_v<std::initializer_list<Result>, ResultList>);
// Neither changes the list, yet both ask for one that may be changed.
static_assert(std::is_same_v<decltype(&ResultList::filtered),
                             ResultList (ResultList::*)(const VLEventFolderType&)>);
static_assert(std::is_same_v<decltype(&ResultList::toString), QString (ResultList::*)()>);

class tst_VLEventFolderClassificationResultList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void default_made_list_is_empty();
    void list_of_a_qlist_keeps_elements_and_order();
    void list_of_a_qlist_is_independent();
    void list_of_an_initializer_list_data();
    void list_of_an_initializer_list();
    void room_for_exactly_the_given_results();
    void nothing_is_sorted_or_removed();
    void copies_are_independent();
    void moved_list_arrives();

    void filtered_data();
    void filtered();
    void filtered_results_are_whole_copies();
    void filtered_list_can_be_filtered_again();

    void text_data();
    void text();
    void text_of_relative_directories_is_absolute();
    void text_of_a_result_without_directory();
};

void tst_VLEventFolderClassificationResultList::default_made_list_is_empty()
{
    const ResultList list;
    QVERIFY(list.isEmpty());
    QCOMPARE(list.size(), 0);
}

void tst_VLEventFolderClassificationResultList::list_of_a_qlist_keeps_elements_and_order()
{
    const QList<Result> plain { result(u"/b"_s, 16), result(u"/a"_s, 2), result(u"/c"_s, 0) };
    QCOMPARE(contentsOf(ResultList(plain)), u"/b=16 /a=2 /c=0"_s);
    QCOMPARE(contentsOf(ResultList(QList<Result>())), u""_s);
    const ResultList converted = plain;
    QCOMPARE(contentsOf(converted), u"/b=16 /a=2 /c=0"_s);
}

void tst_VLEventFolderClassificationResultList::list_of_a_qlist_is_independent()
{
    QList<Result> plain { result(u"/a"_s, 2) };
    ResultList list(plain);
    plain.append(result(u"/b"_s, 4));
    QCOMPARE(contentsOf(list), u"/a=2"_s);
    list.clear();
    QCOMPARE(plain.size(), 2);
}

void tst_VLEventFolderClassificationResultList::list_of_an_initializer_list_data()
{
    QTest::addColumn<ResultList>("list");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("contents");

    const Result first = result(u"/b"_s, 1);
    const Result second = result(u"/a"_s, 2);
    QTest::newRow("none") << ResultList(std::initializer_list<Result> {}) << 0 << u""_s;
    QTest::newRow("one") << ResultList { first } << 1 << u"/b=1"_s;
    QTest::newRow("two") << ResultList { first, second } << 2 << u"/b=1 /a=2"_s;
    QTest::newRow("three_with_a_repeat")
        << ResultList { second, first, second } << 3 << u"/a=2 /b=1 /a=2"_s;
}

void tst_VLEventFolderClassificationResultList::list_of_an_initializer_list()
{
    QFETCH(const ResultList, list);
    QTEST(int(list.size()), "size");
    QTEST(contentsOf(list), "contents");
}

void tst_VLEventFolderClassificationResultList::room_for_exactly_the_given_results()
{
    const Result one = result(u"/a"_s, 2);
    QCOMPARE(ResultList(std::initializer_list<Result> {}).capacity(), 0);
    QCOMPARE((ResultList { one }).capacity(), 1);
    QCOMPARE((ResultList { one, one, one }).capacity(), 3);
    QCOMPARE((ResultList { one, one, one, one, one, one, one }).capacity(), 7);
}

void tst_VLEventFolderClassificationResultList::nothing_is_sorted_or_removed()
{
    ResultList list;
    list.append(result(u"/b"_s, 2));
    list << result(u"/a"_s, 2) << result(u"/b"_s, 2);
    QCOMPARE(contentsOf(list), u"/b=2 /a=2 /b=2"_s);
}

void tst_VLEventFolderClassificationResultList::copies_are_independent()
{
    ResultList list { result(u"/a"_s, 2) };
    const ResultList copied = list;
    ResultList assigned;
    assigned = list;
    QVERIFY(copied.isSharedWith(list));
    QVERIFY(assigned.isSharedWith(list));
    list[0].expandTo(Type::Event);
    list.append(result(u"/b"_s, 4));
    QCOMPARE(contentsOf(list), u"/a=18 /b=4"_s);
    QCOMPARE(contentsOf(copied), u"/a=2"_s);
    QCOMPARE(contentsOf(assigned), u"/a=2"_s);
}

void tst_VLEventFolderClassificationResultList::moved_list_arrives()
{
    ResultList list { result(u"/a"_s, 2), result(u"/b"_s, 4) };
    ResultList moved = std::move(list);
    QCOMPARE(contentsOf(moved), u"/a=2 /b=4"_s);
    list = std::move(moved);
    QCOMPARE(contentsOf(list), u"/a=2 /b=4"_s);
}

void tst_VLEventFolderClassificationResultList::filtered_data()
{
    QTest::addColumn<ResultList>("list");
    QTest::addColumn<qint32>("number");
    QTest::addColumn<QString>("contents");

    const ResultList mixed { result(u"/c"_s, 16), result(u"/b"_s, 18), result(u"/a"_s, 16) };
    const ResultList untyped { result(u"/r"_s, 1), result(u"/u"_s, 0), result(u"/y"_s, 2) };
    const ResultList repeated { result(u"/a"_s, 4), result(u"/a"_s, 4) };
    QTest::newRow("empty_list") << ResultList() << 16 << u""_s;
    QTest::newRow("empty_list_by_unknown") << ResultList() << 0 << u""_s;
    QTest::newRow("flag_leaves_out_its_combination") << mixed << 16 << u"/c=16 /a=16"_s;
    QTest::newRow("combination_leaves_out_its_flags") << mixed << 18 << u"/b=18"_s;
    QTest::newRow("other_flag_of_the_combination") << mixed << 2 << u""_s;
    QTest::newRow("larger_combination") << mixed << 19 << u""_s;
    QTest::newRow("unknown_where_all_have_a_type") << mixed << 0 << u""_s;
    QTest::newRow("unknown_gives_those_without_a_type") << untyped << 0 << u"/u=0"_s;
    QTest::newRow("root") << untyped << 1 << u"/r=1"_s;
    QTest::newRow("repeats_are_kept") << repeated << 4 << u"/a=4 /a=4"_s;
}

void tst_VLEventFolderClassificationResultList::filtered()
{
    QFETCH(ResultList, list);
    QFETCH(const qint32, number);
    const QString before = contentsOf(list);
    QTEST(contentsOf(list.filtered(static_cast<Type>(number))), "contents");
    QCOMPARE(contentsOf(list), before);
}

void tst_VLEventFolderClassificationResultList::filtered_results_are_whole_copies()
{
    VLOccasionInfoList occasions;
    occasions.append(VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.9));
    ResultList list { result(u"/a"_s, 16) };
    list[0].setOccasionInformation(occasions);
    ResultList events = list.filtered(Type::Event);
    QCOMPARE(events.size(), 1);
    QCOMPARE(events.at(0).occasionInformation().occasion(), u"Birthday"_s);
    events[0].expandTo(Type::Day);
    QCOMPARE(contentsOf(list), u"/a=16"_s);
}

void tst_VLEventFolderClassificationResultList::filtered_list_can_be_filtered_again()
{
    ResultList list { result(u"/a"_s, 16), result(u"/b"_s, 8) };
    QCOMPARE(contentsOf(list.filtered(Type::Event).filtered(Type::Event)), u"/a=16"_s);
    QCOMPARE(contentsOf(list.filtered(Type::Event).filtered(Type::Day)), u""_s);
}

void tst_VLEventFolderClassificationResultList::text_data()
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
    QTest::newRow("root_of_the_file_system") << QStringList { u"/"_s } << u"/"_s;
    QTest::newRow("non_latin") << QStringList { u"/\u5199\u771F"_s, u"/\U0001F4F7"_s }
                               << u"/\u5199\u771F\n/\U0001F4F7"_s;
}

void tst_VLEventFolderClassificationResultList::text()
{
    QFETCH(const QStringList, paths);
    ResultList list;
    for (const QString& path : paths)
        list.append(result(path, 16));
    QTEST(list.toString(), "text");
    QCOMPARE(list.size(), paths.size());
}

void tst_VLEventFolderClassificationResultList::text_of_relative_directories_is_absolute()
{
    const QString before = QDir::currentPath();
    const auto restore = qScopeGuard([&before] { QDir::setCurrent(before); });
    QVERIFY(QDir::setCurrent(u"/"_s));
    ResultList list { result(u"vl/a"_s, 16), result(u"./b"_s, 0) };
    QCOMPARE(list.toString(), u"/vl/a\n/b"_s);
}

void tst_VLEventFolderClassificationResultList::text_of_a_result_without_directory()
{
    ResultList list { result(u"/vl/a"_s, 16), Result(), result(u"/vl/b"_s, 16) };
    QCOMPARE(list.toString(), u"/vl/a\n\n/vl/b"_s);
}

QTEST_GUILESS_MAIN(tst_VLEventFolderClassificationResultList)
#include "tst_VLEventFolderClassificationResultList.moc"
