include(GNUInstallDirs)
include(VLRunPath)

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
