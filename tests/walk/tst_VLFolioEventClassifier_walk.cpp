#include "UnprivilegedUser.h"
#include "WalkTree.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QScopeGuard>
#include <QtTest/QTest>

#include <array>
#include <type_traits>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using Type = VLEventFolderTypeEnum;
using Result = VLEventFolderClassificationResult;
using Classifier = VLFolioEventClassifier;

static_assert(std::is_polymorphic_v<Classifier>);
static_assert(std::has_virtual_destructor_v<Classifier>);
static_assert(std::is_same_v<decltype(&Classifier::eventFolderTypes),
                             QList<Result> (Classifier::*)(const QFileInfo&, const Result&)>);
static_assert(std::is_same_v<decltype(&Classifier::contextDependentEventFolderType),
                             Result (Classifier::*)(const QFileInfo&, const Result&)>);
static_assert(std::is_same_v<decltype(std::declval<const Classifier&>().eventFolderType(
                                 std::declval<const QFileInfo&>())),
                             Result>);

namespace {

constexpr Type combined(Type a, Type b)
{
    return static_cast<Type>(static_cast<qint32>(a) | static_cast<qint32>(b));
}

Result parentOf(Type type)
{
    return { QFileInfo(u"/parent"_s), type };
}

QList<Result> walk(const QString& root)
{
    const QFileInfo directory(root);
    return Classifier(directory).eventFolderTypes(directory, Result());
}

/// How often \a link can be appended to \a path before the system refuses it.
int stepsInto(const QString& path, const QString& link)
{
    QByteArray steps = QFile::encodeName(path);
    const QByteArray step = '/' + QFile::encodeName(link);
    struct stat status
    {
    };
    int count = -1;
    while (stat(steps.constData(), &status) == 0) {
        steps += step;
        ++count;
    }
    return count;
}

/// Folders "d" in each other. It makes and removes them from within, as their paths grow longer
/// than the system takes.
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

} // namespace

class tst_VLFolioEventClassifier_walk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void contextTable_data();
    void contextTable();
    void contextResultCarriesTheDirectoryAlone();
    void contextResultKeepsARelativePath_data();
    void contextResultKeepsARelativePath();
    void contextWithDefaultParent();
    void workedExample();
    void contextLooksAtCorrectedParent();

    void ownType_data();
    void ownType();
    void ownTypeOfMissingRoot();
    void ownTypeOfDefaultConstructedRoot();
    void ownTypeOfFileSystemRoot();
    void ownTypeLooksAtNoParent();

    void preOrder();
    void nameOrder();
    void hiddenFoldersAreLeftOut();
    void filesAreIgnored();
    void linksToFoldersAreFollowed();
    void linkToRootIsRoot();
    void circleEndsWhereTheSystemSays();
    void danglingLinksAreIgnored();
    void missingRoot();
    void emptyRoot();
    void rootThatIsAFile();
    void unreadableFolders_data();
    void unreadableFolders();
    void deepestTree();

    void defaultConstructedRoot();
    void relativeRoot();
    void relativeRootInAnotherPlace();
    void linkToTheRootThatIsGone();
    void folderAboveTheTargetOfALink_data();
    void folderAboveTheTargetOfALink();
    void rootWithTrailingSlash();
    void rootThroughLink();
    void rootNamedLikeADate();
    void startElsewhere();
    void startBelowRoot();
    void startAboveRoot();

    void folderName_data();
    void folderName();
    void composedAndDecomposedNames();
    void namesThatAreNotUtf8();
    void linkToAPipeBesideSuchNames();

    void resultsCarryNoOccasions();
    void rootIsCopied();
    void constructorDoesNotLook();
    void walkListsAnew();
};

void tst_VLFolioEventClassifier_walk::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_VLFolioEventClassifier_walk::contextTable_data()
{
    struct Parent
    {
        const char* name;
        Type type;
    };
    const QList<Parent> parents {
        { "unknown", Type::Unknown },
        { "root", Type::Root },
        { "year", Type::Year },
        { "month", Type::Month },
        { "day", Type::Day },
        { "event", Type::Event },
        { "project", Type::ProjectFolder },
        { "year_and_month", combined(Type::Year, Type::Month) },
        { "year_and_event", combined(Type::Year, Type::Event) },
        { "day_and_event", combined(Type::Day, Type::Event) },
        { "all_flags", static_cast<Type>(63) },
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
        { { U, U, E, E, U, U, U, U, U, U, U, U }, "unknown", u"/pictures/Beach"_s },
        { { Y, Y, E, E, Y, Y, Y, Y, Y, Y, Y, Y }, "year", u"/pictures/2019"_s },
        { { M, M, M, E, M, M, M, M, M, M, M, M }, "month", u"/pictures/07"_s },
        { { E, E, E, E, E, D, E, E, E, E, E, E }, "day", u"/pictures/2019-07-14"_s },
        { { R, R, R, R, R, R, R, R, R, R, R, R }, "root", u"/"_s },
        { { P, P, P, P, P, P, P, P, P, P, P, P }, "project", u"/pictures/x_vlp-Dateien"_s },
    };

    QTest::addColumn<QString>("folder");
    QTest::addColumn<VLEventFolderTypeEnum>("parent");
    QTest::addColumn<VLEventFolderTypeEnum>("type");
    for (const Row& row : rows) {
        for (qsizetype i = 0; i < parents.size(); ++i) {
            QTest::addRow("%s_below_%s", row.name, parents.at(i).name)
                << row.folder << parents.at(i).type << row.byParent.at(i);
        }
    }
}

