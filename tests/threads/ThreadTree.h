#pragma once

#include "TypeNames.h"

#include <VLFolioEventClassifier/VLFolioEventClassifier.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

/// A collection of its own for each thread, in a temporary directory. The number of the thread
/// changes what the folders are, so that results of one in the report of another show.
class ThreadTree
{
public:
    explicit ThreadTree(int number)
        : m_root(QDir(m_directory.path()).canonicalPath() + QStringLiteral("/pics"))
        , m_year(QString::number(2010 + number))
    {
        const QStringList folders { QStringLiteral("/07/Beach/2019-07-14"),
                                    QStringLiteral("/August"), QStringLiteral("/2019-07-14") };
        m_isValid = m_directory.isValid();
        for (const QString& folder : folders)
            m_isValid = m_isValid && QDir().mkpath(m_root + u'/' + m_year + folder);
        for (int extra = 0; extra < number; ++extra) {
            m_isValid = m_isValid
                && QDir().mkpath(m_root + QStringLiteral("/Misc/Monday ") + QString::number(extra));
        }
        QFile picture(m_root + u'/' + m_year + QStringLiteral("/07/a.jpg"));
        m_isValid = m_isValid && picture.open(QIODevice::WriteOnly);
    }

    [[nodiscard]] bool isValid() const { return m_isValid; }
    [[nodiscard]] QString root() const { return m_root; }

    /// One line "path Type" for each folder, in the order of the walk.
    [[nodiscard]] QStringList expectedLines() const
    {
        QStringList lines { QStringLiteral(" Root"),
                            u'/' + m_year + QStringLiteral(" Year"),
                            u'/' + m_year + QStringLiteral("/07 Month"),
                            u'/' + m_year + QStringLiteral("/07/Beach Event"),
                            u'/' + m_year + QStringLiteral("/07/Beach/2019-07-14 Day"),
                            u'/' + m_year + QStringLiteral("/2019-07-14 Event"),
                            u'/' + m_year + QStringLiteral("/August Month") };
        const qsizetype extras = m_year.toInt() - 2010;
        if (extras > 0)
            lines.append(QStringLiteral("/Misc Unknown"));
        for (qsizetype extra = 0; extra < extras; ++extra) {
            lines.append(QStringLiteral("/Misc/Monday ") + QString::number(extra)
                         + QStringLiteral(" Unknown"));
        }
        return lines;
    }

    /// What a walk finds, in the same form.
    [[nodiscard]] QStringList walkedLines() const
    {
        QStringList lines;
        const QFileInfo directory(m_root);
        const QList<VLEventFolderClassificationResult> results =
            VLFolioEventClassifier(directory).eventFolderTypes(directory, {});
        for (const VLEventFolderClassificationResult& result : results) {
            lines.append(result.directory().absoluteFilePath().mid(m_root.size()) + u' '
                         + typeName(result.classification().value()));
        }
        return lines;
    }

    /// What the report in the root says, in the same form but in the order of the paths. It does
    /// not matter here, for that is the same.
    [[nodiscard]] QStringList reportedLines() const
    {
        QFile report(m_root + QStringLiteral("/vela.classification.results.html"));
        if (!report.open(QIODevice::ReadOnly))
            return {};
        QStringList lines;
        const QStringList cells = QString::fromUtf8(report.readAll()).split(QStringLiteral("<td>"));
        for (qsizetype i = 1; i + 3 < cells.size(); i += 4) {
            const QString type = cells.at(i).section(u'<', 0, 0);
            lines.append(cells.at(i + 1).section(u'<', 0, 0).remove(m_root) + u' ' + type);
        }
        return lines;
    }

private:
    QTemporaryDir m_directory;
    QString m_root;
    QString m_year;
    bool m_isValid = false;
};
