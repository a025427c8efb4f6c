#pragma once

/// \file

#include "VLGlobal.h"

#include <QtCore/QMutex>
#include <QtCore/QRegularExpression>

/// Regular expression that several threads may share. QRegularExpression is reentrant, but not
/// thread-safe. This class guards it by a lock, so that one static object serves the whole process:
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

    /// Returns what QRegularExpression::match() returns for the same arguments: the first match in
    /// \a subject, which may be empty, from \a offset on. The offset is in UTF-16 code units; a
    /// negative one counts from the end, and one outside the subject matches nothing. The match may
    /// be kept. It is not valid if the pattern is not. May be called from any thread.
    [[nodiscard]] QRegularExpressionMatch
    match(const QString& subject, int offset, QRegularExpression::MatchType matchType,
          QFlags<QRegularExpression::MatchOption> matchOptions) const;

private:
    // The mutex comes first, so that it outlives the expression, which it guards.
    mutable QMutex m_mutex;
    mutable QRegularExpression m_expression;
};
