#include "HostProgram.h"
#include "PictureTree.h"
#include "Sanitizer.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <array>
#include <cerrno>
#include <csignal>
#include <type_traits>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using Environment = QHash<QString, QString>;
using Stream = HostProgram::Stream;

static_assert(!std::is_copy_constructible_v<PictureTree>);

namespace {

const QString reportName = u"vela.classification.results.html"_s;

constexpr auto picturesReport = R"(<html>
	<style>
	.Unknown {color: #eeaaaa;}
	.Root    {color: #000000;}
	.Year    {color: #dd0909;}
	.Month   {color: #09dd09;}
	.Day     {color: #0909dd;}
	.Event   {color: #0707dd;}
	table    {text-align:left; width:100%;}
	th       {border-bottom: 2px solid #101010;}
	td       {border-bottom: 1px solid #101010;}
	</style>
	<body>
		<table>
			<tr>
				<th>Classification</th>
				<th>Directory</th>
				<th>Count</th>
				<th>Occasion</th>
			</tr>
			<tr class=Root>
				<td>Root</td>
				<td>{}/pics</td>
				<td>1</td>
				<td>no data</td>
			</tr>
			<tr class=Unknown>
				<td>Unknown</td>
				<td>/1999</td>
				<td>0</td>
				<td>no data</td>
			</tr>
			<tr class=Year>
				<td>Year</td>
				<td>/2019</td>
				<td>0</td>
				<td>no data</td>
			</tr>
			<tr class=Month>
				<td>Month</td>
				<td>/2019/07</td>
				<td>0</td>
				<td>no data</td>
			</tr>
			<tr class=Event>
				<td>Event</td>
				<td>/2019/07-x</td>
				<td>0</td>
				<td>no data</td>
			</tr>
			<tr class=Event>
				<td>Event</td>
				<td>/2019/07/2019-07-14</td>
				<td>0</td>
				<td>no data</td>
			</tr>
			<tr class=Event>
				<td>Event</td>
				<td>/2019/07/Beach</td>
				<td>2</td>
				<td>no data</td>
			</tr>
			<tr class=Day>
				<td>Day</td>
				<td>/2019/07/Beach/2019-07-15</td>
				<td>0</td>
				<td>no data</td>
			</tr>
			<tr class=Event>
				<td>Event</td>
				<td>/2019/Trip to sea</td>
				<td>0</td>
				<td>no data</td>
			</tr>
			<tr class=Unknown>
				<td>Unknown</td>
				<td>/B</td>
				<td>0</td>
				<td>no data</td>
			</tr>
			<tr class=ProjectFolder>
				<td>ProjectFolder</td>
				<td>/Urlaub_vlp-Dateien</td>
				<td>0</td>
				<td>no data</td>
			</tr>
			<tr class=Unknown>
				<td>Unknown</td>
				<td>/a</td>
				<td>1</td>
				<td>no data</td>
			</tr>
		</table>
	</body>
</html>
)";

constexpr auto picturesList = R"(   Root <= 
Unknown <= 1999
   Year <= 2019
  Month <= 2019/07
  Event <= 2019/07/2019-07-14
  Event <= 2019/07/Beach
    Day <= 2019/07/Beach/2019-07-15
  Event <= 2019/07-x
  Event <= 2019/Trip to sea
Unknown <= B
ProjectFolder <= Urlaub_vlp-Dateien
Unknown <= a
)";

constexpr auto picturesJson =
    R"({"files":0,"occasions":[],"ownType":"Root","path":"{}/pics","relativePath":"","tests":[],"type":"Root","value":1}
{"files":0,"occasions":[],"ownType":"Unknown","path":"{}/pics/1999","relativePath":"1999","tests":[],"type":"Unknown","value":0}
{"files":0,"occasions":[],"ownType":"Year","path":"{}/pics/2019","relativePath":"2019","tests":["year"],"type":"Year","value":2}
{"files":0,"occasions":[],"ownType":"Month","path":"{}/pics/2019/07","relativePath":"2019/07","tests":["month"],"type":"Month","value":4}
{"files":0,"occasions":[],"ownType":"Day","path":"{}/pics/2019/07/2019-07-14","relativePath":"2019/07/2019-07-14","tests":["date","year"],"type":"Event","value":16}
{"files":2,"occasions":[],"ownType":"Unknown","path":"{}/pics/2019/07/Beach","relativePath":"2019/07/Beach","tests":[],"type":"Event","value":16}
{"files":0,"occasions":[],"ownType":"Day","path":"{}/pics/2019/07/Beach/2019-07-15","relativePath":"2019/07/Beach/2019-07-15","tests":["date","year"],"type":"Day","value":8}
{"files":0,"occasions":[],"ownType":"Unknown","path":"{}/pics/2019/07-x","relativePath":"2019/07-x","tests":[],"type":"Event","value":16}
{"files":0,"occasions":[],"ownType":"Unknown","path":"{}/pics/2019/Trip to sea","relativePath":"2019/Trip to sea","tests":[],"type":"Event","value":16}
{"files":0,"occasions":[],"ownType":"Unknown","path":"{}/pics/B","relativePath":"B","tests":[],"type":"Unknown","value":0}
{"files":0,"occasions":[],"ownType":"ProjectFolder","path":"{}/pics/Urlaub_vlp-Dateien","relativePath":"Urlaub_vlp-Dateien","tests":["project"],"type":"ProjectFolder","value":32}
{"files":1,"occasions":[],"ownType":"Unknown","path":"{}/pics/a","relativePath":"a","tests":[],"type":"Unknown","value":0}
)";

constexpr auto helpText = R"(Usage: vlfolio-classify [options] DIRECTORY
       vlfolio-classify [--locale NAME] --explain NAME...

Classifies the folders of a picture collection into years, months, days, events
and project folders, writes the outcome as an HTML table into DIRECTORY, and
opens it if there is a desktop.

Options:
  --open           Open the report even without a desktop or with markup in it.
  --no-open        Do not open the report.
  --list           Write no report; print a line for each folder.
  --json           Write no report; print a JSON object for each folder, one a
                   line.
  --summary        Write no report; print how many folders of each type there
                   are.
  --why            With --list: end each line with the reason for the type.
  --type <NAME>    With --list, --json or --summary: only folders of this type
                   (Unknown, Root, Year, Month, Day, Event or ProjectFolder, in
                   any letter case).
  --explain        Take the arguments as folder names and say what each one is
                   by itself. Touches no file.
  --locale <NAME>  Read dates and names of days and months in this language,
                   for example de_DE.
  -h, --help       Show this help.
  -v, --version    Show the version.
)";

// The right-to-left override is the best-known of the characters that disguise a name.
const QString trickyName = u"a\"b\\c\033[31m\nd\177\u202egpj.exe"_s;

QByteArray failure(const QString& text)
{
    return u"vlfolio-classify: %1\n"_s.arg(text).toUtf8();
}

HostProgram program(const QStringList& arguments)
{
    return HostProgram(arguments);
}

Environment desktop()
{
    return { { u"DISPLAY"_s, u":0"_s } };
}

// A sanitizer wants to be loaded first unless told otherwise.
Environment preloaded(const QString& library)
{
    return { { u"LD_PRELOAD"_s, library }, { u"ASAN_OPTIONS"_s, u"verify_asan_link_order=0"_s } };
}

// So many listings begin 100 ms late.
Environment slowListings(int count)
{
    Environment environment = preloaded(QStringLiteral(VLFOLIO_SLOW_LISTINGS));
    environment[u"VLFOLIO_LATE_LISTINGS"_s] = QString::number(count);
    return environment;
}

#if defined(VLFOLIO_FAILING_CALLS)
// The first of the program's calls of that name on the directory fails.
Environment failingCall(const QString& call, int error, const QString& directory)
{
    Environment environment = preloaded(QStringLiteral(VLFOLIO_FAILING_CALLS));
    environment[u"VLFOLIO_FAILING_CALL"_s] = u"%1 1 1 %2 %3"_s.arg(call).arg(error).arg(directory);
    return environment;
}
#endif

} // namespace

class tst_vlfolio_classify : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void reportNamesItsFile_data();
    void reportNamesItsFile();
    void reportOpens_data();
    void reportOpens();
    void markupIsCounted_data();
    void markupIsCounted();
    void reportReplacesTheOldOne();
    void prints_data();
    void prints();
    void rootOfTheFileSystem_data();
    void rootOfTheFileSystem();
    void jsonHoldsAnyName();
    void jsonKeys();
    void explains_data();
    void explains();
    void explainTouchesNoFile();
    void localeName_data();
    void localeName();
    void systemLocaleIsNotUtf8_data();
    void systemLocaleIsNotUtf8();
    void wrongUsage_data();
    void wrongUsage();
    void directoryProblem_data();
    void directoryProblem();
    void workingDirectoryIsRemoved_data();
    void workingDirectoryIsRemoved();
    void directoryNameIsNotUtf8();
    void directoryFails_data();
    void directoryFails();
    void omissionsAreTold_data();
    void omissionsAreTold();
    void reportCannotBeWritten_data();
    void reportCannotBeWritten();
    void onlyFilesAreWrittenInto_data();
    void onlyFilesAreWrittenInto();
    void logRulesHideNoFailure_data();
    void logRulesHideNoFailure();
    void reportIsIncomplete();
    void fullFileSystem();
    void readOnlyFileSystem();
    void standardOutputIsFull_data();
    void standardOutputIsFull();
    void standardOutputIsClosed();
    void nobodyReads_data();
    void nobodyReads();
    void terminalShowsNamesEscaped_data();
    void terminalShowsNamesEscaped();
    void pipedNamesAreRaw();
    void shortRunIsSilentOnTerminal();
    void longRunShowsProgress();
    void progressIsNotNeeded();
    void progressTakesNoMemory();
    void argumentsNeedMemory();
    void longRunIsSilentOffTerminal();
    void longRunIsSilentWhereLinesStay_data();
    void longRunIsSilentWhereLinesStay();
    void nothingIsColoured_data();
    void nothingIsColoured();
    void sameOutputTwice_data();
    void sameOutputTwice();
    void serviceLog();
};

void tst_vlfolio_classify::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_vlfolio_classify::reportNamesItsFile_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("workingDirectory");
    QTest::addColumn<QString>("folder");

    QTest::newRow("absolute") << u"{}/pics"_s << u"/"_s << u"{}/pics"_s;
    QTest::newRow("relative") << u"pics"_s << u"{}"_s << u"{}/pics"_s;
    QTest::newRow("here") << u"."_s << u"{}/pics"_s << u"{}/pics"_s;
    QTest::newRow("here_with_slash") << u"./"_s << u"{}/pics"_s << u"{}/pics"_s;
    QTest::newRow("above") << u".."_s << u"{}/pics/2019"_s << u"{}/pics"_s;
    QTest::newRow("trailing_slash") << u"{}/pics/"_s << u"/"_s << u"{}/pics"_s;
    QTest::newRow("trailing_slashes") << u"pics///"_s << u"{}"_s << u"{}/pics"_s;
    QTest::newRow("dot_in_the_middle") << u"./pics/."_s << u"{}"_s << u"{}/pics"_s;
    QTest::newRow("through_a_folder_and_up") << u"pics/2019/.."_s << u"{}"_s << u"{}/pics"_s;
    QTest::newRow("up_from_where_a_link_leads") << u"link/.."_s << u"{}"_s << u"{}/pics"_s;
    QTest::newRow("up_from_a_link_with_slash") << u"link/../"_s << u"{}"_s << u"{}/pics"_s;
}

void tst_vlfolio_classify::reportNamesItsFile()
{
    QFETCH(QString, directory);
    QFETCH(QString, workingDirectory);
    QFETCH(QString, folder);
    const PictureTree tree;
    tree.addPictures();
    tree.addLink(tree.path(u"pics/2019"_s), u"link"_s);

    const auto outcome =
        program({ tree.filled(directory) }).in(tree.filled(workingDirectory)).run();

    QCOMPARE(outcome.output, tree.filled(folder + u'/' + reportName + u'\n').toUtf8());
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.opened, QByteArray());
    QCOMPARE(tree.content(u"pics/"_s + reportName),
             tree.filled(QString::fromUtf8(picturesReport)).toUtf8());
}

void tst_vlfolio_classify::reportOpens_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<Environment>("environment");
    QTest::addColumn<bool>("openerIsMissing");
    QTest::addColumn<bool>("opens");

