// Either way of including a header does, and both at once.
#include <VLCore/VLPlatformIndependent.h>
#include <VLFolioEventClassifier.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>
#include <VLPlatformIndependent.h>

#include <QtCore/QDir>
#include <QtCore/QTextStream>

int main()
{
    const QDir directory(QStringLiteral("/no/such/directory"));
    const VLFolioEventClassifier classifier(QFileInfo(directory.path()));
    const VLEventFolderType type = classifier.eventFolderType(QStringLiteral("2019-07-14"));

    QTextStream out(stdout);
    out << type.enumToStringTable()->nameFor(type.value()) << ' '
        << VLPlatformIndependent::instance()->getDirectFilesInDirectory(directory).size() << '\n';
}
