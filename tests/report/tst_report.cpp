#include "MessageRecorder.h"
#include "RawDirectory.h"
#include "RecordingPlatform.h"
#include "ReportText.h"
#include "ResourceLimit.h"
#include "TestRows.h"
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

// The row of a result, written alone. The stream keeps its settings.
QByteArray tableEntry(const Result& result, int rootPathLength)
{
    QByteArray text;
    QTextStream stream(&text);
    Renderer({}, rootPathLength, {}).writeTableEntry(stream, result);
    stream.flush();
    const bool isKept = stream.encoding() == QStringConverter::Utf8
        && !stream.generateByteOrderMark() && stream.fieldWidth() == 0
        && stream.locale() == QLocale::c();
    return isKept ? text : "The settings of the stream are others now";
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
    void typeCells_data();
    void typeCells();
    void directoryCell_data();
    void directoryCell();
    void occasionCell_data();
    void occasionCell();
    void isSmaller();
    void rowsAreSorted_data();
    void rowsAreSorted();

    void nameFiltersAreNotApplied();
    void nameFiltersAreKept();
    void secondReportHasTheSameBytes();
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
    const TestRows<WritePart, QByteArray> row("write", "expected");
    row("header_with_the_style", &Renderer::writeHTMLHeader, lines(1, 13));
    row("style", &Renderer::writeStyle, lines(2, 12));
    row("table_start", &Renderer::writeTableStart, lines(14, 20));
    row("table_end", &Renderer::writeTableEnd, lines(21, 21));
    row("html_end", &Renderer::writeHTMLEnd, lines(22, 23));
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

void tst_report::typeCells_data()
{
    const TestRows<int, QByteArray, QByteArray> row("type", "name", "directory");
    row("unknown", 0, "Unknown", "/x");
    row("root_keeps_its_path", 1, "Root", "/r/x");
    row("year", 2, "Year", "/x");
    row("month", 4, "Month", "/x");
    row("day", 8, "Day", "/x");
    row("event", 16, "Event", "/x");
    row("project_folder", 32, "ProjectFolder", "/x");
    row("combination_has_no_name", 18, "", "/x");
    row("root_among_others_is_no_root", 17, "", "/x");
    row("number_beyond_the_flags", 64, "", "/x");
}

void tst_report::typeCells()
{
    QFETCH(const int, type);
    QFETCH(const QByteArray, name);
    QFETCH(const QByteArray, directory);
    RecordingPlatform platform;
    platform.fileCount = 0;
    QCOMPARE(tableEntry(resultOf(u"/r/x"_s, type), 2), row(name, directory, "0", "no data"));
}

void tst_report::directoryCell_data()
{
    const TestRows<QString, int, QByteArray> row("path", "rootPathLength", "cell");
    row("cut_keeps_the_separator", u"/data/pictures/2019/05"_s, 14, "/2019/05");
    row("root_with_trailing_slash", u"/data/pictures/2019/05"_s, 15, "2019/05");
    row("trailing_slash_stays", u"/data/pictures/2019/"_s, 14, "/2019/");
    row("below_the_root_of_the_file_system", u"/2019/05"_s, 1, "2019/05");
    row("path_of_the_root_itself", u"/data"_s, 5, "");
    row("one_longer_than_the_cut", u"/data"_s, 4, "a");
    row("shorter_than_the_cut", u"/data"_s, 6, "");
    row("negative_cut", u"/data"_s, -3, "/data");
    row("cut_does_not_look_at_the_text", u"/elsewhere/2019"_s, 5, "where/2019");
    row("cut_counts_code_units", u"/r/\U0001F600/x"_s, 5, "/x");
    row("relative_path_is_made_absolute", u"2019"_s, 0,
        QFile::encodeName(QDir::currentPath()) + "/2019");
    row("no_directory", {}, 0, "");
    row("markup_is_not_escaped", u"/r/<b>Tom & 'Jerry' \"&amp;</b>"_s, 2,
        "/<b>Tom & 'Jerry' \"&amp;</b>");
    row("placeholders_stay", u"/r/%1 %2 %L1 %%"_s, 2, "/%1 %2 %L1 %%");
    row("white_space_stays", u"/r/ a  b\n"_s, 2, "/ a  b\n");
}

// The files are counted by the whole path.
void tst_report::directoryCell()
{
    QFETCH(const QString, path);
    QFETCH(const int, rootPathLength);
    QFETCH(const QByteArray, cell);
    RecordingPlatform platform;
    platform.fileCount = 12345;
    QCOMPARE(tableEntry(resultOf(path, 4), rootPathLength), row("Month", cell, "12345", "no data"));
    QCOMPARE(platform.calls,
             QStringList(u"getDirectFilesInDirectory "_s
                         + QDir(QFileInfo(path).absoluteFilePath()).path()));
}

void tst_report::occasionCell_data()
{
    const VLOccasionInfo birthday(u"Birthday"_s, u"Calendar"_s, 0.9);
    const VLOccasionInfo party(u"Party"_s, u"Tags"_s, 0.5);
    const TestRows<QList<VLOccasionInfo>, QByteArray> row("occasions", "cell");
    row("no_occasion", {}, "no data");
    row("one_occasion", { birthday }, "Birthday (0.9, Calendar)");
    row("several_in_list_order", { party, birthday },
        "Party (0.5, Tags); Birthday (0.9, Calendar)");
    row("empty_record_is_an_occasion", { VLOccasionInfo() }, " (0, )");
    row("markup_and_placeholders_stay", { VLOccasionInfo(u"<i>&%1"_s, u"\"'%2"_s, 1.0) },
        "<i>&%1 (1, \"'%2)");
}

void tst_report::occasionCell()
{
    QFETCH(const QList<VLOccasionInfo>, occasions);
    QFETCH(const QByteArray, cell);
    RecordingPlatform platform;
    platform.fileCount = 1;
    VLOccasionInfoList list;
    list.append(occasions);
    Result result = resultOf(u"/r/x"_s, 16);
    result.setOccasionInformation(list);
    QCOMPARE(tableEntry(result, 2), row("Event", "/x", "1", cell));
}

// The types, which run against the paths here, play no part.
void tst_report::isSmaller()
{
    // Capitals, digits as characters, normal forms, and code units, of which surrogates are not the
    // highest. A blank and a hyphen come ahead of the separator.
    const QStringList rising { QString(),      u"/"_s,          u"/r"_s,
                               u"/r/10"_s,     u"/r/2019"_s,    u"/r/2019 x"_s,
                               u"/r/2019-x"_s, u"/r/2019/01"_s, u"/r/9"_s,
                               u"/r/Z"_s,      u"/r/a"_s,       u"/r/a\u0308"_s,
                               u"/r/z"_s,      u"/r/\u00e4"_s,  u"/r/\U0001F600"_s,
                               u"/r/\uFF21"_s };
    for (qsizetype left = 0; left < rising.size(); ++left) {
        for (qsizetype right = 0; right < rising.size(); ++right) {
            QCOMPARE(Renderer::isSmaller(resultOf(rising.at(left), int(100 - left)),
                                         resultOf(rising.at(right), int(100 - right))),
                     left < right);
        }
    }
    // A relative path is made absolute.
    QVERIFY(Renderer::isSmaller(resultOf(u"zz"_s, 32), resultOf(u"/~"_s, 1)));
}

void tst_report::rowsAreSorted_data()
{
    QStringList many;
    QByteArrayList sorted;
    for (int number = 100; number < 200; ++number) {
        many.prepend(u"/r/"_s + QString::number(number));
        sorted.append('/' + QByteArray::number(number));
    }
    const TestRows<QStringList, QByteArrayList> row("paths", "directories");
    row("no_results", {}, {});
    row("case_and_hyphen", { u"/r/a"_s, u"/r/B"_s, u"/r/a-b"_s }, { "/B", "/a", "/a-b" });
    row("no_tree_order", { u"/r/2019/01"_s, u"/r/2019-x"_s, u"/r/2019 x"_s, u"/r/2019"_s },
        { "/2019", "/2019 x", "/2019-x", "/2019/01" });
    row("written_as_utf_8", { u"/r/\uFF21"_s, u"/r/\U0001F600"_s, u"/r/\u00e4"_s },
        { "/\xc3\xa4", "/\xf0\x9f\x98\x80", "/\xef\xbc\xa1" });
    row("equal_paths_all_stay", { u"/r/b"_s, u"/r/a"_s, u"/r/b"_s }, { "/a", "/b", "/b" });
    row("long_list", many, sorted);
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

// Its path may be relative: the messages have it absolute.
void tst_report::secondReportHasTheSameBytes()
{
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    const RawDirectory directory;
    const WorkingDirectory inside(directory.path());
    Renderer renderer({ resultOf(directory.path(), 1) }, 0, {});
    const QByteArray expected = report({ row("Root", directory.path().toUtf8(), "1", "no data") });
    for (int i = 0; i < 2; ++i) {
        renderer.renderToFile(QFileInfo(QLatin1StringView(reportName)));
        QCOMPARE(fileContents(directory.path(reportName)), expected);
    }
    QCOMPARE(recorder.texts(), QStringList(removalText(directory.path(reportName), true)));
    QCOMPARE(platform.calls.constLast(), u"directoryContentsChanged ."_s);
    QCOMPARE(
        QDir(directory.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList(QLatin1StringView(reportName)));
}

void tst_report::oldReportIsReplaced_data()
{
    const QByteArray name(reportName);
    const TestRows<QByteArrayList, int> row("entries", "mode");
    row("empty_file", { name }, -1);
    row("file_without_permissions", { name }, 0);
    row("link_to_a_file", { name + " -> elsewhere" }, -1);
    row("link_to_a_directory", { "d/", name + " -> d" }, -1);
    row("dangling_link", { name + " -> nowhere" }, -1);
    row("link_to_itself", { name + " -> " + name }, -1);
    row("pipe", { name + "|" }, -1);
    row("socket", { name + "=" }, -1);
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
    const TestRows<QByteArray, QString> row("name", "escaped");
    row("quotation_mark", "a\"b.html", u"a\\\"b.html"_s);
    row("backslash", "a\\b.html", u"a\\\\b.html"_s);
    row("white_space", "a  b\nc\t.html", u"a  b\\nc\\t.html"_s);
    row("letters_beyond_ascii_stay", "\u00e4\u65e5.html", u"\u00e4\u65e5.html"_s);
    row("placeholders_stay", "%1%2.html", u"%1%2.html"_s);
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
    const TestRows<QByteArray, QByteArray> row("parent", "name");
    row("directory_is_missing", "missing", reportName);
    row("directory_is_a_file", "file", reportName);
    row("name_is_too_long", "directory", QByteArray(256, 'x'));
    row("name_is_a_directorys", "directory", "folder");
    row("path_in_the_warning_is_not_escaped", "a \"missing\" \\ one", reportName);
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
    const TestRows<int, bool> row("oldMode", "isWritten");
    row("no_old_report", -1, false);
    row("read_only_report_stays", 0444, false);
    row("writable_report_is_overwritten", 0666, true);
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
