#include "RawDirectory.h"
#include "RecordingPlatform.h"
#include "ReportText.h"
#include "RunTogether.h"
#include "Walk.h"
#include "WorkingDirectory.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResultList.h>

#include <QtCore/QDir>
#include <QtTest/QTest>

#include <atomic>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int threadCount = 8;
constexpr int roundCount = 20;

using Result = VLEventFolderClassificationResult;

// Equal to every result of the folder it leads to, as only the file system can tell.
Result eventAt(const QString& path)
{
    return { QFileInfo(path), VLEventFolderTypeEnum::Event };
}

QString reportOf(const QString& root)
{
    return root + u'/' + QLatin1StringView(ReportText::reportName);
}

/// A collection of its own for each thread. The number of the thread is in the year, so that
/// results of one in the report of another show.
class ThreadTree
{
public:
    explicit ThreadTree(int thread)
        : m_year('/' + QByteArray::number(2010 + thread))
        , m_lines { " Root",
                    m_year + " Year",
                    m_year + "/07 Month",
                    m_year + "/07/Beach Event",
                    m_year + "/07/Beach/2019-07-14 Day",
                    m_year + "/August Month" }
    {
        const QByteArray year = m_year.sliced(1);
        m_tree.make({ year + "/07/Beach/2019-07-14/", year + "/07/a.jpg", year + "/August/" });
        if (!m_tree.isValid())
            qFatal("No tree for a thread: %s", m_tree.error());
    }

    [[nodiscard]] QString root() const { return m_tree.path(); }

    /// "path Type" for each folder, in the order of the walk, which here is that of the paths.
    [[nodiscard]] QByteArrayList expectedLines() const { return m_lines; }

    /// The report of these folders. The files are the picture and the report itself.
    [[nodiscard]] QByteArray expectedReport() const
    {
        QByteArrayList rows;
        for (const QByteArray& line : m_lines) {
            const qsizetype end = line.lastIndexOf(' ');
            const bool isRoot = end == 0;
            const bool hasFile = isRoot || line == m_year + "/07 Month";
            rows.append(ReportText::row(line.sliced(end + 1),
                                        isRoot ? root().toUtf8() : line.first(end),
                                        hasFile ? "1" : "0", "no data"));
        }
        return ReportText::report(rows);
    }

private:
    RawDirectory m_tree;
    QByteArray m_year;
    QByteArrayList m_lines;
};

/// A platform service that several threads may use at once. It opens nothing and counts what is
/// asked of it.
class CountingPlatform : public VLPlatformIndependent
{
public:
    bool openFile(const QString&, const QStringList&, const QString&) override
    {
        ++opened;
        return true;
    }

    QStringList getDirectFilesInDirectory(const QDir& directory) const override
    {
        ++listed;
        return VLPlatformIndependent::getDirectFilesInDirectory(directory);
    }

    void directoryContentsChanged(const QDir&) override { ++changed; }

    std::atomic_int opened { 0 };
    mutable std::atomic_int listed { 0 };
    std::atomic_int changed { 0 };
};

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

/// Copies of a QFileInfo share what Qt caches of the file, without a lock. What the library does
/// with them must leave nothing in there, or it would be written by two threads at once.
class tst_threads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void firstRunsOfEachThreadInItsOwnTree();
    void makingAResultLeavesNothingInTheDirectory();
    void relativeDirectoryIsAbsoluteWhereItIsAskedFor();
    void relativeRootKeepsThePathItHadFound();
    void comparingLeavesNothingInTheDirectory();
    void classifyingLeavesNothingInTheRootItWasMadeOf();
    void copyOfAClassifierLooksAtItsRootAnew();
    void allThreadsMakeAndCompareResultsOfOneListing();

private:
    std::unique_ptr<RawDirectory> m_tree;
    QString m_folder;
    QString m_link;
};

void tst_threads::init()
{
    m_tree = std::make_unique<RawDirectory>();
    QVERIFY2(m_tree->make({ "folder/", "link -> folder" }).isValid(), m_tree->error());
    m_folder = m_tree->path("folder");
    m_link = m_tree->path("link");
}

void tst_threads::cleanup()
{
    VLPlatformIndependent::setInstance(nullptr);
    m_tree.reset();
}

