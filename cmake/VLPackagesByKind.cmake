# Read by cpack before it makes the packages of one kind.
if(CPACK_GENERATOR STREQUAL "DEB")
    # Zsh on Debian looks in a directory of that name for what packages bring.
    list(APPEND CPACK_CUSTOM_INSTALL_VARIABLES VLFOLIO_ZSH_COMPLETIONS=vendor-completions)
    set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/VLDebianFiles.cmake")
    # It would become the first line of every package's description.
    set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
endif()
