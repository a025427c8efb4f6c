#include <MessageRecorder.h>
#include <RawDirectory.h>
#include <RunTogether.h>
#include <UnprivilegedUser.h>
#include <WorkingDirectory.h>

#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QScopeGuard>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <type_traits>

using namespace Qt::StringLiterals;

namespace {

class HostService : public VLPlatformIndependent
{
public:
    void directoryContentsChanged(const QDir& directory) override
    {
        changed.append(directory.path());
    }

    QStringList changed;
    // One line for each call, as "kind error path".
    mutable QStringList told;

protected:
    void listingIncomplete(const QDir& directory, ListingProblem problem,
                           int systemError) const override
    {
        told.append(u"%1 %2 %3"_s.arg(int(problem)).arg(systemError).arg(directory.path()));
    }
};

void writeFile(const QString& path, const QByteArray& contents = {})
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    QCOMPARE(file.write(contents), qint64(contents.size()));
}

void makeLink(const QString& target, const QString& link)
{
    QCOMPARE(symlink(QFile::encodeName(target).constData(), QFile::encodeName(link).constData()),
             0);
}

/// A file whose name is not UTF-8, for as long as it lives: Qt does not remove it.
class UndecodableFile
{
public:
    explicit UndecodableFile(const QString& directory)
        : m_path(QFile::encodeName(directory) + "/m\xFCnchen")
    {
        const int descriptor = open(m_path.constData(), O_CREAT | O_WRONLY, 0644);
        m_isValid = descriptor >= 0 && close(descriptor) == 0;
    }
    ~UndecodableFile() { unlink(m_path.constData()); }
    Q_DISABLE_COPY_MOVE(UndecodableFile)

    /// False where the file system refuses the name.
    [[nodiscard]] bool isValid() const { return m_isValid; }

private:
    QByteArray m_path;
    bool m_isValid = false;
};

