#pragma once

/// \file

#include <QtCore/QString>
#include <QtCore/qglobal.h>

/// \def VLCORE_EXPORT
/// Marks what the library VLCore exports when it is shared. Everything else stays hidden; a static
/// build (VL_STATIC) needs no marks at all.

/// \def VLFOLIOEVENTCLASSIFIER_EXPORT
/// Marks what the library VLFolioEventClassifier exports when it is shared.

#if defined(VL_STATIC)
#    define VLCORE_EXPORT
#    define VLFOLIOEVENTCLASSIFIER_EXPORT
#else
#    if defined(VLCore_EXPORTS)
#        define VLCORE_EXPORT Q_DECL_EXPORT
#    else
#        define VLCORE_EXPORT Q_DECL_IMPORT
#    endif
#    if defined(VLFolioEventClassifier_EXPORTS)
#        define VLFOLIOEVENTCLASSIFIER_EXPORT Q_DECL_EXPORT
#    else
#        define VLFOLIOEVENTCLASSIFIER_EXPORT Q_DECL_IMPORT
#    endif
#endif

/// Marks class templates whose function-local statics must be one object in the whole process. The
/// compiler emits such statics as weak symbols in every module that instantiates the template; only
/// visible ones are merged by the dynamic linker.
#define VL_TEMPLATE_EXPORT Q_DECL_EXPORT

/// A comma, the separator of joined texts. Every source file that includes this header has a
/// constant of its own.
[[maybe_unused]] const QString KOMMA(QStringLiteral(",")); // clazy:exclude=non-pod-global-static
