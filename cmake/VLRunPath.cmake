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
