#include "FailingCalls.h"
#include "FaultTree.h"
#include "MessageRecorder.h"
#include "RawDirectory.h"
#include "RecordingPlatform.h"
#include "UnprivilegedUser.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtTest/QTest>

#include <algorithm>
#include <array>
#include <cerrno>
#include <initializer_list>
#include <limits>
#include <new>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

struct Error
{
    const char* name = nullptr;
    int number = 0;
    QLatin1StringView text;
    /// What QFile makes of it when a file cannot be opened.
    int openCode = 0;
};

constexpr std::array errors {
    Error { "EACCES", EACCES, "Permission denied"_L1, 5 },
    Error { "EIO", EIO, "Input/output error"_L1, 5 },
    Error { "ENOENT", ENOENT, "No such file or directory"_L1, 5 },
    Error { "ENOSPC", ENOSPC, "No space left on device"_L1, 5 },
    Error { "EMFILE", EMFILE, "Too many open files"_L1, 4 },
    // A call that was interrupted is made again.
    Error { "EINTR", EINTR, ""_L1, 0 },
};

bool allAttempts = false;

// Each of the calls with every error.
void addFaults(std::initializer_list<const char*> calls)
{
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<Error>("error");
    for (const auto* const call : calls) {
        for (const Error& error : errors)
            QTest::addRow("%s_%s", call, error.name) << QByteArray(call) << error;
    }
}

// The folder that may lack something: the one that was told, or that of a link whose target seems
// not to be there, which loses nothing.
QString folderWithLoss(const RecordingPlatform& platform, const QByteArray& call, int error,
                       const QString& failed)
{
    if (platform.incomplete.isEmpty() && call == "stat" && error == ENOENT)
        return QFileInfo(failed).path();
    return platform.incomplete.value(0);
}

QStringList messageTexts(const MessageRecorder& recorder)
{
    QStringList texts;
    const auto messages = recorder.messages();
    for (const MessageRecorder::Message& message : messages)
        texts.append(message.text);
    return texts;
}

bool isBelow(const QString& path, const QString& directory)
{
    return path.startsWith(directory + u'/');
}

using Folder = FaultTree::Folder;

QList<Folder> walked(const QString& root)
{
    QList<Folder> found;
    const auto results =
        VLFolioEventClassifier(QFileInfo(root))
            .eventFolderTypes(QFileInfo(root), VLEventFolderClassificationResult());
    for (const VLEventFolderClassificationResult& result : results) {
        found.append({ result.directory().absoluteFilePath(),
                       typeName(result.classification().value()), 0 });
    }
    return found;
}

// The rows of a report; nothing if it is not one from its first to its last byte.
QList<Folder> rowsOf(const QByteArray& report, const QString& root)
{
    static const QRegularExpression row(
        u"<tr class=(\\w*)>\\s*<td>\\w*</td>\\s*<td>(.*)</td>\\s*<td>(\\d+)</td>"_s);
    QList<Folder> rows;
    QByteArrayList texts;
    for (auto matches = row.globalMatch(QString::fromUtf8(report)); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const QString shown = match.captured(2);
        texts.append(ReportText::row(match.captured(1).toUtf8(), shown.toUtf8(),
                                     match.captured(3).toUtf8(), "no data"));
        rows.append(
            { shown == root ? root : root + shown, match.captured(1), match.captured(3).toInt() });
    }
    return report == ReportText::report(texts) ? rows : QList<Folder>();
}

// What \a found lacks, with the files of \a failed not counted, that does not stand below \a
// failed; and what it has beyond \a wanted. Both empty the list when all is well.
QStringList differences(const QList<Folder>& found, const QList<Folder>& wanted,
                        const QString& failed)
{
    QStringList texts;
    const auto indexOf = [](const QList<Folder>& folders, const Folder& wantedFolder) {
        return std::find_if(
            folders.cbegin(), folders.cend(), [&wantedFolder](const Folder& folder) {
                return folder.path == wantedFolder.path && folder.type == wantedFolder.type;
            });
    };
    for (const Folder& folder : wanted) {
        const auto same = indexOf(found, folder);
        const bool mayLack = isBelow(folder.path, failed);
        if (same == found.cend() && !mayLack)
            texts.append(u"lacks "_s + folder.path + u' ' + folder.type);
        const bool mayMiscount = mayLack || folder.path == failed;
        if (same != found.cend() && same->fileCount != folder.fileCount && !mayMiscount)
            texts.append(u"counts %1 in "_s.arg(same->fileCount) + folder.path);
    }
    for (const Folder& folder : found) {
        if (indexOf(wanted, folder) == wanted.cend())
            texts.append(u"has "_s + folder.path + u' ' + folder.type);
    }
    return texts;
}

