#include <VLFolioEventClassifier/VLOccasionInfoList.h>

#include <QtTest/QTest>

#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

static_assert(std::is_convertible_v<VLOccasionInfoList*, QList<VLOccasionInfo>*>,
              "publicly derived");
static_assert(sizeof(VLOccasionInfoList) == sizeof(void*) + sizeof(QList<VLOccasionInfo>),
              "adds no data");
static_assert(std::has_virtual_destructor_v<VLOccasionInfoList>);
static_assert(std::is_nothrow_default_constructible_v<VLOccasionInfoList>);
static_assert(std::is_copy_constructible_v<VLOccasionInfoList>);
static_assert(std::is_copy_assignable_v<VLOccasionInfoList>);
static_assert(std::is_nothrow_move_constructible_v<VLOccasionInfoList>);
static_assert(std::is_nothrow_move_assignable_v<VLOccasionInfoList>);

namespace {

VLOccasionInfo info(const QString& occasion, double confidence = 0.5)
{
    return VLOccasionInfo(occasion, u"s"_s, confidence);
}

VLOccasionInfoList listOf(const QStringList& occasions)
{
    VLOccasionInfoList list;
    for (const QString& occasion : occasions)
        list.append(info(occasion));
    return list;
}

} // namespace

class tst_VLOccasionInfoList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void default_made_list_is_empty();
    void texts_data();
    void texts();
    void descriptions_are_those_of_the_records();
    void list_is_left_unchanged();
    void has_the_list_interface_of_its_base();
    void copies_are_independent();
    void moved_list_arrives();
};

void tst_VLOccasionInfoList::default_made_list_is_empty()
{
    const VLOccasionInfoList list;
    QCOMPARE(list.size(), 0);
    QVERIFY(list.isEmpty());
}

void tst_VLOccasionInfoList::texts_data()
{
    QTest::addColumn<QStringList>("occasions");
    QTest::addColumn<QString>("occasion");
    QTest::addColumn<QStringList>("descriptions");
    QTest::addColumn<QString>("description");

    QTest::newRow("empty_list_has_no_data")
        << QStringList() << u""_s << QStringList() << u"no Data"_s;
    QTest::newRow("one_record_has_no_separator")
        << QStringList { u"A"_s } << u"A"_s << QStringList { u"A (0.5, s)"_s } << u"A (0.5, s)"_s;
    QTest::newRow("two_records") << QStringList { u"A"_s, u"B"_s } << u"A,B"_s
                                 << QStringList { u"A (0.5, s)"_s, u"B (0.5, s)"_s }
                                 << u"A (0.5, s); B (0.5, s)"_s;
    QTest::newRow("order_is_that_of_the_list")
        << QStringList { u"B"_s, u"C"_s, u"A"_s } << u"B,C,A"_s
        << QStringList { u"B (0.5, s)"_s, u"C (0.5, s)"_s, u"A (0.5, s)"_s }
        << u"B (0.5, s); C (0.5, s); A (0.5, s)"_s;
    QTest::newRow("repeated_record_is_kept")
        << QStringList { u"A"_s, u"A"_s } << u"A,A"_s
        << QStringList { u"A (0.5, s)"_s, u"A (0.5, s)"_s } << u"A (0.5, s); A (0.5, s)"_s;
    QTest::newRow("one_empty_occasion_is_data")
        << QStringList { u""_s } << u""_s << QStringList { u" (0.5, s)"_s } << u" (0.5, s)"_s;
    QTest::newRow("empty_occasions_keep_their_place")
        << QStringList { u""_s, u"A"_s, u""_s } << u",A,"_s
        << QStringList { u" (0.5, s)"_s, u"A (0.5, s)"_s, u" (0.5, s)"_s }
        << u" (0.5, s); A (0.5, s);  (0.5, s)"_s;
    QTest::newRow("separators_within_texts_stay")
        << QStringList { u"A,B"_s, u"C; D"_s } << u"A,B,C; D"_s
        << QStringList { u"A,B (0.5, s)"_s, u"C; D (0.5, s)"_s }
        << u"A,B (0.5, s); C; D (0.5, s)"_s;
    QTest::newRow("placeholders_stay")
        << QStringList { u"%1"_s, u"%2"_s } << u"%1,%2"_s
        << QStringList { u"%1 (0.5, s)"_s, u"%2 (0.5, s)"_s } << u"%1 (0.5, s); %2 (0.5, s)"_s;
}

