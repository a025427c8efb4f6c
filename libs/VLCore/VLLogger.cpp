#include "VLLogger.h"

#include "VLKomma_p.h"

#include <QtCore/QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(folioService, "vl.folio.service", QtInfoMsg)

} // namespace

template class VLSingleton<VLLogger>;

VLLogger::VLLogger() = default;

VLLogger::~VLLogger() = default;

void VLLogger::initialize() { }

void VLLogger::logFolioService(const QString& message)
{
    // A debug stream is not used, because its destructor must not throw, but allocates memory.
    if (folioService().isInfoEnabled()) {
        const QMessageLogContext context(QT_MESSAGELOG_FILE, QT_MESSAGELOG_LINE, QT_MESSAGELOG_FUNC,
                                         folioService().categoryName());
        qt_message_output(QtInfoMsg, context, message);
    }
}
