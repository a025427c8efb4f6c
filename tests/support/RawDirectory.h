#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <ftw.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

/// A new directory, in memory if the system has a file system there that can be written to. It is
/// filled by system calls, as Qt neither makes nor removes names that are not UTF-8, and is gone
/// with the object.
class RawDirectory
{
public:
    RawDirectory()
    {
        for (const QString& parent : { QStringLiteral("/dev/shm"), QDir::tempPath() }) {
            QByteArray path = QFile::encodeName(QDir(parent).canonicalPath()) + "/XXXXXX";
            if (!m_path.isEmpty() || path.startsWith("/XXXXXX") || mkdtemp(path.data()) == nullptr)
                continue;
            m_path = path;
        }
        note(!m_path.isEmpty());
    }
    /// With these entries, as make() has them. Ends the program if they cannot be made, unless it
    /// is for names that are not UTF-8.
    explicit RawDirectory(const QByteArrayList& entries)
        : RawDirectory()
    {
        if (!make(entries).isValid() && !lacksRawNames())
            qFatal("Cannot fill %s: %s", m_path.constData(), error());
    }
    ~RawDirectory()
    {
        for (const QByteArray& name : std::as_const(m_restricted))
            chmod(bytes(name).constData(), S_IRWXU);
        if (!m_path.isEmpty())
            nftw(m_path.constData(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
    }
    Q_DISABLE_COPY_MOVE(RawDirectory)

    /// False when something could not be made; error() says why.
    [[nodiscard]] bool isValid() const { return m_error == 0; }
    [[nodiscard]] const char* error() const { return std::strerror(m_error); }
    /// True if all that is missing are names that are not UTF-8, which some file systems refuse.
    [[nodiscard]] bool lacksRawNames() const { return m_error == EILSEQ; }

    [[nodiscard]] QString path(const QByteArray& name = {}) const
    {
        return QFile::decodeName(name.isEmpty() ? m_path : bytes(name));
    }
    [[nodiscard]] QByteArray bytes(const QByteArray& name) const { return m_path + '/' + name; }

    /// Makes entries as "ls -F" shows them: "folder/", with the folders above it, "file", "pipe|",
    /// "socket=" and "link -> target".
    RawDirectory& make(const QByteArrayList& entries)
    {
        for (const QByteArray& entry : entries) {
            const QByteArray name = entry.chopped(1);
            if (const qsizetype arrow = entry.indexOf(" -> "); arrow >= 0)
                link(entry.first(arrow), entry.sliced(arrow + 4));
            else if (entry.endsWith('/'))
                folders(name);
            else if (entry.endsWith('|'))
                fifo(name);
            else if (entry.endsWith('='))
                socket(name);
            else
                file(entry);
        }
        return *this;
    }

    RawDirectory& folder(const QByteArray& name)
    {
        return note(mkdir(bytes(name).constData(), S_IRWXU) == 0);
    }

    /// With the folders above it, all of which may be there already.
    RawDirectory& folders(const QByteArray& name)
    {
        for (qsizetype end = 0; end >= 0;) {
            end = name.indexOf('/', end + 1);
            const QByteArray path = bytes(end < 0 ? name : name.first(end));
            note(mkdir(path.constData(), S_IRWXU) == 0 || errno == EEXIST);
        }
        return *this;
    }

    RawDirectory& file(const QByteArray& name, const QByteArray& contents = {})
    {
        const int descriptor = open(bytes(name).constData(), O_CREAT | O_WRONLY, S_IRUSR | S_IWUSR);
        const auto size = static_cast<std::size_t>(contents.size());
        note(descriptor >= 0 && write(descriptor, contents.constData(), size) == contents.size());
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

    /// Gives \a name, the directory itself if it is empty, these rights, until the object is gone.
    RawDirectory& restrict(const QByteArray& name, mode_t mode)
    {
        m_restricted.append(name);
        return note(chmod(bytes(name).constData(), mode) == 0);
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
        if (!isMade && m_error == 0)
            m_error = errno;
        return *this;
    }

    QByteArray m_path;
    QByteArrayList m_restricted;
    int m_error = 0;
};

/// Ends a test function when \a tree lacks something. There is a file system without the names that
/// are not UTF-8, and nothing to be done about it.
#define VERIFY_MADE(tree)                                                                          \
    do {                                                                                           \
        if ((tree).lacksRawNames())                                                                \
            QSKIP("This file system takes names in UTF-8 only: try another TMPDIR");               \
        QVERIFY2((tree).isValid(), (tree).error());                                                \
    } while (false)
