#include "RunTogether.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QLocale>
#include <QtTest/QTest>

#include <algorithm>
#include <array>
#include <atomic>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;

namespace {

struct Expected
{
    QString name;
    bool date;
    bool month;
    bool year;
    Type type;
};

const QList<Expected>& expectedAnswers()
{
    static const QList<Expected> answers {
        { u"December"_s, false, true, false, Type::Month },
        { u"2019-07-14"_s, true, false, true, Type::Day },
        { u"14.07.99"_s, true, false, false, Type::Day },
        { u"Sunday"_s, true, false, false, Type::Day },
        { u"January"_s, false, true, false, Type::Month },
        { u"09"_s, false, true, false, Type::Month },
        { u"Summer 2019"_s, false, false, true, Type::Year },
        { u"Beach"_s, false, false, false, Type::Unknown },
        { u"Rome_vlp-Dateien"_s, false, false, false, Type::ProjectFolder },
    };
    return answers;
}

int wrongAnswers(const VLFolioEventClassifier& classifier, const Expected& expected)
{
    const std::array wrong {
        classifier.matchesDate(expected.name) != expected.date,
        classifier.matchesMonth(expected.name) != expected.month,
        classifier.matchesYear(expected.name) != expected.year,
        classifier.matchesProject(expected.name) != (expected.type == Type::ProjectFolder),
        classifier.matchesApplePhotos(expected.name),
        classifier.eventFolderType(expected.name).value() != expected.type,
    };
    return static_cast<int>(std::count(wrong.cbegin(), wrong.cend(), true));
}

} // namespace

class tst_matchers_first_calls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstCallsOfSeveralThreadsAtOnce();
};

void tst_matchers_first_calls::firstCallsOfSeveralThreadsAtOnce()
{
    QCOMPARE(QLocale::system().name(), u"en_US"_s);
    const QList<Expected>& answers = expectedAnswers();
    std::atomic_int wrong { 0 };

    runTogether(16, [&answers, &wrong](int number) {
        const VLFolioEventClassifier classifier(QFileInfo(u"/pictures"_s));
        // The list of the months takes longest to be made: half of the threads begin with it.
        if (number % 2 == 0)
            wrong += classifier.matchesMonth(u"December"_s) ? 0 : 1;
        // Each goes on with another name, so that every matcher is some thread's first.
        for (qsizetype n = 0; n < answers.size(); ++n)
            wrong += wrongAnswers(classifier, answers.at((n + number) % answers.size()));
    });

    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_matchers_first_calls)
#include "tst_matchers_first_calls.moc"
