#include "PictureTree.h"
#include "ProgramRun.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtTest/QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

// What becomes of the file that --page names, and what is said about it. The page itself is tested
// in a browser.
class tst_vlfolio_classify_page : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isWrittenInPlaceOfTheReport();
    void isTheSameAgain();
    void needsNoWriteAccessToTheCollection();
    void opens_data();
    void opens();
    void failureToOpenIsTold_data();
    void failureToOpenIsTold();
    void refusedPlaces_data();
    void refusedPlaces();
    void oldPageStaysWhenTheNewOneDoesNotFit_data();
    void oldPageStaysWhenTheNewOneDoesNotFit();
    void leftOverDirectories_data();
    void leftOverDirectories();
    void directoriesOfOtherUsersStay();
    void directoryOfAnotherUserIsNotUsed();
    void namesAllThatIsLeftOut();
    void excludedFoldersAreLeftOut();
    void collectionAtTheRootOfTheFileSystem();
};

namespace {

const QString desktop = u"DISPLAY"_s;

ProgramRun pageOf(const PictureTree& tree, const QString& page, const QStringList& options = {})
{
    return ProgramRun(options + QStringList { u"--page"_s, page, u"pics"_s }).in(tree.path());
}

QByteArray failure(const PictureTree& tree, const QString& page, const QString& reason)
{
    return tree.filled(u"vlfolio-classify: cannot write the page {}/%1: %2\n"_s.arg(page, reason))
        .toUtf8();
}

} // namespace

void tst_vlfolio_classify_page::isWrittenInPlaceOfTheReport()
{
    const PictureTree tree;
    tree.addPictures();

    const auto outcome = pageOf(tree, u"page.html"_s).run();

    QCOMPARE(outcome.output, tree.path(u"page.html\n"_s).toUtf8());
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    const QByteArray page = tree.content(u"page.html"_s);
    QVERIFY(page.startsWith("<!DOCTYPE html>\n<html lang=\"en\">\n"));
    QVERIFY(page.endsWith("</html>\n"));
    QCOMPARE(page.count("<li "), 12);
    QCOMPARE(tree.names(QString()), QStringList({ u"page.html"_s, u"pics"_s }));
    QVERIFY(!tree.exists(u"pics/vela.classification.results.html"_s));
}

void tst_vlfolio_classify_page::isTheSameAgain()
{
    const PictureTree tree;
    tree.addFolder(u"pics/2019"_s);

    // The page is one of the files in the collection, before it is there, too.
    QCOMPARE(pageOf(tree, u"pics/2019/page.html"_s).run().exitCode, 0);
    const QByteArray first = tree.content(u"pics/2019/page.html"_s);
    QCOMPARE(pageOf(tree, u"pics/2019/page.html"_s).run().exitCode, 0);

    QVERIFY(first.contains("<p>1 file in 2 folders</p>"));
    QCOMPARE(tree.content(u"pics/2019/page.html"_s), first);
}

void tst_vlfolio_classify_page::needsNoWriteAccessToTheCollection()
{
    PictureTree tree;
    tree.addPictures();
    tree.setMode(u"pics"_s, 0500);

    const auto outcome = pageOf(tree, u"page.html"_s).before(&ChildSteps::obeyPermissions).run();

    if (outcome.exitCode == ProgramRun::setUpFailed)
        QSKIP("The superuser's rights cannot be dropped here.");
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY(tree.exists(u"page.html"_s));
}

void tst_vlfolio_classify_page::opens_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("hasDesktop");
    QTest::addColumn<bool>("isOpened");

    QTest::newRow("on_a_desktop") << QStringList() << true << true;
    QTest::newRow("not_without_one") << QStringList() << false << false;
    QTest::newRow("not_if_refused") << QStringList { u"--no-open"_s } << true << false;
    QTest::newRow("if_demanded") << QStringList { u"--open"_s } << false << true;
}

void tst_vlfolio_classify_page::opens()
{
    QFETCH(QStringList, options);
    QFETCH(bool, hasDesktop);
    QFETCH(bool, isOpened);
    const PictureTree tree;
    // Markup keeps a report from being opened, but not a page.
    tree.addFolder(u"pics/<script>"_s);

    ProgramRun program = pageOf(tree, u"page.html"_s, options);
    if (hasDesktop)
        program.with(desktop, u":0"_s);
    const auto outcome = program.run();

    const QByteArray path = tree.path(u"page.html"_s).toUtf8();
    QCOMPARE(outcome.opened.contains(path), isOpened);
    QCOMPARE(outcome.opened.isEmpty(), !isOpened);
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void tst_vlfolio_classify_page::failureToOpenIsTold_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("demanded") << QStringList { u"--open"_s } << 1;
    QTest::newRow("on_a_desktop") << QStringList() << 0;
}

