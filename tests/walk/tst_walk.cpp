#include "ApplicationObject.h"
#include "PathsAsGiven.h"
#include "RawDirectory.h"
#include "RecordingPlatform.h"
#include "Sanitizer.h"
#include "TestRows.h"
#include "UnprivilegedUser.h"
#include "Walk.h"
#include "WorkingDirectory.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

#include <pthread.h>
#include <sys/mman.h>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Result = VLEventFolderClassificationResult;
using Classifier = VLFolioEventClassifier;

static_assert(std::is_same_v<decltype(&Classifier::eventFolderTypes),
                             QList<Result> (Classifier::*)(const QFileInfo&, const Result&)>);
static_assert(std::is_same_v<decltype(&Classifier::contextDependentEventFolderType),
                             Result (Classifier::*)(const QFileInfo&, const Result&)>);
static_assert(std::is_same_v<decltype(std::declval<const Classifier&>().eventFolderType(
                                 std::declval<const QFileInfo&>())),
                             Result>);

namespace {

Type combined(Type a, Type b)
{
    return static_cast<Type>(static_cast<qint32>(a) | static_cast<qint32>(b));
}

// The result of a folder above, with what must not pass to those below it.
Result parentOf(Type type)
{
    Result parent(QFileInfo(u"/parent"_s), type);
    VLOccasionInfoList occasions;
    occasions.append(VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.9));
    parent.setOccasionInformation(occasions);
    return parent;
}

Type ownTypeOf(const Classifier& classifier, const QString& path)
{
    return classifier.eventFolderType(QFileInfo(path)).classification().value();
}

// How often "/step" can be appended to a path before the system refuses it with this error.
int stepsBefore(int error, QByteArray path, const QByteArray& step)
{
    struct stat status
    {
    };
    int count = -1;
    for (; stat(path.constData(), &status) == 0; path += '/' + step)
        ++count;
    return errno == error ? count : -1;
}

// Folders "d" in each other. It makes and removes them from within, as their paths grow longer than
// the system takes.
class DeepTree
{
public:
    DeepTree(const QString& path, int depth)
        : m_start(path)
    {
        while (m_depth < depth && mkdir("d", S_IRWXU) == 0 && chdir("d") == 0)
            ++m_depth;
    }
    ~DeepTree()
    {
        while (m_depth > 0 && chdir("..") == 0 && rmdir("d") == 0)
            --m_depth;
    }
    Q_DISABLE_COPY_MOVE(DeepTree)

    [[nodiscard]] int depth() const { return m_depth; }

private:
    WorkingDirectory m_start;
    int m_depth = 0;
};

// How many bytes of its thread's stack a walk uses.
std::size_t stackOfWalk(QString root)
{
    constexpr std::size_t size = 8 * 1024 * 1024;
    constexpr unsigned char untouched = 0xa5;
    void* const memory =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        qFatal("No memory for a stack");
    auto* const stack = static_cast<unsigned char*>(memory);
    std::memset(stack, untouched, size);

    const auto work = [](void* path) -> void* {
        if (walk(*static_cast<const QString*>(path)).size() < 100)
            qFatal("The walk ends too early");
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_t thread;
    if (pthread_attr_init(&attributes) != 0 || pthread_attr_setstack(&attributes, stack, size) != 0
        || pthread_create(&thread, &attributes, work, &root) != 0
        || pthread_join(thread, nullptr) != 0)
        qFatal("No thread on a stack of its own");
    pthread_attr_destroy(&attributes);

    const auto* const deepest =
        std::find_if(stack, stack + size, [](unsigned char byte) { return byte != untouched; });
    const auto used = static_cast<std::size_t>(stack + size - deepest);
    munmap(memory, size);
    return used;
}

} // namespace

// Runs without an application object until a function makes one.
class tst_walk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void context_data();
    void context();
    void ownType_data();
    void ownType();
    void ownTypeOfDefaultConstructedRoot();
    void rootInAnotherWorkingDirectory();
    void linkToTheRootThatIsGone();

    void tree_data();
    void tree();
    void start_data();
    void start();
    void linkCircle_data();
    void linkCircle();
    void unreadableFolder();
    void deepestTree();

    void constructorCopiesTheRootAndDoesNotLook();

    void photokitPath_data();
    void photokitPath();
    void photokitFolderStaysEventBelow();
    void photokitEqualityIsThatOfTheEngine();
    void photokitResultKeepsItsEngine();

    void walkEndsAtTheNextFolderAndKeepsWhatItHas();