    const Environment none;
    const Environment wayland { { u"WAYLAND_DISPLAY"_s, u"wayland-0"_s } };
    const Environment emptyDisplay { { u"DISPLAY"_s, QString() } };
#if defined(Q_OS_MACOS)
    constexpr bool alwaysDesktop = true;
#else
    constexpr bool alwaysDesktop = false;
#endif
    QTest::newRow("without_a_desktop") << QString() << none << false << alwaysDesktop;
    QTest::newRow("display") << QString() << desktop() << false << true;
    QTest::newRow("wayland") << QString() << wayland << false << true;
    QTest::newRow("empty_display_is_none") << QString() << emptyDisplay << false << alwaysDesktop;
    QTest::newRow("no_open_on_a_desktop") << u"--no-open"_s << desktop() << false << false;
    QTest::newRow("no_open_without_a_desktop") << u"--no-open"_s << none << false << false;
    QTest::newRow("open_without_a_desktop") << u"--open"_s << none << false << true;
    QTest::newRow("open_on_a_desktop") << u"--open"_s << desktop() << false << true;
    QTest::newRow("open_without_opener") << u"--open"_s << none << true << true;
    QTest::newRow("desktop_without_opener") << QString() << desktop() << true << true;
    QTest::newRow("no_open_without_opener") << u"--no-open"_s << desktop() << true << false;
}

