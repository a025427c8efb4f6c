#!/usr/bin/env bash
# Static libraries: made with add_subdirectory(), and once more found where they are installed, in
# directories that the packager has fixed.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

absolute=$WORK/absolute
rm -rf "$absolute"
build_consumer added -DCMAKE_PROJECT_consumer_INCLUDE="$here/add_subdirectory.cmake" \
    -DSOURCE_TREE="$SOURCE_TREE" -DBUILD_SHARED_LIBS=OFF -DCMAKE_UNITY_BUILD=ON \
    -DVLFOLIO_INSTALL=ON -DCMAKE_INSTALL_PREFIX="$absolute" \
    -DCMAKE_INSTALL_LIBDIR="$absolute/libraries" -DCMAKE_INSTALL_INCLUDEDIR="$absolute/headers"
expect "what the consumer loads" "" "$(libraries_of "$WORK/added/consumer")"

quietly cmake --install "$WORK/added"
expect "what is installed" $'libVLCore.a\nlibVLFolioEventClassifier.a' \
    "$(cd "$absolute/libraries" && ls -- *VL*)"
build_consumer found_static \
    -DVLFolioEventClassifier_DIR="$absolute/libraries/cmake/VLFolioEventClassifier"
expect "what the consumer loads" "" "$(libraries_of "$WORK/found_static/consumer")"

needs pkg-config
export PKG_CONFIG_PATH=$absolute/libraries/pkgconfig
expect "the libraries" "$absolute/libraries" "$(ask_pkg_config --variable=libdir VLCore)"
expect "the headers" "$absolute/headers" "$(ask_pkg_config --variable=includedir VLCore)"
mapfile -t flags < <(ask_pkg_config --static --cflags --libs VLFolioEventClassifier)
compile_consumer linked_static "${flags[@]}"
expect "what the consumer loads" "" "$(libraries_of "$WORK/linked_static")"
