#include "FolderTree.h"

#include "PageText.h"
#include "WholeFile.h"

#include <QtCore/QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace PageText;

namespace {

// Browsers nest only a few hundred elements, and a row that is indented further has no width left.
constexpr qsizetype maximumDepth = 24;

// Adds up the folders and files below the folder at \a position, at any depth.
PageAmount amountBelow(const QList<PageFolder>& folders, qsizetype position)
{
    const qsizetype depth = folders.at(position).reason.depth;
    PageAmount sum;
    for (qsizetype i = position + 1; i < folders.size() && folders.at(i).reason.depth > depth; ++i)
        sum.add(folders.at(i));
    return sum;
}

// Writes the tree, as lists within lists.
class Writer
{
public:
    Writer(QFile& file, const QString& rootPath, const QList<PageFolder>& folders)
        : m_file(file)
        , m_rootName(nameOfRoot(rootPath))
        , m_folders(folders)
    {
    }

    [[nodiscard]] bool write()
    {
        constexpr qsizetype pieceSize = 1 << 16;
        QString text;
        for (qsizetype i = 0; i < m_folders.size(); ++i) {
            text += row(i);
            if (text.size() < pieceSize)
                continue;
            if (!WholeFile::writeAll(m_file, text.toUtf8()))
                return false;
            text.clear();
        }
        return WholeFile::writeAll(m_file, (text + ends(0)).toUtf8());
    }

private:
    // The first folder has depth 0, and each is at most one level deeper than the one before.
    [[nodiscard]] qsizetype depthAt(qsizetype position) const
    {
        return position < m_folders.size()
            ? std::min(m_folders.at(position).reason.depth, maximumDepth)
            : 0;
    }

    // Returns the tags that end all open elements at \a depth and deeper.
    QString ends(qsizetype depth)
    {
        QString text;
        while (m_ends.size() > depth)
            text += m_ends.takeLast();
        return text;
    }

    QString row(qsizetype position)
    {
        const PageFolder& folder = m_folders.at(position);
        const QString text = ends(depthAt(position));
        const bool isLeaf = depthAt(position + 1) <= depthAt(position);
        const bool folds = !isLeaf && folder.isOfType(VLEventFolderTypeEnum::Year);
        m_ends.append(u"%1%2</li>\n"_s.arg(isLeaf ? QString() : u"</ul>"_s,
                                           folds ? u"</details>"_s : QString()));
        return text + u"<li class=\"%1\">"_s.arg(classesOf(folder, isLeaf))
            + (folds ? u"<details><summary>"_s : QString()) + cells(position, folds)
            + (folds ? u"</summary>"_s : QString()) + (isLeaf ? QString() : u"<ul>\n"_s);
    }

    [[nodiscard]] static QString classesOf(const PageFolder& folder, bool isLeaf)
    {
        return nameOf(folder.result.classification()) + (isLeaf ? u" leaf"_s : QString())
            + (folder.isComplete() ? QString() : u" partial"_s);
    }

    [[nodiscard]] QString cells(qsizetype position, bool folds) const
    {
        const PageFolder& folder = m_folders.at(position);
        const QString none = folder.fileCount == 0 ? u" none"_s : QString();
        return nameCell(position, folds)
            + u"\n<span class=\"type\">%1</span>\n<span class=\"amount%2\">%3</span>\n"
              "<span class=\"why\">%4"_s.arg(nameOf(folder.result.classification()), none,
                                             fileCount(folder.fileCount), folder.reason.text)
            + incompleteNote(folder) + u"</span>"_s;
    }

    [[nodiscard]] QString nameCell(qsizetype position, bool folds) const
    {
        QString cell = u"<bdi>"_s + shown(nameAt(position)) + u"</bdi>"_s;
        if (!folds)
            return cell;
        const PageAmount below = amountBelow(m_folders, position);
        return u"<span>"_s + cell
            + u"\n<span class=\"below\">%1, %2 below</span></span>"_s.arg(
                folderCount(below.folders), fileCount(below.files));
    }

    // Returns the name of the folder, preceded by the names of those above it that the nesting does
    // not show.
    [[nodiscard]] QString nameAt(qsizetype position) const
    {
        if (position == 0)
            return m_rootName;
        const PageFolder& folder = m_folders.at(position);
        const qsizetype unseen = folder.reason.depth - depthAt(position);
        return folder.result.directory().filePath().section(u'/', -1 - unseen);
    }

    [[nodiscard]] static QString incompleteNote(const PageFolder& folder)
    {
        if (folder.isComplete())
            return {};
        return u"\n<span class=\"incomplete\">not complete: %1</span>"_s.arg(
            shown(folder.incompleteReasons));
    }

    QFile& m_file;
    QString m_rootName;
    const QList<PageFolder>& m_folders;
    // The tags that end the folder that was written last and each folder above it.
    QStringList m_ends;
};

} // namespace

bool writeFolderTree(QFile& file, const QString& rootPath, const QList<PageFolder>& folders)
{
    return Writer(file, rootPath, folders).write();
}
