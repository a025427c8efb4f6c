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
    // Qt takes a path that begins with ":" for that of a resource in the program.
    const QString spelled = given.startsWith(u':') ? u"./"_s + given : given;
    // Qt removes "name/.." without accessing the file system. To the system the path is valid only
    // if the name exists, and it leads elsewhere if that is a symlink.
    const QFileInfo file(spelled);
    if (spelled.split(u'/').contains(u".."_s))
        return file.exists() ? file.canonicalFilePath() : QDir::current().filePath(spelled);
    QString path = file.absoluteFilePath();
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

// The system is asked, because QFileInfo does not distinguish a directory that does not exist from
// one that cannot be accessed.
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
    // The path of the working directory or the target of a symlink may contain invalid UTF-8. The
    // decoded path then leads elsewhere.
    if (!(FileIdentity(given) == FileIdentity(path)))
        return u"its path is not UTF-8"_s;
    const int directory = open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0)
        return Terminal::errorText(errno);
    close(directory);
    return access(name.constData(), X_OK) == 0 ? QString() : Terminal::errorText(errno);
}
