// Copies of a QFileInfo share what Qt caches of the file, without a lock. What the library does
// with them must leave nothing in there, or it would be written by two threads at once.

#include "RecordingPlatform.h"
#include "RunTogether.h"
#include "WorkingDirectory.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResultList.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr int threadCount = 8;
constexpr int roundCount = 20;
// The more results, the likelier two threads meet at one of them.
constexpr int resultCount = 200;

// Equal to every result of the folder it leads to, as only the file system can tell.
VLEventFolderClassificationResult eventAt(const QString& path)
{
    return { QFileInfo(path), VLEventFolderTypeEnum::Event };
}

VLEventFolderClassificationResultList eventsAt(const QString& path)
{
    VLEventFolderClassificationResultList results;
    for (int i = 0; i < resultCount; ++i)
        results.append(eventAt(path));
    return results;
}

} // namespace

class tst_threads_copies : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void makingAResultLeavesNothingInTheDirectory();
    void relativeDirectoryIsAbsoluteWhereItIsAskedFor();
    void relativeRootKeepsThePathItHadFound();
    void comparingLeavesNothingInTheDirectory();
    void resultsWithoutDirectoryEqualTheirCopies();
    void classifyingLeavesNothingInTheRootItWasMadeOf();
    void rootWithoutPathEqualsItsCopies();
    void allThreadsUseCopiesAtOnce();
    void allThreadsMakeResultsOfOneListing();

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_folder;
    QString m_link;
};

void tst_threads_copies::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
    const QDir directory(QFileInfo(m_directory->path()).canonicalFilePath());
    m_folder = directory.filePath(u"folder"_s);
    m_link = directory.filePath(u"link"_s);
    QVERIFY(directory.mkdir(u"folder"_s));
    QVERIFY(QFile::link(m_folder, m_link));
}

void tst_threads_copies::cleanup()
{
    m_directory.reset();
}

// Relative while the data is its own: what was found out then would be another path now.
void tst_threads_copies::makingAResultLeavesNothingInTheDirectory()
{
    const WorkingDirectory above(QFileInfo(m_folder).path());
    QVERIFY(above.isActive());
    const QFileInfo directory(u"folder"_s);
    const VLEventFolderClassificationResult result(directory, VLEventFolderTypeEnum::Event);
    const WorkingDirectory inside(m_folder);
    QVERIFY(inside.isActive());
    QCOMPARE(directory.absoluteFilePath(), m_folder + u"/folder"_s);
}

void tst_threads_copies::relativeDirectoryIsAbsoluteWhereItIsAskedFor()
{
    const VLEventFolderClassificationResult result = eventAt(u"folder"_s);
    const WorkingDirectory inside(m_folder);
    QVERIFY(inside.isActive());
    QCOMPARE(result.render(0), u"  Event <= "_s + m_folder + u"/folder"_s);
}

void tst_threads_copies::relativeRootKeepsThePathItHadFound()
{
    const WorkingDirectory above(QFileInfo(m_folder).path());
    QVERIFY(above.isActive());
    const QFileInfo root(u"folder"_s);
    QCOMPARE(root.absoluteFilePath(), m_folder);
    VLFolioEventClassifier classifier(root);
    const WorkingDirectory inside(m_folder);
    QVERIFY(inside.isActive());
    const RecordingPlatform platform;
    classifier.start();
    QVERIFY(QFile::exists(m_folder + u"/vela.classification.results.html"_s));
}

void tst_threads_copies::comparingLeavesNothingInTheDirectory()
{
    const VLEventFolderClassificationResult folder = eventAt(m_folder);
    const VLEventFolderClassificationResult link = eventAt(m_link);
    QVERIFY(folder == link);
    QVERIFY(QDir().rmdir(m_folder));
    QCOMPARE(folder.directory().canonicalFilePath(), QString());
    QCOMPARE(link.directory().canonicalFilePath(), QString());
}

void tst_threads_copies::resultsWithoutDirectoryEqualTheirCopies()
{
    const VLEventFolderClassificationResult result;
    const VLEventFolderClassificationResult copy = result;
    QVERIFY(result == copy);
    QVERIFY(!(result == VLEventFolderClassificationResult()));
    QVERIFY(!(result == eventAt(m_folder)));
}

void tst_threads_copies::classifyingLeavesNothingInTheRootItWasMadeOf()
{
    const QFileInfo root(m_folder);
    const VLFolioEventClassifier classifier(root);
    QCOMPARE(classifier.eventFolderType(QFileInfo(m_link)).classification(),
             VLEventFolderType(VLEventFolderTypeEnum::Root));
    QVERIFY(QDir().rmdir(m_folder));
    QCOMPARE(root.canonicalFilePath(), QString());
}

void tst_threads_copies::rootWithoutPathEqualsItsCopies()
{
    const QFileInfo root;
    const VLFolioEventClassifier classifier(root);
    QCOMPARE(classifier.eventFolderType(root).classification(),
             VLEventFolderType(VLEventFolderTypeEnum::Root));
    QCOMPARE(classifier.eventFolderType(QFileInfo()).classification(),
             VLEventFolderType(VLEventFolderTypeEnum::Unknown));
}

void tst_threads_copies::allThreadsUseCopiesAtOnce()
{
    const QString line = u"  Event <= "_s + m_folder;
    std::atomic_int wrong { 0 };
    for (int round = 0; round < roundCount; ++round) {
        const VLEventFolderClassificationResultList results = eventsAt(m_folder);
        const VLEventFolderClassificationResult link = eventAt(m_link);
        runTogether(threadCount, [&wrong, &line, &results, &link](int) {
            for (const VLEventFolderClassificationResult& result : results) {
                const VLEventFolderClassificationResult copy = result;
                wrong += copy == link && copy.render(0) == line ? 0 : 1;
            }
        });
    }
    QCOMPARE(wrong.load(), 0);
}

// As a host does that has listed folders by itself and shares the list out.
void tst_threads_copies::allThreadsMakeResultsOfOneListing()
{
    constexpr int folderCount = 3000;
    const QString line = u"  Event <= "_s + m_folder;
    std::atomic_int wrong { 0 };
    for (int round = 0; round < roundCount; ++round) {
        QFileInfoList listed;
        for (int i = 0; i < folderCount; ++i)
            listed.append(QFileInfo(m_folder));
        runTogether(2, [&wrong, &line, listed](int) {
            for (const QFileInfo& directory : listed) {
                const VLEventFolderClassificationResult result(directory,
                                                               VLEventFolderTypeEnum::Event);
                wrong += result.render(0) == line ? 0 : 1;
            }
        });
    }
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_threads_copies)
#include "tst_threads_copies.moc"