private:
    ApplicationObject m_application;
};

void tst_walk::initTestCase()
{
    // What was never there does not close down.
    QVERIFY(QCoreApplication::instance() == nullptr);
    QVERIFY(!QCoreApplication::closingDown());
}

void tst_walk::init()
{
    // Newer Qt says with each application object that the C library lacks the locale.
    QTest::failOnWarning(QRegularExpression(u"^(?!Detected locale )"_s));
    if (!PathsAsGiven::isAvailable
        && QByteArray(QTest::currentTestFunction()).startsWith("photokit"))
        QSKIP("Built without Qt's private headers: scripts/install-packages check brings them");
}

void tst_walk::context_data()
{
    const QList<std::pair<const char*, Type>> parents {
        { "unknown", Type::Unknown },
        { "root", Type::Root },
        { "year", Type::Year },
        { "month", Type::Month },
        { "day", Type::Day },
        { "event", Type::Event },
        { "project", Type::ProjectFolder },
        { "year_and_month", combined(Type::Year, Type::Month) },
        { "day_and_event", combined(Type::Day, Type::Event) },
        { "no_flag_of_ours", static_cast<Type>(64) },
    };
    constexpr auto U = Type::Unknown;
    constexpr auto R = Type::Root;
    constexpr auto Y = Type::Year;
    constexpr auto M = Type::Month;
    constexpr auto D = Type::Day;
    constexpr auto E = Type::Event;
    constexpr auto P = Type::ProjectFolder;
    struct Row
    {
        QList<Type> byParent;
        const char* name;
        QString folder;
    };
    const QList<Row> rows {
        // U  R  Y  M  D  E  P  and the combinations
        { { U, U, E, E, U, U, U, U, U, U }, "unknown", u"/pictures/Beach"_s },
        { { Y, Y, E, E, Y, Y, Y, Y, Y, Y }, "year", u"/pictures/2019"_s },
        { { M, M, M, E, M, M, M, M, M, M }, "month", u"/pictures/07"_s },
        { { E, E, E, E, E, D, E, E, E, E }, "day", u"pictures/../2019-07-14"_s },
        { { R, R, R, R, R, R, R, R, R, R }, "root", u"/"_s },
        { { P, P, P, P, P, P, P, P, P, P }, "project", u"x_vlp-Dateien"_s },
    };

    QTest::addColumn<QString>("folder");
    QTest::addColumn<VLEventFolderTypeEnum>("parent");
    QTest::addColumn<VLEventFolderTypeEnum>("type");
    for (const Row& row : rows) {
        for (qsizetype i = 0; i < parents.size(); ++i) {
            const auto& [name, type] = parents.at(i);
            QTest::addRow("%s_below_%s", row.name, name)
                << row.folder << type << row.byParent.at(i);
        }
    }
}

// The result has the directory as it was given, and no occasions.
void tst_walk::context()
{
    QFETCH(const QString, folder);
    QFETCH(const VLEventFolderTypeEnum, parent);
    QFETCH(const VLEventFolderTypeEnum, type);

    Classifier classifier(QFileInfo(u"/"_s));
    const Result above = parentOf(parent);
    const Result result = classifier.contextDependentEventFolderType(QFileInfo(folder), above);
    QCOMPARE(result.classification().value(), type);
    QCOMPARE(result.directory().filePath(), folder);
    QCOMPARE(result.occasionInformation().size(), 0);
    QCOMPARE(above.occasionInformation().size(), 1);
}

