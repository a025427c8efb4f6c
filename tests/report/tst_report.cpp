#include "MessageRecorder.h"
#include "RawDirectory.h"
#include "RecordingPlatform.h"
#include "ReportText.h"
#include "ResourceLimit.h"
#include "UnprivilegedUser.h"
#include "WorkingDirectory.h"

#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtCore/QRegularExpression>
#include <QtCore/QScopeGuard>
#include <QtCore/QTextStream>
#include <QtTest/QTest>

#include <algorithm>
#include <type_traits>

using namespace Qt::StringLiterals;
using namespace ReportText;

using Renderer = VLClassificationResultsRendererHTML;
using Result = VLEventFolderClassificationResult;

static_assert(std::is_polymorphic_v<Renderer>);
static_assert(std::has_virtual_destructor_v<Renderer>);
static_assert(std::is_constructible_v<Renderer, const QList<Result>&, int, const QStringList&>);
static_assert(!std::is_default_constructible_v<Renderer>);
static_assert(
    std::is_same_v<decltype(&Renderer::isSmaller), bool (*)(const Result&, const Result&)>);

namespace {

constexpr auto reportName = "vela.classification.results.html";

Result resultOf(const QString& path, int type)
{
    return { QFileInfo(path), static_cast<VLEventFolderTypeEnum>(type) };
}

// Qt's own text for an error is localised, so it is taken from a second attempt to open the file.
QString openErrorText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Text) ? QString() : file.errorString();
}

QString removalText(const QString& path, bool succeeded)
{
    return u"removing file \""_s + path + u"\" succeeded:  "_s
        + (succeeded ? u"true"_s : u"false"_s);
}

QString warningText(const QString& path, int errorCode, const QString& errorText)
{
    return u"Could not write to file QFileInfo("_s + path + u") %1 \""_s.arg(errorCode) + errorText
        + u'"';
}

bool comesFromRenderToFile(const MessageRecorder::Message& message)
{
    // One compiler puts a blank ahead of the ampersand, another does not.
    static const QRegularExpression function(QRegularExpression::anchoredPattern(
        uR"(void VLClassificationResultsRendererHTML::renderToFile\(const QFileInfo ?&\))"_s));
    const bool isRemoval = message.text.startsWith(u"removing"_s);
    return message.type == (isRemoval ? QtDebugMsg : QtWarningMsg) && message.category == "default"
        && message.file == "libs/VLFolioEventClassifier/VLClassificationResultsRendererHTML.cpp"
        && message.line > 0 && function.match(QString::fromUtf8(message.function)).hasMatch();
}

// True when this process has the file open, where the system tells that.
bool isOpen(const QString& path)
{
    const QFileInfoList descriptors =
        QDir(u"/proc/self/fd"_s).entryInfoList(QDir::AllEntries | QDir::System);
    return std::any_of(descriptors.cbegin(), descriptors.cend(),
                       [&path](const QFileInfo& link) { return link.symLinkTarget() == path; });
}

} // namespace

class tst_report : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void partWrittenAlone_data();
    void partWrittenAlone();
    void tableEntry_data();
    void tableEntry();
    void isSmaller_data();
    void isSmaller();
    void rowsAreSorted_data();
    void rowsAreSorted();

    void nameFiltersAreNotApplied();
    void nameFiltersAreKept();
    void secondReportHasTheSameBytes();
    void relativeReportFile();
    void oldReportIsReplaced_data();
    void oldReportIsReplaced();
    void debugLineEscapesThePath_data();
    void debugLineEscapesThePath();
    void reportThatCannotBeOpened_data();
    void reportThatCannotBeOpened();
    void directoryWithoutWritePermission_data();
    void directoryWithoutWritePermission();
    void errorCodeIsThatOfTheFile();
    void warningThatIsSwitchedOffIsNotSent();
    void errorsWhileWritingAreNotDetected();
    void reportIsThereForTheRowsAndWholeAtTheEnd();
};

void tst_report::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

using WritePart = void (Renderer::*)(QTextStream&) const;

