#include "FailingCalls.h"
#include "FaultTree.h"
#include "MessageRecorder.h"
#include "RecordingPlatform.h"
#include "UnprivilegedUser.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMap>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtTest/QTest>

#include <array>
#include <cerrno>
#include <initializer_list>
#include <limits>
#include <new>

using namespace Qt::StringLiterals;

namespace {

bool allAttempts = false;

constexpr long forGood = std::numeric_limits<int>::max();

struct Error
{
    const char* name;
    int number;
};

constexpr std::array errors {
    Error { "EACCES", EACCES }, Error { "EIO", EIO },       Error { "ENOENT", ENOENT },
    Error { "ENOSPC", ENOSPC }, Error { "EMFILE", EMFILE }, Error { "EINTR", EINTR },
};

// Each of the calls with every error.
void addFaults(std::initializer_list<const char*> calls, const QString& option = {})
{
    for (const char* const call : calls) {
        for (const Error& error : errors) {
            QTest::addRow("%s_%s%s", call, error.name, qPrintable(option))
                << QByteArray(call) << error.number << option;
        }
    }
}

void addColumns()
{
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("option");
}

void arm(const QByteArray& call, long first, long last, int error, const QString& directory)
{
    vlArmFailingCall(call.constData(), first, last, error, directory.toUtf8().constData());
}

QStringList toldPaths(const RecordingPlatform& platform)
{
    QStringList paths;
    for (const RecordingPlatform::Incomplete& one : std::as_const(platform.incomplete))
        paths.append(one.path);
    return paths;
}

VLFolioEventClassifier& classifier()
{
    static VLFolioEventClassifier instance(QFileInfo(u"/pictures"_s));
    return instance;
}

// The folders that the program's lines are about.
QStringList toldPaths(const QStringList& complaints)
{
    static const QRegularExpression folder(
        u"^vlfolio-classify: (?:cannot (?:read|enter) )?(/.*?)(?:: | holds )"_s);
    QStringList found;
    for (const QString& line : complaints)
        found.append(folder.match(line).captured(1));
    return found;
}

QList<FoundFolder> foldersIn(const QByteArray& jsonLines)
{
    QList<FoundFolder> found;
    const QByteArrayList all = jsonLines.split('\n');
    for (const QByteArray& line : all) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (!object.isEmpty())
            found.append({ object[u"path"].toString(), object[u"type"].toString(),
                           object[u"files"].toInteger() });
    }
    return found;
}

} // namespace

class tst_failing_calls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    // First, while nothing has been compiled yet.
    void expressionThatCannotBeCompiledIsTriedAgain_data();
    void expressionThatCannotBeCompiledIsTriedAgain();
    void expressionIsCompiledOnce();
    void searchWithoutMemoryIsBadAlloc_data();
    void searchWithoutMemoryIsBadAlloc();
    void loneSurrogateIsNoLackOfMemory();

    void runTellsWhatItLoses_data();
    void runTellsWhatItLoses();
    void programTellsWhatItLoses_data();
    void programTellsWhatItLoses();
    void programReadsEachFolder_data();
    void programReadsEachFolder();

    void constructorAsksTheSystemForNothing();
    void fullDiskLeavesAnEmptyReport();
    void listingThatBreaksOffIsTold_data();
    void listingThatBreaksOffIsTold();
    void lackOfMemoryIsBadAlloc_data();
    void lackOfMemoryIsBadAlloc();
    void fileTypesThatAreNotTold();
    void folderThatMayBeReadButNotEntered_data();
    void folderThatMayBeReadButNotEntered();
    void otherProblemsStayInFolderThatMayNotBeEntered();

private:
    [[nodiscard]] QStringList goneFor(const QByteArray& call, int error) const
    {
        return call == "stat" && error == ENOENT ? m_tree.links() : QStringList();
    }
    void run(QProcess& program, const QStringList& options, const QString& order) const;

    FaultTree m_tree;
};

void tst_failing_calls::initTestCase()
{
    QVERIFY(m_tree.isValid());
}