// The program's one line on a folder that it could not count the files of.
bool isAboutFolder(const QString& complaint, const QList<Folder>& folders)
{
    return std::any_of(folders.cbegin(), folders.cend(), [&complaint](const Folder& folder) {
        return complaint.startsWith(u"vlfolio-classify: cannot read "_s + folder.path + u": "_s)
            || complaint.startsWith(u"vlfolio-classify: "_s + folder.path + u" holds an entry "_s);
    });
}

} // namespace

Q_DECLARE_METATYPE(Error)

class tst_failing_calls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void walk_data() { addFaults({ "close", "open", "getdents64", "realpath", "stat" }); }
    void walk();
    void run_data() { addFaults({ "close", "open", "getdents64", "stat", "unlink", "write" }); }
    void run();
    void fullDisk();
    void kindsThatAreNotTold();
    void listingWithoutKindsOrRightsHasNoFiles();
    void listingThatBreaksOffIsTold();
    void listingWithoutMemory();
    void host_data()
    {
        addFaults(
            { "access", "close", "open", "getdents64", "realpath", "stat", "unlink", "write" });
    }
    void host();

private:
    void checkRun(const QByteArray& call, const Error& error, const QString& failed,
                  const QString& lost, const QStringList& messages);

    FaultTree m_tree;
};

void tst_failing_calls::initTestCase()
{
    QVERIFY(m_tree.make());
}

void tst_failing_calls::walk()
{
    QFETCH(const QByteArray, call);
    QFETCH(const Error, error);
    QList<Folder> wanted = m_tree.folders();
    for (Folder& folder : wanted)
        folder.fileCount = 0;
    const QByteArray root = m_tree.root().toUtf8();

    int failures = 0;
    for (long nth = 1;; ++nth) {
        const MessageRecorder recorder;
        const RecordingPlatform platform;
        vlArmFailingCall(call.constData(), nth, nth, error.number, root.constData());
        const QList<Folder> found = walked(m_tree.root());
        const char* const failed = vlDisarmFailingCall();
        if (failed == nullptr)
            break;
        ++failures;
        const QString lost =
            folderWithLoss(platform, call, error.number, QString::fromUtf8(failed));
        const QStringList wrong = differences(found, wanted, lost);
        QVERIFY2(wrong.isEmpty(),
                 qPrintable(u"%1 at %2: "_s.arg(nth).arg(QString::fromUtf8(failed))
                            + wrong.join(u"; "_s)));
        QCOMPARE(messageTexts(recorder), QStringList());
        QCOMPARE(walked(m_tree.root()), wanted);
    }
    if (call == "getdents64")
        QVERIFY(failures >= static_cast<int>(wanted.size()));
    QVERIFY(failures > 0);
    qInfo("%d failures", failures);
}

void tst_failing_calls::checkRun(const QByteArray& call, const Error& error, const QString& failed,
                                 const QString& lost, const QStringList& messages)
{
    const QString report = m_tree.reportPath();
    const QString start = u"startClassifyEvent"_s;
    const QString removal = u"removing file \""_s + report + u"\" succeeded:  "_s;
    const bool repeated = error.number == EINTR;

    if (call == "open" && failed == report && !repeated) {
        const QString refusal = u"Could not write to file QFileInfo("_s + report
            + u") %1 \"%2\""_s.arg(error.openCode).arg(error.text);
        QCOMPARE(messages, (QStringList { start, removal + u"true"_s, refusal }));
        QVERIFY(!QFile::exists(report));
        return;
    }
    if (call == "unlink")
        QCOMPARE(messages, (QStringList { start, removal + u"false"_s }));
    else if (call == "stat" && failed == report && messages.size() == 1)
        QCOMPARE(messages, QStringList { start });
    else
        QCOMPARE(messages, (QStringList { start, removal + u"true"_s }));

    const QList<Folder> rows = rowsOf(ReportText::fileContents(report), m_tree.root());
    const QStringList wrong = differences(rows, m_tree.folders(), lost);
    QVERIFY2(wrong.isEmpty(), qPrintable(failed + u": "_s + wrong.join(u"; "_s)));
}

