#pragma once

/// \file

#include "VLEventFolderClassificationResult.h"
#include "VLFolioGlobal.h"

#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QStringList>
#include <QtCore/QTextStream>

/// Writes the results of one classification as an HTML table: a row for each directory, with its
/// type, its path, the number of files directly inside it and its occasions.
///
/// \code
/// VLClassificationResultsRendererHTML renderer(results, int(rootPath.size()), { u"*.*"_s });
/// renderer.renderToFile(QFileInfo(QDir(rootPath), u"vela.classification.results.html"_s));
/// \endcode
///
/// The report is a diagnostic for people who know the tree: names enter it as they are, without
/// HTML escapes. The write operations go to the stream they are given and can be used one by one.
///
/// Threads: an object belongs to one thread at a time, and copies of a walk's results may be in
/// several such objects. So may those of other results whose directories were asked for their
/// absolute paths before: QFileInfo keeps them, but finds them out without a lock. Directories are
/// listed by VLPlatformIndependent::instance().
class VLFOLIOEVENTCLASSIFIER_EXPORT VLClassificationResultsRendererHTML
{
public:
    /// Keeps a copy of \a classificationResults sorted with isSmaller(); the caller's list keeps
    /// its order.
    ///
    /// \param classificationResults the results; an empty list makes a report without rows.
    /// \param prefixLength how many UTF-16 code units are left out at the start of the absolute
    ///     path in every row whose type is not exactly Root. A negative number leaves out none.
    /// \param fileNameFilters patterns of file names, kept but not applied: all files count.
    VLClassificationResultsRendererHTML(
        const QList<VLEventFolderClassificationResult>& classificationResults, int prefixLength,
        const QStringList& fileNameFilters);
    VL_DEFAULT_COPY_MOVE(VLClassificationResultsRendererHTML)
    virtual ~VLClassificationResultsRendererHTML();

    /// True when the absolute path of \a first sorts before that of \a second, UTF-16 code unit by
    /// code unit. That is no tree order: "2019-x" comes between "2019" and "2019/01".
    [[nodiscard]] static bool isSmaller(const VLEventFolderClassificationResult& first,
                                        const VLEventFolderClassificationResult& second);

    /// Replaces the file \a reportFile by the report, and calls
    /// VLPlatformIndependent::directoryContentsChanged() with its directory, whether or not that
    /// worked.
    ///
    /// Failures show only in Qt's message log, category "default": a debug message says whether an
    /// old report could be removed, a warning that the report could not be opened, and why. An
    /// error while writing, a full disk for instance, is not noticed.
    void renderToFile(const QFileInfo& reportFile);

    /// Writes everything ahead of the table: the style and the start of the body.
    void writeHTMLHeader(QTextStream& stream) const;
    /// Writes the style element, which gives each type but ProjectFolder its colour.
    void writeStyle(QTextStream& stream) const;
    /// Writes the start of the table and its header row.
    void writeTableStart(QTextStream& stream) const;
    /// Writes the row of \a result. Lists its directory through the platform service.
    void writeTableEntry(QTextStream& stream,
                         const VLEventFolderClassificationResult& result) const;
    /// Writes the end of the table.
    void writeTableEnd(QTextStream& stream) const;
    /// Writes the end of the body and of the document.
    void writeHTMLEnd(QTextStream& stream) const;

private:
    QList<VLEventFolderClassificationResult> results;
    int rootPathLength;
    QStringList nameFilters;
};
