// What one platform's source file does by itself. Compiled once for each of those files: that for
// macOS works on every platform.

#include <VLPlatform_p.h>

#include <RawDirectory.h>
#include <TestRows.h>
#include <UnprivilegedUser.h>

#include <QtTest/QTest>

#include <cerrno>
#include <memory>
#include <new>

#include <unistd.h>

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
    void files();
    void directories();
    void noDirectory_data();
    void noDirectory();
    void emptyPathIsNotTheRoot();
    void errorsOfOthersDoNotCount();
    void permissions_data();
    void permissions();
    void completeAlthoughItCannotBeSearched();
    void undecodableNames_data();
    void undecodableNames();
    void eachProblemOnce();
    void noDirectoryStaysOpen();

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
    const QString file = u"/p/r.html"_s;
    const QString opener = isMac ? u"open"_s : u"xdg-open"_s;
    const QStringList viewer = isMac ? QStringList { opener, u"-a"_s, u"viewer"_s, file }
                                     : QStringList { u"viewer"_s, file };
    const QStringList viewerWithArguments = isMac
        ? QStringList { opener, u"-a"_s, u"viewer"_s, file, u"--args"_s, u"-n"_s, u"a b"_s }
        : QStringList { u"viewer"_s, u"-n"_s, u"a b"_s, file };
    const TestRows<QStringList, QString, QStringList> row("arguments", "application", "command");
    row("no_application_is_the_desktops_choice", {}, u""_s, { opener, file });
    row("desktops_choice_takes_no_arguments", { u"-n"_s }, u""_s, { opener, file });
    row("application_gets_the_file", {}, u"viewer"_s, viewer);
    row("arguments_for_the_application", { u"-n"_s, u"a b"_s }, u"viewer"_s, viewerWithArguments);
}

void tst_VLPlatform::openCommand()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, application);
    QTEST(VLPlatform::openCommand(u"/p/r.html"_s, arguments, application), "command");
}

void tst_VLPlatform::files()
{
    RawDirectory elsewhere({ "far" });
    m_tree->make({ "file", ".hidden", "..two_dots", "folder/inner/", "*[?]", "a\nb", "link -> file",
                   "linkToLink -> link", "linkToHidden -> .hidden", ".hiddenLink -> file",
                   "linkToFarFile -> " + elsewhere.bytes("far"), "linkToFolder -> folder",
                   "dangling -> gone", "circle -> circle", "linkToDevice -> /dev/null", "pipe|",
                   "linkToPipe -> pipe", "socket=", "linkToSocket -> socket" });
    QVERIFY2(m_tree->isValid(), m_tree->error());
    QStringList names { u"*[?]"_s,          u"a\nb"_s,         u"file"_s,      u"link"_s,
                        u"linkToFarFile"_s, u"linkToHidden"_s, u"linkToLink"_s };
    // Qt, which lists on macOS, takes links to what is neither a folder nor a file for both.
    if (isMac)
        names += QStringList { u"linkToDevice"_s, u"linkToPipe"_s, u"linkToSocket"_s };
    const Listing found = listed(Wanted::Files);
    QCOMPARE(sorted(found.names), sorted(names));
    QCOMPARE(sorted(found.symlinks), sorted(names.filter(u"link"_s)));
    QCOMPARE(problemsOf(found), QStringList());
    QCOMPARE(found.fileCount, isMac ? 10 : 7);
    QCOMPARE(listed(Wanted::Directories).fileCount, isMac ? 10 : 7);
}

