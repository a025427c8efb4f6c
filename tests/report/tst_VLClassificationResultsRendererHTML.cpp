#include "MessageRecorder.h"
#include "RecordingPlatform.h"
#include "ReportText.h"
#include "ResourceLimit.h"
#include "UnprivilegedUser.h"
#include "WorkingDirectory.h"

#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtCore/QRegularExpression>
#include <QtCore/QScopeGuard>
#include <QtCore/QTemporaryDir>
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

constexpr auto reportName = "vela.classification.results.html"_L1;

// Says that every directory holds the same number of files, and lists none.
class CountingPlatform : public RecordingPlatform
{
public:
    explicit CountingPlatform(qsizetype fileCount)
        : m_fileCount(fileCount)
    {
    }

    QStringList getDirectFilesInDirectory(const QDir& directory) const override
    {
        calls.append(u"getDirectFilesInDirectory "_s + directory.path());
        return QStringList(m_fileCount, u"name"_s);
    }

private:
    qsizetype m_fileCount;
};

// True when this process has the file open, where the system tells that.
bool isOpen(const QString& path)
{
    const QFileInfoList descriptors =
        QDir(u"/proc/self/fd"_s).entryInfoList(QDir::AllEntries | QDir::System);
    return std::any_of(descriptors.cbegin(), descriptors.cend(),
                       [&path](const QFileInfo& link) { return link.symLinkTarget() == path; });
}

// Looks at the report whenever the renderer asks it for something.
class WatchingPlatform : public RecordingPlatform
{
public:
    explicit WatchingPlatform(const QString& reportPath)
        : m_reportPath(reportPath)
    {
    }

    QStringList getDirectFilesInDirectory(const QDir& directory) const override
    {
        reportFoundByListings.append(QFile::exists(m_reportPath));
        return RecordingPlatform::getDirectFilesInDirectory(directory);
    }

    void directoryContentsChanged(const QDir& directory) override
    {
        reportAtChange = fileContents(m_reportPath);
        reportIsOpenAtChange = isOpen(m_reportPath);
        RecordingPlatform::directoryContentsChanged(directory);
    }

    mutable QList<bool> reportFoundByListings;
    QByteArray reportAtChange;
    bool reportIsOpenAtChange = false;

private:
    QString m_reportPath;
};

Result resultOf(const QString& path, int type)
{
    return { QFileInfo(path), static_cast<VLEventFolderTypeEnum>(type) };
}

QStringList pathsOf(const QList<Result>& results)
{
    QStringList paths;
    for (const Result& result : results)
        paths.append(result.directory().absoluteFilePath());
    return paths;
}

QByteArray tableEntry(const Result& result, int rootPathLength)
{
    QString text;
    QTextStream stream(&text);
    Renderer({}, rootPathLength, {}).writeTableEntry(stream, result);
    stream.flush();
    return text.toUtf8();
}

// Qt's own text for an error is localised, so it is taken from a second attempt to open the file.
QString openErrorText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Text) ? QString() : file.errorString();
}

QString warningText(const QFileInfo& reportFile, int errorCode, const QString& errorText)
{
    QString text;
    QDebug(&text).noquote().nospace() << "Could not write to file " << reportFile << ' '
                                      << errorCode << " \"" << errorText << '"';
    return text;
}

bool comesFromRenderToFile(const MessageRecorder::Message& message)
{
    // One compiler puts a blank ahead of the ampersand, another does not.
    static const QRegularExpression function(QRegularExpression::anchoredPattern(
        uR"(void VLClassificationResultsRendererHTML::renderToFile\(const QFileInfo ?&\))"_s));
    return message.category == "default"
        && message.file == "libs/VLFolioEventClassifier/VLClassificationResultsRendererHTML.cpp"
        && message.line > 0 && function.match(QString::fromUtf8(message.function)).hasMatch();
}

bool isDebugLine(const MessageRecorder::Message& message, const QString& text)
{
    return message.type == QtDebugMsg && comesFromRenderToFile(message) && message.text == text;
}

bool isWarning(const MessageRecorder::Message& message, const QString& text)
{
    return message.type == QtWarningMsg && comesFromRenderToFile(message) && message.text == text;
}

} // namespace

class tst_VLClassificationResultsRendererHTML : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void partWrittenAlone_data();
    void partWrittenAlone();
    void tableEntryTypes_data();
    void tableEntryTypes();
    void tableEntryDirectories_data();
    void tableEntryDirectories();
    void tableEntryCounts_data();
    void tableEntryCounts();
    void tableEntryListsTheFullPathOnce_data();
    void tableEntryListsTheFullPathOnce();
    void tableEntryOccasions_data();
    void tableEntryOccasions();

    void isSmaller_data();
    void isSmaller();
    void rowsAreSorted_data();
    void rowsAreSorted();
    void longListIsSorted();
    void callersListKeepsItsOrder();
    void laterChangesOfTheCallersListDoNotShow();

    void emptyListYieldsTheFrame();
    void wholeDocument();
    void fileIsUtf8WithoutByteOrderMark();
    void streamKeepsItsDefaults();
    void nameFiltersAreNotApplied_data();
    void nameFiltersAreNotApplied();
    void nameFiltersAreKept();
    void countOfTheRootIncludesTheReport();
    void secondReportHasTheSameBytes();
    void relativeReportFile();

    void newReportLogsNothing();
    void oldReportIsReplaced_data();
    void oldReportIsReplaced();
    void targetsOfAnOldLinkAreLeftAlone();
    void debugLineEscapesThePath_data();
    void debugLineEscapesThePath();
    void directoryOfTheReportsName();
    void reportThatCannotBeOpened_data();
    void reportThatCannotBeOpened();
    void warningThatIsSwitchedOffIsNotSent();
    void errorCodeIsThatOfTheFile();
    void directoryWithoutWritePermission();
    void oldReportInDirectoryWithoutWritePermission_data();
    void oldReportInDirectoryWithoutWritePermission();
    void errorsWhileWritingAreNotDetected();

    void reportExistsWhileRowsAreListed();
    void reportIsCompleteWhenItsDirectoryIsCalledChanged();
    void reportIsClosedWhenItsDirectoryIsCalledChanged();
    void changedDirectoryIsTheReports();
    void failedReportListsNothing();
};

