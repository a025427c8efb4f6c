#pragma once

/// \file

#include "VLEventFolderClassificationResult.h"
#include "VLEventFolderType.h"
#include "VLFolioGlobal.h"

#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QString>

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
/// The directory's own name decides first, then the type of its parent corrects it. Words are
/// those of the user's language: days and dates follow QLocale() and QLocale::system() as they are
/// at each call, months follow the QLocale() of the first call in the process.
///
/// Failures are neither thrown nor returned: a directory that cannot be read has no
/// subdirectories. Only std::bad_alloc passes through, and the classifier is unchanged then.
///
/// Threads: everything runs on the calling thread. A classifier holds nothing but its root, so
/// several threads may each use their own; one object belongs to one thread at a time. Classifiers
/// may be made of one absolute QFileInfo, but what is passed to the other operations must belong to
/// the calling thread: copies of a QFileInfo share what Qt caches in it, without a lock.
///
/// A host watches, narrows or ends a walk through its own platform service, see
/// VLPlatformIndependent::getDirectSubdirectoriesInDirectory(). When the application quits, a walk
/// on another thread ends at the next folder, as soon as QCoreApplication::closingDown() is true.
/// That is so once the destructor of the application object has begun: it waits there for the
/// global QThreadPool, whose walks therefore end early. A QThread that is waited for before that
/// destructor, or by an object that it deletes, walks to its end unless the host's service ends the
/// walk.
class VLFOLIOEVENTCLASSIFIER_EXPORT VLFolioEventClassifier
{
public:
    /// Makes a classifier for the tree below \a root, which is copied and not looked at.
    /// It need not exist. A default-constructed QFileInfo stands for the working directory.
    explicit VLFolioEventClassifier(const QFileInfo& root);
    /// \{
    /// A copy may be used on another thread than the original: of an absolute root nothing that Qt
    /// caches is shared. A classifier that was moved from can be assigned to or destroyed.
    VLFolioEventClassifier(const VLFolioEventClassifier& other);
    VLFolioEventClassifier(VLFolioEventClassifier&& other) noexcept = default;
    VLFolioEventClassifier& operator=(const VLFolioEventClassifier& other);
    VLFolioEventClassifier& operator=(VLFolioEventClassifier&& other) noexcept = default;
    /// \}
    virtual ~VLFolioEventClassifier();

    /// Does one whole run: logs "startClassifyEvent", walks the tree, writes the report
    /// "vela.classification.results.html" into the root directory, and hands that file to
    /// VLPlatformIndependent::openFile(), whether or not it could be written. Each call is a run
    /// of its own. See VLClassificationResultsRendererHTML::renderToFile() for what is logged.
    void start();

    /// Classifies \a directory and every directory below it.
    ///
    /// The results come in pre-order: a directory, then the whole tree of its first subdirectory,
    /// and so on, in the order of QDir::Name (case-sensitive). Hidden directories and what is
    /// below them are left out; links to directories are followed like directories, and links in a
    /// circle end only where the system refuses the path. The walk is recursive: its depth is that
    /// of the tree.
    ///
    /// \param directory where the walk starts; only the classifier's own root is of the type Root.
    /// \param parentResult the result of the directory's parent; a default-constructed one for the
    ///     root.
    /// \return one result for each directory, without occasions. Empty when
    ///     QCoreApplication::closingDown() is true, which is asked again at every directory: a
    ///     walk under way then ends at the next one and keeps what it has.
    [[nodiscard]] QList<VLEventFolderClassificationResult>
    eventFolderTypes(const QFileInfo& directory,
                     const VLEventFolderClassificationResult& parentResult);

    /// Classifies \a directory alone, by itself and by the type in \a parentResult. A parent whose
    /// type combines flags counts as none of them.
    [[nodiscard]] VLEventFolderClassificationResult
    contextDependentEventFolderType(const QFileInfo& directory,
                                    const VLEventFolderClassificationResult& parentResult);

    /// Classifies \a directory by itself: Root if QFileInfo's `operator==` says that it is the
    /// root, Event if its absolute path starts with "photokit", or else what its name says.
    [[nodiscard]] VLEventFolderClassificationResult
    eventFolderType(const QFileInfo& directory) const;

    /// Classifies a folder name: ProjectFolder, Day, Month, Year or Unknown, by the first of
    /// matchesProject(), matchesDate(), matchesMonth() and matchesYear() that holds. The empty
    /// name is Unknown.
    [[nodiscard]] VLEventFolderType eventFolderType(const QString& name) const;

    /// True when \a name ends with "_vlp-Dateien", in this case.
    [[nodiscard]] bool matchesProject(const QString& name) const;

    /// True when \a path starts with "photokit", in this case. The path is taken as it is.
    [[nodiscard]] bool matchesApplePhotos(const QString& path) const;

    /// True when \a name is a date or the name of a day in QLocale() or QLocale::system() (long,
    /// short or narrow format, as QLocale::toDate() and QLocale::dayName() know them), is a
    /// Qt::TextDate or Qt::RFC2822Date, or holds digits in the shape of a date: two or four, two,
    /// and two or four, each two parted by a hyphen, a vertical bar, a comma, a full stop or ASCII
    /// white space. The shape counts, not the number: "99.99.99" is one. A name with a lone
    /// surrogate holds no shape.
    [[nodiscard]] bool matchesDate(const QString& name) const;

    /// True when \a name is the long or short name of a month in the QLocale() of the first call
    /// in this process, in the same case, or a number from 1 to 12 or 01 to 09.
    [[nodiscard]] bool matchesMonth(const QString& name) const;

    /// True when the digit 2 and three more ASCII digits stand anywhere in \a name, unless that
    /// holds a lone surrogate.
    [[nodiscard]] bool matchesYear(const QString& name) const;

private:
    QFileInfo rootDirectory;
};
