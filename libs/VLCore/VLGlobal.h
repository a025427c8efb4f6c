#pragma once

/// \file

#include <QtCore/qglobal.h>

/// \def VLCORE_EXPORT
/// Marks what the library VLCore exports when it is shared. Everything else stays hidden; a static
/// build (VL_STATIC) needs no marks.

#if defined(VL_STATIC)
#    define VLCORE_EXPORT
#elif defined(VLCore_EXPORTS)
#    define VLCORE_EXPORT Q_DECL_EXPORT
#else
#    define VLCORE_EXPORT Q_DECL_IMPORT
#endif

/// Marks class templates whose function-local statics must be one object in the whole process. The
/// compiler emits such statics as weak symbols in every module that instantiates the template; only
/// visible ones are merged by the dynamic linker.
#define VL_TEMPLATE_EXPORT Q_DECL_EXPORT

/// Gives a class that declares a destructor the copy and move operations that the compiler would
/// otherwise generate.
// NOLINTBEGIN(bugprone-macro-parentheses): no parentheses can stand around the name of a class.
#define VL_DEFAULT_COPY_MOVE(Class)                                                                \
    Class(const Class&) = default;                                                                 \
    Class(Class&&) noexcept = default;                                                             \
    Class& operator=(const Class&) = default;                                                      \
    Class& operator=(Class&&) noexcept = default;
// NOLINTEND(bugprone-macro-parentheses)