void tst_VLClassificationResultsRendererHTML::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

using WritePart = void (Renderer::*)(QTextStream&) const;

void tst_VLClassificationResultsRendererHTML::partWrittenAlone_data()
{
    QTest::addColumn<WritePart>("write");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("header_with_the_style") << &Renderer::writeHTMLHeader << lines(1, 13);
    QTest::newRow("style") << &Renderer::writeStyle << lines(2, 12);
    QTest::newRow("table_start") << &Renderer::writeTableStart << lines(14, 20);
    QTest::newRow("table_end") << &Renderer::writeTableEnd << lines(21, 21);
    QTest::newRow("html_end") << &Renderer::writeHTMLEnd << lines(22, 23);
}

void tst_VLClassificationResultsRendererHTML::partWrittenAlone()
{
    QFETCH(const WritePart, write);
    QFETCH(const QByteArray, expected);

    CountingPlatform platform(1);
    const Renderer renderer({ resultOf(u"/r"_s, 1) }, 2, { u"*.*"_s });
    QString text;
    QTextStream stream(&text);
    (renderer.*write)(stream);
    stream.flush();
    QCOMPARE(text.toUtf8(), expected);
    QCOMPARE(platform.calls, QStringList());
}

void tst_VLClassificationResultsRendererHTML::tableEntryTypes_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("unknown") << 0 << row("Unknown", "/x", "0", "no data");
    QTest::newRow("root_keeps_its_path") << 1 << row("Root", "/r/x", "0", "no data");
    QTest::newRow("year") << 2 << row("Year", "/x", "0", "no data");
    QTest::newRow("month") << 4 << row("Month", "/x", "0", "no data");
    QTest::newRow("day") << 8 << row("Day", "/x", "0", "no data");
    QTest::newRow("event") << 16 << row("Event", "/x", "0", "no data");
    QTest::newRow("project_folder") << 32 << row("ProjectFolder", "/x", "0", "no data");
    QTest::newRow("combination_has_no_name") << 18 << row("", "/x", "0", "no data");
    QTest::newRow("root_among_others_is_no_root") << 17 << row("", "/x", "0", "no data");
    QTest::newRow("number_beyond_the_flags") << 64 << row("", "/x", "0", "no data");
}

void tst_VLClassificationResultsRendererHTML::tableEntryTypes()
{
    QFETCH(const int, type);
    QFETCH(const QByteArray, expected);

    const CountingPlatform platform(0);
    QCOMPARE(tableEntry(resultOf(u"/r/x"_s, type), 2), expected);
}

void tst_VLClassificationResultsRendererHTML::tableEntryDirectories_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("rootPathLength");
    QTest::addColumn<QByteArray>("expected");

    constexpr int root = 1;
    constexpr int month = 4;
    QTest::newRow("root_is_not_cut")
        << root << u"/data/pictures"_s << 14 << QByteArray("/data/pictures");
    QTest::newRow("cut_keeps_the_separator")
        << month << u"/data/pictures/2019/05"_s << 14 << QByteArray("/2019/05");
    QTest::newRow("root_with_trailing_slash_takes_the_separator")
        << month << u"/data/pictures/2019/05"_s << 15 << QByteArray("2019/05");
    QTest::newRow("trailing_slash_stays")
        << month << u"/data/pictures/2019/"_s << 14 << QByteArray("/2019/");
    QTest::newRow("root_of_the_file_system_takes_the_separator")
        << month << u"/2019/05"_s << 1 << QByteArray("2019/05");
    QTest::newRow("root_of_the_file_system") << root << u"/"_s << 1 << QByteArray("/");
    QTest::newRow("path_of_the_root_itself") << month << u"/data"_s << 5 << QByteArray("");
    QTest::newRow("one_longer_than_the_cut") << month << u"/data"_s << 4 << QByteArray("a");
    QTest::newRow("shorter_than_the_cut") << month << u"/data"_s << 6 << QByteArray("");
    QTest::newRow("far_shorter_than_the_cut")
        << month << u"/data"_s << 2147483647 << QByteArray("");
    QTest::newRow("cut_of_nothing") << month << u"/data"_s << 0 << QByteArray("/data");
    QTest::newRow("negative_cut") << month << u"/data"_s << -3 << QByteArray("/data");
    QTest::newRow("most_negative_cut")
        << month << u"/data"_s << -2147483647 - 1 << QByteArray("/data");
    QTest::newRow("cut_does_not_look_at_the_text")
        << month << u"/elsewhere/2019"_s << 5 << QByteArray("where/2019");
    QTest::newRow("cut_counts_code_units")
        << month << u"/r/\U0001F600/x"_s << 5 << QByteArray("/x");
    QTest::newRow("no_directory") << month << QString() << 0 << QByteArray("");
    QTest::newRow("no_directory_as_root") << root << QString() << 5 << QByteArray("");
    QTest::newRow("markup_is_not_escaped") << month << u"/r/<b>Tom & 'Jerry' \"&amp;</b>"_s << 2
                                           << QByteArray("/<b>Tom & 'Jerry' \"&amp;</b>");
    QTest::newRow("markup_of_the_root_is_not_escaped")
        << root << u"/r/<b>&"_s << 2 << QByteArray("/r/<b>&");
    QTest::newRow("placeholders_stay")
        << month << u"/r/%1 %2 %L1 %%"_s << 2 << QByteArray("/%1 %2 %L1 %%");
    QTest::newRow("placeholders_of_the_root_stay")
        << root << u"/r/%1%0"_s << 2 << QByteArray("/r/%1%0");
    QTest::newRow("line_feed_stays") << month << u"/r/a\nb"_s << 2 << QByteArray("/a\nb");
    QTest::newRow("blanks_stay") << month << u"/r/ a  b "_s << 2 << QByteArray("/ a  b ");
}

