#include "Browser.h"
#include "RawDirectory.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <array>
#include <cstring>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

struct Row
{
    int depth;
    const char* type;
    const char* folder;
    const char* files;
    const char* reason;
};

// clang-format off
constexpr std::array rows {
    Row { 0, "Root", "", "0 files", "the root of the collection" },
    Row { 1, "Unknown", " leading  blanks", "0 files", "by itself Unknown: no test met; an unknown folder below the root stays unknown" },
    Row { 1, "Year", "2019", "1 file", "by itself Year: test year met" },
    Row { 2, "Month", "2019/07", "0 files", "by itself Month: test month met" },
    Row { 3, "Event", "2019/07/14.07.2019 Пасха", "2 files", "by itself Day: test date met; a day below a month is an event" },
    Row { 4, "Day", "2019/07/14.07.2019 Пасха/2019-07-15", "0 files", "by itself Day: test date met; a day below an event stays a day" },
    Row { 3, "Event", "2019/07/Übung", "0 files", "by itself Unknown: no test met; an unknown folder below a month is an event" },
    // In the order of the tree, not of the paths: the hyphen comes before the slash.
    Row { 2, "Event", "2019/07-x", "0 files", "by itself Unknown: no test met; an unknown folder below a year is an event" },
    Row { 2, "Event", "2019/רמדאן", "0 files", "by itself Unknown: no test met; an unknown folder below a year is an event" },
    Row { 1, "Unknown", "B", "0 files", "by itself Unknown: no test met; an unknown folder below the root stays unknown" },
    Row { 2, "Year", "B/2020", "0 files", "by itself Year: test year met" },
    Row { 1, "ProjectFolder", "Buch_vlp-Dateien", "0 files", "by itself ProjectFolder: test project met" },
};
// clang-format on

// The names of the folders that are shown, as a filter leaves them; those that are there only
// because of a folder below them in brackets. What is folded is not shown.
const QString shownScript =
    u"[...document.querySelectorAll('#tree li')]"
    ".filter(row => row.querySelector('bdi').checkVisibility())"
    ".map(row => [row.querySelector('bdi').textContent, row.classList.contains('context')])"
    ".map(([name, isContext]) => isContext ? `(${name})` : name).slice(1).join(' ')"_s;

const QString statusScript = u"document.getElementById('status').textContent"_s;

void fill(RawDirectory& tree)
{
    for (const Row& row : rows) {
        if (row.depth > 0)
            tree.folder(row.folder);
    }
    tree.file("2019/1.jpg").file("2019/07/14.07.2019 Пасха/2.jpg");
    tree.file("2019/07/14.07.2019 Пасха/3.jpg");
}

QString nameOf(const QString& path)
{
    return path.section(u'/', -1);
}

} // namespace

class tst_page_in_browser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void rowsAreThoseOfTheTree();
    void deepFoldersStandSideBySide();
    void headingsAndLandmarks();
    void countsAreThoseOfTheSummary();
    void chartShowsTheNearestYear();
    void manyYearsAreAddedUp();
    void noChartWithoutYears();
    void yearsAreFolded();
    void foldsAndUnfolds();
    void isWholeWithoutScript();
    void filtersByType();
    void searches_data();
    void searches();
    void searchAndFilterGoTogether();
    void foldsAreKeptWhileSearching();
    void incompleteFolderIsMarked();
    void namesRunNothing();
    void steeringCharactersAreShown();
    void nothingElseRuns();
    void paperShowsAllFolders();
    void obeysRulesOfAccessibility_data();
    void obeysRulesOfAccessibility();
    void pictureOfTheSample();

private:
    // Opens the page on \a directory.
    void openPageOn(const QString& directory);
    void search(const QString& text);
    QString evaluated(const QString& expression);

    RawDirectory m_pages;
    std::unique_ptr<Browser> m_browser;
};

