#include "RecordingPlatform.h"
#include "ReportText.h"
#include "Sanitizer.h"
#include "Shell.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr auto reportName = "pics/vela.classification.results.html";

// The runs of a text file: "== RULE", a line "+ COMMAND" for each command that sets something up,
// then "$ COMMAND", and what comes of it: its output, with "." for an empty line, messages of the
// program after "! ", a wrong usage after "? ", and "exit CODE". Several commands in a row have the
// same outcome, each in a tree of its own. An expression after "~ " is for what a terminal shows;
// without one that is expected behind the output.
struct Run
{
    QString rule;
    QString setUp;
    QStringList commands;
    QString output;
    QString error;
    QString terminal;
    int exitCode = 0;
    bool hasOutcome = false;
};

void addOutcome(Run& run, const QString& line)
{
    run.hasOutcome = true;
    const QString rest = line.mid(2);
    if (line.startsWith(u"! "_s)) {
        run.error += u"vlfolio-classify: %1\n"_s.arg(rest);
    } else if (line.startsWith(u"? "_s)) {
        run.error = u"vlfolio-classify: %1. Try 'vlfolio-classify --help'.\n"_s.arg(rest);
        run.exitCode = 2;
    } else if (line.startsWith(u"~ "_s)) {
        run.terminal = rest;
    } else if (line.startsWith(u"exit "_s)) {
        run.exitCode = line.sliced(5).toInt();
    } else {
        run.output += line == "."_L1 ? u"\n"_s : line + u'\n';
    }
}

QList<Run> runsIn(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The runs cannot be read");
    QList<Run> runs;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (const QString& line : lines) {
        if (line.startsWith(u"== "_s)) {
            runs.append(Run());
            runs.last().rule = line.sliced(3);
        } else if (line.isEmpty() || runs.isEmpty()) {
            continue;
        } else if (line.startsWith(u"+ "_s)) {
            runs.last().setUp += line.sliced(2) + u'\n';
        } else if (line.startsWith(u"$ "_s)) {
            if (runs.constLast().hasOutcome) {
                Run next;
                next.rule = runs.constLast().rule;
                next.setUp = runs.constLast().setUp;
                runs.append(next);
            }
            runs.last().commands.append(line.sliced(2));
        } else {
            addOutcome(runs.last(), line);
        }
    }
    return runs;
}

// What all commands find: the collection "pics", with a folder of each type, and what is no
// collection or none that can be read.
class Tree : public RawDirectory
{
public:
    Tree()
        : RawDirectory({
            "pics/.thumbnails/2019/",
            "pics/1999/",
            "pics/2019/07/2019-07-14/",
            "pics/2019/07/Beach/2019-07-15/",
            "pics/2019/07/Beach/1.jpg",
            "pics/2019/07/Beach/2.jpg",
            "pics/2019/07/Beach/.hidden.jpg",
            "pics/2019/07-x/",
            "pics/2019/Trip to sea/",
            "pics/B/",
            "pics/Urlaub_vlp-Dateien/",
            "pics/a/",
            "pics/a/%1.jpg",
            ":odd/:in/",
            "\ufeffB/x/",
            "B/",
            "c/a/",
            "c/b/",
            "file",
            "link -> pics",
            "2019 -> pics/2019",
            "tofile -> file",
            "loop -> loop",
            "dangling -> nowhere",
            "closed/in/",
            "unlisted/",
            "unentered/",
        })
    {
        restrict("closed", 0000).restrict("unlisted", 0300).restrict("unentered", 0600);
    }
    // What may not be entered cannot be removed.
    ~Tree() { QProcess::execute(u"chmod"_s, { u"-R"_s, u"u+rwX"_s, path() }); }
    Q_DISABLE_COPY_MOVE(Tree)

    [[nodiscard]] QString filled(QString text) const { return text.replace(u"{}"_s, path()); }
    [[nodiscard]] QByteArray content(const QByteArray& name) const
    {
        return ReportText::fileContents(path(name));
    }
};

} // namespace

