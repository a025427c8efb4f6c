#pragma once

/// \file

#include "VLFolioGlobal.h"

#include <QtCore/QString>

/// An occasion suggested for an event: what it was, what said so, and how sure that is.
///
/// \code
/// VLOccasionInfo(u"Birthday"_s, u"Calendar"_s, 0.9).description();   // "Birthday (0.9, Calendar)"
/// \endcode
///
/// Threads: a plain value. Distinct objects may be used from distinct threads.
class VLFOLIOEVENTCLASSIFIER_EXPORT VLOccasionInfo
{
public:
    /// Makes a record with an empty occasion, an empty source and the confidence 0.0.
    VLOccasionInfo();
    /// Makes a record of the three values as they are, without any check.
    VLOccasionInfo(const QString& occasion, const QString& source, double confidence)
        : m_occasion(occasion)
        , m_source(source)
        , m_confidence(confidence)
    {
    }
    VL_DEFAULT_COPY_MOVE(VLOccasionInfo)
    virtual ~VLOccasionInfo();

    /// Returns the name of the occasion.
    [[nodiscard]] QString occasion() const { return m_occasion; }
    /// Returns what the occasion was derived from.
    [[nodiscard]] QString source() const { return m_source; }
    /// Returns how sure the occasion is, on a scale that the caller of the constructor chooses.
    [[nodiscard]] double confidence() const { return m_confidence; }

    /// Returns the record as "occasion (confidence, source)". The confidence has at most six
    /// significant digits, as QString::number() writes them in the format 'g': 0.85, 1, 1.2e-05.
    [[nodiscard]] QString description() const;

    /// Returns true if confidences, occasions and sources are exactly equal; the strings are
    /// compared case-sensitively. A record with the confidence NaN is not equal to itself.
    [[nodiscard]] bool operator==(const VLOccasionInfo& other) const;

private:
    QString m_occasion;
    QString m_source;
    double m_confidence = 0.0;
};