void tst_VLClassificationResultsRendererHTML::tableEntryDirectories()
{
    QFETCH(const int, type);
    QFETCH(const QString, path);
    QFETCH(const int, rootPathLength);
    QFETCH(const QByteArray, expected);

    const CountingPlatform platform(0);
    const QByteArray name = type == 1 ? "Root" : "Month";
    QCOMPARE(tableEntry(resultOf(path, type), rootPathLength), row(name, expected, "0", "no data"));
}

void tst_VLClassificationResultsRendererHTML::tableEntryCounts_data()
{
    QTest::addColumn<qsizetype>("fileCount");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("none") << qsizetype(0) << QByteArray("0");
    QTest::newRow("one") << qsizetype(1) << QByteArray("1");
    QTest::newRow("equal_names_all_count") << qsizetype(7) << QByteArray("7");
    QTest::newRow("thousands_are_not_grouped") << qsizetype(12345) << QByteArray("12345");
}

void tst_VLClassificationResultsRendererHTML::tableEntryCounts()
{
    QFETCH(const qsizetype, fileCount);
    QFETCH(const QByteArray, expected);

    const CountingPlatform platform(fileCount);
    QCOMPARE(tableEntry(resultOf(u"/r/x"_s, 2), 2), row("Year", "/x", expected, "no data"));
}

void tst_VLClassificationResultsRendererHTML::tableEntryListsTheFullPathOnce_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("expected");

    QTest::newRow("root") << u"/data/pictures"_s << 1 << u"/data/pictures"_s;
    QTest::newRow("cut_path") << u"/data/pictures/2019"_s << 2 << u"/data/pictures/2019"_s;
    QTest::newRow("path_that_is_all_cut") << u"/data"_s << 2 << u"/data"_s;
    QTest::newRow("relative_path") << u"2019"_s << 2 << QDir::currentPath() + u"/2019"_s;
}

void tst_VLClassificationResultsRendererHTML::tableEntryListsTheFullPathOnce()
{
    QFETCH(const QString, path);
    QFETCH(const int, type);
    QFETCH(const QString, expected);

    const CountingPlatform platform(3);
    const QByteArray text = tableEntry(resultOf(path, type), 14);
    QCOMPARE(platform.calls, QStringList(u"getDirectFilesInDirectory "_s + expected));
    QVERIFY(text.contains("<td>3</td>\n"));
}

void tst_VLClassificationResultsRendererHTML::tableEntryOccasions_data()
{
    QTest::addColumn<QList<VLOccasionInfo>>("occasions");
    QTest::addColumn<QByteArray>("expected");

    const VLOccasionInfo birthday(u"Birthday"_s, u"Calendar"_s, 0.9);
    const VLOccasionInfo party(u"Party"_s, u"Tags"_s, 0.5);
    QTest::newRow("none") << QList<VLOccasionInfo> {} << QByteArray("no data");
    QTest::newRow("one") << QList { birthday } << QByteArray("Birthday (0.9, Calendar)");
    QTest::newRow("several_in_list_order")
        << QList { party, birthday } << QByteArray("Party (0.5, Tags); Birthday (0.9, Calendar)");
    QTest::newRow("empty_record_is_an_occasion")
        << QList { VLOccasionInfo() } << QByteArray(" (0, )");
    QTest::newRow("markup_is_not_escaped")
        << QList { VLOccasionInfo(u"<i>&"_s, u"\"'"_s, 1.0) } << QByteArray("<i>& (1, \"')");
    QTest::newRow("placeholders_stay")
        << QList { VLOccasionInfo(u"%1 %2"_s, u"%3 %1"_s, 1.0) } << QByteArray("%1 %2 (1, %3 %1)");
}

void tst_VLClassificationResultsRendererHTML::tableEntryOccasions()
{
    QFETCH(const QList<VLOccasionInfo>, occasions);
    QFETCH(const QByteArray, expected);

    const CountingPlatform platform(0);
    VLOccasionInfoList list;
    list.append(occasions);
    Result result = resultOf(u"/r/x"_s, 16);
    result.setOccasionInformation(list);
    QCOMPARE(tableEntry(result, 2), row("Event", "/x", "0", expected));
}

void tst_VLClassificationResultsRendererHTML::isSmaller_data()
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