void makeSocket(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    QVERIFY2(size_t(name.size()) < sizeof address.sun_path, "path too long for a socket");
    std::memcpy(address.sun_path, name.constData(), size_t(name.size()));
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    QVERIFY(descriptor >= 0);
    const auto close = qScopeGuard([descriptor] { ::close(descriptor); });
    QCOMPARE(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

/// A program that writes its arguments, one per line, to a file beside itself, at once complete.
void makeProgram(const QString& path, const QByteArray& firstLine = {})
{
    writeFile(path,
              "#!/bin/sh\n" + firstLine
                  + "\n"
                    "for argument in \"$@\"; do printf '%s\\n' \"$argument\"; done > \"$0.part\"\n"
                    "mv \"$0.part\" \"$0.arguments\"\n");
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

QString argumentsFile(const QString& program)
{
    return program + u".arguments"_s;
}

/// Waits until the program has been started and has written its arguments.
bool hasRun(const QString& program)
{
    return QTest::qWaitFor([&program] { return QFile::exists(argumentsFile(program)); });
}

QByteArray contentsOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

/// Makes a file the standard input, output and error of this process for as long as it lives.
class StandardStreams
{
public:
    explicit StandardStreams(const QString& path)
    {
        const int file = open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT, S_IRWXU);
        for (int stream = 0; stream < int(m_previous.size()); ++stream) {
            m_previous.at(size_t(stream)) = dup(stream);
            dup2(file, stream);
        }
        close(file);
    }
    ~StandardStreams()
    {
        for (int stream = 0; stream < int(m_previous.size()); ++stream) {
            dup2(m_previous.at(size_t(stream)), stream);
            close(m_previous.at(size_t(stream)));
        }
    }
    Q_DISABLE_COPY_MOVE(StandardStreams)

private:
    std::array<int, 3> m_previous {};
};

/// Gives up the rights of the superuser for as long as it lives.
class WithoutPrivileges
{
public:
    WithoutPrivileges()
        : m_dropped(geteuid() == 0 && seteuid(65534) == 0)
    {
    }
    ~WithoutPrivileges()
    {
        if (m_dropped && seteuid(0) != 0)
            qFatal("The rights of the superuser did not come back");
    }
    Q_DISABLE_COPY_MOVE(WithoutPrivileges)

private:
    bool m_dropped;
};

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

} // namespace

static_assert(std::is_polymorphic_v<VLPlatformIndependent>);
static_assert(std::has_virtual_destructor_v<VLPlatformIndependent>);
static_assert(!std::is_abstract_v<VLPlatformIndependent>);
static_assert(!std::is_copy_constructible_v<VLPlatformIndependent>);
static_assert(std::is_same_v<decltype(&VLPlatformIndependent::openFile),
                             bool (VLPlatformIndependent::*)(const QString&, const QStringList&,
                                                             const QString&)>);
static_assert(std::is_same_v<decltype(&VLPlatformIndependent::getDirectFilesInDirectory),
                             QStringList (VLPlatformIndependent::*)(const QDir&) const>);

class tst_VLPlatformIndependent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void built_in_service_is_never_null_and_always_the_same();
    void service_of_the_host_takes_its_place();
    void newest_service_counts();
    void null_puts_the_built_in_service_back();
    void making_a_service_does_not_set_it();
    void services_may_be_swapped_while_threads_ask();
    void directory_operation_reaches_the_service_of_the_host();
    void built_in_directory_operation_does_nothing();

    void direct_files_data();
    void direct_files();
    void nothing_else_is_listed();
    void empty_directory_lists_nothing();
    void directory_that_is_none_lists_nothing_data();
    void directory_that_is_none_lists_nothing();
    void unreadable_directory_lists_nothing_data();
    void unreadable_directory_lists_nothing();
    void unreadable_file_is_listed();
    void relative_directory_is_the_one_in_the_working_directory();
    void directory_through_a_link_is_listed();
    void filters_of_the_directory_are_ignored_data();
    void filters_of_the_directory_are_ignored();

    void files_of_a_file_engine_are_listed();
    void undecodable_file_name_is_listed();
    void incomplete_listings_are_told();
    void working_directory_that_no_path_leads_to();

    void application_gets_the_file_data();
    void application_gets_the_file();
    void relative_path_is_made_absolute();
    void application_is_not_waited_for();
    void application_has_no_stream_of_this_process();
    void application_is_found_in_the_path();
    void empty_application_is_the_desktops_own();
    void what_cannot_be_started_gives_one_warning_data();
    void what_cannot_be_started_gives_one_warning();
    void desktop_without_opener_gives_one_warning();

private:
    QString path(const QString& name) const { return m_directory->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_workingDirectory;
    QByteArray m_searchPath;
};

void tst_VLPlatformIndependent::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
    m_workingDirectory = QDir::currentPath();
    m_searchPath = qgetenv("PATH");
}

void tst_VLPlatformIndependent::cleanup()
{
    VLPlatformIndependent::setInstance(nullptr);
    QVERIFY(QDir::setCurrent(m_workingDirectory));
    qputenv("PATH", m_searchPath);
    m_directory.reset();
}

void tst_VLPlatformIndependent::built_in_service_is_never_null_and_always_the_same()
{
    auto* const service = VLPlatformIndependent::instance();
    QVERIFY(service != nullptr);
    QCOMPARE(VLPlatformIndependent::instance(), service);
}

void tst_VLPlatformIndependent::service_of_the_host_takes_its_place()
{
    HostService ofHost;
    VLPlatformIndependent::setInstance(&ofHost);
    QCOMPARE(VLPlatformIndependent::instance(), &ofHost);
    QCOMPARE(VLPlatformIndependent::instance(), &ofHost);
}

void tst_VLPlatformIndependent::newest_service_counts()
{
    HostService older;
    HostService newer;
    VLPlatformIndependent::setInstance(&older);
    VLPlatformIndependent::setInstance(&newer);
    QCOMPARE(VLPlatformIndependent::instance(), &newer);
}

void tst_VLPlatformIndependent::null_puts_the_built_in_service_back()
{
    auto* const builtIn = VLPlatformIndependent::instance();
    HostService ofHost;
    VLPlatformIndependent::setInstance(&ofHost);
    VLPlatformIndependent::setInstance(nullptr);
    QCOMPARE(VLPlatformIndependent::instance(), builtIn);
    VLPlatformIndependent::setInstance(nullptr);
    QCOMPARE(VLPlatformIndependent::instance(), builtIn);
}

void tst_VLPlatformIndependent::making_a_service_does_not_set_it()
{
    auto* const builtIn = VLPlatformIndependent::instance();
    const HostService ofHost;
    QVERIFY(builtIn != &ofHost);
    QCOMPARE(VLPlatformIndependent::instance(), builtIn);
}

