#include "ApplicationObject.h"
#include "MessageRecorder.h"
#include "RawDirectory.h"
#include "RecordingPlatform.h"
#include "ReportText.h"
#include "TestRows.h"
#include "WorkingDirectory.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <VLCore/VLLogger.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <type_traits>

using namespace Qt::StringLiterals;
using namespace ReportText;

static_assert(
    std::is_same_v<decltype(&VLFolioEventClassifier::start), void (VLFolioEventClassifier::*)()>);

namespace {

QString reportPathIn(const QString& root)
{
    return root + u'/' + QLatin1StringView(reportName);
}

QByteArrayList pictures()
{
    return { "pics/2019/05/", "pics/a.jpg", "pics/2019/b.jpg", "pics/2019/05/c.jpg" };
}

// What is reported of them with the paths behind the root's as given.
QByteArray picturesReport(const QString& root, const QString& year = u"/2019"_s)
{
    return report({ row("Root", root.toUtf8(), "2", "no data"),
                    row("Year", year.toUtf8(), "1", "no data"),
                    row("Month", year.toUtf8() + "/05", "1", "no data") });
}

} // namespace

// Runs without an application object until a function makes one.
class tst_start : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void wholeReport();
    void callsAndMessagesInOrder();
    void whatAppearsOnTheWay();
    void twoRunsAreIndependent();
    void reportThatCannotBeWrittenIsOpened();
    void rootCell_data();
    void rootCell();
    void reportIsEmptyOnceTheApplicationIsGone();

private:
    ApplicationObject m_application;
};

void tst_start::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

// Also where there never was an application object.
void tst_start::wholeReport()
{
    QCOMPARE(QCoreApplication::instance(), nullptr);
    RawDirectory tree({ "2019/05/Birthday/2019-05-04/", "2019/05/Birthday/Cake/", "2019/2018 copy/",
                        "2019-x/", "2019 x/", ".hidden/2019/", "Summer <b>&/", "07/", "2020-01-31/",
                        "Party_vlp-Dateien/", "\u65e5\u8a18 %1/", "a.jpg", ".hidden_file",
                        "2019/05/Birthday/c.jpg", "2019/05/Birthday/d" });

    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(tree.path())).start();
    QCOMPARE(fileContents(tree.path(reportName)),
             report({
                 row("Root", tree.path().toUtf8(), "2", "no data"),
                 row("Month", "/07", "0", "no data"),
                 row("Year", "/2019", "0", "no data"),
                 row("Year", "/2019 x", "0", "no data"),
                 row("Year", "/2019-x", "0", "no data"),
                 row("Month", "/2019/05", "0", "no data"),
                 row("Event", "/2019/05/Birthday", "2", "no data"),
                 row("Day", "/2019/05/Birthday/2019-05-04", "0", "no data"),
                 row("Unknown", "/2019/05/Birthday/Cake", "0", "no data"),
                 row("Event", "/2019/2018 copy", "0", "no data"),
                 row("Event", "/2020-01-31", "0", "no data"),
                 row("ProjectFolder", "/Party_vlp-Dateien", "0", "no data"),
                 row("Unknown", "/Summer <b>&", "0", "no data"),
                 row("Unknown", "/\u65e5\u8a18 %1", "0", "no data"),
             }));
    QCOMPARE(recorder.texts(), QStringList(u"startClassifyEvent"_s));
}