void tst_VLClassificationResultsRendererHTML::isSmaller()
{
    QFETCH(const QString, smaller);
    QFETCH(const QString, greater);

    // The types, which run against the paths here, play no part.
    QVERIFY(Renderer::isSmaller(resultOf(smaller, 32), resultOf(greater, 1)));
    QVERIFY(!Renderer::isSmaller(resultOf(greater, 1), resultOf(smaller, 32)));
    QVERIFY(!Renderer::isSmaller(resultOf(smaller, 1), resultOf(smaller, 32)));
    QVERIFY(!Renderer::isSmaller(resultOf(greater, 1), resultOf(greater, 32)));
}

void tst_VLClassificationResultsRendererHTML::rowsAreSorted_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QByteArrayList>("directories");

    QTest::newRow("case_and_hyphen") << QStringList { u"/r/a"_s, u"/r/B"_s, u"/r/a-b"_s }
                                     << QByteArrayList { "/B", "/a", "/a-b" };
    QTest::newRow("no_tree_order")
        << QStringList { u"/r/2019/01"_s, u"/r/2019-x"_s, u"/r/2019 x"_s, u"/r/2019"_s }
        << QByteArrayList { "/2019", "/2019 x", "/2019-x", "/2019/01" };
    QTest::newRow("code_units_and_not_code_points")
        << QStringList { u"/r/\uFF21"_s, u"/r/\U0001F600"_s, u"/r/\u00e4"_s, u"/r/z"_s }
        << QByteArrayList { "/z", "/\xc3\xa4", "/\xf0\x9f\x98\x80", "/\xef\xbc\xa1" };
    QTest::newRow("equal_paths_all_stay")
        << QStringList { u"/r/b"_s, u"/r/a"_s, u"/r/b"_s } << QByteArrayList { "/a", "/b", "/b" };
}

void tst_VLClassificationResultsRendererHTML::rowsAreSorted()
{
    QFETCH(const QStringList, paths);
    QFETCH(const QByteArrayList, directories);

    QList<Result> results;
    for (const QString& path : paths)
        results.append(resultOf(path, 2));
    QByteArrayList rows;
    for (const QByteArray& directory : directories)
        rows.append(row("Year", directory, "0", "no data"));

    const CountingPlatform platform(0);
    const QTemporaryDir dir;
    Renderer(results, 2, {}).renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(fileContents(dir.filePath(reportName)), report(rows));
}

void tst_VLClassificationResultsRendererHTML::longListIsSorted()
{
    QList<Result> results;
    QByteArrayList rows;
    for (int number = 100; number < 200; ++number) {
        results.prepend(resultOf(u"/r/x"_s + QString::number(number), 0));
        rows.append(row("Unknown", "/x" + QByteArray::number(number), "0", "no data"));
    }

    const CountingPlatform platform(0);
    const QTemporaryDir dir;
    Renderer(results, 2, {}).renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(fileContents(dir.filePath(reportName)), report(rows));
}

void tst_VLClassificationResultsRendererHTML::callersListKeepsItsOrder()
{
    const QStringList paths { u"/r/c"_s, u"/r/a"_s, u"/r/b"_s };
    const QList<Result> results { resultOf(paths.at(0), 2), resultOf(paths.at(1), 4),
                                  resultOf(paths.at(2), 8) };
    const Renderer renderer(results, 2, {});
    QCOMPARE(pathsOf(results), paths);
}

void tst_VLClassificationResultsRendererHTML::laterChangesOfTheCallersListDoNotShow()
{
    const CountingPlatform platform(0);
    const QTemporaryDir dir;
    QList<Result> results { resultOf(u"/r/a"_s, 2) };
    Renderer renderer(results, 2, {});
    results.clear();
    renderer.renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(fileContents(dir.filePath(reportName)), report({ row("Year", "/a", "0", "no data") }));
}

void tst_VLClassificationResultsRendererHTML::emptyListYieldsTheFrame()
{
    const RecordingPlatform platform;
    const QTemporaryDir dir;
    Renderer({}, 0, {}).renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(fileContents(dir.filePath(reportName)), lines(1, 23));
    QCOMPARE(lines(1, 23).count('\n'), 23);
}

void tst_VLClassificationResultsRendererHTML::wholeDocument()
{
    Result birthday = resultOf(u"/data/pictures/2019/05/Birthday"_s, 16);
    VLOccasionInfoList occasions;
    occasions.append(VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.9));
    birthday.setOccasionInformation(occasions);
    const QList<Result> results { resultOf(u"/data/pictures"_s, 1), birthday,
                                  resultOf(u"/data/pictures/2019"_s, 18) };

    const CountingPlatform platform(4);
    const QTemporaryDir dir;
    Renderer(results, 14, { u"*.*"_s }).renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(fileContents(dir.filePath(reportName)),
             QByteArray("<html>\n"
                        "\t<style>\n"
                        "\t.Unknown {color: #eeaaaa;}\n"
                        "\t.Root    {color: #000000;}\n"
                        "\t.Year    {color: #dd0909;}\n"
                        "\t.Month   {color: #09dd09;}\n"
                        "\t.Day     {color: #0909dd;}\n"
                        "\t.Event   {color: #0707dd;}\n"
                        "\ttable    {text-align:left; width:100%;}\n"
                        "\tth       {border-bottom: 2px solid #101010;}\n"
                        "\ttd       {border-bottom: 1px solid #101010;}\n"
                        "\t</style>\n"
                        "\t<body>\n"
                        "\t\t<table>\n"
                        "\t\t\t<tr>\n"
                        "\t\t\t\t<th>Classification</th>\n"
                        "\t\t\t\t<th>Directory</th>\n"
                        "\t\t\t\t<th>Count</th>\n"
                        "\t\t\t\t<th>Occasion</th>\n"
                        "\t\t\t</tr>\n"
                        "\t\t\t<tr class=Root>\n"
                        "\t\t\t\t<td>Root</td>\n"
                        "\t\t\t\t<td>/data/pictures</td>\n"
                        "\t\t\t\t<td>4</td>\n"
                        "\t\t\t\t<td>no data</td>\n"
                        "\t\t\t</tr>\n"
                        "\t\t\t<tr class=>\n"
                        "\t\t\t\t<td></td>\n"
                        "\t\t\t\t<td>/2019</td>\n"
                        "\t\t\t\t<td>4</td>\n"
                        "\t\t\t\t<td>no data</td>\n"
                        "\t\t\t</tr>\n"
                        "\t\t\t<tr class=Event>\n"
                        "\t\t\t\t<td>Event</td>\n"
                        "\t\t\t\t<td>/2019/05/Birthday</td>\n"
                        "\t\t\t\t<td>4</td>\n"
                        "\t\t\t\t<td>Birthday (0.9, Calendar)</td>\n"
                        "\t\t\t</tr>\n"
                        "\t\t</table>\n"
                        "\t</body>\n"
                        "</html>\n"));
}