void tst_VLPlatformIndependent::services_may_be_swapped_while_threads_ask()
{
    constexpr int calls = 2000;
    HostService ofHost;
    auto* const builtIn = VLPlatformIndependent::instance();
    std::atomic<int> wrong { 0 };
    std::atomic<int> asked { 0 };
    runTogether(4, [&](int thread) {
        for (int call = 0; call < calls; ++call) {
            if (thread == 0) {
                VLPlatformIndependent::setInstance(call % 2 == 0 ? &ofHost : nullptr);
                continue;
            }
            const auto* const service = VLPlatformIndependent::instance();
            wrong += service == builtIn || service == &ofHost ? 0 : 1;
            ++asked;
        }
    });
    QCOMPARE(wrong.load(), 0);
    QCOMPARE(asked.load(), 3 * calls);
}

void tst_VLPlatformIndependent::directory_operation_reaches_the_service_of_the_host()
{
    HostService ofHost;
    VLPlatformIndependent::setInstance(&ofHost);
    VLPlatformIndependent::instance()->directoryContentsChanged(QDir(u"/pictures"_s));
    QCOMPARE(ofHost.changed, QStringList { u"/pictures"_s });
}

void tst_VLPlatformIndependent::built_in_directory_operation_does_nothing()
{
    const MessageRecorder recorder;
    writeFile(path(u"a.jpg"_s));
    VLPlatformIndependent::instance()->directoryContentsChanged(QDir(m_directory->path()));
    QCOMPARE(QDir(m_directory->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList { u"a.jpg"_s });
    QCOMPARE(recorder.messages().size(), 0);
}

void tst_VLPlatformIndependent::direct_files_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("listed");

    QTest::newRow("regular_file") << u"a.jpg"_s << true;
    QTest::newRow("without_suffix") << u"README"_s << true;
    QTest::newRow("dot_at_the_end") << u"trailing."_s << true;
    QTest::newRow("several_dots") << u"a.b.c"_s << true;
    QTest::newRow("blanks") << u" a b "_s << true;
    QTest::newRow("line_feed") << u"a\nb"_s << true;
    QTest::newRow("wildcard_characters") << u"*[?]"_s << true;
    QTest::newRow("non_latin") << u"\u5199\u771F.jpg"_s << true;
    QTest::newRow("outside_the_basic_plane") << u"\U0001F4F7"_s << true;
    QTest::newRow("255_bytes") << QString(255, u'n') << true;
    QTest::newRow("tilde_at_the_end") << u"backup~"_s << true;
    QTest::newRow("hidden") << u".hidden"_s << false;
    QTest::newRow("hidden_with_suffix") << u".hidden.jpg"_s << false;
    QTest::newRow("two_dots_in_front") << u"..jpg"_s << false;
}

void tst_VLPlatformIndependent::direct_files()
{
    QFETCH(const QString, name);
    QFETCH(const bool, listed);
    writeFile(path(name), "contents");
    QCOMPARE(
        VLPlatformIndependent::instance()->getDirectFilesInDirectory(QDir(m_directory->path())),
        listed ? QStringList { name } : QStringList());
}

void tst_VLPlatformIndependent::nothing_else_is_listed()
{
    QTemporaryDir elsewhere;
    writeFile(elsewhere.filePath(u"far"_s));
    writeFile(path(u"file"_s));
    writeFile(path(u".hidden"_s));
    QVERIFY(QDir(m_directory->path()).mkpath(u"directory/below"_s));
    writeFile(path(u"directory/inner"_s));
    QVERIFY(QDir(m_directory->path()).mkdir(u".hiddenDirectory"_s));
    makeLink(u"file"_s, path(u"linkToFile"_s));
    makeLink(u"linkToFile"_s, path(u"linkToLink"_s));
    makeLink(u".hidden"_s, path(u"linkToHiddenFile"_s));
    makeLink(elsewhere.filePath(u"far"_s), path(u"linkToFarFile"_s));
    makeLink(u"file"_s, path(u".hiddenLink"_s));
    makeLink(u"directory"_s, path(u"linkToDirectory"_s));
    makeLink(u"."_s, path(u"linkToItsDirectory"_s));
    makeLink(u"missing"_s, path(u"danglingLink"_s));
    makeLink(u"linkInCircle"_s, path(u"linkInCircle"_s));
    makeLink(u"/dev/null"_s, path(u"linkToDevice"_s));
    QCOMPARE(mkfifo(QFile::encodeName(path(u"pipe"_s)).constData(), 0600), 0);
    makeLink(u"pipe"_s, path(u"linkToPipe"_s));
    makeSocket(path(u"socket"_s));

    const QStringList files { u"file"_s, u"linkToFarFile"_s, u"linkToFile"_s, u"linkToHiddenFile"_s,
                              u"linkToLink"_s };
    QCOMPARE(sorted(VLPlatformIndependent::instance()->getDirectFilesInDirectory(
                 QDir(m_directory->path()))),
             files);
}