void tst_walk::ownType_data()
{
    const TestRows<QByteArray, QString, Type> row("root", "path", "type");
    row("root", "pics", u"pics"_s, Type::Root);
    row("root_with_trailing_slash", "pics", u"pics/"_s, Type::Root);
    row("root_through_dot", "pics", u"./pics/."_s, Type::Root);
    row("root_through_its_child", "pics", u"pics/2019/.."_s, Type::Root);
    row("root_through_link_beside_it", "pics", u"pics/2019/../back"_s, Type::Root);
    row("root_through_link_with_a_date", "pics", u"pics/2019-07-14"_s, Type::Root);
#ifndef Q_OS_DARWIN // Its file system folds case and normal forms.
    row("root_in_capitals_is_another", "pics", u"PICS"_s, Type::Unknown);
#endif
    row("name_of_the_root_elsewhere", "pics", u"pics/2019/pics"_s, Type::Unknown);
    row("above_root", "pics", u"."_s, Type::Unknown);
    row("year", "pics", u"pics/2019"_s, Type::Year);
    row("year_with_trailing_slash_has_no_name", "pics", u"pics/2019/"_s, Type::Unknown);
    row("day_below_month", "pics", u"pics/2019/07/2019-07-14"_s, Type::Day);
    row("project", "pics", u"pics/2019-07-14_vlp-Dateien"_s, Type::ProjectFolder);
    row("only_the_last_part_is_the_name", "pics", u"2019/07/2019-07-14/Beach"_s, Type::Unknown);
    row("photokit_is_no_absolute_path", "pics", u"photokit"_s, Type::Unknown);
    row("file", "pics", u"pics/2018"_s, Type::Year);
    // To Qt, two files that do not exist are the same.
    row("missing_root", "missing", u"missing"_s, Type::Root);
    row("all_that_is_missing_is_the_missing_root", "missing", u"missing, too"_s, Type::Root);
    row("what_is_missing_below_it_also", "missing", u"missing/2018"_s, Type::Root);
    row("what_is_there_is_not_the_missing_root", "missing", u"pics/2019"_s, Type::Year);
    row("root_of_the_file_system", "/", u"/"_s, Type::Root);
    row("above_the_root_of_the_file_system", "/", u"/.."_s, Type::Root);
    row("below_the_root_of_the_file_system", "/", u"/2019"_s, Type::Year);
    // The system follows a link before it goes up again; a path without ".." would lead elsewhere.
    row("folder_above_the_target_of_a_link", "other/x", u"pics/link/../x"_s, Type::Root);
    row("link_above_the_target_of_a_link", "other/x", u"pics/link/../y"_s, Type::Root);
}

void tst_walk::ownType()
{
    QFETCH(const QByteArray, root);
    QFETCH(const QString, path);
    QFETCH(const VLEventFolderTypeEnum, type);

    RawDirectory tree({ "PICS/", "pics/2019/07/", "pics/2019/pics/", "pics/x/", "pics/y/",
                        "pics/2018", "pics/back -> ../pics", "pics/2019-07-14 -> .", "other/sub/",
                        "other/x/", "pics/link -> ../other/sub", "other/y -> x" });
    const WorkingDirectory inside(tree.path());

    const Classifier classifier { QFileInfo(root == "/" ? u"/"_s : tree.path(root)) };
    const Result result = classifier.eventFolderType(QFileInfo(path));
    QCOMPARE(result.classification().value(), type);
    QCOMPARE(result.directory().filePath(), path);
    QCOMPARE(result.occasionInformation().size(), 0);
}

void tst_walk::ownTypeOfDefaultConstructedRoot()
{
    const QFileInfo root;
    const Classifier classifier(root);
    QCOMPARE(classifier.eventFolderType(QFileInfo(root)).classification().value(), Type::Root);
    QCOMPARE(classifier.eventFolderType(QFileInfo()).classification().value(), Type::Unknown);
    QCOMPARE(ownTypeOf(classifier, u"."_s), Type::Unknown);
}

// One path is one directory to QFileInfo, wherever it leads to by now.
void tst_walk::rootInAnotherWorkingDirectory()
{
    RawDirectory tree({ "one/a/", "one/b/", "two/a/" });
    const WorkingDirectory one(tree.path("one"));
    const Classifier classifier { QFileInfo(u"a"_s) };
    QCOMPARE(ownTypeOf(classifier, u"b"_s), Type::Unknown);

    const WorkingDirectory two(tree.path("two"));
    QCOMPARE(ownTypeOf(classifier, u"a"_s), Type::Root);
}