void tst_page_in_browser::openPageOn(const QString& directory)
{
    const QString page = m_pages.path() + u"/page.html"_s;
    const QByteArray output = outputOfProgram(
        { u"--locale"_s, u"en_US"_s, u"--no-open"_s, u"--page"_s, page, directory });
    QCOMPARE(QString::fromUtf8(output), page + u'\n');
    m_browser->open(page);
}

void tst_page_in_browser::search(const QString& text)
{
    // What the page does after a pause in typing comes before what waits for longer.
    m_browser->evaluate(u"{ const search = document.getElementById('search');"
                        "search.value = '%1'; search.dispatchEvent(new Event('input')); }"
                        "new Promise(done => setTimeout(() => done(true), 500))"_s.arg(text));
}

QString tst_page_in_browser::evaluated(const QString& expression)
{
    return m_browser->evaluate(expression).toString();
}

void tst_page_in_browser::initTestCase()
{
    if (Browser::program().isEmpty())
        QSKIP("Chromium is not installed");
    m_browser = std::make_unique<Browser>();
}

void tst_page_in_browser::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    m_browser->setMedia(u"light"_s);
}

void tst_page_in_browser::cleanupTestCase()
{
    m_browser.reset();
}

void tst_page_in_browser::rowsAreThoseOfTheTree()
{
    RawDirectory tree;
    fill(tree);
    QVERIFY2(tree.isValid(), std::strerror(errno));
    openPageOn(tree.path());

    const QJsonArray shown =
        m_browser
            ->evaluate(u"[...document.querySelectorAll('#tree li')].map(row => {"
                       "let depth = -1;"
                       "for (let one = row; one; one = one.parentElement.closest('#tree li'))"
                       "    ++depth;"
                       "const text = name => row.querySelector(name).textContent;"
                       "return [depth, text('.type'), text('bdi'), text('.amount'), text('.why')];"
                       "})"_s)
            .toArray();

    QCOMPARE(evaluated(u"document.characterSet"_s), u"UTF-8"_s);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row& row = rows.at(i);
        const QString folder =
            row.depth == 0 ? nameOf(tree.path()) : nameOf(QString::fromUtf8(row.folder));
        const QJsonArray expected { row.depth, QString::fromUtf8(row.type), folder,
                                    QString::fromUtf8(row.files), QString::fromUtf8(row.reason) };
        QCOMPARE(shown.at(int(i)).toArray(), expected);
    }
    QCOMPARE(shown.size(), qsizetype(rows.size()));
}

void tst_page_in_browser::deepFoldersStandSideBySide()
{
    RawDirectory tree;
    QByteArray path = "1";
    tree.folder(path);
    for (int i = 2; i <= 26; ++i)
        tree.folder(path += '/' + QByteArray::number(i));
    tree.folder("2");
    QVERIFY2(tree.isValid(), std::strerror(errno));
    openPageOn(tree.path());

    const QString depths = u"[...document.querySelectorAll('#tree li')].slice(-5).map(row => {"
                           "let depth = -1;"
                           "for (let one = row; one; one = one.parentElement.closest('#tree li'))"
                           "    ++depth;"
                           "return depth + ' ' + row.querySelector('bdi').textContent;"
                           "}).join()"_s;
    QCOMPARE(evaluated(depths), u"23 23,24 24,24 24/25,24 24/25/26,1 2"_s);
}

void tst_page_in_browser::headingsAndLandmarks()
{
    RawDirectory tree;
    fill(tree);
    openPageOn(tree.path());

    QCOMPARE(evaluated(u"document.documentElement.lang"_s), u"en"_s);
    QCOMPARE(evaluated(u"[...document.querySelectorAll('h1, h2')].map(one => one.textContent)"
                       ".slice(1).join()"_s),
             u"By type,By year,Folders"_s);
    QCOMPARE(evaluated(u"document.querySelector('h1').textContent"_s), nameOf(tree.path()));
    QCOMPARE(evaluated(u"document.title"_s), nameOf(tree.path()) + u": what its folders are"_s);
    QCOMPARE(evaluated(u"[...document.querySelectorAll('header p')].map(one => one.textContent)"
                       ".join()"_s),
             tree.path() + u",3 files in 12 folders"_s);
}