void tst_VLPlatformIndependent::empty_directory_lists_nothing()
{
    QCOMPARE(
        VLPlatformIndependent::instance()->getDirectFilesInDirectory(QDir(m_directory->path())),
        QStringList());
}

void tst_VLPlatformIndependent::directory_that_is_none_lists_nothing_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("missing") << u"missing"_s;
    QTest::newRow("below_a_missing_one") << u"missing/below"_s;
    QTest::newRow("regular_file") << u"file"_s;
    QTest::newRow("dangling_link") << u"danglingLink"_s;
    QTest::newRow("link_to_a_file") << u"linkToFile"_s;
}

void tst_VLPlatformIndependent::directory_that_is_none_lists_nothing()
{
    QFETCH(const QString, name);
    writeFile(path(u"file"_s));
    makeLink(u"gone"_s, path(u"danglingLink"_s));
    makeLink(u"file"_s, path(u"linkToFile"_s));
    QCOMPARE(VLPlatformIndependent::instance()->getDirectFilesInDirectory(QDir(path(name))),
             QStringList());
}

void tst_VLPlatformIndependent::unreadable_directory_lists_nothing_data()
{
    QTest::addColumn<uint>("mode");
    QTest::addColumn<QStringList>("files");

    QTest::newRow("readable") << 0755U << QStringList { u"file"_s };
    QTest::newRow("no_rights") << 0000U << QStringList();
    QTest::newRow("may_be_entered_only") << 0111U << QStringList();
    QTest::newRow("may_be_written_only") << 0333U << QStringList();
}

void tst_VLPlatformIndependent::unreadable_directory_lists_nothing()
{
    QFETCH(const uint, mode);
    const QString closed = path(u"closed"_s);
    QVERIFY(QDir(m_directory->path()).mkdir(u"closed"_s));
    writeFile(closed + u"/file"_s);
    QCOMPARE(chmod(QFile::encodeName(m_directory->path()).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(closed).constData(), mode_t(mode)), 0);
    const auto restore = qScopeGuard([&] { chmod(QFile::encodeName(closed).constData(), 0755); });

    QStringList found;
    {
        const WithoutPrivileges unprivileged;
        found = VLPlatformIndependent::instance()->getDirectFilesInDirectory(QDir(closed));
    }
    QTEST(found, "files");
}

void tst_VLPlatformIndependent::unreadable_file_is_listed()
{
    writeFile(path(u"secret"_s));
    QCOMPARE(chmod(QFile::encodeName(path(u"secret"_s)).constData(), 0000), 0);
    QCOMPARE(chmod(QFile::encodeName(m_directory->path()).constData(), 0755), 0);

    QStringList found;
    {
        const WithoutPrivileges unprivileged;
        found =
            VLPlatformIndependent::instance()->getDirectFilesInDirectory(QDir(m_directory->path()));
    }
    QCOMPARE(found, QStringList { u"secret"_s });
}

void tst_VLPlatformIndependent::relative_directory_is_the_one_in_the_working_directory()
{
    QVERIFY(QDir(m_directory->path()).mkdir(u"sub"_s));
    writeFile(path(u"outer"_s));
    writeFile(path(u"sub/inner"_s));
    QVERIFY(QDir::setCurrent(m_directory->path()));
    auto* const service = VLPlatformIndependent::instance();
    QCOMPARE(service->getDirectFilesInDirectory(QDir(u"sub"_s)), QStringList { u"inner"_s });
    QCOMPARE(service->getDirectFilesInDirectory(QDir()), QStringList { u"outer"_s });
}

