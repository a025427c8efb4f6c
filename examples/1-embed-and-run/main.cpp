// A whole run: classifies the collection in DIRECTORY, writes the report there and opens it.

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QFileInfo root(QCoreApplication::arguments().value(1));

    VLFolioEventClassifier classifier(root);
    classifier.start();
}
