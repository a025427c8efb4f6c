#include "Browser.h"
#include "RawDirectory.h"
#include "ReportText.h"

#include <QtCore/QJsonArray>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <array>
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

// The text of each element that a selector chooses.
const QString textsScript = u"[...document.querySelectorAll('%1')].map(one => one.textContent)"_s;

// The names of the folders that are shown, as a filter leaves them; those that are there only
// because of a folder below them in brackets. What is folded is not shown.
const QString shownScript =
    u"[...document.querySelectorAll('#tree li')]"
    ".filter(row => row.querySelector('bdi').checkVisibility())"
    ".map(row => [row.querySelector('bdi').textContent, row.classList.contains('context')])"
    ".map(([name, isContext]) => isContext ? `(${name})` : name).slice(1).join(' ')"_s;

const QString folded = u" leading  blanks 2019 B 2020 Buch_vlp-Dateien"_s;
const QString unfolded =
    u" leading  blanks 2019 07 14.07.2019 Пасха 2019-07-15 Übung 07-x רמדאן B 2020 "
    "Buch_vlp-Dateien"_s;

const QString visibleControlsScript = u"[...document.querySelectorAll('input, button')]"
                                      ".filter(one => one.checkVisibility())"
                                      ".map(one => one.id).join()"_s;

// How many folders a row lies in.
const QString depthFunction =
    u"const depthOf = row => row ? 1 + depthOf(row.parentElement.closest('#tree li')) : -1;"_s;

QByteArrayList entries()
{
    QByteArrayList all { "2019/1.jpg", "2019/07/14.07.2019 Пасха/2.jpg",
                         "2019/07/14.07.2019 Пасха/3.jpg" };
    for (const Row& row : rows) {
        if (row.depth > 0)
            all.prepend(QByteArray(row.folder) + '/');
    }
    return all;
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
    void finds_data();
    void finds();
    void filterIsTakenBack();
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
    void click(const QString& selector);
    QString evaluated(const QString& expression);
    QStringList texts(const QString& selector);

    RawDirectory m_pages;
    RawDirectory m_pictures { entries() };
    std::unique_ptr<Browser> m_browser;
};

void tst_page_in_browser::openPageOn(const QString& directory)
{
    const QString page = m_pages.path("page.html");
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

void tst_page_in_browser::click(const QString& selector)
{
    m_browser->evaluate(u"document.querySelector('%1').click()"_s.arg(selector));
}

QString tst_page_in_browser::evaluated(const QString& expression)
{
    return m_browser->evaluate(expression).toVariant().toString();
}

QStringList tst_page_in_browser::texts(const QString& selector)
{
    return m_browser->evaluate(textsScript.arg(selector)).toVariant().toStringList();
}

void tst_page_in_browser::initTestCase()
{
    if (Browser::program().isEmpty())
        QSKIP("Chromium is not installed");
    m_browser = std::make_unique<Browser>();
}

// Most of the tests look at one collection.
void tst_page_in_browser::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    m_browser->setMedia(u"light"_s);
    openPageOn(m_pictures.path());
}

void tst_page_in_browser::cleanupTestCase()
{
    m_browser.reset();
}

void tst_page_in_browser::rowsAreThoseOfTheTree()
{
    const QJsonArray shown =
        m_browser
            ->evaluate(depthFunction
                       + u"[...document.querySelectorAll('#tree li')].map(row => [depthOf(row),"
                         "...['.type', 'bdi', '.amount', '.why'].map("
                         "part => row.querySelector(part).textContent)])"_s)
            .toArray();

    QCOMPARE(evaluated(u"document.characterSet"_s), u"UTF-8"_s);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row& row = rows.at(i);
        const QString path = row.depth == 0 ? m_pictures.path() : QString::fromUtf8(row.folder);
        const QJsonArray expected { row.depth, QString::fromUtf8(row.type), nameOf(path),
                                    QString::fromUtf8(row.files), QString::fromUtf8(row.reason) };
        QCOMPARE(shown.at(int(i)).toArray(), expected);
    }
    QCOMPARE(shown.size(), qsizetype(rows.size()));
}

void tst_page_in_browser::deepFoldersStandSideBySide()
{
    QByteArray path = "1";
    for (int i = 2; i <= 26; ++i)
        path += '/' + QByteArray::number(i);
    const RawDirectory tree({ path + '/', "2/" });
    openPageOn(tree.path());

    QCOMPARE(
        evaluated(depthFunction
                  + u"[...document.querySelectorAll('#tree li')].slice(-5).map("
                    "row => depthOf(row) + ' ' + row.querySelector('bdi').textContent).join()"_s),
        u"23 23,24 24,24 24/25,24 24/25/26,1 2"_s);
}

