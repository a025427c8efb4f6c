#include <MessageRecorder.h>
#include <RawDirectory.h>
#include <RecordingPlatform.h>
#include <RunTogether.h>
#include <TestRows.h>
#include <UnprivilegedUser.h>
#include <WorkingDirectory.h>

#include <VLCore/VLPlatformIndependent.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <array>
#include <atomic>
#include <cerrno>
#include <memory>
#include <type_traits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

#if defined(Q_OS_MACOS)
constexpr bool isMac = true;
#else
constexpr bool isMac = false;
#endif

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

QStringList filesIn(const QDir& directory)
{
    return sorted(VLPlatformIndependent::instance()->getDirectFilesInDirectory(directory));
}

QStringList foldersIn(const QDir& directory)
{
    return sorted(VLPlatformIndependent::instance()->getDirectSubdirectoriesInDirectory(directory));
}

/// A program that writes its arguments, one per line, to a file beside itself, at once complete.
void makeProgram(const QString& path, const QByteArray& firstLine = {})
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    file.write("#!/bin/sh\n" + firstLine + R"(
for argument in "$@"; do printf '%s\n' "$argument"; done > "$0.part"
mv "$0.part" "$0.arguments"
)");
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

/// What the program was given, once it has been started.
QByteArray argumentsOf(const QString& program)
{
    QFile file(program + u".arguments"_s);
    if (!QTest::qWaitFor([&file] { return file.exists(); }, 60'000))
        return "never started";
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

} // namespace

static_assert(std::has_virtual_destructor_v<VLPlatformIndependent>);
static_assert(!std::is_abstract_v<VLPlatformIndependent>);
static_assert(!std::is_copy_constructible_v<VLPlatformIndependent>);

class tst_VLPlatformIndependent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void serviceOfTheHostTakesThePlaceOfTheBuiltInOne();
    void servicesMayBeSwappedWhileThreadsAsk();
    void builtInDirectoryOperationDoesNothing();

    void relativeDirectoryIsTheOneInTheWorkingDirectory();
    void pathWithNullListsNothing();
    void filtersOfTheDirectoryAreIgnored();
    void filesOfAFileEngineAreListed();
    void incompleteListingsAreTold();
    void symlinksAndNumberOfFilesAreTold();
    void workingDirectoryThatNoPathLeadsTo();

    void applicationGetsTheFile_data();
    void applicationGetsTheFile();
    void applicationIsNotWaitedFor();
    void applicationHasNoStreamOfThisProcess();
    void applicationThatCannotBeStartedGivesOneWarning_data();
    void applicationThatCannotBeStartedGivesOneWarning();
    void emptyApplicationIsTheDesktopsOwnInThePath();

private:
    [[nodiscard]] QString path(const QByteArray& name = {}) const { return m_tree->path(name); }
    [[nodiscard]] bool opens(const QString& file, const QStringList& arguments,
                             const QString& application) const
    {
        return VLPlatformIndependent::instance()->openFile(file, arguments, application);
    }

    [[nodiscard]] QString programPath(const QString& name) const
    {
        return m_programs->filePath(name);
    }

    std::unique_ptr<RawDirectory> m_tree;
    // Programs may not run from memory everywhere, where the tree is.
    std::unique_ptr<QTemporaryDir> m_programs;
    QByteArray m_searchPath;
};

void tst_VLPlatformIndependent::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
    m_tree = std::make_unique<RawDirectory>();
    m_programs = std::make_unique<QTemporaryDir>();
    QVERIFY(m_tree->isValid() && m_programs->isValid());
    m_searchPath = qgetenv("PATH");
    if (isMac && QByteArray(QTest::currentTestFunction()).startsWith("application"))
        QSKIP("macOS starts applications through its own program");
}

void tst_VLPlatformIndependent::cleanup()
{
    VLPlatformIndependent::setInstance(nullptr);
    qputenv("PATH", m_searchPath);
    m_tree.reset();
    m_programs.reset();
}

void tst_VLPlatformIndependent::serviceOfTheHostTakesThePlaceOfTheBuiltInOne()
{
    auto* const builtIn = VLPlatformIndependent::instance();
    QVERIFY(builtIn != nullptr);
    VLPlatformIndependent older;
    VLPlatformIndependent newer;
    QCOMPARE(VLPlatformIndependent::instance(), builtIn);
    for (auto* const service : { &older, &newer }) {
        VLPlatformIndependent::setInstance(service);
        QCOMPARE(VLPlatformIndependent::instance(), service);
    }
    for (int time = 0; time < 2; ++time) {
        VLPlatformIndependent::setInstance(nullptr);
        QCOMPARE(VLPlatformIndependent::instance(), builtIn);
    }
}

