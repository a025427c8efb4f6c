#pragma once

#include <QtCore/QByteArray>
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

    /// Why nothing should be put in the place of what lies at \a path, a directory or a device such
    /// as /dev/stdout; empty for a file, a link to one, and nothing.
    [[nodiscard]] static QString obstacle(const QString& path);

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
