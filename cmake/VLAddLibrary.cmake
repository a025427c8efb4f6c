include(GNUInstallDirs)

set(VL_ORIGIN "$ORIGIN")
if(APPLE)
    set(VL_ORIGIN "@loader_path")
endif()

# The build tree has the layout of the installed one, so that run paths are the same in both: they
# start at the file itself and survive a move. CMake's own build paths are padded with empty entries,
# for which the loader searches the working directory.
function(vl_set_run_path target path)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${path}")
    if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}")
        return()
    endif()
    set_target_properties(${target} PROPERTIES
        LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}"
        RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_BINDIR}"
        BUILD_WITH_INSTALL_RPATH ON
        # Where Qt is, unless the loader looks there anyway.
        INSTALL_RPATH_USE_LINK_PATH ON
    )
endfunction()

# vl_add_library(NAME SOURCES ... HEADERS ... PUBLIC_LIBRARIES ... [RUN_PATH ...])
#
# One of the project's two libraries: hidden symbols, the project's own version, and headers that
# are reached as <NAME/Header.h> and as <Header.h>, in the build tree and installed.
function(vl_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "RUN_PATH" "SOURCES;HEADERS;PUBLIC_LIBRARIES")

    add_library(${name} ${arg_SOURCES})
    add_library(VLFolioEventClassifier::${name} ALIAS ${name})
    target_sources(${name} PUBLIC
        FILE_SET HEADERS
        BASE_DIRS "${PROJECT_SOURCE_DIR}/libs"
        FILES ${arg_HEADERS}
    )
    target_include_directories(${name} PUBLIC
        "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/${name}>"
    )
    target_compile_features(${name} PUBLIC cxx_std_17)
    target_link_libraries(${name}
        PUBLIC ${arg_PUBLIC_LIBRARIES}
        PRIVATE "$<BUILD_INTERFACE:VLProjectOptions>"
    )
    get_target_property(type ${name} TYPE)
    if(type STREQUAL "STATIC_LIBRARY")
        target_compile_definitions(${name} PUBLIC VL_STATIC)
    endif()
    set_target_properties(${name} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        VERIFY_INTERFACE_HEADER_SETS ${PROJECT_IS_TOP_LEVEL}
    )
    if(PROJECT_IS_TOP_LEVEL)
        vl_precompile(${name} ${name})
    endif()
    vl_set_run_path(${name} "${arg_RUN_PATH}")
endfunction()
