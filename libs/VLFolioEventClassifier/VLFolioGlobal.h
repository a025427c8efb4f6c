#pragma once

/// \file

#include <VLCore/VLGlobal.h>

/// \def VLFOLIOEVENTCLASSIFIER_EXPORT
/// Marks what the library VLFolioEventClassifier exports, as VLCORE_EXPORT does for VLCore.

#if defined(VL_STATIC)
#    define VLFOLIOEVENTCLASSIFIER_EXPORT
#elif defined(VLFolioEventClassifier_EXPORTS)
#    define VLFOLIOEVENTCLASSIFIER_EXPORT Q_DECL_EXPORT
#else
#    define VLFOLIOEVENTCLASSIFIER_EXPORT Q_DECL_IMPORT
#endif