// Those of QDir::Dirs and QDir::NoDotAndDotDot.
void tst_VLPlatform::directories()
{
    m_tree->make({ "a/x/",
                   "B/",
                   ".hidden/",
                   ".../",
                   "file",
                   ":/",
                   ":a/",
                   "a:b/",
                   "a\\b/",
                   "%1/",
                   "a\nb/",
                   " /",
                   "~/",
                   "*/",
                   "-/",
                   "Caf\u00e9/",
                   "Cafe\u0301/",
                   "\ufffd/",
                   "link -> a",
                   "linkToLink -> link",
                   "linkToHidden -> .hidden",
                   ".link -> a",
                   "here -> .",
                   "up -> ..",
                   "linkToFile -> file",
                   "linkToFileLink -> linkToFile",
                   "dangling -> gone",
                   "circle -> circle",
                   "one -> two",
                   "two -> one",
                   "linkThroughFile -> file/below",
                   "pipe|",
                   "linkToPipe -> pipe",
                   "socket=",
                   "linkToSocket -> socket",
                   "linkToDevice -> /dev/null",
                   "linkToTty -> /dev/tty" });
    QVERIFY2(m_tree->isValid(), m_tree->error());
    QStringList names;
    const QFileInfoList entries =
        QDir(m_tree->path()).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries)
        names.append(entry.fileName());
    QVERIFY(names.contains(u"a"_s) && names.contains(u"linkToPipe"_s));
    const Listing found = listed(Wanted::Directories);
    QCOMPARE(sorted(found.names), sorted(names));
    QCOMPARE(
        sorted(found.symlinks),
        (QStringList { u"here"_s, u"link"_s, u"linkToDevice"_s, u"linkToHidden"_s, u"linkToLink"_s,
                       u"linkToPipe"_s, u"linkToSocket"_s, u"linkToTty"_s, u"up"_s }));
    QCOMPARE(found.fileCount, isMac ? 7 : 3);
    QCOMPARE(problemsOf(found), QStringList());
}

void tst_VLPlatform::noDirectory_data()
{
    const QStringList missing = line(ListingProblem::Unreadable, ENOENT);
    const TestRows<QByteArray, QStringList> row("name", "problems");
    row("empty", "empty", {});
    row("missing", "missing", missing);
    row("below_a_missing_one", "missing/below", missing);
    row("dangling_link", "danglingLink", missing);
    row("file", "file", {});
    row("link_to_a_file", "linkToFile", {});
    row("link_to_a_pipe", "linkToPipe", {});
}

void tst_VLPlatform::noDirectory()
{
    QFETCH(const QByteArray, name);
    m_tree->make({ "empty/", "file", "danglingLink -> gone", "linkToFile -> file", "pipe|",
                   "linkToPipe -> pipe" });
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        QCOMPARE(listed(wanted, name).names, QStringList());
        QTEST(problemsOf(listed(wanted, name)), "problems");
    }
}

void tst_VLPlatform::emptyPathIsNotTheRoot()
{
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        const Listing found = VLPlatform::listing(QString(), wanted);
        QCOMPARE(found.names, QStringList());
        QCOMPARE(problemsOf(found), line(ListingProblem::Unreadable, ENOENT));
    }
}

// Neither an earlier one nor those of dangling links, though the last one remains in errno.
void tst_VLPlatform::errorsOfOthersDoNotCount()
{
    m_tree->make({ "a -> gone", "b -> gone", "c -> gone", "d -> gone", "file", "folder/" });
    for (const int error : { ENOMEM, EIO }) {
        for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
            errno = error;
            const Listing found = listed(wanted);
            QCOMPARE(found.names.size(), 1);
            QCOMPARE(problemsOf(found), QStringList());
        }
    }
}

void tst_VLPlatform::permissions_data()
{
    const QStringList unreadable = line(ListingProblem::Unreadable, EACCES);
    const QStringList unsearchable = line(ListingProblem::Unsearchable, EACCES);
    const TestRows<uint, Wanted, QStringList, QStringList> row("mode", "wanted", "names",
                                                               "problems");
    row("file_without_rights_is_listed", 0755, Wanted::Files, { u"file"_s }, {});
    row("no_rights_files", 0000, Wanted::Files, {}, unreadable);
    row("no_rights_directories", 0000, Wanted::Directories, {}, unreadable);
    row("may_be_entered_only", 0111, Wanted::Directories, {}, unreadable);
    row("may_be_read_only", 0444, Wanted::Directories, { u"sub"_s }, unsearchable);
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

// The files were told apart without being accessed, and there is no folder to be entered. Qt, which
// lists on macOS, does not tell whether it left something out.
void tst_VLPlatform::completeAlthoughItCannotBeSearched()
{
    m_tree->make({ "closed/", "closed/file" });
    m_tree->restrict("", 0755).restrict("closed", 0444);
    QVERIFY2(m_tree->isValid(), m_tree->error());
    const UnprivilegedUser user;
    if (!user.isActive())
        QSKIP("Needs a user without the superuser's rights");
    QCOMPARE(listed(Wanted::Files, "closed").names, QStringList { u"file"_s });
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        QCOMPARE(problemsOf(listed(wanted, "closed")),
                 isMac ? line(ListingProblem::Unsearchable, EACCES) : QStringList());
    }
    QCOMPARE(listed(Wanted::Directories, "closed").fileCount, 1);
}

