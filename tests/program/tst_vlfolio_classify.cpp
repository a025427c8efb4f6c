#include "PictureTree.h"
#include "ProgramRun.h"
#include "Sanitizer.h"

#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <tuple>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using Environment = QHash<QString, QString>;
using Opener = ProgramRun::Opener;
using Stream = ProgramRun::Stream;

namespace {

const QString reportName = u"vela.classification.results.html"_s;
const QString picturesReport = u"{}/pics/vela.classification.results.html\n"_s;

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

// The right-to-left override is the best-known of the characters that disguise a name.
const QString trickyName = u"a\"b\\c\033[31m\nd\177\u202egpj.exe"_s;

// Messages of the program, a line each.
QString told(const QString& lines)
{
    QString text;
    const QStringList messages = lines.split(u'\n', Qt::SkipEmptyParts);
    for (const QString& message : messages)
        text += u"vlfolio-classify: %1\n"_s.arg(message);
    return text;
}

QString wrong(const QString& message)
{
    return told(message + u". Try 'vlfolio-classify --help'."_s);
}

QString unwritten(const QString& reason)
{
    return told(u"cannot write the report {}/pics/vela.classification.results.html: "_s + reason);
}

// Parted by blanks, those between double quotes left alone; "{}" is the tree, "<>" is empty.
QStringList words(const QString& text, const PictureTree& tree)
{
    QStringList found = QProcess::splitCommand(text);
    for (QString& word : found)
        word = word == "<>"_L1 ? QString() : tree.filled(word);
    return found;
}

// A program in the tree. Words such as LC_ALL=C in front of the arguments are of its environment,
// and "in=FOLDER" is where it runs.
ProgramRun program(const QString& arguments, const PictureTree& tree)
{
    QStringList rest = words(arguments, tree);
    Environment environment;
    QString folder = tree.path();
    static const QRegularExpression setting(u"^(in|[A-Z_]+)=(.*)$"_s);
    for (auto match = setting.match(rest.value(0)); match.hasMatch();
         match = setting.match(rest.value(0))) {
        if (match.captured(1) == "in"_L1)
            folder = tree.path(match.captured(2));
        else
            environment[match.captured(1)] = match.captured(2);
        rest.removeFirst();
    }
    return ProgramRun(rest).in(folder).with(environment);
}

void addRunColumns()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("exitCode");
}

QTestData& addRun(const char* name, const QString& arguments, const QString& output,
                  const QString& error = {}, int exitCode = 0)
{
    return QTest::newRow(name) << arguments << output << error << exitCode;
}

// The runs of a text file: "== RULE", lines that set something up ("+folder NAME", "+link NAME
// TARGET"), one command or more, and what each of them prints: output, messages after "! ", a wrong
// usage after "? ", "exit CODE", "." for an empty line, and "opens" if the report is opened.
struct Run
{
    QString rule;
    QStringList setUp;
    QStringList commands;
    QString output;
    QString error;
    int exitCode = 0;
    bool opens = false;
};

void addLine(Run& run, const QString& line)
{
    if (line.startsWith(u'+'))
        run.setUp.append(line);
    else if (line.startsWith(u"$ "_s))
        run.commands.append(line.sliced(2).replace(u"\\n"_s, u"\n"_s).replace(u"\\e"_s, u"\033"_s));
    else if (line.startsWith(u"! "_s))
        run.error += told(line.sliced(2));
    else if (line.startsWith(u"exit "_s))
        run.exitCode = line.sliced(5).toInt();
    else if (line == "opens"_L1)
        run.opens = true;
    else if (line.startsWith(u"? "_s))
        std::tie(run.error, run.exitCode) = std::pair(wrong(line.sliced(2)), 2);
    else
        run.output += line == "."_L1 ? u"\n"_s : line + u'\n';
}

QList<Run> runsIn(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The runs cannot be read");
    QList<Run> runs;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (const QString& line : lines) {
        if (line.startsWith(u"== "_s))
            runs.append(Run { line.sliced(3), {}, {}, {}, {}, 0, false });
        else if (!line.isEmpty() && !runs.isEmpty())
            addLine(runs.last(), line);
    }
    return runs;
}

// What all runs of the text file find.
void addRunTree(PictureTree& tree)
{
    tree.addPictures();
    for (const auto& folder : { u":odd/:in"_s, u"\ufeffB/x"_s, u"B"_s, u"c/a"_s, u"c/b"_s })
        tree.addFolder(folder);
    tree.addFile(u"file"_s);
    for (const auto* const link :
         { "link pics", "2019 pics/2019", "tofile file", "loop loop", "dangling nowhere" }) {
        const QString text = QString::fromLatin1(link);
        tree.addLink(text.section(u' ', 1), text.section(u' ', 0, 0));
    }
    for (const auto& [name, mode] :
         { std::pair(u"closed/in"_s, 0700U), std::pair(u"closed"_s, 0000U),
           std::pair(u"unlisted"_s, 0300U), std::pair(u"unentered"_s, 0600U) }) {
        tree.addFolder(name);
        tree.setMode(name, mode);
    }
}

