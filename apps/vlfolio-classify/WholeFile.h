#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

/// Puts a file in the place of another in one step: whoever looks finds the old one or the new one,
/// each whole. What is written first lies in a private directory beside it, of a hidden name.
///
/// Other users who may write into the folder cannot redirect what is written, nor the step, because
/// no path is resolved twice. What a killed program has left behind is removed by the next
/// WholeFile in that folder once it is a day old.
class WholeFile
{
public:
    /// Makes a private directory beside \a path.
    explicit WholeFile(const QString& path);
    /// Removes the directory, with anything in it that was not put in place.
    ~WholeFile();
    Q_DISABLE_COPY_MOVE(WholeFile)

    /// Returns why the directory could not be made, or an empty string if it was.
    [[nodiscard]] QString error() const;

    /// Returns the path of the file to write. It may lead through a descriptor of this process, and
    /// is then of no use to any other.
    [[nodiscard]] QString writingPath() const;

    /// Puts what was written in place. Returns why that failed, or an empty string.
    [[nodiscard]] QString commit();

    /// Returns why no file can be put at \a path, or an empty string if nothing is known to prevent
    /// it. So a long run can fail before it begins. A link or a pipe at the path is an obstacle
    /// only if the path \a isGiven by the user, who has probably made a mistake; elsewhere it is
    /// replaced.
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