void tst_page_in_browser::countsAreThoseOfTheSummary()
{
    RawDirectory tree;
    fill(tree);
    openPageOn(tree.path());
    const QString summary = QString::fromUtf8(
        outputOfProgram({ u"--locale"_s, u"en_US"_s, u"--summary"_s, tree.path() }));

    const QJsonArray counts =
        m_browser
            ->evaluate(
                u"[...document.querySelectorAll('tbody tr')].map(row => row.cells)"
                ".map(cells => [cells[0], cells[2], cells[3]].map(one => one.textContent))"_s)
            .toArray();

    QCOMPARE(counts.size(), 7);
    for (const QJsonValue& row : counts) {
        const QString line = u"%1 %2"_s.arg(row[0].toString(), -13).arg(row[1].toString());
        QVERIFY2(summary.split(u'\n').contains(line), qPrintable(line + u'\n' + summary));
    }
    const QJsonArray files { u"0"_s, u"1"_s, u"0"_s, u"0"_s, u"2"_s, u"0"_s, u"0"_s };
    for (int i = 0; i < files.size(); ++i)
        QCOMPARE(counts.at(i)[2], files.at(i));
    QCOMPARE(evaluated(u"[...document.querySelectorAll('tfoot .number')]"
                       ".map(one => one.textContent).join()"_s),
             u"12,3"_s);
}

void tst_page_in_browser::chartShowsTheNearestYear()
{
    RawDirectory tree;
    fill(tree);
    openPageOn(tree.path());

    QCOMPARE(
        evaluated(u"document.querySelector('desc').textContent"_s),
        u"2019: 7 folders, 3 files; B/2020: 1 folder, 0 files; in no year: 4 folders, 0 files"_s);
    QCOMPARE(evaluated(u"[...document.querySelectorAll('svg svg text')]"
                       ".map(one => one.textContent).join()"_s),
             u"2019,…/2020,in no year"_s);
    const QString widths = u"[...document.querySelectorAll('rect.%1')]"
                           ".map(bar => parseFloat(bar.getAttribute('width')).toFixed(2)).join()"_s;
    QCOMPARE(evaluated(widths.arg(u"folders"_s)), u"25.00,3.57,14.29"_s);
    QCOMPARE(evaluated(widths.arg(u"files"_s)), u"25.00,0.00,0.00"_s);
}

void tst_page_in_browser::manyYearsAreAddedUp()
{
    RawDirectory tree;
    for (int i = 0; i < 70; ++i)
        tree.folder(QByteArray::number(2000 + i));
    tree.folder("2069/x");
    openPageOn(tree.path());

    QCOMPARE(m_browser->evaluate(u"document.querySelectorAll('svg g').length"_s).toInt(), 60);
    // The largest one is kept, and else the first ones. The root lies in no year.
    QCOMPARE(evaluated(u"[...document.querySelectorAll('svg g title')].slice(-3)"
                       ".map(one => one.textContent).join()"_s),
             u"2057: 1 folder, 0 files,2069: 2 folders, 0 files,12 others: 12 folders, 0 files"_s);
}

void tst_page_in_browser::noChartWithoutYears()
{
    RawDirectory tree;
    tree.folder("07");
    openPageOn(tree.path());

    QCOMPARE(
        evaluated(u"[...document.querySelectorAll('h2')].map(one => one.textContent).join()"_s),
        u"By type,Folders"_s);
    QCOMPARE(m_browser->evaluate(u"document.querySelectorAll('svg').length"_s).toInt(), 0);
}