void tst_vlfolio_classify::reportOpens()
{
#if defined(Q_OS_MACOS)
    QSKIP("The system's own \"open\" cannot be replaced through the search path alone.");
#endif
    QFETCH(QString, option);
    QFETCH(Environment, environment);
    QFETCH(bool, openerIsMissing);
    QFETCH(bool, opens);
    const PictureTree tree;
    tree.addPictures();
    const QString report = tree.path(u"pics/"_s + reportName);

    const QStringList options = option.isEmpty() ? QStringList() : QStringList { option };
    const auto outcome =
        program(options + QStringList { tree.path(u"pics"_s) })
            .with(environment)
            .opener(openerIsMissing ? HostProgram::Opener::Missing : HostProgram::Opener::Recording)
            .run();

    const QString warning = u"Could not open file \"%1\" with \"xdg-open\"\n"_s.arg(report);
    QCOMPARE(outcome.output, (report + u'\n').toUtf8());
    QCOMPARE(outcome.error, opens && openerIsMissing ? warning.toUtf8() : QByteArray());
    QCOMPARE(outcome.opened, opens && !openerIsMissing ? (report + u'\n').toUtf8() : QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::markupIsCounted_data()
{
    QTest::addColumn<QStringList>("folders");
    QTest::addColumn<QString>("root");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("opens");

    const QString pics = u"pics"_s;
    const QString one = u"1 folder name holds markup that a browser would run"_s;
    const QString two = u"2 folder names hold markup that a browser would run"_s;
    const QString closed = u"; only --open opens the report"_s;
    QTest::newRow("element") << QStringList { u"<script>"_s } << pics << QString() << one + closed
                             << false;
    QTest::newRow("in_the_middle")
        << QStringList { u"2019/a <b>x"_s } << pics << QString() << one + closed << false;
    QTest::newRow("end_tag_like") << QStringList { u"x<!--"_s } << pics << QString() << one + closed
                                  << false;
    QTest::newRow("processing_instruction")
        << QStringList { u"<?x"_s } << pics << QString() << one + closed << false;
    QTest::newRow("two_names") << QStringList { u"<i>"_s, u"2019/<b>"_s } << pics << QString()
                               << two + closed << false;
    QTest::newRow("not_again_in_folders_below")
        << QStringList { u"<i>/a/b"_s } << pics << QString() << one + closed << false;
    QTest::newRow("name_of_the_root")
        << QStringList { u"<i>/pics"_s } << u"<i>/pics"_s << QString() << one + closed << false;
    QTest::newRow("opened_when_asked")
        << QStringList { u"<i>"_s } << pics << u"--open"_s << one << true;
    QTest::newRow("two_opened_when_asked")
        << QStringList { u"<i>"_s, u"<b>"_s } << pics << u"--open"_s << two << true;
    QTest::newRow("told_even_if_never_opened")
        << QStringList { u"<i>"_s } << pics << u"--no-open"_s << one << false;
    QTest::newRow("lone_sign_is_none") << QStringList { u"a < b"_s, u"I <3 you"_s, u"x<"_s } << pics
                                       << QString() << QString() << true;
    QTest::newRow("entity_is_none")
        << QStringList { u"a&lt;b>&amp;"_s } << pics << QString() << QString() << true;
    QTest::newRow("hidden_folder_is_none")
        << QStringList { u".<b>"_s } << pics << QString() << QString() << true;
}

void tst_vlfolio_classify::markupIsCounted()
{
    QFETCH(QStringList, folders);
    QFETCH(QString, root);
    QFETCH(QString, option);
    QFETCH(QString, error);
    QFETCH(bool, opens);
    const PictureTree tree;
    tree.addFolder(root);
    for (const QString& folder : std::as_const(folders))
        tree.addFolder(root == u"pics" ? u"pics/"_s + folder : folder);
    const QByteArray report = (tree.path(root) + u'/' + reportName + u'\n').toUtf8();

    const QStringList options = option.isEmpty() ? QStringList() : QStringList { option };
    const auto outcome = program(options + QStringList { tree.path(root) }).with(desktop()).run();

    QCOMPARE(outcome.error, error.isEmpty() ? QByteArray() : failure(error));
    QCOMPARE(outcome.output, report);
    QCOMPARE(outcome.opened, opens ? report : QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::reportReplacesTheOldOne()
{
    const PictureTree tree;
    tree.addPictures();
    tree.addFile(u"elsewhere"_s, "kept");
    tree.addLink(tree.path(u"elsewhere"_s), u"pics/"_s + reportName);

    const auto outcome = program({ tree.path(u"pics"_s) }).run();

    QCOMPARE(outcome.output, tree.filled(u"{}/pics/"_s + reportName + u'\n').toUtf8());
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(tree.content(u"pics/"_s + reportName),
             tree.filled(QString::fromUtf8(picturesReport)).toUtf8());
    QCOMPARE(tree.content(u"elsewhere"_s), QByteArray("kept"));
}

void tst_vlfolio_classify::prints_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("output");

    const QString list = QLatin1String(picturesList);
    const QString json = QLatin1String(picturesJson);
    const QString summary = u"Unknown       3\nRoot          1\nYear          1\n"
                            "Month         1\nDay           1\nEvent         4\n"
                            "ProjectFolder 1\n"_s;
    const QString version = u"vlfolio-classify " VLFOLIO_VERSION "\n"_s;
    const QString help = QLatin1String(helpText);

    QTest::newRow("list") << QStringList { u"--list"_s, u"pics"_s } << list;
    QTest::newRow("list_after_the_directory") << QStringList { u"pics"_s, u"--list"_s } << list;
    QTest::newRow("list_with_slash") << QStringList { u"--list"_s, u"pics//"_s } << list;
    QTest::newRow("list_through_a_link") << QStringList { u"--list"_s, u"link"_s } << list;
    QTest::newRow("list_up_from_a_link") << QStringList { u"--list"_s, u"2019/.."_s } << list;
    QTest::newRow("no_open_changes_nothing")
        << QStringList { u"--no-open"_s, u"--list"_s, u"pics"_s } << list;
    QTest::newRow("json") << QStringList { u"--json"_s, u"pics"_s } << json;
    QTest::newRow("json_with_slash") << QStringList { u"--json"_s, u"pics/"_s } << json;
    QTest::newRow("summary") << QStringList { u"--summary"_s, u"pics"_s } << summary;

    QTest::newRow("unknown_only") << QStringList { u"--list"_s, u"--type"_s, u"Unknown"_s,
                                                   u"pics"_s }
                                  << u"Unknown <= 1999\nUnknown <= B\nUnknown <= a\n"_s;
    QTest::newRow("root_only") << QStringList { u"--list"_s, u"--type"_s, u"Root"_s, u"pics"_s }
                               << u"   Root <= \n"_s;
    QTest::newRow("year_only") << QStringList { u"--list"_s, u"--type"_s, u"Year"_s, u"pics"_s }
                               << u"   Year <= 2019\n"_s;
    QTest::newRow("month_only") << QStringList { u"--list"_s, u"--type"_s, u"Month"_s, u"pics"_s }
                                << u"  Month <= 2019/07\n"_s;
    QTest::newRow("day_only") << QStringList { u"--list"_s, u"--type"_s, u"Day"_s, u"pics"_s }
                              << u"    Day <= 2019/07/Beach/2019-07-15\n"_s;
    QTest::newRow("event_only") << QStringList { u"--list"_s, u"--type"_s, u"Event"_s, u"pics"_s }
                                << u"  Event <= 2019/07/2019-07-14\n  Event <= 2019/07/Beach\n"
                                   "  Event <= 2019/07-x\n  Event <= 2019/Trip to sea\n"_s;
    QTest::newRow("project_only") << QStringList { u"--list"_s, u"--type"_s, u"ProjectFolder"_s,
                                                   u"pics"_s }
                                  << u"ProjectFolder <= Urlaub_vlp-Dateien\n"_s;
    QTest::newRow("type_in_lower_case")
        << QStringList { u"--list"_s, u"--type=projectfolder"_s, u"pics"_s }
        << u"ProjectFolder <= Urlaub_vlp-Dateien\n"_s;
    QTest::newRow("type_in_upper_case")
        << QStringList { u"--list"_s, u"--type=UNKNOWN"_s, u"pics"_s }
        << u"Unknown <= 1999\nUnknown <= B\nUnknown <= a\n"_s;
    QTest::newRow("json_of_a_type")
        << QStringList { u"--json"_s, u"--type"_s, u"month"_s, u"pics"_s }
        << u"{\"files\":0,\"occasions\":[],\"ownType\":\"Month\",\"path\":\"{}/pics/2019/07\","
           "\"relativePath\":\"2019/07\",\"tests\":[\"month\"],\"type\":\"Month\",\"value\":4}\n"_s;
    QTest::newRow("summary_of_a_type")
        << QStringList { u"--summary"_s, u"--type"_s, u"Event"_s, u"pics"_s }
        << u"Event         4\n"_s;
    QTest::newRow("type_of_no_folder")
        << QStringList { u"--list"_s, u"--type"_s, u"Day"_s, u"pics/B"_s } << QString();
    QTest::newRow("summary_of_no_folder")
        << QStringList { u"--summary"_s, u"--type"_s, u"Day"_s, u"pics/B"_s }
        << u"Day           0\n"_s;

    QTest::newRow("help") << QStringList { u"--help"_s } << help;
    QTest::newRow("short_help") << QStringList { u"-h"_s } << help;
    QTest::newRow("help_wins") << QStringList { u"--list"_s, u"--help"_s, u"--version"_s } << help;
    QTest::newRow("version") << QStringList { u"--version"_s } << version;
    QTest::newRow("short_version") << QStringList { u"-v"_s } << version;
    QTest::newRow("version_wins") << QStringList { u"--json"_s, u"--version"_s, u"a"_s, u"b"_s }
                                  << version;
}

void tst_vlfolio_classify::prints()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, output);
    const PictureTree tree;
    tree.addPictures();
    tree.addLink(u"pics"_s, u"link"_s);
    tree.addLink(u"pics/2019"_s, u"2019"_s);
    if (arguments.contains(u"link"))
        output.replace(u"{}/pics"_s, u"{}/link"_s);

    const auto outcome = program(arguments).in(tree.path()).with(desktop()).run();

    QCOMPARE(outcome.output, tree.filled(output).toUtf8());
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.opened, QByteArray());
    QVERIFY(!tree.exists(u"pics/"_s + reportName));
}

void tst_vlfolio_classify::rootOfTheFileSystem_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("output");

    const QByteArray list = "   Root <= \nUnknown <= a\nUnknown <= a/b\n";
    QTest::newRow("list") << QStringList { u"--list"_s, u"/"_s } << list;
    QTest::newRow("list_with_reasons")
        << QStringList { u"--list"_s, u"--why"_s, u"/"_s }
        << "   Root <=   (the root of the collection)\n"
           "Unknown <= a  (by itself Unknown: no test met; an unknown folder below the root stays "
           "unknown)\n"
           "Unknown <= a/b  (by itself Unknown: no test met; an unknown folder below an unknown "
           "folder stays unknown)\n"_ba;
    QTest::newRow("list_with_slashes") << QStringList { u"--list"_s, u"///"_s } << list;
    QTest::newRow("list_above_it") << QStringList { u"--list"_s, u"/.."_s } << list;
    QTest::newRow("json") << QStringList { u"--json"_s, u"--type=Unknown"_s, u"/"_s }
                          << QByteArray(
                                 R"({"files":0,"occasions":[],"ownType":"Unknown","path":"/a",)"
                                 R"("relativePath":"a","tests":[],"type":"Unknown","value":0})"
                                 "\n"
                                 R"({"files":0,"occasions":[],"ownType":"Unknown","path":"/a/b",)"
                                 R"("relativePath":"a/b","tests":[],"type":"Unknown","value":0})"
                                 "\n");
    QTest::newRow("report") << QStringList { u"/"_s }
                            << QByteArray("/vela.classification.results.html\n");
}

void tst_vlfolio_classify::rootOfTheFileSystem()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, output);
    const PictureTree tree;
    tree.addFolder(u"a/b"_s);

    const auto outcome = program(arguments)
                             .with(preloaded(QStringLiteral(VLFOLIO_CHANGED_ROOT)))
                             // The leak detector would look for itself in /proc.
                             .with(u"LSAN_OPTIONS"_s, u"detect_leaks=0"_s)
                             .with(u"VLFOLIO_TEST_ROOT"_s, tree.path())
                             .run();

    if (outcome.exitCode == HostProgram::setUpFailed)
        QSKIP("The root of the file system cannot be changed here.");
    QCOMPARE(outcome.output, output);
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(tree.exists(reportName), arguments == QStringList { u"/"_s });
}

void tst_vlfolio_classify::jsonHoldsAnyName()
{
    const PictureTree tree;
    tree.addFolder(u"pics/"_s + trickyName);

    const auto outcome = program({ u"--json"_s, tree.path(u"pics"_s) }).run();

    const QList<QByteArray> lines = outcome.output.split('\n');
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines.at(2).isEmpty());
    QJsonParseError error;
    const QJsonObject object = QJsonDocument::fromJson(lines.at(1), &error).object();
    QCOMPARE(error.errorString(), u"no error occurred"_s);
    QCOMPARE(object.value(u"relativePath").toString(), trickyName);
    QCOMPARE(object.value(u"path").toString(), tree.path(u"pics/"_s + trickyName));
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::jsonKeys()
{
    const PictureTree tree;
    tree.addPictures();

    const auto outcome = program({ u"--json"_s, tree.path(u"pics"_s) }).run();

    const QStringList keys { u"files"_s,        u"occasions"_s, u"ownType"_s, u"path"_s,
                             u"relativePath"_s, u"tests"_s,     u"type"_s,    u"value"_s };
    const QList<QByteArray> lines = outcome.output.trimmed().split('\n');
    QCOMPARE(lines.size(), 12);
    for (const QByteArray& line : lines) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        QCOMPARE(object.keys(), keys);
        QVERIFY(object.value(u"occasions").isArray());
        QVERIFY(object.value(u"tests").isArray());
        QVERIFY(object.value(u"files").isDouble());
    }
}

