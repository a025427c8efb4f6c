#include "RawDirectory.h"
#include "RecordingPlatform.h"
#include "TypeNames.h"

#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

using Result = VLEventFolderClassificationResult;

namespace {

QList<Result> walk(const QString& root)
{
    const QFileInfo directory(root);
    return VLFolioEventClassifier(directory).eventFolderTypes(directory, Result());
}

// One line "path Type" for each result; the path begins behind the root's.
QStringList walkedLines(const QString& root)
{
    QStringList texts;
    const QList<Result> results = walk(root);
    for (const Result& result : results) {
        texts.append(result.directory().absoluteFilePath().mid(root.size()) + u' '
                     + typeName(result.classification().value()));
    }
    return texts;
}

QByteArray reportOf(const QString& root)
{
    RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(root)).start();
    QFile report(root + u"/vela.classification.results.html"_s);
    return report.open(QIODevice::ReadOnly) ? report.readAll() : QByteArray();
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

QStringList sorted(QStringList names)
{
    std::sort(names.begin(), names.end());
    return names;
}

std::optional<QStringList> besideUndecodable(const QString& path)
{
    return VLPlatformIndependent::directoriesBesideUndecodableNames(QDir(path));
}

} // namespace

class tst_hostile_names : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void properName_data();
    void properName();
    void composedAndDecomposedNamesAreTwo();

    void undecodableName_data();
    void undecodableName();
    void undecodableNameBesideProperOnes_data();
    void undecodableNameBesideProperOnes();
    void undecodableNamesOnEveryLevel();
    void undecodableFilesCount();

    void directoriesBeside_kinds();
    void directoriesBeside_undecodableName_data();
    void directoriesBeside_undecodableName();
    void directoriesBeside_nothingProperIsAnEmptyList();
    void directoriesBeside_isNotAskedFor_data();
    void directoriesBeside_isNotAskedFor();
};

void tst_hostile_names::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_hostile_names::properName_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("type");

    QTest::newRow("line_feed") << QByteArray("\n2019\n") << u"Year"_s;
    QTest::newRow("carriage_return") << QByteArray("2019\r") << u"Year"_s;
    QTest::newRow("terminal_title_escape") << QByteArray("\x1b]0;2019\x07") << u"Year"_s;
    QTest::newRow("terminal_colour_escape") << QByteArray("\x1b[2J\x1b[31mBeach") << u"Unknown"_s;
    QTest::newRow("delete_and_backspace") << QByteArray("2\b\x7f"
                                                        "019")
                                          << u"Unknown"_s;
    QTest::newRow("markup") << QByteArray("<script>x(2019)") << u"Year"_s;
    QTest::newRow("cell_end") << QByteArray("<\\td>&amp;\"'") << u"Unknown"_s;
    QTest::newRow("right_to_left_override") << QByteArray("\u202e"
                                                          "9102")
                                            << u"Unknown"_s;
    QTest::newRow("isolates") << QByteArray("\u2066"
                                            "2019-07-14\u2069")
                              << u"Event"_s;
    QTest::newRow("place_marker_1") << QByteArray("%1") << u"Unknown"_s;
    QTest::newRow("place_markers") << QByteArray("%0%1%2%L1%99 2019") << u"Year"_s;
    QTest::newRow("format_directives") << QByteArray("%s%n%d") << u"Unknown"_s;
    // "2345" is in it.
    QTest::newRow("every_ascii_byte") << allBytes(0x01, 0x7f) << u"Year"_s;
    QTest::newRow("255_bytes") << "2019" + QByteArray(251, 'x') << u"Year"_s;
    QTest::newRow("255_line_feeds") << QByteArray(255, '\n') << u"Unknown"_s;
    QTest::newRow("255_percent_signs") << QByteArray(255, '%') << u"Unknown"_s;
    QTest::newRow("255_digits") << QByteArray(255, '2') << u"Year"_s;
    QTest::newRow("85_three_byte_letters") << QByteArray("\u65e5").repeated(85) << u"Unknown"_s;
    QTest::newRow("63_four_byte_letters") << QByteArray("\U0001f600").repeated(63) << u"Unknown"_s;
    QTest::newRow("combining_marks_alone") << QByteArray("\u0301").repeated(127) << u"Unknown"_s;
    QTest::newRow("byte_order_mark") << QByteArray("\ufeff"
                                                   "07")
                                     << u"Unknown"_s;
    QTest::newRow("replacement_character") << QByteArray("\ufffd 2019") << u"Year"_s;
    QTest::newRow("noncharacter") << QByteArray("\uffff 2019") << u"Year"_s;
    QTest::newRow("blank") << QByteArray(" ") << u"Unknown"_s;
    QTest::newRow("backslashes") << QByteArray("..\\..\\2019") << QString();
    QTest::newRow("home") << QByteArray("~root") << u"Unknown"_s;
    QTest::newRow("drive") << QByteArray("C:") << u"Unknown"_s;
    QTest::newRow("resource") << QByteArray(":2019") << u"Year"_s;
    QTest::newRow("address") << QByteArray("file:2019") << u"Year"_s;
    QTest::newRow("wildcards") << QByteArray("[2019]*?") << u"Year"_s;
}

