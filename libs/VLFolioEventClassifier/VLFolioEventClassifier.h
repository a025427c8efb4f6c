#pragma once

/// \file

#include "VLEventFolderClassificationResult.h"

#include <QtCore/QList>

/// Classifies the folders of a picture collection: walks the tree below a root directory and says
/// for each directory whether it is the root, a year, a month, a day, an event, a project's data
/// folder or unknown.
///
/// \code
/// VLFolioEventClassifier classifier(QFileInfo(u"/home/me/Pictures"_s));
/// classifier.start();                                        // writes the report, or
/// const auto results = classifier.eventFolderTypes(          // keeps the results
///     QFileInfo(u"/home/me/Pictures"_s), VLEventFolderClassificationResult());
/// \endcode
///
/// The directory's own name decides first; then the type of its parent corrects it. Days, dates and
/// months are read in the user's language, see matchesDate() and matchesMonth().
///
/// Failures are neither thrown nor returned: a directory that cannot be read has no
/// subdirectories. Only std::bad_alloc is thrown, and leaves the classifier unchanged.
///
/// Threads: everything runs on the calling thread. A classifier holds nothing but its root and
/// belongs to one thread at a time; those of several threads may be made from one absolute
/// QFileInfo. What is passed to the other functions must belong to the calling thread, because
/// copies of a QFileInfo share, without a lock, what Qt caches in it.
///
/// A host watches, narrows or ends a walk through a platform service of its own, see
/// VLPlatformIndependent::getDirectSubdirectoriesInDirectory(). A walk also ends at the next folder
/// once QCoreApplication::closingDown() is true, that is, when the destructor of the application
/// object has begun. The destructor waits for the global QThreadPool, whose walks therefore end
/// early. A walk on a QThread that is waited for before it, or by an object that it deletes, runs
/// to its end unless the host's service ends it.
class VLFOLIOEVENTCLASSIFIER_EXPORT VLFolioEventClassifier
{
public:
    /// Makes a classifier for the tree below \a root, without accessing the file system. The root
    /// need not exist. A default-constructed QFileInfo stands for the working directory.
    explicit VLFolioEventClassifier(const QFileInfo& root);
    /// \{
    /// A copy may be used on another thread than the original if the root is absolute, because the
    /// copy then shares nothing that Qt caches. A classifier that was moved from may only be
    /// assigned to or destroyed.
    VLFolioEventClassifier(const VLFolioEventClassifier& other);
    VLFolioEventClassifier(VLFolioEventClassifier&& other) noexcept = default;
    VLFolioEventClassifier& operator=(const VLFolioEventClassifier& other);
    VLFolioEventClassifier& operator=(VLFolioEventClassifier&& other) noexcept = default;
    /// \}
    virtual ~VLFolioEventClassifier();

    /// Does a whole run: logs "startClassifyEvent", walks the tree, writes the report
    /// "vela.classification.results.html" into the root directory by
    /// VLClassificationResultsRendererHTML::renderToFile(), and passes that file to
    /// VLPlatformIndependent::openFile(), even if it could not be written.
    void start();

    /// Classifies \a directory and every directory below it.
    ///
    /// The results are in pre-order: a directory, then the whole tree of its first subdirectory,
    /// and so on, in the order of QDir::Name (case-sensitive). Hidden directories and everything
    /// below them are left out. Symlinks to directories are followed, and a cycle of symlinks ends
    /// only where the system refuses the path. The walk is as deep a recursion as the tree.
    ///
    /// \param directory where the walk starts; only the classifier's own root is of the type Root.
    /// \param parentResult the result of the parent of \a directory; a default-constructed one for
    ///     the root.
    /// \return one result, without occasions, for each directory that the walk came to before
    ///     QCoreApplication::closingDown() was true; none if it is true already.
    [[nodiscard]] QList<VLEventFolderClassificationResult>
    eventFolderTypes(const QFileInfo& directory,
                     const VLEventFolderClassificationResult& parentResult);

    /// Classifies the single \a directory by itself, and corrects that by the type in
    /// \a parentResult. A type that combines flags there counts as none of them.
    [[nodiscard]] VLEventFolderClassificationResult
    contextDependentEventFolderType(const QFileInfo& directory,
                                    const VLEventFolderClassificationResult& parentResult);

    /// Classifies \a directory by itself: Root if it equals the root by QFileInfo's `operator==`,
    /// Event if its absolute path starts with "photokit", and otherwise by its name.
    [[nodiscard]] VLEventFolderClassificationResult
    eventFolderType(const QFileInfo& directory) const;

    /// Classifies a folder name: ProjectFolder, Day, Month or Year, by the first that holds of
    /// matchesProject(), matchesDate(), matchesMonth() and matchesYear(), or else Unknown.
    [[nodiscard]] VLEventFolderType eventFolderType(const QString& name) const;

    /// Returns true if \a name ends with "_vlp-Dateien"; the case matters.
    [[nodiscard]] bool matchesProject(const QString& name) const;

    /// Returns true if \a path, as it stands, starts with "photokit"; the case matters.
    [[nodiscard]] bool matchesApplePhotos(const QString& path) const;

    /// Returns true if \a name is a date or the name of a day in the QLocale() or QLocale::system()
    /// of this call (long, short or narrow format, by QLocale::toDate() and QLocale::dayName()), is
    /// a Qt::TextDate or Qt::RFC2822Date, or contains digits in the shape of a date: two or four,
    /// two, and two or four, separated by a hyphen, a vertical bar, a comma, a full stop or ASCII
    /// white space. Only the shape counts: "99.99.99" has it, too. A name with an unpaired
    /// surrogate contains no such shape.
    [[nodiscard]] bool matchesDate(const QString& name) const;

    /// Returns true if \a name is the long or short name of a month in the QLocale() of the first
    /// call in this process, in the same case, or a number from 1 to 12 or 01 to 09.
    [[nodiscard]] bool matchesMonth(const QString& name) const;

    /// Returns true if \a name contains the digit 2 followed by three more ASCII digits, and no
    /// unpaired surrogate.
    [[nodiscard]] bool matchesYear(const QString& name) const;

private:
    QFileInfo rootDirectory;
};
