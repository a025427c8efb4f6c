#include "ReportMessages.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QLoggingCategory>

using namespace Qt::StringLiterals;

namespace {

// A message handler has no object to go with it.
QtMessageHandler previousHandler = nullptr;
bool removalFailed = false;
QString& openFailure()
{
    static QString text;
    return text;
}

// The error text stands at the end, quoted.
QString quotedEnd(const QString& message)
{
    return message.section(u'"', -2, -2);
}

bool isFromReportWriter(const QMessageLogContext& context)
{
    return context.file != nullptr
        && QByteArrayView(context.file).endsWith("VLClassificationResultsRendererHTML.cpp");
}

void keep(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (!isFromReportWriter(context))
        previousHandler(type, context, message);
    else if (type == QtWarningMsg)
        openFailure() = quotedEnd(message);
    else
        removalFailed = message.endsWith(u"false"_s);
}

} // namespace

ReportMessages::ReportMessages()
{
    removalFailed = false;
    openFailure().clear();
    // A rule in the environment must not keep a failure from being seen.
    QLoggingCategory::defaultCategory()->setEnabled(QtWarningMsg, true);
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);
    m_previous = qInstallMessageHandler(keep);
    previousHandler = m_previous;
}

ReportMessages::~ReportMessages()
{
    qInstallMessageHandler(m_previous);
}

bool ReportMessages::oldReportRemains() const
{
    return removalFailed;
}

QString ReportMessages::openError() const
{
    return openFailure();
}
