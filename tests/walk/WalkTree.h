#pragma once

#include "TypeNames.h"
#include "WorkingDirectory.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <algorithm>

/// A collection "pics" in a temporary directory, which is gone with the object. All names are
/// relative to the collection.
class WalkTree
{
public:
    WalkTree()
        : m_root(QFileInfo(m_directory.path()).canonicalFilePath() + QStringLiteral("/pics"))
    {
        m_isValid = m_directory.isValid() && QDir().mkpath(m_root);
    }

    /// False when something could not be made.
    [[nodiscard]] bool isValid() const { return m_isValid; }
    [[nodiscard]] QString root() const { return m_root; }
    [[nodiscard]] QString path(const QString& name) const { return m_root + u'/' + name; }

    WalkTree& folders(const QStringList& names)
    {
        for (const QString& name : names)
            m_isValid = m_isValid && QDir().mkpath(path(name));
        return *this;
    }

    WalkTree& file(const QString& name)
    {
        QFile file(path(name));
        m_isValid = m_isValid && file.open(QIODevice::WriteOnly);
        return *this;
    }

    WalkTree& link(const QString& name, const QString& target)
    {
        m_isValid = m_isValid && QFile::link(target, path(name));
        return *this;
    }

private:
    QTemporaryDir m_directory;
    QString m_root;
    bool m_isValid = false;
};

/// One line "path Type" for each result, in the order of \a results. \a prefix, where a path
/// begins with it, is left out.
[[nodiscard]] inline QStringList lines(const QList<VLEventFolderClassificationResult>& results,
                                       const QString& prefix)
{
    QStringList texts;
    for (const VLEventFolderClassificationResult& result : results) {
        QString path = result.directory().absoluteFilePath();
        if (path.startsWith(prefix))
            path.remove(0, prefix.size());
        texts.append(path + u' ' + typeName(result.classification().value()));
    }
    return texts;
}

[[nodiscard]] inline bool haveNoOccasions(const QList<VLEventFolderClassificationResult>& results)
{
    return std::all_of(results.cbegin(), results.cend(),
                       [](const auto& result) { return result.occasionInformation().isEmpty(); });
}
