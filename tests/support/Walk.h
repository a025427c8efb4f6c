#pragma once

#include "TypeNames.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QString>

/// What a walk over the tree below \a root finds.
[[nodiscard]] inline QList<VLEventFolderClassificationResult> walk(const QString& root)
{
    const QFileInfo directory(root);
    return VLFolioEventClassifier(directory).eventFolderTypes(directory, {});
}

/// One line "path Type" for each result. \a prefix is left out where a path begins with it.
[[nodiscard]] inline QByteArrayList lines(const QList<VLEventFolderClassificationResult>& results,
                                          const QString& prefix)
{
    QByteArrayList texts;
    for (const VLEventFolderClassificationResult& result : results) {
        QString path = result.directory().absoluteFilePath();
        if (path.startsWith(prefix))
            path.remove(0, prefix.size());
        texts.append((path + u' ' + typeName(result.classification().value())).toUtf8());
    }
    return texts;
}

[[nodiscard]] inline QByteArrayList walkedLines(const QString& root)
{
    return lines(walk(root), root);
}
