# What this project's own targets are compiled with. Nothing of it reaches those who link them.
add_library(VLProjectOptions INTERFACE)

target_compile_options(VLProjectOptions INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    # Qt's logging macros are called as Qt documents them, without a format.
    "$<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wno-gnu-zero-variadic-macro-arguments>"
    # Messages name their source file relative to the project, wherever that is built.
    "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/="
)
target_compile_definitions(VLProjectOptions INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_URL_CAST_FROM_STRING
    QT_NO_KEYWORDS
    QT_NO_FOREACH
    QT_STRICT_ITERATORS
    # Nothing that the newest Qt it is tested with deprecates. The second is for Qt up to 6.4.
    QT_DISABLE_DEPRECATED_UP_TO=0x060800
    QT_DISABLE_DEPRECATED_BEFORE=0x060800
    # Messages carry file, line and function in Release builds, too.
    QT_MESSAGELOGCONTEXT
)

# Most of the compiler's time goes into Qt's headers. They are compiled once for the targets of a group,
# all of which are compiled with the same options; or for many source files at once in a unity build.
function(vl_precompile target group)
    get_property(first GLOBAL PROPERTY VL_PRECOMPILED_${group})
    if(CMAKE_UNITY_BUILD)
        return()
    elseif(first)
        target_precompile_headers(${target} REUSE_FROM ${first})
        return()
    endif()
    target_precompile_headers(${target} PRIVATE
        <QtCore/QCoreApplication>
        <QtCore/QDir>
        <QtCore/QLocale>
        <QtCore/QRegularExpression>
        <QtCore/QTextStream>
    )
    if(group STREQUAL "tests")
        target_precompile_headers(${target} PRIVATE <QtCore/QTemporaryDir> <QtTest/QTest> <thread>)
    endif()
    set_property(GLOBAL PROPERTY VL_PRECOMPILED_${group} ${target})
endfunction()