// What QFileInfo has found out counts for as long as it keeps that.
void tst_walk::linkToTheRootThatIsGone()
{
    RawDirectory tree({ "pics/", "link -> pics" });
    const QFileInfo link(tree.path("link"));
    QVERIFY(link.isSymLink());
    QCOMPARE(link.canonicalFilePath(), tree.path("pics"));
    QVERIFY(QFile::remove(link.filePath()));

    const Classifier classifier { QFileInfo(tree.path("pics")) };
    QCOMPARE(classifier.eventFolderType(link).classification().value(), Type::Root);
}

void tst_walk::tree_data()
{
    const TestRows<QByteArrayList, QByteArrayList> row("entries", "expected");
    row("empty_root", {}, { " Root" });
    row("each_rule_in_a_tree",
        { "2019/07/Beach/2019-07-15/", "2019/07/Beach/Shots/", "2019/2019-08-01/", "2019/2020/08/",
          "Misc/2019-07-14/" },
        { " Root", "/2019 Year", "/2019/07 Month", "/2019/07/Beach Event",
          "/2019/07/Beach/2019-07-15 Day", "/2019/07/Beach/Shots Unknown", "/2019/2019-08-01 Event",
          "/2019/2020 Event", "/2019/2020/08 Month", "/Misc Unknown", "/Misc/2019-07-14 Event" });
    row("corrected_type_of_the_parent_counts",
        { "2019/2020/2021/Beach/", "2019-07-14/2019-07-15/2019-07-16/", "07/08/09/Beach/",
          "x_vlp-Dateien/Beach/2019/" },
        { " Root", "/07 Month", "/07/08 Event", "/07/08/09 Month", "/07/08/09/Beach Event",
          "/2019 Year", "/2019/2020 Event", "/2019/2020/2021 Year", "/2019/2020/2021/Beach Event",
          "/2019-07-14 Event", "/2019-07-14/2019-07-15 Day",
          "/2019-07-14/2019-07-15/2019-07-16 Event", "/x_vlp-Dateien ProjectFolder",
          "/x_vlp-Dateien/Beach Unknown", "/x_vlp-Dateien/Beach/2019 Year" });
    // Capitals before small letters, 10 before 9, what lies outside the basic plane before the
    // fullwidth letters. A folder's tree is whole before its neighbours "2019-x" and "C D".
    row("order_of_utf_16_code_units",
        { "a/", "B/", "Z/", "_/", "9/", "10/", "2019-x/", "2019/01/", "C D/", "CD/", "C/x/",
          "\uff21/", "\U0001f600/", "\u00e9/", "y/" },
        { " Root", "/10 Month", "/2019 Year", "/2019/01 Month", "/2019-x Year", "/9 Month",
          "/B Unknown", "/C Unknown", "/C/x Unknown", "/C D Unknown", "/CD Unknown", "/Z Unknown",
          "/_ Unknown", "/a Unknown", "/y Unknown", "/\u00e9 Unknown", "/\U0001f600 Unknown",
          "/\uff21 Unknown" });
#ifndef Q_OS_DARWIN // Both are one folder there.
    row("normal_forms_are_two_names", { "Caf\u00e9/", "Cafe\u0301/" },
        { " Root", "/Cafe\u0301 Unknown", "/Caf\u00e9 Unknown" });
#endif
    row("hidden_folders_are_left_out",
        { ".hidden/2019/07/", "2018/.2018-07-14/Beach/", ".../", "2019/", ".link -> 2019",
          "link -> .hidden" },
        { " Root", "/2018 Year", "/2019 Year", "/link Unknown", "/link/2019 Year",
          "/link/2019/07 Month" });
    row("what_is_no_folder_is_ignored",
        { "2019/", "2018", "2019/07", "2017 -> 2018", "2016|", "2015=", "2014 -> nowhere",
          "2013 -> 2013" },
        { " Root", "/2019 Year" });
    row("links_to_folders_are_followed",
        { "2019/07/", ".elsewhere/Beach/2019-07-14/", "2019/Rome -> ../.elsewhere",
          "twice -> 2019/Rome" },
        { " Root", "/2019 Year", "/2019/07 Month", "/2019/Rome Event", "/2019/Rome/Beach Unknown",
          "/2019/Rome/Beach/2019-07-14 Event", "/twice Unknown", "/twice/Beach Unknown",
          "/twice/Beach/2019-07-14 Event" });
}

