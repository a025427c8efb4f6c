#include "MessageRecorder.h"
#include "RawDirectory.h"
#include "RecordingPlatform.h"
#include "ReportText.h"
#include "TestRows.h"
#include "Walk.h"

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <algorithm>

#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray reportOf(const RawDirectory& tree)
{
    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(tree.path())).start();
    return ReportText::fileContents(tree.path(ReportText::reportName));
}

QByteArray everyAsciiByte()
{
    QByteArray bytes;
    for (char byte = 0x01; byte < 0x7f; ++byte)
        bytes.append(byte);
    return bytes.replace('/', "") + '\x7f';
}

QByteArrayList sorted(QByteArrayList names)
{
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

class tst_hostile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void properName_data();
    void properName();
    void rootOfTheFileSystem();
    void folderThatIsChangedMeanwhile_data();
    void folderThatIsChangedMeanwhile();
    void twoThousandFoldersInOne();
};

void tst_hostile::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_hostile::properName_data()
{
    const TestRows<QByteArray, QByteArray> row("name", "type");
    // "2345" is in it.
    row("every_ascii_byte", everyAsciiByte(), "Year");
    row("line_feeds", "\n2019\n", "Year");
    row("line_feeds_as_separators", "2019\n07\n14", "Event");
    row("terminal_escape", "\x1b]0;2019\x07", "Year");
    row("delete_and_backspace", "2\b\u007f019", "Unknown");
    row("markup", "<script>x('2019')", "Year");
    row("cell_end", "<\\td>&amp;\"'", "Unknown");
    row("right_to_left_override", "\u202e9102", "Unknown");
    row("isolates", "\u20662019-07-14\u2069", "Event");
    row("place_markers", "%0%1%2%L1%99 2019", "Year");
    row("format_directives", "%s%n%d", "Unknown");
    row("percent_encoding", "%32%30%31%39", "Unknown");
    row("255_bytes", "2019" + QByteArray(251, 'x'), "Year");
    row("255_line_feeds", QByteArray(255, '\n'), "Unknown");
    row("two_byte_letters", "2019x" + QByteArray("\u00e9").repeated(125), "Year");
    row("four_byte_letters", QByteArray("\U0001f600").repeated(63), "Unknown");
    row("combining_marks_alone", QByteArray("\u0301").repeated(127), "Unknown");
    row("byte_order_mark", "\ufeff07", "Unknown");
    row("replacement_character", "\ufffd 2019", "Year");
    row("trailing_blank", "07 ", "Unknown");
    row("trailing_full_stop", "2019.", "Year");
    row("year_like_a_suffix", "Beach.2019", "Year");
    row("leading_hyphen", "-2019-07-14", "Event");
    // A leading full stop hides a folder and what is below it.
    row("full_stops_and_backslashes", "..\\..\\2019", "");
    row("home", "~root", "Unknown");
    row("resource", ":2019", "Year");
    row("colon", ":", "Unknown");
    row("wildcards", "[2019]*?", "Year");
    row("project", "<b>_vlp-Dateien", "ProjectFolder");
}

// What a name holds is no concern of the walk or the report: it is passed on.
void tst_hostile::properName()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QByteArray, type);

    RawDirectory tree;
    tree.folder("Alps").folder(name).folder(name + "/07").folder("zoo");
    QVERIFY2(tree.isValid(), tree.error());

    QByteArrayList expected { " Root", "/Alps Unknown", "/zoo Unknown" };
    if (!type.isEmpty())
        expected += { '/' + name + ' ' + type, '/' + name + "/07 Month" };
    QCOMPARE(sorted(walkedLines(tree.path())), sorted(expected));
    const QByteArray report = reportOf(tree);
    QCOMPARE(report.count("<tr class="), expected.size());
    QCOMPARE(report.count("<td>/" + name + "</td>\n"), type.isEmpty() ? 0 : 1);
    QVERIFY(report.endsWith("</html>\n"));
}

// Its path ends with the slash that others lack.
void tst_hostile::rootOfTheFileSystem()
{
    RawDirectory tree({ "\xff/", ":/", "2019/" });
    VERIFY_MADE(tree);

    constexpr int noOtherRoot = 77;
    const pid_t child = fork();
    if (child == 0) {
        if (chroot(tree.bytes(".").constData()) != 0 || chdir("/") != 0)
            _exit(noOtherRoot);
        const QList<VLEventFolderClassificationResult> results = walk(u"/"_s);
        const bool isRight =
            lines(results, {}) == QByteArrayList { "/ Root", "/2019 Year", "/: Unknown" }
            && results.constLast().directory().filePath() == u"/:"_s;
        _exit(isRight ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status));
    if (WEXITSTATUS(status) == noOtherRoot)
        QSKIP("Only the superuser can take another root: run the test as root");
    QCOMPARE(WEXITSTATUS(status), EXIT_SUCCESS);
}

void tst_hostile::folderThatIsChangedMeanwhile_data()
{
    QTest::addColumn<QByteArray>("change");
    QTest::addColumn<QByteArray>("moment");

    for (const char* const change : { "removed", "renamed", "replaced" }) {
        for (const char* const moment : { "", "/2018", "/2018/07", "/2018/07/deep", "/2019" })
            QTest::addRow("%s_at_%s", change, *moment == '\0' ? "root" : moment + 1)
                << QByteArray(change) << QByteArray(moment);
    }
}

// By another program while a folder is about to be listed. All others are found, and reported.
void tst_hostile::folderThatIsChangedMeanwhile()
{
    QFETCH(const QByteArray, change);
    QFETCH(const QByteArray, moment);

    RawDirectory tree({ "2018/07/deep/", "2019/05/" });
    const RecordingPlatform::Action act = [&change, &moment, &tree](const QString& path) {
        if (path != tree.path() + QString::fromUtf8(moment))
            return;
        if (change == "renamed")
            static_cast<void>(QFile::rename(tree.path("2018"), tree.path("2017")));
        else
            QDir(tree.path("2018")).removeRecursively();
        if (change == "replaced")
            tree.file("2018");
    };
    QByteArrayList found;
    {
        RecordingPlatform platform;
        platform.walked = act;
        found = walkedLines(tree.path());
    }
    found.removeIf([](const QByteArray& line) {
        return line.startsWith("/2018") || line.startsWith("/2017");
    });
    QCOMPARE(found, (QByteArrayList { " Root", "/2019 Year", "/2019/05 Month" }));
    const QByteArray report = reportOf(tree);
    QVERIFY(report.startsWith(ReportText::lines(1, 20)));
    QVERIFY(report.contains("<td>/2019/05</td>"));
    QVERIFY(report.endsWith(ReportText::lines(21, 23)));
}

void tst_hostile::twoThousandFoldersInOne()
{
    constexpr int count = 2'000;
    RawDirectory tree;
    tree.folder("2019");
    QByteArrayList expected { " Root", "/2019 Year" };
    // From the last to the first, so that the order of making is not that of the names.
    for (int number = count; number > 0; --number) {
        const QByteArray name = "/f" + QByteArray::number(10'000 + number).mid(1);
        tree.folder("2019" + name);
        expected.append("/2019" + name + " Event");
    }
    QVERIFY2(tree.isValid(), tree.error());
    QVERIFY(walkedLines(tree.path()) == sorted(expected));
    QCOMPARE(reportOf(tree).count("<tr class=Event>"), count);
}

QTEST_GUILESS_MAIN(tst_hostile)
#include "tst_hostile.moc"