void tst_page_in_browser::headingsAndLandmarks()
{
    const QString root = m_pictures.path();

    QCOMPARE(evaluated(u"document.documentElement.lang"_s), u"en"_s);
    QCOMPARE(evaluated(u"document.title"_s), nameOf(root) + u": what its folders are"_s);
    QCOMPARE(texts(u"h1, h2"_s),
             QStringList({ nameOf(root), u"By type"_s, u"By year"_s, u"Folders"_s }));
    QCOMPARE(texts(u"header p"_s), QStringList({ root, u"3 files in 12 folders"_s }));
}

void tst_page_in_browser::countsAreThoseOfTheSummary()
{
    const QByteArray summary =
        outputOfProgram({ u"--locale"_s, u"en_US"_s, u"--summary"_s, m_pictures.path() });

    const QStringList types = texts(u"tbody th"_s);
    const QStringList counts = texts(u"tbody .number:nth-child(3)"_s);
    QCOMPARE(types.size(), 7);
    for (int i = 0; i < types.size(); ++i) {
        const QString line = u"%1 %2\n"_s.arg(types.at(i), -13).arg(counts.at(i));
        QVERIFY2(summary.contains(line.toUtf8()), summary.constData());
    }
    QCOMPARE(texts(u"tbody .number:nth-child(4)"_s).join(u' '), u"0 1 0 0 2 0 0"_s);
    QCOMPARE(texts(u"tfoot .number"_s).join(u' '), u"12 3"_s);
}

void tst_page_in_browser::chartShowsTheNearestYear()
{
    QCOMPARE(texts(u"desc"_s).join(u'|'),
             u"2019: 7 folders, 3 files; B/2020: 1 folder, 0 files; "
             "in no year: 4 folders, 0 files"_s);
    QCOMPARE(texts(u"svg svg text"_s).join(u'|'), u"2019|…/2020|in no year"_s);
    const QString widths = u"[...document.querySelectorAll('rect.%1')]"
                           ".map(bar => parseFloat(bar.getAttribute('width')).toFixed(2)).join()"_s;
    QCOMPARE(evaluated(widths.arg(u"folders"_s)), u"25.00,3.57,14.29"_s);
    QCOMPARE(evaluated(widths.arg(u"files"_s)), u"25.00,0.00,0.00"_s);
}

void tst_page_in_browser::manyYearsAreAddedUp()
{
    RawDirectory tree({ "2069/x/" });
    for (int year = 2000; year < 2069; ++year)
        tree.folder(QByteArray::number(year));
    openPageOn(tree.path());

    const QStringList bars = texts(u"svg g title"_s);
    QCOMPARE(bars.size(), 60);
    // The largest one is kept, and else the first ones. The root lies in no year.
    QCOMPARE(bars.last(3),
             QStringList({ u"2057: 1 folder, 0 files"_s, u"2069: 2 folders, 0 files"_s,
                           u"12 others: 12 folders, 0 files"_s }));
}

void tst_page_in_browser::noChartWithoutYears()
{
    const RawDirectory tree({ "07/" });
    openPageOn(tree.path());

    QCOMPARE(texts(u"h2, svg"_s), QStringList({ u"By type"_s, u"Folders"_s }));
}

void tst_page_in_browser::yearsAreFolded()
{
    QCOMPARE(evaluated(shownScript), folded);
    // A year with nothing below it has nothing to fold.
    QCOMPARE(texts(u"details .below"_s), QStringList { u"6 folders, 2 files below"_s });
    QCOMPARE(texts(u"details"_s).size(), 1);
}

void tst_page_in_browser::foldsAndUnfolds()
{
    click(u"#unfold"_s);
    QCOMPARE(evaluated(shownScript), unfolded);

    click(u"#fold"_s);
    QCOMPARE(evaluated(shownScript), folded);
}

void tst_page_in_browser::isWholeWithoutScript()
{
    QByteArray html = ReportText::fileContents(m_pages.path("page.html"));
    const qsizetype script = html.indexOf("<script>");
    html.remove(script, html.indexOf("</script>") - script);
    QVERIFY(ReportText::writeFile(m_pages.path("plain.html"), html));

    m_browser->open(m_pages.path("plain.html"));

    QCOMPARE(texts(u"#tree li"_s).size(), 12);
    // Nothing is offered that would do nothing.
    QCOMPARE(evaluated(visibleControlsScript), QString());
    click(u"summary"_s);
    QCOMPARE(evaluated(u"document.querySelector('details').open"_s), u"true"_s);
}

