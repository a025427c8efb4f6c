# vl_install_pkgconfig(NAME DESCRIPTION REQUIRES)
#
# Installs NAME.pc. It finds its directories from where it stands itself, so the installed tree can
# be moved, unless the packager has chosen absolute directories: those it names.
function(vl_install_pkgconfig pc_name pc_description pc_requires)
    set(pc_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
        set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
        set(pc_libdir "${CMAKE_INSTALL_LIBDIR}")
    else()
        file(RELATIVE_PATH up "/${pc_dir}" "/")
        string(REGEX REPLACE "/$" "" up "${up}")
        set(pc_prefix "\${pcfiledir}/${up}")
        set(pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
    endif()
    if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
        set(pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")
    else()
        set(pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
    endif()
    set(pc_defines "")
    if(NOT BUILD_SHARED_LIBS)
        set(pc_defines " -DVL_STATIC")
    endif()
    configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/vl.pc.in"
        "${CMAKE_CURRENT_BINARY_DIR}/${pc_name}.pc" @ONLY)
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${pc_name}.pc"
        DESTINATION "${pc_dir}" COMPONENT Development)
endfunction()
