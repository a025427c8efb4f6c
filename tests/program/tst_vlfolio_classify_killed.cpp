#include "PictureTree.h"
#include "ProgramRun.h"

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <csignal>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString reportName = u"pics/vela.classification.results.html"_s;

// All that stands below the tree but the report: names, kinds, permissions, times and bytes. Of the
// collection's own folder, not the time: the report comes there.
QStringList picturesIn(const PictureTree& tree)
{
    QStringList seen;
    QDirIterator entries(tree.path(), QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString name = entries.next().mid(tree.path().size() + 1);
        struct stat status = {};
        if (name == reportName || lstat(QFile::encodeName(entries.filePath()).constData(), &status))
            continue;
        const bool isRoot = name == "pics"_L1;
        const QByteArray content = S_ISREG(status.st_mode) ? tree.content(name) : QByteArray();
        seen.append(u"%1 %2 %3 %4"_s.arg(name)
                        .arg(status.st_mode, 0, 8)
                        .arg(isRoot ? 0 : qint64(status.st_mtime))
                        .arg(QString::fromLatin1(content.toHex())));
    }
    seen.sort();
    return seen;
}

// Names so long that the report is written in several pieces.
void addManyLongNames(const PictureTree& tree)
{
    QString folder = u"pics"_s;
    for (int i = 0; i < 12; ++i) {
        folder += u"/2019 "_s + QString(200, QChar(u'a' + i));
        tree.addFolder(folder);
        tree.addFile(folder + u"/1.jpg"_s, "picture " + QByteArray::number(i));
    }
    tree.addLink(u"1.jpg"_s, u"pics/link.jpg"_s);
}

// The program, with a shell's command before its n-th call that opens, closes, writes or changes
// something. "{}" is the tree.
ProgramRun::Outcome runWith(const PictureTree& tree, long nth, const QString& command)
{
    return ProgramRun({ u"--no-open"_s, tree.path(u"pics"_s) })
        .in(tree.path(u"pics"_s))
        .preloading(QStringLiteral(VLFOLIO_COMMAND_AT_CALL))
        .with(u"VLFOLIO_COMMAND_AT_CALL"_s, u"%1 %2"_s.arg(nth).arg(tree.filled(command)))
        .run();
}

QByteArray pathLine(const PictureTree& tree)
{
    return tree.path(reportName).toUtf8() + '\n';
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
    void twoRunsAtOnce();
    void leavesWholeProgressLines_data();
    void leavesWholeProgressLines();
};

void tst_vlfolio_classify_killed::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_vlfolio_classify_killed::damagesNothing_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<long>("first");
    QTest::addColumn<long>("step");

    // Each moment once, and once more with one of the signals that a program could mistreat.
    QTest::newRow("killed") << SIGKILL << 1L << 1L;
    QTest::newRow("interrupted") << SIGINT << 1L << 3L;
    QTest::newRow("terminated") << SIGTERM << 2L << 3L;
    QTest::newRow("nobody_reads") << SIGPIPE << 3L << 3L;
}