void tst_walk::tree()
{
    QFETCH(const QByteArrayList, entries);
    QFETCH(const QByteArrayList, expected);

    RawDirectory directory(entries);
    const RecordingPlatform platform;
    const QList<Result> results = walk(directory.path());
    QCOMPARE(lines(results, directory.path()), expected);
    for (const Result& result : results)
        QVERIFY(result.occasionInformation().isEmpty());
    // Nothing that is left out by the rules is told.
    QVERIFY(platform.incomplete.isEmpty());
}

void tst_walk::start_data()
{
    // "@" is the directory above, "pics" the working directory.
    const QByteArrayList whole { "/pics Root", "/pics/2019 Year", "/pics/2019/07 Month",
                                 "/pics/Beach Unknown", "/pics/Beach/2019-07-14 Event" };
    const auto unknown = Type::Unknown;
    const TestRows<QString, QString, Type, QByteArrayList> row("root", "start", "parent",
                                                               "expected");
    row("absolute_root", u"@/pics"_s, u"@/pics"_s, unknown, whole);
    row("relative_root", u"../pics"_s, u"../pics"_s, unknown, whole);
    row("working_directory_as_root", u"."_s, u"."_s, unknown, whole);
    row("root_with_trailing_slash", u"@/two/"_s, u"@/two/"_s, unknown,
        { "/two/ Root", "/two/07 Month" });
    row("link_as_root", u"@/2018"_s, u"@/2018"_s, unknown,
        { "/2018 Root", "/2018/2019 Year", "/2018/2019/07 Month", "/2018/Beach Unknown",
          "/2018/Beach/2019-07-14 Event" });
    row("missing_root", u"@/2019-07-14"_s, u"@/2019-07-14"_s, unknown, { "/2019-07-14 Root" });
    row("file_as_root", u"@/2017"_s, u"@/2017"_s, unknown, { "/2017 Root" });
    // A directory without a path is the working directory, but has none in its result.
    row("default_constructed_root", {}, {}, unknown, QByteArrayList { " Root" } + whole.sliced(1));

    // Where a walk starts is no root by that.
    const QByteArrayList beach { "/pics/Beach Unknown", "/pics/Beach/2019-07-14 Event" };
    row("start_outside_the_root", u"@/two"_s, u"@/pics"_s, unknown,
        QByteArrayList { "/pics Unknown" } + whole.sliced(1));
    row("start_above_the_root", u"@/pics/2019"_s, u"@/pics"_s, unknown,
        QByteArrayList { "/pics Unknown", "/pics/2019 Root", "/pics/2019/07 Month" } + beach);
    row("start_below_a_month", u"@/pics"_s, u"Beach"_s, Type::Month,
        { "/pics/Beach Event", "/pics/Beach/2019-07-14 Day" });
    row("start_below_a_combination", u"@/pics"_s, u"Beach"_s, combined(Type::Year, Type::Month),
        beach);
}

void tst_walk::start()
{
    QFETCH(QString, root);
    QFETCH(QString, start);
    QFETCH(const VLEventFolderTypeEnum, parent);
    QFETCH(const QByteArrayList, expected);

    RawDirectory tree;
    tree.make({ "pics/2019/07/", "pics/Beach/2019-07-14/", "two/07/", "2018 -> pics", "2017" });
    QVERIFY2(tree.isValid(), tree.error());
    const WorkingDirectory inside(tree.path("pics"));
    const QFileInfo rootInfo(root.replace(u'@', tree.path()));
    const bool isRoot = root == start.replace(u'@', tree.path());
    Classifier classifier(rootInfo);
    const QFileInfo startInfo = isRoot ? rootInfo : QFileInfo(start);

    QCOMPARE(lines(classifier.eventFolderTypes(startInfo, parentOf(parent)), tree.path()),
             expected);
}

void tst_walk::linkCircle_data()
{
    const TestRows<QByteArrayList, QByteArrayList, int, int> row("entries", "begin",
                                                                 "resultsPerLink", "otherResults");
    // Each step is the root again, whatever the link is called, and shows the folder.
    row("link_to_the_root", { "Beach/", "2019 -> ." }, { " Root", "/2019 Root", "/2019/2019 Root" },
        2, 2);
    // One chain begins in each of the folders.
    row("two_folders_that_link_to_each_other",
        { "2019/", "2020/", "2019/x -> ../2020", "2020/x -> ../2019" },
        { " Root", "/2019 Year", "/2019/x Event", "/2019/x/x Unknown" }, 2, 3);
    // No listing by itself meets more than one link: those in the whole path count.
    row("beside_a_name_that_is_not_utf_8", { "\xff/", "circle -> ." }, { " Root", "/circle Root" },
        1, 1);
}