// What the row says of the program's run. False where nothing could be tested.
[[nodiscard]] bool isAsTheRowSays(const ProgramRun::Outcome& outcome, const PictureTree& tree)
{
    const auto check = [&] {
        QFETCH(QString, output);
        QFETCH(QString, error);
        QFETCH(int, exitCode);
        if (outcome.exitCode == ProgramRun::setUpFailed)
            QSKIP("The system does not allow what this run needs");
        QCOMPARE(QString::fromUtf8(outcome.error).split(u'\n'), tree.filled(error).split(u'\n'));
        QCOMPARE(QString::fromUtf8(outcome.output), tree.filled(output));
        QCOMPARE(outcome.exitCode, exitCode);
    };
    check();
    return !QTest::currentTestFailed() && outcome.exitCode != ProgramRun::setUpFailed;
}

// Opens nothing.
class QuietPlatform : public VLPlatformIndependent
{
public:
    QuietPlatform() { setInstance(this); }
    ~QuietPlatform() override { setInstance(nullptr); }
    Q_DISABLE_COPY_MOVE(QuietPlatform)

    bool openFile(const QString&, const QStringList&, const QString&) override { return true; }
};

// The report that start() writes into a folder. It stays there.
QByteArray reportByLibrary(const PictureTree& tree, const QString& folder)
{
    const QuietPlatform quiet;
    VLFolioEventClassifier(QFileInfo(tree.path(folder))).start();
    return tree.content(folder + u'/' + reportName);
}

} // namespace

class tst_vlfolio_classify : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void runs_data();
    void runs();
    void localesAreAccepted();
    void hasRowsOfStart_data();
    void hasRowsOfStart();
    void countsItself_data();
    void countsItself();
    void replaces_data();
    void replaces();
    void reportHasUsualPermissions();
    void keepsTheOldReport_data();
    void keepsTheOldReport();
    void fullFileSystem_data();
    void fullFileSystem();
    void opensWithoutOpener_data();
    void opensWithoutOpener();
    void printsBeforeItOpens();
    void serviceLog();
    void tellsWhatIsLeftOut_data();
    void tellsWhatIsLeftOut();
    void rootOfTheFileSystem_data();
    void rootOfTheFileSystem();
    void jsonHoldsAnyName();
    void workingDirectoryIsRemoved_data();
    void workingDirectoryIsRemoved();
    void namesThatAreNotUtf8_data();
    void namesThatAreNotUtf8();
    void directoryFails_data();
    void directoryFails();
    void standardOutputIsFull_data();
    void standardOutputIsFull();
    void standardOutputIsClosed();
    void nobodyReads_data();
    void nobodyReads();
    void terminalShowsNamesEscaped_data();
    void terminalShowsNamesEscaped();
    void pipedNamesAreRaw();
    void nothingIsColoured_data();
    void nothingIsColoured();
    void shortRunIsSilentOnTerminal();
    void showsProgress_data();
    void showsProgress();
    void showsNoProgress_data();
    void showsNoProgress();
    void progressIsNotNeeded();
    void argumentsNeedMemory();
    void allocationsFail();
};

void tst_vlfolio_classify::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_vlfolio_classify::runs_data()
{
    addRunColumns();
    QTest::addColumn<QStringList>("setUp");
    QTest::addColumn<bool>("opens");
    const QList<Run> runs = runsIn(QStringLiteral(VLFOLIO_RUNS));
    for (const Run& run : runs) {
        for (const QString& command : run.commands) {
            QTest::addRow("%s: %s", qPrintable(run.rule), qPrintable(command))
                << command << run.output << run.error << run.exitCode << run.setUp << run.opens;
        }
    }
    QVERIFY(runs.size() > 100);
}

void tst_vlfolio_classify::runs()
{
    QFETCH(QString, arguments);
    QFETCH(QStringList, setUp);
    QFETCH(QString, output);
    QFETCH(bool, opens);
    PictureTree tree;
    addRunTree(tree);
    for (const QString& line : std::as_const(setUp)) {
        if (line.startsWith(u"+folder "_s))
            tree.addFolder(line.sliced(8));
        else
            tree.addLink(line.section(u' ', 2), line.section(u' ', 1, 1));
    }

    const bool wasThere = tree.exists(u"pics/"_s + reportName);
    static const QRegularExpression restricted(u"closed|unlisted|unentered"_s);
    ProgramRun subject = program(arguments, tree);
    if (arguments.contains(restricted))
        subject.before(&ChildSteps::obeyPermissions);
    const auto outcome = subject.run();

    if (!isAsTheRowSays(outcome, tree))
        return;
    const bool writesReport = output == picturesReport;
    QCOMPARE(outcome.opened, opens ? tree.filled(picturesReport).toUtf8() : QByteArray());
    QCOMPARE(tree.exists(u"pics/"_s + reportName), wasThere || writesReport);
    QVERIFY(!writesReport || tree.content(u"pics/"_s + reportName).endsWith("</html>\n"));
    QVERIFY(tree.names(u"pics"_s).filter(u".vlfolio"_s).isEmpty());
}

void tst_vlfolio_classify::localesAreAccepted()
{
    const PictureTree tree;
    const auto outcome = program(u"--locales"_s, tree).run();
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    const QStringList names = QString::fromUtf8(outcome.output).split(u'\n', Qt::SkipEmptyParts);
    for (const auto* const name : { "C", "de_DE", "en_US", "zh_CN", "sr_RS" })
        QVERIFY2(names.contains(QLatin1String(name)), name);
    QVERIFY(names.size() > 300);
    QVERIFY(std::is_sorted(names.cbegin(), names.cend()));
    for (qsizetype i = 0; i < names.size(); i += 25) {
        const auto asked = program(u"--locale %1 --version"_s.arg(names.at(i)), tree).run();
        QCOMPARE(asked.exitCode, 0);
        QCOMPARE(program(u"--locale %1 --explain x"_s.arg(names.at(i)), tree).run().error,
                 QByteArray());
    }
}