// What a name holds is no concern of the walk, the one-line text or the report: it is passed on.
void tst_hostile_names::properName()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QString, type);

    RawDirectory tree;
    tree.folder("Alps").folder(name).folder(name + "/07").folder("zoo");
    if (!tree.isValid())
        QSKIP("This file system does not take the name");
    // Decoding drops a byte order mark at the very start, which is part of a name.
    const QString text = QString::fromUtf8('x' + name).mid(1);

    QStringList expected { u" Root"_s, u"/Alps Unknown"_s, u"/zoo Unknown"_s };
    // A leading full stop hides a folder and what is below it.
    if (!type.isEmpty())
        expected += { u'/' + text + u' ' + type, u'/' + text + u"/07 Month"_s };
    const QStringList found = walkedLines(tree.path());
    QCOMPARE(sorted(found), sorted(expected));
    const QByteArray report = reportOf(tree.path());
    QCOMPARE(report.count("<tr class="), expected.size());
    QCOMPARE(report.count("<td>/" + name + "</td>\n"), type.isEmpty() ? 0 : 1);
    QVERIFY(report.endsWith("</html>\n"));
}

void tst_hostile_names::composedAndDecomposedNamesAreTwo()
{
    RawDirectory tree;
    tree.folder("M\u00e4rz 2019").folder("Ma\u0308rz 2019").folder("Ma\u0308rz 2019/07");
    if (!tree.isValid())
        QSKIP("This file system takes both names for the same folder");

    const QStringList expected { u" Root"_s, u"/Ma\u0308rz 2019 Year"_s,
                                 u"/Ma\u0308rz 2019/07 Month"_s, u"/M\u00e4rz 2019 Year"_s };
    QCOMPARE(walkedLines(tree.path()), expected);
    const QByteArray report = reportOf(tree.path());
    QCOMPARE(report.count("<td>/M\u00e4rz 2019</td>"), 1);
    QCOMPARE(report.count("<td>/Ma\u0308rz 2019</td>"), 1);
}

void tst_hostile_names::undecodableName_data()
{
    QTest::addColumn<QByteArray>("name");

    QTest::newRow("latin_1_letter") << QByteArray("2019 M\xfcnchen");
    QTest::newRow("lone_continuation_byte") << QByteArray("2019\x80");
    QTest::newRow("sequence_cut_by_the_end") << QByteArray("2019\xe2\x82");
    QTest::newRow("sequence_cut_by_a_letter") << QByteArray("\xe2\x82"
                                                            "2019");
    QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80");
    QTest::newRow("surrogate_pair") << QByteArray("\xed\xa0\xbd\xed\xb8\x80");
    QTest::newRow("slash_in_two_bytes") << QByteArray("2019\xc0\xaf"
                                                      "07");
    QTest::newRow("nul_in_two_bytes") << QByteArray("2019\xc0\x80");
    QTest::newRow("beyond_the_last_character") << QByteArray("\xf4\x90\x80\x80");
    QTest::newRow("five_byte_sequence") << QByteArray("\xf8\x88\x80\x80\x80");
    QTest::newRow("bytes_that_never_occur") << QByteArray("\xfe\xff");
    QTest::newRow("every_byte_above_ascii") << allBytes(0x80, 0xff);
    QTest::newRow("every_byte") << allBytes(0x01, 0xff);
    QTest::newRow("255_bytes") << QByteArray(255, '\xff');
    QTest::newRow("undecodable_and_escape") << QByteArray("\x1b[31m\xff<b>%1\n");
    QTest::newRow("hidden") << QByteArray(".\xff");
}