void tst_VLClassificationResultsRendererHTML::fileIsUtf8WithoutByteOrderMark()
{
    const CountingPlatform platform(0);
    const QTemporaryDir dir;
    Renderer({ resultOf(u"/r/\u00e4\u20ac\u65e5\U0001F600"_s, 2) }, 2, {})
        .renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(fileContents(dir.filePath(reportName)),
             report({ row("Year", "/\xc3\xa4\xe2\x82\xac\xe6\x97\xa5\xf0\x9f\x98\x80", "0",
                          "no data") }));
}

void tst_VLClassificationResultsRendererHTML::streamKeepsItsDefaults()
{
    const CountingPlatform platform(0);
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QTextStream stream(&buffer);
    const Renderer renderer({}, 2, {});
    renderer.writeHTMLHeader(stream);
    renderer.writeTableStart(stream);
    renderer.writeTableEntry(stream, resultOf(u"/r/x"_s, 2));
    renderer.writeTableEnd(stream);
    renderer.writeHTMLEnd(stream);
    QCOMPARE(stream.encoding(), QStringConverter::Utf8);
    QVERIFY(!stream.generateByteOrderMark());
    QCOMPARE(stream.fieldWidth(), 0);
    QCOMPARE(stream.locale(), QLocale::c());
}

void tst_VLClassificationResultsRendererHTML::nameFiltersAreNotApplied_data()
{
    QTest::addColumn<QStringList>("nameFilters");

    QTest::newRow("no_filter") << QStringList();
    QTest::newRow("names_with_a_dot") << QStringList(u"*.*"_s);
    QTest::newRow("one_suffix") << QStringList(u"*.jpg"_s);
    QTest::newRow("nothing_meets_it") << QStringList(u"*.nothing"_s);
}

void tst_VLClassificationResultsRendererHTML::nameFiltersAreNotApplied()
{
    QFETCH(const QStringList, nameFilters);

    const RecordingPlatform platform;
    const QTemporaryDir reports;
    const QTemporaryDir pictures;
    QVERIFY(writeFile(pictures.filePath(u"a.jpg"_s), "a"));
    QVERIFY(writeFile(pictures.filePath(u"b.png"_s), "b"));
    QVERIFY(writeFile(pictures.filePath(u"without_a_dot"_s), "c"));
    const int rootPathLength = static_cast<int>(pictures.path().size());
    Renderer({ resultOf(pictures.path(), 2) }, rootPathLength, nameFilters)
        .renderToFile(QFileInfo(reports.filePath(reportName)));
    QCOMPARE(fileContents(reports.filePath(reportName)),
             report({ row("Year", "", "3", "no data") }));
}

void tst_VLClassificationResultsRendererHTML::nameFiltersAreKept()
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

void tst_VLClassificationResultsRendererHTML::countOfTheRootIncludesTheReport()
{
    const RecordingPlatform platform;
    const QTemporaryDir dir;
    QVERIFY(writeFile(dir.filePath(u"a.jpg"_s), "a"));
    QVERIFY(writeFile(dir.filePath(u"b.jpg"_s), "b"));
    QVERIFY(QDir(dir.path()).mkdir(u"2019"_s));
    Renderer({ resultOf(dir.path(), 1), resultOf(dir.filePath(u"2019"_s), 2) },
             static_cast<int>(dir.path().size()), {})
        .renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(fileContents(dir.filePath(reportName)),
             report({ row("Root", dir.path().toUtf8(), "3", "no data"),
                      row("Year", "/2019", "0", "no data") }));
}

void tst_VLClassificationResultsRendererHTML::secondReportHasTheSameBytes()
{
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    const QTemporaryDir dir;
    Renderer renderer({ resultOf(dir.path(), 1) }, 0, {});
    const QByteArray expected = report({ row("Root", dir.path().toUtf8(), "1", "no data") });
    renderer.renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(fileContents(dir.filePath(reportName)), expected);
    renderer.renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(fileContents(dir.filePath(reportName)), expected);
    QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList(reportName));
}