// The first run of each thread is the first of the process: logger, table of names, patterns and
// list of months are all made in it.
void tst_threads::firstRunsOfEachThreadInItsOwnTree()
{
    std::vector<std::unique_ptr<ThreadTree>> trees;
    qsizetype folderCount = 0;
    for (int thread = 0; thread < threadCount; ++thread) {
        trees.push_back(std::make_unique<ThreadTree>(thread));
        folderCount += trees.back()->expectedLines().size();
    }
    CountingPlatform platform;
    VLPlatformIndependent::setInstance(&platform);
    std::atomic_int wrong { 0 };
    const QtMessageHandler previous = qInstallMessageHandler(countMessage);

    runTogether(threadCount, [&trees, &wrong](int thread) {
        const ThreadTree& tree = *trees.at(size_t(thread));
        const QByteArray report = tree.expectedReport();
        for (int round = 0; round < roundCount; ++round) {
            VLFolioEventClassifier(QFileInfo(tree.root())).start();
            wrong += ReportText::fileContents(reportOf(tree.root())) == report ? 0 : 1;
            wrong += walkedLines(tree.root()) == tree.expectedLines() ? 0 : 1;
        }
    });

    qInstallMessageHandler(previous);
    QCOMPARE(wrong.load(), 0);
    QCOMPARE(startCount.load(), threadCount * roundCount);
    QCOMPARE(removalCount.load(), threadCount * (roundCount - 1));
    QCOMPARE(otherCount.load(), 0);
    QCOMPARE(platform.opened.load(), threadCount * roundCount);
    QCOMPARE(platform.changed.load(), threadCount * roundCount);
    QCOMPARE(platform.listed.load(), roundCount * folderCount);
}

// Were the absolute path found out while the result is made, it would be another one.
void tst_threads::makingAResultLeavesNothingInTheDirectory()
{
    const WorkingDirectory above(m_tree->path());
    const QFileInfo directory(u"folder"_s);
    const Result result(directory, VLEventFolderTypeEnum::Event);
    const WorkingDirectory inside(m_folder);
    QCOMPARE(directory.absoluteFilePath(), m_folder + u"/folder"_s);
}

void tst_threads::relativeDirectoryIsAbsoluteWhereItIsAskedFor()
{
    const Result result = eventAt(u"folder"_s);
    const WorkingDirectory inside(m_folder);
    QCOMPARE(result.render(0), u"  Event <= "_s + m_folder + u"/folder"_s);
}

void tst_threads::relativeRootKeepsThePathItHadFound()
{
    const WorkingDirectory above(m_tree->path());
    const QFileInfo root(u"folder"_s);
    QCOMPARE(root.absoluteFilePath(), m_folder);
    VLFolioEventClassifier classifier(root);
    const WorkingDirectory inside(m_folder);
    const RecordingPlatform platform;
    classifier.start();
    QVERIFY(QFile::exists(reportOf(m_folder)));
}

void tst_threads::comparingLeavesNothingInTheDirectory()
{
    const Result folder = eventAt(m_folder);
    const Result link = eventAt(m_link);
    QVERIFY(folder == link);
    QVERIFY(QDir().rmdir(m_folder));
    QCOMPARE(folder.directory().canonicalFilePath(), QString());
    QCOMPARE(link.directory().canonicalFilePath(), QString());
}

void tst_threads::classifyingLeavesNothingInTheRootItWasMadeOf()
{
    const QFileInfo root(m_folder);
    const VLFolioEventClassifier classifier(root);
    QCOMPARE(classifier.eventFolderType(QFileInfo(m_link)).classification().value(),
             VLEventFolderTypeEnum::Root);
    QVERIFY(QDir().rmdir(m_folder));
    QCOMPARE(root.canonicalFilePath(), QString());
}

// A copy has data of its own, in which nothing is cached yet.
void tst_threads::copyOfAClassifierLooksAtItsRootAnew()
{
    const VLFolioEventClassifier classifier { QFileInfo(m_link) };
    const auto isRootOf = [this](const VLFolioEventClassifier& asked, const char* name) {
        return asked.eventFolderType(QFileInfo(m_tree->path(name))).classification().value()
            == VLEventFolderTypeEnum::Root;
    };
    QVERIFY(isRootOf(classifier, "folder"));
    QVERIFY(QFile::remove(m_link));
    QVERIFY2(m_tree->make({ "other/", "link -> other" }).isValid(), m_tree->error());
    const VLFolioEventClassifier copied = classifier;
    VLFolioEventClassifier assigned { QFileInfo() };
    assigned = classifier;
    QVERIFY(isRootOf(copied, "other"));
    QVERIFY(isRootOf(assigned, "other"));
}

// As a host does that has listed folders by itself and shares the list out. The more results, the
// likelier two threads meet at one of them.
void tst_threads::allThreadsMakeAndCompareResultsOfOneListing()
{
    const QString line = u"  Event <= "_s + m_folder;
    std::atomic_int wrong { 0 };
    for (int round = 0; round < roundCount; ++round) {
        QFileInfoList listed;
        VLEventFolderClassificationResultList results;
        for (int i = 0; i < 500; ++i) {
            listed.append(QFileInfo(m_folder));
            results.append(eventAt(m_folder));
        }
        const Result link = eventAt(m_link);
        runTogether(threadCount, [&wrong, &line, &results, &link, listed](int) {
            for (qsizetype i = 0; i < listed.size(); ++i) {
                const Result made(listed.at(i), VLEventFolderTypeEnum::Event);
                const Result copy = results.at(i);
                wrong += made.render(0) == line && copy == link && copy.render(0) == line ? 0 : 1;
            }
        });
    }
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_threads)
#include "tst_threads.moc"
