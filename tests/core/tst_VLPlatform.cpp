// What one platform's source file does by itself. Compiled once for each of those files: that for
// macOS works on every platform.

#include <VLPlatform_p.h>

#include <RawDirectory.h>
#include <UnprivilegedUser.h>

#include <QtTest/QTest>

#include <cerrno>
#include <memory>
#include <new>

using namespace Qt::StringLiterals;

using VLPlatform::Listing;
using VLPlatform::Wanted;
using ListingProblem = VLPlatformIndependent::ListingProblem;

namespace {

#if defined(VLFOLIO_PLATFORM_MAC)
constexpr bool isMac = true;
#else
constexpr bool isMac = false;
#endif

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

// One line for each problem, as "kind error".
QStringList problemsOf(const Listing& listing)
{
    QStringList lines;
    for (const VLPlatform::Problem& problem : listing.problems)
        lines.append(u"%1 %2"_s.arg(int(problem.kind)).arg(problem.systemError));
    return lines;
}

QStringList line(ListingProblem kind, int error)
{
    return { u"%1 %2"_s.arg(int(kind)).arg(error) };
}

} // namespace

class tst_VLPlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void openCommand_data();
    void openCommand();
    void listing_data();
    void listing();
    void noDirectory_data();
    void noDirectory();
    void danglingLinksAreNoProblem();
    void earlierErrorsDoNotCount();
    void permissions_data();
    void permissions();
    void undecodableFolder_data();
    void undecodableFolder();
    void undecodableFileIsListedAndNotTold();
    void eachProblemOnce();

private:
    [[nodiscard]] Listing listed(Wanted wanted, const QByteArray& name = {}) const
    {
        return VLPlatform::listing(m_tree->path(name), wanted);
    }

    std::unique_ptr<RawDirectory> m_tree;
};

void tst_VLPlatform::init()
{
    m_tree = std::make_unique<RawDirectory>();
    QVERIFY(m_tree->isValid());
}

void tst_VLPlatform::openCommand_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("application");
    QTest::addColumn<QStringList>("command");

    const QString file = u"/p/r.html"_s;
    const QString opener = isMac ? u"open"_s : u"xdg-open"_s;
    QTest::newRow("no_application_is_the_desktops_choice")
        << QStringList() << u""_s << QStringList { opener, file };
    QTest::newRow("desktops_choice_takes_no_arguments")
        << QStringList { u"-n"_s } << u""_s << QStringList { opener, file };
    QTest::newRow("application_gets_the_file")
        << QStringList() << u"viewer"_s
        << (isMac ? QStringList { opener, u"-a"_s, u"viewer"_s, file }
                  : QStringList { u"viewer"_s, file });
    QTest::newRow("arguments_for_the_application")
        << QStringList { u"-n"_s, u"a b"_s } << u"/opt/viewer"_s
        << (isMac ? QStringList { opener, u"-a"_s, u"/opt/viewer"_s, file, u"--args"_s, u"-n"_s,
                                  u"a b"_s }
                  : QStringList { u"/opt/viewer"_s, u"-n"_s, u"a b"_s, file });
}

void tst_VLPlatform::openCommand()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, application);
    const auto command = VLPlatform::openCommand(u"/p/r.html"_s, arguments, application);
    QTEST(QStringList { command.program } + command.arguments, "command");
}

void tst_VLPlatform::listing_data()
{
    QTest::addColumn<Wanted>("wanted");
    QTest::addColumn<QStringList>("names");

    const QStringList links { u"linkToDevice"_s, u"linkToPipe"_s, u"linkToSocket"_s };
    const QStringList files { u"file"_s, u"linkToFarFile"_s, u"linkToFile"_s, u"linkToHiddenFile"_s,
                              u"linkToLink"_s };
    const QStringList folders { u"folder"_s, u"linkToFolder"_s, u"linkToItsFolder"_s };
    // Qt, which lists on macOS, takes links to what is neither for both.
    QTest::newRow("files") << Wanted::Files << sorted(isMac ? files + links : files);
    QTest::newRow("directories") << Wanted::Directories << sorted(folders + links);
}

