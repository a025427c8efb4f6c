#include "PathsAsGiven.h"
#include "RawDirectory.h"
#include "WalkTree.h"

#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <optional>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Result = VLEventFolderClassificationResult;

class tst_walk_photokit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void prefixIsEventWhateverTheName();
    void rootIsRootBeforeItIsAnEvent();
    void equalityIsThatOfTheEngine();
    void prefixIsCaseSensitive();
    void prefixIsThatOfTheAbsolutePath();
    void eventHasThePathAsGiven();
    void listingIsThatOfTheEngine();
    void pathStaysTheEngines();
    void eventStaysEventBelow_data();
    void eventStaysEventBelow();
};

void tst_walk_photokit::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_walk_photokit::prefixIsEventWhateverTheName()
{
    WalkTree tree;
    tree.folders(
        { u"photokit/2019/07/2019-07-14"_s, u"photokit/x_vlp-Dateien"_s, u"photokitten/2019"_s });
    QVERIFY(tree.isValid());
    const WorkingDirectory inside(tree.root());
    QVERIFY(inside.isActive());
    const PathsAsGiven engine(u"photokit"_s);
    VLFolioEventClassifier classifier { QFileInfo(tree.root()) };
    const auto found = [&classifier](const QString& path) {
        return lines(classifier.eventFolderTypes(QFileInfo(path), Result()), {});
    };

    const QStringList expected {
        u"photokit Event"_s,
        u"photokit/2019 Event"_s,
        u"photokit/2019/07 Event"_s,
        u"photokit/2019/07/2019-07-14 Event"_s,
        u"photokit/x_vlp-Dateien Event"_s,
    };
    QCOMPARE(found(u"photokit"_s), expected);
    const QStringList expectedLongerName { u"photokitten Event"_s, u"photokitten/2019 Event"_s };
    QCOMPARE(found(u"photokitten"_s), expectedLongerName);
}

void tst_walk_photokit::rootIsRootBeforeItIsAnEvent()
{
    WalkTree tree;
    tree.folders({ u"photokit/2019/07"_s });
    QVERIFY(tree.isValid());
    const WorkingDirectory inside(tree.root());
    QVERIFY(inside.isActive());
    const PathsAsGiven engine(u"photokit"_s);
    const QFileInfo root(u"photokit/2019"_s);
    VLFolioEventClassifier classifier(root);

    const QStringList expected { u"photokit/2019 Root"_s, u"photokit/2019/07 Event"_s };
    QCOMPARE(lines(classifier.eventFolderTypes(root, Result()), {}), expected);
}

// What the root is, is asked of the engine, whatever the paths are to the system.
void tst_walk_photokit::equalityIsThatOfTheEngine()
{
    WalkTree tree;
    tree.folders({ u"photokit"_s, u"photokit/Beach"_s, u"Photokit"_s });
    QVERIFY(tree.isValid());
    const WorkingDirectory inside(tree.root());
    QVERIFY(inside.isActive());
    const PathsAsGiven engine(u"photokit"_s);
    const VLFolioEventClassifier classifier { QFileInfo(u"photokit"_s) };
    const auto type = [&classifier](const QString& path) {
        return classifier.eventFolderType(QFileInfo(path)).classification().value();
    };

    QCOMPARE(type(u"photokit"_s), Type::Root);
    QCOMPARE(type(u"Photokit"_s), Type::Root);
    QCOMPARE(type(u"photokit/Beach"_s), Type::Event);
    QCOMPARE(type(tree.path(u"photokit"_s)), Type::Unknown);
}

void tst_walk_photokit::prefixIsCaseSensitive()
{
    WalkTree tree;
    tree.folders({ u"Photokit/2019/07"_s });
    QVERIFY(tree.isValid());
    const WorkingDirectory inside(tree.root());
    QVERIFY(inside.isActive());
    const PathsAsGiven engine(u"photokit"_s);
    VLFolioEventClassifier classifier { QFileInfo(tree.root()) };

    const QStringList expected { u"Photokit Unknown"_s, u"Photokit/2019 Year"_s,
                                 u"Photokit/2019/07 Month"_s };
    QCOMPARE(lines(classifier.eventFolderTypes(QFileInfo(u"Photokit"_s), Result()), {}), expected);
}

