#include "WalkTree.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

class tst_walk_without_application : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walkIsWhole();
};

// What was never there does not close down.
void tst_walk_without_application::walkIsWhole()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    QVERIFY(QCoreApplication::instance() == nullptr);
    QVERIFY(!QCoreApplication::closingDown());
    WalkTree tree;
    tree.folders({ u"2019/07"_s });
    QVERIFY(tree.isValid());

    const QFileInfo root(tree.root());
    VLFolioEventClassifier classifier(root);
    const QStringList expected { u" Root"_s, u"/2019 Year"_s, u"/2019/07 Month"_s };
    QCOMPARE(
        lines(classifier.eventFolderTypes(root, VLEventFolderClassificationResult()), tree.root()),
        expected);
}

QTEST_APPLESS_MAIN(tst_walk_without_application)
#include "tst_walk_without_application.moc"
