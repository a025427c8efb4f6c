#pragma once

/// \file

#include "VLGlobal.h"

#include <QtCore/QMutex>
#include <QtCore/QRegularExpression>

/// Compiled regular expression that several threads may share.
///
/// QRegularExpression is reentrant, but not thread-safe. This class guards it by a lock, so that
/// one object in a function-local static serves the whole process:
///
/// \code
/// static const VLRegularExpression expression(uR"(\d{4})"_s, QRegularExpression::NoPatternOption);
/// const bool found = expression.match(name, 0, QRegularExpression::NormalMatch,
///                                     QRegularExpression::NoMatchOption).hasMatch();
/// \endcode
class VLCORE_EXPORT VLRegularExpression
{
public:
    /// Makes an expression from \a pattern, which is compiled by the first match(). An invalid
    /// pattern is no error here: it matches nothing, and Qt logs a warning when it is used.
    VLRegularExpression(const QString& pattern, QFlags<QRegularExpression::PatternOption> options);
    virtual ~VLRegularExpression() = default;
    Q_DISABLE_COPY_MOVE(VLRegularExpression)

    /// Searches \a subject and returns what QRegularExpression::match() returns. May be called from
    /// any thread.
    ///
    /// \param subject the text; an empty one is searched like any other.
    /// \param offset where the search starts, in UTF-16 code units; a negative offset counts from
    ///     the end, and one outside the subject matches nothing.
    /// \param matchType whether a partial match is accepted.
    /// \param matchOptions how to match, for instance at the offset only.
    /// \return the match, which may be kept. It is not valid if the pattern is not.
    [[nodiscard]] QRegularExpressionMatch
    match(const QString& subject, int offset, QRegularExpression::MatchType matchType,
          QFlags<QRegularExpression::MatchOption> matchOptions) const;

private:
    // The mutex comes first, so that it outlives the expression, which it guards.
    mutable QMutex m_mutex;
    mutable QRegularExpression m_expression;
};