void tst_report::partWrittenAlone_data()
{
    QTest::addColumn<WritePart>("write");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("header_with_the_style") << &Renderer::writeHTMLHeader << lines(1, 13);
    QTest::newRow("style") << &Renderer::writeStyle << lines(2, 12);
    QTest::newRow("table_start") << &Renderer::writeTableStart << lines(14, 20);
    QTest::newRow("table_end") << &Renderer::writeTableEnd << lines(21, 21);
    QTest::newRow("html_end") << &Renderer::writeHTMLEnd << lines(22, 23);
}

void tst_report::partWrittenAlone()
{
    QFETCH(const WritePart, write);
    QFETCH(const QByteArray, expected);

    const RecordingPlatform platform;
    const Renderer renderer({ resultOf(u"/r"_s, 1) }, 2, { u"*.*"_s });
    QByteArray text;
    QTextStream stream(&text);
    (renderer.*write)(stream);
    stream.flush();
    QCOMPARE(text, expected);
    QCOMPARE(platform.calls, QStringList());
}

void tst_report::tableEntry_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("rootPathLength");
    QTest::addColumn<qsizetype>("fileCount");
    QTest::addColumn<QList<VLOccasionInfo>>("occasions");
    QTest::addColumn<QByteArray>("expected");

    constexpr int root = 1;
    constexpr int month = 4;
    const QList<VLOccasionInfo> none;
    const auto typed = [&none](const char* name, int type, const char* typeName,
                               const char* directory) {
        QTest::newRow(name) << type << u"/r/x"_s << 2 << qsizetype(0) << none
                            << row(typeName, directory, "0", "no data");
    };
    typed("unknown", 0, "Unknown", "/x");
    typed("root_keeps_its_path", root, "Root", "/r/x");
    typed("year", 2, "Year", "/x");
    typed("month", month, "Month", "/x");
    typed("day", 8, "Day", "/x");
    typed("event", 16, "Event", "/x");
    typed("project_folder", 32, "ProjectFolder", "/x");
    typed("combination_has_no_name", 18, "", "/x");
    typed("root_among_others_is_no_root", 17, "", "/x");
    typed("number_beyond_the_flags", 64, "", "/x");

    const auto cut = [&none](const char* name, int type, const QString& path, int rootPathLength,
                             const QByteArray& directory) {
        QTest::newRow(name) << type << path << rootPathLength << qsizetype(0) << none
                            << row(type == root ? "Root" : "Month", directory, "0", "no data");
    };
    cut("cut_keeps_the_separator", month, u"/data/pictures/2019/05"_s, 14, "/2019/05");
    cut("root_with_trailing_slash", month, u"/data/pictures/2019/05"_s, 15, "2019/05");
    cut("trailing_slash_stays", month, u"/data/pictures/2019/"_s, 14, "/2019/");
    cut("below_the_root_of_the_file_system", month, u"/2019/05"_s, 1, "2019/05");
    cut("root_of_the_file_system", root, u"/"_s, 1, "/");
    cut("path_of_the_root_itself", month, u"/data"_s, 5, "");
    cut("one_longer_than_the_cut", month, u"/data"_s, 4, "a");
    cut("shorter_than_the_cut", month, u"/data"_s, 6, "");
    cut("far_shorter_than_the_cut", month, u"/data"_s, 2147483647, "");
    cut("cut_of_nothing", month, u"/data"_s, 0, "/data");
    cut("negative_cut", month, u"/data"_s, -3, "/data");
    cut("most_negative_cut", month, u"/data"_s, -2147483647 - 1, "/data");
    cut("cut_does_not_look_at_the_text", month, u"/elsewhere/2019"_s, 5, "where/2019");
    cut("cut_counts_code_units", month, u"/r/\U0001F600/x"_s, 5, "/x");
    cut("relative_path_is_made_absolute", root, u"2019"_s, 2,
        QFile::encodeName(QDir::currentPath()) + "/2019");
    cut("no_directory", month, QString(), 0, "");
    cut("no_directory_as_root", root, QString(), 5, "");
    cut("markup_is_not_escaped", month, u"/r/<b>Tom & 'Jerry' \"&amp;</b>"_s, 2,
        "/<b>Tom & 'Jerry' \"&amp;</b>");
    cut("markup_of_the_root_is_not_escaped", root, u"/r/<b>&"_s, 2, "/r/<b>&");
    cut("placeholders_stay", month, u"/r/%1 %2 %L1 %%"_s, 2, "/%1 %2 %L1 %%");
    cut("placeholders_of_the_root_stay", root, u"/r/%1%0"_s, 2, "/r/%1%0");
    cut("line_feed_stays", month, u"/r/a\nb"_s, 2, "/a\nb");
    cut("blanks_stay", month, u"/r/ a  b "_s, 2, "/ a  b ");

    const auto counted = [&none](const char* name, qsizetype fileCount, const char* count) {
        QTest::newRow(name) << 2 << u"/r/x"_s << 2 << fileCount << none
                            << row("Year", "/x", count, "no data");
    };
    counted("one_file", 1, "1");
    counted("equal_names_all_count", 7, "7");
    counted("thousands_are_not_grouped", 12345, "12345");

    const auto occasion = [](const char* name, const QList<VLOccasionInfo>& occasions,
                             const char* text) {
        QTest::newRow(name) << 16 << u"/r/x"_s << 2 << qsizetype(0) << occasions
                            << row("Event", "/x", "0", text);
    };
    const VLOccasionInfo birthday(u"Birthday"_s, u"Calendar"_s, 0.9);
    const VLOccasionInfo party(u"Party"_s, u"Tags"_s, 0.5);
    occasion("one_occasion", { birthday }, "Birthday (0.9, Calendar)");
    occasion("several_in_list_order", { party, birthday },
             "Party (0.5, Tags); Birthday (0.9, Calendar)");
    occasion("empty_record_is_an_occasion", { VLOccasionInfo() }, " (0, )");
    occasion("markup_of_occasions_stays", { VLOccasionInfo(u"<i>&"_s, u"\"'"_s, 1.0) },
             "<i>& (1, \"')");
    occasion("placeholders_of_occasions_stay", { VLOccasionInfo(u"%1 %2"_s, u"%3 %1"_s, 1.0) },
             "%1 %2 (1, %3 %1)");
}