void tst_VLPlatformIndependent::directory_through_a_link_is_listed()
{
    QVERIFY(QDir(m_directory->path()).mkdir(u"sub"_s));
    writeFile(path(u"sub/inner"_s));
    makeLink(u"sub"_s, path(u"link"_s));
    auto* const service = VLPlatformIndependent::instance();
    QCOMPARE(service->getDirectFilesInDirectory(QDir(path(u"link"_s))), QStringList { u"inner"_s });
    QCOMPARE(service->getDirectFilesInDirectory(QDir(path(u"link/"_s))),
             QStringList { u"inner"_s });
}

void tst_VLPlatformIndependent::filters_of_the_directory_are_ignored_data()
{
    QTest::addColumn<QStringList>("nameFilters");
    QTest::addColumn<QDir::Filters>("filters");

    QTest::newRow("names") << QStringList { u"*.png"_s } << QDir::Filters(QDir::Files);
    QTest::newRow("only_directories") << QStringList() << QDir::Filters(QDir::Dirs);
    QTest::newRow("hidden_too") << QStringList()
                                << (QDir::Files | QDir::Dirs | QDir::Hidden | QDir::System);
    QTest::newRow("no_links") << QStringList() << (QDir::Files | QDir::NoSymLinks);
}

void tst_VLPlatformIndependent::filters_of_the_directory_are_ignored()
{
    QFETCH(const QStringList, nameFilters);
    QFETCH(const QDir::Filters, filters);
    writeFile(path(u"a.jpg"_s));
    writeFile(path(u".hidden"_s));
    makeLink(u"a.jpg"_s, path(u"b.jpg"_s));
    QVERIFY(QDir(m_directory->path()).mkdir(u"sub"_s));
    QDir directory(m_directory->path());
    directory.setNameFilters(nameFilters);
    directory.setFilter(filters);
    const QStringList files { u"a.jpg"_s, u"b.jpg"_s };
    QCOMPARE(sorted(VLPlatformIndependent::instance()->getDirectFilesInDirectory(directory)),
             files);
}

void tst_VLPlatformIndependent::files_of_a_file_engine_are_listed()
{
    auto* const service = VLPlatformIndependent::instance();
    const QDir resources(u":/vl-test/listed"_s);
    QCOMPARE(sorted(service->getDirectFilesInDirectory(resources)),
             (QStringList { u"a.txt"_s, u"b.txt"_s }));
    QCOMPARE(service->getDirectFilesInDirectory(QDir(u":/vl-test/missing"_s)), QStringList());
    QCOMPARE(service->getDirectSubdirectoriesInDirectory(QDir(u":/vl-test"_s)),
             QStringList { u"listed"_s });
}

void tst_VLPlatformIndependent::undecodable_file_name_is_listed()
{
    const UndecodableFile undecodable(m_directory->path());
    if (!undecodable.isValid())
        QSKIP("This file system takes names in UTF-8 only");
    writeFile(path(u"a"_s));
    const HostService ofHost;
    const QStringList files { u"a"_s, u"m\uFFFDnchen"_s };
    QCOMPARE(sorted(ofHost.getDirectFilesInDirectory(QDir(m_directory->path()))), files);
    QCOMPARE(ofHost.told, QStringList());
}

void tst_VLPlatformIndependent::incomplete_listings_are_told()
{
    const HostService ofHost;
    const QString missing = m_directory->filePath(u"missing"_s);
    const QString line = u"%1 %2 %3"_s.arg(int(VLPlatformIndependent::ListingProblem::Unreadable))
                             .arg(ENOENT)
                             .arg(missing);
    QCOMPARE(ofHost.getDirectFilesInDirectory(QDir(missing)), QStringList());
    QCOMPARE(ofHost.told, QStringList { line });
    QCOMPARE(ofHost.getDirectSubdirectoriesInDirectory(QDir(missing)), QStringList());
    QCOMPARE(ofHost.told, (QStringList { line, line }));
    QCOMPARE(ofHost.getDirectFilesInDirectory(QDir(m_directory->path())), QStringList());
    QCOMPARE(ofHost.getDirectSubdirectoriesInDirectory(QDir(m_directory->path())), QStringList());
    QCOMPARE(ofHost.told, (QStringList { line, line }));
}