// The report is the old one or the new one at any moment. What is left is hidden.
void tst_vlfolio_classify_killed::damagesNothing()
{
    QFETCH(int, signal);
    QFETCH(long, first);
    QFETCH(long, step);
    const PictureTree tree;
    addManyLongNames(tree);
    const QStringList pictures = picturesIn(tree);
    QCOMPARE(ProgramRun({ tree.path(u"pics"_s) }).run().exitCode, 0);
    const QByteArray newReport = tree.content(reportName);
    QVERIFY(newReport.size() > 2 * 8192 && newReport.endsWith("</html>\n"));

    int timesOld = 0;
    int timesNew = 0;
    for (long nth = first;; nth += step) {
        tree.addFile(reportName, "old");
        const auto killed = runWith(tree, nth, u"kill -%1 $PPID"_s.arg(signal));

        QCOMPARE(killed.error, QByteArray());
        QCOMPARE(picturesIn(tree), pictures);
        const QByteArray report = tree.content(reportName);
        QVERIFY(report == "old" || report == newReport);
        if (killed.exitCode == 0) {
            QCOMPARE(killed.output, pathLine(tree));
            QCOMPARE(report, newReport);
            break;
        }
        QCOMPARE(killed.exitCode, -signal);
        // What is told before the end is true.
        QVERIFY(killed.output.isEmpty()
                || (killed.output == pathLine(tree) && report == newReport));
        // What is left there would take calls of the next run.
        for (const QString& left : tree.names(u"pics"_s).filter(u".vlfolio-"_s))
            QDir(tree.path(u"pics/"_s + left)).removeRecursively();
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

    QTest::newRow("report_becomes_a_link")
        << u"ln -sf {}/victim/file vela.classification.results.html"_s;
    QTest::newRow("report_becomes_a_pipe")
        << u"rm -f vela.classification.results.html; mkfifo vela.classification.results.html"_s;
    // Whoever owns the collection can move away what the program makes there.
    QTest::newRow("private_directory_becomes_a_link")
        << u"for d in .vlfolio-*; do mv $d ../moved && ln -s {}/victim $d; done"_s;
    QTest::newRow("private_directory_becomes_another_one")
        << u"for d in .vlfolio-*; do mv $d ../moved && mkdir $d && "
           "ln -s {}/victim/file $d/new; done"_s;
    QTest::newRow("private_directory_becomes_one_with_a_pipe")
        << u"for d in .vlfolio-*; do mv $d ../moved && mkdir $d && mkfifo $d/new; done"_s;
    QTest::newRow("collection_becomes_a_link") << u"mv {}/pics {}/moved; ln -s victim {}/pics"_s;
}

// Before each of its calls: nothing is written elsewhere, nothing waits for ever.
void tst_vlfolio_classify_killed::cannotBeSteered()
{
    QFETCH(QString, command);
    for (long nth = 1;; ++nth) {
        const PictureTree tree;
        tree.addFolder(u"pics/2019"_s);
        tree.addFolder(u"victim"_s);
        tree.addFile(u"victim/file"_s, "kept");

        const auto outcome = runWith(tree, nth, u"exec 2>/dev/null; : >{}/ran; "_s + command);

        QCOMPARE(tree.content(u"victim/file"_s), QByteArray("kept"));
        const QString told = QString::fromUtf8(outcome.error);
        if (outcome.exitCode == 0) {
            QCOMPARE(outcome.output, pathLine(tree));
        } else {
            QCOMPARE(outcome.exitCode, 1);
            QVERIFY2(told.startsWith(u"vlfolio-classify: cannot "_s), outcome.error.constData());
            QCOMPARE(outcome.output, QByteArray());
        }
        if (!tree.exists(u"ran"_s))
            break;
    }
}

// In two languages: a mixture would show.
void tst_vlfolio_classify_killed::twoRunsAtOnce()
{
    const PictureTree tree;
    tree.addFolder(u"pics/2019/Juli"_s);
    const auto reportIn = [&tree](const QString& locale) {
        const auto outcome = ProgramRun({ u"--locale"_s, locale, tree.path(u"pics"_s) }).run();
        return outcome.exitCode == 0 ? tree.content(reportName) : QByteArray();
    };
    const QByteArray german = reportIn(u"de"_s);
    const QByteArray plain = reportIn(u"C"_s);
    QVERIFY(german.contains("<td>Month</td>") && !plain.contains("<td>Month</td>"));

    int asOuter = 0;
    for (long nth = 1;; ++nth) {
        QFile::remove(tree.path(u"ran"_s));
        const auto outcome = runWith(
            tree, nth, u": >{}/ran; '" VLFOLIO_PROGRAM "' --locale de . >{}/printed 2>&1"_s);

        QCOMPARE(outcome.error, QByteArray());
        QCOMPARE(outcome.output, pathLine(tree));
        QCOMPARE(outcome.exitCode, 0);
        const QByteArray report = tree.content(reportName);
        QVERIFY(report == german || report == plain);
        asOuter += int(report == plain);
        if (!tree.exists(u"ran"_s))
            break;
        QCOMPARE(tree.content(u"printed"_s), pathLine(tree));
    }
    QVERIFY(asOuter > 10);
    QVERIFY(tree.names(u"pics"_s).filter(u".vlfolio"_s).isEmpty());
}

void tst_vlfolio_classify_killed::leavesWholeProgressLines_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("interrupted") << SIGINT;
    QTest::newRow("killed") << SIGKILL;
}

void tst_vlfolio_classify_killed::leavesWholeProgressLines()
{
    QFETCH(int, signal);
    const PictureTree tree;
    tree.addPictures();

    // Each folder is opened and closed; the second listing awaits a line.
    const auto killed = ProgramRun({ u"--no-open"_s, tree.path(u"pics"_s) })
                            .error(ProgramRun::Stream::Terminal)
                            .preloading(QStringLiteral(VLFOLIO_COMMAND_AT_CALL))
                            .preloading(QStringLiteral(VLFOLIO_SLOW_LISTINGS))
                            .with(u"VLFOLIO_COMMAND_AT_CALL"_s, u"16 kill -%1 $PPID"_s.arg(signal))
                            .with(u"VLFOLIO_AWAITING_LISTING"_s, u"2"_s)
                            .run();

    QCOMPARE(killed.exitCode, -signal);
    static const QRegularExpression frames(uR"(\A(\r\x1b\[KWalking the folders: \d+ read)+\z)"_s);
    QVERIFY2(frames.match(QString::fromUtf8(killed.terminal)).hasMatch(),
             killed.terminal.toPercentEncoding().constData());
}

QTEST_GUILESS_MAIN(tst_vlfolio_classify_killed)
#include "tst_vlfolio_classify_killed.moc"