void tst_vlfolio_classify::explains_data()
{
    QTest::addColumn<QString>("systemLocale");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("output");

    const QString plain = u"C.UTF-8"_s;
    const QString english = u"en_US.UTF-8"_s;
    QTest::newRow("project") << plain << QString() << u"Urlaub_vlp-Dateien"_s
                             << u"ProjectFolder <= Urlaub_vlp-Dateien (tests met: project)"_s;
    QTest::newRow("every_test_is_named")
        << plain << QString() << u"2019-07-14_vlp-Dateien"_s
        << u"ProjectFolder <= 2019-07-14_vlp-Dateien (tests met: project, date, year)"_s;
    QTest::newRow("date") << plain << QString() << u"14.07.19 Beach"_s
                          << u"Day <= 14.07.19 Beach (tests met: date)"_s;
    QTest::newRow("date_with_year")
        << plain << QString() << u"2019-13-45"_s << u"Day <= 2019-13-45 (tests met: date, year)"_s;
    QTest::newRow("underscore_is_no_separator")
        << plain << QString() << u"2019_07_14"_s << u"Year <= 2019_07_14 (tests met: year)"_s;
    QTest::newRow("month") << plain << QString() << u"07"_s << u"Month <= 07 (tests met: month)"_s;
    QTest::newRow("year") << plain << QString() << u"12345"_s
                          << u"Year <= 12345 (tests met: year)"_s;
    QTest::newRow("nothing") << plain << QString() << u"Beach"_s
                             << u"Unknown <= Beach (tests met: none)"_s;
    QTest::newRow("empty_name") << plain << QString() << QString()
                                << u"Unknown <=  (tests met: none)"_s;
    QTest::newRow("placeholder_stays")
        << plain << QString() << u"%1 %2 %3"_s << u"Unknown <= %1 %2 %3 (tests met: none)"_s;
    QTest::newRow("digit_is_a_day_in_C")
        << plain << QString() << u"7"_s << u"Day <= 7 (tests met: date, month)"_s;
    QTest::newRow("digit_is_a_month_in_English")
        << english << QString() << u"7"_s << u"Month <= 7 (tests met: month)"_s;
    QTest::newRow("digit_in_English_with_locale_C")
        << english << u"C"_s << u"7"_s << u"Day <= 7 (tests met: date, month)"_s;
    QTest::newRow("narrow_day_name")
        << english << QString() << u"M"_s << u"Day <= M (tests met: date)"_s;
    QTest::newRow("narrow_day_name_is_none_in_C")
        << plain << QString() << u"M"_s << u"Unknown <= M (tests met: none)"_s;
    QTest::newRow("narrow_day_name_by_option")
        << plain << u"en_US"_s << u"M"_s << u"Day <= M (tests met: date)"_s;
    QTest::newRow("system_days_count_beside_the_option")
        << english << u"de_DE"_s << u"Monday"_s << u"Day <= Monday (tests met: date)"_s;
    QTest::newRow("system_months_do_not")
        << english << u"de_DE"_s << u"July"_s << u"Unknown <= July (tests met: none)"_s;
}

void tst_vlfolio_classify::explains()
{
    QFETCH(QString, systemLocale);
    QFETCH(QString, locale);
    QFETCH(QString, name);
    QFETCH(QString, output);

    const QStringList options =
        locale.isEmpty() ? QStringList() : QStringList { u"--locale"_s, locale };
    const auto outcome = program(options + QStringList { u"--explain"_s, name })
                             .with(u"LC_ALL"_s, systemLocale)
                             .run();

    QCOMPARE(outcome.output, (output + u'\n').toUtf8());
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::explainTouchesNoFile()
{
    PictureTree tree;
    tree.addPictures();
    tree.setMode(u"pics"_s, 0000);

    // Neither a folder that may not be entered nor names that are not there make a difference, and
    // a name after "--" is one even if it looks like an option.
    const auto outcome =
        program({ u"--explain"_s, u"pics"_s, u"no such 2019"_s, u"--"_s, u"--list"_s })
            .in(tree.path())
            .before(&ChildSteps::obeyPermissions)
            .run();

    if (outcome.exitCode == HostProgram::setUpFailed)
        QSKIP("The superuser's rights cannot be dropped here.");
    QCOMPARE(outcome.output,
             QByteArray("Unknown <= pics (tests met: none)\n"
                        "Year <= no such 2019 (tests met: year)\n"
                        "Unknown <= --list (tests met: none)\n"));
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::localeName_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("monthName");
    QTest::addColumn<bool>("known");

    const QString german = u"Juli"_s;
    const QString english = u"July"_s;
    QTest::newRow("language_and_territory") << u"de_DE"_s << german << true;
    QTest::newRow("language") << u"de"_s << german << true;
    QTest::newRow("hyphen") << u"de-DE"_s << german << true;
    QTest::newRow("character_set_is_ignored") << u"de_DE.UTF-8"_s << german << true;
    QTest::newRow("script") << u"de_Latn_DE"_s << german << true;
    QTest::newRow("chinese_with_script") << u"zh_Hans_CN"_s << u"七月"_s << true;
    QTest::newRow("french") << u"fr_FR"_s << u"juillet"_s << true;
    QTest::newRow("territory_by_number") << u"es_419"_s << u"julio"_s << true;
    QTest::newRow("C") << u"C"_s << english << true;
    QTest::newRow("C_with_character_set") << u"C.UTF-8"_s << english << true;
    QTest::newRow("POSIX") << u"POSIX"_s << english << true;
    for (const auto* const name :
         { "xx", "de_XX", "jp", "uk_GB", "German", "c", "de_", "_DE", "de__DE", "de_DE_", "de DE",
           "zh_Hant_CN", "de_Hans", "de_DE@euro", "en_US_POSIX", "" }) {
        QTest::addRow("unknown_%s", *name == '\0' ? "empty" : name)
            << QString::fromLatin1(name) << german << false;
    }
}

void tst_vlfolio_classify::localeName()
{
    QFETCH(QString, locale);
    QFETCH(QString, monthName);
    QFETCH(bool, known);

    // The system's own language has none of these names.
    const auto outcome = program({ u"--locale"_s, locale, u"--explain"_s, monthName })
                             .with(u"LC_ALL"_s, u"hu_HU.UTF-8"_s)
                             .run();

    const QString unknown = u"unknown locale '%1'. Try 'vlfolio-classify --help'."_s.arg(locale);
    QCOMPARE(outcome.output,
             known ? u"Month <= %1 (tests met: month)\n"_s.arg(monthName).toUtf8() : QByteArray());
    QCOMPARE(outcome.error, known ? QByteArray() : failure(unknown));
    QCOMPARE(outcome.exitCode, known ? 0 : 2);
}

void tst_vlfolio_classify::systemLocaleIsNotUtf8_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QByteArray>("output");

    const QByteArray month = "Month <= März (tests met: month)\n";
    const QByteArray unknown = "Unknown <= März (tests met: none)\n";
    QTest::newRow("other_character_set") << u"de_DE.ISO-8859-1"_s << month;
    QTest::newRow("not_installed") << u"xx_YY.UTF-8"_s << unknown;
    QTest::newRow("none") << u"C"_s << unknown;
}

