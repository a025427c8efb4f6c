#include "RawDirectory.h"
#include "Sanitizer.h"
#include "TypeNames.h"

#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include <pthread.h>
#include <sys/mman.h>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Result = VLEventFolderClassificationResult;

namespace {

QList<Result> walk(const QString& root)
{
    const QFileInfo directory(root);
    return VLFolioEventClassifier(directory).eventFolderTypes(directory, Result());
}

/// Folders "d" in each other, as deep as a path can lead.
class DeepestTree
{
public:
    explicit DeepestTree(const RawDirectory& directory)
        : m_root(directory.bytes("r"))
        , m_deepest(m_root)
    {
        m_isValid = mkdir(m_root.constData(), S_IRWXU) == 0;
        while (m_isValid && mkdir((m_deepest + "/d").constData(), S_IRWXU) == 0) {
            m_deepest += "/d";
            ++m_depth;
        }
        m_isValid = m_isValid && errno == ENAMETOOLONG;
    }
    ~DeepestTree()
    {
        for (; m_depth > 0; --m_depth, m_deepest.chop(2))
            rmdir(m_deepest.constData());
    }
    Q_DISABLE_COPY_MOVE(DeepestTree)

    [[nodiscard]] bool isValid() const { return m_isValid; }
    /// How many folders lie between the root and the deepest, which counts.
    [[nodiscard]] int depth() const { return m_depth; }
    [[nodiscard]] QString root() const { return QFile::decodeName(m_root); }
    [[nodiscard]] QString deepest() const { return QFile::decodeName(m_deepest); }

private:
    QByteArray m_root;
    QByteArray m_deepest;
    int m_depth = 0;
    bool m_isValid = false;
};

/// A walk on a thread whose stack has a size of its own. What of the stack was used can be seen.
class WalkOnStack
{
public:
    WalkOnStack(const QString& root, std::size_t stackSize)
        : m_root(root)
        , m_size(stackSize)
    {
        // The lowest page cannot be touched: what overruns the stack ends the program.
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        void* const memory = mmap(nullptr, m_size + page, PROT_READ | PROT_WRITE,
                                  MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED || mprotect(memory, page, PROT_NONE) != 0)
            qFatal("No memory for a stack");
        auto* const stack = static_cast<unsigned char*>(memory) + page;
        std::memset(stack, untouched, m_size);
        run(stack);
        m_used = static_cast<std::size_t>(stack + m_size
                                          - std::find_if(stack, stack + m_size, wasTouched));
        munmap(memory, m_size + page);
    }

    [[nodiscard]] const QList<Result>& results() const { return m_results; }
    [[nodiscard]] std::size_t usedBytes() const { return m_used; }

private:
    static constexpr unsigned char untouched = 0xa5;

    static bool wasTouched(unsigned char byte) { return byte != untouched; }

    static void* work(void* self)
    {
        auto* const object = static_cast<WalkOnStack*>(self);
        object->m_results = walk(object->m_root);
        return nullptr;
    }

    void run(unsigned char* stack)
    {
        pthread_attr_t attributes;
        pthread_t thread;
        if (pthread_attr_init(&attributes) != 0
            || pthread_attr_setstack(&attributes, stack, m_size) != 0
            || pthread_create(&thread, &attributes, work, this) != 0
            || pthread_join(thread, nullptr) != 0) {
            qFatal("No thread on a stack of one's own");
        }
        pthread_attr_destroy(&attributes);
    }

    QString m_root;
    std::size_t m_size;
    std::size_t m_used = 0;
    QList<Result> m_results;
};

/// How many links the system follows in one path.
int linksInAPath(const RawDirectory& directory)
{
    QByteArray path = directory.bytes("step");
    struct stat status
    {
    };
    int count = 0;
    if (symlink(".", path.constData()) != 0)
        return -1;
    while (stat(path.constData(), &status) == 0) {
        path += "/step";
        ++count;
    }
    if (errno != ELOOP)
        count = -1;
    unlink(directory.bytes("step").constData());
    return count;
}

int deepestLevel(const QList<Result>& results)
{
    qsizetype deepest = 0;
    for (const Result& result : results)
        deepest = std::max(deepest, result.directory().absoluteFilePath().count(u'/'));
    return static_cast<int>(deepest
                            - results.constFirst().directory().absoluteFilePath().count(u'/'));
}

int countOf(const QList<Result>& results, Type type)
{
    return static_cast<int>(
        std::count_if(results.cbegin(), results.cend(),
                      [type](const Result& result) { return result.classification() == type; }));
}

} // namespace

class tst_hostile_trees : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void hundredThousandFoldersInOne();
    void deepestTree();
    void deepestTreeOnASmallStack();
    void linkCircles_data();
    void linkCircles();
};

