#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

/// Puts a file in the place of another in one step: whoever looks finds the old one or the new one,
/// each whole. What is written first lies in a private directory beside it, of a hidden name.
///
/// Whoever may write into the folder can steer neither what is written nor the step: no path leads
/// there twice. What a killed program has left is removed after a day, by the next WholeFile there.
class WholeFile
{
public:
    /// Makes the directory beside \a path.
    explicit WholeFile(const QString& path);
    /// Removes the directory, with all that was not put in place.
    ~WholeFile();
    Q_DISABLE_COPY_MOVE(WholeFile)

    /// Why the directory could not be made; empty when it was.
    [[nodiscard]] QString error() const;

    /// Where to write. It may name the directory by its descriptor, and only this process sees it
    /// there, then.
    [[nodiscard]] QString writingPath() const;

    /// Puts what was written in place. Returns why that failed, or an empty string.
    [[nodiscard]] QString commit();

    /// Why no file can come to lie at \a path, or an empty string; for those who do much before
    /// they write. A link or a pipe that someone has put there is replaced. If the path \a isGiven
    /// by the user, it is more likely a mistake.
    [[nodiscard]] static QString obstacle(const QString& path, bool isGiven);

    /// Writes \a bytes to \a file, which must be unbuffered. Where that falls short, returns false,
    /// and the file knows why.
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
