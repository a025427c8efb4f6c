// A walk of DIRECTORY on a worker thread, with progress and a way to cancel. Here it is cancelled
// after two folders were read, as by a button, and the results up to there are kept.

#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTextStream>
#include <QtCore/QThread>

#include <atomic>
#include <memory>

class WatchedService : public VLPlatformIndependent
{
public:
    QStringList getDirectSubdirectoriesInDirectory(const QDir& directory) const override
    {
        if (folders.fetch_add(1) >= 2)
            return {};
        return VLPlatformIndependent::getDirectSubdirectoriesInDirectory(directory);
    }
    mutable std::atomic<int> folders = 0;
};

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    WatchedService service;
    VLPlatformIndependent::setInstance(&service);
    const QFileInfo root(QCoreApplication::arguments().value(1));
    qsizetype found = 0;
    const std::unique_ptr<QThread> worker(QThread::create(
        [&] { found = VLFolioEventClassifier(root).eventFolderTypes(root, {}).size(); }));
    worker->start();
    while (!worker->wait(100))
        QTextStream(stdout) << service.folders << " folders so far\n";
    VLPlatformIndependent::setInstance(nullptr);
    QTextStream(stdout) << "found " << found << " folders until it was cancelled\n";
}
