// A platform service of the host's own: the report in DIRECTORY is not opened, but the host learns
// of it.

#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>

class HostService : public VLPlatformIndependent
{
public:
    bool openFile(const QString& path, const QStringList&, const QString&) override
    {
        QTextStream(stdout) << "report: " << QFileInfo(path).fileName() << '\n';
        return true;
    }

    void directoryContentsChanged(const QDir& directory) override
    {
        QTextStream(stdout) << "changed: " << directory.dirName() << '\n';
    }
};

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    HostService service;
    VLPlatformIndependent::setInstance(&service);

    VLFolioEventClassifier classifier(QFileInfo(QCoreApplication::arguments().value(1)));
    classifier.start();

    // The service is destroyed at the end of this block and must not be in use then.
    VLPlatformIndependent::setInstance(nullptr);
}
