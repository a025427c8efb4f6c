#include "WalkTree.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <optional>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Result = VLEventFolderClassificationResult;

class tst_walk_closing_down : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walkIsEmptyOnceTheApplicationIsGone();
};

void tst_walk_closing_down::walkIsEmptyOnceTheApplicationIsGone()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    WalkTree tree;
    tree.folders({ u"2019/07"_s });
    QVERIFY(tree.isValid());
    const QFileInfo root(tree.root());
    VLFolioEventClassifier classifier(root);
    int argc = 1;
    QByteArray name("tst_walk_closing_down");
    char* argv[] = { name.data(), nullptr };

    std::optional<QCoreApplication> application;
    application.emplace(argc, argv);
    const QStringList whole { u" Root"_s, u"/2019 Year"_s, u"/2019/07 Month"_s };
    QCOMPARE(lines(classifier.eventFolderTypes(root, Result()), tree.root()), whole);

    application.reset();
    QVERIFY(QCoreApplication::closingDown());
    QVERIFY(classifier.eventFolderTypes(root, Result()).isEmpty());
    QVERIFY(classifier.eventFolderTypes(QFileInfo(tree.path(u"2019"_s)), Result()).isEmpty());
    // The questions about a single folder are still answered.
    QCOMPARE(classifier.contextDependentEventFolderType(root, Result()).classification().value(),
             Type::Root);
    QCOMPARE(classifier.eventFolderType(u"2019"_s).value(), Type::Year);

    application.emplace(argc, argv);
    QCOMPARE(lines(classifier.eventFolderTypes(root, Result()), tree.root()), whole);
}

QTEST_APPLESS_MAIN(tst_walk_closing_down)
#include "tst_walk_closing_down.moc"
