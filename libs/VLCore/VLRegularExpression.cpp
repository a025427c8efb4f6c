#include "VLRegularExpression.h"

#include "VLKomma_p.h"

#include <QtCore/QMutexLocker>

VLRegularExpression::VLRegularExpression(const QString& pattern,
                                         QFlags<QRegularExpression::PatternOption> options)
    : expression(pattern, options)
{
}

QRegularExpressionMatch
VLRegularExpression::match(const QString& subject, int offset,
                           QRegularExpression::MatchType matchType,
                           QFlags<QRegularExpression::MatchOption> matchOptions) const
{
    const QMutexLocker locker(&mutex);
    // Qt compiles a pattern once and never again, even if it lacked memory.
    if (!expression.isValid())
        expression = QRegularExpression(expression.pattern(), expression.patternOptions());
    return expression.match(subject, offset, matchType, matchOptions);
}