// The answer of the platform service plays no part.
void tst_start::callsAndMessagesInOrder()
{
    RawDirectory tree;
    tree.make(pictures()).file(QByteArray("pics/") + reportName, "old");
    QVERIFY2(tree.isValid(), tree.error());
    const QString root = tree.path("pics");
    const QString reportPath = reportPathIn(root);
    RecordingPlatform platform;
    platform.opens = false;
    platform.openedArguments = QStringList { u"not called"_s };
    platform.openedApplication = u"not called"_s;
    const MessageRecorder recorder(
        [&platform](const MessageRecorder::Message& message) { platform.note(message.text); });
    VLFolioEventClassifier classifier { QFileInfo(root) };
    QCOMPARE(platform.calls, QStringList());

    classifier.start();
    const QString listing = u"getDirectFilesInDirectory "_s + root;
    QCOMPARE(platform.calls,
             (QStringList { u"startClassifyEvent"_s,
                            u"removing file \""_s + reportPath + u"\" succeeded:  true"_s, listing,
                            listing + u"/2019"_s, listing + u"/2019/05"_s,
                            u"directoryContentsChanged "_s + root, u"openFile "_s + reportPath }));
    QCOMPARE(platform.openedArguments, QStringList());
    QCOMPARE(platform.openedApplication, QString());
    const MessageRecorder::Message message = recorder.messages().constFirst();
    QCOMPARE(message.type, QtInfoMsg);
    QCOMPARE(message.category, QByteArray("vl.folio.service"));
}

// The log is ahead of the walk, the walk ahead of the report, and that whole when it is opened.
void tst_start::whatAppearsOnTheWay()
{
    RawDirectory tree;
    tree.make(pictures()).file(QByteArray("pics/") + reportName, "old");
    QVERIFY2(tree.isValid(), tree.error());
    const QString root = tree.path("pics");
    const QByteArray expected =
        report({ row("Root", root.toUtf8(), "3", "no data"), row("Year", "/2019", "1", "no data"),
                 row("Month", "/2019/05", "1", "no data"), row("Year", "/2020", "0", "no data") });
    RecordingPlatform platform([&root, &expected](const QString& call) {
        const QString path = reportPathIn(root);
        QVERIFY(QFile::exists(path));
        if (!call.startsWith(u"getDirectFilesInDirectory"_s))
            QCOMPARE(fileContents(path), expected);
    });
    const MessageRecorder recorder([&tree](const MessageRecorder::Message& message) {
        if (message.text == u"startClassifyEvent")
            tree.make({ "pics/2020/" });
        else
            tree.make({ "pics/2021/", "pics/late.jpg" });
    });
    VLFolioEventClassifier(QFileInfo(root)).start();
    QCOMPARE(recorder.texts().size(), 2);
    QCOMPARE(platform.calls.size(), 6);
    QVERIFY(QFileInfo(root + u"/2021"_s).isDir());
}

void tst_start::twoRunsAreIndependent()
{
    RawDirectory tree;
    QVERIFY2(tree.make(pictures()).isValid(), tree.error());
    const QString root = tree.path("pics");
    const QString reportPath = reportPathIn(root);
    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier classifier { QFileInfo(root) };
    classifier.start();
    const VLLogger* const logger = VLSingleton<VLLogger>::instance();
    QCOMPARE(fileContents(reportPath), picturesReport(root));

    QVERIFY(QDir(root + u"/2019/05"_s).removeRecursively());
    QVERIFY(QFile::remove(root + u"/2019/b.jpg"_s));
    QVERIFY(QDir(root).mkdir(u"Summer"_s));
    classifier.start();
    QCOMPARE(
        fileContents(reportPath),
        report({ row("Root", root.toUtf8(), "2", "no data"), row("Year", "/2019", "0", "no data"),
                 row("Unknown", "/Summer", "0", "no data") }));
    VLFolioEventClassifier(QFileInfo(root)).start();
    QCOMPARE(VLSingleton<VLLogger>::instance(), logger);
    QCOMPARE(recorder.texts().count(u"startClassifyEvent"_s), 3);
    QCOMPARE(platform.calls.count(u"openFile "_s + reportPath), 3);
    QCOMPARE(QDir(root).entryList(QDir::Files | QDir::Hidden),
             (QStringList { u"a.jpg"_s, QLatin1StringView(reportName) }));
}