void tst_vlfolio_classify::hasRowsOfStart_data()
{
    QTest::addColumn<QString>("root");
    QTest::addColumn<QString>("oldReport");

    QTest::newRow("no_report_was_there") << u"pics"_s << QString();
    QTest::newRow("a_report_was_there") << u"pics"_s << u"file"_s;
    QTest::newRow("a_link_to_a_file_was_there") << u"pics"_s << u"link"_s;
    QTest::newRow("a_link_to_nothing_was_there") << u"pics"_s << u"dangling"_s;
    QTest::newRow("root_is_a_link") << u"through"_s << QString();
    QTest::newRow("empty_folder") << u"pics/B"_s << QString();
    QTest::newRow("root_is_seen_twice") << u"twice"_s << QString();
}

// Byte for byte. The root counts its report in either.
void tst_vlfolio_classify::hasRowsOfStart()
{
    QFETCH(QString, root);
    QFETCH(QString, oldReport);
    const PictureTree tree;
    tree.addPictures();
    tree.addFile(u"elsewhere"_s, "kept");
    tree.addLink(u"pics"_s, u"through"_s);
    tree.addFolder(u"twice/a"_s);
    tree.addFile(u"twice/1.jpg"_s);
    tree.addLink(u"../twice"_s, u"twice/again"_s);
    if (oldReport == "file"_L1)
        tree.addFile(root + u'/' + reportName, "old");
    else if (!oldReport.isEmpty())
        tree.addLink(oldReport == "link"_L1 ? tree.path(u"elsewhere"_s) : u"nowhere"_s,
                     root + u'/' + reportName);

    QCOMPARE(program(root, tree).run().exitCode, 0);

    const QByteArray report = tree.content(root + u'/' + reportName);
    QByteArray expected = reportByLibrary(tree, root);
    if (root == "twice"_L1) {
        // Of a link that leads back there is the row alone.
        const qsizetype below = expected.indexOf(
            "\t\t\t<tr class=Unknown>\n\t\t\t\t<td>Unknown</td>\n\t\t\t\t<td>/again/a<");
        QVERIFY(below > 0);
        expected = expected.first(below) + expected.sliced(expected.indexOf("\t\t</table>"));
    }
    QCOMPARE(report, expected);
    QCOMPARE(tree.content(u"elsewhere"_s), QByteArray("kept"));
}

void tst_vlfolio_classify::countsItself_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("countOfRoot");
    QTest::addColumn<QByteArray>("countOfYear");

    const auto add = [](const char* name, const QString& output, const QByteArray& countOfRoot,
                        const QByteArray& countOfYear) {
        const QString path = output.contains(u"html"_s) ? output : output + u'/' + reportName;
        QTest::newRow(name) << output << path << countOfRoot << countOfYear;
    };
    add("the_collection", u"pics"_s, "1", "0");
    add("a_file_of_the_collection", u"pics/x.html"_s, "1", "0");
    add("through_a_link", u"link/x.html"_s, "1", "0");
    add("below_the_collection", u"pics/2019"_s, "0", "1");
    add("not_if_hidden", u"pics/.x.html"_s, "0", "0");
    add("not_if_elsewhere", u"out"_s, "0", "0");
}

// Also when there was none yet.
void tst_vlfolio_classify::countsItself()
{
    QFETCH(QString, output);
    QFETCH(QString, path);
    QFETCH(QByteArray, countOfRoot);
    QFETCH(QByteArray, countOfYear);
    PictureTree tree;
    tree.addFolder(u"pics/2019"_s);
    tree.addFolder(u"out"_s);
    tree.addLink(u"pics"_s, u"link"_s);
    // Where the report goes elsewhere, the collection may be read-only.
    if (output == "out"_L1)
        tree.setMode(u"pics"_s, 0500);

    for (int run = 0; run < 2; ++run) {
        const auto outcome = program(u"--output %1 pics"_s.arg(output), tree)
                                 .before(&ChildSteps::obeyPermissions)
                                 .run();
        if (outcome.exitCode == ProgramRun::setUpFailed)
            QSKIP("The superuser's rights cannot be dropped here");
        QCOMPARE(outcome.error, QByteArray());
        QCOMPARE(outcome.output, tree.path(path).toUtf8() + '\n');
        const QByteArray cell = "</td>\n\t\t\t\t<td>";
        const QByteArray report = tree.content(path);
        QVERIFY(report.contains(tree.path(u"pics"_s).toUtf8() + cell + countOfRoot + '<'));
        QVERIFY(report.contains("/2019" + cell + countOfYear + '<'));
    }
}

void tst_vlfolio_classify::replaces_data()
{
    QTest::addColumn<QString>("old");

    QTest::newRow("file") << u"file"_s;
    QTest::newRow("file_that_may_not_be_written") << u"read-only"_s;
    QTest::newRow("file_of_two_names") << u"hard link"_s;
    // Where opening would never end.
    QTest::newRow("pipe") << u"pipe"_s;
    QTest::newRow("link_to_a_file") << u"{}/elsewhere"_s;
    QTest::newRow("link_to_nothing") << u"{}/nothing"_s;
    QTest::newRow("link_to_a_folder") << u"{}/folder"_s;
}

