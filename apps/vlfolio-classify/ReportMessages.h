#pragma once

#include <QtCore/QString>
#include <QtCore/qlogging.h>

/// Keeps what the report writer says in Qt's message log, which is the only place where it tells
/// of failures. Every other message goes where it went before. One at a time.
class ReportMessages
{
public:
    ReportMessages();
    ~ReportMessages();
    Q_DISABLE_COPY_MOVE(ReportMessages)

    /// True when an old report was there and could not be removed.
    [[nodiscard]] bool oldReportRemains() const;
    /// Why the report could not be opened for writing; empty when it could.
    [[nodiscard]] QString openError() const;

private:
    QtMessageHandler m_previous;
};
