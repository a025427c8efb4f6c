# What of Linux's Qt is the same on a Mac: its headers, moc, rcc, and the names of its functions. These
# make libraries to link with, which hold nothing else.
set(Qt6_FOUND TRUE)
include_guard(GLOBAL)

find_program(VLFOLIO_QMAKE NAMES qmake6 REQUIRED)
foreach(name IN ITEMS
        QT_INSTALL_HEADERS QT_INSTALL_LIBS QT_INSTALL_ARCHDATA QT_HOST_LIBEXECS QT_VERSION)
    execute_process(COMMAND "${VLFOLIO_QMAKE}" -query ${name}
        OUTPUT_VARIABLE ${name}
        OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY
    )
endforeach()

# AUTOMOC asks for the version in this way.
string(REGEX MATCH "^([0-9]+)\\.([0-9]+)" version "${QT_VERSION}")
set(Qt6Core_VERSION_MAJOR ${CMAKE_MATCH_1})
set(Qt6Core_VERSION_MINOR ${CMAKE_MATCH_2})
foreach(tool IN ITEMS moc rcc)
    add_executable(Qt6::${tool} IMPORTED GLOBAL)
    set_target_properties(Qt6::${tool} PROPERTIES IMPORTED_LOCATION "${QT_HOST_LIBEXECS}/${tool}")
endforeach()

find_package(Threads REQUIRED)
foreach(module IN ITEMS Core Test)
    execute_process(COMMAND nm --dynamic --defined-only --format=just-symbols --without-symbol-versions
            "${QT_INSTALL_LIBS}/libQt6${module}.so"
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
        OUTPUT_VARIABLE library)
    file(WRITE "${library}" "--- !tapi-tbd
tbd-version: 4
targets: [ ${CMAKE_SYSTEM_PROCESSOR}-macos ]
install-name: '@rpath/Qt${module}.framework/Versions/A/Qt${module}'
exports:
  - targets: [ ${CMAKE_SYSTEM_PROCESSOR}-macos ]
    symbols: [ ${symbols} ]
")
    add_library(Qt6::${module} SHARED IMPORTED GLOBAL)
    set_target_properties(Qt6::${module} PROPERTIES
        IMPORTED_LOCATION "${library}"
        IMPORTED_SONAME "@rpath/Qt${module}.framework/Versions/A/Qt${module}"
    )
    target_include_directories(Qt6::${module} SYSTEM INTERFACE
        "${QT_INSTALL_HEADERS}"
        "${QT_INSTALL_HEADERS}/Qt${module}"
        "${QT_INSTALL_ARCHDATA}/mkspecs/macx-clang"
    )
endforeach()
target_link_libraries(Qt6::Test INTERFACE Qt6::Core)

function(qt_add_resources sources file)
    cmake_path(GET file STEM name)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/qrc_${name}.cpp")
    add_custom_command(
        OUTPUT "${source}"
        COMMAND Qt6::rcc --name "${name}" -o "${source}" "${CMAKE_CURRENT_SOURCE_DIR}/${file}"
        DEPENDS "${file}"
        VERBATIM
    )
    set(${sources} "${source}" PARENT_SCOPE)
endfunction()