void tst_failing_calls::run()
{
    QFETCH(const QByteArray, call);
    QFETCH(const Error, error);
    const QByteArray root = m_tree.root().toUtf8();
    VLFolioEventClassifier classifier { QFileInfo(m_tree.root()) };
    {
        const MessageRecorder recorder;
        const RecordingPlatform platform;
        classifier.start();
    }
    const long step = allAttempts || call == "open" || call == "unlink" || call == "write" ? 1 : 5;

    int failures = 0;
    for (long nth = 1;; nth += step) {
        RecordingPlatform platform;
        const char* failed = nullptr;
        {
            const MessageRecorder recorder;
            vlArmFailingCall(call.constData(), nth, nth, error.number, root.constData());
            classifier.start();
            failed = vlDisarmFailingCall();
            if (failed == nullptr)
                break;
            const QString path = QString::fromUtf8(failed);
            checkRun(call, error, path, folderWithLoss(platform, call, error.number, path),
                     messageTexts(recorder));
        }
        if (QTest::currentTestFailed())
            return;
        ++failures;
        QCOMPARE(platform.calls.constLast(), u"openFile "_s + m_tree.reportPath());
        const MessageRecorder recorder;
        classifier.start();
        QCOMPARE(ReportText::fileContents(m_tree.reportPath()), m_tree.report());
    }
    if (call == "unlink" || call == "write")
        QCOMPARE(failures, 1);
    QVERIFY(failures > 0);
    qInfo("%d failures", failures);
}

void tst_failing_calls::fullDisk()
{
    // One refused write is made good when the file is closed. On a full disk all are refused.
    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier classifier { QFileInfo(m_tree.root()) };
    vlArmFailingCall("write", 1, std::numeric_limits<long>::max(), ENOSPC,
                     m_tree.root().toUtf8().constData());
    classifier.start();
    QVERIFY(vlDisarmFailingCall() != nullptr);
    QCOMPARE(ReportText::fileContents(m_tree.reportPath()), QByteArray(""));
    const QStringList messages = messageTexts(recorder);
    QCOMPARE(messages.filter(u"Could not write"_s), QStringList());

    classifier.start();
    QCOMPARE(ReportText::fileContents(m_tree.reportPath()), m_tree.report());
}

void tst_failing_calls::kindsThatAreNotTold()
{
    RawDirectory directory;
    directory.folder("folder").file("file").fifo("pipe").file("undecodable \xff");
    directory.link("to folder", "folder").link("to file", "file").link("to pipe", "pipe");
    directory.link("dangling", "nowhere");
    if (!directory.isValid())
        QSKIP("This file system takes names in UTF-8 only");
    vlArmFailingCall("kind", 1, std::numeric_limits<long>::max(), 0,
                     directory.path().toUtf8().constData());
    QStringList files =
        VLPlatformIndependent::instance()->getDirectFilesInDirectory(QDir(directory.path()));
    QStringList folders = VLPlatformIndependent::instance()->getDirectSubdirectoriesInDirectory(
        QDir(directory.path()));
    QVERIFY(vlDisarmFailingCall() != nullptr);
    files.sort();
    QCOMPARE(files, (QStringList { u"file"_s, u"to file"_s, u"undecodable \uFFFD"_s }));
    folders.sort();
    QCOMPARE(folders, (QStringList { u"folder"_s, u"to folder"_s, u"to pipe"_s }));
}

// Its names can be read, but nothing more be known of them.
void tst_failing_calls::listingWithoutKindsOrRightsHasNoFiles()
{
    RawDirectory directory;
    directory.file("file").folder("folder").link("to file", "file");
    QVERIFY(directory.isValid());
    const QByteArray path = directory.path().toUtf8();
    QStringList files { u"not listed"_s };
    QCOMPARE(chmod(path.constData(), 0444), 0);
    vlArmFailingCall("kind", 1, std::numeric_limits<long>::max(), 0, path.constData());
    bool isActive = false;
    {
        const UnprivilegedUser user;
        const QDir asked(directory.path());
        isActive = user.isActive();
        files = VLPlatformIndependent::instance()->getDirectFilesInDirectory(asked);
    }
    const char* const failed = vlDisarmFailingCall();
    QCOMPARE(chmod(path.constData(), 0700), 0);
    if (!isActive)
        QSKIP("Needs a user without the superuser's rights");
    QVERIFY(failed != nullptr);
    QCOMPARE(files, QStringList());
}