void tst_VLPlatformIndependent::servicesMayBeSwappedWhileThreadsAsk()
{
    VLPlatformIndependent ofHost;
    auto* const builtIn = VLPlatformIndependent::instance();
    std::atomic<int> wrong { 0 };
    runTogether(4, [&](int thread) {
        for (int call = 0; call < 2000; ++call) {
            if (thread == 0)
                VLPlatformIndependent::setInstance(call % 2 == 0 ? &ofHost : nullptr);
            const auto* const service = VLPlatformIndependent::instance();
            wrong += service == builtIn || service == &ofHost ? 0 : 1;
        }
    });
    QCOMPARE(wrong.load(), 0);
}

void tst_VLPlatformIndependent::builtInDirectoryOperationDoesNothing()
{
    const MessageRecorder recorder;
    m_tree->make({ "a.jpg" });
    VLPlatformIndependent::instance()->directoryContentsChanged(QDir(path()));
    QCOMPARE(QDir(path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList { u"a.jpg"_s });
    QCOMPARE(recorder.messages().size(), 0);
}

void tst_VLPlatformIndependent::relativeDirectoryIsTheOneInTheWorkingDirectory()
{
    m_tree->make({ "sub/", "outer", "sub/inner" });
    const WorkingDirectory here(path());
    QCOMPARE(filesIn(QDir(u"sub"_s)), QStringList { u"inner"_s });
    QCOMPARE(filesIn(QDir()), QStringList { u"outer"_s });
    QCOMPARE(foldersIn(QDir()), QStringList { u"sub"_s });
}

// To the system it is the directory in front of the null.
void tst_VLPlatformIndependent::pathWithNullListsNothing()
{
    m_tree->make({ "sub/", "file" });
    const QDir directory(path() + QChar(0) + u"x"_s);
    QCOMPARE(filesIn(directory), QStringList());
    QCOMPARE(foldersIn(directory), QStringList());
}

void tst_VLPlatformIndependent::filtersOfTheDirectoryAreIgnored()
{
    m_tree->make({ "a.jpg", ".hidden", "b.jpg -> a.jpg", "sub/", ".sub/", "to -> sub" });
    QDir directory(path());
    directory.setNameFilters({ u"*.png"_s });
    directory.setFilter(QDir::Hidden | QDir::NoSymLinks);
    QCOMPARE(filesIn(directory), (QStringList { u"a.jpg"_s, u"b.jpg"_s }));
    QCOMPARE(foldersIn(directory), (QStringList { u"sub"_s, u"to"_s }));
}

void tst_VLPlatformIndependent::filesOfAFileEngineAreListed()
{
    QCOMPARE(filesIn(QDir(u":/vl-test/listed"_s)), (QStringList { u"a.txt"_s, u"b.txt"_s }));
    QCOMPARE(filesIn(QDir(u":/vl-test/missing"_s)), QStringList());
    QCOMPARE(foldersIn(QDir(u":/vl-test"_s)), QStringList { u"listed"_s });
}

void tst_VLPlatformIndependent::incompleteListingsAreTold()
{
    const RecordingPlatform ofHost;
    for (const QString& directory : { path("missing"), path() }) {
        QCOMPARE(filesIn(directory), QStringList());
        QCOMPARE(foldersIn(directory), QStringList());
    }
    QCOMPARE(ofHost.incomplete.size(), 2);
    for (const auto& incomplete : ofHost.incomplete) {
        QCOMPARE(incomplete.path, path("missing"));
        QCOMPARE(incomplete.problem, VLPlatformIndependent::ListingProblem::Unreadable);
        QCOMPARE(incomplete.systemError, ENOENT);
    }
}

void tst_VLPlatformIndependent::symlinksAndNumberOfFilesAreTold()
{
    m_tree->make({ "folder/", "file", "link -> folder", "linkToFile -> file" });
    QVERIFY2(m_tree->isValid(), m_tree->error());
    const RecordingPlatform ofHost;
    QCOMPARE(filesIn(path()).size(), 2);
    QCOMPARE(ofHost.symlinks, QStringList());
    QCOMPARE(ofHost.listedFiles, QList<qsizetype>());
    QCOMPARE(foldersIn(path()).size(), 2);
    QCOMPARE(ofHost.symlinks, QStringList { path("link") });
    QCOMPARE(foldersIn(path("missing")), QStringList());
    QCOMPARE(foldersIn(QDir(u":/vl-test/listed"_s)), QStringList { u"below"_s });
    QCOMPARE(ofHost.listedFiles, (QList<qsizetype> { 2, -1, 2 }));
}

void tst_VLPlatformIndependent::workingDirectoryThatNoPathLeadsTo()
{
    m_tree->make({ "closed/here/2019/", "closed/here/file", "closed/here/\xff/" });
    if (m_tree->lacksRawNames())
        QSKIP("This file system takes names in UTF-8 only");
    const WorkingDirectory here(path("closed/here"));
    m_tree->restrict("closed/here", 0755).restrict("closed", 0000);
    QVERIFY2(m_tree->isValid(), m_tree->error());

    const UnprivilegedUser user;
    if (!user.isActive())
        QSKIP("Needs a user without the superuser's rights");
    QCOMPARE(filesIn(QDir(u"."_s)), QStringList { u"file"_s });
    QCOMPARE(foldersIn(QDir(u"."_s)), QStringList { u"2019"_s });
}

void tst_VLPlatformIndependent::applicationGetsTheFile_data()
{
    const TestRows<QStringList, QString, QByteArray> row("arguments", "file", "received");
    row("no_arguments", {}, u"/p/r.html"_s, "/p/r.html\n");
    row("arguments_come_before_the_file", { u"-n"_s, u"two"_s }, u"/r"_s, "-n\ntwo\n/r\n");
    row("arguments_are_not_split", { u"a b"_s, u"\"$HOME\""_s }, u"/r"_s, "a b\n\"$HOME\"\n/r\n");
    row("empty_argument", { u""_s }, u"/r"_s, "\n/r\n");
    row("blanks_and_quotes_in_the_file", {}, u"/p/my \"r\".html"_s, "/p/my \"r\".html\n");
    row("non_latin_name_of_the_file", {}, u"/\u5199\u771F"_s, "/\u5199\u771F\n");
    row("placeholders_are_text", { u"%1"_s }, u"/p/%2.html"_s, "%1\n/p/%2.html\n");
    row("relative_path_is_made_absolute", {}, u"--report.html"_s, "/--report.html\n");
}

void tst_VLPlatformIndependent::applicationGetsTheFile()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, file);
    const QString program = programPath(u"my viewer"_s);
    makeProgram(program);
    const WorkingDirectory top(u"/"_s);
    QVERIFY(opens(file, arguments, program));
    QTEST(argumentsOf(program), "received");
}

