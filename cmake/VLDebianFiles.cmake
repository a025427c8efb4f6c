# Run by cpack once the files of packages are in place: adds what each Debian package has to hold.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()
set(files "${CMAKE_CURRENT_LIST_DIR}/debian")
set(changes "${CMAKE_CURRENT_LIST_DIR}/../CHANGELOG.md")
file(STRINGS "${changes}" date REGEX "^## ${CPACK_PACKAGE_VERSION} ")
string(REGEX REPLACE ".*\\((.*)\\)" "\\1" date "${date}")
execute_process(COMMAND date --utc --rfc-email "--date=${date}"
    OUTPUT_VARIABLE date
    OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY
)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" name)
    set(package "${CPACK_DEBIAN_${name}_PACKAGE_NAME}")
    set(share "${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share")
    file(COPY "${files}/copyright" "${changes}" DESTINATION "${share}/doc/${package}")
    configure_file("${files}/changelog.in" "${share}/doc/${package}/changelog" @ONLY)
    file(COPY "${files}/overrides/${package}" DESTINATION "${share}/lintian/overrides")
    # Zsh on Debian looks in a directory of its own for what packages bring.
    if(EXISTS "${share}/zsh/site-functions")
        file(RENAME "${share}/zsh/site-functions" "${share}/zsh/vendor-completions")
    endif()
endforeach()
set(share "${CPACK_TEMPORARY_DIRECTORY}/*${CPACK_PACKAGING_INSTALL_PREFIX}/share")
file(GLOB long "${share}/man/man1/*" "${share}/doc/*/changelog" "${share}/doc/*/CHANGELOG.md")
execute_process(COMMAND gzip -9n ${long} COMMAND_ERROR_IS_FATAL ANY)
