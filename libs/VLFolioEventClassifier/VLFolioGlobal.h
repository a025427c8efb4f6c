#pragma once

/// \file

#include <VLCore/VLGlobal.h>

/// \def VLFOLIOEVENTCLASSIFIER_EXPORT
/// Marks what the library VLFolioEventClassifier exports when it is shared. Everything else stays
/// hidden; a static build (VL_STATIC) needs no marks at all.

#if defined(VL_STATIC)
#    define VLFOLIOEVENTCLASSIFIER_EXPORT
#elif defined(VLFolioEventClassifier_EXPORTS)
#    define VLFOLIOEVENTCLASSIFIER_EXPORT Q_DECL_EXPORT
#else
#    define VLFOLIOEVENTCLASSIFIER_EXPORT Q_DECL_IMPORT
#endif