void tst_vlfolio_classify_page::failureToOpenIsTold()
{
    QFETCH(QStringList, options);
    QFETCH(int, exitCode);
    const PictureTree tree;
    tree.addFolder(u"pics"_s);

    const auto outcome = pageOf(tree, u"page.html"_s, options)
                             .with(desktop, u":0"_s)
                             .opener(ProgramRun::Opener::Missing)
                             .run();

    QCOMPARE(outcome.error,
             tree.filled(u"vlfolio-classify: cannot open the page {}/page.html\n"_s).toUtf8());
    QCOMPARE(outcome.output, tree.path(u"page.html\n"_s).toUtf8());
    QCOMPARE(outcome.exitCode, exitCode);
    QVERIFY(tree.exists(u"page.html"_s));
}

void tst_vlfolio_classify_page::refusedPlaces_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("reason");

    QTest::newRow("directory") << u"folder"_s
                               << u"a directory has that name; rename or remove it"_s;
    QTest::newRow("link_to_a_device")
        << u"link"_s << u"what has that name is no file; remove it or give another name"_s;
    QTest::newRow("missing_directory") << u"none/page.html"_s << u"No such file or directory"_s;
    QTest::newRow("file_in_place_of_a_directory") << u"file/page.html"_s << u"Not a directory"_s;
    QTest::newRow("closed_directory") << u"closed/page.html"_s << u"Permission denied"_s;
}

void tst_vlfolio_classify_page::refusedPlaces()
{
    QFETCH(QString, page);
    QFETCH(QString, reason);
    PictureTree tree;
    tree.addFolder(u"pics"_s);
    tree.addFolder(u"folder"_s);
    tree.addFolder(u"closed"_s);
    tree.addFile(u"file"_s);
    tree.addLink(u"/dev/null"_s, u"link"_s);
    tree.setMode(u"closed"_s, 0500);
    const QStringList names = tree.names(QString());

    const auto outcome =
        pageOf(tree, page, { u"--open"_s }).before(&ChildSteps::obeyPermissions).run();

    if (outcome.exitCode == ProgramRun::setUpFailed)
        QSKIP("The superuser's rights cannot be dropped here.");
    QCOMPARE(outcome.error, failure(tree, page, reason));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.opened, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(tree.names(QString()), names);
    QCOMPARE(QFileInfo(tree.path(u"link"_s)).symLinkTarget(), u"/dev/null"_s);
}

void tst_vlfolio_classify_page::oldPageStaysWhenTheNewOneDoesNotFit_data()
{
    QTest::addColumn<int>("missing");

    QTest::newRow("by_most_of_it") << 10'000;
    QTest::newRow("by_its_last_byte") << 1;
}

void tst_vlfolio_classify_page::oldPageStaysWhenTheNewOneDoesNotFit()
{
    QFETCH(int, missing);
    const PictureTree tree;
    tree.addPictures();
    QCOMPARE(pageOf(tree, u"page.html"_s).run().exitCode, 0);
    const qsizetype size = tree.content(u"page.html"_s).size();
    QVERIFY(size > missing);
    tree.addFile(u"page.html"_s, "old");

    const auto outcome =
        pageOf(tree, u"page.html"_s, { u"--open"_s })
            .before([=] { ChildSteps::limitFileSize(static_cast<unsigned long>(size - missing)); })
            .run();

    QCOMPARE(outcome.error, failure(tree, u"page.html"_s, u"File too large"_s));
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.opened, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(tree.content(u"page.html"_s), "old"_ba);
    QCOMPARE(tree.names(QString()), QStringList({ u"page.html"_s, u"pics"_s }));
}

void tst_vlfolio_classify_page::leftOverDirectories_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("hours");
    QTest::addColumn<bool>("stays");

    const QString name = u".vlfolio-classify-1x2y3z"_s;
    QTest::newRow("old") << name << u"new"_s << 25 << false;
    QTest::newRow("young") << name << u"new"_s << 23 << true;
    QTest::newRow("with_a_file_of_somebody_else") << name << u"letter"_s << 25 << true;
    QTest::newRow("of_another_name") << u".vlfolio"_s << u"new"_s << 25 << true;
}

void tst_vlfolio_classify_page::leftOverDirectories()
{
    QFETCH(QString, name);
    QFETCH(QString, file);
    QFETCH(int, hours);
    QFETCH(bool, stays);
    const PictureTree tree;
    tree.addPictures();
    tree.addFolder(name);
    tree.addFile(name + u'/' + file);
    tree.setTime(name, static_cast<long>(QDateTime::currentSecsSinceEpoch() - 3600LL * hours));

    QCOMPARE(pageOf(tree, u"page.html"_s).run().exitCode, 0);

    QCOMPARE(tree.exists(name + u'/' + file), stays);
    QCOMPARE(tree.exists(name), stays);
}

void tst_vlfolio_classify_page::directoriesOfOtherUsersStay()
{
    constexpr uid_t other = 4711;
    const QString name = u".vlfolio-classify-1x2y3z"_s;
    const PictureTree tree;
    tree.addPictures();
    tree.addFolder(name);
    tree.addFile(name + u"/new"_s);
    if (chown(QFile::encodeName(tree.path(name)).constData(), other, other) != 0)
        QSKIP("Only the superuser can give a directory to another user.");
    tree.setTime(name, 0);

    QCOMPARE(pageOf(tree, u"page.html"_s).run().exitCode, 0);

    QVERIFY(tree.exists(name + u"/new"_s));
}