// The files are counted once, by the whole path. The stream keeps its settings.
void tst_report::tableEntry()
{
    QFETCH(const int, type);
    QFETCH(const QString, path);
    QFETCH(const int, rootPathLength);
    QFETCH(const qsizetype, fileCount);
    QFETCH(const QList<VLOccasionInfo>, occasions);
    QFETCH(const QByteArray, expected);

    RecordingPlatform platform;
    platform.fileCount = fileCount;
    Result result = resultOf(path, type);
    VLOccasionInfoList list;
    list.append(occasions);
    result.setOccasionInformation(list);
    QByteArray text;
    QTextStream stream(&text);
    Renderer({}, rootPathLength, {}).writeTableEntry(stream, result);
    stream.flush();
    QCOMPARE(text, expected);
    QCOMPARE(platform.calls,
             QStringList(u"getDirectFilesInDirectory "_s
                         + QDir(QFileInfo(path).absoluteFilePath()).path()));
    QCOMPARE(stream.encoding(), QStringConverter::Utf8);
    QVERIFY(!stream.generateByteOrderMark());
    QCOMPARE(stream.fieldWidth(), 0);
    QCOMPARE(stream.locale(), QLocale::c());
}

void tst_report::isSmaller_data()
{
    QTest::addColumn<QString>("smaller");
    QTest::addColumn<QString>("greater");

    QTest::newRow("letters") << u"/r/a"_s << u"/r/b"_s;
    QTest::newRow("prefix_first") << u"/r"_s << u"/r/a"_s;
    QTest::newRow("upper_case_first") << u"/r/Z"_s << u"/r/a"_s;
    QTest::newRow("blank_ahead_of_the_separator") << u"/r/2019 x"_s << u"/r/2019/01"_s;
    QTest::newRow("hyphen_ahead_of_the_separator") << u"/r/2019-x"_s << u"/r/2019/01"_s;
    QTest::newRow("digits_are_characters") << u"/r/10"_s << u"/r/9"_s;
    QTest::newRow("accents_behind_all_letters") << u"/r/z"_s << u"/r/\u00e4"_s;
    QTest::newRow("surrogates_ahead_of_the_end_of_the_plane")
        << u"/r/\U0001F600"_s << u"/r/\uFF21"_s;
    QTest::newRow("composed_and_decomposed_differ") << u"/r/a\u0308"_s << u"/r/\u00e4"_s;
    QTest::newRow("relative_path_counts_from_the_root_of_all") << u"zz"_s << u"/~"_s;
    QTest::newRow("relative_path_behind_a_lower_absolute_one") << u"/!"_s << u"!"_s;
    QTest::newRow("no_directory_first") << QString() << u"/"_s;
}

