#!/usr/bin/env bash
# Shared libraries in directories that the packager has fixed, outside the prefix. What
# fetch_content has compiled is linked and installed once more.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

absolute=$WORK/absolute_shared
libraries=$absolute/libraries
rm -rf "$absolute"
quietly cmake "$WORK/fetched" -DVLFOLIO_INSTALL=ON -DCMAKE_INSTALL_PREFIX="$absolute/prefix" \
    -DCMAKE_INSTALL_LIBDIR="$libraries" -DCMAKE_INSTALL_INCLUDEDIR="$absolute/headers"
quietly cmake --build "$WORK/fetched"
quietly cmake --install "$WORK/fetched"

# expect_loaded CONSUMER: fails unless it gets both libraries from where they are installed.
expect_loaded() {
    expect "what the consumer loads" \
        "$libraries/libVLCore.so.1"$'\n'"$libraries/libVLFolioEventClassifier.so.1" \
        "$(libraries_of "$1")"
}

build_consumer found_absolute \
    -DVLFolioEventClassifier_DIR="$libraries/cmake/VLFolioEventClassifier"
expect_loaded "$WORK/found_absolute/consumer"

needs pkg-config
export PKG_CONFIG_PATH=$libraries/pkgconfig
for package in VLCore VLFolioEventClassifier; do
    expect "the libraries of $package" "$libraries" \
        "$(ask_pkg_config --variable=libdir "$package")"
    expect "the headers of $package" "$absolute/headers" \
        "$(ask_pkg_config --variable=includedir "$package")"
done
mapfile -t flags < <(ask_pkg_config --cflags --libs VLFolioEventClassifier)
compile_consumer linked_absolute "${flags[@]}" "-Wl,-rpath,$libraries"
expect_loaded "$WORK/linked_absolute"