void tst_page_in_browser::finds_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("status");

    const auto add = [](const char* name, const char* text, const char* type, const char* shown,
                        const char* status) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(type)
                            << QString::fromUtf8(shown) << QString::fromUtf8(status);
    };
    // clang-format off
    const char* const all = " leading  blanks 2019 B 2020 Buch_vlp-Dateien";
    add("part_of_a_name", "uch_", "", "Buch_vlp-Dateien", "1 of 12 folders");
    add("any_case", "buch", "", "Buch_vlp-Dateien", "1 of 12 folders");
    add("without_marks", "ubung", "", "(2019) (07) Übung", "1 of 12 folders");
    add("with_marks", "Übung", "", "(2019) (07) Übung", "1 of 12 folders");
    add("decomposed", "U\u0308bung", "", "(2019) (07) Übung", "1 of 12 folders");
    add("another_script", "пасха", "", "(2019) (07) 14.07.2019 Пасха", "1 of 12 folders");
    add("from_right_to_left", "מד", "", "(2019) רמדאן", "1 of 12 folders");
    add("each_word", "пасха  14", "", "(2019) (07) 14.07.2019 Пасха", "1 of 12 folders");
    add("not_only_some_words", "пасха 15", "", "", "0 of 12 folders");
    add("no_pattern", ".*", "", "", "0 of 12 folders");
    add("blanks_alone", "  ", "", all, "12 folders");
    add("unknown", "", "Unknown", " leading  blanks B", "2 of 12 folders");
    add("day", "", "Day", "(2019) (07) (14.07.2019 Пасха) 2019-07-15", "1 of 12 folders");
    add("year", "", "Year", "2019 (B) 2020", "2 of 12 folders");
    add("all_types", "", "", all, "12 folders");
    add("text_of_all_types", "07", "", "(2019) 07 14.07.2019 Пасха 2019-07-15 07-x", "4 of 12 folders");
    add("text_and_type", "07", "Event", "(2019) (07) 14.07.2019 Пасха 07-x", "2 of 12 folders");
    // clang-format on
}

void tst_page_in_browser::finds()
{
    QFETCH(QString, text);
    QFETCH(QString, type);
    QFETCH(QString, shown);
    QFETCH(QString, status);

    search(text);
    click(u"input[value=\"%1\"]"_s.arg(type));

    QCOMPARE(evaluated(shownScript), shown);
    QCOMPARE(texts(u"#status"_s).join(u'|'), status);
}

void tst_page_in_browser::filterIsTakenBack()
{
    QCOMPARE(evaluated(u"[...document.querySelectorAll('label, button')]"
                       ".every(one => one.checkVisibility())"_s),
             u"true"_s);
    QCOMPARE(texts(u"fieldset label"_s).join(u',').simplified(),
             u"All 12,Year 2,Month 1,Day 1,Event 4,ProjectFolder 1,Unknown 2"_s);
    const QString all = evaluated(shownScript);

    click(u"input[value=Day]"_s);
    QVERIFY(evaluated(shownScript) != all);
    click(u"input[value=\"\"]"_s);

    QCOMPARE(evaluated(shownScript), all);
    QCOMPARE(texts(u"#status"_s).join(u'|'), u"12 folders"_s);
}