void tst_hostile_trees::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_hostile_trees::hundredThousandFoldersInOne()
{
    constexpr int count = 100'000;
    RawDirectory tree;
    tree.folder("2019");
    QStringList expected { u""_s, u"/2019"_s };
    // From the last to the first, so that the order of making is not that of the names.
    for (int number = count; number > 0; --number)
        tree.folder("2019/f" + QByteArray::number(100'000 + number).mid(1));
    for (int number = 1; number <= count; ++number)
        expected.append(u"/2019/f"_s + QString::number(100'000 + number).mid(1));
    if (!tree.isValid())
        QSKIP("No room for so many folders");
    std::sort(expected.begin(), expected.end());

    QElapsedTimer timer;
    timer.start();
    const QList<Result> results = walk(tree.path());
    qInfo("walk: %d results in %lld ms", int(results.size()), timer.restart());
    const QFileInfo reportFile(tree.path() + u"/report.html"_s);
    VLClassificationResultsRendererHTML(results, 0, {}).renderToFile(reportFile);
    qInfo("report: %lld ms", timer.elapsed());

    QStringList found;
    for (const Result& result : results)
        found.append(result.directory().absoluteFilePath().mid(tree.path().size()));
    QCOMPARE(found.size(), count + 2);
    QVERIFY(found == expected);
    // Below a year an unknown name is an event, and so is another year.
    QCOMPARE(countOf(results, Type::Root), 1);
    QCOMPARE(countOf(results, Type::Year), 1);
    QCOMPARE(countOf(results, Type::Event), count);
    QFile report(reportFile.filePath());
    QVERIFY(report.open(QIODevice::ReadOnly));
    QCOMPARE(report.readAll().count("<tr class=Event>"), count);
}

void tst_hostile_trees::deepestTree()
{
    const RawDirectory directory;
    const DeepestTree tree(directory);
    if (!tree.isValid())
        QSKIP("The file system ends before paths do");
    QVERIFY(tree.depth() > 100);

    const QList<Result> results = walk(tree.root());
    QCOMPARE(results.size(), tree.depth() + 1);
    QCOMPARE(results.constFirst().directory().absoluteFilePath(), tree.root());
    QCOMPARE(results.constFirst().classification().value(), Type::Root);
    QCOMPARE(results.constLast().directory().absoluteFilePath(), tree.deepest());
    QCOMPARE(countOf(results, Type::Unknown), tree.depth());
}

// As large as the stack of a secondary thread where it is smallest, macOS.
void tst_hostile_trees::deepestTreeOnASmallStack()
{
    if (underSanitizer)
        QSKIP("A sanitizer takes stack of its own");
    constexpr std::size_t smallStack = 512 * 1024;
    constexpr std::size_t largeStack = 16 * smallStack;
    RawDirectory directory;
    const DeepestTree tree(directory.folder("one").folder("one/d"));
    if (!tree.isValid())
        QSKIP("The file system ends before paths do");

    // What the first walk of the process has to set up is no part of a level.
    QCOMPARE(walk(directory.path() + u"/one"_s).size(), 2);
    const WalkOnStack shallow(directory.path() + u"/one"_s, largeStack);
    QCOMPARE(shallow.results().size(), 2);
    const WalkOnStack deep(tree.root(), largeStack);
    QCOMPARE(deep.results().size(), tree.depth() + 1);
    const double perLevel = double(deep.usedBytes() - shallow.usedBytes()) / (tree.depth() - 1);
    qInfo("depth %d: %zu bytes of stack, %zu of them for one level, %.1f for each further one",
          tree.depth(), deep.usedBytes(), shallow.usedBytes(), perLevel);
#ifdef __OPTIMIZE__
    QVERIFY(deep.usedBytes() < smallStack);
    const WalkOnStack small(tree.root(), smallStack);
    QCOMPARE(small.results().size(), tree.depth() + 1);
    QCOMPARE(small.results().constLast().directory().absoluteFilePath(), tree.deepest());
#endif
}

void tst_hostile_trees::linkCircles_data()
{
    QTest::addColumn<QByteArrayList>("folders");
    QTest::addColumn<QByteArrayList>("links");
    QTest::addColumn<int>("resultsPerLink");
    QTest::addColumn<int>("otherResults");
    QTest::addColumn<int>("levelsPerLink");
    QTest::addColumn<int>("otherLevels");

    // The root and the folder once, and then the link in each of its own steps.
    QTest::newRow("link_to_its_own_folder")
        << QByteArrayList { "2019" } << QByteArrayList { "2019/x", "." } << 1 << 2 << 1 << 1;
    // Each step is the root, which shows the folder again.
    QTest::newRow("link_to_the_folder_above")
        << QByteArrayList { "2019" } << QByteArrayList { "2019/x", ".." } << 2 << 2 << 2 << 1;
    QTest::newRow("link_by_absolute_path_to_the_root")
        << QByteArrayList { "2019" } << QByteArrayList { "2019/x", "/" } << 2 << 2 << 2 << 1;
    // One chain begins in each of the folders.
    QTest::newRow("two_folders_that_link_to_each_other")
        << QByteArrayList { "2019", "2020" }
        << QByteArrayList { "2019/x", "../2020", "2020/x", "../2019" } << 2 << 3 << 1 << 1;
}

// Nothing but the system's limit ends them.
void tst_hostile_trees::linkCircles()
{
    QFETCH(const QByteArrayList, folders);
    QFETCH(const QByteArrayList, links);
    QFETCH(const int, resultsPerLink);
    QFETCH(const int, otherResults);
    QFETCH(const int, levelsPerLink);
    QFETCH(const int, otherLevels);

    RawDirectory tree;
    const int limit = linksInAPath(tree);
#ifdef Q_OS_LINUX
    QCOMPARE(limit, 40);
#endif
    for (const QByteArray& folder : folders)
        tree.folder(folder);
    for (qsizetype i = 0; i < links.size(); i += 2)
        tree.link(links.at(i),
                  links.at(i + 1) == "/" ? QFile::encodeName(tree.path()) : links.at(i + 1));
    QVERIFY(tree.isValid());

    const QList<Result> results = walk(tree.path());
    qInfo("%d links in a path: %d results, deepest level %d", limit, int(results.size()),
          deepestLevel(results));
    QCOMPARE(results.size(), limit * resultsPerLink + otherResults);
    QCOMPARE(deepestLevel(results), limit * levelsPerLink + otherLevels);
}

QTEST_GUILESS_MAIN(tst_hostile_trees)
#include "tst_hostile_trees.moc"
