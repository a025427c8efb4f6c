set(Qt6CorePrivate_FOUND TRUE)
add_library(Qt6::CorePrivate INTERFACE IMPORTED GLOBAL)
target_include_directories(Qt6::CorePrivate SYSTEM INTERFACE
    "${QT_INSTALL_HEADERS}/QtCore/${QT_VERSION}"
    "${QT_INSTALL_HEADERS}/QtCore/${QT_VERSION}/QtCore"
)
target_link_libraries(Qt6::CorePrivate INTERFACE Qt6::Core)