void tst_vlfolio_classify::systemLocaleIsNotUtf8()
{
    QFETCH(QString, locale);
    QFETCH(QByteArray, output);

    const auto outcome = program({ u"--explain"_s, u"März"_s }).with(u"LC_ALL"_s, locale).run();

    QCOMPARE(outcome.output, output);
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    const QString pics = u"pics"_s;
    QTest::newRow("nothing") << QStringList {} << u"no directory given"_s;
    QTest::newRow("empty_directory") << QStringList { QString() } << u"no directory given"_s;
    QTest::newRow("two_directories")
        << QStringList { pics, u"b"_s }
        << u"more than one directory given: 'b' (does a path with blanks lack quotes?)"_s;
    QTest::newRow("option_after_the_end_of_options")
        << QStringList { pics, u"--"_s, u"--list"_s }
        << u"more than one directory given: '--list' (does a path with blanks lack quotes?)"_s;
    QTest::newRow("list_without_directory")
        << QStringList { u"--list"_s } << u"no directory given"_s;
    QTest::newRow("explain_without_name")
        << QStringList { u"--explain"_s } << u"--explain needs a folder name"_s;
    QTest::newRow("unknown_option")
        << QStringList { u"--nope"_s, pics } << u"unknown option '--nope'"_s;
    QTest::newRow("unknown_option_with_value")
        << QStringList { u"--nope=3"_s, pics } << u"unknown option '--nope=3'"_s;
    QTest::newRow("first_of_two_unknown_options")
        << QStringList { u"--no"_s, u"--nope"_s, pics } << u"unknown option '--no'"_s;
    QTest::newRow("unknown_short_option")
        << QStringList { u"-x"_s, pics } << u"unknown option '-x'"_s;
    QTest::newRow("one_dash_before_a_long_name")
        << QStringList { u"-list"_s, pics } << u"unknown option '-list'"_s;
    QTest::newRow("unknown_option_behind_its_letter")
        << QStringList { u"x"_s, u"--explain"_s, u"-x"_s } << u"unknown option '-x'"_s;
    QTest::newRow("unknown_letter_among_known_ones")
        << QStringList { u"-v"_s, u"-hxv"_s, pics } << u"unknown option '-hxv'"_s;
    QTest::newRow("unknown_letter_is_half_a_character")
        << QStringList { u"-😀"_s, pics } << u"unknown option '-😀'"_s;
    QTest::newRow("long_option_without_name")
        << QStringList { u"--="_s, pics } << u"unknown option '--='"_s;
    QTest::newRow("long_option_without_name_behind_a_short_one")
        << QStringList { u"-h"_s, u"--="_s } << u"unknown option '--='"_s;
    QTest::newRow("long_option_without_name_behind_a_dash")
        << QStringList { u"-"_s, u"--=3"_s } << u"unknown option '--=3'"_s;
    QTest::newRow("equals_sign_as_letter")
        << QStringList { u"-=y"_s, pics } << u"unknown option '-=y'"_s;
    QTest::newRow("unknown_letter_behind_a_value_with_it")
        << QStringList { u"--locale"_s, u"-large"_s, u"-l"_s, pics } << u"unknown option '-l'"_s;
    QTest::newRow("unknown_option_behind_a_value_with_it")
        << QStringList { u"--locale"_s, u"-nope"_s, u"--nope"_s, pics }
        << u"unknown option '--nope'"_s;
    QTest::newRow("unknown_option_beside_help")
        << QStringList { u"--help"_s, u"--nope"_s } << u"unknown option '--nope'"_s;
    QTest::newRow("control_character_is_escaped")
        << QStringList { u"--a\033b"_s, pics } << u"unknown option '--a\\u001bb'"_s;
    QTest::newRow("missing_type") << QStringList { pics, u"--list"_s, u"--type"_s }
                                  << u"missing value after '--type'"_s;
    QTest::newRow("missing_locale")
        << QStringList { pics, u"--locale"_s } << u"missing value after '--locale'"_s;
    QTest::newRow("value_too_many")
        << QStringList { u"--list=3"_s, pics } << u"unexpected value after '--list'"_s;
    QTest::newRow("unknown_type") << QStringList { u"--list"_s, u"--type"_s, u"Week"_s, pics }
                                  << u"unknown type 'Week'"_s;
    QTest::newRow("part_of_a_type") << QStringList { u"--list"_s, u"--type"_s, u"Project"_s, pics }
                                    << u"unknown type 'Project'"_s;
    QTest::newRow("empty_type") << QStringList { u"--list"_s, u"--type="_s, pics }
                                << u"unknown type ''"_s;
    QTest::newRow("type_with_report") << QStringList { u"--type"_s, u"Day"_s, pics }
                                      << u"--type goes with --list, --json or --summary only"_s;
    QTest::newRow("type_with_explain")
        << QStringList { u"--type"_s, u"Day"_s, u"--explain"_s, pics }
        << u"--type goes with --list, --json or --summary only"_s;
    QTest::newRow("open_and_no_open") << QStringList { u"--no-open"_s, u"--open"_s, pics }
                                      << u"--open and --no-open do not go together"_s;
    QTest::newRow("open_with_list")
        << QStringList { u"--open"_s, u"--list"_s, pics } << u"--open goes with a report only"_s;
    QTest::newRow("open_with_json")
        << QStringList { u"--open"_s, u"--json"_s, pics } << u"--open goes with a report only"_s;
    QTest::newRow("open_with_summary")
        << QStringList { u"--open"_s, u"--summary"_s, pics } << u"--open goes with a report only"_s;
    QTest::newRow("open_with_explain")
        << QStringList { u"--open"_s, u"--explain"_s, pics } << u"--open goes with a report only"_s;
    QTest::newRow("list_and_json") << QStringList { u"--json"_s, u"--list"_s, pics }
                                   << u"--list and --json do not go together"_s;
    QTest::newRow("list_and_summary") << QStringList { u"--list"_s, u"--summary"_s, pics }
                                      << u"--list and --summary do not go together"_s;
    QTest::newRow("why_with_report")
        << QStringList { u"--why"_s, pics } << u"--why goes with --list only"_s;
    QTest::newRow("why_with_json")
        << QStringList { u"--json"_s, u"--why"_s, pics } << u"--why goes with --list only"_s;
    QTest::newRow("explain_a_path")
        << QStringList { u"--explain"_s, u"2019"_s, u"2019/07"_s }
        << u"'2019/07' is a path, --explain takes names only; --list --why explains the folders in "
           "a directory"_s;
    QTest::newRow("explain_a_name_with_a_slash_at_its_end")
        << QStringList { u"--explain"_s, u"2019/"_s }
        << u"'2019/' is a path, --explain takes names only; --list --why explains the folders in "
           "a directory"_s;
    QTest::newRow("json_and_explain") << QStringList { u"--explain"_s, u"--json"_s, pics }
                                      << u"--json and --explain do not go together"_s;
}

void tst_vlfolio_classify::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const PictureTree tree;
    tree.addFolder(u"pics"_s);

    const auto outcome = program(arguments).in(tree.path()).with(desktop()).run();

    QCOMPARE(outcome.error, failure(error + u". Try 'vlfolio-classify --help'."_s));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(outcome.opened, QByteArray());
    QVERIFY(!tree.exists(u"pics/"_s + reportName));
}

void tst_vlfolio_classify::directoryProblem_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("error");

    const QString longName(300, u'x');
    QTest::newRow("missing") << u"missing"_s << u"{}/missing: it does not exist"_s;
    QTest::newRow("missing_absolute") << u"{}/missing/"_s << u"{}/missing: it does not exist"_s;
    QTest::newRow("looks_like_an_option") << u"--list"_s << u"{}/--list: it does not exist"_s;
    QTest::newRow("up_from_missing") << u"missing/.."_s << u"{}/missing/..: it does not exist"_s;
    QTest::newRow("line_feed_in_the_name")
        << u"no\nsuch"_s << u"{}/no\\u000asuch: it does not exist"_s;
    QTest::newRow("dangling_link") << u"dangling"_s << u"{}/dangling: it does not exist"_s;
    QTest::newRow("link_to_itself") << u"loop"_s << u"{}/loop: Too many levels of symbolic links"_s;
    QTest::newRow("file") << u"file"_s << u"{}/file: it is not a directory"_s;
    QTest::newRow("file_with_slash") << u"file/"_s << u"{}/file: it is not a directory"_s;
    QTest::newRow("up_from_file") << u"file/.."_s << u"{}/file/..: Not a directory"_s;
    QTest::newRow("below_file") << u"file/x"_s << u"{}/file/x: Not a directory"_s;
    QTest::newRow("link_to_file") << u"tofile"_s << u"{}/tofile: it is not a directory"_s;
    QTest::newRow("name_too_long") << longName << u"{}/%1: File name too long"_s.arg(longName);
    QTest::newRow("closed") << u"closed"_s << u"{}/closed: Permission denied"_s;
    QTest::newRow("not_listed") << u"unlisted"_s << u"{}/unlisted: Permission denied"_s;
    QTest::newRow("not_entered") << u"unentered"_s << u"{}/unentered: Permission denied"_s;
    QTest::newRow("below_closed") << u"closed/in"_s << u"{}/closed/in: Permission denied"_s;
    QTest::newRow("up_from_closed") << u"closed/in/.."_s << u"{}/closed/in/..: Permission denied"_s;
}

void tst_vlfolio_classify::directoryProblem()
{
    QFETCH(QString, directory);
    QFETCH(QString, error);
    PictureTree tree;
    tree.addFile(u"file"_s);
    tree.addLink(u"file"_s, u"tofile"_s);
    tree.addLink(u"loop"_s, u"loop"_s);
    tree.addLink(u"nowhere"_s, u"dangling"_s);
    for (const auto& [name, mode] :
         { std::pair(u"closed/in"_s, 0700U), std::pair(u"closed"_s, 0000U),
           std::pair(u"unlisted"_s, 0300U), std::pair(u"unentered"_s, 0600U) }) {
        tree.addFolder(name);
        tree.setMode(name, mode);
    }

    for (const auto& option : { u"--no-open"_s, u"--list"_s, u"--json"_s, u"--summary"_s }) {
        const auto outcome = program({ option, u"--"_s, tree.filled(directory) })
                                 .in(tree.path())
                                 .before(&ChildSteps::obeyPermissions)
                                 .run();
        if (outcome.exitCode == HostProgram::setUpFailed)
            QSKIP("The superuser's rights cannot be dropped here.");
        QCOMPARE(outcome.error, failure(tree.filled(u"cannot classify "_s + error)));
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.exitCode, 1);
    }
}

