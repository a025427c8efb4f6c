#pragma once

#include "RawDirectory.h"
#include "ReportText.h"
#include "Walk.h"

#include <QtCore/QList>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <algorithm>

/// One folder as a walk, a report or the program has it.
struct FoundFolder
{
    QString path;
    QString type;
    /// Negative where files were not counted.
    qsizetype fileCount;
};

/// A small collection with a link to a folder and one to a file, and what is found in it when
/// nothing fails.
class FaultTree
{
public:
    FaultTree()
    {
        m_directory.make({ "2019/05/", "2019/Sommer/2019-07-14/", "K/L/", "b.jpg", "2019/a.jpg",
                           "2019/Sommer/c.jpg", "K/L/d.jpg", "Link -> K", "e.jpg -> b.jpg",
                           "vela.classification.results.html" });
    }

    [[nodiscard]] bool isValid() const { return m_directory.isValid(); }
    [[nodiscard]] QString root() const { return m_directory.path(); }
    [[nodiscard]] QString reportPath() const
    {
        return m_directory.path("vela.classification.results.html");
    }

    /// All of it, in the order of the walk and of the report.
    [[nodiscard]] QList<FoundFolder> folders() const
    {
        const auto folder = [this](const char* name, const char* type, qsizetype fileCount) {
            return FoundFolder { root() + QString::fromLatin1(name), QString::fromLatin1(type),
                                 fileCount };
        };
        return { folder("", "Root", 3),
                 folder("/2019", "Year", 1),
                 folder("/2019/05", "Month", 0),
                 folder("/2019/Sommer", "Event", 1),
                 folder("/2019/Sommer/2019-07-14", "Day", 0),
                 folder("/K", "Unknown", 0),
                 folder("/K/L", "Unknown", 1),
                 folder("/Link", "Unknown", 0),
                 folder("/Link/L", "Unknown", 1) };
    }

    /// The rows of the report, or none if it is not one from its first to its last byte.
    [[nodiscard]] QList<FoundFolder> reported() const
    {
        static const QRegularExpression row(QStringLiteral(
            "<tr class=(\\w*)>\\s*<td>\\w*</td>\\s*<td>(.*)</td>\\s*<td>(\\d+)</td>"));
        const QByteArray report = ReportText::fileContents(reportPath());
        QList<FoundFolder> rows;
        QByteArrayList texts;
        for (auto matches = row.globalMatch(QString::fromUtf8(report)); matches.hasNext();) {
            const QStringList cells = matches.next().capturedTexts();
            texts.append(ReportText::row(cells.at(1).toUtf8(), cells.at(2).toUtf8(),
                                         cells.at(3).toUtf8(), "no data"));
            const QString path = cells.at(2) == root() ? root() : root() + cells.at(2);
            rows.append({ path, cells.at(1), cells.at(3).toLongLong() });
        }
        return report == ReportText::report(texts) ? rows : QList<FoundFolder>();
    }

    /// The links, which lead nowhere if the system says so, and then lose nothing that is told.
    [[nodiscard]] QStringList links() const
    {
        return { m_directory.path("Link"), m_directory.path("e.jpg") };
    }

    /// What \a found has wrong, or lacks without a word: neither is anything above it \a told nor
    /// is it \a gone.
    [[nodiscard]] QStringList unexplained(const QList<FoundFolder>& found, const QStringList& told,
                                          const QStringList& gone) const
    {
        QStringList wrong;
        const QList<FoundFolder> wanted = folders();
        for (const FoundFolder& folder : wanted) {
            const FoundFolder* const same = in(found, folder.path);
            const bool mayLack = isBelowOneOf(folder.path, told) || isBelowOneOf(folder.path, gone)
                || gone.contains(folder.path);
            const bool mayMiscount =
                told.contains(folder.path) || (folder.path == root() && !gone.isEmpty());
            if (same == nullptr && !mayLack)
                wrong.append(QStringLiteral("lacks ") + folder.path);
            else if (same != nullptr && same->type != folder.type)
                wrong.append(folder.path + QStringLiteral(" is ") + same->type);
            else if (same != nullptr && same->fileCount >= 0 && !mayMiscount
                     && same->fileCount != folder.fileCount)
                wrong.append(QStringLiteral("miscounts ") + folder.path);
        }
        for (const FoundFolder& folder : found) {
            if (in(wanted, folder.path) == nullptr)
                wrong.append(QStringLiteral("has ") + folder.path);
        }
        return wrong;
    }

private:
    static const FoundFolder* in(const QList<FoundFolder>& folders, const QString& path)
    {
        const auto found =
            std::find_if(folders.cbegin(), folders.cend(),
                         [&path](const FoundFolder& folder) { return folder.path == path; });
        return found == folders.cend() ? nullptr : &*found;
    }

    static bool isBelowOneOf(const QString& path, const QStringList& directories)
    {
        return std::any_of(directories.cbegin(), directories.cend(),
                           [&path](const QString& one) { return path.startsWith(one + u'/'); });
    }

    RawDirectory m_directory;
};
