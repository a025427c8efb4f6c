#include "MessageRecorder.h"
#include "RecordingPlatform.h"
#include "ReportText.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;
using namespace ReportText;

// Runs in a process whose application object is gone.
class tst_start_after_application : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walkIsEmpty();
    void reportIsEmptyAndOpened();
    void oldReportIsReplaced();
};

void tst_start_after_application::walkIsEmpty()
{
    QVERIFY(QCoreApplication::closingDown());
    const QTemporaryDir dir;
    VLFolioEventClassifier classifier(QFileInfo(dir.path()));
    QVERIFY(classifier.eventFolderTypes(QFileInfo(dir.path()), {}).isEmpty());
}

void tst_start_after_application::reportIsEmptyAndOpened()
{
    const QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir(u"2019"_s));
    const QString reportPath = dir.filePath(u"vela.classification.results.html"_s);

    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(dir.path())).start();
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(recorder.messages().constFirst().text, u"startClassifyEvent"_s);
    QCOMPARE(fileContents(reportPath), lines(1, 23));
    QCOMPARE(
        platform.calls,
        (QStringList { u"directoryContentsChanged "_s + dir.path(), u"openFile "_s + reportPath }));
}

void tst_start_after_application::oldReportIsReplaced()
{
    const QTemporaryDir dir;
    const QString reportPath = dir.filePath(u"vela.classification.results.html"_s);
    QVERIFY(writeFile(reportPath, report({ row("Root", "/old", "1", "no data") })));

    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(dir.path())).start();
    QCOMPARE(recorder.messages().size(), 2);
    QCOMPARE(fileContents(reportPath), lines(1, 23));
}

int main(int argc, char* argv[])
{
    {
        const QCoreApplication application(argc, argv);
    }
    tst_start_after_application test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_start_after_application.moc"