void tst_failing_calls::runTellsWhatItLoses_data()
{
    addColumns();
    addFaults({ "close", "getdents64", "open", "realpath", "stat", "unlink", "write" });
}

// A report that cannot be written is the one thing to be told in another way.
void tst_failing_calls::runTellsWhatItLoses()
{
    QFETCH(const QByteArray, call);
    QFETCH(const int, error);

    long nth = 1;
    for (;; ++nth) {
        const MessageRecorder recorder;
        const RecordingPlatform platform;
        VLFolioEventClassifier subject { QFileInfo(m_tree.root()) };
        arm(call, nth, nth, error, m_tree.root());
        subject.start();
        const char* const failed = vlDisarmFailingCall();
        if (failed == nullptr)
            break;
        QCOMPARE(platform.calls.constLast(), u"openFile "_s + m_tree.reportPath());
        if (recorder.texts().constLast().startsWith(u"Could not write to file"_s)) {
            QCOMPARE(call, QByteArray("open"));
            QVERIFY(m_tree.reported().isEmpty());
            continue;
        }
        const QStringList wrong =
            m_tree.unexplained(m_tree.reported(), toldPaths(platform), goneFor(call, error));
        QVERIFY2(wrong.isEmpty(),
                 qPrintable(QString::fromUtf8(failed) + u": "_s + wrong.join(u"; "_s)));
    }
    QVERIFY(nth > 1);
    QCOMPARE(m_tree.unexplained(m_tree.reported(), {}, {}), QStringList());
}

void tst_failing_calls::run(QProcess& program, const QStringList& options,
                            const QString& order) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LD_PRELOAD"_s, QStringLiteral(VLFOLIO_FAILING_CALLS));
    environment.insert(u"FAILING_CALL"_s, order + u' ' + m_tree.root());
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(VLFOLIO_PROGRAM), options + QStringList { m_tree.root() });
    QVERIFY2(program.waitForStarted(-1), qPrintable(program.errorString()));
    program.waitForFinished(-1);
}

void tst_failing_calls::programTellsWhatItLoses_data()
{
    addColumns();
    addFaults({ "access", "close", "getdents64", "open", "realpath", "stat" }, u"--json"_s);
    addFaults({ "access", "close", "getdents64", "open", "realpath", "stat", "write" },
              u"--no-open"_s);
}

// With an exit code other than 0, a line says what went wrong.
void tst_failing_calls::programTellsWhatItLoses()
{
    QFETCH(const QByteArray, call);
    QFETCH(const int, error);
    QFETCH(const QString, option);

    // The begin of a program takes long: a few of each call will do for errors that are like EIO.
    const bool isEach = allAttempts || error == EIO || error == ENOENT;
    long nth = 1;
    for (;; nth += isEach ? 1 : 7) {
        QProcess program;
        run(program, { option },
            u"%1 %2 %2 %3"_s.arg(QString::fromLatin1(call)).arg(nth).arg(error));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        const QByteArray output = program.readAllStandardOutput();
        QStringList complaints =
            QString::fromUtf8(program.readAllStandardError()).split(u'\n', Qt::SkipEmptyParts);
        if (complaints.removeAll(u"failed"_s) == 0)
            break;
        for (const QString& line : std::as_const(complaints))
            QVERIFY2(line.startsWith(u"vlfolio-classify: "_s), qPrintable(line));
        if (program.exitCode() != 0) {
            QVERIFY(!complaints.isEmpty());
            QVERIFY(option == u"--json" || output.isEmpty());
            continue;
        }
        const QStringList wrong =
            m_tree.unexplained(option == u"--json" ? foldersIn(output) : m_tree.reported(),
                               toldPaths(complaints), goneFor(call, error));
        QVERIFY2(wrong.isEmpty(), qPrintable(u"%1: "_s.arg(nth) + wrong.join(u"; "_s)));
    }
    QVERIFY(nth > 1);
}