void tst_VLPlatform::listing()
{
    QFETCH(const Wanted, wanted);
    RawDirectory elsewhere;
    elsewhere.make({ "far" });
    m_tree->make({ "file",
                   ".hiddenFile",
                   "folder/below/",
                   "folder/inner",
                   ".hiddenFolder/",
                   "linkToFile -> file",
                   "linkToLink -> linkToFile",
                   "linkToHiddenFile -> .hiddenFile",
                   "linkToFarFile -> " + elsewhere.bytes("far"),
                   ".hiddenLink -> file",
                   "linkToFolder -> folder",
                   "linkToItsFolder -> .",
                   "dangling -> gone",
                   "linkThroughFile -> file/below",
                   "circle -> circle",
                   "linkToDevice -> /dev/null",
                   "pipe|",
                   "linkToPipe -> pipe",
                   "socket=",
                   "linkToSocket -> socket" });
    QVERIFY2(m_tree->isValid(), m_tree->error());
    const Listing found = listed(wanted);
    QTEST(sorted(found.names), "names");
    QCOMPARE(problemsOf(found), QStringList());
}

void tst_VLPlatform::noDirectory_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QStringList>("problems");

    const QStringList missing = line(ListingProblem::Unreadable, ENOENT);
    QTest::newRow("empty") << QByteArray("empty") << QStringList();
    QTest::newRow("missing") << QByteArray("missing") << missing;
    QTest::newRow("below_a_missing_one") << QByteArray("missing/below") << missing;
    QTest::newRow("dangling_link") << QByteArray("danglingLink") << missing;
    QTest::newRow("file") << QByteArray("file") << QStringList();
    QTest::newRow("link_to_a_file") << QByteArray("linkToFile") << QStringList();
}

void tst_VLPlatform::noDirectory()
{
    QFETCH(const QByteArray, name);
    m_tree->make({ "empty/", "file", "danglingLink -> gone", "linkToFile -> file" });
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        QCOMPARE(listed(wanted, name).names, QStringList());
        QTEST(problemsOf(listed(wanted, name)), "problems");
    }
}

// Each is an error that is none of the listing's, the last one too.
void tst_VLPlatform::danglingLinksAreNoProblem()
{
    for (const char* name : { "a", "b", "c", "d", "e", "f", "g", "h" })
        m_tree->link(name, "gone");
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        QCOMPARE(listed(wanted).names, QStringList());
        QCOMPARE(problemsOf(listed(wanted)), QStringList());
    }
}

void tst_VLPlatform::earlierErrorsDoNotCount()
{
    m_tree->make({ "file" });
    for (const int error : { ENOMEM, EIO }) {
        errno = error;
        const Listing found = listed(Wanted::Files);
        QCOMPARE(found.names, QStringList { u"file"_s });
        QCOMPARE(problemsOf(found), QStringList());
    }
}

void tst_VLPlatform::permissions_data()
{
    QTest::addColumn<uint>("mode");
    QTest::addColumn<Wanted>("wanted");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("problems");

    const QStringList none;
    const QStringList unreadable = line(ListingProblem::Unreadable, EACCES);
    const QStringList unsearchable = line(ListingProblem::Unsearchable, EACCES);
    QTest::newRow("file_without_rights_is_listed")
        << 0755U << Wanted::Files << QStringList { u"file"_s } << none;
    QTest::newRow("no_rights_files") << 0000U << Wanted::Files << none << unreadable;
    QTest::newRow("no_rights_directories") << 0000U << Wanted::Directories << none << unreadable;
    QTest::newRow("may_be_entered_only") << 0111U << Wanted::Directories << none << unreadable;
    QTest::newRow("may_be_written_only") << 0333U << Wanted::Files << none << unreadable;
    QTest::newRow("may_be_read_only_directories")
        << 0444U << Wanted::Directories << QStringList { u"sub"_s } << unsearchable;
}

