#include "RunTogether.h"
#include "SharedPlatform.h"
#include "ThreadTree.h"

#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>

#include <QtTest/QTest>

#include <array>
#include <memory>

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
    const QtMessageHandler previous = qInstallMessageHandler(ignoreMessage);
    runTogether(workerCount + 1, [this, &work, &replace, &busy](int number) {
        if (number < workerCount) {
            for (int round = 0; round < roundCount; ++round)
                work(*m_trees.at(static_cast<std::size_t>(number)));
            --busy;
        } else {
            for (int count = 0; busy > 0; ++count)
                replace(count);
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
    QVERIFY(service.changed <= runs);
}

QTEST_GUILESS_MAIN(tst_threads_service)
#include "tst_threads_service.moc"