void tst_failing_calls::programReadsEachFolder_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<qsizetype>("ofRoot");

    // Whether the root can be read is tried ahead of all. For the report it is listed again when
    // its files are counted, and opened once more: the file is made in what was opened.
    QTest::newRow("list_once") << QStringList { u"--list"_s } << qsizetype(2);
    QTest::newRow("summary_once") << QStringList { u"--summary"_s } << qsizetype(2);
    QTest::newRow("json_once") << QStringList { u"--json"_s } << qsizetype(2);
    QTest::newRow("page_once") << QStringList { u"--page=%1/page"_s.arg(m_tree.root()) }
                               << qsizetype(4);
    QTest::newRow("report_once") << QStringList { u"--no-open"_s } << qsizetype(4);
}

void tst_failing_calls::programReadsEachFolder()
{
    QFETCH(const QStringList, options);
    QFETCH(const qsizetype, ofRoot);

    // To the walk it comes after K/L, to the report ahead of it.
    const QString sibling = m_tree.root() + u"/K-"_s;
    QVERIFY(QDir().mkdir(sibling));
    QProcess program;
    run(program, options, u"open 1 %1 0"_s.arg(forGood));
    QFile::remove(m_tree.root() + u"/page"_s);
    QVERIFY(QDir().rmdir(sibling));
    QCOMPARE(program.exitCode(), 0);
    const QStringList opened =
        QString::fromUtf8(program.readAllStandardError()).split(u'\n', Qt::SkipEmptyParts);
    QCOMPARE(opened.count(u"open "_s + m_tree.root()), ofRoot);
    QCOMPARE(opened.count(u"open "_s + sibling), 1);
    const auto folders = m_tree.folders().mid(1);
    for (const FoundFolder& folder : folders)
        QCOMPARE(opened.count(u"open "_s + folder.path), 1);
}

void tst_failing_calls::constructorAsksTheSystemForNothing()
{
    for (const char* const call : { "access", "open", "realpath", "stat" }) {
        arm(call, forGood, forGood, EIO, m_tree.root());
        const VLFolioEventClassifier subject { QFileInfo(m_tree.root()) };
        QCOMPARE(vlFailingCallCount(), 0);
    }
    QVERIFY(QFileInfo(m_tree.root()).isDir());
    QVERIFY(vlFailingCallCount() > 0);
    vlDisarmFailingCall();
}

// One refused write would be made good when the file is closed.
void tst_failing_calls::fullDiskLeavesAnEmptyReport()
{
    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier subject { QFileInfo(m_tree.root()) };
    arm("write", 1, forGood, ENOSPC, m_tree.root());
    subject.start();
    QVERIFY(vlDisarmFailingCall() != nullptr);
    QVERIFY(QFile::exists(m_tree.reportPath()));
    QCOMPARE(ReportText::fileContents(m_tree.reportPath()), QByteArray());
    QCOMPARE(recorder.texts().filter(u"Could not write"_s), QStringList());
    QCOMPARE(platform.calls.constLast(), u"openFile "_s + m_tree.reportPath());
    subject.start();
    QCOMPARE(m_tree.unexplained(m_tree.reported(), {}, {}), QStringList());
}

void tst_failing_calls::listingThatBreaksOffIsTold_data()
{
    QTest::addColumn<int>("error");

    QTest::newRow("EIO") << EIO;
    // To readdir(), the end of the directory.
    QTest::newRow("ENOENT") << ENOENT;
}

void tst_failing_calls::listingThatBreaksOffIsTold()
{
    QFETCH(const int, error);

    // More than one reading brings.
    constexpr int count = 1'000;
    RawDirectory directory;
    for (int number = 0; number < count; ++number)
        directory.folder(QByteArray(100, 'x') + QByteArray::number(number));
    QVERIFY2(directory.isValid(), directory.error());
    const RecordingPlatform platform;
    arm("getdents64", 2, 2, error, directory.path());
    const QStringList found = platform.getDirectSubdirectoriesInDirectory(QDir(directory.path()));
    QVERIFY(vlDisarmFailingCall() != nullptr);
    QVERIFY(!found.isEmpty() && found.size() < count);
    QCOMPARE(platform.incomplete.size(), 1);
    QCOMPARE(platform.incomplete.constFirst().problem,
             RecordingPlatform::ListingProblem::Unreadable);
    QCOMPARE(platform.incomplete.constFirst().systemError, error);
}

