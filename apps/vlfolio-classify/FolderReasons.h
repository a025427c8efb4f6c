#pragma once

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Finds out the reason for the type of one folder after the other, by calling the library once
/// more for each folder.
class FolderReasons
{
public:
    struct Reason
    {
        /// What the folder is by itself.
        VLEventFolderType ownType;
        /// The tests that its name meets: any of "project", "date", "month" and "year".
        QStringList tests;
        /// The reason in words: the type of the folder by itself, the test that gave it that type,
        /// and what the folder above made of it.
        QString text;
        /// How many levels below the root of the walk the folder lies; 0 for the root itself.
        qsizetype depth = 0;
    };

    /// \param root the root of the walk.
    explicit FolderReasons(const QFileInfo& root);

    /// Makes the folder of \a result the current one. This has to be called for every result, in
    /// the order of the walk, because the type of a folder depends on the folder above it.
    void enter(const VLEventFolderClassificationResult& result);

    /// Returns the reason for the current folder.
    [[nodiscard]] Reason reason() const;

    /// Returns the tests that \a name meets.
    [[nodiscard]] static QStringList testsMet(const VLFolioEventClassifier& classifier,
                                              const QString& name);

private:
    VLFolioEventClassifier m_classifier;
    /// The folders from the root down to the current one.
    QList<VLEventFolderClassificationResult> m_path;
};