void tst_vlfolio_classify::workingDirectoryIsRemoved_data()
{
    QTest::addColumn<QString>("directory");

    QTest::newRow("itself") << u"."_s;
    QTest::newRow("itself_with_slash") << u"./"_s;
    QTest::newRow("below") << u"2019"_s;
    QTest::newRow("up") << u".."_s;
    QTest::newRow("up_and_down") << u"../2019"_s;
}

void tst_vlfolio_classify::workingDirectoryIsRemoved()
{
    QFETCH(QString, directory);
    const PictureTree tree;
    tree.addFolder(u"2019"_s);
    const QByteArray gone = tree.path(u"gone"_s).toUtf8();

    for (const auto& option : { u"--no-open"_s, u"--list"_s, u"--json"_s, u"--summary"_s }) {
        tree.addFolder(u"gone"_s);
        const auto outcome = program({ option, directory })
                                 .in(tree.path(u"gone"_s))
                                 .before([&] { ::rmdir(gone.constData()); })
                                 .run();

        QCOMPARE(outcome.error,
                 failure(u"cannot classify %1: its path cannot be found (was the working directory "
                         "removed?)"_s.arg(directory)));
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.exitCode, 1);
    }
}

void tst_vlfolio_classify::directoryNameIsNotUtf8()
{
    const PictureTree tree;
    const QByteArray name = QFile::encodeName(tree.path(u"bad"_s)) + "\xff";
    if (::mkdir(name.constData(), 0755) != 0)
        QSKIP("The file system takes names in UTF-8 only");

    // Qt would not pass the name on as it is; a shell does.
    QProcess shell;
    shell.setWorkingDirectory(tree.path());
    shell.start(u"/bin/sh"_s,
                { u"-c"_s, u"exec \"$0\" --list \"$(printf 'bad\\377')\""_s,
                  QStringLiteral(VLFOLIO_PROGRAM) });
    QVERIFY(shell.waitForFinished());

    QCOMPARE(shell.readAllStandardError(),
             failure(tree.filled(u"cannot classify {}/bad\ufffd: it does not exist, or its name is "
                                 "not UTF-8"_s)));
    QCOMPARE(shell.exitCode(), 1);
    QCOMPARE(::rmdir(name.constData()), 0);
}

void tst_vlfolio_classify::directoryFails_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("text");

    const QString broken = u"Input/output error"_s;
    QTest::newRow("cannot_be_looked_at") << u"stat"_s << EIO << broken;
    QTest::newRow("cannot_be_opened") << u"open"_s << EIO << broken;
    QTest::newRow("no_descriptor_is_free") << u"open"_s << EMFILE << u"Too many open files"_s;
    QTest::newRow("cannot_be_tried") << u"access"_s << EIO << broken;
}

void tst_vlfolio_classify::directoryFails()
{
#if defined(VLFOLIO_FAILING_CALLS)
    QFETCH(QString, call);
    QFETCH(int, error);
    QFETCH(QString, text);
    const PictureTree tree;
    tree.addPictures();
    const QString pics = tree.path(u"pics"_s);

    for (const auto& option : { u"--no-open"_s, u"--json"_s }) {
        const auto outcome = program({ option, pics }).with(failingCall(call, error, pics)).run();
        QCOMPARE(outcome.error, "failed\n" + failure(u"cannot classify %1: %2"_s.arg(pics, text)));
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.exitCode, 1);
    }
#else
    QSKIP("Calls of the system cannot be made to fail here.");
#endif
}

void tst_vlfolio_classify::omissionsAreTold_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("expectedOutput");

    QTest::newRow("report") << u"--no-open"_s << "{}/pics/vela.classification.results.html\n"_ba;
    QTest::newRow("list")
        << u"--list"_s
        << "   Root <= \nUnknown <= closed\nUnknown <= odd\nUnknown <= odd/good\n"_ba;
    QTest::newRow("json_of_one_type") << u"--json --type Root"_s
                                      << "{\"files\":0,\"occasions\":[],\"ownType\":\"Root\","
                                         "\"path\":\"{}/pics\",\"relativePath\":\"\",\"tests\":[],"
                                         "\"type\":\"Root\",\"value\":1}\n"_ba;
    QTest::newRow("json")
        << u"--json"_s
        << "{\"files\":0,\"occasions\":[],\"ownType\":\"Root\",\"path\":\"{}/"
           "pics\",\"relativePath\":\"\",\"tests\":[],"
           "\"type\":\"Root\",\"value\":1}\n"
           "{\"files\":0,\"incomplete\":[\"unreadable\"],\"occasions\":[],\"ownType\":\"Unknown\","
           "\"path\":\"{}/pics/closed\",\"relativePath\":\"closed\",\"tests\":[],"
           "\"type\":\"Unknown\",\"value\":0}\n"
           "{\"files\":0,\"incomplete\":[\"undecodableNames\"],\"occasions\":[],\"ownType\":"
           "\"Unknown\","
           "\"path\":\"{}/pics/odd\",\"relativePath\":\"odd\",\"tests\":[],"
           "\"type\":\"Unknown\",\"value\":0}\n"
           "{\"files\":0,\"occasions\":[],\"ownType\":\"Unknown\",\"path\":\"{}/pics/odd/good\","
           "\"relativePath\":\"odd/good\",\"tests\":[],\"type\":\"Unknown\",\"value\":0}\n"_ba;
    QTest::newRow("summary") << u"--summary --type Root"_s << "Root          1\n"_ba;
}

void tst_vlfolio_classify::omissionsAreTold()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, expectedOutput);

    PictureTree tree;
    tree.addFolder(u"pics/closed/inside"_s);
    tree.addFolder(u"pics/odd/good"_s);
    const QByteArray oddName = QFile::encodeName(tree.path(u"pics/odd/"_s)) + "bad\xff";
    if (::mkdir(oddName.constData(), 0755) != 0)
        QSKIP("The file system takes names in UTF-8 only");
    tree.setMode(u"pics/closed"_s, 0);

    const HostProgram::Outcome outcome = program(option.split(u' ') << tree.path(u"pics"_s))
                                             .before(&ChildSteps::obeyPermissions)
                                             .run();

    QCOMPARE(
        outcome.error,
        tree.filled(
                u"vlfolio-classify: cannot read {}/pics/closed: Permission denied; what is in it "
                "is left out\n"
                "vlfolio-classify: {}/pics/odd holds names that are not UTF-8: folders of "
                "such names are left out\n"_s)
            .toUtf8());
    QCOMPARE(outcome.output, tree.filled(QString::fromUtf8(expectedOutput)).toUtf8());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(::rmdir(oddName.constData()), 0);
}

void tst_vlfolio_classify::reportCannotBeWritten_data()
{
    QTest::addColumn<bool>("directoryInTheWay");
    QTest::addColumn<bool>("oldReport");
    QTest::addColumn<unsigned>("mode");
    QTest::addColumn<QString>("reason");

    QTest::newRow("not_writable") << false << false << 0500U << u"Permission denied"_s;
    QTest::newRow("old_report_in_what_is_not_writable")
        << false << true << 0500U << u"Permission denied; the old one could not be replaced"_s;
    QTest::newRow("directory_of_that_name")
        << true << false << 0700U << u"a directory has that name; rename or remove it"_s;
}

void tst_vlfolio_classify::reportCannotBeWritten()
{
    QFETCH(bool, directoryInTheWay);
    QFETCH(bool, oldReport);
    QFETCH(unsigned, mode);
    QFETCH(QString, reason);
    PictureTree tree;
    tree.addFolder(u"pics/2019"_s);
    const QString report = u"pics/"_s + reportName;
    if (directoryInTheWay)
        tree.addFolder(report + u"/kept"_s);
    if (oldReport) {
        tree.addFile(report, "old");
        tree.setMode(report, 0400);
    }
    tree.setMode(u"pics"_s, mode);

    const auto outcome =
        program({ u"--open"_s, tree.path(u"pics"_s) }).before(&ChildSteps::obeyPermissions).run();

    if (outcome.exitCode == HostProgram::setUpFailed)
        QSKIP("The superuser's rights cannot be dropped here.");
    QCOMPARE(outcome.error,
             failure(u"cannot write the report %1: %2"_s.arg(tree.path(report), reason)));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.opened, QByteArray());
    QCOMPARE(tree.exists(report), directoryInTheWay || oldReport);
    if (oldReport)
        QCOMPARE(tree.content(report), QByteArray("old"));
}

void tst_vlfolio_classify::onlyFilesAreWrittenInto_data()
{
    QTest::addColumn<QString>("linkTarget");
    QTest::addColumn<bool>("stays");

    // Without a target: a pipe that nobody reads, where opening would never end.
    QTest::newRow("pipe_goes") << QString() << false;
    QTest::newRow("pipe_stays") << QString() << true;
    QTest::newRow("link_to_a_file_goes") << u"{}/elsewhere"_s << false;
    QTest::newRow("link_to_a_file_stays") << u"{}/elsewhere"_s << true;
    QTest::newRow("link_to_nothing_goes") << u"{}/nothing"_s << false;
    QTest::newRow("link_to_nothing_stays") << u"{}/nothing"_s << true;
}