void tst_failing_calls::lackOfMemoryIsBadAlloc_data()
{
    QTest::addColumn<QByteArray>("call");

    QTest::newRow("opening") << QByteArray("open");
    QTest::newRow("reading") << QByteArray("getdents64");
    QTest::newRow("asking_about_a_link") << QByteArray("stat");
}

// Never a shorter list.
void tst_failing_calls::lackOfMemoryIsBadAlloc()
{
    QFETCH(const QByteArray, call);

    const RecordingPlatform platform;
    const QDir directory(m_tree.root());
    arm(call, 1, forGood, ENOMEM, m_tree.root());
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc,
                             static_cast<void>(platform.getDirectFilesInDirectory(directory)));
    QVERIFY_THROWS_EXCEPTION(
        std::bad_alloc, static_cast<void>(platform.getDirectSubdirectoriesInDirectory(directory)));
    QVERIFY(vlDisarmFailingCall() != nullptr);
}

// As on some file systems. QDir then asks for each, too.
void tst_failing_calls::fileTypesThatAreNotTold()
{
    RawDirectory directory({ "folder/", "file", "pipe|", "socket=", "to folder -> folder",
                             "to file -> file", "to pipe -> pipe", "to socket -> socket",
                             "to device -> /dev/null", "to link -> to folder",
                             "dangling -> nowhere", "circle -> circle", ".hidden/", ".file" });
    const RecordingPlatform platform;
    arm("kind", 1, forGood, 0, directory.path());
    QStringList files = platform.getDirectFilesInDirectory(QDir(directory.path()));
    QStringList folders = platform.getDirectSubdirectoriesInDirectory(QDir(directory.path()));
    QVERIFY(vlDisarmFailingCall() != nullptr);
    files.sort();
    folders.sort();
    QCOMPARE(files, (QStringList { u"file"_s, u"to file"_s }));
    QCOMPARE(folders,
             QDir(directory.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name));
    QCOMPARE(folders.size(), 6);
    QVERIFY(platform.incomplete.isEmpty());
}

void tst_failing_calls::folderThatMayBeReadButNotEntered_data()
{
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<QStringList>("folders");

    QTest::newRow("file_types_told") << QByteArray("nothing") << QStringList { u"folder"_s };
    QTest::newRow("file_types_not_told") << QByteArray("kind") << QStringList();
}

// One word is said for all of its entries.
void tst_failing_calls::folderThatMayBeReadButNotEntered()
{
    QFETCH(const QByteArray, call);
    QFETCH(const QStringList, folders);

    RawDirectory directory;
    directory.make({ "file", "other", "folder/", "to file -> file", "to folder -> folder" });
    QVERIFY2(directory.restrict({}, 0444).isValid(), directory.error());
    const RecordingPlatform platform;
    QStringList found;
    bool isActive = false;
    arm(call, 1, forGood, 0, directory.path());
    {
        const UnprivilegedUser user;
        isActive = user.isActive();
        found = platform.getDirectSubdirectoriesInDirectory(QDir(directory.path()));
    }
    vlDisarmFailingCall();
    if (!isActive)
        QSKIP("The superuser cannot give up its rights here: run the test as another user");
    QCOMPARE(found, folders);
    QCOMPARE(platform.incomplete.size(), 1);
    QCOMPARE(platform.incomplete.constFirst().problem,
             RecordingPlatform::ListingProblem::Unsearchable);
    QCOMPARE(platform.incomplete.constFirst().systemError, EACCES);
}

