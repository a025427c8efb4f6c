#include "PathsAsGiven.h"
#include "WalkTree.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtCore/QSemaphore>
#include <QtTest/QTest>

#include <optional>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

using Result = VLEventFolderClassificationResult;

class tst_threads_shutdown_midway : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walkOnAWorkerThreadEndsAtTheNextFolder();
};

// The walk waits in the folder "photokit/b" until the application is gone.
void tst_threads_shutdown_midway::walkOnAWorkerThreadEndsAtTheNextFolder()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    WalkTree tree;
    tree.folders({ u"photokit/a/1"_s, u"photokit/b/2"_s, u"photokit/c"_s });
    QVERIFY(tree.isValid());
    const WorkingDirectory inside(tree.root());
    QVERIFY(inside.isValid());
    int argc = 1;
    QByteArray name("tst_threads_shutdown_midway");
    char* argv[] = { name.data(), nullptr };
    std::optional<QCoreApplication> application;
    application.emplace(argc, argv);

    QSemaphore isThere;
    QSemaphore mayGoOn;
    bool waited = false;
    const PathsAsGiven engine(u"photokit"_s, [&isThere, &mayGoOn, &waited](const QString& path) {
        if (path != u"photokit/b" || std::exchange(waited, true))
            return;
        isThere.release();
        mayGoOn.acquire();
    });
    QList<Result> results;
    std::thread thread([&tree, &results] {
        VLFolioEventClassifier classifier { QFileInfo(tree.path(u"elsewhere"_s)) };
        results = classifier.eventFolderTypes(QFileInfo(u"photokit"_s), Result());
    });
    QVERIFY(isThere.tryAcquire(1, 30'000));
    application.reset();
    mayGoOn.release();
    thread.join();

    QVERIFY(QCoreApplication::closingDown());
    const QStringList expected { u"photokit Event"_s, u"photokit/a Event"_s,
                                 u"photokit/a/1 Event"_s, u"photokit/b Event"_s };
    QCOMPARE(lines(results, {}), expected);
}

QTEST_APPLESS_MAIN(tst_threads_shutdown_midway)
#include "tst_threads_shutdown_midway.moc"
