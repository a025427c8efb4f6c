# What `cpack` makes: an archive of everything, and Debian packages of the libraries, of what is
# needed to build with them, and of the program.
set(CPACK_PACKAGE_NAME "vlfolioeventclassifier")
set(CPACK_PACKAGE_VENDOR "The VLFolioEventClassifier developers")
set(CPACK_PACKAGE_CONTACT "${CPACK_PACKAGE_VENDOR} <vlfolioeventclassifier@localhost>")
# It would become the first line of every Debian package's description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL Runtime Development)
if(VLFOLIO_BUILD_APPS)
    list(APPEND CPACK_COMPONENTS_ALL Tools)
endif()
set(CPACK_GENERATOR TGZ)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    list(APPEND CPACK_GENERATOR DEB)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libvlfolioeventclassifier${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "Classifier of the folders of picture collections (libraries)
The shared libraries VLFolioEventClassifier and VLCore, which tell by their
names what the folders of a picture collection are: years, months, days, events
or project folders.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/triggers")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME "libvlfolioeventclassifier-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Classifier of the folders of picture collections (development)
What is needed to build applications with VLFolioEventClassifier: headers, and
the files by which CMake and pkg-config find the libraries.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qt6-base-dev (>= 6.4)")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME "vlfolio-classify")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "Classifier of the folders of picture collections (program)
The program vlfolio-classify tells by their names what the folders of a picture
collection are: years, months, days, events or project folders. It writes a
report or a page, or prints them.")
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/VLDebianFiles.cmake")

include(CPack)
cpack_add_component(Runtime DISPLAY_NAME "Shared libraries")
cpack_add_component(Development DISPLAY_NAME "Headers and build files" DEPENDS Runtime)
cpack_add_component(Tools DISPLAY_NAME "Command-line program" DEPENDS Runtime)
