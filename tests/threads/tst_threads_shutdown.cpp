#include "ThreadTree.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtTest/QTest>

#include <atomic>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int threadCount = 8;

/// Walks its tree again and again until the application is closing down.
class Walker
{
public:
    explicit Walker(int number)
        : m_tree(number)
    {
    }

    [[nodiscard]] bool start()
    {
        m_thread = std::thread([this] { walk(); });
        return m_tree.isValid();
    }
    [[nodiscard]] int fullWalks() const { return m_fullWalks; }

    /// What the last walk kept.
    [[nodiscard]] QStringList finish()
    {
        m_thread.join();
        return m_lines;
    }
    [[nodiscard]] QStringList expectedLines() const { return m_tree.expectedLines(); }

private:
    void walk()
    {
        const QStringList expected = m_tree.expectedLines();
        while (m_lines = m_tree.walkedLines(), m_lines == expected)
            ++m_fullWalks;
    }

    ThreadTree m_tree;
    QStringList m_lines;
    std::atomic_int m_fullWalks { 0 };
    std::thread m_thread;
};

} // namespace

class tst_threads_shutdown : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walksEndAndKeepWhatTheyHave();
};

void tst_threads_shutdown::walksEndAndKeepWhatTheyHave()
{
    int argc = 1;
    QByteArray name("tst_threads_shutdown");
    char* argv[] = { name.data(), nullptr };
    std::optional<QCoreApplication> application;
    application.emplace(argc, argv);
    std::vector<std::unique_ptr<Walker>> walkers;
    for (int number = 0; number < threadCount; ++number) {
        walkers.emplace_back(std::make_unique<Walker>(number));
        QVERIFY(walkers.back()->start());
    }
    for (const auto& walker : walkers)
        QVERIFY(QTest::qWaitFor([&walker] { return walker->fullWalks() > 0; }, 30'000));

    application.reset();

    QVERIFY(QCoreApplication::closingDown());
    for (const auto& walker : walkers) {
        const QStringList found = walker->finish();
        const QStringList expected = walker->expectedLines();
        QVERIFY(found.size() < expected.size());
        QCOMPARE(found, expected.first(found.size()));
    }
}

QTEST_APPLESS_MAIN(tst_threads_shutdown)
#include "tst_threads_shutdown.moc"
