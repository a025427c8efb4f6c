#include "TypeNames.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;

class tst_matchers_month_list : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyAQuestionForMonthsDecidesTheirLanguage();
};

void tst_matchers_month_list::onlyAQuestionForMonthsDecidesTheirLanguage()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    QCOMPARE(QLocale::system().name(), u"en_US"_s);
    const VLFolioEventClassifier classifier(QFileInfo(u"/pictures"_s));
    const auto type = [&classifier](const QString& name) {
        return classifier.eventFolderType(name).value();
    };

    QVERIFY(classifier.matchesProject(u"July_vlp-Dateien"_s));
    QVERIFY(!classifier.matchesApplePhotos(u"July"_s));
    QVERIFY(!classifier.matchesDate(u"July"_s));
    QVERIFY(!classifier.matchesYear(u"July"_s));
    QCOMPARE(type(u"July_vlp-Dateien"_s), Type::ProjectFolder);
    QCOMPARE(type(u"2019-07-14"_s), Type::Day);
    QCOMPARE(type(u"Monday"_s), Type::Day);

    // A language whose months have another ending within a date, which counts here.
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    QCOMPARE(type(u"июля"_s), Type::Month);
    QCOMPARE(type(u"июль"_s), Type::Unknown);
    QCOMPARE(type(u"июл."_s), Type::Month);
    QCOMPARE(type(u"July"_s), Type::Unknown);
}

QTEST_GUILESS_MAIN(tst_matchers_month_list)
#include "tst_matchers_month_list.moc"
