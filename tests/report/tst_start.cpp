#include "MessageRecorder.h"
#include "RecordingPlatform.h"
#include "ReportText.h"
#include "WorkingDirectory.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <VLCore/VLLogger.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <algorithm>
#include <functional>
#include <type_traits>

using namespace Qt::StringLiterals;
using namespace ReportText;

static_assert(
    std::is_same_v<decltype(&VLFolioEventClassifier::start), void (VLFolioEventClassifier::*)()>);

namespace {

constexpr auto reportName = "vela.classification.results.html"_L1;
constexpr auto startMessage = "startClassifyEvent"_L1;

// Notes the messages and the calls of a run in one list, and lets a test take a hand in it.
class RunObserver : public RecordingPlatform
{
public:
    using Action = std::function<void(const QString& event)>;

    explicit RunObserver(Action action = {})
        : m_action(std::move(action))
        , m_recorder([this](const MessageRecorder::Message& message) { note(message.text); })
    {
    }

    bool openFile(const QString& path, const QStringList& arguments,
                  const QString& application) override
    {
        note(u"openFile "_s + path);
        return RecordingPlatform::openFile(path, arguments, application);
    }

    QStringList getDirectFilesInDirectory(const QDir& directory) const override
    {
        note(u"list "_s + directory.path());
        return RecordingPlatform::getDirectFilesInDirectory(directory);
    }

    void directoryContentsChanged(const QDir& directory) override
    {
        note(u"changed "_s + directory.path());
        RecordingPlatform::directoryContentsChanged(directory);
    }

    [[nodiscard]] QStringList events() const { return m_events; }
    [[nodiscard]] QList<MessageRecorder::Message> messages() const { return m_recorder.messages(); }

private:
    void note(const QString& event) const
    {
        m_events.append(event);
        if (m_action)
            m_action(event);
    }

    mutable QStringList m_events;
    Action m_action;
    MessageRecorder m_recorder;
};

// A platform service that cannot open anything.
class FailingPlatform : public RecordingPlatform
{
public:
    bool openFile(const QString& path, const QStringList& arguments,
                  const QString& application) override
    {
        static_cast<void>(RecordingPlatform::openFile(path, arguments, application));
        return false;
    }
};

// A root of the given name with the year 2019, its month 05 and one picture in each of the three.
class Pictures
{
public:
    explicit Pictures(const QString& name = u"pictures"_s)
        : m_path(m_dir.filePath(name))
    {
        m_isMade = QDir().mkpath(m_path + u"/2019/05"_s) && writeFile(m_path + u"/a.jpg"_s, "a")
            && writeFile(m_path + u"/2019/b.jpg"_s, "b")
            && writeFile(m_path + u"/2019/05/c.jpg"_s, "c");
    }

    [[nodiscard]] bool isMade() const { return m_isMade; }
    [[nodiscard]] QString parentPath() const { return m_dir.path(); }
    [[nodiscard]] QString path() const { return m_path; }
    [[nodiscard]] QString reportPath() const { return m_path + u'/' + reportName; }

    // The report on it, with the root given as rootCell.
    [[nodiscard]] static QByteArray report(const QString& rootCell)
    {
        return ReportText::report({ row("Root", rootCell.toUtf8(), "2", "no data"),
                                    row("Year", "/2019", "1", "no data"),
                                    row("Month", "/2019/05", "1", "no data") });
    }

private:
    QTemporaryDir m_dir;
    QString m_path;
    bool m_isMade = false;
};

qsizetype countOf(const QList<MessageRecorder::Message>& messages, const QString& text)
{
    return std::count_if(
        messages.cbegin(), messages.cend(),
        [&text](const MessageRecorder::Message& message) { return message.text == text; });
}

} // namespace

class tst_start : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void wholeReport();
    void logsOnceAndFirst();
    void logIsAheadOfTheWalk();
    void walkIsAheadOfTheReport();
    void eventsInOrder();
    void reportIsCompleteWhenOpened();
    void opensTheReportWithoutArguments();
    void answerOfThePlatformIsIgnored();

    void twoRunsAreIndependent();
    void secondRunWalksAnew();
    void classifiersShareTheLogger();

    void reportThatCannotBeWrittenIsOpened();
    void missingRoot();
    void rootThatIsAFile();

    void rootPathLengthCountsCodeUnits_data();
    void rootPathLengthCountsCodeUnits();
    void relativeRoot();
    void currentDirectoryAsRoot();
    void rootWithTrailingSlash();
    void rootThroughALink();
    void defaultConstructedRoot();
};

