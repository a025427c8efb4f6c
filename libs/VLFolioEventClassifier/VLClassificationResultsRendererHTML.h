#pragma once

/// \file

#include "VLEventFolderClassificationResult.h"

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
/// The report is a diagnostic for people who know the tree: names are written to it as they are,
/// without HTML escapes. The write functions can also be called one by one.
///
/// Threads: an object belongs to one thread at a time. Several threads may each have an object with
/// copies of the same results, provided that a walk made them or that their paths are absolute.
class VLFOLIOEVENTCLASSIFIER_EXPORT VLClassificationResultsRendererHTML
{
public:
    /// Makes a renderer that holds a copy of \a classificationResults, sorted with isSmaller().
    ///
    /// \param classificationResults the results; an empty list makes a report without rows.
    /// \param prefixLength how many UTF-16 code units are left out at the start of the absolute
    ///     path in every row whose type is not exactly Root; none if it is negative.
    /// \param fileNameFilters patterns of file names, which are not applied: all files count.
    VLClassificationResultsRendererHTML(
        const QList<VLEventFolderClassificationResult>& classificationResults, int prefixLength,
        const QStringList& fileNameFilters);
    VL_DEFAULT_COPY_MOVE(VLClassificationResultsRendererHTML)
    virtual ~VLClassificationResultsRendererHTML();

    /// Returns true if the absolute path of \a first sorts before that of \a second, compared by
    /// UTF-16 code units. This is not the order of the tree: "2019-x" comes between "2019" and
    /// "2019/01".
    [[nodiscard]] static bool isSmaller(const VLEventFolderClassificationResult& first,
                                        const VLEventFolderClassificationResult& second);

    /// Replaces the file \a reportFile by the report and then, even if that failed, calls
    /// VLPlatformIndependent::directoryContentsChanged() with its directory. Logs in Qt's category
    /// "default": a debug message says whether an old report could be removed, and a warning why
    /// the new one could not be opened. An error while writing, such as a full disk, is not
    /// noticed.
    void renderToFile(const QFileInfo& reportFile);

    /// Writes everything before the table: the style and the start of the body.
    void writeHTMLHeader(QTextStream& stream) const;
    /// Writes the style element, which gives each type but ProjectFolder its colour.
    void writeStyle(QTextStream& stream) const;
    /// Writes the start of the table and its header row.
    void writeTableStart(QTextStream& stream) const;
    /// Writes the row of \a result. VLPlatformIndependent::instance() lists its directory.
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
