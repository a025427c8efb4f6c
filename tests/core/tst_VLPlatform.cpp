// What one platform's source file does by itself. Compiled once for each of those files: that for
// macOS works on every platform.

#include <VLPlatform_p.h>

#include <UnprivilegedUser.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QScopeGuard>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <cerrno>
#include <memory>
#include <new>

#include <sys/stat.h>
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

void writeFile(const QString& path)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
}

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

QString line(ListingProblem kind, int error)
{
    return u"%1 %2"_s.arg(int(kind)).arg(error);
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
    void missingDirectory();
    void fileInPlaceOfDirectory();
    void danglingLinksAreNoProblem();
    void earlierErrorsDoNotCount();
    void closedDirectory_data();
    void closedDirectory();
    void undecodableFolder_data();
    void undecodableFolder();
    void undecodableFileIsListedAndNotTold();
    void eachProblemOnce();

private:
    QString path(const QString& name) const { return m_directory->filePath(name); }
    Listing listed(Wanted wanted) const { return VLPlatform::listing(m_directory->path(), wanted); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void tst_VLPlatform::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
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

    // Qt, which lists on macOS, takes a link to a pipe for both.
    const QStringList files { u"file"_s, u"linkToFile"_s };
    QTest::newRow("files") << Wanted::Files
                           << (isMac ? files + QStringList { u"linkToPipe"_s } : files);
    QTest::newRow("directories") << Wanted::Directories
                                 << QStringList { u"linkToPipe"_s, u"linkToSub"_s, u"sub"_s };
}

void tst_VLPlatform::listing()
{
    QFETCH(const Wanted, wanted);
    writeFile(path(u"file"_s));
    writeFile(path(u".hiddenFile"_s));
    QVERIFY(QDir(m_directory->path()).mkpath(u"sub/below"_s));
    QVERIFY(QDir(m_directory->path()).mkdir(u".hidden"_s));
    QCOMPARE(mkfifo(QFile::encodeName(path(u"pipe"_s)).constData(), 0600), 0);
    QVERIFY(QFile::link(u"file"_s, path(u"linkToFile"_s)));
    QVERIFY(QFile::link(u"sub"_s, path(u"linkToSub"_s)));
    QVERIFY(QFile::link(u"pipe"_s, path(u"linkToPipe"_s)));
    QVERIFY(QFile::link(u"gone"_s, path(u"dangling"_s)));
    QVERIFY(QFile::link(u"file/below"_s, path(u"linkThroughFile"_s)));
    QVERIFY(QFile::link(u"circle"_s, path(u"circle"_s)));
    const Listing found = listed(wanted);
    QTEST(sorted(found.names), "names");
    QCOMPARE(problemsOf(found), QStringList());
}

void tst_VLPlatform::missingDirectory()
{
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        const Listing found = VLPlatform::listing(path(u"missing"_s), wanted);
        QCOMPARE(found.names, QStringList());
        QCOMPARE(problemsOf(found), QStringList { line(ListingProblem::Unreadable, ENOENT) });
    }
}

void tst_VLPlatform::fileInPlaceOfDirectory()
{
    writeFile(path(u"file"_s));
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        const Listing found = VLPlatform::listing(path(u"file"_s), wanted);
        QCOMPARE(found.names, QStringList());
        QCOMPARE(problemsOf(found), QStringList());
    }
}

// Each is an error that is none of the listing's, the last one too.
void tst_VLPlatform::danglingLinksAreNoProblem()
{
    const QString names = u"abcdefgh"_s;
    for (const QChar name : names)
        QVERIFY(QFile::link(u"gone"_s, path(name)));
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        QCOMPARE(listed(wanted).names, QStringList());
        QCOMPARE(problemsOf(listed(wanted)), QStringList());
    }
}

void tst_VLPlatform::earlierErrorsDoNotCount()
{
    writeFile(path(u"file"_s));
    for (const int error : { ENOMEM, EIO }) {
        errno = error;
        const Listing found = listed(Wanted::Files);
        QCOMPARE(found.names, QStringList { u"file"_s });
        QCOMPARE(problemsOf(found), QStringList());
    }
}

void tst_VLPlatform::closedDirectory_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<Wanted>("wanted");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("problems");

    const QString unreadable = line(ListingProblem::Unreadable, EACCES);
    const QString unsearchable = line(ListingProblem::Unsearchable, EACCES);
    QTest::newRow("no_rights_files")
        << 0000 << Wanted::Files << QStringList() << QStringList { unreadable };
    QTest::newRow("no_rights_directories")
        << 0000 << Wanted::Directories << QStringList() << QStringList { unreadable };
    QTest::newRow("may_be_entered_only")
        << 0111 << Wanted::Directories << QStringList() << QStringList { unreadable };
    QTest::newRow("may_be_read_only_directories")
        << 0444 << Wanted::Directories << QStringList { u"sub"_s } << QStringList { unsearchable };
}

void tst_VLPlatform::closedDirectory()
{
    QFETCH(const int, mode);
    QFETCH(const Wanted, wanted);
    const QString closed = path(u"closed"_s);
    QVERIFY(QDir().mkpath(closed + u"/sub"_s));
    writeFile(closed + u"/file"_s);
    QVERIFY(QFile::link(u"sub"_s, closed + u"/link"_s));
    QCOMPARE(chmod(QFile::encodeName(m_directory->path()).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(closed).constData(), mode_t(mode)), 0);
    const auto restore =
        qScopeGuard([&closed] { chmod(QFile::encodeName(closed).constData(), 0755); });
    Listing found;
    {
        const UnprivilegedUser user;
        if (!user.isActive())
            QSKIP("Needs a user without the superuser's rights");
        found = VLPlatform::listing(closed, wanted);
    }
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
    const QByteArray folder = QFile::encodeName(m_directory->path()) + '/' + name;
    if (mkdir(folder.constData(), 0755) != 0)
        QSKIP("This file system takes names in UTF-8 only");
    // Qt does not remove it with the rest.
    const auto remove = qScopeGuard([&folder] { rmdir(folder.constData()); });
    const Listing found = listed(Wanted::Directories);
    QTEST(found.names, "names");
    const QStringList problems { line(ListingProblem::UndecodableName, 0) };
    QCOMPARE(problemsOf(found), told ? problems : QStringList());
}

void tst_VLPlatform::undecodableFileIsListedAndNotTold()
{
    if (isMac)
        QSKIP("The file systems of macOS take names in UTF-8 only");
    const QByteArray file = QFile::encodeName(m_directory->path()) + "/m\xFCnchen";
    if (mknod(file.constData(), S_IFREG | 0600, 0) != 0)
        QSKIP("This file system takes names in UTF-8 only");
    const auto remove = qScopeGuard([&file] { unlink(file.constData()); });
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
             (QStringList { line(ListingProblem::UnknownEntry, EIO),
                            line(ListingProblem::UnknownEntry, EACCES),
                            line(ListingProblem::Unreadable, EIO) }));
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc,
                             VLPlatform::addProblem(listing, ListingProblem::Unreadable, ENOMEM));
}

QTEST_GUILESS_MAIN(tst_VLPlatform)
#include "tst_VLPlatform.moc"
