# For CMAKE_PROJECT_consumer_INCLUDE: lets find_package() bring in the sources SOURCE_TREE.
include(FetchContent)
FetchContent_Declare(VLFolioEventClassifier SOURCE_DIR "${SOURCE_TREE}" OVERRIDE_FIND_PACKAGE)