void tst_start::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_start::wholeReport()
{
    const QTemporaryDir dir;
    const QDir root(dir.path());
    const QStringList directories {
        u"2019/05/Birthday/2019-05-04"_s,
        u"2019/05/Birthday/Cake"_s,
        u"2019/2018 copy"_s,
        u"2019-x"_s,
        u"2019 x"_s,
        u".hidden/2019"_s,
        u"Summer <b>&"_s,
        u"07"_s,
        u"2020-01-31"_s,
        u"Party_vlp-Dateien"_s,
        u"\u65e5\u8a18 %1"_s,
    };
    for (const QString& directory : directories)
        QVERIFY(root.mkpath(directory));
    QVERIFY(writeFile(dir.filePath(u"a.jpg"_s), "a"));
    QVERIFY(writeFile(dir.filePath(u".hidden_file"_s), "b"));
    QVERIFY(writeFile(dir.filePath(u"2019/05/Birthday/c.jpg"_s), "c"));
    QVERIFY(writeFile(dir.filePath(u"2019/05/Birthday/d"_s), "d"));

    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(dir.path())).start();
    QCOMPARE(fileContents(dir.filePath(reportName)),
             report({
                 row("Root", dir.path().toUtf8(), "2", "no data"),
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
                 row("Unknown", "/\xe6\x97\xa5\xe8\xa8\x98 %1", "0", "no data"),
             }));
}

void tst_start::logsOnceAndFirst()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    const RunObserver observer;
    VLFolioEventClassifier classifier(QFileInfo(pictures.path()));
    QCOMPARE(observer.events(), QStringList());
    classifier.start();
    QCOMPARE(observer.messages().size(), 1);
    const MessageRecorder::Message message = observer.messages().constFirst();
    QCOMPARE(message.type, QtInfoMsg);
    QCOMPARE(message.category, QByteArray("vl.folio.service"));
    QCOMPARE(message.text, u"startClassifyEvent"_s);
    QCOMPARE(observer.events().constFirst(), u"startClassifyEvent"_s);
}

void tst_start::logIsAheadOfTheWalk()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    // What is made while the message is logged is found by the walk.
    const RunObserver observer([&pictures](const QString& event) {
        if (event == startMessage)
            QVERIFY(QDir(pictures.path()).mkdir(u"2020"_s));
    });
    VLFolioEventClassifier(QFileInfo(pictures.path())).start();
    QVERIFY(fileContents(pictures.reportPath()).contains("\t\t\t\t<td>/2020</td>\n"));
}

void tst_start::walkIsAheadOfTheReport()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    QVERIFY(writeFile(pictures.reportPath(), "old"));
    // What is made while the old report is removed is too late for the walk, but not for a count.
    const RunObserver observer([&pictures](const QString& event) {
        if (event.startsWith(u"removing file"_s)) {
            QVERIFY(QDir(pictures.path()).mkdir(u"2020"_s));
            QVERIFY(writeFile(pictures.path() + u"/late.jpg"_s, "late"));
        }
    });
    VLFolioEventClassifier(QFileInfo(pictures.path())).start();
    QCOMPARE(
        fileContents(pictures.reportPath()),
        report({ row("Root", pictures.path().toUtf8(), "3", "no data"),
                 row("Year", "/2019", "1", "no data"), row("Month", "/2019/05", "1", "no data") }));
    QVERIFY(QFileInfo(pictures.path() + u"/2020"_s).isDir());
}

void tst_start::eventsInOrder()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    QVERIFY(writeFile(pictures.reportPath(), "old"));
    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(pictures.path())).start();
    QCOMPARE(observer.events(),
             (QStringList {
                 u"startClassifyEvent"_s,
                 uR"(removing file ")"_s + pictures.reportPath() + uR"(" succeeded:  true)"_s,
                 u"list "_s + pictures.path(),
                 u"list "_s + pictures.path() + u"/2019"_s,
                 u"list "_s + pictures.path() + u"/2019/05"_s,
                 u"changed "_s + pictures.path(),
                 u"openFile "_s + pictures.reportPath(),
             }));
}

void tst_start::reportIsCompleteWhenOpened()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    QByteArrayList contents;
    const RunObserver observer([&pictures, &contents](const QString& event) {
        if (event == startMessage)
            QVERIFY(!QFile::exists(pictures.reportPath()));
        if (event.startsWith(u"list "_s))
            QVERIFY(QFile::exists(pictures.reportPath()));
        if (event.startsWith(u"changed "_s) || event.startsWith(u"openFile "_s))
            contents.append(fileContents(pictures.reportPath()));
    });
    VLFolioEventClassifier(QFileInfo(pictures.path())).start();
    QCOMPARE(
        contents,
        (QByteArrayList { Pictures::report(pictures.path()), Pictures::report(pictures.path()) }));
}

