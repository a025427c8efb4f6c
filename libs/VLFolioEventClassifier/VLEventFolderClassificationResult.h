#pragma once

/// \file

#include "VLEventFolderType.h"
#include "VLFolioGlobal.h"
#include "VLOccasionInfoList.h"

#include <QtCore/QFileInfo>
#include <QtCore/QString>

/// What the classifier decided for one directory: its type and, if a host adds them, the occasions
/// suggested for it.
///
/// \code
/// VLEventFolderClassificationResult result(QFileInfo(u"/pictures/2023/07"_s),
///                                          VLEventFolderTypeEnum::Month);
/// result.render(10);   // "  Month <= 2023/07"
/// \endcode
///
/// Threads: distinct objects may be used from distinct threads, copies included, and one object may
/// be read by several, if their directories are absolute paths, as those of the walk from an
/// absolute root are. What directory() gives back is not as free, see there.
class VLFOLIOEVENTCLASSIFIER_EXPORT VLEventFolderClassificationResult
{
public:
    /// Makes a result without a directory (a default-constructed QFileInfo), of the type Unknown,
    /// with no occasions.
    VLEventFolderClassificationResult();
    /// Makes the result of \a directory, which need not exist, with no occasions.
    VLEventFolderClassificationResult(const QFileInfo& directory,
                                      const VLEventFolderType& classification);
    VL_DEFAULT_COPY_MOVE(VLEventFolderClassificationResult)
    virtual ~VLEventFolderClassificationResult();

    /// True when the types are the same number and QFileInfo's `operator==` says that the
    /// directories are the same, which may have to look at the file system. So two directories
    /// that do not exist are the same, and two default-constructed results are different unless
    /// one is a copy of the other. Occasions do not count. For absolute paths the file system is
    /// looked at anew each time: what was found out once is not kept.
    [[nodiscard]] bool operator==(const VLEventFolderClassificationResult& other) const;

    /// The directory. It shares its data with the one in this object and in copies of it, and Qt
    /// caches in there, without a lock, what it finds out: a thread that asks it for more than
    /// filePath(), while others use such copies, makes a QFileInfo of its own from that.
    [[nodiscard]] QFileInfo directory() const;
    /// Its type, or a combination of types.
    [[nodiscard]] VLEventFolderType classification() const;
    /// The occasions suggested for it; empty unless setOccasionInformation() was called.
    [[nodiscard]] VLOccasionInfoList occasionInformation() const;

    /// Replaces all occasions by those of \a occasionInformation.
    void setOccasionInformation(const VLOccasionInfoList& occasionInformation);

    /// Returns the result as one line "type <= path". The name of the type is padded on the left
    /// to seven UTF-16 code units; a combination of types has no name. A path that holds a
    /// placeholder of QString::arg() for 0 or 1 ("%0", "%1", "%L1") takes the name there, and the
    /// line keeps a "%2" in its stead.
    ///
    /// \param prefixLength how many UTF-16 code units are left out at the start of the directory's
    ///     absolute path (QFileInfo::absoluteFilePath()). A negative number leaves out none, one
    ///     beyond the path all of it.
    [[nodiscard]] QString render(int prefixLength) const;

    /// Adds the flags of \a type to the classification. Nothing ever takes a flag away.
    void expandTo(const VLEventFolderType& type);

private:
    QFileInfo m_directory;
    VLEventFolderType m_classification;
    VLOccasionInfoList m_occasionInformation;
};

Q_DECLARE_TYPEINFO(VLEventFolderClassificationResult, Q_RELOCATABLE_TYPE);
