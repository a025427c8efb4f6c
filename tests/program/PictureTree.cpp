#include "PictureTree.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

PictureTree::PictureTree()
    : m_path(QFileInfo(m_directory.path()).canonicalFilePath())
{
    if (m_path.isEmpty())
        qFatal("No temporary directory can be made");
}

PictureTree::~PictureTree()
{
    // What may not be entered cannot be removed.
    for (const QString& name : std::as_const(m_restricted))
        chmod(QFile::encodeName(path(name)).constData(), 0700);
    // Qt 6.11 does not find names again that begin with a byte order mark.
    m_directory.setAutoRemove(false);
    std::error_code error;
    std::filesystem::remove_all(QFile::encodeName(m_directory.path()).toStdString(), error);
}

void PictureTree::addFolder(const QString& name) const
{
    if (!QDir().mkpath(path(name)))
        qFatal("Cannot make a folder");
}

void PictureTree::addFile(const QString& name, const QByteArray& content) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot make a file");
}

void PictureTree::addLink(const QString& target, const QString& name) const
{
    if (symlink(QFile::encodeName(target).constData(), QFile::encodeName(path(name)).constData()))
        qFatal("Cannot make a link");
}

void PictureTree::setMode(const QString& name, unsigned mode)
{
    m_restricted.prepend(name);
    if (chmod(QFile::encodeName(path(name)).constData(), static_cast<mode_t>(mode)) != 0)
        qFatal("Cannot change permissions");
}

void PictureTree::setTime(const QString& name, long seconds) const
{
    const timespec time { seconds, 0 };
    const timespec times[] { time, time };
    if (utimensat(AT_FDCWD, QFile::encodeName(path(name)).constData(), times, 0) != 0)
        qFatal("Cannot change a time");
}

QStringList PictureTree::names(const QString& name) const
{
    return QDir(path(name))
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

bool PictureTree::exists(const QString& name) const
{
    return QFileInfo::exists(path(name));
}

QByteArray PictureTree::content(const QString& name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
}

QString PictureTree::filled(QString text) const
{
    return text.replace(u"{}"_s, m_path);
}

void PictureTree::addPictures() const
{
    const QStringList folders {
        u"pics/.thumbnails/2019"_s,
        u"pics/1999"_s,
        u"pics/2019/07/2019-07-14"_s,
        u"pics/2019/07/Beach/2019-07-15"_s,
        u"pics/2019/07-x"_s,
        u"pics/2019/Trip to sea"_s,
        u"pics/B"_s,
        u"pics/Urlaub_vlp-Dateien"_s,
        u"pics/a"_s,
    };
    for (const QString& folder : folders)
        addFolder(folder);
    addFile(u"pics/2019/07/Beach/1.jpg"_s);
    addFile(u"pics/2019/07/Beach/2.jpg"_s);
    addFile(u"pics/2019/07/Beach/.hidden.jpg"_s);
    addFile(u"pics/a/%1.jpg"_s);
}
