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

// Runs in a process that never had an application object.
class tst_start_without_application : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runIsComplete();
};

void tst_start_without_application::runIsComplete()
{
    QCOMPARE(QCoreApplication::instance(), nullptr);
    const QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir(u"2019"_s));
    const QString reportPath = dir.filePath(u"vela.classification.results.html"_s);

    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(dir.path())).start();
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(recorder.messages().constFirst().category, QByteArray("vl.folio.service"));
    QCOMPARE(recorder.messages().constFirst().text, u"startClassifyEvent"_s);
    QCOMPARE(fileContents(reportPath),
             report({ row("Root", dir.path().toUtf8(), "1", "no data"),
                      row("Year", "/2019", "0", "no data") }));
    QCOMPARE(
        platform.calls,
        (QStringList { u"getDirectFilesInDirectory "_s + dir.path(),
                       u"getDirectFilesInDirectory "_s + dir.path() + u"/2019"_s,
                       u"directoryContentsChanged "_s + dir.path(), u"openFile "_s + reportPath }));
}

QTEST_APPLESS_MAIN(tst_start_without_application)
#include "tst_start_without_application.moc"