void tst_VLClassificationResultsRendererHTML::relativeReportFile()
{
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    const QTemporaryDir dir;
    const WorkingDirectory working(dir.path());
    QVERIFY(working.isActive());
    QVERIFY(writeFile(u"old.html"_s, "old"));
    const QString path = QDir::currentPath() + u"/old.html"_s;

    Renderer({}, 0, {}).renderToFile(QFileInfo(u"old.html"_s));
    QCOMPARE(fileContents(dir.filePath(u"old.html"_s)), report({}));
    QCOMPARE(recorder.messages().size(), 1);
    QVERIFY(isDebugLine(recorder.messages().constFirst(),
                        uR"(removing file ")"_s + path + uR"(" succeeded:  true)"_s));
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged ."_s));
}

void tst_VLClassificationResultsRendererHTML::newReportLogsNothing()
{
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    const QTemporaryDir dir;
    Renderer({}, 0, {}).renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(recorder.messages().size(), 0);
    QCOMPARE(fileContents(dir.filePath(reportName)), report({}));
}

using MakeOldReport = bool (*)(const QString& path, const QString& directory);

void tst_VLClassificationResultsRendererHTML::oldReportIsReplaced_data()
{
    QTest::addColumn<MakeOldReport>("makeOldReport");

    const auto addRow = [](const char* name, MakeOldReport makeOldReport) {
        QTest::newRow(name) << makeOldReport;
    };
    addRow("short_file",
           [](const QString& path, const QString&) { return writeFile(path, "old"); });
    addRow("empty_file", [](const QString& path, const QString&) { return writeFile(path, ""); });
    addRow("longer_file", [](const QString& path, const QString&) {
        return writeFile(path, QByteArray(100000, 'x'));
    });
    addRow("file_without_permissions", [](const QString& path, const QString&) {
        return writeFile(path, "old") && QFile::setPermissions(path, {});
    });
    addRow("link_to_a_file", [](const QString& path, const QString& directory) {
        return writeFile(directory + u"/elsewhere"_s, "old")
            && QFile::link(directory + u"/elsewhere"_s, path);
    });
    addRow("link_to_a_directory", [](const QString& path, const QString& directory) {
        return QDir(directory).mkdir(u"elsewhere"_s)
            && QFile::link(directory + u"/elsewhere"_s, path);
    });
    addRow("dangling_link", [](const QString& path, const QString& directory) {
        return QFile::link(directory + u"/nowhere"_s, path);
    });
    addRow("link_to_itself",
           [](const QString& path, const QString&) { return QFile::link(path, path); });
}

void tst_VLClassificationResultsRendererHTML::oldReportIsReplaced()
{
    QFETCH(const MakeOldReport, makeOldReport);

    const RecordingPlatform platform;
    const QTemporaryDir dir;
    const QString path = dir.filePath(reportName);
    QVERIFY(makeOldReport(path, dir.path()));

    const MessageRecorder recorder;
    Renderer({}, 0, {}).renderToFile(QFileInfo(path));
    QCOMPARE(recorder.messages().size(), 1);
    QVERIFY(isDebugLine(recorder.messages().constFirst(),
                        uR"(removing file ")"_s + path + uR"(" succeeded:  true)"_s));
    QVERIFY(!QFileInfo(path).isSymbolicLink());
    QCOMPARE(fileContents(path), report({}));
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged "_s + dir.path()));
}

void tst_VLClassificationResultsRendererHTML::targetsOfAnOldLinkAreLeftAlone()
{
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    const QTemporaryDir dir;
    QVERIFY(writeFile(dir.filePath(u"elsewhere"_s), "untouched"));
    QVERIFY(QFile::link(dir.filePath(u"elsewhere"_s), dir.filePath(u"a.html"_s)));
    QVERIFY(QFile::link(dir.filePath(u"nowhere"_s), dir.filePath(u"b.html"_s)));

    Renderer renderer({}, 0, {});
    renderer.renderToFile(QFileInfo(dir.filePath(u"a.html"_s)));
    renderer.renderToFile(QFileInfo(dir.filePath(u"b.html"_s)));
    QCOMPARE(fileContents(dir.filePath(u"elsewhere"_s)), QByteArray("untouched"));
    QVERIFY(!QFileInfo::exists(dir.filePath(u"nowhere"_s)));
    QVERIFY(QFileInfo(dir.filePath(u"a.html"_s)).isFile());
    QVERIFY(QFileInfo(dir.filePath(u"b.html"_s)).isFile());
}

void tst_VLClassificationResultsRendererHTML::debugLineEscapesThePath_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("escaped");

    QTest::newRow("quotation_mark") << u"a\"b.html"_s << u"a\\\"b.html"_s;
    QTest::newRow("backslash") << u"a\\b.html"_s << u"a\\\\b.html"_s;
    QTest::newRow("line_feed") << u"a\nb.html"_s << u"a\\nb.html"_s;
    QTest::newRow("tab") << u"a\tb.html"_s << u"a\\tb.html"_s;
    QTest::newRow("letters_beyond_ascii_stay") << u"\u00e4\u65e5.html"_s << u"\u00e4\u65e5.html"_s;
    QTest::newRow("blanks_stay") << u"a  b.html"_s << u"a  b.html"_s;
    QTest::newRow("placeholders_stay") << u"%1%2.html"_s << u"%1%2.html"_s;
}

