#include "MessageRecorder.h"
#include "RawDirectory.h"
#include "RecordingPlatform.h"
#include "ReportText.h"
#include "Walk.h"

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <algorithm>

#include <sys/wait.h>

#if defined(Q_OS_LINUX)
#    include <sys/sysmacros.h>
#endif

using namespace Qt::StringLiterals;

namespace {

constexpr auto reportName = "vela.classification.results.html";

QByteArray reportOf(const RawDirectory& tree)
{
    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(tree.path())).start();
    return ReportText::fileContents(tree.path(reportName));
}

QByteArray allBytes(int first, int last)
{
    QByteArray bytes;
    for (int byte = first; byte <= last; ++byte) {
        if (byte != '/')
            bytes.append(static_cast<char>(byte));
    }
    return bytes;
}

QByteArrayList sorted(QByteArrayList names)
{
    std::sort(names.begin(), names.end());
    return names;
}

// The device that takes everything, and a disk that is not there.
bool makeDevices(const RawDirectory& tree)
{
#if defined(Q_OS_LINUX)
    return mknod(tree.bytes("2019/character").constData(), S_IFCHR | 0600, makedev(1, 3)) == 0
        && mknod(tree.bytes("2019/block").constData(), S_IFBLK | 0600, makedev(7, 255)) == 0;
#else
    Q_UNUSED(tree)
    return false;
#endif
}

} // namespace

class tst_hostile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void properName_data();
    void properName();
    void undecodableName_data();
    void undecodableName();
    void kindsThatCount();
    void devicesAreNeitherFoldersNorFiles();
    void rootOfTheFileSystem();
    void subdirectoriesAreThoseOfQDir_data();
    void subdirectoriesAreThoseOfQDir();
    void namesThatQDirCannotList_data();
    void namesThatQDirCannotList();
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
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("type");

    const auto row = [](const char* title, const QByteArray& name, const char* type) {
        QTest::newRow(title) << name << QByteArray(type);
    };
    row("line_feeds", "\n2019\n", "Year");
    row("line_feeds_as_separators", "2019\n07\n14", "Event");
    row("carriage_return", "2019\r", "Year");
    row("terminal_title_escape", "\x1b]0;2019\x07", "Year");
    row("terminal_colour_escape", "\x1b[2J\x1b[31mBeach", "Unknown");
    row("delete_and_backspace", QByteArray("2\b\x7f") + "019", "Unknown");
    row("markup", "<script>x('2019')", "Year");
    row("cell_end", "<\\td>&amp;\"'", "Unknown");
    row("right_to_left_override", QByteArray("\u202e") + "9102", "Unknown");
    row("isolates", QByteArray("\u2066") + "2019-07-14\u2069", "Event");
    row("place_marker", "%1", "Unknown");
    row("place_markers", "%0%1%2%L1%99 2019", "Year");
    row("format_directives", "%s%n%d", "Unknown");
    row("percent_encoding", "%32%30%31%39", "Unknown");
    // "2345" is in it.
    row("every_ascii_byte", allBytes(0x01, 0x7f), "Year");
    row("255_bytes", "2019" + QByteArray(251, 'x'), "Year");
    row("255_line_feeds", QByteArray(255, '\n'), "Unknown");
    row("255_percent_signs", QByteArray(255, '%'), "Unknown");
    row("255_digits", QByteArray(255, '2'), "Year");
    row("two_byte_letters", "2019x" + QByteArray("\u00e9").repeated(125), "Year");
    row("three_byte_letters", QByteArray("\u65e5").repeated(85), "Unknown");
    row("four_byte_letters", QByteArray("\U0001f600").repeated(63), "Unknown");
    row("combining_marks_alone", QByteArray("\u0301").repeated(127), "Unknown");
    row("byte_order_mark", QByteArray("\ufeff") + "07", "Unknown");
    row("replacement_character", "\ufffd 2019", "Year");
    row("noncharacter", "\uffff 2019", "Year");
    row("blank", " ", "Unknown");
    row("trailing_blank", "07 ", "Unknown");
    row("trailing_full_stop", "2019.", "Year");
    row("year_like_a_suffix", "Beach.2019", "Year");
    row("leading_hyphen", "-2019-07-14", "Event");
    row("backslashes", "2019\\07\\14", "Year");
    // A leading full stop hides a folder and what is below it.
    row("backslashes_behind_full_stops", "..\\..\\2019", "");
    row("tilde", "~", "Unknown");
    row("home", "~root", "Unknown");
    row("drive", "C:", "Unknown");
    row("resource", ":2019", "Year");
    row("colon", ":", "Unknown");
    row("address", "file:2019", "Year");
    row("wildcard", "*", "Unknown");
    row("wildcards", "[2019]*?", "Year");
    row("photokit", "photokit", "Unknown");
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