void tst_vlfolio_classify::onlyFilesAreWrittenInto()
{
    QFETCH(QString, linkTarget);
    QFETCH(bool, stays);
    PictureTree tree;
    tree.addPictures();
    tree.addFile(u"elsewhere"_s, "kept");
    const QString report = u"pics/"_s + reportName;
    if (!linkTarget.isEmpty())
        tree.addLink(tree.filled(linkTarget), report);
    else
        QCOMPARE(mkfifo(QFile::encodeName(tree.path(report)).constData(), 0600), 0);
    if (stays)
        tree.setMode(u"pics"_s, 0500);

    const auto outcome =
        program({ tree.path(u"pics"_s) }).before(&ChildSteps::obeyPermissions).run();

    if (outcome.exitCode == HostProgram::setUpFailed)
        QSKIP("The superuser's rights cannot be dropped here.");
    const QString reason = u"Permission denied; what has that name is no file and stays"_s;
    const QByteArray line = (tree.path(report) + u'\n').toUtf8();
    QCOMPARE(outcome.error,
             stays ? failure(u"cannot write the report %1: %2"_s.arg(tree.path(report), reason))
                   : QByteArray());
    QCOMPARE(outcome.output, stays ? QByteArray() : line);
    QCOMPARE(outcome.exitCode, stays ? 1 : 0);
    QCOMPARE(tree.content(u"elsewhere"_s), QByteArray("kept"));
    QVERIFY(!tree.exists(u"nothing"_s));
    if (!stays) {
        QCOMPARE(tree.content(report), tree.filled(QString::fromUtf8(picturesReport)).toUtf8());
    }
}

void tst_vlfolio_classify::logRulesHideNoFailure_data()
{
    QTest::addColumn<Environment>("environment");

    QTest::newRow("no_warnings") << Environment { { u"QT_LOGGING_RULES"_s, u"*.warning=false"_s } };
    QTest::newRow("no_debug") << Environment { { u"QT_LOGGING_RULES"_s,
                                                 u"default.debug=false"_s } };
    QTest::newRow("nothing_at_all") << Environment { { u"QT_LOGGING_RULES"_s, u"*=false"_s } };
    QTest::newRow("other_pattern")
        << Environment { { u"QT_MESSAGE_PATTERN"_s, u"%{type} \"%{message}\" \"x\""_s } };
}

void tst_vlfolio_classify::logRulesHideNoFailure()
{
    QFETCH(Environment, environment);
    PictureTree tree;
    const QString report = u"pics/"_s + reportName;
    tree.addFolder(u"pics"_s);
    tree.addFile(report, "old");
    tree.setMode(report, 0400);
    tree.setMode(u"pics"_s, 0500);

    const auto outcome = program({ tree.path(u"pics"_s) })
                             .with(environment)
                             .before(&ChildSteps::obeyPermissions)
                             .run();

    if (outcome.exitCode == HostProgram::setUpFailed)
        QSKIP("The superuser's rights cannot be dropped here.");
    QCOMPARE(outcome.error,
             failure(u"cannot write the report %1: Permission denied; the old one could not be "
                     "replaced"_s.arg(tree.path(report))));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
}

void tst_vlfolio_classify::reportIsIncomplete()
{
    const PictureTree tree;
    tree.addPictures();

    const auto outcome = program({ u"--open"_s, tree.path(u"pics"_s) })
                             .before([] { ChildSteps::limitFileSize(1000); })
                             .run();

    QCOMPARE(outcome.error,
             failure(tree.filled(u"cannot write the report {}/pics/%1: it is incomplete, the disk "
                                 "may be full"_s.arg(reportName))));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.opened, QByteArray());
}

void tst_vlfolio_classify::fullFileSystem()
{
    const PictureTree tree;
    tree.addFolder(u"pics"_s);
    const QByteArray directory = tree.path(u"pics"_s).toUtf8();

    const auto outcome = program({ u"."_s })
                             .before([&] { ChildSteps::mountOver(directory.constData(), false); })
                             .run();

    if (outcome.exitCode == HostProgram::setUpFailed)
        QSKIP("No file system of its own can be mounted here.");
    QCOMPARE(outcome.error,
             failure(tree.filled(u"cannot write the report {}/pics/%1: it is incomplete, the disk "
                                 "may be full"_s.arg(reportName))));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
}

void tst_vlfolio_classify::readOnlyFileSystem()
{
    const PictureTree tree;
    tree.addFolder(u"pics"_s);
    const QByteArray directory = tree.path(u"pics"_s).toUtf8();

    const auto outcome = program({ u"."_s })
                             .before([&] { ChildSteps::mountOver(directory.constData(), true); })
                             .run();

    if (outcome.exitCode == HostProgram::setUpFailed)
        QSKIP("No file system of its own can be mounted here.");
    QCOMPARE(outcome.error,
             failure(tree.filled(
                 u"cannot write the report {}/pics/%1: Read-only file system"_s.arg(reportName))));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
}

void tst_vlfolio_classify::standardOutputIsFull_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("report") << QStringList { u"pics"_s };
    QTest::newRow("list") << QStringList { u"--list"_s, u"pics"_s };
    QTest::newRow("json") << QStringList { u"--json"_s, u"pics"_s };
    QTest::newRow("summary") << QStringList { u"--summary"_s, u"pics"_s };
    QTest::newRow("explain") << QStringList { u"--explain"_s, u"pics"_s };
    QTest::newRow("help") << QStringList { u"--help"_s };
    QTest::newRow("version") << QStringList { u"--version"_s };
    // More than the C library gathers before it writes.
    QTest::newRow("long_output") << QStringList { u"--explain"_s, QString(100'000, u'x'), u"y"_s };
}

void tst_vlfolio_classify::standardOutputIsFull()
{
    if (!QFileInfo::exists(u"/dev/full"_s))
        QSKIP("There is no /dev/full here.");
    QFETCH(QStringList, arguments);
    const PictureTree tree;
    tree.addPictures();

    const auto outcome = program(arguments).in(tree.path()).outputFile(u"/dev/full"_s).run();

    QCOMPARE(outcome.error, failure(u"cannot write to standard output: No space left on device"_s));
    QCOMPARE(outcome.exitCode, 1);
}

void tst_vlfolio_classify::standardOutputIsClosed()
{
    const PictureTree tree;
    tree.addPictures();

    const auto outcome =
        program({ tree.path(u"pics"_s) }).before([] { close(STDOUT_FILENO); }).run();

    QCOMPARE(outcome.error, failure(u"cannot write to standard output: Bad file descriptor"_s));
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(tree.content(u"pics/"_s + reportName),
             tree.filled(QString::fromUtf8(picturesReport)).toUtf8());
}

void tst_vlfolio_classify::nobodyReads_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("report") << QStringList { u"pics"_s };
    QTest::newRow("list") << QStringList { u"--list"_s, u"pics"_s };
    QTest::newRow("json") << QStringList { u"--json"_s, u"pics"_s };
    QTest::newRow("summary") << QStringList { u"--summary"_s, u"pics"_s };
    QTest::newRow("help") << QStringList { u"--help"_s };
    QTest::newRow("long_output") << QStringList { u"--explain"_s, QString(100'000, u'x'), u"y"_s };
}

void tst_vlfolio_classify::nobodyReads()
{
    QFETCH(QStringList, arguments);
    const PictureTree tree;
    tree.addPictures();

    const auto ended = program(arguments).in(tree.path()).before(&ChildSteps::closedPipe).run();
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.exitCode, -SIGPIPE);

    const auto ignoring = program(arguments)
                              .in(tree.path())
                              .ignoringClosedPipes()
                              .before(&ChildSteps::closedPipe)
                              .run();
    QCOMPARE(ignoring.error, QByteArray());
    QCOMPARE(ignoring.exitCode, 1);
}

void tst_vlfolio_classify::terminalShowsNamesEscaped_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("shown");

    const QString escaped = u"a\"b\\c\\u001b[31m\\u000ad\\u007f\\u202egpj.exe"_s;
    const QString escapedJson = u"a\\\"b\\\\c\\u001b[31m\\nd\\u007f\\u202egpj.exe"_s;
    QTest::newRow("list") << QStringList { u"--list"_s, u"."_s }
                          << u"   Root <= \nUnknown <= %1\n"_s.arg(escaped);
    QTest::newRow("json")
        << QStringList { u"--json"_s, u"--type=Unknown"_s, u"."_s }
        << u"{\"files\":0,\"occasions\":[],\"ownType\":\"Unknown\",\"path\":\"{}/%1\","
           "\"relativePath\":\"%1\",\"tests\":[],\"type\":\"Unknown\",\"value\":0}\n"_s.arg(
               escapedJson);
    QTest::newRow("report") << QStringList { trickyName }
                            << u"{}/%1/%2\n"_s.arg(escaped, reportName);
    QTest::newRow("explain") << QStringList { u"--explain"_s, trickyName }
                             << u"Unknown <= %1 (tests met: none)\n"_s.arg(escaped);
    const QString steering = u"\u0080\u009b\u061c\u200e\u200f\u2028\u2029\u202a\u202b\u202c"
                             "\u202d\u2066\u2067\u2068\u2069"_s;
    for (const QChar character : steering) {
        const QString code = u"%1"_s.arg(uint(character.unicode()), 4, 16, QChar(u'0'));
        QTest::addRow("u%s", qPrintable(code))
            << QStringList { u"--explain"_s, u"a"_s + character }
            << u"Unknown <= a\\u%1 (tests met: none)\n"_s.arg(code);
    }
    QTest::newRow("other_characters_stay")
        << QStringList { u"--explain"_s, u"ä 日本 עברית 😀 e\u0301"_s }
        << u"Unknown <= ä 日本 עברית 😀 e\u0301 (tests met: none)\n"_s;
}

