#include "PathsAsGiven.h"
#include "ShutdownTree.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QSemaphore>
#include <QtTest/QTest>

#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

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
    ShutdownTree tree;
    QVERIFY(tree.isValid());
    QSemaphore isThere;
    QSemaphore mayGoOn;
    bool waited = false;
    const PathsAsGiven engine(u"photokit"_s, [&isThere, &mayGoOn, &waited](const QString& path) {
        if (path != u"photokit/b" || std::exchange(waited, true))
            return;
        isThere.release();
        mayGoOn.acquire();
    });
    QStringList found;
    std::thread thread([&tree, &found] { found = tree.walkedLines(); });
    QVERIFY(isThere.tryAcquire(1, 30'000));
    tree.endApplication();
    mayGoOn.release();
    thread.join();

    QVERIFY(QCoreApplication::closingDown());
    QCOMPARE(found, ShutdownTree::linesUpToB());
}

QTEST_APPLESS_MAIN(tst_threads_shutdown_midway)
#include "tst_threads_shutdown_midway.moc"