void tst_vlfolio_classify::replaces()
{
    QFETCH(QString, old);
    PictureTree tree;
    tree.addPictures();
    tree.addFile(u"elsewhere"_s, "kept");
    tree.addFolder(u"folder"_s);
    const QString report = u"pics/"_s + reportName;
    const QByteArray path = tree.path(report).toUtf8();
    const auto putOld = [&] {
        if (old == "pipe"_L1)
            QCOMPARE(mkfifo(path.constData(), 0600), 0);
        else if (old == "hard link"_L1)
            QCOMPARE(link(tree.path(u"elsewhere"_s).toUtf8().constData(), path.constData()), 0);
        else if (old.startsWith(u'{'))
            tree.addLink(tree.filled(old), report);
        else
            tree.addFile(report, "old");
        if (old == "read-only"_L1)
            tree.setMode(report, 0400);
    };
    putOld();
    const QByteArray expected = reportByLibrary(tree, u"pics"_s);
    QCOMPARE(unlink(path.constData()), 0);
    putOld();

    const auto outcome = program(u"pics"_s, tree).before(&ChildSteps::obeyPermissions).run();

    if (outcome.exitCode == ProgramRun::setUpFailed)
        QSKIP("The superuser's rights cannot be dropped here");
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.output, tree.filled(picturesReport).toUtf8());
    QCOMPARE(tree.content(u"elsewhere"_s), QByteArray("kept"));
    QVERIFY(!tree.exists(u"nothing"_s));
    QCOMPARE(tree.names(u"folder"_s), QStringList());
    QCOMPARE(tree.content(report), expected);
}

void tst_vlfolio_classify::reportHasUsualPermissions()
{
    const PictureTree tree;
    tree.addFolder(u"pics"_s);
    for (const mode_t mask : { 0022U, 0077U, 0002U }) {
        QCOMPARE(program(u"pics"_s, tree).before([mask] { umask(mask); }).run().exitCode, 0);
        struct stat status = {};
        QCOMPARE(stat(tree.path(u"pics/"_s + reportName).toUtf8().constData(), &status), 0);
        QCOMPARE(status.st_mode, S_IFREG | (0666 & ~mask));
    }
}

void tst_vlfolio_classify::keepsTheOldReport_data()
{
    addRunColumns();
    QTest::addColumn<unsigned long>("limit");
    addRun("folder_is_read_only", u"--open pics"_s, {}, unwritten(u"Permission denied"_s), 1)
        << 0UL;
    addRun("file_grows_too_large", u"--open pics"_s, {}, unwritten(u"File too large"_s), 1)
        << 1000UL;
}

void tst_vlfolio_classify::keepsTheOldReport()
{
    QFETCH(QString, arguments);
    QFETCH(unsigned long, limit);
    PictureTree tree;
    tree.addPictures();
    tree.addFile(u"pics/"_s + reportName, "old");
    const QStringList names = tree.names(u"pics"_s);
    if (limit == 0)
        tree.setMode(u"pics"_s, 0500);

    const auto outcome = program(arguments, tree)
                             .before([limit] {
                                 ChildSteps::obeyPermissions();
                                 if (limit > 0)
                                     ChildSteps::limitFileSize(limit);
                             })
                             .run();

    if (!isAsTheRowSays(outcome, tree))
        return;
    QCOMPARE(outcome.opened, QByteArray());
    QCOMPARE(tree.names(u"pics"_s), names);
    QCOMPARE(tree.content(u"pics/"_s + reportName), QByteArray("old"));
}

void tst_vlfolio_classify::fullFileSystem_data()
{
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<QString>("reason");

    QTest::newRow("full") << false << u"No space left on device"_s;
    QTest::newRow("read_only") << true << u"Read-only file system"_s;
}

void tst_vlfolio_classify::fullFileSystem()
{
    QFETCH(bool, readOnly);
    QFETCH(QString, reason);
    const PictureTree tree;
    tree.addFolder(u"pics"_s);
    const QByteArray directory = tree.path(u"pics"_s).toUtf8();

    const auto outcome =
        program(u"."_s, tree)
            .before([&] { ChildSteps::mountOver(directory.constData(), readOnly); })
            .run();

    if (outcome.exitCode == ProgramRun::setUpFailed)
        QSKIP("No file system of its own can be mounted here.");
    QCOMPARE(QString::fromUtf8(outcome.error), tree.filled(unwritten(reason)));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
}

void tst_vlfolio_classify::opensWithoutOpener_data()
{
    addRunColumns();
    const QString failed = told(u"cannot open the report "_s + picturesReport);
    addRun("open", u"--open pics"_s, picturesReport, failed, 1);
    addRun("desktop", u"DISPLAY=:0 pics"_s, picturesReport, failed, 0);
    addRun("no_open", u"DISPLAY=:0 --no-open pics"_s, picturesReport, {}, 0);
}

void tst_vlfolio_classify::opensWithoutOpener()
{
    QFETCH(QString, arguments);
    const PictureTree tree;
    tree.addPictures();

    const auto outcome = program(arguments, tree).opener(Opener::Missing).run();

    QVERIFY(isAsTheRowSays(outcome, tree));
}

// Who opens it may write to the same terminal.
void tst_vlfolio_classify::printsBeforeItOpens()
{
    const PictureTree tree;
    tree.addPictures();
    const QString printed = tree.path(u"printed"_s);

    const auto outcome = program(u"--open pics"_s, tree)
                             .outputFile(printed)
                             .with(u"VLFOLIO_SHOW_WHEN_OPENED"_s, printed)
                             .run();

    const QByteArray report = tree.filled(picturesReport).toUtf8();
    QCOMPARE(outcome.opened, report + report);
}

