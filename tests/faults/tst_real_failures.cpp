#include "FaultTree.h"
#include "MessageRecorder.h"
#include "RecordingPlatform.h"
#include "UnprivilegedUser.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtTest/QTest>

#include <array>
#include <csignal>
#include <memory>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr auto reportName = "/vela.classification.results.html"_L1;

// A small file system in memory over a directory, which only this process sees.
class SmallFileSystem
{
public:
    SmallFileSystem(const QString& directory, const char* options)
        : m_directory(directory.toUtf8())
    {
        QDir().mkpath(directory);
        m_active = unshare(CLONE_NEWNS) == 0
            && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
            && mount("tmpfs", m_directory.constData(), "tmpfs", 0, options) == 0;
    }
    ~SmallFileSystem()
    {
        if (m_active)
            umount2(m_directory.constData(), MNT_DETACH);
    }
    Q_DISABLE_COPY_MOVE(SmallFileSystem)

    [[nodiscard]] bool isActive() const { return m_active; }
    [[nodiscard]] bool makeReadOnly() const
    {
        return mount("none", m_directory.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr)
            == 0;
    }

private:
    QByteArray m_directory;
    bool m_active = false;
};

// Takes all the room that is left.
bool fill(const QString& path)
{
    const int file = open(path.toUtf8().constData(), O_WRONLY | O_CREAT, 0600);
    static constexpr std::array<char, 512> block {};
    while (write(file, block.data(), block.size()) > 0) { }
    return file >= 0 && close(file) == 0;
}

// Makes files until there can be no more.
void takeAllFiles(const QString& directory)
{
    for (int i = 0;; ++i) {
        const QString path = directory + u"/filler%1"_s.arg(i);
        const int file = open(path.toUtf8().constData(), O_WRONLY | O_CREAT, 0600);
        if (file < 0)
            return;
        close(file);
    }
}

// The texts of all messages of a run.
QStringList messagesOfRun(const QString& root)
{
    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(root)).start();
    QStringList texts;
    const auto messages = recorder.messages();
    for (const MessageRecorder::Message& message : messages)
        texts.append(message.text);
    return texts;
}

QString removal(const QString& root, QLatin1StringView succeeded)
{
    return u"removing file \""_s + root + reportName + u"\" succeeded:  "_s + succeeded;
}

QString refusal(const QString& root, QLatin1StringView text)
{
    return u"Could not write to file QFileInfo("_s + root + reportName + u") 5 \""_s + text + u'"';
}

// Makes, renames, fills and removes folders in the current directory until it is killed.
[[noreturn]] void disturb()
{
    for (;;) {
        mkdir("2018", 0700);
        mkdir("2018/07", 0700);
        mkdir("2018/07/deep", 0700);
        close(open("2018/07/deep/e.jpg", O_WRONLY | O_CREAT, 0600));
        rename("2018/07", "2018/08");
        rename("2018", "2017");
        rename("2017/08/deep", "2017/deep");
        unlink("2017/deep/e.jpg");
        rmdir("2017/deep");
        rmdir("2017/08");
        rmdir("2017");
    }
}

// A process that changes a directory for as long as it lives.
class Disturber
{
public:
    explicit Disturber(const QString& directory)
        : m_path(directory.toUtf8())
        , m_process(fork())
    {
        if (m_process != 0)
            return;
        if (chdir(m_path.constData()) != 0)
            _exit(EXIT_FAILURE);
        disturb();
    }
    ~Disturber() { stop(); }
    Q_DISABLE_COPY_MOVE(Disturber)

    // False when it had not been at work until now.
    bool stop()
    {
        if (m_process <= 0)
            return false;
        kill(m_process, SIGKILL);
        int status = 0;
        waitpid(m_process, &status, 0);
        m_process = 0;
        return WIFSIGNALED(status);
    }

private:
    QByteArray m_path;
    pid_t m_process;
};

// What may come and go while the disturber is at work: it always has a name of its own.
bool isVolatile(const QString& path, const QString& root)
{
    return path.startsWith(root + u"/2018"_s) || path.startsWith(root + u"/2017"_s);
}

} // namespace

