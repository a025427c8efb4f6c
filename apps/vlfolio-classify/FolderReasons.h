#pragma once

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>
#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Says of one folder after the other why it is what it is. All of it is put together from answers
/// of the library, which is asked anew.
class FolderReasons
{
public:
    struct Reason
    {
        /// What the folder is by itself.
        VLEventFolderType ownType;
        /// The tests that its name meets: any of "project", "date", "month" and "year".
        QStringList tests;
        /// Both in words, and what the folder above made of it.
        QString text;
        /// How many folders it lies in, up to the root of the walk.
        qsizetype depth = 0;
    };

    /// \param root the root of the walk.
    explicit FolderReasons(const QFileInfo& root);

    /// Goes on to the folder of \a result. All must be entered, in the order of the walk: a folder
    /// is judged by the one above it.
    void enter(const VLEventFolderClassificationResult& result);

    /// The reason for the folder that was entered last.
    [[nodiscard]] Reason reason() const;

    /// The tests that \a name meets.
    [[nodiscard]] static QStringList testsMet(const VLFolioEventClassifier& classifier,
                                              const QString& name);

private:
    VLFolioEventClassifier m_classifier;
    /// The folder that was entered last, below all those that it lies in.
    QList<VLEventFolderClassificationResult> m_path;
};
