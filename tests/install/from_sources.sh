#!/usr/bin/env bash
# Projects that build the libraries from their sources, shared by FetchContent when find_package() asks
# for them, static by add_subdirectory(); and what they install in directories that a packager has
# fixed, outside the prefix.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# build_and_install NAME OPTION...: the libraries are installed below NAME.prefix.
build_and_install() {
    fixed=$WORK/$1.prefix/fixed
    rm -rf "$fixed"
    build_consumer "$@" -DCMAKE_PROJECT_consumer_INCLUDE="$here/$1.cmake" \
        -DSOURCE_TREE="$SOURCE_TREE" -DCMAKE_UNITY_BUILD=ON -DVLFOLIO_INSTALL=ON \
        -DCMAKE_INSTALL_PREFIX="$WORK/$1.prefix" -DCMAKE_INSTALL_LIBDIR="$fixed/libraries" \
        -DCMAKE_INSTALL_INCLUDEDIR="$fixed/headers"
    quietly cmake --install "$WORK/$1"
}

build_and_install fetch_content -DBUILD_SHARED_LIBS=ON
expect "how many libraries of its own build the consumer loads" 2 \
    "$(libraries_of "$WORK/fetch_content/consumer" | grep -c "^$WORK/fetch_content/")"
build_consumer found -DVLFolioEventClassifier_DIR="$fixed/libraries/cmake/VLFolioEventClassifier"
expect_loaded "$WORK/found/consumer" "$fixed/libraries"

build_and_install add_subdirectory -DBUILD_SHARED_LIBS=OFF
expect "what is installed" $'libVLCore.a\nlibVLFolioEventClassifier.a' \
    "$(cd "$fixed/libraries" && ls -- *VL*)"
needs pkg-config
export PKG_CONFIG_PATH=$fixed/libraries/pkgconfig
for package in VLCore VLFolioEventClassifier; do
    expect_directories "$package" "$fixed"/{libraries,headers}
done
mapfile -t flags < <(ask_pkg_config --static --cflags --libs VLFolioEventClassifier)
[[ " ${flags[*]} " == *" -DVL_STATIC "* ]] || fail "not for static libraries: ${flags[*]}"
compile_consumer linked "${flags[@]}"
expect "what the consumers load" "" \
    "$(libraries_of "$WORK/add_subdirectory/consumer" "$WORK/linked")"