void tst_VLFolioEventClassifier_walk::contextTable()
{
    QFETCH(const QString, folder);
    QFETCH(const VLEventFolderTypeEnum, parent);
    QFETCH(const VLEventFolderTypeEnum, type);

    Classifier classifier(QFileInfo(u"/"_s));
    const Result result =
        classifier.contextDependentEventFolderType(QFileInfo(folder), parentOf(parent));
    QCOMPARE(result.classification().value(), type);
    QCOMPARE(result.directory().absoluteFilePath(), folder);
}

void tst_VLFolioEventClassifier_walk::contextResultCarriesTheDirectoryAlone()
{
    Classifier classifier(QFileInfo(u"/"_s));
    Result parent = parentOf(Type::Year);
    VLOccasionInfoList occasions;
    occasions.append(VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.9));
    parent.setOccasionInformation(occasions);

    const Result kept =
        classifier.contextDependentEventFolderType(QFileInfo(u"/pictures/07"_s), parent);
    QCOMPARE(kept.directory().absoluteFilePath(), u"/pictures/07"_s);
    QCOMPARE(kept.occasionInformation().size(), 0);
    const Result replaced =
        classifier.contextDependentEventFolderType(QFileInfo(u"/pictures/Beach"_s), parent);
    QCOMPARE(replaced.directory().absoluteFilePath(), u"/pictures/Beach"_s);
    QCOMPARE(replaced.occasionInformation().size(), 0);
    QCOMPARE(parent.occasionInformation().size(), 1);
}

void tst_VLFolioEventClassifier_walk::contextResultKeepsARelativePath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<VLEventFolderTypeEnum>("type");

    QTest::newRow("own_type_stays") << u"2019/07"_s << Type::Month;
    QTest::newRow("unknown_becomes_event") << u"2019/Beach"_s << Type::Event;
    QTest::newRow("day_becomes_event") << u"2019/2019-07-14"_s << Type::Event;
}

void tst_VLFolioEventClassifier_walk::contextResultKeepsARelativePath()
{
    QFETCH(const QString, path);
    QFETCH(const VLEventFolderTypeEnum, type);

    Classifier classifier(QFileInfo(u"/"_s));
    const Result result =
        classifier.contextDependentEventFolderType(QFileInfo(path), parentOf(Type::Year));
    QCOMPARE(result.directory().filePath(), path);
    QCOMPARE(result.classification().value(), type);
}

void tst_VLFolioEventClassifier_walk::contextWithDefaultParent()
{
    Classifier classifier(QFileInfo(u"/"_s));
    const auto type = [&classifier](const QString& path) {
        return classifier.contextDependentEventFolderType(QFileInfo(path), Result())
            .classification()
            .value();
    };

    QCOMPARE(type(u"/"_s), Type::Root);
    QCOMPARE(type(u"/pictures/Beach"_s), Type::Unknown);
    QCOMPARE(type(u"/pictures/2019"_s), Type::Year);
    QCOMPARE(type(u"/pictures/07"_s), Type::Month);
    QCOMPARE(type(u"/pictures/2019-07-14"_s), Type::Event);
}

