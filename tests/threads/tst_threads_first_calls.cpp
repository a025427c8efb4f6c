#include "RunTogether.h"

#include <VLCore/VLLogger.h>
#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtTest/QTest>

#include <array>
#include <set>

using namespace Qt::StringLiterals;

namespace {

constexpr int threadCount = 8;

// What work(number) returns in each of the threads, each value once.
template <typename Value, typename Work>
std::set<Value> valuesOfAll(const Work& work)
{
    std::array<Value, threadCount> values {};
    runTogether(threadCount, [&values, &work](int number) {
        values.at(static_cast<std::size_t>(number)) = work(number);
    });
    return { values.cbegin(), values.cend() };
}

} // namespace

// Each function races for the first call of one of the objects that the process shares.
class tst_threads_first_calls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtInService();
    void logger();
    void tableOfNames();
};

void tst_threads_first_calls::builtInService()
{
    const auto found =
        valuesOfAll<VLPlatformIndependent*>([](int) { return VLPlatformIndependent::instance(); });
    QCOMPARE(found, std::set { VLPlatformIndependent::instance() });
    QVERIFY(*found.cbegin() != nullptr);
}

void tst_threads_first_calls::logger()
{
    const auto found =
        valuesOfAll<VLLogger*>([](int) { return VLSingleton<VLLogger>::instance(); });
    QCOMPARE(found, std::set { VLSingleton<VLLogger>::instance() });
    QVERIFY(*found.cbegin() != nullptr);
}

void tst_threads_first_calls::tableOfNames()
{
    const auto found = valuesOfAll<QString>([](int number) {
        const auto type = static_cast<VLEventFolderTypeEnum>(number % 2 == 0 ? 4 : 32);
        return VLEventFolderClassificationResult(QFileInfo(u"/2019"_s), type).render(1);
    });
    QCOMPARE(found, (std::set { u"  Month <= 2019"_s, u"ProjectFolder <= 2019"_s }));
}

QTEST_GUILESS_MAIN(tst_threads_first_calls)
#include "tst_threads_first_calls.moc"
