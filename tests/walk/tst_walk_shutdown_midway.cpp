#include "PathsAsGiven.h"
#include "WalkTree.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <optional>

using namespace Qt::StringLiterals;

using Result = VLEventFolderClassificationResult;

class tst_walk_shutdown_midway : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walkEndsAtTheNextFolderAndKeepsWhatItHas();
};

void tst_walk_shutdown_midway::walkEndsAtTheNextFolderAndKeepsWhatItHas()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    WalkTree tree;
    tree.folders({ u"photokit/a/1"_s, u"photokit/b/2"_s, u"photokit/c"_s });
    QVERIFY(tree.isValid());
    const WorkingDirectory inside(tree.root());
    QVERIFY(inside.isValid());
    int argc = 1;
    QByteArray name("tst_walk_shutdown_midway");
    char* argv[] = { name.data(), nullptr };
    std::optional<QCoreApplication> application;
    application.emplace(argc, argv);

    QStringList asked;
    const PathsAsGiven engine(u"photokit"_s, [&application, &asked](const QString& path) {
        if (path == u"photokit/b")
            application.reset();
        asked.append(path);
    });
    VLFolioEventClassifier classifier { QFileInfo(tree.path(u"elsewhere"_s)) };
    const QList<Result> results = classifier.eventFolderTypes(QFileInfo(u"photokit"_s), Result());
    const QStringList askedByTheWalk = asked;

    QVERIFY(QCoreApplication::closingDown());
    const QStringList expected { u"photokit Event"_s, u"photokit/a Event"_s,
                                 u"photokit/a/1 Event"_s, u"photokit/b Event"_s };
    QCOMPARE(lines(results, {}), expected);
    // Of the folders that follow nothing is asked but whether to go on.
    QVERIFY(askedByTheWalk.contains(u"photokit/b"_s));
    QVERIFY(!askedByTheWalk.contains(u"photokit/b/2"_s));
    QVERIFY(!askedByTheWalk.contains(u"photokit/c"_s));
}

QTEST_APPLESS_MAIN(tst_walk_shutdown_midway)
#include "tst_walk_shutdown_midway.moc"