// Somebody else puts an own directory in the place of the private one, before each of the program's
// calls. What is written there, its owner could change before it is put in place.
void tst_vlfolio_classify_page::directoryOfAnotherUserIsNotUsed()
{
    if (geteuid() != 0)
        QSKIP("Only the superuser can give a directory to another user.");
    constexpr long oldTime = 86'400;
    int refused = 0;
    bool isDone = false;
    for (long nth = 1; !isDone; ++nth) {
        const PictureTree tree;
        tree.addFolder(u"pics"_s);
        const QString command =
            u"%1 : >{}/ran; cd {}; for d in .vlfolio-*; do mv $d moved && mkdir $d "
            "&& : >$d/kept && chown 4711 $d && touch -d @%2 $d; done"_s;

        const auto outcome =
            pageOf(tree, u"page.html"_s)
                .preloading(QStringLiteral(VLFOLIO_COMMAND_AT_CALL))
                .with(u"VLFOLIO_COMMAND_AT_CALL"_s, tree.filled(command.arg(nth).arg(oldTime)))
                .run();

        isDone = !tree.exists(u"ran"_s);
        QCOMPARE(tree.exists(u"page.html"_s), outcome.exitCode == 0);
        refused += outcome.exitCode == 1 ? 1 : 0;
        const QStringList foreign =
            QDir(tree.path()).entryList({ u".vlfolio-*"_s }, QDir::Dirs | QDir::Hidden);
        for (const QString& name : foreign) {
            const QFileInfo directory(tree.path(name));
            QVERIFY(outcome.exitCode == 1
                    || directory.lastModified().toSecsSinceEpoch() == oldTime);
        }
    }
    QVERIFY(refused > 0);
}

void tst_vlfolio_classify_page::namesAllThatIsLeftOut()
{
    PictureTree tree;
    tree.addFolder(u"pics/odd"_s);
    tree.addFolder(u"closed/folder"_s);
    tree.addLink(u"../../closed/folder"_s, u"pics/odd/link"_s);
    const QByteArray undecodable = QFile::encodeName(tree.path(u"pics/odd/"_s)) + '\xff';
    QCOMPARE(mkdir(undecodable.constData(), S_IRWXU), 0);
    tree.setMode(u"closed"_s, 0);

    const auto outcome = pageOf(tree, u"page.html"_s).before(&ChildSteps::obeyPermissions).run();

    if (outcome.exitCode == ProgramRun::setUpFailed)
        QSKIP("The superuser's rights cannot be dropped here.");
    const QByteArray page = tree.content(u"page.html"_s);
    // In the order in which the system lists the two.
    const QByteArray one = "this folder holds folders whose names are not UTF-8; they are left out";
    const QByteArray other =
        "this folder holds an entry that cannot be looked at: Permission denied; "
        "it is left out";
    QVERIFY(page.contains("not complete: " + one + "; " + other)
            || page.contains("not complete: " + other + "; " + one));
}

void tst_vlfolio_classify_page::excludedFoldersAreLeftOut()
{
    const PictureTree tree;
    tree.addFolder(u"pics/2019/@eaDir"_s);

    QCOMPARE(pageOf(tree, u"page.html"_s, { u"--exclude"_s, u"@*"_s }).run().exitCode, 0);

    const QByteArray page = tree.content(u"page.html"_s);
    QVERIFY(page.contains("<bdi>2019</bdi>"));
    QVERIFY(!page.contains("@eaDir"));
}

void tst_vlfolio_classify_page::collectionAtTheRootOfTheFileSystem()
{
    const PictureTree tree;
    tree.addFolder(u"2019/Beach"_s);

    // No path leads through a descriptor where there is no /proc.
    const auto outcome = ProgramRun({ u"--page"_s, u"/page.html"_s, u"/"_s })
                             .preloading(QStringLiteral(VLFOLIO_CHANGED_ROOT))
                             // The leak detector would look for itself in /proc.
                             .with(u"LSAN_OPTIONS"_s, u"detect_leaks=0"_s)
                             .with(u"VLFOLIO_TEST_ROOT"_s, tree.path())
                             .run();

    if (outcome.exitCode == ProgramRun::setUpFailed)
        QSKIP("The root of the file system cannot be changed here.");
    QCOMPARE(outcome.output, "/page.html\n"_ba);
    QCOMPARE(outcome.error, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    const QByteArray page = tree.content(u"page.html"_s);
    QVERIFY(page.contains("<title>/: what its folders are</title>"));
    QVERIFY(page.contains("<li class=\"Root\"><bdi>/</bdi>"));
    QVERIFY(page.contains("<text y=\"17\">2019</text>"));
    QCOMPARE(tree.names(QString()), QStringList({ u"2019"_s, u"page.html"_s }));
}

QTEST_GUILESS_MAIN(tst_vlfolio_classify_page)
#include "tst_vlfolio_classify_page.moc"