void tst_vlfolio_classify::serviceLog()
{
    const PictureTree tree;
    tree.addPictures();
    tree.addFile(u"pics/"_s + reportName, "old");
    const auto outcome = program(u"QT_LOGGING_RULES=vl.folio.service.info=true pics"_s, tree).run();

    QCOMPARE(outcome.error, QByteArray("vl.folio.service: startClassifyEvent\n"));
    QCOMPARE(outcome.output, tree.filled(picturesReport).toUtf8());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::tellsWhatIsLeftOut_data()
{
    addRunColumns();
    const QString left = told(
        u"cannot read {}/pics/closed: Permission denied; what is in it is left out\n"
        "cannot enter {}/pics/locked: Permission denied; what is below its folders is left out\n"
        "cannot read {}/pics/locked/inside: Permission denied; what is in it is left out\n"
        "{}/pics/odd holds folders whose names are not UTF-8; they are left out\n"
        "{}/pics/veiled holds an entry that cannot be looked at: Permission denied; it is left out"_s);
    const QString json =
        u"{\"files\":0,%2\"occasions\":[],\"ownType\":\"Unknown\",\"path\":\"{}/pics/%1\","
        "\"relativePath\":\"%1\",\"tests\":[],\"type\":\"Unknown\",\"value\":0}\n"_s;
    const auto incomplete = [&json](const QString& name, const QString& problem) {
        return json.arg(name,
                        problem.isEmpty() ? QString() : u"\"incomplete\":[\"%1\"],"_s.arg(problem));
    };
    addRun("report", u"--no-open pics"_s, picturesReport, left);
    addRun("list", u"--list --type Root pics"_s, u"   Root <= \n"_s, left);
    addRun("summary", u"--summary --type Root pics"_s, u"Root          1\nTotal         1\n"_s,
           left);
    addRun("json", u"--json --type Unknown pics"_s,
           incomplete(u"closed"_s, u"unreadable"_s) + incomplete(u"locked"_s, u"unsearchable"_s)
               + incomplete(u"locked/inside"_s, u"unreadable"_s)
               + incomplete(u"odd"_s, u"undecodableNames"_s) + incomplete(u"odd/good"_s, {})
               + incomplete(u"veiled"_s, u"unknownEntries"_s),
           left);
    addRun("nothing_that_is_not_looked_at", u"--list --exclude * pics"_s, u"   Root <= \n"_s);
}

void tst_vlfolio_classify::tellsWhatIsLeftOut()
{
    QFETCH(QString, arguments);
    PictureTree tree;
    for (const auto& folder : { u"pics/closed/inside"_s, u"pics/locked/inside"_s,
                                u"pics/odd/good"_s, u"pics/veiled"_s, u"outside/inside"_s }) {
        tree.addFolder(folder);
    }
    tree.addLink(tree.path(u"outside/inside"_s), u"pics/veiled/link"_s);
    const QByteArray oddName = QFile::encodeName(tree.path(u"pics/odd/"_s)) + "bad\xff";
    if (::mkdir(oddName.constData(), 0755) != 0)
        QSKIP("The file system takes names in UTF-8 only");
    tree.setMode(u"pics/closed"_s, 0);
    tree.setMode(u"pics/locked"_s, 0400);
    tree.setMode(u"outside"_s, 0);

    const auto outcome = program(arguments, tree).before(&ChildSteps::obeyPermissions).run();

    QCOMPARE(::rmdir(oddName.constData()), 0);
    QVERIFY(isAsTheRowSays(outcome, tree));
}

void tst_vlfolio_classify::rootOfTheFileSystem_data()
{
    addRunColumns();
    const QString list = u"   Root <= \nUnknown <= a\nUnknown <= a/b\n"_s;
    const QString json =
        u"{\"files\":0,\"occasions\":[],\"ownType\":\"Unknown\",\"path\":\"/%1\","
        "\"relativePath\":\"%1\",\"tests\":[],\"type\":\"Unknown\",\"value\":0}\n"_s;
    addRun("list", u"--list /"_s, list);
    addRun("list_with_slashes", u"--list ///"_s, list);
    addRun("list_above_it", u"--list /.."_s, list);
    addRun("list_with_reasons", u"--list --why --type Root /"_s,
           u"   Root <=   (the root of the collection)\n"_s);
    addRun("json", u"--json --type=Unknown /"_s, json.arg(u"a"_s) + json.arg(u"a/b"_s));
    addRun("report", u"/"_s, u"/vela.classification.results.html\n"_s);
}

void tst_vlfolio_classify::rootOfTheFileSystem()
{
    QFETCH(QString, arguments);
    const PictureTree tree;
    tree.addFolder(u"a/b"_s);

    const auto outcome = program(arguments, tree)
                             .preloading(QStringLiteral(VLFOLIO_CHANGED_ROOT))
                             // The leak detector would look for itself in /proc.
                             .with(u"LSAN_OPTIONS"_s, u"detect_leaks=0"_s)
                             .with(u"VLFOLIO_TEST_ROOT"_s, tree.path())
                             .run();

    if (isAsTheRowSays(outcome, tree))
        QCOMPARE(tree.exists(reportName), arguments == "/"_L1);
}

void tst_vlfolio_classify::jsonHoldsAnyName()
{
    const PictureTree tree;
    tree.addFolder(u"pics/"_s + trickyName);

    const auto outcome = program(u"--json pics"_s, tree).run();

    const QList<QByteArray> lines = outcome.output.split('\n');
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines.at(2).isEmpty());
    QJsonParseError error;
    const QJsonObject object = QJsonDocument::fromJson(lines.at(1), &error).object();
    QCOMPARE(error.errorString(), u"no error occurred"_s);
    QCOMPARE(object.value(u"relativePath").toString(), trickyName);
    QCOMPARE(object.value(u"path").toString(), tree.path(u"pics/"_s + trickyName));
}