// The types, which run against the paths here, play no part.
void tst_report::isSmaller()
{
    QFETCH(const QString, smaller);
    QFETCH(const QString, greater);

    QVERIFY(Renderer::isSmaller(resultOf(smaller, 32), resultOf(greater, 1)));
    QVERIFY(!Renderer::isSmaller(resultOf(greater, 1), resultOf(smaller, 32)));
    QVERIFY(!Renderer::isSmaller(resultOf(smaller, 1), resultOf(smaller, 32)));
    QVERIFY(!Renderer::isSmaller(resultOf(greater, 1), resultOf(greater, 32)));
}

void tst_report::rowsAreSorted_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QByteArrayList>("directories");

    QTest::newRow("no_results") << QStringList() << QByteArrayList();
    QTest::newRow("case_and_hyphen") << QStringList { u"/r/a"_s, u"/r/B"_s, u"/r/a-b"_s }
                                     << QByteArrayList { "/B", "/a", "/a-b" };
    QTest::newRow("no_tree_order")
        << QStringList { u"/r/2019/01"_s, u"/r/2019-x"_s, u"/r/2019 x"_s, u"/r/2019"_s }
        << QByteArrayList { "/2019", "/2019 x", "/2019-x", "/2019/01" };
    QTest::newRow("code_units_and_utf_8")
        << QStringList { u"/r/\uFF21"_s, u"/r/\U0001F600"_s, u"/r/\u00e4"_s, u"/r/z"_s }
        << QByteArrayList { "/z", "/\xc3\xa4", "/\xf0\x9f\x98\x80", "/\xef\xbc\xa1" };
    QTest::newRow("equal_paths_all_stay")
        << QStringList { u"/r/b"_s, u"/r/a"_s, u"/r/b"_s } << QByteArrayList { "/a", "/b", "/b" };
    QStringList many;
    QByteArrayList sorted;
    for (int number = 100; number < 200; ++number) {
        many.prepend(u"/r/"_s + QString::number(number));
        sorted.append('/' + QByteArray::number(number));
    }
    QTest::newRow("long_list") << many << sorted;
}

// The caller's list keeps its order, and what becomes of it is no matter. A new report logs
// nothing.
void tst_report::rowsAreSorted()
{
    QFETCH(const QStringList, paths);
    QFETCH(const QByteArrayList, directories);

    QList<Result> results;
    for (const QString& path : paths)
        results.append(resultOf(path, 2));
    QByteArrayList rows;
    for (const QByteArray& directory : directories)
        rows.append(row("Year", directory, "4", "no data"));

    RecordingPlatform platform;
    platform.fileCount = 4;
    const MessageRecorder recorder;
    const RawDirectory directory;
    Renderer renderer(results, 2, {});
    for (qsizetype i = 0; i < paths.size(); ++i)
        QCOMPARE(results.at(i).directory().absoluteFilePath(), paths.at(i));
    results.clear();
    renderer.renderToFile(QFileInfo(directory.path(reportName)));
    QCOMPARE(fileContents(directory.path(reportName)), report(rows));
    QCOMPARE(recorder.texts(), QStringList());
}

