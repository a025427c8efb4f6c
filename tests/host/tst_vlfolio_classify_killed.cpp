#include "HostProgram.h"
#include "PictureTree.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <csignal>
#include <filesystem>

using namespace Qt::StringLiterals;

namespace {

const QString reportName = u"pics/vela.classification.results.html"_s;

// All that stands below \a directory but the report: names, kinds, permissions, times and bytes. Of
// the collection's own folder, not the time: the report comes and goes there.
QStringList picturesIn(const PictureTree& tree)
{
    namespace fs = std::filesystem;
    QStringList seen;
    for (const auto& entry : fs::recursive_directory_iterator(tree.path().toStdString())) {
        const QString name =
            QString::fromStdString(entry.path().string()).mid(tree.path().size() + 1);
        if (name == reportName)
            continue;
        const auto status = entry.symlink_status();
        const bool isRoot = name == "pics"_L1;
        const auto time =
            isRoot || entry.is_symlink() ? 0 : entry.last_write_time().time_since_epoch().count();
        const QByteArray content = entry.is_regular_file() ? tree.content(name) : QByteArray();
        seen.append(u"%1 %2 %3 %4 %5"_s.arg(name)
                        .arg(int(status.type()))
                        .arg(int(status.permissions()), 0, 8)
                        .arg(time)
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

QHash<QString, QString> signalAtCall(int signal, long nth)
{
    return { { u"LD_PRELOAD"_s, QStringLiteral(VLFOLIO_SIGNAL_AT_CALL_MODULE) },
             { u"ASAN_OPTIONS"_s, u"verify_asan_link_order=0"_s },
             { u"VLFOLIO_SIGNAL_AT_CALL"_s, u"%1 %2"_s.arg(signal).arg(nth) } };
}

} // namespace

class tst_vlfolio_classify_killed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void damagesNothing_data();
    void damagesNothing();
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

void tst_vlfolio_classify_killed::damagesNothing()
{
    QFETCH(int, signal);
    QFETCH(long, first);
    QFETCH(long, step);
    const PictureTree tree;
    addManyLongNames(tree);
    const QStringList pictures = picturesIn(tree);
    const QStringList arguments { u"--no-open"_s, tree.path(u"pics"_s) };
    QCOMPARE(HostProgram(arguments).run().exitCode, 0);
    const QByteArray fullReport = tree.content(reportName);
    QVERIFY(fullReport.endsWith("</html>\n"));

    const QByteArray line = tree.path(reportName).toUtf8() + '\n';
    int without = 0;
    int incomplete = 0;
    int complete = 0;
    for (long nth = first;; nth += step) {
        const auto killed = HostProgram(arguments).with(signalAtCall(signal, nth)).run();

        QCOMPARE(killed.error, QByteArray());
        QCOMPARE(picturesIn(tree), pictures);
        const QByteArray report = tree.exists(reportName) ? tree.content(reportName) : "";
        QVERIFY(fullReport.startsWith(report));
        if (killed.exitCode == 0) {
            QCOMPARE(killed.output, line);
            QCOMPARE(report, fullReport);
            break;
        }
        QCOMPARE(killed.exitCode, -signal);
        // What is told before the end is true.
        QVERIFY(killed.output.isEmpty() || (killed.output == line && report == fullReport));
        without += int(!tree.exists(reportName));
        incomplete += int(tree.exists(reportName) && report != fullReport);
        complete += int(report == fullReport);

        if (report != fullReport) {
            const auto next = HostProgram(arguments).run();
            QCOMPARE(next.exitCode, 0);
            QCOMPARE(next.error, QByteArray());
            QCOMPARE(tree.content(reportName), fullReport);
            QCOMPARE(picturesIn(tree), pictures);
        }
    }
    // Before the old report is gone, within the new one, and in between, which is a single moment.
    QVERIFY(complete > 10);
    QVERIFY(incomplete > 5);
    QVERIFY(without > 0 || step > 1);
    qInfo("killed with no report %d times, with an incomplete one %d times, with a whole one %d "
          "times",
          without, incomplete, complete);
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
    auto environment = signalAtCall(signal, 16);
    environment[u"LD_PRELOAD"_s] += u":" VLFOLIO_SLOW_LISTINGS ""_s;

    const auto killed = HostProgram({ u"--no-open"_s, tree.path(u"pics"_s) })
                            .error(HostProgram::Stream::Terminal)
                            .with(environment)
                            .run();

    QCOMPARE(killed.exitCode, -signal);
    static const QRegularExpression frames(uR"(\A(\r\x1b\[KWalking the folders \.\.\.)+\z)"_s);
    QVERIFY2(frames.match(QString::fromUtf8(killed.terminal)).hasMatch(),
             killed.terminal.toPercentEncoding().constData());
}

QTEST_GUILESS_MAIN(tst_vlfolio_classify_killed)
#include "tst_vlfolio_classify_killed.moc"
