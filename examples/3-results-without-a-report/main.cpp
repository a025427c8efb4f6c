// The results without a report: prints the events in DIRECTORY and writes no file.

#include <VLFolioEventClassifier/VLEventFolderClassificationResultList.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QFileInfo root(QCoreApplication::arguments().value(1));

    VLFolioEventClassifier classifier(root);
    VLEventFolderClassificationResultList results =
        classifier.eventFolderTypes(root, VLEventFolderClassificationResult());
    const auto events = results.filtered(VLEventFolderTypeEnum::Event);

    QTextStream out(stdout);
    out << events.size() << " of " << results.size() << " folders are events:\n";
    for (const VLEventFolderClassificationResult& event : events)
        out << event.directory().fileName() << '\n';
}