class tst_real_failures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void fullFileSystem();
    void noFileCanBeMade();
    void readOnlyFileSystem();
    void unreadableFolder();
    void foldersThatComeAndGo();
    void directoryOfTheReportsName();
    void linkOfTheReportsName();
    void hostOnLinkOfTheReportsName();

private:
    std::unique_ptr<FaultTree> m_tree;
};

void tst_real_failures::init()
{
    m_tree = std::make_unique<FaultTree>();
}

void tst_real_failures::fullFileSystem()
{
    const QString root = m_tree->root();
    const SmallFileSystem disk(root, "size=64k");
    if (!disk.isActive())
        QSKIP("No file system can be mounted here");
    QVERIFY(m_tree->make());
    QVERIFY(fill(root + u"/filler"_s));

    // Nobody looks at how the writing went.
    QCOMPARE(messagesOfRun(root), QStringList { u"startClassifyEvent"_s });
    QCOMPARE(ReportText::fileContents(m_tree->reportPath()), QByteArray(""));

    QVERIFY(QFile::remove(root + u"/filler"_s));
    QCOMPARE(messagesOfRun(root),
             (QStringList { u"startClassifyEvent"_s, removal(root, "true"_L1) }));
    QCOMPARE(ReportText::fileContents(m_tree->reportPath()), m_tree->report());
}

void tst_real_failures::noFileCanBeMade()
{
    const QString root = m_tree->root();
    const SmallFileSystem disk(root, "size=1m,nr_inodes=40");
    if (!disk.isActive())
        QSKIP("No file system can be mounted here");
    QVERIFY(m_tree->make());
    takeAllFiles(root);

    QCOMPARE(
        messagesOfRun(root),
        (QStringList { u"startClassifyEvent"_s, refusal(root, "No space left on device"_L1) }));
    QVERIFY(!QFile::exists(m_tree->reportPath()));
}

void tst_real_failures::readOnlyFileSystem()
{
    const QString root = m_tree->root();
    const SmallFileSystem disk(root, "size=1m");
    if (!disk.isActive())
        QSKIP("No file system can be mounted here");
    QVERIFY(m_tree->make());
    QVERIFY(ReportText::writeFile(m_tree->reportPath(), "old"));
    QVERIFY(disk.makeReadOnly());

    QCOMPARE(messagesOfRun(root),
             (QStringList { u"startClassifyEvent"_s, removal(root, "false"_L1),
                            refusal(root, "Read-only file system"_L1) }));
    QCOMPARE(ReportText::fileContents(m_tree->reportPath()), QByteArray("old"));
}

void tst_real_failures::unreadableFolder()
{
    QVERIFY(m_tree->make());
    const QByteArray folder = m_tree->path("2019/Sommer").toUtf8();
    QCOMPARE(chmod(folder.constData(), 0000), 0);
    // The report's directory and those above it are open to the user without rights.
    QCOMPARE(chmod(m_tree->root().toUtf8().constData(), 0777), 0);
    QCOMPARE(chmod(QFileInfo(m_tree->root()).path().toUtf8().constData(), 0755), 0);
    QStringList messages;
    {
        const UnprivilegedUser user;
        if (!user.isActive())
            QSKIP("The superuser cannot become another user here");
        messages = messagesOfRun(m_tree->root());
    }
    QCOMPARE(chmod(folder.constData(), 0700), 0);

    QCOMPARE(messages, QStringList { u"startClassifyEvent"_s });
    QByteArray wanted = m_tree->report();
    wanted.replace(ReportText::row("Event", "/2019/Sommer", "1", "no data"),
                   ReportText::row("Event", "/2019/Sommer", "0", "no data"));
    wanted.replace(ReportText::row("Day", "/2019/Sommer/2019-07-14", "0", "no data"), "");
    QCOMPARE(ReportText::fileContents(m_tree->reportPath()), wanted);
}

