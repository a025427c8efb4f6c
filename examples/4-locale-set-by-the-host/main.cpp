// The language of the host's user in place of that of the system. It is set before the first name
// is classified, because names of months stay in the language of that moment.

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QTextStream>

using namespace Qt::StringLiterals;

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));

    const VLFolioEventClassifier classifier { QFileInfo() };
    QTextStream out(stdout);
    for (const QString& name : { u"Juli"_s, u"Mittwoch"_s, u"14.07.2019"_s, u"Hochzeit"_s }) {
        out << name << ": " << classifier.eventFolderType(name).name() << '\n';
    }
}