void tst_VLPlatformIndependent::applicationIsNotWaitedFor()
{
    const QString program = programPath(u"viewer"_s);
    makeProgram(program, "for i in $(seq 600); do [ -e \"$0.go\" ] && break; sleep 0.1; done");
    QVERIFY(opens(u"/p/r.html"_s, {}, program));
    QVERIFY(!QFile::exists(program + u".arguments"_s));
    QVERIFY(QFile::copy(program, program + u".go"_s));
    QCOMPARE(argumentsOf(program), QByteArray("/p/r.html\n"));
}

void tst_VLPlatformIndependent::applicationHasNoStreamOfThisProcess()
{
    const QString program = programPath(u"viewer"_s);
    makeProgram(program,
                "for n in 0 1 2; do [ /dev/fd/$n -ef /dev/null ] && set -- \"$@\" $n; done");
    {
        const StandardStreams streams(programPath(u"streams"_s));
        QVERIFY(opens(u"/p/r.html"_s, {}, program));
    }
    QCOMPARE(argumentsOf(program), QByteArray("/p/r.html\n0\n1\n2\n"));
}

void tst_VLPlatformIndependent::applicationThatCannotBeStartedGivesOneWarning_data()
{
    const TestRows<QString, QString> row("application", "program");
    row("missing", u"./missing"_s, u"./missing"_s);
    row("not_executable", u"./text"_s, u"./text"_s);
    row("directory", u"./sub"_s, u"./sub"_s);
    row("not_in_the_path", u"viewer"_s, u"viewer"_s);
    row("desktop_without_opener", u""_s, isMac ? u"open"_s : u"xdg-open"_s);
}

void tst_VLPlatformIndependent::applicationThatCannotBeStartedGivesOneWarning()
{
    QFETCH(const QString, application);
    QFETCH(const QString, program);
    m_tree->make({ "text", "sub/" });
    qputenv("PATH", QFile::encodeName(path()));
    const WorkingDirectory here(path());
    const MessageRecorder recorder;
    QVERIFY(!opens(u"/pictures/r.html"_s, {}, application));
    QCOMPARE(recorder.messages().size(), 1);
    QCOMPARE(recorder.messages().constFirst().type, QtWarningMsg);
    QCOMPARE(recorder.messages().constFirst().text,
             u"Could not open file \"/pictures/r.html\" with \"%1\""_s.arg(program));
}

void tst_VLPlatformIndependent::emptyApplicationIsTheDesktopsOwnInThePath()
{
    const QString program = programPath(isMac ? u"open"_s : u"xdg-open"_s);
    makeProgram(program);
    qputenv("PATH", QFile::encodeName(m_programs->path()) + ':' + m_searchPath);
    QVERIFY(opens(u"/p/r.html"_s, { u"-n"_s }, u""_s));
    QCOMPARE(argumentsOf(program), QByteArray("/p/r.html\n"));
}

QTEST_GUILESS_MAIN(tst_VLPlatformIndependent)
#include "tst_VLPlatformIndependent.moc"
