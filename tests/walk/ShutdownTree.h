#pragma once

#include "ApplicationObject.h"
#include "RawDirectory.h"
#include "Walk.h"
#include "WorkingDirectory.h"

/// A collection that is walked as "photokit", where each folder may be waited for, and the
/// application object, which can be brought to its end meanwhile.
class ShutdownTree
{
public:
    ShutdownTree()
        : m_inside(m_tree.path())
    {
        m_tree.make({ "photokit/a/1/", "photokit/b/2/", "photokit/c/" });
        m_application.begin();
    }

    [[nodiscard]] bool isValid() const { return m_tree.isValid() && m_inside.isActive(); }

    void endApplication() { m_application.end(); }

    /// What a walk finds, as lines() has it.
    [[nodiscard]] QStringList walkedLines() const
    {
        VLFolioEventClassifier classifier { QFileInfo(m_tree.path("elsewhere")) };
        QStringList texts;
        const QByteArrayList found =
            lines(classifier.eventFolderTypes(QFileInfo(QStringLiteral("photokit")), {}), {});
        for (const QByteArray& line : found)
            texts.append(QString::fromUtf8(line));
        return texts;
    }

    /// What it finds when the application ends in "photokit/b".
    [[nodiscard]] static QStringList linesUpToB()
    {
        return { QStringLiteral("photokit Event"), QStringLiteral("photokit/a Event"),
                 QStringLiteral("photokit/a/1 Event"), QStringLiteral("photokit/b Event") };
    }

private:
    RawDirectory m_tree;
    WorkingDirectory m_inside;
    ApplicationObject m_application;
};