void tst_VLClassificationResultsRendererHTML::debugLineEscapesThePath()
{
    QFETCH(const QString, name);
    QFETCH(const QString, escaped);

    const RecordingPlatform platform;
    const QTemporaryDir dir;
    QVERIFY(writeFile(dir.filePath(name), "old"));
    const MessageRecorder recorder;
    Renderer({}, 0, {}).renderToFile(QFileInfo(dir.filePath(name)));
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(recorder.messages().constFirst().text,
             uR"(removing file ")"_s + dir.path() + u'/' + escaped + uR"(" succeeded:  true)"_s);
    QCOMPARE(fileContents(dir.filePath(name)), report({}));
}

void tst_VLClassificationResultsRendererHTML::directoryOfTheReportsName()
{
    const RecordingPlatform platform;
    const QTemporaryDir dir;
    const QString path = dir.filePath(reportName);
    QVERIFY(QDir(dir.path()).mkdir(reportName));
    const QString errorText = openErrorText(path);

    const MessageRecorder recorder;
    Renderer({ resultOf(dir.path(), 1) }, 0, {}).renderToFile(QFileInfo(path));
    QCOMPARE(recorder.messages().size(), 2);
    QVERIFY(isDebugLine(recorder.messages().at(0),
                        uR"(removing file ")"_s + path + uR"(" succeeded:  false)"_s));
    QVERIFY(isWarning(recorder.messages().at(1), warningText(QFileInfo(path), 5, errorText)));
    QVERIFY(QFileInfo(path).isDir());
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged "_s + dir.path()));
}

void tst_VLClassificationResultsRendererHTML::reportThatCannotBeOpened_data()
{
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QString>("name");

    QTest::newRow("directory_is_missing") << u"missing"_s << QString(reportName);
    QTest::newRow("directory_is_a_file") << u"file"_s << QString(reportName);
    QTest::newRow("name_is_too_long") << u"directory"_s << QString(256, u'x');
    QTest::newRow("path_with_quotation_mark_is_not_escaped")
        << u"a \"missing\" \\ one"_s << QString(reportName);
}

void tst_VLClassificationResultsRendererHTML::reportThatCannotBeOpened()
{
    QFETCH(const QString, parent);
    QFETCH(const QString, name);

    const RecordingPlatform platform;
    const QTemporaryDir dir;
    QVERIFY(writeFile(dir.filePath(u"file"_s), "untouched"));
    QVERIFY(QDir(dir.path()).mkdir(u"directory"_s));
    const QString path = dir.filePath(parent) + u'/' + name;
    const QString errorText = openErrorText(path);
    QVERIFY(!errorText.isEmpty());

    const MessageRecorder recorder;
    Renderer({ resultOf(dir.path(), 1) }, 0, {}).renderToFile(QFileInfo(path));
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(recorder.messages().constFirst().text,
             u"Could not write to file QFileInfo("_s + path + u") 5 \""_s + errorText + u'"');
    QVERIFY(
        isWarning(recorder.messages().constFirst(), warningText(QFileInfo(path), 5, errorText)));
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged "_s + dir.filePath(parent)));
    QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             (QStringList { u"directory"_s, u"file"_s }));
}

void tst_VLClassificationResultsRendererHTML::warningThatIsSwitchedOffIsNotSent()
{
    QLoggingCategory::setFilterRules(u"default.warning=false"_s);
    const auto restore = qScopeGuard([] { QLoggingCategory::setFilterRules(QString()); });
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    const QTemporaryDir dir;
    Renderer({}, 0, {}).renderToFile(QFileInfo(dir.filePath(u"missing/report.html"_s)));
    QCOMPARE(recorder.messages().size(), 0);
}

void tst_VLClassificationResultsRendererHTML::errorCodeIsThatOfTheFile()
{
    const RecordingPlatform platform;
    const QTemporaryDir dir;
    const QString path = dir.filePath(reportName);
    const MessageRecorder recorder;
    QString errorText;
    {
        const ResourceLimit noMoreFiles(RLIMIT_NOFILE, 0);
        if (!noMoreFiles.isActive())
            QSKIP("The number of open files cannot be limited here");
        errorText = openErrorText(path);
        Renderer({}, 0, {}).renderToFile(QFileInfo(path));
    }
    QCOMPARE(recorder.messages().size(), 1);
    QVERIFY(
        isWarning(recorder.messages().constFirst(), warningText(QFileInfo(path), 4, errorText)));
}

void tst_VLClassificationResultsRendererHTML::directoryWithoutWritePermission()
{
    const RecordingPlatform platform;
    const QTemporaryDir dir;
    QVERIFY(QFile::setPermissions(dir.path(), QFile::Permissions::fromInt(0x5555)));
    const QString path = dir.filePath(reportName);
    const MessageRecorder recorder;
    QString errorText;
    {
        const UnprivilegedUser user;
        if (!user.isActive() || !QFileInfo(dir.path()).isReadable())
            QSKIP("The rights of the superuser cannot be given up here");
        errorText = openErrorText(path);
        Renderer({ resultOf(dir.path(), 1) }, 0, {}).renderToFile(QFileInfo(path));
    }
    QVERIFY(QFile::setPermissions(dir.path(), QFile::Permissions::fromInt(0x7777)));
    QVERIFY(!errorText.isEmpty());
    QCOMPARE(recorder.messages().size(), 1);
    QVERIFY(
        isWarning(recorder.messages().constFirst(), warningText(QFileInfo(path), 5, errorText)));
    QVERIFY(!QFileInfo::exists(path));
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged "_s + dir.path()));
}

