#include "HostProgram.h"
#include "PictureTree.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

// The reasons that the program gives, for folders below "pics".
class tst_vlfolio_classify_why : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reason_data();
    void reason();
    void tests_data();
    void tests();
    void siblingsAreJudgedByTheSameFolder();
    void linkToTheRootIsTheRoot();
};

namespace {

HostProgram program(const QStringList& options, const QString& directory)
{
    return HostProgram(QStringList { u"--locale"_s, u"en_US"_s } + options
                       + QStringList { directory });
}

} // namespace

void tst_vlfolio_classify_why::reason_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("line");

    // By itself.
    QTest::newRow("year") << u"2019"_s << u"   Year <= 2019  (by itself Year: test year met)"_s;
    QTest::newRow("month_below_the_root")
        << u"July"_s << u"  Month <= July  (by itself Month: test month met)"_s;
    QTest::newRow("month_below_a_year")
        << u"2019/07"_s << u"  Month <= 2019/07  (by itself Month: test month met)"_s;
    QTest::newRow("month_below_an_unknown_folder")
        << u"x/07"_s << u"  Month <= x/07  (by itself Month: test month met)"_s;
    QTest::newRow("year_below_an_unknown_folder")
        << u"x/2019"_s << u"   Year <= x/2019  (by itself Year: test year met)"_s;
    QTest::newRow("project_folder")
        << u"a_vlp-Dateien"_s
        << u"ProjectFolder <= a_vlp-Dateien  (by itself ProjectFolder: test project met)"_s;
    QTest::newRow("project_folder_below_a_year")
        << u"2019/a_vlp-Dateien"_s
        << u"ProjectFolder <= 2019/a_vlp-Dateien  (by itself ProjectFolder: test project met)"_s;
    QTest::newRow("first_test_decides")
        << u"2019-07-14_vlp-Dateien"_s
        << u"ProjectFolder <= 2019-07-14_vlp-Dateien  (by itself ProjectFolder: test project met)"_s;

    // Changed by the folder above.
    QTest::newRow("unknown_below_a_year")
        << u"2019/x"_s
        << u"  Event <= 2019/x  (by itself Unknown: no test met; an unknown folder below a year is an event)"_s;
    QTest::newRow("unknown_below_a_month")
        << u"07/x"_s
        << u"  Event <= 07/x  (by itself Unknown: no test met; an unknown folder below a month is an event)"_s;
    QTest::newRow("year_below_a_year")
        << u"2019/2018"_s
        << u"  Event <= 2019/2018  (by itself Year: test year met; a year below a year is an event)"_s;
    QTest::newRow("year_below_a_month")
        << u"07/2018"_s
        << u"  Event <= 07/2018  (by itself Year: test year met; a year below a month is an event)"_s;
    QTest::newRow("month_below_a_month")
        << u"07/08"_s
        << u"  Event <= 07/08  (by itself Month: test month met; a month below a month is an event)"_s;
    QTest::newRow("day_below_the_root")
        << u"Monday"_s
        << u"  Event <= Monday  (by itself Day: test date met; a day below the root is an event)"_s;
    QTest::newRow("day_below_a_year")
        << u"2019/Monday"_s
        << u"  Event <= 2019/Monday  (by itself Day: test date met; a day below a year is an event)"_s;
    QTest::newRow("day_below_an_unknown_folder")
        << u"x/Monday"_s
        << u"  Event <= x/Monday  (by itself Day: test date met; a day below an unknown folder is an event)"_s;
    QTest::newRow("day_below_a_project_folder")
        << u"a_vlp-Dateien/Monday"_s
        << u"  Event <= a_vlp-Dateien/Monday  (by itself Day: test date met; a day below a project folder is an event)"_s;
    QTest::newRow("day_below_a_day")
        << u"Monday/Tuesday/Friday"_s
        << u"  Event <= Monday/Tuesday/Friday  (by itself Day: test date met; a day below a day is an event)"_s;

    // Not changed, though it might have been.
    QTest::newRow("day_below_an_event")
        << u"Monday/Tuesday"_s
        << u"    Day <= Monday/Tuesday  (by itself Day: test date met; a day below an event stays a day)"_s;
    QTest::newRow("unknown_below_the_root")
        << u"1999"_s
        << u"Unknown <= 1999  (by itself Unknown: no test met; an unknown folder below the root stays unknown)"_s;
    QTest::newRow("unknown_below_an_event")
        << u"Monday/x"_s
        << u"Unknown <= Monday/x  (by itself Unknown: no test met; an unknown folder below an event stays unknown)"_s;
    QTest::newRow("unknown_below_an_unknown_folder")
        << u"x/y"_s
        << u"Unknown <= x/y  (by itself Unknown: no test met; an unknown folder below an unknown folder stays unknown)"_s;
}