void tst_VLPlatform::permissions()
{
    QFETCH(const uint, mode);
    QFETCH(const Wanted, wanted);
    m_tree->make({ "closed/sub/", "closed/file", "closed/link -> sub" });
    m_tree->restrict("closed/file", 0000).restrict("", 0755).restrict("closed", mode_t(mode));
    QVERIFY2(m_tree->isValid(), m_tree->error());
    const UnprivilegedUser user;
    if (!user.isActive())
        QSKIP("Needs a user without the superuser's rights");
    const Listing found = listed(wanted, "closed");
    QTEST(sorted(found.names), "names");
    QTEST(problemsOf(found), "problems");
}

void tst_VLPlatform::undecodableFolder_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("told");

    const QStringList none;
    QTest::newRow("latin_1_letter") << QByteArray("m\xFCnchen") << none << true;
    QTest::newRow("lowest_byte_beyond_ascii") << QByteArray("a\x80") << none << true;
    QTest::newRow("highest_byte_of_ascii")
        << QByteArray("a\x7F") << QStringList { u"a\u007F"_s } << false;
    QTest::newRow("cut_sequence") << QByteArray("a\xE5\x86") << none << true;
    QTest::newRow("hidden_one_does_not_count") << QByteArray(".m\xFC") << none << false;
    QTest::newRow("utf_8") << QByteArray("m\xC3\xBC") << QStringList { u"m\u00FC"_s } << false;
    QTest::newRow("replacement_character_itself")
        << QByteArray("a\xEF\xBF\xBD") << QStringList { u"a\uFFFD"_s } << false;
    QTest::newRow("byte_order_mark_in_front") << QByteArray("\xEF\xBB\xBF"
                                                            "a")
                                              << QStringList { u"\uFEFFa"_s } << false;
}

void tst_VLPlatform::undecodableFolder()
{
    if (isMac)
        QSKIP("The file systems of macOS take names in UTF-8 only");
    QFETCH(const QByteArray, name);
    QFETCH(const bool, told);
    if (m_tree->folder(name).lacksRawNames())
        QSKIP("This file system takes names in UTF-8 only");
    const Listing found = listed(Wanted::Directories);
    QTEST(found.names, "names");
    QCOMPARE(problemsOf(found), told ? line(ListingProblem::UndecodableName, 0) : QStringList());
}

void tst_VLPlatform::undecodableFileIsListedAndNotTold()
{
    if (isMac)
        QSKIP("The file systems of macOS take names in UTF-8 only");
    if (m_tree->make({ "m\xFCnchen" }).lacksRawNames())
        QSKIP("This file system takes names in UTF-8 only");
    const Listing found = listed(Wanted::Files);
    QCOMPARE(found.names, QStringList { u"m\uFFFDnchen"_s });
    QCOMPARE(problemsOf(found), QStringList());
    QCOMPARE(problemsOf(listed(Wanted::Directories)), QStringList());
}

void tst_VLPlatform::eachProblemOnce()
{
    Listing listing;
    VLPlatform::addProblem(listing, ListingProblem::UnknownEntry, EIO);
    VLPlatform::addProblem(listing, ListingProblem::UnknownEntry, EACCES);
    VLPlatform::addProblem(listing, ListingProblem::UnknownEntry, EIO);
    VLPlatform::addProblem(listing, ListingProblem::Unreadable, EIO);
    QCOMPARE(problemsOf(listing),
             line(ListingProblem::UnknownEntry, EIO) + line(ListingProblem::UnknownEntry, EACCES)
                 + line(ListingProblem::Unreadable, EIO));
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc,
                             VLPlatform::addProblem(listing, ListingProblem::Unreadable, ENOMEM));
}

QTEST_GUILESS_MAIN(tst_VLPlatform)
#include "tst_VLPlatform.moc"