void tst_page_in_browser::yearsAreFolded()
{
    RawDirectory tree;
    fill(tree);
    openPageOn(tree.path());

    QCOMPARE(evaluated(shownScript), u" leading  blanks 2019 B 2020 Buch_vlp-Dateien"_s);
    QCOMPARE(evaluated(u"document.querySelector('.below').textContent"_s),
             u"6 folders, 2 files below"_s);
    // A year with nothing below it has nothing to fold.
    QCOMPARE(m_browser->evaluate(u"document.querySelectorAll('details').length"_s).toInt(), 1);
}

void tst_page_in_browser::foldsAndUnfolds()
{
    RawDirectory tree;
    fill(tree);
    openPageOn(tree.path());
    const QString folded = evaluated(shownScript);

    m_browser->evaluate(u"document.getElementById('unfold').click()"_s);
    QCOMPARE(evaluated(shownScript),
             u" leading  blanks 2019 07 14.07.2019 Пасха 2019-07-15 Übung 07-x רמדאן B 2020 "
             "Buch_vlp-Dateien"_s);

    m_browser->evaluate(u"document.getElementById('fold').click()"_s);
    QCOMPARE(evaluated(shownScript), folded);
}

void tst_page_in_browser::isWholeWithoutScript()
{
    RawDirectory tree;
    fill(tree);
    openPageOn(tree.path());
    QFile page(m_pages.path() + u"/page.html"_s);
    QVERIFY(page.open(QIODevice::ReadOnly));
    QByteArray html = page.readAll();
    const qsizetype script = html.indexOf("<script>");
    html.remove(script, html.indexOf("</script>") - script);
    QFile plainPage(m_pages.path() + u"/plain.html"_s);
    QVERIFY(plainPage.open(QIODevice::WriteOnly));
    QCOMPARE(plainPage.write(html), html.size());
    plainPage.close();

    m_browser->open(plainPage.fileName());

    QCOMPARE(m_browser->evaluate(u"document.querySelectorAll('#tree li').length"_s).toInt(), 12);
    // Nothing is offered that would do nothing.
    QCOMPARE(evaluated(u"[...document.querySelectorAll('input, button')]"
                       ".filter(one => one.checkVisibility()).map(one => one.id).join()"_s),
             QString());
    m_browser->evaluate(u"document.querySelector('summary').click()"_s);
    QCOMPARE(evaluated(u"document.querySelector('details').open.toString()"_s), u"true"_s);
}

void tst_page_in_browser::filtersByType()
{
    RawDirectory tree;
    fill(tree);
    openPageOn(tree.path());
    QCOMPARE(evaluated(u"[...document.querySelectorAll('label, button')]"
                       ".every(one => one.checkVisibility()).toString()"_s),
             u"true"_s);
    QCOMPARE(evaluated(u"[...document.querySelectorAll('fieldset label')]"
                       ".map(one => one.textContent.trim()).join()"_s),
             u"All 12,Year 2,Month 1,Day 1,Event 4,ProjectFolder 1,Unknown 2"_s);
    QCOMPARE(evaluated(statusScript), u"12 folders"_s);

    m_browser->evaluate(u"document.querySelector('input[value=Unknown]').click()"_s);
    QCOMPARE(evaluated(shownScript), u" leading  blanks B"_s);
    QCOMPARE(evaluated(statusScript), u"2 of 12 folders"_s);

    m_browser->evaluate(u"document.querySelector('input[value=Day]').click()"_s);
    QCOMPARE(evaluated(shownScript), u"(2019) (07) (14.07.2019 Пасха) 2019-07-15"_s);

    m_browser->evaluate(u"document.querySelector('input[value=Year]').click()"_s);
    QCOMPARE(evaluated(shownScript), u"2019 (B) 2020"_s);

    m_browser->evaluate(u"document.querySelector('input[value=\"\"]').click()"_s);
    QCOMPARE(evaluated(shownScript), u" leading  blanks 2019 B 2020 Buch_vlp-Dateien"_s);
    QCOMPARE(evaluated(statusScript), u"12 folders"_s);
}