void tst_vlfolio_classify_why::reason()
{
    QFETCH(QString, folder);
    QFETCH(QString, line);
    const PictureTree tree;
    tree.addFolder(u"pics/"_s + folder);

    const auto outcome = program({ u"--list"_s, u"--why"_s }, tree.path(u"pics"_s)).run();

    const QStringList lines = QString::fromUtf8(outcome.output).split(u'\n');
    QCOMPARE(lines.constFirst(), u"   Root <=   (the root of the collection)"_s);
    QCOMPARE(lines.at(lines.size() - 2), line);
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify_why::tests_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("ownType");
    QTest::addColumn<QStringList>("tests");

    QTest::newRow("none") << u"Beach"_s << u"Unknown"_s << QStringList();
    QTest::newRow("year") << u"12345"_s << u"Year"_s << QStringList { u"year"_s };
    QTest::newRow("month") << u"July"_s << u"Month"_s << QStringList { u"month"_s };
    QTest::newRow("date") << u"14.07.19"_s << u"Day"_s << QStringList { u"date"_s };
    QTest::newRow("date_and_year")
        << u"2019-07-14"_s << u"Day"_s << QStringList { u"date"_s, u"year"_s };
    QTest::newRow("all_but_month") << u"2019-07-14_vlp-Dateien"_s << u"ProjectFolder"_s
                                   << QStringList { u"project"_s, u"date"_s, u"year"_s };
}

void tst_vlfolio_classify_why::tests()
{
    QFETCH(QString, name);
    QFETCH(QString, ownType);
    QFETCH(QStringList, tests);
    const PictureTree tree;
    // A name like the folder's own: that of the root is tested, too, but decides nothing.
    const QString root = name;
    tree.addFolder(root + u'/' + name);

    const auto outcome = program({ u"--json"_s }, tree.path(root)).run();

    const QList<QByteArray> lines = outcome.output.split('\n');
    const QJsonObject rootObject = QJsonDocument::fromJson(lines.at(0)).object();
    const QJsonObject object = QJsonDocument::fromJson(lines.at(1)).object();
    QCOMPARE(rootObject.value(u"ownType").toString(), u"Root"_s);
    QCOMPARE(rootObject.value(u"tests").toArray(), QJsonArray::fromStringList(tests));
    QCOMPARE(object.value(u"ownType").toString(), ownType);
    QCOMPARE(object.value(u"tests").toArray(), QJsonArray::fromStringList(tests));
}

void tst_vlfolio_classify_why::siblingsAreJudgedByTheSameFolder()
{
    const PictureTree tree;
    tree.addFolder(u"pics/2019/07/a"_s);
    tree.addFolder(u"pics/2019/b"_s);
    tree.addFolder(u"pics/c"_s);

    // The filter leaves folders out of what is printed, not of what is judged by.
    const auto outcome =
        program({ u"--list"_s, u"--why"_s, u"--type"_s, u"Event"_s }, tree.path(u"pics"_s)).run();

    QCOMPARE(
        outcome.output,
        "  Event <= 2019/07/a  (by itself Unknown: no test met; an unknown folder below a month "
        "is an event)\n"
        "  Event <= 2019/b  (by itself Unknown: no test met; an unknown folder below a year is "
        "an event)\n"_ba);
}

void tst_vlfolio_classify_why::linkToTheRootIsTheRoot()
{
    const PictureTree tree;
    tree.addFolder(u"pics"_s);
    tree.addLink(u"."_s, u"pics/2019"_s);

    const auto outcome = program({ u"--list"_s, u"--why"_s }, tree.path(u"pics"_s)).run();

    const QList<QByteArray> lines = outcome.output.split('\n');
    QCOMPARE(lines.at(1), "   Root <= 2019  (the root of the collection)"_ba);
}

QTEST_GUILESS_MAIN(tst_vlfolio_classify_why)
#include "tst_vlfolio_classify_why.moc"
