#pragma once

/// \file

#include "VLGlobal.h"

#include <QtCore/QMutex>
#include <QtCore/QRegularExpression>

/// Compiled regular expression that several threads may share.
///
/// QRegularExpression is only reentrant; this class puts a lock around its use, so that one object
/// in a function-local static serves the whole process:
///
/// \code
/// static const VLRegularExpression expression(uR"(\d{4})"_s, QRegularExpression::NoPatternOption);
/// const bool found = expression.match(name, 0, QRegularExpression::NormalMatch,
///                                     QRegularExpression::NoMatchOption).hasMatch();
/// \endcode
class VLCORE_EXPORT VLRegularExpression
{
public:
    /// Makes the expression of \a pattern, which is compiled by the first match(). An invalid
    /// pattern is no error here: it matches nothing, and Qt warns when it is used.
    VLRegularExpression(const QString& pattern, QFlags<QRegularExpression::PatternOption> options);
    virtual ~VLRegularExpression() = default;
    Q_DISABLE_COPY_MOVE(VLRegularExpression)

    /// Searches \a subject and answers as QRegularExpression::match() does. May be called from any
    /// thread.
    ///
    /// \param subject the text; an empty one is searched like any other.
    /// \param offset where the search starts, in UTF-16 code units; a negative one counts from the
    ///     end, one outside the subject matches nothing.
    /// \param matchType whether a match may be a partial one.
    /// \param matchOptions how to match, for instance at the offset only.
    /// \return the match, which may be kept. With an invalid pattern it is not valid.
    [[nodiscard]] QRegularExpressionMatch
    match(const QString& subject, int offset, QRegularExpression::MatchType matchType,
          QFlags<QRegularExpression::MatchOption> matchOptions) const;

private:
    // The order of the two counts: members are released from the last to the first.
    mutable QMutex mutex;
    mutable QRegularExpression expression;
};
