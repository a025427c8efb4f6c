# Fails unless the package in PACKAGE_DIR turns away who asks for another version, or has no Qt.
foreach(place IN ITEMS CMAKE_ENVIRONMENT_PATH CMAKE_PATH CMAKE_SYSTEM_PATH PACKAGE_ROOT_PATH
        SYSTEM_ENVIRONMENT_PATH)
    set(CMAKE_FIND_USE_${place} OFF)
endforeach()
foreach(version IN ITEMS 0.9 1.99 2.0 1.0)
    find_package(VLFolioEventClassifier ${version} QUIET PATHS "${PACKAGE_DIR}" NO_DEFAULT_PATH)
    list(APPEND answers "${version}:${VLFolioEventClassifier_NOT_FOUND_MESSAGE}")
    unset(VLFolioEventClassifier_DIR CACHE)
endforeach()
if(NOT answers MATCHES "^0.9:;1.99:;2.0:;1.0:.*dependency Qt6 could not be found")
    message(FATAL_ERROR "The refusals are others: ${answers}")
endif()
