#pragma once

#include "WalkTree.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QCoreApplication>

#include <array>
#include <optional>

/// A collection that is walked as "photokit", where each folder may be waited for, and the
/// application object, which can be brought to its end meanwhile.
class ShutdownTree
{
public:
    ShutdownTree()
        : m_inside(m_tree.root())
    {
        m_tree.folders({ QStringLiteral("photokit/a/1"), QStringLiteral("photokit/b/2"),
                         QStringLiteral("photokit/c") });
        m_application.emplace(m_argumentCount, m_arguments.data());
    }

    [[nodiscard]] bool isValid() const { return m_tree.isValid() && m_inside.isActive(); }

    void endApplication() { m_application.reset(); }

    /// What a walk finds, as lines() has it.
    [[nodiscard]] QStringList walkedLines() const
    {
        VLFolioEventClassifier classifier { QFileInfo(m_tree.path(QStringLiteral("elsewhere"))) };
        return lines(classifier.eventFolderTypes(QFileInfo(QStringLiteral("photokit")), {}), {});
    }

    /// What it finds when the application ends in "photokit/b".
    [[nodiscard]] static QStringList linesUpToB()
    {
        return { QStringLiteral("photokit Event"), QStringLiteral("photokit/a Event"),
                 QStringLiteral("photokit/a/1 Event"), QStringLiteral("photokit/b Event") };
    }

private:
    WalkTree m_tree;
    WorkingDirectory m_inside;
    int m_argumentCount = 1;
    std::array<char, 5> m_name { "test" };
    std::array<char*, 2> m_arguments { m_name.data(), nullptr };
    std::optional<QCoreApplication> m_application;
};