void tst_page_in_browser::searches_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    QTest::newRow("part_of_a_name") << u"uch_"_s << u"Buch_vlp-Dateien"_s;
    QTest::newRow("any_case") << u"buch"_s << u"Buch_vlp-Dateien"_s;
    QTest::newRow("without_marks") << u"ubung"_s << u"(2019) (07) Übung"_s;
    QTest::newRow("with_marks") << u"Übung"_s << u"(2019) (07) Übung"_s;
    QTest::newRow("decomposed") << u"U\u0308bung"_s << u"(2019) (07) Übung"_s;
    QTest::newRow("another_script") << u"пасха"_s << u"(2019) (07) 14.07.2019 Пасха"_s;
    QTest::newRow("from_right_to_left") << u"מד"_s << u"(2019) רמדאן"_s;
    QTest::newRow("each_word") << u"пасха  14"_s << u"(2019) (07) 14.07.2019 Пасха"_s;
    QTest::newRow("not_only_some_words") << u"пасха 15"_s << QString();
    QTest::newRow("no_pattern") << u".*"_s << QString();
    QTest::newRow("blanks_alone") << u"  "_s << u" leading  blanks 2019 B 2020 Buch_vlp-Dateien"_s;
}

void tst_page_in_browser::searches()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    RawDirectory tree;
    fill(tree);
    openPageOn(tree.path());

    search(text);

    QCOMPARE(evaluated(shownScript), shown);
}

void tst_page_in_browser::searchAndFilterGoTogether()
{
    RawDirectory tree;
    fill(tree);
    openPageOn(tree.path());

    search(u"07"_s);
    QCOMPARE(evaluated(shownScript), u"(2019) 07 14.07.2019 Пасха 2019-07-15 07-x"_s);
    m_browser->evaluate(u"document.querySelector('input[value=Event]').click()"_s);

    QCOMPARE(evaluated(shownScript), u"(2019) (07) 14.07.2019 Пасха 07-x"_s);
    QCOMPARE(evaluated(statusScript), u"2 of 12 folders"_s);
}

void tst_page_in_browser::foldsAreKeptWhileSearching()
{
    RawDirectory tree;
    tree.folder("2019").folder("2019/a").folder("2020").folder("2020/b");
    openPageOn(tree.path());
    m_browser->evaluate(u"document.querySelectorAll('summary')[1].click()"_s);
    QCOMPARE(evaluated(shownScript), u"2019 2020 b"_s);

    search(u"a"_s);
    QCOMPARE(evaluated(shownScript), u"(2019) a"_s);
    search(QString());

    QCOMPARE(evaluated(shownScript), u"2019 2020 b"_s);
}

void tst_page_in_browser::incompleteFolderIsMarked()
{
    RawDirectory tree;
    tree.folder("good").folder("odd").folder("odd/\xff");
    QVERIFY2(tree.isValid(), std::strerror(errno));
    openPageOn(tree.path());

    QCOMPARE(evaluated(u"document.querySelector('.warning').textContent"_s),
             u"1 folder is not complete: see below what is left out"_s);
    QCOMPARE(evaluated(u"[...document.querySelectorAll('.incomplete')]"
                       ".map(one => one.closest('li').querySelector('bdi').textContent + ': '"
                       " + one.textContent).join()"_s),
             u"odd: not complete: this folder holds folders whose names are not UTF-8; they are "
             "left out"_s);
    m_browser->evaluate(u"document.querySelector('input[value=partial]').click()"_s);
    QCOMPARE(evaluated(shownScript), u"odd"_s);
}

