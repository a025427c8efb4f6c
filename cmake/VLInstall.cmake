include(CMakePackageConfigHelpers)
include(VLPkgConfig)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/VLFolioEventClassifier")
# For headers CMake 3.25 exports an absolute directory as one below the prefix.
set(headers_dir "${CMAKE_INSTALL_INCLUDEDIR}")
if(IS_ABSOLUTE "${headers_dir}")
    file(RELATIVE_PATH headers_dir "${CMAKE_INSTALL_PREFIX}" "${headers_dir}")
endif()

install(TARGETS VLCore VLFolioEventClassifier
    EXPORT VLFolioEventClassifierTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Runtime NAMELINK_COMPONENT Development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Development
    FILE_SET HEADERS DESTINATION "${headers_dir}" COMPONENT Development
)
install(EXPORT VLFolioEventClassifierTargets
    NAMESPACE VLFolioEventClassifier::
    DESTINATION "${package_dir}"
    COMPONENT Development
)
configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/VLFolioEventClassifierConfig.cmake.in"
    "${CMAKE_CURRENT_BINARY_DIR}/VLFolioEventClassifierConfig.cmake"
    INSTALL_DESTINATION "${package_dir}"
)
write_basic_package_version_file(
    "${CMAKE_CURRENT_BINARY_DIR}/VLFolioEventClassifierConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion
)
install(FILES
    "${CMAKE_CURRENT_BINARY_DIR}/VLFolioEventClassifierConfig.cmake"
    "${CMAKE_CURRENT_BINARY_DIR}/VLFolioEventClassifierConfigVersion.cmake"
    DESTINATION "${package_dir}"
    COMPONENT Development
)
vl_install_pkgconfig(VLCore "Platform layer of VLFolioEventClassifier" "Qt6Core >= 6.4")
vl_install_pkgconfig(VLFolioEventClassifier "${PROJECT_DESCRIPTION}" "VLCore = ${PROJECT_VERSION}")
if(PROJECT_IS_TOP_LEVEL)
    include(VLPackages)
endif()