void tst_VLPlatformIndependent::working_directory_that_no_path_leads_to()
{
    RawDirectory tree;
    tree.folder("closed").folder("closed/here").file("closed/here/file");
    tree.folder("closed/here/\xff").folder("closed/here/2019");
    if (!tree.isValid())
        QSKIP("This file system takes names in UTF-8 only");
    const QByteArray closed = tree.bytes("closed");
    QCOMPARE(chmod(tree.bytes("closed/here").constData(), 0755), 0);
    const WorkingDirectory here(QFile::decodeName(tree.bytes("closed/here")));
    QVERIFY(here.isActive());
    QCOMPARE(chmod(closed.constData(), 0000), 0);
    const auto restore = qScopeGuard([&closed] { chmod(closed.constData(), 0700); });

    const UnprivilegedUser user;
    if (!user.isActive())
        QSKIP("Needs a user without the superuser's rights");
    const QDir asked(u"."_s);
    QCOMPARE(VLPlatformIndependent::instance()->getDirectFilesInDirectory(asked),
             QStringList { u"file"_s });
    QCOMPARE(VLPlatformIndependent::instance()->getDirectSubdirectoriesInDirectory(asked),
             QStringList { u"2019"_s });
}

void tst_VLPlatformIndependent::application_gets_the_file_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("received");

    const QString file = u"/p/r.html"_s;
    QTest::newRow("no_arguments") << QStringList() << file << QByteArray("/p/r.html\n");
    QTest::newRow("arguments_come_before_the_file")
        << QStringList { u"-n"_s, u"two"_s } << file << QByteArray("-n\ntwo\n/p/r.html\n");
    QTest::newRow("arguments_are_not_split")
        << QStringList { u"a b"_s, u"\"c\""_s, u"$HOME"_s } << file
        << QByteArray("a b\n\"c\"\n$HOME\n/p/r.html\n");
    QTest::newRow("empty_argument") << QStringList { u""_s } << file << QByteArray("\n/p/r.html\n");
    QTest::newRow("file_with_blanks_and_quotes")
        << QStringList() << u"/p/my \"r\".html"_s << QByteArray("/p/my \"r\".html\n");
    QTest::newRow("file_with_non_latin_name") << QStringList() << u"/p/\u5199\u771F.html"_s
                                              << QByteArray("/p/\xE5\x86\x99\xE7\x9C\x9F.html\n");
    QTest::newRow("placeholders_are_text")
        << QStringList { u"%1"_s } << u"/p/%2.html"_s << QByteArray("%1\n/p/%2.html\n");
}

void tst_VLPlatformIndependent::application_gets_the_file()
{
#if defined(Q_OS_MACOS)
    QSKIP("macOS starts applications through its own program");
#endif
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, file);
    const QString program = path(u"my viewer"_s);
    makeProgram(program);
    QVERIFY(VLPlatformIndependent::instance()->openFile(file, arguments, program));
    QVERIFY(hasRun(program));
    QTEST(contentsOf(argumentsFile(program)), "received");
}

void tst_VLPlatformIndependent::relative_path_is_made_absolute()
{
#if defined(Q_OS_MACOS)
    QSKIP("macOS starts applications through its own program");
#endif
    const QString program = path(u"viewer"_s);
    makeProgram(program);
    QVERIFY(QDir::setCurrent(m_directory->path()));
    QVERIFY(VLPlatformIndependent::instance()->openFile(u"--report.html"_s, {}, program));
    QVERIFY(hasRun(program));
    QCOMPARE(contentsOf(argumentsFile(program)),
             QFile::encodeName(QDir::currentPath()) + "/--report.html\n");
}

void tst_VLPlatformIndependent::application_is_not_waited_for()
{
#if defined(Q_OS_MACOS)
    QSKIP("macOS starts applications through its own program");
#endif
    const QString program = path(u"viewer"_s);
    makeProgram(program, "for i in $(seq 300); do [ -e \"$0.go\" ] && break; sleep 0.1; done");
    QVERIFY(VLPlatformIndependent::instance()->openFile(u"/p/r.html"_s, {}, program));
    QVERIFY(!QFile::exists(argumentsFile(program)));
    writeFile(program + u".go"_s);
    QVERIFY(hasRun(program));
}

