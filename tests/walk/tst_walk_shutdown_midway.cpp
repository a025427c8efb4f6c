#include "PathsAsGiven.h"
#include "ShutdownTree.h"

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

class tst_walk_shutdown_midway : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walkEndsAtTheNextFolderAndKeepsWhatItHas();
};

void tst_walk_shutdown_midway::walkEndsAtTheNextFolderAndKeepsWhatItHas()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    ShutdownTree tree;
    QVERIFY(tree.isValid());
    QStringList asked;
    const PathsAsGiven engine(u"photokit"_s, [&tree, &asked](const QString& path) {
        if (path == u"photokit/b")
            tree.endApplication();
        asked.append(path);
    });
    const QStringList found = tree.walkedLines();

    QVERIFY(QCoreApplication::closingDown());
    QCOMPARE(found, ShutdownTree::linesUpToB());
    // Of the folders that follow nothing is asked but whether to go on.
    QVERIFY(asked.contains(u"photokit/b"_s));
    QVERIFY(!asked.contains(u"photokit/b/2"_s));
    QVERIFY(!asked.contains(u"photokit/c"_s));
}

QTEST_APPLESS_MAIN(tst_walk_shutdown_midway)
#include "tst_walk_shutdown_midway.moc"
