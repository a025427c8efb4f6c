#include "GivenPath.h"

#include "FileIdentity.h"
#include "Terminal.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

QString GivenPath::absolute(const QString& given)
{
    // Qt takes a path that begins with ":" for one within the program.
    const QString spelled = given.startsWith(u':') ? u"./"_s + given : given;
    // Qt takes "name/.." for the folder that holds the name; the system asks whether that name is
    // there and where a link leads.
    const QFileInfo file(spelled);
    if (spelled.split(u'/').contains(u".."_s))
        return file.exists() ? file.canonicalFilePath() : QDir::current().filePath(spelled);
    QString path = file.absoluteFilePath();
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

// Asked of the system, which tells a directory that is not there from one that cannot be looked at.
QString GivenPath::directoryProblem(const QString& given, const QString& path)
{
    if (!path.startsWith(u'/'))
        return u"its path cannot be found (was the working directory removed?)"_s;
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    if (stat(name.constData(), &status) != 0)
        return errno == ENOENT ? u"it does not exist"_s : Terminal::errorText(errno);
    if (!S_ISDIR(status.st_mode))
        return u"it is not a directory"_s;
    // The way to the working directory and what a link holds may be anything.
    if (!(FileIdentity(given) == FileIdentity(path)))
        return u"its path is not UTF-8"_s;
    const int directory = open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0)
        return Terminal::errorText(errno);
    close(directory);
    return access(name.constData(), X_OK) == 0 ? QString() : Terminal::errorText(errno);
}