class tst_vlfolio_classify : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void runs_data();
    void runs();
    void hasRowsOfStart_data();
    void hasRowsOfStart();
    void allocationsFail_data();
    void allocationsFail();
};

void tst_vlfolio_classify::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_vlfolio_classify::runs_data()
{
    QTest::addColumn<QString>("setUp");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("terminal");
    QTest::addColumn<int>("exitCode");
    const QList<Run> runs = runsIn(QStringLiteral(VLFOLIO_RUNS));
    for (const Run& run : runs) {
        for (const QString& command : run.commands) {
            QTest::addRow("%s: %s", qPrintable(run.rule), qPrintable(command))
                << run.setUp << command << run.output << run.error << run.terminal << run.exitCode;
        }
    }
    QVERIFY(runs.size() > 100);
}

void tst_vlfolio_classify::runs()
{
    QFETCH(QString, setUp);
    QFETCH(QString, command);
    QFETCH(QString, output);
    QFETCH(QString, error);
    QFETCH(QString, terminal);
    QFETCH(int, exitCode);
    const Tree tree;
    const QString commands = setUp + command;
    static const QRegularExpression restricted(u"closed|unlisted|unentered|chmod"_s);

    const auto outcome = Shell::run(commands, tree, commands.contains(restricted));

    if (outcome.exitCode == Shell::setUpFailed)
        QSKIP("The system does not allow what this run needs");
    QCOMPARE(QString::fromUtf8(outcome.error).split(u'\n'), tree.filled(error).split(u'\n'));
    const QByteArray shown = terminal.isEmpty() ? outcome.terminal : QByteArray();
    QCOMPARE(QString::fromUtf8(outcome.output + shown), tree.filled(output));
    QCOMPARE(outcome.exitCode, exitCode);
    const QRegularExpression expected(QRegularExpression::anchoredPattern(terminal));
    QVERIFY2(terminal.isEmpty() || expected.match(QString::fromUtf8(outcome.terminal)).hasMatch(),
             outcome.terminal.toPercentEncoding().constData());

    // Where nothing else is said of the report.
    const QString report = tree.path(reportName);
    if (!commands.contains(u"vela"_s)) {
        QCOMPARE(QFile::exists(report), tree.filled(output).contains(report));
        QVERIFY(!QFile::exists(report) || tree.content(reportName).endsWith("</html>\n"));
    }
    const auto hidden = QDir::Dirs | QDir::Hidden;
    QCOMPARE(QDir(tree.path("pics")).entryList({ u".vlfolio*"_s }, hidden), QStringList());
}

void tst_vlfolio_classify::hasRowsOfStart_data()
{
    QTest::addColumn<QByteArray>("root");
    QTest::addColumn<QString>("setUp");

    const auto add = [](const char* name, const char* root, const char* setUp) {
        QTest::newRow(name) << QByteArray(root) << QString::fromLatin1(setUp);
    };
    add("no_report_was_there", "pics", "");
    add("a_report_was_there", "pics", "echo old >$report");
    add("a_report_that_may_not_be_written", "pics", "echo old >$report; chmod 400 $report");
    add("a_report_of_two_names", "pics", "ln elsewhere $report");
    // Opening one would never end.
    add("a_pipe_was_there", "pics", "mkfifo $report");
    add("a_link_to_a_file_was_there", "pics", "ln -s {}/elsewhere $report");
    add("a_link_to_nothing_was_there", "pics", "ln -s {}/nothing $report");
    add("a_link_to_a_folder_was_there", "pics", "ln -s {}/folder $report");
    add("report_of_several_pieces", "pics",
        "for i in $(seq 100); do mkdir -p pics/$i$(printf %0200d $i); done");
    add("root_is_a_link", "link", "");
    add("empty_folder", "pics/B", "");
    add("root_is_seen_twice", "c", "touch c/1.jpg; ln -sfn .. c/b/again");
}

