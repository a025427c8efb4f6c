#pragma once

/// \file

#include "VLEventFolderType.h"
#include "VLOccasionInfoList.h"

#include <QtCore/QFileInfo>

/// What the classifier decided for one directory: its type and, if a host adds them, the occasions
/// suggested for it.
///
/// \code
/// VLEventFolderClassificationResult result(QFileInfo(u"/pictures/2023/07"_s),
///                                          VLEventFolderTypeEnum::Month);
/// result.render(10);   // "  Month <= 2023/07"
/// \endcode
///
/// Threads: if the directories are absolute paths, as in the results of a walk from an absolute
/// root, distinct objects, copies included, may be used from distinct threads, and one object may
/// be read by several. For what directory() returns there are limits, see there.
class VLFOLIOEVENTCLASSIFIER_EXPORT VLEventFolderClassificationResult
{
public:
    /// Makes a result without a directory (a default-constructed QFileInfo), of the type Unknown,
    /// with no occasions.
    VLEventFolderClassificationResult() = default;
    /// Makes the result of \a directory, which need not exist, with no occasions.
    VLEventFolderClassificationResult(const QFileInfo& directory,
                                      const VLEventFolderType& classification)
        : m_directory(directory)
        , m_classification(classification)
    {
    }
    VL_DEFAULT_COPY_MOVE(VLEventFolderClassificationResult)
    virtual ~VLEventFolderClassificationResult();

    /// Returns true if the types are the same number and the directories are equal by QFileInfo's
    /// `operator==`: two directories that do not exist are equal, and two default-constructed
    /// results are not, unless one is a copy of the other. Occasions are not compared. For absolute
    /// paths each call may have to access the file system anew, as nothing is cached.
    [[nodiscard]] bool operator==(const VLEventFolderClassificationResult& other) const;

    /// Returns the directory. It shares its data with the one in this object and its copies, in
    /// which Qt caches, without a lock, what it finds out about the file. A thread that calls more
    /// than filePath() while others use such copies has to make a QFileInfo of its own from that
    /// path.
    [[nodiscard]] QFileInfo directory() const { return m_directory; }
    /// Returns its type, or a combination of types.
    [[nodiscard]] VLEventFolderType classification() const { return m_classification; }
    /// Returns the occasions suggested for it; none unless setOccasionInformation() was called.
    [[nodiscard]] VLOccasionInfoList occasionInformation() const { return m_occasionInformation; }

    /// Replaces all occasions by those of \a occasionInformation.
    void setOccasionInformation(const VLOccasionInfoList& occasionInformation)
    {
        m_occasionInformation = occasionInformation;
    }

    /// Returns the result as one line "type <= path". The name of the type is padded on the left
    /// to seven UTF-16 code units; a combination of types has no name. If the path holds one of
    /// QString::arg()'s placeholders for 0 or 1 ("%0", "%1", "%L1"), the name is inserted there,
    /// and the line begins with "%2" instead.
    ///
    /// \param prefixLength how many UTF-16 code units are left out at the start of the absolute
    ///     path: none if it is negative, all if it is longer than the path.
    [[nodiscard]] QString render(int prefixLength) const;

    /// Adds the flags of \a type to the classification. Nothing ever takes a flag away.
    void expandTo(const VLEventFolderType& type) { m_classification |= type; }

private:
    QFileInfo m_directory;
    VLEventFolderType m_classification;
    VLOccasionInfoList m_occasionInformation;
};

Q_DECLARE_TYPEINFO(VLEventFolderClassificationResult, Q_RELOCATABLE_TYPE);