// That it may not be entered is no reason for an error of the disk, nor for a name.
void tst_failing_calls::otherProblemsStayInFolderThatMayNotBeEntered()
{
    RawDirectory directory;
    directory.make({ "\xff/", "one -> .", "two -> ." });
    QVERIFY2(directory.restrict({}, 0444).isValid(), directory.error());
    const RecordingPlatform platform;
    bool isActive = false;
    arm("stat", 1, 1, EIO, directory.path());
    {
        const UnprivilegedUser user;
        isActive = user.isActive();
        QCOMPARE(platform.getDirectSubdirectoriesInDirectory(QDir(directory.path())),
                 QStringList());
    }
    vlDisarmFailingCall();
    if (!isActive)
        QSKIP("The superuser cannot give up its rights here: run the test as another user");
    using Problem = RecordingPlatform::ListingProblem;
    QMap<Problem, int> errorOf;
    for (const RecordingPlatform::Incomplete& one : std::as_const(platform.incomplete))
        errorOf.insert(one.problem, one.systemError);
    QCOMPARE(errorOf,
             (QMap<Problem, int> { { Problem::Unsearchable, EACCES },
                                   { Problem::UnknownEntry, EIO },
                                   { Problem::UndecodableName, 0 } }));
    QCOMPARE(platform.incomplete.size(), 3);
}

void tst_failing_calls::expressionThatCannotBeCompiledIsTriedAgain_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("year") << u"2019"_s;
    QTest::newRow("date") << u"99.99.99"_s;
}

void tst_failing_calls::expressionThatCannotBeCompiledIsTriedAgain()
{
    QFETCH(const QString, name);

    const auto matches = [&name] {
        return name == u"2019" ? classifier().matchesYear(name) : classifier().matchesDate(name);
    };
    {
        // Qt warns of a search with such an expression.
        const MessageRecorder recorder;
        arm("compile", 1, forGood, ENOMEM, u"expression"_s);
        QVERIFY_THROWS_EXCEPTION(std::bad_alloc, static_cast<void>(matches()));
        QVERIFY(vlDisarmFailingCall() != nullptr);
    }
    QVERIFY(matches());
}

void tst_failing_calls::expressionIsCompiledOnce()
{
    QVERIFY(classifier().matchesDate(u"99.99.99"_s));
    QVERIFY(classifier().matchesYear(u"2019"_s));
    arm("compile", forGood, forGood, ENOMEM, u"expression"_s);
    QVERIFY(classifier().matchesDate(u"98.99.99"_s));
    QVERIFY(classifier().matchesYear(u"2018"_s));
    QCOMPARE(vlFailingCallCount(), 0);
    QVERIFY(QRegularExpression(u"a"_s).match(u"a"_s).hasMatch());
    QCOMPARE(vlFailingCallCount(), 1);
    vlDisarmFailingCall();
}

void tst_failing_calls::searchWithoutMemoryIsBadAlloc_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("year") << u"2019"_s;
    QTest::newRow("year_in_text") << u"Summer 2019"_s;
    QTest::newRow("date") << u"99.99.99"_s;
    QTest::newRow("six_digits_and_no_date") << u"123456"_s;
}

void tst_failing_calls::searchWithoutMemoryIsBadAlloc()
{
    QFETCH(const QString, name);

    const auto type = classifier().eventFolderType(name);
    arm("search", 1, forGood, ENOMEM, u"expression"_s);
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc, static_cast<void>(classifier().eventFolderType(name)));
    QVERIFY(vlDisarmFailingCall() != nullptr);
    QVERIFY(classifier().eventFolderType(name) == type);
}

void tst_failing_calls::loneSurrogateIsNoLackOfMemory()
{
    arm("search", 1, forGood, ENOMEM, u"expression"_s);
    const QChar half(0xd83d);
    QVERIFY(!classifier().matchesYear(u"2019"_s + half));
    QVERIFY(!classifier().matchesDate(u"99.99.99"_s + half));
    vlDisarmFailingCall();
}

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    allAttempts = arguments.removeAll(u"--all"_s) > 0;
    tst_failing_calls test;
    return QTest::qExec(&test, arguments);
}

#include "tst_failing_calls.moc"