// Nor to the report itself, which counts in its own directory.
void tst_report::nameFiltersAreNotApplied()
{
    const RecordingPlatform platform;
    RawDirectory directory({ "a.jpg", "b.png", "without_a_dot", "2019/" });
    const QString path = directory.path();
    Renderer({ resultOf(path, 1), resultOf(path + u"/2019"_s, 2) }, static_cast<int>(path.size()),
             { u"*.nothing"_s })
        .renderToFile(QFileInfo(directory.path(reportName)));
    QCOMPARE(fileContents(directory.path(reportName)),
             report({ row("Root", path.toUtf8(), "4", "no data"),
                      row("Year", "/2019", "0", "no data") }));
}

void tst_report::nameFiltersAreKept()
{
    QStringList filters;
    filters.append(u"*.*"_s);
    QVERIFY(filters.isDetached());
    {
        const Renderer renderer({}, 0, filters);
        QVERIFY(!filters.isDetached());
    }
    QVERIFY(filters.isDetached());
}

void tst_report::secondReportHasTheSameBytes()
{
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    const RawDirectory directory;
    Renderer renderer({ resultOf(directory.path(), 1) }, 0, {});
    const QByteArray expected = report({ row("Root", directory.path().toUtf8(), "1", "no data") });
    for (int i = 0; i < 2; ++i) {
        renderer.renderToFile(QFileInfo(directory.path(reportName)));
        QCOMPARE(fileContents(directory.path(reportName)), expected);
    }
    QCOMPARE(recorder.texts(), QStringList(removalText(directory.path(reportName), true)));
    QCOMPARE(
        QDir(directory.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList(QLatin1StringView(reportName)));
}

void tst_report::relativeReportFile()
{
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    RawDirectory directory({ "old.html" });
    const WorkingDirectory inside(directory.path());
    Renderer({}, 0, {}).renderToFile(QFileInfo(u"old.html"_s));
    QCOMPARE(fileContents(directory.path("old.html")), report({}));
    QCOMPARE(recorder.texts(), QStringList(removalText(directory.path("old.html"), true)));
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged ."_s));
}

void tst_report::oldReportIsReplaced_data()
{
    QTest::addColumn<QByteArrayList>("entries");
    QTest::addColumn<int>("mode");

    const QByteArray name(reportName);
    QTest::newRow("empty_file") << QByteArrayList { name } << -1;
    QTest::newRow("file_without_permissions") << QByteArrayList { name } << 0;
    QTest::newRow("link_to_a_file") << QByteArrayList { name + " -> elsewhere" } << -1;
    QTest::newRow("link_to_a_directory") << QByteArrayList { "d/", name + " -> d" } << -1;
    QTest::newRow("link_to_a_pipe") << QByteArrayList { "pipe|", name + " -> pipe" } << -1;
    QTest::newRow("dangling_link") << QByteArrayList { name + " -> nowhere" } << -1;
    QTest::newRow("link_to_itself") << QByteArrayList { name + " -> " + name } << -1;
    QTest::newRow("pipe") << QByteArrayList { name + "|" } << -1;
    QTest::newRow("socket") << QByteArrayList { name + "=" } << -1;
}

// Whatever it is, and what a link leads to stays as it is.
void tst_report::oldReportIsReplaced()
{
    QFETCH(const QByteArrayList, entries);
    QFETCH(const int, mode);

    const RecordingPlatform platform;
    RawDirectory directory;
    directory.file("elsewhere", QByteArray(100000, 'x')).make(entries);
    if (mode >= 0)
        directory.restrict(reportName, static_cast<mode_t>(mode));
    QVERIFY2(directory.isValid(), directory.error());
    const QString path = directory.path(reportName);

    const MessageRecorder recorder;
    Renderer({}, 0, {}).renderToFile(QFileInfo(path));
    QCOMPARE(recorder.texts(), QStringList(removalText(path, true)));
    QVERIFY(comesFromRenderToFile(recorder.messages().constFirst()));
    QVERIFY(QFileInfo(path).isFile() && !QFileInfo(path).isSymbolicLink());
    QCOMPARE(fileContents(path), report({}));
    QCOMPARE(fileContents(directory.path("elsewhere")), QByteArray(100000, 'x'));
    QVERIFY(!QFileInfo::exists(directory.path("nowhere")));
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged "_s + directory.path()));
}

void tst_report::debugLineEscapesThePath_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("escaped");

    QTest::newRow("quotation_mark") << QByteArray("a\"b.html") << u"a\\\"b.html"_s;
    QTest::newRow("backslash") << QByteArray("a\\b.html") << u"a\\\\b.html"_s;
    QTest::newRow("line_feed") << QByteArray("a\nb.html") << u"a\\nb.html"_s;
    QTest::newRow("tab") << QByteArray("a\tb.html") << u"a\\tb.html"_s;
    QTest::newRow("letters_beyond_ascii_stay")
        << QByteArray("\u00e4\u65e5.html") << u"\u00e4\u65e5.html"_s;
    QTest::newRow("blanks_stay") << QByteArray("a  b.html") << u"a  b.html"_s;
    QTest::newRow("placeholders_stay") << QByteArray("%1%2.html") << u"%1%2.html"_s;
}

