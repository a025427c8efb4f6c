#include "TypeNames.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;

class tst_matchers_first_locale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void monthsStayAndDaysFollow();
};

void tst_matchers_first_locale::monthsStayAndDaysFollow()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    QCOMPARE(QLocale::system().name(), u"en_US"_s);
    const VLFolioEventClassifier classifier(QFileInfo(u"/pictures"_s));
    const auto type = [&classifier](const QString& name) {
        return classifier.eventFolderType(name).value();
    };

    // A year is asked after the months: this is the first call that needs their names.
    QCOMPARE(type(u"2019"_s), Type::Year);
    QVERIFY(!classifier.matchesDate(u"Montag"_s));
    QVERIFY(!classifier.matchesDate(u"Sonntag, 14. Juli 2019"_s));

    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QCOMPARE(type(u"July"_s), Type::Month);
    QCOMPARE(type(u"Jul"_s), Type::Month);
    QCOMPARE(type(u"Juli"_s), Type::Unknown);
    QCOMPARE(type(u"Montag"_s), Type::Day);
    QCOMPARE(type(u"Sonntag, 14. Juli 2019"_s), Type::Day);
    // The system's language counts beside the default.
    QCOMPARE(type(u"Monday"_s), Type::Day);
    QCOMPARE(type(u"Sunday, July 14, 2019"_s), Type::Day);
    QCOMPARE(type(u"7/14/19"_s), Type::Day);
    // No other classifier of the process starts anew.
    QVERIFY(!VLFolioEventClassifier(QFileInfo()).matchesMonth(u"Juli"_s));

    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    QCOMPARE(type(u"July"_s), Type::Month);
    QCOMPARE(type(u"juillet"_s), Type::Unknown);
    QCOMPARE(type(u"lundi"_s), Type::Day);
    QCOMPARE(type(u"dimanche 14 juillet 2019"_s), Type::Day);
    QCOMPARE(type(u"Montag"_s), Type::Unknown);
    QCOMPARE(type(u"Sonntag, 14. Juli 2019"_s), Type::Year);
    QCOMPARE(type(u"Monday"_s), Type::Day);

    // A language whose days have another ending within a date, which counts here.
    QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));
    QCOMPARE(type(u"maanantaina"_s), Type::Day);
    QCOMPARE(type(u"maanantai"_s), Type::Unknown);

    QLocale::setDefault(QLocale::c());
    QCOMPARE(type(u"7"_s), Type::Day);
    QCOMPARE(type(u"8"_s), Type::Month);
    QCOMPARE(type(u"lundi"_s), Type::Unknown);
}

QTEST_GUILESS_MAIN(tst_matchers_first_locale)
#include "tst_matchers_first_locale.moc"