void tst_failing_calls::listingThatBreaksOffIsTold()
{
    const RecordingPlatform platform;
    const QByteArray root = m_tree.root().toUtf8();
    for (const int error : { EIO, ENOENT, EINTR }) {
        const qsizetype before = platform.incomplete.size();
        vlArmFailingCall("getdents64", 1, 1, error, root.constData());
        QCOMPARE(platform.getDirectFilesInDirectory(QDir(m_tree.root())), QStringList());
        QVERIFY(vlDisarmFailingCall() != nullptr);
        QCOMPARE(platform.incomplete.size(), before + 1);
    }
}

void tst_failing_calls::listingWithoutMemory()
{
    const QDir directory(m_tree.root());
    const VLPlatformIndependent* const service = VLPlatformIndependent::instance();
    for (const char* const call : { "open", "getdents64" }) {
        vlArmFailingCall(call, 1, 2, ENOMEM, m_tree.root().toUtf8().constData());
        QVERIFY_THROWS_EXCEPTION(std::bad_alloc,
                                 static_cast<void>(service->getDirectFilesInDirectory(directory)));
        QVERIFY_THROWS_EXCEPTION(
            std::bad_alloc,
            static_cast<void>(service->getDirectSubdirectoriesInDirectory(directory)));
        QVERIFY(vlDisarmFailingCall() != nullptr);
    }
}

void tst_failing_calls::host()
{
#if defined(VLFOLIO_PROGRAM)
    QFETCH(const QByteArray, call);
    QFETCH(const Error, error);
    const QString report = m_tree.reportPath();
    // A program's begin takes long: a few of each will do for the short form.
    const long step = allAttempts ? 1 : call == "open" || call == "write" ? 1 : 13;

    int failures = 0;
    for (long nth = 1;; nth += step) {
        QVERIFY(ReportText::writeFile(report, "old"));
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"LD_PRELOAD"_s, QStringLiteral(VLFOLIO_FAILING_CALLS));
        // Refused for good: one refused write is made good when the file is closed.
        const long last = call == "write" && error.number != EINTR ? 1'000'000 : nth;
        environment.insert(u"VLFOLIO_FAILING_CALL"_s,
                           u"%1 %2 %3 %4 %5"_s.arg(QString::fromLatin1(call))
                               .arg(nth)
                               .arg(last)
                               .arg(error.number)
                               .arg(m_tree.root()));
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(VLFOLIO_PROGRAM), { u"--no-open"_s, m_tree.root() });
        QVERIFY(program.waitForFinished(30'000));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        const QByteArray output = program.readAllStandardOutput();
        QByteArray complaint = program.readAllStandardError();
        const bool touched = complaint.startsWith("failed\n");
        if (!touched)
            break;
        ++failures;
        complaint.remove(0, 7);
        const bool written = !rowsOf(ReportText::fileContents(report), m_tree.root()).isEmpty();
        const QString what = u"%1: exit code %2, '%3', '%4'"_s.arg(nth)
                                 .arg(program.exitCode())
                                 .arg(QString::fromUtf8(output), QString::fromUtf8(complaint));
        if (program.exitCode() == 0) {
            const bool tells = isAboutFolder(QString::fromUtf8(complaint), m_tree.folders());
            QVERIFY2(written && (complaint.isEmpty() || tells), qPrintable(what));
            QCOMPARE(output, report.toUtf8() + '\n');
        } else {
            QCOMPARE(program.exitCode(), 1);
            QVERIFY2(output.isEmpty() && complaint.count('\n') == 1, qPrintable(what));
            QVERIFY2(complaint.startsWith("vlfolio-classify: cannot "), qPrintable(what));
            QVERIFY2(!written || complaint.contains("cannot write the report"), qPrintable(what));
        }
        if (call == "write" && error.number != EINTR)
            QCOMPARE(program.exitCode(), 1);
    }
    QVERIFY(failures > 0);
    qInfo("%d failures", failures);
#else
    QSKIP("Built without the program");
#endif
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