void tst_start::opensTheReportWithoutArguments()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    RunObserver observer;
    observer.openedArguments = QStringList { u"not called"_s };
    observer.openedApplication = u"not called"_s;
    VLFolioEventClassifier(QFileInfo(pictures.path())).start();
    QCOMPARE(observer.calls.constLast(), u"openFile "_s + pictures.reportPath());
    QCOMPARE(observer.openedArguments, QStringList());
    QCOMPARE(observer.openedApplication, QString());
}

void tst_start::answerOfThePlatformIsIgnored()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    const MessageRecorder recorder;
    const FailingPlatform platform;
    VLFolioEventClassifier(QFileInfo(pictures.path())).start();
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(platform.calls.count(u"openFile "_s + pictures.reportPath()), 1);
    QCOMPARE(fileContents(pictures.reportPath()), Pictures::report(pictures.path()));
}

void tst_start::twoRunsAreIndependent()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    const RunObserver observer;
    VLFolioEventClassifier classifier(QFileInfo(pictures.path()));
    classifier.start();
    const VLLogger* const logger = VLSingleton<VLLogger>::instance();
    QCOMPARE(fileContents(pictures.reportPath()), Pictures::report(pictures.path()));
    classifier.start();
    QCOMPARE(VLSingleton<VLLogger>::instance(), logger);
    QCOMPARE(fileContents(pictures.reportPath()), Pictures::report(pictures.path()));

    QCOMPARE(countOf(observer.messages(), startMessage), 2);
    QCOMPARE(observer.calls.count(u"openFile "_s + pictures.reportPath()), 2);
    QCOMPARE(QDir(pictures.path()).entryList(QDir::Files | QDir::Hidden),
             (QStringList { u"a.jpg"_s, reportName }));
}

void tst_start::secondRunWalksAnew()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    const RunObserver observer;
    VLFolioEventClassifier classifier(QFileInfo(pictures.path()));
    classifier.start();
    QVERIFY(QDir(pictures.path() + u"/2019/05"_s).removeRecursively());
    QVERIFY(QFile::remove(pictures.path() + u"/2019/b.jpg"_s));
    QVERIFY(QDir(pictures.path()).mkdir(u"Summer"_s));
    classifier.start();
    QCOMPARE(fileContents(pictures.reportPath()),
             report({ row("Root", pictures.path().toUtf8(), "2", "no data"),
                      row("Year", "/2019", "0", "no data"),
                      row("Unknown", "/Summer", "0", "no data") }));
}

void tst_start::classifiersShareTheLogger()
{
    const Pictures one(u"one"_s);
    const Pictures other(u"other"_s);
    QVERIFY(one.isMade() && other.isMade());
    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(one.path())).start();
    VLFolioEventClassifier(QFileInfo(other.path())).start();
    QCOMPARE(countOf(observer.messages(), startMessage), 2);
    QCOMPARE(fileContents(one.reportPath()), Pictures::report(one.path()));
    QCOMPARE(fileContents(other.reportPath()), Pictures::report(other.path()));
}

void tst_start::reportThatCannotBeWrittenIsOpened()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    QVERIFY(QDir(pictures.path()).mkdir(reportName));
    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(pictures.path())).start();
    QCOMPARE(observer.messages().size(), 3);
    QCOMPARE(observer.messages().at(2).type, QtWarningMsg);
    QCOMPARE(observer.calls,
             (QStringList { u"directoryContentsChanged "_s + pictures.path(),
                            u"openFile "_s + pictures.reportPath() }));
    QVERIFY(QFileInfo(pictures.reportPath()).isDir());
}

void tst_start::missingRoot()
{
    const QTemporaryDir dir;
    const QString root = dir.filePath(u"missing"_s);
    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(root)).start();
    QCOMPARE(observer.messages().size(), 2);
    const MessageRecorder::Message message = observer.messages().at(1);
    QCOMPARE(message.type, QtWarningMsg);
    QCOMPARE(message.category, QByteArray("default"));
    QVERIFY(message.text.startsWith(u"Could not write to file QFileInfo("_s + root + u'/'
                                    + reportName + u") 5 \""_s));
    QCOMPARE(observer.calls,
             (QStringList { u"directoryContentsChanged "_s + root,
                            u"openFile "_s + root + u'/' + reportName }));
    QVERIFY(!QFileInfo::exists(root));
}

