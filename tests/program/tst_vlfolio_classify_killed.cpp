#include "RawDirectory.h"
#include "ReportText.h"
#include "Shell.h"

#include <QtCore/QDateTime>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <csignal>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr auto reportName = "pics/vela.classification.results.html";

// All that stands below the tree but the report: names, kinds, permissions, times and bytes. Of the
// collection's own folder, not the time: the report comes there.
QStringList picturesIn(const RawDirectory& tree)
{
    QStringList seen;
    QDirIterator entries(tree.path(), QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        struct stat status = {};
        if (path == tree.path(reportName) || lstat(QFile::encodeName(path).constData(), &status))
            continue;
        const bool isRoot = path == tree.path("pics");
        const QByteArray content =
            S_ISREG(status.st_mode) ? ReportText::fileContents(path) : QByteArray();
        seen.append(u"%1 %2 %3 %4"_s.arg(path)
                        .arg(status.st_mode, 0, 8)
                        .arg(isRoot ? 0 : qint64(status.st_mtime))
                        .arg(QString::fromLatin1(content.toHex())));
    }
    seen.sort();
    return seen;
}

// Names so long that the report is written in several pieces.
void addManyLongNames(RawDirectory& tree)
{
    QByteArray folder = "pics";
    for (char letter = 'a'; letter <= 'l'; ++letter) {
        folder += "/2019 " + QByteArray(200, letter);
        tree.folders(folder).file(folder + "/1.jpg", QByteArray("picture ") + letter);
    }
    tree.link("pics/link.jpg", "1.jpg");
}

// The program in the collection, with a shell's command before its n-th call that opens, closes,
// writes or changes something.
Shell::Outcome runWith(const RawDirectory& tree, int nth, const QString& command,
                       const QString& options = u"--no-open"_s)
{
    return Shell::run(u"cd pics; exec env LD_PRELOAD=\"$calls\" \"AT_CALL=any %1 %2\" "
                      "vlfolio-classify %3 {}/pics"_s.arg(QString::number(nth), command, options),
                      tree);
}

QByteArray pathLine(const RawDirectory& tree)
{
    return tree.path(reportName).toUtf8() + '\n';
}

QStringList privateDirectoriesIn(const RawDirectory& tree, const QByteArray& name)
{
    return QDir(tree.path(name)).entryList({ u".vlfolio-*"_s }, QDir::Dirs | QDir::Hidden);
}

} // namespace

// What others do while the program is at work.
class tst_vlfolio_classify_killed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void damagesNothing_data();
    void damagesNothing();
    void cannotBeSteered_data();
    void cannotBeSteered();
    void directoryOfAnotherUserIsNotUsed();
    void twoRunsAtOnce();
};

void tst_vlfolio_classify_killed::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_vlfolio_classify_killed::damagesNothing_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("step");

    // Each moment once, and once more with one of the signals that a program could mistreat.
    QTest::newRow("killed") << SIGKILL << 1 << 1;
    QTest::newRow("interrupted") << SIGINT << 1 << 3;
    QTest::newRow("terminated") << SIGTERM << 2 << 3;
    QTest::newRow("nobody_reads") << SIGPIPE << 3 << 3;
}

// The report is the old one or the new one at any moment. What is left is hidden.
void tst_vlfolio_classify_killed::damagesNothing()
{
    QFETCH(int, signal);
    QFETCH(int, first);
    QFETCH(int, step);
    RawDirectory tree;
    addManyLongNames(tree);
    QVERIFY2(tree.isValid(), tree.error());
    const QStringList pictures = picturesIn(tree);
    QCOMPARE(Shell::run(u"vlfolio-classify pics"_s, tree).exitCode, 0);
    const QByteArray newReport = ReportText::fileContents(tree.path(reportName));
    QVERIFY(newReport.size() > 2 * 8192 && newReport.endsWith("</html>\n"));

    int timesOld = 0;
    int timesNew = 0;
    for (int nth = first;; nth += step) {
        QVERIFY(ReportText::writeFile(tree.path(reportName), "old"));
        const auto killed = runWith(tree, nth, u"kill -%1 \\$PPID"_s.arg(signal));

        QCOMPARE(killed.error, QByteArray());
        QCOMPARE(picturesIn(tree), pictures);
        const QByteArray report = ReportText::fileContents(tree.path(reportName));
        QVERIFY(report == "old" || report == newReport);
        if (killed.exitCode == 0) {
            QCOMPARE(killed.output, pathLine(tree));
            QCOMPARE(report, newReport);
            break;
        }
        QCOMPARE(killed.exitCode, 128 + signal);
        // What is told before the end is true.
        QVERIFY(killed.output.isEmpty()
                || (killed.output == pathLine(tree) && report == newReport));
        // What is left there would take calls of the next run.
        const QStringList leftOver = privateDirectoriesIn(tree, "pics");
        for (const QString& name : leftOver)
            QDir(tree.path("pics/" + name.toLatin1())).removeRecursively();
        timesOld += int(report == "old");
        timesNew += int(report == newReport);
    }
    // From the first call to the one that puts the new report in place, and behind that.
    QVERIFY(timesOld > 10);
    QVERIFY(timesNew > 0 || step > 1);
    qInfo("killed with the old report %d times, with the new one %d times", timesOld, timesNew);
}