void tst_VLOccasionInfoList::texts()
{
    QFETCH(const QStringList, occasions);
    const VLOccasionInfoList list = listOf(occasions);
    QCOMPARE(list.occasions(), occasions);
    QCOMPARE(list.occassions(), occasions);
    QTEST(list.occasion(), "occasion");
    QTEST(list.descriptions(), "descriptions");
    QTEST(list.description(), "description");
}

void tst_VLOccasionInfoList::descriptions_are_those_of_the_records()
{
    VLOccasionInfoList list;
    list.append(VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.9));
    list.append(VLOccasionInfo(u"Party"_s, u"Tags"_s, 0.1234567));
    list.append(VLOccasionInfo());
    const QStringList expected { u"Birthday (0.9, Calendar)"_s, u"Party (0.123457, Tags)"_s,
                                 u" (0, )"_s };
    QCOMPARE(list.descriptions(), expected);
    QCOMPARE(list.description(), u"Birthday (0.9, Calendar); Party (0.123457, Tags);  (0, )"_s);
    QCOMPARE(list.occasion(), u"Birthday,Party,"_s);
}

void tst_VLOccasionInfoList::list_is_left_unchanged()
{
    const VLOccasionInfoList list = listOf({ u"A"_s, u"B"_s });
    Q_UNUSED(list.occasions())
    Q_UNUSED(list.occassions())
    Q_UNUSED(list.descriptions())
    Q_UNUSED(list.description())
    Q_UNUSED(list.occasion())
    QCOMPARE(list.size(), 2);
    QVERIFY(list.at(0) == info(u"A"_s));
    QVERIFY(list.at(1) == info(u"B"_s));
}

void tst_VLOccasionInfoList::has_the_list_interface_of_its_base()
{
    VLOccasionInfoList list = listOf({ u"A"_s, u"B"_s });
    list << info(u"C"_s);
    list.prepend(info(u"Z"_s));
    list.removeAt(1);
    list.replace(1, info(u"X"_s));
    QCOMPARE(list.occasion(), u"Z,X,C"_s);
    QVERIFY(list.contains(info(u"X"_s)));
    QVERIFY(!list.contains(info(u"X"_s, 0.6)));
    QCOMPARE(list.indexOf(info(u"C"_s)), 2);
    list.clear();
    QCOMPARE(list.description(), u"no Data"_s);
}

void tst_VLOccasionInfoList::copies_are_independent()
{
    VLOccasionInfoList list = listOf({ u"A"_s });
    const VLOccasionInfoList copied = list;
    VLOccasionInfoList assigned;
    assigned = list;
    list.append(info(u"B"_s));
    QCOMPARE(list.occasion(), u"A,B"_s);
    QCOMPARE(copied.occasion(), u"A"_s);
    QCOMPARE(assigned.occasion(), u"A"_s);
    QVERIFY(copied == assigned);
    QVERIFY(copied != list);
}

void tst_VLOccasionInfoList::moved_list_arrives()
{
    VLOccasionInfoList list = listOf({ u"A"_s, u"B"_s });
    VLOccasionInfoList moved = std::move(list);
    QCOMPARE(moved.occasion(), u"A,B"_s);
    list = std::move(moved);
    QCOMPARE(list.occasion(), u"A,B"_s);
}

QTEST_GUILESS_MAIN(tst_VLOccasionInfoList)
#include "tst_VLOccasionInfoList.moc"
