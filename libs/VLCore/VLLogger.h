#pragma once

/// \file

#include "VLGlobal.h"
#include "VLSingleton.h"

#include <QtCore/QString>

/// Service log of the application. There is one logger per process, which
/// `VLSingleton<VLLogger>::instance()` returns.
///
/// Messages go to the Qt logging category `vl.folio.service`, so a host directs or silences them
/// with Qt's own means: qInstallMessageHandler(), QLoggingCategory::setFilterRules() or the
/// environment variable `QT_LOGGING_RULES`.
///
/// Threads: every operation may be called from any thread, as Qt's message logger may.
class VLCORE_EXPORT VLLogger
{
public:
    /// Makes a logger; it needs no set-up before initialize().
    VLLogger();
    virtual ~VLLogger();
    Q_DISABLE_COPY_MOVE(VLLogger)

    /// One-time set-up, which VLSingleton calls right after it made the logger and before anybody
    /// else can use it. Qt's categories need none, so this one does nothing.
    virtual void initialize();

    /// Records \a message as it stands, without quotes or escapes, at the level QtInfoMsg. An
    /// empty message is recorded, too.
    void logFolioService(const QString& message);
};

// Instantiated once, in the core library: with RTLD_LOCAL a module opened at run time might
// otherwise keep a logger of its own.
extern template class VLSingleton<VLLogger>;
