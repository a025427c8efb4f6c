#include "MessageRecorder.h"
#include "RecordingPlatform.h"
#include "WorkingDirectory.h"

#include <VLFolioEventClassifier/VLClassificationResultsRendererHTML.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

// What start() hands to the renderer, some of which no report shows.
struct Handed
{
    QStringList paths;
    int rootPathLength = 0;
    QStringList nameFilters;
    QString reportPath;
};
QList<Handed> handed; // clazy:exclude=non-pod-global-static

} // namespace

// The program comes first when the library looks for a function: its renderer takes notes.
VLClassificationResultsRendererHTML::VLClassificationResultsRendererHTML(
    const QList<VLEventFolderClassificationResult>& classificationResults, int prefixLength,
    const QStringList& fileNameFilters)
    : results(classificationResults)
    , rootPathLength(prefixLength)
    , nameFilters(fileNameFilters)
{
}

VLClassificationResultsRendererHTML::~VLClassificationResultsRendererHTML() = default;

void VLClassificationResultsRendererHTML::renderToFile(const QFileInfo& reportFile)
{
    Handed all { {}, rootPathLength, nameFilters, reportFile.filePath() };
    for (const VLEventFolderClassificationResult& result : std::as_const(results))
        all.paths.append(result.directory().filePath());
    handed.append(all);
}

class tst_start_renderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { handed.clear(); }
    void rendererGetsTheWholeRun_data();
    void rendererGetsTheWholeRun();
};

void tst_start_renderer::rendererGetsTheWholeRun_data()
{
    QTest::addColumn<bool>("isRelative");

    QTest::newRow("absolute_root") << false;
    QTest::newRow("relative_root") << true;
}

void tst_start_renderer::rendererGetsTheWholeRun()
{
    QFETCH(const bool, isRelative);

    const QTemporaryDir dir;
    const QString above = QFileInfo(dir.path()).canonicalFilePath();
    const QString root = above + u"/pics"_s;
    QVERIFY(QDir(above).mkpath(u"pics/2019/b"_s));
    QVERIFY(QDir(above).mkpath(u"pics/2019/a"_s));
    const WorkingDirectory inside(above);
    QVERIFY(inside.isActive());

    const MessageRecorder recorder;
    const RecordingPlatform platform;
    VLFolioEventClassifier(QFileInfo(isRelative ? u"pics"_s : root)).start();
    QCOMPARE(handed.size(), 1);
    const QStringList paths { isRelative ? u"pics"_s : root, root + u"/2019"_s, root + u"/2019/a"_s,
                              root + u"/2019/b"_s };
    QCOMPARE(handed.constFirst().paths, paths);
    QCOMPARE(handed.constFirst().rootPathLength, int(root.size()));
    QCOMPARE(handed.constFirst().nameFilters, QStringList(u"*.*"_s));
    QCOMPARE(handed.constFirst().reportPath, root + u"/vela.classification.results.html"_s);
}

QTEST_GUILESS_MAIN(tst_start_renderer)
#include "tst_start_renderer.moc"
