# The build tree has the layout of the installed one, so that run paths are the same in both: they
# start at the file itself and survive a move. CMake's own build paths are padded with empty entries,
# for which the loader searches the working directory.
function(vl_place_in_build_tree target)
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

# Lets the target find libraries in the directory DIRECTORY, relative to its own; empty for the same.
function(vl_set_run_path target directory)
    vl_place_in_build_tree(${target})
    set(origin "$ORIGIN")
    if(APPLE)
        set(origin "@loader_path")
    endif()
    if(IS_ABSOLUTE "${directory}")
        set(path "${directory}")
    elseif(directory)
        set(path "${origin}/${directory}")
    else()
        set(path "${origin}")
    endif()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${path}")
endfunction()
