#include <VLPlatform_p.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QScopeGuard>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

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

class tst_VLPlatformMac : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void every_name_is_decodable();
    void open_command_data();
    void open_command();
    void listing_of_files();
    void listing_of_directories();
    void listing_of_a_missing_directory_is_empty();
    void listing_of_an_unreadable_directory_is_not_complete();
};

void tst_VLPlatformMac::every_name_is_decodable()
{
    QVERIFY(!VLPlatform::mayHoldUndecodableNames());
}

void tst_VLPlatformMac::open_command_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("application");
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("programArguments");

    QTest::newRow("no_application_is_the_desktops_choice")
        << QStringList() << u""_s << u"open"_s << QStringList { u"/p/r.html"_s };
    QTest::newRow("desktops_choice_takes_no_arguments")
        << QStringList { u"-n"_s } << u""_s << u"open"_s << QStringList { u"/p/r.html"_s };
    QTest::newRow("application_is_named_to_open")
        << QStringList() << u"Viewer"_s << u"open"_s
        << QStringList { u"-a"_s, u"Viewer"_s, u"/p/r.html"_s };
    QTest::newRow("arguments_come_after_the_file")
        << QStringList { u"-n"_s, u"a b"_s } << u"Viewer"_s << u"open"_s
        << QStringList { u"-a"_s, u"Viewer"_s, u"/p/r.html"_s, u"--args"_s, u"-n"_s, u"a b"_s };
}

void tst_VLPlatformMac::open_command()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, application);
    const auto command = VLPlatform::openCommand(u"/p/r.html"_s, arguments, application);
    QTEST(command.program, "program");
    QTEST(command.arguments, "programArguments");
}

void tst_VLPlatformMac::listing_of_files()
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

void tst_VLPlatformMac::listing_of_directories()
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

void tst_VLPlatformMac::listing_of_a_missing_directory_is_empty()
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

void tst_VLPlatformMac::listing_of_an_unreadable_directory_is_not_complete()
{
    const QTemporaryDir directory;
    const QString sub = directory.filePath(u"sub"_s);
    QVERIFY(QDir().mkdir(sub) && QFile::setPermissions(sub, QFile::Permissions()));
    QVERIFY(QFile::setPermissions(directory.path(), QFile::Permissions(0x7755)));
    // What is readable goes by the real user, not by the effective one.
    constexpr uid_t nobody = 65534;
    const uid_t user = getuid();
    const auto restore = qScopeGuard([user] { QCOMPARE(setreuid(user, uid_t(-1)), 0); });
    if (user == 0 && setreuid(nobody, uid_t(-1)) != 0)
        QSKIP("This process cannot give up its rights");
    for (const Wanted wanted : { Wanted::Files, Wanted::Directories })
        QVERIFY(!VLPlatform::listing(sub, wanted).isComplete);
}

QTEST_GUILESS_MAIN(tst_VLPlatformMac)
#include "tst_VLPlatformMac.moc"
