# What this project's own targets are compiled with. Nothing of it reaches those who link them.
add_library(VLProjectOptions INTERFACE)

target_compile_features(VLProjectOptions INTERFACE cxx_std_17)
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
