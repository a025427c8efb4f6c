#include "RawDirectory.h"
#include "RecordingPlatform.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#if defined(Q_OS_LINUX)
#    include <sys/sysmacros.h>
#endif

using namespace Qt::StringLiterals;

using Result = VLEventFolderClassificationResult;

namespace {

constexpr auto reportName = "vela.classification.results.html";

QStringList walkedPaths(const QString& root)
{
    QStringList paths;
    const QFileInfo directory(root);
    const QList<Result> results =
        VLFolioEventClassifier(directory).eventFolderTypes(directory, Result());
    for (const Result& result : results)
        paths.append(result.directory().absoluteFilePath().mid(root.size()));
    return paths;
}

QByteArray reportOf(const RawDirectory& tree)
{
    RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(tree.path())).start();
    QFile report(QFile::decodeName(tree.bytes(reportName)));
    return QFileInfo(report).isFile() && report.open(QIODevice::ReadOnly) ? report.readAll()
                                                                          : QByteArray();
}

// The device that takes everything, and a disk that is not there. Only the superuser makes them.
bool makeDevices(const RawDirectory& tree)
{
#if defined(Q_OS_LINUX)
    return mknod(tree.bytes("2019/character").constData(), S_IFCHR | 0600, makedev(1, 3)) == 0
        && mknod(tree.bytes("2019/block").constData(), S_IFBLK | 0600, makedev(7, 255)) == 0;
#else
    Q_UNUSED(tree)
    return false;
#endif
}

} // namespace

class tst_hostile_pipes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void pipesAndSocketsAreNeitherFoldersNorFiles();
    void devicesAreNeitherFoldersNorFiles();
    void linksToThemAreListedLikeFoldersByQt();
    void rootIsAPipe();
    void pipeUnderTheReportsName();
    void linkToAPipeUnderTheReportsName();
};

void tst_hostile_pipes::init()
{
    QTest::failOnWarning(QRegularExpression(u".?"_s));
}

void tst_hostile_pipes::pipesAndSocketsAreNeitherFoldersNorFiles()
{
    RawDirectory tree;
    tree.folder("2019").fifo("2019/a.jpg").socket("2019/b.jpg").file("2019/c.jpg");
    tree.link("2019/d.jpg", "c.jpg").folder("2019/e.jpg").link("2019/f.jpg", "e.jpg");
    QVERIFY2(tree.isValid(), std::strerror(errno));

    const QStringList expected { u""_s, u"/2019"_s, u"/2019/e.jpg"_s, u"/2019/f.jpg"_s };
    QCOMPARE(walkedPaths(tree.path()), expected);
    const QByteArray report = reportOf(tree);
    QVERIFY(report.contains("<td>/2019</td>\n\t\t\t\t<td>2</td>\n"));
    QVERIFY(report.endsWith("</html>\n"));
}

void tst_hostile_pipes::devicesAreNeitherFoldersNorFiles()
{
    RawDirectory tree;
    tree.folder("2019").file("2019/c.jpg");
    QVERIFY(tree.isValid());
    if (!makeDevices(tree))
        QSKIP("Only the superuser of some systems makes devices");

    QCOMPARE(walkedPaths(tree.path()), (QStringList { u""_s, u"/2019"_s }));
    QVERIFY(reportOf(tree).contains("<td>/2019</td>\n\t\t\t\t<td>1</td>\n"));
}

// QDir::Dirs leaves out links to files alone. Nothing is below such a "folder".
void tst_hostile_pipes::linksToThemAreListedLikeFoldersByQt()
{
    RawDirectory tree;
    tree.fifo("pipe").socket("socket").link("to_pipe", "pipe").link("to_socket", "socket");
    tree.link("to_null", "/dev/null").link("to_zero", "/dev/zero").link("to_tty", "/dev/tty");
    QVERIFY(tree.isValid());

    const QStringList expected { u""_s,           u"/to_null"_s, u"/to_pipe"_s,
                                 u"/to_socket"_s, u"/to_tty"_s,  u"/to_zero"_s };
    QCOMPARE(walkedPaths(tree.path()), expected);
    const QByteArray report = reportOf(tree);
    QCOMPARE(report.count("<td>0</td>\n"), 5);
    QVERIFY(report.endsWith("</html>\n"));
}

void tst_hostile_pipes::rootIsAPipe()
{
    RawDirectory tree;
    tree.fifo("2019");
    QVERIFY(tree.isValid());

    QCOMPARE(walkedPaths(tree.path() + u"/2019"_s), QStringList { u""_s });
}

void tst_hostile_pipes::pipeUnderTheReportsName()
{
    RawDirectory tree;
    tree.fifo(reportName);
    QVERIFY(tree.isValid());

    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(u"^removing file .* true$"_s));
    QVERIFY(reportOf(tree).endsWith("</html>\n"));
}

void tst_hostile_pipes::linkToAPipeUnderTheReportsName()
{
    RawDirectory tree;
    tree.fifo("pipe").link(reportName, "pipe");
    QVERIFY(tree.isValid());

    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(u"^removing file .* true$"_s));
    QVERIFY(reportOf(tree).endsWith("</html>\n"));
    struct stat status
    {
    };
    QCOMPARE(stat(tree.bytes("pipe").constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
}

QTEST_GUILESS_MAIN(tst_hostile_pipes)
#include "tst_hostile_pipes.moc"