void tst_real_failures::foldersThatComeAndGo()
{
    QVERIFY(m_tree->make());
    QStringList wanted;
    const auto folders = m_tree->folders();
    for (const FaultTree::Folder& folder : folders)
        wanted.append(folder.path + u' ' + folder.type);

    Disturber disturber(m_tree->root());
    const QFileInfo root(m_tree->root());
    int walks = 0;
    int seen = 0;
    QElapsedTimer timer;
    constexpr qint64 milliseconds = 2000;
    for (timer.start(); timer.elapsed() < milliseconds; ++walks) {
        QStringList found;
        const auto results = VLFolioEventClassifier(root).eventFolderTypes(
            root, VLEventFolderClassificationResult());
        for (const VLEventFolderClassificationResult& result : results) {
            const QString path = result.directory().absoluteFilePath();
            if (isVolatile(path, m_tree->root()))
                ++seen;
            else
                found.append(path + u' ' + typeName(result.classification().value()));
        }
        QCOMPARE(found, wanted);
        const QStringList messages = messagesOfRun(m_tree->root());
        QCOMPARE(messages.constFirst(), u"startClassifyEvent"_s);
        QCOMPARE(messages.mid(1),
                 walks == 0 ? QStringList() : QStringList { removal(m_tree->root(), "true"_L1) });
        const QByteArray report = ReportText::fileContents(m_tree->reportPath());
        QVERIFY(report.startsWith(ReportText::lines(1, 20)));
        QVERIFY(report.endsWith(ReportText::lines(21, 23)));
    }
    QVERIFY(disturber.stop());
    QVERIFY(seen > 0);
    qInfo("%d walks and runs, in which %d folders came and went", walks, seen);

    for (const auto name : { "2018", "2017" })
        QVERIFY(QDir(m_tree->path(name)).removeRecursively());
    messagesOfRun(m_tree->root());
    QCOMPARE(ReportText::fileContents(m_tree->reportPath()), m_tree->report());
}

void tst_real_failures::directoryOfTheReportsName()
{
    QVERIFY(m_tree->make());
    const QString root = m_tree->root();
    QVERIFY(QDir().mkpath(m_tree->reportPath() + u"/kept"_s));

    QCOMPARE(messagesOfRun(root),
             (QStringList { u"startClassifyEvent"_s, removal(root, "false"_L1),
                            refusal(root, "Is a directory"_L1) }));
    QVERIFY(QFileInfo(m_tree->reportPath() + u"/kept"_s).isDir());
}

void tst_real_failures::linkOfTheReportsName()
{
    QVERIFY(m_tree->make());
    const QString root = m_tree->root();
    const QString target = root + u"/../elsewhere"_s;
    QVERIFY(ReportText::writeFile(target, "kept"));
    QVERIFY(QFile::link(target, m_tree->reportPath()));

    QCOMPARE(messagesOfRun(root),
             (QStringList { u"startClassifyEvent"_s, removal(root, "true"_L1) }));
    QCOMPARE(ReportText::fileContents(target), QByteArray("kept"));
    QVERIFY(!QFileInfo(m_tree->reportPath()).isSymLink());
    QCOMPARE(ReportText::fileContents(m_tree->reportPath()), m_tree->report());
}

void tst_real_failures::hostOnLinkOfTheReportsName()
{
#if defined(VLFOLIO_PROGRAM)
    QVERIFY(m_tree->make());
    const QString target = m_tree->root() + u"/../elsewhere"_s;
    QVERIFY(ReportText::writeFile(target, "kept"));
    QVERIFY(QFile::link(target, m_tree->reportPath()));

    QProcess program;
    program.start(QStringLiteral(VLFOLIO_PROGRAM), { u"--no-open"_s, m_tree->root() });
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(program.readAllStandardError(), QByteArray(""));
    QCOMPARE(program.readAllStandardOutput(), m_tree->reportPath().toUtf8() + '\n');
    QCOMPARE(ReportText::fileContents(target), QByteArray("kept"));
    QCOMPARE(ReportText::fileContents(m_tree->reportPath()), m_tree->report());
#else
    QSKIP("Built without the program");
#endif
}

QTEST_GUILESS_MAIN(tst_real_failures)

#include "tst_real_failures.moc"
