#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <ftw.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

/// A new directory, in memory where the system has a file system there, which is filled by system
/// calls: Qt neither makes nor removes names that are not UTF-8. It is gone with the object.
class RawDirectory
{
public:
    RawDirectory()
    {
        const QString memory = QStringLiteral("/dev/shm");
        const QString parent = QDir(memory).exists() ? memory : QDir::tempPath();
        QByteArray path = QFile::encodeName(QDir(parent).canonicalPath()) + "/XXXXXX";
        m_isValid = mkdtemp(path.data()) != nullptr;
        m_path = path;
    }
    ~RawDirectory()
    {
        if (!m_path.isEmpty())
            nftw(m_path.constData(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
    }
    Q_DISABLE_COPY_MOVE(RawDirectory)

    /// False when something could not be made. errno says why.
    [[nodiscard]] bool isValid() const { return m_isValid; }
    [[nodiscard]] QString path() const { return QFile::decodeName(m_path); }
    [[nodiscard]] QByteArray bytes(const QByteArray& name) const { return m_path + '/' + name; }

    RawDirectory& folder(const QByteArray& name)
    {
        return note(mkdir(bytes(name).constData(), S_IRWXU) == 0);
    }

    RawDirectory& file(const QByteArray& name)
    {
        const int descriptor = open(bytes(name).constData(), O_CREAT | O_WRONLY, S_IRUSR | S_IWUSR);
        return note(descriptor >= 0 && close(descriptor) == 0);
    }

    RawDirectory& link(const QByteArray& name, const QByteArray& target)
    {
        return note(symlink(target.constData(), bytes(name).constData()) == 0);
    }

    RawDirectory& fifo(const QByteArray& name)
    {
        return note(mkfifo(bytes(name).constData(), S_IRUSR | S_IWUSR) == 0);
    }

    /// The socket stays a name of the file system after it was closed.
    RawDirectory& socket(const QByteArray& name)
    {
        const QByteArray path = bytes(name);
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        if (static_cast<std::size_t>(path.size()) >= sizeof address.sun_path)
            return note(false);
        qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
        const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
        note(descriptor >= 0
             && bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0);
        return note(descriptor >= 0 && close(descriptor) == 0);
    }

private:
    static int removeEntry(const char* path, const struct stat* status, int type, FTW* position)
    {
        Q_UNUSED(status)
        Q_UNUSED(type)
        Q_UNUSED(position)
        return remove(path);
    }

    RawDirectory& note(bool isMade)
    {
        m_isValid = m_isValid && isMade;
        return *this;
    }

    QByteArray m_path;
    bool m_isValid = false;
};