// Nothing but the system's limit ends them.
void tst_walk::linkCircle()
{
    QFETCH(const QByteArrayList, entries);
    QFETCH(const QByteArrayList, begin);
    QFETCH(const int, resultsPerLink);
    QFETCH(const int, otherResults);

    RawDirectory limits;
    const int limit = stepsBefore(ELOOP, limits.make({ "step -> ." }).bytes("."), "step");
#ifdef Q_OS_LINUX
    QCOMPARE(limit, 40);
#endif
    RawDirectory directory(entries);
    VERIFY_MADE(directory);
    const QByteArrayList found = walkedLines(directory.path());
    QCOMPARE(found.mid(0, begin.size()), begin);
    QCOMPARE(found.size(), limit * resultsPerLink + otherResults);
}

void tst_walk::unreadableFolder()
{
    RawDirectory tree({ "2018/07/", "2019/07/" });
    for (const char* const open : { "", "2019", "2019/07" })
        tree.restrict(open, 0777);
    QVERIFY2(tree.restrict("2018", 0111).isValid(), tree.error());
    QByteArrayList found;
    {
        const UnprivilegedUser user;
        if (!user.isActive())
            QSKIP("The superuser cannot give up its rights here: run the test as another user");
        found = walkedLines(tree.path());
    }
    QCOMPARE(found, (QByteArrayList { " Root", "/2018 Year", "/2019 Year", "/2019/07 Month" }));
}