void tst_hostile::undecodableName_data()
{
    QTest::addColumn<QByteArray>("name");

    const auto row = [](const char* title, const QByteArray& name) {
        QTest::newRow(title) << name;
    };
    row("latin_1_letter", "2019 M\xfcnchen");
    row("lone_continuation_byte", "2019\x80");
    row("sequence_cut_by_the_end", "2019\xe2\x82");
    row("sequence_cut_by_a_letter", QByteArray("\xe2\x82") + "2019");
    row("surrogate", "\xed\xa0\x80");
    row("surrogate_pair", "\xed\xa0\xbd\xed\xb8\x80");
    row("slash_in_two_bytes", QByteArray("2019\xc0\xaf") + "07");
    row("nul_in_two_bytes", "2019\xc0\x80");
    row("beyond_the_last_character", "\xf4\x90\x80\x80");
    row("five_byte_sequence", "\xf8\x88\x80\x80\x80");
    row("bytes_that_never_occur", "\xfe\xff");
    row("replacement_character_beside", "\ufffd\xff");
    row("every_byte_above_ascii", allBytes(0x80, 0xff));
    row("every_byte", allBytes(0x01, 0xff));
    row("255_bytes", QByteArray(255, '\xff'));
    row("undecodable_and_escape", "\x1b[31m\xff<b>%1\n");
    row("hidden", ".\xff");
}

// No QString can name such a folder, so that it is left out, with what it holds. Nothing else is.
void tst_hostile::undecodableName()
{
    QFETCH(const QByteArray, name);

    RawDirectory tree({ "2019/07/", "2019/" + name + "/Beach/", "2019/Alps/", "2020/" });
    VERIFY_MADE(tree);
    const QByteArrayList expected { " Root", "/2019 Year", "/2019/07 Month", "/2019/Alps Event",
                                    "/2020 Year" };
    QCOMPARE(walkedLines(tree.path()), expected);
    const QByteArray report = reportOf(tree);
    QCOMPARE(report.count("<tr class="), expected.size());
    QVERIFY(report.endsWith("</html>\n"));
}

// Files and links to files do, whatever their names, but not the hidden ones.
void tst_hostile::kindsThatCount()
{
    RawDirectory tree({ "2019/e.jpg/", "2019/a.jpg|", "2019/b.jpg=", "2019/c.jpg",
                        "2019/d.jpg -> c.jpg", "2019/f.jpg -> e.jpg", "2019/g.jpg -> a.jpg",
                        "2019/h.jpg -> nowhere", "2019/.i", "2019/\n.jpg", "2019/\xff.jpg",
                        "2019/\xfe.jpg -> c.jpg", "2019/.\xff", "2019/\xfd/" });
    VERIFY_MADE(tree);
    const QByteArray report = reportOf(tree);
    const auto counted = [&report](const char* path, const char* count) {
        return report.contains(QByteArray("<td>") + path + "</td>\n\t\t\t\t<td>" + count
                               + "</td>\n");
    };
    QVERIFY(counted("/2019", "5"));
    QVERIFY(counted("/2019/e.jpg", "0"));
    QVERIFY(counted("/2019/f.jpg", "0"));
    // A link to a pipe is listed as a folder, and nothing is in it.
    QVERIFY(counted("/2019/g.jpg", "0"));
    QCOMPARE(report.count("<tr class="), 5);
}