void tst_page_in_browser::foldsAreKeptWhileSearching()
{
    const RawDirectory tree({ "2019/a/", "2020/b/" });
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
    const RawDirectory tree({ "good/", "odd/\xff/" });
    VERIFY_MADE(tree);
    openPageOn(tree.path());

    QCOMPARE(texts(u".warning"_s).join(u'|'),
             u"1 folder is not complete: see below what is left out"_s);
    QCOMPARE(evaluated(u"[...document.querySelectorAll('.incomplete')]"
                       ".map(one => one.closest('li').querySelector('bdi').textContent + ': '"
                       " + one.textContent).join()"_s),
             u"odd: not complete: this folder holds folders whose names are not UTF-8; they are "
             "left out"_s);
    click(u"input[value=partial]"_s);
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
    // The root's own name stands in the title and in the heading, that of a year in the chart.
    const QByteArray root = "\"><script>hit=1<";
    const QString year = QString::fromUtf8(names.front());
    RawDirectory tree({ root + '/' + names.front() + '/' + names.front() + '/' });
    QStringList expected { QString::fromUtf8(root), year };
    for (const char* const name : names) {
        tree.folders(root + '/' + name);
        expected.append(QString::fromUtf8(name));
    }
    QVERIFY2(tree.isValid(), tree.error());

    openPageOn(tree.path(root));

    QStringList found = texts(u"#tree bdi"_s);
    found.sort();
    expected.sort();
    QCOMPARE(found, expected);
    QCOMPARE(evaluated(u"typeof hit"_s), u"undefined"_s);
    QCOMPARE(texts(u"h1"_s), QStringList { QString::fromUtf8(root) });
    QCOMPARE(texts(u"svg g title"_s).constFirst(), year + u": 2 folders, 0 files"_s);
    QCOMPARE(texts(u"script"_s).size(), 1);
    QCOMPARE(texts(u"img, b, svg svg svg"_s), QStringList());
    QCOMPARE(evaluated(u"[...document.querySelectorAll('*')]"
                       ".flatMap(one => one.getAttributeNames())"
                       ".filter(name => name.startsWith('on') || name === 'style').join()"_s),
             QString());
}

void tst_page_in_browser::steeringCharactersAreShown()
{
    const RawDirectory tree({ "a\u202egpj.exe/", "b\n\033[31m/" });
    openPageOn(tree.path());

    QCOMPARE(evaluated(shownScript), uR"(a\u202egpj.exe b\u000a\u001b[31m)"_s);
}

void tst_page_in_browser::nothingElseRuns()
{
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
    // Not every browser has another way to unfold.
    const QString isOpen = u"document.querySelector('details').open"_s;
    m_browser->evaluate(u"dispatchEvent(new Event('beforeprint'))"_s);
    QCOMPARE(evaluated(isOpen), u"true"_s);
    m_browser->evaluate(u"dispatchEvent(new Event('afterprint'))"_s);
    QCOMPARE(evaluated(isOpen), u"false"_s);
    m_browser->setMedia(u"dark"_s, true);

    QCOMPARE(evaluated(shownScript), unfolded);
    QCOMPARE(evaluated(visibleControlsScript), QString());
    QCOMPARE(evaluated(u"getComputedStyle(document.body).backgroundColor"_s),
             u"rgb(255, 255, 255)"_s);
    QCOMPARE(evaluated(u"getComputedStyle(document.body).color"_s), u"rgb(34, 37, 42)"_s);
}

void tst_page_in_browser::obeysRulesOfAccessibility_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::addColumn<QString>("clicked");

    // Each state has colours of its own. A click on a heading changes nothing.
    for (const auto* const scheme : { "light", "dark" }) {
        for (const auto* const clicked : { "h1", "#unfold", "input[value=Unknown]" })
            QTest::addRow("%s %s", scheme, clicked)
                << QString::fromLatin1(scheme) << QString::fromLatin1(clicked);
    }
}

void tst_page_in_browser::obeysRulesOfAccessibility()
{
    QFETCH(QString, scheme);
    QFETCH(QString, clicked);
    const QByteArray rules = ReportText::fileContents(QStringLiteral(VLFOLIO_AXE));
    if (rules.isEmpty())
        QSKIP("axe-core is not installed; npm, and then scripts/install-packages check");
    const RawDirectory tree(entries() + QByteArrayList { "\xff/" });
    VERIFY_MADE(tree);
    openPageOn(tree.path());
    m_browser->setMedia(scheme);
    click(clicked);

    m_browser->evaluate(QString::fromUtf8(rules) + u"; true"_s);

    QCOMPARE(evaluated(u"axe.run().then(result => result.violations.flatMap(rule =>"
                       " rule.nodes.map(node => rule.id + ': ' + node.html)).join())"_s),
             QString());
}

// The picture that the README shows is made here.
void tst_page_in_browser::pictureOfTheSample()
{
    const RawDirectory tree;
    openPageOn(makeSample(tree));
    // Where the test keeps its files is of no interest.
    m_browser->evaluate(u"document.querySelector('header p bdi').textContent = '/home/me/Pictures';"
                        "document.querySelector('summary').click()"_s);

    QVERIFY(m_browser->savePicture(QStringLiteral(VLFOLIO_PAGE_PICTURE), QSize(1280, 1180)));
}

QTEST_GUILESS_MAIN(tst_page_in_browser)
#include "tst_page_in_browser.moc"
