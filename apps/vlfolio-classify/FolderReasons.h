#pragma once

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Gives, for one folder after the other, the reason for its type. The reasons are derived from
/// what the library answers when it is asked about each folder once more.
class FolderReasons
{
public:
    struct Reason
    {
        /// What the folder is by itself.
        VLEventFolderType ownType;
        /// The tests that its name meets: any of "project", "date", "month" and "year".
        QStringList tests;
        /// Both in words, followed by what the folder above made of it.
        QString text;
        /// How many levels below the root of the walk the folder lies; 0 for the root itself.
        qsizetype depth = 0;
    };

    /// \param root the root of the walk.
    explicit FolderReasons(const QFileInfo& root);

    /// Goes on to the folder of \a result. Every result has to be entered, in the order of the
    /// walk, because the type of a folder depends on the folder above it.
    void enter(const VLEventFolderClassificationResult& result);

    /// The reason for the folder that was entered last.
    [[nodiscard]] Reason reason() const;

    /// The tests that \a name meets.
    [[nodiscard]] static QStringList testsMet(const VLFolioEventClassifier& classifier,
                                              const QString& name);

private:
    VLFolioEventClassifier m_classifier;
    /// The folders from the root down to the one that was entered last.
    QList<VLEventFolderClassificationResult> m_path;
};