// No QString can name such a folder, so that it is left out, with what it holds. Nothing else is.
void tst_hostile_names::undecodableName()
{
    QFETCH(const QByteArray, name);

    RawDirectory tree;
    tree.folder("2019").folder("2019/07").folder("2019/" + name).folder("2019/" + name + "/Beach");
    tree.folder("2019/Alps").folder("2020");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    const QStringList expected { u" Root"_s, u"/2019 Year"_s, u"/2019/07 Month"_s,
                                 u"/2019/Alps Event"_s, u"/2020 Year"_s };
    QCOMPARE(walkedLines(tree.path()), expected);
    const QByteArray report = reportOf(tree.path());
    QCOMPARE(report.count("<tr class="), expected.size());
    QVERIFY(report.endsWith("</html>\n"));
}

void tst_hostile_names::undecodableNameBesideProperOnes_data()
{
    QTest::addColumn<QByteArrayList>("folders");
    QTest::addColumn<QByteArrayList>("files");

    // A file system in memory lists what was made last first.
    const QByteArrayList none;
    QTest::newRow("made_first") << QByteArrayList { "\xff", "2017", "2018", "2019", "2020" }
                                << none;
    QTest::newRow("made_second") << QByteArrayList { "2017", "\xff", "2018", "2019", "2020" }
                                 << none;
    QTest::newRow("made_in_the_middle")
        << QByteArrayList { "2017", "2018", "\xff", "2019", "2020" } << none;
    QTest::newRow("made_last") << QByteArrayList { "2017", "2018", "2019", "2020", "\xff" } << none;
    QTest::newRow("made_first_and_last")
        << QByteArrayList { "\xff", "2017", "2018", "2019", "2020", "\xfe" } << none;
    QTest::newRow("between_all") << QByteArrayList { "2017", "\xf1", "2018", "\xf2",
                                                     "2019", "\xf3", "2020" }
                                 << none;
    QTest::newRow("hidden_made_first")
        << QByteArrayList { ".\xff", "2017", "2018", "2019", "2020" } << none;
    QTest::newRow("hidden_made_in_the_middle")
        << QByteArrayList { "2017", "2018", ".\xff", "2019", "2020" } << none;
    QTest::newRow("hidden_made_last")
        << QByteArrayList { "2017", "2018", "2019", "2020", ".\xff" } << none;
    QTest::newRow("file_made_last")
        << QByteArrayList { "2017", "2018", "2019", "2020" } << QByteArrayList { "\xff.jpg" };
    QTest::newRow("hidden_file_made_last")
        << QByteArrayList { "2017", "2018", "2019", "2020" } << QByteArrayList { ".\xff.jpg" };
    QTest::newRow("folder_file_and_hidden_file")
        << QByteArrayList { "2017", "\xff", "2018", "2019", "2020" }
        << QByteArrayList { "\xfe.jpg", "a.jpg", ".\xff.jpg" };
}

void tst_hostile_names::undecodableNameBesideProperOnes()
{
    QFETCH(const QByteArrayList, folders);
    QFETCH(const QByteArrayList, files);

    RawDirectory tree;
    for (const QByteArray& folder : folders)
        tree.folder(folder);
    for (const QByteArray& file : files)
        tree.file(file);
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    const QStringList expected { u" Root"_s, u"/2017 Year"_s, u"/2018 Year"_s, u"/2019 Year"_s,
                                 u"/2020 Year"_s };
    QCOMPARE(walkedLines(tree.path()), expected);
}

void tst_hostile_names::undecodableNamesOnEveryLevel()
{
    RawDirectory tree;
    QByteArray above;
    const QByteArrayList names { "2019", "07", "Beach", "2019-07-14" };
    for (const QByteArray& name : names) {
        tree.folder(above + "\xff").folder(above + "a").folder(above + name);
        tree.folder(above + "\xfe").file(above + ".\xfe");
        above += name + '/';
    }
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    const QStringList expected {
        u" Root"_s,
        u"/2019 Year"_s,
        u"/2019/07 Month"_s,
        u"/2019/07/Beach Event"_s,
        u"/2019/07/Beach/2019-07-14 Day"_s,
        u"/2019/07/Beach/a Unknown"_s,
        u"/2019/07/a Event"_s,
        u"/2019/a Event"_s,
        u"/a Unknown"_s,
    };
    QCOMPARE(walkedLines(tree.path()), expected);
}

