#include "VLRegularExpression.h"

#include "VLKomma_p.h"

#include <QtCore/QMutexLocker>

VLRegularExpression::VLRegularExpression(const QString& pattern,
                                         QFlags<QRegularExpression::PatternOption> options)
    : m_expression(pattern, options)
{
}

QRegularExpressionMatch
VLRegularExpression::match(const QString& subject, int offset,
                           QRegularExpression::MatchType matchType,
                           QFlags<QRegularExpression::MatchOption> matchOptions) const
{
    const QMutexLocker locker(&m_mutex);
    // Qt does not compile a pattern again, even if the first attempt ran out of memory.
    if (!m_expression.isValid())
        m_expression = QRegularExpression(m_expression.pattern(), m_expression.patternOptions());
    return m_expression.match(subject, offset, matchType, matchOptions);
}
