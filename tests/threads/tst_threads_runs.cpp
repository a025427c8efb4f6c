#include "RunTogether.h"
#include "SharedPlatform.h"
#include "ThreadTree.h"

#include <QtTest/QTest>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr int threadCount = 8;
constexpr int roundCount = 20;

std::atomic_int startCount { 0 };
std::atomic_int removalCount { 0 };
std::atomic_int otherCount { 0 };

void countMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtInfoMsg && text == "startClassifyEvent"_L1
        && QLatin1StringView(context.category) == "vl.folio.service"_L1) {
        ++startCount;
    } else if (type == QtDebugMsg && text.startsWith("removing file"_L1)
               && text.endsWith("succeeded:  true"_L1)) {
        ++removalCount;
    } else {
        ++otherCount;
    }
}

} // namespace

class tst_threads_runs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachThreadItsOwnTree();
};

// The first run of each thread is the first of the process: logger, table of names, patterns and
// list of months are all made in it.
void tst_threads_runs::eachThreadItsOwnTree()
{
    std::array<std::unique_ptr<ThreadTree>, threadCount> trees;
    for (int number = 0; number < threadCount; ++number) {
        trees.at(std::size_t(number)) = std::make_unique<ThreadTree>(number);
        QVERIFY(trees.at(std::size_t(number))->isValid());
    }
    SharedPlatform platform;
    VLPlatformIndependent::setInstance(&platform);
    std::atomic_int wrong { 0 };
    const QtMessageHandler previous = qInstallMessageHandler(countMessage);

    runTogether(threadCount, [&trees, &wrong](int number) {
        const ThreadTree& tree = *trees.at(std::size_t(number));
        const QStringList expected = tree.expectedLines();
        for (int round = 0; round < roundCount; ++round) {
            VLFolioEventClassifier(QFileInfo(tree.root())).start();
            wrong += tree.reportedLines() == expected ? 0 : 1;
            wrong += tree.walkedLines() == expected ? 0 : 1;
        }
    });

    qInstallMessageHandler(previous);
    VLPlatformIndependent::setInstance(nullptr);
    QCOMPARE(wrong.load(), 0);
    QCOMPARE(startCount.load(), threadCount * roundCount);
    QCOMPARE(removalCount.load(), threadCount * (roundCount - 1));
    QCOMPARE(otherCount.load(), 0);
    QCOMPARE(platform.opened.load(), threadCount * roundCount);
    QCOMPARE(platform.changed.load(), threadCount * roundCount);
    // Seven folders in each tree, and from the second on one more and as many as its number.
    QCOMPARE(platform.listed.load(), roundCount * (threadCount * 7 + 7 + 28));
}

QTEST_GUILESS_MAIN(tst_threads_runs)
#include "tst_threads_runs.moc"