void tst_VLClassificationResultsRendererHTML::oldReportInDirectoryWithoutWritePermission_data()
{
    QTest::addColumn<QFile::Permissions>("permissions");
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<qsizetype>("messageCount");

    QTest::newRow("read_only_report_stays")
        << QFile::Permissions::fromInt(0x4444) << QByteArray(5000, 'x') << qsizetype(2);
    QTest::newRow("writable_report_is_overwritten")
        << QFile::Permissions::fromInt(0x6666) << report({}) << qsizetype(1);
}

void tst_VLClassificationResultsRendererHTML::oldReportInDirectoryWithoutWritePermission()
{
    QFETCH(const QFile::Permissions, permissions);
    QFETCH(const QByteArray, contents);
    QFETCH(const qsizetype, messageCount);

    const RecordingPlatform platform;
    const QTemporaryDir dir;
    const QString path = dir.filePath(reportName);
    QVERIFY(writeFile(path, QByteArray(5000, 'x')));
    QVERIFY(QFile::setPermissions(path, permissions));
    QVERIFY(QFile::setPermissions(dir.path(), QFile::Permissions::fromInt(0x5555)));
    const MessageRecorder recorder;
    {
        const UnprivilegedUser user;
        if (!user.isActive() || !QFileInfo(dir.path()).isReadable())
            QSKIP("The rights of the superuser cannot be given up here");
        Renderer({}, 0, {}).renderToFile(QFileInfo(path));
    }
    QVERIFY(QFile::setPermissions(dir.path(), QFile::Permissions::fromInt(0x7777)));
    QCOMPARE(recorder.messages().size(), messageCount);
    QVERIFY(isDebugLine(recorder.messages().constFirst(),
                        uR"(removing file ")"_s + path + uR"(" succeeded:  false)"_s));
    QCOMPARE(fileContents(path), contents);
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged "_s + dir.path()));
}

void tst_VLClassificationResultsRendererHTML::errorsWhileWritingAreNotDetected()
{
    const RecordingPlatform platform;
    const MessageRecorder recorder;
    const QTemporaryDir dir;
    {
        const ResourceLimit tenBytes(RLIMIT_FSIZE, 10);
        if (!tenBytes.isActive())
            QSKIP("The size of files cannot be limited here");
        Renderer({}, 0, {}).renderToFile(QFileInfo(dir.filePath(reportName)));
    }
    QCOMPARE(recorder.messages().size(), 0);
    QCOMPARE(fileContents(dir.filePath(reportName)), QByteArray("<html>\n\t<s"));
    QCOMPARE(platform.calls, QStringList(u"directoryContentsChanged "_s + dir.path()));
}

void tst_VLClassificationResultsRendererHTML::reportExistsWhileRowsAreListed()
{
    const QTemporaryDir dir;
    const WatchingPlatform platform(dir.filePath(reportName));
    Renderer({ resultOf(dir.path() + u"/b"_s, 2), resultOf(dir.path() + u"/a"_s, 2) }, 0, {})
        .renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(platform.reportFoundByListings, (QList<bool> { true, true }));
    QCOMPARE(platform.calls,
             (QStringList { u"getDirectFilesInDirectory "_s + dir.path() + u"/a"_s,
                            u"getDirectFilesInDirectory "_s + dir.path() + u"/b"_s,
                            u"directoryContentsChanged "_s + dir.path() }));
}

void tst_VLClassificationResultsRendererHTML::reportIsCompleteWhenItsDirectoryIsCalledChanged()
{
    const QTemporaryDir dir;
    WatchingPlatform platform(dir.filePath(reportName));
    Renderer({ resultOf(u"/missing"_s, 2) }, 0, {})
        .renderToFile(QFileInfo(dir.filePath(reportName)));
    QCOMPARE(platform.reportAtChange, report({ row("Year", "/missing", "0", "no data") }));
}

void tst_VLClassificationResultsRendererHTML::reportIsClosedWhenItsDirectoryIsCalledChanged()
{
    const QTemporaryDir dir;
    const QString path = QFileInfo(dir.path()).canonicalFilePath() + u'/' + reportName;
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    if (!isOpen(path))
        QSKIP("This system does not tell which files are open");
    file.close();
    const MessageRecorder recorder;
    WatchingPlatform platform(path);
    Renderer({}, 0, {}).renderToFile(QFileInfo(path));
    QVERIFY(!platform.reportIsOpenAtChange);
}

void tst_VLClassificationResultsRendererHTML::changedDirectoryIsTheReports()
{
    // Not the root's, which may be another one.
    const CountingPlatform platform(0);
    const QTemporaryDir reports;
    Renderer({ resultOf(u"/data/pictures"_s, 1) }, 14, {})
        .renderToFile(QFileInfo(reports.filePath(reportName)));
    QCOMPARE(platform.calls,
             (QStringList { u"getDirectFilesInDirectory /data/pictures"_s,
                            u"directoryContentsChanged "_s + reports.path() }));
}

void tst_VLClassificationResultsRendererHTML::failedReportListsNothing()
{
    const CountingPlatform platform(0);
    const MessageRecorder recorder;
    const QTemporaryDir dir;
    Renderer({ resultOf(dir.path(), 1) }, 0, {})
        .renderToFile(QFileInfo(dir.filePath(u"missing/report.html"_s)));
    QCOMPARE(platform.calls,
             QStringList(u"directoryContentsChanged "_s + dir.filePath(u"missing"_s)));
}

QTEST_GUILESS_MAIN(tst_VLClassificationResultsRendererHTML)
#include "tst_VLClassificationResultsRendererHTML.moc"
