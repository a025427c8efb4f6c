#include "TypeNames.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;

class tst_matchers_default_locale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void monthsAreThoseOfTheDefaultAndDaysOfBoth();
};

void tst_matchers_default_locale::monthsAreThoseOfTheDefaultAndDaysOfBoth()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    QCOMPARE(QLocale::system().name(), u"en_US"_s);
    const VLFolioEventClassifier classifier(QFileInfo(u"/pictures"_s));
    const auto type = [&classifier](const QString& name) {
        return classifier.eventFolderType(name).value();
    };

    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));

    QCOMPARE(type(u"juillet"_s), Type::Month);
    QCOMPARE(type(u"juil."_s), Type::Month);
    QCOMPARE(type(u"July"_s), Type::Unknown);
    QCOMPARE(type(u"Jul"_s), Type::Unknown);
    QCOMPARE(type(u"7"_s), Type::Month);
    QCOMPARE(type(u"lundi"_s), Type::Day);
    QCOMPARE(type(u"Monday"_s), Type::Day);
    QCOMPARE(type(u"14/07/2019"_s), Type::Day);
    QCOMPARE(type(u"7/14/19"_s), Type::Day);
}

QTEST_GUILESS_MAIN(tst_matchers_default_locale)
#include "tst_matchers_default_locale.moc"
