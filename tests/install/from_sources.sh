#!/usr/bin/env bash
# Projects that build the libraries from their sources, shared by FetchContent when find_package() asks
# for them, static by add_subdirectory(); and what they install in directories that a packager has
# fixed, outside the prefix.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# build_and_install NAME OPTION...: the libraries are installed in NAME.libraries and NAME.headers, and
# found there by CMake.
build_and_install() {
    local prefix=$WORK/$1.prefix
    rm -rf "$prefix"
    build_consumer "$@" -DCMAKE_PROJECT_consumer_INCLUDE="$here/$1.cmake" \
        -DSOURCE_TREE="$SOURCE_TREE" -DCMAKE_UNITY_BUILD=ON -DVLFOLIO_INSTALL=ON \
        -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR="$prefix/fixed/libraries" \
        -DCMAKE_INSTALL_INCLUDEDIR="$prefix/fixed/headers"
    quietly cmake --install "$WORK/$1"
    libraries=$prefix/fixed/libraries
    build_consumer "$1_found" -DVLFolioEventClassifier_DIR="$libraries/cmake/VLFolioEventClassifier"
}

# link_by_pkg_config NAME OPTION...: links what build_and_install NAME has installed.
link_by_pkg_config() {
    local package flags
    export PKG_CONFIG_PATH=$WORK/$1.prefix/fixed/libraries/pkgconfig
    for package in VLCore VLFolioEventClassifier; do
        expect_directories "$package" "$WORK/$1.prefix/fixed"/{libraries,headers}
    done
    mapfile -t flags < <(ask_pkg_config "${@:2}" --cflags --libs VLFolioEventClassifier)
    compile_consumer "$1_linked" "${flags[@]}" "-Wl,-rpath,$WORK/$1.prefix/fixed/libraries"
}

build_and_install fetch_content -DBUILD_SHARED_LIBS=ON
expect "how many libraries of its own build the consumer loads" 2 \
    "$(libraries_of "$WORK/fetch_content/consumer" | grep -c "^$WORK/fetch_content/")"
expect_loaded "$WORK/fetch_content_found/consumer" "$libraries"

build_and_install add_subdirectory -DBUILD_SHARED_LIBS=OFF
expect "what is installed" $'libVLCore.a\nlibVLFolioEventClassifier.a' \
    "$(cd "$libraries" && ls -- *VL*)"
expect "what the consumers load" "" \
    "$(libraries_of "$WORK/add_subdirectory/consumer" "$WORK/add_subdirectory_found/consumer")"

needs pkg-config
link_by_pkg_config fetch_content
expect_loaded "$WORK/fetch_content_linked" "$WORK/fetch_content.prefix/fixed/libraries"
link_by_pkg_config add_subdirectory --static
expect "what the consumer loads" "" "$(libraries_of "$WORK/add_subdirectory_linked")"