void tst_VLFolioEventClassifier_walk::workedExample()
{
    WalkTree tree;
    tree.folders({ u"2019/07/Beach/2019-07-15"_s, u"2019/07/Beach/Shots"_s, u"2019/2019-08-01"_s,
                   u"2019/2020/08"_s, u"Misc/2019-07-14"_s });
    QVERIFY(tree.isValid());

    const QStringList expected {
        u" Root"_s,
        u"/2019 Year"_s,
        u"/2019/07 Month"_s,
        u"/2019/07/Beach Event"_s,
        u"/2019/07/Beach/2019-07-15 Day"_s,
        u"/2019/07/Beach/Shots Unknown"_s,
        u"/2019/2019-08-01 Event"_s,
        u"/2019/2020 Event"_s,
        u"/2019/2020/08 Month"_s,
        u"/Misc Unknown"_s,
        u"/Misc/2019-07-14 Event"_s,
    };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::contextLooksAtCorrectedParent()
{
    WalkTree tree;
    tree.folders({ u"2019/2020/2021/Beach"_s, u"2019-07-14/2019-07-15/2019-07-16"_s,
                   u"07/08/09/Beach"_s, u"x_vlp-Dateien/Beach/2019"_s });
    QVERIFY(tree.isValid());

    const QStringList expected {
        u" Root"_s,
        u"/07 Month"_s,
        u"/07/08 Event"_s,
        u"/07/08/09 Month"_s,
        u"/07/08/09/Beach Event"_s,
        u"/2019 Year"_s,
        u"/2019/2020 Event"_s,
        u"/2019/2020/2021 Year"_s,
        u"/2019/2020/2021/Beach Event"_s,
        u"/2019-07-14 Event"_s,
        u"/2019-07-14/2019-07-15 Day"_s,
        u"/2019-07-14/2019-07-15/2019-07-16 Event"_s,
        u"/x_vlp-Dateien ProjectFolder"_s,
        u"/x_vlp-Dateien/Beach Unknown"_s,
        u"/x_vlp-Dateien/Beach/2019 Year"_s,
    };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::ownType_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<VLEventFolderTypeEnum>("type");

    QTest::newRow("root") << u"pics"_s << Type::Root;
    QTest::newRow("root_with_trailing_slash") << u"pics/"_s << Type::Root;
    QTest::newRow("root_through_dot") << u"./pics/."_s << Type::Root;
    QTest::newRow("root_through_its_child") << u"pics/2019/.."_s << Type::Root;
    QTest::newRow("root_through_link_beside_it") << u"pics/2019/../back"_s << Type::Root;
    QTest::newRow("root_through_link_with_a_date") << u"pics/2019-07-14"_s << Type::Root;
    QTest::newRow("name_of_the_root_elsewhere") << u"pics/2019/pics"_s << Type::Unknown;
    QTest::newRow("above_root") << u"."_s << Type::Unknown;
    QTest::newRow("year") << u"pics/2019"_s << Type::Year;
    QTest::newRow("year_with_trailing_slash_has_no_name") << u"pics/2019/"_s << Type::Unknown;
    QTest::newRow("month") << u"pics/2019/07"_s << Type::Month;
    QTest::newRow("day") << u"pics/2019/2019-07-14"_s << Type::Day;
    QTest::newRow("project") << u"pics/2019-07-14_vlp-Dateien"_s << Type::ProjectFolder;
    QTest::newRow("only_the_last_part_is_the_name")
        << u"2019/07/2019-07-14/Beach"_s << Type::Unknown;
    QTest::newRow("photokit_is_no_absolute_path") << u"photokit"_s << Type::Unknown;
    QTest::newRow("photokit_with_year_is_no_absolute_path") << u"photokit/2019"_s << Type::Year;
    QTest::newRow("file") << u"pics/2018"_s << Type::Year;
}

void tst_VLFolioEventClassifier_walk::ownType()
{
    QFETCH(const QString, path);
    QFETCH(const VLEventFolderTypeEnum, type);

    WalkTree tree;
    tree.folders({ u"2019/07"_s, u"2019/pics"_s }).file(u"2018"_s);
    tree.link(u"back"_s, tree.root()).link(u"2019-07-14"_s, u"."_s);
    QVERIFY(tree.isValid());
    const WorkingDirectory above(tree.path(u".."_s));
    QVERIFY(above.isActive());

    const Classifier classifier { QFileInfo(tree.root()) };
    const Result result = classifier.eventFolderType(QFileInfo(path));
    QCOMPARE(result.classification().value(), type);
    QCOMPARE(result.directory().filePath(), path);
    QCOMPARE(result.occasionInformation().size(), 0);
}

// To Qt, two files that do not exist are the same.
void tst_VLFolioEventClassifier_walk::ownTypeOfMissingRoot()
{
    WalkTree tree;
    tree.folders({ u"2019"_s });
    QVERIFY(tree.isValid());
    const Classifier classifier { QFileInfo(tree.path(u"missing"_s)) };
    const auto type = [&classifier, &tree](const QString& name) {
        return classifier.eventFolderType(QFileInfo(tree.path(name))).classification().value();
    };

    QCOMPARE(type(u"missing"_s), Type::Root);
    QCOMPARE(type(u"missing, too"_s), Type::Root);
    QCOMPARE(type(u"missing/2018"_s), Type::Root);
    QCOMPARE(type(u"2019"_s), Type::Year);
}

void tst_VLFolioEventClassifier_walk::ownTypeOfDefaultConstructedRoot()
{
    const QFileInfo root;
    const Classifier classifier(root);

    QCOMPARE(classifier.eventFolderType(QFileInfo(root)).classification().value(), Type::Root);
    QCOMPARE(classifier.eventFolderType(QFileInfo()).classification().value(), Type::Unknown);
    QCOMPARE(classifier.eventFolderType(QFileInfo(u"."_s)).classification().value(), Type::Unknown);
}

void tst_VLFolioEventClassifier_walk::ownTypeOfFileSystemRoot()
{
    const Classifier classifier { QFileInfo(u"/"_s) };
    const auto type = [&classifier](const QString& path) {
        return classifier.eventFolderType(QFileInfo(path)).classification().value();
    };

    QCOMPARE(type(u"/"_s), Type::Root);
    QCOMPARE(type(u"/."_s), Type::Root);
    QCOMPARE(type(u"/.."_s), Type::Root);
    QCOMPARE(type(u"/2019"_s), Type::Year);
    QCOMPARE(type(u"/Beach"_s), Type::Unknown);
}

void tst_VLFolioEventClassifier_walk::ownTypeLooksAtNoParent()
{
    WalkTree tree;
    tree.folders({ u"2019/07/2019-07-14"_s, u"2019/Beach"_s });
    QVERIFY(tree.isValid());
    const Classifier classifier { QFileInfo(tree.root()) };
    const auto type = [&classifier, &tree](const QString& name) {
        return classifier.eventFolderType(QFileInfo(tree.path(name))).classification().value();
    };

    QCOMPARE(type(u"2019/07/2019-07-14"_s), Type::Day);
    QCOMPARE(type(u"2019/Beach"_s), Type::Unknown);
}

void tst_VLFolioEventClassifier_walk::preOrder()
{
    WalkTree tree;
    tree.folders({ u"a/a/a"_s, u"a/b"_s, u"b/a"_s, u"c"_s });
    QVERIFY(tree.isValid());

    const QStringList expected {
        u" Root"_s,        u"/a Unknown"_s, u"/a/a Unknown"_s, u"/a/a/a Unknown"_s,
        u"/a/b Unknown"_s, u"/b Unknown"_s, u"/b/a Unknown"_s, u"/c Unknown"_s,
    };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

// By UTF-16 code units: capitals before small letters, 10 before 9, what lies outside the basic
// plane before the fullwidth letters. A folder's tree is whole before its neighbours 2019-x and C
// D.
void tst_VLFolioEventClassifier_walk::nameOrder()
{
    WalkTree tree;
    tree.folders({ u"a"_s, u"B"_s, u"Z"_s, u"_"_s, u"9"_s, u"10"_s, u"2019-x"_s, u"2019/01"_s,
                   u"C D"_s, u"CD"_s, u"C/x"_s, u"\uff21"_s, u"😀"_s, u"é"_s, u"y"_s });
    QVERIFY(tree.isValid());

    const QStringList expected {
        u" Root"_s,        u"/10 Month"_s,       u"/2019 Year"_s,  u"/2019/01 Month"_s,
        u"/2019-x Year"_s, u"/9 Month"_s,        u"/B Unknown"_s,  u"/C Unknown"_s,
        u"/C/x Unknown"_s, u"/C D Unknown"_s,    u"/CD Unknown"_s, u"/Z Unknown"_s,
        u"/_ Unknown"_s,   u"/a Unknown"_s,      u"/y Unknown"_s,  u"/é Unknown"_s,
        u"/😀 Unknown"_s,   u"/\uff21 Unknown"_s,
    };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::hiddenFoldersAreLeftOut()
{
    WalkTree tree;
    tree.folders({ u".hidden/2019/07"_s, u"2018/.2018-07-14/Beach"_s, u"..."_s, u"2019"_s });
    tree.link(u".link"_s, u"2019"_s).link(u"link"_s, u".hidden"_s);
    QVERIFY(tree.isValid());

    const QStringList expected {
        u" Root"_s,         u"/2018 Year"_s,      u"/2019 Year"_s,
        u"/link Unknown"_s, u"/link/2019 Year"_s, u"/link/2019/07 Month"_s,
    };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::filesAreIgnored()
{
    WalkTree tree;
    tree.folders({ u"2019"_s }).file(u"2018"_s).file(u"2019/07"_s).file(u"a.jpg"_s);
    tree.link(u"2017"_s, u"2018"_s);
    QVERIFY(tree.isValid());
    QCOMPARE(mkfifo(QFile::encodeName(tree.path(u"2016"_s)).constData(), S_IRWXU), 0);

    const QStringList expected { u" Root"_s, u"/2019 Year"_s };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::linksToFoldersAreFollowed()
{
    WalkTree tree;
    tree.folders({ u"2019/07"_s, u"../elsewhere/Beach/2019-07-14"_s });
    tree.link(u"2019/Rome"_s, u"../../elsewhere"_s).link(u"twice"_s, u"2019/Rome"_s);
    QVERIFY(tree.isValid());

    const QStringList expected {
        u" Root"_s,
        u"/2019 Year"_s,
        u"/2019/07 Month"_s,
        u"/2019/Rome Event"_s,
        u"/2019/Rome/Beach Unknown"_s,
        u"/2019/Rome/Beach/2019-07-14 Event"_s,
        u"/twice Unknown"_s,
        u"/twice/Beach Unknown"_s,
        u"/twice/Beach/2019-07-14 Event"_s,
    };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

// Each step is the root again, whatever the link is called.
void tst_VLFolioEventClassifier_walk::linkToRootIsRoot()
{
    WalkTree tree;
    tree.folders({ u"Beach"_s }).link(u"2019"_s, tree.root());
    QVERIFY(tree.isValid());
    const int steps = stepsInto(tree.root(), u"2019"_s);
#ifdef Q_OS_LINUX
    QCOMPARE(steps, 40);
#endif

    const QStringList found = lines(walk(tree.root()), tree.root());
    const QStringList begin { u" Root"_s, u"/2019 Root"_s, u"/2019/2019 Root"_s };
    QCOMPARE(found.mid(0, 3), begin);
    // The root and each step have the one other folder, too.
    QCOMPARE(found.size(), 2 * (steps + 1));
    QCOMPARE(found.filter(QRegularExpression(u" Root$"_s)).size(), steps + 1);
    QCOMPARE(found.filter(QRegularExpression(u"/Beach Unknown$"_s)).size(), steps + 1);
    QCOMPARE(found.constLast(), u"/Beach Unknown"_s);
}

void tst_VLFolioEventClassifier_walk::circleEndsWhereTheSystemSays()
{
    WalkTree tree;
    tree.folders({ u"2019"_s }).link(u"2019/2020"_s, u"../2019"_s);
    QVERIFY(tree.isValid());
    const int steps = stepsInto(tree.path(u"2019"_s), u"2020"_s);
#ifdef Q_OS_LINUX
    QCOMPARE(steps, 40);
#endif

    const QStringList found = lines(walk(tree.root()), tree.root());
    const QStringList begin {
        u" Root"_s,
        u"/2019 Year"_s,
        u"/2019/2020 Event"_s,
        u"/2019/2020/2020 Year"_s,
        u"/2019/2020/2020/2020 Event"_s,
    };
    QCOMPARE(found.mid(0, 5), begin);
    QCOMPARE(found.size(), 2 + steps);
}

void tst_VLFolioEventClassifier_walk::danglingLinksAreIgnored()
{
    WalkTree tree;
    tree.folders({ u"2019"_s }).link(u"2018"_s, u"nowhere"_s).link(u"2017"_s, u"2017"_s);
    tree.link(u"2019/07"_s, u"../../nowhere/07"_s);
    QVERIFY(tree.isValid());

    const QStringList expected { u" Root"_s, u"/2019 Year"_s };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::missingRoot()
{
    const WalkTree tree;
    QVERIFY(tree.isValid());

    const QStringList expected { u"/2019-07-14 Root"_s };
    QCOMPARE(lines(walk(tree.path(u"2019-07-14"_s)), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::emptyRoot()
{
    const WalkTree tree;
    QVERIFY(tree.isValid());

    QCOMPARE(lines(walk(tree.root()), tree.root()), QStringList { u" Root"_s });
}

void tst_VLFolioEventClassifier_walk::rootThatIsAFile()
{
    WalkTree tree;
    tree.file(u"2019"_s);
    QVERIFY(tree.isValid());

    QCOMPARE(lines(walk(tree.path(u"2019"_s)), tree.root()), QStringList { u"/2019 Root"_s });
}

void tst_VLFolioEventClassifier_walk::unreadableFolders_data()
{
    QTest::addColumn<QFile::Permissions>("permissions");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QStringList>("expected");

    const QStringList without2018 { u" Root"_s, u"/2018 Year"_s, u"/2019 Year"_s,
                                    u"/2019/07 Month"_s };
    QTest::newRow("folder_without_any_right") << QFile::Permissions() << u"2018"_s << without2018;
    QTest::newRow("folder_that_may_be_entered_alone")
        << QFile::Permissions(QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther) << u"2018"_s
        << without2018;
    QTest::newRow("root") << QFile::Permissions() << u"."_s << QStringList { u" Root"_s };
}

void tst_VLFolioEventClassifier_walk::unreadableFolders()
{
    QFETCH(const QFile::Permissions, permissions);
    QFETCH(const QString, folder);
    QFETCH(const QStringList, expected);

    WalkTree tree;
    tree.folders({ u"2018/07/Beach"_s, u"2019/07"_s });
    QVERIFY(tree.isValid());
    const QFile::Permissions everything(0x7777);
    QVERIFY(QFile::setPermissions(tree.path(u".."_s), everything));
    QVERIFY(QFile::setPermissions(tree.path(folder), permissions));
    const auto restore = qScopeGuard(
        [&tree, &folder, everything] { QFile::setPermissions(tree.path(folder), everything); });

    QStringList found;
    bool isReachable = false;
    {
        const UnprivilegedUser user;
        isReachable = user.isActive() && QFileInfo::exists(tree.root());
        found = lines(walk(tree.root()), tree.root());
    }
    if (!isReachable)
        QSKIP("Needs a user without the superuser's rights who can reach the temporary files");
    QCOMPARE(found, expected);
}

// A path that the system refuses has no subdirectories.
void tst_VLFolioEventClassifier_walk::deepestTree()
{
    const WalkTree tree;
    QVERIFY(tree.isValid());
    const DeepTree deep(tree.root(), 2'100);
    QCOMPARE(deep.depth(), 2'100);
    const int steps = stepsInto(tree.root(), u"d"_s);
    QVERIFY(steps > 100);
    QVERIFY(steps < 2'100);

    const QStringList found = lines(walk(tree.root()), tree.root());
    const QStringList begin { u" Root"_s, u"/d Unknown"_s, u"/d/d Unknown"_s };
    QCOMPARE(found.mid(0, 3), begin);
    // The last folder that can be reached may still name its subdirectory.
    QVERIFY2(found.size() == steps + 1 || found.size() == steps + 2,
             qPrintable(u"%1 results, %2 steps"_s.arg(found.size()).arg(steps)));
}

void tst_VLFolioEventClassifier_walk::defaultConstructedRoot()
{
    WalkTree tree;
    tree.folders({ u"2019/07"_s, u"Beach"_s });
    QVERIFY(tree.isValid());
    const WorkingDirectory inside(tree.root());
    QVERIFY(inside.isActive());

    const QFileInfo root;
    Classifier classifier(root);
    const QStringList expected { u" Root"_s, u"/2019 Year"_s, u"/2019/07 Month"_s,
                                 u"/Beach Unknown"_s };
    QCOMPARE(lines(classifier.eventFolderTypes(root, Result()), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::relativeRoot()
{
    WalkTree tree;
    tree.folders({ u"2019/07"_s, u"Beach"_s });
    QVERIFY(tree.isValid());
    const WorkingDirectory above(tree.path(u".."_s));
    QVERIFY(above.isActive());

    const QStringList expected { u" Root"_s, u"/2019 Year"_s, u"/2019/07 Month"_s,
                                 u"/Beach Unknown"_s };
    QCOMPARE(lines(walk(u"pics"_s), tree.root()), expected);
}

// One path is one directory to QFileInfo, wherever it leads to by now.
void tst_VLFolioEventClassifier_walk::relativeRootInAnotherPlace()
{
    WalkTree tree;
    tree.folders({ u"one/a"_s, u"one/b"_s, u"two/a"_s });
    QVERIFY(tree.isValid());
    const WorkingDirectory one(tree.path(u"one"_s));
    QVERIFY(one.isActive());
    const Classifier classifier { QFileInfo(u"a"_s) };
    QCOMPARE(classifier.eventFolderType(QFileInfo(u"b"_s)).classification().value(), Type::Unknown);

    const WorkingDirectory two(tree.path(u"two"_s));
    QVERIFY(two.isActive());
    QCOMPARE(classifier.eventFolderType(QFileInfo(u"a"_s)).classification().value(), Type::Root);
}

// What QFileInfo has found out counts for as long as it keeps that.
void tst_VLFolioEventClassifier_walk::linkToTheRootThatIsGone()
{
    WalkTree tree;
    tree.link(u"../link"_s, tree.root());
    QVERIFY(tree.isValid());
    const QFileInfo link(QFileInfo(tree.root()).path() + u"/link"_s);
    QVERIFY(link.isSymLink());
    QCOMPARE(link.canonicalFilePath(), tree.root());
    QVERIFY(QFile::remove(link.filePath()));

    const Classifier classifier { QFileInfo(tree.root()) };
    QCOMPARE(classifier.eventFolderType(link).classification().value(), Type::Root);
}

// The system follows a link before it goes up again. A path without ".." would lead elsewhere.
void tst_VLFolioEventClassifier_walk::folderAboveTheTargetOfALink_data()
{
    QTest::addColumn<QString>("path");

    QTest::newRow("folder") << u"link/../x"_s;
    QTest::newRow("link_to_it") << u"link/../y"_s;
}

void tst_VLFolioEventClassifier_walk::folderAboveTheTargetOfALink()
{
    QFETCH(const QString, path);

    WalkTree tree;
    tree.folders({ u"other/sub"_s, u"other/x"_s, u"x"_s, u"y"_s });
    tree.link(u"link"_s, tree.path(u"other/sub"_s)).link(u"other/y"_s, tree.path(u"other/x"_s));
    QVERIFY(tree.isValid());
    const Classifier classifier { QFileInfo(tree.path(u"other/x"_s)) };
    QCOMPARE(classifier.eventFolderType(QFileInfo(tree.path(path))).classification().value(),
             Type::Root);
}

// The slash stays in the root's path and does not double in those below.
void tst_VLFolioEventClassifier_walk::rootWithTrailingSlash()
{
    WalkTree tree;
    tree.folders({ u"2019/07"_s });
    QVERIFY(tree.isValid());

    const QStringList expected { u"/ Root"_s, u"/2019 Year"_s, u"/2019/07 Month"_s };
    QCOMPARE(lines(walk(tree.root() + u'/'), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::rootThroughLink()
{
    WalkTree tree;
    tree.folders({ u"2019/07"_s }).link(u"../2018"_s, tree.root());
    QVERIFY(tree.isValid());
    const QString link = QFileInfo(tree.root()).path() + u"/2018"_s;

    const QStringList expected { u" Root"_s, u"/2019 Year"_s, u"/2019/07 Month"_s };
    QCOMPARE(lines(walk(link), link), expected);
}

void tst_VLFolioEventClassifier_walk::rootNamedLikeADate()
{
    WalkTree tree;
    tree.folders({ u"2019-07-14/Beach"_s, u"2019-07-14/2019-07-15"_s });
    QVERIFY(tree.isValid());

    const QStringList expected { u" Root"_s, u"/2019-07-15 Event"_s, u"/Beach Unknown"_s };
    QCOMPARE(lines(walk(tree.path(u"2019-07-14"_s)), tree.path(u"2019-07-14"_s)), expected);
}

// Where a walk starts is no root by that.
void tst_VLFolioEventClassifier_walk::startElsewhere()
{
    WalkTree tree;
    tree.folders({ u"2019/07/Beach"_s, u"../elsewhere/2020"_s });
    QVERIFY(tree.isValid());
    Classifier classifier { QFileInfo(tree.path(u"../elsewhere"_s)) };

    const QStringList expected { u" Unknown"_s, u"/2019 Year"_s, u"/2019/07 Month"_s,
                                 u"/2019/07/Beach Event"_s };
    QCOMPARE(lines(classifier.eventFolderTypes(QFileInfo(tree.root()), Result()), tree.root()),
             expected);
}

void tst_VLFolioEventClassifier_walk::startBelowRoot()
{
    WalkTree tree;
    tree.folders({ u"Beach/2019-07-14/2019-07-15"_s, u"Beach/Shots"_s });
    QVERIFY(tree.isValid());
    Classifier classifier { QFileInfo(tree.root()) };
    const auto found = [&classifier, &tree](Type parentType) {
        return lines(
            classifier.eventFolderTypes(QFileInfo(tree.path(u"Beach"_s)), parentOf(parentType)),
            tree.root());
    };

    const QStringList belowMonth { u"/Beach Event"_s, u"/Beach/2019-07-14 Day"_s,
                                   u"/Beach/2019-07-14/2019-07-15 Event"_s,
                                   u"/Beach/Shots Unknown"_s };
    QCOMPARE(found(Type::Month), belowMonth);
    const QStringList belowUnknown { u"/Beach Unknown"_s, u"/Beach/2019-07-14 Event"_s,
                                     u"/Beach/2019-07-14/2019-07-15 Day"_s,
                                     u"/Beach/Shots Unknown"_s };
    QCOMPARE(found(Type::Unknown), belowUnknown);
    QCOMPARE(found(combined(Type::Year, Type::Month)), belowUnknown);
}

void tst_VLFolioEventClassifier_walk::startAboveRoot()
{
    WalkTree tree;
    tree.folders({ u"2018/2019/2019-07-14"_s, u"2018/2019/Beach"_s });
    QVERIFY(tree.isValid());
    Classifier classifier { QFileInfo(tree.path(u"2018/2019"_s)) };

    const QStringList expected {
        u"/2018 Year"_s,
        u"/2018/2019 Root"_s,
        u"/2018/2019/2019-07-14 Event"_s,
        u"/2018/2019/Beach Unknown"_s,
    };
    QCOMPARE(
        lines(classifier.eventFolderTypes(QFileInfo(tree.path(u"2018"_s)), Result()), tree.root()),
        expected);
}

void tst_VLFolioEventClassifier_walk::folderName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("type");

    QTest::newRow("line_feed") << u"Beach\n2019"_s << u"Year"_s;
    QTest::newRow("line_feed_as_separator") << u"2019\n07\n14"_s << u"Event"_s;
    QTest::newRow("markup") << u"<script>alert('2019')<\\script>"_s << u"Year"_s;
    QTest::newRow("ampersand") << u"Beach & Sea"_s << u"Unknown"_s;
    QTest::newRow("quotes") << u"\"Beach\""_s << u"Unknown"_s;
    QTest::newRow("place_marker") << u"%1"_s << u"Unknown"_s;
    QTest::newRow("place_markers_and_year") << u"%1 2019 %2"_s << u"Year"_s;
    QTest::newRow("percent_encoding") << u"%32%30%31%39"_s << u"Unknown"_s;
    QTest::newRow("wildcard") << u"*"_s << u"Unknown"_s;
    QTest::newRow("backslash") << u"2019\\07\\14"_s << u"Year"_s;
    QTest::newRow("colon_of_a_resource_path") << u":2019"_s << u"Year"_s;
    QTest::newRow("tilde") << u"~"_s << u"Unknown"_s;
    QTest::newRow("leading_hyphen") << u"-2019-07-14"_s << u"Event"_s;
    QTest::newRow("trailing_blank") << u"07 "_s << u"Unknown"_s;
    QTest::newRow("trailing_full_stop") << u"2019."_s << u"Year"_s;
    QTest::newRow("year_like_a_suffix") << u"Beach.2019"_s << u"Year"_s;
    QTest::newRow("escape_sequence") << u"\x1b[31m2019"_s << u"Year"_s;
    QTest::newRow("right_to_left_mark") << u"\u202e2019"_s << u"Year"_s;
    QTest::newRow("outside_the_basic_plane") << u"😀 2019"_s << u"Year"_s;
    QTest::newRow("255_bytes") << QString(251, u'x') + u"2019"_s << u"Year"_s;
    QTest::newRow("255_bytes_of_two_byte_letters") << u"2019x"_s + QString(125, u'é') << u"Year"_s;
    QTest::newRow("photokit") << u"photokit"_s << u"Unknown"_s;
    QTest::newRow("project") << u"<b>_vlp-Dateien"_s << u"ProjectFolder"_s;
}

void tst_VLFolioEventClassifier_walk::folderName()
{
    QFETCH(const QString, name);
    QFETCH(const QString, type);

    WalkTree tree;
    tree.folders({ name + u"/07"_s });
    QVERIFY(tree.isValid());

    const QStringList expected { u" Root"_s, u'/' + name + u' ' + type,
                                 u'/' + name + u"/07 Month"_s };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::composedAndDecomposedNames()
{
    WalkTree tree;
    tree.folders({ u"Caf\u00e9 2019"_s, u"Cafe\u0301 2019"_s });
    QVERIFY(tree.isValid());
    if (QDir(tree.root()).count() != 4)
        QSKIP("This file system takes both names for the same folder");

    const QStringList expected { u" Root"_s, u"/Cafe\u0301 2019 Year"_s,
                                 u"/Caf\u00e9 2019 Year"_s };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

// Qt cannot tell them, and they hide nothing of what stands beside them.
void tst_VLFolioEventClassifier_walk::namesThatAreNotUtf8()
{
    WalkTree tree;
    tree.folders({ u"2018"_s, u"2019"_s, u"2019/07"_s });
    QVERIFY(tree.isValid());
    const QByteArray root = QFile::encodeName(tree.root());
    const std::array names { root + "/2018\xff", root + "/2019/\xe4\xf6 2020" };
    // Qt does not remove them with the rest of the tree.
    const auto remove = qScopeGuard([&names] {
        for (const QByteArray& name : names)
            rmdir(name.constData());
    });
    for (const QByteArray& name : names) {
        if (mkdir(name.constData(), S_IRWXU) != 0)
            QSKIP("This file system takes no such names");
    }

    const QStringList found = lines(walk(tree.root()), tree.root());
    const QStringList expected { u" Root"_s, u"/2018 Year"_s, u"/2019 Year"_s,
                                 u"/2019/07 Month"_s };
    QCOMPARE(found, expected);
}

// Whoever does the listing: QDir takes a link to a pipe for a folder.
void tst_VLFolioEventClassifier_walk::linkToAPipeBesideSuchNames()
{
    WalkTree tree;
    tree.folders({ u"2019"_s }).link(u"pipe"_s, u".pipe"_s);
    QVERIFY(tree.isValid());
    QCOMPARE(mkfifo(QFile::encodeName(tree.path(u".pipe"_s)).constData(), S_IRWXU), 0);
    const QByteArray undecodable = QFile::encodeName(tree.root()) + "/2018\xff";
    const auto remove = qScopeGuard([&undecodable] { rmdir(undecodable.constData()); });
    if (mkdir(undecodable.constData(), S_IRWXU) != 0)
        QSKIP("This file system takes no such names");

    const QStringList expected { u" Root"_s, u"/2019 Year"_s, u"/pipe Unknown"_s };
    QCOMPARE(lines(walk(tree.root()), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::resultsCarryNoOccasions()
{
    WalkTree tree;
    tree.folders({ u"2019/07/Beach/2019-07-14"_s, u"Misc"_s, u"x_vlp-Dateien"_s });
    QVERIFY(tree.isValid());

    const QList<Result> results = walk(tree.root());
    QCOMPARE(results.size(), 7);
    QVERIFY(haveNoOccasions(results));
}

void tst_VLFolioEventClassifier_walk::rootIsCopied()
{
    WalkTree tree;
    tree.folders({ u"2019"_s });
    QVERIFY(tree.isValid());
    QFileInfo root(tree.root());
    Classifier classifier(root);
    root.setFile(tree.path(u"2019"_s));

    const QStringList expected { u" Root"_s, u"/2019 Year"_s };
    QCOMPARE(lines(classifier.eventFolderTypes(QFileInfo(tree.root()), Result()), tree.root()),
             expected);
}

void tst_VLFolioEventClassifier_walk::constructorDoesNotLook()
{
    WalkTree tree;
    const QFileInfo root(tree.path(u"later"_s));
    Classifier classifier(root);
    tree.folders({ u"later/2019"_s });
    QVERIFY(tree.isValid());

    const QStringList expected { u"/later Root"_s, u"/later/2019 Year"_s };
    QCOMPARE(lines(classifier.eventFolderTypes(root, Result()), tree.root()), expected);
}

void tst_VLFolioEventClassifier_walk::walkListsAnew()
{
    WalkTree tree;
    tree.folders({ u"2018/Beach"_s });
    QVERIFY(tree.isValid());
    const QFileInfo root(tree.root());
    Classifier classifier(root);
    const QStringList first { u" Root"_s, u"/2018 Year"_s, u"/2018/Beach Event"_s };
    QCOMPARE(lines(classifier.eventFolderTypes(root, Result()), tree.root()), first);
    QCOMPARE(lines(classifier.eventFolderTypes(root, Result()), tree.root()), first);

    // Neither another start nor another parent is remembered.
    const QFileInfo below(tree.path(u"2018/Beach"_s));
    QCOMPARE(classifier.eventFolderTypes(below, parentOf(Type::Day)).size(), 1);
    QVERIFY(QDir(tree.path(u"2018"_s)).rmdir(u"Beach"_s));
    tree.folders({ u"2018/07"_s, u"2019"_s });
    QVERIFY(tree.isValid());

    const QStringList second { u" Root"_s, u"/2018 Year"_s, u"/2018/07 Month"_s, u"/2019 Year"_s };
    QCOMPARE(lines(classifier.eventFolderTypes(root, Result()), tree.root()), second);
}

QTEST_GUILESS_MAIN(tst_VLFolioEventClassifier_walk)
#include "tst_VLFolioEventClassifier_walk.moc"
