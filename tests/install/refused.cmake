# Fails unless the package in PACKAGE_DIR turns away who asks for another version, or has no Qt.
function(expect_refusal version reason)
    find_package(VLFolioEventClassifier ${version} QUIET PATHS "${PACKAGE_DIR}" NO_DEFAULT_PATH)
    set(answer "${VLFolioEventClassifier_CONSIDERED_VERSIONS} ${VLFolioEventClassifier_NOT_FOUND_MESSAGE}")
    if(VLFolioEventClassifier_FOUND OR NOT answer MATCHES "${reason}")
        message(FATAL_ERROR "Version ${version} is not refused: ${answer}")
    endif()
    unset(VLFolioEventClassifier_DIR CACHE)
endfunction()

foreach(version IN ITEMS 0.9 1.99 2.0)
    expect_refusal(${version} "^1.0.0 $")
endforeach()
foreach(place IN ITEMS CMAKE_ENVIRONMENT_PATH CMAKE_PATH CMAKE_SYSTEM_PATH PACKAGE_ROOT_PATH
        SYSTEM_ENVIRONMENT_PATH)
    set(CMAKE_FIND_USE_${place} OFF)
endforeach()
expect_refusal(1.0 "dependency Qt6 could not be found")