void tst_start::rootThatIsAFile()
{
    const QTemporaryDir dir;
    const QString root = dir.filePath(u"file"_s);
    QVERIFY(writeFile(root, "untouched"));
    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(root)).start();
    QCOMPARE(observer.messages().size(), 2);
    QCOMPARE(observer.messages().at(1).type, QtWarningMsg);
    QCOMPARE(observer.calls,
             (QStringList { u"directoryContentsChanged "_s + root,
                            u"openFile "_s + root + u'/' + reportName }));
    QCOMPARE(fileContents(root), QByteArray("untouched"));
}

void tst_start::rootPathLengthCountsCodeUnits_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("ascii") << u"pictures"_s;
    QTest::newRow("beyond_ascii") << u"B\u00fccher \u65e5\u672c"_s;
    QTest::newRow("beyond_the_basic_plane") << u"\U0001F4F7\U0001F4F7"_s;
    QTest::newRow("decomposed") << u"u\u0308"_s;
    QTest::newRow("placeholders") << u"%1 %2"_s;
    QTest::newRow("year_as_root") << u"2019"_s;
    QTest::newRow("project_as_root") << u"x_vlp-Dateien"_s;
    QTest::newRow("hidden_root") << u".pictures"_s;
}

void tst_start::rootPathLengthCountsCodeUnits()
{
    QFETCH(const QString, name);

    const Pictures pictures(name);
    QVERIFY(pictures.isMade());
    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(pictures.path())).start();
    QCOMPARE(fileContents(pictures.reportPath()), Pictures::report(pictures.path()));
    QCOMPARE(observer.calls.constLast(), u"openFile "_s + pictures.reportPath());
}

void tst_start::relativeRoot()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    const WorkingDirectory working(pictures.parentPath());
    QVERIFY(working.isActive());
    const QString absolutePath = QDir::currentPath() + u"/pictures"_s;
    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(u"pictures"_s)).start();
    QCOMPARE(fileContents(pictures.reportPath()), Pictures::report(absolutePath));
    QCOMPARE(observer.calls.constLast(), u"openFile "_s + absolutePath + u'/' + reportName);
}

void tst_start::currentDirectoryAsRoot()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    const WorkingDirectory working(pictures.path());
    QVERIFY(working.isActive());
    const QString absolutePath = QDir::currentPath();
    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(u"."_s)).start();
    QCOMPARE(fileContents(pictures.reportPath()), Pictures::report(absolutePath));
    QCOMPARE(observer.calls.constLast(), u"openFile "_s + absolutePath + u'/' + reportName);
}

void tst_start::rootWithTrailingSlash()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(pictures.path() + u'/')).start();
    // The slash belongs to the root's path, so it is cut off the other rows.
    QCOMPARE(
        fileContents(pictures.reportPath()),
        report({ row("Root", pictures.path().toUtf8() + '/', "2", "no data"),
                 row("Year", "2019", "1", "no data"), row("Month", "2019/05", "1", "no data") }));
    QCOMPARE(observer.calls.constLast(), u"openFile "_s + pictures.reportPath());
}

void tst_start::rootThroughALink()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    const QString link = pictures.parentPath() + u"/link to the pictures"_s;
    QVERIFY(QFile::link(pictures.path(), link));
    const RunObserver observer;
    VLFolioEventClassifier(QFileInfo(link)).start();
    QCOMPARE(fileContents(pictures.reportPath()), Pictures::report(link));
    QCOMPARE(observer.calls.constLast(), u"openFile "_s + link + u'/' + reportName);
    QVERIFY(QFileInfo(link).isSymbolicLink());
}

void tst_start::defaultConstructedRoot()
{
    const Pictures pictures;
    QVERIFY(pictures.isMade());
    const WorkingDirectory working(pictures.path());
    QVERIFY(working.isActive());
    const QString currentPath = QDir::currentPath();
    const QByteArray current = currentPath.toUtf8();
    const RunObserver observer;
    VLFolioEventClassifier { QFileInfo() }.start();
    // A root without a path: nothing is cut off the paths of the others.
    QCOMPARE(
        fileContents(pictures.reportPath()),
        report({ row("Root", "", "2", "no data"), row("Year", current + "/2019", "1", "no data"),
                 row("Month", current + "/2019/05", "1", "no data") }));
    QCOMPARE(observer.calls.constLast(), u"openFile "_s + currentPath + u'/' + reportName);
}

QTEST_GUILESS_MAIN(tst_start)
#include "tst_start.moc"