// Without the engine the same path is a file like any other.
void tst_walk_photokit::prefixIsThatOfTheAbsolutePath()
{
    WalkTree tree;
    tree.folders({ u"photokit/2019"_s });
    QVERIFY(tree.isValid());
    const WorkingDirectory inside(tree.root());
    QVERIFY(inside.isActive());
    VLFolioEventClassifier classifier { QFileInfo(u"elsewhere"_s) };

    const QStringList expected { u"/photokit Unknown"_s, u"/photokit/2019 Year"_s };
    QCOMPARE(lines(classifier.eventFolderTypes(QFileInfo(u"photokit"_s), Result()), tree.root()),
             expected);
}

void tst_walk_photokit::eventHasThePathAsGiven()
{
    const PathsAsGiven engine(u"photokit"_s);
    const VLFolioEventClassifier classifier { QFileInfo(u"/"_s) };
    const Result result = classifier.eventFolderType(QFileInfo(u"photokit/./2019"_s));
    QCOMPARE(result.classification().value(), Type::Event);
    QCOMPARE(result.directory().filePath(), u"photokit/./2019"_s);
    QCOMPARE(result.directory().absoluteFilePath(), u"photokit/2019"_s);
}

// Where an engine presents something else than a directory that is there, too.
void tst_walk_photokit::listingIsThatOfTheEngine()
{
    RawDirectory tree;
    tree.folder("photokit").folder("photokit/\xff").folder("photokit/2019");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");
    const WorkingDirectory inside(tree.path());
    QVERIFY(inside.isActive());
    const QDir directory(u"photokit"_s);
    QCOMPARE(VLPlatformIndependent::directoriesBesideUndecodableNames(directory),
             QStringList { u"2019"_s });

    const PathsAsGiven engine(u"photokit"_s);
    QCOMPARE(VLPlatformIndependent::directoriesBesideUndecodableNames(directory), std::nullopt);
}

// Once it was made, also where the engine is no more asked for new files.
void tst_walk_photokit::pathStaysTheEngines()
{
    Result first;
    Result second;
    {
        const PathsAsGiven engine(u"/photokit"_s);
        first = Result(QFileInfo(u"/photokit/2018"_s), Type::Year);
        second = Result(QFileInfo(u"/photokit/2019"_s), Type::Year);
    }
    // To the system neither is there, and all that is not there is the same.
    QVERIFY(!(first == second));
}

void tst_walk_photokit::eventStaysEventBelow_data()
{
    QTest::addColumn<VLEventFolderTypeEnum>("parent");

    QTest::newRow("unknown") << Type::Unknown;
    QTest::newRow("root") << Type::Root;
    QTest::newRow("year") << Type::Year;
    QTest::newRow("month") << Type::Month;
    QTest::newRow("day") << Type::Day;
    QTest::newRow("event") << Type::Event;
    QTest::newRow("project") << Type::ProjectFolder;
    QTest::newRow("combination") << static_cast<Type>(63);
}

void tst_walk_photokit::eventStaysEventBelow()
{
    QFETCH(const VLEventFolderTypeEnum, parent);

    const PathsAsGiven engine(u"photokit"_s);
    VLFolioEventClassifier classifier { QFileInfo(u"/"_s) };
    const Result result = classifier.contextDependentEventFolderType(
        QFileInfo(u"photokit/2019-07-14"_s), Result(QFileInfo(u"/parent"_s), parent));
    QCOMPARE(result.classification().value(), Type::Event);
    QCOMPARE(result.directory().absoluteFilePath(), u"photokit/2019-07-14"_s);
    QCOMPARE(result.occasionInformation().size(), 0);
}

QTEST_GUILESS_MAIN(tst_walk_photokit)
#include "tst_walk_photokit.moc"