void tst_VLPlatformIndependent::application_has_no_stream_of_this_process()
{
#if defined(Q_OS_MACOS)
    QSKIP("macOS starts applications through its own program");
#endif
    const QString program = path(u"viewer"_s);
    makeProgram(program,
                "for n in 0 1 2; do [ /dev/fd/$n -ef /dev/null ] && set -- \"$@\" $n; done");
    {
        const StandardStreams streams(path(u"streams"_s));
        QVERIFY(VLPlatformIndependent::instance()->openFile(u"/p/r.html"_s, {}, program));
    }
    QVERIFY(hasRun(program));
    QCOMPARE(contentsOf(argumentsFile(program)), QByteArray("/p/r.html\n0\n1\n2\n"));
}

void tst_VLPlatformIndependent::application_is_found_in_the_path()
{
#if defined(Q_OS_MACOS)
    QSKIP("macOS starts applications through its own program");
#endif
    const QString program = path(u"vl-test-viewer"_s);
    makeProgram(program);
    qputenv("PATH", QFile::encodeName(m_directory->path()) + ':' + m_searchPath);
    QVERIFY(VLPlatformIndependent::instance()->openFile(u"/p/r.html"_s, { u"-n"_s },
                                                        u"vl-test-viewer"_s));
    QVERIFY(hasRun(program));
    QCOMPARE(contentsOf(argumentsFile(program)), QByteArray("-n\n/p/r.html\n"));
}

void tst_VLPlatformIndependent::empty_application_is_the_desktops_own()
{
#if defined(Q_OS_MACOS)
    const QString program = path(u"open"_s);
#else
    const QString program = path(u"xdg-open"_s);
#endif
    makeProgram(program);
    qputenv("PATH", QFile::encodeName(m_directory->path()) + ':' + m_searchPath);
    QVERIFY(VLPlatformIndependent::instance()->openFile(u"/p/r.html"_s, { u"-n"_s }, u""_s));
    QVERIFY(hasRun(program));
    QCOMPARE(contentsOf(argumentsFile(program)), QByteArray("/p/r.html\n"));
}

void tst_VLPlatformIndependent::what_cannot_be_started_gives_one_warning_data()
{
    QTest::addColumn<QString>("application");
    QTest::addColumn<bool>("insideDirectory");

    QTest::newRow("missing") << u"missing"_s << true;
    QTest::newRow("not_executable") << u"text"_s << true;
    QTest::newRow("directory") << u"sub"_s << true;
    QTest::newRow("dangling_link") << u"danglingLink"_s << true;
    QTest::newRow("not_in_the_path") << u"vl-there-is-no-such-viewer"_s << false;
}

void tst_VLPlatformIndependent::what_cannot_be_started_gives_one_warning()
{
#if defined(Q_OS_MACOS)
    QSKIP("macOS starts applications through its own program");
#endif
    QFETCH(const QString, application);
    QFETCH(const bool, insideDirectory);
    writeFile(path(u"text"_s), "#!/bin/sh\n");
    QVERIFY(QDir(m_directory->path()).mkdir(u"sub"_s));
    makeLink(u"gone"_s, path(u"danglingLink"_s));

    const MessageRecorder recorder;
    const QString program = insideDirectory ? path(application) : application;
    QVERIFY(!VLPlatformIndependent::instance()->openFile(u"/pictures/r.html"_s, {}, program));
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(recorder.messages().constFirst().type, QtWarningMsg);
    QCOMPARE(recorder.messages().constFirst().text,
             u"Could not open file \"/pictures/r.html\" with \"%1\""_s.arg(program));
}

void tst_VLPlatformIndependent::desktop_without_opener_gives_one_warning()
{
    qputenv("PATH", QFile::encodeName(m_directory->path()));
    const MessageRecorder recorder;
    QVERIFY(!VLPlatformIndependent::instance()->openFile(u"/pictures/r.html"_s, {}, u""_s));
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(recorder.messages().constFirst().type, QtWarningMsg);
    QVERIFY(recorder.messages().constFirst().text.contains(u"/pictures/r.html"_s));
}

QTEST_GUILESS_MAIN(tst_VLPlatformIndependent)
#include "tst_VLPlatformIndependent.moc"
