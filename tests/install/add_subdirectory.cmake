# For CMAKE_PROJECT_consumer_INCLUDE: brings in the sources SOURCE_TREE as a folder.
add_subdirectory("${SOURCE_TREE}" libraries)