// A path that the system refuses has no subdirectories; the last one that it takes may still name
// one. The stack of a secondary thread is smallest on macOS, half a megabyte.
void tst_walk::deepestTree()
{
    const RawDirectory directory;
    const DeepTree deep(directory.path(), 2'100);
    QCOMPARE(deep.depth(), 2'100);
    const int steps = stepsBefore(ENAMETOOLONG, directory.bytes("."), "d");
    QVERIFY(steps > 100);
    QVERIFY(steps < 2'100);

    const QByteArrayList found = walkedLines(directory.path());
    QCOMPARE(found.mid(0, 3), (QByteArrayList { " Root", "/d Unknown", "/d/d Unknown" }));
    QVERIFY2(found.size() == steps + 1 || found.size() == steps + 2 || found.size() == steps + 3,
             qPrintable(u"%1 results, %2 steps"_s.arg(found.size()).arg(steps)));
#ifndef NDEBUG
    QSKIP("Not built with optimization: use a Release build");
#endif
    if (underSanitizer)
        QSKIP("A sanitizer takes stack of its own: use a build without one");
    const std::size_t used = stackOfWalk(directory.path());
    QVERIFY2(used < 512UL * 1024, qPrintable(QString::number(used)));
}

void tst_walk::constructorCopiesTheRootAndDoesNotLook()
{
    RawDirectory tree;
    QFileInfo root(tree.path("later"));
    Classifier classifier(root);
    root.setFile(tree.path("later/2019"));
    QVERIFY2(tree.make({ "later/2019/" }).isValid(), tree.error());
    QCOMPARE(lines(classifier.eventFolderTypes(QFileInfo(tree.path("later")), {}), tree.path()),
             (QByteArrayList { "/later Root", "/later/2019 Year" }));
}

void tst_walk::photokitPath_data()
{
    const TestRows<bool, QString, QString, QByteArrayList> row("isPresented", "root", "start",
                                                               "expected");
    row("event_whatever_the_name", true, u"elsewhere"_s, u"photokit"_s,
        { "photokit Event", "photokit/2019 Event", "photokit/2019/07 Event",
          "photokit/2019/07/2019-07-14 Event", "photokit/x_vlp-Dateien Event" });
    row("prefix_of_a_longer_name", true, u"elsewhere"_s, u"photokitten"_s,
        { "photokitten Event", "photokitten/2019 Event" });
    row("root_is_root_first", true, u"photokit/2019/07"_s, u"photokit/2019/07"_s,
        { "photokit/2019/07 Root", "photokit/2019/07/2019-07-14 Event" });
#ifndef Q_OS_DARWIN // "photokit" is the same folder there.
    row("prefix_is_case_sensitive", true, u"elsewhere"_s, u"Photokit"_s,
        { "Photokit Unknown", "Photokit/2019 Year", "Photokit/2019/07 Month" });
#endif
    // To the system the same path is a file like any other.
    row("absolute_path_counts", false, u"elsewhere"_s, u"photokitten"_s,
        { "/photokitten Unknown", "/photokitten/2019 Year" });
}

void tst_walk::photokitPath()
{
    QFETCH(const bool, isPresented);
    QFETCH(const QString, root);
    QFETCH(const QString, start);
    QFETCH(const QByteArrayList, expected);

    RawDirectory tree;
    tree.make({ "photokit/2019/07/2019-07-14/", "photokit/x_vlp-Dateien/", "photokitten/2019/",
                "Photokit/2019/07/" });
    const WorkingDirectory inside(tree.path());
    const PathsAsGiven engine(isPresented ? u"photokit"_s : u"nothing"_s);
    Classifier classifier { QFileInfo(root) };
    tree.make({ "elsewhere/" });

    QCOMPARE(lines(classifier.eventFolderTypes(QFileInfo(start), {}), tree.path()), expected);
}

void tst_walk::photokitFolderStaysEventBelow()
{
    const PathsAsGiven engine(u"photokit"_s);
    Classifier classifier { QFileInfo(u"/"_s) };
    for (const Type parent : { Type::Unknown, Type::Year, Type::Month, Type::Event }) {
        const Result result = classifier.contextDependentEventFolderType(
            QFileInfo(u"photokit/./2019-07-14"_s), parentOf(parent));
        QCOMPARE(result.classification().value(), Type::Event);
        QCOMPARE(result.directory().filePath(), u"photokit/./2019-07-14"_s);
        QCOMPARE(result.directory().absoluteFilePath(), u"photokit/2019-07-14"_s);
    }
}

// What the root is, is asked of the engine, whatever the paths are to the system.
void tst_walk::photokitEqualityIsThatOfTheEngine()
{
    RawDirectory tree({ "photokit/Beach/", "Photokit/" });
    const WorkingDirectory inside(tree.path());
    const PathsAsGiven engine(u"photokit"_s);
    const Classifier classifier { QFileInfo(u"photokit"_s) };

    QCOMPARE(ownTypeOf(classifier, u"photokit"_s), Type::Root);
    QCOMPARE(ownTypeOf(classifier, u"Photokit"_s), Type::Root);
    QCOMPARE(ownTypeOf(classifier, u"photokit/Beach"_s), Type::Event);
    QCOMPARE(ownTypeOf(classifier, tree.path("photokit")), Type::Unknown);
}

// Once it was made, also where the engine is no more asked for new files.
void tst_walk::photokitResultKeepsItsEngine()
{
    Result first;
    Result second;
    {
        const PathsAsGiven engine(u"/photokit"_s);
        first = Result(QFileInfo(u"/photokit/2018"_s), Type::Year);
        second = Result(QFileInfo(u"/photokit/2019"_s), Type::Year);
    }
    // To the system neither is there, and all that is not there is the same.
    QVERIFY(!(first == second));
}

// The application ends while one folder is listed.
void tst_walk::walkEndsAtTheNextFolderAndKeepsWhatItHas()
{
    RawDirectory tree({ "a/x/", "b/y/", "c/" });
    m_application.begin();
    QStringList listed;
    RecordingPlatform platform;
    platform.walked = [this, &tree, &listed](const QString& path) {
        if (path == tree.path("b"))
            m_application.end();
        listed.append(path);
    };
    QCOMPARE(walkedLines(tree.path()),
             (QByteArrayList { " Root", "/a Unknown", "/a/x Unknown", "/b Unknown" }));
    // Of the folders that follow nothing is asked but whether to go on.
    QCOMPARE(listed,
             (QStringList { tree.path(), tree.path("a"), tree.path("a/x"), tree.path("b") }));
    m_application.begin();
}

QTEST_APPLESS_MAIN(tst_walk)
#include "tst_walk.moc"