void tst_report::debugLineEscapesThePath()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QString, escaped);

    const RecordingPlatform platform;
    RawDirectory directory;
    // Longer than the new report.
    directory.file(name, QByteArray(5000, 'x'));
    QVERIFY2(directory.isValid(), directory.error());
    const MessageRecorder recorder;
    Renderer({}, 0, {}).renderToFile(QFileInfo(directory.path(name)));
    QCOMPARE(recorder.texts(), QStringList(removalText(directory.path() + u'/' + escaped, true)));
    QCOMPARE(fileContents(directory.path(name)), report({}));
}

void tst_report::reportThatCannotBeOpened_data()
{
    QTest::addColumn<QByteArray>("parent");
    QTest::addColumn<QByteArray>("name");

    QTest::newRow("directory_is_missing") << QByteArray("missing") << QByteArray(reportName);
    QTest::newRow("directory_is_a_file") << QByteArray("file") << QByteArray(reportName);
    QTest::newRow("name_is_too_long") << QByteArray("directory") << QByteArray(256, 'x');
    QTest::newRow("name_is_a_directorys") << QByteArray("directory") << QByteArray("folder");
    QTest::newRow("path_in_the_warning_is_not_escaped")
        << QByteArray("a \"missing\" \\ one") << QByteArray(reportName);
}