void tst_vlfolio_classify::workingDirectoryIsRemoved_data()
{
    QTest::addColumn<QString>("directory");

    for (const auto* const directory : { ".", "./", "2019", "..", "../2019", ":x" })
        QTest::addRow("%s", directory) << QString::fromLatin1(directory);
}

void tst_vlfolio_classify::workingDirectoryIsRemoved()
{
    QFETCH(QString, directory);
    const PictureTree tree;
    tree.addFolder(u"2019"_s);
    const QByteArray gone = tree.path(u"gone"_s).toUtf8();

    for (const auto& option : { u"in=gone --no-open "_s, u"in=gone --json "_s }) {
        tree.addFolder(u"gone"_s);
        const auto outcome =
            program(option + directory, tree).before([&] { ::rmdir(gone.constData()); }).run();

        QCOMPARE(QString::fromUtf8(outcome.error),
                 told(u"cannot classify %1: its path cannot be found (was the working directory "
                      "removed?)"_s.arg(directory)));
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.exitCode, 1);
    }
}

void tst_vlfolio_classify::namesThatAreNotUtf8_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("exitCode");

    const QString refused = wrong(u"the argument 'bad\ufffd' is not UTF-8"_s);
    QTest::newRow("directory") << u"exec \"$0\" --list \"$bad\""_s << refused << 2;
    QTest::newRow("name_to_explain") << u"exec \"$0\" --explain \"$bad\""_s << refused << 2;
    QTest::newRow("pattern") << u"exec \"$0\" --list --exclude \"$bad\" ."_s << refused << 2;
    const QString other = u"cannot classify {}/bad\ufffd%1: its path is not UTF-8"_s;
    QTest::newRow("working_directory")
        << u"cd \"$bad\" && exec \"$0\" --list ."_s << told(other.arg(u""_s)) << 1;
    QTest::newRow("below_the_working_directory")
        << u"cd \"$bad\" && exec \"$0\" --list in"_s << told(other.arg(u"/in"_s)) << 1;
    QTest::newRow("where_a_link_leads")
        << u"exec \"$0\" --list link/../in"_s << told(other.arg(u"/in"_s)) << 1;
}

// Never taken for the folder whose name Qt makes of it.
void tst_vlfolio_classify::namesThatAreNotUtf8()
{
    QFETCH(QString, command);
    QFETCH(QString, error);
    QFETCH(int, exitCode);
    const PictureTree tree;
    tree.addFolder(u"bad\ufffd/in/wrong"_s);
    tree.addLink(u"odd/in"_s, u"link"_s);
    // Qt would not pass the name on as it is; a shell does.
    QProcess shell;
    shell.setWorkingDirectory(tree.path());
    const QString setUp =
        u"bad=$(printf 'bad\\377'); mkdir -p \"$bad/in\" || exit 125; ln -s \"$bad\" odd; "_s;
    shell.start(u"/bin/sh"_s, { u"-c"_s, setUp + command, QStringLiteral(VLFOLIO_PROGRAM) });
    QVERIFY(shell.waitForFinished(-1));
    if (shell.exitCode() == ProgramRun::setUpFailed)
        QSKIP("The file system takes names in UTF-8 only");
    const QByteArray name = QFile::encodeName(tree.path(u"bad"_s)) + "\xff";
    QCOMPARE(::rmdir((name + "/in").constData()), 0);
    QCOMPARE(::rmdir(name.constData()), 0);

    QCOMPARE(QString::fromUtf8(shell.readAllStandardError()), tree.filled(error));
    QCOMPARE(shell.readAllStandardOutput(), QByteArray());
    QCOMPARE(shell.exitCode(), exitCode);
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
    const QString order = u"%1 1 1 %2 {}/pics"_s.arg(call).arg(error);

    for (const auto& option : { u"--no-open {}/pics"_s, u"--json {}/pics"_s }) {
        const auto outcome = program(option, tree)
                                 .preloading(QStringLiteral(VLFOLIO_FAILING_CALLS))
                                 .with(u"VLFOLIO_FAILING_CALL"_s, tree.filled(order))
                                 .run();
        QCOMPARE(QString::fromUtf8(outcome.error),
                 u"failed\n"_s + told(tree.filled(u"cannot classify {}/pics: "_s) + text));
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.exitCode, 1);
    }
#else
    QSKIP("Calls of the system cannot be made to fail here.");
#endif
}

