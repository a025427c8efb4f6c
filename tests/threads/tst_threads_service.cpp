#include "RunTogether.h"
#include "SharedPlatform.h"
#include "ThreadTree.h"

#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>

#include <QtTest/QTest>

#include <array>
#include <atomic>
#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

constexpr int workerCount = 7;
constexpr int roundCount = 20;

void ignoreMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    Q_UNUSED(type)
    Q_UNUSED(context)
    Q_UNUSED(text)
}

} // namespace

class tst_threads_service : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void replacedDuringRuns();
    void takenOutDuringReports();

private:
    // Calls work(tree) again and again in each of the workers, and replace() in one more thread
    // until they are done.
    template <typename Work, typename Replace>
    void runWhileReplacing(const Work& work, const Replace& replace) const;

    std::array<std::unique_ptr<ThreadTree>, workerCount> m_trees;
};

template <typename Work, typename Replace>
void tst_threads_service::runWhileReplacing(const Work& work, const Replace& replace) const
{
    std::atomic_int busy { workerCount };
    std::atomic_int finished { 0 };
    std::atomic_int replaced { 0 };
    const auto waitForReplacement = [&replaced](int count) {
        while (replaced < count)
            std::this_thread::yield();
    };
    const QtMessageHandler previous = qInstallMessageHandler(ignoreMessage);
    runTogether(workerCount + 1, [&, this](int number) {
        if (number < workerCount) {
            for (int round = 0; round < roundCount; ++round) {
                // Whoever is scheduled first, no work begins before the first replacement, and the
                // last of each worker not before the second.
                waitForReplacement(round == 0 ? 1 : round == roundCount - 1 ? 2 : 0);
                work(*m_trees.at(static_cast<std::size_t>(number)));
                ++finished;
            }
            --busy;
        } else {
            for (int count = 0; busy > 0; ++count) {
                replace(count);
                const int before = finished;
                ++replaced;
                // The first two stay until one work has begun and ended under them; the others come
                // as fast as they can.
                while (count < 2 && busy > 0 && finished <= before + workerCount)
                    std::this_thread::yield();
            }
        }
    });
    qInstallMessageHandler(previous);
}

void tst_threads_service::initTestCase()
{
    for (int number = 0; number < workerCount; ++number) {
        auto& tree = m_trees.at(static_cast<std::size_t>(number));
        tree = std::make_unique<ThreadTree>(number);
        QVERIFY(tree->isValid());
    }
}

void tst_threads_service::cleanup()
{
    VLPlatformIndependent::setInstance(nullptr);
}

// Nothing is asked twice, and nothing is lost: each call reaches one service or the other.
void tst_threads_service::replacedDuringRuns()
{
    SharedPlatform first;
    SharedPlatform second;
    VLPlatformIndependent::setInstance(&first);
    std::atomic_int wrong { 0 };

    runWhileReplacing(
        [&wrong](const ThreadTree& tree) {
            VLFolioEventClassifier(QFileInfo(tree.root())).start();
            wrong += tree.reportedLines() == tree.expectedLines() ? 0 : 1;
        },
        [&first, &second](int count) {
            VLPlatformIndependent::setInstance(count % 2 == 0 ? &second : &first);
        });

    constexpr int runs = workerCount * roundCount;
    QCOMPARE(wrong.load(), 0);
    QCOMPARE(first.opened + second.opened, runs);
    QCOMPARE(first.changed + second.changed, runs);
    QCOMPARE(first.listed + second.listed, roundCount * (workerCount * 7 + 6 + 21));
    QVERIFY(first.listed > 0);
    QVERIFY(second.listed > 0);
}

void tst_threads_service::takenOutDuringReports()
{
    SharedPlatform service;
    std::atomic_int wrong { 0 };

    runWhileReplacing(
        [&wrong](const ThreadTree& tree) {
            const QFileInfo root(tree.root());
            VLFolioEventClassifier classifier(root);
            VLClassificationResultsRendererHTML renderer(classifier.eventFolderTypes(root, {}),
                                                         int(tree.root().size()), {});
            renderer.renderToFile(QFileInfo(tree.root() + u"/vela.classification.results.html"_s));
            wrong += tree.reportedLines() == tree.expectedLines() ? 0 : 1;
        },
        [&service](int count) {
            VLPlatformIndependent::setInstance(count % 2 == 0 ? &service : nullptr);
        });

    constexpr int runs = workerCount * roundCount;
    QCOMPARE(wrong.load(), 0);
    QVERIFY(service.changed > 0);
    QVERIFY(service.changed < runs);
}

QTEST_GUILESS_MAIN(tst_threads_service)
#include "tst_threads_service.moc"
