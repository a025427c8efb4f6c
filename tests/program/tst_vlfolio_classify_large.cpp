#include "ProgramRun.h"
#include "RawDirectory.h"
#include "Sanitizer.h"

#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <csignal>
#include <cstring>

using namespace Qt::StringLiterals;

using Stream = ProgramRun::Stream;

namespace {

constexpr auto reportName = "vela.classification.results.html";

// 200 years with 99 events each, years first.
QList<QByteArray> folderNames()
{
    QList<QByteArray> names;
    for (int year = 2000; year < 2200; ++year)
        names.append(QByteArray::number(year));
    for (int i = 0; i < 19'800; ++i)
        names.append(names.at(i % 200) + "/event " + QByteArray::number(i / 200));
    return names;
}

} // namespace

// A collection of 20,000 folders, in use.
class tst_vlfolio_classify_large : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void progressIsShownAndTakenAway_data();
    void progressIsShownAndTakenAway();
    void endsQuietlyWithItsReader_data();
    void endsQuietlyWithItsReader();
    void memoryIsShort_data();
    void memoryIsShort();

private:
    RawDirectory m_tree;
};

void tst_vlfolio_classify_large::initTestCase()
{
    for (const QByteArray& name : folderNames())
        m_tree.folder(name);
    QVERIFY2(m_tree.isValid(), std::strerror(errno));
}

void tst_vlfolio_classify_large::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_vlfolio_classify_large::progressIsShownAndTakenAway_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("step");
    QTest::addColumn<qsizetype>("lines");

    QTest::newRow("report") << u"--no-open"_s << u"Writing the report: folder \\d+ of 20001"_s
                            << qsizetype(1);
    QTest::newRow("json") << u"--json"_s << u"Counting files: folder \\d+ of 20001"_s
                          << qsizetype(20'001);
}

void tst_vlfolio_classify_large::progressIsShownAndTakenAway()
{
    QFETCH(QString, option);
    QFETCH(QString, step);
    QFETCH(qsizetype, lines);

    const auto outcome = ProgramRun({ option, m_tree.path() })
                             .error(Stream::Terminal)
                             .preloading(QStringLiteral(VLFOLIO_SLOW_LISTINGS))
                             .with(u"VLFOLIO_AWAITING_LISTING"_s, u"20"_s)
                             .run();

    const QRegularExpression shown(
        uR"(\A(\r\x1b\[KWalking the folders: \d+ read)+(\r\x1b\[K%1)*\r\x1b\[K\z)"_s.arg(step));
    QVERIFY2(shown.match(QString::fromUtf8(outcome.terminal)).hasMatch(),
             outcome.terminal.toPercentEncoding().constData());
    QCOMPARE(outcome.output.count('\n'), lines);
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify_large::endsQuietlyWithItsReader_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("read");

    QTest::newRow("list") << u"--list"_s << "   Root <= \n   Year <= 2000\n"_ba;
    const QByteArray json =
        R"({"files":0,"occasions":[],"ownType":"Root","path":"{}","relativePath":"","tests":[],)"
        R"("type":"Root","value":1})"
        "\n"
        R"({"files":0,"occasions":[],"ownType":"Year","path":"{}/2000","relativePath":"2000","tests":["year"],)"
        R"("type":"Year","value":2})"
        "\n";
    QTest::newRow("json") << u"--json"_s << json;
}

void tst_vlfolio_classify_large::endsQuietlyWithItsReader()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, read);
    QFile::remove(m_tree.path() + u'/' + QString::fromLatin1(reportName));

    QProcess program;
    QProcess head;
    program.setStandardOutputProcess(&head);
    program.setChildProcessModifier([] { std::signal(SIGPIPE, SIG_DFL); });
    program.start(QStringLiteral(VLFOLIO_PROGRAM), { option, m_tree.path() });
    head.start(u"head"_s, { u"-n"_s, u"2"_s });
    QVERIFY(head.waitForFinished(-1));
    QVERIFY(program.waitForFinished(-1));

    QCOMPARE(head.readAllStandardOutput(), read.replace("{}", m_tree.path().toUtf8()));
    QCOMPARE(program.readAllStandardError(), QByteArray());
    QCOMPARE(program.exitStatus(), QProcess::CrashExit);
    QCOMPARE(program.exitCode(), SIGPIPE);
}

void tst_vlfolio_classify_large::memoryIsShort_data()
{
    QTest::addColumn<QString>("option");

    for (const auto* const option : { "--no-open", "--list", "--json", "--summary" })
        QTest::addRow("%s", option) << QString::fromLatin1(option);
}

void tst_vlfolio_classify_large::memoryIsShort()
{
    if (underSanitizer)
        QSKIP("A sanitizer takes memory of its own");
    QFETCH(QString, option);
    // Enough for the program to begin, and far less than the results take.
    constexpr unsigned long limit = 8UL * 1024 * 1024;

    const auto outcome =
        ProgramRun({ option, m_tree.path() }).before([] { ChildSteps::limitMemory(limit); }).run();

    if (outcome.exitCode == ProgramRun::setUpFailed)
        QSKIP("Memory cannot be limited here");
    QCOMPARE(outcome.error, "vlfolio-classify: out of memory\n"_ba);
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
}

QTEST_GUILESS_MAIN(tst_vlfolio_classify_large)
#include "tst_vlfolio_classify_large.moc"
