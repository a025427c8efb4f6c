#include "OriginalFunction.h"
#include "RawDirectory.h"
#include "TypeNames.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QLibraryInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QVersionNumber>
#include <QtTest/QTest>

#include <cstdlib>

#include <dirent.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using Result = VLEventFolderClassificationResult;

namespace {

int askedForTheVersion = 0;
int askedForEntries = 0;

bool holdsUndecodableName(const QString& path)
{
    DIR* const directory = opendir(QFile::encodeName(path).constData());
    if (directory == nullptr)
        return false;
    bool holds = false;
    while (const dirent* const entry = readdir(directory))
        holds |= QString::fromUtf8(entry->d_name).toUtf8() != entry->d_name;
    closedir(directory);
    return holds;
}

} // namespace

// The program comes first when the libraries look for a function: to them this Qt is the first
// version whose listing may end at a name that it cannot decode, whatever the installed one does.
QVersionNumber QLibraryInfo::version() noexcept
{
    ++askedForTheVersion;
    return { 6, 5 };
}

// Such a listing may end before the first name.
QFileInfoList QDir::entryInfoList(Filters filters, SortFlags sort) const
{
    ++askedForEntries;
    using Function = QFileInfoList (*)(const QDir*, Filters, SortFlags);
    static const auto function =
        original<Function>("_ZNK4QDir13entryInfoListE6QFlagsINS_6FilterEES0_INS_8SortFlagEE");
    return holdsUndecodableName(path()) ? QFileInfoList {} : function(this, filters, sort);
}

class tst_hostile_listing_that_ends : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void walk_data();
    void walk();
    void circleEndsAtFortyLinks();
    void rootOfTheFileSystem();
    void cleanupTestCase();
};

void tst_hostile_listing_that_ends::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_hostile_listing_that_ends::walk_data()
{
    QTest::addColumn<QByteArrayList>("folders");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("proper_names_only")
        << QByteArrayList { "b", "2019", "B", "2018", ".hidden" }
        << QStringList { u" Root"_s,      u"/2018 Year"_s,    u"/2019 Year"_s,   u"/B Unknown"_s,
                         u"/b Unknown"_s, u"/link Unknown"_s, u"/pipe Unknown"_s };
    QTest::newRow("undecodable_name_made_first")
        << QByteArrayList { "\xff", "b", "2019", "B", "2018", ".hidden" }
        << QStringList { u" Root"_s,      u"/2018 Year"_s,    u"/2019 Year"_s,   u"/B Unknown"_s,
                         u"/b Unknown"_s, u"/link Unknown"_s, u"/pipe Unknown"_s };
    QTest::newRow("undecodable_name_made_last")
        << QByteArrayList { "b", "2019", "B", "2018", ".hidden", "\xff" }
        << QStringList { u" Root"_s,      u"/2018 Year"_s,    u"/2019 Year"_s,   u"/B Unknown"_s,
                         u"/b Unknown"_s, u"/link Unknown"_s, u"/pipe Unknown"_s };
    QTest::newRow("undecodable_name_further_below")
        << QByteArrayList { "2019", "2019/z", "2019/07", "2019/\xff", "2019/07/Beach" }
        << QStringList { u" Root"_s,          u"/2019 Year"_s,
                         u"/2019/07 Month"_s, u"/2019/07/Beach Event"_s,
                         u"/2019/z Event"_s,  u"/link Unknown"_s,
                         u"/pipe Unknown"_s };
    QTest::newRow("paths_that_end_in_a_dot_or_a_digit")
        << QByteArrayList { "a.", "a./\xff", "a./b", "a0", "a0/\xff", "a0/b" }
        << QStringList { u" Root"_s,        u"/a. Unknown"_s,   u"/a./b Unknown"_s,
                         u"/a0 Unknown"_s,  u"/a0/b Unknown"_s, u"/link Unknown"_s,
                         u"/pipe Unknown"_s };
    QTest::newRow("names_like_paths_of_resources")
        << QByteArrayList { "\xff", ":2019", ":2019/:" }
        << QStringList { u" Root"_s, u"/:2019 Year"_s, u"/:2019/: Event"_s, u"/link Unknown"_s,
                         u"/pipe Unknown"_s };
    QTest::newRow("order_of_code_units")
        << QByteArrayList { "\xff", "\U0001f600", "\uff21", "a\u0308", "\u00e4",
                            "a b",  "a-b",        "a",      "A" }
        << QStringList { u" Root"_s,           u"/A Unknown"_s,
                         u"/a Unknown"_s,      u"/a b Unknown"_s,
                         u"/a-b Unknown"_s,    u"/a\u0308 Unknown"_s,
                         u"/link Unknown"_s,   u"/pipe Unknown"_s,
                         u"/\u00e4 Unknown"_s, u"/\U0001f600 Unknown"_s,
                         u"/\uff21 Unknown"_s };
}

void tst_hostile_listing_that_ends::walk()
{
    QFETCH(const QByteArrayList, folders);
    QFETCH(const QStringList, expected);

    RawDirectory tree;
    for (const QByteArray& folder : folders)
        tree.folder(folder);
    tree.folder(".aim").link("link", ".aim").link("dangling", "nowhere").file("file");
    // Qt lists it like a folder.
    tree.fifo(".pipe").link("pipe", ".pipe");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    QStringList found;
    const QFileInfo root(tree.path());
    const QList<Result> results = VLFolioEventClassifier(root).eventFolderTypes(root, Result());
    for (const Result& result : results) {
        found.append(result.directory().absoluteFilePath().mid(tree.path().size()) + u' '
                     + typeName(result.classification().value()));
    }
    QCOMPARE(found, expected);
}

// As a path from the root, that is: each listing by itself would meet one link only.
void tst_hostile_listing_that_ends::circleEndsAtFortyLinks()
{
    RawDirectory tree;
    tree.folder("\xff").link("circle", ".");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    const QFileInfo root(tree.path());
    const QList<Result> results = VLFolioEventClassifier(root).eventFolderTypes(root, Result());
    QCOMPARE(results.size(), 41);
    QCOMPARE(results.last().directory().absoluteFilePath(),
             tree.path() + u"/circle"_s.repeated(40));
}

// Its path ends with the slash that others lack.
void tst_hostile_listing_that_ends::rootOfTheFileSystem()
{
    RawDirectory tree;
    tree.folder("\xff").folder("2019");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");

    constexpr int noOtherRoot = 77;
    const pid_t child = fork();
    if (child == 0) {
        if (chroot(QFile::encodeName(tree.path()).constData()) != 0 || chdir("/") != 0)
            _exit(noOtherRoot);
        const QFileInfo root(u"/"_s);
        const QList<Result> results = VLFolioEventClassifier(root).eventFolderTypes(root, Result());
        const bool isRight =
            results.size() == 2 && results.constLast().directory().filePath() == u"/2019"_s;
        _exit(isRight ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status));
    if (WEXITSTATUS(status) == noOtherRoot)
        QSKIP("Only the superuser can take another root");
    QCOMPARE(WEXITSTATUS(status), EXIT_SUCCESS);
}

// Else nothing was tested here but what is tested elsewhere.
void tst_hostile_listing_that_ends::cleanupTestCase()
{
    QVERIFY(askedForTheVersion > 0);
    QVERIFY(askedForEntries > 0);
}

QTEST_GUILESS_MAIN(tst_hostile_listing_that_ends)
#include "tst_hostile_listing_that_ends.moc"
