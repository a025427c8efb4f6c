#pragma once

#include <QtCore/QDir>
#include <QtCore/QString>

#include <utility>

#if !__has_include(<QtCore/private/qfsfileengine_p.h>)

/// Takes the place of the class below where Qt's private headers are missing.
class PathsAsGiven
{
public:
    static constexpr bool isAvailable = false;
    explicit PathsAsGiven(const QString&) { }
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

    explicit PathsAsGiven(const QString& prefix)
        : m_prefix(prefix)
    {
    }

    // A plain pointer in some versions of Qt, a std::unique_ptr in others.
    using Engine = decltype(std::declval<const QAbstractFileEngineHandler&>().create(QString()));

    Engine create(const QString& path) const override
    {
        if (!path.startsWith(m_prefix, Qt::CaseInsensitive))
            return Engine {};
        return Engine { new FileEngine(path) };
    }

private:
    class FileEngine : public QFSFileEngine
    {
    public:
        using QFSFileEngine::QFSFileEngine;

        // What is presented is no place on a disk.
        FileFlags fileFlags(FileFlags type) const override
        {
            return QFSFileEngine::fileFlags(type) & ~FileFlags(LocalDiskFlag);
        }

        QString fileName(FileName name) const override
        {
            const QString path = QFSFileEngine::fileName(DefaultName);
            if (name == CanonicalName)
                return path.toLower();
            return name == AbsoluteName ? QDir::cleanPath(path) : QFSFileEngine::fileName(name);
        }
    };

    QString m_prefix;
};

#endif