void tst_page_in_browser::namesRunNothing()
{
    constexpr std::array names {
        "2019<img src=x onerror=hit=1>",
        "<!--",
        "<img src=x onerror=hit=1>",
        "<script>hit=1<",
        "<svg onload=hit=1>",
        "\" onmouseover=\"hit=1\" x=\"",
        "' onmouseover='hit=1' x='",
        "&lt;b&gt;&amp;",
        "]]>",
        "javascript:hit=1",
        "{{hit=1}} ${hit=1} %1 %2 %3 %4",
    };
    RawDirectory tree;
    // The root's own name stands in the title and in the heading, that of a year in the chart.
    const QByteArray root = "\"><script>hit=1<";
    tree.folder(root);
    for (const char* const name : names)
        tree.folder(root + '/' + name);
    tree.folder(root + '/' + names.front() + '/' + names.front());
    QVERIFY2(tree.isValid(), std::strerror(errno));

    openPageOn(tree.path() + u'/' + QString::fromUtf8(root));

    QStringList expected { QString::fromUtf8(root), QString::fromUtf8(names.front()) };
    for (const char* const name : names)
        expected.append(QString::fromUtf8(name));
    const QJsonArray shown =
        m_browser
            ->evaluate(u"[...document.querySelectorAll('#tree bdi')].map(one => one.textContent)"_s)
            .toArray();
    QStringList found;
    for (const QJsonValue& name : shown)
        found.append(name.toString());
    found.sort();
    expected.sort();
    QCOMPARE(found, expected);
    QCOMPARE(evaluated(u"typeof hit"_s), u"undefined"_s);
    QCOMPARE(evaluated(u"document.querySelector('h1').textContent"_s), QString::fromUtf8(root));
    QCOMPARE(evaluated(u"document.querySelector('svg g title').textContent"_s),
             QString::fromUtf8(names.front()) + u": 2 folders, 0 files"_s);
    QCOMPARE(m_browser->evaluate(u"document.scripts.length"_s).toInt(), 1);
    QCOMPARE(
        m_browser->evaluate(u"document.querySelectorAll('img, b, svg svg svg').length"_s).toInt(),
        0);
    QCOMPARE(evaluated(u"[...document.querySelectorAll('*')]"
                       ".flatMap(one => one.getAttributeNames())"
                       ".filter(name => name.startsWith('on') || name === 'style').join()"_s),
             QString());
}

void tst_page_in_browser::steeringCharactersAreShown()
{
    RawDirectory tree;
    tree.folder("a\u202egpj.exe").folder("b\n\033[31m");
    openPageOn(tree.path());

    QCOMPARE(evaluated(shownScript), uR"(a\u202egpj.exe b\u000a\u001b[31m)"_s);
}

void tst_page_in_browser::nothingElseRuns()
{
    const RawDirectory tree;
    openPageOn(tree.path());

    // What somebody brought into the page, though nobody can.
    m_browser->evaluate(u"{ const script = document.createElement('script');"
                        "script.textContent = 'hit = 1'; document.body.append(script);"
                        "document.body.insertAdjacentHTML('beforeend',"
                        "'<p id=\"styled\" style=\"color: #010203\">'); }"_s);

    QCOMPARE(evaluated(u"typeof hit"_s), u"undefined"_s);
    QVERIFY(evaluated(u"getComputedStyle(document.getElementById('styled')).color"_s)
            != u"rgb(1, 2, 3)"_s);
    const QString loads =
        u"new Promise(done => { const image = new Image();"
        "image.onload = () => done('loaded'); image.onerror = () => done('refused');"
        "image.src = 'data:image/svg+xml,<svg xmlns=\"http://www.w3.org/2000/svg\"/>';"
        "})"_s;
    QCOMPARE(evaluated(loads), u"refused"_s);
}