void tst_hostile::devicesAreNeitherFoldersNorFiles()
{
    RawDirectory tree({ "2019/c.jpg/", "2019/d.jpg" });
    if (!makeDevices(tree))
        QSKIP("Only the superuser of some systems makes devices: run the test as root");
    QCOMPARE(walkedLines(tree.path()),
             (QByteArrayList { " Root", "/2019 Year", "/2019/c.jpg Event" }));
    QVERIFY(reportOf(tree).contains("<td>/2019</td>\n\t\t\t\t<td>1</td>\n"));
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

void tst_hostile::subdirectoriesAreThoseOfQDir_data()
{
    QTest::addColumn<QByteArrayList>("entries");

    const auto row = [](const char* title, const QByteArrayList& entries) {
        QTest::newRow(title) << entries;
    };
    row("nothing", {});
    row("folders_and_files", { "a/", "B/", "c", "2019/x/" });
    row("hidden", { ".a/", ".b", "...", "c/", ".link -> c", "link -> .a" });
    row("link_to_a_folder", { "a/", "link -> a", "link to link -> link", "up -> ..", "here -> ." });
    row("link_to_a_file", { "a", "link -> a", "link to link -> link" });
    row("link_to_a_pipe", { "a|", "link -> a" });
    row("link_to_a_socket", { "a=", "link -> a" });
    row("link_to_a_device", { "link -> /dev/null", "terminal -> /dev/tty" });
    row("link_to_nothing",
        { "dangling -> nowhere", "circle -> circle", "one -> two", "two -> one" });
    row("link_through_a_file", { "a", "link -> a/b" });
    row("normal_forms", { "Caf\u00e9/", "Cafe\u0301/", "\u212b/", "\u00c5/" });
    row("colons", { ":a/", ":/", ":qt/", "a:b/", ":link -> :a" });
    row("odd_names", { "%1/", "a\nb/", " /", "~/", "*/", "\\/", "a\\b/", "\ufffd/", "-/" });
}

// Those of QDir::Dirs and QDir::NoDotAndDotDot.
void tst_hostile::subdirectoriesAreThoseOfQDir()
{
    QFETCH(const QByteArrayList, entries);

    RawDirectory tree(entries);
    const RecordingPlatform platform;
    const QDir directory(tree.path());
    QStringList expected;
    const QFileInfoList listed = directory.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : listed)
        expected.append(entry.fileName());
    QStringList found = platform.getDirectSubdirectoriesInDirectory(directory);
    found.sort();
    expected.sort();
    QCOMPARE(found, expected);
    QVERIFY(platform.incomplete.isEmpty());
}

void tst_hostile::namesThatQDirCannotList_data()
{
    QTest::addColumn<QByteArrayList>("entries");
    QTest::addColumn<QByteArrayList>("folders");
    QTest::addColumn<bool>("isTold");

    const auto row = [](const char* title, const QByteArrayList& entries,
                        const QByteArrayList& folders,
                        bool isTold) { QTest::newRow(title) << entries << folders << isTold; };
    // Qt 6.11 lists one folder twice and the other not at all.
    row("byte_order_mark_stays", { "\ufeff/", "\ufeffa/", "a/" }, { "a", "\ufeff", "\ufeffa" },
        false);
    row("folder_that_is_not_utf_8", { "a/", "\xff/", "b/" }, { "a", "b" }, true);
    row("two_folders_that_are_not_utf_8", { "\xfe/", "a/", "\xff/" }, { "a" }, true);
    row("link_to_a_folder_that_is_not_utf_8", { "a/", "\xff -> a", "b/" }, { "a", "b" }, true);
    // None of these would have been listed anyway.
    row("file_that_is_not_utf_8", { "a/", "\xff", "b/" }, { "a", "b" }, false);
    row("hidden_folder_that_is_not_utf_8", { "a/", ".\xff/", "b/" }, { "a", "b" }, false);
    row("dangling_link_that_is_not_utf_8", { "a/", "\xff -> nowhere" }, { "a" }, false);
    row("pipe_that_is_not_utf_8", { "a/", "\xff|" }, { "a" }, false);
}

// A folder whose name no QString can hold is told once, and hides no other. Files are counted.
void tst_hostile::namesThatQDirCannotList()
{
    QFETCH(const QByteArrayList, entries);
    QFETCH(const QByteArrayList, folders);
    QFETCH(const bool, isTold);

    RawDirectory tree;
    tree.make(entries).make({ "x.jpg" });
    VERIFY_MADE(tree);
    const RecordingPlatform platform;
    QByteArrayList found;
    const QStringList names = platform.getDirectSubdirectoriesInDirectory(QDir(tree.path()));
    for (const QString& name : names)
        found.append(name.toUtf8());
    QCOMPARE(sorted(found), folders);
    QCOMPARE(platform.incomplete.size(), isTold ? 1 : 0);
    if (isTold) {
        QCOMPARE(platform.incomplete.constFirst().path, tree.path());
        QCOMPARE(platform.incomplete.constFirst().problem,
                 RecordingPlatform::ListingProblem::UndecodableName);
        QCOMPARE(platform.incomplete.constFirst().systemError, 0);
    }
    QVERIFY(!platform.getDirectFilesInDirectory(QDir(tree.path())).isEmpty());
    QCOMPARE(platform.incomplete.size(), isTold ? 1 : 0);
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