void tst_vlfolio_classify::terminalShowsNamesEscaped()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, shown);
    const PictureTree tree;
    tree.addFolder(trickyName);

    const auto outcome = program(arguments).in(tree.path()).output(Stream::Terminal).run();

    QCOMPARE(outcome.terminal, tree.filled(shown).toUtf8());
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::pipedNamesAreRaw()
{
    const PictureTree tree;
    tree.addFolder(trickyName);

    const auto list =
        program({ u"--list"_s, u"."_s }).in(tree.path()).error(Stream::Terminal).run();
    QCOMPARE(list.output, (u"   Root <= \nUnknown <= "_s + trickyName + u'\n').toUtf8());
    QCOMPARE(list.terminal, QByteArray());

    const auto report = program({ trickyName }).in(tree.path()).run();
    QCOMPARE(report.output, (tree.path() + u'/' + trickyName + u'/' + reportName + u'\n').toUtf8());
}

void tst_vlfolio_classify::shortRunIsSilentOnTerminal()
{
    const PictureTree tree;
    tree.addFolder(u"pics"_s);

    // The look at the directory and the walk: long enough to be seen, and still a short run.
    const auto outcome = program({ tree.path(u"pics"_s) })
                             .output(Stream::Terminal)
                             .error(Stream::Terminal)
                             .with(slowListings(2))
                             .run();

    QCOMPARE(outcome.terminal, tree.filled(u"{}/pics/"_s + reportName + u'\n').toUtf8());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::longRunShowsProgress()
{
    const PictureTree tree;
    tree.addPictures();

    const auto outcome =
        program({ tree.path(u"pics"_s) }).error(Stream::Terminal).with(slowListings(100)).run();

    static const QRegularExpression progress(
        uR"(\A(\r\x1b\[KWalking the folders \.\.\.)+)"
        R"((\r\x1b\[KWriting the report: folder (\d|1[012]))+\r\x1b\[K\z)"_s);
    QVERIFY2(progress.match(QString::fromUtf8(outcome.terminal)).hasMatch(),
             outcome.terminal.toPercentEncoding().constData());
    QCOMPARE(outcome.output, tree.filled(u"{}/pics/"_s + reportName + u'\n').toUtf8());
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::progressIsNotNeeded()
{
    if (underSanitizer)
        QSKIP("A sanitizer takes memory of its own");
    const PictureTree tree;
    tree.addPictures();

    // Enough for a small tree, but not for the stack of a second thread.
    const auto outcome = program({ u"--list"_s, tree.path(u"pics"_s) })
                             .error(Stream::Terminal)
                             .before([] { ChildSteps::limitMemory(4UL * 1024 * 1024); })
                             .run();

    if (outcome.exitCode == HostProgram::setUpFailed)
        QSKIP("Memory cannot be limited here");
    QCOMPARE(outcome.terminal, QByteArray());
    QCOMPARE(outcome.output, picturesList);
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::progressTakesNoMemory()
{
    if (underSanitizer)
        QSKIP("A sanitizer gives memory of its own");
    const PictureTree tree;
    tree.addPictures();
    Environment environment = slowListings(100);
    environment[u"LD_PRELOAD"_s] += u':' + QStringLiteral(VLFOLIO_ONE_THREADS_MEMORY);

    const auto outcome = program({ u"--list"_s, tree.path(u"pics"_s) })
                             .error(Stream::Terminal)
                             .with(environment)
                             .run();

    static const QRegularExpression progress(
        uR"(\A(\r\x1b\[KWalking the folders \.\.\.)+)"
        R"((\r\x1b\[KReading folder (\d|1[012]))+\r\x1b\[K\z)"_s);
    QVERIFY2(progress.match(QString::fromUtf8(outcome.terminal)).hasMatch(),
             outcome.terminal.toPercentEncoding().constData());
    QCOMPARE(outcome.output, picturesList);
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::argumentsNeedMemory()
{
    if (underSanitizer)
        QSKIP("A sanitizer takes memory of its own");
    // More than the program may take once it has begun.
    const QStringList names(10, QString(100'000, u'x'));

    const auto outcome = program(QStringList { u"--explain"_s } + names)
                             .before([] { ChildSteps::limitMemory(2UL * 1024 * 1024); })
                             .run();

    if (outcome.exitCode == HostProgram::setUpFailed)
        QSKIP("Memory cannot be limited here");
    QCOMPARE(outcome.error, QByteArray("vlfolio-classify: out of memory\n"));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
}

void tst_vlfolio_classify::longRunIsSilentOffTerminal()
{
    const PictureTree tree;
    tree.addPictures();

    // Standard output alone being a terminal is not enough.
    const auto outcome = program({ u"--summary"_s, u"--type=Year"_s, tree.path(u"pics"_s) })
                             .output(Stream::Terminal)
                             .with(slowListings(5))
                             .run();

    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.terminal, QByteArray("Year          1\n"));
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::longRunIsSilentWhereLinesStay_data()
{
    QTest::addColumn<QString>("terminal");

    QTest::newRow("dumb") << u"dumb"_s;
    QTest::newRow("unknown") << QString();
}

void tst_vlfolio_classify::longRunIsSilentWhereLinesStay()
{
    QFETCH(QString, terminal);
    const PictureTree tree;
    tree.addPictures();

    const auto outcome = program({ u"--summary"_s, u"--type=Year"_s, tree.path(u"pics"_s) })
                             .error(Stream::Terminal)
                             .with(slowListings(5))
                             .with(u"TERM"_s, terminal)
                             .run();

    QCOMPARE(outcome.terminal, QByteArray());
    QCOMPARE(outcome.output, QByteArray("Year          1\n"));
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::nothingIsColoured_data()
{
    QTest::addColumn<Environment>("environment");

    QTest::newRow("plain") << Environment {};
    QTest::newRow("no_color") << Environment { { u"NO_COLOR"_s, u"1"_s } };
    QTest::newRow("forced_color") << Environment { { u"CLICOLOR_FORCE"_s, u"1"_s } };
}

void tst_vlfolio_classify::nothingIsColoured()
{
    QFETCH(Environment, environment);
    const PictureTree tree;
    tree.addPictures();

    for (const auto& option :
         { u"--no-open"_s, u"--list"_s, u"--json"_s, u"--summary"_s, u"--help"_s, u"--nope"_s }) {
        const auto outcome = program({ option, tree.path(u"pics"_s) })
                                 .output(Stream::Terminal)
                                 .error(Stream::Terminal)
                                 .with(environment)
                                 .run();
        QVERIFY(!outcome.terminal.isEmpty());
        QVERIFY2(!outcome.terminal.contains('\033'),
                 outcome.terminal.toPercentEncoding().constData());
    }
}

void tst_vlfolio_classify::sameOutputTwice_data()
{
    QTest::addColumn<QString>("option");

    for (const auto* const option : { "--no-open", "--list", "--json", "--summary" })
        QTest::addRow("%s", option) << QString::fromLatin1(option);
}

void tst_vlfolio_classify::sameOutputTwice()
{
    QFETCH(QString, option);
    const PictureTree tree;
    tree.addPictures();
    const auto runOnce = [&] { return program({ option, tree.path(u"pics"_s) }).run(); };

    const auto first = runOnce();
    const QByteArray firstReport = tree.content(u"pics/"_s + reportName);
    const auto second = runOnce();

    QVERIFY(!first.output.isEmpty());
    QCOMPARE(second.output, first.output);
    QCOMPARE(second.error, first.error);
    QCOMPARE(second.exitCode, first.exitCode);
    QCOMPARE(tree.content(u"pics/"_s + reportName), firstReport);
}

void tst_vlfolio_classify::serviceLog()
{
    const PictureTree tree;
    tree.addPictures();
    const QString report = u"pics/"_s + reportName;
    tree.addFile(report, "old");

    const auto outcome = program({ tree.path(u"pics"_s) })
                             .with(u"QT_LOGGING_RULES"_s, u"vl.folio.service.info=true"_s)
                             .run();

    QCOMPARE(outcome.error, QByteArray("vl.folio.service: startClassifyEvent\n"));
    QCOMPARE(outcome.output, (tree.path(report) + u'\n').toUtf8());
    QCOMPARE(outcome.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_vlfolio_classify)

#include "tst_vlfolio_classify.moc"