void tst_page_in_browser::paperShowsAllFolders()
{
    RawDirectory tree;
    fill(tree);
    openPageOn(tree.path());

    // Not every browser has another way to unfold.
    const QString isOpen = u"document.querySelector('details').open.toString()"_s;
    m_browser->evaluate(u"dispatchEvent(new Event('beforeprint'))"_s);
    QCOMPARE(evaluated(isOpen), u"true"_s);
    m_browser->evaluate(u"dispatchEvent(new Event('afterprint'))"_s);
    QCOMPARE(evaluated(isOpen), u"false"_s);
    m_browser->setMedia(u"dark"_s, true);

    QCOMPARE(evaluated(u"[...document.querySelectorAll('#tree li')]"
                       ".filter(row => !row.querySelector('bdi').checkVisibility())"
                       ".map(row => row.textContent).join()"_s),
             QString());
    QCOMPARE(evaluated(u"[...document.querySelectorAll('input, button')]"
                       ".filter(one => one.checkVisibility()).map(one => one.id).join()"_s),
             QString());
    QCOMPARE(evaluated(u"getComputedStyle(document.body).backgroundColor"_s),
             u"rgb(255, 255, 255)"_s);
    QCOMPARE(evaluated(u"getComputedStyle(document.body).color"_s), u"rgb(34, 37, 42)"_s);
}

void tst_page_in_browser::obeysRulesOfAccessibility_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::addColumn<QString>("step");

    // Each state has colours of its own.
    const QString unfold = u"document.getElementById('unfold').click()"_s;
    const QString filter = u"document.querySelector('input[value=Unknown]').click()"_s;
    QTest::newRow("light") << u"light"_s << u"true"_s;
    QTest::newRow("light_unfolded") << u"light"_s << unfold;
    QTest::newRow("light_filtered") << u"light"_s << filter;
    QTest::newRow("dark") << u"dark"_s << u"true"_s;
    QTest::newRow("dark_unfolded") << u"dark"_s << unfold;
    QTest::newRow("dark_filtered") << u"dark"_s << filter;
}

void tst_page_in_browser::obeysRulesOfAccessibility()
{
    QFETCH(QString, scheme);
    QFETCH(QString, step);
    QFile rules(QStringLiteral(VLFOLIO_AXE));
    if (!rules.open(QIODevice::ReadOnly))
        QSKIP("axe-core is not installed; npm, and then scripts/install-packages check");
    RawDirectory tree;
    fill(tree);
    tree.folder("\xff");
    QVERIFY2(tree.isValid(), std::strerror(errno));
    openPageOn(tree.path());
    m_browser->setMedia(scheme);
    m_browser->evaluate(step);

    m_browser->evaluate(QString::fromUtf8(rules.readAll()) + u"; true"_s);

    QCOMPARE(evaluated(u"axe.run().then(result => result.violations.flatMap(rule =>"
                       " rule.nodes.map(node => rule.id + ': ' + node.html)).join())"_s),
             QString());
}

// The picture that the README shows is made here.
void tst_page_in_browser::pictureOfTheSample()
{
    const RawDirectory tree;
    const QString sample = tree.path() + u"/Pictures"_s;
    QCOMPARE(QProcess::execute(QStringLiteral(VLFOLIO_MAKE_SAMPLE), { sample }), 0);
    openPageOn(sample);
    // Where the test keeps its files is of no interest.
    m_browser->evaluate(u"document.querySelector('header p bdi').textContent = '/home/me/Pictures';"
                        "document.querySelector('summary').click()"_s);

    const QByteArray picture = m_browser->picture(QSize(1280, 1180));

    QFile file(QStringLiteral(VLFOLIO_PAGE_PICTURE));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(picture), picture.size());
    // The width and the height stand behind the signature and the name of the first chunk.
    QCOMPARE(picture.first(16), "\x89PNG\r\n\x1a\n\0\0\0\rIHDR"_ba);
    QCOMPARE(picture.mid(16, 8), "\0\0\x05\0\0\0\x04\x9c"_ba);
}

QTEST_GUILESS_MAIN(tst_page_in_browser)
#include "tst_page_in_browser.moc"
