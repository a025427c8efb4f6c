# vl_install_pkgconfig(NAME DESCRIPTION REQUIRES)
#
# Installs NAME.pc. It finds its directories from where it stands itself, so the installed tree can
# be moved, unless the packager has chosen absolute directories: those it names.
function(vl_install_pkgconfig pc_name pc_description pc_requires)
    set(pc_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
    if(NOT IS_ABSOLUTE "${pc_dir}")
        file(RELATIVE_PATH up "/${pc_dir}" "/")
        string(REGEX REPLACE "/$" "" pc_prefix "\${pcfiledir}/${up}")
    endif()
    # What is appended takes the place of all before it where it is absolute.
    cmake_path(APPEND pc_libdir "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
    cmake_path(APPEND pc_includedir "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}")
    foreach(variable IN ITEMS pc_prefix pc_libdir pc_includedir)
        string(REPLACE " " "\\ " ${variable} "${${variable}}")
    endforeach()
    set(pc_defines "")
    if(NOT BUILD_SHARED_LIBS)
        set(pc_defines " -DVL_STATIC")
    endif()
    configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/vl.pc.in"
        "${CMAKE_CURRENT_BINARY_DIR}/${pc_name}.pc" @ONLY)
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${pc_name}.pc"
        DESTINATION "${pc_dir}" COMPONENT Development)
endfunction()