void tst_VLPlatform::undecodableNames_data()
{
    const TestRows<QByteArrayList, QStringList, bool> row("entries", "folders", "isTold");
    row("latin_1_letter", { "2019 M\xfcnchen/" }, {}, true);
    row("lowest_byte_beyond_ascii", { "a\x80/" }, {}, true);
    row("highest_byte_of_ascii", { "a\x7f/" }, { u"a\u007f"_s }, false);
    row("cut_sequence", { "a\xe2\x82/" }, {}, true);
    row("surrogate", { "\xed\xa0\x80/" }, {}, true);
    row("slash_in_two_bytes", { "2019\xc0\xaf/" }, {}, true);
    row("beyond_the_last_character", { "\xf4\x90\x80\x80/" }, {}, true);
    row("replacement_character", { "\ufffd/" }, { u"\ufffd"_s }, false);
    row("replacement_character_beside", { "\ufffd\xff/" }, {}, true);
    row("255_bytes", { QByteArray(255, '\xff') + '/' }, {}, true);
    // Qt 6.11 lists one folder twice and the other not at all.
    row("byte_order_mark_stays", { "\ufeffa/", "a/" }, { u"a"_s, u"\ufeffa"_s }, false);

    row("two_are_told_once", { "\xfe/", "a/", "\xff/", "b/" }, { u"a"_s, u"b"_s }, true);
    row("link_to_a_folder", { "a/", "\xff -> a" }, { u"a"_s }, true);
    // None of these would have been listed anyway.
    row("hidden_folder", { "a/", ".\xff/" }, { u"a"_s }, false);
    row("file", { "a/", "\xff" }, { u"a"_s }, false);
    row("dangling_link", { "a/", "\xff -> nowhere" }, { u"a"_s }, false);
    row("pipe", { "a/", "\xff|" }, { u"a"_s }, false);
}

// A folder whose name no QString can hold is left out and told, and hides no other. Files count.
void tst_VLPlatform::undecodableNames()
{
    if (isMac)
        QSKIP("The file systems of macOS take names in UTF-8 only");
    QFETCH(const QByteArrayList, entries);
    QFETCH(const bool, isTold);
    m_tree->make(entries).make({ "\xfa.jpg", "\xfb.png -> \xfa.jpg" });
    VERIFY_MADE(*m_tree);
    const Listing found = listed(Wanted::Directories);
    QTEST(sorted(found.names), "folders");
    QCOMPARE(problemsOf(found), isTold ? line(ListingProblem::UndecodableName, 0) : QStringList());
    const Listing files = listed(Wanted::Files);
    QVERIFY(files.names.contains(u"\ufffd.jpg"_s) && files.names.contains(u"\ufffd.png"_s));
    QCOMPARE(found.fileCount, files.names.size());
    QCOMPARE(problemsOf(files), QStringList());
}

// A new descriptor has the lowest number that is free.
void tst_VLPlatform::noDirectoryStaysOpen()
{
    m_tree->make({ "folder/", "file", "link -> folder" });
    const auto lowestFree = [] {
        const int descriptor = ::dup(STDIN_FILENO);
        ::close(descriptor);
        return descriptor;
    };
    const int before = lowestFree();
    QVERIFY(before >= 0);
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        QVERIFY(!listed(wanted).names.isEmpty());
        QCOMPARE(listed(wanted, "file").names, QStringList());
    }
    QCOMPARE(lowestFree(), before);
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
