#include "Browser.h"
#include "RawDirectory.h"

#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <array>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

struct Row
{
    const char* type;
    const char* folder;
    const char* count;
    const char* colour;
};

constexpr auto unknownColour = "rgb(238, 170, 170)";
constexpr auto rootColour = "rgb(0, 0, 0)";
constexpr auto yearColour = "rgb(221, 9, 9)";
constexpr auto monthColour = "rgb(9, 221, 9)";
constexpr auto dayColour = "rgb(9, 9, 221)";
constexpr auto eventColour = "rgb(7, 7, 221)";
// That of the table, which the test chooses: the report has none for this type.
constexpr auto noColour = "rgb(1, 2, 3)";

// In the order of the report, which is that of UTF-16: the emoji come before the ligature. Some
// names are the same to the eye, and some show in another order than they are written in.
// clang-format off
constexpr std::array rows {
    Row { "Root",          "",                                      "1", rootColour },
    Row { "Unknown",       "/ leading blank",                       "0", unknownColour },
    Row { "Unknown",       "/\"quoted\" 'name' \\ 100% %1",         "0", unknownColour },
    Row { "Month",         "/07",                                   "0", monthColour },
    Row { "Year",          "/2019",                                 "0", yearColour },
    Row { "Month",         "/2019/07",                              "2", monthColour },
    Row { "Event",         "/2019/07/14.07.2019 Пасха",             "0", eventColour },
    Row { "Day",           "/2019/07/14.07.2019 Пасха/2019-07-15",  "0", dayColour },
    Row { "Event",         "/2019/Jörg & Zoë",                      "0", eventColour },
    Row { "Event",         "/2019/חתונה (בים) 12",                  "0", eventColour },
    Row { "Event",         "/2019/رمضان ١٤٤٠",                      "0", eventColour },
    Row { "Event",         "/2019/桜の花見",                        "0", eventColour },
    Row { "ProjectFolder", "/Buch_vlp-Dateien",                     "0", noColour },
    Row { "Unknown",       "/Ma\u0308rz",                           "0", unknownColour },
    Row { "Unknown",       "/M\u00e4rz",                            "0", unknownColour },
    Row { "Unknown",       "/a   b  c",                             "0", unknownColour },
    Row { "Unknown",       "/x < y > z, I <3 you",                  "0", unknownColour },
    Row { "Unknown",       "/👨‍👩‍👧 😀",                               "0", unknownColour },
    Row { "Unknown",       "/ﬁnal",                                 "0", unknownColour },
};
// clang-format on

// The rows below the header: the type that names the style, the texts of the cells, and the colours
// of the row and of each cell.
const QString rowsScript = u"[...document.querySelectorAll('tr')].slice(1).map(row => ["
                           "row.className, ...[...row.cells].map(cell => cell.textContent),"
                           "...[row, ...row.cells].map(one => getComputedStyle(one).color)])"_s;

QJsonArray expectedRow(const Row& row, const QString& rootPath)
{
    const QString type = QString::fromUtf8(row.type);
    const QString folder = QString::fromUtf8(row.folder);
    const QString colour = QString::fromUtf8(row.colour);
    QJsonArray expected { type, type, folder.isEmpty() ? rootPath : folder,
                          QString::fromUtf8(row.count), u"no data"_s };
    for (int i = 0; i < 5; ++i)
        expected.append(colour);
    return expected;
}

// Path of the report on \a directory, which the program makes.
QString reportOf(const QString& directory)
{
    return QString::fromUtf8(outputOfProgram({ u"--no-open"_s, directory })).chopped(1);
}

} // namespace

class tst_report_in_browser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void rowsAreAsOnDisk();
    void headerIsStyled();
    void characterSetIsGuessed_data();
    void characterSetIsGuessed();
    void pictureOfTheSample();

private:
    std::unique_ptr<Browser> m_browser;
};

void tst_report_in_browser::initTestCase()
{
    if (Browser::program().isEmpty())
        QSKIP("Chromium is not installed");
    m_browser = std::make_unique<Browser>();
}