void tst_vlfolio_classify_killed::cannotBeSteered_data()
{
    QTest::addColumn<QString>("command");

    const auto add = [](const char* name, const char* command) {
        QTest::newRow(name) << QString::fromLatin1(command);
    };
    add("report_becomes_a_link", "ln -sf {}/victim/file vela.classification.results.html");
    add("report_becomes_a_pipe",
        "rm -f vela.classification.results.html; mkfifo vela.classification.results.html");
    // Whoever owns the collection can move away what the program makes there.
    add("private_directory_becomes_a_link",
        "for d in .vlfolio-*; do mv \\$d ../moved && ln -s {}/victim \\$d; done");
    add("private_directory_becomes_another_one",
        "for d in .vlfolio-*; do mv \\$d ../moved && mkdir \\$d && "
        "ln -s {}/victim/file \\$d/new; done");
    add("private_directory_becomes_one_with_a_pipe",
        "for d in .vlfolio-*; do mv \\$d ../moved && mkdir \\$d && mkfifo \\$d/new; done");
    add("collection_becomes_a_link", "mv {}/pics {}/moved; ln -s victim {}/pics");
}

// Before each of its calls: nothing is written elsewhere, nothing waits for ever.
void tst_vlfolio_classify_killed::cannotBeSteered()
{
    QFETCH(QString, command);
    for (int nth = 1;; ++nth) {
        RawDirectory tree({ "pics/2019/", "victim/" });
        tree.file("victim/file", "kept");

        const auto outcome = runWith(tree, nth, u"exec 2>/dev/null; : >{}/ran; "_s + command);

        QCOMPARE(ReportText::fileContents(tree.path("victim/file")), QByteArray("kept"));
        const QString told = QString::fromUtf8(outcome.error);
        if (outcome.exitCode == 0) {
            QCOMPARE(outcome.output, pathLine(tree));
        } else {
            QCOMPARE(outcome.exitCode, 1);
            QVERIFY2(told.startsWith(u"vlfolio-classify: cannot "_s), outcome.error.constData());
            QCOMPARE(outcome.output, QByteArray());
        }
        if (!QFile::exists(tree.path("ran")))
            break;
    }
}

// Somebody else puts an own directory in the place of the private one, before each of the program's
// calls. What is written there, its owner could change before it is put in place.
void tst_vlfolio_classify_killed::directoryOfAnotherUserIsNotUsed()
{
    if (geteuid() != 0)
        QSKIP("Only the superuser can give a directory to another user.");
    constexpr qint64 oldTime = 86'400;
    int refused = 0;
    bool isDone = false;
    for (int nth = 1; !isDone; ++nth) {
        const RawDirectory tree({ "pics/" });
        const auto outcome =
            runWith(tree, nth,
                    u": >{}/ran; cd {}; for d in .vlfolio-*; do mv \\$d moved && mkdir \\$d "
                    "&& : >\\$d/kept && chown 4711 \\$d && touch -d @%1 \\$d; done"_s.arg(oldTime),
                    u"--page {}/page.html"_s);

        isDone = !QFile::exists(tree.path("ran"));
        QCOMPARE(QFile::exists(tree.path("page.html")), outcome.exitCode == 0);
        refused += outcome.exitCode == 1 ? 1 : 0;
        const QStringList foreign = privateDirectoriesIn(tree, ".");
        for (const QString& name : foreign) {
            const QFileInfo directory(tree.path(name.toLatin1()));
            QVERIFY(outcome.exitCode == 1
                    || directory.lastModified().toSecsSinceEpoch() == oldTime);
        }
    }
    QVERIFY(refused > 0);
}

// In two languages: a mixture would show.
void tst_vlfolio_classify_killed::twoRunsAtOnce()
{
    const RawDirectory tree({ "pics/2019/Juli/" });
    const auto reportIn = [&tree](const QString& locale) {
        const auto outcome = Shell::run(u"vlfolio-classify pics --locale "_s + locale, tree);
        return outcome.exitCode == 0 ? ReportText::fileContents(tree.path(reportName))
                                     : QByteArray();
    };
    const QByteArray german = reportIn(u"de"_s);
    const QByteArray plain = reportIn(u"C"_s);
    QVERIFY(german.contains("<td>Month</td>") && !plain.contains("<td>Month</td>"));

    int asOuter = 0;
    for (int nth = 1;; ++nth) {
        QFile::remove(tree.path("ran"));
        const auto outcome = runWith(tree, nth,
                                     u": >{}/ran; '$(command -v vlfolio-classify)' --locale de . "
                                     ">{}/printed 2>&1"_s);

        QCOMPARE(outcome.error, QByteArray());
        QCOMPARE(outcome.output, pathLine(tree));
        QCOMPARE(outcome.exitCode, 0);
        const QByteArray report = ReportText::fileContents(tree.path(reportName));
        QVERIFY(report == german || report == plain);
        asOuter += int(report == plain);
        if (!QFile::exists(tree.path("ran")))
            break;
        QCOMPARE(ReportText::fileContents(tree.path("printed")), pathLine(tree));
    }
    QVERIFY(asOuter > 10);
    QCOMPARE(privateDirectoriesIn(tree, "pics"), QStringList());
}

QTEST_GUILESS_MAIN(tst_vlfolio_classify_killed)
#include "tst_vlfolio_classify_killed.moc"
