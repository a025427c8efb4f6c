#pragma once

/// \file

#include "VLGlobal.h"
#include "VLSingleton.h"

#include <QtCore/QString>

/// Service log of the application. `VLSingleton<VLLogger>::instance()` returns the one logger of
/// the process. All functions may be called from any thread, as Qt's message logger may.
///
/// Messages go to the Qt logging category `vl.folio.service`, so a host directs or silences them
/// with Qt's own means: qInstallMessageHandler(), QLoggingCategory::setFilterRules() or the
/// environment variable `QT_LOGGING_RULES`.
class VLCORE_EXPORT VLLogger
{
public:
    /// Makes a logger; it needs no set-up before initialize().
    VLLogger();
    virtual ~VLLogger();
    Q_DISABLE_COPY_MOVE(VLLogger)

    /// Called once by VLSingleton, before anybody else can use the logger. Does nothing, since Qt's
    /// logging categories need no set-up.
    virtual void initialize();

    /// Logs \a message as it stands, without quotes or escapes, at the level QtInfoMsg. An empty
    /// message is logged, too.
    void logFolioService(const QString& message);
};

// Instantiated in the core library alone. Otherwise, a module that is opened with RTLD_LOCAL might
// have a logger of its own.
extern template class VLSingleton<VLLogger>;
