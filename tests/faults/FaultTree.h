#pragma once

#include "TypeNames.h"

#include "ReportText.h"

#include <VLFolioEventClassifier/VLEventFolderClassificationResult.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <array>

/// A small collection "pics" in a temporary directory, and what is said about it when nothing
/// fails.
class FaultTree
{
public:
    /// One folder of the collection.
    struct Folder
    {
        QString path;
        QString type;
        int fileCount;

        bool operator==(const Folder& other) const
        {
            return path == other.path && type == other.type && fileCount == other.fileCount;
        }
    };

    FaultTree()
        : m_root(QFileInfo(m_directory.path()).canonicalFilePath() + QStringLiteral("/pics"))
    {
    }

    /// Makes it. False when that does not succeed.
    [[nodiscard]] bool make() const { return makeIn(m_root); }

    /// Makes the same tree in another place.
    [[nodiscard]] static bool makeIn(const QString& root)
    {
        bool made = true;
        for (const auto name :
             { "2019/05/14.07.2019", "2019/Sommer/2019-07-14", "Album_vlp-Dateien", "K/L/M" }) {
            made = made && QDir().mkpath(root + u'/' + QString::fromLatin1(name));
        }
        made = made && QFile::link(QStringLiteral("K"), root + QStringLiteral("/Link"));
        for (const auto name : { "b.jpg", "2019/a.jpg", "2019/Sommer/c.jpg", "K/L/d.jpg" })
            made = made && ReportText::writeFile(root + u'/' + QString::fromLatin1(name), "x");
        return made;
    }

    [[nodiscard]] QString root() const { return m_root; }
    [[nodiscard]] QString path(const char* name) const
    {
        return m_root + u'/' + QString::fromLatin1(name);
    }
    [[nodiscard]] QString reportPath() const { return path("vela.classification.results.html"); }

    /// All of it, in the order of the walk and of the report.
    [[nodiscard]] QList<Folder> folders() const
    {
        struct Entry
        {
            const char* name;
            const char* type;
            int fileCount;
        };
        constexpr std::array entries {
            Entry { "", "Root", 2 },
            Entry { "/2019", "Year", 1 },
            Entry { "/2019/05", "Month", 0 },
            Entry { "/2019/05/14.07.2019", "Event", 0 },
            Entry { "/2019/Sommer", "Event", 1 },
            Entry { "/2019/Sommer/2019-07-14", "Day", 0 },
            Entry { "/Album_vlp-Dateien", "ProjectFolder", 0 },
            Entry { "/K", "Unknown", 0 },
            Entry { "/K/L", "Unknown", 1 },
            Entry { "/K/L/M", "Unknown", 0 },
            Entry { "/Link", "Unknown", 0 },
            Entry { "/Link/L", "Unknown", 1 },
            Entry { "/Link/L/M", "Unknown", 0 },
        };
        QList<Folder> all;
        for (const Entry& entry : entries) {
            all.append({ m_root + QString::fromLatin1(entry.name), QString::fromLatin1(entry.type),
                         entry.fileCount });
        }
        return all;
    }

    /// The whole report on the collection, if it is at \a root.
    [[nodiscard]] QByteArray report(const QString& root) const
    {
        QByteArrayList rows;
        const QList<Folder> all = folders();
        for (const Folder& folder : all) {
            const QString shown = folder.type == u"Root" ? root : folder.path.mid(m_root.size());
            rows.append(ReportText::row(folder.type.toUtf8(), shown.toUtf8(),
                                        QByteArray::number(folder.fileCount), "no data"));
        }
        return ReportText::report(rows);
    }
    [[nodiscard]] QByteArray report() const { return report(m_root); }

private:
    QTemporaryDir m_directory;
    QString m_root;
};
