#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

/// A temporary directory with picture folders in it.
class PictureTree
{
public:
    PictureTree();

    /// Path of the directory, links resolved.
    [[nodiscard]] QString path() const { return m_path; }
    /// The path of \a name in it.
    [[nodiscard]] QString path(const QString& name) const { return m_path + u'/' + name; }

    /// Makes a folder and the folders above it.
    void addFolder(const QString& name) const;
    void addFile(const QString& name, const QByteArray& content = {}) const;
    /// Makes a link called \a name that holds \a target as it stands.
    void addLink(const QString& target, const QString& name) const;
    /// Sets the permission bits of \a name until the tree goes.
    void setMode(const QString& name, unsigned mode);

    /// Sets the time of the last change of \a name, in seconds since 1970.
    void setTime(const QString& name, long seconds) const;

    /// What is in the folder \a name, hidden and not, sorted.
    [[nodiscard]] QStringList names(const QString& name) const;
    [[nodiscard]] bool exists(const QString& name) const;
    [[nodiscard]] QByteArray content(const QString& name) const;

    /// \a text with every "{}" replaced by the directory's path.
    [[nodiscard]] QString filled(QString text) const;

    /// The collection "pics", with a folder of each type.
    void addPictures() const;

    ~PictureTree();
    Q_DISABLE_COPY_MOVE(PictureTree)

private:
    QTemporaryDir m_directory;
    QString m_path;
    QStringList m_restricted;
};