// No row is made then.
void tst_report::reportThatCannotBeOpened()
{
    QFETCH(const QByteArray, parent);
    QFETCH(const QByteArray, name);

    const RecordingPlatform platform;
    RawDirectory directory({ "file", "directory/folder/kept/" });
    const QString path = directory.path(parent + '/' + name);
    const QString errorText = openErrorText(path);
    QVERIFY(!errorText.isEmpty());
    QStringList expected { warningText(path, 5, errorText) };
    if (name == "folder")
        expected.prepend(removalText(path, false));

    const MessageRecorder recorder;
    Renderer({ resultOf(directory.path(), 1) }, 0, {}).renderToFile(QFileInfo(path));
    QCOMPARE(recorder.texts(), expected);
    const auto messages = recorder.messages();
    QVERIFY(std::all_of(messages.cbegin(), messages.cend(), comesFromRenderToFile));
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged "_s + directory.path(parent)));
    QCOMPARE(
        QDir(directory.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        (QStringList { u"directory"_s, u"file"_s }));
    QVERIFY(QFileInfo(directory.path("directory/folder/kept")).isDir());
}

void tst_report::directoryWithoutWritePermission_data()
{
    QTest::addColumn<int>("oldMode");
    QTest::addColumn<bool>("isWritten");

    QTest::newRow("no_old_report") << -1 << false;
    QTest::newRow("read_only_report_stays") << 0444 << false;
    QTest::newRow("writable_report_is_overwritten") << 0666 << true;
}

void tst_report::directoryWithoutWritePermission()
{
    QFETCH(const int, oldMode);
    QFETCH(const bool, isWritten);

    const RecordingPlatform platform;
    RawDirectory directory;
    const QString path = directory.path(reportName);
    if (oldMode >= 0) {
        directory.file(reportName, QByteArray(5000, 'x'));
        directory.restrict(reportName, static_cast<mode_t>(oldMode));
    }
    QVERIFY2(directory.restrict({}, 0555).isValid(), directory.error());
    const MessageRecorder recorder;
    QString errorText;
    {
        const UnprivilegedUser user;
        if (!user.isActive())
            QSKIP("The superuser cannot give up its rights here: run the test as another user");
        errorText = isWritten ? QString() : openErrorText(path);
        Renderer({}, 0, {}).renderToFile(QFileInfo(path));
    }
    QStringList expected;
    if (oldMode >= 0)
        expected.append(removalText(path, false));
    if (!isWritten)
        expected.append(warningText(path, 5, errorText));
    QCOMPARE(recorder.texts(), expected);
    const QByteArray old = oldMode < 0 ? QByteArray() : QByteArray(5000, 'x');
    QCOMPARE(fileContents(path), isWritten ? report({}) : old);
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged "_s + directory.path()));
}

void tst_report::errorCodeIsThatOfTheFile()
{
    const RecordingPlatform platform;
    const RawDirectory directory;
    const QString path = directory.path(reportName);
    const MessageRecorder recorder;
    QString errorText;
    {
        const ResourceLimit noMoreFiles(RLIMIT_NOFILE, 0);
        if (!noMoreFiles.isActive())
            QSKIP("The number of open files cannot be limited: allow setrlimit()");
        errorText = openErrorText(path);
        Renderer({}, 0, {}).renderToFile(QFileInfo(path));
    }
    QCOMPARE(recorder.texts(), QStringList(warningText(path, 4, errorText)));
}

void tst_report::warningThatIsSwitchedOffIsNotSent()
{
    QLoggingCategory::setFilterRules(u"default.warning=false"_s);
    const auto restore = qScopeGuard([] { QLoggingCategory::setFilterRules(QString()); });
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    const RawDirectory directory;
    Renderer({}, 0, {}).renderToFile(QFileInfo(directory.path("missing/report.html")));
    QCOMPARE(recorder.texts(), QStringList());
}

void tst_report::errorsWhileWritingAreNotDetected()
{
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    const RawDirectory directory;
    {
        const ResourceLimit tenBytes(RLIMIT_FSIZE, 10);
        if (!tenBytes.isActive())
            QSKIP("The size of files cannot be limited: allow setrlimit()");
        Renderer({}, 0, {}).renderToFile(QFileInfo(directory.path(reportName)));
    }
    QCOMPARE(recorder.texts(), QStringList());
    QCOMPARE(fileContents(directory.path(reportName)), QByteArray("<html>\n\t<s"));
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged "_s + directory.path()));
}

// It is opened ahead of its rows, and closed before its directory, not the root, is called changed.
void tst_report::reportIsThereForTheRowsAndWholeAtTheEnd()
{
    const RawDirectory directory;
    const QString path = directory.path(reportName);
    QByteArray contents;
    QList<bool> findings;
    QList<bool> openings;
    RecordingPlatform platform([&path, &contents, &findings, &openings](const QString&) {
        contents = fileContents(path);
        findings.append(QFile::exists(path));
        openings.append(isOpen(path));
    });
    platform.fileCount = 0;
    Renderer({ resultOf(u"/r/b"_s, 2), resultOf(u"/r"_s, 1) }, 2, {}).renderToFile(QFileInfo(path));
    QCOMPARE(platform.calls,
             (QStringList { u"getDirectFilesInDirectory /r"_s, u"getDirectFilesInDirectory /r/b"_s,
                            u"directoryContentsChanged "_s + directory.path() }));
    QCOMPARE(findings, (QList<bool> { true, true, true }));
    QCOMPARE(contents,
             report({ row("Root", "/r", "0", "no data"), row("Year", "/b", "0", "no data") }));
    if (!openings.at(0))
        QSKIP("This system does not tell which files are open: mount /proc");
    QCOMPARE(openings, (QList<bool> { true, true, false }));
}

QTEST_GUILESS_MAIN(tst_report)
#include "tst_report.moc"
