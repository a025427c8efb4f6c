#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

/// Replaces a file by another in one step, so that whoever opens it finds either the old one or the
/// new one, and never a part of it. The new file is first written in a private directory with a
/// hidden name beside the old one.
///
/// Other users who may write to the folder cannot redirect what is written, nor the step, because
/// no path is resolved twice. What a killed program has left behind is removed by the next
/// WholeFile in that folder, once it is a day old.
class WholeFile
{
public:
    /// Makes a private directory beside \a path.
    explicit WholeFile(const QString& path);
    /// Removes the directory, and the file in it unless commit() has moved that.
    ~WholeFile();
    Q_DISABLE_COPY_MOVE(WholeFile)

    /// Returns why the directory could not be made, or an empty string if it was.
    [[nodiscard]] QString error() const;

    /// Returns the path of the file to write. It may lead through a descriptor of this process, and
    /// is then of no use to others.
    [[nodiscard]] QString writingPath() const;

    /// Moves the file that was written into place. Returns why that failed, or an empty string.
    [[nodiscard]] QString commit();

    /// Returns why no file can be put at \a path, or an empty string if nothing is known to prevent
    /// it. This allows a long run to fail before it begins. A symlink or a pipe at the path is an
    /// obstacle only if the path \a isGiven by the user, who has probably made a mistake. Otherwise
    /// it is replaced.
    [[nodiscard]] static QString obstacle(const QString& path, bool isGiven);

    /// Writes \a bytes to \a file, which must be unbuffered. Returns false if that failed; the
    /// file's errorString() then says why.
    [[nodiscard]] static bool writeAll(QFile& file, const QByteArray& bytes);

private:
    [[nodiscard]] bool makeDirectory();
    void removeLeftOvers() const;
    void removeLeftOver(const char* name) const;

    QByteArray m_name;
    QByteArray m_parentPath;
    QByteArray m_directoryName;
    QString m_error;
    int m_parent = -1;
    int m_directory = -1;
};
