# Linux's Qt, of which all but the libraries is the same on a Mac. In their place come stubs to link
# with, which hold the names of their functions and nothing else.
include_guard(GLOBAL)
find_package(Qt6 CONFIG REQUIRED COMPONENTS Core Test)

get_target_property(directories Qt6::Platform INTERFACE_INCLUDE_DIRECTORIES)
list(TRANSFORM directories REPLACE "linux-g\\+\\+$" "macx-clang")
set_target_properties(Qt6::Platform PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${directories}")
foreach(module IN ITEMS Core Test)
    get_target_property(library Qt6::${module} IMPORTED_LOCATION)
    execute_process(COMMAND nm --dynamic --defined-only --format=just-symbols --without-symbol-versions
            "${library}"
        OUTPUT_VARIABLE symbols
        OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY
    )
    # The C library and the C++ library name these types differently.
    string(REPLACE "P8_IO_FILE" "P7__sFILE" symbols "${symbols}")
    string(REGEX REPLACE "St(4pair|6future|8optional)I([^\n]+)" "NSt3__1\\1I\\2E" symbols "${symbols}")
    list(APPEND symbols
        _ZN9QMetaType25registerConverterFunctionERKNSt3__18functionIFbPKvPvEEES_S_
        _ZN9QMetaType27registerMutableViewFunctionERKNSt3__18functionIFbPvS2_EEES_S_
    )
    string(REGEX REPLACE "[\n;]" ", _" symbols "_${symbols}")
    # Outside the build tree, as every Qt is.
    cmake_path(REPLACE_FILENAME VLFOLIO_ZIG "qt-${CMAKE_SYSTEM_PROCESSOR}/Qt${module}.tbd"
        OUTPUT_VARIABLE stub)
    set(name "@rpath/Qt${module}.framework/Versions/A/Qt${module}")
    file(WRITE "${stub}" "--- !tapi-tbd
tbd-version: 4
targets: [ ${CMAKE_SYSTEM_PROCESSOR}-macos ]
install-name: '${name}'
exports:
  - targets: [ ${CMAKE_SYSTEM_PROCESSOR}-macos ]
    symbols: [ ${symbols} ]
")
    set_target_properties(Qt6::${module} PROPERTIES
        IMPORTED_LOCATION "${stub}"
        IMPORTED_SONAME "${name}"
    )
endforeach()