void tst_vlfolio_classify::standardOutputIsFull_data()
{
    QTest::addColumn<QString>("arguments");

    for (const auto* const arguments : { "pics", "--list pics", "--json pics", "--summary pics",
                                         "--explain pics", "--locales", "--help", "--version" }) {
        QTest::addRow("%s", arguments) << QString::fromLatin1(arguments);
    }
    // More than the C library gathers before it writes.
    QTest::newRow("long_output") << u"--explain %1 y"_s.arg(QString(100'000, u'x'));
}

void tst_vlfolio_classify::standardOutputIsFull()
{
    if (!QFileInfo::exists(u"/dev/full"_s))
        QSKIP("There is no /dev/full here.");
    QFETCH(QString, arguments);
    const PictureTree tree;
    tree.addPictures();

    const auto outcome = program(arguments, tree).outputFile(u"/dev/full"_s).run();

    QCOMPARE(QString::fromUtf8(outcome.error),
             told(u"cannot write to standard output: No space left on device"_s));
    QCOMPARE(outcome.exitCode, 1);
}

void tst_vlfolio_classify::standardOutputIsClosed()
{
    const PictureTree tree;
    tree.addPictures();

    const auto outcome = program(u"pics"_s, tree).before([] { close(STDOUT_FILENO); }).run();

    QCOMPARE(QString::fromUtf8(outcome.error),
             told(u"cannot write to standard output: Bad file descriptor"_s));
    QCOMPARE(outcome.exitCode, 1);
    const QByteArray report = tree.content(u"pics/"_s + reportName);
    QCOMPARE(report, reportByLibrary(tree, u"pics"_s));
}

void tst_vlfolio_classify::nobodyReads_data()
{
    standardOutputIsFull_data();
}

void tst_vlfolio_classify::nobodyReads()
{
    QFETCH(QString, arguments);
    const PictureTree tree;
    tree.addPictures();

    const auto ended = program(arguments, tree).before(&ChildSteps::closedPipe).run();
    QCOMPARE(ended.error, QByteArray());
    QCOMPARE(ended.exitCode, -SIGPIPE);

    const auto ignoring =
        program(arguments, tree).ignoringClosedPipes().before(&ChildSteps::closedPipe).run();
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

    const auto outcome = ProgramRun(arguments).in(tree.path()).output(Stream::Terminal).run();

    QCOMPARE(outcome.terminal, tree.filled(shown).toUtf8());
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::pipedNamesAreRaw()
{
    const PictureTree tree;
    tree.addFolder(trickyName);

    // Without progress, which has nothing to do with names.
    const auto list = program(u"TERM=dumb --list ."_s, tree).error(Stream::Terminal).run();
    QCOMPARE(list.output, (u"   Root <= \nUnknown <= "_s + trickyName + u'\n').toUtf8());
    QCOMPARE(list.terminal, QByteArray());

    const auto report = ProgramRun({ trickyName }).in(tree.path()).run();
    QCOMPARE(report.output, (tree.path() + u'/' + trickyName + u'/' + reportName + u'\n').toUtf8());
}

void tst_vlfolio_classify::nothingIsColoured_data()
{
    QTest::addColumn<QString>("environment");

    QTest::newRow("plain") << u""_s;
    QTest::newRow("no_color") << u"NO_COLOR=1 "_s;
    QTest::newRow("forced_color") << u"CLICOLOR_FORCE=1 "_s;
}

void tst_vlfolio_classify::nothingIsColoured()
{
    QFETCH(QString, environment);
    const PictureTree tree;
    tree.addPictures();

    for (const auto& option :
         { u"--no-open"_s, u"--list"_s, u"--json"_s, u"--summary"_s, u"--help"_s, u"--nope"_s }) {
        auto outcome = program(environment + option + u" pics"_s, tree)
                           .output(Stream::Terminal)
                           .error(Stream::Terminal)
                           .run();
        // A slow run shows progress, which takes its line away.
        outcome.terminal.replace("\r\033[K", "");
        QVERIFY(!outcome.terminal.isEmpty());
        QVERIFY2(!outcome.terminal.contains('\033'),
                 outcome.terminal.toPercentEncoding().constData());
    }
}

// As it is the program's time that counts, a run that took longer proves nothing.
void tst_vlfolio_classify::shortRunIsSilentOnTerminal()
{
    const PictureTree tree;
    tree.addFolder(u"pics"_s);

    QElapsedTimer timer;
    timer.start();
    const auto outcome = program(u"pics"_s, tree)
                             .output(Stream::Terminal)
                             .error(Stream::Terminal)
                             .preloading(QStringLiteral(VLFOLIO_SLOW_LISTINGS))
                             .with(u"VLFOLIO_LATE_LISTINGS"_s, u"2"_s)
                             .run();

    const bool isSilent = outcome.terminal == tree.filled(picturesReport).toUtf8();
    QVERIFY(isSilent || timer.elapsed() >= 300);
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::showsProgress_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("walk");
    QTest::addColumn<QString>("count");

    const QString walk = u"Walking the folders: \\d+ read"_s;
    const QString report = u"Writing the report: folder \\d+ of 12"_s;
    QTest::newRow("report") << u"pics"_s << 0 << walk << report;
    QTest::newRow("json") << u"--json pics"_s << 0 << walk
                          << u"Counting files: folder \\d+ of 12"_s;
    QTest::newRow("just_wide_enough")
        << u"pics"_s << 37 << walk << u"(Writing the report: folder \\d of 12|\\d\\d of 12)"_s;
    QTest::newRow("narrow") << u"pics"_s << 28 << u"(Walking the folders: \\d read|\\d\\d)"_s
                            << u"\\d+ of 12"_s;
    QTest::newRow("very_narrow") << u"pics"_s << 8 << u"\\d+"_s << u"(\\d of 12)?"_s;
    QTest::newRow("too_narrow") << u"pics"_s << 1 << u""_s << u""_s;
}

// Without memory for other threads than the first, too.
void tst_vlfolio_classify::showsProgress()
{
    QFETCH(QString, arguments);
    QFETCH(int, columns);
    QFETCH(QString, walk);
    QFETCH(QString, count);
    const PictureTree tree;
    tree.addPictures();

    // One of the walk's twelve listings, and one of the twelve for the counts.
    ProgramRun run = program(arguments, tree)
                         .error(Stream::Terminal)
                         .columns(static_cast<unsigned short>(columns))
                         .preloading(QStringLiteral(VLFOLIO_SLOW_LISTINGS))
                         .with(u"VLFOLIO_AWAITING_LISTING"_s, u"2"_s)
                         .with(u"VLFOLIO_OTHER_AWAITING_LISTING"_s, u"14"_s);
    if (!underSanitizer)
        run.preloading(QStringLiteral(VLFOLIO_LIMITED_MEMORY));
    const auto outcome = run.run();

    const QRegularExpression shown(
        uR"(\A(\r\x1b\[K%1)+(\r\x1b\[K%2)+\r\x1b\[K\z)"_s.arg(walk, count));
    if (columns == 1)
        QCOMPARE(outcome.terminal, QByteArray("\r\033[K"));
    else
        QVERIFY2(shown.match(QString::fromUtf8(outcome.terminal)).hasMatch(),
                 outcome.terminal.toPercentEncoding().constData());
    QVERIFY(!outcome.output.isEmpty());
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::showsNoProgress_data()
{
    QTest::addColumn<QString>("environment");
    QTest::addColumn<bool>("toTerminal");

    QTest::newRow("standard_error_is_a_pipe") << u""_s << false;
    QTest::newRow("dumb_terminal") << u"TERM=dumb "_s << true;
    QTest::newRow("unknown_terminal") << u"TERM= "_s << true;
}

void tst_vlfolio_classify::showsNoProgress()
{
    QFETCH(QString, environment);
    QFETCH(bool, toTerminal);
    const PictureTree tree;
    tree.addPictures();

    const auto outcome = program(environment + u"--list --type=Year pics"_s, tree)
                             .error(toTerminal ? Stream::Terminal : Stream::Pipe)
                             .preloading(QStringLiteral(VLFOLIO_SLOW_LISTINGS))
                             .with(u"VLFOLIO_LATE_LISTINGS"_s, u"5"_s)
                             .run();

    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.terminal, QByteArray());
    QCOMPARE(outcome.output, QByteArray("   Year <= 2019\n"));
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::progressIsNotNeeded()
{
    if (underSanitizer)
        QSKIP("A sanitizer takes memory of its own");
    const PictureTree tree;
    tree.addPictures();

    // Enough for a small tree, but not for the stack of a second thread.
    const auto outcome = program(u"--list pics"_s, tree)
                             .error(Stream::Terminal)
                             .before([] { ChildSteps::limitMemory(4UL * 1024 * 1024); })
                             .run();

    if (outcome.exitCode == ProgramRun::setUpFailed)
        QSKIP("Memory cannot be limited here");
    QCOMPARE(outcome.terminal, QByteArray());
    QCOMPARE(outcome.output, picturesList);
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify::argumentsNeedMemory()
{
    if (underSanitizer)
        QSKIP("A sanitizer takes memory of its own");
    // More than the program may take once it has begun.
    const QStringList names(10, QString(100'000, u'x'));

    const auto outcome = ProgramRun(QStringList { u"--explain"_s } + names)
                             .before([] { ChildSteps::limitMemory(2UL * 1024 * 1024); })
                             .run();

    if (outcome.exitCode == ProgramRun::setUpFailed)
        QSKIP("Memory cannot be limited here");
    QCOMPARE(outcome.error, QByteArray("vlfolio-classify: out of memory\n"));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
}

// One of them at a time: what is told is true, and the report is whole. A few end the process
// within Qt and the C library.
void tst_vlfolio_classify::allocationsFail()
{
    if (underSanitizer)
        QSKIP("A sanitizer gives memory of its own");
    const PictureTree tree;
    tree.addFolder(u"pics/2019/07"_s);
    QCOMPARE(program(u"pics"_s, tree).run().exitCode, 0);
    const QByteArray report = tree.content(u"pics/"_s + reportName);
    int runs = 0;
    int deaths = 0;
    for (long nth = 1;; nth += 5) {
        tree.addFile(u"pics/"_s + reportName, "old");
        const auto outcome = program(u"pics"_s, tree)
                                 .preloading(QStringLiteral(VLFOLIO_LIMITED_MEMORY))
                                 .with(u"VLFOLIO_FAILING_ALLOCATION"_s, QString::number(nth))
                                 .run();
        if (!outcome.error.startsWith("failed\n"))
            break;
        ++runs;
        deaths += int(outcome.exitCode < 0);
        const QByteArray found = tree.content(u"pics/"_s + reportName);
        QVERIFY(found == report || (found == "old" && outcome.exitCode != 0));
        if (outcome.exitCode == 1)
            QVERIFY2(outcome.error.startsWith("failed\nvlfolio-classify: "),
                     outcome.error.constData());
    }
    qInfo("%d of %d failing allocations ended the process", deaths, runs);
    QVERIFY(runs > 100);
    QVERIFY(deaths * 50 < runs);
}

QTEST_GUILESS_MAIN(tst_vlfolio_classify)

#include "tst_vlfolio_classify.moc"