// Byte for byte. The root counts its report in either.
void tst_vlfolio_classify::hasRowsOfStart()
{
    QFETCH(QByteArray, root);
    QFETCH(QString, setUp);
    Tree tree;
    tree.file("elsewhere", "kept").folder("folder");
    const QString directory = QString::fromLatin1(root);
    const QString prepare =
        u"report=%1/vela.classification.results.html; rm -f $report; %2\n"_s.arg(directory, setUp);

    const auto outcome = Shell::run(prepare + u"vlfolio-classify "_s + directory, tree, true);

    if (outcome.exitCode == Shell::setUpFailed)
        QSKIP("The superuser's rights cannot be dropped here");
    const QByteArray name = root + "/vela.classification.results.html";
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.output, tree.path(name).toUtf8() + '\n');
    QCOMPARE(tree.content("elsewhere"), QByteArray("kept"));
    QVERIFY(!QFile::exists(tree.path("nothing")));
    QVERIFY(QDir(tree.path("folder")).isEmpty());
    const QByteArray report = tree.content(name);
    QCOMPARE(Shell::run(prepare, tree).exitCode, 0);
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(tree.path(root))).start();
    QByteArray expected = tree.content(name);
    if (root == "c") {
        // Of a link that leads back there is the row alone.
        const qsizetype below = expected.indexOf(
            "\t\t\t<tr class=Unknown>\n\t\t\t\t<td>Unknown</td>\n\t\t\t\t<td>/b/again/a<");
        QVERIFY(below > 0);
        expected = expected.first(below) + expected.sliced(expected.indexOf("\t\t</table>"));
    }
    QCOMPARE(report, expected);
}

void tst_vlfolio_classify::allocationsFail_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("step");

    QTest::newRow("report") << u"pics"_s << 2;
    QTest::newRow("exclusions") << u"--list --exclude 2019 --exclude 'q*' pics"_s << 3;
    QTest::newRow("unknown_option") << u"--nosuch pics"_s << 3;
    QTest::newRow("names_with_markup") << u"markup"_s << 1;
    QTest::newRow("page_of_many_years") << u"--page page.html years"_s << 32;
}

// One of them at a time: what is told is true, and the output is whole. A few end the process
// within Qt and the C library.
void tst_vlfolio_classify::allocationsFail()
{
    QFETCH(QString, arguments);
    QFETCH(int, step);
    if (underSanitizer)
        QSKIP("A sanitizer gives memory of its own");
    RawDirectory tree({ "pics/2019/07/", "pics/q/", "markup/<b>x/", "years/" });
    // More years than the chart has bars.
    for (int year = 2000; year < 2065; ++year)
        tree.folder("years/" + QByteArray::number(year));
    QVERIFY2(tree.isValid(), tree.error());
    tree.file(reportName, "old");
    const auto complete = Shell::run(u"vlfolio-classify "_s + arguments, tree);
    const QByteArray report = ReportText::fileContents(tree.path(reportName));
    int runs = 0;
    int deaths = 0;
    for (int nth = 1;; nth += step) {
        QVERIFY(ReportText::writeFile(tree.path(reportName), "old"));
        const auto outcome = Shell::run(u"exec env LD_PRELOAD=\"$memory\" FAILING_ALLOCATION=%1 "
                                        "vlfolio-classify %2"_s.arg(nth)
                                            .arg(arguments),
                                        tree);
        if (!outcome.error.startsWith("failed\n"))
            break;
        ++runs;
        const QByteArray found = ReportText::fileContents(tree.path(reportName));
        QVERIFY(found == report || found == "old");
        if (outcome.exitCode == complete.exitCode) {
            QCOMPARE(outcome.output, complete.output);
            QCOMPARE(found, report);
        } else if (outcome.exitCode > 128) {
            ++deaths;
            QVERIFY2(outcome.error.contains("/libQt6Core.so"), outcome.error.constData());
        } else {
            QCOMPARE(outcome.exitCode, 1);
            QVERIFY2(outcome.error.startsWith("failed\nvlfolio-classify: "),
                     outcome.error.constData());
        }
    }
    qInfo("%d of %d failing allocations ended the process", deaths, runs);
    QVERIFY(runs > 0);
    QVERIFY(deaths * 50 < runs);
}

QTEST_GUILESS_MAIN(tst_vlfolio_classify)

#include "tst_vlfolio_classify.moc"