void tst_hostile_names::undecodableFilesCount()
{
    RawDirectory tree;
    tree.folder("2019").file("2019/\xff.jpg").file("2019/a.jpg").file("2019/.\xff");
    tree.link("2019/\xfe.jpg", "a.jpg").folder("2019/\xfd").file("2019/\n.jpg");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    QVERIFY(reportOf(tree.path()).contains("<td>/2019</td>\n\t\t\t\t<td>4</td>\n"));
}

void tst_hostile_names::directoriesBeside_kinds()
{
    RawDirectory tree;
    tree.folder("folder").folder(".hidden").folder("\xff").folder("B").file("file");
    tree.link("link", "folder").link("link_to_link", "link").link("link_to_file", "file");
    tree.link("dangling", "nowhere").link("circle", "circle").link("link_above", "..");
    tree.link("link_to_undecodable", "\xff").link("link_to_hidden", ".hidden");
    tree.link(".hidden_link", "folder").link("\xfe", "folder").fifo("fifo").socket("socket");
    tree.folder("a").folder("\n").folder("M\u00e4rz").folder("\ufffd");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    const auto found = besideUndecodable(tree.path());
    QVERIFY(found.has_value());
    const QStringList expected {
        u"\n"_s,           u"B"_s,
        u"M\u00e4rz"_s,    u"a"_s,
        u"folder"_s,       u"link"_s,
        u"link_above"_s,   u"link_to_hidden"_s,
        u"link_to_link"_s, u"link_to_undecodable"_s,
        u"\ufffd"_s,
    };
    QCOMPARE(sorted(*found), expected);
}

void tst_hostile_names::directoriesBeside_undecodableName_data()
{
    QTest::addColumn<QByteArray>("kind");

    QTest::newRow("folder") << QByteArray("folder");
    QTest::newRow("file") << QByteArray("file");
    QTest::newRow("hidden_file") << QByteArray("hidden");
    QTest::newRow("dangling_link") << QByteArray("link");
    QTest::newRow("pipe") << QByteArray("fifo");
}

void tst_hostile_names::directoriesBeside_undecodableName()
{
    QFETCH(const QByteArray, kind);

    RawDirectory tree;
    tree.folder("a");
    if (kind == "folder")
        tree.folder("\xff");
    else if (kind == "file")
        tree.file("\xff");
    else if (kind == "hidden")
        tree.file(".\xff");
    else if (kind == "link")
        tree.link("\xff", "nowhere");
    else
        tree.fifo("\xff");
    tree.folder("b");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    const auto found = besideUndecodable(tree.path());
    QVERIFY(found.has_value());
    QCOMPARE(sorted(*found), (QStringList { u"a"_s, u"b"_s }));
}

void tst_hostile_names::directoriesBeside_nothingProperIsAnEmptyList()
{
    RawDirectory tree;
    tree.folder("\xff").file("file").folder(".hidden");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    const auto found = besideUndecodable(tree.path());
    QVERIFY(found.has_value());
    QCOMPARE(*found, QStringList());
}

void tst_hostile_names::directoriesBeside_isNotAskedFor_data()
{
    QTest::addColumn<QString>("path");

    QTest::newRow("proper_names_only") << u"/proper"_s;
    QTest::newRow("empty_directory") << u"/proper/folder"_s;
    QTest::newRow("missing_directory") << u"/missing"_s;
    QTest::newRow("file") << u"/proper/file"_s;
    QTest::newRow("dangling_link") << u"/proper/dangling"_s;
    QTest::newRow("path_too_long") << u'/' + QString(5000, u'x');
    QTest::newRow("undecodable_names_further_below") << u""_s;
}

void tst_hostile_names::directoriesBeside_isNotAskedFor()
{
    QFETCH(const QString, path);

    RawDirectory tree;
    tree.folder("proper").folder("proper/folder").file("proper/file");
    tree.link("proper/dangling", "nowhere").folder("below").folder("below/\xff");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    QVERIFY(!besideUndecodable(tree.path() + path).has_value());
    // What a file engine presents is for Qt alone to list.
    QVERIFY(!besideUndecodable(u":/x"_s).has_value());
}

QTEST_GUILESS_MAIN(tst_hostile_names)
#include "tst_hostile_names.moc"
