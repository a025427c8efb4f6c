#pragma once

#include <QtCore/QDir>
#include <QtCore/QString>

#include <functional>
#include <utility>

#if !__has_include(<QtCore/private/qfsfileengine_p.h>)

/// Takes the place of the class below where Qt's private headers are missing.
class PathsAsGiven
{
public:
    static constexpr bool isAvailable = false;
    explicit PathsAsGiven(const QString&, const std::function<void(const QString&)>& = {}) { }
};

#else

#    include <QtCore/private/qabstractfileengine_p.h>
#    include <QtCore/private/qfsfileengine_p.h>

/// Presents the relative paths that begin with a prefix, in any case, as if they were absolute,
/// without "." and ".." as absolute paths are.
/// Paths that differ only in case are the same file to it. For the rest they are files of the
/// working directory. Works for as long as it lives.
class PathsAsGiven : public QAbstractFileEngineHandler
{
public:
    static constexpr bool isAvailable = true;
    using Notify = std::function<void(const QString& path)>;

    /// \a notify, if any, is told each path whose absolute path is asked for.
    explicit PathsAsGiven(const QString& prefix, Notify notify = {})
        : m_prefix(prefix)
        , m_notify(std::move(notify))
    {
    }

    // A plain pointer in some versions of Qt, a std::unique_ptr in others.
    using Engine = decltype(std::declval<const QAbstractFileEngineHandler&>().create(QString()));

    Engine create(const QString& path) const override
    {
        if (!path.startsWith(m_prefix, Qt::CaseInsensitive))
            return Engine {};
        return Engine { new FileEngine(path, m_notify) };
    }

private:
    class FileEngine : public QFSFileEngine
    {
    public:
        FileEngine(const QString& path, Notify notify)
            : QFSFileEngine(path)
            , m_notify(std::move(notify))
        {
        }

        // What is presented is no place on a disk.
        FileFlags fileFlags(FileFlags type) const override
        {
            return QFSFileEngine::fileFlags(type) & ~FileFlags(LocalDiskFlag);
        }

        QString fileName(FileName name) const override
        {
            QString path = QFSFileEngine::fileName(DefaultName);
            if (name == CanonicalName)
                return path.toLower();
            if (name != AbsoluteName)
                return QFSFileEngine::fileName(name);
            if (m_notify)
                m_notify(path);
            return QDir::cleanPath(path);
        }

    private:
        Notify m_notify;
    };

    QString m_prefix;
    Notify m_notify;
};

#endif