void tst_report_in_browser::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_report_in_browser::cleanupTestCase()
{
    m_browser.reset();
}

void tst_report_in_browser::rowsAreAsOnDisk()
{
    RawDirectory tree;
    for (const Row& row : rows) {
        if (*row.folder != '\0')
            tree.folder(row.folder + 1);
    }
    tree.make({ "2019/07/1.jpg", "2019/07/2.jpg" });
    QVERIFY2(tree.isValid(), tree.error());

    m_browser->open(reportOf(tree.path()));
    const QString setColour = u"document.querySelector('table').style.color = '%1'"_s;
    m_browser->evaluate(setColour.arg(QLatin1StringView(noColour)));
    const QJsonArray shown = m_browser->evaluate(rowsScript).toArray();

    QCOMPARE(m_browser->evaluate(u"document.characterSet"_s).toString(), u"UTF-8"_s);
    for (std::size_t i = 0; i < rows.size(); ++i)
        QCOMPARE(shown.at(int(i)).toArray(), expectedRow(rows.at(i), tree.path()));
    QCOMPARE(shown.size(), qsizetype(rows.size()));
}

void tst_report_in_browser::headerIsStyled()
{
    RawDirectory tree;
    m_browser->open(reportOf(tree.path()));

    const QJsonValue header = m_browser->evaluate(
        u"[...document.querySelectorAll('th')].map(cell => ["
        "cell.textContent, getComputedStyle(cell).textAlign, getComputedStyle(cell).fontWeight,"
        "getComputedStyle(cell).borderBottom])"_s);

    QJsonArray expected;
    for (const auto& name : { u"Classification"_s, u"Directory"_s, u"Count"_s, u"Occasion"_s }) {
        expected.append(QJsonArray { name, u"left"_s, u"700"_s, u"2px solid rgb(16, 16, 16)"_s });
    }
    QCOMPARE(header.toArray(), expected);
}

void tst_report_in_browser::characterSetIsGuessed_data()
{
    QTest::addColumn<int>("plainFolders");
    QTest::addColumn<QStringList>("possible");

    const QString right = u"/zzz März 桜 😀"_s;
    const QString misread = u"/zzz MÃ¤rz æ¡œ ðŸ˜€"_s;
    QTest::newRow("within_256_KiB") << 2000 << QStringList { right };
    // The report declares no character set, and Chromium looks no further than this.
    QTest::newRow("beyond_256_KiB") << 3000 << QStringList { right, misread };
}

void tst_report_in_browser::characterSetIsGuessed()
{
    QFETCH(int, plainFolders);
    QFETCH(QStringList, possible);
    RawDirectory tree;
    for (int i = 0; i < plainFolders; ++i)
        tree.folder("some folder " + QByteArray::number(i));
    tree.folder("zzz März 桜 😀");
    QVERIFY2(tree.isValid(), tree.error());

    const QString report = reportOf(tree.path());
    m_browser->open(report);

    QCOMPARE(QFileInfo(report).size() > 256 * 1024, plainFolders == 3000);
    const QString shown =
        m_browser->evaluate(u"[...document.querySelectorAll('tr')].pop().cells[1].textContent"_s)
            .toString();
    QVERIFY2(possible.contains(shown), qPrintable(shown));
}

// The picture that the README shows is made here.
void tst_report_in_browser::pictureOfTheSample()
{
    const RawDirectory tree;
    m_browser->open(reportOf(makeSample(tree)));
    // Where the test keeps its files is of no interest.
    const QJsonValue rootPath = m_browser->evaluate(
        u"document.querySelector('.Root').cells[1].textContent = '/home/me/Pictures'"_s);
    QCOMPARE(rootPath.toString(), u"/home/me/Pictures"_s);
    QCOMPARE(m_browser->evaluate(u"document.querySelectorAll('tr').length"_s).toInt(), 39);

    QVERIFY(m_browser->savePicture(QStringLiteral(VLFOLIO_PICTURE), QSize(900, 960)));
}

QTEST_GUILESS_MAIN(tst_report_in_browser)
#include "tst_report_in_browser.moc"