void tst_start::reportThatCannotBeWrittenIsOpened()
{
    RawDirectory tree({ "pics" });
    const QString root = tree.path("pics");
    const QString reportPath = reportPathIn(root);
    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(root)).start();
    QCOMPARE(recorder.messages().size(), 2);
    const MessageRecorder::Message message = recorder.messages().constLast();
    QCOMPARE(message.type, QtWarningMsg);
    QVERIFY(message.text.startsWith(u"Could not write to file QFileInfo("_s + reportPath
                                    + u") 5 \""_s));
    QCOMPARE(platform.calls,
             (QStringList { u"directoryContentsChanged "_s + root, u"openFile "_s + reportPath }));
}

void tst_start::rootCell_data()
{
    // "@" is the directory above "pics", and "pics" the working directory.
    const TestRows<QByteArray, QString, QString, QString> row("name", "root", "cell", "year");
    row("ascii", "pictures", u"@/pictures"_s, u"@/pictures"_s, u"/2019"_s);
    row("beyond_ascii", "B\u00fccher", u"@/B\u00fccher"_s, u"@/B\u00fccher"_s, u"/2019"_s);
    row("beyond_the_basic_plane", "\U0001F4F7", u"@/\U0001F4F7"_s, u"@/\U0001F4F7"_s, u"/2019"_s);
    row("placeholders", "%1 %2", u"@/%1 %2"_s, u"@/%1 %2"_s, u"/2019"_s);
    row("year_as_root", "2019", u"@/2019"_s, u"@/2019"_s, u"/2019"_s);
    row("hidden_root", ".pictures", u"@/.pictures"_s, u"@/.pictures"_s, u"/2019"_s);
    row("relative", "one", u"../one"_s, u"@/one"_s, u"/2019"_s);
    row("working_directory", "one", u"."_s, u"@/pics"_s, u"/2019"_s);
    // The slash belongs to the root's path, so it is cut off the other rows.
    row("trailing_slash", "one", u"@/one/"_s, u"@/one/"_s, u"2019"_s);
    row("link", "one", u"@/link"_s, u"@/link"_s, u"/2019"_s);
    // A root without a path: nothing is cut off the paths of the others.
    row("default_constructed", "one", {}, {}, u"@/pics/2019"_s);
}

// What of a root shows in its own row and, as so many code units less, in the others.
void tst_start::rootCell()
{
    QFETCH(const QByteArray, name);
    QFETCH(QString, root);
    QFETCH(QString, cell);
    QFETCH(QString, year);

    RawDirectory tree;
    QVERIFY2(tree.make(pictures()).isValid(), tree.error());
    QVERIFY(QFile::rename(tree.path("pics"), tree.path(name)));
    QVERIFY2(tree.make(pictures()).make({ "link -> " + name }).isValid(), tree.error());
    const WorkingDirectory inside(tree.path("pics"));
    for (QString* const text : { &root, &cell, &year })
        text->replace(u'@', tree.path());

    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(root.isEmpty() ? QFileInfo() : QFileInfo(root)).start();
    const QString reportPath =
        reportPathIn(QDir::cleanPath(cell.isEmpty() ? tree.path("pics") : cell));
    QCOMPARE(platform.calls.constLast(), u"openFile "_s + reportPath);
    QCOMPARE(fileContents(reportPath), picturesReport(cell, year));
}

void tst_start::reportIsEmptyOnceTheApplicationIsGone()
{
    m_application.begin();
    m_application.end();
    QVERIFY(QCoreApplication::closingDown());
    RawDirectory tree;
    QVERIFY2(tree.make(pictures()).isValid(), tree.error());
    const QString root = tree.path("pics");
    const QString reportPath = reportPathIn(root);
    QVERIFY(writeFile(reportPath, "old"));
    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(root)).start();
    QCOMPARE(recorder.texts(),
             (QStringList { u"startClassifyEvent"_s,
                            u"removing file \""_s + reportPath + u"\" succeeded:  true"_s }));
    QCOMPARE(fileContents(reportPath), lines(1, 23));
    QCOMPARE(platform.calls,
             (QStringList { u"directoryContentsChanged "_s + root, u"openFile "_s + reportPath }));
}

QTEST_APPLESS_MAIN(tst_start)
#include "tst_start.moc"
