#include <VLPlatform_p.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QScopeGuard>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using VLPlatform::Wanted;

namespace {

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

} // namespace

class tst_VLPlatformUnix : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void names_may_be_undecodable();
    void open_command_data();
    void open_command();
    void listing_of_files();
    void listing_of_directories();
    void listing_of_a_missing_directory_is_empty();
    void dangling_links_leave_the_listing_complete();
    void earlier_errors_do_not_count();
    void undecodable_names_data();
    void undecodable_names();
};

void tst_VLPlatformUnix::names_may_be_undecodable()
{
    QVERIFY(VLPlatform::mayHoldUndecodableNames());
}

void tst_VLPlatformUnix::open_command_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("application");
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("programArguments");

    QTest::newRow("no_application_is_the_desktops_choice")
        << QStringList() << u""_s << u"xdg-open"_s << QStringList { u"/p/r.html"_s };
    QTest::newRow("desktops_choice_takes_no_arguments")
        << QStringList { u"-n"_s } << u""_s << u"xdg-open"_s << QStringList { u"/p/r.html"_s };
    QTest::newRow("application_gets_the_file")
        << QStringList() << u"viewer"_s << u"viewer"_s << QStringList { u"/p/r.html"_s };
    QTest::newRow("arguments_come_before_the_file")
        << QStringList { u"-n"_s, u"a b"_s } << u"/opt/viewer"_s << u"/opt/viewer"_s
        << QStringList { u"-n"_s, u"a b"_s, u"/p/r.html"_s };
}

void tst_VLPlatformUnix::open_command()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, application);
    const auto command = VLPlatform::openCommand(u"/p/r.html"_s, arguments, application);
    QTEST(command.program, "program");
    QTEST(command.arguments, "programArguments");
}

void tst_VLPlatformUnix::listing_of_files()
{
    const QTemporaryDir directory;
    writeFile(directory.filePath(u"file"_s));
    writeFile(directory.filePath(u".hidden"_s));
    QVERIFY(QDir(directory.path()).mkpath(u"sub/below"_s));
    QVERIFY(QFile::link(u"file"_s, directory.filePath(u"linkToFile"_s)));
    QVERIFY(QFile::link(u"sub"_s, directory.filePath(u"linkToSub"_s)));
    QVERIFY(QFile::link(u"gone"_s, directory.filePath(u"dangling"_s)));
    const auto listing = VLPlatform::listing(directory.path(), Wanted::Files);
    const QStringList files { u"file"_s, u"linkToFile"_s };
    QCOMPARE(sorted(listing.files), files);
    QCOMPARE(listing.directories, QStringList());
    QVERIFY(!listing.holdsUndecodableName);
    QVERIFY(listing.isComplete);
}

void tst_VLPlatformUnix::listing_of_directories()
{
    const QTemporaryDir directory;
    writeFile(directory.filePath(u"file"_s));
    QVERIFY(QDir(directory.path()).mkpath(u"sub/below"_s));
    QVERIFY(QDir(directory.path()).mkdir(u".hidden"_s));
    QVERIFY(QFile::link(u"file"_s, directory.filePath(u"linkToFile"_s)));
    QVERIFY(QFile::link(u"sub"_s, directory.filePath(u"linkToSub"_s)));
    QVERIFY(QFile::link(u"gone"_s, directory.filePath(u"dangling"_s)));
    const auto listing = VLPlatform::listing(directory.path(), Wanted::Directories);
    const QStringList directories { u"linkToSub"_s, u"sub"_s };
    QCOMPARE(sorted(listing.directories), directories);
    QCOMPARE(listing.files, QStringList());
    QVERIFY(!listing.holdsUndecodableName);
    QVERIFY(listing.isComplete);
}

void tst_VLPlatformUnix::listing_of_a_missing_directory_is_empty()
{
    const QTemporaryDir directory;
    const QString missing = directory.filePath(u"missing"_s);
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        const auto listing = VLPlatform::listing(missing, wanted);
        QCOMPARE(listing.files, QStringList());
        QCOMPARE(listing.directories, QStringList());
        QVERIFY(!listing.holdsUndecodableName);
        QVERIFY(!listing.isComplete);
    }
}

// Each is an error that is none of the listing's, the last one too.
void tst_VLPlatformUnix::dangling_links_leave_the_listing_complete()
{
    const QTemporaryDir directory;
    const QString names = u"abcdefgh"_s;
    for (const QChar name : names)
        QVERIFY(QFile::link(u"gone"_s, directory.filePath(name)));
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories }) {
        const auto listing = VLPlatform::listing(directory.path(), wanted);
        QCOMPARE(listing.files, QStringList());
        QVERIFY(listing.isComplete);
    }
}

void tst_VLPlatformUnix::earlier_errors_do_not_count()
{
    const QTemporaryDir directory;
    writeFile(directory.filePath(u"file"_s));
    for (const int error : { ENOMEM, EIO }) {
        errno = error;
        const auto listing = VLPlatform::listing(directory.path(), Wanted::Files);
        QCOMPARE(listing.files, QStringList { u"file"_s });
        QVERIFY(listing.isComplete);
    }
}

void tst_VLPlatformUnix::undecodable_names_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("undecodable");
    QTest::addColumn<QStringList>("directories");

    QTest::newRow("latin_1_letter") << QByteArray("m\xFCnchen") << true << QStringList();
    QTest::newRow("lowest_byte_beyond_ascii") << QByteArray("a\x80") << true << QStringList();
    QTest::newRow("highest_byte_of_ascii")
        << QByteArray("a\x7F") << false << QStringList { u"a\u007F"_s };
    QTest::newRow("cut_sequence") << QByteArray("a\xE5\x86") << true << QStringList();
    QTest::newRow("hidden_one_counts") << QByteArray(".m\xFC") << true << QStringList();
    QTest::newRow("utf_8") << QByteArray("m\xC3\xBC") << false << QStringList { u"m\u00FC"_s };
    QTest::newRow("replacement_character_itself")
        << QByteArray("a\xEF\xBF\xBD") << false << QStringList { u"a\uFFFD"_s };
    QTest::newRow("byte_order_mark_in_front") << QByteArray("\xEF\xBB\xBF"
                                                            "a")
                                              << false << QStringList { u"\uFEFFa"_s };
}

void tst_VLPlatformUnix::undecodable_names()
{
    QFETCH(const QByteArray, name);
    QFETCH(const bool, undecodable);
    const QTemporaryDir directory;
    const QByteArray path = QFile::encodeName(directory.path()) + '/' + name;
    if (mkdir(path.constData(), 0755) != 0)
        QSKIP("This file system takes names in UTF-8 only");
    // Qt does not remove it with the rest.
    const auto remove = qScopeGuard([&path] { rmdir(path.constData()); });
    const auto listing = VLPlatform::listing(directory.path(), Wanted::Directories);
    QCOMPARE(listing.holdsUndecodableName, undecodable);
    QTEST(listing.directories, "directories");
    QCOMPARE(VLPlatform::listing(directory.path(), Wanted::Files).holdsUndecodableName,
             undecodable);
}

QTEST_GUILESS_MAIN(tst_VLPlatformUnix)
#include "tst_VLPlatformUnix.moc"
